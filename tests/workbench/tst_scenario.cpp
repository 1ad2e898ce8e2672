// A whole flow built in the window as a user builds it, with the item buttons, the
// transform search, the option editors and the Explore Keys dialog: two inputs, a Filter
// with two conditions, a Join on keys chosen in Explore Keys, a Calculate and an output to
// an Excel workbook. Every edit is one undo step; undoing them all empties the canvas and
// redoing them all gives the same flow back; the saved flow run headless writes the same
// workbook as the window.

#include "canvastestutil.h"

#include "flow/document.h"
#include "inputs/inputnode.h"
#include "outputs/outputnode.h"
#include "transforms/transformnode.h"
#include "workbench/explorekeysdialog.h"
#include "workbench/graphview.h"
#include "workbench/itempane.h"
#include "workbench/itemwidgettransform.h"
#include "workbench/mainwindow.h"
#include "workbench/parameterwidget.h"
#include "workbench/parameterwidgets.h"
#include "workbench/prompts.h"
#include "workbench/transformpane.h"

#include <QAction>
#include <QApplication>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QLineEdit>
#include <QListView>
#include <QProcess>
#include <QPushButton>
#include <QTimer>
#include <QUndoStack>

using namespace CanvasTest;

class TestScenario : public QObject
{
    Q_OBJECT
private slots:
    void init();
    void cleanup();
    void buildRunUndoRedoSaveAndRunHeadless();

private:
    Node *nodeNamed(const QString &name) const;
    Node *addTransformBySearch(const QString &words, const QString &name);
    void select(const QList<Node *> &nodes);
    TransformItemWidget *transformPane(Node *node);
    // Chooses the entry as a mouse click in the open list does.
    static void choose(QComboBox *combo, const QString &text);
    void expectOneStep(int before, const QString &text);
    bool runEverything();

    MainWindow *m_window = nullptr;
    ScriptedPrompts m_prompts;
    ScriptedFileDialogs m_dialogs;
    QTemporaryDir m_folder;
};

void TestScenario::init()
{
    QVERIFY(m_folder.isValid());
    const auto write = [this](const QString &name, const QByteArray &text) {
        QFile file(m_folder.filePath(name));
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write(text);
    };
    write(QStringLiteral("customers.csv"), "id,name,country\n1,Anna,PT\n2,Ben,NO\n3,Clara,AT\n4,David,GB\n");
    write(QStringLiteral("orders.csv"),
        "order,customer,amount,qty\n100,1,12.50,2\n101,2,5.00,1\n102,1,30.00,3\n103,3,8.00,5\n"
        "104,2,45.00,4\n105,9,70.00,2\n");
    m_prompts = ScriptedPrompts();
    m_dialogs = ScriptedFileDialogs();
    Prompts::setInstance(&m_prompts);
    FileDialogs::setInstance(&m_dialogs);
    m_window = new MainWindow(Application::instance()->settings(), Application::instance()->transforms());
    m_window->resize(1400, 900);
    m_window->show();
    QVERIFY(QTest::qWaitForWindowExposed(m_window));
    // Each edit runs what it changed, as with Auto Run on.
    QAction *autoRun = m_window->action(QStringLiteral("autoRunAction"));
    QVERIFY(autoRun);
    if (!autoRun->isChecked())
        autoRun->trigger();
}

void TestScenario::cleanup()
{
    m_prompts.answers = QStringList({QStringLiteral("Don't Save")});
    delete m_window;
    m_window = nullptr;
    Prompts::setInstance(nullptr);
    FileDialogs::setInstance(nullptr);
}

Node *TestScenario::nodeNamed(const QString &name) const
{
    for (Node *node : m_window->scene()->nodes()) {
        if (node->name() == name)
            return node;
    }
    return nullptr;
}

void TestScenario::select(const QList<Node *> &nodes)
{
    GraphView *view = m_window->view();
    // A click on the first item, Ctrl+click on the others.
    for (int i = 0; i < nodes.size(); ++i) {
        const QPoint at = view->mapFromScene(nodes.at(i)->sceneBoundingRect().center());
        QTest::mouseClick(view->viewport(), Qt::LeftButton, i == 0 ? Qt::NoModifier : Qt::ControlModifier, at);
    }
}

Node *TestScenario::addTransformBySearch(const QString &words, const QString &name)
{
    TransformPane *pane = m_window->transformPane();
    pane->searchEdit()->clear();
    QTest::keyClicks(pane->searchEdit(), words);
    const QList<Node *> before = m_window->scene()->nodes();
    // The transform's entry in the list, picked with the arrow keys, then Enter.
    QListView *list = pane->transformList();
    QAbstractItemModel *model = list->model();
    list->setFocus();
    QTest::keyClick(list, Qt::Key_Home);
    for (int row = 0; row < model->rowCount() && list->currentIndex().data().toString() != name; ++row)
        QTest::keyClick(list, Qt::Key_Down);
    if (list->currentIndex().data().toString() != name)
        return nullptr;
    QTest::keyClick(list, Qt::Key_Return);
    for (Node *node : m_window->scene()->nodes()) {
        if (!before.contains(node))
            return node;
    }
    return nullptr;
}

