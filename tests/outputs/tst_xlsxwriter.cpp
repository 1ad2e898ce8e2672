#include "excelwritertest.h"
#include "inputs/xlsxreader.h"
#include "outputs/excelwriting.h"
#include "outputs/xlsxworkbookwriter.h"

#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QTemporaryDir>
#include <QtTest>

using namespace excelwritertest;
using ExcelWriting::Cell;
using ExcelWriting::CellPlan;

namespace {

// A cell as "n:value:format", "t:text" or "e".
QString describe(const Cell &cell)
{
    switch (cell.kind) {
    case Cell::Number:
        return QStringLiteral("n:%1:%2").arg(QString::number(cell.number, 'g', 15), cell.format);
    case Cell::Text:
        return QStringLiteral("t:") + cell.text;
    case Cell::Empty:
        break;
    }
    return QStringLiteral("e");
}

// Each sheet of a workbook as openpyxl reads it: name, state, frozen cell and rows of
// "n:value:format", "t:text" or "d:ISO date:format", "e" for none, "*" after a bold cell.
const char *const openpyxlScript = R"(
import json, sys, openpyxl
book = openpyxl.load_workbook(sys.argv[1])
sheets = []
for sheet in book.worksheets:
    rows = []
    for row in sheet.iter_rows():
        cells = []
        for cell in row:
            value = cell.value
            if value is None:
                text = 'e'
            elif cell.data_type == 'n':
                text = 'n:%s:%s' % (repr(value), cell.number_format)
            elif cell.data_type == 'd':
                text = 'd:%s:%s' % (value.isoformat(), cell.number_format)
            else:
                text = 't:' + str(value)
            if cell.font is not None and cell.font.b:
                text += '*'
            cells.append(text)
        rows.append(cells)
    sheets.append({'name': sheet.title, 'state': sheet.sheet_state,
                   'freeze': sheet.freeze_panes or '', 'rows': rows})
print(json.dumps({'active': book.active.title, 'sheets': sheets}))
)";

bool hasOpenpyxl()
{
    static const bool available = [] {
        if (!QFileInfo::exists(QStringLiteral("/usr/bin/python3")))
            return false;
        QProcess process;
        process.start(
            QStringLiteral("/usr/bin/python3"), {QStringLiteral("-c"), QStringLiteral("import openpyxl")});
        return process.waitForFinished(30000) && process.exitCode() == 0;
    }();
    return available;
}

QJsonObject readWithOpenpyxl(const QString &path)
{
    QProcess process;
    process.start(
        QStringLiteral("/usr/bin/python3"), {QStringLiteral("-c"), QLatin1String(openpyxlScript), path});
    if (!process.waitForFinished(60000) || process.exitCode() != 0) {
        qWarning() << process.readAllStandardError();
        return QJsonObject();
    }
    return QJsonDocument::fromJson(process.readAllStandardOutput()).object();
}

// The rows of one sheet as "cell,cell\ncell,cell".
QString sheetText(const QJsonObject &sheet)
{
    QStringList lines;
    for (const QJsonValue &row : sheet.value(QStringLiteral("rows")).toArray()) {
        QStringList cells;
        for (const QJsonValue &cell : row.toArray())
            cells << cell.toString();
        lines << cells.join(QLatin1Char(','));
    }
    return lines.join(QLatin1Char('\n'));
}

QStringList sheetNames(const QJsonObject &book)
{
    QStringList names;
    for (const QJsonValue &sheet : book.value(QStringLiteral("sheets")).toArray())
        names << sheet.toObject().value(QStringLiteral("name")).toString();
    return names;
}

// One sheet through this program's reader, as "a|b\n1|2".
QString readSheet(const QString &path, const QString &sheet)
{
    InputOptions options;
    options.sheet = sheet;
    options.hasHeader = 0;
    options.ignoreEmptyRows = false;
    Dataset table;
    ExcelReadCounts counts;
    ReadReport report;
    if (!readXlsx(path, options, table, counts, report))
        return QStringLiteral("failed: ") + report.warnings.value(0);
    QStringList lines;
    for (int r = 0; r < table.rowCount(); ++r)
        lines << table.row(r).join(QLatin1Char('|'));
    return lines.join(QLatin1Char('\n'));
}

