#include "inputs/delimitedreader.h"
#include "inputs/plaintextreader.h"
#include "readertest.h"

using readertest::row;

class TestDelimitedReader : public QObject
{
    Q_OBJECT
private slots:
    void read_data();
    void read();
    void blockBoundaries_data();
    void blockBoundaries();
    void delimiterGuess_data();
    void delimiterGuess();
    void messages_data();
    void messages();
    void plainText_data();
    void plainText();
    void wideRow();
    void sharedCounts_data();
    void sharedCounts();
};

void TestDelimitedReader::read_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QString>("options");
    QTest::addColumn<QString>("expected");

    const QString comma = QStringLiteral("delimiter=1");
    row("plain rows", QByteArray("a,b\n1,2\n"), comma, "a|b\n1|2");
    row("no line break at the end", QByteArray("a,b\n1,2"), comma, "a|b\n1|2");
    row("quoted delimiter", QByteArray("\"a,b\",c"), comma, "a,b|c");
    row("doubled quote is one quote", QByteArray("\"say \"\"hi\"\"\",x"), comma, "say \"hi\"|x");
    row("quote inside an unquoted cell is text", QByteArray("ab\"c,d\"e"), comma, "ab\"c|d\"e");
    // Text after a closing quote goes on in the quoted cell, delimiters included.
    row("text after a closing quote goes on", QByteArray("\"ab\"cd,e\nf"), comma, "abcd,e\\nf");
    row("closing quote then delimiter", QByteArray("\"ab\",e"), comma, "ab|e");
    row("quote after a delimiter opens", QByteArray("a,\"b,c\"\n"), comma, "a|b,c");
    row("empty quoted cell", QByteArray("\"\",x"), comma, "|x");
    row("line feed inside quotes", QByteArray("\"a\nb\",c\nd,e"), comma, "a\\nb|c\nd|e");
    row("CR LF ends a row", QByteArray("a,b\r\nc,d\r\n"), comma, "a|b\nc|d");
    row("CR LF inside quotes is kept", QByteArray("\"a\r\nb\",c\r\n"), comma, "a\\r\\nb|c");
    row("lone CR ends a row", QByteArray("a,b\rc,d"), comma, "a|b\nc|d");
    row("CR LF after a closing quote", QByteArray("\"a\"\r\nb"), comma, "a\nb");
    row("trailing delimiter gives an empty cell", QByteArray("a,b,\n"), comma, "a|b|");
    row("unterminated quote takes the rest", QByteArray("a,\"bc\nd,e"), comma, "a|bc\\nd,e");
    row("a lone quote", QByteArray("\""), comma, "");
    row("empty file", QByteArray(), comma, "");
    row("repeated delimiters dropped", QByteArray("a,,,b\n"), comma + " repeated=1", "a|b");
    row("repeated: an empty quoted cell goes too", QByteArray("a,\"\",b"), comma + " repeated=1", "a|b");
    row("repeated: an empty last cell stays", QByteArray("a,b,,\nc,d\n"), comma + " repeated=1",
        "a|b|\nc|d|");
    row("ignore first rows", QByteArray("title\n\"multi\nline\"\na,b"), comma + " first=2", "a|b");
    row("wider row widens earlier ones", QByteArray("a\nb,c,d\ne,f"), comma, "a||\nb|c|d\ne|f|");
    row("empty rows dropped", QByteArray("a,b\n\n,\nc,d\n"), comma, "a|b\nc|d");
    row("empty rows kept", QByteArray("a,b\n\n,\nc,d\n"), comma + " empty=0", "a|b\n|\n|\nc|d");
    row("trim", QByteArray(" a , b \n"), comma + " trim=1", "a|b");
    row("blank after trimming is empty", QByteArray("a\n  ,  \nb"), comma + " trim=1", "a\nb");
    row("simplify", QByteArray("\"a\tb\nc\",d"), comma + " simplify=1", "a b c|d");
    row("semi-colon", QByteArray("a;b,c\n"), "delimiter=2", "a|b,c");
    row("colon", QByteArray("a:b\n"), "delimiter=3", "a|b");
    row("pipe", QByteArray("a|\"b|c\"\n"), "delimiter=5", "a|b|c");
    row("space", QByteArray("a b  c\n"), "delimiter=7", "a|b||c");
    row("unit separator",
        QByteArray("a\x1f"
                   "b\n"),
        "delimiter=9", "a|b");
    row("custom", QByteArray("a#b\n"), "delimiter=8 custom=#", "a|b");
    row("custom beyond Latin-1",
        QByteArray("a\xe2\x86\x92"
                   "b\n"),
        QStringLiteral("delimiter=8 custom=\u2192"), "a|b");
    row("custom without a character is a comma", QByteArray("a,b#c\n"), "delimiter=8", "a|b#c");
    row("unknown delimiter value is a comma", QByteArray("a,b\n"), "delimiter=42", "a|b");
    row("tab reads unquoted", QByteArray("\"a\"\tb\n\"c\td\"\n"), "delimiter=4", "\"a\"|b\n\"c|d\"");
    row("tab quoted when asked", QByteArray("\"a\tb\"\tc\n"), "delimiter=4 quoting=1", "a\tb|c");
    row("comma unquoted when asked", QByteArray("\"a,b\",c\n"), comma + " quoting=2", "\"a|b\"|c");
    row("unquoted: CR inside a line ends a row", QByteArray("a,b\rc\r\nd\n"), comma + " quoting=2",
        "a|b\nc|\nd|");
    row("unquoted: CR at the very end ends the line", QByteArray("a\tb\r"), "delimiter=4 empty=0", "a|b");
    row("quoted: CR at the very end ends the row", QByteArray("a,b\r"), comma + " empty=0", "a|b");
    row("unquoted: repeated delimiters", QByteArray(",,a,,b\n"), comma + " quoting=2 repeated=1", "|a|b");
    row("unquoted: first rows", QByteArray("x\ny\rz\na,b"), comma + " quoting=2 first=3", "a|b");
    row("UTF-8 text", QByteArray("\xc3\xa9t\xc3\xa9,\xe2\x82\xac\n"), comma,
        QStringLiteral("\u00e9t\u00e9|\u20ac"));
    row("byte order mark is not text",
        QByteArray("\xef\xbb\xbf"
                   "a,b\n"),
        comma, "a|b");
}

