#pragma once

#include "core/dataset.h"
#include "outputs/outputoptions.h"

class QIODevice;

// Writes each row as one line, its cells joined by tabs when there is more than one
// column. Returns false only when the device fails.
bool writePlainText(
    const Dataset &table, const OutputOptions &options, QIODevice &device, WriteReport &report);
