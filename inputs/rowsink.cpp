#include "rowsink.h"

#include "core/dataset.h"
#include "core/values.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>

namespace {

// A pool this large whose lookups mostly missed holds a column of nearly unique values.
constexpr int PoolLimit = 1 << 14;
constexpr uint HashSeed = 0x9E3779B9u;
constexpr int FirstPoolSlots = 16;

// Empty, not null, like every blank cell of a table; its data is static, so copies of it
// cost no reference counting.
const QString EmptyCell(QLatin1String(""));

// Cells are mostly short: a plain loop beats a call to memcmp.
inline bool sameText(const QChar *a, const QChar *b, int length)
{
    if (length > 16)
        return std::memcmp(a, b, size_t(length) * sizeof(QChar)) == 0;
    for (int i = 0; i < length; ++i) {
        if (a[i] != b[i])
            return false;
    }
    return true;
}

// The string QString(data, length) makes, made here because cells are made by the million:
// one allocation, the same header, without the general path's size arithmetic. Qt frees
// it as any string of its own.
QString makeString(const QChar *data, int length)
{
    auto *d =
        static_cast<QStringData *>(std::malloc(sizeof(QStringData) + (size_t(length) + 1) * sizeof(QChar)));
    Q_CHECK_PTR(d);
    d->ref.atomic.storeRelaxed(1);
    d->size = length;
    d->alloc = uint(length) + 1;
    d->capacityReserved = 0;
    d->offset = sizeof(QStringData);
    std::memcpy(d->data(), data, size_t(length) * sizeof(QChar));
    d->data()[length] = 0;
    return QString(QStringDataPtr {d});
}

} // namespace

ValuePool::ValuePool(bool enabled)
    : m_enabled(enabled)
{ }

ValuePool::~ValuePool()
{
    settle();
}

ValuePool::ValuePool(ValuePool &&other) noexcept
    : m_slots(std::move(other.m_slots))
    , m_entries(std::move(other.m_entries))
    , m_uncounted(std::move(other.m_uncounted))
    , m_lookups(other.m_lookups)
    , m_hits(other.m_hits)
    , m_enabled(other.m_enabled)
{
    other.m_entries.clear();
    other.m_uncounted.clear();
}

ValuePool &ValuePool::operator=(ValuePool &&other) noexcept
{
    if (this != &other) {
        release();
        m_slots = std::move(other.m_slots);
        m_entries = std::move(other.m_entries);
        m_uncounted = std::move(other.m_uncounted);
        m_lookups = other.m_lookups;
        m_hits = other.m_hits;
        m_enabled = other.m_enabled;
        other.m_entries.clear();
        other.m_uncounted.clear();
    }
    return *this;
}

void ValuePool::put(QString &cell, const QChar *data, int length)
{
    if (length == 0)
        return;
    if (!m_enabled) {
        // Swapped in, so that neither string's count is touched.
        QString made = makeString(data, length);
        cell.swap(made);
        return;
    }
    const uint hash = qHash(QStringView(data, length), HashSeed);
    size_t index = 0;
    if (take(cell, hash, data, length, index))
        return;
    QString made = makeString(data, length);
    cell.swap(made);
    add(index, hash, cell);
}

void ValuePool::put(QString &cell, const QString &value)
{
    if (value.isEmpty())
        return;
    if (!m_enabled) {
        cell = value;
        return;
    }
    const uint hash = qHash(QStringView(value), HashSeed);
    size_t index = 0;
    if (take(cell, hash, value.constData(), value.size(), index))
        return;
    cell = value;
    add(index, hash, value);
}

// Looks the text up; on a hit the cell takes the pooled string without touching it. On a
// miss index is the free slot where the text goes.
bool ValuePool::take(QString &cell, uint hash, const QChar *data, int length, size_t &index)
{
    if (m_slots.empty())
        m_slots.resize(FirstPoolSlots);
    ++m_lookups;
    const quint64 key = quint64(hash) << 32;
    const size_t mask = m_slots.size() - 1;
    for (index = hash & mask;; index = (index + 1) & mask) {
        const quint64 slot = m_slots[index];
        if (slot == 0)
            return false;
        if ((slot & ~quint64(0xFFFFFFFFu)) != key)
            continue;
        Entry &entry = m_entries[size_t(quint32(slot)) - 1];
        if (entry.length != length
            || !sameText(length <= InlineChars ? entry.text : entry.value.constData(), data, length))
            continue;
        ++m_hits;
        if (entry.uncounted++ == 0)
            m_uncounted.push_back(int(quint32(slot)) - 1);
        // Adopts the string without raising its count: settle() does that.
        QString shared(QStringDataPtr {entry.value.data_ptr()});
        cell.swap(shared);
        return true;
    }
}

