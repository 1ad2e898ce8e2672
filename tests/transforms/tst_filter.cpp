#include "../flow/testgraph.h"
#include "app/application.h"
#include "core/values.h"
#include "flow/document.h"
#include "flow/graphscene.h"
#include "testutil.h"
#include "transforms/transformfilter.h"

#include <QDir>
#include <QFile>
#include <QLocale>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QtTest>

#include <memory>

namespace {

constexpr int CurrentVersion = 84;

// A filter on node, with its conditions given as document text with "^" between items:
// keep, match all, then position, operator and term for each condition.
std::unique_ptr<TransformFilter> makeFilter(Node *node, const QString &conditions, bool caseSensitive = false)
{
    auto filter = std::make_unique<TransformFilter>();
    filter->createParameters({node}, false);
    filter->parameter(QStringLiteral("Columns"))->fromText(conditions, CurrentVersion);
    filter->parameter(QStringLiteral("Case_Sensitive"))->setValue(caseSensitive);
    return filter;
}

// The first cells of the rows the filter keeps, joined by "|", an empty one as "-".
QString keptValues(const Dataset &dataset)
{
    QStringList values;
    for (int r = 0; r < dataset.rowCount(); ++r)
        values << (dataset.cell(r, 0).isEmpty() ? QStringLiteral("-") : dataset.cell(r, 0));
    return values.join(QLatin1Char('|'));
}

void setData(StubNode *node, const QString &text, bool withHeaders = true)
{
    node->setDataset(testutil::toDataset(text, withHeaders));
    node->assignColumnIds();
}

} // namespace

class TestFilter : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase();
    void operators_data();
    void operators();
    void conditions_data();
    void conditions();
    void columnVariables_data();
    void columnVariables();
    void messages_data();
    void messages();
    void inputCounts_data();
    void inputCounts();
    void outputKeepsColumns();
    void progress();
    void summary_data();
    void summary();
    void flowThroughFiles();
};

void TestFilter::initTestCase()
{
    QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedStates));
    setDateFormats(QStringList());
    clearValueCaches();
}

