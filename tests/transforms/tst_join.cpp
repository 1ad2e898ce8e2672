#include "../flow/testgraph.h"
#include "app/application.h"
#include "core/values.h"
#include "flow/document.h"
#include "flow/graphscene.h"
#include "testutil.h"
#include "transforms/transformjoin.h"
#include "transforms/transformnode.h"

#include <QDir>
#include <QFile>
#include <QLocale>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QtTest>

#include <memory>

namespace {

constexpr int CurrentVersion = 84;

void setData(StubNode *node, const QString &text, bool withHeaders = true)
{
    node->setDataset(testutil::toDataset(text, withHeaders));
    node->assignColumnIds();
}

// A join of top and bottom with its options given as "Name=text|Name=text" in document
// text; false for an option it doesn't have.
std::unique_ptr<TransformJoin> makeJoin(Node *top, Node *bottom, const QString &values)
{
    auto join = std::make_unique<TransformJoin>();
    join->createParameters({top, bottom}, false);
    for (const QString &assignment : values.split(QLatin1Char('|'), Qt::SkipEmptyParts)) {
        Parameter *parameter = join->parameter(assignment.section(QLatin1Char('='), 0, 0));
        if (!parameter)
            return nullptr;
        parameter->fromText(assignment.section(QLatin1Char('='), 1), CurrentVersion);
    }
    return join;
}

// "key,top" and "key,bottom" datasets; the options' letters: t includes top non-matching
// rows, b bottom ones, i ignores case.
QString optionsOf(const QString &flags)
{
    return QStringLiteral("Include_Non_Matching_1=%1|Include_Non_Matching_2=%2|Case_Sensitive=%3")
        .arg(flags.contains(QLatin1Char('t')) ? 1 : 0)
        .arg(flags.contains(QLatin1Char('b')) ? 1 : 0)
        .arg(flags.contains(QLatin1Char('i')) ? 0 : 1);
}

QByteArray readFile(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return "<missing>";
    QByteArray bytes = file.readAll();
    if (bytes.startsWith("\xef\xbb\xbf"))
        bytes.remove(0, 3);
    return bytes;
}

} // namespace

class TestJoin : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase();
    void byKey_data();
    void byKey();
    void keyColumnsInside_data();
    void keyColumnsInside();
    void byRowNumber_data();
    void byRowNumber();
    void messages_data();
    void messages();
    void detailedReport();
    void inputCounts_data();
    void inputCounts();
    void columnsAndIds_data();
    void columnsAndIds();
    void progress();
    void guessOnSecondConnection_data();
    void guessOnSecondConnection();
    void flowThroughFiles_data();
    void flowThroughFiles();
};

void TestJoin::initTestCase()
{
    QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedStates));
}

