#include "inputs/xmlreader.h"

#include "core/values.h"

#include <QCoreApplication>
#include <QHash>
#include <QRegularExpression>
#include <QTextCodec>
#include <QXmlStreamReader>

#include <algorithm>
#include <functional>
#include <utility>
#include <vector>

namespace {

QString tr(const char *text)
{
    return QCoreApplication::translate("XmlReader", text);
}

constexpr int MaxDepth = 512;
// Characters one entity may expand to, counted by the parser.
constexpr int EntityExpansionLimit = 10000;
// Characters all entity references of a document may add; this stops many references to
// one entity below the per-entity limit.
constexpr qint64 TotalExpansionLimit = 10000000;
constexpr qint64 ProgressCharacters = 65536;

using Cells = std::vector<std::pair<int, QString>>;

void configure(QXmlStreamReader &reader)
{
    reader.setNamespaceProcessing(true);
    reader.setEntityExpansionLimit(EntityExpansionLimit);
}

QString errorText(const QXmlStreamReader &reader, const QString &what)
{
    return tr("XML error at line %1, column %2: %3")
        .arg(reader.lineNumber())
        .arg(reader.columnNumber() + 1)
        .arg(what);
}

bool isBlank(const QString &text)
{
    return std::all_of(text.begin(), text.end(), [](QChar c) { return c.isSpace(); });
}

bool isNamespaceDeclaration(const QXmlStreamAttribute &attribute)
{
    return attribute.qualifiedName() == QLatin1String("xmlns")
        || attribute.prefix() == QLatin1String("xmlns");
}

bool isNameCharacter(QChar c)
{
    return c.isLetterOrNumber() || c == QLatin1Char('_') || c == QLatin1Char('-') || c == QLatin1Char('.')
        || c == QLatin1Char(':');
}

// The length of text with each reference "&name;" that resolve() knows replaced by the
// length it gives; resolve() answers -1 for a name it doesn't know.
template<typename Resolve>
qint64 expandedLength(const QString &text, Resolve resolve)
{
    qint64 total = 0;
    const int size = text.size();
    for (int i = 0; i < size; ++i) {
        if (text.at(i) == QLatin1Char('&')) {
            int end = i + 1;
            while (end < size && end - i < 256 && isNameCharacter(text.at(end)))
                ++end;
            if (end > i + 1 && end < size && text.at(end) == QLatin1Char(';')) {
                const qint64 length = resolve(text.mid(i + 1, end - i - 1));
                if (length >= 0) {
                    total = std::min(total + length, TotalExpansionLimit * 4);
                    i = end;
                    continue;
                }
            }
        }
        ++total;
    }
    return total;
}

// Whether the references of the text to its declared entities expand beyond the limit.
bool expandsTooFar(const QString &text, const QXmlStreamEntityDeclarations &declarations)
{
    QHash<QString, QString> values;
    for (const QXmlStreamEntityDeclaration &declaration : declarations)
        values.insert(declaration.name().toString(), declaration.value().toString());
    QHash<QString, qint64> lengths;
    int depth = 0;
    std::function<qint64(const QString &)> resolve = [&](const QString &name) -> qint64 {
        const auto value = values.constFind(name);
        if (value == values.constEnd())
            return -1;
        const auto known = lengths.constFind(name);
        if (known != lengths.constEnd())
            return known.value();
        if (depth > 64)
            return TotalExpansionLimit + 1;
        // A recursive entity counts nothing here; the parser refuses it.
        lengths.insert(name, 0);
        ++depth;
        const qint64 length = expandedLength(value.value(), resolve);
        --depth;
        lengths.insert(name, length);
        return length;
    };
    return expandedLength(text, resolve) > qint64(text.size()) + TotalExpansionLimit;
}

// The element paths of a document: each is its parent's path and a name.
class PathTable
{
public:
    struct Path
    {
        int parent = -1;
        QString name;
        int depth = 0;
        qint64 count = 0;
        bool complex = false; // some element of the path has attributes or child elements
    };

    int child(int parent, const QString &name)
    {
        const auto found = m_index.constFind(qMakePair(parent, name));
        if (found != m_index.constEnd())
            return found.value();
        Path path;
        path.parent = parent;
        path.name = name;
        path.depth = parent < 0 ? 0 : m_paths[size_t(parent)].depth + 1;
        m_paths.push_back(path);
        m_index.insert(qMakePair(parent, name), int(m_paths.size()) - 1);
        return int(m_paths.size()) - 1;
    }
    int find(int parent, const QString &name) const { return m_index.value(qMakePair(parent, name), -1); }
    Path &operator[](int id) { return m_paths[size_t(id)]; }
    const Path &operator[](int id) const { return m_paths[size_t(id)]; }
    int size() const { return int(m_paths.size()); }

