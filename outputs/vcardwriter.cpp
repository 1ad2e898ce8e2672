#include "vcardwriter.h"

#include "structuredtext.h"

#include "core/dataset.h"

#include <QCoreApplication>
#include <QHash>
#include <QRegularExpression>

using namespace StructuredText;

namespace {

const int VCardFileType = 6;

QString tr(const char *text)
{
    return QCoreApplication::translate("VCardWriter", text);
}

enum class Version { V21, V30, V40 };

// What one column holds.
struct ColumnRole
{
    enum Kind { Version, Text, FormattedName, NamePart, Organization, Department, AddressPart };
    Kind kind = Text;
    QString property;
    QStringList types;
    int part = 0;
    QString group; // the address or organization property this column is part of
};

// A property of every card, in the order of its first column.
struct Slot
{
    enum Kind { Text, Organization, Address };
    Kind kind = Text;
    QString property;
    QStringList types;
    int column = -1; // Text
    QVector<int> parts; // Address: the seven components' columns, -1 for none
    int organization = -1; // Organization: the name's column
    QVector<int> departments; // Organization: the department columns
};

const char *const NameParts[] = {
    "family name", "given name", "additional names", "honorific prefixes", "honorific suffixes"};
const char *const AddressParts[] = {
    "po box", "extended", "street", "locality", "region", "postal code", "country"};

struct KnownText
{
    const char *column;
    const char *property;
    bool typed;
};
const KnownText KnownTexts[] = {{"nickname", "NICKNAME", false}, {"title", "TITLE", false},
    {"role", "ROLE", false}, {"birthday", "BDAY", false}, {"anniversary", "ANNIVERSARY", false},
    {"gender", "GENDER", false}, {"email", "EMAIL", true}, {"phone", "TEL", true}, {"url", "URL", true},
    {"im", "IMPP", true}, {"note", "NOTE", false}, {"categories", "CATEGORIES", false}, {"uid", "UID", false},
    {"revision", "REV", false}, {"language", "LANG", false}, {"time zone", "TZ", false},
    {"geo", "GEO", false}, {"photo", "PHOTO", false}, {"logo", "LOGO", false}, {"sound", "SOUND", false},
    {"key", "KEY", false}};

bool isBinaryProperty(const QString &property)
{
    return property == QLatin1String("PHOTO") || property == QLatin1String("LOGO")
        || property == QLatin1String("SOUND") || property == QLatin1String("KEY");
}

// "X-" and the name in capitals, each run of other characters than letters, digits and "-"
// as one "-".
QString extendedProperty(const QString &header, const QString &name, WriteReport &report)
{
    QString property = name.toUpper();
    property.replace(QRegularExpression(QStringLiteral("[^A-Z0-9-]+")), QStringLiteral("-"));
    while (property.startsWith(QLatin1Char('-')))
        property.remove(0, 1);
    while (property.endsWith(QLatin1Char('-')))
        property.chop(1);
    property.prepend(QLatin1String("X-"));
    report.information << tr("Column '%1' written as property '%2'").arg(header, property);
    return property;
}

ColumnRole columnRole(const QString &header, WriteReport &report)
{
    static const QRegularExpression copyNumber(QStringLiteral(" (\\d+)$"));
    static const QRegularExpression typed(QStringLiteral("^(.*?)(?: \\(([^()]*)\\))?$"));
    static const QRegularExpression address(QStringLiteral(
        "^address(?: \\(([^()]*)\\))? (po box|extended|street|locality|region|postal code|country)$"));
    static const QRegularExpression propertyName(QStringLiteral("^[A-Za-z0-9-]+$"));
    QString name = header;
    QString copy;
    const QRegularExpressionMatch numbered = copyNumber.match(name);
    if (numbered.hasMatch() && numbered.capturedStart() > 0) {
        copy = numbered.captured(1);
        name.chop(numbered.capturedLength());
    }
    const QString lower = name.toLower();
    ColumnRole role;
    if (lower == QLatin1String("version")) {
        role.kind = ColumnRole::Version;
        return role;
    }
    if (lower == QLatin1String("formatted name")) {
        role.kind = ColumnRole::FormattedName;
        role.property = QStringLiteral("FN");
        return role;
    }
    for (int i = 0; i < 5; ++i) {
        if (lower == QLatin1String(NameParts[i])) {
            role.kind = ColumnRole::NamePart;
            role.part = i;
            return role;
        }
    }
    if (lower == QLatin1String("organization") || lower == QLatin1String("department")) {
        role.kind =
            lower == QLatin1String("organization") ? ColumnRole::Organization : ColumnRole::Department;
        role.property = QStringLiteral("ORG");
        role.group = QStringLiteral("ORG#") + copy;
        return role;
    }
    const QRegularExpressionMatch addressMatch = address.match(lower);
    if (addressMatch.hasMatch()) {
        role.kind = ColumnRole::AddressPart;
        role.property = QStringLiteral("ADR");
        role.types = addressMatch.captured(1).split(QLatin1Char(','), Qt::SkipEmptyParts);
        for (int i = 0; i < 7; ++i) {
            if (addressMatch.captured(2) == QLatin1String(AddressParts[i]))
                role.part = i;
        }
        role.group = QStringLiteral("ADR#") + addressMatch.captured(1) + QLatin1Char('#') + copy;
        return role;
    }
    const QRegularExpressionMatch typedMatch = typed.match(name);
    const QString base = typedMatch.captured(1);
    const QStringList types = typedMatch.captured(2).split(QLatin1Char(','), Qt::SkipEmptyParts);
    for (const KnownText &known : KnownTexts) {
        if (lower == QLatin1String(known.column)) {
            role.property = QLatin1String(known.property);
            return role;
        }
        if (known.typed && base.toLower() == QLatin1String(known.column)) {
            role.property = QLatin1String(known.property);
            role.types = types;
            return role;
        }
    }
    if (propertyName.match(base).hasMatch()) {
        role.property = base.toUpper();
        role.types = types;
        return role;
    }
    role.property = extendedProperty(header, name, report);
    return role;
}

// A text value's escapes: in 3.0 and 4.0 "\", line breaks, "," and ";"; in 2.1 ";" only.
QString escaped(const QString &text, Version version)
{
    QString result;
    result.reserve(text.size() + 4);
    const int n = text.size();
    for (int i = 0; i < n; ++i) {
        const QChar c = text.at(i);
        if (version == Version::V21) {
            if (c == QLatin1Char(';'))
                result += QLatin1Char('\\');
            result += c;
            continue;
        }
        switch (c.unicode()) {
        case '\\':
            result += QLatin1String("\\\\");
            break;
        case ',':
            result += QLatin1String("\\,");
            break;
        case ';':
            result += QLatin1String("\\;");
            break;
        case '\r':
            if (i + 1 < n && text.at(i + 1) == QLatin1Char('\n'))
                ++i;
            result += QLatin1String("\\n");
            break;
        case '\n':
            result += QLatin1String("\\n");
            break;
        default:
            result += c;
        }
    }
    return result;
}

bool needsQuotedPrintable(const QString &text)
{
    for (const QChar c : text) {
        if (c.unicode() > 0x7E || c == QLatin1Char('\n') || c == QLatin1Char('\r'))
            return true;
    }
    return false;
}

int utf8Length(uint code)
{
    return code < 0x80 ? 1 : code < 0x800 ? 2 : code < 0x10000 ? 3 : 4;
}

class CardWriter
{
public:
    CardWriter(TextSink &sink, const QString &lineEnding)
        : m_sink(sink)
        , m_lineEnding(lineEnding)
    { }

