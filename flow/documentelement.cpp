#include "documentelement.h"

#include <QUrl>
#include <QXmlStreamReader>

#include <cmath>

namespace {

const QChar ItemSeparator(0x1F);
const QChar OldItemSeparator(QLatin1Char('^'));

// Documents hold U+001F between list items, written as it stands, which XML 1.0 doesn't
// allow. The stream reader refuses such characters, so before parsing each control byte
// becomes a private-use character and is turned back in attribute values.
constexpr ushort ControlStandIn = 0xF700;

QByteArray standInControlBytes(const QByteArray &text)
{
    // A text with NUL bytes is UTF-16 or no text at all: the reader decides which.
    if (text.contains('\0'))
        return text;
    QByteArray result;
    result.reserve(text.size());
    for (const char c : text) {
        const auto byte = static_cast<unsigned char>(c);
        if (byte < 0x20 && byte != '\t' && byte != '\n' && byte != '\r')
            result += QString(QChar(ushort(ControlStandIn + byte))).toUtf8();
        else
            result += c;
    }
    return result;
}

QString restoreControlCharacters(QString text)
{
    for (QChar &c : text) {
        if (c.unicode() >= ControlStandIn && c.unicode() < ControlStandIn + 0x20)
            c = QChar(ushort(c.unicode() - ControlStandIn));
    }
    return text;
}

void appendEscaped(QString &out, const QString &value)
{
    for (const QChar c : value) {
        switch (c.unicode()) {
        case '<':
            out += QLatin1String("&lt;");
            break;
        case '>':
            out += QLatin1String("&gt;");
            break;
        case '&':
            out += QLatin1String("&amp;");
            break;
        case '"':
            out += QLatin1String("&quot;");
            break;
        case '\n':
            out += QLatin1String("&#xa;");
            break;
        case '\r':
            out += QLatin1String("&#xd;");
            break;
        case '\t':
            out += QLatin1String("&#x9;");
            break;
        default:
            out += c;
        }
    }
}

void appendElement(QString &out, const DocumentElement &element, int depth)
{
    const QString indent(depth * 4, QLatin1Char(' '));
    out += indent;
    out += QLatin1Char('<');
    out += element.name();
    for (const auto &attribute : element.attributes()) {
        out += QLatin1Char(' ');
        out += attribute.first;
        out += QLatin1String("=\"");
        appendEscaped(out, attribute.second);
        out += QLatin1Char('"');
    }
    if (element.children().isEmpty()) {
        out += QLatin1String("/>\n");
        return;
    }
    out += QLatin1String(">\n");
    for (const DocumentElement &child : element.children())
        appendElement(out, child, depth + 1);
    out += indent;
    out += QLatin1String("</");
    out += element.name();
    out += QLatin1String(">\n");
}

} // namespace

DocumentElement::DocumentElement(const QString &name)
    : m_name(name)
{ }

void DocumentElement::setAttribute(const QString &name, const QString &value)
{
    for (auto &attribute : m_attributes) {
        if (attribute.first == name) {
            attribute.second = value;
            return;
        }
    }
    m_attributes.append(qMakePair(name, value));
}

bool DocumentElement::hasAttribute(const QString &name) const
{
    for (const auto &attribute : m_attributes) {
        if (attribute.first == name)
            return true;
    }
    return false;
}

QString DocumentElement::attribute(const QString &name, const QString &defaultValue) const
{
    for (const auto &attribute : m_attributes) {
        if (attribute.first == name)
            return attribute.second;
    }
    return defaultValue;
}

void DocumentElement::setText(const QString &name, const QString &text)
{
    if (!text.isEmpty())
        setAttribute(name, encode(text));
}

void DocumentElement::setInt(const QString &name, int value)
{
    setAttribute(name, QString::number(value));
}

void DocumentElement::setBool(const QString &name, bool value)
{
    setAttribute(name, value ? QStringLiteral("1") : QStringLiteral("0"));
}

void DocumentElement::setTextList(const QString &name, const QStringList &items)
{
    const QString joined = joinList(items);
    if (!joined.isEmpty())
        setAttribute(name, joined);
}

void DocumentElement::setIntList(const QString &name, const QList<int> &values)
{
    QStringList items;
    for (const int value : values)
        items << QString::number(value);
    setTextList(name, items);
}

void DocumentElement::setPoint(const QString &name, const QPointF &point)
{
    setAttribute(name, pointText(point));
}

void DocumentElement::setColor(const QString &name, const QColor &color)
{
    if (!color.isValid()) {
        setAttribute(name, QString());
        return;
    }
    setAttribute(name,
        QStringList {
            QString::number(color.red()), QString::number(color.green()), QString::number(color.blue())}
            .join(ItemSeparator));
}

QString DocumentElement::text(const QString &name, const QString &defaultValue) const
{
    if (!hasAttribute(name))
        return defaultValue;
    return decode(attribute(name));
}

int DocumentElement::intValue(const QString &name, int defaultValue) const
{
    bool ok = false;
    const int value = attribute(name).trimmed().toInt(&ok);
    return ok ? value : defaultValue;
}

bool DocumentElement::boolValue(const QString &name, bool defaultValue) const
{
    bool ok = false;
    const int value = attribute(name).trimmed().toInt(&ok);
    return ok ? value != 0 : defaultValue;
}

