#include "core/settings.h"
#include "flow/graphscene.h"
#include "inputs/inputdocument.h"
#include "inputs/inputnode.h"
#include "inputs/readerregistry.h"
#include "inputs/textsource.h"
#include "readertest.h"

#include <QDir>
#include <QFile>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTextCodec>

#include <new>

using readertest::row;

// The read pipeline of an input item, on files in a temporary folder: header guess, meta
// information, empty columns, encodings, messages, bad input and file watching.
class TestInputPipeline : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase();
    void headers_data();
    void headers();
    void metaInformation_data();
    void metaInformation();
    void emptyColumns();
    void schema_data();
    void schema();
    void messages_data();
    void messages();
    void encodings_data();
    void encodings();
    void xmlDeclaredEncoding();
    void badInput_data();
    void badInput();
    void hugeLine();
    void tooBig();
    void readAllLimit();
    void fixedWidthKeepsWidths();
    void options();
    void defaults_data();
    void defaults();
    void watch_data();
    void watch();

private:
    // An input on path in a scene with settings, read once.
    InputNode *readFile(const QString &path, int format = IONode::DelimitedText,
        const std::function<void(InputOptions &)> &change = {});
    QString write(const QString &name, const QByteArray &bytes);

    QTemporaryDir m_dir;
    std::unique_ptr<Settings> m_settings;
    std::unique_ptr<GraphScene> m_scene;
};

void TestInputPipeline::initTestCase()
{
    QVERIFY(m_dir.isValid());
    registerInputReaders();
    m_settings = std::make_unique<Settings>(m_dir.filePath(QStringLiteral("tabrelle.ini")));
}

QString TestInputPipeline::write(const QString &name, const QByteArray &bytes)
{
    const QString path = m_dir.filePath(name);
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly))
        return QString();
    file.write(bytes);
    return path;
}

InputNode *TestInputPipeline::readFile(
    const QString &path, int format, const std::function<void(InputOptions &)> &change)
{
    m_scene = std::make_unique<GraphScene>();
    m_scene->setSettings(m_settings.get());
    auto *node = new InputNode;
    InputOptions options = node->options();
    options.path = path;
    options.fileType = format;
    if (change)
        change(options);
    node->setOptions(options);
    m_scene->addNode(node);
    node->process(false, false);
    return node;
}

void TestInputPipeline::headers_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<int>("option");
    QTest::addColumn<int>("resolved");
    QTest::addColumn<QString>("expected");

    row("words are headers", QByteArray("a,b\nc,d\n"), 2, 1, "a|b\n--\nc|d");
    row("a number makes data", QByteArray("name,2021\nx,y\n"), 2, 0, "name|2021\nx|y");
    row("currency is ignored",
        QByteArray("name,\xe2\x82\xac"
                   "5\nx,y\n"),
        2, 0, QStringLiteral("name|\u20ac5\nx|y"));
    row("a date makes data", QByteArray("name,13/01/2020\nx,y\n"), 2, 0, "name|13/01/2020\nx|y");
    row("one row is never a header", QByteArray("a,b\n"), 2, 0, "a|b");
    row("blank cells don't stop the guess", QByteArray(",b\nc,d\n"), 2, 1, "|b\n--\nc|d");
    row("yes is taken as it is", QByteArray("1,2\n3,4\n"), 1, 1, "1|2\n--\n3|4");
    row("no is taken as it is", QByteArray("a,b\nc,d\n"), 0, 0, "a|b\nc|d");
    row("any other value guesses", QByteArray("a,b\nc,d\n"), 7, 1, "a|b\n--\nc|d");
}

void TestInputPipeline::headers()
{
    QFETCH(QByteArray, bytes);
    QFETCH(int, option);
    QFETCH(int, resolved);
    QFETCH(QString, expected);
    const QString path = write(QStringLiteral("headers.csv"), bytes);
    InputNode *node =
        readFile(path, IONode::DelimitedText, [option](InputOptions &o) { o.hasHeader = option; });
    QCOMPARE(node->status(), int(Node::UpToDate));
    QCOMPARE(readertest::tableText(node->dataset()), expected);
    QCOMPARE(node->options().hasHeader, resolved);
}

