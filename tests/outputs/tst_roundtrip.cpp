#include "inputs/inputnode.h"
#include "inputs/readerregistry.h"
#include "outputs/outputnode.h"
#include "outputs/writerregistry.h"

#include <QFile>
#include <QTemporaryDir>
#include <QtTest>

namespace {

// An item that holds whatever dataset a test gives it.
class DataNode : public Node
{
public:
    explicit DataNode(const Dataset &dataset)
    {
        setDataset(dataset);
        setStatus(UpToDate, false);
    }
    QString typeName() const override { return QStringLiteral("Test"); }
    int maxUpstream() const override { return 0; }
    int maxDownstream() const override { return 1; }
    void process(bool, bool) override { }
};

// Headers, then rows: the cells that break files written carelessly.
Dataset awkwardTable()
{
    Dataset table;
    table.setColumnCount(3);
    table.setHeaders({QStringLiteral("id"), QStringLiteral("text, quoted"), QStringLiteral("")});
    const QStringList texts {QStringLiteral("a,b"), QStringLiteral("say \"hi\""), QStringLiteral("\""),
        QStringLiteral("two\nlines"), QStringLiteral("cr\rinside"), QStringLiteral("crlf\r\ninside"),
        QStringLiteral(" leading"), QStringLiteral("trailing "), QStringLiteral("\ttab"), QString(),
        QStringLiteral("007"), QString::fromUtf8("😀 astral"), QString::fromUtf8("éü漢"),
        QStringLiteral("a;b:c|d^e f\x1fg#h")};
    for (int i = 0; i < texts.size(); ++i)
        table.appendRow({QString::number(i), texts.at(i), i % 2 ? QString() : QStringLiteral("x")});
    table.appendRow({QString(), QString(), QString()});
    return table;
}

// Plain values: what fixed width and plain text can carry back.
Dataset plainTable()
{
    Dataset table;
    table.setColumnCount(3);
    table.setHeaders({QStringLiteral("name"), QStringLiteral("code"), QStringLiteral("note")});
    table.appendRow({QStringLiteral("Ana"), QStringLiteral("007"), QStringLiteral("two words")});
    table.appendRow({QString::fromUtf8("Zoë"), QStringLiteral("12"), QString()});
    table.appendRow({QStringLiteral("a,\"b\""), QString(), QString::fromUtf8("漢字")});
    return table;
}

QString describe(const Dataset &table)
{
    QStringList lines {table.headers().join(QLatin1Char('|'))};
    for (int r = 0; r < table.rowCount(); ++r)
        lines << table.row(r).join(QLatin1Char('|'));
    return lines.join(QStringLiteral("\n---\n"));
}

struct RoundTrip
{
    RoundTrip() { scene.addNode(output); }

    // Writes table through an output item with options, then reads the file back through an
    // input item; true when both ended up to date.
    bool run(const Dataset &table, const OutputOptions &options, const InputOptions &reading)
    {
        if (!source) {
            source = new DataNode(table);
            scene.addNode(source);
            scene.connectNodes(source, output);
        }
        source->setDataset(table);
        OutputOptions writing = options;
        writing.path = path;
        output->setOptions(writing);
        output->setStatus(Node::NeedsUpdating, false);
        output->process(false, false);
        InputOptions read = reading;
        read.path = path;
        input.setOptions(read);
        input.setStatus(Node::NeedsUpdating, false);
        input.process(false, false);
        return output->status() == Node::UpToDate && input.status() == Node::UpToDate;
    }
    const Dataset &read() const { return input.dataset(); }

    QTemporaryDir dir;
    QString path = dir.filePath(QStringLiteral("table.out"));
    GraphScene scene;
    DataNode *source = nullptr;
    OutputNode *output = new OutputNode;
    InputNode input;
};

InputOptions readingOptions(int fileType)
{
    InputOptions options;
    options.fileType = fileType;
    options.hasHeader = 1;
    options.ignoreEmptyRows = false;
    return options;
}

} // namespace

class TestRoundTrip : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase();
    void delimited_data();
    void delimited();
    void layouts_data();
    void layouts();
    void append_data();
    void append();
};

void TestRoundTrip::initTestCase()
{
    registerInputReaders();
    registerOutputWriters();
}

void TestRoundTrip::delimited_data()
{
    QTest::addColumn<int>("delimiter");
    QTest::addColumn<int>("quoting");
    QTest::addColumn<int>("lineEndings");
    QTest::addColumn<QString>("encoding");
    QTest::addColumn<bool>("bom");

    // Every delimiter, in both quoting modes that quote what needs it.
    for (int delimiter = 1; delimiter <= 9; ++delimiter) {
        for (int quoting : {OutputOptions::QuotingAutomatic, OutputOptions::Quoted}) {
            QTest::addRow("delimiter %d, quoting %d", delimiter, quoting)
                << delimiter << quoting << int(OutputOptions::Lf) << "UTF-8" << true;
        }
    }
    // The record separator isn't a line end for the reader, so it can't come back as rows.
    for (int endings :
        {OutputOptions::LineEndingsAutomatic, OutputOptions::Crlf, OutputOptions::Lf, OutputOptions::Cr}) {
        QTest::addRow("line endings %d", endings) << 1 << 0 << endings << "UTF-8" << true;
    }
    for (const char *encoding : {"UTF-8", "UTF-16LE", "UTF-16BE", "UTF-32LE", "UTF-32BE"}) {
        QTest::addRow("%s with its mark", encoding) << 1 << 0 << 2 << encoding << true;
        QTest::addRow("%s named", encoding) << 4 << 1 << 1 << encoding << false;
    }
}