    void begin(Version version)
    {
        m_version = version;
        line(QStringLiteral("BEGIN:VCARD"));
        line(QStringLiteral("VERSION:")
            + (version == Version::V21        ? QLatin1String("2.1")
                    : version == Version::V30 ? QLatin1String("3.0")
                                              : QLatin1String("4.0")));
    }
    void end() { line(QStringLiteral("END:VCARD")); }

    // A property whose components are escaped one by one and joined by ";".
    void property(const QString &name, const QStringList &types, const QStringList &components)
    {
        QString value;
        for (int i = 0; i < components.size(); ++i) {
            if (i > 0)
                value += QLatin1Char(';');
            value += escaped(components.at(i), m_version);
        }
        QString prefix = name;
        if (!types.isEmpty()) {
            if (m_version == Version::V21) {
                for (const QString &type : types)
                    prefix += QLatin1Char(';') + type.toUpper();
            } else {
                prefix += QLatin1String(";TYPE=") + types.join(QLatin1Char(','));
            }
        }
        if (isBinaryProperty(name) && m_version != Version::V40 && !value.contains(QLatin1Char(':'))
            && !value.isEmpty()) {
            prefix +=
                m_version == Version::V21 ? QLatin1String(";ENCODING=BASE64") : QLatin1String(";ENCODING=b");
        }
        if (m_version == Version::V21 && needsQuotedPrintable(value)) {
            prefix += QLatin1String(";CHARSET=UTF-8;ENCODING=QUOTED-PRINTABLE:");
            m_sink << quotedPrintableLine(prefix, value, m_lineEnding);
            m_sink.endLine();
            return;
        }
        line(prefix + QLatin1Char(':') + value);
    }

private:
    void line(const QString &text)
    {
        if (m_version == Version::V21)
            m_sink << text;
        else
            m_sink << foldVCardLine(text, m_lineEnding);
        m_sink.endLine();
    }