    QString text(int id) const
    {
        QStringList names;
        for (; id >= 0; id = m_paths[size_t(id)].parent)
            names.prepend(m_paths[size_t(id)].name);
        return names.join(QLatin1Char('/'));
    }

    // The path of the records: the most frequent of at least 2 among those with attributes
    // or children, else among those of text only; the shallower, then the first, on a tie.
    // When its parent has the same name, the records start at the outermost such step.
    int recordPath() const
    {
        for (const bool complex : {true, false}) {
            int best = -1;
            for (int id = 0; id < size(); ++id) {
                const Path &path = m_paths[size_t(id)];
                if (path.count < 2 || path.complex != complex)
                    continue;
                if (best < 0 || path.count > m_paths[size_t(best)].count
                    || (path.count == m_paths[size_t(best)].count
                        && path.depth < m_paths[size_t(best)].depth))
                    best = id;
            }
            if (best < 0)
                continue;
            while (m_paths[size_t(best)].parent >= 0
                && m_paths[size_t(m_paths[size_t(best)].parent)].name == m_paths[size_t(best)].name)
                best = m_paths[size_t(best)].parent;
            return best;
        }
        return -1;
    }

private:
    std::vector<Path> m_paths;
    QHash<QPair<int, QString>, int> m_index;
};

void tick(const QXmlStreamReader &reader, qint64 size, qint64 &next, const ReadReport &report, double from)
{
    if (reader.characterOffset() < next)
        return;
    next = reader.characterOffset() + ProgressCharacters;
    report.reportProgress(from + 0.5 * double(reader.characterOffset()) / double(std::max<qint64>(size, 1)));
}

// First pass: counts the elements of each path; returns the error text, empty on success.
QString survey(const QString &text, PathTable &paths, const ReadReport &report)
{
    QXmlStreamReader reader(text);
    configure(reader);
    std::vector<int> open;
    qint64 nextProgress = ProgressCharacters;
    while (!reader.atEnd()) {
        switch (reader.readNext()) {
        case QXmlStreamReader::StartElement: {
            if (int(open.size()) >= MaxDepth)
                return tr("XML nesting is deeper than %1 levels at line %2, column %3")
                    .arg(MaxDepth)
                    .arg(reader.lineNumber())
                    .arg(reader.columnNumber() + 1);
            const int parent = open.empty() ? -1 : open.back();
            const int id = paths.child(parent, reader.qualifiedName().toString());
            ++paths[id].count;
            const QXmlStreamAttributes attributes = reader.attributes();
            if (std::any_of(attributes.begin(), attributes.end(),
                    [](const QXmlStreamAttribute &a) { return !isNamespaceDeclaration(a); }))
                paths[id].complex = true;
            if (parent >= 0)
                paths[parent].complex = true;
            open.push_back(id);
            tick(reader, text.size(), nextProgress, report, 0.0);
            break;
        }
        case QXmlStreamReader::EndElement:
            open.pop_back();
            break;
        case QXmlStreamReader::DTD:
            if (!reader.entityDeclarations().isEmpty() && expandsTooFar(text, reader.entityDeclarations()))
                return errorText(
                    reader, tr("Entity expands to more characters than the entity expansion limit."));
            break;
        default:
            break;
        }
    }
    if (reader.hasError())
        return errorText(reader, reader.errorString());
    return QString();
}

// Second pass: reads each record, and the records nested in it, into rows.
class RecordReader
{
public:
    RecordReader(
        const PathTable &paths, int recordPath, bool longForm, Dataset &table, const ReadReport &report)
        : m_paths(paths)
        , m_recordPath(recordPath)
        , m_recordName(paths[recordPath].name)
        , m_longForm(longForm)
        , m_table(table)
        , m_report(report)
    {
        m_hasLevel = paths.find(recordPath, m_recordName) >= 0;
        if (m_hasLevel)
            column(QStringLiteral("Level"));
    }

    QString read(const QString &text)
    {
        QXmlStreamReader reader(text);
        configure(reader);
        qint64 nextProgress = ProgressCharacters;
        while (!reader.atEnd()) {
            switch (reader.readNext()) {
            case QXmlStreamReader::StartElement:
                start(reader);
                tick(reader, text.size(), nextProgress, m_report, 0.5);
                break;
            case QXmlStreamReader::EndElement:
                end();
                break;
            case QXmlStreamReader::Characters:
                if (!m_open.empty() && m_open.back().record >= 0)
                    element(m_open.back()).text += reader.text();
                break;
            default:
                break;
            }
        }
        if (reader.hasError())
            return errorText(reader, reader.errorString());
        if (m_table.columnCount() < m_columns.size())
            m_table.setColumnCount(m_columns.size());
        if (!m_columns.isEmpty())
            m_table.setHeaders(m_columns);
        return QString();
    }

