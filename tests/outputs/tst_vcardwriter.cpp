#include "inputs/vcardreader.h"
#include "outputs/vcardwriter.h"
#include "writertest.h"

#include <QtTest>

class TestVCardWriter : public QObject
{
    Q_OBJECT
private slots:
    void fold_data();
    void fold();
    void quotedPrintable_data();
    void quotedPrintable();
    void write_data();
    void write();
    void readBack_data();
    void readBack();
};

void TestVCardWriter::fold_data()
{
    QTest::addColumn<QString>("line");
    QTest::addColumn<QString>("expected");
    const QString a75(75, 'a');
    QTest::newRow("75 bytes stay") << a75 << a75;
    QTest::newRow("76 bytes fold") << a75 + "b" << a75 + "\r\n b";
    QTest::newRow("further lines hold 74 after the blank")
        << QString(75 + 74 + 1, 'a') << a75 + "\r\n " + QString(74, 'a') + "\r\n a";
    QTest::newRow("two-byte character not split") << QString(74, 'a') + "éb" << QString(74, 'a') + "\r\n éb";
    QTest::newRow("four-byte character not split") << QString(73, 'a') + "😀" << QString(73, 'a') + "\r\n 😀";
    QTest::newRow("counted in bytes")
        << QString(38, QChar(0xE9)) << QString(37, QChar(0xE9)) + "\r\n " + QChar(0xE9);
}

void TestVCardWriter::fold()
{
    QFETCH(QString, line);
    QTEST(foldVCardLine(line, "\r\n"), "expected");
}

void TestVCardWriter::quotedPrintable_data()
{
    QTest::addColumn<QString>("prefix");
    QTest::addColumn<QString>("value");
    QTest::addColumn<QString>("expected");
    QTest::newRow("UTF-8 bytes and line breaks") << "NOTE:"
                                                 << "Zoë = 1\r\nnext"
                                                 << "NOTE:Zo=C3=AB =3D 1=0D=0Anext";
    QTest::newRow("blank at the end encoded") << "NOTE:"
                                              << "é "
                                              << "NOTE:=C3=A9=20";
    QTest::newRow("soft line breaks at 76")
        << "NOTE:" << QString(80, 'a') << "NOTE:" + QString(70, 'a') + "=\r\n" + QString(10, 'a');
    QTest::newRow("escape sequences not split") << "NOTE:" << QString(69, 'a') + "é"
                                                << "NOTE:" + QString(69, 'a') + "=\r\n=C3=A9";
}

void TestVCardWriter::quotedPrintable()
{
    QFETCH(QString, prefix);
    QFETCH(QString, value);
    QTEST(quotedPrintableLine(prefix, value, "\r\n"), "expected");
}

