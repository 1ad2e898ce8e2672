#pragma once

#include <QString>
#include <QStringList>

// The program's arguments, read once at start. Options are case-blind and may start
// with one or two dashes; the first argument without a dash is the document.
struct CommandLine
{
    bool cli = false;
    QString logPath;
    bool overwriteLog = false;
    int verbosity = 0;
    bool newWindow = false;
    bool version = false;
    bool build = false;
    QStringList aliasAssignments; // each "alias=value", as given to -file
    QString documentPath;
    QString error; // the fatal message when the arguments can't be used, else empty

    static constexpr int MinimumVerbosity = 0;
    static constexpr int MaximumVerbosity = 4;
    static QString documentSuffix() { return QStringLiteral("tflow"); }

    // arguments excludes the program name.
    static CommandLine parse(const QStringList &arguments);
    // True when the arguments ask for a headless run, read before the application exists.
    static bool asksForCli(int argc, char **argv);
    // "-CLI", "--cli" and "-cli" all give "cli"; an argument without a dash gives "".
    static QString optionName(const QString &argument);
};

// Names and descriptions of the verbosity levels 0 to 4; others are "Silent".
QString verbosityName(int verbosity);
QString verbosityDescription(int verbosity);