void TestInputPipeline::metaInformation_data()
{
    QTest::addColumn<int>("mode");
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("expected");

    // The file has a guessed header; the added row lies below it.
    row("not added", 0, "made", "a|b\n--\n1|2");
    row("at start", 1, "made", "a|b\n--\nmade|\n1|2");
    row("at end", 2, "made", "a|b\n--\n1|2\nmade|");
    row("every row", 3, "made", "a|b|Source\n--\n1|2|made");
    row("variables expanded", 3, "{sales.fname}.{sales.ext} {nothing}",
        "a|b|Source\n--\n1|2|meta.csv {nothing}");
    row("out of range mode adds nothing", 4, "made", "a|b\n--\n1|2");
}

void TestInputPipeline::metaInformation()
{
    QFETCH(int, mode);
    QFETCH(QString, text);
    QFETCH(QString, expected);
    const QString path = write(QStringLiteral("meta.csv"), "a,b\n1,2\n");
    InputNode *node = readFile(path, IONode::DelimitedText, [&](InputOptions &o) {
        o.metaInformation = mode;
        o.metaInformationText = text;
        o.metaInformationColumnName = QStringLiteral("Source");
    });
    node->setAlias(QStringLiteral("sales"));
    node->setStatus(Node::NeedsUpdating, false);
    node->process(false, false);
    QCOMPARE(readertest::tableText(node->dataset()), expected);
}

void TestInputPipeline::emptyColumns()
{
    const QString path = write(QStringLiteral("empty.csv"), "a,,c,\n1,,3,\n");
    InputNode *node = readFile(path, IONode::DelimitedText, [](InputOptions &o) {
        o.ignoreEmptyColumns = true;
        o.hasHeader = 0;
    });
    QCOMPARE(readertest::tableText(node->dataset()), QStringLiteral("a|c\n1|3"));
    QVERIFY(node->information().contains(QStringLiteral("2 empty column(s) ignored")));
    // Column ids are given before the blank ones go, so the kept ones keep theirs.
    QCOMPARE(node->dataset().columnIds().size(), 2);
    QCOMPARE(node->dataset().columnId(1).sequence(), 3);
}

void TestInputPipeline::schema_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QString>("schema"); // "name=missing value;..." then "|missing,reorder,extra"
    QTest::addColumn<int>("status");
    QTest::addColumn<QString>("expected");
    QTest::addColumn<QString>("messages"); // warnings, then "//", then the schema's information

    const QByteArray file("Id,Name,City\n1,Ann,Oslo\n");
    row("every column present", file, "id;name;city|0,0,0", int(Node::UpToDate), "Id|Name|City\n--\n1|Ann|Oslo",
        "//");
    row("names trimmed and without case", file, " ID ;NAME;City |0,0,0", int(Node::UpToDate),
        "Id|Name|City\n--\n1|Ann|Oslo", "//");
    row("missing column added with its value", file, "id;name;city;country=NO|0,0,0", int(Node::UpToDate),
        "Id|Name|City|country\n--\n1|Ann|Oslo|NO", "Column 'country' missing, added//");
    row("missing column is an error", file, "id;country|1,0,0", int(Node::Error), "Id|Name|City\n--\n1|Ann|Oslo",
        "Column 'country' missing//Extra column 'Name'|Extra column 'City'");
    row("schema order, extras after", file, "city;id|0,1,0", int(Node::UpToDate),
        "City|Id|Name\n--\nOslo|1|Ann", "//Extra column 'Name'");
    row("schema order with a missing column in place", file, "city;zip=0000;id|0,1,0", int(Node::UpToDate),
        "City|zip|Id|Name\n--\nOslo|0000|1|Ann", "Column 'zip' missing, added//Extra column 'Name'");
    row("extra columns removed", file, "name|0,0,1", int(Node::UpToDate), "Name\n--\nAnn",
        "//Extra column 'Id' removed|Extra column 'City' removed");
    row("extra columns are an error", file, "name;id|0,0,2", int(Node::Error), "Id|Name|City\n--\n1|Ann|Oslo",
        "Extra column 'City'//");
    row("a table without headers can't be checked", QByteArray("1,2\n3,4\n"), "id|0,0,1", int(Node::UpToDate),
        "1|2\n3|4", "Schema needs a header row//");
}