void TestDelimitedReader::read()
{
    QFETCH(QByteArray, bytes);
    QFETCH(QString, options);
    QFETCH(QString, expected);
    Dataset table;
    ReadReport report;
    QVERIFY(readertest::read(readDelimited, bytes, readertest::options(options), table, report));
    QCOMPARE(readertest::tableText(table), expected);
}

void TestDelimitedReader::blockBoundaries_data()
{
    // The readers take 2,048 characters at a time: a line break, a quote pair, a run of
    // delimiters or a cell may fall across the edge.
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QString>("options");
    QTest::addColumn<int>("rows");
    QTest::addColumn<QString>("lastRow"); // cells joined by "|"

    const QByteArray filler(2046, 'x');
    const QString x(filler);
    const QString quoted = QStringLiteral("delimiter=1 empty=0");
    const QString tab = QStringLiteral("delimiter=4 empty=0");
    row("CR LF across the edge", filler + ",\r\nlast", quoted, 2, "last|");
    row("CR LF across the edge inside quotes", "\"" + filler + "\r\nlast\"", quoted, 1, x + "\r\nlast");
    row("doubled quote across the edge", "\"" + filler + "\"\"\"", quoted, 1, x + "\"");
    row("cell longer than a block", QByteArray(5000, 'y') + ",z", quoted, 1, QString(5000, 'y') + "|z");
    // Nine lone CRs end nine rows, the tenth with its LF one more.
    row("many CRs at the edge", QByteArray(2047, 'a') + QByteArray(10, '\r') + "\nb", quoted, 11, "b");
    row("unquoted: cell longer than a block", QByteArray(5000, 'y') + "\tz\nw", tab, 2, "w|");
    row("unquoted: CR LF across the edge", filler + "\t\r\nlast", tab, 2, "last|");
    row("unquoted: repeated delimiters across the edge", QByteArray(2047, 'a') + ",,,b",
        "delimiter=1 quoting=2 repeated=1", 1, QString(2047, 'a') + "|b");
    row("unquoted: line longer than a block", QByteArray(5000, 'p') + "\r\nq", "delimiter=1 quoting=2", 2,
        "q");
}

