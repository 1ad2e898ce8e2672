#include "outputs/jsonwriter.h"
#include "writertest.h"

#include <QtTest>

class TestJsonWriter : public QObject
{
    Q_OBJECT
private slots:
    void write_data();
    void write();
    void encoding();
    void append_data();
    void append();
    void appendToFile();
};

void TestJsonWriter::write_data()
{
    QTest::addColumn<QString>("table");
    QTest::addColumn<QString>("options");
    QTest::addColumn<QString>("expected");
    QTest::addColumn<QStringList>("warnings");
    QTest::addColumn<QStringList>("information");

    QTest::newRow("automatic types keep number texts")
        << "name,age,ok\nBob,42,TRUE\nAnn,1.50, false"
        << ""
        << "[\n    {\n        \"name\": \"Bob\",\n        \"age\": 42,\n        \"ok\": true\n    },\n"
           "    {\n        \"name\": \"Ann\",\n        \"age\": 1.50,\n        \"ok\": false\n    }\n]\n"
        << QStringList()
        << QStringList {"Column 'age' written as numbers, set 'Types' option to change",
               "Column 'ok' written as booleans, set 'Types' option to change"};
    QTest::newRow("automatic leaves leading zeros and plus signs as text")
        << "a,b,c\n007,+1,1e3"
        << ""
        << "[\n    {\n        \"a\": \"007\",\n        \"b\": \"+1\",\n        \"c\": 1e3\n    }\n]\n"
        << QStringList() << QStringList {"Column 'c' written as numbers, set 'Types' option to change"};
    QTest::newRow("all text") << "name,age\nBob,42"
                              << "types=1"
                              << "[\n    {\n        \"name\": \"Bob\",\n        \"age\": \"42\"\n    }\n]\n"
                              << QStringList() << QStringList();
    QTest::newRow("manual cells that don't fit are text")
        << "n,b,j,t\n1x,yes,{bad,5"
        << "types=2;manual=2,3,4"
        << "[\n    {\n        \"n\": \"1x\",\n        \"b\": \"yes\",\n        \"j\": \"{bad\",\n        "
           "\"t\": 5\n    }\n]\n"
        << QStringList {"'1x' in column 'n' at row 1 is not a number and was written as text",
               "'yes' in column 'b' at row 1 is not a boolean and was written as text",
               "'{bad' in column 'j' at row 1 is not a JSON value and was written as text"}
        << QStringList {"Column 't' written as numbers, set 'Types' option to change"};
    QTest::newRow("manual JSON values indented, scalar arrays on one line")
        << "j\n{\"a\":[1\\,\"x\"\\,null]\\,\"b\":{\"c\":[{\"d\":true}]\\,\"e\":[]}\\,\"f\":{}}\n 2.50 "
        << "types=2;manual=4"
        << "[\n    {\n        \"j\": {\n            \"a\": [1, \"x\", null],\n            \"b\": {\n"
           "                \"c\": [\n                    {\n                        \"d\": true\n"
           "                    }\n                ],\n                \"e\": []\n            },\n"
           "            \"f\": {}\n        }\n    },\n    {\n        \"j\": 2.50\n    }\n]\n"
        << QStringList() << QStringList();
    QTest::newRow("five warnings, then a count")
        << "n\na\nb\nc\nd\ne\nf\ng"
        << "types=2;manual=2"
        << "[\n    {\n        \"n\": \"a\"\n    },\n    {\n        \"n\": \"b\"\n    },\n    {\n        "
           "\"n\": \"c\"\n    },\n"
           "    {\n        \"n\": \"d\"\n    },\n    {\n        \"n\": \"e\"\n    },\n    {\n        \"n\": "
           "\"f\"\n    },\n"
           "    {\n        \"n\": \"g\"\n    }\n]\n"
        << QStringList {"'a' in column 'n' at row 1 is not a number and was written as text",
               "'b' in column 'n' at row 2 is not a number and was written as text",
               "'c' in column 'n' at row 3 is not a number and was written as text",
               "'d' in column 'n' at row 4 is not a number and was written as text",
               "'e' in column 'n' at row 5 is not a number and was written as text", "+ 2 others"}
        << QStringList();
    QTest::newRow("remove empty leaves members out")
        << "t,n\n,5\n,\nx,"
        << ""
        << "[\n    {\n        \"n\": 5\n    },\n    {},\n    {\n        \"t\": \"x\"\n    }\n]\n"
        << QStringList() << QStringList {"Column 'n' written as numbers, set 'Types' option to change"};
    QTest::newRow("empty without remove: text empty, others null")
        << "t,n\n,5\n, "
        << "remove=0"
        << "[\n    {\n        \"t\": \"\",\n        \"n\": 5\n    },\n    {\n        \"t\": \"\",\n        "
           "\"n\": null\n    }\n]\n"
        << QStringList() << QStringList {"Column 'n' written as numbers, set 'Types' option to change"};
    QTest::newRow("duplicate names") << "a,a,a 2,a\nw,x,y,z"
                                     << "types=1"
                                     << "[\n    {\n        \"a\": \"w\",\n        \"a 3\": \"x\",\n        "
                                        "\"a 2\": \"y\",\n        \"a 4\": \"z\"\n    }\n]\n"
                                     << QStringList()
                                     << QStringList {
                                            "Column 'a' written as 'a 3'", "Column 'a' written as 'a 4'"};
    QTest::newRow("escapes")
        << "q\\\"b\\\\\nx\\ty\\r\\n\x01\x1f\u2028\u2029é"
        << ""
        << "[\n    {\n        \"q\\\"b\\\\\": \"x\\ty\\r\\n\\u0001\\u001f\\u2028\\u2029é\"\n    }\n]\n"
        << QStringList() << QStringList();
    QTest::newRow("no rows") << "a,b"
                             << ""
                             << "[]\n"
                             << QStringList() << QStringList();
    QTest::newRow("CRLF between lines only") << "a\nx\\ny"
                                             << "lines=1"
                                             << "[\r\n    {\r\n        \"a\": \"x\\ny\"\r\n    }\r\n]\r\n"
                                             << QStringList() << QStringList();
    QTest::newRow("record separator is not possible")
        << "a,b"
        << "lines=4"
        << "[]\n"
        << QStringList {"Line endings 'Record separator (0x1E)' are not possible in JSON; LF was used"}
        << QStringList();
}

