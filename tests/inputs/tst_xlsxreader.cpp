#include "excelfixtures.h"

#include "inputs/xlsxreader.h"

#include <QProcess>
#include <QTemporaryDir>
#include <QtTest>

using namespace excelfixtures;

class TestXlsxReader : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase();
    void cells_data();
    void cells();
    void options_data();
    void options();
    void sheets_data();
    void sheets();
    void failures_data();
    void failures();
    void zipBomb();
    void openpyxlWorkbook_data();
    void openpyxlWorkbook();

private:
    QString write(const XlsxPackage &package, const QString &name = QStringLiteral("book.xlsx"));
    QString m_where(const QString &path) const;

    QTemporaryDir m_dir;
};

Q_DECLARE_METATYPE(XlsxPackage)

void TestXlsxReader::initTestCase()
{
    QVERIFY(m_dir.isValid());
    QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedStates));
}

QString TestXlsxReader::write(const XlsxPackage &package, const QString &name)
{
    const QString path = m_dir.filePath(name);
    if (!writeZip(path, package.entries()))
        qFatal("could not write %s", qPrintable(path));
    return path;
}

QString TestXlsxReader::m_where(const QString &path) const
{
    return QDir::toNativeSeparators(QFileInfo(path).absoluteFilePath());
}

namespace {

XlsxPackage oneSheet(const QByteArray &rows, const QStringList &strings = QStringList(),
    const QByteArray &styles = QByteArray())
{
    XlsxPackage package;
    package.addSheet(QStringLiteral("Sheet1"), rows);
    package.sharedStrings = strings;
    package.styles = styles;
    return package;
}

InputOptions allRows()
{
    InputOptions options;
    options.ignoreEmptyRows = false;
    return options;
}

} // namespace