void TestVCardWriter::write_data()
{
    QTest::addColumn<QString>("table");
    QTest::addColumn<QString>("options");
    QTest::addColumn<QByteArray>("expected");
    QTest::addColumn<QStringList>("warnings");
    QTest::addColumn<QStringList>("information");

    QTest::newRow("3.0 with gathered properties")
        << "Given name,Family name,Email (home\\,work),Phone (voice),Organization,Department,"
           "Address (home) street,Address (home) locality,Customer id,x-skype\n"
           "John,Doe,j@x.org,123,Acme,Sales; East,Main St 1,Springfield,7,jd"
        << "lines=0"
        << QByteArray(
               "BEGIN:VCARD\r\nVERSION:3.0\r\nN:Doe;John;;;\r\nFN:John "
               "Doe\r\nEMAIL;TYPE=home,work:j@x.org\r\n"
               "TEL;TYPE=voice:123\r\nORG:Acme;Sales;East\r\nADR;TYPE=home:;;Main St 1;Springfield;;;\r\n"
               "X-CUSTOMER-ID:7\r\nX-SKYPE:jd\r\nEND:VCARD\r\n")
        << QStringList() << QStringList {"Column 'Customer id' written as property 'X-CUSTOMER-ID'"};
    QTest::newRow("3.0 escapes, empty name, FN from the organization")
        << "Note,Organization\na\\\\b\\,c;d\\ne,Acme"
        << "lines=2"
        << QByteArray(
               "BEGIN:VCARD\nVERSION:3.0\nN:;;;;\nFN:Acme\nNOTE:a\\\\b\\,c\\;d\\ne\nORG:Acme\nEND:VCARD\n")
        << QStringList() << QStringList();
    QTest::newRow("2.1: bare types, quoted-printable, no FN column")
        << "Version,Family name,Phone (cell\\,work),Note\n2.1,Doe;Jr,+1,Zoë\\nline"
        << "lines=2"
        << QByteArray("BEGIN:VCARD\nVERSION:2.1\nN:Doe\\;Jr;;;;\nTEL;CELL;WORK:+1\n"
                      "NOTE;CHARSET=UTF-8;ENCODING=QUOTED-PRINTABLE:Zo=C3=AB=0Aline\nEND:VCARD\n")
        << QStringList() << QStringList();
    QTest::newRow("4.0 without a name, in another encoding")
        << "Version,Formatted name,Email\n4.0,Zoë,\n 3.0 ,,"
        << "lines=2;encoding=ISO-8859-1"
        << QByteArray("BEGIN:VCARD\nVERSION:4.0\nFN:Zo\xEB\nEND:VCARD\nBEGIN:VCARD\nVERSION:3.0\nN:;;;;\nFN:"
                      "\nEND:VCARD\n")
        << QStringList {"vCard 4.0 must be written in UTF-8; the file is written in ISO-8859-1"}
        << QStringList();
    QTest::newRow("empty values kept, unknown version read as 3.0")
        << "Version,Given name,Email,Address street\n9.9,Ann,,"
        << "lines=2;remove=0"
        << QByteArray("BEGIN:VCARD\nVERSION:3.0\nN:;Ann;;;\nFN:Ann\nEMAIL:\nADR:;;;;;;\nEND:VCARD\n")
        << QStringList() << QStringList();
    QTest::newRow("repeated columns")
        << "Email,Email,Given name,Given name\na,b,c,d"
        << "lines=2"
        << QByteArray(
               "BEGIN:VCARD\nVERSION:3.0\nN:;c;;;\nFN:c\nEMAIL:a\nEMAIL:b\nX-GIVEN-NAME-2:d\nEND:VCARD\n")
        << QStringList() << QStringList {"Column 'Given name 2' written as property 'X-GIVEN-NAME-2'"};
    QTest::newRow("long lines folded") << "Note\n" + QString(80, 'x') << "lines=2"
                                       << "BEGIN:VCARD\nVERSION:3.0\nN:;;;;\nFN:\nNOTE:" + QByteArray(70, 'x')
            + "\n " + QByteArray(10, 'x') + "\nEND:VCARD\n"
                                       << QStringList() << QStringList();
    QTest::newRow("record separator")
        << "Note\nx"
        << "lines=4" << QByteArray("BEGIN:VCARD\nVERSION:3.0\nN:;;;;\nFN:\nNOTE:x\nEND:VCARD\n")
        << QStringList {"Line endings 'Record separator (0x1E)' are not possible in vCard; LF was used"}
        << QStringList();
    QTest::newRow("no rows") << "Note"
                             << "" << QByteArray() << QStringList() << QStringList();
}

void TestVCardWriter::write()
{
    QFETCH(QString, table);
    QFETCH(QString, options);
    WriteReport report;
    bool ok = false;
    QTEST(writertest::write(writeVCard, writertest::table(table), writertest::options(options), report, ok),
        "expected");
    QVERIFY(ok);
    QTEST(report.warnings, "warnings");
    QTEST(report.information, "information");
}

void TestVCardWriter::readBack_data()
{
    QTest::addColumn<QString>("version");
    QTest::newRow("2.1") << "2.1";
    QTest::newRow("3.0") << "3.0";
    QTest::newRow("4.0") << "4.0";
}

// The reader's own columns come back as they were written.
void TestVCardWriter::readBack()
{
    QFETCH(QString, version);
    const QString note = QString("Zoë; \"x\" \\\\ y\\, z\\n") + QString(90, 'w');
    const Dataset table = writertest::table("Version,Formatted name,Family name,Given name,Additional "
                                            "names,Honorific prefixes,Honorific suffixes,"
                                            "Organization,Department,Email (home),Phone "
                                            "(cell\\,work),Address (work) street,Address (work) locality,"
                                            "Note,X-SKYPE\n"
        + version
        + ",Dr. Zoë Doe,Doe,Zoë,A.,Dr.,PhD,Acme,Sales; East,z@x.org,+1 2,Main St 1; back,Springfield," + note
        + ",zd");
    QCOMPARE(table.row(0).size(), 15);
    WriteReport writeReport;
    bool ok = false;
    const QByteArray bytes =
        writertest::write(writeVCard, table, writertest::options("lines=1;types=1"), writeReport, ok);
    QVERIFY(ok);
    Dataset read;
    ReadReport readReport;
    QVERIFY(readVCard(QString::fromUtf8(bytes), InputOptions(), read, readReport));
    QCOMPARE(readReport.warnings, QStringList());
    QStringList expected = table.displayHeaders();
    QStringList readHeaders = read.displayHeaders();
    for (int c = 0; c < table.columnCount(); ++c) {
        const int at = readHeaders.indexOf(expected.at(c));
        QVERIFY2(at >= 0, qPrintable(expected.at(c) + " in " + readHeaders.join(", ")));
        QCOMPARE(read.cell(0, at), table.cell(0, c));
    }
}

QTEST_GUILESS_MAIN(TestVCardWriter)
#include "tst_vcardwriter.moc"