void TestJsonWriter::write()
{
    QFETCH(QString, table);
    QFETCH(QString, options);
    QFETCH(QString, expected);
    QStringList warnings;
    QStringList information;
    QCOMPARE(writertest::write(writeJson, table, options, &warnings, &information), expected);
    QTEST(warnings, "warnings");
    QTEST(information, "information");
}

void TestJsonWriter::encoding()
{
    WriteReport report;
    bool ok = false;
    const QByteArray bytes = writertest::write(
        writeJson, writertest::table("a\n€x😀é"), writertest::options("encoding=ISO-8859-1"), report, ok);
    QVERIFY(ok);
    QCOMPARE(bytes, QByteArray("[\n    {\n        \"a\": \"?x?\xE9\"\n    }\n]\n"));
    QCOMPARE(
        report.warnings, QStringList {"2 characters can't be written in ISO-8859-1 and were written as '?'"});
}

void TestJsonWriter::append_data()
{
    QTest::addColumn<QByteArray>("before");
    QTest::addColumn<QString>("table");
    QTest::addColumn<QByteArray>("expected");
    QTest::addColumn<QString>("warning");

    const QByteArray one = "[\n    {\n        \"a\": \"1\"\n    }\n]\n";
    QTest::newRow("after earlier objects")
        << one << "a\n2"
        << QByteArray("[\n    {\n        \"a\": \"1\"\n    },\n    {\n        \"a\": 2\n    }\n]\n") << "";
    QTest::newRow("into an empty array, blanks after kept")
        << QByteArray("[] \n\n") << "a\n2" << QByteArray("[\n    {\n        \"a\": 2\n    }\n] \n\n") << "";
    QTest::newRow("compact file") << QByteArray("[{\"a\":1}]") << "a\n2"
                                  << QByteArray("[{\"a\":1},\n    {\n        \"a\": 2\n    }\n]") << "";
    QTest::newRow("no rows leaves the file") << one << "a" << one << "";
    QTest::newRow("empty file is written whole")
        << QByteArray() << "a\n2" << QByteArray("[\n    {\n        \"a\": 2\n    }\n]\n") << "";
    QTest::newRow("byte order mark only is written whole")
        << QByteArray("\xEF\xBB\xBF") << "a\n2"
        << QByteArray("\xEF\xBB\xBF[\n    {\n        \"a\": 2\n    }\n]\n") << "";
    const QString notArray = "Unable to append to '%1': it does not end with a JSON array";
    QTest::newRow("an object") << QByteArray("{\"a\": [1]}\n") << "a\n2" << QByteArray("{\"a\": [1]}\n")
                               << notArray;
    QTest::newRow("text after the array") << QByteArray("[1] x") << "a\n2" << QByteArray("[1] x") << notArray;
    QTest::newRow("no bracket") << QByteArray("hello world") << "a\n2" << QByteArray("hello world")
                                << notArray;
}

void TestJsonWriter::append()
{
    QFETCH(QByteArray, before);
    QFETCH(QString, table);
    QFETCH(QString, warning);
    OutputOptions options = writertest::options("mode=2;path=/tmp/out.json");
    WriteReport report;
    bool ok = false;
    QTEST(writertest::write(writeJson, writertest::table(table), options, report, ok, before), "expected");
    QCOMPARE(ok, warning.isEmpty());
    if (!warning.isEmpty())
        QCOMPARE(report.warnings.value(0), warning.arg(QDir::toNativeSeparators("/tmp/out.json")));
}

void TestJsonWriter::appendToFile()
{
    // The pipeline opens an appended file for appending; the writer still puts rows before "]".
    QTemporaryDir dir;
    const QString path = dir.filePath("out.json");
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write("[\n    {\n        \"a\": 1\n    }\n]\n");
    file.close();
    QVERIFY(file.open(QIODevice::ReadWrite | QIODevice::Append));
    WriteReport report;
    QVERIFY(writeJson(writertest::table("a\n2"), writertest::options("mode=2"), file, report));
    file.close();
    QVERIFY(file.open(QIODevice::ReadOnly));
    QCOMPARE(file.readAll(),
        QByteArray("[\n    {\n        \"a\": 1\n    },\n    {\n        \"a\": 2\n    }\n]\n"));
}

QTEST_GUILESS_MAIN(TestJsonWriter)
#include "tst_jsonwriter.moc"
