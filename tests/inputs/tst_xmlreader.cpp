#include "inputs/xmlreader.h"
#include "readertest.h"

#include <QTextCodec>
#include <QtTest>

namespace {

template<typename... Values>
void row(const char *name, Values... values)
{
    (QTest::newRow(name) << ... << values);
}

// The table as lines of cells joined by "|", headers first when it has them.
QString tableText(const Dataset &table)
{
    QStringList lines;
    if (table.hasHeaders())
        lines << table.headers().join(QLatin1Char('|'));
    for (int r = 0; r < table.rowCount(); ++r)
        lines << table.row(r).join(QLatin1Char('|'));
    return lines.join(QLatin1Char('\n'));
}

const QString Wide = QStringLiteral("Wide (more columns)");
const QString Long = QStringLiteral("Long (more rows)");

} // namespace

class TestXmlReader : public QObject
{
    Q_OBJECT
private slots:
    void read_data();
    void read();
    void decode_data();
    void decode();
    void failure_data();
    void failure();
    void mutations_data();
    void mutations();
};

void TestXmlReader::read_data()
{
    QTest::addColumn<QString>("xml");
    QTest::addColumn<QString>("longOrWide");
    QTest::addColumn<QString>("table");
    QTest::addColumn<QString>("records");

    // Which elements are the records
    row("repeated elements with children", "<rows><row><a>1</a><b>x</b></row><row><a>2</a></row></rows>",
        Wide, "a|b\n1|x\n2|", "XML records: 2 'row' elements at /rows/row");
    row("the most frequent path",
        "<d><meta><m k='1'/><m "
        "k='2'/></meta><items><it><v>1</v></it><it><v>2</v></it><it><v>3</v></it></items></d>",
        Wide, "v\n1\n2\n3", "XML records: 3 'it' elements at /d/items/it");
    row("equal counts: the shallower",
        "<d><g><b><y>1</y></b><b><y>2</y></b></g><a><x>1</x></a><a><x>2</x></a></d>", Wide, "x\n1\n2",
        "XML records: 2 'a' elements at /d/a");
    row("equal counts and depth: the first",
        "<d><b><y>1</y></b><b><y>2</y></b><a><x>1</x></a><a><x>2</x></a></d>", Wide, "y\n1\n2",
        "XML records: 2 'b' elements at /d/b");
    row("a list of texts", "<items><item>a</item><item>b</item></items>", Wide, "item\na\nb",
        "XML records: 2 'item' elements at /items/item");
    row("the root when nothing repeats", "<cfg><name>x</name><size n='2'>9</size></cfg>", Wide,
        "name|size.@n|size\nx|2|9", "No repeated elements found; the root element was read as one record");
    row("elements outside records are left out",
        "<d><head><t>title</t></head><rows><r><v>1</v></r><r><v>2</v></r></rows></d>", Wide, "v\n1\n2",
        "XML records: 2 'r' elements at /d/rows/r");
    row("outlines nested in outlines",
        "<opml><body><outline text='a'><outline text='a1'/><outline text='a2'><outline text='a2x'/></outline>"
        "</outline><outline text='b'/></body></opml>",
        Wide, "Level|@text\n1|a\n2|a1\n2|a2\n3|a2x\n1|b",
        "XML records: 5 'outline' elements at /opml/body/outline");
    row("nested records start at the outermost",
        "<o><b><x t='1'><x t='2'/><x t='3'/><x t='4'/></x><x t='5'><n>e</n></x></b></o>", Wide,
        "Level|@t|n\n1|1|\n2|2|\n2|3|\n2|4|\n1|5|e", "XML records: 5 'x' elements at /o/b/x");

    // A record's columns
    row("attributes", "<r><i id='1' n='a'/><i id='2'/></r>", Wide, "@id|@n\n1|a\n2|",
        "XML records: 2 'i' elements at /r/i");
    row("names as written, no namespace declarations",
        "<r xmlns:p='urn:x'><p:i xmlns='urn:d' p:id='1'><p:v>a</p:v></p:i><p:i p:id='2'/></r>", Wide,
        "@p:id|p:v\n1|a\n2|", "XML records: 2 'p:i' elements at /r/p:i");
    row("text of the record element", "<l><e k='1'>one</e><e k='2'>two</e></l>", Wide, "@k|e\n1|one\n2|two",
        "XML records: 2 'e' elements at /l/e");
    row("dotted relative names",
        "<r><p><addr><city t='big'>X</city></addr></p><p><addr><city>Y</city></addr></p></r>", Wide,
        "addr.city.@t|addr.city\nbig|X\n|Y", "XML records: 2 'p' elements at /r/p");
    row("own text and CDATA, without blanks and comments",
        "<r>\n <p>\n  <v><!-- c --><![CDATA[a<b]]> c<?pi x?></v>\n </p>\n <p><v>d</v></p>\n</r>", Wide,
        "v\na<b c\nd", "XML records: 2 'p' elements at /r/p");
    row("entities", "<!DOCTYPE r [<!ENTITY e 'x&amp;y'>]><r><i>&e;</i><i>&lt;&#233;</i></r>", Wide,
        "i\nx&y\n<é", "XML records: 2 'i' elements at /r/i");
    row("declared encoding of decoded text",
        "<?xml version='1.0' encoding='ISO-8859-1'?><r><i>é</i><i>b</i></r>", Wide, "i\né\nb",
        "XML records: 2 'i' elements at /r/i");
    row("byte order mark", QString(QChar(0xFEFF)) + "<r><i>a</i><i>b</i></r>", Wide, "i\na\nb",
        "XML records: 2 'i' elements at /r/i");

    // Repetition inside a record
    row("wide", "<r><p><ph>1</ph><ph>2</ph><ph>3</ph></p><p><ph>4</ph></p></r>", Wide,
        "ph|ph 2|ph 3\n1|2|3\n4||", "XML records: 2 'p' elements at /r/p");
    row("wide groups numbered alike",
        "<r><o><item><sku>a</sku><qty>1</qty></item><item><sku>b</sku><qty>2</qty></item></o><o/></r>", Wide,
        "item.sku|item.qty|item.sku 2|item.qty 2\na|1|b|2\n|||", "XML records: 2 'o' elements at /r/o");
    row("wide group with a missing child",
        "<r><o><item><qty>1</qty></item><item><sku>b</sku><qty>2</qty></item></o><o/></r>", Wide,
        "item.qty|item.sku 2|item.qty 2\n1|b|2\n||", "XML records: 2 'o' elements at /r/o");
    row("long", "<r><p id='x'><ph>1</ph><ph>2</ph></p><p id='y'><ph>3</ph></p></r>", Long,
        "@id|ph\nx|1\nx|2\ny|3", "XML records: 2 'p' elements at /r/p");
    row("long groups",
        "<r><o><n>A</n><item><sku>a</sku></item><item><sku>b</sku><qty>2</qty></item></o><o><n>B</n></o></r>",
        Long, "n|item.sku|item.qty\nA|a|\nA|b|2\nB||", "XML records: 2 'o' elements at /r/o");
}

