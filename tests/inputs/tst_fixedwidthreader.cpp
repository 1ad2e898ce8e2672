#include "inputs/fixedwidthreader.h"
#include "readertest.h"

using readertest::row;

class TestFixedWidthReader : public QObject
{
    Q_OBJECT
private slots:
    void guessWidths_data();
    void guessWidths();
    void read_data();
    void read();
    void sample();
};

namespace {

QString widthsText(const QList<int> &widths)
{
    QStringList texts;
    for (const int width : widths)
        texts << QString::number(width);
    return texts.join(QLatin1Char(','));
}

QString repeatedLines(const QString &line, int count)
{
    QStringList lines;
    for (int i = 0; i < count; ++i)
        lines << line;
    return lines.join(QLatin1Char('\n'));
}

} // namespace

void TestFixedWidthReader::guessWidths_data()
{
    QTest::addColumn<QString>("lines");
    QTest::addColumn<QString>("widths");

    // Three lines make one block of two; the third line is a short last block, dropped,
    // but its length is still the table's width.
    row("three columns", "name  age town\nann   31  york\nbob   42  bath x", "6,4,6");
    row("one line is one block", "ab  cd", "4,2");
    row("first start moved to 0", "  ab  cd", "6,2");
    row("no blank column: one column", "abc\nabc", "3");
    row("tabs are blank", "a\tb\na\tb", "2,1");
    row("every line blank: no columns", "   \n  ", "");
    row("most common column count wins", "aaaa bbbb\naaaa bbbb\naa bb cc\naa bb cc\naa bb cc\naa bb cc",
        "3,3,3");
    row("a tie goes to the first block", "ab cd\nab cd\na bcd\na bcd", "3,2");
    row("blank lines are not counted", "ab cd\n\n\nab cd", "3,2");
    // Of 21 lines the title, the first data line and the footer go; 20 lines are kept
    // whole, so the title's length sets the width.
    row("21 lines lose both ends", "Report title here\n" + repeatedLines("aa bb", 19) + "\nend", "3,2");
    row("20 lines lose none", "Report title here\n" + repeatedLines("aa bb", 19), "3,14");
    row("55 lines cut to 49", repeatedLines("a  b  c", 55), "3,3,1");
}

void TestFixedWidthReader::guessWidths()
{
    QFETCH(QString, lines);
    QFETCH(QString, widths);
    QCOMPARE(widthsText(FixedWidthReader::guessWidths(lines.split(QLatin1Char('\n')))), widths);
}

void TestFixedWidthReader::read_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QString>("options");
    QTest::addColumn<QString>("expected");
    QTest::addColumn<QString>("information");

    const QString manual = QStringLiteral("columns=0 widths=4,2");
    row("cut at the widths", QByteArray("ab  cd\nef  gh\n"), manual, "ab  |cd\nef  |gh", "");
    row("trimmed", QByteArray("ab  cd\nef  gh\n"), manual + " trim=1", "ab|cd\nef|gh", "");
    row("short line padded", QByteArray("ab\nabcdef"), manual, "ab|\nabcd|ef", "");
    row("the rest of a long line is dropped", QByteArray("abcdefgh"), manual, "abcd|ef", "");
    row("CR LF and CR end lines", QByteArray("abcdef\r\nghijkl\rmnopqr"), manual, "abcd|ef\nghij|kl\nmnop|qr",
        "");
    row("empty lines dropped", QByteArray("abcdef\n\nghijkl\n"), manual, "abcd|ef\nghij|kl",
        "1 empty row(s) ignored");
    row("empty lines kept", QByteArray("abcdef\n\nghijkl"), manual + " empty=0", "abcd|ef\n|\nghij|kl", "");
    row("blank rows after trimming dropped", QByteArray("      \nabcdef\n"), manual + " trim=1", "abcd|ef",
        "1 empty row(s) ignored");
    row("first rows skipped", QByteArray("title\nabcdef\n"), manual + " first=1", "abcd|ef", "");
    row("automatic guesses", QByteArray("ab  cd\nef  gh\n"), "columns=1", "ab  |cd\nef  |gh",
        "Columns=Automatic guesses 2 columns, set 'Columns' option to 'Manual' to change");
    row("manual without widths guesses silently", QByteArray("ab  cd\nef  gh\n"), "columns=0",
        "ab  |cd\nef  |gh", "");
    row("empty file", QByteArray(), "columns=1", "",
        "Columns=Automatic guesses 0 columns, set 'Columns' option to 'Manual' to change");
}

void TestFixedWidthReader::read()
{
    QFETCH(QByteArray, bytes);
    QFETCH(QString, options);
    QFETCH(QString, expected);
    QFETCH(QString, information);
    Dataset table;
    ReadReport report;
    QVERIFY(readertest::read(readFixedWidth, bytes, readertest::options(options), table, report));
    QCOMPARE(readertest::tableText(table), expected);
    QCOMPARE(report.information.join(QLatin1Char('|')), information);
    QVERIFY(report.warnings.isEmpty());
}

void TestFixedWidthReader::sample()
{
    QByteArray bytes = "title\n";
    for (int i = 0; i < 60; ++i)
        bytes += QByteArray::number(1000 + i) + " x\n";
    Dataset table;
    ReadReport report;
    QVERIFY(readertest::read(
        readFixedWidth, bytes, readertest::options(QStringLiteral("columns=1 first=1")), table, report));
    QCOMPARE(table.rowCount(), 60);
    QCOMPARE(report.sample.size(), 51);
    QCOMPARE(report.sample.first(), QStringLiteral("1000 x"));
    QCOMPARE(report.sample.at(49), QStringLiteral("1049 x"));
    QCOMPARE(report.sample.last(), QStringLiteral("(+10 more rows)"));
    QCOMPARE(widthsText(report.columnWidths), QStringLiteral("5,1"));
}

QTEST_MAIN(TestFixedWidthReader)
#include "tst_fixedwidthreader.moc"
