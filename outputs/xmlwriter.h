#pragma once

#include "outputoptions.h"

#include <QIODevice>
#include <QString>

class Dataset;

// Writes the table as XML into a device that is open and positioned: a root element
// holding one row element per row, one child element per column, and columns whose names
// start with "@" as attributes of the row. Appending puts the new rows before the root's
// end tag.
bool writeXml(const Dataset &dataset, const OutputOptions &options, QIODevice &device, WriteReport &report);

// The text as an XML name: characters names can't hold become "_", and "_" goes in front
// of a name that starts with a digit, "-", "." or "xml" in any case. An empty text gives
// an empty name.
QString xmlName(const QString &text);