void TestXlsxReader::cells_data()
{
    QTest::addColumn<XlsxPackage>("package");
    QTest::addColumn<QString>("expected");
    QTest::addColumn<QString>("message"); // a warning or information line expected, if any
    const QByteArray styles =
        XlsxPackage::stylesPart({QStringLiteral("164=0.0%"), QStringLiteral("165=yyyy-mm-dd"),
                                    QStringLiteral("166=0;0;0;\"<\"@\">\"")},
            {0, 2, 14, 164, 165, 166});
    QTest::newRow("shared strings") << oneSheet(
        R"(<row r="1"><c r="A1" t="s"><v>0</v></c><c r="B1" t="s"><v>1</v></c></row>)",
        {"<t>a</t>", "<t xml:space=\"preserve\"> b </t>"})
                                    << "a| b "
                                    << "";
    QTest::newRow("rich shared string without phonetic runs") << oneSheet(
        R"(<row r="1"><c r="A1" t="s"><v>0</v></c></row>)",
        {"<r><t>Hel</t></r><r><rPr><b/></rPr><t>lo</t></r><rPh sb=\"0\" eb=\"1\"><t>ignored</t></rPh>"})
                                                              << "Hello"
                                                              << "";
    QTest::newRow("inline string") << oneSheet(
        R"(<row r="1"><c r="A1" t="inlineStr"><is><t>x y</t></is></c></row>)")
                                   << "x y"
                                   << "";
    QTest::newRow("inline rich string")
        << oneSheet(R"(<row r="1"><c r="A1" t="inlineStr"><is><r><t>a</t></r><r><t>b</t></r></is></c></row>)")
        << "ab"
        << "";
    QTest::newRow("escaped characters")
        << oneSheet(R"(<row r="1"><c r="A1" t="s"><v>0</v></c></row>)", {"<t>_x0041_x_x005F_x0041_</t>"})
        << "Ax_x0041_"
        << "";
    QTest::newRow("numbers in General") << oneSheet(
        R"(<row r="1"><c r="A1"><v>1.5</v></c><c r="B1"><v>123456789012</v></c><c r="C1"><v>1.2345678901234567E+16</v></c></row>)")
                                        << "1.5|123456789012|1.23456789012346E+16"
                                        << "";
    QTest::newRow("number formats by style") << oneSheet(
        R"(<row r="1"><c r="A1" s="1"><v>3.14159</v></c><c r="B1" s="2"><v>43831</v></c><c r="C1" s="3"><v>0.256</v></c><c r="D1" s="4"><v>43831.5</v></c></row>)",
        {}, styles) << "3.14|1/1/2020|25.6%|2020-01-01"
                                             << "";
    QTest::newRow("text section of a format")
        << oneSheet(R"(<row r="1"><c r="A1" t="s" s="5"><v>0</v></c></row>)", {"<t>abc</t>"}, styles)
        << "<abc>"
        << "";
    QTest::newRow("booleans") << oneSheet(
        R"(<row r="1"><c r="A1" t="b"><v>1</v></c><c r="B1" t="b"><v>0</v></c></row>)")
                              << "TRUE|FALSE"
                              << "";
    QTest::newRow("error") << oneSheet(R"(<row r="1"><c r="A1" t="e"><f>1/0</f><v>#DIV/0!</v></c></row>)")
                           << "#DIV/0!"
                           << "";
    QTest::newRow("formula text result")
        << oneSheet(R"(<row r="1"><c r="A1" t="str"><f>"ab"&amp;"x"</f><v>abx</v></c></row>)") << "abx"
        << "";
    QTest::newRow("formula number result")
        << oneSheet(R"(<row r="1"><c r="A1"><f>1+1</f><v>2</v></c></row>)") << "2"
        << "";
    QTest::newRow("formula without result")
        << oneSheet(R"(<row r="1"><c r="A1"><f>1+1</f></c><c r="B1"><v>1</v></c></row>)") << "|1"
        << "1 formula cell(s) have no saved result and were read as empty; open and save the file in Excel "
           "to "
           "store their results";
    QTest::newRow("ISO date cell") << oneSheet(
        R"(<row r="1"><c r="A1" t="d" s="2"><v>2020-01-05T00:00:00</v></c><c r="B1" t="d" s="4"><v>2020-01-06</v></c></row>)",
        {}, styles) << "1/5/2020|2020-01-06"
                                   << "";
    QTest::newRow("cells without references")
        << oneSheet(R"(<row><c><v>1</v></c><c><v>2</v></c></row><row><c><v>3</v></c></row>)") << "1|2\n3|"
        << "";
    QTest::newRow("rows and columns skipped in the file")
        << oneSheet(R"(<row r="1"><c r="B1"><v>1</v></c></row><row r="3"><c r="A3"><v>2</v></c></row>)")
        << "|1\n|\n2|"
        << "";
    QTest::newRow("styled empty cells don't widen") << oneSheet(
        R"(<row r="1"><c r="A1"><v>1</v></c><c r="D1" s="1"/></row><row r="5"><c r="A5" s="1"/></row>)", {},
        styles) << "1"
                                                    << "";
    QTest::newRow("merged ranges") <<
        [] {
            XlsxPackage p;
            p.addSheet(QStringLiteral("S"), R"(<row r="1"><c r="A1"><v>1</v></c></row>)", QByteArray(),
                R"(<mergeCells count="2"><mergeCell ref="A1:B2"/><mergeCell ref="C1:C3"/></mergeCells>)");
            return p;
        }() << "1"
                                   << "2 merged cell range(s): each value is in the first cell of its range "
                                      "(use 'Fill' to copy it down)";
    QTest::newRow("1904 dates") <<
        [&] {
            XlsxPackage p = oneSheet(R"(<row r="1"><c r="A1" s="4"><v>0</v></c></row>)", {}, styles);
            p.workbookProperties = "date1904=\"1\"";
            return p;
        }() << "1904-01-01"
                                << "";
    QTest::newRow("strict namespaces") <<
        [] {
            XlsxPackage p;
            p.strict = true;
            p.addSheet(QStringLiteral("S"),
                R"(<row r="1"><c r="A1" t="s"><v>0</v></c><c r="B1"><v>7</v></c></row>)");
            p.sharedStrings = QStringList {"<t>strict</t>"};
            return p;
        }() << "strict|7"
                                       << "";
    QTest::newRow("absolute targets") <<
        [] {
            XlsxPackage p = oneSheet(R"(<row r="1"><c r="A1" t="s"><v>0</v></c></row>)", {"<t>found</t>"});
            p.absoluteTargets = true;
            return p;
        }() << "found"
                                      << "";
    QTest::newRow("unparsable format counted")
        << oneSheet(R"(<row r="1"><c r="A1" s="1"><v>2.5</v></c></row>)", {},
               XlsxPackage::stylesPart({QStringLiteral("164=0\"x")}, {0, 164}))
        << "2.5"
        << "1 cell(s) used number formats that could not be shown as in Excel "
           "and were read with the General format";
}

