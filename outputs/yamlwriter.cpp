#include "yamlwriter.h"

#include "structuredtext.h"

#include "core/dataset.h"
#include "core/values.h"

#include <QCoreApplication>
#include <QRegularExpression>
#include <QSet>

#include <yaml-cpp/yaml.h>

#include <algorithm>
#include <cstring>

using namespace StructuredText;

namespace {

const int YamlFileType = 7;

QString tr(const char *text)
{
    return QCoreApplication::translate("YamlWriter", text);
}

// Characters that only a double-quoted scalar can carry: controls other than tab and line
// feed, C1 controls, the Unicode line and paragraph separators, the byte order mark and
// unpaired surrogates.
bool needsEscapes(const QString &text)
{
    const int n = text.size();
    for (int i = 0; i < n; ++i) {
        const ushort c = text.at(i).unicode();
        if ((c < 0x20 && c != '\t' && c != '\n') || (c >= 0x7F && c <= 0x9F) || c == 0x2028 || c == 0x2029
            || c == 0xFEFF) {
            return true;
        }
        if (QChar::isHighSurrogate(c) && i + 1 < n && QChar::isLowSurrogate(text.at(i + 1).unicode()))
            ++i;
        else if (QChar::isSurrogate(c))
            return true;
    }
    return false;
}

bool startsOrEndsBlank(const QString &text)
{
    return text.at(0).isSpace() || text.at(text.size() - 1).isSpace();
}

// A literal block writes the text exactly when it has a line break, ends in at most one
// line feed, and doesn't start or (before that line feed) end with white space: readers take
// the indentation from the first line, and trailing blanks are easily lost.
bool fitsLiteral(const QString &text)
{
    const int feed = text.indexOf(QLatin1Char('\n'));
    if (feed < 0 || feed == text.size() - 1 || needsEscapes(text))
        return false;
    const QString body = text.endsWith(QLatin1Char('\n')) ? text.left(text.size() - 1) : text;
    return !startsOrEndsBlank(body);
}

// Writes one row's YAML through yaml-cpp and fixes what it can't say itself: a literal block
// without a final line feed needs the "strip" indicator, "|-".
class RowEmitter
{
public:
    RowEmitter()
    {
        m_emitter.SetIndent(2);
        m_emitter.SetNullFormat(YAML::LowerNull);
    }

    void string(const QString &text)
    {
        const QByteArray utf8 = text.toUtf8();
        const std::string value(utf8.constData(), size_t(utf8.size()));
        if (fitsLiteral(text)) {
            // "|" keeps one final line feed and "|-" none; yaml-cpp writes only the first.
            if (text.endsWith(QLatin1Char('\n'))) {
                m_emitter << YAML::Literal << value.substr(0, value.size() - 1);
            } else {
                m_strip << m_emitter.size();
                m_emitter << YAML::Literal << value;
            }
        } else if (text.isEmpty() || startsOrEndsBlank(text) || text.contains(QLatin1Char('\n'))
            || yamlLooksTyped(text)) {
            if (needsEscapes(text))
                m_emitter << YAML::EscapeNonAscii;
            m_emitter << YAML::DoubleQuoted << value;
        } else if (needsEscapes(text)) {
            m_emitter << YAML::EscapeNonAscii << YAML::DoubleQuoted << value;
        } else {
            m_emitter << value;
        }
    }
    void plain(const QString &text)
    {
        const QByteArray utf8 = text.toUtf8();
        m_emitter << std::string(utf8.constData(), size_t(utf8.size()));
    }
    void null() { m_emitter << YAML::Null; }
    void json(const JsonValue &value)
    {
        switch (value.kind) {
        case JsonValue::Null:
            null();
            return;
        case JsonValue::False:
        case JsonValue::True:
            plain(value.kind == JsonValue::True ? QStringLiteral("true") : QStringLiteral("false"));
            return;
        case JsonValue::Number:
            plain(value.text);
            return;
        case JsonValue::String:
            string(value.text);
            return;
        case JsonValue::Array:
            // Empty containers go in flow style, on the key's line.
            if (value.items.isEmpty())
                m_emitter << YAML::Flow;
            m_emitter << YAML::BeginSeq;
            for (const JsonValue &item : value.items)
                json(item);
            m_emitter << YAML::EndSeq;
            return;
        case JsonValue::Object:
            if (value.items.isEmpty())
                m_emitter << YAML::Flow;
            m_emitter << YAML::BeginMap;
            for (int i = 0; i < value.items.size(); ++i) {
                m_emitter << YAML::Key;
                string(value.keys.value(i));
                m_emitter << YAML::Value;
                json(value.items.at(i));
            }
            m_emitter << YAML::EndMap;
            return;
        }
    }
    YAML::Emitter &emitter() { return m_emitter; }

