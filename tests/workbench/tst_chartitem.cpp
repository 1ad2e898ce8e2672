#include "canvastestutil.h"

#include "charts/chartdocument.h"
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
#include <QDoubleSpinBox>
#include <QLabel>
#include <QLineEdit>
#include <QTabWidget>
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
    void optionRoundTrip_data();
    void optionRoundTrip();
    void rowsFollowOptions_data();
    void rowsFollowOptions();
    void filePrompts_data();
    void filePrompts();

private:
    ChartItemWidget *chartWidget() const;
    ItemPane *pane() const { return m_window->findChild<ItemPane *>(); }
    // The chart's document attribute, as stored.
    static QString attribute(const ChartNode *chart, const QString &name);
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
    QCOMPARE(pane()->chartView()->node(), chart);

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
    // The list shows them, not only holds them.
    QListWidget *list = widget->yColumnsList();
    for (int row = 0; row < list->count(); ++row) {
        const QRect rect = list->visualItemRect(list->item(row));
        QVERIFY(rect.isValid());
        QCOMPARE(list->itemAt(rect.center()), list->item(row));
    }
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
    QTRY_COMPARE(pane()->chartView()->views().size(), 1);

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
    QTRY_VERIFY(chartWidget() && pane()->chartView()->node() == restored);
    QCOMPARE(chartWidget()->imageTypeCombo()->currentText(), QStringLiteral("JPEG"));
    QCOMPARE(chartWidget()->typeCombo()->currentText(), QStringLiteral("Scatter"));
    QVERIFY(!chartWidget()->widthSpin()->isHidden());
}

QString TestChartItem::attribute(const ChartNode *chart, const QString &name)
{
    DocumentElement element(QStringLiteral("chart"));
    ChartDocument::write(*chart, element);
    return element.attribute(name);
}

void TestChartItem::optionRoundTrip_data()
{
    QTest::addColumn<QString>("tab");
    QTest::addColumn<QString>("control");
    QTest::addColumn<QString>("value"); // a choice's text, a number, a text, or "toggle"
    QTest::addColumn<QString>("key");
    QTest::addColumn<QString>("stored");
    QTest::newRow("layout") << "General" << "Layout" << "Stacked" << "chart_layout" << "2";
    QTest::newRow("theme") << "General" << "Theme" << "Dark" << "chart_theme" << "6";
    QTest::newRow("title custom") << "General" << "Title" << "Custom" << "chart_title_option" << "2";
    QTest::newRow("title none") << "General" << "Title" << "None" << "chart_title_option" << "1";
    QTest::newRow("legend") << "General" << "Legend" << "Hidden" << "chart_legend_position" << "5";
    QTest::newRow("line thickness") << "General" << "Line thickness" << "4.5" << "chart_line_thickness" << "4.5";
    QTest::newRow("opacity") << "General" << "Opacity" << "40" << "chart_opacity" << "40";
    QTest::newRow("data points") << "General" << "Show line data points" << "toggle"
                                 << "chart_show_Line_data_points" << "1";
    QTest::newRow("point size") << "General" << "Point size" << "Custom" << "chart_point_size_option" << "1";
    QTest::newRow("orientation") << "General" << "Orientation" << "Landscape" << "chart_pdf_orientation" << "1";
    QTest::newRow("resolution") << "General" << "Resolution" << "300" << "chart_pdf_resolution" << "300";
    QTest::newRow("x grid") << "X Axis" << "Show grid" << "toggle" << "chart_show_x_axis_grid" << "0";
    QTest::newRow("x scale") << "X Axis" << "Scale" << "Log 2" << "chart_x_axis_scale" << "2";
    QTest::newRow("x date format") << "X Axis" << "Date format" << "dd.MM" << "chart_x_axis_label_date_format"
                                   << "dd.MM";
    QTest::newRow("y title none") << "Y Axis" << "Title" << "None" << "chart_y_axis_title_option" << "1";
    QTest::newRow("y minimum") << "Y Axis" << "Minimum" << "Custom" << "chart_y_axis_min_range_option" << "1";
    QTest::newRow("y maximum value") << "Y Axis" << "Custom maximum" << "250" << "chart_y_axis_max_range_custom_value"
                                     << "250";
    QTest::newRow("y label angle") << "Y Axis" << "Label angle" << "-45" << "chart_y_axis_label_angle" << "-45";
    QTest::newRow("y label format") << "Y Axis" << "Label format" << "i" << "chart_y_axis_label_format" << "5";
    QTest::newRow("y precision") << "Y Axis" << "Precision" << "0" << "chart_y_axis_label_precision" << "0";
    QTest::newRow("y nice values") << "Y Axis" << "Nice values" << "toggle" << "chart_y_axis_nice_values" << "0";
    QTest::newRow("y same range") << "Y Axis" << "Same range for all facets" << "toggle"
                                  << "chart_y_axis_same_range_all_facets" << "1";
}

