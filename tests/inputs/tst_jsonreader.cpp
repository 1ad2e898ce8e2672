#include "inputs/jsonreader.h"
#include "readertest.h"

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

QString nested(int depth)
{
    return QString(depth, QLatin1Char('[')) + QString(depth, QLatin1Char(']'));
}

} // namespace

class TestJsonReader : public QObject
{
    Q_OBJECT
private slots:
    void read_data();
    void read();
    void messages_data();
    void messages();
    void failure_data();
    void failure();
    void mutations_data();
    void mutations();
};

void TestJsonReader::read_data()
{
    QTest::addColumn<QString>("json");
    QTest::addColumn<bool>("arraysAsRows");
    QTest::addColumn<QString>("table");
    QTest::addColumn<QString>("records");

    // Where the records are
    row("top-level array", R"([{"a":1,"b":"x"},{"a":2,"c":true}])", true, "a|b|c\n1|x|\n2||true",
        "JSON records: 2 at '$'");
    row("largest array under the top object", R"({"meta":{"n":[{"x":1}]},"data":[{"a":1},{"a":2}]})", true,
        "a\n1\n2", "JSON records: 2 at '$.data'");
    row("equal size: the shallower", R"({"deep":{"list":[{"a":1},{"a":2}]},"top":[{"b":1},{"b":2}]})", true,
        "b\n1\n2", "JSON records: 2 at '$.top'");
    row("equal size and depth: the first", R"({"one":[{"a":1}],"two":[{"b":2}]})", true, "a\n1",
        "JSON records: 1 at '$.one'");
    row("arrays of scalars are not records", R"({"ids":[1,2,3],"rows":[{"a":1}]})", true, "a\n1",
        "JSON records: 1 at '$.rows'");
    row("arrays inside arrays are not searched", R"({"x":[[{"a":1},{"a":2}]],"y":[{"b":1}]})", true, "b\n1",
        "JSON records: 1 at '$.y'");
    row("eight keys deep is searched", R"({"a":{"b":{"c":{"d":{"e":{"f":{"g":{"h":[{"v":1}]}}}}}}}})", true,
        "v\n1", "JSON records: 1 at '$.a.b.c.d.e.f.g.h'");
    row("nine keys deep is not", R"({"a":{"b":{"c":{"d":{"e":{"f":{"g":{"h":{"i":[{"v":1}]}}}}}}}}})", true,
        "a.b.c.d.e.f.g.h.i.v\n1", "JSON records: 1 at '$'");
    row("key outside letters and digits", R"({"my items":[{"a":1},{"a":2}]})", true, "a\n1\n2",
        "JSON records: 2 at '$[\"my items\"]'");
    row("top object without arrays", R"({"a":1,"b":{"c":2}})", true, "a|b.c\n1|2", "JSON records: 1 at '$'");
    row("top-level scalar", R"("hello")", true, "value\nhello", "JSON records: 1 at '$'");
    row("empty array", "[]", true, "", "JSON records: 0 at '$'");
    row("JSON Lines", "{\"a\":1}\n{\"b\":2}\n", true, "a|b\n1|\n|2", "JSON records: 2 lines");
    row("JSON Lines of scalars", "1 \"two\" null", true, "value\n1\ntwo\n", "JSON records: 3 lines");
    row("comments and trailing commas", "[{\"a\":1,}, // one\n/* two */ {\"a\":2},]", true, "a\n1\n2",
        "JSON records: 2 at '$'");
    row("byte order mark", QString(QChar(0xFEFF)) + "[{\"a\":1}]", true, "a\n1", "JSON records: 1 at '$'");

    // Flattening
    row("dotted names", R"([{"a":{"b":{"c":1}},"d":2}])", true, "a.b.c|d\n1|2", "JSON records: 1 at '$'");
    row("scalar arrays as compact JSON", R"([{"t":["x", "y"],"n":[1, 2.50],"e":[],"m":[[1],[2]]}])", true,
        "t|n|e|m\n[\"x\",\"y\"]|[1,2.50]|[]|[[1],[2]]", "JSON records: 1 at '$'");
    row("compact JSON escapes", R"([{"a":["q\"b\\\n\u0001",{"k":null}]}])", false,
        "a\n[\"q\\\"b\\\\\\n\\u0001\",{\"k\":null}]", "JSON records: 1 at '$'");
    row("object array as rows", R"([{"id":1,"items":[{"sku":"a"},{"sku":"b"}]}])", true,
        "id|items.sku\n1|a\n1|b", "JSON records: 1 at '$'");
    row("object array as JSON", R"([{"id":1,"items":[{"sku":"a"},{"sku":"b"}]}])", false,
        "id|items\n1|[{\"sku\":\"a\"},{\"sku\":\"b\"}]", "JSON records: 1 at '$'");
    row("two arrays side by side", R"([{"id":1,"a":[{"x":1},{"x":2}],"b":[{"y":1},{"y":2},{"y":3}]}])", true,
        "id|a.x|b.y\n1|1|1\n1|2|2\n1||3", "JSON records: 1 at '$'");
    row("scalars beside objects in an array", R"([{"a":[{"x":1},5]}])", true, "a.x|a\n1|\n|5",
        "JSON records: 1 at '$'");
    row("nested arrays as rows", R"([{"o":[{"id":1,"l":[{"q":1},{"q":2}]},{"id":2}]}])", true,
        "o.id|o.l.q\n1|1\n1|2\n2|", "JSON records: 1 at '$'");
    row("array records as rows without headers", R"([[1,"a",{"b":2}],[3]])", true, "1|a|{\"b\":2}\n3||",
        "JSON records: 2 at '$'");
    row("array records as JSON", "[[1,2],[3]]", false, "value\n[1,2]\n[3]", "JSON records: 2 at '$'");
    row("512 levels", "{\"a\":" + nested(511) + "}", true, "a\n" + nested(511), "JSON records: 1 at '$'");
    row("empty object keeps its row", R"([{},{"a":1}])", true, "a\n\n1", "JSON records: 2 at '$'");

    // Values
    row("number texts kept exactly",
        R"([{"a":1.50,"b":1e3,"c":123456789012345678901234567890,"d":-0.0,"e":1E-7}])", true,
        "a|b|c|d|e\n1.50|1e3|123456789012345678901234567890|-0.0|1E-7", "JSON records: 1 at '$'");
    row("NaN and Infinity as texts", R"([{"a":NaN,"b":-Infinity,"c":Infinity}])", true,
        "a|b|c\nNaN|-Infinity|Infinity", "JSON records: 1 at '$'");
    row("booleans and text", R"([{"a":true,"b":false,"c":"é\n\u00e9"}])", true, "a|b|c\ntrue|false|é\né",
        "JSON records: 1 at '$'");
}