    qint64 records() const { return m_recordCount; }

private:
    struct Element
    {
        int parent = -1;
        QString path; // relative to the record, joined with "."
        int number = 1; // the occurrence its columns are numbered by
        QString text;
    };
    struct Cell
    {
        int element;
        QString name;
        QString value;
    };
    struct Record
    {
        int level = 1;
        std::vector<Element> elements; // the record element first
        std::vector<Cell> cells;
        QHash<QString, int> lastNumber;
        std::vector<Cells> rows;
    };
    struct Open
    {
        int record = -1; // -1 outside records
        int element = -1;
        int path = -1; // outside records
    };

    Element &element(const Open &open)
    {
        return m_records[size_t(open.record)].elements[size_t(open.element)];
    }

    void start(const QXmlStreamReader &reader)
    {
        const QString name = reader.qualifiedName().toString();
        if (m_open.empty() || m_open.back().record < 0) {
            const int parent = m_open.empty() ? -1 : m_open.back().path;
            const int path = m_paths.find(parent, name);
            if (path == m_recordPath)
                startRecord(reader, 1);
            else
                m_open.push_back(Open {-1, -1, path});
            return;
        }
        const Open parent = m_open.back();
        Record &record = m_records[size_t(parent.record)];
        if (parent.element == 0 && name == m_recordName) {
            startRecord(reader, record.level + 1);
            return;
        }
        Element added;
        added.parent = parent.element;
        added.path = parent.element == 0
            ? name
            : record.elements[size_t(parent.element)].path + QLatin1Char('.') + name;
        // Numbered after the element it is in, and past every earlier one of its path, so
        // that an element's children share its number and no two occurrences share one.
        int &last = record.lastNumber[added.path];
        added.number = std::max(record.elements[size_t(parent.element)].number, last + 1);
        last = added.number;
        const int index = int(record.elements.size());
        const QXmlStreamAttributes attributes = reader.attributes();
        for (const QXmlStreamAttribute &attribute : attributes) {
            if (!isNamespaceDeclaration(attribute))
                record.cells.push_back(
                    Cell {index, added.path + QStringLiteral(".@") + attribute.qualifiedName(),
                        attribute.value().toString()});
        }
        record.elements.push_back(std::move(added));
        m_open.push_back(Open {parent.record, index, -1});
    }

    void startRecord(const QXmlStreamReader &reader, int level)
    {
        Record record;
        record.level = level;
        record.elements.emplace_back();
        const QXmlStreamAttributes attributes = reader.attributes();
        for (const QXmlStreamAttribute &attribute : attributes) {
            if (!isNamespaceDeclaration(attribute))
                record.cells.push_back(
                    Cell {0, QLatin1Char('@') + attribute.qualifiedName(), attribute.value().toString()});
        }
        m_records.push_back(std::move(record));
        m_open.push_back(Open {int(m_records.size()) - 1, 0, -1});
        ++m_recordCount;
    }

    void end()
    {
        const Open open = m_open.back();
        m_open.pop_back();
        if (open.record < 0)
            return;
        Record &record = m_records[size_t(open.record)];
        Element &ended = record.elements[size_t(open.element)];
        if (!isBlank(ended.text))
            record.cells.push_back(
                Cell {open.element, open.element == 0 ? m_recordName : ended.path, ended.text});
        ended.text = QString();
        if (open.element != 0)
            return;
        finishRecord(record);
        if (m_open.empty() || m_open.back().record < 0) {
            // The outermost record has ended: its rows, and those of the records nested in
            // it, go to the table in the order the records began.
            for (const Record &done : m_records)
                appendRows(done.rows);
            m_records.clear();
        }
    }

