#include "core/dataset.h"

#include "core/values.h"

#include <QCoreApplication>

namespace {

int s_memoryMode = 0;

// Every empty cell of every table points at this one string, so blanks cost nothing.
const QString &sharedEmptyString()
{
    static const QString empty(QLatin1String(""));
    return empty;
}

// Cuts a value for a tool tip: the first maxChars - 1 characters and "…".
QString quotedForTabs(const QString &text)
{
    for (const QChar c : text) {
        if (c == QLatin1Char('\t') || c == QLatin1Char('\n') || c == QLatin1Char('\r')
            || c == QLatin1Char('"')) {
            QString quoted = text;
            quoted.replace(QLatin1Char('"'), QLatin1String("\"\""));
            return QLatin1Char('"') + quoted + QLatin1Char('"');
        }
    }
    return text;
}

// Rewrites the row part of hash keys through newRowOf (old row -> new row); keys whose
// row is -1 (whole-column marks) stay as they are.
template<typename Hash>
Hash remapCellRows(const Hash &hash, const QVector<int> &newRowOf)
{
    Hash remapped;
    for (auto it = hash.cbegin(); it != hash.cend(); ++it) {
        DataCellIndex cell = it.key();
        const int row = cell.row.toInt();
        if (row >= 0 && row < newRowOf.size())
            cell.row = newRowOf.at(row);
        remapped.insert(cell, it.value());
    }
    return remapped;
}

// The same for a multi-valued hash, keeping the order in which each key's values came.
template<typename Value>
QMultiHash<DataCellIndex, Value> remapCellRows(
    const QMultiHash<DataCellIndex, Value> &hash, const QVector<int> &newRowOf)
{
    QMultiHash<DataCellIndex, Value> remapped;
    for (auto it = hash.cbegin(); it != hash.cend();) {
        const DataCellIndex key = it.key();
        const QList<Value> values = hash.values(key); // latest first
        DataCellIndex cell = key;
        const int row = cell.row.toInt();
        if (row >= 0 && row < newRowOf.size())
            cell.row = newRowOf.at(row);
        for (int i = values.size() - 1; i >= 0; --i)
            remapped.insert(cell, values.at(i));
        while (it != hash.cend() && it.key() == key)
            ++it;
    }
    return remapped;
}

template<typename Hash>
Hash remapRows(const Hash &hash, const QVector<int> &newRowOf)
{
    Hash remapped;
    for (auto it = hash.cbegin(); it != hash.cend(); ++it) {
        const int row = it.key().toInt();
        remapped.insert(
            row >= 0 && row < newRowOf.size() ? DataRowIndex(newRowOf.at(row)) : it.key(), it.value());
    }
    return remapped;
}

} // namespace

int Dataset::memoryMode()
{
    return s_memoryMode;
}

void Dataset::setMemoryMode(int mode)
{
    s_memoryMode = mode;
}

QList<DataRowIndex> Dataset::rowIndexes() const
{
    QList<DataRowIndex> indexes;
    indexes.reserve(rowCount());
    for (int r = 0; r < rowCount(); ++r)
        indexes.append(r);
    return indexes;
}

QList<DataColumnIndex> Dataset::columnIndexes() const
{
    QList<DataColumnIndex> indexes;
    indexes.reserve(m_columnCount);
    for (int c = 0; c < m_columnCount; ++c)
        indexes.append(c);
    return indexes;
}

bool Dataset::nextCell(DataRowIndex &row, DataColumnIndex &column) const
{
    if (hasNoRows() || hasNoColumns() || (row == lastRow() && column == lastColumn()))
        return false;
    if (column.toInt() + 1 < m_columnCount) {
        column = column.toInt() + 1;
    } else {
        column = 0;
        row = row.toInt() + 1;
    }
    return true;
}

bool Dataset::previousCell(DataRowIndex &row, DataColumnIndex &column) const
{
    if (hasNoRows() || hasNoColumns() || (row.toInt() == 0 && column.toInt() == 0))
        return false;
    if (column.toInt() > 0) {
        column = column.toInt() - 1;
    } else {
        column = lastColumn();
        row = row.toInt() - 1;
    }
    return true;
}