void TestXlsxReader::cells()
{
    QFETCH(XlsxPackage, package);
    QFETCH(QString, expected);
    QFETCH(QString, message);
    const QString path = write(package);
    Dataset table;
    ExcelReadCounts counts;
    ReadReport report;
    QVERIFY2(readXlsx(path, allRows(), table, counts, report), qPrintable(report.warnings.join('\n')));
    QCOMPARE(tableText(table), expected);
    if (!message.isEmpty())
        QVERIFY2((report.warnings + report.information).contains(message),
            qPrintable((report.warnings + report.information).join('\n')));
    else
        QCOMPARE(report.warnings, QStringList());
}

void TestXlsxReader::options_data()
{
    QTest::addColumn<int>("firstRows");
    QTest::addColumn<bool>("hiddenRows");
    QTest::addColumn<bool>("hiddenColumns");
    QTest::addColumn<bool>("emptyRows");
    QTest::addColumn<bool>("trim");
    QTest::addColumn<bool>("simplify");
    QTest::addColumn<QString>("expected");
    QTest::addColumn<QStringList>("lines");
    const QString all = QStringLiteral("h1|h2| h 3 \nx|y|z\n1|2|3\n|only|\n||\na\tb||end");
    QTest::newRow("everything kept") << 0 << false << false << false << false << false << all
                                     << QStringList();
    QTest::newRow("hidden rows left out")
        << 0 << true << false << false << false << false << "h1|h2| h 3 \n1|2|3\n|only|\n||\na\tb||end"
        << QStringList {"1 hidden row(s) ignored"};
    QTest::newRow("hidden columns left out")
        << 0 << false << true << false << false << false << "h1| h 3 \nx|z\n1|3\n|\n|\na\tb|end"
        << QStringList {"1 hidden column(s) ignored"};
    QTest::newRow("a hidden column can empty a row")
        << 0 << false << true << true << false << false << "h1| h 3 \nx|z\n1|3\na\tb|end"
        << QStringList {"1 hidden column(s) ignored", "2 empty row(s) ignored"};
    QTest::newRow("first rows before hidden rows")
        << 2 << true << false << false << false << false << "1|2|3\n|only|\n||\na\tb||end" << QStringList();
    QTest::newRow("first rows then hidden")
        << 1 << true << false << true << false << false << "1|2|3\n|only|\na\tb||end"
        << QStringList {"1 hidden row(s) ignored", "1 empty row(s) ignored"};
    QTest::newRow("trim") << 0 << true << true << true << true << false << "h1|h 3\n1|3\na\tb|end"
                          << QStringList {"1 hidden row(s) ignored", "1 hidden column(s) ignored",
                                 "2 empty row(s) ignored"};
    QTest::newRow("simplify") << 5 << false << false << false << false << true << "a b||end" << QStringList();
    QTest::newRow("all rows ignored")
        << 10 << false << false << false << false << false << "" << QStringList();
}

