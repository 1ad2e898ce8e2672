#include "excelfixtures.h"

#include "inputs/xlsreader.h"

#include <QTemporaryDir>
#include <QtTest>

#include <freexl.h>

using namespace excelfixtures;

class TestXlsReader : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase();
    void cells_data();
    void cells();
    void options_data();
    void options();
    void sheets();
    void failures_data();
    void failures();
    void freexlAgrees();

private:
    QString write(const Biff8Book &book, const QString &name = QStringLiteral("book.xls"));
    QString where(const QString &path) const
    {
        return QDir::toNativeSeparators(QFileInfo(path).absoluteFilePath());
    }

    QTemporaryDir m_dir;
};

Q_DECLARE_METATYPE(Biff8Book)

namespace {

using B = Biff8Book;

// Cell styles 0 to 4: General, "0.00", the short date, a custom "yyyy-mm-dd" and a custom
// code with a text section.
QByteArray styleRecords()
{
    return B::format(164, QStringLiteral("yyyy-mm-dd")) + B::format(165, QStringLiteral("0;0;0;\"<\"@\">\""))
        + B::xf(0) + B::xf(2) + B::xf(14) + B::xf(164) + B::xf(165);
}

Biff8Book book(const QByteArray &cells, const QStringList &strings = QStringList(), int split = 0,
    const QByteArray &extraGlobals = QByteArray())
{
    Biff8Book b;
    b.globals = extraGlobals + styleRecords() + (strings.isEmpty() ? QByteArray() : B::sst(strings, split));
    b.sheets.append({QStringLiteral("Sheet1"), 0, 0, cells});
    return b;
}

quint32 rkInteger(int value, bool hundredths = false)
{
    return (quint32(value) << 2) | 0x02 | (hundredths ? 0x01 : 0);
}

quint32 rkFloat(double value)
{
    quint64 bits = 0;
    std::memcpy(&bits, &value, sizeof bits);
    return quint32(bits >> 32);
}

} // namespace

void TestXlsReader::initTestCase()
{
    QVERIFY(m_dir.isValid());
    QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedStates));
}

QString TestXlsReader::write(const Biff8Book &b, const QString &name)
{
    const QString path = m_dir.filePath(name);
    if (!writeCompoundFile(path, {{QStringLiteral("Workbook"), b.stream()}}))
        qFatal("could not write %s", qPrintable(path));
    return path;
}

void TestXlsReader::cells_data()
{
    QTest::addColumn<Biff8Book>("workbook");
    QTest::addColumn<QString>("expected");
    QTest::addColumn<QString>("message");
    QTest::newRow("shared strings") << book(B::labelSst(0, 0, 0) + B::labelSst(0, 1, 1), {"plain", "é€ wide"})
                                    << "plain|é€ wide"
                                    << "";
    QTest::newRow("shared string continued wide")
        << book(B::labelSst(0, 0, 0) + B::labelSst(0, 1, 1), {QString::fromUtf8("abcdéfg€"), "next"}, 3)
        << QString::fromUtf8("abcdéfg€|next") << "";
    QTest::newRow("label") << book(B::label(0, 0, QString::fromUtf8("Grüße"))) << QString::fromUtf8("Grüße")
                           << "";
    QTest::newRow("text section of a format") << book(B::label(0, 0, "abc", 4)) << "<abc>"
                                              << "";
    QTest::newRow("numbers by style") << book(B::number(0, 0, 3.14159, 1) + B::number(0, 1, 43831, 2)
        + B::number(0, 2, 43831, 3) + B::number(0, 3, 1.5))
                                      << "3.14|1/1/2020|2020-01-01|1.5"
                                      << "";
    QTest::newRow("rk values") << book(B::rk(0, 0, rkInteger(5)) + B::rk(0, 1, rkInteger(12345, true))
        + B::rk(0, 2, rkFloat(1.5)) + B::rk(0, 3, rkInteger(-7)))
                               << "5|123.45|1.5|-7"
                               << "";
    QTest::newRow("mulrk") << book(B::record(0x00BD,
        B::cellHeader(0, 1, 0).left(4) + u16(0) + u32(rkInteger(1)) + u16(1) + u32(rkInteger(2)) + u16(0)
            + u32(rkInteger(3)) + u16(3)))
                           << "|1|2.00|3"
                           << "";
    QTest::newRow("booleans and errors") << book(B::boolErr(0, 0, 1, false) + B::boolErr(0, 1, 0, false)
        + B::boolErr(0, 2, 0x07, true) + B::boolErr(0, 3, 0x2A, true))
                                         << "TRUE|FALSE|#DIV/0!|#N/A"
                                         << "";
    QTest::newRow("formula results") << book(B::formulaNumber(0, 0, 2) + B::formulaSpecial(0, 1, 0, 0)
        + B::string("abc") + B::formulaSpecial(0, 2, 1, 1) + B::formulaSpecial(0, 3, 2, 0x0F)
        + B::formulaSpecial(0, 4, 3, 0) + B::number(0, 5, 9))
                                     << "2|abc|TRUE|#VALUE!||9"
                                     << "";
    QTest::newRow("1904 dates") << book(B::number(0, 0, 0, 3), {}, 0, B::record(0x0022, u16(1)))
                                << "1904-01-01"
                                << "";
    QTest::newRow("gaps") << book(B::number(0, 1, 1) + B::number(2, 0, 2)) << "|1\n|\n2|"
                          << "";
    QTest::newRow("chart inside a sheet") << book(B::number(0, 0, 1) + B::bof(0x0020) + B::number(5, 5, 99)
        + B::record(0x000A, {}) + B::number(1, 0, 2))
                                          << "1\n2"
                                          << "";
    QTest::newRow("merged ranges")
        << book(B::number(0, 0, 1) + B::mergedCells(0, 1, 0, 1)) << "1"
        << "1 merged cell range(s): each value is in the first cell of its range (use "
           "'Fill' to copy it down)";
    QTest::newRow("unknown records skipped")
        << book(B::record(0x0200, QByteArray(14, '\0')) + B::record(0x000D, u16(1)) + B::number(0, 0, 1))
        << "1"
        << "";
}

