#include "excelwritertest.h"
#include "inputs/xlsreader.h"
#include "outputs/xlsworkbookwriter.h"

#include <QFileInfo>
#include <QProcess>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QtTest>

#include <freexl.h>

#undef signals
#include <gsf/gsf-outfile-msole.h>
#include <gsf/gsf-outfile.h>
#include <gsf/gsf-output-stdio.h>
#include <gsf/gsf-utils.h>
#define signals Q_SIGNALS

using namespace excelwritertest;

namespace {

// A workbook as FreeXL reads it: the sheet names, then each row of the first sheet with
// cells as "i:5", "d:1.5", "t:text", "date:2020-01-13", "time:09:05:00",
// "datetime:...", or "e" for none.
struct FreeXlBook
{
    int error = FREEXL_OK;
    QStringList sheets;
    unsigned int rows = 0;
    unsigned short columns = 0;
    QStringList lines;
};

// With endsOnly, only the first two rows and the last are read.
FreeXlBook readWithFreeXl(const QString &path, bool endsOnly = false)
{
    FreeXlBook book;
    const void *handle = nullptr;
    book.error = freexl_open(QFile::encodeName(path).constData(), &handle);
    if (book.error != FREEXL_OK)
        return book;
    unsigned int count = 0;
    freexl_get_info(handle, FREEXL_BIFF_SHEET_COUNT, &count);
    for (unsigned short i = 0; i < count; ++i) {
        const char *name = nullptr;
        freexl_get_worksheet_name(handle, i, &name);
        book.sheets << QString::fromUtf8(name);
    }
    if (count > 0 && freexl_select_active_worksheet(handle, 0) == FREEXL_OK
        && freexl_worksheet_dimensions(handle, &book.rows, &book.columns) == FREEXL_OK) {
        for (unsigned int r = 0; r < book.rows; ++r) {
            if (endsOnly && r > 1 && r + 1 < book.rows)
                continue;
            QStringList cells;
            for (unsigned short c = 0; c < book.columns; ++c) {
                FreeXL_CellValue value;
                if (freexl_get_cell_value(handle, r, c, &value) != FREEXL_OK) {
                    cells << QStringLiteral("error");
                    continue;
                }
                const bool isText = value.type != FREEXL_CELL_NULL && value.type != FREEXL_CELL_INT
                    && value.type != FREEXL_CELL_DOUBLE;
                const QString text = isText ? QString::fromUtf8(value.value.text_value) : QString();
                switch (value.type) {
                case FREEXL_CELL_INT:
                    cells << QStringLiteral("i:%1").arg(value.value.int_value);
                    break;
                case FREEXL_CELL_DOUBLE:
                    cells << QStringLiteral("d:%1").arg(QString::number(value.value.double_value, 'g', 17));
                    break;
                case FREEXL_CELL_TEXT:
                case FREEXL_CELL_SST_TEXT:
                    cells << QStringLiteral("t:") + text;
                    break;
                case FREEXL_CELL_DATE:
                    cells << QStringLiteral("date:") + text;
                    break;
                case FREEXL_CELL_DATETIME:
                    cells << QStringLiteral("datetime:") + text;
                    break;
                case FREEXL_CELL_TIME:
                    cells << QStringLiteral("time:") + text;
                    break;
                default:
                    cells << QStringLiteral("e");
                }
            }
            book.lines << cells.join(QLatin1Char(','));
        }
    }
    freexl_close(handle);
    return book;
}

// The sheet through this program's reader, as "a|b\n1|2".
QString readSheet(const QString &path)
{
    InputOptions options;
    options.hasHeader = 0;
    options.ignoreEmptyRows = false;
    Dataset table;
    ExcelReadCounts counts;
    ReadReport report;
    if (!readXls(path, options, table, counts, report))
        return QStringLiteral("failed: ") + report.warnings.value(0);
    QStringList lines;
    for (int r = 0; r < table.rowCount(); ++r)
        lines << table.row(r).join(QLatin1Char('|'));
    return lines.join(QLatin1Char('\n'));
}

// A workbook of empty sheets with these names, made record by record, as another program
// would have written it.
void writeEmptySheets(const QString &path, const QStringList &names)
{
    auto record = [](QByteArray &out, quint16 id, const QByteArray &body) {
        out += char(id & 0xFF);
        out += char(id >> 8);
        out += char(body.size() & 0xFF);
        out += char(body.size() >> 8);
        out += body;
    };
    auto bof = [](quint16 type) {
        return QByteArray::fromHex("0006") + char(type & 0xFF) + char(type >> 8) + QByteArray(12, '\0');
    };
    QByteArray globals;
    record(globals, 0x0809, bof(0x0005));
    QList<int> offsetAt;
    for (const QString &name : names) {
        offsetAt << globals.size() + 4;
        record(globals, 0x0085, QByteArray(6, '\0') + char(name.size()) + '\0' + name.toLatin1());
    }
    record(globals, 0x000A, QByteArray());
    QByteArray stream = globals;
    for (int i = 0; i < names.size(); ++i) {
        const int offset = stream.size();
        for (int k = 0; k < 4; ++k)
            stream[offsetAt.at(i) + k] = char((offset >> (8 * k)) & 0xFF);
        record(stream, 0x0809, bof(0x0010));
        record(stream, 0x000A, QByteArray());
    }
    gsf_init();
    GsfOutput *sink = gsf_output_stdio_new(QFile::encodeName(path).constData(), nullptr);
    QVERIFY(sink);
    GsfOutfile *container = gsf_outfile_msole_new(sink);
    GsfOutput *child = gsf_outfile_new_child(container, "Workbook", FALSE);
    gsf_output_write(child, size_t(stream.size()), reinterpret_cast<const guint8 *>(stream.constData()));
    gsf_output_close(child);
    g_object_unref(child);
    gsf_output_close(GSF_OUTPUT(container));
    g_object_unref(container);
    g_object_unref(sink);
}

} // namespace

