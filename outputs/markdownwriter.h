#pragma once

#include "outputoptions.h"

#include <QIODevice>
#include <QString>

class Dataset;

// Writes the table as a Markdown pipe table into a device that is open and positioned.
// Appending to a file that holds text adds the rows alone.
bool writeMarkdown(
    const Dataset &dataset, const OutputOptions &options, QIODevice &device, WriteReport &report);

// A cell's text for a pipe table: "|" escaped and line breaks as "<br>"; with escapeSpecial,
// the characters Markdown would take for formatting escaped too.
QString markdownCell(const QString &text, bool escapeSpecial);
