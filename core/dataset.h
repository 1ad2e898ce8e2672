#pragma once

#include <algorithm>
#include <vector>

#include <QHash>
#include <QList>
#include <QMultiHash>
#include <QPair>
#include <QSet>
#include <QString>
#include <QStringList>
#include <QVector>

// 0-based row of a Dataset; the default value -1 means "none".
class DataRowIndex
{
public:
    constexpr DataRowIndex() = default;
    constexpr DataRowIndex(int index)
        : m_index(index)
    { }
    constexpr int toInt() const { return m_index; }
    constexpr bool isValid() const { return m_index >= 0; }
    friend constexpr bool operator==(DataRowIndex a, DataRowIndex b) { return a.m_index == b.m_index; }
    friend constexpr bool operator!=(DataRowIndex a, DataRowIndex b) { return a.m_index != b.m_index; }
    friend constexpr bool operator<(DataRowIndex a, DataRowIndex b) { return a.m_index < b.m_index; }

private:
    int m_index = -1;
};

class ParameterColumnIndex;

// 0-based column of a Dataset; the default value -1 means "none".
class DataColumnIndex
{
public:
    constexpr DataColumnIndex() = default;
    constexpr DataColumnIndex(int index)
        : m_index(index)
    { }
    constexpr int toInt() const { return m_index; }
    constexpr bool isValid() const { return m_index >= 0; }
    inline ParameterColumnIndex toParameterColumnIndex() const;
    friend constexpr bool operator==(DataColumnIndex a, DataColumnIndex b) { return a.m_index == b.m_index; }
    friend constexpr bool operator!=(DataColumnIndex a, DataColumnIndex b) { return a.m_index != b.m_index; }
    friend constexpr bool operator<(DataColumnIndex a, DataColumnIndex b) { return a.m_index < b.m_index; }

private:
    int m_index = -1;
};

// 1-based column as stored in option text; 0 means "none".
class ParameterColumnIndex
{
public:
    constexpr ParameterColumnIndex() = default;
    constexpr ParameterColumnIndex(int index)
        : m_index(index)
    { }
    constexpr int toInt() const { return m_index; }
    constexpr DataColumnIndex toDataColumnIndex() const { return DataColumnIndex(m_index - 1); }
    friend constexpr bool operator==(ParameterColumnIndex a, ParameterColumnIndex b)
    {
        return a.m_index == b.m_index;
    }
    friend constexpr bool operator!=(ParameterColumnIndex a, ParameterColumnIndex b)
    {
        return a.m_index != b.m_index;
    }

private:
    int m_index = 0;
};

inline ParameterColumnIndex DataColumnIndex::toParameterColumnIndex() const
{
    return ParameterColumnIndex(m_index + 1);
}

inline uint qHash(DataRowIndex index, uint seed = 0)
{
    return ::qHash(index.toInt(), seed);
}
inline uint qHash(DataColumnIndex index, uint seed = 0)
{
    return ::qHash(index.toInt(), seed);
}

// Identity of a column across transforms: (id of the node that made it, sequence number).
class ColumnId
{
public:
    constexpr ColumnId() = default;
    constexpr ColumnId(int nodeId, int sequence)
        : m_nodeId(nodeId)
        , m_sequence(sequence)
    { }
    constexpr int nodeId() const { return m_nodeId; }
    constexpr int sequence() const { return m_sequence; }
    constexpr bool isUnset() const { return m_nodeId == -1 && m_sequence == 0; }
    friend constexpr bool operator==(ColumnId a, ColumnId b)
    {
        return a.m_nodeId == b.m_nodeId && a.m_sequence == b.m_sequence;
    }
    friend constexpr bool operator!=(ColumnId a, ColumnId b) { return !(a == b); }

private:
    int m_nodeId = -1;
    int m_sequence = 0;
};

// The sequence number alone: ids from one assignment pass never collide on it.
inline uint qHash(ColumnId id, uint seed = 0)
{
    return ::qHash(id.sequence(), seed);
}