void TestInputPipeline::schema()
{
    QFETCH(QByteArray, bytes);
    QFETCH(QString, schema);
    QFETCH(int, status);
    QFETCH(QString, expected);
    QFETCH(QString, messages);
    const QString path = write(QStringLiteral("schema.csv"), bytes);
    InputNode *node = readFile(path, IONode::DelimitedText, [](InputOptions &o) { o.usesSchema = true; });
    InputSchemaSettings settings;
    for (const QString &column : schema.section(QLatin1Char('|'), 0, 0).split(QLatin1Char(';'))) {
        settings.columnNames << column.section(QLatin1Char('='), 0, 0);
        settings.missingValues << column.section(QLatin1Char('='), 1);
    }
    const QStringList modes = schema.section(QLatin1Char('|'), 1).split(QLatin1Char(','));
    settings.missingColumns = modes.at(0).toInt();
    settings.reorderColumns = modes.at(1).toInt();
    settings.extraColumns = modes.at(2).toInt();
    InputDocument::setSchemaSettings(*node, settings);
    node->setStatus(Node::NeedsUpdating, false);
    node->process(false, false);
    QCOMPARE(node->status(), status);
    QCOMPARE(readertest::tableText(node->dataset()), expected);
    QStringList schemaInformation;
    for (const QString &line : node->information()) {
        if (line.startsWith(QLatin1String("Extra column")))
            schemaInformation << line;
    }
    QCOMPARE(node->warnings().join(QLatin1Char('|')) + QStringLiteral("//") + schemaInformation.join(QLatin1Char('|')),
        messages);
    // Column ids follow the columns as they end up.
    QCOMPARE(node->dataset().columnIds().size(), node->dataset().columnCount());
}

void TestInputPipeline::messages_data()
{
    QTest::addColumn<QString>("file");
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<int>("format");
    QTest::addColumn<QString>("warnings"); // %1 the native absolute path
    QTest::addColumn<QString>("information");
    QTest::addColumn<int>("status");

    const QString delimited = QStringLiteral(
        "Read file '%1'|Encoding=Automatic guesses 'UTF-8', set 'Encoding' option to change|"
        "Delimiter=Automatic guesses 'Comma (,)', set 'Delimiter' option to change|"
        "First 8 characters contain: 2 Comma (,), 0 Semi-colon (;), 0 Pipe (|), 0 Caret (^), 0 Tab (\\t), "
        "0 Unit separator (0x1F)|Quoting=Automatic guesses 'Quoted', set 'Quoting' option to change");
    row("delimited", "a.csv", QByteArray("a,b\n1,2\n"), int(IONode::DelimitedText), "", delimited,
        int(Node::UpToDate));
    row("format from the extension", "a.csv", QByteArray("a,b\n1,2\n"), int(IONode::NoFileType), "",
        delimited, int(Node::UpToDate));
    row("csv read as fixed width", "b.csv", QByteArray("a,b\n"), int(IONode::FixedWidth),
        "File '%1' extension may not match data type: Fixed width",
        "Read file '%1'|Encoding=Automatic guesses 'UTF-8', set 'Encoding' option to change|"
        "Columns=Automatic guesses 1 columns, set 'Columns' option to 'Manual' to change",
        int(Node::UpToDate));
    row("log read as plain text", "c.log", QByteArray("x\n"), int(IONode::PlainText), "",
        "Read file '%1'|Encoding=Automatic guesses 'UTF-8', set 'Encoding' option to change",
        int(Node::UpToDate));
    row("missing file", "missing.csv", QByteArray(), int(IONode::DelimitedText), "File '%1' not found", "",
        int(Node::Error));
    row("ragged rows", "d.csv", QByteArray("a,b\nc\n"), int(IONode::DelimitedText),
        "Number of values per row vary:\n1 input row has 1 value: E.g. input row 2\n"
        "1 input row has 2 values: E.g. input row 1",
        delimited.section(QLatin1Char('|'), 0, 2)
            + "|First 6 characters contain: 1 Comma (,), 0 Semi-colon (;), 0 Pipe (|), 0 Caret (^), 0 Tab "
              "(\\t), "
              "0 Unit separator (0x1F)|Quoting=Automatic guesses 'Quoted', set 'Quoting' option to change",
        int(Node::UpToDate));
}