void TestXlsxReader::options()
{
    QFETCH(int, firstRows);
    QFETCH(bool, hiddenRows);
    QFETCH(bool, hiddenColumns);
    QFETCH(bool, emptyRows);
    QFETCH(bool, trim);
    QFETCH(bool, simplify);
    QFETCH(QString, expected);
    QFETCH(QStringList, lines);
    XlsxPackage package;
    package.addSheet(QStringLiteral("S"),
        R"(<row r="1"><c r="A1" t="inlineStr"><is><t>h1</t></is></c><c r="B1" t="inlineStr"><is><t>h2</t></is></c><c r="C1" t="inlineStr"><is><t xml:space="preserve"> h 3 </t></is></c></row>)"
        R"(<row r="2" hidden="true"><c r="A2" t="inlineStr"><is><t>x</t></is></c><c r="B2" t="inlineStr"><is><t>y</t></is></c><c r="C2" t="inlineStr"><is><t>z</t></is></c></row>)"
        R"(<row r="3"><c r="A3"><v>1</v></c><c r="B3"><v>2</v></c><c r="C3"><v>3</v></c></row>)"
        R"(<row r="4"><c r="B4" t="inlineStr"><is><t>only</t></is></c></row>)"
        R"(<row r="6"><c r="A6" t="inlineStr"><is><t>a&#9;b</t></is></c><c r="C6" t="inlineStr"><is><t>end</t></is></c></row>)",
        R"(<cols><col min="2" max="2" width="9" hidden="1"/><col min="20" max="16384" hidden="1"/></cols>)");
    const QString path = write(package);
    InputOptions options;
    options.ignoreFirstRows = firstRows;
    options.ignoreHiddenExcelRows = hiddenRows;
    options.ignoreHiddenExcelColumns = hiddenColumns;
    options.ignoreEmptyRows = emptyRows;
    options.trimWhitespace = trim;
    options.simplifyWhitespace = simplify;
    Dataset table;
    ReadReport report;
    QVERIFY(readXlsxInput(path, options, table, report));
    QCOMPARE(tableText(table), expected);
    // The counts come first, in their fixed order; the sheet choice follows.
    QCOMPARE(report.information.mid(0, lines.size()), lines);
    QCOMPARE(report.information.size(), lines.size() + 1);
}

void TestXlsxReader::sheets_data()
{
    QTest::addColumn<QString>("sheet");
    QTest::addColumn<QString>("expected");
    QTest::addColumn<QString>("message");
    QTest::newRow("first visible") << ""
                                   << "data"
                                   << "Sheet=Automatic chooses 'Data', set 'Sheet' option to change";
    QTest::newRow("by name") << "Other"
                             << "other"
                             << "";
    QTest::newRow("without case") << "oTHER"
                                  << "other"
                                  << "";
    QTest::newRow("exact name first") << "data"
                                      << "lower"
                                      << "";
    QTest::newRow("hidden by name") << "Hidden"
                                    << "hidden"
                                    << "";
    QTest::newRow("missing")
        << "Missing"
        << ""
        << "Sheet 'Missing' not found in '%1'. Its sheets are: 'Hidden', 'Data', 'Other', "
           "'data'";
}

void TestXlsxReader::sheets()
{
    QFETCH(QString, sheet);
    QFETCH(QString, expected);
    QFETCH(QString, message);
    XlsxPackage package;
    auto text = [](const char *t) {
        return QByteArray(R"(<row r="1"><c r="A1" t="inlineStr"><is><t>)") + t + "</t></is></c></row>";
    };
    package.addSheet(QStringLiteral("Hidden"), text("hidden"), {}, {}, QStringLiteral("veryHidden"));
    package.addSheet(QStringLiteral("Data"), text("data"));
    package.addSheet(QStringLiteral("Other"), text("other"));
    package.addSheet(QStringLiteral("data"), text("lower"));
    const QString path = write(package);
    InputOptions options;
    options.sheet = sheet;
    Dataset table;
    table.setColumnCount(1);
    table.appendRow({QStringLiteral("stale")});
    ExcelReadCounts counts;
    ReadReport report;
    const bool ok = readXlsx(path, options, table, counts, report);
    QCOMPARE(ok, !expected.isEmpty());
    QCOMPARE(tableText(table), expected);
    if (ok && !message.isEmpty())
        QCOMPARE(report.information, QStringList {message});
    if (!ok)
        QCOMPARE(report.warnings.value(0), message.arg(m_where(path)));

    QString error;
    const QList<ExcelSheetEntry> names = xlsxSheetNames(path, &error);
    QCOMPARE(error, QString());
    QCOMPARE(names.size(), 4);
    QCOMPARE(names.at(0).name, QStringLiteral("Hidden"));
    QVERIFY(names.at(0).hidden);
    QVERIFY(!names.at(1).hidden);
}

