#include "xlsxreader.h"

#include "core/excelnumberformat.h"
#include "inputs/xlsreader.h"

#include <QCoreApplication>
#include <QFile>
#include <QHash>
#include <QIODevice>
#include <QUrl>
#include <QXmlStreamReader>

#include <zip.h>

#include <cmath>
#include <memory>

namespace {

QString tr(const char *text)
{
    return QCoreApplication::translate("XlsxReader", text);
}

// One entry of the archive as a device, so that XML is read as it unpacks. It refuses to
// give more bytes than the entry states, which a crafted archive might try.
class ZipEntryDevice : public QIODevice
{
public:
    ZipEntryDevice(zip_file_t *file, qint64 size)
        : m_file(file)
        , m_size(size)
    {
        open(QIODevice::ReadOnly);
    }
    ~ZipEntryDevice() override { zip_fclose(m_file); }
    bool isSequential() const override { return true; }
    qint64 unpacked() const { return m_unpacked; }
    qint64 size() const override { return m_size; }
    QString failure() const { return m_failure; }

protected:
    qint64 readData(char *data, qint64 maxSize) override
    {
        if (!m_failure.isEmpty())
            return -1;
        const zip_int64_t read = zip_fread(m_file, data, zip_uint64_t(maxSize));
        if (read < 0) {
            m_failure = QString::fromLocal8Bit(zip_file_strerror(m_file));
            return -1;
        }
        m_unpacked += read;
        if (m_unpacked > m_size) {
            m_failure = tr("it unpacks to more than its stated size");
            return -1;
        }
        return read;
    }
    qint64 writeData(const char *, qint64) override { return -1; }

private:
    zip_file_t *m_file;
    qint64 m_size;
    qint64 m_unpacked = 0;
    QString m_failure;
};

struct Relationship
{
    QString type;
    QString target; // resolved part name
};

// The package: entries found by part name, unpacked within the limits.
class Package
{
public:
    explicit Package(const QString &path)
        : m_path(path)
    { }
    ~Package()
    {
        if (m_zip)
            zip_discard(m_zip);
    }

    bool open(QString *error)
    {
        int code = 0;
        m_zip = zip_open(QFile::encodeName(m_path).constData(), ZIP_RDONLY, &code);
        if (m_zip)
            return true;
        *error = openFailure(code);
        return false;
    }

    bool contains(const QString &part) const { return locate(part) >= 0; }

    // The entry as a device; nullptr with the error when it is missing or over the limits.
    std::unique_ptr<ZipEntryDevice> device(const QString &part, QString *error)
    {
        const zip_int64_t index = locate(part);
        if (index < 0) {
            *error = excel::damaged(m_path, tr("the part '%1' is missing").arg(part));
            return nullptr;
        }
        zip_stat_t stat;
        zip_stat_init(&stat);
        if (zip_stat_index(m_zip, zip_uint64_t(index), 0, &stat) != 0) {
            *error = excel::damaged(m_path, QString::fromLocal8Bit(zip_strerror(m_zip)));
            return nullptr;
        }
        if ((stat.valid & ZIP_STAT_ENCRYPTION_METHOD) && stat.encryption_method != ZIP_EM_NONE) {
            *error = tr("'%1' is password protected and can't be read").arg(excel::displayPath(m_path));
            return nullptr;
        }
        const qint64 size = (stat.valid & ZIP_STAT_SIZE) ? qint64(stat.size) : 0;
        const qint64 packed = (stat.valid & ZIP_STAT_COMP_SIZE) ? qint64(stat.comp_size) : 0;
        m_total += size;
        if (size < 0 || m_total > xlsxlimits::MaxTotalBytes
            || (size >= xlsxlimits::RatioCheckedFrom
                && (packed <= 0 || size / packed > xlsxlimits::MaxRatio))) {
            *error = excel::damaged(m_path,
                tr("the part '%1' unpacks to %2 bytes from %3, far more than a "
                   "workbook holds (a zip bomb?)")
                    .arg(part)
                    .arg(size)
                    .arg(packed));
            return nullptr;
        }
        zip_file_t *file = zip_fopen_index(m_zip, zip_uint64_t(index), 0);
        if (!file) {
            const int code = zip_error_code_zip(zip_get_error(m_zip));
            if (code == ZIP_ER_NOPASSWD || code == ZIP_ER_WRONGPASSWD)
                *error = tr("'%1' is password protected and can't be read").arg(excel::displayPath(m_path));
            else
                *error = excel::damaged(
                    m_path, QStringLiteral("%1: %2").arg(part, QString::fromLocal8Bit(zip_strerror(m_zip))));
            return nullptr;
        }
        return std::make_unique<ZipEntryDevice>(file, size);
    }

private:
    zip_int64_t locate(const QString &part) const
    {
        if (!m_zip || part.isEmpty())
            return -1;
        const QByteArray name = part.toUtf8();
        zip_int64_t index = zip_name_locate(m_zip, name.constData(), 0);
        if (index < 0)
            index = zip_name_locate(m_zip, name.constData(), ZIP_FL_NOCASE);
        if (index < 0 && part.contains(QLatin1Char('%'))) {
            const QByteArray decoded = QUrl::fromPercentEncoding(name).toUtf8();
            index = zip_name_locate(m_zip, decoded.constData(), ZIP_FL_NOCASE);
        }
        return index;
    }

