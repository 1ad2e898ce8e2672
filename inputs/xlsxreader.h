#pragma once

#include "core/dataset.h"
#include "inputs/excelsheet.h"
#include "inputs/inputoptions.h"

// Reads one sheet of an Excel .xlsx workbook into a table, each cell as the text Excel
// shows for it. On failure the table is cleared and the first warning says what was wrong.
bool readXlsx(const QString &path, const InputOptions &options, Dataset &table, ExcelReadCounts &counts,
    ReadReport &report);
// The same in the shape the input registers: the counts become the first information lines.
bool readXlsxInput(const QString &path, const InputOptions &options, Dataset &table, ReadReport &report);
// The sheets in workbook order, for the item pane; empty with the error text on failure.
QList<ExcelSheetEntry> xlsxSheetNames(const QString &path, QString *error);

// Guards against archives that unpack to far more than a workbook holds.
namespace xlsxlimits {
constexpr qint64 MaxTotalBytes = qint64(4) << 30; // all entries read, unpacked
constexpr qint64 RatioCheckedFrom = qint64(16) << 20; // entries smaller than this may pack well
constexpr qint64 MaxRatio = 500;
} // namespace xlsxlimits
