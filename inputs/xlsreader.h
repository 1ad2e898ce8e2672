#pragma once

#include "core/dataset.h"
#include "inputs/excelsheet.h"
#include "inputs/inputoptions.h"

// Reads one sheet of an Excel 97-2003 .xls workbook (BIFF8 records in a compound file)
// into a table, each cell as the text Excel shows for it. On failure the table is cleared
// and the first warning says what was wrong.
bool readXls(const QString &path, const InputOptions &options, Dataset &table, ExcelReadCounts &counts,
    ReadReport &report);
// The same in the shape the input registers: the counts become the first information lines.
bool readXlsInput(const QString &path, const InputOptions &options, Dataset &table, ReadReport &report);
// The sheets in workbook order, for the item pane; empty with the error text on failure.
QList<ExcelSheetEntry> xlsSheetNames(const QString &path, QString *error);

namespace xls {
// The names of the streams at the top of a compound file; empty when it isn't one.
QStringList oleStreamNames(const QString &path);
} // namespace xls