void TestXmlReader::read()
{
    QFETCH(QString, xml);
    QFETCH(QString, longOrWide);
    QFETCH(QString, table);
    QFETCH(QString, records);

    InputOptions options;
    options.longOrWide = longOrWide;
    Dataset dataset;
    ReadReport report;
    QVERIFY2(readXml(xml, options, dataset, report), qPrintable(report.warnings.join('\n')));
    QCOMPARE(tableText(dataset), table);
    QCOMPARE(report.information, QStringList {records});
    QVERIFY(report.warnings.isEmpty());
}

void TestXmlReader::decode_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QString>("text");
    QTest::addColumn<QStringList>("information");
    QTest::addColumn<QStringList>("warnings");

    const QStringList none;
    row("no declaration", QByteArray("<a>\xc3\xa9</a>"), QString("<a>é</a>"), none, none);
    row("UTF-8 declared", QByteArray("<?xml version='1.0' encoding='utf-8'?><a>\xc3\xa9</a>"),
        QString("<?xml version='1.0' encoding='utf-8'?><a>é</a>"), none, none);
    row("Latin-1 declared", QByteArray("<?xml version=\"1.0\" encoding=\"ISO-8859-1\"?><a>\xe9</a>"),
        QString("<?xml version=\"1.0\" encoding=\"ISO-8859-1\"?><a>é</a>"),
        QStringList {"XML declaration sets the encoding to 'ISO-8859-1'"}, none);
    row("windows-1252 declared", QByteArray("<?xml version='1.0' encoding='windows-1252'?><a>\x80</a>"),
        QString("<?xml version='1.0' encoding='windows-1252'?><a>€</a>"),
        QStringList {"XML declaration sets the encoding to 'windows-1252'"}, none);
    row("byte order mark wins",
        QByteArray("\xef\xbb\xbf<?xml version='1.0' encoding='ISO-8859-1'?><a>\xc3\xa9</a>"),
        QString("<?xml version='1.0' encoding='ISO-8859-1'?><a>é</a>"), none, none);
    row("UTF-16 with byte order mark", QByteArray("\xff\xfe<\0a\0/\0>\0", 10), QString("<a/>"), none, none);
    row("UTF-16 declared in 8-bit text", QByteArray("<?xml version='1.0' encoding='UTF-16'?><a/>"),
        QString("<?xml version='1.0' encoding='UTF-16'?><a/>"), none, none);
    row("unknown encoding", QByteArray("<?xml version='1.0' encoding='x-nonsense'?><a>\xc3\xa9</a>"),
        QString("<?xml version='1.0' encoding='x-nonsense'?><a>é</a>"), none,
        QStringList {"Unknown encoding 'x-nonsense' in the XML declaration; UTF-8 was used"});
}