QStringList readSheetNames(const QString &path)
{
    QString error;
    QStringList names;
    for (const ExcelSheetEntry &entry : xlsxSheetNames(path, &error))
        names << entry.name;
    return names;
}

} // namespace

class TestXlsxWriter : public QObject
{
    Q_OBJECT
private slots:
    void cellPlan_data();
    void cellPlan();
    void planMessages_data();
    void planMessages();
    void sheetName_data();
    void sheetName();
    void newWorkbookReadByOpenpyxl();
    void automaticTextsReadBack();
    void rewriteKeepsOtherSheets_data();
    void rewriteKeepsOtherSheets();
    void failedWriteLeavesFile_data();
    void failedWriteLeavesFile();
    void styleTemplateNotApplied();
};

void TestXlsxWriter::cellPlan_data()
{
    QTest::addColumn<int>("formatting");
    QTest::addColumn<int>("manual");
    QTest::addColumn<QString>("cells");
    QTest::addColumn<QString>("expected");
    QTest::addColumn<int>("misfits");

    const int automatic = CellPlan::Automatic;
    const int manual = CellPlan::Manual;
    QTest::newRow("whole and decimal numbers")
        << automatic << 0 << "1|1.50|-2|0|0.001|12345678901"
        << "n:1:|n:1.5:0.00|n:-2:|n:0:|n:0.001:0.000|n:12345678901:" << 0;
    QTest::newRow("12 to 15 digits take 0, not General") << automatic << 0 << "123456789012|999999999999999"
                                                         << "n:123456789012:0|n:999999999999999:0" << 0;
    QTest::newRow("texts Excel would show otherwise stay text")
        << automatic << 0 << "1|007|1e5|+3| 12|-0|-0.00|1234567890123456|.5|1."
        << "n:1:|t:007|t:1e5|t:+3|t: 12|t:-0|t:-0.00|t:1234567890123456|t:.5|t:1." << 9;
    QTest::newRow("empty cells are not written") << automatic << 0 << "1||2"
                                                 << "n:1:|e|n:2:" << 0;
    QTest::newRow("padded months") << automatic << 0 << "13/01/2020|14/02/2020"
                                   << "n:43843:d\"/\"mm\"/\"yyyy|n:43875:d\"/\"mm\"/\"yyyy" << 0;
    QTest::newRow("unpadded dates") << automatic << 0 << "2020-1-5|2021-12-31"
                                    << "n:43835:yyyy\"-\"m\"-\"d|n:44561:yyyy\"-\"m\"-\"d" << 0;
    QTest::newRow("dates in two forms are text") << automatic << 0 << "13/01/2020|5/1/2020"
                                                 << "t:13/01/2020|t:5/1/2020" << 0;
    QTest::newRow("the 1900 leap day that never was") << automatic << 0 << "28/2/1900|1/3/1900"
                                                      << "n:59:d\"/\"m\"/\"yyyy|n:61:d\"/\"m\"/\"yyyy" << 0;
    QTest::newRow("times without seconds") << automatic << 0 << "9:05|12:30"
                                           << "n:0.378472222222222:h:mm|n:0.520833333333333:h:mm" << 0;
    QTest::newRow("padded times with seconds")
        << automatic << 0 << "09:05:00|10:00:30"
        << "n:0.378472222222222:hh:mm:ss|n:0.417013888888889:hh:mm:ss" << 0;
    QTest::newRow("booleans are text") << automatic << 0 << "true|FALSE"
                                       << "t:true|t:FALSE" << 0;
    QTest::newRow("formulas are text") << automatic << 0 << "=SUM(A1)|=1+1"
                                       << "t:=SUM(A1)|t:=1+1" << 0;
    QTest::newRow("all text") << int(CellPlan::AllText) << 0 << "1|13/01/2020"
                              << "t:1|t:13/01/2020" << 0;
    QTest::newRow("manual text") << manual << 1 << "1|2.5"
                                 << "t:1|t:2.5" << 0;
    QTest::newRow("manual number reads what toNumber reads") << manual << 2 << "$5|1,234.50|007|1e3|abc"
                                                             << "n:5:|n:1234.5:0.00|n:7:|n:1000:|t:abc" << 1;
    QTest::newRow("manual date, cell by cell")
        << manual << 3 << "13/1/2020|1/2/2020|x|31/12/1899"
        << "n:43843:d\"/\"m\"/\"yyyy|n:43862:d\"/\"m\"/\"yyyy|t:x|t:31/12/1899" << 2;
    QTest::newRow("manual time") << manual << 4 << "9:05:30|7:00|25:00"
                                 << "n:0.378819444444444:h:mm:ss|n:0.291666666666667:h:mm|t:25:00" << 1;
    QTest::newRow("manual date and time")
        << manual << 5 << "2020-01-13 12:00:00|2020-01-13T06:00:00.250|2020-01-13"
        << "n:43843.5:yyyy-mm-dd hh:mm:ss|n:43843.2500028935:yyyy-mm-dd\"T\"hh:mm:ss.000|t:2020-01-13" << 1;
}

