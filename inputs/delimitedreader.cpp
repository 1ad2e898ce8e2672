#include "delimitedreader.h"

#include "core/dataset.h"
#include "rowsink.h"
#include "textsource.h"

#include <QCoreApplication>

#include <cstring>
#include <vector>

#ifdef __SSE2__
#include <emmintrin.h>
#endif

namespace {

const char *const Context = "DelimitedReader";

enum CharClass : quint8 { ClassDelimiter = 0, ClassQuote = 1, ClassNewline = 2, ClassOther = 3 };

// The quoted reader's states: 0 start of stream, 1 in an unquoted cell, 2 quote just
// opened, 3 in a quoted cell, 4 quote seen inside quotes, 5 after a delimiter, 6 after a
// row end. Next state by state and character class.
constexpr quint8 NextState[7][4] = {
    {5, 2, 6, 1},
    {5, 1, 6, 1},
    {3, 4, 3, 3},
    {3, 4, 3, 3},
    {5, 3, 6, 3},
    {5, 2, 6, 1},
    {5, 2, 6, 1},
};

constexpr int BlockChars = 2048;
constexpr qint64 QuotedProgressChars = 50000;
constexpr qint64 LineProgressChars = 50000;
constexpr qint64 PlainProgressChars = 10000;

QString tr(const char *text)
{
    return QCoreApplication::translate(Context, text);
}

// The first of the characters a, b and c at or after p, or end; eight at a time where
// the processor allows, since cells of free text run long between stops.
const char16_t *findAny(const char16_t *p, const char16_t *end, char16_t a, char16_t b, char16_t c)
{
#ifdef __SSE2__
    const __m128i first = _mm_set1_epi16(short(a));
    const __m128i second = _mm_set1_epi16(short(b));
    const __m128i third = _mm_set1_epi16(short(c));
    while (end - p >= 8) {
        const __m128i chunk = _mm_loadu_si128(reinterpret_cast<const __m128i *>(p));
        const __m128i found =
            _mm_or_si128(_mm_or_si128(_mm_cmpeq_epi16(chunk, first), _mm_cmpeq_epi16(chunk, second)),
                _mm_cmpeq_epi16(chunk, third));
        const int mask = _mm_movemask_epi8(found);
        if (mask != 0)
            return p + (__builtin_ctz(unsigned(mask)) >> 1);
        p += 8;
    }
#endif
    while (p < end && *p != a && *p != b && *p != c)
        ++p;
    return p;
}

// Hands rows on as the state machine finishes them. Cell text gathers in one buffer
// reused for every cell; a cell that lies whole inside a block goes to the row straight
// from the block, and each cell becomes at most one string of exactly its length.
class QuotedReader
{
public:
    QuotedReader(const InputOptions &options, Dataset &table, QChar delimiter)
        : m_sourceName(options.sourceName())
        , m_sink(options, table)
        , m_ignoreRepeated(options.ignoreRepeatedDelimiter)
        , m_ignoreFirstRows(options.ignoreFirstRows)
        , m_delimiter(delimiter.unicode())
        , m_cell(256)
    {
        for (int c = 0; c < 256; ++c)
            m_classes[c] = ClassOther;
        m_classes[int('"')] = ClassQuote;
        m_classes[int('\n')] = ClassNewline;
        m_classes[int('\r')] = ClassNewline;
        if (m_delimiter < 256)
            m_classes[m_delimiter] = ClassDelimiter;
    }