void Dataset::intern(DataColumnIndex column, QString &value)
{
    const int c = column.toInt();
    if (s_memoryMode == 1 || c < 0)
        return;
    if (m_valuePools.size() <= c)
        m_valuePools.resize(c + 1);
    QSet<QString> &pool = m_valuePools[c];
    if (value.isEmpty()) {
        value = sharedEmptyString();
        return;
    }
    const auto found = pool.constFind(value);
    if (found != pool.constEnd()) {
        value = *found;
        return;
    }
    // Drops spare capacity (and detaches from the caller's buffer) so that the pool holds
    // exactly the text; squeeze() also clears the reserved-capacity mark.
    value.squeeze();
    pool.insert(value);
}

void Dataset::internRow(QStringList &values)
{
    if (s_memoryMode == 1 || values.isEmpty())
        return;
    const int count = values.size();
    if (m_valuePools.size() < count)
        m_valuePools.resize(count);
    // This runs for every cell a reader adds: one detach of the vector, and a new list
    // filled straight from the pools rather than a detached copy of the caller's list
    // whose strings would each be copied and then replaced.
    QSet<QString> *pools = m_valuePools.data();
    const QString &empty = sharedEmptyString();
    QStringList interned;
    interned.reserve(count);
    for (int c = 0; c < count; ++c) {
        const QString &value = values.at(c);
        if (value.isEmpty()) {
            interned.append(empty);
            continue;
        }
        QSet<QString> &pool = pools[c];
        const auto found = pool.constFind(value);
        if (found != pool.constEnd()) {
            interned.append(*found);
        } else {
            QString added = value;
            added.squeeze();
            pool.insert(added);
            interned.append(added);
        }
    }
    values.swap(interned);
}

void Dataset::setCell(DataRowIndex row, DataColumnIndex column, const QString &value)
{
    QString interned = value;
    intern(column, interned);
    m_rows[row.toInt()][column.toInt()] = interned;
}

void Dataset::setRow(DataRowIndex row, const QStringList &values)
{
    QStringList interned = values;
    internRow(interned);
    m_rows[row.toInt()] = interned;
}

QStringList Dataset::rowValues(DataRowIndex row, const QList<DataColumnIndex> &columns) const
{
    const QStringList &cells = m_rows.at(row.toInt());
    QStringList values;
    values.reserve(columns.size());
    for (const DataColumnIndex column : columns)
        values.append(cells.at(column.toInt()));
    return values;
}

QStringList Dataset::columnValues(DataColumnIndex column) const
{
    const int c = column.toInt();
    QStringList values;
    values.reserve(m_rows.size());
    for (const QStringList &cells : m_rows)
        values.append(cells.at(c));
    return values;
}

void Dataset::setColumnValues(DataColumnIndex column, const QStringList &values)
{
    // A short list is fitted with blanks, as rows are.
    for (int r = 0; r < m_rows.size(); ++r)
        setCell(r, column, values.value(r));
}

void Dataset::appendRow(const QStringList &values, bool fit)
{
    if (!fit) {
        if (hasRows() && values.size() != m_columnCount)
            return;
        QStringList row = values;
        internRow(row);
        m_rows.append(row);
        return;
    }
    QStringList row = values;
    if (row.size() > m_columnCount)
        row.erase(row.begin() + m_columnCount, row.end());
    while (row.size() < m_columnCount)
        row.append(sharedEmptyString());
    internRow(row);
    m_rows.append(row);
}

void Dataset::prependRow(const QStringList &values, bool fit)
{
    // Unlike appendRow, the width is checked even on a table without rows.
    if (!fit && values.size() != m_columnCount)
        return;
    QStringList row = values;
    if (row.size() > m_columnCount)
        row.erase(row.begin() + m_columnCount, row.end());
    while (row.size() < m_columnCount)
        row.append(sharedEmptyString());
    internRow(row);
    m_rows.prepend(row);
}

void Dataset::removeRow(DataRowIndex row)
{
    if (row.toInt() >= 0 && row.toInt() < m_rows.size())
        m_rows.removeAt(row.toInt());
}

int Dataset::removeBlankRows()
{
    int removed = 0;
    for (int r = m_rows.size() - 1; r >= 0; --r) {
        if (isBlank(m_rows.at(r))) {
            m_rows.removeAt(r);
            ++removed;
        }
    }
    return removed;
}

bool Dataset::isBlankRow(DataRowIndex row) const
{
    return isBlank(m_rows.at(row.toInt()));
}

