#include "outputs/yamlwriter.h"
#include "writertest.h"

#include <QProcess>
#include <QtTest>

#include <yaml-cpp/yaml.h>

class TestYamlWriter : public QObject
{
    Q_OBJECT
private slots:
    void looksTyped_data();
    void looksTyped();
    void readBack_data();
    void readBack();
    void readBackByLibyaml();
    void write_data();
    void write();
    void append_data();
    void append();

private:
    static QStringList typedTexts();
    static QStringList tricky();
};

void TestYamlWriter::looksTyped_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<bool>("typed");
    for (const QString &word : typedTexts())
        QTest::newRow(qPrintable(QStringLiteral("typed '%1'").arg(word))) << word << true;
    const char *strings[] = {"abc", "yes please", "Nope", "truee", "1a", "1,000", "v1.2", "2001-12", "0xZZ",
        "-", "+", "1:2:x", "nan", "inf", "12:30 pm", "2001-12-14x", "<", "=="};
    for (const char *text : strings)
        QTest::newRow(qPrintable(QStringLiteral("string '%1'").arg(text))) << QString(text) << false;
}

void TestYamlWriter::looksTyped()
{
    QFETCH(QString, text);
    QTEST(yamlLooksTyped(text), "typed");
}

QStringList TestYamlWriter::typedTexts()
{
    return {"", "~", "null", "Null", "NULL", "y", "Y", "yes", "Yes", "YES", "n", "N", "no", "No", "NO",
        "true", "True", "TRUE", "false", "False", "FALSE", "on", "On", "ON", "off", "Off", "OFF", "<<", "=",
        "1", "-1", "+12", "007", "1_000", "0b1010", "0o17", "0x1F", "0xdead_beef", "1.5", "-1.5e3", "1e3",
        "1.", ".5", ".", "6.8523015e+5", ".inf", "-.Inf", "+.INF", ".nan", ".NaN", "1:20", "190:20:30.15",
        "2001-12-14", "2001-12-14t21:59:43.10-05:00", "2001-12-14 21:59:43.10 -5", "2001-1-5 1:02:03Z"};
}

QStringList TestYamlWriter::tricky()
{
    QStringList texts = {"", " lead", "trail ", "\ttab", "in\ttab", "a\nb", "a\nb\n", "a\n\nb", "\nlead line",
        "a\n\n", " a\nb", "a\n b\n  c", "a\r\nb", "a\rb", "a \nb", "a\n \nb", "x: y", "- a", "-", "--- a",
        "...", "#c", "a #b", "a#b", "@x", "`x", "'q", "\"q", "q'", "%", "!", "!x", "&a", "*a", "?", "? x",
        "{a}", "[", "]", ",", "a,b", ":", "a:", "a: b: c", "|", ">", "| x", "\\", "\\n", "é", "😀", "名前",
        "\u2028", "x\u2029y", "x\u0085y", "\x01", "x\x7fy", "\uFEFFbom", "a\nb\u2028c", "1:20", "0o17",
        "2001-12-14", "yes", "~", "null", "<<", ".inf", "007", "1e3", "plain text", "a\nb\n\n", "a\n",
        "last \n", "a\n\tb"};
    texts << QString(QChar(0xFEFF)) + QStringLiteral("bom");
    return texts;
}

void TestYamlWriter::readBack_data()
{
    QTest::addColumn<QString>("text");
    int i = 0;
    for (const QString &text : tricky())
        QTest::newRow(qPrintable(QStringLiteral("%1 %2").arg(++i).arg(QString(text).replace('\n', "\\n"))))
            << text;
}