// Keys in the first column of each side; the output with its headers.
void TestJoin::byKey_data()
{
    QTest::addColumn<QString>("top");
    QTest::addColumn<QString>("bottom");
    QTest::addColumn<QString>("flags");
    QTest::addColumn<QString>("expected");

    const QString top = QStringLiteral("k,t\na,1\nb,2\nc,3");
    const QString bottom = QStringLiteral("k,b\nb,x\nd,y\na,z");
    QTest::newRow("inner: top order") << top << bottom << ""
                                      << "k,t,b\na,1,z\nb,2,x";
    QTest::newRow("top non-matching") << top << bottom << "t"
                                      << "k,t,b\na,1,z\nb,2,x\nc,3,";
    QTest::newRow("bottom non-matching: key in the top key column") << top << bottom << "b"
                                                                    << "k,t,b\na,1,z\nb,2,x\nd,,y";
    QTest::newRow("both: matches, then top only, then bottom only") << top << bottom << "tb"
                                                                    << "k,t,b\na,1,z\nb,2,x\nc,3,\nd,,y";
    QTest::newRow("duplicates multiply, top row then bottom row") << "k,t\nx,1\ny,0\nx,2"
                                                                  << "k,b\nx,8\nx,9"
                                                                  << ""
                                                                  << "k,t,b\nx,1,8\nx,1,9\nx,2,8\nx,2,9";
    QTest::newRow("a duplicated key misses once per row") << "k,t\nx,1\nx,2\nz,3"
                                                          << "k,b\nq,8\nq,9"
                                                          << "tb"
                                                          << "k,t,b\nx,1,\nx,2,\nz,3,\nq,,8\nq,,9";
    QTest::newRow("empty keys match each other") << "k,t\n,1\na,2"
                                                 << "k,b\n,x\n,y"
                                                 << ""
                                                 << "k,t,b\n,1,x\n,1,y";
    QTest::newRow("case folded: the top cell stays as written") << "k,t\nABC,1\nabc,2"
                                                                << "k,b\naBc,x"
                                                                << "i"
                                                                << "k,t,b\nABC,1,x\nabc,2,x";
    QTest::newRow("case sensitive") << "k,t\nABC,1\nabc,2"
                                    << "k,b\naBc,x"
                                    << "tb"
                                    << "k,t,b\nABC,1,\nabc,2,\naBc,,x";
    QTest::newRow("bottom-only key keeps its case") << "k,t\nabc,1"
                                                    << "k,b\nABC,x\nDEF,y"
                                                    << "ib"
                                                    << "k,t,b\nabc,1,x\nDEF,,y";
    QTest::newRow("no trimming, even with case folded") << "k,t\n a,1\nA ,2"
                                                        << "k,b\na,x"
                                                        << "ti"
                                                        << "k,t,b\n a,1,\nA ,2,";
    QTest::newRow("no match: all columns, no rows") << top << "k,b\nq,x"
                                                    << ""
                                                    << "k,t,b";
    QTest::newRow("empty bottom") << top << "k,b"
                                  << "t"
                                  << "k,t,b\na,1,\nb,2,\nc,3,";
    QTest::newRow("empty top with bottom rows") << "k,t" << bottom << "b"
                                                << "k,t,b\nb,,x\nd,,y\na,,z";
    QTest::newRow("10 and 10.0 are different keys") << "k,t\n10,1"
                                                    << "k,b\n10.0,x\n10,y"
                                                    << ""
                                                    << "k,t,b\n10,1,y";
}

void TestJoin::byKey()
{
    QFETCH(QString, top);
    QFETCH(QString, bottom);
    QFETCH(QString, flags);
    StubNode a;
    StubNode b;
    setData(&a, top);
    setData(&b, bottom);
    const auto join = makeJoin(&a, &b, QStringLiteral("Column_1=1|Column_2=1|") + optionsOf(flags));
    QVERIFY(join);
    bool failed = false;
    const Dataset output = join->process({&a, &b}, failed);
    QTEST(testutil::toText(output, true), "expected");
    QVERIFY(!failed);
}

// Key columns away from the edges: the bottom key column goes from the middle, and a
// bottom-only row's key lands in the top key column wherever that stands.
void TestJoin::keyColumnsInside_data()
{
    QTest::addColumn<QString>("flags");
    QTest::addColumn<QString>("expected");
    QTest::newRow("inner") << ""
                           << "n,id,q,b1,b3\nAnn,1,5,x,p";
    QTest::newRow("full") << "tb"
                          << "n,id,q,b1,b3\nAnn,1,5,x,p\nBob,2,6,,\n,3,,y,r";
}

void TestJoin::keyColumnsInside()
{
    QFETCH(QString, flags);
    StubNode a;
    StubNode b;
    setData(&a, QStringLiteral("n,id,q\nAnn,1,5\nBob,2,6"));
    setData(&b, QStringLiteral("b1,ref,b3\nx,1,p\ny,3,r"));
    const auto join = makeJoin(&a, &b, QStringLiteral("Column_1=2|Column_2=2|") + optionsOf(flags));
    bool failed = false;
    QTEST(testutil::toText(join->process({&a, &b}, failed), true), "expected");
}

