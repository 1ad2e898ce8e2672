#include "testgraph.h"

#include "flow/nodefactory.h"
#include "flow/notenode.h"

#include <QPointer>
#include <QtTest>

class TestGraphScene : public QObject
{
    Q_OBJECT
private slots:
    void connectNodes_data();
    void connectNodes();
    void candidateTargets_data();
    void candidateTargets();
    void neighbourOrder_data();
    void neighbourOrder();
    void siblings_data();
    void siblings();
    void closures_data();
    void closures();
    void sceneOrder_data();
    void sceneOrder();
    void removeAndTake();
    void connectionFollowsMoves();
    void factory();
};

void TestGraphScene::connectNodes_data()
{
    QTest::addColumn<QString>("graph");
    QTest::addColumn<QString>("edge");
    QTest::addColumn<QString>("reason"); // "ok" when accepted
    QTest::newRow("free nodes") << "a b"
                                << "a>b"
                                << "ok";
    QTest::newRow("to itself, silently") << "a"
                                         << "a>a"
                                         << "";
    QTest::newRow("output's second input") << "a b o:1/0 | a>o"
                                           << "b>o"
                                           << "'o' takes no more inputs";
    QTest::newRow("out of an output") << "a o:1/0 | a>o"
                                      << "o>a"
                                      << "'o' can't be connected to other items";
    QTest::newRow("outputs used up") << "a:0/1 b c | a>b"
                                     << "a>c"
                                     << "'a' can't be connected to other items";
    QTest::newRow("duplicate") << "a b | a>b"
                               << "a>b"
                               << "'a' is already connected to 'b'";
    QTest::newRow("loop") << "a b c d | a>b b>c c>d"
                          << "d>a"
                          << "Can't connect 'd' to 'a': it would make a loop";
    QTest::newRow("shortcut is no loop") << "a b c | a>b b>c"
                                         << "a>c"
                                         << "ok";
    QTest::newRow("merge's second input") << "a b m:2/9 | a>m"
                                          << "b>m"
                                          << "ok";
}

void TestGraphScene::connectNodes()
{
    QFETCH(QString, graph);
    QFETCH(QString, edge);
    QFETCH(QString, reason);
    TestGraph g(graph);
    QVERIFY(g.valid);
    StubNode *start = g[edge.section(QLatin1Char('>'), 0, 0)];
    StubNode *end = g[edge.section(QLatin1Char('>'), 1)];
    const int before = g.scene.connections().size();
    QString why = QStringLiteral("untouched");
    Connection *connection = g.scene.connectNodes(start, end, &why);
    QCOMPARE(connection ? QStringLiteral("ok") : why, reason);
    QCOMPARE(g.scene.connections().size(), before + (connection ? 1 : 0));
    if (connection) {
        QCOMPARE(connection->scene(), &g.scene);
        QVERIFY(end->isConnectedFrom(start));
        QVERIFY(!start->isConnectedFrom(end));
    }
}

void TestGraphScene::candidateTargets_data()
{
    QTest::addColumn<QString>("graph");
    QTest::addColumn<QString>("start");
    QTest::addColumn<QString>("candidates");
    QTest::addColumn<bool>("canConnectOut");
    QTest::newRow("in scene order") << "a b@0,90 c@0,30 d@50,30"
                                    << "a"
                                    << "c,d,b" << true;
    QTest::newRow("upstream closure left out") << "a b c d@0,5 | a>b b>c"
                                               << "c"
                                               << "d" << true;
    QTest::newRow("connected or full left out") << "a b o:1/0@0,10 x@0,20 | a>b b>o"
                                                << "a"
                                                << "x" << true;
    QTest::newRow("no candidate") << "a b | a>b"
                                  << "b"
                                  << "" << false;
    QTest::newRow("candidates but outputs used") << "a:0/1 b c@0,10 | a>b"
                                                 << "a"
                                                 << "c" << false;
}

void TestGraphScene::candidateTargets()
{
    QFETCH(QString, graph);
    QFETCH(QString, start);
    QFETCH(QString, candidates);
    QFETCH(bool, canConnectOut);
    TestGraph g(graph);
    QVERIFY(g.valid);
    QCOMPARE(TestGraph::names(g.scene.candidateTargets(g[start])), candidates);
    QCOMPARE(g[start]->canConnectOut(), canConnectOut);
}

