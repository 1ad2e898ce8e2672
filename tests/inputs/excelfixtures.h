#pragma once

// libgsf's headers come first: Qt's keyword macros would clash with glib's.
#include <gsf/gsf-outfile-msole.h>
#include <gsf/gsf-outfile.h>
#include <gsf/gsf-output-stdio.h>
#include <gsf/gsf-utils.h>

#include "core/dataset.h"

#include <QFile>
#include <QList>
#include <QPair>
#include <QStringList>
#include <QtEndian>

#include <cstring>
#include <zip.h>

// Workbooks made by the tests themselves: zip packages written with libzip, compound files
// with libgsf, and BIFF8 record streams built record by record.
namespace excelfixtures {

using Entries = QList<QPair<QString, QByteArray>>;

// The cells as "a|b\nc|d", so that texts with commas stay readable.
inline QString tableText(const Dataset &table)
{
    QStringList lines;
    for (int r = 0; r < table.rowCount(); ++r)
        lines << table.row(r).join(QLatin1Char('|'));
    return lines.join(QLatin1Char('\n'));
}

inline bool writeZip(const QString &path, const Entries &entries)
{
    int error = 0;
    zip_t *zip = zip_open(QFile::encodeName(path).constData(), ZIP_CREATE | ZIP_TRUNCATE, &error);
    if (!zip)
        return false;
    for (const auto &entry : entries) {
        zip_source_t *source =
            zip_source_buffer(zip, entry.second.constData(), zip_uint64_t(entry.second.size()), 0);
        if (!source || zip_file_add(zip, entry.first.toUtf8().constData(), source, ZIP_FL_ENC_UTF_8) < 0) {
            zip_source_free(source);
            zip_discard(zip);
            return false;
        }
    }
    return zip_close(zip) == 0;
}

inline bool writeFile(const QString &path, const QByteArray &bytes)
{
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size();
}

inline bool writeCompoundFile(const QString &path, const Entries &streams)
{
    static const bool initialised = [] {
        gsf_init();
        return true;
    }();
    Q_UNUSED(initialised)
    GsfOutput *sink = gsf_output_stdio_new(QFile::encodeName(path).constData(), nullptr);
    if (!sink)
        return false;
    GsfOutfile *ole = gsf_outfile_msole_new(sink);
    g_object_unref(sink);
    bool ok = ole != nullptr;
    for (const auto &stream : streams) {
        if (!ok)
            break;
        GsfOutput *child = gsf_outfile_new_child(ole, stream.first.toUtf8().constData(), FALSE);
        ok = child
            && gsf_output_write(child, size_t(stream.second.size()),
                reinterpret_cast<const guint8 *>(stream.second.constData()));
        if (child) {
            gsf_output_close(child);
            g_object_unref(child);
        }
    }
    if (ole) {
        gsf_output_close(GSF_OUTPUT(ole));
        g_object_unref(ole);
    }
    return ok;
}

// ---- .xlsx packages ----

inline QByteArray xmlEscape(const QString &text)
{
    return text.toHtmlEscaped().toUtf8();
}

// A package with one or more sheets; each part can be replaced before writing.
struct XlsxPackage
{
    struct Sheet
    {
        QString name;
        QByteArray xml; // the whole worksheet part
        QString state; // "", "hidden" or "veryHidden"
    };
    QList<Sheet> sheets;
    QStringList sharedStrings; // each a whole <si> element's content
    QByteArray styles; // the whole styles part, empty for none
    QByteArray workbookProperties; // attributes of workbookPr
    bool strict = false;
    bool absoluteTargets = false;

    QString mainNamespace() const
    {
        return strict ? QStringLiteral("http://purl.oclc.org/ooxml/spreadsheetml/main")
                      : QStringLiteral("http://schemas.openxmlformats.org/spreadsheetml/2006/main");
    }
    QString relationshipNamespace() const
    {
        return strict ? QStringLiteral("http://purl.oclc.org/ooxml/officeDocument/relationships")
                      : QStringLiteral("http://schemas.openxmlformats.org/officeDocument/2006/relationships");
    }