void TestXmlReader::decode()
{
    QFETCH(QByteArray, bytes);
    QFETCH(QString, text);
    QFETCH(QStringList, information);
    QFETCH(QStringList, warnings);

    ReadReport report;
    QCOMPARE(decodeXmlBytes(bytes, report), text);
    QCOMPARE(report.information, information);
    QCOMPARE(report.warnings, warnings);
}

void TestXmlReader::failure_data()
{
    QTest::addColumn<QString>("xml");
    QTest::addColumn<QString>("warning");

    QString laughs = "<?xml version='1.0'?><!DOCTYPE lolz [<!ENTITY lol0 'lol'>";
    for (int i = 1; i <= 9; ++i)
        laughs += QString("<!ENTITY lol%1 '%2'>").arg(i).arg(QString("&lol%1;").arg(i - 1).repeated(10));
    laughs += "]><lolz>&lol9;</lolz>";
    // Each reference stays below the limit of one entity; together they would make 450
    // million characters.
    const QString manyReferences = "<!DOCTYPE q [<!ENTITY a '" + QString(9000, 'x') + "'>]>\n<q>"
        + QString("&a;").repeated(50000) + "</q>";

    row("empty text", "", "XML error at line 1, column 1: Premature end of document.");
    row("truncated", "<a>\n<b>", "XML error at line 2, column 4: Premature end of document.");
    row("tags not matching", "<a><b></a>",
        "XML error at line 1, column 11: Opening and ending tag mismatch.");
    row("undeclared entity", "<a>&foo;</a>", "XML error at line 1, column 9: Entity 'foo' not declared.");
    row("undeclared prefix", "<p:a/>", "XML error at line 1, column 7: Namespace prefix 'p' not declared");
    row("two roots", "<a/><b/>", "XML error at line 1, column 9: Extra content at end of document.");
    row("binary garbage", QString::fromLatin1("\x01\x02\x03garbage\xff"),
        "XML error at line 1, column 2: Start tag expected.");
    row("entity expanding exponentially", laughs,
        "XML error at line 1, column 753: Entity expands to more characters than the entity expansion "
        "limit.");
    row("many references to a large entity", manyReferences,
        "XML error at line 1, column 9030: Entity expands to more characters than the entity expansion "
        "limit.");
    row("513 levels", QString("<a>").repeated(513),
        "XML nesting is deeper than 512 levels at line 1, column 1540");
    row("100,000 levels", QString("<a>").repeated(100000) + QString("</a>").repeated(100000),
        "XML nesting is deeper than 512 levels at line 1, column 1540");
}

void TestXmlReader::failure()
{
    QFETCH(QString, xml);
    QFETCH(QString, warning);

    Dataset dataset;
    dataset.setColumnCount(1);
    dataset.appendRow({"left over"});
    ReadReport report;
    QVERIFY(!readXml(xml, InputOptions(), dataset, report));
    QCOMPARE(report.warnings.value(0), warning);
    QCOMPARE(report.warnings.size(), 1);
    QCOMPARE(dataset.rowCount(), 0);
    QCOMPARE(dataset.columnCount(), 0);
}

void TestXmlReader::mutations_data()
{
    QTest::addColumn<QString>("sample");

    row("records with attributes and entities",
        QString("<?xml version='1.0'?><!DOCTYPE r [<!ENTITY e 'xy'>]><r xmlns:p='u'><p:i "
                "id='1'><v>&e;</v><v>2</v>"
                "<w><x a='1'>t</x></w></p:i><p:i id='2'><![CDATA[z]]><!-- c --></p:i></r>"));
    row("outlines",
        QString(
            "<opml><body><outline text='a'><outline text='b'/></outline><outline text='c'/></body></opml>"));
}

// Mangled text either reads or fails with its message first and an empty table.
void TestXmlReader::mutations()
{
    QFETCH(QString, sample);

    QRandomGenerator random(7);
    for (int i = 0; i < 500; ++i) {
        const QString text = readertest::mutate(sample, random);
        InputOptions options;
        options.arraysAsRows = i % 2 == 0;
        options.longOrWide =
            i % 3 == 0 ? QStringLiteral("Long (more rows)") : QStringLiteral("Wide (more columns)");
        Dataset dataset;
        ReadReport report;
        const bool ok = readXml(text, options, dataset, report);
        if (!ok) {
            QVERIFY2(report.warnings.value(0).startsWith("XML "), qPrintable(report.warnings.value(0)));
            QVERIFY(dataset.hasNoColumns() && dataset.hasNoRows());
        }
    }
}

QTEST_GUILESS_MAIN(TestXmlReader)
#include "tst_xmlreader.moc"
