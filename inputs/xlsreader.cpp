// libgsf's headers come first: Qt's keyword macros would clash with glib's.
#include <gsf/gsf-infile-msole.h>
#include <gsf/gsf-infile.h>
#include <gsf/gsf-input-stdio.h>
#include <gsf/gsf-input.h>
#include <gsf/gsf-utils.h>

#include "xlsreader.h"

#include "core/excelnumberformat.h"

#include <QCoreApplication>
#include <QFile>
#include <QHash>
#include <QVector>
#include <QtEndian>

#include <cstring>
#include <memory>

namespace {

QString tr(const char *text)
{
    return QCoreApplication::translate("XlsReader", text);
}

enum Record : quint16 {
    Formula = 0x0006,
    EndOfFile = 0x000A,
    DateMode = 0x0022,
    FilePass = 0x002F,
    Continue = 0x003C,
    ColInfo = 0x007D,
    BoundSheet = 0x0085,
    MulRk = 0x00BD,
    Rstring = 0x00D6,
    Xf = 0x00E0,
    MergedCells = 0x00E5,
    Sst = 0x00FC,
    LabelSst = 0x00FD,
    Number = 0x0203,
    Label = 0x0204,
    BoolErr = 0x0205,
    String = 0x0207,
    Row = 0x0208,
    Rk = 0x027E,
    Format = 0x041E,
    Bof = 0x0809,
};

// A piece of the stream; reads past its end give 0 and mark it short.
struct View
{
    const uchar *data = nullptr;
    int size = 0;
    mutable bool shortRead = false;

    bool has(int offset, int count) const { return offset >= 0 && count >= 0 && offset + count <= size; }
    quint8 u8(int offset) const
    {
        if (has(offset, 1))
            return data[offset];
        shortRead = true;
        return 0;
    }
    quint16 u16(int offset) const
    {
        if (has(offset, 2))
            return qFromLittleEndian<quint16>(data + offset);
        shortRead = true;
        return 0;
    }
    quint32 u32(int offset) const
    {
        if (has(offset, 4))
            return qFromLittleEndian<quint32>(data + offset);
        shortRead = true;
        return 0;
    }
    double f64(int offset) const
    {
        double value = 0;
        if (has(offset, 8)) {
            const quint64 bits = qFromLittleEndian<quint64>(data + offset);
            std::memcpy(&value, &bits, sizeof value);
        } else {
            shortRead = true;
        }
        return value;
    }
};

struct RecordHeader
{
    quint16 type = 0;
    View body;
    qint64 offset = 0;
};

// Walks the records of the workbook stream from an offset.
class Records
{
public:
    explicit Records(const QByteArray &stream, qint64 offset = 0)
        : m_stream(stream)
        , m_position(offset)
    { }
    // False at the end of the stream, or with an error when a record runs past it.
    bool next(RecordHeader &record, QString *error)
    {
        if (m_position + 4 > m_stream.size()) {
            if (m_position < m_stream.size())
                *error = tr("a record runs past the end of the stream at offset %1").arg(m_position);
            return false;
        }
        const uchar *at = reinterpret_cast<const uchar *>(m_stream.constData()) + m_position;
        const quint16 length = qFromLittleEndian<quint16>(at + 2);
        if (m_position + 4 + length > m_stream.size()) {
            *error = tr("a record runs past the end of the stream at offset %1").arg(m_position);
            return false;
        }
        record.type = qFromLittleEndian<quint16>(at);
        record.body = View {at + 4, length};
        record.offset = m_position;
        m_position += 4 + length;
        return true;
    }
    // The record after the current one, without moving on.
    quint16 peekType() const
    {
        if (m_position + 4 > m_stream.size())
            return 0;
        return qFromLittleEndian<quint16>(reinterpret_cast<const uchar *>(m_stream.constData()) + m_position);
    }
    qint64 position() const { return m_position; }

private:
    const QByteArray &m_stream;
    qint64 m_position;
};

// A record with its CONTINUE records as one sequence. Characters of a string that cross
// into a continuation are preceded there by a new flags byte saying how they are stored.
class Continued
{
public:
    void append(const View &view) { m_parts.append(view); }
    bool failed() const { return m_failed; }

