#include "inputs/jsonreader.h"

#include "core/values.h"

#include <QCoreApplication>
#include <QHash>

#include <rapidjson/error/en.h>
#include <rapidjson/reader.h>

#include <algorithm>
#include <cctype>
#include <cstring>
#include <utility>
#include <vector>

namespace {

QString tr(const char *text)
{
    return QCoreApplication::translate("JsonReader", text);
}

constexpr int MaxDepth = 512;
constexpr int MaxRecordSearchDepth = 8;
constexpr int MessagesShown = 5;
constexpr size_t ProgressBytes = 65536;

// Iterative parsing keeps deep nesting off the call stack; stopping after each value lets
// the caller read JSON Lines one value at a time.
constexpr unsigned ParseFlags = rapidjson::kParseIterativeFlag | rapidjson::kParseStopWhenDoneFlag
    | rapidjson::kParseValidateEncodingFlag | rapidjson::kParseCommentsFlag
    | rapidjson::kParseTrailingCommasFlag | rapidjson::kParseNanAndInfFlag
    | rapidjson::kParseNumbersAsStringsFlag;

// RapidJSON copies a stream that declares copy optimisation and writes it back only after
// each value, so a handler that asks a string stream for its position gets a stale answer;
// this stream declares nothing and is read in place.
class Utf8Stream
{
public:
    using Ch = char;
    explicit Utf8Stream(const QByteArray &bytes)
        : m_begin(bytes.constData())
        , m_current(m_begin)
        , m_end(m_begin + bytes.size())
    { }
    Ch Peek() const { return m_current < m_end ? *m_current : '\0'; }
    Ch Take() { return m_current < m_end ? *m_current++ : '\0'; }
    size_t Tell() const { return size_t(m_current - m_begin); }
    bool atEnd() const { return m_current >= m_end; }
    const char *data() const { return m_begin; }
    size_t size() const { return size_t(m_end - m_begin); }
    // Writing is never asked for without in-place parsing.
    Ch *PutBegin() { return nullptr; }
    void Put(Ch) { }
    void Flush() { }
    size_t PutEnd(Ch *) { return 0; }

private:
    const char *m_begin;
    const char *m_current;
    const char *m_end;
};

// Messages of one kind: the first five word for word, then one line with the count.
class LimitedMessages
{
public:
    bool wantsText() const { return m_count < MessagesShown; }
    void add(const QString &text)
    {
        if (m_count++ < MessagesShown)
            m_texts << text;
    }
    void count() { ++m_count; }
    void appendTo(QStringList &list) const
    {
        list << m_texts;
        const int rest = m_count - MessagesShown;
        if (rest > 0)
            list << tr("+ %1 %2").arg(formatCount(rest), rest == 1 ? tr("other") : tr("others"));
    }

private:
    int m_count = 0;
    QStringList m_texts;
};

// Line and column of a byte offset, both counted from 1; columns count characters.
std::pair<int, int> position(const char *utf8, size_t offset)
{
    int line = 1;
    int column = 1;
    for (size_t i = 0; i < offset; ++i) {
        const unsigned char byte = static_cast<unsigned char>(utf8[i]);
        if (byte == '\n') {
            ++line;
            column = 1;
        } else if ((byte & 0xC0) != 0x80) {
            ++column;
        }
    }
    return {line, column};
}

QString errorAt(const Utf8Stream &stream, size_t offset, const QString &what)
{
    const auto [line, column] = position(stream.data(), std::min(offset, stream.size()));
    return tr("JSON error at line %1, column %2: %3").arg(line).arg(column).arg(what);
}

// What both passes share: the nesting limit and the progress report.
template<typename Derived>
class Handler : public rapidjson::BaseReaderHandler<rapidjson::UTF8<>, Derived>
{
public:
    Handler(const Utf8Stream &stream, const ReadReport &report, double from, double to)
        : m_stream(stream)
        , m_report(report)
        , m_from(from)
        , m_to(to)
    { }
    bool depthExceeded() const { return m_depthExceeded; }
    QString depthMessage() const
    {
        const auto [line, column] = position(m_stream.data(), m_depthOffset);
        return tr("JSON nesting is deeper than %1 levels at line %2, column %3")
            .arg(MaxDepth)
            .arg(line)
            .arg(column);
    }

protected:
    bool enter()
    {
        if (++m_depth <= MaxDepth)
            return true;
        m_depthExceeded = true;
        m_depthOffset = m_stream.Tell(); // the bracket is taken after the handler returns
        return false;
    }
    void leave() { --m_depth; }
    void tick()
    {
        if (m_stream.Tell() < m_nextProgress)
            return;
        m_nextProgress = m_stream.Tell() + ProgressBytes;
        m_report.reportProgress(m_from + (m_to - m_from) * double(m_stream.Tell()) / double(m_stream.size()));
    }