void TestChartItem::optionRoundTrip()
{
    QFETCH(QString, tab);
    QFETCH(QString, control);
    QFETCH(QString, value);
    QFETCH(QString, key);
    QFETCH(QString, stored);
    QVERIFY(runInput(QStringLiteral("a,b\n1,2\n")));
    ChartNode *chart = addChartFromInput();
    QVERIFY(chart);
    const int id = chart->id();
    const QString before = attribute(chart, key);
    QVERIFY(before != stored);
    ChartItemWidget *widget = chartWidget();
    QWidget *target = widget->control(tab, control);
    QVERIFY2(target, qPrintable(control));
    // The control is named by its label for screen readers.
    QVERIFY(target->accessibleName() == control || target->accessibleName().isEmpty());
    const int steps = m_window->undoStack()->count();
    if (auto *combo = qobject_cast<QComboBox *>(target)) {
        choose(combo, value);
    } else if (auto *check = qobject_cast<QCheckBox *>(target)) {
        check->click();
    } else if (auto *spin = qobject_cast<QSpinBox *>(target)) {
        spin->setValue(value.toInt());
    } else if (auto *real = qobject_cast<QDoubleSpinBox *>(target)) {
        real->setValue(value.toDouble());
    } else if (auto *edit = qobject_cast<QLineEdit *>(target)) {
        edit->clear();
        edit->setFocus();
        QTest::keyClicks(edit, value);
    } else {
        QFAIL("unknown control");
    }
    QCOMPARE(attribute(chart, key), stored);
    QCOMPARE(m_window->undoStack()->count(), steps + 1);
    const QString label = control.startsWith(QLatin1String("Custom ")) ? control.mid(7) : control;
    QCOMPARE(m_window->undoStack()->text(steps).toLower(), QStringLiteral("'%1' change").arg(label).toLower());
    QCOMPARE(chart->status(), int(Node::NeedsUpdating));
    m_window->undoStack()->undo();
    auto *restored = qobject_cast<ChartNode *>(m_window->scene()->node(id));
    QVERIFY(restored);
    QCOMPARE(attribute(restored, key), before);
}

void TestChartItem::rowsFollowOptions_data()
{
    QTest::addColumn<QString>("type");
    QTest::addColumn<QString>("imageType");
    QTest::addColumn<QString>("layout");
    QTest::addColumn<QStringList>("shown"); // "Tab/Name"
    QTest::addColumn<QStringList>("hidden");
    QTest::addColumn<bool>("xAxis");
    QTest::newRow("line, JPEG") << "Line" << "JPEG" << "Grouped"
                                << QStringList({"General/Width", "General/Height", "X Axis/Scale"})
                                << QStringList({"General/Page size", "General/PDF note", "General/Facets across",
                                       "Y Axis/Same range for all facets"})
                                << true;
    QTest::newRow("bar, PDF, faceted")
        << "Vertical Bar" << "PDF" << "Faceted"
        << QStringList({"General/Page size", "General/Orientation", "General/Resolution", "General/PDF note",
               "General/Facets across", "Y Axis/Same range for all facets"})
        << QStringList({"General/Width", "General/Height"}) << true;
    QTest::newRow("pie") << "Pie" << "PNG" << "Grouped" << QStringList({"General/Width", "Y Axis/Scale"})
                         << QStringList({"General/Show line data points", "X Axis/Scale"}) << false;
}