    QString openFailure(int code) const
    {
        const QString where = excel::displayPath(m_path);
        QFile file(m_path);
        QByteArray head;
        if (file.open(QIODevice::ReadOnly))
            head = file.read(8);
        else
            return tr("Unable to open file '%1': %2").arg(where, file.errorString());
        if (head.startsWith("\xD0\xCF\x11\xE0\xA1\xB1\x1A\xE1")) {
            const QStringList streams = xls::oleStreamNames(m_path);
            if (streams.contains(QLatin1String("EncryptedPackage"), Qt::CaseInsensitive))
                return tr("'%1' is password protected and can't be read").arg(where);
            if (streams.contains(QLatin1String("Workbook"), Qt::CaseInsensitive)
                || streams.contains(QLatin1String("Book"), Qt::CaseInsensitive))
                return tr("'%1' is an Excel .xls file; set 'Format' to 'Excel XLS'").arg(where);
        }
        if (head.startsWith("PK") && code != ZIP_ER_NOZIP) {
            zip_error_t error;
            zip_error_init_with_code(&error, code);
            const QString text = QString::fromLocal8Bit(zip_error_strerror(&error));
            zip_error_fini(&error);
            return excel::damaged(m_path, text);
        }
        if (head.startsWith("PK"))
            return excel::damaged(m_path, tr("the zip archive is cut short or broken"));
        return tr("'%1' is not an Excel .xlsx file (it is not a zip archive)").arg(where);
    }

    QString m_path;
    zip_t *m_zip = nullptr;
    qint64 m_total = 0;
};

bool isTrue(QStringView value)
{
    return value == QLatin1String("1") || value.compare(QLatin1String("true"), Qt::CaseInsensitive) == 0;
}

// "_x000D_" and the like stand for characters XML can't hold.
QString decodeEscapes(QString text)
{
    if (!text.contains(QLatin1String("_x")))
        return text;
    QString out;
    out.reserve(text.size());
    for (int i = 0; i < text.size(); ++i) {
        if (text.at(i) == QLatin1Char('_') && i + 6 < text.size() && text.at(i + 1) == QLatin1Char('x')
            && text.at(i + 6) == QLatin1Char('_')) {
            bool ok = false;
            const ushort code = text.midRef(i + 2, 4).toUShort(&ok, 16);
            if (ok) {
                out += QChar(code);
                i += 6;
                continue;
            }
        }
        out += text.at(i);
    }
    return out;
}

// The folder of a part, for resolving relative targets.
QString folderOf(const QString &part)
{
    const int slash = part.lastIndexOf(QLatin1Char('/'));
    return slash < 0 ? QString() : part.left(slash + 1);
}

QString resolveTarget(const QString &source, QString target)
{
    target.replace(QLatin1Char('\\'), QLatin1Char('/'));
    const QString combined = target.startsWith(QLatin1Char('/')) ? target.mid(1) : folderOf(source) + target;
    QStringList parts;
    for (const QString &segment : combined.split(QLatin1Char('/'))) {
        if (segment == QLatin1String("..")) {
            if (!parts.isEmpty())
                parts.removeLast();
        } else if (!segment.isEmpty() && segment != QLatin1String(".")) {
            parts << segment;
        }
    }
    return parts.join(QLatin1Char('/'));
}

QString relationshipsOf(const QString &part)
{
    const int slash = part.lastIndexOf(QLatin1Char('/'));
    return part.left(slash + 1) + QStringLiteral("_rels/") + part.mid(slash + 1) + QStringLiteral(".rels");
}

// Reads one XML part token by token; the handler sees every token and may read further.
class XmlPart
{
public:
    XmlPart(Package &package, const QString &path, const QString &part)
        : m_path(path)
        , m_part(part)
    {
        m_device = package.device(part, &m_error);
        if (m_device)
            m_xml.setDevice(m_device.get());
    }
    bool isOpen() const { return m_device != nullptr; }
    QXmlStreamReader &xml() { return m_xml; }
    ZipEntryDevice *device() { return m_device.get(); }

