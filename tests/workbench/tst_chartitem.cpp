#include "canvastestutil.h"

#include "charts/chartnode.h"
#include "charts/chartwidget.h"
#include "workbench/graphview.h"
#include "workbench/itempane.h"
#include "workbench/itemwidgetchart.h"
#include "workbench/mainwindow.h"
#include "workbench/prompts.h"

#include <QAction>
#include <QCheckBox>
#include <QComboBox>
#include <QListWidget>
#include <QSpinBox>
#include <QUndoStack>

using namespace CanvasTest;

// Chart items in the window: added from the Item actions connected from the current item,
// shown in the item pane with their chart and options, each option edit one undo step.
class TestChartItem : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();
    void addChart_data();
    void addChart();
    void addChartFileCancelledAddsNothing();
    void editThroughWidgetAndRun();
    void yColumnOrder_data();
    void yColumnOrder();
    void undoRestoresOptions();

private:
    ChartItemWidget *chartWidget() const;
    InputNode *runInput(const QString &text);
    ChartNode *addChartFromInput();
    void choose(QComboBox *combo, const QString &text);

    MainWindow *m_window = nullptr;
    ScriptedPrompts m_prompts;
    ScriptedFileDialogs m_dialogs;
    QTemporaryDir m_folder;
};

void TestChartItem::init()
{
    m_prompts = ScriptedPrompts();
    m_dialogs = ScriptedFileDialogs();
    Prompts::setInstance(&m_prompts);
    FileDialogs::setInstance(&m_dialogs);
    m_window = new MainWindow(Application::instance()->settings(), Application::instance()->transforms());
    m_window->resize(1400, 900);
    m_window->show();
    // Runs happen when the test asks for them.
    if (m_window->action(QStringLiteral("autoRunAction"))->isChecked())
        m_window->action(QStringLiteral("autoRunAction"))->trigger();
}

void TestChartItem::cleanup()
{
    m_prompts.answers = QStringList({QStringLiteral("Don't Save")});
    delete m_window;
    Prompts::setInstance(nullptr);
    FileDialogs::setInstance(nullptr);
}

ChartItemWidget *TestChartItem::chartWidget() const
{
    auto *pane = m_window->findChild<ItemPane *>();
    return pane ? qobject_cast<ChartItemWidget *>(pane->itemWidget()) : nullptr;
}

InputNode *TestChartItem::runInput(const QString &text)
{
    InputNode *input = addInput(*m_window->scene(), QPointF(0, 0), text);
    m_window->action(QStringLiteral("runEverythingAction"))->trigger();
    if (!QTest::qWaitFor([input] { return input->status() == Node::UpToDate; }))
        return nullptr;
    m_window->view()->setCurrentNode(input);
    input->setSelected(true);
    return input;
}

ChartNode *TestChartItem::addChartFromInput()
{
    m_window->action(QStringLiteral("addChartAction"))->trigger();
    return qobject_cast<ChartNode *>(m_window->view()->currentNode());
}

void TestChartItem::choose(QComboBox *combo, const QString &text)
{
    const int index = combo->findText(text);
    QVERIFY2(index >= 0, qPrintable(text));
    combo->setCurrentIndex(index);
    emit combo->activated(index);
}

void TestChartItem::addChart_data()
{
    QTest::addColumn<QString>("action");
    QTest::addColumn<QString>("file"); // answered to the save dialog
    QTest::addColumn<bool>("writeFile");
    QTest::addColumn<int>("imageType");
    QTest::newRow("chart") << "addChartAction" << QString() << false << int(ChartOptions::Jpeg);
    QTest::newRow("chart and PNG file") << "addChartFileAction" << "sales.png" << true << int(ChartOptions::Png);
    QTest::newRow("chart and PDF file") << "addChartFileAction" << "sales.pdf" << true << int(ChartOptions::Pdf);
    QTest::newRow("chart and JPEG file") << "addChartFileAction" << "sales.jpeg" << true << int(ChartOptions::Jpeg);
}

