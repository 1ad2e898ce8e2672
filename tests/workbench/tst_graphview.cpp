#include "canvastestutil.h"

#include "charts/chartnode.h"
#include "core/settings.h"
#include "flow/connection.h"
#include "flow/notenode.h"
#include "outputs/outputnode.h"
#include "transforms/transformnode.h"
#include "workbench/graphview.h"
#include "workbench/graphviewchooser.h"
#include "workbench/graphviewpainter.h"
#include "workbench/prompts.h"

#include <QGraphicsTextItem>
#include <QLineEdit>
#include <QMimeData>
#include <QUndoStack>
#include <QUrl>

using namespace CanvasTest;

class TestGraphView : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();
    void dragFromPort_data();
    void dragFromPort();
    void releaseOnEmptyCanvasOpensChooser();
    void chooserAddsChart_data();
    void chooserAddsChart();
    void noteEditsInPlace_data();
    void noteEditsInPlace();
    void newNoteClearsItems();
    void rubberBand();
    void wheelZoomLimits_data();
    void wheelZoomLimits();
    void snapping_data();
    void snapping();
    void arrowKeysNavigate();
    void ctrlArrowMovesMergeIntoOneStep();
    void dropFilesMakesInputs();
    void newItemsStartFromSavedDefaults_data();
    void newItemsStartFromSavedDefaults();
    void dropOntoInputReplacesItsFile();
    void dropFolderSaysSo();
    void deleteAsksWhenColumnOptionsDownstream();

