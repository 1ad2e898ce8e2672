#include "app/console.h"

#include <QCoreApplication>
#include <QDebug>
#include <QDir>

#include <cstdio>
#include <cstdlib>

namespace {

bool g_muted = false;

void messageHandler(QtMsgType type, const QMessageLogContext &, const QString &message)
{
    if (g_muted && type != QtFatalMsg)
        return;
    const QByteArray text = message.toLocal8Bit();
    FILE *stream = (type == QtInfoMsg || type == QtDebugMsg) ? stdout : stderr;
    std::fwrite(text.constData(), 1, size_t(text.size()), stream);
    std::fputc('\n', stream);
    std::fflush(stream);
    if (type == QtFatalMsg)
        std::abort();
}

} // namespace

Console::Console() = default;

Console::~Console()
{
    closeLogFile();
}

void Console::installMessageHandler()
{
    qInstallMessageHandler(messageHandler);
}

void Console::setToolkitMuted(bool muted)
{
    g_muted = muted;
}

bool Console::openLogFile(const QString &path, bool overwrite)
{
    closeLogFile();
    auto file = std::make_unique<QFile>(path);
    const QIODevice::OpenMode mode =
        QIODevice::WriteOnly | QIODevice::Text | (overwrite ? QIODevice::Truncate : QIODevice::Append);
    if (!file->open(mode))
        return false;
    m_logFile = std::move(file);
    return true;
}

QString Console::logFilePath() const
{
    return m_logFile ? m_logFile->fileName() : QString();
}

void Console::closeLogFile()
{
    if (!m_logFile)
        return;
    m_logFile->flush();
    m_logFile->close();
    m_logFile.reset();
}

void Console::writeToLog(const QString &text)
{
    if (!m_cli || !m_logFile)
        return;
    m_logFile->write(text.toUtf8());
    m_logFile->write("\n");
}

void Console::logInfo(const QString &text)
{
    qInfo().noquote() << text;
    writeToLog(text);
}

void Console::logError(const QString &text)
{
    const QString consoleText = text.startsWith(QLatin1Char(' ')) ? text.mid(1) : text;
    qWarning().noquote() << QStringLiteral("\x1b[31m") + consoleText + QStringLiteral("\x1b[0m");
    writeToLog(text);
}

void Console::abortProcessing(const QString &text)
{
    logError(text);
    logError(QCoreApplication::translate("Console", "Aborted processing"));
    closeLogFile();
    std::fflush(stdout);
    std::fflush(stderr);
    std::exit(-1);
}