void TestInputPipeline::messages()
{
    QFETCH(QString, file);
    QFETCH(QByteArray, bytes);
    QFETCH(int, format);
    QFETCH(QString, warnings);
    QFETCH(QString, information);
    QFETCH(int, status);
    const QString path =
        file.startsWith(QLatin1String("missing")) ? m_dir.filePath(file) : write(file, bytes);
    InputNode *node = readFile(path, format);
    const QString native = QDir::toNativeSeparators(path);
    QCOMPARE(node->warnings().join(QLatin1Char('|')), QString(warnings).replace(QLatin1String("%1"), native));
    QCOMPARE(node->information().join(QLatin1Char('|')),
        QString(information).replace(QLatin1String("%1"), native));
    QCOMPARE(node->status(), status);
}

void TestInputPipeline::encodings_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QString>("encoding");
    QTest::addColumn<QString>("expected");
    QTest::addColumn<QString>("guessed"); // the encoding line, empty when none

    const QString text = QStringLiteral("\u00e9,\u20ac\n");
    const QString cells = QStringLiteral("\u00e9|\u20ac");
    const auto encoded = [&text](const char *codec, bool bom) {
        QTextEncoder encoder(
            QTextCodec::codecForName(codec), bom ? QTextCodec::DefaultConversion : QTextCodec::IgnoreHeader);
        return encoder.fromUnicode(text);
    };
    const QString automatic =
        QStringLiteral("Encoding=Automatic guesses '%1', set 'Encoding' option to change");
    row("UTF-8", text.toUtf8(), "Automatic", cells, automatic.arg("UTF-8"));
    row("UTF-8 with mark", QByteArray("\xef\xbb\xbf") + text.toUtf8(), "Automatic", cells,
        automatic.arg("UTF-8"));
    row("UTF-16LE by its mark", QByteArray("\xff\xfe") + encoded("UTF-16LE", false), "Automatic", cells,
        automatic.arg("UTF-16LE"));
    row("UTF-16BE by its mark", QByteArray("\xfe\xff") + encoded("UTF-16BE", false), "Automatic", cells,
        automatic.arg("UTF-16BE"));
    row("UTF-32LE by its mark", QByteArray("\xff\xfe\0\0", 4) + encoded("UTF-32LE", false), "Automatic",
        cells, automatic.arg("UTF-32LE"));
    row("named Latin-1", QByteArray("\xe9,x\n"), "ISO-8859-1", QStringLiteral("\u00e9|x"), "");
    row("named Windows-1252", QByteArray("\xe9,\x80\n"), "windows-1252", cells, "");
    row("named UTF-16LE without a mark", encoded("UTF-16LE", false), "UTF-16LE", cells, "");
    row("unknown name reads UTF-8", text.toUtf8(), "no-such-codec", cells, "");
}

void TestInputPipeline::encodings()
{
    QFETCH(QByteArray, bytes);
    QFETCH(QString, encoding);
    QFETCH(QString, expected);
    QFETCH(QString, guessed);
    const QString path = write(QStringLiteral("encoded.csv"), bytes);
    InputNode *node = readFile(path, IONode::DelimitedText, [&encoding](InputOptions &o) {
        o.encoding = encoding;
        o.delimiter = 1;
        o.quoting = 1;
    });
    QCOMPARE(node->status(), int(Node::UpToDate));
    QCOMPARE(readertest::tableText(node->dataset()), expected);
    QStringList lines = node->information().filter(QStringLiteral("Encoding="));
    QCOMPARE(lines.join(QLatin1Char('|')), guessed);
    QVERIFY2(node->warnings().isEmpty(), qPrintable(node->warnings().join(QLatin1Char('|'))));
}