    // A worksheet part around the given sheetData content and trailing elements.
    QByteArray worksheet(const QByteArray &rows, const QByteArray &before = QByteArray(),
        const QByteArray &after = QByteArray()) const
    {
        return "<?xml version=\"1.0\" encoding=\"UTF-8\" standalone=\"yes\"?>\n<worksheet xmlns=\""
            + mainNamespace().toUtf8() + "\">" + before + "<sheetData>" + rows + "</sheetData>" + after
            + "</worksheet>";
    }

    void addSheet(const QString &name, const QByteArray &rows, const QByteArray &before = QByteArray(),
        const QByteArray &after = QByteArray(), const QString &state = QString())
    {
        sheets.append({name, worksheet(rows, before, after), state});
    }

    Entries entries() const
    {
        const QByteArray relationships = relationshipNamespace().toUtf8();
        const QByteArray typeBase = strict
            ? "http://purl.oclc.org/ooxml/officeDocument/relationships/"
            : "http://schemas.openxmlformats.org/officeDocument/2006/relationships/";
        const QByteArray prefix = absoluteTargets ? "/xl/" : "";
        Entries parts;
        parts << qMakePair(QStringLiteral("[Content_Types].xml"),
            QByteArray("<?xml version=\"1.0\"?><Types "
                       "xmlns=\"http://schemas.openxmlformats.org/package/2006/content-types\"/>"));
        parts << qMakePair(QStringLiteral("_rels/.rels"),
            "<?xml version=\"1.0\"?><Relationships "
            "xmlns=\"http://schemas.openxmlformats.org/package/2006/relationships\">"
            "<Relationship Id=\"rId1\" Type=\""
                + typeBase + "officeDocument\" Target=\"" + (absoluteTargets ? "/" : "")
                + "xl/workbook.xml\"/></Relationships>");
        QByteArray workbook = "<?xml version=\"1.0\"?><workbook xmlns=\"" + mainNamespace().toUtf8()
            + "\" xmlns:r=\"" + relationships + "\"><workbookPr " + workbookProperties + "/><sheets>";
        QByteArray workbookRelationships =
            "<?xml version=\"1.0\"?><Relationships "
            "xmlns=\"http://schemas.openxmlformats.org/package/2006/relationships\">";
        for (int i = 0; i < sheets.size(); ++i) {
            const QByteArray n = QByteArray::number(i + 1);
            workbook += "<sheet name=\"" + xmlEscape(sheets.at(i).name) + "\" sheetId=\"" + n
                + "\" r:id=\"rId" + n + "\""
                + (sheets.at(i).state.isEmpty() ? QByteArray()
                                                : " state=\"" + sheets.at(i).state.toUtf8() + "\"")
                + "/>";
            workbookRelationships += "<Relationship Id=\"rId" + n + "\" Type=\"" + typeBase
                + "worksheet\" Target=\"" + prefix + "worksheets/sheet" + n + ".xml\"/>";
            parts << qMakePair(QStringLiteral("xl/worksheets/sheet%1.xml").arg(i + 1), sheets.at(i).xml);
        }
        workbook += "</sheets></workbook>";
        if (!sharedStrings.isEmpty()) {
            QByteArray sst = "<?xml version=\"1.0\"?><sst xmlns=\"" + mainNamespace().toUtf8()
                + "\" uniqueCount=\"" + QByteArray::number(sharedStrings.size()) + "\">";
            for (const QString &item : sharedStrings)
                sst += "<si>" + item.toUtf8() + "</si>";
            sst += "</sst>";
            parts << qMakePair(QStringLiteral("xl/sharedStrings.xml"), sst);
            workbookRelationships += "<Relationship Id=\"rId100\" Type=\"" + typeBase
                + "sharedStrings\" Target=\"" + prefix + "sharedStrings.xml\"/>";
        }
        if (!styles.isEmpty()) {
            parts << qMakePair(QStringLiteral("xl/styles.xml"), styles);
            workbookRelationships += "<Relationship Id=\"rId101\" Type=\"" + typeBase + "styles\" Target=\""
                + prefix + "styles.xml\"/>";
        }
        workbookRelationships += "</Relationships>";
        parts << qMakePair(QStringLiteral("xl/workbook.xml"), workbook);
        parts << qMakePair(QStringLiteral("xl/_rels/workbook.xml.rels"), workbookRelationships);
        return parts;
    }