void TestXlsxWriter::cellPlan()
{
    QFETCH(int, formatting);
    QFETCH(int, manual);
    QFETCH(QString, cells);
    QFETCH(QString, expected);
    QFETCH(int, misfits);

    const Dataset dataset = column(cells);
    CellPlan plan(dataset, formatting, {manual}, 16384);
    QStringList written;
    for (int r = 0; r < dataset.rowCount(); ++r)
        written << describe(plan.cell(r, 0));
    QCOMPARE(written.join(QLatin1Char('|')), expected);
    const QStringList warnings = plan.warnings();
    const int counted =
        warnings.size() <= 5 ? warnings.size() : 5 + warnings.last().section(QLatin1Char(' '), 1, 1).toInt();
    QCOMPARE(counted, misfits);
    // "All text" and a "Text" column give the column the text format, so that cells typed
    // into it later stay text too.
    const bool textColumn =
        formatting == CellPlan::AllText || (formatting == CellPlan::Manual && manual == 1);
    QCOMPARE(plan.columnFormat(0), textColumn ? QStringLiteral("@") : QString());
}

void TestXlsxWriter::planMessages_data()
{
    QTest::addColumn<QString>("table");
    QTest::addColumn<QString>("information");
    QTest::addColumn<QString>("warnings");

    QTest::newRow("each typed column is told")
        << "Id|Day|At|Name\n1|13/01/2020|9:05|x\n2|14/01/2020|10:00|y"
        << "Column 'Id' written as numbers, set 'Formatting' option to change\n"
           "Column 'Day' written as dates, set 'Formatting' option to change\n"
           "Column 'At' written as times, set 'Formatting' option to change"
        << "";
    QTest::newRow("dates in two forms")
        << "Day\n13/01/2020\n5/1/2020"
        << "Column 'Day' holds dates in more than one form and was written as text"
        << "";
    QTest::newRow("five misfits word for word, then a count")
        << "N\n1\n01\n02\n03\n04\n05\n06\n07"
        << "Column 'N' written as numbers, set 'Formatting' option to change"
        << "'01' in column 'N' at row 2 is not a number and was written as text\n"
           "'02' in column 'N' at row 3 is not a number and was written as text\n"
           "'03' in column 'N' at row 4 is not a number and was written as text\n"
           "'04' in column 'N' at row 5 is not a number and was written as text\n"
           "'05' in column 'N' at row 6 is not a number and was written as text\n"
           "+ 2 others";
    QTest::newRow("one more is one other")
        << "N\n1\n01\n02\n03\n04\n05\n06"
        << "Column 'N' written as numbers, set 'Formatting' option to change"
        << "'01' in column 'N' at row 2 is not a number and was written as text\n"
           "'02' in column 'N' at row 3 is not a number and was written as text\n"
           "'03' in column 'N' at row 4 is not a number and was written as text\n"
           "'04' in column 'N' at row 5 is not a number and was written as text\n"
           "'05' in column 'N' at row 6 is not a number and was written as text\n"
           "+ 1 other";
}

void TestXlsxWriter::planMessages()
{
    QFETCH(QString, table);
    QFETCH(QString, information);
    QFETCH(QString, warnings);

    const Dataset dataset = excelwritertest::table(table, true);
    CellPlan plan(dataset, CellPlan::Automatic, {}, 16384);
    for (int r = 0; r < dataset.rowCount(); ++r) {
        for (int c = 0; c < dataset.columnCount(); ++c)
            plan.cell(r, c);
    }
    QCOMPARE(plan.information().join(QLatin1Char('\n')), information);
    QCOMPARE(plan.warnings().join(QLatin1Char('\n')), warnings);
}