bool Dataset::isBlank(const QStringList &values)
{
    for (const QString &value : values) {
        if (!value.isEmpty())
            return false;
    }
    return true;
}

bool Dataset::containsRow(const QStringList &values) const
{
    return m_rows.contains(values);
}

void Dataset::setRowCount(int count)
{
    if (m_columnCount == 0)
        return;
    count = qMax(0, count);
    if (count < m_rows.size()) {
        m_rows.erase(m_rows.begin() + count, m_rows.end());
        return;
    }
    // New blank rows share one list until a cell of theirs is written.
    QStringList blank;
    blank.reserve(m_columnCount);
    for (int c = 0; c < m_columnCount; ++c)
        blank.append(sharedEmptyString());
    m_rows.reserve(count);
    while (m_rows.size() < count)
        m_rows.append(blank);
}

void Dataset::resize(int rows, int columns)
{
    if (columns == 0) {
        clear();
        return;
    }
    // Setting the width first lets an empty table grow rows; otherwise the order
    // makes no difference to the result.
    setColumnCount(columns);
    setRowCount(rows);
}

void Dataset::appendColumn()
{
    ++m_columnCount;
    m_columnIds.append(ColumnId());
    m_columnIndexStale = true;
    for (QStringList &cells : m_rows)
        cells.append(sharedEmptyString());
    if (m_hasHeaders)
        m_headers.append(sharedEmptyString());
}

void Dataset::prependColumn()
{
    ++m_columnCount;
    // The id goes to the end even though the column goes to the front: its one user,
    // the Summary transform, reassigns nothing by position.
    m_columnIds.append(ColumnId());
    m_columnIndexStale = true;
    for (QStringList &cells : m_rows)
        cells.prepend(sharedEmptyString());
    if (m_hasHeaders)
        m_headers.prepend(sharedEmptyString());
}

void Dataset::removeColumn(DataColumnIndex column)
{
    const int c = column.toInt();
    if (c < 0 || c >= m_columnCount)
        return;
    if (m_columnCount == 1) {
        clear();
        return;
    }
    if (c < m_columnIds.size())
        m_columnIds.removeAt(c);
    for (QStringList &cells : m_rows) {
        if (c < cells.size())
            cells.removeAt(c);
    }
    if (c < m_headers.size())
        m_headers.removeAt(c);
    m_columnIndexStale = true;
    --m_columnCount;
    // The value pools stay where they are: a later value in this position is interned
    // in the pool of the removed column, which costs only sharing.
}

void Dataset::setColumnCount(int count)
{
    if (count <= 0) {
        clear();
        return;
    }
    while (m_columnIds.size() < count)
        m_columnIds.append(ColumnId());
    if (m_columnIds.size() > count)
        m_columnIds.erase(m_columnIds.begin() + count, m_columnIds.end());
    m_columnIndexStale = true;

    if (m_hasHeaders) {
        // A new header reads as its 0-based position; headerText counts from 1.
        while (m_headers.size() < count)
            m_headers.append(QString::number(m_headers.size()));
        if (m_headers.size() > count)
            m_headers.erase(m_headers.begin() + count, m_headers.end());
    }

    for (int r = 0; r < m_rows.size(); ++r) {
        if (m_rows.at(r).size() == count)
            continue; // leave rows that fit shared
        QStringList &cells = m_rows[r];
        while (cells.size() < count)
            cells.append(sharedEmptyString());
        if (cells.size() > count)
            cells.erase(cells.begin() + count, cells.end());
    }

    if (s_memoryMode != 1)
        m_valuePools.resize(count);
    m_columnCount = count;
}

QList<DataColumnIndex> Dataset::blankColumns() const
{
    QVector<bool> blank(m_columnCount, true);
    int blankCount = m_columnCount;
    for (const QStringList &cells : m_rows) {
        const int width = qMin(int(cells.size()), m_columnCount);
        for (int c = 0; c < width; ++c) {
            if (blank.at(c) && !cells.at(c).isEmpty()) {
                blank[c] = false;
                --blankCount;
            }
        }
        if (blankCount == 0)
            break;
    }
    QList<DataColumnIndex> columns;
    for (int c = m_columnCount - 1; c >= 0; --c) {
        if (blank.at(c))
            columns.append(c);
    }
    return columns;
}

