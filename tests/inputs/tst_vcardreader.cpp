#include "inputs/vcardreader.h"
#include "readertest.h"

#include <QtTest>

namespace {

template<typename... Values>
void row(const char *name, Values... values)
{
    (QTest::newRow(name) << ... << values);
}

// The table as lines of cells joined by "|", headers first; line breaks in cells as "\n".
QString tableText(const Dataset &table)
{
    const auto line = [](QStringList cells) {
        for (QString &cell : cells)
            cell.replace(QLatin1String("\r"), QLatin1String("\\r"))
                .replace(QLatin1String("\n"), QLatin1String("\\n"));
        return cells.join(QLatin1Char('|'));
    };
    QStringList lines;
    if (table.hasHeaders())
        lines << line(table.headers());
    for (int r = 0; r < table.rowCount(); ++r)
        lines << line(table.row(r));
    return lines.join(QLatin1Char('\n'));
}

const QString Wide = QStringLiteral("Wide (more columns)");
const QString Long = QStringLiteral("Long (more rows)");

const char *const Version21 = "BEGIN:VCARD\r\n"
                              "VERSION:2.1\r\n"
                              "N:Gump;Forrest;;Mr.;\r\n"
                              "FN:Forrest Gump\r\n"
                              "ORG:Bubba Gump Shrimp Co.\r\n"
                              "TEL;WORK;VOICE:(111) 555-1212\r\n"
                              "TEL;HOME;VOICE:(404) 555-1212\r\n"
                              "ADR;WORK;PREF:;;100 Waters Edge;Baytown;LA;30314;USA\r\n"
                              "LABEL;WORK;ENCODING=QUOTED-PRINTABLE;CHARSET=UTF-8:100 Waters Edge=0D=0A=\r\n"
                              "Baytown\\, LA 30314=0D=0A=C3=89tats-Unis\r\n"
                              "EMAIL;PREF;INTERNET:forrestgump@example.com\r\n"
                              "END:VCARD\r\n";

const char *const Version30 = "BEGIN:VCARD\n"
                              "VERSION:3.0\n"
                              "N:Doe;John;Q.,Public;Dr.;Jr.\n"
                              "FN:Dr. John Q. Public\\, Jr.\n"
                              "NICKNAME:Johnny,J\\,Q\n"
                              "ORG:Example Inc.;Sales;East\n"
                              "EMAIL;TYPE=INTERNET,WORK,PREF:john@example.com\n"
                              "EMAIL;TYPE=home:j@home.org\n"
                              "item1.ADR;TYPE=HOME:;;1 Main St;Springfield;IL;62701;USA\n"
                              "item1.X-ABLabel:Home\n"
                              "NOTE:Line one\\nLine two\\; three\\\\four\n"
                              "CATEGORIES:friends,work\\,stuff\n"
                              "PHOTO;ENCODING=b;TYPE=JPEG:QUJD\n"
                              "  REVG\n"
                              "x-skype;type=work:jdoe\n"
                              "END:VCARD\n";

const char *const Version40 = "BEGIN:VCARD\n"
                              "VERSION:4.0\n"
                              "FN:Jane Roe\n"
                              "GENDER:F\n"
                              "ANNIVERSARY:20090808\n"
                              "TEL;VALUE=uri;TYPE=\"voice,cell\";PREF=1:tel:+1-555-555-5555\n"
                              "IMPP;PREF=1:xmpp:jane@example.com\n"
                              "URL:https://example.com/jane\n"
                              "UID:urn:uuid:4fbe8971\n"
                              "END:VCARD\n";

} // namespace

class TestVCardReader : public QObject
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