    // The row's text with its line breaks as the output's line ending.
    QString text(const QString &lineEnding) const
    {
        std::string out(m_emitter.c_str(), m_emitter.size());
        for (auto at = m_strip.crbegin(); at != m_strip.crend(); ++at) {
            const size_t bar = out.find('|', *at);
            if (bar != std::string::npos)
                out.insert(bar + 1, 1, '-');
        }
        QString result = QString::fromUtf8(out.data(), int(out.size()));
        if (lineEnding != QLatin1String("\n"))
            result.replace(QLatin1Char('\n'), lineEnding);
        return result;
    }

private:
    YAML::Emitter m_emitter;
    QVector<size_t> m_strip;
};

// A cell's value in a row: a string, a bare word (numbers, booleans), null or JSON.
struct Scalar
{
    enum Kind { Text, Plain, Null, Json };
    int column;
    Kind kind;
    QString text;
    JsonValue json;
};

// The text as a plain or double-quoted scalar when neither needs more than the text itself:
// plain for letters, digits, blanks and a few marks that no reader takes for syntax or another
// type, quoted for printable text without '"' or "\\". A null string otherwise.
QString simpleScalar(const QString &text)
{
    if (text.isEmpty())
        return QStringLiteral("\"\"");
    bool plain = true;
    for (int i = 0; i < text.size(); ++i) {
        const QChar c = text.at(i);
        const ushort u = c.unicode();
        if (u < 0x20 || u == '"' || u == '\\' || (u >= 0x7F && u <= 0x9F) || u == 0x2028 || u == 0x2029
            || u == 0xFEFF || c.isSurrogate()) {
            return QString();
        }
        if (plain && !c.isLetterOrNumber()) {
            const char *allowed = i == 0 ? "_./($" : " _-.,/()+=;'~^$";
            plain = u < 0x80 && std::strchr(allowed, char(u));
        }
    }
    plain = plain && !text.at(text.size() - 1).isSpace() && !yamlLooksTyped(text);
    return plain ? text : QLatin1Char('"') + text + QLatin1Char('"');
}

// The row as yaml-cpp writes it, when every key and value is simple.
bool simpleRow(
    const QVector<Scalar> &values, const QStringList &keys, QString &line, const QString &lineEnding)
{
    line = QStringLiteral("- ");
    if (values.isEmpty()) {
        line += QLatin1String("{}");
        return true;
    }
    for (int i = 0; i < values.size(); ++i) {
        const Scalar &value = values.at(i);
        const QString &key = keys.at(value.column);
        if (key.isNull() || value.kind == Scalar::Json)
            return false;
        const QString scalar = value.kind == Scalar::Null ? QStringLiteral("null")
            : value.kind == Scalar::Plain                 ? value.text
                                                          : simpleScalar(value.text);
        if (scalar.isNull())
            return false;
        if (i > 0)
            line += lineEnding + QLatin1String("  ");
        line += key + QLatin1String(": ") + scalar;
    }
    return true;
}

} // namespace

bool yamlLooksTyped(const QString &text)
{
    static const QSet<QString> words = {QStringLiteral("~"), QStringLiteral("null"), QStringLiteral("Null"),
        QStringLiteral("NULL"), QStringLiteral("y"), QStringLiteral("Y"), QStringLiteral("yes"),
        QStringLiteral("Yes"), QStringLiteral("YES"), QStringLiteral("n"), QStringLiteral("N"),
        QStringLiteral("no"), QStringLiteral("No"), QStringLiteral("NO"), QStringLiteral("true"),
        QStringLiteral("True"), QStringLiteral("TRUE"), QStringLiteral("false"), QStringLiteral("False"),
        QStringLiteral("FALSE"), QStringLiteral("on"), QStringLiteral("On"), QStringLiteral("ON"),
        QStringLiteral("off"), QStringLiteral("Off"), QStringLiteral("OFF"), QStringLiteral("<<"),
        QStringLiteral("=")};
    if (text.isEmpty() || words.contains(text))
        return true;
    const QChar first = text.at(0);
    if (!first.isDigit() && first != QLatin1Char('-') && first != QLatin1Char('+')
        && first != QLatin1Char('.'))
        return false;
    // Integers and floats of both versions: binary, octal, hexadecimal, underscores,
    // sexagesimal, exponents, infinity and not-a-number. Looser than either grammar, since
    // quoting a string too many is harmless.
    static const QRegularExpression number(QStringLiteral(
        "^[-+]?(0b[01_]+|0o[0-7_]+|0x[0-9a-fA-F_]+|[0-9][0-9_]*(:[0-5]?[0-9])*(\\.[0-9_]*)?([eE][-+]?[0-9]+)?"
        "|\\.[0-9_]*([eE][-+]?[0-9]+)?|\\.(inf|Inf|INF)|\\.(nan|NaN|NAN))$"));
    static const QRegularExpression timestamp(QStringLiteral(
        "^[0-9]{4}-[0-9]{1,2}-[0-9]{1,2}(([Tt]|[ \\t]+)[0-9]{1,2}:[0-9]{2}:[0-9]{2}(\\.[0-9]*)?"
        "([ \\t]*(Z|[-+][0-9]{1,2}(:[0-9]{2})?))?)?$"));
    return number.match(text).hasMatch() || timestamp.match(text).hasMatch();
}