void TestRoundTrip::delimited()
{
    QFETCH(int, delimiter);
    QFETCH(int, quoting);
    QFETCH(int, lineEndings);
    QFETCH(QString, encoding);
    QFETCH(bool, bom);
    OutputOptions writing;
    writing.fileType = IONode::DelimitedText;
    writing.delimiter = delimiter;
    writing.customDelimiter = QLatin1Char('#');
    writing.quoting = quoting;
    writing.lineEndings = lineEndings;
    writing.encoding = encoding;
    writing.byteOrderMark = bom;
    InputOptions reading = readingOptions(IONode::DelimitedText);
    reading.delimiter = delimiter;
    reading.customDelimiter = QLatin1Char('#');
    reading.quoting = 1; // "Automatic" reads a tab-separated file unquoted
    reading.encoding = bom ? QStringLiteral("Automatic") : encoding;
    RoundTrip trip;
    const Dataset table = awkwardTable();
    QVERIFY2(trip.run(table, writing, reading), qPrintable(trip.input.warnings().join(QLatin1Char('\n'))));
    QCOMPARE(describe(trip.read()), describe(table));
}

void TestRoundTrip::layouts_data()
{
    QTest::addColumn<int>("fileType");
    QTest::addColumn<int>("lineEndings");

    QTest::newRow("fixed width, LF") << int(IONode::FixedWidth) << int(OutputOptions::Lf);
    QTest::newRow("fixed width, CRLF") << int(IONode::FixedWidth) << int(OutputOptions::Crlf);
    QTest::newRow("plain text, LF") << int(IONode::PlainText) << int(OutputOptions::Lf);
    QTest::newRow("plain text, CR") << int(IONode::PlainText) << int(OutputOptions::Cr);
}

void TestRoundTrip::layouts()
{
    QFETCH(int, fileType);
    QFETCH(int, lineEndings);
    Dataset table = plainTable();
    OutputOptions writing;
    writing.fileType = fileType;
    writing.lineEndings = lineEndings;
    InputOptions reading = readingOptions(fileType);
    if (fileType == IONode::PlainText) {
        // One value a line: the first column alone. A line end after the last line reads as
        // one more, empty, line unless empty rows are ignored.
        while (table.columnCount() > 1)
            table.removeColumn(1);
        reading.ignoreEmptyRows = true;
    } else {
        // Padding blanks come back unless trimmed, which fixed-width reading is for.
        reading.trimWhitespace = true;
    }
    RoundTrip trip;
    QVERIFY2(trip.run(table, writing, reading), qPrintable(trip.input.warnings().join(QLatin1Char('\n'))));
    QCOMPARE(describe(trip.read()), describe(table));
}

void TestRoundTrip::append_data()
{
    QTest::addColumn<int>("mode");
    QTest::addColumn<bool>("ifEmpty");
    QTest::addColumn<QString>("expected"); // rows read back, "|" between cells

    QTest::newRow("append, header if empty") << 2 << true << "1|a\n2|b\n3|c\n4|d";
    QTest::newRow("append, header every time") << 2 << false << "1|a\n2|b\nn|v\n3|c\n4|d";
    QTest::newRow("overwrite") << 1 << true << "3|c\n4|d";
    QTest::newRow("new leaves the first file") << 3 << true << "1|a\n2|b";
}

void TestRoundTrip::append()
{
    QFETCH(int, mode);
    QFETCH(bool, ifEmpty);
    QFETCH(QString, expected);
    const auto table = [](const QString &first, const QString &second) {
        Dataset result;
        result.setColumnCount(2);
        result.setHeaders({QStringLiteral("n"), QStringLiteral("v")});
        result.appendRow(first.split(QLatin1Char('|')));
        result.appendRow(second.split(QLatin1Char('|')));
        return result;
    };
    RoundTrip trip;
    OutputOptions writing;
    writing.fileType = IONode::DelimitedText;
    writing.writeHeaderOnlyIfEmpty = ifEmpty;
    const InputOptions reading = readingOptions(IONode::DelimitedText);
    QVERIFY(trip.run(table(QStringLiteral("1|a"), QStringLiteral("2|b")), writing, reading));
    writing.writeMode = mode;
    trip.run(table(QStringLiteral("3|c"), QStringLiteral("4|d")), writing, reading);
    QCOMPARE(trip.output->status(), mode == OutputOptions::New ? int(Node::Error) : int(Node::UpToDate));
    QStringList rows;
    for (int r = 0; r < trip.read().rowCount(); ++r)
        rows << trip.read().row(r).join(QLatin1Char('|'));
    QCOMPARE(rows.join(QLatin1Char('\n')), expected);
    QCOMPARE(trip.read().headers(), QStringList({QStringLiteral("n"), QStringLiteral("v")}));
}

QTEST_MAIN(TestRoundTrip)
#include "tst_roundtrip.moc"