    const Utf8Stream &m_stream;
    int m_depth = 0;

private:
    const ReadReport &m_report;
    double m_from;
    double m_to;
    size_t m_nextProgress = ProgressBytes;
    bool m_depthExceeded = false;
    size_t m_depthOffset = 0;
};

// First pass: counts the top-level values and finds the largest array of objects that the
// top object reaches through object members only.
class RecordFinder : public Handler<RecordFinder>
{
public:
    enum Kind { Scalar, Object, Array };
    struct Found
    {
        int ordinal = -1; // among all arrays of the text, in file order
        qint64 count = 0;
        int keyDepth = 0;
        QList<QByteArray> path;
    };

    using Handler::Handler;

    bool Null() { return value(Scalar); }
    bool Bool(bool) { return value(Scalar); }
    bool RawNumber(const char *, rapidjson::SizeType, bool) { return value(Scalar); }
    bool String(const char *, rapidjson::SizeType, bool) { return value(Scalar); }
    bool Key(const char *text, rapidjson::SizeType length, bool)
    {
        Frame &frame = m_stack.back();
        if (frame.reachable)
            frame.key = QByteArray(text, int(length));
        return true;
    }
    bool StartObject()
    {
        value(Object);
        Frame frame;
        if (m_stack.empty()) {
            frame.reachable = true;
        } else {
            const Frame &parent = m_stack.back();
            frame.keyDepth = parent.keyDepth + 1;
            frame.reachable = !parent.isArray && parent.reachable && frame.keyDepth < MaxRecordSearchDepth;
        }
        m_stack.push_back(frame);
        return enter();
    }
    bool EndObject(rapidjson::SizeType)
    {
        m_stack.pop_back();
        leave();
        return true;
    }
    bool StartArray()
    {
        value(Array);
        Frame frame;
        frame.isArray = true;
        frame.ordinal = m_arrays++;
        if (!m_stack.empty()) {
            const Frame &parent = m_stack.back();
            frame.keyDepth = parent.keyDepth + 1;
            frame.reachable = !parent.isArray && parent.reachable && frame.keyDepth <= MaxRecordSearchDepth;
        }
        m_stack.push_back(frame);
        return enter();
    }
    bool EndArray(rapidjson::SizeType)
    {
        const Frame frame = m_stack.back();
        m_stack.pop_back();
        leave();
        if (m_stack.empty())
            m_topArrayCount = frame.count;
        const bool larger = frame.count > m_found.count
            || (frame.count == m_found.count && frame.keyDepth < m_found.keyDepth);
        if (frame.reachable && frame.allObjects && frame.count > 0 && larger) {
            m_found = Found {frame.ordinal, frame.count, frame.keyDepth, {}};
            for (const Frame &object : m_stack)
                m_found.path << object.key;
        }
        return true;
    }

    int topValues() const { return m_topValues; }
    Kind topKind() const { return m_topKind; }
    qint64 topArrayCount() const { return m_topArrayCount; }
    const Found &found() const { return m_found; }

private:
    struct Frame
    {
        bool isArray = false;
        bool reachable = false; // from the top object through object members only
        int keyDepth = 0; // keys from the top down to this container
        int ordinal = -1;
        qint64 count = 0;
        bool allObjects = true;
        QByteArray key; // the member being read, kept only where it may name a path
    };

    bool value(Kind kind)
    {
        tick();
        if (m_stack.empty()) {
            if (m_topValues++ == 0)
                m_topKind = kind;
        } else if (m_stack.back().isArray) {
            Frame &parent = m_stack.back();
            ++parent.count;
            parent.allObjects = parent.allObjects && kind == Object;
        }
        return true;
    }