    // A styles part with custom formats ("164=0.0%") and one cell style per format id.
    static QByteArray stylesPart(const QStringList &customFormats, const QList<int> &cellFormatIds)
    {
        QByteArray xml = "<?xml version=\"1.0\"?><styleSheet "
                         "xmlns=\"http://schemas.openxmlformats.org/spreadsheetml/2006/main\"><numFmts>";
        for (const QString &format : customFormats) {
            const int equals = format.indexOf(QLatin1Char('='));
            xml += "<numFmt numFmtId=\"" + format.left(equals).toUtf8() + "\" formatCode=\""
                + xmlEscape(format.mid(equals + 1)) + "\"/>";
        }
        // A cell style xf outside cellXfs must not count as a cell format.
        xml += "</numFmts><cellStyleXfs><xf numFmtId=\"10\"/></cellStyleXfs><cellXfs>";
        for (const int id : cellFormatIds)
            xml += "<xf numFmtId=\"" + QByteArray::number(id) + "\"/>";
        xml += "</cellXfs></styleSheet>";
        return xml;
    }
};

// ---- BIFF8 record streams ----

inline QByteArray u16(int value)
{
    QByteArray bytes(2, '\0');
    qToLittleEndian<quint16>(quint16(value), bytes.data());
    return bytes;
}
inline QByteArray u32(quint32 value)
{
    QByteArray bytes(4, '\0');
    qToLittleEndian<quint32>(value, bytes.data());
    return bytes;
}
inline QByteArray f64(double value)
{
    quint64 bits = 0;
    std::memcpy(&bits, &value, sizeof bits);
    QByteArray bytes(8, '\0');
    qToLittleEndian<quint64>(bits, bytes.data());
    return bytes;
}
// XLUnicodeString with a 16-bit count: compressed when every character fits one byte.
inline QByteArray unicodeString(const QString &text, bool shortCount = false)
{
    bool wide = false;
    for (const QChar c : text)
        wide = wide || c.unicode() > 0xFF;
    QByteArray bytes = shortCount ? QByteArray(1, char(text.size())) : u16(text.size());
    bytes += char(wide ? 1 : 0);
    for (const QChar c : text)
        bytes += wide ? u16(c.unicode()) : QByteArray(1, char(c.unicode()));
    return bytes;
}

// A workbook stream: globals, then sheets, with each sheet's offset filled in.
struct Biff8Book
{
    struct Sheet
    {
        QString name;
        quint8 state = 0; // 0 visible, 1 hidden
        quint8 type = 0; // 0 worksheet, 2 chart
        QByteArray records; // between the sheet's BOF and EOF
    };
    QByteArray globals; // records after the globals' BOF, before the sheets' records
    QList<Sheet> sheets;
    quint16 version = 0x0600;

