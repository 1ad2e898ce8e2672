#include "outputs/fixedwidthwriter.h"
#include "outputs/plaintextwriter.h"

#include <QBuffer>
#include <QtTest>

namespace {

// Cells separated by "|" and rows by "/"; with headers the first row is the header row.
Dataset table(const QString &text, bool withHeaders)
{
    Dataset dataset;
    if (text.isNull())
        return dataset;
    const QStringList rows = text.split(QLatin1Char('/'));
    dataset.setColumnCount(rows.first().split(QLatin1Char('|')).size());
    for (int r = 0; r < rows.size(); ++r) {
        const QStringList cells = rows.at(r).split(QLatin1Char('|'));
        if (r == 0 && withHeaders)
            dataset.setHeaders(cells);
        else
            dataset.appendRow(cells, true);
    }
    return dataset;
}

using Writer = bool (*)(const Dataset &, const OutputOptions &, QIODevice &, WriteReport &);

QString write(
    Writer writer, const QString &cells, bool headers, bool writeHeader, int lineEndings, WriteReport &report)
{
    OutputOptions options;
    options.writeHeader = writeHeader;
    options.lineEndings = lineEndings;
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    if (!writer(table(cells, headers), options, buffer, report))
        return QStringLiteral("<failed>");
    return QString::fromUtf8(bytes);
}

} // namespace

// The fixed-width writer and its plain-text sibling: both lay out cells without quoting.
class TestFixedWidthWriter : public QObject
{
    Q_OBJECT
private slots:
    void fixedWidth_data();
    void fixedWidth();
    void plainText_data();
    void plainText();
};

void TestFixedWidthWriter::fixedWidth_data()
{
    QTest::addColumn<QString>("cells");
    QTest::addColumn<bool>("headers");
    QTest::addColumn<bool>("writeHeader");
    QTest::addColumn<int>("lineEndings");
    QTest::addColumn<QString>("expected");
    QTest::addColumn<QString>("messages");

    const int lf = OutputOptions::Lf;
    QTest::newRow("widest value sets the width")
        << "name|n/Al|1/Barbara|22" << true << true << lf << "name    n\nAl      1\nBarbara 22\n"
        << "Column widths for reading: 8, 2";
    QTest::newRow("header not written doesn't widen") << "longheader|b/x|y" << true << false << lf << "x y\n"
                                                      << "Column widths for reading: 2, 1";
    QTest::newRow("empty column is one wide") << "a||c/1||3" << false << true << lf << "a   c\n1   3\n"
                                              << "Column widths for reading: 2, 2, 1";
    QTest::newRow("trailing blanks removed") << "a|b/x|" << false << true << lf << "a b\nx\n"
                                             << "Column widths for reading: 2, 1";
    QTest::newRow("value blanks kept inside") << " a|b" << false << true << lf << " a b\n"
                                              << "Column widths for reading: 3, 1";
    QTest::newRow("astral character counts once")
        << QString::fromUtf8("😀|x/ab|y") << false << true << lf << QString::fromUtf8("😀  x\nab y\n")
        << "Column widths for reading: 3, 1";
    QTest::newRow("wide ideographs count once")
        << QString::fromUtf8("漢字|x/abc|y") << false << true << lf << QString::fromUtf8("漢字  x\nabc y\n")
        << "Column widths for reading: 4, 1";
    QTest::newRow("breaks and tabs as blanks")
        << "a\nb|c\td/x\r\ny|z" << false << true << lf << "a b  c d\nx  y z\n"
        << "3 values held line breaks or tabs, which were written as blanks\nColumn widths for reading: 5, 3";
    QTest::newRow("one value held a break")
        << "a\nb" << false << true << lf << "a b\n"
        << "1 value held line breaks or tabs, which were written as blanks\nColumn widths for reading: 3";
    QTest::newRow("windows line endings") << "a|b" << false << true << int(OutputOptions::Crlf) << "a b\r\n"
                                          << "Column widths for reading: 2, 1";
    QTest::newRow("record separator") << "a/b" << false << true << int(OutputOptions::RecordSeparator)
                                      << "a\x1e"
                                         "b\x1e"
                                      << "Column widths for reading: 1";
    QTest::newRow("no columns") << QString() << false << true << lf << ""
                                << "The dataset has no columns, so the file is empty";
}

void TestFixedWidthWriter::fixedWidth()
{
    QFETCH(QString, cells);
    QFETCH(bool, headers);
    QFETCH(bool, writeHeader);
    QFETCH(int, lineEndings);
    QFETCH(QString, expected);
    QFETCH(QString, messages);
    WriteReport report;
    QCOMPARE(write(writeFixedWidth, cells, headers, writeHeader, lineEndings, report), expected);
    QCOMPARE((report.warnings + report.information).join(QLatin1Char('\n')), messages);
}

void TestFixedWidthWriter::plainText_data()
{
    QTest::addColumn<QString>("cells");
    QTest::addColumn<bool>("headers");
    QTest::addColumn<bool>("writeHeader");
    QTest::addColumn<int>("lineEndings");
    QTest::addColumn<QString>("expected");
    QTest::addColumn<QString>("messages");

    const int lf = OutputOptions::Lf;
    QTest::newRow("one column") << "line/first/second" << true << true << lf << "line\nfirst\nsecond\n"
                                << "";
    QTest::newRow("header not wanted") << "line/first" << true << false << lf << "first\n"
                                       << "";
    QTest::newRow("columns joined by tabs") << "a|b/1|" << false << true << lf << "a\tb\n1\t\n"
                                            << "";
    QTest::newRow("empty lines kept") << "a//b" << false << true << lf << "a\n\nb\n"
                                      << "";
    QTest::newRow("line breaks as they stand")
        << "a\nb/c\r\nd/e" << false << true << lf << "a\nb\nc\r\nd\ne\n"
        << "2 values hold line breaks and will read back as more than one row";
    QTest::newRow("one line break") << "a\nb" << false << true << lf << "a\nb\n"
                                    << "1 value hold line breaks and will read back as more than one row";
    QTest::newRow("old mac endings") << "a/b" << false << true << int(OutputOptions::Cr) << "a\rb\r"
                                     << "";
    QTest::newRow("no columns") << QString() << false << true << lf << ""
                                << "The dataset has no columns, so the file is empty";
}

void TestFixedWidthWriter::plainText()
{
    QFETCH(QString, cells);
    QFETCH(bool, headers);
    QFETCH(bool, writeHeader);
    QFETCH(int, lineEndings);
    QFETCH(QString, expected);
    QFETCH(QString, messages);
    WriteReport report;
    QCOMPARE(write(writePlainText, cells, headers, writeHeader, lineEndings, report), expected);
    QCOMPARE((report.warnings + report.information).join(QLatin1Char('\n')), messages);
}

QTEST_GUILESS_MAIN(TestFixedWidthWriter)
#include "tst_fixedwidthwriter.moc"