class TestXlsWriter : public QObject
{
    Q_OBJECT
private slots:
    void cellsReadByFreeXl();
    void numbers_data();
    void numbers();
    void automaticTextsReadBack();
    void longStringTable_data();
    void longStringTable();
    void sizeLimits();
    void existingWorkbook_data();
    void existingWorkbook();
    void readByLibreOffice();
};

void TestXlsWriter::cellsReadByFreeXl()
{
    QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("cells.xls"));
    const Dataset dataset = table(QStringLiteral("Name|Amount|Day|At|Note\n"
                                                 "Ωmega 日本|1.50|13/01/2020|9:05|=SUM(A1)\n"
                                                 "Zoë|12|14/01/2020|10:30|\n"
                                                 "|007|15/01/2020|23:59|x"),
        true);
    WriteReport report;
    double progress = 0;
    report.progress = [&](double fraction) { progress = fraction; };
    QVERIFY(writeXlsWorkbook(path, dataset, options(QStringLiteral("Données été")), report));
    QCOMPARE(progress, 1.0);
    QCOMPARE(report.warnings,
        QStringList {
            QStringLiteral("'007' in column 'Amount' at row 3 is not a number and was written as text")});

    const FreeXlBook book = readWithFreeXl(path);
    QCOMPARE(book.error, FREEXL_OK);
    QCOMPARE(book.sheets, QStringList {QStringLiteral("Données été")});
    QCOMPARE(book.lines.join(QLatin1Char('\n')),
        QStringLiteral("t:Name,t:Amount,t:Day,t:At,t:Note\n"
                       "t:Ωmega 日本,d:1.5,date:2020-01-13,time:09:05:00,t:=SUM(A1)\n"
                       "t:Zoë,i:12,date:2020-01-14,time:10:30:00,e\n"
                       "e,t:007,date:2020-01-15,time:23:59:00,t:x"));
}

void TestXlsWriter::numbers_data()
{
    // RK records hold 30-bit integers and doubles with 34 low zero bits, either times 100;
    // other numbers need NUMBER records. Each must read back as the same double.
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("expected");
    QTest::newRow("small integer") << "5"
                                   << "i:5";
    QTest::newRow("negative integer") << "-17"
                                      << "i:-17";
    QTest::newRow("largest 30-bit integer") << "536870911"
                                            << "i:536870911";
    QTest::newRow("past 30 bits") << "536870912"
                                  << "d:536870912";
    QTest::newRow("smallest 30-bit integer") << "-536870912"
                                             << "i:-536870912";
    QTest::newRow("a half is a short double") << "0.5"
                                              << "d:0.5";
    QTest::newRow("hundredths") << "123456.78"
                                << "d:123456.78";
    QTest::newRow("a tenth needs all its bits") << "0.1"
                                                << "d:0.10000000000000001";
    QTest::newRow("15 digits") << "123456789012345"
                               << "d:123456789012345";
    QTest::newRow("many decimals") << "3.14159265358979"
                                   << "d:3.14159265358979";
}

void TestXlsWriter::numbers()
{
    QFETCH(QString, text);
    QFETCH(QString, expected);
    QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("n.xls"));
    WriteReport report;
    QVERIFY(
        writeXlsWorkbook(path, column(text + QStringLiteral("|1")), options(QString(), 1, false), report));
    const FreeXlBook book = readWithFreeXl(path);
    QCOMPARE(book.lines.value(0), expected);
    QCOMPARE(readSheet(path).section(QLatin1Char('\n'), 0, 0), text);
}