void TestGraphScene::neighbourOrder_data()
{
    QTest::addColumn<bool>("sorted");
    QTest::addColumn<QString>("upstream");
    QTest::addColumn<QString>("downstream");
    QTest::newRow("connection order") << false << "b,a"
                                      << "m,x,y";
    QTest::newRow("scene order") << true << "a,b"
                                 << "y,x,m";
}

void TestGraphScene::neighbourOrder()
{
    QFETCH(bool, sorted);
    QFETCH(QString, upstream);
    QFETCH(QString, downstream);
    // m's inputs were connected bottom first, a's outputs right first.
    TestGraph g(QStringLiteral("a@0,0 b@0,100 m@200,50 x@300,0 y@100,0 | b>m a>m a>x a>y"));
    QVERIFY(g.valid);
    QCOMPARE(TestGraph::names(g["m"]->upstream(sorted)), upstream);
    QCOMPARE(TestGraph::names(g["a"]->downstream(sorted)), downstream);
}

void TestGraphScene::siblings_data()
{
    QTest::addColumn<QString>("node");
    QTest::addColumn<QString>("siblings"); // walk order: each upstream's outputs in connection order
    QTest::addColumn<QString>("previous");
    QTest::addColumn<QString>("next");
    QTest::newRow("middle") << "b"
                            << "d,c"
                            << "c"
                            << "d";
    QTest::newRow("first in scene order") << "c"
                                          << "d,b"
                                          << "-"
                                          << "b";
    QTest::newRow("two upstreams") << "d"
                                   << "b,c,e"
                                   << "b"
                                   << "e";
    QTest::newRow("last") << "e"
                          << "d"
                          << "d"
                          << "-";
    QTest::newRow("root") << "p"
                          << ""
                          << "-"
                          << "-";
}

void TestGraphScene::siblings()
{
    QFETCH(QString, node);
    QFETCH(QString, siblings);
    QFETCH(QString, previous);
    QFETCH(QString, next);
    // p feeds d, b and c in that order; q feeds d and e. Scene order: c, b, d, e.
    TestGraph g(QStringLiteral("p@0,0 q@0,300 b@200,100 c@200,0 d@200,200 e@200,300 | p>d p>b p>c q>d q>e"));
    QVERIFY(g.valid);
    QCOMPARE(TestGraph::names(g[node]->siblings(false)), siblings);
    QCOMPARE(g[node]->siblings(true).count(g[node]), 1);
    QCOMPARE(TestGraph::name(g[node]->previousSibling()), previous);
    QCOMPARE(TestGraph::name(g[node]->nextSibling()), next);
}

void TestGraphScene::closures_data()
{
    // A diamond a>b, a>c, b>d, c>d, then d>e. Closures are nearest first.
    QTest::addColumn<QString>("node");
    QTest::addColumn<QString>("selected");
    QTest::addColumn<QString>("up");
    QTest::addColumn<QString>("down");
    QTest::addColumn<QString>("selectedUp");
    QTest::addColumn<QString>("selectedDown");
    QTest::newRow("middle") << "d"
                            << ""
                            << "b,c,a"
                            << "e"
                            << ""
                            << "";
    QTest::newRow("top, each once") << "a"
                                    << ""
                                    << ""
                                    << "b,c,d,e"
                                    << ""
                                    << "";
    QTest::newRow("selected forms") << "d"
                                    << "a,c,e,d"
                                    << "b,c,a"
                                    << "e"
                                    << "c,a"
                                    << "e";
    QTest::newRow("selection past a gap") << "a"
                                          << "e"
                                          << ""
                                          << "b,c,d,e"
                                          << ""
                                          << "e";
}

