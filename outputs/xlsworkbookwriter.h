#pragma once

#include "core/dataset.h"
#include "outputoptions.h"

#include <QString>

// Writes the dataset as the Excel 97-2003 workbook at path: BIFF8 records of one sheet,
// options.sheet, in the "Workbook" stream of a compound file. Cell types follow
// "Formatting" as for .xlsx; options.writeHeader is the header decision already taken.
// Rows past 65,536 and columns past 256 are not written.
//
// An existing file can only be written when it holds no sheet but the target one:
// "Overwrite" replaces it, and "Append" writes its rows again (as the texts they showed)
// followed by the new ones. With other sheets the write fails, leaving the file alone.
//
// The file is written beside the old one and takes its place only when complete, so a
// failed write leaves it as it was; a failure returns false with one warning first.
bool writeXlsWorkbook(
    const QString &path, const Dataset &dataset, const OutputOptions &options, WriteReport &report);
