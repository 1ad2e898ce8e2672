#include "inputs/vcardreader.h"

#include "core/values.h"

#include <QCoreApplication>
#include <QHash>
#include <QTextCodec>

#include <algorithm>
#include <utility>
#include <vector>

namespace {

QString tr(const char *text)
{
    return QCoreApplication::translate("VCardReader", text);
}

constexpr int MessagesShown = 5;
constexpr int CardsPerProgress = 1000;

// Messages of one kind: the first five word for word, then one line with the count.
class LimitedMessages
{
public:
    void add(const QString &text)
    {
        if (m_count++ < MessagesShown)
            m_texts << text;
    }
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

struct Line
{
    QString text;
    int number; // of its first physical line, from 1
};

// The part of a property line before its value, with the value's start; -1 without ":".
int valueStart(const QString &line)
{
    bool quoted = false;
    for (int i = 0; i < line.size(); ++i) {
        const QChar c = line.at(i);
        if (c == QLatin1Char('"'))
            quoted = !quoted;
        else if (c == QLatin1Char(':') && !quoted)
            return i + 1;
    }
    return -1;
}

bool isQuotedPrintable(const QString &line)
{
    const int start = valueStart(line);
    return start > 0 && line.leftRef(start).contains(QLatin1String("QUOTED-PRINTABLE"), Qt::CaseInsensitive);
}

// Joins folded lines: a line that begins with a blank or a tab continues the one before,
// and so does every line after a quoted-printable line that ends with "=".
std::vector<Line> unfold(const QString &text)
{
    std::vector<Line> lines;
    bool softBreak = false;
    int number = 0;
    int start = 0;
    const int size = text.size();
    while (start <= size) {
        int end = start;
        while (end < size && text.at(end) != QLatin1Char('\n') && text.at(end) != QLatin1Char('\r'))
            ++end;
        const QString physical = text.mid(start, end - start);
        ++number;
        if (end < size && text.at(end) == QLatin1Char('\r') && end + 1 < size
            && text.at(end + 1) == QLatin1Char('\n'))
            ++end;
        start = end + 1;
        if (start > size && physical.isEmpty())
            break;

        if (softBreak) {
            lines.back().text.chop(1);
            lines.back().text += physical;
        } else if (!lines.empty() && !physical.isEmpty()
            && (physical.at(0) == QLatin1Char(' ') || physical.at(0) == QLatin1Char('\t'))) {
            lines.back().text += physical.midRef(1);
        } else {
            lines.push_back(Line {physical, number});
        }
        const QString &current = lines.back().text;
        softBreak = current.endsWith(QLatin1Char('=')) && isQuotedPrintable(current);
    }
    return lines;
}

// Splits at a separator outside double quotes, dropping the quotes.
QStringList splitQuoted(const QString &text, QChar separator)
{
    QStringList parts;
    QString part;
    bool quoted = false;
    for (const QChar c : text) {
        if (c == QLatin1Char('"'))
            quoted = !quoted;
        else if (c == separator && !quoted)
            parts << std::exchange(part, QString());
        else
            part += c;
    }
    parts << part;
    return parts;
}

// Splits at a separator that no backslash escapes; the escapes stay for unescape().
QStringList splitUnescaped(const QString &text, QChar separator)
{
    QStringList parts;
    int from = 0;
    for (int i = 0; i < text.size(); ++i) {
        if (text.at(i) == QLatin1Char('\\')) {
            ++i;
        } else if (text.at(i) == separator) {
            parts << text.mid(from, i - from);
            from = i + 1;
        }
    }
    parts << text.mid(from);
    return parts;
}

QString unescape(const QString &text)
{
    if (!text.contains(QLatin1Char('\\')))
        return text;
    QString out;
    out.reserve(text.size());
    for (int i = 0; i < text.size(); ++i) {
        const QChar c = text.at(i);
        if (c != QLatin1Char('\\') || i + 1 == text.size()) {
            out += c;
            continue;
        }
        const QChar next = text.at(i + 1);
        if (next == QLatin1Char('n') || next == QLatin1Char('N')) {
            out += QLatin1Char('\n');
            ++i;
        } else if (next == QLatin1Char(',') || next == QLatin1Char(';') || next == QLatin1Char(':')
            || next == QLatin1Char('\\')) {
            out += next;
            ++i;
        } else {
            out += c;
        }
    }
    return out;
}

int hexValue(QChar c)
{
    const ushort u = c.unicode();
    if (u >= '0' && u <= '9')
        return u - '0';
    if (u >= 'A' && u <= 'F')
        return u - 'A' + 10;
    if (u >= 'a' && u <= 'f')
        return u - 'a' + 10;
    return -1;
}

// Quoted-printable text as bytes; an "=" not followed by two hex digits is kept as it
// stands and clears valid.
QByteArray decodeQuotedPrintable(const QString &text, bool *valid)
{
    QByteArray bytes;
    bytes.reserve(text.size());
    *valid = true;
    for (int i = 0; i < text.size(); ++i) {
        const QChar c = text.at(i);
        if (c == QLatin1Char('=')) {
            const int high = i + 2 < text.size() ? hexValue(text.at(i + 1)) : -1;
            const int low = i + 2 < text.size() ? hexValue(text.at(i + 2)) : -1;
            if (high >= 0 && low >= 0) {
                bytes.append(char(high * 16 + low));
                i += 2;
                continue;
            }
            if (i + 1 == text.size())
                continue; // a soft line break at the very end
            *valid = false;
        }
        if (c.unicode() < 0x80)
            bytes.append(char(c.unicode()));
        else
            bytes.append(QString(c).toUtf8());
    }
    return bytes;
}

struct Property
{
    QString name; // in capitals, without its group
    QStringList types;
    QString encoding;
    QString charset;
    QString value;
    int line = 0;
};

// A property line: an optional group, the name, parameters after ";", then ":" and the value.
Property parseProperty(const Line &line, int start)
{
    Property property;
    property.line = line.number;
    property.value = line.text.mid(start);
    const QStringList head = splitQuoted(line.text.left(start - 1), QLatin1Char(';'));
    property.name = head.first().mid(head.first().lastIndexOf(QLatin1Char('.')) + 1).trimmed().toUpper();
    for (int i = 1; i < head.size(); ++i) {
        const QString &parameter = head.at(i);
        const int equals = parameter.indexOf(QLatin1Char('='));
        if (equals < 0) {
            // A bare word: an encoding, else a type, as version 2.1 writes them.
            const QString word = parameter.trimmed().toUpper();
            if (word == QLatin1String("QUOTED-PRINTABLE") || word == QLatin1String("BASE64")
                || word == QLatin1String("8BIT") || word == QLatin1String("7BIT"))
                property.encoding = word;
            else if (!word.isEmpty())
                property.types << word.toLower();
            continue;
        }
        const QString key = parameter.left(equals).trimmed().toUpper();
        const QString value = parameter.mid(equals + 1).trimmed();
        if (key == QLatin1String("TYPE")) {
            for (const QString &type : value.split(QLatin1Char(','), Qt::SkipEmptyParts))
                property.types << type.trimmed().toLower();
        } else if (key == QLatin1String("ENCODING")) {
            property.encoding = value.toUpper();
        } else if (key == QLatin1String("CHARSET")) {
            property.charset = value;
        }
    }
    return property;
}

QString typeSuffix(const QStringList &types)
{
    QStringList kept;
    for (const QString &type : types) {
        if (type != QLatin1String("pref") && type != QLatin1String("internet") && !kept.contains(type))
            kept << type;
    }
    if (kept.isEmpty())
        return QString();
    std::sort(kept.begin(), kept.end());
    return QStringLiteral(" (%1)").arg(kept.join(QLatin1Char(',')));
}

enum class Shape { Text, List, Structured };

// The properties with columns of their own, in column order.
struct KnownProperty
{
    const char *name;
    const char *column;
    Shape shape;
    bool typed;
};
const KnownProperty KnownProperties[] = {
    {"VERSION", "Version", Shape::Text, false},
    {"FN", "Formatted name", Shape::Text, false},
    {"N", "", Shape::Structured, false},
    {"NICKNAME", "Nickname", Shape::List, false},
    {"ORG", "", Shape::Structured, false},
    {"TITLE", "Title", Shape::Text, false},
    {"ROLE", "Role", Shape::Text, false},
    {"BDAY", "Birthday", Shape::Text, false},
    {"ANNIVERSARY", "Anniversary", Shape::Text, false},
    {"GENDER", "Gender", Shape::Text, false},
    {"EMAIL", "Email", Shape::Text, true},
    {"TEL", "Phone", Shape::Text, true},
    {"ADR", "Address", Shape::Structured, true},
    {"URL", "URL", Shape::Text, true},
    {"IMPP", "IM", Shape::Text, true},
    {"NOTE", "Note", Shape::Text, false},
    {"CATEGORIES", "Categories", Shape::List, false},
    {"UID", "UID", Shape::Text, false},
    {"REV", "Revision", Shape::Text, false},
    {"LANG", "Language", Shape::Text, false},
    {"TZ", "Time zone", Shape::Text, false},
    {"GEO", "Geo", Shape::Text, false},
    {"PHOTO", "Photo", Shape::Text, false},
    {"LOGO", "Logo", Shape::Text, false},
    {"SOUND", "Sound", Shape::Text, false},
    {"KEY", "Key", Shape::Text, false},
};
constexpr int KnownCount = int(sizeof(KnownProperties) / sizeof(KnownProperties[0]));

const char *const NameParts[] = {
    "Family name", "Given name", "Additional names", "Honorific prefixes", "Honorific suffixes"};
const char *const AddressParts[] = {
    " PO box", " extended", " street", " locality", " region", " postal code", " country"};

class CardReader
{
public:
    CardReader(const InputOptions &options, ReadReport &report)
        : m_longForm(options.longOrWide.startsWith(QLatin1String("Long"), Qt::CaseInsensitive))
        , m_report(report)
    {
        for (int i = 0; i < KnownCount; ++i)
            m_known.insert(QLatin1String(KnownProperties[i].name), i);
    }

