#include "testutil.h"

#include "app/application.h"
#include "flow/nodefactory.h"

#include "core/settings.h"
#include "flow/graphscene.h"
#include "inputs/inputnode.h"
#include "outputs/outputnode.h"
#include "transforms/parameter.h"
#include "transforms/transform.h"
#include "transforms/transformnode.h"
#include "workbench/itempane.h"
#include "workbench/itemwidgettransform.h"
#include "workbench/parametereditor.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDateEdit>
#include <QDoubleSpinBox>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPlainTextEdit>
#include <QSpinBox>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QUndoStack>
#include <QtTest>

namespace {

// A transform with one option of every kind, whose states the test decides.
class KindsTransform : public Transform
{
    Q_OBJECT
public:
    static QList<QPair<QString, bool>> s_states;
    static bool s_hides;

    int type() const override { return 9999; }
    QString id() const override { return QStringLiteral("Kinds"); }
    QString name() const override { return QStringLiteral("Kinds"); }
    TransformCategory category() const override { return TransformCategory::Other; }
    bool isAdvanced() const override { return false; }
    bool isInPlace() const override { return false; }
    bool keepsDrilldown() const override { return false; }
    int minimumInputs() const override { return 1; }
    int maximumInputs() const override { return 1; }
    QString description() const override { return QStringLiteral("Every kind of option."); }
    bool hasMinimumOptions() const override { return false; }
    bool hidesDisabledParameters() const override { return s_hides; }
    QList<QPair<QString, bool>> parameterStates() const override { return s_states; }
    TABRELLE_TRANSFORM_CLONE(KindsTransform)
    void createParameters(const QList<Node *> &inputs, bool useDefaults) override
    {
        Transform::createParameters(inputs, useDefaults);
        Node *input = inputs.value(0);
        const auto add = [this, input](ParameterKind kind, const QString &name,
                             const QVariant &value = QVariant(), const QVariant &options = QVariant()) {
            Parameter *parameter = Parameter::isColumnKind(kind)
                ? new Parameter(kind, name, name.toLower().replace(QLatin1Char('_'), QLatin1Char(' ')), input)
                : new Parameter(
                    kind, name, name.toLower().replace(QLatin1Char('_'), QLatin1Char(' ')), value, options);
            addParameter(parameter);
            return parameter;
        };
        add(ParameterKind::Column, QStringLiteral("Column"));
        add(ParameterKind::Columns, QStringLiteral("Columns"));
        add(ParameterKind::SortColumns, QStringLiteral("Sort_Columns"));
        add(ParameterKind::FilterColumns, QStringLiteral("Filter_Columns"));
        add(ParameterKind::ReorderColumns, QStringLiteral("Reorder_Columns"));
        add(ParameterKind::Bool, QStringLiteral("Bool"), false);
        add(ParameterKind::Selection, QStringLiteral("Selection"), QStringLiteral("One"),
            QStringList {QStringLiteral("One"), QStringLiteral("Two")});
        add(ParameterKind::Text, QStringLiteral("Text"), QString());
        Parameter *integer = add(ParameterKind::Int, QStringLiteral("Int"), 0);
        integer->setIntRequired(true);
        add(ParameterKind::Char, QStringLiteral("Char"), QString(QLatin1Char(',')));
        add(ParameterKind::If, QStringLiteral("If"));
        add(ParameterKind::OptionalColumns, QStringLiteral("Optional_Columns"));
        add(ParameterKind::Script, QStringLiteral("Script"));
        add(ParameterKind::RenameColumns, QStringLiteral("Rename_Columns"));
        add(ParameterKind::SplitRows, QStringLiteral("Split_Rows"));
        add(ParameterKind::UniqueColumns, QStringLiteral("Unique_Columns"));
        add(ParameterKind::ReplaceTerms, QStringLiteral("Replace_Terms"));
        add(ParameterKind::Real, QStringLiteral("Real"), 1.5);
        add(ParameterKind::LongText, QStringLiteral("Long_Text"), QString());
        add(ParameterKind::Label, QStringLiteral("Label"), QVariant(), QStringLiteral("Just words"));
        add(ParameterKind::Date, QStringLiteral("Date"), QDate(2020, 5, 6));
        add(ParameterKind::GroupColumns, QStringLiteral("Group_Columns"));
        add(ParameterKind::Locale, QStringLiteral("Locale"), QStringLiteral("en-GB"));
        Parameter *disable = add(ParameterKind::Bool, QStringLiteral("Disable"), false);
        disable->setDisableSwitch(true);
    }
    Dataset process(const QList<Node *> &inputs, bool &failed) override
    {
        Q_UNUSED(failed)
        return inputs.value(0) ? inputs.value(0)->dataset() : Dataset();
    }
};

QList<QPair<QString, bool>> KindsTransform::s_states;
bool KindsTransform::s_hides = false;

} // namespace