void TestXlsxReader::failures_data()
{
    QTest::addColumn<QString>("kind");
    QTest::addColumn<QString>("message"); // %1 is the file; a trailing "…" matches a prefix
    QTest::newRow("empty file") << "empty"
                                << "'%1' is not an Excel .xlsx file (it is not a zip archive)";
    QTest::newRow("text file") << "text"
                               << "'%1' is not an Excel .xlsx file (it is not a zip archive)";
    QTest::newRow("cut short") << "truncated"
                               << "'%1' is damaged: …";
    QTest::newRow("binary workbook")
        << "xlsb"
        << "'%1' is an Excel binary workbook (.xlsb), which can't be read; save it as "
           ".xlsx in Excel";
    QTest::newRow("encrypted") << "encrypted"
                               << "'%1' is password protected and can't be read";
    QTest::newRow("xls renamed") << "xls"
                                 << "'%1' is an Excel .xls file; set 'Format' to 'Excel XLS'";
    QTest::newRow("missing sheet part") << "missingpart"
                                        << "'%1' is damaged: the part 'xl/worksheets/sheet1.xml' is missing";
    QTest::newRow("no workbook") << "noworkbook"
                                 << "'%1' is damaged: the part 'xl/workbook.xml' is missing";
    QTest::newRow("xml error") << "xmlerror"
                               << "'%1' is damaged: xl/worksheets/sheet1.xml, line 1, column …";
    QTest::newRow("document type declaration")
        << "dtd"
        << "'%1' is damaged: xl/worksheets/sheet1.xml, line 1, column …";
    QTest::newRow("shared string out of range") << "badstring"
                                                << "'%1' is damaged: …shared string '5' does not exist";
    QTest::newRow("cell reference") << "badref"
                                    << "'%1' is damaged: …cell reference 'A0' is not valid";
    QTest::newRow("row number") << "badrow"
                                << "'%1' is damaged: …row number '2000000' is outside the sheet";
    QTest::newRow("no sheets") << "nosheets"
                               << "'%1' is damaged: the workbook has no sheets";
}

