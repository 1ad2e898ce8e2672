#include "testutil.h"

#include "core/matching.h"
#include "flow/node.h"
#include "transforms/transformcluster.h"

#include <QLocale>
#include <QRandomGenerator>
#include <QSignalSpy>
#include <QtTest>

#include <memory>

namespace {

// An item that holds whatever dataset a test gives it, its columns with ids.
class DataNode : public Node
{
public:
    explicit DataNode(Dataset dataset = Dataset())
    {
        dataset.assignColumnIds(1);
        setDataset(dataset);
    }
    QString typeName() const override { return QStringLiteral("Test"); }
    int maxUpstream() const override { return 0; }
    int maxDownstream() const override { return 1; }
    void process(bool, bool) override { }
};

// One column "v" of the given cells.
Dataset column(const QStringList &cells)
{
    Dataset dataset;
    dataset.setColumnCount(1);
    dataset.setHeaders({QStringLiteral("v")});
    for (const QString &cell : cells)
        dataset.appendRow({cell});
    return dataset;
}

struct Outcome
{
    Dataset output;
    QStringList warnings;
    QStringList information;
    QString result;

    // "cluster:closeness" per row.
    QStringList cells() const
    {
        QStringList list;
        const int last = output.columnCount() - 1;
        for (int r = 0; r < output.rowCount(); ++r)
            list << output.cell(r, last - 1) + QLatin1Char(':') + output.cell(r, last);
        return list;
    }
};

struct Options
{
    QString clustering = QStringLiteral("Manual");
    QString terms;
    int fuzziness = 50;
    bool caseSensitive = false;
    int maxClusters = 10;
    bool setColumn = true;
};

Outcome run(DataNode &node, const Options &options)
{
    TransformCluster transform;
    transform.createParameters({&node}, false);
    if (options.setColumn)
        transform.parameter(QStringLiteral("Column"))
            ->setValue(QVariant::fromValue(node.dataset().columnId(0)));
    transform.parameter(QStringLiteral("Clustering"))->setValue(options.clustering);
    transform.parameter(QStringLiteral("Terms"))->setValue(options.terms);
    transform.parameter(QStringLiteral("Fuzziness"))->setValue(options.fuzziness);
    transform.parameter(QStringLiteral("Case_Sensitive"))->setValue(options.caseSensitive);
    transform.parameter(QStringLiteral("Max_Auto_Clusters"))->setValue(options.maxClusters);
    bool failed = false;
    Outcome outcome;
    outcome.output = transform.process({&node}, failed);
    outcome.warnings = transform.warnings();
    outcome.information = transform.information();
    outcome.result = transform.result();
    return outcome;
}

// Names of people written in several ways, with a few typing errors: material for a search.
QStringList names()
{
    const QStringList first = {"Anna", "Ben", "Clara", "David", "Eva", "Felix", "Grace", "Hugo"};
    const QStringList last = {"Smith", "Jones", "Miller", "Brown", "Garcia", "Rossi"};
    QStringList list;
    for (int i = 0; i < 400; ++i) {
        QString name =
            last.at((i * 7) % last.size()) + QStringLiteral(", ") + first.at((i * 5) % first.size());
        if (i % 11 == 0)
            name = name.toUpper();
        if (i % 13 == 0)
            name.remove(2, 1);
        if (i % 17 == 0)
            name.clear();
        list << name;
    }
    return list;
}

} // namespace

class TestCluster : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase() { QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedStates)); }
    void manual_data();
    void manual();
    void manualMessages();
    void manualFollowsCloseness();
    void search_data();
    void search();
    void allEmpty_data();
    void allEmpty();
    void repeatRunIsIdentical();
    void unresolvedColumn();
    void manyUnclusteredValues();
};