void TestChartItem::addChart()
{
    QFETCH(QString, action);
    QFETCH(QString, file);
    QFETCH(bool, writeFile);
    QFETCH(int, imageType);
    InputNode *input = runInput(QStringLiteral("a,b\n1,2\n"));
    QVERIFY(input);
    const QString path = file.isEmpty() ? QString() : m_folder.filePath(file);
    if (!path.isEmpty())
        m_dialogs.answers << QStringList({path});
    const int steps = m_window->undoStack()->count();
    m_window->action(action)->trigger();

    auto *chart = qobject_cast<ChartNode *>(m_window->view()->currentNode());
    QVERIFY(chart);
    QCOMPARE(chart->upstream(false), QList<Node *>({input}));
    QCOMPARE(chart->pos().x(), input->pos().x() + 200);
    QCOMPARE(chart->options().writeFile, writeFile);
    QCOMPARE(chart->options().imageType, imageType);
    QCOMPARE(chart->options().path, path);
    if (!path.isEmpty())
        QCOMPARE(m_dialogs.proposedPaths.last().section(QLatin1Char('/'), -1), QStringLiteral("Chart.png"));
    QCOMPARE(m_window->undoStack()->count(), steps + 1);
    QCOMPARE(m_window->undoStack()->text(steps), QStringLiteral("add chart"));
    QVERIFY(chartWidget());
    QCOMPARE(chartWidget()->chartWidget()->node(), chart);

    // The step takes the chart and its connection away together.
    m_window->undoStack()->undo();
    QCOMPARE(m_window->scene()->nodes().size(), 1);
}

void TestChartItem::addChartFileCancelledAddsNothing()
{
    QVERIFY(runInput(QStringLiteral("a,b\n1,2\n")));
    const int steps = m_window->undoStack()->count();
    m_dialogs.answers << QStringList();
    m_window->action(QStringLiteral("addChartFileAction"))->trigger();
    QCOMPARE(m_window->scene()->nodes().size(), 1);
    QCOMPARE(m_window->undoStack()->count(), steps);
}

void TestChartItem::editThroughWidgetAndRun()
{
    QVERIFY(runInput(QStringLiteral("month,sales,costs\nJan,10,4\nFeb,12,5\nMar,9,6\n")));
    ChartNode *chart = addChartFromInput();
    QVERIFY(chart);
    ChartItemWidget *widget = chartWidget();
    QVERIFY(widget);
    // The columns to choose from are the input's.
    QCOMPARE(widget->xColumnCombo()->count(), 4);
    QCOMPARE(widget->yColumnsList()->count(), 3);
    const int steps = m_window->undoStack()->count();

    choose(widget->typeCombo(), QStringLiteral("Line"));
    QCOMPARE(chart->options().type, int(ChartOptions::Line));
    QCOMPARE(chart->name(), QStringLiteral("Line chart"));
    choose(widget->xColumnCombo(), QStringLiteral("month"));
    QCOMPARE(chart->xPosition(), 1);
    widget->yColumnsList()->item(1)->setCheckState(Qt::Checked);
    widget->yColumnsList()->item(2)->setCheckState(Qt::Checked);
    QCOMPARE(chart->yPositions(), QList<int>({2, 3}));
    QCOMPARE(chart->status(), int(Node::NeedsUpdating));

    QStringList names;
    for (int i = steps; i < m_window->undoStack()->count(); ++i)
        names << m_window->undoStack()->text(i);
    QCOMPARE(names,
        QStringList({QStringLiteral("'Chart type' change"), QStringLiteral("'X column' change"),
            QStringLiteral("'Y columns' change"), QStringLiteral("'Y columns' change")}));

    m_window->action(QStringLiteral("runEverythingAction"))->trigger();
    QTRY_COMPARE(chart->status(), int(Node::UpToDate));
    QCOMPARE(chart->seriesCount(), 2);
    QCOMPARE(chart->dataPointCount(), qint64(6));
    QVERIFY(chart->warnings().isEmpty());
    // The pane's chart follows the item and draws it.
    QTRY_COMPARE(chartWidget()->chartWidget()->views().size(), 1);

    // Writing to a file is one step and needs a new run.
    chartWidget()->writeFileCheck()->setChecked(true);
    QVERIFY(chart->options().writeFile);
    QCOMPARE(m_window->undoStack()->text(m_window->undoStack()->count() - 1), QStringLiteral("'Write to file' change"));
    QCOMPARE(chart->status(), int(Node::NeedsUpdating));
}