void ValuePool::add(size_t index, uint hash, const QString &value)
{
    if (int(m_entries.size()) >= PoolLimit && m_hits * 2 < m_lookups) {
        // Nearly every value is new: pooling would only cost. The cells already taken
        // from the pool keep their strings.
        m_enabled = false;
        release();
        return;
    }
    Entry entry;
    entry.length = value.size();
    if (entry.length <= InlineChars)
        std::copy_n(value.constData(), entry.length, entry.text);
    entry.value = value;
    m_entries.push_back(std::move(entry));
    m_slots[index] = (quint64(hash) << 32) | quint64(m_entries.size());
    if (m_entries.size() * 2 > m_slots.size())
        grow();
}

void ValuePool::grow()
{
    std::vector<quint64> bigger(m_slots.size() * 2);
    const size_t mask = bigger.size() - 1;
    for (const quint64 slot : m_slots) {
        if (slot == 0)
            continue;
        size_t index = size_t(slot >> 32) & mask;
        while (bigger[index] != 0)
            index = (index + 1) & mask;
        bigger[index] = slot;
    }
    m_slots.swap(bigger);
}

void ValuePool::settle()
{
    for (const int index : m_uncounted) {
        Entry &entry = m_entries[size_t(index)];
        entry.value.data_ptr()->ref.atomic.fetchAndAddOrdered(entry.uncounted);
        entry.uncounted = 0;
    }
    m_uncounted.clear();
}

void ValuePool::release()
{
    settle();
    std::vector<quint64>().swap(m_slots);
    std::vector<Entry>().swap(m_entries);
    std::vector<int>().swap(m_uncounted);
}

RowSink::RowSink(const InputOptions &options, Dataset &table)
    : m_table(table)
    , m_trim(options.trimWhitespace)
    , m_simplify(options.simplifyWhitespace)
    , m_ignoreEmptyRows(options.ignoreEmptyRows)
    , m_changesCells(options.trimWhitespace || options.simplifyWhitespace)
    , m_pooling(Dataset::memoryMode() != 1)
{
    setWidth(table.columnCount());
    startRow();
}

void RowSink::widenRow()
{
    m_row.append(EmptyCell);
    m_cells = &m_row[0];
}

void RowSink::setWidth(int width)
{
    // Every row is a copy of this list and takes its capacity, so it has no room to spare.
    QStringList blank;
    blank.reserve(width);
    for (int c = 0; c < width; ++c)
        blank.append(EmptyCell);
    m_blankRow.swap(blank);
}

void RowSink::startRow()
{
    m_row = m_blankRow;
    m_row.detach();
    m_cells = m_row.isEmpty() ? nullptr : &m_row[0];
    m_count = 0;
}

RowSink::~RowSink()
{
    settle();
}

ValuePool &RowSink::pool(int column)
{
    if (column >= int(m_pools.size()))
        while (int(m_pools.size()) <= column)
            m_pools.emplace_back(m_pooling);
    return m_pools[size_t(column)];
}

void RowSink::addChangedCell(QString value)
{
    if (m_trim)
        value = value.trimmed();
    if (m_simplify)
        simplifyWhitespace(value);
    const int column = m_count;
    pool(column).put(nextCell(), value);
}

void RowSink::settle()
{
    for (ValuePool &pool : m_pools)
        pool.settle();
}

void RowSink::endRow(int inputRow, bool keep)
{
    if (keep) {
        store(inputRow);
        return;
    }
    // The row's cells go, so the references they took must count first.
    if (m_count > 0)
        settle();
    if (m_row.size() != m_blankRow.size()) {
        startRow(); // a dropped row wider than the table mustn't widen the next one
        return;
    }
    for (int c = 0; c < m_count; ++c)
        m_cells[c] = EmptyCell;
    m_count = 0;
}

void RowSink::add(const QStringList &row, int inputRow)
{
    for (const QString &cell : row) {
        if (m_changesCells) {
            addChangedCell(cell);
        } else {
            const int column = m_count;
            pool(column).put(nextCell(), cell);
        }
    }
    store(inputRow);
}

void RowSink::store(int inputRow)
{
    const int values = m_count;
    bool blank = true;
    for (int c = 0; c < values && blank; ++c)
        blank = m_cells[c].isEmpty();
    if (m_ignoreEmptyRows && blank) {
        ++m_emptyRows;
        endRow(inputRow, false);
        return;
    }
    if (values != m_lastWidthValues) {
        auto found = m_widths.find(values);
        if (found == m_widths.end())
            found = m_widths.emplace(values, Width {0, inputRow}).first;
        m_lastWidth = &found->second;
        m_lastWidthValues = values;
    }
    ++m_lastWidth->rows;
    if (values > m_table.columnCount()) {
        // Earlier rows gain empty cells.
        m_table.setColumnCount(values);
        setWidth(values);
    }
    const int columns = m_table.columnCount();
    if (columns == 0) {
        endRow(inputRow, false);
        return;
    }
    while (m_row.size() < columns)
        m_row.append(EmptyCell);
    if (m_row.size() > columns)
        m_row.erase(m_row.begin() + columns, m_row.end());
    // The cells are already shared strings, so the row goes in as it is, not through the
    // table's own interning.
    m_table.takeRow(m_row);
    startRow();
}

void RowSink::finish(ReadReport &report)
{
    settle();
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
