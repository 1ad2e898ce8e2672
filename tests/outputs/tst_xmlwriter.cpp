#include "outputs/xmlwriter.h"
#include "writertest.h"

#include <QtTest>

class TestXmlWriter : public QObject
{
    Q_OBJECT
private slots:
    void names_data();
    void names();
    void write_data();
    void write();
    void utf16();
    void append_data();
    void append();
};

void TestXmlWriter::names_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("expected");
    QTest::newRow("valid") << "name"
                           << "name";
    QTest::newRow("blank and symbols") << "a b&c/d"
                                       << "a_b_c_d";
    QTest::newRow("digit first") << "1st"
                                 << "_1st";
    QTest::newRow("hyphen first") << "-a"
                                  << "_-a";
    QTest::newRow("dot first") << ".a"
                               << "_.a";
    QTest::newRow("xml in any case") << "XmlData"
                                     << "_XmlData";
    QTest::newRow("inner digits, hyphens and dots") << "a1-b.c"
                                                    << "a1-b.c";
    QTest::newRow("letters outside ASCII") << "straße_名前"
                                           << "straße_名前";
    QTest::newRow("combining mark first") << "\u0301a"
                                          << "_\u0301a";
    QTest::newRow("character outside the BMP") << "a😀"
                                               << "a😀";
    QTest::newRow("multiplication sign") << "a×b"
                                         << "a_b";
    QTest::newRow("colon kept for namespaces") << "x:a"
                                               << "x:a";
    QTest::newRow("empty") << ""
                           << "";
}

void TestXmlWriter::names()
{
    QFETCH(QString, text);
    QTEST(xmlName(text), "expected");
}

void TestXmlWriter::write_data()
{
    QTest::addColumn<QString>("table");
    QTest::addColumn<QString>("options");
    QTest::addColumn<QString>("expected");
    QTest::addColumn<QStringList>("warnings");
    QTest::addColumn<QStringList>("information");

    const QString declaration = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n";
    QTest::newRow("attribute column, empty element kept") << "@id,name,city\n1,Bob,\n,Ann,Rome"
                                                          << "remove=0"
                                                          << declaration
            + "<root>\n    <record id=\"1\">\n        <name>Bob</name>\n        <city/>\n    </record>\n"
              "    <record id=\"\">\n        <name>Ann</name>\n        <city>Rome</city>\n    "
              "</record>\n</root>\n" << QStringList() << QStringList();
    QTest::newRow("remove empty, a row of nothing") << "@id,name,city\n1,Bob,\n,,\n,,x"
                                                    << ""
                                                    << declaration
            + "<root>\n    <record id=\"1\">\n        <name>Bob</name>\n    </record>\n    <record/>\n"
              "    <record>\n        <city>x</city>\n    </record>\n</root>\n"
                                                    << QStringList() << QStringList();
    QTest::newRow("names made valid, duplicates numbered")
        << "1st,a b,a_b,@,@x y,a b\n1,2,3,4,5,6"
        << ""
        << declaration
            + "<root>\n    <record column_4=\"4\" x_y=\"5\">\n        <_1st>1</_1st>\n        <a_b>2</a_b>\n"
              "        <a_b_2>3</a_b_2>\n        <a_b_3>6</a_b_3>\n    </record>\n</root>\n"
        << QStringList()
        << QStringList {"Column '1st' written as element '_1st'", "Column 'a b' written as element 'a_b'",
               "Column 'a_b' written as element 'a_b_2'", "Column '@' written as attribute 'column_4'",
               "Column '@x y' written as attribute 'x_y'", "Column 'a b' written as element 'a_b_3'"};
    QTest::newRow("escaping in text and attributes") << "@a,b\n&<>\"'\\t\\n\\r,&<>\"'\\t\\n\\r"
                                                     << ""
                                                     << declaration
            + "<root>\n    <record a=\"&amp;&lt;>&quot;'&#9;&#10;&#13;\">\n        "
              "<b>&amp;&lt;&gt;\"'\t\n&#13;</b>\n"
              "    </record>\n</root>\n" << QStringList()
                                                     << QStringList();
    QTest::newRow("characters XML doesn't allow left out")
        << "a\nx\x01y\x1f\uFFFEz"
        << "" << declaration + "<root>\n    <record>\n        <a>xyz</a>\n    </record>\n</root>\n"
        << QStringList {"3 characters not allowed in XML were left out"} << QStringList();
    QTest::newRow("root and row names with attributes, above and below root")
        << "a\n1"
        << "root=data xmlns=\"urn:x\";row=item kind=\"k\";above=<!DOCTYPE data>\n;below=<!-- rows -->\n<!-- "
           "follow -->"
        << declaration
            + "<!DOCTYPE data>\n<data xmlns=\"urn:x\">\n<!-- rows -->\n<!-- follow -->\n"
              "    <item kind=\"k\">\n        <a>1</a>\n    </item>\n</data>\n"
        << QStringList() << QStringList();
    QTest::newRow("invalid root and row names")
        << "a"
        << "root=my/root;row=1row" << declaration + "<my_root>\n</my_root>\n"
        << QStringList {"'my/root' is not a valid XML name; 'my_root' was used",
               "'1row' is not a valid XML name; '_1row' was used"}
        << QStringList();
    QTest::newRow("empty root and row names")
        << "a\n1"
        << "root=;row= " << declaration + "<root>\n    <record>\n        <a>1</a>\n    </record>\n</root>\n"
        << QStringList() << QStringList();
    QTest::newRow("file comment with dashes")
        << "a"
        << "comment= a--b---" << declaration + "<!-- a- -b- - - -->\n<root>\n</root>\n"
        << QStringList() << QStringList();
    QTest::newRow("no columns") << ""
                                << "" << declaration + "<root>\n</root>\n"
                                << QStringList() << QStringList();
    QTest::newRow("declared encoding") << "a"
                                       << "encoding=ISO-8859-1"
                                       << "<?xml version=\"1.0\" encoding=\"ISO-8859-1\"?>\n<root>\n</root>\n"
                                       << QStringList() << QStringList();
    QTest::newRow("CRLF")
        << "a\nx\\ny"
        << "lines=1"
        << "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\r\n<root>\r\n    <record>\r\n        <a>x\ny</a>\r\n"
           "    </record>\r\n</root>\r\n"
        << QStringList() << QStringList();
    QTest::newRow("record separator")
        << "a"
        << "lines=4" << declaration + "<root>\n</root>\n"
        << QStringList {"Line endings 'Record separator (0x1E)' are not possible in XML; LF was used"}
        << QStringList();
}