class TestItemWidgets : public QObject
{
    Q_OBJECT
private slots:
    void init();
    void cleanup();
    void parameterStates_data();
    void parameterStates();
    void unsetMarking();
    void editIsOneStep_data();
    void editIsOneStep();
    void typingMergesIntoOneStep();
    void autoRunDelay_data();
    void autoRunDelay();

private:
    TransformItemWidget *showTransform();
    // Undo and redo replace the items; these find them again by id.
    InputNode *input() const { return qobject_cast<InputNode *>(m_scene->node(m_inputId)); }
    Parameter *parameter(const QString &name) const
    {
        auto *node = qobject_cast<TransformNode *>(m_scene->node(m_transformId));
        return node ? node->transform()->parameter(name) : nullptr;
    }

    std::unique_ptr<QTemporaryDir> m_dir;
    std::unique_ptr<Settings> m_settings;
    std::unique_ptr<GraphScene> m_scene;
    std::unique_ptr<QUndoStack> m_undoStack;
    std::unique_ptr<ItemPane> m_pane;
    InputNode *m_input = nullptr;
    TransformNode *m_transformNode = nullptr;
    int m_inputId = -1;
    int m_transformId = -1;
};

void TestItemWidgets::init()
{
    m_dir = std::make_unique<QTemporaryDir>();
    m_settings = std::make_unique<Settings>(m_dir->filePath(QStringLiteral("tabrelle.ini")));
    m_settings->setValue(QStringLiteral("auto_run_delay_ms"), 50);
    m_scene = std::make_unique<GraphScene>();
    m_scene->setSettings(m_settings.get());
    m_undoStack = std::make_unique<QUndoStack>();
    m_input = new InputNode;
    m_scene->addNode(m_input);
    Dataset dataset = testutil::toDataset("a,b,c\n1,x,2021-01-01\n2,y,2021-01-02", true);
    dataset.assignColumnIds(m_input->id());
    m_input->setDataset(dataset);
    m_input->setStatus(Node::UpToDate, false);
    KindsTransform::s_states.clear();
    KindsTransform::s_hides = false;
    m_transformNode = new TransformNode(new KindsTransform);
    m_scene->addNode(m_transformNode);
    QVERIFY(m_scene->connectNodes(m_input, m_transformNode));
    m_transformNode->setStatus(Node::UpToDate, false);
    m_inputId = m_input->id();
    m_transformId = m_transformNode->id();
    m_pane = std::make_unique<ItemPane>();
    m_pane->setScene(m_scene.get(), m_undoStack.get());
    m_pane->resize(500, 900);
}

void TestItemWidgets::cleanup()
{
    m_pane.reset();
    m_undoStack.reset();
    m_scene.reset();
    m_settings.reset();
}

TransformItemWidget *TestItemWidgets::showTransform()
{
    m_pane->setCurrentNode(m_transformNode);
    m_pane->show();
    return qobject_cast<TransformItemWidget *>(m_pane->itemWidget());
}

void TestItemWidgets::parameterStates_data()
{
    QTest::addColumn<bool>("hides");
    QTest::newRow("disables") << false;
    QTest::newRow("hides") << true;
}

void TestItemWidgets::parameterStates()
{
    QFETCH(bool, hides);
    KindsTransform::s_hides = hides;
    KindsTransform::s_states = {{QStringLiteral("Text"), false}, {QStringLiteral("Int"), true}};
    TransformItemWidget *widget = showTransform();
    QVERIFY(widget);
    ParameterEditor *text = widget->editor(QStringLiteral("Text"));
    QVERIFY(text);
    QCOMPARE(text->isHidden(), hides);
    QCOMPARE(widget->label(QStringLiteral("Text"))->isHidden(), hides);
    QVERIFY(!text->isEnabled());
    QVERIFY(!widget->label(QStringLiteral("Text"))->isEnabled());
    QVERIFY(widget->editor(QStringLiteral("Int"))->isEnabled());
    QVERIFY(!widget->editor(QStringLiteral("Int"))->isHidden());

    // A state that changes after an edit is applied to the rows at once.
    KindsTransform::s_states = {};
    widget->applyParameterStates();
    QVERIFY(!text->isHidden());
    QVERIFY(text->isEnabled());
}