int Dataset::removeBlankColumns()
{
    const QList<DataColumnIndex> columns = blankColumns();
    for (const DataColumnIndex column : columns)
        removeColumn(column);
    return columns.size();
}

int Dataset::countBlankCells() const
{
    int count = 0;
    for (const QStringList &cells : m_rows) {
        for (const QString &value : cells) {
            if (value.isEmpty())
                ++count;
        }
    }
    return count;
}

int Dataset::countBlankCells(DataColumnIndex column) const
{
    int count = 0;
    for (const QStringList &cells : m_rows) {
        if (cells.at(column.toInt()).isEmpty())
            ++count;
    }
    return count;
}

bool Dataset::columnContains(DataColumnIndex column, const QString &text, Qt::CaseSensitivity cs) const
{
    if (text.isEmpty())
        return true;
    for (const QStringList &cells : m_rows) {
        if (cells.at(column.toInt()).contains(text, cs))
            return true;
    }
    return false;
}

bool Dataset::rowContains(DataRowIndex row, const QString &text, Qt::CaseSensitivity cs) const
{
    if (text.isEmpty())
        return true;
    for (const QString &value : m_rows.at(row.toInt())) {
        if (value.contains(text, cs))
            return true;
    }
    return false;
}

bool Dataset::anyCellContains(const QString &text, Qt::CaseSensitivity cs) const
{
    if (text.isEmpty())
        return true;
    for (int r = 0; r < m_rows.size(); ++r) {
        if (rowContains(r, text, cs))
            return true;
    }
    return false;
}

bool Dataset::headerContains(const QString &text, Qt::CaseSensitivity cs) const
{
    if (text.isEmpty())
        return true;
    for (const QString &header : m_headers) {
        if (header.contains(text, cs))
            return true;
    }
    return false;
}

bool Dataset::columnHasDuplicate(DataColumnIndex column, int maxRows) const
{
    const int count = maxRows < 0 ? m_rows.size() : qMin(maxRows, int(m_rows.size()));
    QSet<QString> seen;
    seen.reserve(count);
    for (int r = 0; r < count; ++r) {
        const QString &value = m_rows.at(r).at(column.toInt());
        if (seen.contains(value))
            return true;
        seen.insert(value);
    }
    return false;
}

bool Dataset::columnsEqual(
    const Dataset *a, DataColumnIndex columnA, const Dataset *b, DataColumnIndex columnB)
{
    if (!a || !b || a->rowCount() != b->rowCount())
        return false;
    const int ca = columnA.toInt();
    const int cb = columnB.toInt();
    if (ca < 0 || ca >= a->columnCount() || cb < 0 || cb >= b->columnCount())
        return false;
    for (int r = 0; r < a->rowCount(); ++r) {
        if (a->m_rows.at(r).at(ca) != b->m_rows.at(r).at(cb))
            return false;
    }
    return true;
}

bool Dataset::rowsEqual(const Dataset *a, DataRowIndex rowA, const Dataset *b, DataRowIndex rowB)
{
    if (!a || !b || a->columnCount() != b->columnCount())
        return false;
    const int ra = rowA.toInt();
    const int rb = rowB.toInt();
    if (ra < 0 || ra >= a->rowCount() || rb < 0 || rb >= b->rowCount())
        return false;
    return a->m_rows.at(ra) == b->m_rows.at(rb);
}

void Dataset::setHasHeaders(bool flag)
{
    if (flag == m_hasHeaders)
        return;
    m_hasHeaders = flag;
    if (flag) {
        // The first row becomes the headers as it is, blanks included.
        if (!m_rows.isEmpty())
            m_headers = m_rows.takeFirst();
    } else if (!m_headers.isEmpty()) {
        m_rows.prepend(m_headers);
        m_headers.clear();
    }
}

void Dataset::setHeaders(const QStringList &headers)
{
    QStringList interned = headers;
    internRow(interned);
    m_headers = interned;
    m_hasHeaders = !headers.isEmpty();
}

void Dataset::setHeader(DataColumnIndex column, const QString &text)
{
    const int c = column.toInt();
    if (m_headers.isEmpty()) {
        QStringList headers = displayHeaders();
        if (c >= 0 && c < headers.size())
            headers[c] = text;
        internRow(headers);
        m_headers = headers;
    } else if (c >= 0 && c < m_headers.size()) {
        QString interned = text;
        intern(column, interned);
        m_headers[c] = interned;
    }
    m_hasHeaders = true;
}