// A top of 3 rows beside a bottom of 5: the include options decide how many rows.
void TestJoin::byRowNumber_data()
{
    QTest::addColumn<QString>("flags");
    QTest::addColumn<QString>("expected");
    QTest::addColumn<QStringList>("information");
    QTest::newRow("neither: the shorter")
        << ""
        << "t,b1,b2\n1,a,A\n2,b,B\n3,c,C"
        << QStringList {"3 rows used from 3 in top dataset", "3 rows used from 5 in bottom dataset"};
    QTest::newRow("top: the top's rows")
        << "t"
        << "t,b1,b2\n1,a,A\n2,b,B\n3,c,C"
        << QStringList {"3 rows used from 3 in top dataset", "3 rows used from 5 in bottom dataset"};
    QTest::newRow("bottom: the bottom's rows")
        << "b"
        << "t,b1,b2\n1,a,A\n2,b,B\n3,c,C\n,d,D\n,e,E"
        << QStringList {"3 rows used from 3 in top dataset", "5 rows used from 5 in bottom dataset"};
    QTest::newRow("both: the longer")
        << "tb"
        << "t,b1,b2\n1,a,A\n2,b,B\n3,c,C\n,d,D\n,e,E"
        << QStringList {"3 rows used from 3 in top dataset", "5 rows used from 5 in bottom dataset"};
}

void TestJoin::byRowNumber()
{
    QFETCH(QString, flags);
    StubNode a;
    StubNode b;
    setData(&a, QStringLiteral("t\n1\n2\n3"));
    setData(&b, QStringLiteral("b1,b2\na,A\nb,B\nc,C\nd,D\ne,E"));
    // The key options don't apply and may be left as they are.
    const auto join =
        makeJoin(&a, &b, QStringLiteral("By=Row number|Column_1=1|Column_2=2|") + optionsOf(flags));
    bool failed = false;
    const Dataset output = join->process({&a, &b}, failed);
    QTEST(testutil::toText(output, true), "expected");
    QCOMPARE(join->result(), QStringLiteral("%1 rows joined").arg(output.rowCount()));
    QTEST(join->information(), "information");
}

void TestJoin::messages_data()
{
    QTest::addColumn<QString>("top");
    QTest::addColumn<QString>("bottom");
    QTest::addColumn<QString>("values");
    QTest::addColumn<QString>("result");
    QTest::addColumn<QStringList>("information");

    QTest::newRow("one row") << "k\na\nb"
                             << "k\na"
                             << "Column_1=1|Column_2=1"
                             << "1 row joined" << QStringList {"1 rows have keys in both datasets"};
    QTest::newRow("matched count leaves out the included rows")
        << "k\na\nb\nb"
        << "k\nb\nc"
        << "Column_1=1|Column_2=1|Include_Non_Matching_1=1|Include_Non_Matching_2=1"
        << "4 rows joined" << QStringList {"2 rows have keys in both datasets"};
    QTest::newRow("none") << "k\na"
                          << "k\nb"
                          << "Column_1=1|Column_2=1"
                          << "0 rows joined" << QStringList {"0 rows have keys in both datasets"};
    QTest::newRow("top key unset") << "k\na"
                                   << "k\na"
                                   << "Column_1=0|Column_2=1"
                                   << "No changes" << QStringList();
    QTest::newRow("bottom key gone") << "k\na"
                                     << "k\na"
                                     << "Column_1=1|Column_2=4"
                                     << "No changes" << QStringList();
    QTest::newRow("by row number, one row")
        << "k\na"
        << "k\nb\nc"
        << "By=Row number"
        << "1 row joined"
        << QStringList {"1 row used from 1 in top dataset", "1 row used from 2 in bottom dataset"};
    QTest::newRow("by row number, empty top")
        << "k"
        << "k\nb"
        << "By=Row number"
        << "0 rows joined"
        << QStringList {"0 rows used from 0 in top dataset", "0 rows used from 1 in bottom dataset"};
}

void TestJoin::messages()
{
    QFETCH(QString, top);
    QFETCH(QString, bottom);
    QFETCH(QString, values);
    StubNode a;
    StubNode b;
    setData(&a, top);
    setData(&b, bottom);
    const auto join = makeJoin(&a, &b, values);
    QVERIFY(join);
    bool failed = false;
    const Dataset output = join->process({&a, &b}, failed);
    QTEST(join->result(), "result");
    QTEST(join->information(), "information");
    QCOMPARE(join->warnings(), QStringList());
    if (join->result() == QLatin1String("No changes"))
        QCOMPARE(testutil::toText(output, true), top);
}