    std::vector<Frame> m_stack;
    int m_arrays = 0;
    int m_topValues = 0;
    Kind m_topKind = Scalar;
    qint64 m_topArrayCount = 0;
    Found m_found;
};

enum class NodeType : quint8 { Null, Boolean, Number, String, Object, Array };

// One value of the record being read; children are linked in file order.
struct JsonNode
{
    NodeType type = NodeType::Null;
    int first = -1;
    int last = -1;
    int next = -1;
    QString key;
    QString text;
    size_t keyOffset = 0;
};

using Cells = std::vector<std::pair<int, QString>>;
using Rows = std::vector<Cells>;

// Second pass: gathers each record as a small tree, flattens it into rows and appends them.
class RowBuilder : public Handler<RowBuilder>
{
public:
    // targetArray is the ordinal of the array whose elements are the records; -1 makes
    // every top-level value a record.
    RowBuilder(const Utf8Stream &stream, const ReadReport &report, const InputOptions &options,
        Dataset &table, int targetArray)
        : Handler(stream, report, 0.5, 1.0)
        , m_table(table)
        , m_arraysAsRows(options.arraysAsRows)
        , m_targetArray(targetArray)
    { }

    bool Null() { return scalar(NodeType::Null, QString()); }
    bool Bool(bool value)
    {
        return scalar(NodeType::Boolean, value ? QStringLiteral("true") : QStringLiteral("false"));
    }
    bool RawNumber(const char *, rapidjson::SizeType, bool)
    {
        // NaN and Infinity are consumed without being copied, so the text is taken from the
        // source, back from where the number ended.
        const char *data = m_stream.data();
        const size_t end = m_stream.Tell();
        size_t start = end;
        while (start > 0) {
            const char c = data[start - 1];
            if (!(std::isalnum(static_cast<unsigned char>(c)) || c == '+' || c == '-' || c == '.'))
                break;
            --start;
        }
        return scalar(NodeType::Number, QString::fromLatin1(data + start, int(end - start)));
    }
    bool String(const char *text, rapidjson::SizeType length, bool)
    {
        return scalar(NodeType::String, QString::fromUtf8(text, int(length)));
    }
    bool Key(const char *text, rapidjson::SizeType length, bool)
    {
        if (m_open.empty())
            return true;
        // Records mostly share their shape, so the key of the node at the same place in the
        // record before is usually the same text: it is shared instead of decoded again.
        const size_t index = m_nodes.size();
        if (index >= m_keyCache.size())
            m_keyCache.resize(index + 1);
        auto &cached = m_keyCache[index];
        if (cached.first.size() != int(length) || std::memcmp(cached.first.constData(), text, length) != 0)
            cached = {QByteArray(text, int(length)), QString::fromUtf8(text, int(length))};
        m_key = cached.second;
        m_keyOffset = m_stream.Tell();
        return true;
    }
    bool StartObject()
    {
        open(NodeType::Object);
        return enter();
    }
    bool EndObject(rapidjson::SizeType)
    {
        leave();
        close();
        return true;
    }
    bool StartArray()
    {
        if (m_arrays++ == m_targetArray) {
            m_targetOpen = true;
            m_targetDepth = m_depth;
        }
        open(NodeType::Array);
        return enter();
    }
    bool EndArray(rapidjson::SizeType)
    {
        leave();
        if (m_targetOpen && m_depth == m_targetDepth)
            m_targetOpen = false;
        close();
        return true;
    }

    // Sets the headers, unless every record was an array read as a row of cells.
    void finish(ReadReport &report)
    {
        if (m_table.columnCount() < m_columns.size())
            m_table.setColumnCount(m_columns.size());
        if (!(m_allArrays && m_records > 0) && !m_columns.isEmpty())
            m_table.setHeaders(m_columns);
        m_duplicates.appendTo(report.warnings);
        if (m_nulls > 0)
            report.information << tr("%1 null value(s) read as empty cells").arg(formatCount(m_nulls));
    }
    qint64 records() const { return m_records; }

private:
    bool recordStartsHere() const
    {
        return m_targetArray < 0 ? m_depth == 0 : m_targetOpen && m_depth == m_targetDepth + 1;
    }

    int addNode(NodeType type)
    {
        if (m_open.empty())
            m_nodes.clear();
        const int index = int(m_nodes.size());
        JsonNode node;
        node.type = type;
        if (!m_open.empty()) {
            JsonNode &parent = m_nodes[size_t(m_open.back())];
            if (parent.type == NodeType::Object) {
                node.key = m_key;
                node.keyOffset = m_keyOffset;
            }
            if (parent.last >= 0)
                m_nodes[size_t(parent.last)].next = index;
            else
                parent.first = index;
            parent.last = index;
        }
        m_nodes.push_back(std::move(node));
        return index;
    }

