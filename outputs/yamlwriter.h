#pragma once

#include "outputoptions.h"

#include <QIODevice>
#include <QString>

class Dataset;

// Writes the table as YAML into a device that is open and positioned: a block sequence with
// one mapping per row, keys named by the headers. Text is written so that YAML 1.1 and 1.2
// readers read back the same strings. Appending to a file that holds only "[]" replaces it.
bool writeYaml(const Dataset &dataset, const OutputOptions &options, QIODevice &device, WriteReport &report);

// True when a YAML reader would take the text, written plain, for something other than a
// string: null, a boolean, a number, a timestamp or a merge key.
bool yamlLooksTyped(const QString &text);