// One condition on a column of values, keeping the rows that match; the kept values in
// order. Comparisons go by date, then number, then text.
void TestFilter::operators_data()
{
    QTest::addColumn<QString>("values");
    QTest::addColumn<int>("op");
    QTest::addColumn<QString>("term");
    QTest::addColumn<bool>("caseSensitive");
    QTest::addColumn<QString>("kept");

    const QString fruit = QStringLiteral("apple\nBanana\nbandana\ncherry\n");
    QTest::newRow("contains, case folded") << fruit << 0 << "AN" << false << "Banana|bandana";
    QTest::newRow("contains, case sensitive") << fruit << 0 << "Ban" << true << "Banana";
    QTest::newRow("starts with") << fruit << 2 << "b" << false << "Banana|bandana";
    QTest::newRow("ends with") << fruit << 3 << "NA" << false << "Banana|bandana";
    QTest::newRow("doesn't contain") << fruit << 9 << "an" << false << "apple|cherry|-";
    QTest::newRow("doesn't start with, case sensitive")
        << fruit << 11 << "b" << true << "apple|Banana|cherry|-";
    QTest::newRow("doesn't end with") << fruit << 12 << "y" << false << "apple|Banana|bandana|-";
    QTest::newRow("equal as text ignores case") << fruit << 1 << "BANANA" << false << "Banana";
    QTest::newRow("equal as text with case") << fruit << 1 << "BANANA" << true << "";
    QTest::newRow("not equal") << fruit << 10 << "banana" << false << "apple|bandana|cherry|-";

    const QString mixed = QStringLiteral("10\n9\n9a\n100\n\n-2.5");
    QTest::newRow("greater: numbers, then text") << mixed << 4 << "9" << false << "10|9a|100";
    QTest::newRow("less: 10 is below 9a as text") << mixed << 5 << "9a" << false << "10|9|100|-|-2.5";
    QTest::newRow("less: an empty cell compares as text") << mixed << 5 << "5" << false << "-|-2.5";
    QTest::newRow("greater or equal") << mixed << 6 << "10" << false << "10|9a|100";
    QTest::newRow("less or equal") << mixed << 7 << "9" << false << "9|-|-2.5";
    QTest::newRow("equal as numbers")
        << QStringLiteral("1.50\n1.5\n01.5\n1.6") << 1 << "1.5" << false << "1.50|1.5|01.5";
    QTest::newRow("greater as dates, not as text")
        << QStringLiteral("10/1/2023\n9/1/2023\n8/31/2023") << 4 << "9/1/2023" << false << "10/1/2023";

    QTest::newRow("regex is a search") << fruit << 8 << "an+a$" << false << "Banana|bandana";
    QTest::newRow("regex ignores case") << fruit << 8 << "^B" << false << "Banana|bandana";
    QTest::newRow("regex with case") << fruit << 8 << "^B" << true << "Banana";
    QTest::newRow("invalid regex matches nothing") << fruit << 8 << "(" << false << "";
    QTest::newRow("invalid regex: its negation holds")
        << fruit << 13 << "(" << false << "apple|Banana|bandana|cherry|-";

    // 10 characters at 90% allow one edit; "kitten" against "sitting" is 3 edits in 7
    // characters, 58%: inside 50%, outside 60%.
    const QString words = QStringLiteral("abcdefghij\nabcdefghiX\nabcdefghXY\nkitten\nABCDEFGHIJ");
    QTest::newRow("fuzzy 90: one edit in ten is the boundary")
        << words << 14 << "abcdefghij" << true << "abcdefghij|abcdefghiX";
    QTest::newRow("fuzzy 90: case folded")
        << words << 14 << "abcdefghij" << false << "abcdefghij|abcdefghiX|ABCDEFGHIJ";
    QTest::newRow("fuzzy 80: two edits")
        << words << 15 << "abcdefghij" << true << "abcdefghij|abcdefghiX|abcdefghXY";
    QTest::newRow("fuzzy 60: beyond tolerance") << words << 17 << "sitting" << false << "";
    QTest::newRow("fuzzy 50: within tolerance") << words << 18 << "sitting" << false << "kitten";

    QTest::newRow("is empty, no term needed") << fruit << 19 << "" << false << "-";
    QTest::newRow("is not empty") << QStringLiteral("a\n\nb") << 20 << "" << false << "a|b";
    QTest::newRow("unknown operator matches nothing") << fruit << 21 << "a" << false << "";
}

void TestFilter::operators()
{
    QFETCH(QString, values);
    QFETCH(int, op);
    QFETCH(QString, term);
    QFETCH(bool, caseSensitive);
    QFETCH(QString, kept);
    StubNode node;
    setData(&node, values, false);
    const auto filter = makeFilter(
        &node, QStringLiteral("1^1^1^%1^%2").arg(op).arg(Parameter::encodeItem(term)), caseSensitive);
    bool failed = false;
    const Dataset output = filter->process({&node}, failed);
    QCOMPARE(keptValues(output), kept);
    QVERIFY(!failed);
}