void TestChartItem::yColumnOrder_data()
{
    QTest::addColumn<QList<int>>("checkRows"); // list rows checked, in this order
    QTest::addColumn<int>("moveRow"); // then this row moves
    QTest::addColumn<int>("step");
    QTest::addColumn<QList<int>>("expected"); // the Y column positions
    QTest::newRow("checked in list order") << QList<int>({0, 2}) << -1 << 0 << QList<int>({1, 3});
    QTest::newRow("last checked moved up") << QList<int>({0, 2}) << 2 << -1 << QList<int>({1, 3});
    QTest::newRow("moved above the first") << QList<int>({0, 1}) << 1 << -1 << QList<int>({2, 1});
    QTest::newRow("first moved down") << QList<int>({0, 1, 2}) << 0 << 1 << QList<int>({2, 1, 3});
    QTest::newRow("top can't move up") << QList<int>({0, 1}) << 0 << -1 << QList<int>({1, 2});
    QTest::newRow("bottom can't move down") << QList<int>({2}) << 2 << 1 << QList<int>({3});
}

void TestChartItem::yColumnOrder()
{
    QFETCH(QList<int>, checkRows);
    QFETCH(int, moveRow);
    QFETCH(int, step);
    QFETCH(QList<int>, expected);
    QVERIFY(runInput(QStringLiteral("a,b,c\n1,2,3\n")));
    ChartNode *chart = addChartFromInput();
    QVERIFY(chart);
    ChartItemWidget *widget = chartWidget();
    for (const int row : checkRows)
        widget->yColumnsList()->item(row)->setCheckState(Qt::Checked);
    if (moveRow >= 0) {
        widget->yColumnsList()->setCurrentRow(moveRow);
        widget->moveYColumn(step);
    }
    QCOMPARE(chart->yPositions(), expected);
    // The list shows the chosen columns first, in their order, once loaded again.
    m_window->findChild<ItemPane *>()->refresh();
    for (int i = 0; i < expected.size(); ++i) {
        QCOMPARE(chartWidget()->yColumnsList()->item(i)->checkState(), Qt::Checked);
        QCOMPARE(chartWidget()->yColumnsList()->item(i)->text(), QString(QLatin1Char('a' + expected.at(i) - 1)));
    }
}

void TestChartItem::undoRestoresOptions()
{
    QVERIFY(runInput(QStringLiteral("a,b\n1,2\n")));
    ChartNode *chart = addChartFromInput();
    QVERIFY(chart);
    const int id = chart->id();
    choose(chartWidget()->typeCombo(), QStringLiteral("Scatter"));
    choose(chartWidget()->imageTypeCombo(), QStringLiteral("PDF"));
    QCOMPARE(chart->options().imageType, int(ChartOptions::Pdf));
    // Sizes in pixels belong to images only.
    QVERIFY(chartWidget()->widthSpin()->isHidden());

    m_window->undoStack()->undo();
    auto *restored = qobject_cast<ChartNode *>(m_window->scene()->node(id));
    QVERIFY(restored);
    QCOMPARE(restored->options().imageType, int(ChartOptions::Jpeg));
    QCOMPARE(restored->options().type, int(ChartOptions::Scatter));
    // The pane shows the restored item with its options.
    QTRY_VERIFY(chartWidget() && chartWidget()->chartWidget()->node() == restored);
    QCOMPARE(chartWidget()->imageTypeCombo()->currentText(), QStringLiteral("JPEG"));
    QCOMPARE(chartWidget()->typeCombo()->currentText(), QStringLiteral("Scatter"));
    QVERIFY(!chartWidget()->widthSpin()->isHidden());
}

CANVAS_TEST_MAIN(TestChartItem)
#include "tst_chartitem.moc"