QString Dataset::headerText(DataColumnIndex column) const
{
    const int c = column.toInt();
    if (m_hasHeaders && c >= 0 && c < m_headers.size() && !m_headers.at(c).isEmpty())
        return m_headers.at(c);
    return QString::number(c + 1);
}

QStringList Dataset::displayHeaders() const
{
    QStringList headers;
    headers.reserve(m_columnCount);
    for (int c = 0; c < m_columnCount; ++c)
        headers.append(headerText(c));
    return headers;
}

void Dataset::setColumnIds(const QList<ColumnId> &ids)
{
    m_columnIds = ids;
    m_columnIndexStale = true;
}

ColumnId Dataset::columnId(DataColumnIndex column) const
{
    const int c = column.toInt();
    if (c < 0 || c >= m_columnIds.size())
        return ColumnId();
    return m_columnIds.at(c);
}

void Dataset::setColumnId(DataColumnIndex column, ColumnId id)
{
    const int c = column.toInt();
    if (c >= 0 && c < m_columnIds.size())
        m_columnIds[c] = id;
    m_columnIndexStale = true;
}

DataColumnIndex Dataset::columnIndex(ColumnId id) const
{
    if (id.isUnset())
        return DataColumnIndex();
    if (m_columnIndexStale) {
        // A later equal id overwrites an earlier one.
        m_columnIndexById.clear();
        for (int c = 0; c < m_columnIds.size(); ++c)
            m_columnIndexById.insert(m_columnIds.at(c), c);
        m_columnIndexStale = false;
    }
    return m_columnIndexById.value(id, DataColumnIndex());
}

QList<DataColumnIndex> Dataset::columnIndexes(const QList<ColumnId> &ids) const
{
    QList<DataColumnIndex> indexes;
    for (const ColumnId id : ids) {
        const DataColumnIndex index = columnIndex(id);
        if (index.isValid())
            indexes.append(index);
    }
    return indexes;
}

void Dataset::clearDuplicateColumnIds()
{
    // A copied column keeps its source's id; only the first keeps it, the copy counts as new.
    QSet<ColumnId> seen;
    QList<ColumnId> ids = m_columnIds;
    bool changed = false;
    for (ColumnId &id : ids) {
        if (seen.contains(id)) {
            changed = changed || !id.isUnset();
            id = ColumnId();
        } else {
            seen.insert(id);
        }
    }
    if (changed) {
        m_columnIds = ids;
        m_columnIndexStale = true;
    }
}

void Dataset::assignColumnIds(int nodeId)
{
    int sequence = 1;
    bool changed = false;
    for (int c = 0; c < m_columnIds.size(); ++c) {
        if (m_columnIds.at(c).isUnset()) {
            m_columnIds[c] = ColumnId(nodeId, sequence++);
            changed = true;
        }
    }
    if (changed)
        m_columnIndexStale = true;
}

void Dataset::raiseVerifyFail(DataCellIndex cell, OnVerifyFail severity)
{
    auto it = m_verifyFails.find(cell);
    if (it == m_verifyFails.end())
        m_verifyFails.insert(cell, severity);
    else if (severity > it.value())
        it.value() = severity;
}

void Dataset::addColumnRuleFail(
    DataRowIndex row, DataColumnIndex column, VerifyColumnRuleId rule, OnVerifyFail severity)
{
    raiseVerifyFail({row, column}, severity);
    raiseVerifyFail({row, DataColumnIndex()}, severity);
    raiseVerifyFail({DataRowIndex(), column}, severity);
    ++m_rowColumnRuleCounts[row][rule];
    ++m_columnColumnRuleCounts[column][rule];
    m_cellColumnRules.insert({row, column}, rule);
}

void Dataset::addCellFail(DataRowIndex row, DataColumnIndex column, OnVerifyFail severity)
{
    raiseVerifyFail({row, column}, severity);
}

void Dataset::addRowDatasetRuleFail(DataRowIndex row, VerifyDatasetRuleId rule, OnVerifyFail severity)
{
    raiseVerifyFail({row, DataColumnIndex()}, severity);
    ++m_rowDatasetRuleCounts[row][rule];
}

