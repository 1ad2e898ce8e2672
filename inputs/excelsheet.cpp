#include "excelsheet.h"

#include "core/values.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>

namespace {

QString tr(const char *text)
{
    return QCoreApplication::translate("ExcelSheet", text);
}

} // namespace

void ExcelSheetBuilder::setCell(int row, int column, const QString &text)
{
    if (text.isEmpty() || row < 0 || column < 0 || row >= MaxRows || column >= MaxColumns)
        return;
    if (m_rows.size() <= size_t(row))
        m_rows.resize(size_t(row) + 1);
    QStringList &cells = m_rows[size_t(row)];
    while (cells.size() <= column)
        cells.append(QString());
    cells[column] = text;
}

void ExcelSheetBuilder::setRowHidden(int row)
{
    if (row < 0 || row >= MaxRows)
        return;
    if (m_hiddenRows.size() <= size_t(row))
        m_hiddenRows.resize(size_t(row) + 1, false);
    m_hiddenRows[size_t(row)] = true;
}

void ExcelSheetBuilder::setColumnsHidden(int first, int last)
{
    first = qMax(first, 0);
    last = qMin(last, MaxColumns - 1);
    if (first <= last)
        m_hiddenColumns.append(qMakePair(first, last));
}

bool ExcelSheetBuilder::isColumnHidden(int column) const
{
    for (const auto &range : m_hiddenColumns)
        if (column >= range.first && column <= range.second)
            return true;
    return false;
}

void ExcelSheetBuilder::finish(
    const InputOptions &options, Dataset &table, ExcelReadCounts &counts, ReadReport &report)
{
    table.clear();
    counts = ExcelReadCounts();
    // Cells were only stored with text, but a row may end in empty cells set by a later value.
    int width = 0;
    int height = 0;
    for (size_t r = 0; r < m_rows.size(); ++r) {
        const QStringList &cells = m_rows[r];
        int last = cells.size() - 1;
        while (last >= 0 && cells.at(last).isEmpty())
            --last;
        if (last >= 0) {
            width = qMax(width, last + 1);
            height = int(r) + 1;
        }
    }
    QList<int> columns;
    for (int c = 0; c < width; ++c) {
        if (options.ignoreHiddenExcelColumns && isColumnHidden(c))
            ++counts.hiddenColumns;
        else
            columns.append(c);
    }
    const bool trim = options.trimWhitespace || options.simplifyWhitespace;
    table.setColumnCount(columns.size());
    for (int r = qMax(options.ignoreFirstRows, 0); r < height; ++r) {
        if (options.ignoreHiddenExcelRows && size_t(r) < m_hiddenRows.size() && m_hiddenRows[size_t(r)]) {
            ++counts.hiddenRows;
            continue;
        }
        const QStringList &cells = m_rows[size_t(r)];
        QStringList values;
        values.reserve(columns.size());
        bool blank = true;
        for (const int c : qAsConst(columns)) {
            QString value = c < cells.size() ? cells.at(c) : QString();
            if (trim)
                value = value.trimmed();
            if (options.simplifyWhitespace)
                simplifyWhitespace(value);
            blank = blank && value.isEmpty();
            values.append(value);
        }
        if (blank && options.ignoreEmptyRows) {
            ++counts.emptyRows;
            continue;
        }
        table.appendRow(values, true);
        // The collected row is no longer needed; freeing it keeps the peak near one copy.
        m_rows[size_t(r)] = QStringList();
    }
    if (m_mergedRanges > 0)
        report.information << tr("%1 merged cell range(s): each value is in the first cell of its range "
                                 "(use 'Fill' to copy it down)")
                                  .arg(m_mergedRanges);
    if (m_formulasWithoutResult > 0)
        report.warnings << tr("%1 formula cell(s) have no saved result and were read as empty; open and "
                              "save the file in Excel to store their results")
                               .arg(m_formulasWithoutResult);
}

namespace excel {

QString displayPath(const QString &path)
{
    return QDir::toNativeSeparators(QFileInfo(path).absoluteFilePath());
}

QString damaged(const QString &path, const QString &detail)
{
    return tr("'%1' is damaged: %2").arg(displayPath(path), detail);
}

int chooseSheet(const QList<ExcelSheetEntry> &sheets, const QString &wanted, const QString &path,
    ReadReport &report, QString *error)
{
    if (sheets.isEmpty()) {
        *error = damaged(path, tr("the workbook has no sheets"));
        return -1;
    }
    if (wanted.isEmpty()) {
        int chosen = 0;
        for (int i = 0; i < sheets.size(); ++i) {
            if (!sheets.at(i).hidden) {
                chosen = i;
                break;
            }
        }
        report.information
            << tr("Sheet=Automatic chooses '%1', set 'Sheet' option to change").arg(sheets.at(chosen).name);
        return chosen;
    }
    for (int i = 0; i < sheets.size(); ++i)
        if (sheets.at(i).name == wanted)
            return i;
    for (int i = 0; i < sheets.size(); ++i)
        if (sheets.at(i).name.compare(wanted, Qt::CaseInsensitive) == 0)
            return i;
    QStringList names;
    for (const ExcelSheetEntry &sheet : sheets)
        names << QLatin1Char('\'') + sheet.name + QLatin1Char('\'');
    *error = tr("Sheet '%1' not found in '%2'. Its sheets are: %3")
                 .arg(wanted, displayPath(path), names.join(QStringLiteral(", ")));
    return -1;
}

QStringList countLines(const ExcelReadCounts &counts)
{
    QStringList lines;
    if (counts.hiddenRows > 0)
        lines << tr("%1 hidden row(s) ignored").arg(counts.hiddenRows);
    if (counts.hiddenColumns > 0)
        lines << tr("%1 hidden column(s) ignored").arg(counts.hiddenColumns);
    if (counts.emptyRows > 0)
        lines << tr("%1 empty row(s) ignored").arg(counts.emptyRows);
    return lines;
}

bool fail(Dataset &table, ReadReport &report, const QString &error)
{
    table.clear();
    report.warnings.prepend(error);
    return false;
}

} // namespace excel