// Two columns and several conditions: the flags, "<Any>" (position 0), unusable
// conditions and columns that no longer exist.
void TestFilter::conditions_data()
{
    QTest::addColumn<QString>("conditions");
    QTest::addColumn<QString>("kept"); // the first column of the kept rows

    // name,city
    QTest::newRow("keep, all") << "1^1^1^0^e^2^2^B"
                               << "Eve";
    QTest::newRow("keep, any") << "1^0^1^0^e^2^2^B"
                               << "Cy|Eve";
    QTest::newRow("remove, all: only rows meeting every condition go") << "0^1^1^0^e^2^2^B"
                                                                       << "Ann|Bob|Cy|Dag";
    QTest::newRow("remove, any") << "0^0^1^0^e^2^2^B"
                                 << "Ann|Bob|Dag";
    QTest::newRow("any column") << "1^1^0^1^Bergen"
                                << "Cy|Eve";
    QTest::newRow("any column, doesn't contain: one column lacking it is enough") << "1^1^0^9^Oslo"
                                                                                  << "Ann|Bob|Cy|Dag|Eve";
    QTest::newRow("any column, doesn't contain: not every column need lack it") << "1^1^0^9^o"
                                                                                << "Ann|Cy|Dag|Eve";
    QTest::newRow("empty term is ignored") << "1^1^1^0^^2^1^Bergen"
                                           << "Cy|Eve";
    QTest::newRow("only an empty term: every row") << "1^1^1^0^"
                                                   << "Ann|Bob|Cy|Dag|Eve";
    QTest::newRow("empty term used by is empty") << "1^1^2^19^"
                                                 << "";
    QTest::newRow("column past the end matches nothing") << "1^1^5^10^x"
                                                         << "";
    QTest::newRow("removing on a gone column keeps everything") << "0^1^5^10^x"
                                                                << "Ann|Bob|Cy|Dag|Eve";
    QTest::newRow("gone column in an any-test") << "1^0^5^10^x^1^1^Bob"
                                                << "Bob";
    QTest::newRow("no condition") << "1^1"
                                  << "Ann|Bob|Cy|Dag|Eve";
}

void TestFilter::conditions()
{
    QFETCH(QString, conditions);
    QFETCH(QString, kept);
    StubNode node;
    setData(&node, QStringLiteral("name,city\nAnn,Oslo\nBob,Oslo Sentrum\nCy,Bergen\nDag,Oslo\nEve,Bergen"));
    const auto filter = makeFilter(&node, conditions);
    bool failed = false;
    QCOMPARE(keptValues(filter->process({&node}, failed)), kept);
}

// A term holding "$(" takes the row's cells by header or by column number.
void TestFilter::columnVariables_data()
{
    QTest::addColumn<QString>("conditions");
    QTest::addColumn<QString>("kept");
    QTest::newRow("by header") << "1^1^1^1^$(planned)"
                               << "3|x";
    QTest::newRow("by number") << "1^1^1^4^$(2)"
                               << "5";
    QTest::newRow("inside a longer term") << "1^1^3^1^$(planned)-$(actual)"
                                          << "3";
    QTest::newRow("unknown name stays as written") << "1^1^1^1^$(nothing)"
                                                   << "";
    QTest::newRow("any column against a variable") << "1^1^0^1^$(note)"
                                                   << "3|5|x|1";
}

void TestFilter::columnVariables()
{
    QFETCH(QString, conditions);
    QFETCH(QString, kept);
    StubNode node;
    setData(&node, QStringLiteral("actual,planned,note\n3,3,3-3\n5,4,4\nx,x,\n1,2,0"));
    const auto filter = makeFilter(&node, conditions);
    bool failed = false;
    QCOMPARE(keptValues(filter->process({&node}, failed)), kept);
}

void TestFilter::messages_data()
{
    QTest::addColumn<QString>("data");
    QTest::addColumn<QString>("conditions");
    QTest::addColumn<bool>("disabled");
    QTest::addColumn<QString>("result");
    QTest::addColumn<QStringList>("information");
    QTest::addColumn<int>("rows");

    const QString three = QStringLiteral("v\na\nb\nc");
    QTest::newRow("one row") << three << "0^1^1^1^a" << false << "1 row removed" << QStringList() << 2;
    QTest::newRow("two rows") << three << "1^1^1^1^a" << false << "2 rows removed" << QStringList() << 1;
    QTest::newRow("none removed") << three << "0^1^1^1^z" << false << "No changes" << QStringList() << 3;
    QTest::newRow("no condition") << three << "1^1" << false << "No changes" << QStringList() << 3;
    QTest::newRow("no rows") << "v"
                             << "1^1^1^1^a" << false << "No changes" << QStringList() << 0;
    QTest::newRow("disabled") << three << "1^1^1^1^a" << true << "" << QStringList {"Filtering is disabled"}
                              << 3;
    QString many = QStringLiteral("v");
    for (int i = 0; i < 1500; ++i)
        many += i % 3 ? QStringLiteral("\nkeep") : QStringLiteral("\ndrop");
    QTest::newRow("counts are grouped")
        << many << "0^1^1^1^keep" << false << "1,000 rows removed" << QStringList() << 500;
}