    void finishRecord(Record &record)
    {
        QHash<QString, int> pathCounts;
        for (size_t e = 1; e < record.elements.size(); ++e)
            ++pathCounts[record.elements[e].path];
        // A value repeats on every row in the long form unless it or an element around it
        // occurs more than once.
        std::vector<bool> repeated(record.elements.size(), false);
        int rowCount = 1;
        for (size_t e = 1; e < record.elements.size(); ++e) {
            const Element &element = record.elements[e];
            repeated[e] = pathCounts.value(element.path) > 1 || repeated[size_t(element.parent)];
            rowCount = std::max(rowCount, element.number);
        }
        Cells base;
        if (m_hasLevel)
            base.emplace_back(column(QStringLiteral("Level")), QString::number(record.level));
        if (!m_longForm) {
            for (const Cell &cell : record.cells) {
                const int number = record.elements[size_t(cell.element)].number;
                const QString name =
                    number > 1 ? cell.name + QLatin1Char(' ') + QString::number(number) : cell.name;
                base.emplace_back(column(name), cell.value);
            }
            record.rows.push_back(std::move(base));
        } else {
            record.rows.assign(size_t(rowCount), base);
            for (const Cell &cell : record.cells) {
                const int index = column(cell.name);
                if (!repeated[size_t(cell.element)]) {
                    for (Cells &row : record.rows)
                        row.emplace_back(index, cell.value);
                } else {
                    record.rows[size_t(record.elements[size_t(cell.element)].number - 1)].emplace_back(
                        index, cell.value);
                }
            }
        }
        record.cells.clear();
        record.elements.clear();
        record.lastNumber.clear();
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

    void appendRows(const std::vector<Cells> &rows)
    {
        const int width = m_columns.size();
        if (width == 0) {
            // A record without values waits for the first column, to keep its place.
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

    const PathTable &m_paths;
    const int m_recordPath;
    const QString m_recordName;
    const bool m_longForm;
    bool m_hasLevel = false;
    Dataset &m_table;
    const ReadReport &m_report;

    std::vector<Open> m_open;
    std::vector<Record> m_records; // the outermost open record and those nested in it
    qint64 m_recordCount = 0;
    int m_waitingRows = 0;
    QStringList m_columns;
    QHash<QString, int> m_columnIndex;
};

// The encoding named by an XML declaration at the start of the bytes, or an empty text.
QString declaredEncoding(const QByteArray &bytes)
{
    if (!bytes.startsWith("<?xml"))
        return QString();
    const int end = bytes.indexOf("?>");
    if (end < 0 || end > 1024)
        return QString();
    static const QRegularExpression encoding(
        QStringLiteral("\\sencoding\\s*=\\s*([\"'])([A-Za-z0-9._:-]+)\\1"));
    return encoding.match(QString::fromLatin1(bytes.left(end))).captured(2);
}

} // namespace

bool readXml(const QString &text, const InputOptions &options, Dataset &table, ReadReport &report)
{
    table.clear();
    // A byte order mark left in the text is not part of the document.
    const QString document = text.startsWith(QChar(0xFEFF)) ? text.mid(1) : text;

    PathTable paths;
    QString error = survey(document, paths, report);
    if (error.isEmpty()) {
        int recordPath = paths.recordPath();
        QString where;
        if (recordPath < 0) {
            recordPath = 0;
            where = tr("No repeated elements found; the root element was read as one record");
        }
        const bool longForm = options.longOrWide.startsWith(QLatin1String("Long"), Qt::CaseInsensitive);
        RecordReader records(paths, recordPath, longForm, table, report);
        error = records.read(document);
        if (error.isEmpty()) {
            if (where.isEmpty())
                where =
                    tr("XML records: %1 '%2' elements at /%3")
                        .arg(formatCount(records.records()), paths[recordPath].name, paths.text(recordPath));
            report.information << where;
            report.reportProgress(1.0);
            return true;
        }
    }
    table.clear();
    report.warnings.prepend(error);
    return false;
}

QString xmlDeclaredCodec(const QByteArray &head, ReadReport &report)
{
    if (QTextCodec::codecForUtfText(head, nullptr))
        return QString();
    const QString name = declaredEncoding(head);
    // Text whose declaration reads as ASCII is not in UTF-16 or UTF-32, whatever it says.
    const QString upper = name.toUpper();
    if (name.isEmpty() || upper == QLatin1String("UTF-8") || upper == QLatin1String("UTF8")
        || upper.startsWith(QLatin1String("UTF-16")) || upper.startsWith(QLatin1String("UTF-32")))
        return QString();
    QTextCodec *codec = QTextCodec::codecForName(name.toLatin1());
    if (!codec) {
        report.warnings << tr("Unknown encoding '%1' in the XML declaration; UTF-8 was used").arg(name);
        return QString();
    }
    report.information << tr("XML declaration sets the encoding to '%1'").arg(name);
    return QString::fromLatin1(codec->name());
}

QString decodeXmlBytes(const QByteArray &bytes, ReadReport &report)
{
    if (QTextCodec *codec = QTextCodec::codecForUtfText(bytes, nullptr))
        return codec->toUnicode(bytes);
    const QString name = xmlDeclaredCodec(bytes.left(XmlDeclarationBytes), report);
    if (name.isEmpty())
        return QString::fromUtf8(bytes);
    return QTextCodec::codecForName(name.toLatin1())->toUnicode(bytes);
}
