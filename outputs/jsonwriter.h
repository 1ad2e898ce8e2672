#pragma once

#include "outputoptions.h"

#include <QIODevice>

class Dataset;

// Writes the table as a JSON array of objects, one per row, named by the headers, into a
// device that is open and positioned. Appending puts the new objects before the file's
// final "]".
bool writeJson(const Dataset &dataset, const OutputOptions &options, QIODevice &device, WriteReport &report);