void TestXlsxWriter::sheetName_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("written");
    QTest::addColumn<bool>("told");

    QTest::newRow("empty") << ""
                           << "Tabrelle" << false;
    QTest::newRow("valid") << "Data 2024"
                           << "Data 2024" << false;
    QTest::newRow("forbidden characters") << "a[b]:c*d?e/f\\g"
                                          << "a_b__c_d_e_f_g" << true;
    QTest::newRow("quotes at the ends") << "'Sales'"
                                        << "Sales" << true;
    QTest::newRow("quote inside kept") << "Bob's"
                                       << "Bob's" << false;
    QTest::newRow("31 characters") << QString(31, QLatin1Char('x')) << QString(31, QLatin1Char('x')) << false;
    QTest::newRow("32 characters cut")
        << QString(32, QLatin1Char('x')) << QString(31, QLatin1Char('x')) << true;
    QTest::newRow("only quotes") << "''"
                                 << "Tabrelle" << true;
}

void TestXlsxWriter::sheetName()
{
    QFETCH(QString, name);
    QFETCH(QString, written);
    QFETCH(bool, told);

    QStringList information;
    QCOMPARE(ExcelWriting::sheetName(name, &information), written);
    QCOMPARE(information,
        told ? QStringList {QStringLiteral("Sheet name '%1' written as '%2'").arg(name, written)}
             : QStringList());
}

void TestXlsxWriter::newWorkbookReadByOpenpyxl()
{
    if (!hasOpenpyxl())
        QSKIP("/usr/bin/python3 with openpyxl is not available");
    QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("new.xlsx"));
    Dataset dataset = table(QStringLiteral("Name|Amount|Day|Note\n"
                                           "Ωmega 日本|1.50|13/01/2020|=SUM(A1)\n"
                                           "Zoë|12|14/01/2020|tab\there\n"
                                           "|007|15/01/2020|"),
        true);
    WriteReport report;
    double progress = 0;
    report.progress = [&](double fraction) { progress = fraction; };
    QVERIFY(writeXlsxWorkbook(path, dataset, options(QStringLiteral("Données été")), report));
    QCOMPARE(progress, 1.0);
    QCOMPARE(report.warnings,
        QStringList {
            QStringLiteral("'007' in column 'Amount' at row 3 is not a number and was written as text")});

    const QJsonObject book = readWithOpenpyxl(path);
    QCOMPARE(sheetNames(book), QStringList {QStringLiteral("Données été")});
    const QJsonObject sheet = book.value(QStringLiteral("sheets")).toArray().first().toObject();
    QCOMPARE(sheet.value(QStringLiteral("freeze")).toString(), QStringLiteral("A2"));
    QCOMPARE(sheetText(sheet),
        QStringLiteral("t:Name*,t:Amount*,t:Day*,t:Note*\n"
                       "t:Ωmega 日本,n:1.5:0.00,d:2020-01-13T00:00:00:d\"/\"mm\"/\"yyyy,t:=SUM(A1)\n"
                       "t:Zoë,n:12:General,d:2020-01-14T00:00:00:d\"/\"mm\"/\"yyyy,t:tab\there\n"
                       "e,t:007,d:2020-01-15T00:00:00:d\"/\"mm\"/\"yyyy,e"));
}

void TestXlsxWriter::automaticTextsReadBack()
{
    // Written with "Automatic" and read by this program's reader, every cell has its text.
    QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("texts.xlsx"));
    const QString text =
        QStringLiteral("007|1.50|-0|12345678901234567|13/01/2020|2020-1-5|=SUM(A1)|9:05|0.001\n"
                       "008|2.25|-0.00|1|14/01/2020|2020-12-25|x|10:30|-12.5\n"
                       "1|3|1|2|15/01/2020|2021-1-1|y|23:59|0");
    const Dataset dataset = table(text);
    WriteReport report;
    QVERIFY(writeXlsxWorkbook(
        path, dataset, options(QStringLiteral("T"), OutputOptions::Overwrite, false), report));
    QCOMPARE(readSheet(path, QStringLiteral("T")), text);

    // A text longer than a cell holds is cut, with the warning.
    Dataset wide = column(QString(40000, QLatin1Char('w')) + QStringLiteral("|short"));
    report = WriteReport();
    QVERIFY(
        writeXlsxWorkbook(path, wide, options(QStringLiteral("T"), OutputOptions::Overwrite, false), report));
    QCOMPARE(report.warnings,
        QStringList {QStringLiteral(
            "1 value longer than 32,767 characters were cut, which is Excel's limit for a cell")});
    QCOMPARE(
        readSheet(path, QStringLiteral("T")), QString(32767, QLatin1Char('w')) + QStringLiteral("\nshort"));
}