void TestVCardReader::read_data()
{
    QTest::addColumn<QString>("vcf");
    QTest::addColumn<QString>("longOrWide");
    QTest::addColumn<QString>("table");

    row("version 2.1", Version21, Wide,
        "Version|Formatted name|Family name|Given name|Additional names|Honorific prefixes|Honorific "
        "suffixes|"
        "Organization|Email|Phone (voice,work)|Phone (home,voice)|Address (work) PO box|Address (work) "
        "extended|"
        "Address (work) street|Address (work) locality|Address (work) region|Address (work) postal code|"
        "Address (work) country|LABEL (work)\n"
        "2.1|Forrest Gump|Gump|Forrest||Mr.||Bubba Gump Shrimp Co.|forrestgump@example.com|(111) 555-1212|"
        "(404) 555-1212|||100 Waters Edge|Baytown|LA|30314|USA|100 Waters Edge\\r\\nBaytown, LA "
        "30314\\r\\nÉtats-Unis");
    row("version 3.0", Version30, Wide,
        "Version|Formatted name|Family name|Given name|Additional names|Honorific prefixes|Honorific "
        "suffixes|"
        "Nickname|Organization|Department|Email (work)|Email (home)|Address (home) PO box|Address (home) "
        "extended|"
        "Address (home) street|Address (home) locality|Address (home) region|Address (home) postal code|"
        "Address (home) country|Note|Categories|Photo|X-ABLABEL|X-SKYPE (work)\n"
        "3.0|Dr. John Q. Public, Jr.|Doe|John|Q.,Public|Dr.|Jr.|Johnny, J,Q|Example Inc.|Sales; East|"
        "john@example.com|j@home.org|||1 Main St|Springfield|IL|62701|USA|Line one\\nLine two; three\\four|"
        "friends, work,stuff|QUJDREVG|Home|jdoe");
    row("version 4.0", Version40, Wide,
        "Version|Formatted name|Anniversary|Gender|Phone (cell,voice)|URL|IM|UID\n"
        "4.0|Jane "
        "Roe|20090808|F|tel:+1-555-555-5555|https://example.com/"
        "jane|xmpp:jane@example.com|urn:uuid:4fbe8971");
    row("unfolding removes one blank or tab", "BEGIN:VCARD\r\nFN:Jo\r\n hn\r\n\t Doe\r\nEND:VCARD", Wide,
        "Formatted name\nJohn Doe");
    row("names and BEGIN without case", "begin:vcard\nfn:a\nEnd:VCard\n", Wide, "Formatted name\na");
    row("quoted-printable with a character set",
        "BEGIN:VCARD\nVERSION:2.1\nFN;CHARSET=ISO-8859-1;ENCODING=QUOTED-PRINTABLE:Ren=E9\nEND:VCARD", Wide,
        "Version|Formatted name\n2.1|René");
    row("quoted-printable soft line break, bare word",
        "BEGIN:VCARD\nNOTE;QUOTED-PRINTABLE:abc=\n def=3D\nEND:VCARD", Wide, "Note\nabc def=");
    row("quoted parameter values hold ':' and ';'",
        "BEGIN:VCARD\nEMAIL;X-LABEL=\"a:b;c\";TYPE=work:x@y.org\nEND:VCARD", Wide, "Email (work)\nx@y.org");
    row("columns in the order of the table, others as met",
        "BEGIN:VCARD\nX-B:1\nNOTE:n\nEND:VCARD\nBEGIN:VCARD\nX-A:2\nEMAIL:e\nX-B:3\nFN:f\nEND:VCARD", Wide,
        "Formatted name|Email|Note|X-B|X-A\n||n|1|\nf|e||3|2");
    row("wide", "BEGIN:VCARD\nFN:A\nEMAIL;TYPE=work:a@x\nEMAIL;TYPE=work:b@x\nTEL:1\nEND:VCARD", Wide,
        "Formatted name|Email (work)|Email (work) 2|Phone\nA|a@x|b@x|1");
    row("long",
        "BEGIN:VCARD\nFN:A\nEMAIL;TYPE=work:a@x\nEMAIL;TYPE=work:b@x\nTEL:1\nEND:VCARD\nBEGIN:VCARD\nFN:"
        "B\nEND:VCARD",
        Long, "Formatted name|Email (work)|Phone\nA|a@x|1\nA|b@x|1\nB||");
    row("long addresses", "BEGIN:VCARD\nADR:;;s1;l1;;;\nADR:;;s2;;;;\nEND:VCARD", Long,
        "Address PO box|Address extended|Address street|Address locality|Address region|Address postal code|"
        "Address country\n||s1|l1|||\n||s2||||");
}

void TestVCardReader::read()
{
    QFETCH(QString, vcf);
    QFETCH(QString, longOrWide);
    QFETCH(QString, table);

    InputOptions options;
    options.longOrWide = longOrWide;
    Dataset dataset;
    ReadReport report;
    QVERIFY(readVCard(vcf, options, dataset, report));
    QCOMPARE(tableText(dataset), table);
    QCOMPARE(report.warnings, QStringList());
    QCOMPARE(report.information, QStringList());
}