void TestXlsReader::cells()
{
    QFETCH(Biff8Book, workbook);
    QFETCH(QString, expected);
    QFETCH(QString, message);
    const QString path = write(workbook);
    InputOptions options;
    options.ignoreEmptyRows = false;
    Dataset table;
    ExcelReadCounts counts;
    ReadReport report;
    QVERIFY2(readXls(path, options, table, counts, report), qPrintable(report.warnings.join('\n')));
    QCOMPARE(tableText(table), expected);
    QCOMPARE(report.warnings, QStringList());
    if (!message.isEmpty())
        QVERIFY2(report.information.contains(message), qPrintable(report.information.join('\n')));
}

void TestXlsReader::options_data()
{
    QTest::addColumn<int>("firstRows");
    QTest::addColumn<bool>("hiddenRows");
    QTest::addColumn<bool>("hiddenColumns");
    QTest::addColumn<bool>("emptyRows");
    QTest::addColumn<QString>("expected");
    QTest::addColumn<QStringList>("lines");
    QTest::newRow("everything kept") << 0 << false << false << false << "a|b|c\nx|y|z\n|only|\n||\n1|2|3"
                                     << QStringList();
    QTest::newRow("hidden left out") << 0 << true << true << true << "a|c\n1|3"
                                     << QStringList {"1 hidden row(s) ignored", "1 hidden column(s) ignored",
                                            "2 empty row(s) ignored"};
    QTest::newRow("first rows first")
        << 2 << true << false << true << "|only|\n1|2|3" << QStringList {"1 empty row(s) ignored"};
}

void TestXlsReader::options()
{
    QFETCH(int, firstRows);
    QFETCH(bool, hiddenRows);
    QFETCH(bool, hiddenColumns);
    QFETCH(bool, emptyRows);
    QFETCH(QString, expected);
    QFETCH(QStringList, lines);
    const QByteArray cells = B::colInfo(1, 1, true) + B::colInfo(5, 255, true) + B::row(0, false)
        + B::row(1, true) + B::label(0, 0, "a") + B::label(0, 1, "b") + B::label(0, 2, "c")
        + B::label(1, 0, "x") + B::label(1, 1, "y") + B::label(1, 2, "z") + B::label(2, 1, "only")
        + B::number(4, 0, 1) + B::number(4, 1, 2) + B::number(4, 2, 3);
    const QString path = write(book(cells));
    InputOptions options;
    options.ignoreFirstRows = firstRows;
    options.ignoreHiddenExcelRows = hiddenRows;
    options.ignoreHiddenExcelColumns = hiddenColumns;
    options.ignoreEmptyRows = emptyRows;
    Dataset table;
    ReadReport report;
    QVERIFY(readXlsInput(path, options, table, report));
    QCOMPARE(tableText(table), expected);
    QCOMPARE(report.information.mid(0, lines.size()), lines);
}