// Each text as key and as value, read back by yaml-cpp: the same string, and a plain
// scalar only when no reader would resolve it to another type.
void TestYamlWriter::readBack()
{
    QFETCH(QString, text);
    Dataset table;
    table.setColumnCount(2);
    table.setHeaders({text.isEmpty() ? QStringLiteral("k") : text, QStringLiteral("v")});
    table.appendRow({QStringLiteral("x"), text});
    WriteReport report;
    bool ok = false;
    const QByteArray bytes =
        writertest::write(writeYaml, table, writertest::options("types=1;remove=0"), report, ok);
    QVERIFY(ok);
    YAML::Node root;
    try {
        root = YAML::Load(bytes.toStdString());
    } catch (const YAML::Exception &e) {
        QFAIL(qPrintable(QStringLiteral("%1 in:\n%2").arg(e.what(), QString::fromUtf8(bytes))));
    }
    QVERIFY2(root.IsSequence() && root.size() == 1, bytes.constData());
    const YAML::Node row = root[0];
    QCOMPARE(int(row.size()), 2);
    auto it = row.begin();
    const YAML::Node key = it->first;
    const YAML::Node value = (++it)->second;
    QVERIFY2(value.IsScalar(), bytes.constData());
    // Compared as UTF-8: QString::fromStdString would drop a leading byte order mark.
    QCOMPARE(QByteArray::fromStdString(value.Scalar()), text.toUtf8());
    QVERIFY2(value.Tag() == "!" || !yamlLooksTyped(text), bytes.constData());
    if (!text.isEmpty())
        QCOMPARE(QByteArray::fromStdString(key.Scalar()), text.toUtf8());
}

// The same texts read back by libyaml's parser under YAML 1.1 rules, through Python.
void TestYamlWriter::readBackByLibyaml()
{
    QProcess check;
    check.start(QStringLiteral("/usr/bin/python3"), {QStringLiteral("-c"), QStringLiteral("import yaml")});
    if (!check.waitForFinished(10000) || check.exitCode() != 0)
        QSKIP("Python's yaml module isn't installed");
    const QStringList texts = tricky() + typedTexts();
    Dataset table;
    table.setColumnCount(texts.size());
    QStringList headers;
    for (int i = 0; i < texts.size(); ++i)
        headers << QStringLiteral("c%1").arg(i);
    table.setHeaders(headers);
    table.appendRow(texts);
    WriteReport report;
    bool ok = false;
    const QByteArray bytes =
        writertest::write(writeYaml, table, writertest::options("types=1;remove=0"), report, ok);
    QProcess python;
    python.start(QStringLiteral("/usr/bin/python3"),
        {QStringLiteral("-c"),
            QStringLiteral("import json, sys, yaml\n"
                           "loader = getattr(yaml, 'CSafeLoader', yaml.SafeLoader)\n"
                           "data = yaml.load(sys.stdin.buffer.read().decode('utf-8'), Loader=loader)\n"
                           "sys.stdout.write(json.dumps(data))")});
    python.write(bytes);
    python.closeWriteChannel();
    QVERIFY(python.waitForFinished(20000));
    QVERIFY2(python.exitCode() == 0, python.readAllStandardError().constData());
    const QJsonArray rows = QJsonDocument::fromJson(python.readAllStandardOutput()).array();
    QCOMPARE(rows.size(), 1);
    const QJsonObject row = rows.first().toObject();
    for (int i = 0; i < texts.size(); ++i) {
        const QJsonValue value = row.value(headers.at(i));
        QVERIFY2(value.isString(), qPrintable(texts.at(i)));
        QCOMPARE(value.toString(), texts.at(i));
    }
}