// Every detailed line after the count, in order: misses of each side, the overlap,
// duplicates of each side and whitespace of each side, each named by its key option.
void TestJoin::detailedReport()
{
    StubNode a;
    StubNode b;
    setData(&a, QStringLiteral("id,v\nA,1\na,2\nb,3\n c,4\nd,5"));
    setData(&b, QStringLiteral("ref,w\na,x\nB,y\nb,z\ne,q"));
    const auto join =
        makeJoin(&a, &b, QStringLiteral("Column_1=1|Column_2=1|Case_Sensitive=0|Detailed_Report=1"));
    bool failed = false;
    const Dataset output = join->process({&a, &b}, failed);
    QCOMPARE(join->result(), QStringLiteral("4 rows joined"));
    QCOMPARE(join->information(),
        (QStringList {"4 rows have keys in both datasets", "2 misses in the Top key column:", "' c' at row 4",
            "'d' at row 5", "1 miss in the Bottom key column:", "'e' at row 4",
            "2 unique keys appear in both datasets", "2 top only", "1 bottom only",
            "1 duplicated key in the Top key column:", "'a' occurs 2 times (case insensitive)",
            "1 duplicated key in the Bottom key column:", "'b' occurs 2 times (case insensitive)",
            "1 values with leading or trailing whitespace in the Top key column:", "' c' at row 4",
            "(keys are whitespace and case sensitive)",
            "0 values with leading or trailing whitespace in the Bottom key column:",
            "(keys are whitespace and case sensitive)"}));
}

// No input or more than two give an empty table; one gives a copy of it.
void TestJoin::inputCounts_data()
{
    QTest::addColumn<int>("count");
    QTest::addColumn<QString>("expected");
    QTest::addColumn<QString>("result");
    QTest::newRow("none") << 0 << ""
                          << "";
    QTest::newRow("one") << 1 << "k,t\na,1"
                         << "Connect a second dataset";
    QTest::newRow("three") << 3 << ""
                           << "";
}

void TestJoin::inputCounts()
{
    QFETCH(int, count);
    StubNode a;
    StubNode b;
    StubNode c;
    setData(&a, QStringLiteral("k,t\na,1"));
    setData(&b, QStringLiteral("k,b\na,2"));
    setData(&c, QStringLiteral("k,c\na,3"));
    const auto join = makeJoin(&a, &b, QStringLiteral("Column_1=1|Column_2=1"));
    bool failed = false;
    const Dataset output = join->process(QList<Node *> {&a, &b, &c}.mid(0, count), failed);
    QTEST(testutil::toText(output, output.hasHeaders()), "expected");
    QTEST(join->result(), "result");
}

// Headers and column ids of both sides, top first. A side without headers gives its
// column numbers; an id both sides carry stays with the top's column.
void TestJoin::columnsAndIds_data()
{
    QTest::addColumn<bool>("topHeaders");
    QTest::addColumn<bool>("bottomHeaders");
    QTest::addColumn<QString>("by");
    QTest::addColumn<QString>("headers");
    QTest::addColumn<bool>("hasHeaders");
    QTest::newRow("key, both") << true << true << "Key"
                               << "k,t,b" << true;
    QTest::newRow("key, bottom has none") << true << false << "Key"
                                          << "k,t,2" << true;
    QTest::newRow("key, top has none") << false << true << "Key"
                                       << "1,2,b" << true;
    QTest::newRow("key, neither") << false << false << "Key"
                                  << "1,2,3" << false;
    QTest::newRow("row number, bottom has none") << true << false << "Row number"
                                                 << "k,t,1,2" << true;
}

