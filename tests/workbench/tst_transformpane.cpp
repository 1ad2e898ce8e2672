#include "canvastestutil.h"

#include "flow/connection.h"
#include "transforms/transformnode.h"
#include "workbench/graphview.h"
#include "workbench/transformpane.h"

#include <QLineEdit>
#include <QListView>
#include <QUndoStack>

using namespace CanvasTest;

class TestTransformPane : public QObject
{
    Q_OBJECT

private slots:
    void search_data();
    void search();
    void hiddenAdvancedMatches();
    void groupedByCategory();
    void enterAddsFirstResult();
    void adding_data();
    void adding();
    void insertIntoConnection();
};

void TestTransformPane::search_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("listed");
    QTest::addColumn<QString>("notListed");
    QTest::addColumn<QString>("hintStart");
    QTest::addColumn<QString>("first");
    QTest::newRow("one word") << "filter" << "Filter" << "Join" << "" << "Filter";
    QTest::newRow("case folded") << "FILT" << "Filter" << "Join" << "" << "Filter";
    QTest::newRow("two words, both must start a keyword") << "sort rows" << "Sort" << "Filter" << "" << "Sort";
    QTest::newRow("extra spaces are ignored") << "   sort    rows  " << "Sort" << "Filter" << "" << "Sort";
    // Concat Cols has the keyword "join" too, and comes first by name; Join's own name wins.
    QTest::newRow("a name before keywords") << "join" << "Concat Cols" << "Filter" << "" << "Join";
    QTest::newRow("no match") << "zzzqqq" << "" << "Filter" << "No transform matches 'zzzqqq'" << "";
}

void TestTransformPane::search()
{
    QFETCH(QString, text);
    QFETCH(QString, listed);
    QFETCH(QString, notListed);
    QFETCH(QString, hintStart);
    QFETCH(QString, first);
    TransformPane pane(Application::instance()->transforms(), nullptr, TransformPane::ItemActions());
    pane.setSearchText(text);
    const QStringList texts = pane.listedTexts();
    if (!listed.isEmpty())
        QVERIFY2(texts.contains(listed), qPrintable(texts.join(QLatin1Char(','))));
    QVERIFY(!texts.contains(notListed));
    // Results come without category headers; those named by the words first, then by name.
    for (const QString &row : texts)
        QVERIFY(!row.startsWith(QLatin1Char('[')));
    QCOMPARE(texts.value(0), first);
    QStringList rest = texts.mid(1);
    QStringList sorted = rest;
    std::sort(sorted.begin(), sorted.end(), [](const QString &a, const QString &b) { return a.compare(b, Qt::CaseInsensitive) < 0; });
    QCOMPARE(rest, sorted);
    if (hintStart.isEmpty())
        QVERIFY(pane.hintText().startsWith(QStringLiteral("%1 match(es)").arg(texts.size())));
    else
        QCOMPARE(pane.hintText(), hintStart);
}

void TestTransformPane::hiddenAdvancedMatches()
{
    const Transform *advanced = nullptr;
    for (const Transform *transform : Application::instance()->transforms()) {
        if (transform->isAdvanced()) {
            advanced = transform;
            break;
        }
    }
    if (!advanced)
        QSKIP("No advanced transform registered");
    TransformPane pane(Application::instance()->transforms(), nullptr, TransformPane::ItemActions());
    const QString word = advanced->name().toLower().section(QLatin1Char(' '), 0, 0);
    pane.setSearchText(word);
    QVERIFY(!pane.listedTexts().contains(advanced->name()));
    QVERIFY2(pane.hintText().contains(QStringLiteral("advanced transform(s) also match. Check 'show advanced' to see them.")),
        qPrintable(pane.hintText()));
    pane.setShowAdvanced(true);
    QVERIFY(pane.listedTexts().contains(advanced->name()));
    QVERIFY(!pane.hintText().contains(QStringLiteral("advanced")));
}

void TestTransformPane::groupedByCategory()
{
    TransformPane pane(Application::instance()->transforms(), nullptr, TransformPane::ItemActions());
    const QStringList all = pane.listedTexts();
    QCOMPARE(all.first(), QStringLiteral("[Merge]"));
    QVERIFY(all.indexOf(QStringLiteral("[Row]")) < all.indexOf(QStringLiteral("Filter")));
    pane.setCategory(int(TransformCategory::Merge));
    const QStringList merge = pane.listedTexts();
    QVERIFY(merge.contains(QStringLiteral("Join")));
    QVERIFY(!merge.contains(QStringLiteral("Filter")));
    QVERIFY(!merge.first().startsWith(QLatin1Char('[')));
}