void TestChartItem::rowsFollowOptions()
{
    QFETCH(QString, type);
    QFETCH(QString, imageType);
    QFETCH(QString, layout);
    QFETCH(QStringList, shown);
    QFETCH(QStringList, hidden);
    QFETCH(bool, xAxis);
    QVERIFY(runInput(QStringLiteral("a,b\n1,2\n")));
    QVERIFY(addChartFromInput());
    ChartItemWidget *widget = chartWidget();
    const int typeIndex = widget->typeCombo()->findText(type);
    QVERIFY2(typeIndex >= 0, qPrintable(type));
    choose(widget->typeCombo(), type);
    choose(widget->imageTypeCombo(), imageType);
    choose(widget->layoutCombo(), layout);
    for (const QString &row : shown)
        QVERIFY2(widget->isControlShown(row.section(QLatin1Char('/'), 0, 0), row.section(QLatin1Char('/'), 1)),
            qPrintable(row));
    for (const QString &row : hidden)
        QVERIFY2(!widget->isControlShown(row.section(QLatin1Char('/'), 0, 0), row.section(QLatin1Char('/'), 1)),
            qPrintable(row));
    QCOMPARE(widget->noXAxisLabel()->isHidden(), xAxis);
    QCOMPARE(widget->optionTabs()->tabText(0), QStringLiteral("General"));
    QCOMPARE(widget->optionTabs()->tabText(1), QStringLiteral("X Axis"));
    QCOMPARE(widget->optionTabs()->tabText(2), QStringLiteral("Y Axis"));
    // Below the options: the drawing, then the input's table.
    QCOMPARE(pane()->dataTabs()->tabText(0), QStringLiteral("Chart"));
    QCOMPARE(pane()->dataTabs()->tabText(1), QStringLiteral("Data"));
}

void TestChartItem::filePrompts_data()
{
    QTest::addColumn<QString>("start"); // the chart's file, created first when it ends in "*"
    QTest::addColumn<QString>("action"); // "file:<name>" typed, or "type:<name>" chosen
    QTest::addColumn<QString>("answer");
    QTest::addColumn<QString>("asked");
    QTest::addColumn<QString>("path");
    QTest::addColumn<int>("imageType");
    QTest::newRow("png name, change type") << "" << "file:sales.png" << "Yes" << "Change file type to 'PNG'?"
                                           << "sales.png" << int(ChartOptions::Png);
    QTest::newRow("png name, keep type") << "" << "file:sales.png" << "No" << "Change file type to 'PNG'?"
                                         << "sales.png" << int(ChartOptions::Jpeg);
    QTest::newRow("jpg name, no question") << "" << "file:sales.jpg" << "" << "" << "sales.jpg"
                                           << int(ChartOptions::Jpeg);
    QTest::newRow("existing, replace") << "old.jpg*" << "file:old.jpg" << "Yes"
                                       << "old.jpg already exists.\nDo you want to replace it?" << "old.jpg"
                                       << int(ChartOptions::Jpeg);
    QTest::newRow("existing, keep") << "old.jpg*" << "file:old.jpg" << "No"
                                    << "old.jpg already exists.\nDo you want to replace it?" << ""
                                    << int(ChartOptions::Jpeg);
    QTest::newRow("pdf type, change extension") << "sales.jpg" << "type:PDF" << "Yes"
                                                << "Change file extension to 'pdf'?" << "sales.pdf"
                                                << int(ChartOptions::Pdf);
    QTest::newRow("pdf type, keep extension") << "sales.jpg" << "type:PDF" << "No"
                                              << "Change file extension to 'pdf'?" << "sales.jpg"
                                              << int(ChartOptions::Pdf);
}

void TestChartItem::filePrompts()
{
    QFETCH(QString, start);
    QFETCH(QString, action);
    QFETCH(QString, answer);
    QFETCH(QString, asked);
    QFETCH(QString, path);
    QFETCH(int, imageType);
    QVERIFY(runInput(QStringLiteral("a,b\n1,2\n")));
    ChartNode *chart = addChartFromInput();
    QVERIFY(chart);
    if (start.endsWith(QLatin1Char('*'))) {
        start.chop(1);
        QFile file(m_folder.filePath(start));
        QVERIFY(file.open(QIODevice::WriteOnly));
    } else if (!start.isEmpty()) {
        ChartOptions options = chart->options();
        options.path = m_folder.filePath(start);
        chart->setOptions(options);
        m_window->findChild<ItemPane *>()->refresh();
    }
    if (!answer.isEmpty())
        m_prompts.answers << answer;
    m_prompts.asked.clear();
    ChartItemWidget *widget = chartWidget();
    const QString argument = action.section(QLatin1Char(':'), 1);
    if (action.startsWith(QLatin1String("file:"))) {
        widget->fileEdit()->setFocus();
        widget->fileEdit()->setText(m_folder.filePath(argument));
        emit widget->fileEdit()->editingFinished();
    } else {
        choose(widget->imageTypeCombo(), argument);
    }
    QCOMPARE(m_prompts.asked, asked.isEmpty() ? QStringList() : QStringList({asked}));
    QCOMPARE(chart->options().path, path.isEmpty() ? QString() : m_folder.filePath(path));
    QCOMPARE(chart->options().imageType, imageType);
}

CANVAS_TEST_MAIN(TestChartItem)
#include "tst_chartitem.moc"