void TestXlsxWriter::rewriteKeepsOtherSheets_data()
{
    QTest::addColumn<int>("mode");
    QTest::addColumn<bool>("replaceOnly");
    QTest::addColumn<QString>("sheet");
    QTest::addColumn<QString>("sheets");
    QTest::addColumn<QString>("written");
    QTest::addColumn<QString>("told");

    const int overwrite = OutputOptions::Overwrite;
    const int append = OutputOptions::Append;
    QTest::newRow("replace the middle sheet") << overwrite << true << "Two"
                                              << "One,Two,Three"
                                              << "N|Day\n5|13/01/2020"
                                              << "Replaced sheet '%1[Two]'";
    QTest::newRow("a sheet name in other case is the same sheet") << overwrite << true << "two"
                                                                  << "One,Two,Three"
                                                                  << "N|Day\n5|13/01/2020"
                                                                  << "Replaced sheet '%1[Two]'";
    QTest::newRow("add a sheet at the end") << overwrite << true << "Four"
                                            << "One,Two,Three,Four"
                                            << "N|Day\n5|13/01/2020"
                                            << "Added sheet '%1[Four]'";
    QTest::newRow("append after the last row") << append << true << "Two"
                                               << "One,Two,Three"
                                               << "a|1\nb|2.50\nc|007\nN|Day\n5|13/01/2020"
                                               << "Appended sheet '%1[Two]'";
    QTest::newRow("append to a missing sheet adds it") << append << true << "Four"
                                                       << "One,Two,Three,Four"
                                                       << "N|Day\n5|13/01/2020"
                                                       << "Added sheet '%1[Four]'";
    QTest::newRow("overwrite the whole file") << overwrite << false << "Two"
                                              << "Two"
                                              << "N|Day\n5|13/01/2020"
                                              << "";
}

void TestXlsxWriter::rewriteKeepsOtherSheets()
{
    QFETCH(int, mode);
    QFETCH(bool, replaceOnly);
    QFETCH(QString, sheet);
    QFETCH(QString, sheets);
    QFETCH(QString, written);
    QFETCH(QString, told);

    QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("book.xlsx"));
    const QString one = QStringLiteral("Name|Amount\nÅsa|1.5\n|\nBo|-3");
    const QString three = QStringLiteral("Day|Code\n13/01/2020|007\n14/01/2020|1e5");
    // The workbook is built sheet by sheet: each write after the first adds a sheet.
    for (const auto &[name, text] : {qMakePair(QStringLiteral("One"), one),
             qMakePair(QStringLiteral("Two"), QStringLiteral("a|1\nb|2.50\nc|007")),
             qMakePair(QStringLiteral("Three"), three)}) {
        WriteReport report;
        QVERIFY2(writeXlsxWorkbook(path, table(text), options(name, OutputOptions::Overwrite, false), report),
            qPrintable(report.warnings.join(QLatin1Char('\n'))));
    }
    QCOMPARE(readSheetNames(path), QStringList({"One", "Two", "Three"}));

    OutputOptions settings = options(sheet, mode, true);
    settings.replaceOnlyThisSheet = replaceOnly;
    WriteReport report;
    QVERIFY2(writeXlsxWorkbook(path, table(QStringLiteral("N|Day\n5|13/01/2020"), true), settings, report),
        qPrintable(report.warnings.join(QLatin1Char('\n'))));
    const QString where = QDir::toNativeSeparators(QFileInfo(path).absoluteFilePath());
    if (!told.isEmpty())
        QVERIFY2(report.information.contains(told.arg(where)),
            qPrintable(report.information.join(QLatin1Char('\n'))));

    QCOMPARE(readSheetNames(path).join(QLatin1Char(',')), sheets);
    const QString target = sheets.split(QLatin1Char(',')).contains(sheet) ? sheet : QStringLiteral("Two");
    QCOMPARE(readSheet(path, target), written);
    if (replaceOnly) {
        QCOMPARE(readSheet(path, QStringLiteral("One")), one);
        QCOMPARE(readSheet(path, QStringLiteral("Three")), three);
    }
    if (hasOpenpyxl()) {
        const QJsonObject book = readWithOpenpyxl(path);
        QCOMPARE(sheetNames(book).join(QLatin1Char(',')), sheets);
        QCOMPARE(book.value(QStringLiteral("active")).toString(), target);
    }
}