    quint8 u8()
    {
        quint8 value = 0;
        read(&value, 1);
        return value;
    }
    quint16 u16()
    {
        uchar bytes[2] = {0, 0};
        read(bytes, 2);
        return qFromLittleEndian<quint16>(bytes);
    }
    quint32 u32()
    {
        uchar bytes[4] = {0, 0, 0, 0};
        read(bytes, 4);
        return qFromLittleEndian<quint32>(bytes);
    }
    void skip(qint64 count)
    {
        while (count > 0 && !m_failed) {
            if (!advanceIfAtEnd())
                return;
            const int step = int(qMin<qint64>(count, remainingInPart()));
            m_offset += step;
            count -= step;
        }
    }
    // XLUnicodeString's characters: compressed (one byte each) or UTF-16.
    QString chars(int count, bool wide)
    {
        QString text;
        text.reserve(qMin(count, 65536));
        while (count > 0 && !m_failed) {
            if (remainingInPart() == 0) {
                if (!advanceIfAtEnd())
                    return text;
                wide = (u8() & 0x01) != 0;
                continue;
            }
            const View &part = m_parts.at(m_part);
            const int width = wide ? 2 : 1;
            const int available = remainingInPart() / width;
            if (available == 0) {
                m_failed = true;
                return text;
            }
            const int take = qMin(count, available);
            const uchar *at = part.data + m_offset;
            if (wide) {
                for (int i = 0; i < take; ++i)
                    text += QChar(qFromLittleEndian<quint16>(at + 2 * i));
            } else {
                text += QString::fromLatin1(reinterpret_cast<const char *>(at), take);
            }
            m_offset += take * width;
            count -= take;
        }
        return text;
    }
    // XLUnicodeRichExtendedString: the text, with rich runs and phonetic data skipped.
    QString richString()
    {
        const int count = u16();
        const quint8 flags = u8();
        const int runs = (flags & 0x08) ? u16() : 0;
        const qint64 extended = (flags & 0x04) ? u32() : 0;
        const QString text = chars(count, flags & 0x01);
        skip(qint64(runs) * 4 + extended);
        return text;
    }

private:
    int remainingInPart() const { return m_part < m_parts.size() ? m_parts.at(m_part).size - m_offset : 0; }
    bool advanceIfAtEnd()
    {
        while (m_part < m_parts.size() && remainingInPart() == 0) {
            ++m_part;
            m_offset = 0;
        }
        if (m_part >= m_parts.size()) {
            m_failed = true;
            return false;
        }
        return true;
    }
    void read(uchar *out, int count)
    {
        for (int i = 0; i < count; ++i) {
            if (!advanceIfAtEnd())
                return;
            out[i] = m_parts.at(m_part).data[m_offset++];
        }
    }