    // Returns false when the text holds no card.
    bool read(const QString &text)
    {
        const std::vector<Line> lines = unfold(text);
        bool inCard = false;
        bool anyCard = false;
        int nestedDepth = 0;
        int nestedCards = 0;
        int outsideLines = 0;
        int cardStart = 0;
        std::vector<Property> properties;
        for (size_t l = 0; l < lines.size(); ++l) {
            const Line &line = lines[l];
            if (line.text.trimmed().isEmpty())
                continue;
            const int start = valueStart(line.text);
            const QString name = start > 0 ? line.text.left(start - 1).trimmed() : QString();
            const bool vcardValue = start > 0
                && line.text.midRef(start).trimmed().compare(QLatin1String("VCARD"), Qt::CaseInsensitive)
                    == 0;
            const bool begin = vcardValue && name.compare(QLatin1String("BEGIN"), Qt::CaseInsensitive) == 0;
            const bool end = vcardValue && name.compare(QLatin1String("END"), Qt::CaseInsensitive) == 0;
            if (begin) {
                anyCard = true;
                if (inCard) {
                    if (nestedDepth++ == 0)
                        ++nestedCards;
                } else {
                    inCard = true;
                    cardStart = line.number;
                }
            } else if (end && nestedDepth > 0) {
                --nestedDepth;
            } else if (end && inCard) {
                addCard(properties);
                properties.clear();
                inCard = false;
            } else if (nestedDepth > 0) {
                continue;
            } else if (!inCard) {
                ++outsideLines;
            } else if (start < 0) {
                m_notProperties.add(
                    tr("Line %1 is not a vCard property: '%2'").arg(line.number).arg(line.text.left(60)));
            } else {
                properties.push_back(parseProperty(line, start));
            }
            if ((l + 1) % 65536 == 0)
                m_report.reportProgress(0.8 * double(l) / double(lines.size()));
        }
        if (!anyCard)
            return false;
        if (inCard) {
            m_report.warnings << tr("The last vCard, from line %1, has no 'END:VCARD' line").arg(cardStart);
            addCard(properties);
        }
        m_notProperties.appendTo(m_report.warnings);
        m_versionWarnings.appendTo(m_report.warnings);
        m_charsetWarnings.appendTo(m_report.warnings);
        m_quotedPrintableWarnings.appendTo(m_report.warnings);
        if (nestedCards > 0)
            m_report.information << tr("%1 nested vCard(s) skipped").arg(formatCount(nestedCards));
        if (outsideLines > 0)
            m_report.information << tr("%1 line(s) outside vCards ignored").arg(formatCount(outsideLines));
        return true;
    }

