// The input and output panes: rows that follow the format, option edits as undo steps,
// and the item section shared by every pane.

#include "testutil.h"

#include "app/application.h"
#include "core/settings.h"
#include "flow/graphscene.h"
#include "inputs/inputnode.h"
#include "outputs/outputnode.h"
#include "workbench/itempane.h"
#include "workbench/itemwidgetio.h"

#include <QComboBox>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QUndoStack>
#include <QtTest>

class TestItemPanes : public QObject
{
    Q_OBJECT
private slots:
    void init();
    void cleanup();
    void inputRowsFollowFormat_data();
    void inputRowsFollowFormat();
    void inputOptionStep();
    void outputRowsFollowFileType_data();
    void outputRowsFollowFileType();
    void aliasAndComment();

private:
    // Undo and redo replace the items; this finds the input again by id.
    InputNode *input() const { return qobject_cast<InputNode *>(m_scene->node(m_inputId)); }

    std::unique_ptr<QTemporaryDir> m_dir;
    std::unique_ptr<Settings> m_settings;
    std::unique_ptr<GraphScene> m_scene;
    std::unique_ptr<QUndoStack> m_undoStack;
    std::unique_ptr<ItemPane> m_pane;
    InputNode *m_input = nullptr;
    int m_inputId = -1;
};

void TestItemPanes::init()
{
    m_dir = std::make_unique<QTemporaryDir>();
    m_settings = std::make_unique<Settings>(m_dir->filePath(QStringLiteral("tabrelle.ini")));
    m_scene = std::make_unique<GraphScene>();
    m_scene->setSettings(m_settings.get());
    m_undoStack = std::make_unique<QUndoStack>();
    m_input = new InputNode;
    m_scene->addNode(m_input);
    Dataset dataset = testutil::toDataset("a,b,c\n1,x,2021-01-01\n2,y,2021-01-02", true);
    dataset.assignColumnIds(m_input->id());
    m_input->setDataset(dataset);
    m_input->setStatus(Node::UpToDate, false);
    m_inputId = m_input->id();
    m_pane = std::make_unique<ItemPane>();
    m_pane->setScene(m_scene.get(), m_undoStack.get());
    m_pane->resize(500, 900);
}

void TestItemPanes::cleanup()
{
    m_pane.reset();
    m_undoStack.reset();
    m_scene.reset();
    m_settings.reset();
}

void TestItemPanes::inputRowsFollowFormat_data()
{
    QTest::addColumn<int>("format");
    QTest::addColumn<QStringList>("shown");
    QTest::addColumn<QStringList>("hidden");
    QTest::newRow("delimited") << 0 << QStringList {"Delimiter", "Quoting", "Encoding", "File"}
                               << QStringList {"Sheet", "Columns", "Arrays as rows", "Pasted text"};
    QTest::newRow("fixed width") << 3 << QStringList {"Columns", "Encoding"}
                                 << QStringList {"Delimiter", "Sheet"};
    QTest::newRow("json") << 4 << QStringList {"Arrays as rows"}
                          << QStringList {"Delimiter", "Repeated values"};
    QTest::newRow("xml") << 5 << QStringList {"Repeated values"} << QStringList {"Arrays as rows"};
}

void TestItemPanes::inputRowsFollowFormat()
{
    QFETCH(int, format);
    QFETCH(QStringList, shown);
    QFETCH(QStringList, hidden);
    InputOptions options = m_input->options();
    options.fileType = format;
    m_input->setOptions(options);
    m_pane->setCurrentNode(m_input);
    auto *widget = qobject_cast<InputItemWidget *>(m_pane->itemWidget());
    QVERIFY(widget);
    for (const QString &row : shown)
        QVERIFY2(widget->isRowShown(row), qPrintable(row));
    for (const QString &row : hidden)
        QVERIFY2(!widget->isRowShown(row), qPrintable(row));
}