    bool scalar(NodeType type, const QString &text)
    {
        tick();
        if (m_open.empty() && !recordStartsHere())
            return true;
        const int index = addNode(type);
        m_nodes[size_t(index)].text = text;
        if (m_open.empty())
            finishRecord();
        return true;
    }

    void open(NodeType type)
    {
        tick();
        if (m_open.empty() && !recordStartsHere())
            return;
        m_open.push_back(addNode(type));
    }

    void close()
    {
        if (m_open.empty())
            return;
        m_open.pop_back();
        if (m_open.empty())
            finishRecord();
    }

    int column(const QString &name)
    {
        const auto found = m_columnIndex.constFind(name);
        if (found != m_columnIndex.constEnd())
            return found.value();
        const int index = m_columns.size();
        m_columnIndex.insert(name, index);
        m_columns << name;
        return index;
    }

    QString scalarText(const JsonNode &node)
    {
        if (node.type == NodeType::Null)
            ++m_nulls;
        return node.text;
    }

    // The members of an object; a key that occurs again keeps its first place and takes
    // the last value.
    std::vector<int> liveMembers(int object)
    {
        std::vector<int> members;
        for (int m = m_nodes[size_t(object)].first; m >= 0; m = m_nodes[size_t(m)].next)
            members.push_back(m);
        const size_t count = members.size();
        std::vector<size_t> first(count);
        bool any = false;
        if (count <= 32) {
            for (size_t i = 0; i < count; ++i) {
                first[i] = i;
                for (size_t j = 0; j < i; ++j) {
                    if (m_nodes[size_t(members[j])].key == m_nodes[size_t(members[i])].key) {
                        first[i] = first[j];
                        any = true;
                        break;
                    }
                }
            }
        } else {
            QHash<QString, size_t> firstIndex;
            for (size_t i = 0; i < count; ++i) {
                const QString &key = m_nodes[size_t(members[i])].key;
                const auto found = firstIndex.constFind(key);
                if (found == firstIndex.constEnd()) {
                    firstIndex.insert(key, i);
                    first[i] = i;
                } else {
                    first[i] = found.value();
                    any = true;
                }
            }
        }
        if (!any)
            return members;
        std::vector<int> live = members;
        for (size_t i = 0; i < count; ++i) {
            if (first[i] == i)
                continue;
            live[first[i]] = members[i];
            const JsonNode &member = m_nodes[size_t(members[i])];
            if (m_duplicates.wantsText()) {
                const int line = position(m_stream.data(), member.keyOffset).first;
                m_duplicates.add(
                    tr("Key '%1' occurs more than once in an object at line %2; the last value is used")
                        .arg(member.key)
                        .arg(line));
            } else {
                m_duplicates.count();
            }
        }
        std::vector<int> kept;
        for (size_t i = 0; i < count; ++i) {
            if (first[i] == i)
                kept.push_back(live[i]);
        }
        return kept;
    }

    bool holdsObject(int array) const
    {
        for (int e = m_nodes[size_t(array)].first; e >= 0; e = m_nodes[size_t(e)].next) {
            if (m_nodes[size_t(e)].type == NodeType::Object)
                return true;
        }
        return false;
    }

    Rows expandObject(int object, const QString &prefix)
    {
        Cells base;
        std::vector<Rows> groups;
        for (int m : liveMembers(object)) {
            const JsonNode &member = m_nodes[size_t(m)];
            const QString path = prefix.isEmpty() ? member.key : prefix + QLatin1Char('.') + member.key;
            if (member.type == NodeType::Object) {
                Rows rows = expandObject(m, path);
                if (rows.size() == 1)
                    base.insert(base.end(), rows.front().begin(), rows.front().end());
                else
                    groups.push_back(std::move(rows));
            } else if (member.type == NodeType::Array) {
                if (m_arraysAsRows && holdsObject(m))
                    groups.push_back(expandArray(m, path));
                else
                    base.emplace_back(column(path), compact(m));
            } else {
                base.emplace_back(column(path), scalarText(member));
            }
        }
        if (groups.empty())
            return Rows {std::move(base)};
        // Arrays expanded in one record stand side by side; the other values repeat.
        size_t count = 1;
        for (const Rows &group : groups)
            count = std::max(count, group.size());
        Rows rows(count, base);
        for (const Rows &group : groups) {
            for (size_t i = 0; i < group.size(); ++i)
                rows[i].insert(rows[i].end(), group[i].begin(), group[i].end());
        }
        return rows;
    }