    void fill(Dataset &table) const
    {
        // Columns in the order of the known properties, then the others as first met; within
        // one property, as first met.
        std::vector<int> order(m_columns.size());
        for (size_t i = 0; i < order.size(); ++i)
            order[i] = int(i);
        std::stable_sort(order.begin(), order.end(),
            [this](int a, int b) { return m_columns[size_t(a)].rank < m_columns[size_t(b)].rank; });
        std::vector<int> position(m_columns.size());
        QStringList headers;
        for (size_t i = 0; i < order.size(); ++i) {
            position[size_t(order[i])] = int(i);
            headers << m_columns[size_t(order[i])].name;
        }
        const int width = headers.size();
        if (width == 0)
            return;
        table.setColumnCount(width);
        table.reserveRows(int(m_cards.size()));
        for (size_t c = 0; c < m_cards.size(); ++c) {
            const Card &card = m_cards[c];
            std::vector<QStringList> rows(size_t(card.rowCount));
            for (QStringList &row : rows) {
                row.reserve(width);
                for (int i = 0; i < width; ++i)
                    row.append(QString());
            }
            for (const Value &value : card.values) {
                const int column = position[size_t(value.column)];
                if (value.everyRow) {
                    for (QStringList &row : rows)
                        row[column] = value.text;
                } else {
                    rows[size_t(value.number - 1)][column] = value.text;
                }
            }
            for (const QStringList &row : rows)
                table.appendRow(row, true);
            if ((c + 1) % CardsPerProgress == 0)
                m_report.reportProgress(0.8 + 0.2 * double(c) / double(m_cards.size()));
        }
        table.setHeaders(headers);
    }

private:
    struct Column
    {
        QString name;
        int rank;
    };
    struct Value
    {
        int column;
        int number = 1; // the occurrence of its property in the card
        bool everyRow = false; // long form: a property that occurs once in the card
        QString text;
        QString family; // the properties counted together for repetition
    };
    struct Card
    {
        std::vector<Value> values;
        int rowCount = 1;
    };

