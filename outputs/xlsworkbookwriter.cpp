#include "xlsworkbookwriter.h"

#include "excelwriting.h"
#include "inputs/xlsreader.h"
#include "outputnode.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QHash>
#include <QVector>

#include <cmath>
#include <cstring>

// glib names a structure member "signals", which Qt defines as a keyword.
#undef signals
#include <gsf/gsf-outfile-msole.h>
#include <gsf/gsf-outfile.h>
#include <gsf/gsf-output-stdio.h>
#include <gsf/gsf-utils.h>
#define signals Q_SIGNALS

using ExcelWriting::Cell;
using ExcelWriting::CellPlan;

namespace {

const int maxRows = 65536;
const int maxColumns = 256;
// The largest record body; longer data goes on in CONTINUE records.
const int maxBody = 8224;

enum RecordId : quint16 {
    Bof = 0x0809,
    Eof = 0x000A,
    Codepage = 0x0042,
    Window1 = 0x003D,
    DateMode = 0x0022,
    Font = 0x0031,
    Format = 0x041E,
    Xf = 0x00E0,
    Style = 0x0293,
    BoundSheet = 0x0085,
    Sst = 0x00FC,
    Continue = 0x003C,
    ExtSst = 0x00FF,
    DefColWidth = 0x0055,
    ColInfo = 0x007D,
    Dimensions = 0x0200,
    LabelSst = 0x00FD,
    Number = 0x0203,
    Rk = 0x027E,
    Window2 = 0x023E,
    Pane = 0x0041,
};

QString tr(const char *text)
{
    return QCoreApplication::translate("XlsWorkbookWriter", text);
}

// Little-endian fields of a record body.
class Body
{
public:
    Body &u8(quint8 value)
    {
        m_bytes.append(char(value));
        return *this;
    }
    Body &u16(quint16 value) { return u8(quint8(value)).u8(quint8(value >> 8)); }
    Body &u32(quint32 value) { return u16(quint16(value)).u16(quint16(value >> 16)); }
    Body &f64(double value)
    {
        quint64 bits;
        std::memcpy(&bits, &value, sizeof bits);
        return u32(quint32(bits)).u32(quint32(bits >> 32));
    }
    // Characters in one byte each when narrow, else in UTF-16.
    Body &characters(const QString &text, int from, int count, bool wide)
    {
        for (int i = from; i < from + count; ++i) {
            const ushort c = text.at(i).unicode();
            if (wide)
                u16(c);
            else
                u8(quint8(c));
        }
        return *this;
    }
    // A string with its length in 8 (short) or 16 bits and its flags byte.
    Body &string(const QString &text, bool shortLength);
    int size() const { return m_bytes.size(); }
    const QByteArray &bytes() const { return m_bytes; }
    void clear() { m_bytes.clear(); }

private:
    QByteArray m_bytes;
};

// True when a text needs two bytes for some character.
bool isWide(const QString &text)
{
    for (const QChar c : text) {
        if (c.unicode() > 0xFF)
            return true;
    }
    return false;
}

Body &Body::string(const QString &text, bool shortLength)
{
    const bool wide = isWide(text);
    if (shortLength)
        u8(quint8(text.size()));
    else
        u16(quint16(text.size()));
    return u8(wide ? 1 : 0).characters(text, 0, text.size(), wide);
}

void addRecord(QByteArray &stream, quint16 id, const Body &body)
{
    Body header;
    header.u16(id).u16(quint16(body.size()));
    stream += header.bytes();
    stream += body.bytes();
}

// The shared string table: each distinct text once, cells naming it by index.
class SharedStrings
{
public:
    quint32 add(const QString &text)
    {
        ++m_total;
        auto found = m_indexes.constFind(text);
        if (found != m_indexes.constEnd())
            return *found;
        const quint32 index = quint32(m_strings.size());
        m_indexes.insert(text, index);
        m_strings << text;
        return index;
    }
    // SST with its CONTINUE records, then EXTSST, for a stream in which they begin at offset.
    QByteArray records(int offset) const;

private:
    QHash<QString, quint32> m_indexes;
    QStringList m_strings;
    quint32 m_total = 0;
};

QByteArray SharedStrings::records(int offset) const
{
    QByteArray out;
    Body body;
    quint16 id = Sst;
    auto flush = [&] {
        addRecord(out, id, body);
        body.clear();
        id = Continue;
    };
    body.u32(m_total).u32(quint32(m_strings.size()));
    // Every bucket-th string is indexed in EXTSST: at most 128 of them.
    const int bucket = qMax(8, (int(m_strings.size()) + 127) / 128);
    Body index;
    index.u16(quint16(bucket));
    for (int i = 0; i < m_strings.size(); ++i) {
        const QString &text = m_strings.at(i);
        const bool wide = isWide(text);
        const int unit = wide ? 2 : 1;
        // A string's length and flags never part from its first character.
        if (body.size() + 3 + unit > maxBody)
            flush();
        if (i % bucket == 0)
            index.u32(quint32(offset + out.size() + 4 + body.size())).u16(quint16(4 + body.size())).u16(0);
        body.u16(quint16(text.size())).u8(wide ? 1 : 0);
        int done = 0;
        for (;;) {
            const int take = qMin((maxBody - body.size()) / unit, int(text.size()) - done);
            body.characters(text, done, take, wide);
            done += take;
            if (done == text.size())
                break;
            // The rest of the string goes on in a CONTINUE record that repeats the flags.
            flush();
            body.u8(wide ? 1 : 0);
        }
    }
    flush();
    addRecord(out, ExtSst, index);
    return out;
}

// Fonts, number formats and cell styles (XF records). The first 16 XF records are the
// standard ones, the 16th being the cell style of a plain cell; others follow as used.
class Styles
{
public:
    static const int plainXf = 15;