// Terms as typed against cells; Cluster shows the term as typed, Closeness its percentage.
void TestCluster::manual_data()
{
    QTest::addColumn<QStringList>("cells");
    QTest::addColumn<QString>("terms");
    QTest::addColumn<int>("fuzziness");
    QTest::addColumn<bool>("caseSensitive");
    QTest::addColumn<QStringList>("expected");

    QTest::newRow("case ignored, term as typed")
        << QStringList {"apple", " APPLE ", "Banana split", "cherry"} << "Apple\nBanana" << 50 << false
        << QStringList {"Apple:100", "Apple:100", "Banana:50", "<None>:"};
    QTest::newRow("case sensitive") << QStringList {"apple", "Apple"} << "Apple" << 50 << true
                                    << QStringList {"Apple:80", "Apple:100"};
    QTest::newRow("terms trimmed, blank lines dropped") << QStringList {"pear"} << "\n  pear  \n\n"
                                                        << 50 << false << QStringList {"pear:100"};
    QTest::newRow("first of equal terms wins")
        << QStringList {"aa"} << "ab\nac" << 50 << false << QStringList {"ab:50"};
    QTest::newRow("closer later term wins")
        << QStringList {"abcd"} << "abxx\nabcx" << 50 << false << QStringList {"abcx:75"};
    QTest::newRow("zero closeness assigns every row") << QStringList {"cherry", "zzzzzzzzzzzz",
        "apple"} << "apple\npear" << 0 << false << QStringList {"pear:34", "apple:0", "apple:100"};
    QTest::newRow("empty cell is never assigned")
        << QStringList {"", "  "} << "apple" << 0 << false << QStringList {"<None>:", "<None>:"};
    // Distance 3 over 7 characters: 58 passes 50 but is beyond the tolerance of 60.
    QTest::newRow("tolerance at 50") << QStringList {"abcdefg"} << "abcdxyz" << 50 << false
                                     << QStringList {"abcdxyz:58"};
    QTest::newRow("tolerance at 60") << QStringList {"abcdefg"} << "abcdxyz" << 60 << false
                                     << QStringList {"<None>:"};
    QTest::newRow("exact only at 100")
        << QStringList {"ab", "abc"} << "abc" << 100 << false << QStringList {"<None>:", "abc:100"};
}

void TestCluster::manual()
{
    QFETCH(QStringList, cells);
    QFETCH(QString, terms);
    QFETCH(int, fuzziness);
    QFETCH(bool, caseSensitive);
    QFETCH(QStringList, expected);

    DataNode node(column(cells));
    Options options;
    options.terms = terms;
    options.fuzziness = fuzziness;
    options.caseSensitive = caseSensitive;
    const Outcome outcome = run(node, options);
    QCOMPARE(outcome.cells(), expected);
    QCOMPARE(outcome.output.displayHeaders(), QStringList({"v", "Cluster", "Closeness"}));
    for (int r = 0; r < cells.size(); ++r)
        QCOMPARE(outcome.output.cell(r, 0), cells.at(r));
}

void TestCluster::manualMessages()
{
    DataNode node(column({"apple", "Apple", "banana", "kiwi", "appel", "bananas", "", "kiwi"}));
    Options options;
    options.terms = QStringLiteral("Apple\nBanana\nMango");
    Outcome outcome = run(node, options);
    QCOMPARE(outcome.information,
        QStringList({"2 clustering term(s)", "Clustering term(s) alphabetically:", "Apple", "Banana",
            "Clustering term(s) by count:", "3  - Apple", "2  - Banana"}));
    QCOMPARE(outcome.warnings,
        QStringList({"3 row(s) not assigned a cluster", "Values not clustered:", "''", "'kiwi'"}));
    QCOMPARE(outcome.result, QStringLiteral("5 clustered from 8 row(s)"));

    options.terms = QStringLiteral("\n \n");
    outcome = run(node, options);
    QCOMPARE(outcome.cells(), QStringList({":", ":", ":", ":", ":", ":", ":", ":"}));
    QCOMPARE(outcome.warnings, QStringList({"8 row(s) not assigned a cluster", "No terms to cluster on"}));
    QCOMPARE(outcome.information, QStringList());
    QCOMPARE(outcome.result, QStringLiteral("0 clustered from 8 row(s)"));
}

// Random texts against random terms: each row goes to the first term of highest closeness
// that reaches the minimum, exactly as the closeness measure has it.
void TestCluster::manualFollowsCloseness()
{
    QRandomGenerator random(11);
    const QString alphabet = QStringLiteral("abcAB12 \u00e9\u00c9-");
    auto text = [&](int maximum) {
        QString result;
        const int length = int(random.bounded(maximum + 1));
        for (int i = 0; i < length; ++i)
            result += alphabet.at(int(random.bounded(alphabet.size())));
        return result;
    };
    QStringList cells;
    for (int i = 0; i < 600; ++i)
        cells << text(12);
    DataNode node(column(cells));
    for (bool caseSensitive : {false, true}) {
        for (int fuzziness : {0, 35, 50, 75, 100}) {
            QStringList terms;
            for (int i = 0; i < 8; ++i) {
                QString term = text(10).trimmed();
                if (!term.isEmpty())
                    terms << term;
            }
            Options options;
            options.terms = terms.join(QLatin1Char('\n'));
            options.fuzziness = fuzziness;
            options.caseSensitive = caseSensitive;
            const QStringList actual = run(node, options).cells();
            for (int r = 0; r < cells.size(); ++r) {
                const QString value = caseSensitive ? cells.at(r).trimmed() : cells.at(r).trimmed().toLower();
                QString expected = QStringLiteral("<None>:");
                int best = -1;
                for (const QString &term : qAsConst(terms)) {
                    const int c = closeness(value, caseSensitive ? term : term.toLower(), fuzziness);
                    if (!value.isEmpty() && c != -1 && c >= fuzziness && c > best) {
                        best = c;
                        expected = term + QLatin1Char(':') + QString::number(c);
                    }
                }
                QCOMPARE(actual.at(r), expected);
            }
        }
    }
}