void TestFilter::messages()
{
    QFETCH(QString, data);
    QFETCH(QString, conditions);
    QFETCH(bool, disabled);
    StubNode node;
    setData(&node, data);
    const auto filter = makeFilter(&node, conditions);
    filter->parameter(QStringLiteral("Disable"))->setValue(disabled);
    bool failed = false;
    const Dataset output = filter->process({&node}, failed);
    QTEST(filter->result(), "result");
    QTEST(filter->information(), "information");
    QCOMPARE(filter->warnings(), QStringList());
    QTEST(output.rowCount(), "rows");
    if (disabled)
        QCOMPARE(output, node.dataset());
}

// Without exactly one input there is nothing to filter: an empty table and no result.
void TestFilter::inputCounts_data()
{
    QTest::addColumn<int>("count");
    QTest::newRow("none") << 0;
    QTest::newRow("two") << 2;
}

void TestFilter::inputCounts()
{
    QFETCH(int, count);
    StubNode a;
    StubNode b;
    setData(&a, QStringLiteral("v\n1"));
    setData(&b, QStringLiteral("v\n2"));
    const auto filter = makeFilter(&a, QStringLiteral("1^1^1^1^1"));
    bool failed = false;
    const Dataset output = filter->process(QList<Node *> {&a, &b}.mid(0, count), failed);
    QVERIFY(output.hasNoColumns());
    QVERIFY(output.hasNoRows());
    QCOMPARE(filter->result(), QString());
}

// The rows left keep their headers and column ids, so that options downstream still
// point at their columns; what upstream recorded about rows is not carried along.
void TestFilter::outputKeepsColumns()
{
    StubNode node;
    setData(&node, QStringLiteral("id,name\n1,Ann\n2,Bob\n3,Cy"));
    Dataset marked = node.dataset();
    marked.addCellFail(0, 1, VerifyFailError);
    node.setDataset(marked);
    const auto filter = makeFilter(&node, QStringLiteral("0^1^1^1^1"));
    bool failed = false;
    const Dataset output = filter->process({&node}, failed);
    QCOMPARE(testutil::toText(output, true), QStringLiteral("id,name\n2,Bob\n3,Cy"));
    QCOMPARE(output.columnIds(), node.dataset().columnIds());
    QVERIFY(!output.hasVerifyFails());
    QCOMPARE(testutil::toText(node.dataset(), true), QStringLiteral("id,name\n1,Ann\n2,Bob\n3,Cy"));
}

// Progress at row 0 and every 1000th row after it, as a fraction of the row count.
void TestFilter::progress()
{
    StubNode node;
    QString text = QStringLiteral("v");
    for (int i = 0; i < 2500; ++i)
        text += QStringLiteral("\n%1").arg(i);
    setData(&node, text);
    const auto filter = makeFilter(&node, QStringLiteral("1^1^1^4^100"));
    QSignalSpy spy(filter.get(), &Transform::processed);
    bool failed = false;
    filter->process({&node}, failed);
    QList<qreal> fractions;
    for (const QList<QVariant> &arguments : qAsConst(spy))
        fractions << arguments.at(0).toReal();
    QCOMPARE(fractions, (QList<qreal> {0.0, 0.4, 0.8}));
}

void TestFilter::summary_data()
{
    QTest::addColumn<QString>("conditions");
    QTest::addColumn<QString>("summary");
    QTest::newRow("none") << "1^1"
                          << "No filter terms";
    QTest::newRow("keep one") << "1^1^2^1^Oslo"
                              << "Keep (city equal to 'Oslo')";
    QTest::newRow("remove any") << "0^0^2^1^Cancelled^1^19^"
                                << "Remove (city equal to 'Cancelled') OR (name is empty)";
    QTest::newRow("all, any column, fuzzy")
        << "1^1^0^15^Osl^2^9^x"
        << "Keep (<Any> 80% fuzzy match 'Osl') AND (city doesn't contain 'x')";
    QTest::newRow("gone column") << "1^1^7^0^x"
                                 << "Keep (<None selected> contains 'x')";
    const QString longTerm(300, QLatin1Char('x'));
    QTest::newRow("cut when long") << "1^1^1^0^" + longTerm
                                   << "Keep (name contains '" + longTerm.left(250 - 22) + QChar(0x2026);
}

