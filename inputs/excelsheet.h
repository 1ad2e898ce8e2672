#pragma once

#include "core/dataset.h"
#include "inputs/inputoptions.h"

#include <QList>
#include <QPair>
#include <QString>

#include <vector>

// What an Excel read leaves out, reported by the input after "Read file".
struct ExcelReadCounts
{
    int hiddenRows = 0;
    int hiddenColumns = 0;
    int emptyRows = 0;
};

// A sheet as the workbook lists it.
struct ExcelSheetEntry
{
    QString name;
    bool hidden = false; // hidden or very hidden
};

// Collects the cells of one sheet as the .xlsx and .xls readers find them, then makes the
// table: from column A to the rightmost value and from row 1 to the last row with a value,
// leaving out the first rows, hidden rows and columns and empty rows as the options say.
class ExcelSheetBuilder
{
public:
    static constexpr int MaxRows = 1048576;
    static constexpr int MaxColumns = 16384;

    // 0-based; an empty text doesn't count towards the table's size.
    void setCell(int row, int column, const QString &text);
    void setRowHidden(int row);
    void setColumnsHidden(int first, int last);
    void addMergedRange() { ++m_mergedRanges; }
    void addFormulaWithoutResult() { ++m_formulasWithoutResult; }

    // Fills the table and the counts; the messages about merged ranges and formulas go to
    // the report.
    void finish(const InputOptions &options, Dataset &table, ExcelReadCounts &counts, ReadReport &report);

private:
    bool isColumnHidden(int column) const;

    std::vector<QStringList> m_rows;
    std::vector<bool> m_hiddenRows;
    QList<QPair<int, int>> m_hiddenColumns;
    int m_mergedRanges = 0;
    int m_formulasWithoutResult = 0;
};

namespace excel {

// The file as messages name it: the absolute path in native separators.
QString displayPath(const QString &path);
// "'%1' is damaged: %2"
QString damaged(const QString &path, const QString &detail);
// The index of the sheet to read: the named one (exactly, then ignoring case), or with an
// empty name the first visible one, which the report's information names. -1 with the
// error text when there is no such sheet.
int chooseSheet(const QList<ExcelSheetEntry> &sheets, const QString &wanted, const QString &path,
    ReadReport &report, QString *error);
// The information lines for the counts above 0, in the order the input reports them.
QStringList countLines(const ExcelReadCounts &counts);
// A failed read: the table cleared and the error as the first warning.
bool fail(Dataset &table, ReadReport &report, const QString &error);

} // namespace excel