// Guided and Automatic search for terms; their Cluster cells show the term lower-cased.
void TestCluster::search_data()
{
    QTest::addColumn<QString>("clustering");
    QTest::addColumn<QStringList>("cells");
    QTest::addColumn<QString>("terms");
    QTest::addColumn<int>("fuzziness");
    QTest::addColumn<bool>("caseSensitive");
    QTest::addColumn<int>("maxClusters");
    QTest::addColumn<QStringList>("expected");
    QTest::addColumn<QStringList>("warnings");

    // Exact matches only: the most frequent words become the terms, and no row of the
    // table is a better one.
    QTest::newRow("most frequent words")
        << "Automatic" << QStringList {"apple", "pear", "Apple", "plum", "pear", "apple"} << "" << 100
        << false << 2
        << QStringList {"apple:100", "pear:100", "apple:100", "<None>:", "pear:100", "apple:100"}
        << QStringList {"1 row(s) not assigned a cluster", "Values not clustered:", "'plum'"};
    // With case on, the discovered word "apple" matches none of the "Apple" cells; the
    // rows themselves give the second term, in their own case.
    QTest::newRow("case sensitive search")
        << "Automatic" << QStringList {"Apple", "pear", "Apple", "pear", "Apple"} << "" << 100 << true << 2
        << QStringList {"Apple:100", "pear:100", "Apple:100", "pear:100", "Apple:100"} << QStringList();
    QTest::newRow("guided terms lower-cased")
        << "Guided" << QStringList {"apple", "APPLE", "pear"} << "Apple" << 100 << false << 1
        << QStringList {"apple:100", "apple:100", "<None>:"}
        << QStringList {"1 row(s) not assigned a cluster", "Values not clustered:", "'pear'"};
    // Terms past the maximum are dropped: "pear" never becomes one.
    QTest::newRow("guided with more terms than allowed")
        << "Guided" << QStringList {"apple", "plum", "pear", "plum", "apple"} << "apple\n\nplum\npear" << 100
        << false << 2 << QStringList {"apple:100", "plum:100", "<None>:", "plum:100", "apple:100"}
        << QStringList {"1 row(s) not assigned a cluster", "Values not clustered:", "'pear'"};
    QTest::newRow("two-word phrase") << "Automatic"
                                     << QStringList {"new york", "New York!", "new-york", "boston", "boston"}
                                     << "" << 100 << false << 2
                                     << QStringList {"new york:100", "<None>:", "<None>:", "boston:100",
                                            "boston:100"}
                                     << QStringList {"2 row(s) not assigned a cluster",
                                            "Values not clustered:", "'New York!'", "'new-york'"};
}

void TestCluster::search()
{
    QFETCH(QString, clustering);
    QFETCH(QStringList, cells);
    QFETCH(QString, terms);
    QFETCH(int, fuzziness);
    QFETCH(bool, caseSensitive);
    QFETCH(int, maxClusters);
    QFETCH(QStringList, expected);
    QFETCH(QStringList, warnings);

    DataNode node(column(cells));
    Options options;
    options.clustering = clustering;
    options.terms = terms;
    options.fuzziness = fuzziness;
    options.caseSensitive = caseSensitive;
    options.maxClusters = maxClusters;
    const Outcome outcome = run(node, options);
    QCOMPARE(outcome.cells(), expected);
    QCOMPARE(outcome.warnings, warnings);
    // The search tells how many term lists it tried before the clusters it kept.
    QVERIFY(outcome.information.first().startsWith(QLatin1String("Tried ")));
}