void TestXlsxWriter::failedWriteLeavesFile_data()
{
    QTest::addColumn<QString>("existing"); // content of the file before; "<folder>" makes a folder
    QTest::addColumn<int>("mode");
    QTest::addColumn<QString>("path");
    QTest::addColumn<QString>("warning");

    QTest::newRow("not a workbook, replacing a sheet")
        << "not a zip" << int(OutputOptions::Overwrite) << "book.xlsx"
        << "Unable to update '%1': ";
    QTest::newRow("not a workbook, appending")
        << "PK\x03\x04 damaged" << int(OutputOptions::Append) << "book.xlsx"
        << "Unable to update '%1': ";
    QTest::newRow("missing folder") << "" << int(OutputOptions::Overwrite) << "missing/book.xlsx"
                                    << "Unable to write '%1': ";
    QTest::newRow("a folder in the file's place")
        << "<folder>" << int(OutputOptions::Overwrite) << "book.xlsx"
        << "Unable to write '%1': ";
}

void TestXlsxWriter::failedWriteLeavesFile()
{
    QFETCH(QString, existing);
    QFETCH(int, mode);
    QFETCH(QString, path);
    QFETCH(QString, warning);

    QTemporaryDir folder;
    const QString file = folder.filePath(path);
    if (existing == QLatin1String("<folder>")) {
        QVERIFY(QDir(folder.path()).mkdir(path));
    } else if (!existing.isEmpty()) {
        QFile old(file);
        QVERIFY(old.open(QIODevice::WriteOnly));
        old.write(existing.toLatin1());
    }
    const QByteArray before = digest(file);
    const QStringList entriesBefore = entries(folder.path());

    OutputOptions settings = options(QStringLiteral("Data"), mode);
    settings.replaceOnlyThisSheet = existing != QLatin1String("<folder>");
    WriteReport report;
    QVERIFY(!writeXlsxWorkbook(file, table(QStringLiteral("a|b\n1|2"), true), settings, report));
    const QString where = QDir::toNativeSeparators(QFileInfo(file).absoluteFilePath());
    QVERIFY2(report.warnings.value(0).startsWith(warning.arg(where)), qPrintable(report.warnings.value(0)));
    QCOMPARE(digest(file), before);
    QCOMPARE(entries(folder.path()), entriesBefore);
}

void TestXlsxWriter::styleTemplateNotApplied()
{
    QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("styled.xlsx"));
    OutputOptions settings = options(QStringLiteral("S"));
    settings.useStyleTemplate = true;
    settings.styleTemplate = folder.filePath(QStringLiteral("template.xlsx"));
    WriteReport report;
    QVERIFY(writeXlsxWorkbook(path, table(QStringLiteral("a\n1"), true), settings, report));
    QCOMPARE(report.warnings,
        QStringList {QStringLiteral("The style template '%1' was not applied: this version "
                                    "writes workbooks without style templates")
                         .arg(QDir::toNativeSeparators(settings.styleTemplate))});
    settings.writeMode = OutputOptions::Append;
    report = WriteReport();
    QVERIFY(writeXlsxWorkbook(path, table(QStringLiteral("a\n2"), true), settings, report));
    QVERIFY(report.warnings.isEmpty());
    QVERIFY(report.information.contains(
        QStringLiteral("Style template not used when appending to an existing file")));
    QCOMPARE(readSheet(path, QStringLiteral("S")), QStringLiteral("a\n1\na\n2"));
}

QTEST_GUILESS_MAIN(TestXlsxWriter)
#include "tst_xlsxwriter.moc"