void TestXlsxReader::failures()
{
    QFETCH(QString, kind);
    QFETCH(QString, message);
    const QString path = m_dir.filePath(kind + QStringLiteral(".xlsx"));
    const QByteArray goodRow = R"(<row r="1"><c r="A1"><v>1</v></c></row>)";
    auto package = [&](const QByteArray &rows) {
        XlsxPackage p = oneSheet(rows, {"<t>a</t>"});
        return p.entries();
    };
    Entries entries;
    if (kind == QLatin1String("empty")) {
        QVERIFY(writeFile(path, QByteArray()));
    } else if (kind == QLatin1String("text")) {
        QVERIFY(writeFile(path, "a,b\n1,2\n"));
    } else if (kind == QLatin1String("truncated")) {
        QVERIFY(writeZip(path, package(goodRow)));
        QFile file(path);
        QVERIFY(file.open(QIODevice::ReadWrite));
        QVERIFY(file.resize(file.size() / 2));
    } else if (kind == QLatin1String("xlsb")) {
        QVERIFY(writeZip(path, {{QStringLiteral("xl/workbook.bin"), "binary"}}));
    } else if (kind == QLatin1String("encrypted")) {
        QVERIFY(writeCompoundFile(path,
            {{QStringLiteral("EncryptionInfo"), "info"},
                {QStringLiteral("EncryptedPackage"), QByteArray(600, 'x')}}));
    } else if (kind == QLatin1String("xls")) {
        QVERIFY(writeCompoundFile(path, {{QStringLiteral("Workbook"), Biff8Book().stream()}}));
    } else if (kind == QLatin1String("missingpart")) {
        entries = package(goodRow);
        entries.erase(std::remove_if(entries.begin(), entries.end(),
                          [](const auto &e) { return e.first.contains(QLatin1String("sheet1")); }),
            entries.end());
        QVERIFY(writeZip(path, entries));
    } else if (kind == QLatin1String("noworkbook")) {
        QVERIFY(
            writeZip(path, {{QStringLiteral("mimetype"), "application/vnd.oasis.opendocument.spreadsheet"}}));
    } else if (kind == QLatin1String("xmlerror")) {
        entries = package(goodRow);
        for (auto &e : entries)
            if (e.first.contains(QLatin1String("sheet1")))
                e.second = "<worksheet><sheetData><row></sheetData></worksheet>";
        QVERIFY(writeZip(path, entries));
    } else if (kind == QLatin1String("dtd")) {
        entries = package(goodRow);
        for (auto &e : entries)
            if (e.first.contains(QLatin1String("sheet1")))
                e.second = "<!DOCTYPE worksheet [<!ENTITY a \"aaaa\">]><worksheet><sheetData/></worksheet>";
        QVERIFY(writeZip(path, entries));
    } else if (kind == QLatin1String("badstring")) {
        QVERIFY(writeZip(path, package(R"(<row r="1"><c r="A1" t="s"><v>5</v></c></row>)")));
    } else if (kind == QLatin1String("badref")) {
        QVERIFY(writeZip(path, package(R"(<row r="1"><c r="A0"><v>5</v></c></row>)")));
    } else if (kind == QLatin1String("badrow")) {
        QVERIFY(writeZip(path, package(R"(<row r="2000000"><c><v>5</v></c></row>)")));
    } else if (kind == QLatin1String("nosheets")) {
        XlsxPackage p;
        QVERIFY(writeZip(path, p.entries()));
    }
    Dataset table;
    table.setColumnCount(1);
    table.appendRow({QStringLiteral("stale")});
    ExcelReadCounts counts;
    ReadReport report;
    QVERIFY(!readXlsx(path, InputOptions(), table, counts, report));
    QCOMPARE(table.rowCount(), 0);
    QCOMPARE(table.columnCount(), 0);
    QVERIFY(!report.warnings.isEmpty());
    const QString first = report.warnings.first();
    const QString expected = message.arg(m_where(path));
    const int ellipsis = expected.indexOf(QChar(0x2026));
    if (ellipsis < 0) {
        QCOMPARE(first, expected);
    } else {
        QVERIFY2(first.startsWith(expected.left(ellipsis)), qPrintable(first));
        QVERIFY2(first.endsWith(expected.mid(ellipsis + 1)), qPrintable(first));
    }
}

void TestXlsxReader::zipBomb()
{
    // 64 MiB of blanks packs to about 64 KiB: far beyond what any sheet's XML packs to.
    XlsxPackage package = oneSheet(R"(<row r="1"><c r="A1"><v>1</v></c></row>)");
    Entries entries = package.entries();
    for (auto &e : entries)
        if (e.first.contains(QLatin1String("sheet1")))
            e.second = package.worksheet(QByteArray(64 << 20, ' '));
    const QString path = m_dir.filePath(QStringLiteral("bomb.xlsx"));
    QVERIFY(writeZip(path, entries));
    QElapsedTimer timer;
    timer.start();
    Dataset table;
    ExcelReadCounts counts;
    ReadReport report;
    QVERIFY(!readXlsx(path, InputOptions(), table, counts, report));
    QVERIFY2(report.warnings.value(0).startsWith(
                 QStringLiteral("'%1' is damaged: the part 'xl/worksheets/sheet1.xml' unpacks to ")
                     .arg(m_where(path))),
        qPrintable(report.warnings.value(0)));
    QVERIFY(report.warnings.value(0).endsWith(QLatin1String("(a zip bomb?)")));
    QVERIFY2(timer.elapsed() < 1000, "the bomb is refused before it is unpacked");
}