// One cell (or a whole row with column -1, or a whole column with row -1) as a hash key.
struct DataCellIndex
{
    DataRowIndex row;
    DataColumnIndex column;
    friend bool operator==(DataCellIndex a, DataCellIndex b)
    {
        return a.row == b.row && a.column == b.column;
    }
};
inline uint qHash(DataCellIndex cell, uint seed = 0)
{
    return ::qHash(QPair<int, int>(cell.row.toInt(), cell.column.toInt()), seed);
}

// Severity of a failed verification. Among 0 to 2 a higher number is worse; a Stop halts
// the flow. VerifyFailNone is never stored: it is what an unmarked place reports.
enum OnVerifyFail : int {
    VerifyFailWarning = 0,
    VerifyFailError = 1,
    VerifyFailStop = 2,
    VerifyFailNone = 3,
};
using VerifyDatasetRuleId = int;
using VerifyColumnRuleId = int;

// Column types as decided by Dataset::columnType.
enum class ColumnType : int { Text = 0, Number = 1, Boolean = 2, Date = 3, Time = 4 };

// The in-memory table held by every item. All cells are text; values are interpreted
// only when used (see values.h). Copying is cheap: every container shares its storage
// until written to, so copying a Dataset copies no cells.
class Dataset
{
public:
    Dataset() = default;

    // The memory mode is process-wide and set once at start, before any table exists:
    // 1 is "Maximum speed" (no interning), anything else "Minimum memory use".
    static int memoryMode();
    static void setMemoryMode(int mode);

    // Shape
    int rowCount() const { return m_rows.size(); }
    int columnCount() const { return m_columnCount; }
    DataRowIndex lastRow() const { return DataRowIndex(m_rows.size() - 1); }
    DataColumnIndex lastColumn() const { return DataColumnIndex(m_columnCount - 1); }
    bool hasRows() const { return !m_rows.isEmpty(); }
    bool hasNoRows() const { return m_rows.isEmpty(); }
    bool hasColumns() const { return m_columnCount > 0; }
    bool hasNoColumns() const { return m_columnCount == 0; }
    QPair<int, int> size() const { return qMakePair(rowCount(), columnCount()); }
    QList<DataRowIndex> rowIndexes() const;
    QList<DataColumnIndex> columnIndexes() const;
    bool nextCell(DataRowIndex &row, DataColumnIndex &column) const;
    bool previousCell(DataRowIndex &row, DataColumnIndex &column) const;

    // Cells and rows. No bounds checks: callers hold indexes in range.
    const QString &cell(DataRowIndex row, DataColumnIndex column) const
    {
        return m_rows.at(row.toInt()).at(column.toInt());
    }
    void setCell(DataRowIndex row, DataColumnIndex column, const QString &value);
    const QStringList &row(DataRowIndex row) const { return m_rows.at(row.toInt()); }
    QStringList &mutableRow(DataRowIndex row) { return m_rows[row.toInt()]; } // bypasses interning
    void setRow(DataRowIndex row, const QStringList &values);
    QStringList rowValues(DataRowIndex row, const QList<DataColumnIndex> &columns) const;
    QStringList columnValues(DataColumnIndex column) const;
    void setColumnValues(DataColumnIndex column, const QStringList &values);
    void appendRow(const QStringList &values, bool fit = false);
    void prependRow(const QStringList &values, bool fit = false);
    void removeRow(DataRowIndex row);
    int removeBlankRows();
    bool isBlankRow(DataRowIndex row) const;
    static bool isBlank(const QStringList &values);
    bool containsRow(const QStringList &values) const;
    void setRowCount(int count);
    void resize(int rows, int columns);
    void reserveRows(int count) { m_rows.reserve(count); }
    // Appends cells, columnCount() wide, as the last row as they are (no interning) and
    // leaves cells empty: how readers hand over a row they built.
    void takeRow(QStringList &cells)
    {
        m_rows.append(QStringList());
        m_rows.last().swap(cells);
    }