void TestJoin::columnsAndIds()
{
    QFETCH(bool, topHeaders);
    QFETCH(bool, bottomHeaders);
    QFETCH(QString, by);
    StubNode a;
    StubNode b;
    a.setDataset(testutil::toDataset(topHeaders ? "k,t\na,1" : "a,1", topHeaders));
    b.setDataset(testutil::toDataset(bottomHeaders ? "k,b\na,2" : "a,2", bottomHeaders));
    // Both sides descend from one source: their ids are the same.
    Dataset topData = a.dataset();
    topData.setColumnIds({ColumnId(7, 1), ColumnId(7, 2)});
    a.setDataset(topData);
    Dataset bottomData = b.dataset();
    bottomData.setColumnIds({ColumnId(7, 1), ColumnId(7, 3)});
    b.setDataset(bottomData);
    const auto join = makeJoin(&a, &b, QStringLiteral("By=%1|Column_1=1|Column_2=1").arg(by));
    bool failed = false;
    const Dataset output = join->process({&a, &b}, failed);
    QTEST(output.displayHeaders().join(QLatin1Char(',')), "headers");
    QTEST(output.hasHeaders(), "hasHeaders");
    const QList<ColumnId> expectedIds = by == QLatin1String("Key")
        ? QList<ColumnId> {ColumnId(7, 1), ColumnId(7, 2), ColumnId(7, 3)}
        : QList<ColumnId> {ColumnId(7, 1), ColumnId(7, 2), ColumnId(), ColumnId(7, 3)};
    QCOMPARE(output.columnIds(), expectedIds);
    QCOMPARE(output.columnIndex(ColumnId(7, 1)), DataColumnIndex(0));
}

// Progress over the top rows at row 0 and every 1000th row.
void TestJoin::progress()
{
    StubNode a;
    StubNode b;
    QString top = QStringLiteral("k");
    for (int i = 0; i < 2000; ++i)
        top += QStringLiteral("\n%1").arg(i % 7);
    setData(&a, top);
    setData(&b, QStringLiteral("k\n3"));
    const auto join = makeJoin(&a, &b, QStringLiteral("Column_1=1|Column_2=1"));
    QSignalSpy spy(join.get(), &Transform::processed);
    bool failed = false;
    const Dataset output = join->process({&a, &b}, failed);
    QCOMPARE(output.rowCount(), 286);
    QVERIFY(spy.size() >= 2);
    QCOMPARE(spy.at(0).at(0).toReal(), 0.0);
    QCOMPARE(spy.at(1).at(0).toReal(), 0.5);
}

// Connecting the second input puts the higher item on top, a key chosen before going
// with its dataset, and guesses the keys from shared values and headers unless one was
// chosen already.
void TestJoin::guessOnSecondConnection_data()
{
    QTest::addColumn<QString>("graph");
    QTest::addColumn<QString>("topKey"); // chosen before the second connection, or empty
    QTest::addColumn<QString>("keys");
    QTest::newRow("guessed") << "a b@0,100"
                             << ""
                             << "a.code:b.code";
    QTest::newRow("chosen before") << "a b@0,100"
                                   << "1"
                                   << "a.name:b.-";
    QTest::newRow("second item above: guessed with it on top") << "a@0,100 b"
                                                               << ""
                                                               << "b.code:a.code";
    QTest::newRow("second item above: the chosen key goes with its item") << "a@0,100 b"
                                                                          << "1"
                                                                          << "b.-:a.name";
}

void TestJoin::guessOnSecondConnection()
{
    QFETCH(QString, graph);
    QFETCH(QString, topKey);
    TestGraph flow(graph);
    QString top = QStringLiteral("name,code");
    QString bottom = QStringLiteral("code,city");
    for (int i = 0; i < 10; ++i) {
        top += QStringLiteral("\nn%1,C%1").arg(i);
        bottom += QStringLiteral("\nC%1,x%1").arg(9 - i);
    }
    setData(flow["a"], top);
    setData(flow["b"], bottom);
    auto *node = new TransformNode(new TransformJoin);
    flow.scene.addNode(node);
    QVERIFY(flow.scene.connectNodes(flow["a"], node));
    Parameter *topParameter = node->transform()->parameter(QStringLiteral("Column_1"));
    Parameter *bottomParameter = node->transform()->parameter(QStringLiteral("Column_2"));
    if (!topKey.isEmpty())
        topParameter->fromText(topKey, CurrentVersion);
    QVERIFY(flow.scene.connectNodes(flow["b"], node));
    const auto headerOf = [](const Parameter *parameter) {
        const DataColumnIndex column = parameter->columnIndex();
        return TestGraph::name(parameter->upstream()) + QLatin1Char('.')
            + (column.isValid() ? parameter->upstreamDataset()->headerText(column) : QStringLiteral("-"));
    };
    QTEST(headerOf(topParameter) + QLatin1Char(':') + headerOf(bottomParameter), "keys");
}