private:
    // A drag entering at pos, then the drop, as the window system delivers them.
    void drop(QMimeData &data, const QPoint &pos)
    {
        QDragEnterEvent enter(pos, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(m_view->viewport(), &enter);
        QDragMoveEvent move(pos, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(m_view->viewport(), &move);
        QDropEvent dropped(pos, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(m_view->viewport(), &dropped);
    }

    QPoint viewPos(const Node *node, const QPointF &offset = QPointF()) const
    {
        return m_view->mapFromScene(node->pos() + offset);
    }

    // A new input at (200, 0), its output port dragged to an empty place of the canvas; the
    // chooser that opens there.
    ItemChooserPopup *dragFromNewInputTo(const QPointF &scenePos, Node *&input)
    {
        input = addInput(*m_scene, QPointF(200, 0));
        QCoreApplication::processEvents(); // the scene grows around the new item first
        const QPoint port = viewPos(input, GraphViewPainter::outPortPos());
        const QPoint empty = m_view->mapFromScene(scenePos);
        QTest::mouseMove(m_view->viewport(), port);
        QTest::mousePress(m_view->viewport(), Qt::LeftButton, Qt::NoModifier, port);
        QTest::mouseMove(m_view->viewport(), empty);
        QTest::mouseRelease(m_view->viewport(), Qt::LeftButton, Qt::NoModifier, empty);
        return m_view->findChild<ItemChooserPopup *>();
    }

    GraphScene *m_scene = nullptr;
    QUndoStack *m_stack = nullptr;
    GraphView *m_view = nullptr;
    QTemporaryDir m_folder;
};

void TestGraphView::init()
{
    m_scene = new GraphScene;
    m_stack = new QUndoStack;
    m_view = new GraphView;
    m_view->resize(900, 600);
    m_view->setGraphScene(m_scene, m_stack);
    m_view->show();
    QVERIFY(QTest::qWaitForWindowExposed(m_view));
    m_view->centerOn(300, 100);
}

void TestGraphView::cleanup()
{
    m_view->setGraphScene(nullptr, nullptr);
    delete m_view;
    delete m_stack;
    delete m_scene;
}

void TestGraphView::dragFromPort_data()
{
    QTest::addColumn<QString>("target"); // "filter", "input" (upstream), "self", "fullOutput"
    QTest::addColumn<bool>("connects");
    QTest::addColumn<QString>("message");
    QTest::newRow("to a candidate") << "filter" << true << "";
    QTest::newRow("to an item upstream with room") << "join" << false
                                                   << "Can't connect 'Sort' to 'Join': it would make a loop";
    QTest::newRow("to an input") << "input" << false << "'%1' takes no more inputs";
    QTest::newRow("to a full output") << "fullOutput" << false << "'%1' takes no more inputs";
    QTest::newRow("to itself") << "self" << false << "";
}

void TestGraphView::dragFromPort()
{
    QFETCH(QString, target);
    QFETCH(bool, connects);
    QFETCH(QString, message);
    Node *input = addInput(*m_scene, QPointF(0, 0));
    auto *join = new TransformNode(prototype(QStringLiteral("Join"))->clone());
    join->setPos(200, 0);
    m_scene->addNode(join);
    m_scene->connectNodes(input, join);
    auto *sort = new TransformNode(prototype(QStringLiteral("Sort"))->clone());
    sort->setPos(400, 0);
    m_scene->addNode(sort);
    m_scene->connectNodes(join, sort);
    auto *filter = new TransformNode(prototype(QStringLiteral("Filter"))->clone());
    filter->setPos(600, 150);
    m_scene->addNode(filter);
    auto *output = new OutputNode;
    output->setPos(600, -150);
    m_scene->addNode(output);
    m_scene->connectNodes(input, output);
    QSignalSpy messages(m_view, &GraphView::statusMessage);

    Node *end = target == QLatin1String("filter") ? static_cast<Node *>(filter)
        : target == QLatin1String("input")        ? input
        : target == QLatin1String("join")         ? static_cast<Node *>(join)
        : target == QLatin1String("self")         ? static_cast<Node *>(sort)
                                                  : static_cast<Node *>(output);
    const int connectionsBefore = m_scene->connections().size();
    const QPoint port = viewPos(sort, GraphViewPainter::outPortPos());
    QTest::mouseMove(m_view->viewport(), port);
    QTest::mousePress(m_view->viewport(), Qt::LeftButton, Qt::NoModifier, port);
    QTest::mouseMove(m_view->viewport(), viewPos(end));
    QTest::mouseRelease(m_view->viewport(), Qt::LeftButton, Qt::NoModifier, viewPos(end));

    QCOMPARE(m_scene->connections().size(), connectionsBefore + (connects ? 1 : 0));
    if (connects) {
        QVERIFY(end->isConnectedFrom(sort));
        QCOMPARE(m_stack->count(), 1);
        QCOMPARE(m_stack->undoText(), QStringLiteral("connect"));
    } else {
        QCOMPARE(m_stack->count(), 0);
        if (message.isEmpty()) {
            QVERIFY(messages.isEmpty());
        } else {
            QVERIFY(!messages.isEmpty());
            QCOMPARE(messages.last().first().toString(), message.contains(QLatin1String("%1")) ? message.arg(end->name()) : message);
        }
    }
}

void TestGraphView::releaseOnEmptyCanvasOpensChooser()
{
    m_view->setTransformPrototypes(Application::instance()->transforms());
    Node *input = nullptr;
    ItemChooserPopup *popup = dragFromNewInputTo(QPointF(450, 150), input);
    QVERIFY(popup);
    QCOMPARE(popup->searchEdit()->placeholderText(), QStringLiteral("Add item connected from 'Clipboard'"));
    QVERIFY(popup->listedTexts().contains(QStringLiteral("Output")));
    QTest::keyClicks(popup->searchEdit(), QStringLiteral("filter"));
    QCOMPARE(popup->listedTexts().value(0), QStringLiteral("Filter"));
    QTest::keyClick(popup->searchEdit(), Qt::Key_Return);
    QCOMPARE(m_scene->nodes().size(), 2);
    Node *filter = m_scene->selectedNodes().value(0);
    QVERIFY(filter && filter->isConnectedFrom(input));
    QCOMPARE(filter->pos(), QPointF(450, 150));
    QCOMPARE(m_stack->undoText(), QStringLiteral("add 'Filter'"));
}

void TestGraphView::chooserAddsChart_data()
{
    QTest::addColumn<QString>("typed");
    QTest::addColumn<QStringList>("firstListed");
    QTest::addColumn<int>("downPresses"); // to reach "Chart" from the first row
    QTest::newRow("nothing typed: Output, then Chart") << "" << QStringList({"Output", "Chart"}) << 1;
    QTest::newRow("typed 'ch'") << "ch" << QStringList({"Chart"}) << 0;
    QTest::newRow("typed 'CHART'") << "CHART" << QStringList({"Chart"}) << 0;
}

void TestGraphView::chooserAddsChart()
{
    QFETCH(QString, typed);
    QFETCH(QStringList, firstListed);
    QFETCH(int, downPresses);
    m_view->setTransformPrototypes(Application::instance()->transforms());
    Node *input = nullptr;
    ItemChooserPopup *popup = dragFromNewInputTo(QPointF(500, 200), input);
    QVERIFY(popup);
    QTest::keyClicks(popup->searchEdit(), typed);
    QCOMPARE(popup->listedTexts().mid(0, firstListed.size()), firstListed);
    for (int i = 0; i < downPresses; ++i)
        QTest::keyClick(popup->searchEdit(), Qt::Key_Down);
    QTest::keyClick(popup->searchEdit(), Qt::Key_Return);
    QCOMPARE(m_scene->nodes().size(), 2);
    auto *chart = qobject_cast<ChartNode *>(m_scene->selectedNodes().value(0));
    QVERIFY(chart);
    QVERIFY(chart->isConnectedFrom(input));
    QCOMPARE(chart->pos(), QPointF(500, 200));
    QVERIFY(!chart->options().writeFile);
    QCOMPARE(m_stack->count(), 1);
    QCOMPARE(m_stack->undoText(), QStringLiteral("add chart"));
}

void TestGraphView::noteEditsInPlace_data()
{
    QTest::addColumn<QString>("start"); // "doubleClick" or "enter"
    QTest::addColumn<QString>("typed"); // "|" stands for Enter, a new line
    QTest::addColumn<QString>("end"); // "ctrlEnter", "escape", "clickAway", "focusOut"
    QTest::addColumn<QString>("expected");
    QTest::addColumn<int>("steps");
    QTest::newRow("double-click, type, Ctrl+Enter keeps")
        << "doubleClick" << " more" << "ctrlEnter" << "Remember more" << 1;
    QTest::newRow("Enter starts, Enter makes a new line")
        << "enter" << "|second" << "ctrlEnter" << "Remember\nsecond" << 1;
    QTest::newRow("Escape drops the change") << "doubleClick" << " more" << "escape" << "Remember" << 0;
    QTest::newRow("a click on the canvas keeps it") << "doubleClick" << "!" << "clickAway" << "Remember!" << 1;
    QTest::newRow("focus leaving the canvas keeps it") << "enter" << "!" << "focusOut" << "Remember!" << 1;
    QTest::newRow("no change, no step") << "doubleClick" << "" << "ctrlEnter" << "Remember" << 0;
    QTest::newRow("Delete and arrows edit the text, not the canvas")
        << "enter" << "<<<x" << "ctrlEnter" << "Rememxer" << 1;
}

void TestGraphView::noteEditsInPlace()
{
    QFETCH(QString, start);
    QFETCH(QString, typed);
    QFETCH(QString, end);
    QFETCH(QString, expected);
    QFETCH(int, steps);
    m_view->activateWindow();
    m_view->setFocus();
    auto *note = new NoteNode;
    note->setText(QStringLiteral("Remember"));
    note->setPos(100, 50);
    m_scene->addNode(note);
    const QPoint onNote = m_view->mapFromScene(note->mapToScene(QPointF(20, 12)));
    if (start == QLatin1String("doubleClick")) {
        QTest::mouseDClick(m_view->viewport(), Qt::LeftButton, Qt::NoModifier, onNote);
    } else {
        m_view->setCurrentNode(note);
        QTest::keyClick(m_view, Qt::Key_Return);
    }
    QGraphicsTextItem *editor = m_view->noteEditor();
    QVERIFY(editor);
    QCOMPARE(editor->toPlainText(), QStringLiteral("Remember"));
    // The cursor starts at the end of the text.
    for (const QChar c : typed) {
        if (c == QLatin1Char('|'))
            QTest::keyClick(m_view, Qt::Key_Return);
        else if (c == QLatin1Char('<'))
            QTest::keyClick(m_view, Qt::Key_Left);
        else if (c == QLatin1Char('x')) {
            QTest::keyClick(m_view, Qt::Key_Delete);
            QTest::keyClicks(m_view, QStringLiteral("x"));
        } else
            QTest::keyClicks(m_view, QString(c));
    }
    if (end == QLatin1String("ctrlEnter")) {
        QTest::keyClick(m_view, Qt::Key_Return, Qt::ControlModifier);
    } else if (end == QLatin1String("escape")) {
        QTest::keyClick(m_view, Qt::Key_Escape);
    } else if (end == QLatin1String("clickAway")) {
        QTest::mouseClick(m_view->viewport(), Qt::LeftButton, Qt::NoModifier, m_view->mapFromScene(QPointF(600, 400)));
    } else {
        m_view->clearFocus();
    }
    QTRY_VERIFY(!m_view->noteEditor());
    QCOMPARE(note->text(), expected);
    QCOMPARE(m_stack->count(), steps);
    if (steps > 0) {
        QCOMPARE(m_stack->undoText(), QStringLiteral("note change"));
        m_stack->undo();
        auto *restored = qobject_cast<NoteNode *>(m_scene->nodes().value(0));
        QVERIFY(restored);
        QCOMPARE(restored->text(), QStringLiteral("Remember"));
    }
    QCOMPARE(m_scene->nodes().size(), 1); // nothing deleted by the keys typed
}

void TestGraphView::newNoteClearsItems()
{
    // Added from the menu, a note goes near the middle of the view but never over an item.
    Node *item = addInput(*m_scene, m_view->mapToScene(m_view->viewport()->rect().center()));
    Node *first = m_view->addNote();
    QVERIFY(first);
    m_view->setFocus(); // ends the edit of the first note
    Node *second = m_view->addNote();
    QVERIFY(second);
    const QRectF itemShape = QRectF(-75, -28, 150, 106).translated(item->pos());
    QVERIFY(!first->sceneBoundingRect().intersects(itemShape));
    QVERIFY(!second->sceneBoundingRect().intersects(itemShape));
    QVERIFY(!second->sceneBoundingRect().intersects(first->sceneBoundingRect()));
}

void TestGraphView::rubberBand()
{
    Node *a = addInput(*m_scene, QPointF(0, 0));
    Node *b = addInput(*m_scene, QPointF(200, 0));
    Node *far = addInput(*m_scene, QPointF(600, 300));
    const QPoint from = m_view->mapFromScene(QPointF(-120, -80));
    const QPoint to = m_view->mapFromScene(QPointF(260, 60));
    QTest::mousePress(m_view->viewport(), Qt::LeftButton, Qt::NoModifier, from);
    QMouseEvent move(QEvent::MouseMove, to, Qt::NoButton, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(m_view->viewport(), &move);
    QTest::mouseRelease(m_view->viewport(), Qt::LeftButton, Qt::NoModifier, to);
    QVERIFY(a->isSelected());
    QVERIFY(b->isSelected());
    QVERIFY(!far->isSelected());
    QCOMPARE(m_stack->count(), 0); // selecting is no edit
}

void TestGraphView::wheelZoomLimits_data()
{
    QTest::addColumn<int>("notches");
    QTest::addColumn<double>("expected");
    QTest::newRow("one notch in") << 1 << 1.15;
    QTest::newRow("one notch out") << -1 << 1 / 1.15;
    QTest::newRow("held at 400%") << 40 << 4.0;
    QTest::newRow("held at 10%") << -40 << 0.1;
}

void TestGraphView::wheelZoomLimits()
{
    QFETCH(int, notches);
    QFETCH(double, expected);
    m_view->setZoom(1.0);
    const int step = notches > 0 ? 1 : -1;
    for (int i = 0; i != notches; i += step) {
        QWheelEvent wheel(QPointF(100, 100), m_view->viewport()->mapToGlobal(QPoint(100, 100)), QPoint(),
            QPoint(0, 120 * step), Qt::NoButton, Qt::ControlModifier, Qt::NoScrollPhase, false);
        QApplication::sendEvent(m_view->viewport(), &wheel);
    }
    QVERIFY2(qAbs(m_view->zoom() - expected) < 1e-6, qPrintable(QString::number(m_view->zoom())));
}

void TestGraphView::snapping_data()
{
    QTest::addColumn<QPointF>("point");
    QTest::addColumn<QPointF>("expected");
    QTest::newRow("already on the grid") << QPointF(32, 48) << QPointF(32, 48);
    QTest::newRow("rounds down below half a step") << QPointF(39.9, 55) << QPointF(32, 48);
    QTest::newRow("rounds up from half a step") << QPointF(40, 56) << QPointF(48, 64);
    QTest::newRow("negative") << QPointF(-7, -9) << QPointF(0, -16);
}

void TestGraphView::snapping()
{
    QFETCH(QPointF, point);
    QFETCH(QPointF, expected);
    QCOMPARE(GraphView::snapped(point), expected);
}

void TestGraphView::arrowKeysNavigate()
{
    Node *left = addInput(*m_scene, QPointF(0, 0));
    Node *right = addInput(*m_scene, QPointF(200, 20));
    Node *below = addInput(*m_scene, QPointF(10, 200));
    m_view->setFocus();
    m_view->setCurrentNode(left);
    left->setSelected(true);
    QTest::keyClick(m_view, Qt::Key_Right);
    QCOMPARE(m_view->currentNode(), right);
    QCOMPARE(m_scene->selectedNodes(), QList<Node *>({right}));
    QTest::keyClick(m_view, Qt::Key_Left);
    QCOMPARE(m_view->currentNode(), left);
    QTest::keyClick(m_view, Qt::Key_Down, Qt::ShiftModifier);
    QCOMPARE(m_view->currentNode(), below);
    QCOMPARE(m_scene->selectedNodes().size(), 2);
    QCOMPARE(m_stack->count(), 0);
}

void TestGraphView::ctrlArrowMovesMergeIntoOneStep()
{
    Node *node = addInput(*m_scene, QPointF(0, 0));
    m_view->setFocus();
    node->setSelected(true);
    m_view->setCurrentNode(node);
    QTest::keyClick(m_view, Qt::Key_Right, Qt::ControlModifier);
    QTest::keyClick(m_view, Qt::Key_Right, Qt::ControlModifier);
    QTest::keyClick(m_view, Qt::Key_Down, Qt::ControlModifier | Qt::ShiftModifier);
    QCOMPARE(node->pos(), QPointF(32, 1));
    QCOMPARE(m_stack->count(), 1);
    QCOMPARE(m_stack->undoText(), QStringLiteral("move"));
    m_stack->undo();
    QCOMPARE(m_scene->nodes().first()->pos(), QPointF(0, 0));
}

void TestGraphView::dropFilesMakesInputs()
{
    const QStringList names = {QStringLiteral("a.csv"), QStringLiteral("b.json"), QStringLiteral("c.xlsx")};
    QList<QUrl> urls;
    for (const QString &name : names) {
        QFile file(m_folder.filePath(name));
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write("x\n");
        urls << QUrl::fromLocalFile(file.fileName());
    }
    QMimeData data;
    data.setUrls(urls);
    drop(data, QPoint(200, 200));
    const QList<Node *> nodes = m_scene->nodes();
    QCOMPARE(nodes.size(), 3);
    QList<int> types;
    for (Node *node : nodes)
        types << static_cast<InputNode *>(node)->fileType();
    QCOMPARE(types, QList<int>({IONode::DelimitedText, IONode::Json, IONode::ExcelXlsx}));
    // At the drop point, the next ones 96 px lower.
    QCOMPARE(nodes.at(1)->pos().y() - nodes.at(0)->pos().y(), 96.0);
    QCOMPARE(m_stack->count(), 1);
    QCOMPARE(m_stack->undoText(), QStringLiteral("add input"));
}

void TestGraphView::newItemsStartFromSavedDefaults_data()
{
    QTest::addColumn<QString>("item");
    QTest::addColumn<bool>("saved");
    for (const char *item : {"input", "text input", "output", "chart"}) {
        QTest::newRow(qPrintable(QStringLiteral("%1, defaults saved").arg(QLatin1String(item))))
            << QString::fromLatin1(item) << true;
        QTest::newRow(qPrintable(QStringLiteral("%1, factory").arg(QLatin1String(item))))
            << QString::fromLatin1(item) << false;
    }
}

void TestGraphView::newItemsStartFromSavedDefaults()
{
    QFETCH(QString, item);
    QFETCH(bool, saved);
    QFile::remove(m_folder.filePath(QStringLiteral("defaults.ini")));
    Settings settings(m_folder.filePath(QStringLiteral("defaults.ini")));
    if (saved) {
        settings.setValue(QStringLiteral("defaults/inputs/delimiter"), QStringLiteral("2"));
        settings.setValue(QStringLiteral("defaults/outputs/write_header"), QStringLiteral("0"));
        settings.setValue(QStringLiteral("defaults/charts/chart_theme"), QStringLiteral("3"));
    }
    m_scene->setSettings(&settings);
    Node *node = nullptr;
    if (item == QLatin1String("input"))
        node = m_view->addInputFiles({m_folder.filePath(QStringLiteral("new.csv"))}).value(0);
    else if (item == QLatin1String("text input"))
        node = m_view->addTextInput(QStringLiteral("a;b\n1;2\n"));
    else if (item == QLatin1String("output"))
        node = m_view->addOutput(m_folder.filePath(QStringLiteral("out.csv")));
    else
        node = m_view->addChart();
    QVERIFY(node);
    if (auto *input = qobject_cast<InputNode *>(node))
        QCOMPARE(input->options().delimiter, saved ? 2 : InputOptions().delimiter);
    else if (auto *output = qobject_cast<OutputNode *>(node))
        QCOMPARE(output->options().writeHeader, !saved);
    else
        QCOMPARE(static_cast<ChartNode *>(node)->options().theme, saved ? 3 : 0);
    // What the item was made for still holds.
    if (item == QLatin1String("output"))
        QCOMPARE(QFileInfo(static_cast<OutputNode *>(node)->path()).fileName(), QStringLiteral("out.csv"));
    m_scene->setSettings(nullptr);
}

void TestGraphView::dropOntoInputReplacesItsFile()
{
    auto *input = new InputNode;
    InputOptions options = input->options();
    options.path = m_folder.filePath(QStringLiteral("old.csv"));
    input->setOptions(options);
    input->setPos(100, 100);
    m_scene->addNode(input);
    QFile file(m_folder.filePath(QStringLiteral("new.json")));
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write("[]");
    file.close();
    QMimeData data;
    data.setUrls({QUrl::fromLocalFile(file.fileName())});
    drop(data, viewPos(input));
    QCOMPARE(m_scene->nodes().size(), 1);
    auto *same = static_cast<InputNode *>(m_scene->nodes().first());
    QCOMPARE(QFileInfo(same->path()).fileName(), QStringLiteral("new.json"));
    QCOMPARE(same->fileType(), int(IONode::Json));
    QCOMPARE(m_stack->undoText(), QStringLiteral("'File' change"));
}

void TestGraphView::dropFolderSaysSo()
{
    QMimeData data;
    data.setUrls({QUrl::fromLocalFile(m_folder.path())});
    QSignalSpy messages(m_view, &GraphView::statusMessage);
    drop(data, QPoint(100, 100));
    QCOMPARE(m_scene->nodes().size(), 0);
    QCOMPARE(messages.size(), 1);
    QVERIFY(messages.first().first().toString().startsWith(QStringLiteral("Not a file:")));
}

void TestGraphView::deleteAsksWhenColumnOptionsDownstream()
{
    ScriptedPrompts prompts;
    Prompts::setInstance(&prompts);
    Node *input = addInput(*m_scene, QPointF(0, 0));
    auto *sort = new TransformNode(prototype(QStringLiteral("Sort"))->clone());
    sort->setPos(200, 0);
    m_scene->addNode(sort);
    m_scene->connectNodes(input, sort);
    input->setSelected(true);
    prompts.answers << QStringLiteral("No");
    m_view->deleteSelection();
    const bool asked = !prompts.asked.isEmpty();
    if (asked) {
        QVERIFY(prompts.asked.first().startsWith(QStringLiteral("This deletion may reset")));
        QCOMPARE(m_scene->nodes().size(), 2);
        prompts.answers << QStringLiteral("Yes");
        m_view->deleteSelection();
    }
    QCOMPARE(m_scene->nodes().size(), 1);
    QCOMPARE(m_stack->undoText(), QStringLiteral("delete"));
    m_stack->undo();
    QCOMPARE(m_scene->nodes().size(), 2);
    QCOMPARE(m_scene->connections().size(), 1);
    Prompts::setInstance(nullptr);
}

CANVAS_TEST_MAIN(TestGraphView)
#include "tst_graphview.moc"
