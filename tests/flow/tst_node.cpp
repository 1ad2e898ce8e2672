#include "testgraph.h"

#include "flow/ionode.h"

#include <QLocale>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QtTest>

namespace {

class StubIONode : public IONode
{
public:
    QString typeName() const override { return QStringLiteral("Input"); }
    int maxUpstream() const override { return 0; }
    int maxDownstream() const override { return INT_MAX; }
    void process(bool, bool) override { }
};

// "CxR": C columns by R rows.
Dataset sized(const QString &size)
{
    Dataset dataset;
    dataset.resize(size.section(QLatin1Char('x'), 1).toInt(), size.section(QLatin1Char('x'), 0, 0).toInt());
    return dataset;
}

} // namespace

class TestNode : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase();
    void ids_data();
    void ids();
    void alias_data();
    void alias();
    void depth_data();
    void depth();
    void setStatus_data();
    void setStatus();
    void sizeText_data();
    void sizeText();
    void statusText_data();
    void statusText();
    void details_data();
    void details();
    void detailLabels();
    void assignColumnIds();
};

void TestNode::initTestCase()
{
    // Counts are shown with group separators, which the C locale leaves out.
    QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedStates));
}

void TestNode::ids_data()
{
    // Each number is given to assignId of a new node; "^n" raises the counter past n.
    QTest::addColumn<QString>("steps");
    QTest::addColumn<QString>("ids");
    QTest::addColumn<int>("next");
    QTest::newRow("-1 twice is consecutive") << "-1 -1"
                                             << "100 101" << 102;
    QTest::newRow("7 keeps the counter") << "7"
                                         << "7" << 100;
    QTest::newRow("explicit then -1") << "500 -1"
                                      << "500 100" << 101;
    QTest::newRow("raised past a read id") << "^150 -1"
                                           << "151" << 152;
    QTest::newRow("raise to the counter") << "^100"
                                          << "" << 101;
    QTest::newRow("raise below the counter") << "^99 ^-1"
                                             << "" << 100;
}

void TestNode::ids()
{
    QFETCH(QString, steps);
    QFETCH(QString, ids);
    QFETCH(int, next);
    Node::setNextId(100);
    QStringList assigned;
    for (const QString &step : steps.split(QLatin1Char(' '))) {
        if (step.startsWith(QLatin1Char('^'))) {
            Node::raiseNextId(step.mid(1).toInt());
            continue;
        }
        StubNode node;
        node.assignId(step.toInt());
        assigned << QString::number(node.id());
    }
    QCOMPARE(assigned.join(QLatin1Char(' ')), ids);
    QCOMPARE(Node::nextId(), next);
}

void TestNode::alias_data()
{
    QTest::addColumn<QString>("given");
    QTest::addColumn<QString>("stored");
    QTest::newRow("spaces around") << "  sales  "
                                   << "sales";
    QTest::newRow("tab, newline, inner spaces kept") << "\tin  put\n"
                                                     << "in  put";
    QTest::newRow("only spaces") << "   "
                                 << "";
}

void TestNode::alias()
{
    QFETCH(QString, given);
    QFETCH(QString, stored);
    StubNode node;
    node.setAlias(given);
    QCOMPARE(node.alias(), stored);
}

void TestNode::depth_data()
{
    QTest::addColumn<QString>("graph");
    QTest::addColumn<QString>("node");
    QTest::addColumn<int>("expected");
    QTest::newRow("no upstream") << "a b | a>b"
                                 << "a" << 0;
    QTest::newRow("one upstream") << "a b | a>b"
                                  << "b" << 1;
    QTest::newRow("upstreams of depth 0 and 3") << "a b c d e f | b>c c>d d>e e>f a>f"
                                                << "f" << 4;
    QTest::newRow("diamond") << "a b c d | a>b a>c b>d c>d"
                             << "d" << 2;
}

void TestNode::depth()
{
    QFETCH(QString, graph);
    QFETCH(QString, node);
    QFETCH(int, expected);
    TestGraph g(graph);
    QVERIFY(g.valid);
    QCOMPARE(g[node]->depth(), expected);
}