    QVector<View> m_parts;
    int m_part = 0;
    int m_offset = 0;
    bool m_failed = false;
};

// XLUnicodeString inside one record: 16-bit count, flags, characters.
QString unicodeString(const View &view, int offset, bool shortCount = false)
{
    Continued reader;
    reader.append(View {view.has(offset, 0) ? view.data + offset : view.data, qMax(0, view.size - offset)});
    const int count = shortCount ? reader.u8() : reader.u16();
    const quint8 flags = reader.u8();
    const int runs = (flags & 0x08) ? reader.u16() : 0;
    const quint32 extended = (flags & 0x04) ? reader.u32() : 0;
    Q_UNUSED(runs)
    Q_UNUSED(extended)
    return reader.chars(count, flags & 0x01);
}

double rkValue(quint32 rk)
{
    double value = 0;
    if (rk & 0x02) {
        value = double(qint32(rk) >> 2);
    } else {
        const quint64 bits = quint64(rk & 0xFFFFFFFCu) << 32;
        std::memcpy(&value, &bits, sizeof value);
    }
    return (rk & 0x01) ? value / 100 : value;
}

QString errorText(quint8 code)
{
    switch (code) {
    case 0x00:
        return QStringLiteral("#NULL!");
    case 0x07:
        return QStringLiteral("#DIV/0!");
    case 0x0F:
        return QStringLiteral("#VALUE!");
    case 0x17:
        return QStringLiteral("#REF!");
    case 0x1D:
        return QStringLiteral("#NAME?");
    case 0x24:
        return QStringLiteral("#NUM!");
    case 0x2A:
        return QStringLiteral("#N/A");
    default:
        return QStringLiteral("#GETTING_DATA");
    }
}

struct GObjectDeleter
{
    void operator()(gpointer object) const
    {
        if (object)
            g_object_unref(object);
    }
};
template<typename T>
using GPtr = std::unique_ptr<T, GObjectDeleter>;

// libgsf tells about damaged containers on the terminal; the read's own message says it.
void ignoreLog(const gchar *, GLogLevelFlags, const gchar *, gpointer)
{ }

// Keeps libgsf quiet while it reads, in its own log domains and the default one it also uses.
class QuietLog
{
public:
    QuietLog()
    {
        for (int i = 0; i < 3; ++i)
            m_ids[i] = g_log_set_handler(domains[i], GLogLevelFlags(G_LOG_LEVEL_MASK), ignoreLog, nullptr);
    }
    ~QuietLog()
    {
        for (int i = 0; i < 3; ++i)
            g_log_remove_handler(domains[i], m_ids[i]);
    }

private:
    static constexpr const char *domains[3] = {"libgsf:msole", "libgsf", nullptr};
    guint m_ids[3];
};

// The compound file, or nullptr with libgsf's reason.
GPtr<GsfInfile> openCompoundFile(const QString &path, QString *reason = nullptr)
{
    static const bool initialised = [] {
        gsf_init();
        return true;
    }();
    Q_UNUSED(initialised)
    GError *error = nullptr;
    GPtr<GsfInput> input(gsf_input_stdio_new(QFile::encodeName(path).constData(), &error));
    GPtr<GsfInfile> ole(input ? gsf_infile_msole_new(input.get(), &error) : nullptr);
    if (error) {
        if (reason)
            *reason = QString::fromUtf8(error->message);
        g_error_free(error);
    }
    return ole;
}

// The stream of that name; nullptr when there is none, or, with *broken set, when it can't be opened.
GPtr<GsfInput> childNamed(GsfInfile *ole, const char *name, bool *broken = nullptr)
{
    const int count = gsf_infile_num_children(ole);
    for (int i = 0; i < count; ++i) {
        const char *childName = gsf_infile_name_by_index(ole, i);
        if (childName
            && QString::fromUtf8(childName).compare(QLatin1String(name), Qt::CaseInsensitive) == 0) {
            GPtr<GsfInput> child(gsf_infile_child_by_index(ole, i));
            if (!child && broken)
                *broken = true;
            return child;
        }
    }
    return nullptr;
}

struct SheetInfo
{
    ExcelSheetEntry entry;
    qint64 offset = 0;
};

struct Globals
{
    QByteArray stream;
    bool date1904 = false;
    QList<SheetInfo> sheets;
    QVector<QString> strings;
    QHash<int, QString> formats;
    QVector<int> xfFormats;
};

bool readStream(const QString &path, QByteArray &stream, QString *error)
{
    const QString where = excel::displayPath(path);
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        *error = tr("Unable to open file '%1': %2").arg(where, file.errorString());
        return false;
    }
    const QByteArray head = file.read(8);
    file.close();
    if (head.startsWith("PK\x03\x04")) {
        *error = tr("'%1' is an Excel .xlsx file; set 'Format' to 'Excel XLSX'").arg(where);
        return false;
    }
    const QuietLog quiet;
    const bool compound = head.startsWith("\xD0\xCF\x11\xE0\xA1\xB1\x1A\xE1");
    QString reason;
    GPtr<GsfInfile> ole = compound ? openCompoundFile(path, &reason) : nullptr;
    if (!ole) {
        if (compound)
            *error =
                excel::damaged(path, reason.isEmpty() ? tr("its compound file can't be opened") : reason);
        else
            *error = tr("'%1' is not an Excel .xls file").arg(where);
        return false;
    }
    bool broken = false;
    GPtr<GsfInput> workbook = childNamed(ole.get(), "Workbook", &broken);
    if (!workbook) {
        if (broken)
            *error = excel::damaged(path, tr("the workbook stream can't be read"));
        else if (childNamed(ole.get(), "EncryptedPackage"))
            *error = tr("'%1' is password protected and can't be read").arg(where);
        else if (childNamed(ole.get(), "Book"))
            *error =
                tr("'%1' was saved by Excel 95 or earlier, which can't be read; save it as .xlsx in Excel")
                    .arg(where);
        else
            *error = tr("'%1' is not an Excel .xls file").arg(where);
        return false;
    }
    const gsf_off_t size = gsf_input_size(workbook.get());
    // BIFF8 sheets hold at most 65,536 × 256 cells; a larger stream is not a workbook.
    if (size < 0 || size > (gsf_off_t(1) << 31) - 1) {
        *error = excel::damaged(path, tr("the workbook stream has an impossible size"));
        return false;
    }
    stream.resize(int(size));
    qint64 done = 0;
    while (done < size) {
        const size_t chunk = size_t(qMin<qint64>(size - done, 1 << 20));
        if (!gsf_input_read(workbook.get(), chunk, reinterpret_cast<guint8 *>(stream.data() + done))) {
            *error = excel::damaged(path, tr("the workbook stream can't be read"));
            return false;
        }
        done += qint64(chunk);
    }
    return true;
}