void TestJsonReader::read()
{
    QFETCH(QString, json);
    QFETCH(bool, arraysAsRows);
    QFETCH(QString, table);
    QFETCH(QString, records);

    InputOptions options;
    options.arraysAsRows = arraysAsRows;
    Dataset dataset;
    ReadReport report;
    QVERIFY2(readJson(json, options, dataset, report), qPrintable(report.warnings.join('\n')));
    QCOMPARE(tableText(dataset), table);
    QCOMPARE(report.information.value(0), records);
    QVERIFY(report.warnings.isEmpty());
}

void TestJsonReader::messages_data()
{
    QTest::addColumn<QString>("json");
    QTest::addColumn<QString>("table");
    QTest::addColumn<QStringList>("warnings");
    QTest::addColumn<QStringList>("information");

    QString sevenDuplicates = "{";
    for (int i = 0; i < 8; ++i)
        sevenDuplicates += QString(i ? ",\n" : "") + QString("\"k\":%1").arg(i);
    sevenDuplicates += "}";

    row("null values", R"([{"a":null,"b":[null]},null])", "a|b|value\n|[null]|\n||", QStringList(),
        QStringList {"JSON records: 2 at '$'", "2 null value(s) read as empty cells"});
    row("duplicate key: the last value", "[{\"a\":1,\n\"b\":2,\n\"a\":3}]", "a|b\n3|2",
        QStringList {"Key 'a' occurs more than once in an object at line 3; the last value is used"},
        QStringList {"JSON records: 1 at '$'"});
    row("duplicate key in a wide object", R"({"a":1,"b":2,"c":3,"d":4,"e":5,"f":6,"g":7,"h":8,"i":9,"a":10})",
        "a|b|c|d|e|f|g|h|i\n10|2|3|4|5|6|7|8|9",
        QStringList {"Key 'a' occurs more than once in an object at line 1; the last value is used"},
        QStringList {"JSON records: 1 at '$'"});
    row("five duplicates told, then counted", sevenDuplicates, "k\n7",
        QStringList {"Key 'k' occurs more than once in an object at line 2; the last value is used",
            "Key 'k' occurs more than once in an object at line 3; the last value is used",
            "Key 'k' occurs more than once in an object at line 4; the last value is used",
            "Key 'k' occurs more than once in an object at line 5; the last value is used",
            "Key 'k' occurs more than once in an object at line 6; the last value is used", "+ 2 others"},
        QStringList {"JSON records: 1 at '$'"});
}

