#include "structuredtext.h"

#include "core/dataset.h"
#include "core/values.h"
#include "flow/fileformat.h"

#include <QBuffer>
#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSet>

#include <rapidjson/reader.h>

namespace {

QString tr(const char *text)
{
    return QCoreApplication::translate("StructuredText", text);
}

// Builds a JsonValue from the reader's events without recursion.
struct JsonBuilder : rapidjson::BaseReaderHandler<rapidjson::UTF8<>, JsonBuilder>
{
    QVector<JsonValue> open;
    JsonValue root;

    bool add(JsonValue &&value)
    {
        if (open.isEmpty())
            root = std::move(value);
        else
            open.last().items.append(std::move(value));
        return true;
    }
    bool scalar(JsonValue::Kind kind, const char *text = nullptr, rapidjson::SizeType length = 0)
    {
        JsonValue value;
        value.kind = kind;
        if (text)
            value.text = QString::fromUtf8(text, int(length));
        return add(std::move(value));
    }
    bool start(JsonValue::Kind kind)
    {
        if (open.size() >= 200)
            return false;
        JsonValue value;
        value.kind = kind;
        open.append(std::move(value));
        return true;
    }
    bool end()
    {
        JsonValue value = std::move(open.last());
        open.removeLast();
        return add(std::move(value));
    }
    bool Null() { return scalar(JsonValue::Null); }
    bool Bool(bool b) { return scalar(b ? JsonValue::True : JsonValue::False); }
    bool RawNumber(const char *text, rapidjson::SizeType length, bool)
    {
        return scalar(JsonValue::Number, text, length);
    }
    bool String(const char *text, rapidjson::SizeType length, bool)
    {
        return scalar(JsonValue::String, text, length);
    }
    bool StartObject() { return start(JsonValue::Object); }
    bool Key(const char *text, rapidjson::SizeType length, bool)
    {
        open.last().keys << QString::fromUtf8(text, int(length));
        return true;
    }
    bool EndObject(rapidjson::SizeType) { return end(); }
    bool StartArray() { return start(JsonValue::Array); }
    bool EndArray(rapidjson::SizeType) { return end(); }
};

} // namespace

TextSink::TextSink(QIODevice &device, const QString &encoding, const QString &lineEnding)
    : m_output(device, encoding)
    , m_lineEnding(lineEnding)
{
    m_codec = QTextCodec::codecForName(encoding.toLatin1());
    if (!m_codec)
        m_codec = QTextCodec::codecForMib(106); // UTF-8, as TextOutput writes then
}

QString TextSink::encodingName() const
{
    return QString::fromLatin1(m_codec->name());
}

QByteArray TextSink::encode(const QString &text) const
{
    QTextCodec::ConverterState state(QTextCodec::IgnoreHeader);
    return m_codec->fromUnicode(text.constData(), text.size(), &state);
}

int TextSink::unitSize() const
{
    const QByteArray name = m_codec->name().toUpper();
    if (name.startsWith("UTF-16"))
        return 2;
    if (name.startsWith("UTF-32"))
        return 4;
    return 1;
}

bool TextSink::finish(WriteReport &report)
{
    const bool written = m_output.flush();
    report.warnings << m_output.messages();
    return written;
}

void CountedMessages::add(const QString &message)
{
    if (m_shown.size() < 5)
        m_shown << message;
    else
        ++m_more;
}

void CountedMessages::appendTo(QStringList &list) const
{
    list << m_shown;
    if (m_more > 0)
        list << tr("+ %1 %2").arg(
            formatCount(m_more), StructuredText::plural(m_more, tr("other"), tr("others")));
}