    // The next token; false at the end or on an error (a DTD counts as one: workbooks have none).
    bool next()
    {
        if (!m_device || m_xml.atEnd())
            return false;
        m_xml.readNext();
        if (m_xml.tokenType() == QXmlStreamReader::DTD)
            m_xml.raiseError(tr("document type declarations are not allowed"));
        return !m_xml.hasError() && m_xml.tokenType() != QXmlStreamReader::EndDocument;
    }
    bool isStart(const char *name) const
    {
        return m_xml.isStartElement() && m_xml.name() == QLatin1String(name);
    }
    bool isEnd(const char *name) const { return m_xml.isEndElement() && m_xml.name() == QLatin1String(name); }
    QString attribute(const char *name) const
    {
        return m_xml.attributes().value(QLatin1String(name)).toString();
    }

    // The error text after reading, empty when the part was read whole.
    QString error()
    {
        if (!m_error.isEmpty())
            return m_error;
        if (!m_device->failure().isEmpty())
            return excel::damaged(m_path, QStringLiteral("%1: %2").arg(m_part, m_device->failure()));
        if (m_xml.hasError())
            return excel::damaged(m_path,
                tr("%1, line %2, column %3: %4")
                    .arg(m_part)
                    .arg(m_xml.lineNumber())
                    .arg(m_xml.columnNumber() + 1)
                    .arg(m_xml.errorString()));
        return QString();
    }
    void fail(const QString &detail) { m_xml.raiseError(detail); }

    // The text of a string item (si or is): its t, or its runs' t joined, phonetic runs left out.
    QString readStringItem()
    {
        QString text;
        int depth = 0;
        while (next()) {
            if (m_xml.isStartElement()) {
                if (m_xml.name() == QLatin1String("rPh")) {
                    m_xml.skipCurrentElement();
                } else if (m_xml.name() == QLatin1String("t")) {
                    text += m_xml.readElementText();
                } else {
                    ++depth;
                }
            } else if (m_xml.isEndElement()) {
                if (depth-- == 0)
                    break;
            }
        }
        return decodeEscapes(text);
    }

private:
    QString m_path;
    QString m_part;
    QString m_error;
    std::unique_ptr<ZipEntryDevice> m_device;
    QXmlStreamReader m_xml;
};

QHash<QString, Relationship> readRelationships(
    Package &package, const QString &path, const QString &source, QString *error)
{
    QHash<QString, Relationship> relationships;
    const QString part = relationshipsOf(source);
    if (!package.contains(part))
        return relationships;
    XmlPart xml(package, path, part);
    while (xml.next()) {
        if (!xml.isStart("Relationship"))
            continue;
        if (xml.attribute("TargetMode").compare(QLatin1String("External"), Qt::CaseInsensitive) == 0)
            continue;
        relationships.insert(
            xml.attribute("Id"), {xml.attribute("Type"), resolveTarget(source, xml.attribute("Target"))});
    }
    *error = xml.error();
    return relationships;
}

QString targetOfType(const QHash<QString, Relationship> &relationships, const char *type)
{
    for (const Relationship &relationship : relationships)
        if (relationship.type.endsWith(QLatin1Char('/') + QLatin1String(type)))
            return relationship.target;
    return QString();
}

struct SheetInfo
{
    ExcelSheetEntry entry;
    QString part;
};

struct Workbook
{
    QString part;
    QList<SheetInfo> sheets;
    bool date1904 = false;
    QString sharedStrings;
    QString styles;
};

bool readWorkbook(Package &package, const QString &path, Workbook &book, QString *error)
{
    if (!package.open(error))
        return false;
    if (package.contains(QStringLiteral("xl/workbook.bin"))) {
        *error =
            tr("'%1' is an Excel binary workbook (.xlsb), which can't be read; save it as .xlsx in Excel")
                .arg(excel::displayPath(path));
        return false;
    }
    const QHash<QString, Relationship> root = readRelationships(package, path, QString(), error);
    if (!error->isEmpty())
        return false;
    book.part = targetOfType(root, "officeDocument");
    if (book.part.isEmpty())
        book.part = QStringLiteral("xl/workbook.xml");
    if (book.part.endsWith(QLatin1String(".bin"))) {
        *error =
            tr("'%1' is an Excel binary workbook (.xlsb), which can't be read; save it as .xlsx in Excel")
                .arg(excel::displayPath(path));
        return false;
    }
    const QHash<QString, Relationship> relationships = readRelationships(package, path, book.part, error);
    if (!error->isEmpty())
        return false;
    book.sharedStrings = targetOfType(relationships, "sharedStrings");
    book.styles = targetOfType(relationships, "styles");
    XmlPart xml(package, path, book.part);
    if (!xml.isOpen()) {
        *error = xml.error();
        return false;
    }
    while (xml.next()) {
        if (xml.isStart("workbookPr")) {
            book.date1904 = isTrue(xml.xml().attributes().value(QLatin1String("date1904")));
        } else if (xml.isStart("sheet")) {
            SheetInfo sheet;
            sheet.entry.name = xml.attribute("name");
            const QString state = xml.attribute("state");
            sheet.entry.hidden = state == QLatin1String("hidden") || state == QLatin1String("veryHidden");
            for (const QXmlStreamAttribute &attribute : xml.xml().attributes())
                if (attribute.name() == QLatin1String("id") && !attribute.namespaceUri().isEmpty())
                    sheet.part = relationships.value(attribute.value().toString()).target;
            book.sheets.append(sheet);
        }
    }
    *error = xml.error();
    return error->isEmpty();
}

// Number formats by cell style: the custom codes of the workbook, else the built-in ones.
struct Styles
{
    QVector<int> formatIds; // by cellXfs index
    QHash<int, QString> customCodes;