    Rows expandArray(int array, const QString &path)
    {
        Rows rows;
        for (int e = m_nodes[size_t(array)].first; e >= 0; e = m_nodes[size_t(e)].next) {
            const JsonNode &element = m_nodes[size_t(e)];
            if (element.type == NodeType::Object) {
                Rows expanded = expandObject(e, path);
                std::move(expanded.begin(), expanded.end(), std::back_inserter(rows));
            } else if (element.type == NodeType::Array) {
                rows.push_back(Cells {{column(path), compact(e)}});
            } else {
                rows.push_back(Cells {{column(path), scalarText(element)}});
            }
        }
        return rows;
    }

    static void appendQuoted(QString &out, const QString &text)
    {
        out += QLatin1Char('"');
        static const char escaped[] = "\"\\\b\f\n\r\t";
        static const char letters[] = "\"\\bfnrt";
        for (const QChar c : text) {
            const char *escape =
                c.unicode() < 0x80 && c.unicode() != 0 ? std::strchr(escaped, char(c.unicode())) : nullptr;
            if (escape) {
                out += QLatin1Char('\\');
                out += QLatin1Char(letters[escape - escaped]);
            } else if (c.unicode() < 0x20) {
                out += QStringLiteral("\\u%1").arg(c.unicode(), 4, 16, QLatin1Char('0'));
            } else {
                out += c;
            }
        }
        out += QLatin1Char('"');
    }

    void appendCompact(QString &out, int index) const
    {
        const JsonNode &node = m_nodes[size_t(index)];
        switch (node.type) {
        case NodeType::Null:
            out += QLatin1String("null");
            return;
        case NodeType::Boolean:
        case NodeType::Number:
            out += node.text;
            return;
        case NodeType::String:
            appendQuoted(out, node.text);
            return;
        case NodeType::Object:
        case NodeType::Array:
            break;
        }
        const bool isObject = node.type == NodeType::Object;
        out += QLatin1Char(isObject ? '{' : '[');
        for (int child = node.first; child >= 0; child = m_nodes[size_t(child)].next) {
            if (child != node.first)
                out += QLatin1Char(',');
            if (isObject) {
                appendQuoted(out, m_nodes[size_t(child)].key);
                out += QLatin1Char(':');
            }
            appendCompact(out, child);
        }
        out += QLatin1Char(isObject ? '}' : ']');
    }

    // The value as compact JSON text, members in file order.
    QString compact(int index) const
    {
        QString out;
        appendCompact(out, index);
        return out;
    }

    void finishRecord()
    {
        const JsonNode &root = m_nodes.front();
        Rows rows;
        const bool cellsOfArray = root.type == NodeType::Array && m_arraysAsRows;
        m_allArrays = m_allArrays && cellsOfArray;
        if (root.type == NodeType::Object) {
            rows = expandObject(0, QString());
        } else if (cellsOfArray) {
            Cells cells;
            int position = 0;
            for (int e = root.first; e >= 0; e = m_nodes[size_t(e)].next) {
                const JsonNode &element = m_nodes[size_t(e)];
                const bool nested = element.type == NodeType::Object || element.type == NodeType::Array;
                cells.emplace_back(
                    column(QString::number(++position)), nested ? compact(e) : scalarText(element));
            }
            rows.push_back(std::move(cells));
        } else if (root.type == NodeType::Array) {
            rows.push_back(Cells {{column(QStringLiteral("value")), compact(0)}});
        } else {
            rows.push_back(Cells {{column(QStringLiteral("value")), scalarText(root)}});
        }
        ++m_records;
        appendRows(rows);
    }

    void appendRows(const Rows &rows)
    {
        const int width = m_columns.size();
        if (width == 0) {
            // Rows without cells wait until a column exists, so that they keep their place.
            m_waitingRows += int(rows.size());
            return;
        }
        if (m_table.columnCount() < width)
            m_table.setColumnCount(width);
        for (; m_waitingRows > 0; --m_waitingRows)
            m_table.appendRow(QStringList(), true);
        for (const Cells &cells : rows) {
            QStringList row;
            row.reserve(width);
            for (int c = 0; c < width; ++c)
                row.append(QString());
            for (const auto &cell : cells)
                row[cell.first] = cell.second;
            m_table.appendRow(row, true);
        }
    }

