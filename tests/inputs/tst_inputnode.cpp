#include "inputs/inputnode.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QtTest>

namespace {

// One row of a data table on one line: row("name", value, value, ...).
template<typename... Values>
void row(const char *name, Values... values)
{
    (QTest::newRow(name) << ... << values);
}

} // namespace

class TestInputNode : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase();
    void guessTextFormat_data();
    void guessTextFormat();
    void extensionMismatch_data();
    void extensionMismatch();
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
    row("xml", "  <a><b>1</b></a>\n", int(IONode::Xml));
    row("json object", "{\"a\": 1}", int(IONode::Json));
    row("json array", "[1, 2]", int(IONode::Json));
    row("bracket mismatch is no json", "[1, 2}", int(IONode::DelimitedText));
    row("vcard", "BEGIN:VCARD\nFN:A\nEND:VCARD", int(IONode::VCard));
    row("vcard is case-sensitive", "begin:vcard\nEND:VCARD", int(IONode::DelimitedText));
    row("short text is delimited", "just some words", int(IONode::DelimitedText));
    row("100 characters is short", QString(100, QLatin1Char('x')), int(IONode::DelimitedText));
    row("long text without delimiters", padding, int(IONode::PlainText));
    // 3 commas in 123 characters is 0.024 of the text, 4 in 124 is 0.032.
    row("below 0.025 delimiters", padding + ",,,", int(IONode::PlainText));
    row("at 0.025 delimiters", padding + ",,,,", int(IONode::DelimitedText));
    row("tabs count as delimiters", padding.left(60) + "\t\t\t\t" + padding.mid(60),
        int(IONode::DelimitedText));
    row("space runs make fixed width",
        QString("name   age   town\nann    31    york\nbob    42    bath\n").repeated(3),
        int(IONode::FixedWidth));
    row("one space run is not enough", padding.left(60) + "   " + padding.mid(60), int(IONode::PlainText));
    row("two space runs are", padding.left(40) + "   " + padding.mid(40, 40) + "   " + padding.mid(80),
        int(IONode::FixedWidth));
    row("delimiters outweigh spaces", QString("a,b,c,d,e,f,g,h,i,j   k\n").repeated(6),
        int(IONode::DelimitedText));
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

    row("csv read as fixed width", "a.csv", int(IONode::FixedWidth),
        "File '%1' extension may not match data type: Fixed width");
    row("log read as plain text", "a.log", int(IONode::PlainText), "");
    row("txt read as delimited", "a.txt", int(IONode::DelimitedText),
        "File '%1' extension may not match data type: Delimited text");
    row("tsv read as delimited", "a.TSV", int(IONode::DelimitedText), "");
    row("unknown extension", "a.dat", int(IONode::Json), "");
    row("no format: the extension decides", "a.json", int(IONode::NoFileType), "");
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

QTEST_MAIN(TestInputNode)
#include "tst_inputnode.moc"