void TestInputPipeline::xmlDeclaredEncoding()
{
    // Latin-1 bytes that are not valid UTF-8: only the declaration reads them right.
    const QString path = write(QStringLiteral("latin.xml"),
        QByteArray("<?xml version=\"1.0\" encoding=\"ISO-8859-1\"?>\n"
                   "<r><p><n>Andr\xe9</n></p><p><n>Zo\xeb</n></p></r>\n"));
    InputNode *node = readFile(path, IONode::Xml);
    QCOMPARE(node->status(), int(Node::UpToDate));
    QCOMPARE(readertest::tableText(node->dataset()), QStringLiteral("n\n--\nAndr\u00e9\nZo\u00eb"));
    QVERIFY(node->information().contains(QStringLiteral("XML declaration sets the encoding to 'ISO-8859-1'")));
    QVERIFY2(node->warnings().isEmpty(), qPrintable(node->warnings().join(QLatin1Char('|'))));
}

void TestInputPipeline::badInput_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<int>("format");
    QTest::addColumn<QString>("warning"); // %1 the native path; the starts of warnings there must be, by "|"
    QTest::addColumn<int>("rows");

    QByteArray binary;
    for (int i = 0; i < 4096; ++i)
        binary += char((i * 7 + i / 256) % 256);
    row("binary file", binary, int(IONode::DelimitedText),
        "'%1' holds 16 NUL character(s) and may not be a text file|'%1' holds bytes that are not valid UTF-8",
        -1);
    row("NUL in plain text", QByteArray("a\0b\n", 4), int(IONode::PlainText),
        "'%1' holds 1 NUL character(s) and may not be a text file", 1);
    row("NUL in fixed width", QByteArray("a\0b\n", 4), int(IONode::FixedWidth),
        "'%1' holds 1 NUL character(s) and may not be a text file", 1);
    row("invalid UTF-8", QByteArray("a,\xff\xfe\xc3(\n"), int(IONode::DelimitedText),
        "'%1' holds bytes that are not valid UTF-8; they were read as '\xef\xbf\xbd'", 1);
    row("UTF-8 cut off at the end", QByteArray("a,\xe2\x82"), int(IONode::DelimitedText),
        "'%1' holds bytes that are not valid UTF-8; they were read as '\xef\xbf\xbd'", 1);
    row("0-byte file", QByteArray(), int(IONode::DelimitedText), "", 0);
    row("0-byte fixed width", QByteArray(), int(IONode::FixedWidth), "", 0);
    row("unterminated quote", QByteArray("a,\"b\nc,d\n"), int(IONode::DelimitedText),
        "A quote opened in input row 1 is never closed, so the rest of the text was read as one value", 1);
}

void TestInputPipeline::badInput()
{
    QFETCH(QByteArray, bytes);
    QFETCH(int, format);
    QFETCH(QString, warning);
    QFETCH(int, rows);
    const QString path = write(QStringLiteral("bad.dat"), bytes);
    InputNode *node = readFile(path, format, [](InputOptions &o) { o.hasHeader = 0; });
    // Bad text is read as well as it can be, and never without a word about it.
    QCOMPARE(node->status(), int(Node::UpToDate));
    const QString native = QDir::toNativeSeparators(path);
    const QStringList expected =
        warning.replace(QLatin1String("%1"), native).split(QLatin1Char('|'), Qt::SkipEmptyParts);
    for (const QString &start : expected) {
        const bool found = std::any_of(node->warnings().cbegin(), node->warnings().cend(),
            [&start](const QString &text) { return text.startsWith(start); });
        QVERIFY2(found,
            qPrintable(start + QLatin1String(" in ") + node->warnings().join(QLatin1Char('|')).left(300)));
    }
    QCOMPARE(node->warnings().isEmpty(), expected.isEmpty());
    if (rows >= 0)
        QCOMPARE(node->dataset().rowCount(), rows);
}