    QString codeFor(int style, const QLocale &locale) const
    {
        const int id = formatIds.value(style, 0);
        const auto custom = customCodes.constFind(id);
        if (custom != customCodes.constEnd())
            return custom.value();
        return ExcelNumberFormat::builtInCode(id, locale);
    }
};

bool readStyles(Package &package, const QString &path, const QString &part, Styles &styles, QString *error)
{
    if (part.isEmpty() || !package.contains(part))
        return true;
    XmlPart xml(package, path, part);
    bool inCellXfs = false;
    while (xml.next()) {
        if (xml.isStart("numFmt")) {
            styles.customCodes.insert(xml.attribute("numFmtId").toInt(), xml.attribute("formatCode"));
        } else if (xml.isStart("cellXfs")) {
            inCellXfs = true;
        } else if (xml.isEnd("cellXfs")) {
            inCellXfs = false;
        } else if (inCellXfs && xml.isStart("xf")) {
            styles.formatIds.append(xml.attribute("numFmtId").toInt());
        }
    }
    *error = xml.error();
    return error->isEmpty();
}

bool readSharedStrings(
    Package &package, const QString &path, const QString &part, QVector<QString> &strings, QString *error)
{
    if (part.isEmpty() || !package.contains(part))
        return true;
    XmlPart xml(package, path, part);
    while (xml.next()) {
        if (xml.isStart("sst"))
            strings.reserve(qBound(0, xml.attribute("uniqueCount").toInt(), 1 << 20));
        else if (xml.isStart("si"))
            strings.append(xml.readStringItem());
    }
    *error = xml.error();
    return error->isEmpty();
}

// "B12" as row 11, column 1; false for anything else.
bool parseReference(QStringView reference, int *row, int *column)
{
    int i = 0;
    int c = 0;
    while (i < reference.size() && reference.at(i).isLetter() && i < 3) {
        c = c * 26 + (reference.at(i).toUpper().unicode() - 'A' + 1);
        ++i;
    }
    if (i == 0 || i == reference.size())
        return false;
    bool ok = false;
    const int r = reference.mid(i).toInt(&ok);
    if (!ok || r < 1 || r > ExcelSheetBuilder::MaxRows || c > ExcelSheetBuilder::MaxColumns)
        return false;
    *row = r - 1;
    *column = c - 1;
    return true;
}

class SheetReader
{
public:
    SheetReader(XmlPart &xml, const Styles &styles, const QVector<QString> &strings,
        ExcelNumberFormat &formatter, ExcelSheetBuilder &builder)
        : m_xml(xml)
        , m_styles(styles)
        , m_strings(strings)
        , m_formatter(formatter)
        , m_builder(builder)
    { }

