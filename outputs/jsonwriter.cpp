#include "jsonwriter.h"

#include "structuredtext.h"

#include "core/dataset.h"
#include "core/values.h"

#include <QCoreApplication>

using namespace StructuredText;

namespace {

const int JsonFileType = 4;

QString tr(const char *text)
{
    return QCoreApplication::translate("JsonWriter", text);
}

void appendQuoted(QString &result, const QString &text)
{
    static const char hex[] = "0123456789abcdef";
    result += QLatin1Char('"');
    for (const QChar c : text) {
        const ushort u = c.unicode();
        switch (u) {
        case '"':
            result += QLatin1String("\\\"");
            break;
        case '\\':
            result += QLatin1String("\\\\");
            break;
        case '\b':
            result += QLatin1String("\\b");
            break;
        case '\f':
            result += QLatin1String("\\f");
            break;
        case '\n':
            result += QLatin1String("\\n");
            break;
        case '\r':
            result += QLatin1String("\\r");
            break;
        case '\t':
            result += QLatin1String("\\t");
            break;
        case 0x2028:
            result += QLatin1String("\\u2028");
            break;
        case 0x2029:
            result += QLatin1String("\\u2029");
            break;
        default:
            if (u < 0x20) {
                result += QLatin1String("\\u00");
                result += QLatin1Char(hex[u >> 4]);
                result += QLatin1Char(hex[u & 15]);
            } else {
                result += c;
            }
        }
    }
    result += QLatin1Char('"');
}

QString quoted(const QString &text)
{
    QString result;
    result.reserve(text.size() + 2);
    appendQuoted(result, text);
    return result;
}

QString indent(int depth)
{
    return QString(depth * 4, QLatin1Char(' '));
}

// Arrays of scalars stay on one line; everything else is indented like the rows.
QString render(const JsonValue &value, int depth, const QString &lineEnding)
{
    switch (value.kind) {
    case JsonValue::Null:
        return QStringLiteral("null");
    case JsonValue::False:
        return QStringLiteral("false");
    case JsonValue::True:
        return QStringLiteral("true");
    case JsonValue::Number:
        return value.text;
    case JsonValue::String:
        return quoted(value.text);
    case JsonValue::Array:
    case JsonValue::Object:
        break;
    }
    const bool isArray = value.kind == JsonValue::Array;
    const QLatin1String open(isArray ? "[" : "{");
    const QLatin1String close(isArray ? "]" : "}");
    if (value.items.isEmpty())
        return open + close;
    const bool flat = isArray
        && std::all_of(
            value.items.cbegin(), value.items.cend(), [](const JsonValue &item) { return item.isScalar(); });
    QString result = open;
    for (int i = 0; i < value.items.size(); ++i) {
        if (flat) {
            if (i > 0)
                result += QLatin1String(", ");
        } else {
            if (i > 0)
                result += QLatin1Char(',');
            result += lineEnding + indent(depth + 1);
            if (!isArray)
                result += quoted(value.keys.value(i)) + QLatin1String(": ");
        }
        result += render(value.items.at(i), depth + 1, lineEnding);
    }
    if (!flat)
        result += lineEnding + indent(depth);
    return result + close;
}

// Appends the member's value; false when the member is left out. fits is false for a cell
// written as text because it isn't of its column's type.
bool appendValue(
    QString &out, const QString &cell, int type, bool removeEmpty, const QString &lineEnding, bool &fits)
{
    fits = true;
    const bool empty = type == TextType ? cell.isEmpty() : cell.trimmed().isEmpty();
    if (empty) {
        if (removeEmpty)
            return false;
        out += type == TextType ? QLatin1String("\"\"") : QLatin1String("null");
        return true;
    }
    switch (type) {
    case NumberType: {
        const QString number = cell.trimmed();
        if (isJsonNumber(number)) {
            out += number;
            return true;
        }
        break;
    }
    case BooleanType: {
        const QString word = booleanWord(cell);
        if (!word.isEmpty()) {
            out += word;
            return true;
        }
        break;
    }
    case JsonType: {
        JsonValue value;
        if (parseJsonValue(cell, value)) {
            out += render(value, 2, lineEnding);
            return true;
        }
        break;
    }
    default:
        appendQuoted(out, cell);
        return true;
    }
    fits = false;
    appendQuoted(out, cell);
    return true;
}

} // namespace