void TestJsonReader::messages()
{
    QFETCH(QString, json);
    QFETCH(QString, table);
    QFETCH(QStringList, warnings);
    QFETCH(QStringList, information);

    Dataset dataset;
    ReadReport report;
    QVERIFY(readJson(json, InputOptions(), dataset, report));
    QCOMPARE(tableText(dataset), table);
    QCOMPARE(report.warnings, warnings);
    QCOMPARE(report.information, information);
}

void TestJsonReader::failure_data()
{
    QTest::addColumn<QString>("json");
    QTest::addColumn<QString>("warning");

    row("empty text", "", "JSON error at line 1, column 1: The document is empty.");
    row("blanks only", " \n ", "JSON error at line 2, column 2: The document is empty.");
    row("truncated", "[{\"a\":1}",
        "JSON error at line 1, column 9: Missing a comma or ']' after an array element.");
    row("truncated string", "{\"a\":\"abc",
        "JSON error at line 1, column 10: Missing a closing quotation mark in string.");
    row("bad value on line 2", "[1,\n  x]", "JSON error at line 2, column 3: Invalid value.");
    row("columns count characters", "[\"äöü\", x]", "JSON error at line 1, column 9: Invalid value.");
    row("missing colon", "{\"a\" 1}",
        "JSON error at line 1, column 6: Missing a colon after a name of object member.");
    row("binary garbage", QString::fromLatin1("\x01\x02\xff\xfe garbage"),
        "JSON error at line 1, column 1: Invalid value.");
    row("NUL after a value", QString("[1]") + QChar(0) + "[2]",
        "JSON error at line 1, column 4: Invalid value.");
    row("garbage after JSON Lines", "{\"a\":1}\n{\"a\":", "JSON error at line 2, column 6: Invalid value.");
    row("513 levels", "{\"a\":" + nested(512) + "}",
        "JSON nesting is deeper than 512 levels at line 1, column 517");
    row("600 levels", nested(600), "JSON nesting is deeper than 512 levels at line 1, column 513");
    row("100,000 levels", QString("{\"a\":").repeated(100000),
        "JSON nesting is deeper than 512 levels at line 1, column 2561");
}

void TestJsonReader::failure()
{
    QFETCH(QString, json);
    QFETCH(QString, warning);

    Dataset dataset;
    dataset.setColumnCount(1);
    dataset.appendRow({"left over"});
    ReadReport report;
    QVERIFY(!readJson(json, InputOptions(), dataset, report));
    QCOMPARE(report.warnings.value(0), warning);
    QCOMPARE(dataset.rowCount(), 0);
    QCOMPARE(dataset.columnCount(), 0);
}

void TestJsonReader::mutations_data()
{
    QTest::addColumn<QString>("sample");

    row("records under an object",
        QString(
            R"({"data":[{"a":1,"b":{"c":[1,2,{"d":null}]},"e":"x\"y"},{"a":2.50,"f":[{"g":true},{"g":false}]}],"n":{"m":[]}})"));
    row("JSON Lines", QString("{\"a\":1}\n{\"b\":[1,2]}\n[1,[2],{\"c\":3}]\n\"s\" // end\n"));
}

// Mangled text either reads or fails with its message first and an empty table.
void TestJsonReader::mutations()
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
        const bool ok = readJson(text, options, dataset, report);
        if (!ok) {
            QVERIFY2(report.warnings.value(0).startsWith("JSON "), qPrintable(report.warnings.value(0)));
            QVERIFY(dataset.hasNoColumns() && dataset.hasNoRows());
        }
    }
}

QTEST_GUILESS_MAIN(TestJsonReader)
#include "tst_jsonreader.moc"