void TestTransformPane::enterAddsFirstResult()
{
    TransformPane pane(Application::instance()->transforms(), nullptr, TransformPane::ItemActions());
    QStringList activated;
    connect(&pane, &TransformPane::transformActivated, this,
        [&activated](const Transform *transform) { activated << transform->id(); });
    pane.setSearchText(QStringLiteral("filter"));
    QTest::keyClick(pane.searchEdit(), Qt::Key_Return);
    QCOMPARE(activated, QStringList({QStringLiteral("Filter")}));
    // Down moves into the list, where Enter adds the current row.
    QTest::keyClick(pane.searchEdit(), Qt::Key_Down);
    QTest::keyClick(pane.transformList(), Qt::Key_Return);
    QCOMPARE(activated.size(), 2);
}

void TestTransformPane::adding_data()
{
    QTest::addColumn<QString>("transform");
    QTest::addColumn<int>("selectedInputs");
    QTest::addColumn<bool>("added");
    QTest::addColumn<int>("connections");
    QTest::addColumn<QString>("message");
    QTest::newRow("nothing selected: added alone") << "Filter" << 0 << true << 0 << "";
    QTest::newRow("one input into a one-input transform") << "Filter" << 1 << true << 1 << "";
    QTest::newRow("two inputs into a merge") << "Join" << 2 << true << 2 << "";
    QTest::newRow("too many for the transform")
        << "Filter" << 3 << false << 0 << "'Filter' takes 1 Input/Transform item; 3 items are selected";
}

void TestTransformPane::adding()
{
    QFETCH(QString, transform);
    QFETCH(int, selectedInputs);
    QFETCH(bool, added);
    QFETCH(int, connections);
    QFETCH(QString, message);
    GraphScene scene;
    QUndoStack stack;
    GraphView view;
    view.setGraphScene(&scene, &stack);
    for (int i = 0; i < selectedInputs; ++i)
        addInput(scene, QPointF(0, i * 100))->setSelected(true);
    QSignalSpy messages(&view, &GraphView::statusMessage);
    const int before = scene.nodes().size();
    Node *node = view.addTransform(prototype(transform));
    QCOMPARE(node != nullptr, added);
    QCOMPARE(scene.nodes().size(), before + (added ? 1 : 0));
    QCOMPARE(scene.connections().size(), connections);
    if (added) {
        QCOMPARE(stack.count(), 1);
        QCOMPARE(stack.undoText(), QStringLiteral("add '%1'").arg(prototype(transform)->name()));
        QCOMPARE(view.currentNode(), node);
        QCOMPARE(scene.selectedNodes(), QList<Node *>({node}));
        // Placed to the right of what it is connected from.
        if (connections > 0)
            QVERIFY(node->pos().x() >= 200);
        stack.undo();
        QCOMPARE(scene.nodes().size(), before);
    } else {
        QCOMPARE(stack.count(), 0);
        QVERIFY(!messages.isEmpty());
        QCOMPARE(messages.last().first().toString(), message);
    }
}

void TestTransformPane::insertIntoConnection()
{
    GraphScene scene;
    QUndoStack stack;
    GraphView view;
    view.setGraphScene(&scene, &stack);
    Node *input = addInput(scene, QPointF(0, 0));
    auto *sort = new TransformNode(prototype(QStringLiteral("Sort"))->clone());
    sort->setPos(400, 0);
    scene.addNode(sort);
    Connection *connection = scene.connectNodes(input, sort);
    QVERIFY(connection);
    connection->setSelected(true);
    Node *filter = view.addTransform(prototype(QStringLiteral("Filter")));
    QVERIFY(filter);
    QCOMPARE(stack.undoText(), QStringLiteral("insert 'Filter'"));
    QCOMPARE(scene.connections().size(), 2);
    QVERIFY(filter->isConnectedFrom(input));
    QVERIFY(sort->isConnectedFrom(filter));
    QVERIFY(!sort->isConnectedFrom(input));
    stack.undo();
    QCOMPARE(scene.nodes().size(), 2);
    QCOMPARE(scene.connections().size(), 1);
}

CANVAS_TEST_MAIN(TestTransformPane)
#include "tst_transformpane.moc"
