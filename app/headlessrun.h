#pragma once

#include "app/commandline.h"

class Console;

// A run without a window: reads one flow document, runs it, reports, and ends the process.
class HeadlessRun
{
public:
    HeadlessRun(const CommandLine &line, Console &console);

    // The process return value: 0, or 1 when an item is not up to date. Aborts with -1.
    int exec();

private:
    void openLogFile();
    void printHeader();
    // Empty when the document was read, else why it couldn't be.
    QString openDocument(const QString &path);

    CommandLine m_line;
    Console &m_console;
};