bool readGlobals(const QString &path, Globals &globals, QString *error)
{
    if (!readStream(path, globals.stream, error))
        return false;
    Records records(globals.stream);
    RecordHeader record;
    QString failure;
    if (!records.next(record, &failure) || record.type != Bof) {
        *error = excel::damaged(
            path, failure.isEmpty() ? tr("the workbook stream doesn't start a workbook") : failure);
        return false;
    }
    if (record.body.u16(0) != 0x0600) {
        *error = tr("'%1' was saved by Excel 95 or earlier, which can't be read; save it as .xlsx in Excel")
                     .arg(excel::displayPath(path));
        return false;
    }
    while (records.next(record, &failure)) {
        const View &body = record.body;
        switch (record.type) {
        case FilePass:
            *error = tr("'%1' is password protected and can't be read").arg(excel::displayPath(path));
            return false;
        case DateMode:
            globals.date1904 = body.u16(0) == 1;
            break;
        case BoundSheet: {
            SheetInfo sheet;
            sheet.offset = body.u32(0);
            sheet.entry.hidden = (body.u8(4) & 0x03) != 0;
            const quint8 type = body.u8(5);
            sheet.entry.name = unicodeString(body, 6, true);
            if (body.shortRead) {
                *error =
                    excel::damaged(path, tr("a sheet record at offset %1 is cut short").arg(record.offset));
                return false;
            }
            // Chart sheets and macro modules hold no cells.
            if (type != 0x02 && type != 0x06)
                globals.sheets.append(sheet);
            break;
        }
        case Sst: {
            Continued reader;
            reader.append(body);
            while (records.peekType() == Continue && records.next(record, &failure))
                reader.append(record.body);
            reader.u32();
            const quint32 unique = reader.u32();
            globals.strings.reserve(int(qMin<quint32>(unique, 1u << 20)));
            for (quint32 i = 0; i < unique && !reader.failed(); ++i) {
                const QString text = reader.richString();
                if (!reader.failed())
                    globals.strings.append(text);
            }
            break;
        }
        case Format:
            globals.formats.insert(body.u16(0), unicodeString(body, 2));
            break;
        case Xf:
            globals.xfFormats.append(body.u16(2));
            break;
        case EndOfFile:
            return true;
        default:
            break;
        }
    }
    *error = excel::damaged(
        path, failure.isEmpty() ? tr("the workbook stream ends before its end record") : failure);
    return false;
}