bool writeJson(const Dataset &dataset, const OutputOptions &options, QIODevice &device, WriteReport &report)
{
    const QString lineEnding = StructuredText::lineEnding(options, JsonFileType, false, report);
    const QStringList headers = dataset.displayHeaders();
    const QStringList names = uniqueNames(headers);
    for (int c = 0; c < names.size(); ++c) {
        if (names.at(c) != headers.at(c))
            report.information << tr("Column '%1' written as '%2'").arg(headers.at(c), names.at(c));
    }
    QStringList keys;
    for (const QString &name : names)
        keys << quoted(name) + QLatin1String(": ");
    const QVector<int> types = valueTypes(dataset, options, report);

    TextSink sink(device, options.encoding, lineEnding);
    const bool appending = options.writeMode == OutputOptions::Append && !holdsNoText(device);
    ClosingText closing;
    bool hasObjects = false;
    if (appending) {
        if (!makeSeekable(device) || !closing.find(device, sink, QStringLiteral("]"), true)) {
            report.warnings.prepend(tr("Unable to append to '%1': it does not end with a JSON array")
                                        .arg(absolutePath(options.path)));
            return false;
        }
        if (dataset.hasNoRows())
            return sink.finish(report);
        // The blanks before "]" are written again, so that new objects line up with the old.
        const QString before = closing.textBefore();
        int blanks = 0;
        while (blanks < before.size() && before.at(before.size() - 1 - blanks).isSpace())
            ++blanks;
        closing.startBefore(sink, before.right(blanks));
        hasObjects = blanks == before.size() || before.at(before.size() - 1 - blanks) != QLatin1Char('[');
        closing.seekToStart(device);
    } else if (dataset.hasNoRows()) {
        sink << QLatin1String("[]");
        sink.endLine();
        return sink.finish(report);
    } else {
        sink << QLatin1Char('[');
    }

    CountedMessages notFitting;
    const QString rowIndent = indent(1);
    const QString memberIndent = indent(2);
    const int rows = dataset.rowCount();
    for (int r = 0; r < rows; ++r) {
        if (r % 1000 == 0)
            report.reportProgress(double(r) / rows);
        if (r > 0 || hasObjects)
            sink << QLatin1Char(',');
        sink.endLine();
        QString &out = sink.buffer();
        out += rowIndent;
        out += QLatin1Char('{');
        const QStringList &row = dataset.row(r);
        bool anyMember = false;
        for (int c = 0; c < qMin(row.size(), keys.size()); ++c) {
            // The member's start is written first and taken back when the member is left out.
            const int start = out.size();
            if (anyMember)
                out += QLatin1Char(',');
            out += lineEnding;
            out += memberIndent;
            out += keys.at(c);
            bool fits = true;
            if (!appendValue(out, row.at(c), types.at(c), options.removeEmpty, lineEnding, fits)) {
                out.resize(start);
                continue;
            }
            if (!fits)
                notFitting.add(cellNotTypeMessage(row.at(c), headers.at(c), r + 1, types.at(c)));
            anyMember = true;
        }
        if (anyMember) {
            out += lineEnding;
            out += rowIndent;
        }
        sink << QLatin1Char('}');
    }
    sink.endLine();
    notFitting.appendTo(report.warnings);
    if (appending) {
        // A device that fails is named by the write pipeline.
        if (!closing.finish(device, sink))
            return false;
    } else {
        sink << QLatin1Char(']');
        sink.endLine();
    }
    report.reportProgress(1);
    return sink.finish(report);
}