// A document read from disk and run as the command line runs it: orders joined with
// their customers, the customers' item standing above the orders' on the canvas, so that
// the customers are the top dataset whichever connection the document lists first.
void TestJoin::flowThroughFiles_data()
{
    QTest::addColumn<QString>("connections");
    QTest::newRow("top item connected second") << "<connection start_id=\"1\" end_id=\"3\"/>"
                                                  "<connection start_id=\"2\" end_id=\"3\"/>";
    QTest::newRow("top item connected first") << "<connection start_id=\"2\" end_id=\"3\"/>"
                                                 "<connection start_id=\"1\" end_id=\"3\"/>";
}

void TestJoin::flowThroughFiles()
{
    QFETCH(QString, connections);
    QTemporaryDir dir;
    QVERIFY(dir.isValid());
    // Relative file names are found from the working folder, as in a run from a shell.
    QDir::setCurrent(dir.path());
    const auto write = [&](const QString &name, const QByteArray &bytes) {
        QFile file(dir.filePath(name));
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write(bytes);
    };
    write(QStringLiteral("orders.csv"), "order,customer,amount\n1,C2,10\n2,C1,20\n3,C9,30\n4,C2,40\n");
    write(QStringLiteral("customers.csv"), "id,name\r\nC1,Ann\r\nC2,Bob\r\nC3,Cy\r\n");
    // The key positions count the columns of the top item (customers) and of the bottom
    // item (orders).
    write(QStringLiteral("flow.tflow"),
        QStringLiteral(
            "<?xml version=\"1.0\"?>\n<!DOCTYPE Tabrelle>\n<root>\n"
            "<meta><version value=\"84\"/><locale value=\"en_US\"/></meta>\n"
            "<inputs><input id=\"1\" path=\"orders.csv\" header=\"1\" pos=\"0^200\"/>"
            "<input id=\"2\" path=\"customers.csv\" header=\"1\" pos=\"0^0\"/></inputs>\n"
            "<transforms><transform id=\"3\" name=\"Join\" pos=\"200^100\"><parameters>"
            "<parameter name=\"By\" type=\"6\" value=\"Key\"/>"
            "<parameter name=\"Column_1\" type=\"0\" value=\"1\"/>"
            "<parameter name=\"Include_Non_Matching_1\" type=\"5\" value=\"1\"/>"
            "<parameter name=\"Column_2\" type=\"0\" value=\"2\"/>"
            "<parameter name=\"Include_Non_Matching_2\" type=\"5\" value=\"0\"/>"
            "<parameter name=\"Case_Sensitive\" type=\"5\" value=\"1\"/>"
            "<parameter name=\"Detailed_Report\" type=\"5\" value=\"0\"/>"
            "</parameters></transform></transforms>\n"
            "<outputs><output id=\"4\" path=\"joined.csv\" enable_output=\"1\" pos=\"400^100\"/></outputs>\n"
            "<connections>%1<connection start_id=\"3\" end_id=\"4\"/></connections>\n</root>\n")
            .arg(connections)
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
    // Customers on top: C1 and C2 match, C3 has no order and stays; C9's order is dropped.
    QCOMPARE(readFile(dir.filePath(QStringLiteral("joined.csv"))),
        QByteArray("id,name,order,amount\nC1,Ann,2,20\nC2,Bob,1,10\nC2,Bob,4,40\nC3,Cy,,\n"));
}

// The flow test needs the application's item types and readers; its settings go to a
// folder of the test's own.
int main(int argc, char **argv)
{
    QTemporaryDir home;
    qputenv("XDG_CONFIG_HOME", home.path().toLocal8Bit());
    qputenv("QT_QPA_PLATFORM", "offscreen");
    Application application(argc, argv, true);
    TestJoin test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_join.moc"
