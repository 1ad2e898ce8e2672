#include "outputs/markdownwriter.h"
#include "writertest.h"

#include <QtTest>

class TestMarkdownWriter : public QObject
{
    Q_OBJECT
private slots:
    void cells_data();
    void cells();
    void write_data();
    void write();
    void append();
};

void TestMarkdownWriter::cells_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<bool>("escape");
    QTest::addColumn<QString>("expected");
    QTest::newRow("pipe always") << "a|b" << false << "a\\|b";
    QTest::newRow("line breaks always") << "a\r\nb\nc\rd" << false << "a<br>b<br>c<br>d";
    QTest::newRow("specials kept") << "[x](y) *b* _i_ `c` <u> ~s~ \\" << false
                                   << "[x](y) *b* _i_ `c` <u> ~s~ \\";
    QTest::newRow("specials escaped") << "[x](y) *b* _i_ `c` <u> ~s~ \\" << true
                                      << "\\[x\\](y) \\*b\\* \\_i\\_ \\`c\\` \\<u\\> \\~s\\~ \\\\";
    QTest::newRow("backslash before pipe") << "\\|" << true << "\\\\\\|";
    QTest::newRow("line break not escaped") << "a\nb" << true << "a<br>b";
}

void TestMarkdownWriter::cells()
{
    QFETCH(QString, text);
    QFETCH(bool, escape);
    QTEST(markdownCell(text, escape), "expected");
}

void TestMarkdownWriter::write_data()
{
    QTest::addColumn<QString>("table");
    QTest::addColumn<QString>("options");
    QTest::addColumn<QString>("expected");

    QTest::newRow("numbers right-aligned")
        << "Name,Age\nBob,42\nAnnabel,7"
        << ""
        << "| Name    | Age |\n| ------- | --: |\n| Bob     |  42 |\n| Annabel |   7 |\n";
    QTest::newRow("empty header row without the header") << "Name,Age\nBob,x"
                                                         << "header=0"
                                                         << "|     |     |\n| --- | --- |\n| Bob | x   |\n";
    QTest::newRow("widths count characters, up to 40")
        << "a,b\né😀,0123456789012345678901234567890123456789012\nx,y"
        << ""
        << "| a   | b                                        |\n"
           "| --- | ---------------------------------------- |\n"
           "| é😀  | 0123456789012345678901234567890123456789012 |\n"
           "| x   | y                                        |\n";
    QTest::newRow("escaped cells") << "a|b,c\nx\\ny,*z*"
                                   << ""
                                   << "| a\\|b   | c     |\n| ------ | ----- |\n| x<br>y | \\*z\\* |\n";
    QTest::newRow("no rows") << "a,b"
                             << ""
                             << "| a   | b   |\n| --- | --- |\n";
    QTest::newRow("no columns") << ""
                                << ""
                                << "";
    QTest::newRow("CRLF") << "a\n1"
                          << "lines=1"
                          << "|   a |\r\n| --: |\r\n|   1 |\r\n";
}

void TestMarkdownWriter::write()
{
    QFETCH(QString, table);
    QFETCH(QString, options);
    QTEST(writertest::write(writeMarkdown, table, options), "expected");
}

void TestMarkdownWriter::append()
{
    // Rows under the table already there, without header lines; an empty file gets them.
    WriteReport report;
    bool ok = false;
    const Dataset table = writertest::table("a\nx");
    const OutputOptions options = writertest::options("mode=2");
    QCOMPARE(writertest::write(writeMarkdown, table, options, report, ok, "| a |\n| - |\n| w |\n"),
        QByteArray("| a |\n| - |\n| w |\n| x   |\n"));
    QCOMPARE(writertest::write(writeMarkdown, table, options, report, ok, QByteArray()),
        QByteArray("| a   |\n| --- |\n| x   |\n"));
}

QTEST_GUILESS_MAIN(TestMarkdownWriter)
#include "tst_markdownwriter.moc"