    // Columns
    void appendColumn();
    void prependColumn();
    void removeColumn(DataColumnIndex column);
    void setColumnCount(int count);
    QList<DataColumnIndex> blankColumns() const; // highest index first
    int removeBlankColumns();
    int countBlankCells() const;
    int countBlankCells(DataColumnIndex column) const;
    bool columnContains(DataColumnIndex column, const QString &text, Qt::CaseSensitivity cs) const;
    bool rowContains(DataRowIndex row, const QString &text, Qt::CaseSensitivity cs) const;
    bool anyCellContains(const QString &text, Qt::CaseSensitivity cs) const;
    bool headerContains(const QString &text, Qt::CaseSensitivity cs) const;
    bool columnHasDuplicate(DataColumnIndex column, int maxRows) const;
    static bool columnsEqual(
        const Dataset *a, DataColumnIndex columnA, const Dataset *b, DataColumnIndex columnB);
    static bool rowsEqual(const Dataset *a, DataRowIndex rowA, const Dataset *b, DataRowIndex rowB);

    // Headers
    bool hasHeaders() const { return m_hasHeaders; }
    void setHasHeaders(bool flag);
    const QStringList &headers() const { return m_headers; }
    void setHeaders(const QStringList &headers);
    void setHeader(DataColumnIndex column, const QString &text);
    QString headerText(DataColumnIndex column) const;
    QStringList displayHeaders() const;

    // Column identity
    const QList<ColumnId> &columnIds() const { return m_columnIds; }
    void setColumnIds(const QList<ColumnId> &ids);
    ColumnId columnId(DataColumnIndex column) const;
    void setColumnId(DataColumnIndex column, ColumnId id);
    DataColumnIndex columnIndex(ColumnId id) const;
    QList<DataColumnIndex> columnIndexes(const QList<ColumnId> &ids) const;
    void clearDuplicateColumnIds();
    // Gives every column with an unset id the id (nodeId, n), n rising from 1 in this pass.
    void assignColumnIds(int nodeId);

    // Verification marks
    void addColumnRuleFail(
        DataRowIndex row, DataColumnIndex column, VerifyColumnRuleId rule, OnVerifyFail severity);
    void addCellFail(DataRowIndex row, DataColumnIndex column, OnVerifyFail severity);
    void addRowDatasetRuleFail(DataRowIndex row, VerifyDatasetRuleId rule, OnVerifyFail severity);
    void addColumnDatasetRuleFail(DataColumnIndex column, VerifyDatasetRuleId rule, OnVerifyFail severity);
    void addColumnColumnRuleFail(DataColumnIndex column, VerifyColumnRuleId rule, OnVerifyFail severity);
    bool hasVerifyFails() const { return !m_verifyFails.isEmpty(); }
    OnVerifyFail verifyFail(DataRowIndex row, DataColumnIndex column) const;
    const QHash<DataRowIndex, QHash<VerifyDatasetRuleId, int>> &rowDatasetRuleCounts() const
    {
        return m_rowDatasetRuleCounts;
    }
    const QHash<DataColumnIndex, QHash<VerifyDatasetRuleId, int>> &columnDatasetRuleCounts() const
    {
        return m_columnDatasetRuleCounts;
    }
    const QHash<DataRowIndex, QHash<VerifyColumnRuleId, int>> &rowColumnRuleCounts() const
    {
        return m_rowColumnRuleCounts;
    }
    const QHash<DataColumnIndex, QHash<VerifyColumnRuleId, int>> &columnColumnRuleCounts() const
    {
        return m_columnColumnRuleCounts;
    }
    QList<VerifyColumnRuleId> cellColumnRules(DataRowIndex row, DataColumnIndex column) const;
    void clearVerifyMarks();

    // Rows of an input that a folded cell stands for
    bool hasCellRowLinks() const { return !m_cellRowLinks.isEmpty(); }
    void addCellRowLink(DataRowIndex row, DataColumnIndex column, DataRowIndex otherRow);
    void addCellRowLinks(DataRowIndex row, DataColumnIndex column, const QList<DataRowIndex> &rows);
    QList<DataRowIndex> cellRowLinks(DataRowIndex row, DataColumnIndex column) const;
    void clearCellRowLinks() { m_cellRowLinks.clear(); }

    // Whole table
    bool operator==(const Dataset &other) const;
    bool operator!=(const Dataset &other) const { return !(*this == other); }
    void clear();
    void releaseValuePools();
    int valuePoolCount() const { return m_valuePools.size(); }