    int column(const QString &name, int rank)
    {
        const auto found = m_columnIndex.constFind(name);
        if (found != m_columnIndex.constEnd())
            return found.value();
        m_columns.push_back(Column {name, rank});
        m_columnIndex.insert(name, int(m_columns.size()) - 1);
        return int(m_columns.size()) - 1;
    }

    // The value's text: quoted-printable and its character set decoded, base64 kept.
    QString decode(const Property &property, bool *isBinary)
    {
        *isBinary = property.encoding == QLatin1String("BASE64") || property.encoding == QLatin1String("B");
        if (*isBinary) {
            QString compact;
            for (const QChar c : property.value) {
                if (!c.isSpace())
                    compact += c;
            }
            return compact;
        }
        if (property.encoding != QLatin1String("QUOTED-PRINTABLE"))
            return property.value;
        bool valid = true;
        const QByteArray bytes = decodeQuotedPrintable(property.value, &valid);
        if (!valid)
            m_quotedPrintableWarnings.add(tr("Invalid quoted-printable text at line %1").arg(property.line));
        QTextCodec *codec = nullptr;
        if (!property.charset.isEmpty()) {
            codec = QTextCodec::codecForName(property.charset.toLatin1());
            if (!codec)
                m_charsetWarnings.add(tr("Unknown character set '%1' at line %2; UTF-8 was used")
                                          .arg(property.charset)
                                          .arg(property.line));
        }
        return codec ? codec->toUnicode(bytes) : QString::fromUtf8(bytes);
    }

