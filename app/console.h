#pragma once

#include <QFile>
#include <QString>

#include <memory>

// Report lines of a headless run: the console, and a log file when one is open.
// Information goes to standard output, errors to standard error in red.
class Console
{
public:
    Console();
    ~Console();

    void setCli(bool cli) { m_cli = cli; }
    bool isCli() const { return m_cli; }

    // Opens (appends to, or with overwrite truncates) the log file; false when it can't.
    bool openLogFile(const QString &path, bool overwrite);
    bool hasLogFile() const { return m_logFile != nullptr; }
    QString logFilePath() const;
    void closeLogFile();

    void logInfo(const QString &text);
    void logError(const QString &text);
    // Reports text and "Aborted processing", then ends the process with -1.
    [[noreturn]] void abortProcessing(const QString &text);

    // Sends the toolkit's messages to the console plainly: information to standard
    // output, warnings and worse to standard error.
    static void installMessageHandler();
    // Drops the toolkit's own notes while a headless run starts up (such as the runtime
    // folder that the offscreen platform can't find), so that its report stays clean.
    static void setToolkitMuted(bool muted);

private:
    void writeToLog(const QString &text);

    bool m_cli = false;
    std::unique_ptr<QFile> m_logFile;
};