void TestInputPipeline::hugeLine()
{
    // 100 MB on one line: one value, read in blocks without holding the file's bytes.
    const QString path = m_dir.filePath(QStringLiteral("huge.txt"));
    {
        QFile file(path);
        QVERIFY(file.open(QIODevice::WriteOnly));
        const QByteArray block(1 << 20, 'x');
        for (int i = 0; i < 100; ++i)
            file.write(block);
    }
    InputNode *node = readFile(path, IONode::DelimitedText, [](InputOptions &o) { o.delimiter = 1; });
    QCOMPARE(node->status(), int(Node::UpToDate));
    QCOMPARE(node->dataset().rowCount(), 1);
    QCOMPARE(node->dataset().cell(0, 0).size(), 100 << 20);
    m_scene.reset();
    QFile::remove(path);
}

void TestInputPipeline::tooBig()
{
    // A reader whose memory runs out fails with the one message, and leaves no table.
    InputNode::setReader(IONode::Xml,
        InputNode::TextReader(
            [](const QString &, const InputOptions &, Dataset &table, ReadReport &) -> bool {
                table.setColumnCount(2);
                table.appendRow({QStringLiteral("partial"), QStringLiteral("row")});
                throw std::bad_alloc();
            }));
    const QString path = write(QStringLiteral("big.xml"), "<a/>");
    InputNode *node = readFile(path, IONode::Xml);
    QCOMPARE(node->status(), int(Node::Error));
    QCOMPARE(node->warnings().value(0),
        QStringLiteral("'%1' is too big for Tabrelle to read").arg(QDir::toNativeSeparators(path)));
    QVERIFY(node->dataset().hasNoColumns());
    QVERIFY(node->dataset().hasNoRows());
    InputNode::setReader(IONode::Xml, InputNode::TextReader());
}

void TestInputPipeline::readAllLimit()
{
    QByteArray bytes(1000, 'a');
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::ReadOnly);
    TextSource source(&buffer, QStringLiteral("Automatic"));
    QString text;
    QVERIFY(!source.readAll(text, 999));
    QVERIFY(text.isEmpty());
    QVERIFY(source.readAll(text, 1000));
    QCOMPARE(text.size(), 1000);
}

void TestInputPipeline::fixedWidthKeepsWidths()
{
    const QString path = write(QStringLiteral("fixed.txt"), "ab  cd\nef  gh\n");
    InputNode *node = readFile(path, IONode::FixedWidth, [](InputOptions &o) { o.hasHeader = 0; });
    QCOMPARE(node->options().columnWidths, QList<int>({4, 2}));
    QCOMPARE(node->sampleLines(), QStringList({QStringLiteral("ab  cd"), QStringLiteral("ef  gh")}));
    QCOMPARE(readertest::tableText(node->dataset()), QStringLiteral("ab  |cd\nef  |gh"));
}

void TestInputPipeline::options()
{
    // The options and the IONode fields are two views of one state.
    InputNode node;
    QCOMPARE(node.delimiter(), 0);
    QCOMPARE(node.encoding(), QStringLiteral("Automatic"));
    QCOMPARE(node.fileType(), int(IONode::NoFileType));
    InputOptions options = node.options();
    options.path = QStringLiteral("x.tsv");
    options.delimiter = 8;
    options.customDelimiter = QLatin1Char('#');
    options.sheet = QStringLiteral("S");
    options.source = InputOptions::Clipboard;
    options.trimWhitespace = true;
    node.setOptions(options);
    QCOMPARE(node.path(), QStringLiteral("x.tsv"));
    QCOMPARE(node.customDelimiter(), QStringLiteral("#"));
    QCOMPARE(node.worksheet(), QStringLiteral("S"));
    QCOMPARE(node.medium(), int(IONode::Clipboard));
    node.setPath(QStringLiteral("y.csv"));
    node.setEncoding(QStringLiteral("UTF-16"));
    QCOMPARE(node.options().path, QStringLiteral("y.csv"));
    QCOMPARE(node.options().encoding, QStringLiteral("UTF-16"));
    QVERIFY(node.options().trimWhitespace);
}