void TestYamlWriter::write_data()
{
    QTest::addColumn<QString>("table");
    QTest::addColumn<QString>("options");
    QTest::addColumn<QString>("expected");
    QTest::addColumn<QStringList>("warnings");
    QTest::addColumn<QStringList>("information");

    QTest::newRow("types, quoting and a literal block")
        << "name,age,code,note,ok\nBob,42,007,first line\\nsecond line,true"
        << "comment= File created here "
        << "# File created here\n- name: Bob\n  age: 42\n  code: \"007\"\n  note: |-\n    first line\n    "
           "second line\n"
           "  ok: true\n"
        << QStringList()
        << QStringList {"Column 'age' written as numbers, set 'Types' option to change",
               "Column 'ok' written as booleans, set 'Types' option to change"};
    QTest::newRow("implicit types quoted as text")
        << "a,b,c,d,e\n1,true,2020-01-01,null,~"
        << "types=1"
        << "- a: \"1\"\n  b: \"true\"\n  c: \"2020-01-01\"\n  d: \"null\"\n  e: \"~\"\n"
        << QStringList() << QStringList();
    QTest::newRow("empty cells removed, a row of nothing")
        << "t,m\n,5\n,\nx,"
        << ""
        << "- m: 5\n- {}\n- t: x\n"
        << QStringList() << QStringList {"Column 'm' written as numbers, set 'Types' option to change"};
    QTest::newRow("empty cells kept: text quoted, others null")
        << "t,m\n,5\n,"
        << "remove=0"
        << "- t: \"\"\n  m: 5\n- t: \"\"\n  m: null\n"
        << QStringList() << QStringList {"Column 'm' written as numbers, set 'Types' option to change"};
    QTest::newRow("JSON cells as block structures, cells that don't fit as text")
        << "j,m\n{\"a\":[1\\,\"yes\"\\,[]]\\,\"b\":{}},x"
        << "types=2;manual=4,2"
        << "- j:\n    a:\n      - 1\n      - \"yes\"\n      - []\n    b: {}\n  m: x\n"
        << QStringList {"'x' in column 'm' at row 1 is not a number and was written as text"}
        << QStringList();
    QTest::newRow("y and n are booleans to YAML 1.1") << "y,n\nn,y"
                                                      << ""
                                                      << "- \"y\": \"n\"\n  \"n\": \"y\"\n"
                                                      << QStringList() << QStringList();
    QTest::newRow("duplicate names") << "a,a\n1,2"
                                     << "types=1"
                                     << "- a: \"1\"\n  a 2: \"2\"\n"
                                     << QStringList() << QStringList {"Column 'a' written as 'a 2'"};
    QTest::newRow("no rows") << "a"
                             << "comment=x\ny"
                             << "#x\n#y\n[]\n"
                             << QStringList() << QStringList();
    QTest::newRow("literal blocks keep their ending, others are double-quoted")
        << "a,b,c,d\nx\\ny\\n,x\\n\\n,x\\r\\ny, x\\ny"
        << "types=1"
        << "- a: |\n    x\n    y\n  b: \"x\\n\\n\"\n  c: \"x\\r\\ny\"\n  d: \" x\\ny\"\n"
        << QStringList() << QStringList();
    QTest::newRow("CRLF") << "a\nx\\ny"
                          << "lines=1"
                          << "- a: |-\r\n    x\r\n    y\r\n"
                          << QStringList() << QStringList();
    QTest::newRow("record separator")
        << "a"
        << "lines=4"
        << "[]\n"
        << QStringList {"Line endings 'Record separator (0x1E)' are not possible in YAML; LF was used"}
        << QStringList();
}

void TestYamlWriter::write()
{
    QFETCH(QString, table);
    QFETCH(QString, options);
    QFETCH(QString, expected);
    QStringList warnings;
    QStringList information;
    QCOMPARE(writertest::write(writeYaml, table, options, &warnings, &information), expected);
    QTEST(warnings, "warnings");
    QTEST(information, "information");
}

void TestYamlWriter::append_data()
{
    QTest::addColumn<QByteArray>("before");
    QTest::addColumn<QString>("table");
    QTest::addColumn<QByteArray>("expected");

    QTest::newRow("after earlier rows, no comment")
        << QByteArray("# old\n- a: x\n") << "a\nb" << QByteArray("# old\n- a: x\n- a: b\n");
    QTest::newRow("empty list replaced")
        << QByteArray("# old\n[]\n") << "a\nb" << QByteArray("# old\n- a: b\n");
    QTest::newRow("empty list alone replaced") << QByteArray("[]") << "a\nb" << QByteArray("- a: b\n");
    QTest::newRow("inline list isn't an empty list")
        << QByteArray("k: []\n") << "a\nb" << QByteArray("k: []\n- a: b\n");
    QTest::newRow("no rows leaves the file") << QByteArray("[]\n") << "a" << QByteArray("[]\n");
    QTest::newRow("empty file gets the comment") << QByteArray() << "a\nb" << QByteArray("# new\n- a: b\n");
}

void TestYamlWriter::append()
{
    QFETCH(QByteArray, before);
    QFETCH(QString, table);
    WriteReport report;
    bool ok = false;
    QTEST(writertest::write(writeYaml, writertest::table(table), writertest::options("mode=2;comment= new"),
              report, ok, before),
        "expected");
    QVERIFY(ok);
}

QTEST_GUILESS_MAIN(TestYamlWriter)
#include "tst_yamlwriter.moc"