void TestNode::setStatus_data()
{
    // A chain a>b>c; statuses as three digits. "emitted" counts a's nodeStatusChanged.
    QTest::addColumn<QString>("before");
    QTest::addColumn<int>("status");
    QTest::addColumn<bool>("propagate");
    QTest::addColumn<QString>("after");
    QTest::addColumn<int>("emitted");
    QTest::newRow("same value still walks downstream") << "022" << 0 << true << "000" << 0;
    QTest::newRow("change propagates") << "222" << 3 << true << "333" << 1;
    QTest::newRow("change without propagation") << "222" << 3 << false << "322" << 1;
}

void TestNode::setStatus()
{
    QFETCH(QString, before);
    QFETCH(int, status);
    QFETCH(bool, propagate);
    QFETCH(QString, after);
    QFETCH(int, emitted);
    TestGraph g(QStringLiteral("a b c | a>b b>c"));
    const QList<StubNode *> nodes {g["a"], g["b"], g["c"]};
    for (int i = 0; i < 3; ++i)
        nodes.at(i)->setStatus(before.at(i).digitValue(), false);
    QSignalSpy spy(nodes.at(0), &Node::nodeStatusChanged);
    nodes.at(0)->setStatus(status, propagate);
    QString result;
    for (const StubNode *node : nodes)
        result += QString::number(node->status());
    QCOMPARE(result, after);
    QCOMPARE(spy.count(), emitted);
}

void TestNode::sizeText_data()
{
    // Sizes as "CxR"; an empty upstream size means no upstream node.
    QTest::addColumn<QString>("upstreamSize");
    QTest::addColumn<QString>("ownSize");
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("change");
    QTest::newRow("empty, no upstream") << ""
                                        << "0x0"
                                        << "0 cols x 0 rows"
                                        << "0 cols x 0 rows";
    QTest::newRow("singular") << "2x10"
                              << "1x1"
                              << "1 col x 1 row"
                              << "-1 col x -9 rows";
    QTest::newRow("more columns, fewer rows") << "2x10"
                                              << "3x7"
                                              << "3 cols x 7 rows"
                                              << "+1 col x -3 rows";
    QTest::newRow("unchanged") << "2x10"
                               << "2x10"
                               << "2 cols x 10 rows"
                               << "0 cols x 0 rows";
    QTest::newRow("group separators") << "1x0"
                                      << "1x2000"
                                      << "1 col x 2,000 rows"
                                      << "0 cols x +2,000 rows";
}

void TestNode::sizeText()
{
    QFETCH(QString, upstreamSize);
    QFETCH(QString, ownSize);
    QFETCH(QString, text);
    QFETCH(QString, change);
    TestGraph g(upstreamSize.isEmpty() ? QStringLiteral("b") : QStringLiteral("a b | a>b"));
    if (!upstreamSize.isEmpty())
        g["a"]->setDataset(sized(upstreamSize));
    g["b"]->setDataset(sized(ownSize));
    QCOMPARE(g["b"]->sizeText(), text);
    QCOMPARE(g["b"]->sizeChangeText(), change);
}

void TestNode::statusText_data()
{
    QTest::addColumn<bool>("extended");
    QTest::addColumn<QString>("size");
    QTest::addColumn<QString>("warning"); // the first line is the summary
    QTest::addColumn<QString>("expected");
    QTest::addColumn<QString>("summary");
    QTest::newRow("no data") << false << "0x0"
                             << ""
                             << "'sales', Id=5, [Up to date],   Test: No data"
                             << "";
    QTest::newRow("with data") << false << "2x1"
                               << "File 'a' not found\nmore"
                               << "'sales', Id=5, [Up to date],   Test: 2 cols x 1 row"
                               << "File 'a' not found";
    QTest::newRow("extended") << true << "0x0"
                              << "w"
                              << "'sales', Id=5, [Up to date],   Test: No data, 1 warning(s)"
                              << "w";
}

