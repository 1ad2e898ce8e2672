#pragma once

#include "core/dataset.h"
#include "outputoptions.h"

#include <QString>

// Writes the dataset as the sheet options.sheet of the .xlsx workbook at path, with cell
// types chosen by "Formatting" (options.excelFormatting). options.writeHeader is the
// header decision the output pipeline has already taken.
//
// A missing file, or "Overwrite" without "Replace only this sheet", gives a new workbook
// of one sheet. An existing file under "Overwrite" with "Replace only this sheet" has that
// sheet replaced (or added at the end), and under "Append" the new rows follow the sheet's
// last row. Both rewrite the whole workbook from the cell texts of its sheets, so the
// other sheets keep their values but not their formatting, formulas or objects.
//
// The file is written beside the old one and takes its place only when complete, so a
// failed write leaves it as it was; a failure returns false with one warning first.
bool writeXlsxWorkbook(
    const QString &path, const Dataset &dataset, const OutputOptions &options, WriteReport &report);