void TestXlsxReader::openpyxlWorkbook_data()
{
    QTest::addColumn<bool>("hiddenRows");
    QTest::addColumn<bool>("hiddenColumns");
    QTest::addColumn<QString>("expected");
    const QString all = QStringLiteral("Name|Amount|When|Share|Flag\n"
                                       "apple|1,234.50|2020-01-05|25.6%|TRUE\n"
                                       "pear|-2.00|31/12/2021 18:30|50.0%|FALSE\n"
                                       "hidden|1|||\n"
                                       "total||||\n"
                                       "merged||||\n"
                                       "1.23456789012346E+16||||\n"
                                       "0.3|1900-01-04|||");
    QTest::newRow("everything") << false << false << all;
    QTest::newRow("hidden left out") << true << true
                                     << "Name|Amount|When|Share\n"
                                        "apple|1,234.50|2020-01-05|25.6%\n"
                                        "pear|-2.00|31/12/2021 18:30|50.0%\n"
                                        "total|||\n"
                                        "merged|||\n"
                                        "1.23456789012346E+16|||\n"
                                        "0.3|1900-01-04||";
}

void TestXlsxReader::openpyxlWorkbook()
{
    QFETCH(bool, hiddenRows);
    QFETCH(bool, hiddenColumns);
    QFETCH(QString, expected);
    const QString python = QStringLiteral("/usr/bin/python3");
    if (!QFileInfo::exists(python))
        QSKIP("/usr/bin/python3 is not installed");
    const QString path = m_dir.filePath(QStringLiteral("openpyxl.xlsx"));
    const QString script = QString::fromUtf8(R"py(
import datetime, sys
import openpyxl
wb = openpyxl.Workbook()
ws = wb.active
ws.title = "Data"
ws.append(["Name", "Amount", "When", "Share", "Flag"])
ws.append(["apple", 1234.5, datetime.date(2020, 1, 5), 0.256, True])
ws.append(["pear", -2, datetime.datetime(2021, 12, 31, 18, 30), 0.5, False])
ws.append(["hidden", 1])
ws.append(["total", "=SUM(B2:B3)"])
ws.append(["merged"])
ws.append([12345678901234567])
ws.append([0.1 + 0.2, 4])
for cell in ("B2", "B3"):
    ws[cell].number_format = "#,##0.00"
ws["C2"].number_format = "yyyy-mm-dd"
ws["C3"].number_format = "d/m/yyyy h:mm"
ws["D2"].number_format = "0.0%"
ws["D3"].number_format = "0.0%"
ws["B8"].number_format = "yyyy-mm-dd"
ws.row_dimensions[4].hidden = True
ws.column_dimensions["E"].hidden = True
ws.merge_cells("A6:B6")
wb.create_sheet("Second")["A1"] = "x"
wb.save(sys.argv[1])
)py");
    QProcess process;
    process.start(python, {QStringLiteral("-c"), script, path});
    QVERIFY(process.waitForFinished(30000));
    if (process.exitCode() != 0) {
        if (process.readAllStandardError().contains("No module named 'openpyxl'"))
            QSKIP("openpyxl is not installed");
        QFAIL("the workbook script failed");
    }
    InputOptions options;
    options.ignoreEmptyRows = false;
    options.ignoreHiddenExcelRows = hiddenRows;
    options.ignoreHiddenExcelColumns = hiddenColumns;
    Dataset table;
    ExcelReadCounts counts;
    ReadReport report;
    QVERIFY2(readXlsx(path, options, table, counts, report), qPrintable(report.warnings.join('\n')));
    QCOMPARE(tableText(table), expected);
    QCOMPARE(counts.hiddenRows, hiddenRows ? 1 : 0);
    QCOMPARE(counts.hiddenColumns, hiddenColumns ? 1 : 0);
    QVERIFY(report.warnings.contains(QStringLiteral("1 formula cell(s) have no saved result and were read as "
                                                    "empty; open and save the file in Excel to store "
                                                    "their results")));
    QVERIFY(report.information.contains(QStringLiteral("1 merged cell range(s): each value is in the first "
                                                       "cell of its range (use 'Fill' to copy it down)")));
}

QTEST_GUILESS_MAIN(TestXlsxReader)
#include "tst_xlsxreader.moc"