TransformItemWidget *TestScenario::transformPane(Node *node)
{
    m_window->view()->setCurrentNode(node);
    auto *pane = m_window->findChild<ItemPane *>();
    return pane ? qobject_cast<TransformItemWidget *>(pane->itemWidget()) : nullptr;
}

void TestScenario::choose(QComboBox *combo, const QString &text)
{
    QVERIFY(combo);
    int index = combo->findText(text);
    if (index < 0) {
        for (int i = 0; i < combo->count(); ++i) {
            if (combo->itemText(i).contains(text))
                index = i;
        }
    }
    QVERIFY2(index >= 0, qPrintable(text));
    combo->setCurrentIndex(index);
    emit combo->activated(index);
}

void TestScenario::expectOneStep(int before, const QString &text)
{
    QUndoStack *stack = m_window->undoStack();
    QCOMPARE(stack->count(), before + 1);
    QCOMPARE(stack->text(stack->count() - 1), text);
}

bool TestScenario::runEverything()
{
    m_window->action(QStringLiteral("runEverythingAction"))->trigger();
    return QTest::qWaitFor([this] { return !m_window->scene()->isRunning(); }, 20000);
}

void TestScenario::buildRunUndoRedoSaveAndRunHeadless()
{
    QUndoStack *stack = m_window->undoStack();
    const int start = stack->count();

    // Two inputs from the Input button's file chooser.
    m_dialogs.answers << QStringList {m_folder.filePath(QStringLiteral("customers.csv"))};
    m_window->action(QStringLiteral("addInputAction"))->trigger();
    m_dialogs.answers << QStringList {m_folder.filePath(QStringLiteral("orders.csv"))};
    m_window->action(QStringLiteral("addInputAction"))->trigger();
    QCOMPARE(stack->count(), start + 2);
    Node *customers = nodeNamed(QStringLiteral("customers.csv"));
    Node *orders = nodeNamed(QStringLiteral("orders.csv"));
    QVERIFY(customers && orders);
    QVERIFY(QTest::qWaitFor([&] { return orders->status() == Node::UpToDate; }, 10000));

    // A Filter on the orders with two conditions typed into its table.
    select({orders});
    Node *filter = addTransformBySearch(QStringLiteral("filter"), QStringLiteral("Filter"));
    QVERIFY(filter);
    QCOMPARE(filter->upstream(true), QList<Node *>({orders}));
    TransformItemWidget *form = transformPane(filter);
    QVERIFY(form);
    auto *conditions = form->parameterWidget(QStringLiteral("Columns"))
        ? form->parameterWidget(QStringLiteral("Columns"))->widget()->findChild<ConditionTable *>()
        : nullptr;
    QVERIFY(conditions);
    struct Condition
    {
        QString column, op, term;
    };
    const QList<Condition> wanted = {{QStringLiteral("amount"), QStringLiteral("Greater than"), QStringLiteral("10")},
        {QStringLiteral("qty"), QStringLiteral("Greater than equal"), QStringLiteral("2")}};
    const int beforeConditions = stack->count();
    for (int row = 0; row < wanted.size(); ++row) {
        choose(conditions->columnCombo(row), wanted.at(row).column);
        choose(conditions->operatorCombo(row), wanted.at(row).op);
        QLineEdit *term = conditions->termEdit(row);
        QVERIFY(term);
        term->setFocus();
        QTest::keyClicks(term, wanted.at(row).term);
        QTest::keyClick(term, Qt::Key_Tab);
    }
    // Edits of one option in quick succession are one step; a slow machine may make more.
    QVERIFY(stack->count() > beforeConditions);
    for (int i = beforeConditions; i < stack->count(); ++i)
        QCOMPARE(stack->text(i), QStringLiteral("'Filtering' change"));
    QVERIFY(QTest::qWaitFor([&] { return filter->status() == Node::UpToDate; }, 10000));
    QCOMPARE(filter->dataset().rowCount(), 4); // orders 100, 102, 104 and 105

    // A Join of the customers (top) and the filtered orders, keys chosen in Explore Keys.
    select({customers, filter});
    Node *join = addTransformBySearch(QStringLiteral("join"), QStringLiteral("Join"));
    QVERIFY(join);
    QCOMPARE(join->upstream(true).size(), 2);
    form = transformPane(join);
    QVERIFY(form && form->exploreButton());
    const int beforeKeys = stack->count();
    bool answered = false;
    QTimer::singleShot(0, this, [&] {
        auto *dialog = qobject_cast<ExploreKeysDialog *>(QApplication::activeModalWidget());
        if (!dialog)
            return;
        const QList<QComboBox *> combos = dialog->findChildren<QComboBox *>();
        for (QComboBox *combo : combos) {
            if (combo->accessibleName() == QLatin1String("Top key column"))
                choose(combo, QStringLiteral("id"));
            else if (combo->accessibleName() == QLatin1String("Bottom key column"))
                choose(combo, QStringLiteral("customer"));
        }
        QTRY_VERIFY_WITH_TIMEOUT(!dialog->isCounting(), 10000);
        for (QPushButton *button : dialog->findChildren<QPushButton *>()) {
            if (button->text() == ExploreKeysDialog::tr("&Use These Columns"))
                QTest::mouseClick(button, Qt::LeftButton);
        }
        answered = true;
        dialog->reject();
    });
    QTest::mouseClick(form->exploreButton(), Qt::LeftButton);
    QVERIFY(answered);
    // The two key columns are set as one step.
    QCOMPARE(stack->count(), beforeKeys + 1);
    QVERIFY(QTest::qWaitFor([&] { return join->status() == Node::UpToDate; }, 10000));
    QCOMPARE(join->dataset().rowCount(), 3); // order 105 has no customer 9

    // A Calculate of amount times qty.
    select({join});
    Node *calculate = addTransformBySearch(QStringLiteral("calculate"), QStringLiteral("Calculate"));
    QVERIFY(calculate);
    form = transformPane(calculate);
    QVERIFY(form);
    int steps = stack->count();
    choose(qobject_cast<QComboBox *>(form->parameterWidget(QStringLiteral("Operation"))->widget()),
        QStringLiteral("Multiply"));
    expectOneStep(steps, QStringLiteral("'Operation' change"));
    steps = stack->count();
    choose(qobject_cast<QComboBox *>(form->parameterWidget(QStringLiteral("Column1"))->widget()),
        QStringLiteral("amount"));
    expectOneStep(steps, QStringLiteral("'Value 1' change"));
    steps = stack->count();
    choose(qobject_cast<QComboBox *>(form->parameterWidget(QStringLiteral("Column2"))->widget()),
        QStringLiteral("qty"));
    expectOneStep(steps, QStringLiteral("'Value 2' change"));

    // An output to a workbook.
    select({calculate});
    const QString workbook = m_folder.filePath(QStringLiteral("result.xlsx"));
    m_dialogs.answers << QStringList {workbook};
    steps = stack->count();
    m_window->action(QStringLiteral("addOutputAction"))->trigger();
    QCOMPARE(stack->count(), steps + 1);
    QVERIFY(runEverything());
    QVERIFY(QFileInfo::exists(workbook));
    QCOMPARE(calculate->dataset().rowCount(), 3);

    // Undo every step: the canvas is empty; redo every step: the same flow.
    Document::setClock([] { return QDateTime(QDate(2026, 1, 2), QTime(3, 4, 5)); });
    const QString built = Document::documentText(*m_window->scene(), DocumentProperties());
    const int total = stack->count();
    for (int i = total; i > start; --i)
        stack->undo();
    QCOMPARE(m_window->scene()->nodes().size(), 0);
    for (int i = start; i < total; ++i)
        stack->redo();
    QCOMPARE(Document::documentText(*m_window->scene(), DocumentProperties()), built);
    Document::setClock({});

    // Saved and run headless, the flow writes the same workbook.
    const QString flow = m_folder.filePath(QStringLiteral("w4.tflow"));
    QVERIFY(m_window->saveDocumentAs(flow));
    QFile::rename(workbook, workbook + QStringLiteral(".window.xlsx"));
    QProcess process;
    process.start(QStringLiteral(TABRELLE_EXECUTABLE), {QStringLiteral("-cli"), flow});
    QVERIFY(process.waitForFinished(60000));
    QCOMPARE(process.exitCode(), 0);
    const auto readBack = [](const QString &path) {
        InputNode input;
        input.setPath(path);
        input.setFileType(IONode::ExcelXlsx);
        GraphScene scene;
        input.process(false, false);
        QStringList lines;
        const Dataset &table = input.dataset();
        lines << table.headers().join(QLatin1Char('|'));
        for (int r = 0; r < table.rowCount(); ++r)
            lines << table.row(r).join(QLatin1Char('|'));
        return lines;
    };
    const QStringList windowRows = readBack(workbook + QStringLiteral(".window.xlsx"));
    QCOMPARE(windowRows.size(), 4);
    QCOMPARE(readBack(workbook), windowRows);
}

CANVAS_TEST_MAIN(TestScenario)
#include "tst_scenario.moc"
