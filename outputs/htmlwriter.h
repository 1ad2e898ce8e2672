#pragma once

#include "outputoptions.h"

#include <QIODevice>
#include <QString>

class Dataset;

// Writes the table as an HTML page holding one table into a device that is open and
// positioned. Appending puts the new rows before the file's last "</tbody>".
bool writeHtml(const Dataset &dataset, const OutputOptions &options, QIODevice &device, WriteReport &report);

// "&", "<", ">", '"' and "'" as entities; with lineBreaks, each line break as "<br>".
QString escapeHtml(const QString &text, bool lineBreaks);
void appendEscapedHtml(QString &out, const QString &text, bool lineBreaks);