void TestDelimitedReader::blockBoundaries()
{
    QFETCH(QByteArray, bytes);
    QFETCH(QString, options);
    QFETCH(int, rows);
    QFETCH(QString, lastRow);
    Dataset table;
    ReadReport report;
    QVERIFY(readertest::read(readDelimited, bytes, readertest::options(options), table, report));
    QCOMPARE(table.rowCount(), rows);
    QCOMPARE(table.row(table.lastRow()).join(QLatin1Char('|')), lastRow);
}

void TestDelimitedReader::delimiterGuess_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QString>("expected");
    QTest::addColumn<QString>("information");

    row("commas and semi-colons tie: comma", QByteArray("a,b;c\n"), "a|b;c",
        "Delimiter=Automatic guesses 'Comma (,)', set 'Delimiter' option to change\n"
        "First 6 characters contain: 1 Comma (,), 1 Semi-colon (;), 0 Pipe (|), 0 Caret (^), 0 Tab (\\t), "
        "0 Unit separator (0x1F)\n"
        "Quoting=Automatic guesses 'Quoted', set 'Quoting' option to change");
    row("tabs and pipes tie: pipe", QByteArray("a\tb|c\n"), "a\tb|c",
        "Delimiter=Automatic guesses 'Pipe (|)', set 'Delimiter' option to change\n"
        "First 6 characters contain: 0 Comma (,), 0 Semi-colon (;), 1 Pipe (|), 0 Caret (^), 1 Tab (\\t), "
        "0 Unit separator (0x1F)\n"
        "Quoting=Automatic guesses 'Quoted', set 'Quoting' option to change");
    row("no candidate: comma", QByteArray("abc"), "abc",
        "Delimiter=Automatic guesses 'Comma (,)', set 'Delimiter' option to change\n"
        "First 3 characters contain: 0 Comma (,), 0 Semi-colon (;), 0 Pipe (|), 0 Caret (^), 0 Tab (\\t), "
        "0 Unit separator (0x1F)\n"
        "Quoting=Automatic guesses 'Quoted', set 'Quoting' option to change");
    row("tab reads unquoted", QByteArray("\"a\"\tb\n"), "\"a\"|b",
        "Delimiter=Automatic guesses 'Tab (\\t)', set 'Delimiter' option to change\n"
        "First 6 characters contain: 0 Comma (,), 0 Semi-colon (;), 0 Pipe (|), 0 Caret (^), 1 Tab (\\t), "
        "0 Unit separator (0x1F)\n"
        "Quoting=Automatic guesses 'Unquoted', set 'Quoting' option to change");
    // Quotes are not looked at, so commas inside them outvote the semi-colons.
    row("semi-colons outvoted by quoted commas", QByteArray("\"a,b,c\";d\n"), "a,b,c;d\\n",
        "Delimiter=Automatic guesses 'Comma (,)', set 'Delimiter' option to change\n"
        "First 10 characters contain: 2 Comma (,), 1 Semi-colon (;), 0 Pipe (|), 0 Caret (^), 0 Tab (\\t), "
        "0 Unit separator (0x1F)\n"
        "Quoting=Automatic guesses 'Quoted', set 'Quoting' option to change");
    // Only the first 4,096 characters count.
    row("carets beyond the sample don't count", QByteArray(4090, 'a') + ";;;^^^^^^^^^",
        QString(4090, 'a') + "|||^^^^^^^^^",
        "Delimiter=Automatic guesses 'Semi-colon (;)', set 'Delimiter' option to change\n"
        "First 4096 characters contain: 0 Comma (,), 3 Semi-colon (;), 0 Pipe (|), 3 Caret (^), 0 Tab (\\t), "
        "0 Unit separator (0x1F)\n"
        "Quoting=Automatic guesses 'Quoted', set 'Quoting' option to change");
}