bool writeYaml(const Dataset &dataset, const OutputOptions &options, QIODevice &device, WriteReport &report)
{
    const QString lineEnding = StructuredText::lineEnding(options, YamlFileType, false, report);
    const QStringList headers = dataset.displayHeaders();
    const QStringList names = uniqueNames(headers);
    for (int c = 0; c < names.size(); ++c) {
        if (names.at(c) != headers.at(c))
            report.information << tr("Column '%1' written as '%2'").arg(headers.at(c), names.at(c));
    }
    const QVector<int> types = valueTypes(dataset, options, report);
    QStringList keys;
    for (const QString &name : names)
        keys << simpleScalar(name);

    TextSink sink(device, options.encoding, lineEnding);
    const bool appending = options.writeMode == OutputOptions::Append && !holdsNoText(device);
    ClosingText emptyList;
    bool replaceEmptyList = false;
    if (appending) {
        if (dataset.hasNoRows())
            return sink.finish(report);
        // A file written from a table without rows holds "[]", which the rows replace.
        if (makeSeekable(device) && emptyList.find(device, sink, QStringLiteral("[]"), true)) {
            const QString before = emptyList.textBefore();
            replaceEmptyList = before.isEmpty() || before.endsWith(QLatin1Char('\n'))
                || before.endsWith(QLatin1Char('\r')) || before == QChar(0xFEFF);
        }
        if (replaceEmptyList)
            emptyList.seekToStart(device);
        else
            device.seek(device.size());
    } else {
        const QString comment = fileComment(options.fileComment, QDateTime::currentDateTime());
        if (!comment.isEmpty()) {
            for (const QString &line : comment.split(QRegularExpression(QStringLiteral("\r\n|\n|\r")))) {
                QString text = QLatin1Char('#') + line;
                while (text.size() > 1 && text.at(text.size() - 1).isSpace())
                    text.chop(1);
                sink << text;
                sink.endLine();
            }
        }
        if (dataset.hasNoRows()) {
            sink << QLatin1String("[]");
            sink.endLine();
            return sink.finish(report);
        }
    }

    CountedMessages notFitting;
    QVector<Scalar> values;
    QString line;
    const int rows = dataset.rowCount();
    for (int r = 0; r < rows; ++r) {
        if (r % 1000 == 0)
            report.reportProgress(double(r) / rows);
        values.resize(0);
        const QStringList &cells = dataset.row(r);
        for (int c = 0; c < qMin(cells.size(), names.size()); ++c) {
            const QString &cell = cells.at(c);
            const int type = types.at(c);
            const bool empty = type == TextType ? cell.isEmpty() : cell.trimmed().isEmpty();
            if (empty && options.removeEmpty)
                continue;
            Scalar value {c, Scalar::Text, cell, {}};
            if (empty) {
                value.kind = type == TextType ? Scalar::Text : Scalar::Null;
            } else if (type == NumberType) {
                value.text = cell.trimmed();
                value.kind = isJsonNumber(value.text) ? Scalar::Plain : Scalar::Text;
            } else if (type == BooleanType) {
                value.text = booleanWord(cell);
                value.kind = value.text.isEmpty() ? Scalar::Text : Scalar::Plain;
            } else if (type == JsonType) {
                value.kind = parseJsonValue(cell, value.json) ? Scalar::Json : Scalar::Text;
            }
            if (value.kind == Scalar::Text && type != TextType) {
                value.text = cell;
                notFitting.add(cellNotTypeMessage(cell, headers.at(c), r + 1, type));
            }
            values << value;
        }
        // Rows of simple scalars are written directly: yaml-cpp's check of every plain
        // scalar is slow, and it only confirms what simpleScalar already knows.
        if (simpleRow(values, keys, line, lineEnding)) {
            sink << line;
        } else {
            RowEmitter row;
            row.emitter() << YAML::BeginSeq << YAML::BeginMap;
            for (const Scalar &value : values) {
                row.emitter() << YAML::Key;
                row.string(names.at(value.column));
                row.emitter() << YAML::Value;
                switch (value.kind) {
                case Scalar::Null:
                    row.null();
                    break;
                case Scalar::Plain:
                    row.plain(value.text);
                    break;
                case Scalar::Json:
                    row.json(value.json);
                    break;
                case Scalar::Text:
                    row.string(value.text);
                    break;
                }
            }
            row.emitter() << YAML::EndMap << YAML::EndSeq;
            sink << row.text(lineEnding);
        }
        sink.endLine();
    }
    notFitting.appendTo(report.warnings);
    if (replaceEmptyList && !emptyList.cut(device, sink))
        return false; // a device that fails is named by the write pipeline
    report.reportProgress(1);
    return sink.finish(report);
}