void TestXlsWriter::automaticTextsReadBack()
{
    // Written with "Automatic" and read by this program's reader, every cell has its text.
    QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("texts.xls"));
    const QString text =
        QStringLiteral("007|1.50|-0|12345678901234567|13/01/2020|2020-1-5|=SUM(A1)|9:05|0.001\n"
                       "008|2.25|-0.00|1|14/01/2020|2020-12-25|x|10:30|-12.5\n"
                       "1|3|1|2|15/01/2020|2021-1-1|y|23:59|0");
    WriteReport report;
    QVERIFY(writeXlsWorkbook(path, table(text), options(QStringLiteral("T"), 1, false), report));
    QCOMPARE(readSheet(path), text);

    Dataset wide = column(QString(40000, QChar(0x65E5)) + QStringLiteral("|short"));
    report = WriteReport();
    QVERIFY(writeXlsWorkbook(path, wide, options(QStringLiteral("T"), 1, false), report));
    QCOMPARE(report.warnings,
        QStringList {QStringLiteral(
            "1 value longer than 32,767 characters were cut, which is Excel's limit for a cell")});
    QCOMPARE(readSheet(path), QString(32767, QChar(0x65E5)) + QStringLiteral("\nshort"));
}

void TestXlsWriter::longStringTable_data()
{
    // Strings cross the 8,224-byte record ends at every offset: narrow and wide, short and
    // long, so that some are split inside their characters.
    QTest::addColumn<int>("count");
    QTest::addColumn<QString>("pattern");
    QTest::newRow("20,000 narrow strings") << 20000 << "text %1 é";
    QTest::newRow("20,000 wide strings") << 20000 << "текст %1";
    QTest::newRow("long strings split across records") << 300 << QString(3000, QLatin1Char('x')) + "%1";
    QTest::newRow("long wide strings") << 300 << QString(3001, QChar(0x4E2D)) + "%1";
}

void TestXlsWriter::longStringTable()
{
    QFETCH(int, count);
    QFETCH(QString, pattern);
    QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("strings.xls"));
    Dataset dataset;
    dataset.setColumnCount(2);
    QStringList expected;
    for (int i = 0; i < count; ++i) {
        const QString text = pattern.arg(i);
        dataset.appendRow({text, i % 3 == 0 ? QStringLiteral("same") : text});
        expected << text + QLatin1Char('|') + dataset.cell(i, 1);
    }
    WriteReport report;
    QVERIFY(writeXlsWorkbook(path, dataset, options(QStringLiteral("S"), 1, false), report));
    const FreeXlBook book = readWithFreeXl(path);
    QCOMPARE(book.error, FREEXL_OK);
    QCOMPARE(int(book.rows), count);
    for (int i = 0; i < count; i += 97)
        QCOMPARE(book.lines.at(i), QStringLiteral("t:%1,t:%2").arg(dataset.cell(i, 0), dataset.cell(i, 1)));
    QCOMPARE(book.lines.last(),
        QStringLiteral("t:%1,t:%2").arg(dataset.cell(count - 1, 0), dataset.cell(count - 1, 1)));
    QCOMPARE(readSheet(path), expected.join(QLatin1Char('\n')));
}

void TestXlsWriter::sizeLimits()
{
    // A header and 65,536 rows: the last row is not written.
    QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("big.xls"));
    Dataset dataset;
    dataset.setColumnCount(1);
    dataset.setHeaders({QStringLiteral("H")});
    dataset.setRowCount(65536);
    dataset.setCell(65534, 0, QStringLiteral("last written"));
    dataset.setCell(65535, 0, QStringLiteral("not written"));
    WriteReport report;
    QVERIFY(writeXlsWorkbook(path, dataset, options(QStringLiteral("Big")), report));
    FreeXlBook book = readWithFreeXl(path, true);
    QCOMPARE(book.error, FREEXL_OK);
    QCOMPARE(int(book.rows), 65536);
    QCOMPARE(book.lines.last(), QStringLiteral("t:last written"));

    // 300 columns: 256 are written.
    QStringList row;
    for (int c = 0; c < 300; ++c)
        row << QString::number(c);
    dataset = Dataset();
    dataset.setColumnCount(300);
    dataset.appendRow(row);
    const QString widePath = folder.filePath(QStringLiteral("wide.xls"));
    QVERIFY(writeXlsWorkbook(widePath, dataset, options(QStringLiteral("Wide"), 1, false), report));
    book = readWithFreeXl(widePath);
    QCOMPARE(int(book.columns), 256);
    QCOMPARE(book.lines.value(0).section(QLatin1Char(','), -1), QStringLiteral("i:255"));
}