    TextSink &m_sink;
    const QString m_lineEnding;
    Version m_version = Version::V30;
};

} // namespace

QString foldVCardLine(const QString &line, const QString &lineEnding)
{
    // A UTF-16 unit takes at most three bytes, so most lines need no count.
    if (line.size() <= 25)
        return line;
    QString result;
    int bytes = 0;
    const int n = line.size();
    for (int i = 0; i < n; ++i) {
        int size = 1;
        uint code = line.at(i).unicode();
        if (line.at(i).isHighSurrogate() && i + 1 < n && line.at(i + 1).isLowSurrogate()) {
            code = QChar::surrogateToUcs4(line.at(i), line.at(i + 1));
            size = 2;
        }
        const int length = utf8Length(code);
        if (bytes + length > 75) {
            result += lineEnding + QLatin1Char(' ');
            bytes = 1;
        }
        result += line.midRef(i, size);
        bytes += length;
        i += size - 1;
    }
    return result;
}

QString quotedPrintableLine(const QString &prefix, const QString &value, const QString &lineEnding)
{
    static const char hex[] = "0123456789ABCDEF";
    const QByteArray utf8 = value.toUtf8();
    QString result = prefix;
    int column = prefix.size();
    for (int i = 0; i < utf8.size(); ++i) {
        const uchar byte = uchar(utf8.at(i));
        QString token;
        const bool last = i == utf8.size() - 1;
        // Blanks at the end of the value would be lost; they are encoded.
        if ((byte >= 33 && byte <= 126 && byte != '=') || ((byte == ' ' || byte == '\t') && !last))
            token = QChar(byte);
        else
            token = QString(QLatin1Char('=')) + QLatin1Char(hex[byte >> 4]) + QLatin1Char(hex[byte & 15]);
        // Room is left for the "=" of a soft line break.
        const int room = last ? 76 : 75;
        if (column + token.size() > room) {
            result += QLatin1Char('=') + lineEnding;
            column = 0;
        }
        result += token;
        column += token.size();
    }
    return result;
}