void TestCluster::allEmpty_data()
{
    QTest::addColumn<QString>("clustering");
    QTest::newRow("automatic") << "Automatic";
    QTest::newRow("guided without terms") << "Guided";
}

void TestCluster::allEmpty()
{
    QFETCH(QString, clustering);
    DataNode node(column({"", " ", ""}));
    Options options;
    options.clustering = clustering;
    options.fuzziness = 0;
    const Outcome outcome = run(node, options);
    QCOMPARE(outcome.cells(), QStringList({":", ":", ":"}));
    QCOMPARE(outcome.warnings,
        QStringList({"3 row(s) not assigned a cluster", "Insufficient data for clustering"}));
    QCOMPARE(outcome.information, QStringList());
    QCOMPARE(outcome.result, QStringLiteral("0 clustered from 3 row(s)"));
}

// The search starts from a fixed seed: the same table and options give the same clusters.
void TestCluster::repeatRunIsIdentical()
{
    DataNode node(column(names()));
    for (int fuzziness : {0, 50, 80}) {
        Options options;
        options.clustering = QStringLiteral("Automatic");
        options.fuzziness = fuzziness;
        options.maxClusters = 6;
        const Outcome first = run(node, options);
        const Outcome second = run(node, options);
        QCOMPARE(second.cells(), first.cells());
        QCOMPARE(second.information, first.information);
        QCOMPARE(second.warnings, first.warnings);
        QCOMPARE(second.result, first.result);

        // The clusters found are real ones: every assigned row is close enough to its term.
        const QStringList cells = first.cells();
        int assigned = 0;
        QSet<QString> terms;
        for (int r = 0; r < cells.size(); ++r) {
            const QString cluster = cells.at(r).section(QLatin1Char(':'), 0, 0);
            if (cluster == QLatin1String("<None>"))
                continue;
            ++assigned;
            terms.insert(cluster);
            QVERIFY(cells.at(r).section(QLatin1Char(':'), 1).toInt() >= fuzziness);
        }
        QVERIFY(terms.size() <= 6);
        QVERIFY(assigned > 0);
        QCOMPARE(first.result, QStringLiteral("%1 clustered from 400 row(s)").arg(assigned));
        if (fuzziness == 0) {
            // Every row with text is assigned.
            QCOMPARE(assigned, int(names().size() - names().count(QString())));
        }
    }
}

void TestCluster::unresolvedColumn()
{
    DataNode node(column({"apple", "pear", "plum"}));
    Options options;
    options.terms = QStringLiteral("apple");
    options.setColumn = false;
    const Outcome outcome = run(node, options);
    QCOMPARE(outcome.cells(), QStringList({":", ":", ":"}));
    QCOMPARE(outcome.output.displayHeaders(), QStringList({"v", "Cluster", "Closeness"}));
    QCOMPARE(outcome.result, QStringLiteral("0 clustered from 3 row(s)"));
    QCOMPARE(outcome.warnings.first(), QStringLiteral("3 row(s) not assigned a cluster"));
    QCOMPARE(outcome.information, QStringList());

    DataNode empty(column({}));
    options.setColumn = true;
    const Outcome none = run(empty, options);
    QCOMPARE(none.output.columnCount(), 3);
    QCOMPARE(none.warnings, QStringList());
    QCOMPARE(none.result, QStringLiteral("0 clustered from 0 row(s)"));
}

// Twenty values are told by name, then the rest are counted; counts use group separators.
void TestCluster::manyUnclusteredValues()
{
    QStringList cells;
    for (int i = 0; i < 1500; ++i)
        cells << QStringLiteral("value %1").arg(i % 25, 2, 10, QLatin1Char('0'));
    DataNode node(column(cells));
    Options options;
    options.terms = QStringLiteral("nothing like it at all");
    options.fuzziness = 90;
    const Outcome outcome = run(node, options);
    QCOMPARE(outcome.warnings.size(), 23);
    QCOMPARE(outcome.warnings.at(0), QStringLiteral("1500 row(s) not assigned a cluster"));
    QCOMPARE(outcome.warnings.at(1), QStringLiteral("Values not clustered:"));
    QCOMPARE(outcome.warnings.at(2), QStringLiteral("'value 00'"));
    QCOMPARE(outcome.warnings.at(21), QStringLiteral("'value 19'"));
    QCOMPARE(outcome.warnings.at(22), QStringLiteral("+ 5 more"));
    QCOMPARE(outcome.result, QStringLiteral("0 clustered from 1,500 row(s)"));
}

QTEST_MAIN(TestCluster)
#include "tst_cluster.moc"