void TestItemWidgets::unsetMarking()
{
    TransformItemWidget *widget = showTransform();
    const QColor mark(0xFC, 0x33, 0x00);
    // A required Int at 0 and an empty Text are unset; a Selection never is here.
    QCOMPARE(widget->label(QStringLiteral("Int"))->palette().color(QPalette::WindowText), mark);
    QVERIFY(widget->label(QStringLiteral("Int"))
                ->toolTip()
                .endsWith(QStringLiteral("\nThis option is not set.")));
    QCOMPARE(widget->label(QStringLiteral("Text"))->palette().color(QPalette::WindowText), mark);
    QVERIFY(widget->label(QStringLiteral("Selection"))->palette().color(QPalette::WindowText) != mark);

    // Typing a text clears its mark.
    auto *edit = qobject_cast<QLineEdit *>(widget->editor(QStringLiteral("Text"))->focusWidget());
    QTest::keyClicks(edit, QStringLiteral("x"));
    QVERIFY(widget->label(QStringLiteral("Text"))->palette().color(QPalette::WindowText) != mark);

    // The disable switch turns its text the marking colour when checked.
    auto *disable = qobject_cast<QCheckBox *>(widget->editor(QStringLiteral("Disable"))->focusWidget());
    QVERIFY(disable->styleSheet().isEmpty());
    disable->click();
    widget->refresh();
    QVERIFY(disable->styleSheet().contains(mark.name()));
}

void TestItemWidgets::editIsOneStep_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("action");
    QTest::addColumn<QString>("input");
    QTest::addColumn<QString>("expected"); // the option's saved text afterwards
    QTest::newRow("Column") << "Column"
                            << "down"
                            << ""
                            << "1";
    QTest::newRow("Columns") << "Columns"
                             << "check"
                             << "1"
                             << "2";
    QTest::newRow("Optional_Columns") << "Optional_Columns"
                                      << "check"
                                      << "2"
                                      << "3";
    QTest::newRow("Sort_Columns") << "Sort_Columns"
                                  << "text"
                                  << "-2"
                                  << "-2";
    QTest::newRow("Group_Columns") << "Group_Columns"
                                   << "text"
                                   << "3"
                                   << "3";
    QTest::newRow("Filter_Columns") << "Filter_Columns"
                                    << "text"
                                    << "1\n0\n2\n0\ny"
                                    << QStringLiteral("1\x1f"
                                                      "0\x1f"
                                                      "2\x1f"
                                                      "0\x1fy");
    QTest::newRow("Reorder_Columns") << "Reorder_Columns"
                                     << "text"
                                     << "3\n1\n2"
                                     << QStringLiteral("3\x1f"
                                                       "1\x1f"
                                                       "2");
    QTest::newRow("Replace_Terms") << "Replace_Terms"
                                   << "text"
                                   << "0\nfrom\nto"
                                   << QStringLiteral("0\x1f"
                                                     "from\x1fto");
    QTest::newRow("Bool") << "Bool"
                          << "click"
                          << ""
                          << "1";
    QTest::newRow("Selection") << "Selection"
                               << "down"
                               << ""
                               << "Two";
    QTest::newRow("Text") << "Text"
                          << "type"
                          << "abc"
                          << "abc";
    QTest::newRow("Int") << "Int"
                         << "up"
                         << ""
                         << "1";
    QTest::newRow("Char") << "Char"
                          << "down"
                          << ""
                          << "%20";
    QTest::newRow("Real") << "Real"
                          << "up"
                          << ""
                          << "2.5";
    QTest::newRow("Long_Text") << "Long_Text"
                               << "type"
                               << "words"
                               << "words";
    QTest::newRow("Script") << "Script"
                            << "type"
                            << "return 1"
                            << "return%201";
    QTest::newRow("Date") << "Date"
                          << "up"
                          << ""
                          << "2021-05-06";
}

