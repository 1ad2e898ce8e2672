#pragma once

#include "inputoptions.h"

#include <QCoreApplication>

#include <map>
#include <vector>

class Dataset;

// Shares repeated texts of one column while a table is read: a cell equal to one seen
// before becomes another reference to the same string, looked up before any string is
// made. A column whose values hardly repeat (ids, free text) stops being pooled once the
// pool is large, so that it costs neither time nor memory.
//
// A lookup touches only the pool's own compact tables, never the shared string: the
// string's reference count is raised for all the cells that took it at once, by settle().
// Until then no cell filled by the pool may be destroyed, or its string could be freed
// while other cells hold it.
class ValuePool
{
public:
    explicit ValuePool(bool enabled = true);
    ~ValuePool();
    ValuePool(ValuePool &&other) noexcept;
    ValuePool &operator=(ValuePool &&other) noexcept;
    ValuePool(const ValuePool &) = delete;
    ValuePool &operator=(const ValuePool &) = delete;

    // Puts the pooled string equal to the text into cell, or a new one (added to the pool
    // while it is on). The cell holds the shared empty string before.
    void put(QString &cell, const QChar *data, int length);
    void put(QString &cell, const QString &value);
    // Counts the references the cells took since the last time.
    void settle();
    bool isEnabled() const { return m_enabled; }
    int size() const { return int(m_entries.size()); }

private:
    // A text up to InlineChars long is compared here, without touching the string.
    static constexpr int InlineChars = 16;
    struct Entry
    {
        int length = 0;
        int uncounted = 0; // cells holding value whose reference isn't counted yet
        QChar text[InlineChars];
        QString value; // the pool's own reference
    };
    bool take(QString &cell, uint hash, const QChar *data, int length, size_t &index);
    void add(size_t index, uint hash, const QString &value);
    void grow();
    void release();
    // Per slot: the hash in the high half, the entry's index + 1 in the low half; 0 is free.
    std::vector<quint64> m_slots;
    std::vector<Entry> m_entries;
    std::vector<int> m_uncounted; // entries whose uncounted is above 0
    qint64 m_lookups = 0;
    qint64 m_hits = 0;
    bool m_enabled;
};

// Where the line readers hand their rows: trims and simplifies cells, drops blank rows,
// widens the table to the widest row and pads shorter ones, shares repeated values, and
// keeps what the ragged row warning and the empty row count tell. Rows are built a cell
// at a time or handed over whole.
class RowSink
{
    Q_DECLARE_TR_FUNCTIONS(RowSink)
public:
    RowSink(const InputOptions &options, Dataset &table);
    ~RowSink();
    RowSink(const RowSink &) = delete;
    RowSink &operator=(const RowSink &) = delete;

    // Adds a cell to the row being built.
    void addCell(const QChar *data, int length)
    {
        const int column = m_count;
        if (m_changesCells)
            addChangedCell(QString(data, length));
        else if (column < int(m_pools.size()))
            m_pools[size_t(column)].put(nextCell(), data, length);
        else
            pool(column).put(nextCell(), data, length);
    }
    bool rowIsEmpty() const { return m_count == 0; }
    // Hands the row built so far on; inputRow is its 0-based number among all input rows,
    // ignored ones included. With keep false the row is dropped.
    void endRow(int inputRow, bool keep = true);
    // Hands a whole row on.
    void add(const QStringList &row, int inputRow);
    // Adds the ragged row warning and the empty row count to the report.
    void finish(ReadReport &report);
    // Counts the references the cells took from the pools: the table's cells may be
    // destroyed only after this or finish().
    void settle();

    int emptyRows() const { return m_emptyRows; }

private:
    struct Width
    {
        int rows = 0;
        int firstInputRow = 0;
    };

    ValuePool &pool(int column);
    // The next cell of the row: rows start as a copy of a row of shared empty strings as
    // wide as the table, so that a cell is filled in place and a short row is padded.
    QString &nextCell()
    {
        if (m_count == m_row.size())
            widenRow();
        return m_cells[m_count++];
    }
    void setWidth(int width);
    void widenRow();
    void startRow();
    void addChangedCell(QString value);
    void store(int inputRow);

    Dataset &m_table;
    const bool m_trim;
    const bool m_simplify;
    const bool m_ignoreEmptyRows;
    const bool m_changesCells; // trimmed or simplified
    const bool m_pooling;
    QStringList m_blankRow; // as wide as the table
    QStringList m_row;
    QString *m_cells = nullptr; // m_row's strings, which a QStringList keeps side by side
    int m_count = 0; // cells filled in m_row
    std::vector<ValuePool> m_pools;
    int m_emptyRows = 0;
    std::map<int, Width> m_widths;
    Width *m_lastWidth = nullptr; // rows mostly share one width: skips the map lookup
    int m_lastWidthValues = -1;
};