void TestGraphScene::closures()
{
    QFETCH(QString, node);
    QFETCH(QString, selected);
    QFETCH(QString, up);
    QFETCH(QString, down);
    QFETCH(QString, selectedUp);
    QFETCH(QString, selectedDown);
    TestGraph g(QStringLiteral("a b c d e | a>b a>c b>d c>d d>e"));
    QVERIFY(g.valid);
    for (const QString &name : selected.split(QLatin1Char(','), Qt::SkipEmptyParts))
        g[name]->setSelected(true);
    const Node *n = g[node];
    QCOMPARE(TestGraph::names(n->upstreamClosure()), up);
    QCOMPARE(TestGraph::names(n->downstreamClosure()), down);
    QCOMPARE(TestGraph::names(n->selectedUpstreamClosure()), selectedUp);
    QCOMPARE(TestGraph::names(n->selectedDownstreamClosure()), selectedDown);
    for (Node *other : g.scene.nodes())
        QCOMPARE(n->reachable(other), n->downstreamClosure().contains(other));
}

void TestGraphScene::sceneOrder_data()
{
    QTest::addColumn<QString>("graph");
    QTest::addColumn<QString>("expected");
    QTest::newRow("top to bottom") << "a@0,300 b@0,100 c@0,200"
                                   << "b,c,a";
    QTest::newRow("then left to right") << "a@50,0 b@-20,0 c@10,0"
                                        << "b,c,a";
    QTest::newRow("then by id") << "a@5,5 b@5,5 c@0,5"
                                << "c,a,b";
}

void TestGraphScene::sceneOrder()
{
    QFETCH(QString, graph);
    QFETCH(QString, expected);
    TestGraph g(graph);
    QVERIFY(g.valid);
    QList<Node *> nodes = g.scene.nodes();
    std::reverse(nodes.begin(), nodes.end());
    GraphScene::sortNodes(nodes);
    QCOMPARE(TestGraph::names(nodes), expected);
    for (Node *node : nodes)
        node->setSelected(true);
    QCOMPARE(TestGraph::names(g.scene.selectedNodes()), expected);
}

void TestGraphScene::removeAndTake()
{
    TestGraph g(QStringLiteral("a b c | a>b b>c a>c"));
    QVERIFY(g.scene.disconnectNodes(g["a"], g["c"]));
    QVERIFY(!g.scene.disconnectNodes(g["a"], g["c"]));
    QCOMPARE(TestGraph::names(g["c"]->upstream(false)), QStringLiteral("b"));

    // Taken out, a node lives on without connections, and comes back with its id.
    StubNode *b = g["b"];
    g.scene.takeNode(b);
    QVERIFY(!b->scene());
    QVERIFY(b->connections(Node::AllConnections).isEmpty());
    QVERIFY(g["c"]->connections(Node::AllConnections).isEmpty());
    QVERIFY(g.scene.connections().isEmpty());
    g.scene.addNode(b);
    QCOMPARE(g.scene.node(2), b);
    QVERIFY(g.scene.connectNodes(g["a"], b));

    QPointer<Node> a(g["a"]);
    g.scene.removeNode(a);
    QVERIFY(a.isNull());
    QVERIFY(b->connections(Node::AllConnections).isEmpty());
    QCOMPARE(TestGraph::names(g.scene.nodes()), QStringLiteral("b,c"));

    // A node added without an id gets the next one.
    Node::setNextId(20);
    auto *fresh = new StubNode;
    g.scene.addNode(fresh);
    QCOMPARE(fresh->id(), 20);
}

void TestGraphScene::connectionFollowsMoves()
{
    TestGraph g(QStringLiteral("a b | a>b"));
    Connection *connection = g["a"]->connections(Node::Outgoing).value(0);
    QVERIFY(connection);
    g["b"]->setPos(300, 40);
    QCOMPARE(connection->path().pointAtPercent(1.0), g["b"]->inPortScenePos());
    QCOMPARE(connection->path().pointAtPercent(0.0), g["a"]->outPortScenePos());
}

void TestGraphScene::factory()
{
    NodeFactory factory;
    factory.registerCreator(QStringLiteral("Note"), [] { return nullptr; });
    factory.registerCreator(QStringLiteral("Note"), [] { return new NoteNode; });
    QCOMPARE(factory.typeNames(), QStringList {"Note"});
    QScopedPointer<Node> note(factory.create(QStringLiteral("Note")));
    QVERIFY(note);
    QCOMPARE(note->typeName(), QStringLiteral("Note"));
    QVERIFY(!factory.create(QStringLiteral("note")));
    QVERIFY(!factory.create(QStringLiteral("Chart")));
}

QTEST_MAIN(TestGraphScene)
#include "tst_graphscene.moc"