    quint16 xf(const QString &code, bool bold)
    {
        const int format = formatId(code);
        const int key = format * 2 + (bold ? 1 : 0);
        if (format == 0 && !bold)
            return plainXf;
        auto found = m_xfs.constFind(key);
        if (found != m_xfs.constEnd())
            return *found;
        const quint16 index = quint16(16 + m_cellXfs.size());
        m_cellXfs << key;
        m_xfs.insert(key, index);
        return index;
    }
    // FONT, FORMAT, XF and STYLE records.
    QByteArray records() const;

private:
    int formatId(const QString &code)
    {
        static const QHash<QString, int> builtIn {
            {QString(), 0},
            {QStringLiteral("0"), 1},
            {QStringLiteral("0.00"), 2},
            {QStringLiteral("h:mm"), 20},
            {QStringLiteral("h:mm:ss"), 21},
            {QStringLiteral("@"), 49},
        };
        auto known = builtIn.constFind(code);
        if (known != builtIn.constEnd())
            return *known;
        int &id = m_formatIds[code];
        if (id == 0) {
            id = 164 + m_customCodes.size();
            m_customCodes << code;
        }
        return id;
    }

    QHash<QString, int> m_formatIds;
    QStringList m_customCodes; // ids 164 on, in order
    QHash<int, quint16> m_xfs;
    QVector<int> m_cellXfs; // format id * 2 + bold, from XF 16 on
};

QByteArray Styles::records() const
{
    QByteArray out;
    // Font 4 is never written: font indexes skip it, so the bold font is index 5.
    for (int i = 0; i < 5; ++i) {
        const bool bold = i == 4;
        Body font;
        font.u16(200).u16(0).u16(0x7FFF).u16(bold ? 700 : 400).u16(0).u8(0).u8(0).u8(0).u8(0);
        font.string(QStringLiteral("Arial"), true);
        addRecord(out, Font, font);
    }
    for (int i = 0; i < m_customCodes.size(); ++i) {
        Body format;
        format.u16(quint16(164 + i)).string(m_customCodes.at(i), false);
        addRecord(out, Format, format);
    }
    // font, format, protection and parent, alignment, used attributes
    auto addXf = [&](quint16 font, quint16 format, quint16 parent, quint8 used) {
        Body xf;
        xf.u16(font).u16(format).u16(parent).u8(0x20).u8(0).u8(0).u8(used);
        xf.u32(0).u32(0).u16(0x20C0); // no borders, no fill, automatic colours
        addRecord(out, Xf, xf);
    };
    addXf(0, 0, 0xFFF5, 0x00); // the Normal style
    for (int i = 1; i < 15; ++i)
        addXf(i <= 2 ? 1 : (i <= 4 ? 2 : 0), 0, 0xFFF5, 0xF4);
    addXf(0, 0, 0x0001, 0x00); // a plain cell
    for (const int key : m_cellXfs) {
        const quint16 format = quint16(key / 2);
        const bool bold = key % 2;
        addXf(bold ? 5 : 0, format, 0x0001, quint8((format ? 0x04 : 0) | (bold ? 0x08 : 0)));
    }
    Body style;
    style.u16(0x8000).u8(0).u8(0xFF);
    addRecord(out, Style, style);
    return out;
}

// A number as an RK value when it is one exactly: a 30-bit integer, or a double whose
// low 34 bits are zero, either of them possibly times 100.
bool toRk(double value, quint32 *rk)
{
    auto asInteger = [](double v, quint32 *out) {
        if (v != std::floor(v) || v < -536870912.0 || v > 536870911.0)
            return false;
        *out = quint32(qint32(v)) << 2 | 0x2;
        return true;
    };
    auto asDouble = [](double v, quint32 *out) {
        quint64 bits;
        std::memcpy(&bits, &v, sizeof bits);
        if (bits & 0x3FFFFFFFFULL)
            return false;
        *out = quint32(bits >> 32);
        return true;
    };
    if (asInteger(value, rk) || asDouble(value, rk))
        return true;
    const double hundred = value * 100;
    if (std::isfinite(hundred) && hundred / 100 == value
        && (asInteger(hundred, rk) || asDouble(hundred, rk))) {
        *rk |= 0x1;
        return true;
    }
    return false;
}

// Rows of the sheet that come from one table: the rows of the existing sheet, or the new ones.
struct SheetPart
{
    const Dataset *dataset;
    CellPlan *plan;
    bool header;
    const WriteReport *progress; // null: no progress reported
};

// The sheet's records, from BOF to EOF, with its strings and styles added to the tables.
QByteArray sheetRecords(
    const QList<SheetPart> &parts, bool freezeHeader, SharedStrings &strings, Styles &styles)
{
    QByteArray out;
    Body bof;
    bof.u16(0x0600).u16(0x0010).u16(0x0DBB).u16(0x07CC).u32(0).u32(6);
    addRecord(out, Bof, bof);
    Body defaultWidth;
    defaultWidth.u16(8);
    addRecord(out, DefColWidth, defaultWidth);

    QVector<double> widths;
    QStringList formats;
    int rows = 0;
    for (const SheetPart &part : parts) {
        const QVector<double> partWidths = part.plan->columnWidths(part.header);
        for (int c = 0; c < partWidths.size() && c < maxColumns; ++c) {
            if (c >= widths.size()) {
                widths << partWidths.at(c);
                formats << part.plan->columnFormat(c);
            } else {
                widths[c] = qMax(widths.at(c), partWidths.at(c));
            }
        }
        rows += part.dataset->rowCount() + (part.header ? 1 : 0);
    }
    rows = qMin(rows, maxRows);
    for (int c = 0; c < widths.size(); ++c) {
        Body column;
        column.u16(quint16(c)).u16(quint16(c)).u16(quint16(widths.at(c) * 256));
        column.u16(formats.at(c).isEmpty() ? quint16(Styles::plainXf) : styles.xf(formats.at(c), false));
        column.u16(0).u16(0);
        addRecord(out, ColInfo, column);
    }
    Body dimensions;
    dimensions.u32(0).u32(quint32(rows)).u16(0).u16(quint16(widths.size())).u16(0);
    addRecord(out, Dimensions, dimensions);

    int sheetRow = 0;
    auto addCell = [&](int column, const Cell &cell, const QString &columnFormat, bool bold) {
        Body record;
        record.u16(quint16(sheetRow)).u16(quint16(column));
        if (cell.kind == Cell::Text) {
            record.u16(styles.xf(columnFormat, bold)).u32(strings.add(cell.text));
            addRecord(out, LabelSst, record);
        } else if (cell.kind == Cell::Number) {
            record.u16(styles.xf(cell.format, bold));
            quint32 rk = 0;
            if (toRk(cell.number, &rk)) {
                record.u32(rk);
                addRecord(out, Rk, record);
            } else {
                record.f64(cell.number);
                addRecord(out, Number, record);
            }
        }
    };
    for (const SheetPart &part : parts) {
        const int columns = qMin(part.dataset->columnCount(), maxColumns);
        if (part.header && sheetRow < maxRows) {
            for (int c = 0; c < columns; ++c)
                addCell(c, part.plan->header(c), part.plan->columnFormat(c), true);
            ++sheetRow;
        }
        const int partRows = part.dataset->rowCount();
        for (int r = 0; r < partRows && sheetRow < maxRows; ++r, ++sheetRow) {
            for (int c = 0; c < columns; ++c)
                addCell(c, part.plan->cell(r, c), part.plan->columnFormat(c), false);
            if (part.progress && r % 1000 == 999)
                part.progress->reportProgress(double(r + 1) / partRows);
        }
    }

    Body window;
    window.u16(freezeHeader ? 0x07BE : 0x06B6).u16(0).u16(0).u16(0x40).u16(0).u16(0).u16(0).u32(0);
    addRecord(out, Window2, window);
    if (freezeHeader) {
        Body pane;
        pane.u16(0).u16(1).u16(1).u16(0).u8(2).u8(0); // one row frozen, the pane below it active
        addRecord(out, Pane, pane);
    }
    addRecord(out, Eof, Body());
    return out;
}

// The workbook globals; the sheet's records follow them in the stream.
QByteArray globalRecords(const QString &sheetName, const SharedStrings &strings, const Styles &styles)
{
    QByteArray out;
    Body bof;
    bof.u16(0x0600).u16(0x0005).u16(0x0DBB).u16(0x07CC).u32(0).u32(6);
    addRecord(out, Bof, bof);
    Body codepage;
    codepage.u16(1200); // strings are UTF-16
    addRecord(out, Codepage, codepage);
    Body window;
    window.u16(0).u16(0).u16(0x3A98).u16(0x2328).u16(0x0038).u16(0).u16(0).u16(1).u16(0x0258);
    addRecord(out, Window1, window);
    Body dateMode;
    dateMode.u16(0); // the 1900 date system
    addRecord(out, DateMode, dateMode);
    out += styles.records();
    const int sheetOffsetAt = out.size() + 4;
    Body sheet;
    sheet.u32(0).u8(0).u8(0).string(sheetName, true);
    addRecord(out, BoundSheet, sheet);
    out += strings.records(out.size());
    addRecord(out, Eof, Body());
    // The sheet starts where the globals end.
    Body offset;
    offset.u32(quint32(out.size()));
    out.replace(sheetOffsetAt, 4, offset.bytes());
    return out;
}

// Writes the Workbook stream into a new compound file at path.
bool writeCompoundFile(
    const QString &path, const QByteArray &globals, const QByteArray &sheet, QString *error)
{
    static const bool initialized = [] {
        gsf_init();
        return true;
    }();
    Q_UNUSED(initialized)
    GError *failure = nullptr;
    GsfOutput *sink = gsf_output_stdio_new(QFile::encodeName(path).constData(), &failure);
    if (!sink) {
        *error = failure ? QString::fromUtf8(failure->message) : tr("the file could not be created");
        g_clear_error(&failure);
        return false;
    }
    GsfOutfile *container = gsf_outfile_msole_new(sink);
    GsfOutput *stream = gsf_outfile_new_child(container, "Workbook", FALSE);
    bool ok = stream
        && gsf_output_write(
            stream, size_t(globals.size()), reinterpret_cast<const guint8 *>(globals.constData()))
        && gsf_output_write(
            stream, size_t(sheet.size()), reinterpret_cast<const guint8 *>(sheet.constData()));
    auto noteError = [&](GsfOutput *output) {
        const GError *outputError = gsf_output_error(output);
        if (outputError && error->isEmpty())
            *error = QString::fromUtf8(outputError->message);
    };
    if (stream) {
        ok = gsf_output_close(stream) && ok;
        noteError(stream);
        g_object_unref(stream);
    }
    ok = gsf_output_close(GSF_OUTPUT(container)) && ok;
    noteError(GSF_OUTPUT(container));
    if (!gsf_output_is_closed(sink))
        ok = gsf_output_close(sink) && ok;
    noteError(sink);
    g_object_unref(container);
    g_object_unref(sink);
    if (!ok && error->isEmpty())
        *error = tr("the compound file could not be written");
    return ok;
}

// The rows of the one sheet of an existing workbook, or the reason it can't be written to.
bool readExistingSheet(const QString &path, const QString &name, bool append, QString *sheetName,
    Dataset *rows, QString *error, bool *otherSheets)
{
    const QList<ExcelSheetEntry> sheets = xlsSheetNames(path, error);
    if (sheets.isEmpty()) {
        if (error->isEmpty())
            *error = tr("it holds no sheet");
        return false;
    }
    for (const ExcelSheetEntry &sheet : sheets) {
        if (sheet.name.compare(name, Qt::CaseInsensitive) != 0) {
            *otherSheets = true;
            return false;
        }
        *sheetName = sheet.name;
    }
    if (!append)
        return true;
    InputOptions options;
    options.path = path;
    options.sheet = *sheetName;
    options.fileType = IONode::ExcelXls;
    options.hasHeader = 0;
    options.ignoreEmptyRows = false;
    ExcelReadCounts counts;
    ReadReport report;
    if (!readXls(path, options, *rows, counts, report)) {
        *error = report.warnings.value(0);
        return false;
    }
    return true;
}

} // namespace