void TestItemPanes::inputOptionStep()
{
    m_pane->setCurrentNode(m_input);
    m_pane->show();
    auto *widget = qobject_cast<InputItemWidget *>(m_pane->itemWidget());
    QVERIFY(widget);
    QComboBox *headers = widget->hasHeaderCombo();
    headers->setFocus();
    QTest::keyClick(headers, Qt::Key_Up);
    const int chosen = headers->currentIndex();
    QCOMPARE(m_undoStack->count(), 1);
    QCOMPARE(m_undoStack->text(0), QStringLiteral("'Has header' change"));
    QCOMPARE(m_input->options().hasHeader, headers->currentIndex());
    QCOMPARE(m_input->status(), int(Node::NeedsUpdating));

    // Choosing a file sets the format from its extension, in one step.
    widget->setFile(m_dir->filePath(QStringLiteral("data.json")));
    QCOMPARE(m_undoStack->count(), 2);
    QCOMPARE(m_input->options().fileType, 4);
    QVERIFY(widget->isRowShown(QStringLiteral("Arrays as rows")));
    // The missing file shows as such.
    QCOMPARE(widget->fileEdit()->toolTip(), QStringLiteral("File not found"));
    m_undoStack->undo();
    QCOMPARE(input()->path(), QString());
    QCOMPARE(input()->options().hasHeader, chosen);
}

void TestItemPanes::outputRowsFollowFileType_data()
{
    QTest::addColumn<int>("type");
    QTest::addColumn<QStringList>("shown");
    QTest::addColumn<QStringList>("hidden");
    QTest::newRow("delimited") << 0 << QStringList {"Delimiter", "Line endings", "Write header"}
                               << QStringList {"Sheet", "Root name", "Types"};
    QTest::newRow("xlsx") << 1 << QStringList {"Sheet", "Formatting", "Use style template", "Write header"}
                          << QStringList {"Encoding", "Delimiter"};
    QTest::newRow("xml") << 5 << QStringList {"Root name", "Row name", "Remove empty", "File comment"}
                         << QStringList {"Write header", "Delimiter"};
    QTest::newRow("json") << 4 << QStringList {"Types", "Remove empty"} << QStringList {"Write header"};
}

void TestItemPanes::outputRowsFollowFileType()
{
    QFETCH(int, type);
    QFETCH(QStringList, shown);
    QFETCH(QStringList, hidden);
    auto *output = new OutputNode;
    m_scene->addNode(output);
    OutputOptions options = output->options();
    options.fileType = type;
    output->setOptions(options);
    m_pane->setCurrentNode(output);
    auto *widget = qobject_cast<OutputItemWidget *>(m_pane->itemWidget());
    QVERIFY(widget);
    for (const QString &row : shown)
        QVERIFY2(widget->isRowShown(row), qPrintable(row));
    for (const QString &row : hidden)
        QVERIFY2(!widget->isRowShown(row), qPrintable(row));
}

void TestItemPanes::aliasAndComment()
{
    m_pane->setCurrentNode(m_input);
    m_pane->show();
    QLineEdit *aliasEdit = nullptr;
    for (QLineEdit *edit : m_pane->itemWidget()->findChildren<QLineEdit *>()) {
        if (edit->accessibleName() == QLatin1String("Alias"))
            aliasEdit = edit;
    }
    QVERIFY(aliasEdit);
    aliasEdit->setText(QStringLiteral("  sales  "));
    emit aliasEdit->editingFinished();
    QCOMPARE(m_input->alias(), QStringLiteral("sales"));
    QCOMPARE(m_undoStack->text(m_undoStack->count() - 1), QStringLiteral("alias change"));

    QPlainTextEdit *comment = nullptr;
    for (QPlainTextEdit *edit : m_pane->itemWidget()->findChildren<QPlainTextEdit *>()) {
        if (edit->accessibleName() == QLatin1String("Comment"))
            comment = edit;
    }
    QVERIFY(comment);
    const int steps = m_undoStack->count();
    comment->setFocus();
    QTest::keyClicks(comment, QStringLiteral("note"));
    QCOMPARE(m_input->comment(), QStringLiteral("note"));
    QCOMPARE(m_undoStack->count(), steps + 1);
    QCOMPARE(m_undoStack->text(steps), QStringLiteral("comment change"));
    m_undoStack->undo();
    QCOMPARE(input()->comment(), QString());
}

int main(int argc, char **argv)
{
    QStandardPaths::setTestModeEnabled(true);
    Application app(argc, argv, false);
    TestItemPanes test;
    return QTest::qExec(&test, argc, argv);
}
#include "tst_itempanes.moc"