    void addCard(const std::vector<Property> &properties)
    {
        Card card;
        QHash<QString, int> occurrences;
        const auto add = [&](const QString &family, const QList<QPair<QString, QString>> &cells, int rank) {
            const int number = ++occurrences[family];
            for (const auto &cell : cells) {
                Value value;
                const QString name = !m_longForm && number > 1
                    ? cell.first + QLatin1Char(' ') + QString::number(number)
                    : cell.first;
                value.column = column(name, rank);
                value.number = m_longForm ? number : 1;
                value.text = cell.second;
                value.family = family;
                card.values.push_back(std::move(value));
            }
            if (m_longForm)
                card.rowCount = std::max(card.rowCount, number);
        };

        for (const Property &property : properties) {
            bool isBinary = false;
            const QString value = decode(property, &isBinary);
            const int known = m_known.value(property.name, -1);
            if (property.name == QLatin1String("VERSION")) {
                QString version = value.trimmed();
                if (version != QLatin1String("2.1") && version != QLatin1String("3.0")
                    && version != QLatin1String("4.0")) {
                    m_versionWarnings.add(tr("Unknown vCard version '%1' at line %2; read as 3.0")
                                              .arg(version)
                                              .arg(property.line));
                    version = QStringLiteral("3.0");
                }
                add(QStringLiteral("VERSION"), {{tr("Version"), version}}, known);
                continue;
            }
            const int rank = known >= 0 ? known : KnownCount + otherRank(property.name);
            const KnownProperty *info = known >= 0 ? &KnownProperties[known] : nullptr;
            const QString suffix = !info || info->typed ? typeSuffix(property.types) : QString();
            if (isBinary) {
                const QString name = info ? QLatin1String(info->column) : property.name;
                add(name + suffix, {{name + suffix, value}}, rank);
                continue;
            }
            if (property.name == QLatin1String("N")) {
                const QStringList parts = splitUnescaped(value, QLatin1Char(';'));
                QList<QPair<QString, QString>> cells;
                for (int i = 0; i < 5; ++i)
                    cells << qMakePair(tr(NameParts[i]), unescape(parts.value(i)));
                add(QStringLiteral("N"), cells, rank);
            } else if (property.name == QLatin1String("ORG")) {
                QStringList parts = splitUnescaped(value, QLatin1Char(';'));
                for (QString &part : parts)
                    part = unescape(part);
                QList<QPair<QString, QString>> cells {{tr("Organization"), parts.takeFirst()}};
                if (!parts.isEmpty())
                    cells << qMakePair(tr("Department"), parts.join(QLatin1String("; ")));
                add(QStringLiteral("ORG"), cells, rank);
            } else if (property.name == QLatin1String("ADR")) {
                const QStringList parts = splitUnescaped(value, QLatin1Char(';'));
                const QString prefix = tr("Address") + suffix;
                QList<QPair<QString, QString>> cells;
                for (int i = 0; i < 7; ++i)
                    cells << qMakePair(prefix + tr(AddressParts[i]), unescape(parts.value(i)));
                add(prefix, cells, rank);
            } else {
                QString text;
                if (info && info->shape == Shape::List) {
                    QStringList items = splitUnescaped(value, QLatin1Char(','));
                    for (QString &item : items)
                        item = unescape(item);
                    text = items.join(QLatin1String(", "));
                } else {
                    text = unescape(value);
                }
                const QString name = (info ? tr(info->column) : property.name) + suffix;
                add(name, {{name, text}}, rank);
            }
        }
        if (m_longForm) {
            for (Value &value : card.values)
                value.everyRow = occurrences.value(value.family) == 1;
        }
        m_cards.push_back(std::move(card));
    }

    int otherRank(const QString &name)
    {
        const auto found = m_otherRanks.constFind(name);
        if (found != m_otherRanks.constEnd())
            return found.value();
        const int rank = m_otherRanks.size();
        m_otherRanks.insert(name, rank);
        return rank;
    }

    const bool m_longForm;
    ReadReport &m_report;
    QHash<QString, int> m_known;
    QHash<QString, int> m_otherRanks;
    std::vector<Column> m_columns;
    QHash<QString, int> m_columnIndex;
    std::vector<Card> m_cards;
    LimitedMessages m_notProperties;
    LimitedMessages m_versionWarnings;
    LimitedMessages m_charsetWarnings;
    LimitedMessages m_quotedPrintableWarnings;
};

} // namespace

bool readVCard(const QString &text, const InputOptions &options, Dataset &table, ReadReport &report)
{
    table.clear();
    CardReader reader(options, report);
    if (!reader.read(text)) {
        report.warnings.prepend(tr("No vCard found: the text has no 'BEGIN:VCARD' line"));
        return false;
    }
    reader.fill(table);
    report.reportProgress(1.0);
    return true;
}