    Dataset &m_table;
    const bool m_arraysAsRows;
    const int m_targetArray;
    int m_arrays = 0;
    bool m_targetOpen = false;
    int m_targetDepth = 0;

    std::vector<JsonNode> m_nodes;
    std::vector<int> m_open; // containers of the record not yet closed
    QString m_key;
    size_t m_keyOffset = 0;
    std::vector<std::pair<QByteArray, QString>> m_keyCache;

    QStringList m_columns;
    QHash<QString, int> m_columnIndex;
    qint64 m_records = 0;
    int m_waitingRows = 0;
    bool m_allArrays = true;
    qint64 m_nulls = 0;
    LimitedMessages m_duplicates;
};

// Reads every top-level value; returns the error text, empty on success.
template<typename H>
QString parseAll(Utf8Stream &stream, H &handler, int *values)
{
    rapidjson::Reader reader;
    *values = 0;
    for (;;) {
        const rapidjson::ParseResult result = reader.Parse<ParseFlags>(stream, handler);
        if (result.IsError()) {
            if (handler.depthExceeded())
                return handler.depthMessage();
            if (result.Code() == rapidjson::kParseErrorDocumentEmpty) {
                // Only comments after the last value; or a NUL character, which RapidJSON
                // takes for the end of the text.
                if (stream.atEnd() && *values > 0)
                    return QString();
                if (!stream.atEnd())
                    return errorAt(stream, stream.Tell(),
                        QString::fromLatin1(rapidjson::GetParseError_En(rapidjson::kParseErrorValueInvalid)));
            }
            return errorAt(
                stream, result.Offset(), QString::fromLatin1(rapidjson::GetParseError_En(result.Code())));
        }
        ++*values;
        while (!stream.atEnd()) {
            const char c = stream.Peek();
            if (c != ' ' && c != '\n' && c != '\r' && c != '\t')
                break;
            stream.Take();
        }
        if (stream.atEnd())
            return QString();
    }
}

QString pathText(const QList<QByteArray> &keys)
{
    QString path = QStringLiteral("$");
    for (const QByteArray &bytes : keys) {
        const QString key = QString::fromUtf8(bytes);
        const bool plain = !key.isEmpty() && std::all_of(key.begin(), key.end(), [](QChar c) {
            return c.isLetterOrNumber() || c == QLatin1Char('_');
        });
        if (plain) {
            path += QLatin1Char('.') + key;
        } else {
            QString escaped = key;
            escaped.replace(QLatin1Char('\\'), QLatin1String("\\\\"))
                .replace(QLatin1Char('"'), QLatin1String("\\\""));
            path += QStringLiteral("[\"%1\"]").arg(escaped);
        }
    }
    return path;
}

} // namespace

bool readJson(const QString &text, const InputOptions &options, Dataset &table, ReadReport &report)
{
    table.clear();
    QByteArray utf8 = text.toUtf8();
    if (utf8.startsWith("\xEF\xBB\xBF"))
        utf8.remove(0, 3);

    const auto fail = [&](const QString &message) {
        table.clear();
        report.warnings.prepend(message);
        return false;
    };

    Utf8Stream firstStream(utf8);
    RecordFinder finder(firstStream, report, 0.0, 0.5);
    int values = 0;
    QString error = parseAll(firstStream, finder, &values);
    if (!error.isEmpty())
        return fail(error);

    int target = -1;
    QString where;
    if (values > 1) {
        where = tr("JSON records: %1 lines").arg(formatCount(values));
    } else if (finder.topKind() == RecordFinder::Array) {
        target = 0;
        where = tr("JSON records: %1 at '%2'").arg(formatCount(finder.topArrayCount()), QStringLiteral("$"));
    } else if (finder.topKind() == RecordFinder::Object && finder.found().ordinal >= 0) {
        target = finder.found().ordinal;
        where = tr("JSON records: %1 at '%2'")
                    .arg(formatCount(finder.found().count), pathText(finder.found().path));
    } else {
        where = tr("JSON records: %1 at '%2'").arg(formatCount(1), QStringLiteral("$"));
    }

    Utf8Stream secondStream(utf8);
    RowBuilder builder(secondStream, report, options, table, target);
    error = parseAll(secondStream, builder, &values);
    if (!error.isEmpty())
        return fail(error);
    report.information << where;
    builder.finish(report);
    report.reportProgress(1.0);
    return true;
}