    void read(const ReadReport &report)
    {
        int cells = 0;
        while (m_xml.next()) {
            if (!m_xml.xml().isStartElement())
                continue;
            const QStringRef name = m_xml.xml().name();
            if (name == QLatin1String("c")) {
                readCell();
                if (++cells % 1000 == 0 && m_xml.device()->size() > 0)
                    report.reportProgress(double(m_xml.device()->unpacked()) / m_xml.device()->size());
            } else if (name == QLatin1String("row")) {
                readRow();
            } else if (name == QLatin1String("col")) {
                const int first = m_xml.attribute("min").toInt();
                const int last = m_xml.attribute("max").toInt();
                if (isTrue(m_xml.xml().attributes().value(QLatin1String("hidden"))))
                    m_builder.setColumnsHidden(first - 1, last - 1);
            } else if (name == QLatin1String("mergeCell")) {
                m_builder.addMergedRange();
            }
        }
    }

private:
    void readRow()
    {
        const QString number = m_xml.attribute("r");
        if (number.isEmpty()) {
            ++m_row;
        } else {
            bool ok = false;
            const int r = number.toInt(&ok);
            if (!ok || r < 1 || r > ExcelSheetBuilder::MaxRows) {
                m_xml.fail(tr("row number '%1' is outside the sheet").arg(number));
                return;
            }
            m_row = r - 1;
        }
        m_column = -1;
        if (isTrue(m_xml.xml().attributes().value(QLatin1String("hidden"))))
            m_builder.setRowHidden(m_row);
    }

    void readCell()
    {
        const QXmlStreamAttributes attributes = m_xml.xml().attributes();
        const QStringView reference = attributes.value(QLatin1String("r"));
        const QString type = attributes.value(QLatin1String("t")).toString();
        const int style = attributes.value(QLatin1String("s")).toInt();
        if (reference.isEmpty()) {
            m_row = qMax(m_row, 0);
            ++m_column;
        } else if (!parseReference(reference, &m_row, &m_column)) {
            m_xml.fail(tr("cell reference '%1' is not valid").arg(reference.toString()));
            return;
        }
        bool hasValue = false;
        bool hasFormula = false;
        bool hasInline = false;
        QString value;
        QString inlineText;
        int depth = 0;
        while (m_xml.next()) {
            QXmlStreamReader &xml = m_xml.xml();
            if (xml.isStartElement()) {
                if (xml.name() == QLatin1String("v")) {
                    value = xml.readElementText();
                    hasValue = true;
                } else if (xml.name() == QLatin1String("f")) {
                    hasFormula = true;
                    xml.skipCurrentElement();
                } else if (xml.name() == QLatin1String("is")) {
                    inlineText = m_xml.readStringItem();
                    hasInline = true;
                } else {
                    ++depth;
                }
            } else if (xml.isEndElement()) {
                if (depth-- == 0)
                    break;
            }
        }
        if (m_column >= ExcelSheetBuilder::MaxColumns) {
            m_xml.fail(tr("cell column %1 is outside the sheet").arg(m_column + 1));
            return;
        }
        QString text;
        if (hasInline) {
            text = inlineText;
        } else if (!hasValue || (hasFormula && value.isEmpty() && type != QLatin1String("str"))) {
            // Some writers leave an empty value element for a formula they didn't calculate.
            if (hasFormula)
                m_builder.addFormulaWithoutResult();
            return;
        } else if (type == QLatin1String("s")) {
            bool ok = false;
            const int index = value.toInt(&ok);
            if (!ok || index < 0 || index >= m_strings.size()) {
                m_xml.fail(tr("shared string '%1' does not exist").arg(value));
                return;
            }
            text = m_formatter.formatText(m_strings.at(index), codeFor(style));
        } else if (type == QLatin1String("b")) {
            text = value.trimmed() == QLatin1String("1") || value.trimmed() == QLatin1String("true")
                ? QStringLiteral("TRUE")
                : QStringLiteral("FALSE");
        } else if (type == QLatin1String("e") || type == QLatin1String("str")) {
            text = decodeEscapes(value);
        } else if (type == QLatin1String("d")) {
            text = isoDate(value, style);
        } else {
            bool ok = false;
            const double number = value.toDouble(&ok);
            text = ok ? m_formatter.format(number, codeFor(style)) : decodeEscapes(value);
        }
        m_builder.setCell(m_row, m_column, text);
    }