namespace StructuredText {

QString lineEndingLabel(int lineEndings)
{
    switch (lineEndings) {
    case OutputOptions::Crlf:
        return tr("Windows (CRLF)");
    case OutputOptions::Lf:
        return tr("Mac\\Unix (LF)");
    case OutputOptions::Cr:
        return tr("Old Mac (CR)");
    case OutputOptions::RecordSeparator:
        return tr("Record separator (0x1E)");
    default:
        return tr("Automatic");
    }
}

QString lineEnding(const OutputOptions &options, int fileType, bool crlfWhenAutomatic, WriteReport &report)
{
    switch (options.lineEndings) {
    case OutputOptions::Crlf:
        return QStringLiteral("\r\n");
    case OutputOptions::Lf:
        return QStringLiteral("\n");
    case OutputOptions::Cr:
        return QStringLiteral("\r");
    case OutputOptions::RecordSeparator:
        report.warnings << tr("Line endings '%1' are not possible in %2; LF was used")
                               .arg(lineEndingLabel(options.lineEndings), FileFormat::name(fileType));
        return QStringLiteral("\n");
    default:
#ifdef Q_OS_WIN
        Q_UNUSED(crlfWhenAutomatic)
        return QStringLiteral("\r\n");
#else
        return crlfWhenAutomatic ? QStringLiteral("\r\n") : QStringLiteral("\n");
#endif
    }
}

QStringList uniqueNames(const QStringList &names)
{
    const QSet<QString> original(names.cbegin(), names.cend());
    QSet<QString> taken;
    QStringList result;
    result.reserve(names.size());
    for (const QString &name : names) {
        QString unique = name;
        if (taken.contains(name)) {
            for (int n = 2;; ++n) {
                unique = name + QLatin1Char(' ') + QString::number(n);
                if (!original.contains(unique) && !taken.contains(unique))
                    break;
            }
        }
        taken.insert(unique);
        result << unique;
    }
    return result;
}

QString fileComment(const QString &comment, const QDateTime &when)
{
    const QString fields[] = {QCoreApplication::applicationName(), QCoreApplication::applicationVersion(),
        when.toString(QStringLiteral("yyyy-MM-dd")), when.toString(QStringLiteral("HH:mm:ss"))};
    QString result;
    result.reserve(comment.size() + 40);
    for (int i = 0; i < comment.size(); ++i) {
        const QChar c = comment.at(i);
        if (c == QLatin1Char('%') && i + 1 < comment.size() && comment.at(i + 1) >= QLatin1Char('1')
            && comment.at(i + 1) <= QLatin1Char('4')) {
            result += fields[comment.at(i + 1).unicode() - '1'];
            ++i;
        } else {
            result += c;
        }
    }
    return result;
}

QString markupComment(const QString &comment, const QDateTime &when)
{
    if (comment.isEmpty())
        return QString();
    QString text = fileComment(comment, when);
    while (text.contains(QLatin1String("--")))
        text.replace(QLatin1String("--"), QLatin1String("- -"));
    if (text.endsWith(QLatin1Char('-')))
        text += QLatin1Char(' ');
    return QLatin1String("<!--") + text + QLatin1String("-->");
}

QVector<int> valueTypes(const Dataset &dataset, const OutputOptions &options, WriteReport &report)
{
    const QStringList headers = dataset.displayHeaders();
    QVector<int> types(dataset.columnCount(), TextType);
    for (int c = 0; c < dataset.columnCount(); ++c) {
        int type = AutomaticType;
        if (options.jsonTypes == OutputOptions::TypesAllText)
            type = TextType;
        else if (options.jsonTypes == OutputOptions::TypesManual)
            type = options.jsonManualColumnTypes.value(c, AutomaticType);
        if (type < AutomaticType || type > JsonType)
            type = AutomaticType;
        if (type == AutomaticType) {
            if (dataset.isJsonNumberColumn(c)) {
                type = NumberType;
                report.information << tr("Column '%1' written as %2, set 'Types' option to change")
                                          .arg(headers.at(c), tr("numbers"));
            } else if (dataset.isBooleanColumn(c)) {
                type = BooleanType;
                report.information << tr("Column '%1' written as %2, set 'Types' option to change")
                                          .arg(headers.at(c), tr("booleans"));
            } else {
                type = TextType;
            }
        }
        types[c] = type;
    }
    return types;
}

QString typeNoun(int type)
{
    switch (type) {
    case NumberType:
        return tr("number");
    case BooleanType:
        return tr("boolean");
    case JsonType:
        return tr("JSON value");
    default:
        return tr("text");
    }
}

QString cellNotTypeMessage(const QString &cell, const QString &column, int row, int type)
{
    return tr("'%1' in column '%2' at row %3 is not a %4 and was written as text")
        .arg(elideText(cell, 60, true), column, formatCount(row), typeNoun(type));
}

QString booleanWord(const QString &cell)
{
    const QString word = cell.trimmed().toLower();
    if (word == QLatin1String("true") || word == QLatin1String("false"))
        return word;
    return QString();
}

bool parseJsonValue(const QString &text, JsonValue &value)
{
    // The reader stops at a NUL, which would let a value with anything after it through.
    if (text.contains(QChar(0)))
        return false;
    const QByteArray utf8 = text.toUtf8();
    rapidjson::StringStream stream(utf8.constData());
    rapidjson::Reader reader;
    JsonBuilder builder;
    const rapidjson::ParseResult result =
        reader.Parse<rapidjson::kParseNumbersAsStringsFlag | rapidjson::kParseIterativeFlag>(stream, builder);
    if (result.IsError())
        return false;
    value = std::move(builder.root);
    return true;
}

QString absolutePath(const QString &path)
{
    return QDir::toNativeSeparators(QFileInfo(path).absoluteFilePath());
}

QString plural(qint64 count, const QString &one, const QString &many)
{
    return count == 1 ? one : many;
}

bool holdsNoText(QIODevice &device)
{
    const qint64 size = device.size();
    if (size == 0)
        return true;
    if (size > 4)
        return false;
    if (!device.isReadable() || device.isSequential())
        return true; // too small for anything but the byte order mark just written
    const qint64 at = device.pos();
    device.seek(0);
    const QByteArray start = device.read(size);
    device.seek(at);
    static const QByteArray marks[] = {QByteArray("\xEF\xBB\xBF"), QByteArray("\xFF\xFE"),
        QByteArray("\xFE\xFF"), QByteArray("\xFF\xFE\x00\x00", 4), QByteArray("\x00\x00\xFE\xFF", 4)};
    for (const QByteArray &mark : marks) {
        if (start == mark)
            return true;
    }
    return false;
}

bool ClosingText::find(QIODevice &device, const TextSink &sink, const QString &marker, bool onlyBlanksAfter)
{
    if (!device.isReadable() || device.isSequential())
        return false;
    const int unit = sink.unitSize();
    const qint64 size = device.size();
    qint64 start = qMax<qint64>(0, size - 65536);
    start -= start % unit;
    if (!device.seek(start))
        return false;
    const QByteArray bytes = device.read(size - start);
    const QByteArray markerBytes = sink.encode(marker);
    int at = bytes.size();
    for (;;) {
        at = bytes.lastIndexOf(markerBytes, at - 1);
        if (at < 0)
            return false;
        if ((start + at) % unit == 0)
            break;
        if (at == 0)
            return false;
    }
    QTextCodec *codec = sink.codec();
    if (onlyBlanksAfter) {
        const QByteArray after = bytes.mid(at + markerBytes.size());
        if (!codec->toUnicode(after).trimmed().isEmpty())
            return false;
    }
    m_writeFrom = start + at;
    m_tail = bytes.mid(at);
    QTextCodec::ConverterState state(QTextCodec::IgnoreHeader);
    const int from = qMax(0, at - 4096);
    const int fromAligned = from - int((start + from) % unit);
    m_before = codec->toUnicode(bytes.constData() + fromAligned, at - fromAligned, &state).right(1024);
    return true;
}

void ClosingText::startBefore(const TextSink &sink, const QString &characters)
{
    m_writeFrom -= sink.encode(characters).size();
    m_before.chop(characters.size());
}

bool ClosingText::finish(QIODevice &device, TextSink &sink) const
{
    if (!sink.flush())
        return false;
    if (device.write(m_tail) != m_tail.size())
        return false;
    return cut(device, sink);
}

bool ClosingText::cut(QIODevice &device, TextSink &sink) const
{
    if (!sink.flush())
        return false;
    const qint64 end = device.pos();
    if (end < device.size()) {
        if (auto *file = qobject_cast<QFile *>(&device)) {
            file->flush();
            return file->resize(end);
        }
        if (auto *buffer = qobject_cast<QBuffer *>(&device))
            buffer->buffer().truncate(int(end));
    }
    return true;
}

bool makeSeekable(QIODevice &device)
{
    auto *file = qobject_cast<QFile *>(&device);
    if (!file || !(file->openMode() & QIODevice::Append))
        return !device.isSequential();
    file->close();
    return file->open(QIODevice::ReadWrite);
}

} // namespace StructuredText