void TestItemWidgets::editIsOneStep()
{
    QFETCH(QString, name);
    QFETCH(QString, action);
    QFETCH(QString, input);
    QFETCH(QString, expected);
    TransformItemWidget *widget = showTransform();
    ParameterEditor *editor = widget->editor(name);
    QVERIFY(editor);
    Parameter *parameter = editor->parameter();
    const QString before = parameter->toText();
    QWidget *target = editor->focusWidget();
    target->setFocus();
    if (action == QLatin1String("down")) {
        QTest::keyClick(target, Qt::Key_Down);
    } else if (action == QLatin1String("up")) {
        if (auto *date = qobject_cast<QDateEdit *>(target))
            date->setCurrentSection(QDateTimeEdit::YearSection);
        QTest::keyClick(target, Qt::Key_Up);
    } else if (action == QLatin1String("click")) {
        qobject_cast<QCheckBox *>(target)->click();
    } else if (action == QLatin1String("check")) {
        qobject_cast<QListWidget *>(target)->item(input.toInt())->setCheckState(Qt::Checked);
    } else if (action == QLatin1String("type")) {
        QTest::keyClicks(target, input);
    } else if (action == QLatin1String("text")) {
        qobject_cast<QPlainTextEdit *>(target)->setPlainText(input);
    }
    QCOMPARE(parameter->toText(), expected);
    QCOMPARE(m_undoStack->count(), 1);
    QCOMPARE(m_undoStack->text(0), QStringLiteral("'%1' change").arg(parameter->label()));
    m_undoStack->undo();
    QCOMPARE(this->parameter(name)->toText(), before);
    m_undoStack->redo();
    QCOMPARE(this->parameter(name)->toText(), expected);
}

void TestItemWidgets::typingMergesIntoOneStep()
{
    TransformItemWidget *widget = showTransform();
    QWidget *edit = widget->editor(QStringLiteral("Text"))->focusWidget();
    edit->setFocus();
    QTest::keyClicks(edit, QStringLiteral("hello"));
    QCOMPARE(m_undoStack->count(), 1);
    QCOMPARE(widget->editor(QStringLiteral("Text"))->parameter()->stringValue(), QStringLiteral("hello"));
    // Another option is another step.
    QWidget *other = widget->editor(QStringLiteral("Long_Text"))->focusWidget();
    other->setFocus();
    QTest::keyClicks(other, QStringLiteral("ab"));
    QCOMPARE(m_undoStack->count(), 2);
}

void TestItemWidgets::autoRunDelay_data()
{
    QTest::addColumn<QString>("how");
    QTest::addColumn<bool>("atOnce");
    QTest::newRow("typing waits for the delay") << "type" << false;
    QTest::newRow("a choice is at once") << "choose" << true;
    QTest::newRow("focus out applies typing at once") << "typeThenLeave" << true;
}

void TestItemWidgets::autoRunDelay()
{
    QFETCH(QString, how);
    QFETCH(bool, atOnce);
    TransformItemWidget *widget = showTransform();
    QVERIFY(QTest::qWaitForWindowExposed(m_pane.get()));
    m_pane->activateWindow();
    QCOMPARE(m_transformNode->status(), int(Node::UpToDate));
    if (how == QLatin1String("choose")) {
        QWidget *combo = widget->editor(QStringLiteral("Selection"))->focusWidget();
        combo->setFocus();
        QTest::keyClick(combo, Qt::Key_Down);
    } else {
        QWidget *edit = widget->editor(QStringLiteral("Text"))->focusWidget();
        edit->setFocus();
        QTest::keyClicks(edit, QStringLiteral("a"));
        if (how == QLatin1String("typeThenLeave"))
            widget->editor(QStringLiteral("Long_Text"))->focusWidget()->setFocus();
    }
    if (atOnce) {
        QCOMPARE(m_transformNode->status(), int(Node::NeedsUpdating));
    } else {
        QCOMPARE(m_transformNode->status(), int(Node::UpToDate));
        QVERIFY(widget->isInvalidatePending());
        QTRY_COMPARE_WITH_TIMEOUT(m_transformNode->status(), int(Node::NeedsUpdating), 2000);
    }
}

int main(int argc, char **argv)
{
    QStandardPaths::setTestModeEnabled(true);
    Application app(argc, argv, false);
    // Undo steps rebuild items from their saved form, so the test transform must be known.
    app.nodeFactory().registerCreator(
        QStringLiteral("Transform:Kinds"), [] { return new TransformNode(new KindsTransform); });
    TestItemWidgets test;
    return QTest::qExec(&test, argc, argv);
}
#include "tst_itemwidgets.moc"