class SheetReader
{
public:
    SheetReader(const Globals &globals, ExcelNumberFormat &formatter, ExcelSheetBuilder &builder)
        : m_globals(globals)
        , m_formatter(formatter)
        , m_builder(builder)
    { }

    bool read(qint64 offset, const ReadReport &report, QString *error)
    {
        if (offset < 0 || offset + 4 > m_globals.stream.size()) {
            *error = tr("the sheet's offset %1 is outside the stream").arg(offset);
            return false;
        }
        Records records(m_globals.stream, offset);
        RecordHeader record;
        if (!records.next(record, error) || record.type != Bof) {
            if (error->isEmpty())
                *error = tr("no sheet starts at offset %1").arg(offset);
            return false;
        }
        int depth = 1;
        int count = 0;
        const double size = double(m_globals.stream.size());
        while (depth > 0 && records.next(record, error)) {
            if (++count % 1000 == 0)
                report.reportProgress(double(records.position()) / size);
            if (record.type == Bof) {
                ++depth; // a chart's records inside the sheet
                continue;
            }
            if (record.type == EndOfFile) {
                --depth;
                continue;
            }
            if (depth > 1)
                continue;
            if (record.type == String && m_pendingRow >= 0) {
                Continued reader;
                reader.append(record.body);
                while (records.peekType() == Continue && records.next(record, error))
                    reader.append(record.body);
                const int length = reader.u16();
                const quint8 flags = reader.u8();
                setText(m_pendingRow, m_pendingColumn, reader.chars(length, flags & 0x01), m_pendingXf, true);
                m_pendingRow = -1;
                continue;
            }
            if (!cell(record)) {
                *error = tr("a record at offset %1 is cut short or out of place").arg(record.offset);
                return false;
            }
        }
        if (error->isEmpty() && depth > 0)
            *error = tr("the sheet ends before its end record");
        return error->isEmpty();
    }

private:
    bool cell(const RecordHeader &record)
    {
        const View &body = record.body;
        // Cell records start with row, column and cell style; other records are read by type.
        const int row = body.has(0, 6) ? body.u16(0) : 0;
        const int column = body.has(0, 6) ? body.u16(2) : 0;
        const int xf = body.has(0, 6) ? body.u16(4) : 0;
        switch (record.type) {
        case Row:
            if (body.u8(12) & 0x20)
                m_builder.setRowHidden(row);
            break;
        case ColInfo:
            if (body.u16(8) & 0x0001)
                m_builder.setColumnsHidden(body.u16(0), body.u16(2));
            break;
        case LabelSst: {
            const quint32 index = body.u32(6);
            if (index >= quint32(m_globals.strings.size()))
                return false;
            setText(row, column, m_globals.strings.at(int(index)), xf, true);
            break;
        }
        case Label:
        case Rstring:
            setText(row, column, unicodeString(body, 6), xf, true);
            break;
        case Number:
            setNumber(row, column, body.f64(6), xf);
            break;
        case Rk:
            setNumber(row, column, rkValue(body.u32(6)), xf);
            break;
        case MulRk: {
            const int cells = (body.size - 6) / 6;
            for (int i = 0; i < cells; ++i)
                setNumber(row, column + i, rkValue(body.u32(4 + 6 * i + 2)), body.u16(4 + 6 * i));
            break;
        }
        case BoolErr:
            if (body.u8(7))
                setText(row, column, errorText(body.u8(6)), xf, false);
            else
                setText(
                    row, column, body.u8(6) ? QStringLiteral("TRUE") : QStringLiteral("FALSE"), xf, false);
            break;
        case Formula:
            formula(body, row, column, xf);
            break;
        case MergedCells:
            for (int i = 0, ranges = body.u16(0); i < ranges; ++i)
                m_builder.addMergedRange();
            break;
        default:
            break;
        }
        return !body.shortRead;
    }