bool writeVCard(const Dataset &dataset, const OutputOptions &options, QIODevice &device, WriteReport &report)
{
    const QString lineEnding = StructuredText::lineEnding(options, VCardFileType, true, report);
    TextSink sink(device, options.encoding, lineEnding);

    // The properties every card can have, from the columns.
    const QStringList headers = uniqueNames(dataset.displayHeaders());
    const int columns = headers.size();
    int versionColumn = -1;
    int formattedNameColumn = -1;
    QVector<int> nameParts(5, -1);
    QVector<Slot> cardProperties;
    QHash<QString, int> groups;
    for (int c = 0; c < columns; ++c) {
        const ColumnRole role = columnRole(headers.at(c), report);
        switch (role.kind) {
        case ColumnRole::Version:
        case ColumnRole::NamePart: {
            int &column = role.kind == ColumnRole::Version ? versionColumn : nameParts[role.part];
            if (column < 0) {
                column = c;
                continue;
            }
            // A card has one version and one name: a second column of either is a property of its own.
            Slot slot;
            slot.property = extendedProperty(headers.at(c), headers.at(c), report);
            slot.column = c;
            cardProperties << slot;
            continue;
        }
        case ColumnRole::FormattedName:
            if (formattedNameColumn < 0) {
                formattedNameColumn = c;
                continue;
            }
            break;
        case ColumnRole::Organization:
        case ColumnRole::Department:
        case ColumnRole::AddressPart: {
            int index = groups.value(role.group, -1);
            if (index < 0) {
                index = cardProperties.size();
                groups.insert(role.group, index);
                Slot slot;
                slot.kind = role.kind == ColumnRole::AddressPart ? Slot::Address : Slot::Organization;
                slot.property = role.property;
                slot.types = role.types;
                slot.parts.fill(-1, 7);
                cardProperties << slot;
            }
            Slot &slot = cardProperties[index];
            if (role.kind == ColumnRole::AddressPart) {
                if (slot.parts.at(role.part) < 0)
                    slot.parts[role.part] = c;
            } else if (role.kind == ColumnRole::Organization) {
                if (slot.organization < 0)
                    slot.organization = c;
            } else {
                slot.departments << c;
            }
            continue;
        }
        case ColumnRole::Text:
            break;
        }
        Slot slot;
        slot.property = role.property;
        slot.types = role.types;
        slot.column = c;
        cardProperties << slot;
    }

    bool anyVersion4 = false;
    CardWriter card(sink, lineEnding);
    const int rows = dataset.rowCount();
    for (int r = 0; r < rows; ++r) {
        if (r % 1000 == 0)
            report.reportProgress(double(r) / rows);
        const QStringList &cells = dataset.row(r);
        auto cell = [&](int column) { return cells.value(column); };
        const QString versionText = cell(versionColumn).trimmed();
        const Version version = versionText == QLatin1String("2.1") ? Version::V21
            : versionText == QLatin1String("4.0")                   ? Version::V40
                                                                    : Version::V30;
        anyVersion4 = anyVersion4 || version == Version::V40;
        card.begin(version);

        QStringList name;
        for (const int column : nameParts)
            name << cell(column);
        const bool nameEmpty =
            std::all_of(name.cbegin(), name.cend(), [](const QString &part) { return part.isEmpty(); });
        if (version != Version::V40 || !nameEmpty)
            card.property(QStringLiteral("N"), {}, name);
        QString formattedName = cell(formattedNameColumn);
        if (version == Version::V21) {
            if (formattedNameColumn >= 0 && (!formattedName.isEmpty() || !options.removeEmpty))
                card.property(QStringLiteral("FN"), {}, {formattedName});
        } else {
            if (formattedName.isEmpty()) {
                const QStringList given = {name.at(1), name.at(0)};
                QStringList parts;
                for (const QString &part : given) {
                    if (!part.isEmpty())
                        parts << part;
                }
                formattedName = parts.join(QLatin1Char(' '));
            }
            if (formattedName.isEmpty()) {
                for (const Slot &slot : cardProperties) {
                    if (slot.kind == Slot::Organization && slot.organization >= 0) {
                        formattedName = cell(slot.organization);
                        break;
                    }
                }
            }
            card.property(QStringLiteral("FN"), {}, {formattedName});
        }

        for (const Slot &slot : cardProperties) {
            QStringList components;
            if (slot.kind == Slot::Text) {
                components << cell(slot.column);
            } else if (slot.kind == Slot::Address) {
                for (const int column : slot.parts)
                    components << cell(column);
            } else {
                components << cell(slot.organization);
                for (const int column : slot.departments) {
                    const QString department = cell(column);
                    if (!department.isEmpty())
                        components << department.split(QLatin1String("; "));
                }
            }
            const bool empty = std::all_of(
                components.cbegin(), components.cend(), [](const QString &part) { return part.isEmpty(); });
            if (empty && options.removeEmpty)
                continue;
            card.property(slot.property, slot.types, components);
        }
        card.end();
    }
    if (anyVersion4 && sink.encodingName() != QLatin1String("UTF-8")) {
        report.warnings
            << tr("vCard 4.0 must be written in UTF-8; the file is written in %1").arg(sink.encodingName());
    }
    report.reportProgress(1);
    return sink.finish(report);
}