    bool read(TextSource &source, ReadReport &report)
    {
        const QChar *data = nullptr;
        int length = 0;
        qint64 sinceProgress = 0;
        while (source.readBlock(BlockChars, data, length)) {
            if (!readBlock(reinterpret_cast<const char16_t *>(data), length)) {
                report.warnings.prepend(tr("'%1' is too big for Tabrelle to read").arg(m_sourceName));
                m_sink.settle();
                return false;
            }
            sinceProgress += length;
            if (sinceProgress >= QuotedProgressChars) {
                sinceProgress = 0;
                report.reportProgress(source.progress());
            }
        }
        if (m_state == 2 || m_state == 3) {
            report.warnings << tr("A quote opened in input row %1 is never closed, so the rest of the text "
                                  "was read as one value")
                                   .arg(m_quoteRow + 1);
        }
        if (m_cellLength > 0 || !m_sink.rowIsEmpty()) {
            finishCell(false);
            finishRow();
        }
        m_sink.finish(report);
        return true;
    }

private:
    int classOf(char16_t c) const
    {
        return c < 256 ? int(m_classes[c]) : c == m_delimiter ? int(ClassDelimiter) : int(ClassOther);
    }

    // Moves a cell that was still in the block into the buffer, before the block goes.
    bool keepDirectCell()
    {
        if (!m_direct)
            return true;
        const char16_t *data = m_direct;
        m_direct = nullptr;
        return append(data, data + m_directLength);
    }

    bool append(const char16_t *begin, const char16_t *end)
    {
        if (m_direct && !keepDirectCell())
            return false;
        const qint64 length = end - begin;
        if (m_cellLength + length > TextSource::MaxChars)
            return false;
        if (m_cellLength + length > qint64(m_cell.size()))
            m_cell.resize(size_t(qMax(m_cellLength + length, qint64(m_cell.size()) * 2)));
        std::memcpy(m_cell.data() + m_cellLength, begin, size_t(length) * sizeof(char16_t));
        m_cellLength += length;
        return true;
    }

    bool readBlock(const char16_t *p, int length)
    {
        const char16_t *const end = p + length;
        int state = m_state;
        while (p < end) {
            if ((state == 0 || state == 5 || state == 6) && *p != u'"') {
                // Most cells hold no quote: from the cell's start straight to its end.
                const char16_t *q = findAny(p, end, m_delimiter, u'\n', u'\r');
                if (q == end) {
                    if (!append(p, q))
                        return false;
                    state = 1;
                    break;
                }
                const int length = int(q - p);
                if (*q == m_delimiter) {
                    if (length > 0 || !m_ignoreRepeated)
                        m_sink.addCell(reinterpret_cast<const QChar *>(p), length);
                    state = 5;
                } else {
                    m_sink.addCell(reinterpret_cast<const QChar *>(p), length);
                    if (*q == u'\r' && q + 1 < end && q[1] == u'\n')
                        ++q;
                    finishRow();
                    state = 6;
                }
                p = q + 1;
                continue;
            }
            const char16_t c = *p;
            const int kind = classOf(c);
            // Outside quotes CR LF is one line break: the CR is skipped. A block never
            // ends in CR unless the text does.
            if (c == u'\r' && state != 2 && state != 3 && p + 1 < end && p[1] == u'\n') {
                ++p;
                continue;
            }
            state = NextState[state][kind];
            switch (state) {
            case 1: {
                // The rest of an unquoted cell: up to the next delimiter or line break.
                const char16_t *q = findAny(p + 1, end, m_delimiter, u'\n', u'\r');
                if (m_cellLength == 0 && !m_direct && q < end) {
                    m_direct = p;
                    m_directLength = int(q - p);
                } else if (!append(p, q)) {
                    return false;
                }
                p = q;
                continue;
            }
            case 3: {
                // Inside quotes everything is text up to the next quote.
                const char16_t *q = findAny(p + 1, end, u'"', u'"', u'"');
                if (m_cellLength == 0 && !m_direct && q < end) {
                    m_direct = p;
                    m_directLength = int(q - p);
                } else if (!append(p, q)) {
                    return false;
                }
                p = q;
                continue;
            }
            case 2:
                m_direct = nullptr;
                m_cellLength = 0;
                m_quoteRow = m_rowNumber;
                break;
            case 5:
                finishCell(true);
                break;
            case 6:
                finishCell(false);
                finishRow();
                break;
            default: // 4: the quote may close the cell or be the first of a doubled one
                break;
            }
            ++p;
        }
        m_state = state;
        return keepDirectCell();
    }