void TestFilter::summary()
{
    QFETCH(QString, conditions);
    QFETCH(QString, summary);
    StubNode node;
    setData(&node, QStringLiteral("name,city\nAnn,Oslo"));
    const auto filter = makeFilter(&node, conditions);
    QCOMPARE(filter->summary(), summary);
}

// A document read from disk and run as the command line runs it: a CSV file through a
// filter that removes cancelled and returned orders, whatever their case, into a CSV file.
void TestFilter::flowThroughFiles()
{
    QTemporaryDir dir;
    QVERIFY(dir.isValid());
    // Relative file names are found from the working folder, as in a run from a shell.
    QDir::setCurrent(dir.path());
    const auto write = [&](const QString &name, const QByteArray &bytes) {
        QFile file(dir.filePath(name));
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write(bytes);
    };
    write(QStringLiteral("orders.csv"),
        "order,status,amount\n1,Shipped,10\n2,cancelled,20\n3,Returned,30\n4,Pending,40\n5,Shipped,50\n");
    const QChar separator(0x1F);
    const QString conditions =
        QStringList {"0", "0", "2", "1", "Cancelled", "2", "1", "RETURNED"}.join(separator);
    write(QStringLiteral("flow.tflow"),
        QStringLiteral(
            "<?xml version=\"1.0\"?>\n<!DOCTYPE Tabrelle>\n<root>\n"
            "<meta><version value=\"84\"/><locale value=\"en_US\"/></meta>\n"
            "<inputs><input id=\"1\" path=\"orders.csv\" header=\"1\" pos=\"0^0\"/></inputs>\n"
            "<transforms><transform id=\"2\" name=\"Filter\" pos=\"200^0\"><parameters>"
            "<parameter name=\"Columns\" type=\"3\" value=\"%1\"/>"
            "<parameter name=\"Case_Sensitive\" type=\"5\" value=\"0\"/>"
            "<parameter name=\"Disable\" type=\"5\" value=\"0\"/>"
            "</parameters></transform></transforms>\n"
            "<outputs><output id=\"3\" path=\"kept.csv\" enable_output=\"1\" pos=\"400^0\"/></outputs>\n"
            "<connections><connection start_id=\"1\" end_id=\"2\"/>"
            "<connection start_id=\"2\" end_id=\"3\"/></connections>\n</root>\n")
            .arg(conditions)
            .toUtf8());

    GraphScene scene;
    QString reason;
    QString warnings;
    DocumentProperties properties;
    QVERIFY2(Document::openDocument(
                 scene, dir.filePath(QStringLiteral("flow.tflow")), &reason, &warnings, &properties),
        qPrintable(reason));
    scene.setAutoRun(true);
    scene.runIfAuto();
    for (const Node *node : scene.nodes())
        QVERIFY2(node->status() == Node::UpToDate,
            qPrintable(node->statusText(false) + QLatin1Char(' ') + node->warnings().join(QLatin1Char(' '))));

    QFile kept(dir.filePath(QStringLiteral("kept.csv")));
    QVERIFY(kept.open(QIODevice::ReadOnly));
    QByteArray bytes = kept.readAll();
    if (bytes.startsWith("\xef\xbb\xbf"))
        bytes.remove(0, 3);
    QCOMPARE(bytes, QByteArray("order,status,amount\n1,Shipped,10\n4,Pending,40\n5,Shipped,50\n"));
}

// The flow test needs the application's item types and readers; its settings go to a
// folder of the test's own.
int main(int argc, char **argv)
{
    QTemporaryDir home;
    qputenv("XDG_CONFIG_HOME", home.path().toLocal8Bit());
    qputenv("QT_QPA_PLATFORM", "offscreen");
    Application application(argc, argv, true);
    TestFilter test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_filter.moc"