void TestInputPipeline::defaults_data()
{
    QTest::addColumn<QString>("stored");
    QTest::addColumn<QString>("field");
    QTest::addColumn<QString>("expected");

    row("factory delimiter", "", "delimiter", "0");
    row("remembered delimiter", "4", "delimiter", "4");
    row("a wrong number is the factory value", "tab", "delimiter", "0");
    row("factory empty rows", "", "ignore_empty_rows", "1");
    row("remembered bool", "0", "ignore_empty_rows", "0");
    row("factory column name", "", "meta_info_col_name", "Meta Info");
    row("remembered encoding", "ISO-8859-1", "encoding", "ISO-8859-1");
    row("custom delimiter", ";", "custom_delimiter", ";");
    row("factory long or wide", "", "long_or_wide", "Wide (more columns)");
}

void TestInputPipeline::defaults()
{
    QFETCH(QString, stored);
    QFETCH(QString, field);
    QFETCH(QString, expected);
    QTemporaryDir dir;
    Settings settings(dir.filePath(QStringLiteral("defaults.ini")));
    if (!stored.isEmpty())
        settings.setValue(QStringLiteral("defaults/inputs/") + field, stored);
    const InputOptions options = InputNode::defaultOptions(&settings);
    const QHash<QString, QString> values = {
        {QStringLiteral("delimiter"), QString::number(options.delimiter)},
        {QStringLiteral("ignore_empty_rows"), QString::number(options.ignoreEmptyRows)},
        {QStringLiteral("meta_info_col_name"), options.metaInformationColumnName},
        {QStringLiteral("encoding"), options.encoding},
        {QStringLiteral("custom_delimiter"), QString(options.customDelimiter)},
        {QStringLiteral("long_or_wide"), options.longOrWide},
    };
    QCOMPARE(values.value(field), expected);

    // What is remembered reads back the same.
    InputNode::rememberDefaults(options, &settings);
    const InputOptions again = InputNode::defaultOptions(&settings);
    QCOMPARE(again.delimiter, options.delimiter);
    QCOMPARE(again.ignoreEmptyRows, options.ignoreEmptyRows);
    QCOMPARE(again.encoding, options.encoding);
    QCOMPARE(again.customDelimiter, options.customDelimiter);
}

void TestInputPipeline::watch_data()
{
    QTest::addColumn<bool>("remove");
    row("three quick saves read once", false);
    row("deleted while watched", true);
}

void TestInputPipeline::watch()
{
    QFETCH(bool, remove);
    const QString path = write(QStringLiteral("watched.csv"), "a\n1\n");
    InputNode *node = readFile(path, IONode::DelimitedText, [](InputOptions &o) {
        o.watch = true;
        o.hasHeader = 0;
    });
    QVERIFY(node->isWatching());
    QSignalSpy reads(node, &Node::processingStart);
    QElapsedTimer clock;
    clock.start();
    if (remove) {
        QVERIFY(QFile::remove(path));
    } else {
        for (int i = 0; i < 3; ++i) {
            write(QStringLiteral("watched.csv"), QByteArray("a\n").repeated(i + 2));
            QTest::qWait(300);
        }
    }
    const qint64 lastChange = clock.elapsed();
    QTest::qWait(InputNode::ImportDelayMs - 1000);
    QCOMPARE(reads.count(), 0);
    QTRY_COMPARE_WITH_TIMEOUT(reads.count(), 1, 3000);
    QVERIFY(clock.elapsed() - lastChange >= InputNode::ImportDelayMs - 1000);
    if (remove) {
        QCOMPARE(node->status(), int(Node::Error));
        QCOMPARE(node->warnings().value(0),
            QStringLiteral("File '%1' not found").arg(QDir::toNativeSeparators(path)));
        QVERIFY(!node->isWatching());
    } else {
        QCOMPARE(node->status(), int(Node::UpToDate));
        QCOMPARE(node->dataset().rowCount(), 4);
        QVERIFY(node->isWatching());
    }
}

QTEST_MAIN(TestInputPipeline)
#include "tst_inputpipeline.moc"