void Dataset::addColumnDatasetRuleFail(
    DataColumnIndex column, VerifyDatasetRuleId rule, OnVerifyFail severity)
{
    raiseVerifyFail({DataRowIndex(), column}, severity);
    ++m_columnDatasetRuleCounts[column][rule];
}

void Dataset::addColumnColumnRuleFail(DataColumnIndex column, VerifyColumnRuleId rule, OnVerifyFail severity)
{
    raiseVerifyFail({DataRowIndex(), column}, severity);
    ++m_columnColumnRuleCounts[column][rule];
}

OnVerifyFail Dataset::verifyFail(DataRowIndex row, DataColumnIndex column) const
{
    return m_verifyFails.value({row, column}, VerifyFailNone);
}

QList<VerifyColumnRuleId> Dataset::cellColumnRules(DataRowIndex row, DataColumnIndex column) const
{
    // values() gives the latest first; report in the order the rules failed.
    QList<VerifyColumnRuleId> rules = m_cellColumnRules.values({row, column});
    std::reverse(rules.begin(), rules.end());
    return rules;
}

void Dataset::clearVerifyMarks()
{
    // columnDatasetRuleCounts is left as it is: a table is rebuilt before it is read again.
    m_verifyFails.clear();
    m_rowDatasetRuleCounts.clear();
    m_rowColumnRuleCounts.clear();
    m_columnColumnRuleCounts.clear();
    m_cellColumnRules.clear();
}

void Dataset::addCellRowLink(DataRowIndex row, DataColumnIndex column, DataRowIndex otherRow)
{
    m_cellRowLinks.insert({row, column}, otherRow);
}

void Dataset::addCellRowLinks(DataRowIndex row, DataColumnIndex column, const QList<DataRowIndex> &rows)
{
    for (const DataRowIndex otherRow : rows)
        m_cellRowLinks.insert({row, column}, otherRow);
}

QList<DataRowIndex> Dataset::cellRowLinks(DataRowIndex row, DataColumnIndex column) const
{
    QList<DataRowIndex> rows = m_cellRowLinks.values({row, column});
    std::reverse(rows.begin(), rows.end());
    return rows;
}

bool Dataset::operator==(const Dataset &other) const
{
    // QList compares shared rows by pointer first, so a copy compares at once.
    return m_columnCount == other.m_columnCount && m_rows.size() == other.m_rows.size()
        && m_rows == other.m_rows && displayHeaders() == other.displayHeaders();
}

void Dataset::clear()
{
    m_columnCount = 0;
    m_rows.clear();
    m_hasHeaders = false;
    m_headers.clear();
    m_columnIds.clear();
    m_columnIndexById.clear();
    m_columnIndexStale = false;
    releaseValuePools();
    m_cellRowLinks.clear();
    // Through clearVerifyMarks, so columnDatasetRuleCounts outlives a clear() as well.
    clearVerifyMarks();
}

void Dataset::releaseValuePools()
{
    // Assigning an empty vector frees the storage; clear() would keep its capacity.
    m_valuePools = QVector<QSet<QString>>();
}

QString Dataset::columnVariable(const QString &name)
{
    return QStringLiteral("$(%1)").arg(name.trimmed());
}

QString Dataset::columnVariable(DataColumnIndex column) const
{
    const QString name = headerText(column).trimmed();
    return columnVariable(name.isEmpty() ? QString::number(column.toInt() + 1) : name);
}

QHash<QString, DataColumnIndex> Dataset::variableMap() const
{
    QHash<QString, DataColumnIndex> map;
    for (int c = 0; c < m_columnCount; ++c) {
        const QString name = headerText(c).trimmed();
        if (!name.isEmpty() && !map.contains(name))
            map.insert(name, c);
    }
    for (int c = 0; c < m_columnCount; ++c) {
        const QString number = QString::number(c + 1);
        if (!map.contains(number))
            map.insert(number, c);
    }
    return map;
}