void TestDelimitedReader::delimiterGuess()
{
    QFETCH(QByteArray, bytes);
    QFETCH(QString, expected);
    QFETCH(QString, information);
    Dataset table;
    ReadReport report;
    QVERIFY(readertest::read(readDelimited, bytes, readertest::options(QString()), table, report));
    QCOMPARE(readertest::tableText(table), expected);
    QCOMPARE(report.information.join(QLatin1Char('\n')), information);
}

void TestDelimitedReader::messages_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QString>("options");
    QTest::addColumn<QString>("warnings");
    QTest::addColumn<QString>("information");

    row("one width: no warning", QByteArray("a,b\nc,d\n"), "delimiter=1", "",
        "Quoting=Automatic guesses 'Quoted', set 'Quoting' option to change");
    row("widths in ascending order", QByteArray("a,b\nc\nd,e,f\ng\n"), "delimiter=1 quoting=1",
        "Number of values per row vary:\n"
        "2 input rows have 1 value: E.g. input row 2\n"
        "1 input row has 2 values: E.g. input row 1\n"
        "1 input row has 3 values: E.g. input row 3",
        "");
    row("input rows count ignored ones", QByteArray("x\ny\na,b\nc\n"), "delimiter=1 quoting=1 first=2",
        "Number of values per row vary:\n"
        "1 input row has 1 value: E.g. input row 4\n"
        "1 input row has 2 values: E.g. input row 3",
        "");
    row("unquoted reader warns too", QByteArray("a\tb\nc\n"), "delimiter=4 quoting=2",
        "Number of values per row vary:\n"
        "1 input row has 1 value: E.g. input row 2\n"
        "1 input row has 2 values: E.g. input row 1",
        "");
    row("empty rows counted", QByteArray("a\n\n\nb\n\n"), "delimiter=1 quoting=1", "",
        "3 empty row(s) ignored");
    row("unterminated quote", QByteArray("a,x\nb,\"c\nd\n"), "delimiter=1 quoting=1",
        "A quote opened in input row 2 is never closed, so the rest of the text was read as one value", "");
}

void TestDelimitedReader::messages()
{
    QFETCH(QByteArray, bytes);
    QFETCH(QString, options);
    QFETCH(QString, warnings);
    QFETCH(QString, information);
    Dataset table;
    ReadReport report;
    QVERIFY(readertest::read(readDelimited, bytes, readertest::options(options), table, report));
    QCOMPARE(report.warnings.join(QLatin1Char('|')), warnings);
    QCOMPARE(report.information.join(QLatin1Char('|')), information);
}

void TestDelimitedReader::plainText_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QString>("options");
    QTest::addColumn<QString>("expected");
    QTest::addColumn<QString>("information");

    row("a line is a row", QByteArray("a,b\n\"c\"\n"), "", "a,b\n\"c\"", "");
    row("LF, CR LF and CR", QByteArray("a\nb\r\nc\rd"), "", "a\nb\nc\nd", "");
    row("empty lines dropped", QByteArray("a\n\n \nb\n"), "", "a\n \nb", "1 empty row(s) ignored");
    row("trimmed blank lines dropped", QByteArray("a\n\n \nb\n"), "trim=1", "a\nb", "2 empty row(s) ignored");
    row("empty lines kept", QByteArray("a\n\nb"), "empty=0", "a\n\nb", "");
    row("first rows", QByteArray("x\ny\na\n"), "first=2", "a", "");
    row("simplify", QByteArray("a\tb\n"), "simplify=1", "a b", "");
    row("line longer than a block", QByteArray(5000, 'p') + "\r\nq", "", QString(5000, 'p') + "\nq", "");
}