    static QByteArray record(int type, const QByteArray &body) { return u16(type) + u16(body.size()) + body; }
    static QByteArray bof(int kind, int version = 0x0600)
    {
        return record(0x0809, u16(version) + u16(kind) + u16(0x0DBB) + u16(0x07CC) + u32(0) + u32(0x0206));
    }
    static QByteArray xf(int formatId)
    {
        return record(0x00E0, u16(0) + u16(formatId) + QByteArray(16, '\0'));
    }
    static QByteArray format(int id, const QString &code)
    {
        return record(0x041E, u16(id) + unicodeString(code));
    }
    static QByteArray cellHeader(int row, int column, int xf) { return u16(row) + u16(column) + u16(xf); }
    static QByteArray number(int row, int column, double value, int xf = 0)
    {
        return record(0x0203, cellHeader(row, column, xf) + f64(value));
    }
    static QByteArray label(int row, int column, const QString &text, int xf = 0)
    {
        return record(0x0204, cellHeader(row, column, xf) + unicodeString(text));
    }
    static QByteArray labelSst(int row, int column, quint32 index, int xf = 0)
    {
        return record(0x00FD, cellHeader(row, column, xf) + u32(index));
    }
    static QByteArray rk(int row, int column, quint32 rkValue, int xf = 0)
    {
        return record(0x027E, cellHeader(row, column, xf) + u32(rkValue));
    }
    static QByteArray boolErr(int row, int column, int value, bool error)
    {
        return record(0x0205, cellHeader(row, column, 0) + char(value) + char(error ? 1 : 0));
    }
    static QByteArray formulaNumber(int row, int column, double value, int xf = 0)
    {
        return record(0x0006, cellHeader(row, column, xf) + f64(value) + u16(0) + u32(0) + u16(0));
    }
    // A cached result that isn't a number: 0 text (a STRING record follows), 1 boolean, 2 error, 3 empty.
    static QByteArray formulaSpecial(int row, int column, int kind, int value)
    {
        QByteArray result(8, '\0');
        result[0] = char(kind);
        result[2] = char(value);
        result[6] = char(0xFF);
        result[7] = char(0xFF);
        return record(0x0006, cellHeader(row, column, 0) + result + u16(0) + u32(0) + u16(0));
    }
    static QByteArray string(const QString &text) { return record(0x0207, unicodeString(text)); }
    static QByteArray row(int index, bool hidden)
    {
        return record(0x0208,
            u16(index) + u16(0) + u16(10) + u16(255) + u16(0) + u16(0) + u16(hidden ? 0x0120 : 0x0100)
                + u16(0x000F));
    }
    static QByteArray colInfo(int first, int last, bool hidden)
    {
        return record(0x007D, u16(first) + u16(last) + u16(2340) + u16(15) + u16(hidden ? 1 : 0) + u16(0));
    }
    static QByteArray mergedCells(int first, int last, int firstColumn, int lastColumn)
    {
        return record(0x00E5, u16(1) + u16(first) + u16(last) + u16(firstColumn) + u16(lastColumn));
    }
    // An SST holding the strings, split into CONTINUE records after `split` bytes of the
    // first string's characters when split > 0 (the rest continues wide, as Excel may do).
    static QByteArray sst(const QStringList &strings, int split = 0)
    {
        QByteArray body = u32(strings.size()) + u32(strings.size());
        if (split <= 0) {
            for (const QString &text : strings)
                body += unicodeString(text);
            return record(0x00FC, body);
        }
        const QString first = strings.value(0);
        body += u16(first.size()) + char(0) + first.left(split).toLatin1();
        QByteArray rest = QByteArray(1, char(1)); // the continued characters come as UTF-16
        for (const QChar c : first.mid(split))
            rest += u16(c.unicode());
        for (int i = 1; i < strings.size(); ++i)
            rest += unicodeString(strings.at(i));
        return record(0x00FC, body) + record(0x003C, rest);
    }

    QByteArray stream() const
    {
        QByteArray bytes = bof(0x0005, version) + globals;
        QList<int> offsetFields;
        for (const Sheet &sheet : sheets) {
            const QByteArray body =
                u32(0) + char(sheet.state) + char(sheet.type) + unicodeString(sheet.name, true);
            offsetFields << bytes.size() + 4;
            bytes += record(0x0085, body);
        }
        bytes += record(0x000A, QByteArray());
        for (int i = 0; i < sheets.size(); ++i) {
            qToLittleEndian<quint32>(quint32(bytes.size()), bytes.data() + offsetFields.at(i));
            bytes += bof(0x0010, version) + sheets.at(i).records + record(0x000A, QByteArray());
        }
        return bytes;
    }
};

} // namespace excelfixtures
