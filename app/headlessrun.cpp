#include "app/headlessrun.h"

#include "app/buildinfo.h"
#include "app/console.h"
#include "flow/filenamevariables.h"

#include <QCoreApplication>
#include <QFile>
#include <QFileInfo>

namespace {

QString tr(const char *text)
{
    return QCoreApplication::translate("HeadlessRun", text);
}

} // namespace

HeadlessRun::HeadlessRun(const CommandLine &line, Console &console)
    : m_line(line)
    , m_console(console)
{ }

int HeadlessRun::exec()
{
    m_console.setCli(true);
    openLogFile();
    printHeader();
    if (m_line.documentPath.isEmpty())
        m_console.abortProcessing(tr("No .%1 file specified.").arg(CommandLine::documentSuffix()));
    const QString reason = openDocument(m_line.documentPath);
    if (!reason.isEmpty())
        m_console.abortProcessing(tr("Unable to open '%1': %2").arg(m_line.documentPath, reason));
    m_console.closeLogFile();
    return 0;
}

void HeadlessRun::openLogFile()
{
    if (m_line.logPath.isEmpty())
        return;
    FileNameContext context;
    context.documentPath = m_line.documentPath;
    context.versionMajor = BuildInfo::versionMajor();
    context.versionMinor = BuildInfo::versionMinor();
    context.versionPatch = BuildInfo::versionPatch();
    const QString path = expandFileNameVariables(m_line.logPath, context);
    if (!m_console.openLogFile(path, m_line.overwriteLog))
        m_console.logError(tr("Could not open log file at '%1'").arg(path));
}

void HeadlessRun::printHeader()
{
    if (m_line.verbosity > 0 || m_line.version || m_line.build || m_line.documentPath.isEmpty())
        m_console.logInfo(QString());
    if (m_line.version)
        m_console.logInfo(tr("Version: %1 %2").arg(BuildInfo::productName(), BuildInfo::version()));
    if (m_line.build)
        m_console.logInfo(tr("Build: %1").arg(BuildInfo::buildDateTime()));
}

QString HeadlessRun::openDocument(const QString &path)
{
    const QFileInfo info(path);
    if (info.isDir())
        return tr("it is a folder, not a flow document");
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return file.errorString();
    // Flow documents are read by the document reader, which this build doesn't have yet.
    return tr("this version of %1 can't read flow documents yet").arg(BuildInfo::productName());
}