    void finishCell(bool atDelimiter)
    {
        if (m_direct) {
            m_sink.addCell(reinterpret_cast<const QChar *>(m_direct), m_directLength);
            m_direct = nullptr;
        } else if (m_cellLength > 0) {
            m_sink.addCell(reinterpret_cast<const QChar *>(m_cell.data()), int(m_cellLength));
            m_cellLength = 0;
        } else if (!(atDelimiter && m_ignoreRepeated)) {
            m_sink.addCell(nullptr, 0);
        }
    }

    void finishRow()
    {
        m_sink.endRow(m_rowNumber, m_rowNumber >= m_ignoreFirstRows);
        ++m_rowNumber;
    }

    const QString m_sourceName;
    RowSink m_sink;
    const bool m_ignoreRepeated;
    const int m_ignoreFirstRows;
    const char16_t m_delimiter;
    quint8 m_classes[256];
    std::vector<char16_t> m_cell;
    qint64 m_cellLength = 0;
    const char16_t *m_direct = nullptr; // a cell still inside the current block
    int m_directLength = 0;
    int m_state = 0;
    int m_rowNumber = 0;
    int m_quoteRow = 0;
};

// Rows split at line breaks (LF, CR LF or a lone CR) and, when there is a delimiter,
// cells split at it, with no meaning for quotes. This is what reading line by line and
// splitting each line at its carriage returns and delimiters gives, done a block at a
// time. With repeated delimiters ignored, a run of them counts as one.
class LineReader
{
public:
    LineReader(const InputOptions &options, Dataset &table, QChar delimiter, qint64 progressChars)
        : m_sourceName(options.sourceName())
        , m_sink(options, table)
        , m_split(!delimiter.isNull())
        , m_collapse(options.ignoreRepeatedDelimiter && !delimiter.isNull())
        , m_ignoreFirstRows(options.ignoreFirstRows)
        , m_delimiter(delimiter.isNull() ? u'\n' : delimiter.unicode())
        , m_progressChars(progressChars)
    { }

    bool read(TextSource &source, ReadReport &report)
    {
        const QChar *data = nullptr;
        int length = 0;
        qint64 sinceProgress = 0;
        while (source.readBlock(BlockChars, data, length)) {
            if (!readBlock(reinterpret_cast<const char16_t *>(data), length)) {
                report.warnings.prepend(tr("'%1' is too big for Tabrelle to read").arg(m_sourceName));
                m_sink.settle();
                return false;
            }
            sinceProgress += length;
            if (sinceProgress >= m_progressChars) {
                sinceProgress = 0;
                report.reportProgress(source.progress());
            }
        }
        if (!m_cell.isEmpty() || !m_sink.rowIsEmpty()) {
            addCell(nullptr, 0);
            m_sink.endRow(m_rowNumber, m_rowNumber >= m_ignoreFirstRows);
        }
        m_sink.finish(report);
        return true;
    }

private:
    void addCell(const char16_t *data, int length)
    {
        if (m_cell.isEmpty()) {
            m_sink.addCell(reinterpret_cast<const QChar *>(data), length);
            return;
        }
        m_cell.append(reinterpret_cast<const QChar *>(data), length);
        m_sink.addCell(m_cell.constData(), m_cell.size());
        m_cell.clear();
    }

    bool readBlock(const char16_t *p, int length)
    {
        const char16_t *const end = p + length;
        while (p < end) {
            const char16_t *q = findAny(p, end, m_delimiter, u'\n', u'\r');
            if (q == end) {
                if (m_cell.size() + (end - p) > TextSource::MaxChars)
                    return false;
                m_cell.append(reinterpret_cast<const QChar *>(p), int(end - p));
                break;
            }
            const int count = int(q - p);
            if (m_split && *q == m_delimiter) {
                const bool repeated = m_collapse && m_afterDelimiter && count == 0 && m_cell.isEmpty();
                if (!repeated)
                    addCell(p, count);
                m_afterDelimiter = true;
            } else {
                addCell(p, count);
                m_sink.endRow(m_rowNumber, m_rowNumber >= m_ignoreFirstRows);
                ++m_rowNumber;
                m_afterDelimiter = false;
                // A block never ends in CR unless the text does.
                if (*q == u'\r' && q + 1 < end && q[1] == u'\n')
                    ++q;
            }
            p = q + 1;
        }
        return true;
    }