bool writeXlsWorkbook(
    const QString &path, const Dataset &dataset, const OutputOptions &options, WriteReport &report)
{
    if (options.writeMode == OutputOptions::Disabled)
        return true;
    const QString where = QDir::toNativeSeparators(QFileInfo(path).absoluteFilePath());
    const bool exists = QFileInfo::exists(path);
    if (exists && options.writeMode == OutputOptions::New) {
        report.information << tr("Write mode='%1' and '%2' already exists")
                                  .arg(OutputNode::writeModeName(OutputOptions::New), where);
        return true;
    }
    const bool append = exists && options.writeMode == OutputOptions::Append;
    const bool intoExisting = exists && (append || options.replaceOnlyThisSheet);
    const QString failure = intoExisting ? tr("Unable to update '%1': %2") : tr("Unable to write '%1': %2");
    QString error;
    auto fail = [&](const QString &message) {
        report.warnings.prepend(message);
        return false;
    };

    QStringList information;
    QString name = ExcelWriting::sheetName(options.sheet, &information);
    Dataset oldRows;
    if (intoExisting) {
        bool otherSheets = false;
        if (!readExistingSheet(path, name, append, &name, &oldRows, &error, &otherSheets)) {
            if (otherSheets)
                return fail(
                    tr("Writing a sheet into an existing .xls workbook with other sheets is not possible; "
                       "write a new file or use .xlsx"));
            return fail(failure.arg(where, error));
        }
    }

    CellPlan plan(dataset, options.excelFormatting, options.excelManualColumnFormats, maxColumns);
    CellPlan oldPlan(oldRows, CellPlan::Automatic, {}, maxColumns);
    QList<SheetPart> parts;
    if (oldRows.hasRows())
        parts << SheetPart {&oldRows, &oldPlan, false, nullptr};
    parts << SheetPart {&dataset, &plan, options.writeHeader, &report};
    SharedStrings strings;
    Styles styles;
    const QByteArray sheet = sheetRecords(parts, options.writeHeader && !append, strings, styles);
    const QByteArray globals = globalRecords(name, strings, styles);

    ExcelWriting::ReplacingFile file(path);
    if (!file.open(&error) || !writeCompoundFile(file.temporaryPath(), globals, sheet, &error)
        || !file.commit(&error))
        return fail(failure.arg(where, error));

    report.information << information << plan.information();
    if (intoExisting && !append) {
        report.information << tr("Replaced sheet '%1[%2]'").arg(where, name);
    } else if (append) {
        report.information << tr("Appended sheet '%1[%2]'").arg(where, name);
        if (oldRows.hasRows())
            report.information << tr("Existing cells were rewritten as the text they showed");
    }
    report.warnings << plan.warnings();
    report.reportProgress(1);
    return true;
}
