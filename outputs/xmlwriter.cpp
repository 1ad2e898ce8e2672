#include "xmlwriter.h"

#include "structuredtext.h"

#include "core/dataset.h"
#include "core/values.h"

#include <QCoreApplication>
#include <QRegularExpression>

using namespace StructuredText;

namespace {

const int XmlFileType = 5;

QString tr(const char *text)
{
    return QCoreApplication::translate("XmlWriter", text);
}

bool isNameStart(uint c)
{
    return c == ':' || (c >= 'A' && c <= 'Z') || c == '_' || (c >= 'a' && c <= 'z')
        || (c >= 0xC0 && c <= 0xD6) || (c >= 0xD8 && c <= 0xF6) || (c >= 0xF8 && c <= 0x2FF)
        || (c >= 0x370 && c <= 0x37D) || (c >= 0x37F && c <= 0x1FFF) || c == 0x200C || c == 0x200D
        || (c >= 0x2070 && c <= 0x218F) || (c >= 0x2C00 && c <= 0x2FEF) || (c >= 0x3001 && c <= 0xD7FF)
        || (c >= 0xF900 && c <= 0xFDCF) || (c >= 0xFDF0 && c <= 0xFFFD) || (c >= 0x10000 && c <= 0xEFFFF);
}

bool isNameChar(uint c)
{
    return isNameStart(c) || c == '-' || c == '.' || (c >= '0' && c <= '9') || c == 0xB7
        || (c >= 0x300 && c <= 0x36F) || c == 0x203F || c == 0x2040;
}

// Characters XML 1.0 allows in text: not the C0 controls but tab, line feed and carriage
// return, not U+FFFE and U+FFFF, and no unpaired surrogate.
bool isXmlChar(uint c)
{
    if (c < 0x20)
        return c == 0x9 || c == 0xA || c == 0xD;
    return (c < 0xD800 || c > 0xDFFF) && c != 0xFFFE && c != 0xFFFF;
}

// Appends a text or attribute value escaped, leaving out what XML can't hold and counting it.
void appendEscaped(QString &result, const QString &text, bool attribute, qint64 &removed)
{
    const int n = text.size();
    for (int i = 0; i < n; ++i) {
        const QChar c = text.at(i);
        uint code = c.unicode();
        if (c.isHighSurrogate() && i + 1 < n && text.at(i + 1).isLowSurrogate()) {
            result += c;
            result += text.at(++i);
            continue;
        }
        if (!isXmlChar(code)) {
            ++removed;
            continue;
        }
        switch (code) {
        case '&':
            result += QLatin1String("&amp;");
            break;
        case '<':
            result += QLatin1String("&lt;");
            break;
        case '>':
            result += attribute ? QLatin1String(">") : QLatin1String("&gt;");
            break;
        case '"':
            result += attribute ? QLatin1String("&quot;") : QLatin1String("\"");
            break;
        case '\t':
            result += attribute ? QLatin1String("&#9;") : QLatin1String("\t");
            break;
        case '\n':
            result += attribute ? QLatin1String("&#10;") : QLatin1String("\n");
            break;
        case '\r':
            result += QLatin1String("&#13;");
            break;
        default:
            result += c;
        }
    }
}

struct TagName
{
    QString name;
    QString rest; // written as it stands inside the start tag
};

// A root or row name option: the element name up to the first blank, then the rest.
TagName tagName(const QString &option, const QString &fallback, WriteReport &report)
{
    const QString text = option.trimmed();
    const int blank = text.indexOf(QRegularExpression(QStringLiteral("\\s")));
    TagName tag;
    tag.name = blank < 0 ? text : text.left(blank);
    tag.rest = blank < 0 ? QString() : text.mid(blank);
    if (tag.name.isEmpty()) {
        tag.name = fallback;
        return tag;
    }
    const QString valid = xmlName(tag.name);
    if (valid != tag.name) {
        report.warnings << tr("'%1' is not a valid XML name; '%2' was used").arg(tag.name, valid);
        tag.name = valid;
    }
    return tag;
}

// The text's lines, each ended by the line ending.
QString asLines(const QString &text, const QString &lineEnding)
{
    if (text.isEmpty())
        return QString();
    QStringList lines = text.split(QRegularExpression(QStringLiteral("\r\n|\n|\r")));
    if (lines.last().isEmpty())
        lines.removeLast();
    QString result;
    for (const QString &line : lines)
        result += line + lineEnding;
    return result;
}

// "UTF-16" for UTF-16LE and UTF-16BE, "UTF-32" likewise, else the codec's name.
QString declaredEncoding(const QString &name)
{
    const QString upper = name.toUpper();
    if (upper.startsWith(QLatin1String("UTF-16")))
        return QStringLiteral("UTF-16");
    if (upper.startsWith(QLatin1String("UTF-32")))
        return QStringLiteral("UTF-32");
    return name;
}

} // namespace

QString xmlName(const QString &text)
{
    QString result;
    result.reserve(text.size() + 1);
    const QVector<uint> codes = text.toUcs4();
    for (const uint code : codes) {
        if (isNameChar(code))
            result += QString::fromUcs4(&code, 1);
        else
            result += QLatin1Char('_');
    }
    if (!codes.isEmpty()
        && (!isNameStart(codes.first()) || result.startsWith(QLatin1String("xml"), Qt::CaseInsensitive)))
        result.prepend(QLatin1Char('_'));
    return result;
}

