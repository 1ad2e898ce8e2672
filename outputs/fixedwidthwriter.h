#pragma once

#include "core/dataset.h"
#include "outputs/outputoptions.h"

class QIODevice;

// Writes the table as text in columns of fixed width: each column as wide as its widest
// value (header included when written), cells left-aligned and padded with blanks, one
// blank between columns, trailing blanks removed. Returns false only when the device fails.
bool writeFixedWidth(
    const Dataset &table, const OutputOptions &options, QIODevice &device, WriteReport &report);