void TestVCardReader::messages_data()
{
    QTest::addColumn<QString>("vcf");
    QTest::addColumn<QString>("table");
    QTest::addColumn<QStringList>("warnings");
    QTest::addColumn<QStringList>("information");

    const QStringList none;
    QString badLines = "BEGIN:VCARD\n";
    for (int i = 0; i < 6; ++i)
        badLines += QString("bad line %1\n").arg(i);
    badLines += "FN:A\nEND:VCARD";

    row("nested card",
        "BEGIN:VCARD\nVERSION:2.1\nFN:Boss\nAGENT:\nBEGIN:VCARD\nFN:Aide\nEND:VCARD\nEND:VCARD",
        "Version|Formatted name|AGENT\n2.1|Boss|", none, QStringList {"1 nested vCard(s) skipped"});
    row("lines outside cards", "junk\nBEGIN:VCARD\nFN:A\nEND:VCARD\n\nmore junk\n", "Formatted name\nA", none,
        QStringList {"2 line(s) outside vCards ignored"});
    row("last card without END", "BEGIN:VCARD\nFN:A\nEND:VCARD\nBEGIN:VCARD\nFN:B\n", "Formatted name\nA\nB",
        QStringList {"The last vCard, from line 4, has no 'END:VCARD' line"}, none);
    row("a line without ':'",
        "BEGIN:VCARD\nFN:A\nthis line has no colon and runs on well past sixty characters before it "
        "ends\nEND:VCARD",
        "Formatted name\nA",
        QStringList {
            "Line 3 is not a vCard property: 'this line has no colon and runs on well past sixty character'"},
        none);
    row("six lines without ':'", badLines, "Formatted name\nA",
        QStringList {"Line 2 is not a vCard property: 'bad line 0'",
            "Line 3 is not a vCard property: 'bad line 1'", "Line 4 is not a vCard property: 'bad line 2'",
            "Line 5 is not a vCard property: 'bad line 3'", "Line 6 is not a vCard property: 'bad line 4'",
            "+ 1 other"},
        none);
    row("unknown version", "BEGIN:VCARD\nVERSION:5.0\nFN:A\nEND:VCARD", "Version|Formatted name\n3.0|A",
        QStringList {"Unknown vCard version '5.0' at line 2; read as 3.0"}, none);
    row("unknown character set",
        "BEGIN:VCARD\nFN;CHARSET=x-bogus;ENCODING=QUOTED-PRINTABLE:=C3=A9\nEND:VCARD", "Formatted name\né",
        QStringList {"Unknown character set 'x-bogus' at line 2; UTF-8 was used"}, none);
    row("invalid quoted-printable", "BEGIN:VCARD\nNOTE;ENCODING=QUOTED-PRINTABLE:a=ZZb=4\nEND:VCARD",
        "Note\na=ZZb=4", QStringList {"Invalid quoted-printable text at line 2"}, none);
}

void TestVCardReader::messages()
{
    QFETCH(QString, vcf);
    QFETCH(QString, table);
    QFETCH(QStringList, warnings);
    QFETCH(QStringList, information);

    Dataset dataset;
    ReadReport report;
    QVERIFY(readVCard(vcf, InputOptions(), dataset, report));
    QCOMPARE(tableText(dataset), table);
    QCOMPARE(report.warnings, warnings);
    QCOMPARE(report.information, information);
}

void TestVCardReader::failure_data()
{
    QTest::addColumn<QString>("vcf");

    row("empty text", QString());
    row("no BEGIN line", QString("FN:A\nEND:VCARD\n"));
    row("BEGIN of something else", QString("BEGIN:VCALENDAR\nEND:VCALENDAR\n"));
    row("binary garbage", QString::fromLatin1("\x01\x02\xff\r\r\n\0garbage", 13));
}

void TestVCardReader::failure()
{
    QFETCH(QString, vcf);

    Dataset dataset;
    dataset.setColumnCount(1);
    dataset.appendRow({"left over"});
    ReadReport report;
    QVERIFY(!readVCard(vcf, InputOptions(), dataset, report));
    QCOMPARE(report.warnings, QStringList {"No vCard found: the text has no 'BEGIN:VCARD' line"});
    QCOMPARE(dataset.rowCount(), 0);
    QCOMPARE(dataset.columnCount(), 0);
}

void TestVCardReader::mutations_data()
{
    QTest::addColumn<QString>("sample");

    row("version 2.1", QString(Version21));
    row("version 3.0", QString(Version30));
    row("version 4.0", QString(Version40));
}

// Mangled text either reads or fails with its message first and an empty table.
void TestVCardReader::mutations()
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
        const bool ok = readVCard(text, options, dataset, report);
        if (!ok) {
            QCOMPARE(report.warnings.value(0), QString("No vCard found: the text has no 'BEGIN:VCARD' line"));
            QVERIFY(dataset.hasNoColumns() && dataset.hasNoRows());
        }
    }
}

QTEST_GUILESS_MAIN(TestVCardReader)
#include "tst_vcardreader.moc"