    QString isoDate(const QString &value, int style)
    {
        QDateTime when = QDateTime::fromString(value, Qt::ISODateWithMs);
        if (!when.isValid()) {
            const QDate date = QDate::fromString(value, Qt::ISODate);
            const QTime time = QTime::fromString(value, Qt::ISODateWithMs);
            if (date.isValid())
                when = QDateTime(date, QTime(0, 0));
            else if (time.isValid())
                when = QDateTime(QDate(1899, 12, 31), time);
        }
        if (!when.isValid())
            return value;
        double serial = ExcelNumberFormat::serialFromDateTime(when, m_formatter.date1904());
        if (when.date() == QDate(1899, 12, 31))
            serial -= std::floor(serial); // a time alone
        return m_formatter.format(serial, codeFor(style));
    }

    const QString &codeFor(int style)
    {
        auto it = m_codes.constFind(style);
        if (it == m_codes.constEnd())
            it = m_codes.insert(style, m_styles.codeFor(style, QLocale()));
        return it.value();
    }

    XmlPart &m_xml;
    const Styles &m_styles;
    const QVector<QString> &m_strings;
    ExcelNumberFormat &m_formatter;
    ExcelSheetBuilder &m_builder;
    QHash<int, QString> m_codes;
    int m_row = -1;
    int m_column = -1;
};

} // namespace

bool readXlsx(const QString &path, const InputOptions &options, Dataset &table, ExcelReadCounts &counts,
    ReadReport &report)
{
    table.clear();
    counts = ExcelReadCounts();
    Package package(path);
    Workbook book;
    QString error;
    if (!readWorkbook(package, path, book, &error))
        return excel::fail(table, report, error);
    QList<ExcelSheetEntry> entries;
    for (const SheetInfo &sheet : qAsConst(book.sheets))
        entries << sheet.entry;
    const int chosen = excel::chooseSheet(entries, options.sheet, path, report, &error);
    if (chosen < 0)
        return excel::fail(table, report, error);
    const SheetInfo &sheet = book.sheets.at(chosen);
    if (sheet.part.isEmpty())
        return excel::fail(table, report,
            excel::damaged(path, tr("the sheet '%1' has no part in the package").arg(sheet.entry.name)));
    Styles styles;
    QVector<QString> strings;
    if (!readStyles(package, path, book.styles, styles, &error)
        || !readSharedStrings(package, path, book.sharedStrings, strings, &error))
        return excel::fail(table, report, error);
    ExcelNumberFormat formatter(QLocale(), book.date1904);
    ExcelSheetBuilder builder;
    {
        XmlPart xml(package, path, sheet.part);
        if (!xml.isOpen())
            return excel::fail(table, report, xml.error());
        SheetReader reader(xml, styles, strings, formatter, builder);
        reader.read(report);
        error = xml.error();
        if (!error.isEmpty())
            return excel::fail(table, report, error);
    }
    strings.clear();
    builder.finish(options, table, counts, report);
    if (formatter.fallbackCount() > 0)
        report.warnings << formatter.fallbackMessage();
    report.reportProgress(1);
    return true;
}

bool readXlsxInput(const QString &path, const InputOptions &options, Dataset &table, ReadReport &report)
{
    ExcelReadCounts counts;
    ReadReport own;
    own.progress = report.progress;
    const bool ok = readXlsx(path, options, table, counts, own);
    report.warnings += own.warnings;
    if (ok)
        report.information += excel::countLines(counts);
    report.information += own.information;
    return ok;
}

QList<ExcelSheetEntry> xlsxSheetNames(const QString &path, QString *error)
{
    Package package(path);
    Workbook book;
    QString failure;
    QList<ExcelSheetEntry> entries;
    if (readWorkbook(package, path, book, &failure)) {
        for (const SheetInfo &sheet : qAsConst(book.sheets))
            entries << sheet.entry;
    }
    if (error)
        *error = failure;
    return entries;
}
