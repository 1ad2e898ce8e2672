#pragma once

#include "app/commandline.h"

class Console;
class GraphScene;

// A run without a window: reads one flow document, runs it, reports, and ends the process.
class HeadlessRun
{
public:
    HeadlessRun(const CommandLine &line, Console &console);

    // The process return value: 0, or 1 when an item is not up to date; always 0 at
    // verbosity 0. Aborts with -1.
    int exec();

private:
    void openLogFile();
    void printHeader();
    // Gives every "-file alias=value" assignment to the items with that alias.
    void applyAliasAssignments(GraphScene &scene);
    // The report after the run; returns the number of errors.
    int report(GraphScene &scene, qint64 elapsedNanoseconds);

    CommandLine m_line;
    Console &m_console;
};