    const QString m_sourceName;
    RowSink m_sink;
    const bool m_split;
    const bool m_collapse;
    const int m_ignoreFirstRows;
    const char16_t m_delimiter; // a line feed when rows are not split into cells
    const qint64 m_progressChars;
    QString m_cell; // the part of a cell that began in an earlier block
    bool m_afterDelimiter = false;
    int m_rowNumber = 0;
};

} // namespace

namespace DelimitedReader {

QChar character(int delimiter, QChar custom)
{
    switch (delimiter) {
    case Semicolon:
        return QLatin1Char(';');
    case Colon:
        return QLatin1Char(':');
    case Tab:
        return QLatin1Char('\t');
    case Pipe:
        return QLatin1Char('|');
    case Caret:
        return QLatin1Char('^');
    case Space:
        return QLatin1Char(' ');
    case Custom:
        return custom.isNull() ? QLatin1Char(',') : custom;
    case UnitSeparator:
        return QChar(0x1F);
    default:
        return QLatin1Char(',');
    }
}

QString label(int delimiter)
{
    switch (delimiter) {
    case Automatic:
        return tr("Automatic");
    case Comma:
        return tr("Comma (,)");
    case Semicolon:
        return tr("Semi-colon (;)");
    case Colon:
        return tr("Colon (:)");
    case Tab:
        return tr("Tab (\\t)");
    case Pipe:
        return tr("Pipe (|)");
    case Caret:
        return tr("Caret (^)");
    case Space:
        return tr("Space ( )");
    case Custom:
        return tr("Custom");
    case UnitSeparator:
        return tr("Unit separator (0x1F)");
    default:
        return tr("Comma (,)");
    }
}

int guess(const QString &sample, ReadReport &report)
{
    static const int candidates[] = {Comma, Semicolon, Pipe, Caret, Tab, UnitSeparator};
    int winner = Comma;
    int highest = 0;
    QStringList counts;
    for (const int candidate : candidates) {
        const int count = sample.count(character(candidate, QChar()));
        if (count > highest) {
            highest = count;
            winner = candidate;
        }
        counts << tr("%1 %2").arg(count).arg(label(candidate));
    }
    report.information
        << tr("Delimiter=Automatic guesses '%1', set 'Delimiter' option to change").arg(label(winner));
    report.information
        << tr("First %1 characters contain: %2").arg(sample.size()).arg(counts.join(QStringLiteral(", ")));
    return winner;
}

bool readUnquoted(
    TextSource &source, const InputOptions &options, QChar delimiter, Dataset &table, ReadReport &report)
{
    LineReader reader(options, table, delimiter, delimiter.isNull() ? PlainProgressChars : LineProgressChars);
    if (!reader.read(source, report)) {
        table = Dataset();
        return false;
    }
    return true;
}

} // namespace DelimitedReader

bool readDelimited(TextSource &source, const InputOptions &options, Dataset &table, ReadReport &report)
{
    using namespace DelimitedReader;
    int delimiter = options.delimiter;
    if (delimiter == Automatic)
        delimiter = guess(source.peek(4096), report);
    const QChar character = DelimitedReader::character(delimiter, options.customDelimiter);
    bool quoted = options.quoting != Unquoted;
    if (options.quoting != Quoted && options.quoting != Unquoted) {
        quoted = character != QLatin1Char('\t');
        report.information << tr("Quoting=Automatic guesses '%1', set 'Quoting' option to change")
                                  .arg(quoted ? tr("Quoted") : tr("Unquoted"));
    }
    if (!quoted)
        return readUnquoted(source, options, character, table, report);
    QuotedReader reader(options, table, character);
    if (!reader.read(source, report)) {
        table = Dataset();
        return false;
    }
    return true;
}
