#include "rowsink.h"

#include "core/dataset.h"
#include "core/values.h"

RowSink::RowSink(const InputOptions &options, Dataset &table)
    : m_table(table)
    , m_trim(options.trimWhitespace)
    , m_simplify(options.simplifyWhitespace)
    , m_ignoreEmptyRows(options.ignoreEmptyRows)
{ }

void RowSink::add(QStringList &row, int inputRow)
{
    if (m_trim || m_simplify) {
        for (QString &cell : row) {
            if (m_trim)
                cell = cell.trimmed();
            if (m_simplify)
                simplifyWhitespace(cell);
        }
    }
    if (m_ignoreEmptyRows && Dataset::isBlank(row)) {
        ++m_emptyRows;
        return;
    }
    const int values = row.size();
    if (values != m_lastWidthValues) {
        auto found = m_widths.find(values);
        if (found == m_widths.end())
            found = m_widths.emplace(values, Width {0, inputRow}).first;
        m_lastWidth = &found->second;
        m_lastWidthValues = values;
    }
    ++m_lastWidth->rows;
    if (values > m_table.columnCount())
        m_table.setColumnCount(values);
    m_table.appendRow(row, true);
}

void RowSink::finish(ReadReport &report) const
{
    if (m_widths.size() > 1) {
        QStringList lines;
        lines << tr("Number of values per row vary:");
        for (const auto &[values, width] : m_widths) {
            lines << tr("%1 input %2 %3 %4: E.g. input row %5")
                         .arg(width.rows)
                         .arg(width.rows == 1 ? tr("row has") : tr("rows have"))
                         .arg(values)
                         .arg(values == 1 ? tr("value") : tr("values"))
                         .arg(width.firstInputRow + 1);
        }
        report.warnings << lines.join(QLatin1Char('\n'));
    }
    if (m_emptyRows > 0)
        report.information << tr("%1 empty row(s) ignored").arg(m_emptyRows);
}