void TestXlsReader::sheets()
{
    Biff8Book b;
    b.globals = styleRecords();
    b.sheets.append({QStringLiteral("Hidden"), 1, 0, B::label(0, 0, "hidden")});
    b.sheets.append({QStringLiteral("Chart"), 0, 2, QByteArray()});
    b.sheets.append({QStringLiteral("Data"), 0, 0, B::label(0, 0, "data")});
    b.sheets.append({QString::fromUtf8("Überblick"), 0, 0, B::label(0, 0, "other")});
    const QString path = write(b);
    struct Case
    {
        QString sheet;
        QString expected;
        QString message;
    };
    const QList<Case> cases {
        {"", "data", "Sheet=Automatic chooses 'Data', set 'Sheet' option to change"},
        {QString::fromUtf8("überblick"), "other", ""},
        {"Hidden", "hidden", ""},
        {"Chart", "",
            QString::fromUtf8(
                "Sheet 'Chart' not found in '%1'. Its sheets are: 'Hidden', 'Data', 'Überblick'")},
    };
    for (const Case &c : cases) {
        InputOptions options;
        options.sheet = c.sheet;
        Dataset table;
        ExcelReadCounts counts;
        ReadReport report;
        const bool ok = readXls(path, options, table, counts, report);
        QCOMPARE(ok, !c.expected.isEmpty());
        QCOMPARE(tableText(table), c.expected);
        if (ok)
            QCOMPARE(report.information, c.message.isEmpty() ? QStringList() : QStringList {c.message});
        else
            QCOMPARE(report.warnings.value(0), c.message.arg(where(path)));
    }
    QString error;
    const QList<ExcelSheetEntry> names = xlsSheetNames(path, &error);
    QCOMPARE(error, QString());
    QCOMPARE(names.size(), 3);
    QVERIFY(names.at(0).hidden);
    QCOMPARE(names.at(2).name, QString::fromUtf8("Überblick"));
}

void TestXlsReader::failures_data()
{
    QTest::addColumn<QString>("kind");
    QTest::addColumn<QString>("message"); // %1 is the file; a "…" matches any text
    QTest::newRow("text file") << "text"
                               << "'%1' is not an Excel .xls file";
    QTest::newRow("empty file") << "empty"
                                << "'%1' is not an Excel .xls file";
    QTest::newRow("zip archive") << "zip"
                                 << "'%1' is an Excel .xlsx file; set 'Format' to 'Excel XLSX'";
    QTest::newRow("compound file without workbook") << "noworkbook"
                                                    << "'%1' is not an Excel .xls file";
    QTest::newRow("Excel 95 stream")
        << "book"
        << "'%1' was saved by Excel 95 or earlier, which can't be read; save it as .xlsx "
           "in Excel";
    QTest::newRow("Excel 95 records")
        << "biff5"
        << "'%1' was saved by Excel 95 or earlier, which can't be read; save it as "
           ".xlsx in Excel";
    QTest::newRow("password") << "filepass"
                              << "'%1' is password protected and can't be read";
    QTest::newRow("encrypted package") << "encrypted"
                                       << "'%1' is password protected and can't be read";
    QTest::newRow("record past the end") << "cut"
                                         << "'%1' is damaged: a record runs past the end of the stream …";
    QTest::newRow("sheet offset outside")
        << "offset"
        << "'%1' is damaged: the sheet's offset 99999 is outside the stream";
    QTest::newRow("shared string out of range")
        << "sst"
        << "'%1' is damaged: a record at offset … is cut short or out of place";
    QTest::newRow("short cell record")
        << "short"
        << "'%1' is damaged: a record at offset … is cut short or out of place";
    QTest::newRow("no end record") << "noeof"
                                   << "'%1' is damaged: the workbook stream ends before its end record";
    QTest::newRow("missing sheet") << "missing"
                                   << "Sheet 'Nope' not found in '%1'. Its sheets are: 'Sheet1'";
}