void TestXlsWriter::existingWorkbook_data()
{
    QTest::addColumn<QString>(
        "existing"); // sheet names of an empty workbook, "<ours>" one written by us, or bytes
    QTest::addColumn<int>("mode");
    QTest::addColumn<bool>("written");
    QTest::addColumn<QString>("expected"); // the sheet read back, or the first warning
    QTest::addColumn<QString>("told");

    const int overwrite = OutputOptions::Overwrite;
    const int append = OutputOptions::Append;
    QTest::newRow("overwrite the only sheet") << "<ours>" << overwrite << true << "N|Day\n5|13/01/2020"
                                              << "Replaced sheet '%1[Data]'";
    QTest::newRow("append to the only sheet")
        << "<ours>" << append << true << "a|b\n1|2.50\nN|Day\n5|13/01/2020"
        << "Appended sheet '%1[Data]'";
    QTest::newRow("other sheets: overwrite fails") << "Data,Other" << overwrite << false
                                                   << "Writing a sheet into an existing .xls workbook with "
                                                      "other sheets is not possible; write a new file or "
                                                      "use .xlsx"
                                                   << "";
    QTest::newRow("other sheets: append fails") << "Other" << append << false
                                                << "Writing a sheet into an existing .xls workbook with "
                                                   "other sheets is not possible; write a new file or "
                                                   "use .xlsx"
                                                << "";
    QTest::newRow("not a workbook") << "bytes:not an xls" << overwrite << false << "Unable to update '%1': "
                                    << "";
    QTest::newRow("a workbook of one empty sheet") << "Data" << overwrite << true << "N|Day\n5|13/01/2020"
                                                   << "";
}

void TestXlsWriter::existingWorkbook()
{
    QFETCH(QString, existing);
    QFETCH(int, mode);
    QFETCH(bool, written);
    QFETCH(QString, expected);
    QFETCH(QString, told);

    QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("book.xls"));
    const QString where = QDir::toNativeSeparators(QFileInfo(path).absoluteFilePath());
    if (existing == QLatin1String("<ours>")) {
        WriteReport report;
        QVERIFY(writeXlsWorkbook(
            path, table(QStringLiteral("a|b\n1|2.50"), true), options(QStringLiteral("Data")), report));
    } else if (existing.startsWith(QLatin1String("bytes:"))) {
        QFile file(path);
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write(existing.mid(6).toLatin1());
    } else {
        writeEmptySheets(path, existing.split(QLatin1Char(',')));
    }
    const QByteArray before = digest(path);
    const QStringList entriesBefore = entries(folder.path());

    WriteReport report;
    const bool result = writeXlsWorkbook(path, table(QStringLiteral("N|Day\n5|13/01/2020"), true),
        options(QStringLiteral("Data"), mode), report);
    QCOMPARE(result, written);
    if (written) {
        QCOMPARE(readSheet(path), expected);
        if (!told.isEmpty())
            QVERIFY2(report.information.contains(told.arg(where)),
                qPrintable(report.information.join(QLatin1Char('\n'))));
        QCOMPARE(readWithFreeXl(path).error, FREEXL_OK);
    } else {
        const QString warning = expected.contains(QLatin1String("%1")) ? expected.arg(where) : expected;
        QVERIFY2(report.warnings.value(0).startsWith(warning), qPrintable(report.warnings.value(0)));
        QCOMPARE(digest(path), before);
        QCOMPARE(entries(folder.path()), entriesBefore);
    }
}

void TestXlsWriter::readByLibreOffice()
{
    const QString office = QStandardPaths::findExecutable(QStringLiteral("soffice"));
    if (office.isEmpty())
        QSKIP("LibreOffice (soffice) is not installed");
    QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("office.xls"));
    WriteReport report;
    QVERIFY(writeXlsWorkbook(
        path, table(QStringLiteral("Name|N\nZoë|1.50\nΩ|2"), true), options(QStringLiteral("S")), report));
    QProcess process;
    process.setWorkingDirectory(folder.path());
    process.start(office,
        {QStringLiteral("--headless"), QStringLiteral("--convert-to"),
            QStringLiteral("csv:Text - txt - csv (StarCalc):44,34,76"), QStringLiteral("--outdir"),
            folder.path(), path});
    QVERIFY(process.waitForFinished(120000));
    QFile csv(folder.filePath(QStringLiteral("office.csv")));
    QVERIFY(csv.open(QIODevice::ReadOnly));
    QCOMPARE(QString::fromUtf8(csv.readAll()).trimmed(), QStringLiteral("Name,N\nZoë,1.50\nΩ,2"));
}

QTEST_GUILESS_MAIN(TestXlsWriter)
#include "tst_xlswriter.moc"
