#include "inputs/inputnode.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QtTest>

class TestInputNode : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase();
    void guessTextFormat_data();
    void guessTextFormat();
    void extensionMismatch_data();
    void extensionMismatch();
    void names_data();
    void names();
};

void TestInputNode::initTestCase()
{
    // Every format reads as "done, nothing in it": these tests are about the node.
    for (int type = IONode::DelimitedText; type <= IONode::PlainText; ++type)
        InputNode::setReader(type, [](InputNode &, Dataset &, QStringList &, QStringList &) { return true; });
}

void TestInputNode::guessTextFormat_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("format");

    const QString padding(120, QLatin1Char('x'));
    QTest::newRow("xml") << "  <a><b>1</b></a>\n" << int(IONode::Xml);
    QTest::newRow("json object") << "{\"a\": 1}" << int(IONode::Json);
    QTest::newRow("json array") << "[1, 2]" << int(IONode::Json);
    QTest::newRow("bracket mismatch is no json") << "[1, 2}" << int(IONode::DelimitedText);
    QTest::newRow("vcard") << "BEGIN:VCARD\nFN:A\nEND:VCARD" << int(IONode::VCard);
    QTest::newRow("vcard is case-sensitive") << "begin:vcard\nEND:VCARD" << int(IONode::DelimitedText);
    QTest::newRow("short text is delimited") << "just some words" << int(IONode::DelimitedText);
    QTest::newRow("100 characters is short") << QString(100, QLatin1Char('x')) << int(IONode::DelimitedText);
    QTest::newRow("long text without delimiters") << padding << int(IONode::PlainText);
    // 3 commas in 123 characters is 0.024 of the text, 4 in 124 is 0.032.
    QTest::newRow("below 0.025 delimiters") << padding + ",,," << int(IONode::PlainText);
    QTest::newRow("at 0.025 delimiters") << padding + ",,,," << int(IONode::DelimitedText);
    QTest::newRow("tabs count as delimiters")
        << padding.left(60) + "\t\t\t\t" + padding.mid(60) << int(IONode::DelimitedText);
    QTest::newRow("space runs make fixed width")
        << QString("name   age   town\nann    31    york\nbob    42    bath\n").repeated(3)
        << int(IONode::FixedWidth);
    QTest::newRow("one space run is not enough") << padding + "   " << int(IONode::PlainText);
    QTest::newRow("delimiters outweigh spaces")
        << QString("a,b,c,d,e,f,g,h,i,j   k\n").repeated(6) << int(IONode::DelimitedText);
}

void TestInputNode::guessTextFormat()
{
    QFETCH(QString, text);
    QFETCH(int, format);
    QCOMPARE(InputNode::guessTextFormat(text), format);
}

void TestInputNode::extensionMismatch_data()
{
    QTest::addColumn<QString>("file");
    QTest::addColumn<int>("format");
    QTest::addColumn<QString>("warning"); // %1 the native absolute path

    QTest::newRow("csv read as fixed width")
        << "a.csv" << int(IONode::FixedWidth) << "File '%1' extension may not match data type: Fixed width";
    QTest::newRow("log read as plain text") << "a.log" << int(IONode::PlainText) << "";
    QTest::newRow("txt read as delimited") << "a.txt" << int(IONode::DelimitedText)
                                           << "File '%1' extension may not match data type: Delimited text";
    QTest::newRow("tsv read as delimited") << "a.TSV" << int(IONode::DelimitedText) << "";
    QTest::newRow("unknown extension") << "a.dat" << int(IONode::Json) << "";
    QTest::newRow("no format: the extension decides") << "a.json" << int(IONode::NoFileType) << "";
}

void TestInputNode::extensionMismatch()
{
    QFETCH(QString, file);
    QFETCH(int, format);
    QFETCH(QString, warning);
    QTemporaryDir dir;
    const QString path = dir.filePath(file);
    QFile(path).open(QIODevice::WriteOnly);
    InputNode node;
    node.setPath(path);
    node.setFileType(format);
    node.process(false, false);
    QCOMPARE(node.status(), int(Node::UpToDate));
    const QString expected = warning.isEmpty() ? QString() : warning.arg(QDir::toNativeSeparators(path));
    QCOMPARE(node.warnings().join(QLatin1Char('|')), expected);
}

void TestInputNode::names_data()
{
    QTest::addColumn<int>("medium");
    QTest::addColumn<QString>("path");
    QTest::addColumn<int>("format");
    QTest::addColumn<QString>("sheet");
    QTest::addColumn<QString>("name");

    QTest::newRow("file") << int(IONode::File) << "/data/sales.csv" << int(IONode::DelimitedText) << ""
                          << "sales.csv";
    QTest::newRow("excel sheet") << int(IONode::File) << "/data/book.xlsx" << int(IONode::ExcelXlsx) << "Q1"
                                 << "book.xlsx[Q1]";
    QTest::newRow("sheet of a text file is ignored")
        << int(IONode::File) << "/data/a.csv" << int(IONode::DelimitedText) << "Q1"
        << "a.csv";
    QTest::newRow("no file") << int(IONode::File) << "" << int(IONode::DelimitedText) << ""
                             << "<unset>";
    QTest::newRow("pasted") << int(IONode::Clipboard) << "" << int(IONode::DelimitedText) << ""
                            << "Clipboard";
}

void TestInputNode::names()
{
    QFETCH(int, medium);
    QFETCH(QString, path);
    QFETCH(int, format);
    QFETCH(QString, sheet);
    QFETCH(QString, name);
    InputNode node;
    node.setMedium(medium);
    node.setPath(path);
    node.setFileType(format);
    node.setWorksheet(sheet);
    QCOMPARE(node.name(), name);
}

QTEST_MAIN(TestInputNode)
#include "tst_inputnode.moc"