QStringList DocumentElement::textList(const QString &name) const
{
    return splitList(attribute(name));
}

QList<int> DocumentElement::intList(const QString &name) const
{
    QList<int> values;
    for (const QString &item : textList(name)) {
        bool ok = false;
        const int value = item.trimmed().toInt(&ok);
        if (ok)
            values << value;
    }
    return values;
}

QPointF DocumentElement::point(const QString &name, const QPointF &defaultValue) const
{
    const QStringList items = textList(name);
    if (items.size() != 2)
        return defaultValue;
    bool okX = false;
    bool okY = false;
    const double x = items.at(0).trimmed().toDouble(&okX);
    const double y = items.at(1).trimmed().toDouble(&okY);
    if (!okX || !okY || !std::isfinite(x) || !std::isfinite(y))
        return defaultValue;
    return QPointF(x, y);
}

QColor DocumentElement::color(const QString &name) const
{
    const QStringList items = textList(name);
    if (items.size() != 3)
        return QColor();
    int parts[3];
    for (int i = 0; i < 3; ++i) {
        bool ok = false;
        parts[i] = items.at(i).trimmed().toInt(&ok);
        if (!ok || parts[i] < 0 || parts[i] > 255)
            return QColor();
    }
    return QColor(parts[0], parts[1], parts[2]);
}

DocumentElement &DocumentElement::appendChild(const QString &name)
{
    m_children.append(DocumentElement(name));
    return m_children.last();
}

QList<const DocumentElement *> DocumentElement::childElements(const QString &name) const
{
    QList<const DocumentElement *> found;
    for (const DocumentElement &child : m_children) {
        if (child.name() == name)
            found << &child;
    }
    return found;
}

const DocumentElement *DocumentElement::firstChild(const QString &name) const
{
    for (const DocumentElement &child : m_children) {
        if (child.name() == name)
            return &child;
    }
    return nullptr;
}

DocumentElement *DocumentElement::firstChild(const QString &name)
{
    for (DocumentElement &child : m_children) {
        if (child.name() == name)
            return &child;
    }
    return nullptr;
}

QString DocumentElement::encode(const QString &text)
{
    return QString::fromLatin1(QUrl::toPercentEncoding(text));
}

QString DocumentElement::decode(const QString &text)
{
    return QUrl::fromPercentEncoding(text.toUtf8());
}

QString DocumentElement::joinList(const QStringList &items)
{
    QStringList encoded;
    encoded.reserve(items.size());
    for (const QString &item : items)
        encoded << encode(item);
    return encoded.join(ItemSeparator);
}

QStringList DocumentElement::splitList(const QString &text)
{
    if (text.isEmpty())
        return QStringList();
    QStringList items = text.split(text.contains(ItemSeparator) ? ItemSeparator : OldItemSeparator);
    for (QString &item : items)
        item = decode(item);
    return items;
}

QString DocumentElement::pointText(const QPointF &point)
{
    return QString::number(point.x(), 'g', 6) + ItemSeparator + QString::number(point.y(), 'g', 6);
}

QByteArray DocumentElement::toXml(const QString &documentType) const
{
    QString out = QStringLiteral("<!DOCTYPE %1>\n").arg(documentType);
    appendElement(out, *this, 0);
    return out.toUtf8();
}

DocumentParseResult parseDocumentText(const QByteArray &text, int maximumDepth)
{
    DocumentParseResult result;
    QXmlStreamReader reader(standInControlBytes(text));
    QList<DocumentElement *> open;
    bool haveRoot = false;
    while (!reader.atEnd()) {
        switch (reader.readNext()) {
        case QXmlStreamReader::DTD:
            result.documentType = reader.dtdName().toString();
            // Declared entities are what a hostile document multiplies into gigabytes.
            if (!reader.entityDeclarations().isEmpty())
                reader.raiseError(QStringLiteral("Entity declarations are not accepted."));
            break;
        case QXmlStreamReader::EntityReference:
            reader.raiseError(QStringLiteral("Entity references are not accepted."));
            break;
        case QXmlStreamReader::StartElement: {
            if (open.size() >= maximumDepth) {
                reader.raiseError(QStringLiteral("Elements nested deeper than %1 levels.").arg(maximumDepth));
                break;
            }
            DocumentElement *element = nullptr;
            if (open.isEmpty()) {
                haveRoot = true;
                result.root = DocumentElement(reader.name().toString());
                element = &result.root;
            } else {
                element = &open.last()->appendChild(reader.name().toString());
            }
            for (const QXmlStreamAttribute &attribute : reader.attributes())
                element->setAttribute(attribute.qualifiedName().toString(),
                    restoreControlCharacters(attribute.value().toString()));
            open << element;
            break;
        }
        case QXmlStreamReader::EndElement:
            if (!open.isEmpty())
                open.removeLast();
            break;
        default:
            break;
        }
    }
    if (reader.hasError()) {
        result.errorMessage = reader.errorString();
        result.errorLine = reader.lineNumber();
        result.errorColumn = reader.columnNumber();
        result.root = DocumentElement();
        return result;
    }
    result.ok = haveRoot;
    return result;
}