QString Dataset::substituteVariables(DataRowIndex row, const QString &text) const
{
    const int r = row.toInt();
    if (r < 0 || r >= m_rows.size() || !text.contains(QLatin1String("$(")))
        return text;
    const QHash<QString, DataColumnIndex> map = variableMap();
    const QStringList &cells = m_rows.at(r);
    QString result;
    int from = 0;
    for (;;) {
        const int start = text.indexOf(QLatin1String("$("), from);
        if (start < 0)
            break;
        result += text.midRef(from, start - from);
        // A header may itself hold ")": try each closing bracket until a name is known.
        int end = text.indexOf(QLatin1Char(')'), start + 2);
        DataColumnIndex column;
        while (end >= 0) {
            const QString name = text.mid(start + 2, end - start - 2);
            column = map.value(name, map.value(name.trimmed()));
            if (column.isValid())
                break;
            end = text.indexOf(QLatin1Char(')'), end + 1);
        }
        if (column.isValid() && column.toInt() < cells.size()) {
            result += cells.at(column.toInt());
            from = end + 1;
        } else {
            result += QLatin1String("$(");
            from = start + 2;
        }
    }
    result += text.midRef(from);
    return result;
}

QStringList Dataset::columnSummaries(int maxValues, int maxChars) const
{
    const QString ellipsis(QChar(0x2026));
    const int shown = qBound(0, maxValues, int(m_rows.size()));
    QStringList summaries;
    summaries.reserve(m_columnCount);
    for (int c = 0; c < m_columnCount; ++c) {
        QStringList values;
        for (int r = 0; r < shown; ++r)
            values.append(elideText(m_rows.at(r).at(c), maxChars, true));
        if (m_rows.size() > shown)
            values.append(ellipsis);
        if (values.isEmpty())
            values.append(QCoreApplication::translate("Dataset", "No values"));
        summaries.append(QStringLiteral("( %1 )").arg(values.join(QLatin1String(", "))));
    }
    return summaries;
}

void Dataset::sortRows(DataColumnIndex column, Qt::SortOrder order, Qt::CaseSensitivity cs)
{
    if (order == Qt::AscendingOrder)
        sortRows(column, [cs](const QString &a, const QString &b) { return a.compare(b, cs) < 0; });
    else
        sortRows(column, [cs](const QString &a, const QString &b) { return a.compare(b, cs) > 0; });
}

void Dataset::applyRowOrder(const QVector<int> &order)
{
    QList<QStringList> rows;
    rows.reserve(order.size());
    QVector<int> newRowOf(order.size());
    for (int i = 0; i < order.size(); ++i) {
        rows.append(m_rows.at(order.at(i)));
        newRowOf[order.at(i)] = i;
    }
    m_rows = rows;
    // Marks and links name rows by position, so they move with their rows.
    if (!m_cellRowLinks.isEmpty())
        m_cellRowLinks = remapCellRows(m_cellRowLinks, newRowOf);
    if (!m_verifyFails.isEmpty())
        m_verifyFails = remapCellRows(m_verifyFails, newRowOf);
    if (!m_cellColumnRules.isEmpty())
        m_cellColumnRules = remapCellRows(m_cellColumnRules, newRowOf);
    if (!m_rowDatasetRuleCounts.isEmpty())
        m_rowDatasetRuleCounts = remapRows(m_rowDatasetRuleCounts, newRowOf);
    if (!m_rowColumnRuleCounts.isEmpty())
        m_rowColumnRuleCounts = remapRows(m_rowColumnRuleCounts, newRowOf);
}

QString Dataset::toTabSeparatedText(bool withHeaders) const
{
    QString text;
    auto appendLine = [&text](const QStringList &cells) {
        for (int c = 0; c < cells.size(); ++c) {
            if (c > 0)
                text += QLatin1Char('\t');
            text += quotedForTabs(cells.at(c));
        }
        text += QLatin1Char('\n');
    };
    if (withHeaders)
        appendLine(displayHeaders());
    for (const QStringList &cells : m_rows)
        appendLine(cells);
    return text;
}

QString Dataset::toHtml(bool withHeaders) const
{
    QString html = QStringLiteral("<table>\n");
    auto appendLine = [&html](const QStringList &cells, QLatin1String tag) {
        html += QLatin1String("<tr>");
        for (const QString &value : cells)
            html += QLatin1Char('<') + tag + QLatin1Char('>') + value.toHtmlEscaped() + QLatin1String("</")
                + tag + QLatin1Char('>');
        html += QLatin1String("</tr>\n");
    };
    if (withHeaders)
        appendLine(displayHeaders(), QLatin1String("th"));
    for (const QStringList &cells : m_rows)
        appendLine(cells, QLatin1String("td"));
    html += QLatin1String("</table>\n");
    return html;
}