void TestXmlWriter::write()
{
    QFETCH(QString, table);
    QFETCH(QString, options);
    QFETCH(QString, expected);
    QStringList warnings;
    QStringList information;
    QCOMPARE(writertest::write(writeXml, table, options, &warnings, &information), expected);
    QTEST(warnings, "warnings");
    QTEST(information, "information");
}

void TestXmlWriter::utf16()
{
    // Declared as "UTF-16" whatever the byte order, and without a byte order mark warned about.
    for (const bool mark : {false, true}) {
        OutputOptions options = writertest::options("encoding=UTF-16LE");
        options.byteOrderMark = mark;
        WriteReport report;
        bool ok = false;
        const QByteArray bytes = writertest::write(writeXml, writertest::table("a"), options, report, ok);
        QVERIFY(ok);
        QCOMPARE(QString::fromUtf16(reinterpret_cast<const ushort *>(bytes.constData()), bytes.size() / 2),
            QString("<?xml version=\"1.0\" encoding=\"UTF-16\"?>\n<root>\n</root>\n"));
        QCOMPARE(report.warnings.size(), mark ? 0 : 1);
        if (!mark)
            QCOMPARE(report.warnings.first(),
                "An XML file in UTF-16LE needs a byte order mark; turn on 'Byte Order Mark'");
    }
}

void TestXmlWriter::append_data()
{
    QTest::addColumn<QByteArray>("before");
    QTest::addColumn<QString>("options");
    QTest::addColumn<QByteArray>("expected");
    QTest::addColumn<QString>("warning");

    const QByteArray start = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<root>\n";
    const QByteArray old = start + "    <record>\n        <a>1</a>\n    </record>\n</root>\n";
    const QByteArray added = "    <record>\n        <a>2</a>\n    </record>\n";
    QTest::newRow("before the root end tag")
        << old << "" << start + "    <record>\n        <a>1</a>\n    </record>\n" + added + "</root>\n"
        << "";
    QTest::newRow("into an empty root") << start + "</root>"
                                        << "" << start + added + "</root>"
                                        << "";
    QTest::newRow("root with attributes") << QByteArray("<data a=\"1\">\n</data>\n") << "root=data a=\"1\""
                                          << QByteArray("<data a=\"1\">\n") + added + "</data>\n"
                                          << "";
    QTest::newRow("empty file written whole")
        << QByteArray() << ""
        << QByteArray("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<root>\n") + added + "</root>\n"
        << "";
    QTest::newRow("other root name") << old << "root=data" << old
                                     << "Unable to append to '%1': it does not end with '</data>'";
    QTest::newRow("text after the end tag") << old + "<x/>"
                                            << "" << old + "<x/>"
                                            << "Unable to append to '%1': it does not end with '</root>'";
}

void TestXmlWriter::append()
{
    QFETCH(QByteArray, before);
    QFETCH(QString, options);
    QFETCH(QString, warning);
    WriteReport report;
    bool ok = false;
    QTEST(writertest::write(writeXml, writertest::table("a\n2"),
              writertest::options("mode=2;path=/tmp/out.xml;" + options), report, ok, before),
        "expected");
    QCOMPARE(ok, warning.isEmpty());
    if (!warning.isEmpty())
        QCOMPARE(report.warnings.value(0), warning.arg(QDir::toNativeSeparators("/tmp/out.xml")));
}

QTEST_GUILESS_MAIN(TestXmlWriter)
#include "tst_xmlwriter.moc"