    void formula(const View &body, int row, int column, int xf)
    {
        if (body.u16(12) != 0xFFFF) {
            setNumber(row, column, body.f64(6), xf);
            return;
        }
        switch (body.u8(6)) {
        case 0: // text, in the STRING record that follows
            m_pendingRow = row;
            m_pendingColumn = column;
            m_pendingXf = xf;
            break;
        case 1:
            setText(row, column, body.u8(8) ? QStringLiteral("TRUE") : QStringLiteral("FALSE"), xf, false);
            break;
        case 2:
            setText(row, column, errorText(body.u8(8)), xf, false);
            break;
        default: // an empty text
            break;
        }
    }

    QString codeFor(int xf)
    {
        auto it = m_codes.constFind(xf);
        if (it == m_codes.constEnd()) {
            const int id = m_globals.xfFormats.value(xf, 0);
            const auto custom = m_globals.formats.constFind(id);
            const QString code =
                custom != m_globals.formats.constEnd() ? custom.value() : ExcelNumberFormat::builtInCode(id);
            it = m_codes.insert(xf, code);
        }
        return it.value();
    }

    void setNumber(int row, int column, double value, int xf)
    {
        m_builder.setCell(row, column, m_formatter.format(value, codeFor(xf)));
    }
    void setText(int row, int column, const QString &text, int xf, bool formatted)
    {
        m_builder.setCell(row, column, formatted ? m_formatter.formatText(text, codeFor(xf)) : text);
    }

    const Globals &m_globals;
    ExcelNumberFormat &m_formatter;
    ExcelSheetBuilder &m_builder;
    QHash<int, QString> m_codes;
    int m_pendingRow = -1;
    int m_pendingColumn = -1;
    int m_pendingXf = 0;
};

} // namespace

bool readXls(const QString &path, const InputOptions &options, Dataset &table, ExcelReadCounts &counts,
    ReadReport &report)
{
    table.clear();
    counts = ExcelReadCounts();
    Globals globals;
    QString error;
    if (!readGlobals(path, globals, &error))
        return excel::fail(table, report, error);
    QList<ExcelSheetEntry> entries;
    for (const SheetInfo &sheet : qAsConst(globals.sheets))
        entries << sheet.entry;
    const int chosen = excel::chooseSheet(entries, options.sheet, path, report, &error);
    if (chosen < 0)
        return excel::fail(table, report, error);
    ExcelNumberFormat formatter(QLocale(), globals.date1904);
    ExcelSheetBuilder builder;
    SheetReader reader(globals, formatter, builder);
    if (!reader.read(globals.sheets.at(chosen).offset, report, &error))
        return excel::fail(table, report, excel::damaged(path, error));
    globals = Globals();
    builder.finish(options, table, counts, report);
    if (formatter.fallbackCount() > 0)
        report.warnings << formatter.fallbackMessage();
    report.reportProgress(1);
    return true;
}

bool readXlsInput(const QString &path, const InputOptions &options, Dataset &table, ReadReport &report)
{
    ExcelReadCounts counts;
    ReadReport own;
    own.progress = report.progress;
    const bool ok = readXls(path, options, table, counts, own);
    report.warnings += own.warnings;
    if (ok)
        report.information += excel::countLines(counts);
    report.information += own.information;
    return ok;
}

QList<ExcelSheetEntry> xlsSheetNames(const QString &path, QString *error)
{
    Globals globals;
    QString failure;
    QList<ExcelSheetEntry> entries;
    if (readGlobals(path, globals, &failure)) {
        for (const SheetInfo &sheet : qAsConst(globals.sheets))
            entries << sheet.entry;
    }
    if (error)
        *error = failure;
    return entries;
}

namespace xls {

QStringList oleStreamNames(const QString &path)
{
    QStringList names;
    const QuietLog quiet;
    GPtr<GsfInfile> ole = openCompoundFile(path);
    if (!ole)
        return names;
    const int count = gsf_infile_num_children(ole.get());
    for (int i = 0; i < count; ++i)
        if (const char *name = gsf_infile_name_by_index(ole.get(), i))
            names << QString::fromUtf8(name);
    return names;
}

} // namespace xls
