#pragma once

#include "core/dataset.h"
#include "outputs/outputoptions.h"

class QIODevice;

// Writes the table as delimited text (CSV, TSV, ...) to an open device: the header row when
// options.writeHeader says so, then every row, each ending with the line ending. Returns
// false only when the device fails; the pipeline then names the file.
bool writeDelimited(
    const Dataset &table, const OutputOptions &options, QIODevice &device, WriteReport &report);

// The character that separates cells. "Automatic" is a tab for ".tsv" and ".tab" files and a
// comma otherwise, told in report's information; an empty "Custom" is a comma with a
// warning. report may be null.
QChar delimitedOutputDelimiter(const OutputOptions &options, WriteReport *report);