void TestNode::statusText()
{
    QFETCH(bool, extended);
    QFETCH(QString, size);
    QFETCH(QString, warning);
    QFETCH(QString, expected);
    QFETCH(QString, summary);
    StubNode node;
    node.setName(QStringLiteral("sales"));
    node.assignId(5);
    node.setStatus(Node::UpToDate, false);
    node.setDataset(sized(size));
    if (!warning.isEmpty())
        node.addWarning(warning);
    QCOMPARE(node.statusText(extended), expected);
    QCOMPARE(node.warningSummary(), summary);
}

void TestNode::details_data()
{
    // Medium 0 is a file, 1 pasted text. A file "data.csv" of 1,500 bytes exists.
    QTest::addColumn<int>("medium");
    QTest::addColumn<QString>("file");
    QTest::addColumn<int>("milliseconds");
    QTest::addColumn<QString>("label");
    QTest::addColumn<QString>("expected");
    QTest::newRow("below a second") << 0 << "data.csv" << 999 << "Processing time"
                                    << "999 ms";
    QTest::newRow("a second") << 0 << "data.csv" << 1000 << "Processing time"
                              << "1.000 second(s)";
    QTest::newRow("file size") << 0 << "data.csv" << 0 << "File size"
                               << "1,500 bytes";
    QTest::newRow("missing file") << 0 << "missing.csv" << 0 << "File readable"
                                  << "File not found";
    QTest::newRow("no path") << 0 << "" << 0 << "File size"
                             << "File not found";
    QTest::newRow("folder") << 0 << "." << 0 << "File writable"
                            << "File not found";
    QTest::newRow("pasted text") << 1 << "data.csv" << 0 << "File location"
                                 << "<none>";
}

void TestNode::details()
{
    QFETCH(int, medium);
    QFETCH(QString, file);
    QFETCH(int, milliseconds);
    QFETCH(QString, label);
    QFETCH(QString, expected);
    QTemporaryDir dir;
    QFile data(dir.filePath(QStringLiteral("data.csv")));
    QVERIFY(data.open(QIODevice::WriteOnly));
    data.write(QByteArray(1500, 'x'));
    data.close();

    StubIONode node;
    node.setMedium(medium);
    node.setPath(file.isEmpty() ? QString() : dir.filePath(file));
    node.setProcessingTime(milliseconds);
    QString value = QStringLiteral("<none>");
    for (const DetailRow &row : node.details()) {
        if (row.first == label)
            value = row.second;
    }
    QCOMPARE(value, expected);
}

void TestNode::detailLabels()
{
    StubIONode node;
    node.setPath(QStringLiteral("/no/such/folder/input.csv"));
    node.setDataset(sized(QStringLiteral("3x1000")));
    QStringList labels, values;
    for (const DetailRow &row : node.details()) {
        labels << row.first;
        values << row.second;
    }
    QCOMPARE(labels,
        QStringList(
            {"Name", "Id", "Status", "Size", "Type", "Dataset columns", "Dataset rows", "Dataset values",
                "Comment", "Warnings", "Info", "Last processed", "Processing time", "File location",
                "File readable", "File writable", "File size", "File created", "File modified"}));
    QCOMPARE(values.mid(2, 6),
        QStringList({"Needs updating", "3 cols x 1,000 rows", "Input", "3", "1,000", "3,000"}));
    QCOMPARE(values.at(13), QDir::toNativeSeparators(QStringLiteral("/no/such/folder/input.csv")));
}

void TestNode::assignColumnIds()
{
    StubNode node;
    node.assignId(42);
    Dataset dataset = sized(QStringLiteral("3x2"));
    dataset.setColumnId(DataColumnIndex(1), ColumnId(7, 9));
    node.setDataset(dataset);
    node.assignColumnIds();
    // A column that came from upstream keeps its identity; the new ones count from 1.
    QCOMPARE(node.dataset().columnIds(), QList<ColumnId>({ColumnId(42, 1), ColumnId(7, 9), ColumnId(42, 2)}));
}

QTEST_MAIN(TestNode)
#include "tst_node.moc"