void TestXlsReader::failures()
{
    QFETCH(QString, kind);
    QFETCH(QString, message);
    const QString path = m_dir.filePath(kind + QStringLiteral(".xls"));
    InputOptions options;
    const Biff8Book good = book(B::number(0, 0, 1), {"a"});
    auto workbookStream = [&](const QByteArray &stream) {
        QVERIFY(writeCompoundFile(path, {{QStringLiteral("Workbook"), stream}}));
    };
    if (kind == QLatin1String("text")) {
        QVERIFY(writeFile(path, "a,b\n"));
    } else if (kind == QLatin1String("empty")) {
        QVERIFY(writeFile(path, QByteArray()));
    } else if (kind == QLatin1String("zip")) {
        QVERIFY(writeZip(path, {{QStringLiteral("xl/workbook.xml"), "<workbook/>"}}));
    } else if (kind == QLatin1String("noworkbook")) {
        QVERIFY(writeCompoundFile(path, {{QStringLiteral("WordDocument"), QByteArray(100, 'x')}}));
    } else if (kind == QLatin1String("book")) {
        QVERIFY(writeCompoundFile(path, {{QStringLiteral("Book"), QByteArray(100, 'x')}}));
    } else if (kind == QLatin1String("biff5")) {
        Biff8Book b = good;
        b.version = 0x0500;
        workbookStream(b.stream());
    } else if (kind == QLatin1String("filepass")) {
        workbookStream(book(B::number(0, 0, 1), {}, 0, B::record(0x002F, QByteArray(54, '\1'))).stream());
    } else if (kind == QLatin1String("encrypted")) {
        QVERIFY(writeCompoundFile(path, {{QStringLiteral("EncryptedPackage"), QByteArray(600, 'x')}}));
    } else if (kind == QLatin1String("cut")) {
        const QByteArray stream = good.stream();
        workbookStream(stream.left(stream.size() - 7));
    } else if (kind == QLatin1String("offset")) {
        QByteArray stream = good.stream();
        const int at = stream.indexOf(QByteArray("\x85\x00", 2));
        qToLittleEndian<quint32>(99999, stream.data() + at + 4);
        workbookStream(stream);
    } else if (kind == QLatin1String("sst")) {
        workbookStream(book(B::labelSst(0, 0, 7), {"only one"}).stream());
    } else if (kind == QLatin1String("short")) {
        workbookStream(book(B::record(0x0203, B::cellHeader(0, 0, 0) + u16(1))).stream());
    } else if (kind == QLatin1String("noeof")) {
        workbookStream(B::bof(0x0005) + styleRecords());
    } else if (kind == QLatin1String("missing")) {
        workbookStream(good.stream());
        options.sheet = QStringLiteral("Nope");
    }
    Dataset table;
    table.setColumnCount(1);
    table.appendRow({QStringLiteral("stale")});
    ExcelReadCounts counts;
    ReadReport report;
    QVERIFY(!readXls(path, options, table, counts, report));
    QCOMPARE(table.rowCount(), 0);
    QCOMPARE(table.columnCount(), 0);
    const QString first = report.warnings.value(0);
    const QStringList parts = message.arg(where(path)).split(QChar(0x2026));
    QVERIFY2(first.startsWith(parts.first()), qPrintable(first));
    QVERIFY2(first.endsWith(parts.last()), qPrintable(first));
}

void TestXlsReader::freexlAgrees()
{
    // FreeXL reads the same hand-made workbook on its own: strings (continued ones too) and
    // plain numbers must come out alike.
    const QByteArray dimensions = B::record(0x0200, u32(0) + u32(2) + u16(0) + u16(2) + u16(0));
    const QByteArray codePage = B::record(0x0042, u16(1200));
    const Biff8Book b = book(dimensions + B::labelSst(0, 0, 0) + B::labelSst(0, 1, 1) + B::number(1, 0, 2.5)
            + B::rk(1, 1, rkInteger(12345, true)),
        {QString::fromUtf8("abcdéfg€"), "next"}, 3, codePage);
    const QString path = write(b, QStringLiteral("freexl.xls"));
    Dataset table;
    ExcelReadCounts counts;
    ReadReport report;
    QVERIFY(readXls(path, InputOptions(), table, counts, report));

    const void *handle = nullptr;
    QCOMPARE(freexl_open(QFile::encodeName(path).constData(), &handle), FREEXL_OK);
    QCOMPARE(freexl_select_active_worksheet(handle, 0), FREEXL_OK);
    unsigned int rows = 0;
    unsigned short columns = 0;
    QCOMPARE(freexl_worksheet_dimensions(handle, &rows, &columns), FREEXL_OK);
    QCOMPARE(int(rows), table.rowCount());
    QCOMPARE(int(columns), table.columnCount());
    for (unsigned int r = 0; r < rows; ++r) {
        for (unsigned short c = 0; c < columns; ++c) {
            FreeXL_CellValue value;
            QCOMPARE(freexl_get_cell_value(handle, r, c, &value), FREEXL_OK);
            QString text;
            if (value.type == FREEXL_CELL_SST_TEXT || value.type == FREEXL_CELL_TEXT)
                text = QString::fromUtf8(value.value.text_value);
            else if (value.type == FREEXL_CELL_INT)
                text = QString::number(value.value.int_value);
            else if (value.type == FREEXL_CELL_DOUBLE)
                text = QString::number(value.value.double_value);
            QCOMPARE(table.cell(int(r), int(c)), text);
        }
    }
    freexl_close(handle);
}

QTEST_GUILESS_MAIN(TestXlsReader)
#include "tst_xlsreader.moc"