    // Column variables: "$(header)" or "$(1-based number)"
    static QString columnVariable(const QString &name);
    QString columnVariable(DataColumnIndex column) const;
    QHash<QString, DataColumnIndex> variableMap() const;
    QString substituteVariables(DataRowIndex row, const QString &text) const;

    // "( v1, v2, … )" per column, for tool tips; each value elided to maxChars.
    QStringList columnSummaries(int maxValues, int maxChars = 30) const;

    // Stable sort of the rows by the text of one column (ties keep their order).
    // The comparison is given the two cells and returns true when the first goes first.
    template<typename LessThan>
    void sortRows(DataColumnIndex column, LessThan lessThan);
    void sortRows(DataColumnIndex column, Qt::SortOrder order, Qt::CaseSensitivity cs = Qt::CaseSensitive);

    // Text forms for the clipboard: tab-separated (cells with tabs, newlines or quotes
    // quoted), and an HTML table. With withHeaders the display headers come first.
    QString toTabSeparatedText(bool withHeaders) const;
    QString toHtml(bool withHeaders) const;

    // Value tests on one column (implemented in values.cpp); each samples the first rows.
    bool isNumericColumn(DataColumnIndex column, bool ignoreCurrency, int maxRows = 100) const;
    bool isBooleanColumn(DataColumnIndex column) const;
    bool isTimeColumn(DataColumnIndex column) const;
    bool isJsonNumberColumn(DataColumnIndex column) const;
    bool guessDateFormat(
        DataColumnIndex column, const QStringList &formats, QString *outFormat, int maxValues) const;
    ColumnType columnType(
        DataColumnIndex column, const QStringList &formats, QString *outFormat, bool ignoreCurrency) const;
    QList<DataColumnIndex> numericColumns(int limit, bool ignoreCurrency) const;
    // No space, "." or "," in the first 50 values, and not a date.
    bool isPlainColumn(DataColumnIndex column, const QStringList &formats) const;

private:
    void intern(DataColumnIndex column, QString &value);
    void internRow(QStringList &values);
    void raiseVerifyFail(DataCellIndex cell, OnVerifyFail severity);
    // Puts row order[i] at position i and moves row links and verification marks along.
    void applyRowOrder(const QVector<int> &order);

    int m_columnCount = 0;
    QList<QStringList> m_rows;
    bool m_hasHeaders = false;
    QStringList m_headers;
    QList<ColumnId> m_columnIds;
    mutable QHash<ColumnId, DataColumnIndex> m_columnIndexById;
    mutable bool m_columnIndexStale = false;
    QVector<QSet<QString>> m_valuePools;
    QMultiHash<DataCellIndex, DataRowIndex> m_cellRowLinks;
    QHash<DataCellIndex, OnVerifyFail> m_verifyFails;
    QHash<DataRowIndex, QHash<VerifyDatasetRuleId, int>> m_rowDatasetRuleCounts;
    QHash<DataColumnIndex, QHash<VerifyDatasetRuleId, int>> m_columnDatasetRuleCounts;
    QHash<DataRowIndex, QHash<VerifyColumnRuleId, int>> m_rowColumnRuleCounts;
    QHash<DataColumnIndex, QHash<VerifyColumnRuleId, int>> m_columnColumnRuleCounts;
    QMultiHash<DataCellIndex, VerifyColumnRuleId> m_cellColumnRules;
};

template<typename LessThan>
void Dataset::sortRows(DataColumnIndex column, LessThan lessThan)
{
    const int c = column.toInt();
    if (c < 0 || c >= m_columnCount || m_rows.size() < 2)
        return;
    struct Key
    {
        const QString *text;
        int row;
    };
    std::vector<Key> keys;
    keys.reserve(m_rows.size());
    for (int r = 0; r < m_rows.size(); ++r)
        keys.push_back({&m_rows.at(r).at(c), r});
    std::stable_sort(
        keys.begin(), keys.end(), [&](const Key &a, const Key &b) { return lessThan(*a.text, *b.text); });
    QVector<int> order;
    order.reserve(int(keys.size()));
    for (const Key &key : keys)
        order.append(key.row);
    applyRowOrder(order);
}