bool writeXml(const Dataset &dataset, const OutputOptions &options, QIODevice &device, WriteReport &report)
{
    const QString lineEnding = StructuredText::lineEnding(options, XmlFileType, false, report);
    const TagName root = tagName(options.xmlRootName, QStringLiteral("root"), report);
    const TagName row = tagName(options.xmlRowName, QStringLiteral("record"), report);

    // Attributes and elements are named apart: "@id" and "id" don't clash.
    const QStringList headers = dataset.displayHeaders();
    const int columns = headers.size();
    QVector<bool> isAttribute(columns);
    QStringList attributeNames;
    QStringList elementNames;
    for (int c = 0; c < columns; ++c) {
        isAttribute[c] = headers.at(c).startsWith(QLatin1Char('@'));
        QString name = xmlName(isAttribute.at(c) ? headers.at(c).mid(1) : headers.at(c));
        if (name.isEmpty())
            name = QStringLiteral("column_%1").arg(c + 1);
        (isAttribute.at(c) ? attributeNames : elementNames) << name;
    }
    // The duplicate rule's blank isn't allowed in names either.
    attributeNames = uniqueNames(attributeNames).replaceInStrings(QStringLiteral(" "), QStringLiteral("_"));
    elementNames = uniqueNames(elementNames).replaceInStrings(QStringLiteral(" "), QStringLiteral("_"));
    QStringList names;
    for (int c = 0, a = 0, e = 0; c < columns; ++c) {
        names << (isAttribute.at(c) ? attributeNames.at(a++) : elementNames.at(e++));
        const QString original = isAttribute.at(c) ? headers.at(c).mid(1) : headers.at(c);
        if (names.last() != original) {
            report.information << (isAttribute.at(c) ? tr("Column '%1' written as attribute '%2'")
                                                     : tr("Column '%1' written as element '%2'"))
                                      .arg(headers.at(c), names.last());
        }
    }

    TextSink sink(device, options.encoding, lineEnding);
    const QString endTag = QLatin1String("</") + root.name + QLatin1Char('>');
    const bool appending = options.writeMode == OutputOptions::Append && !holdsNoText(device);
    ClosingText closing;
    if (appending) {
        if (!makeSeekable(device) || !closing.find(device, sink, endTag, true)) {
            report.warnings.prepend(tr("Unable to append to '%1': it does not end with '</%2>'")
                                        .arg(absolutePath(options.path), root.name));
            return false;
        }
        if (dataset.hasNoRows())
            return sink.finish(report);
        closing.seekToStart(device);
    } else {
        const QString encoding = declaredEncoding(sink.encodingName());
        if (encoding.startsWith(QLatin1String("UTF-")) && encoding != QLatin1String("UTF-8")
            && !options.byteOrderMark) {
            report.warnings << tr("An XML file in %1 needs a byte order mark; turn on 'Byte Order Mark'")
                                   .arg(options.encoding);
        }
        sink << QStringLiteral("<?xml version=\"1.0\" encoding=\"%1\"?>").arg(encoding);
        sink.endLine();
        const QString comment = markupComment(options.fileComment, QDateTime::currentDateTime());
        if (!comment.isEmpty()) {
            sink << comment;
            sink.endLine();
        }
        sink << asLines(options.xmlAboveRoot, lineEnding);
        sink << QLatin1Char('<') << root.name << root.rest << QLatin1Char('>');
        sink.endLine();
        sink << asLines(options.xmlBelowRoot, lineEnding);
    }

    qint64 removed = 0;
    const QString rowStart = QLatin1String("    <") + row.name;
    const QString rowEnd = QLatin1String("    </") + row.name + QLatin1Char('>');
    // Children are gathered apart because attributes come first; the buffer keeps its size.
    QString children;
    const int rows = dataset.rowCount();
    for (int r = 0; r < rows; ++r) {
        if (r % 1000 == 0)
            report.reportProgress(double(r) / rows);
        QString &out = sink.buffer();
        out += rowStart;
        out += row.rest;
        children.resize(0);
        const QStringList &cells = dataset.row(r);
        for (int c = 0; c < columns; ++c) {
            const QString cell = cells.value(c);
            if (cell.isEmpty() && options.removeEmpty)
                continue;
            const QString &name = names.at(c);
            if (isAttribute.at(c)) {
                out += QLatin1Char(' ');
                out += name;
                out += QLatin1String("=\"");
                appendEscaped(out, cell, true, removed);
                out += QLatin1Char('"');
                continue;
            }
            children += QLatin1String("        <");
            children += name;
            if (cell.isEmpty()) {
                children += QLatin1String("/>");
            } else {
                children += QLatin1Char('>');
                appendEscaped(children, cell, false, removed);
                children += QLatin1String("</");
                children += name;
                children += QLatin1Char('>');
            }
            children += lineEnding;
        }
        if (children.isEmpty()) {
            sink << QLatin1String("/>");
        } else {
            sink << QLatin1Char('>');
            sink.endLine();
            sink << children << rowEnd;
        }
        sink.endLine();
    }
    if (removed > 0) {
        report.warnings << tr("%1 %2 not allowed in XML were left out")
                               .arg(formatCount(removed), plural(removed, tr("character"), tr("characters")));
    }
    if (appending) {
        // A device that fails is named by the write pipeline.
        if (!closing.finish(device, sink))
            return false;
    } else {
        sink << endTag;
        sink.endLine();
    }
    report.reportProgress(1);
    return sink.finish(report);
}