void TestDelimitedReader::plainText()
{
    QFETCH(QByteArray, bytes);
    QFETCH(QString, options);
    QFETCH(QString, expected);
    QFETCH(QString, information);
    Dataset table;
    ReadReport report;
    QVERIFY(readertest::read(readPlainText, bytes, readertest::options(options), table, report));
    QCOMPARE(readertest::tableText(table), expected);
    QCOMPARE(report.information.join(QLatin1Char('|')), information);
    QVERIFY(report.warnings.isEmpty());
}

void TestDelimitedReader::wideRow()
{
    // 100,000 columns in one row, then a short one that is padded.
    QByteArray bytes;
    for (int c = 0; c < 100000; ++c)
        bytes += QByteArray::number(c) + ',';
    bytes += "last\nshort\n";
    Dataset table;
    ReadReport report;
    QVERIFY(readertest::read(
        readDelimited, bytes, readertest::options(QStringLiteral("delimiter=1")), table, report));
    QCOMPARE(table.columnCount(), 100001);
    QCOMPARE(table.rowCount(), 2);
    QCOMPARE(table.cell(0, 99999), QStringLiteral("99999"));
    QCOMPARE(table.cell(0, 100000), QStringLiteral("last"));
    QCOMPARE(table.cell(1, 0), QStringLiteral("short"));
    QCOMPARE(table.cell(1, 100000), QString());
}

void TestDelimitedReader::sharedCounts_data()
{
    // Cells with the same text share one string, whose reference count the reader raises
    // once at the end for all of them: it must come out as the number of cells holding it,
    // whatever rows were dropped or widened on the way.
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QString>("options");
    QTest::addColumn<int>("memoryMode"); // 1 shares nothing

    QByteArray distinct; // the first column's pool gives up, the second's keeps going
    for (int r = 0; r < 20000; ++r)
        distinct += "v" + QByteArray::number(r) + ",w" + QByteArray::number(r % 7) + "\n";
    distinct += "v1,w1\n";
    const QList<QPair<const char *, QPair<QByteArray, const char *>>> cases = {
        {"repeated values", {"a,b\na,b\na,c\n", "delimiter=1"}},
        {"ignored first rows share values", {"a,b\na,b\na,b\na\n", "delimiter=1 first=2"}},
        {"ignored empty rows", {"a\n\n,\na\n", "delimiter=1"}},
        {"a wider row widens the table", {"a\na,b,a\na\n", "delimiter=1"}},
        {"trimmed cells", {" a ,a\n a,a \n", "delimiter=1 trim=1"}},
        {"quoted cells across rows", {"\"a\",\"a\"\n\"a\"\n", "delimiter=1"}},
        {"unquoted reader", {"a\tb\na\tb\n", "delimiter=4 first=1"}},
        {"a pool that gives up", {distinct, "delimiter=1"}},
    };
    for (const int mode : {0, 1}) {
        for (const auto &[name, input] : cases) {
            QTest::addRow("%s, memory mode %d", name, mode)
                << input.first << QString::fromLatin1(input.second) << mode;
        }
    }
}

void TestDelimitedReader::sharedCounts()
{
    QFETCH(QByteArray, bytes);
    QFETCH(QString, options);
    QFETCH(int, memoryMode);
    Dataset::setMemoryMode(memoryMode);
    Dataset table;
    ReadReport report;
    const bool read = readertest::read(readDelimited, bytes, readertest::options(options), table, report);
    Dataset::setMemoryMode(0);
    QVERIFY(read);
    QVERIFY(table.rowCount() > 0);
    QHash<const QChar *, int> holders;
    for (int r = 0; r < table.rowCount(); ++r) {
        for (const QString &cell : table.row(r)) {
            if (!cell.isEmpty())
                ++holders[cell.constData()];
        }
    }
    for (int r = 0; r < table.rowCount(); ++r) {
        for (QString cell : table.row(r)) {
            if (cell.isEmpty())
                continue;
            // The copy above holds one reference of its own.
            const int count = cell.data_ptr()->ref.atomic.loadRelaxed() - 1;
            QCOMPARE(count, holders.value(cell.constData()));
            if (memoryMode == 1)
                QCOMPARE(count, 1);
        }
    }
}

QTEST_MAIN(TestDelimitedReader)
#include "tst_delimitedreader.moc"
