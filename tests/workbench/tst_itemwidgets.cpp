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
#include "workbench/parameterwidgets.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDateEdit>
#include <QDoubleSpinBox>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QSpinBox>
#include <QStandardPaths>
#include <QTableWidget>
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
        add(ParameterKind::VerifyRules, QStringLiteral("Verify_Rules"));
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
    void intFrameAndSwitchColour();
    void accessibleNames();
    void editIsOneStep_data();
    void editIsOneStep();
    void typingMergesIntoOneStep_data();
    void typingMergesIntoOneStep();
    void autoRunDelay_data();
    void autoRunDelay();
    void disabledDuringRun();
    void exploreButton_data();
    void exploreButton();

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
    KindsTransform::s_states = {{QStringLiteral("Text"), false}, {QStringLiteral("Int"), true},
        {QStringLiteral("Filter_Columns"), false}};
    TransformItemWidget *widget = showTransform();
    QVERIFY(widget);
    for (const QString &name : {QStringLiteral("Text"), QStringLiteral("Filter_Columns")}) {
        QWidget *off = widget->parameterWidget(name)->widget();
        QCOMPARE(off->isHidden(), hides);
        QCOMPARE(widget->label(name)->isHidden(), hides);
        QVERIFY(!off->isEnabled());
        QVERIFY(!widget->label(name)->isEnabled());
    }
    QVERIFY(widget->parameterWidget(QStringLiteral("Int"))->widget()->isEnabled());
    QVERIFY(!widget->parameterWidget(QStringLiteral("Int"))->widget()->isHidden());

    // A state that changes after an edit is applied to the rows at once.
    KindsTransform::s_states = {};
    widget->applyParameterStates();
    QWidget *text = widget->parameterWidget(QStringLiteral("Text"))->widget();
    QVERIFY(!text->isHidden());
    QVERIFY(text->isEnabled());
}

void TestItemWidgets::unsetMarking()
{
    TransformItemWidget *widget = showTransform();
    const QColor mark(0xFC, 0x33, 0x00);
    // A required Int at 0, an empty Text and a filter with no condition are unset; a
    // Selection never is here.
    for (const QString &name :
        {QStringLiteral("Int"), QStringLiteral("Text"), QStringLiteral("Filter_Columns")}) {
        QCOMPARE(widget->label(name)->palette().color(QPalette::WindowText), mark);
        QVERIFY(widget->label(name)->toolTip().endsWith(QStringLiteral("\nThis option is not set.")));
    }
    QVERIFY(widget->label(QStringLiteral("Selection"))->palette().color(QPalette::WindowText) != mark);
    QVERIFY(!widget->label(QStringLiteral("Selection"))->toolTip().contains(QStringLiteral("not set")));

    // Typing a text clears its mark.
    QWidget *edit = widget->parameterWidget(QStringLiteral("Text"))->widget();
    QTest::keyClicks(edit, QStringLiteral("x"));
    QVERIFY(widget->label(QStringLiteral("Text"))->palette().color(QPalette::WindowText) != mark);
    // A state that switches an option off takes its mark away.
    KindsTransform::s_states = {{QStringLiteral("Int"), false}};
    widget->applyParameterStates();
    QVERIFY(widget->label(QStringLiteral("Int"))->palette().color(QPalette::WindowText) != mark);
}

void TestItemWidgets::intFrameAndSwitchColour()
{
    TransformItemWidget *widget = showTransform();
    QVERIFY(QTest::qWaitForWindowExposed(m_pane.get()));
    const QColor mark(0xFC, 0x33, 0x00);
    // A required Int at 0 is framed inside its border in the marking colour.
    auto *spin = qobject_cast<IntParameterWidget *>(widget->parameterWidget(QStringLiteral("Int"))->widget());
    QVERIFY(spin);
    QImage image = spin->grab().toImage();
    QCOMPARE(image.pixelColor(1, image.height() / 2), mark);
    spin->setFocus();
    QTest::keyClick(spin, Qt::Key_Up);
    image = spin->grab().toImage();
    QVERIFY(image.pixelColor(1, image.height() / 2) != mark);

    // The disable switch turns its text the marking colour when checked.
    auto *disable =
        qobject_cast<BoolParameterWidget *>(widget->parameterWidget(QStringLiteral("Disable"))->widget());
    QVERIFY(disable);
    QVERIFY(disable->styleSheet().isEmpty());
    disable->click();
    QCOMPARE(disable->styleSheet(), QStringLiteral("BoolParameterWidget{ color: %1; }").arg(mark.name()));
    // An ordinary check box never is.
    auto *plain =
        qobject_cast<BoolParameterWidget *>(widget->parameterWidget(QStringLiteral("Bool"))->widget());
    plain->click();
    QVERIFY(plain->styleSheet().isEmpty());
}

void TestItemWidgets::accessibleNames()
{
    TransformItemWidget *widget = showTransform();
    const QList<Parameter *> parameters = widget->transformNode()->transform()->parameterList();
    QCOMPARE(parameters.size(), 25);
    for (Parameter *parameter : parameters) {
        ParameterWidget *parameterWidget = widget->parameterWidget(parameter->name());
        QVERIFY2(parameterWidget, qPrintable(parameter->name()));
        QCOMPARE(parameterWidget->focusTarget()->accessibleName(), parameter->label());
        // The label leads to the widget that takes focus.
        if (QLabel *label = widget->label(parameter->name()))
            QCOMPARE(label->buddy(), parameterWidget->focusTarget());
    }
}

void TestItemWidgets::editIsOneStep_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("action");
    QTest::addColumn<QString>("input");
    QTest::addColumn<QString>("expected"); // the option's saved text afterwards; "*" any change
    const auto items = [](const QStringList &list) { return list.join(QChar(0x1F)); };
    QTest::newRow("Column") << "Column"
                            << "down"
                            << ""
                            << "1";
    QTest::newRow("Columns") << "Columns"
                             << "check"
                             << "1"
                             << "2";
    QTest::newRow("Sort_Columns") << "Sort_Columns"
                                  << "add"
                                  << ""
                                  << "1";
    QTest::newRow("Filter_Columns") << "Filter_Columns"
                                    << "term"
                                    << "y" << items({"1", "1", "0", "0", "y"});
    QTest::newRow("Reorder_Columns") << "Reorder_Columns"
                                     << "ctrlUp"
                                     << "2" << items({"1", "3", "2"});
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
    QTest::newRow("If") << "If"
                        << "result"
                        << "big" << items({"*StartIf*", "*EndIf*", "big", ""});
    QTest::newRow("Optional_Columns") << "Optional_Columns"
                                      << "check"
                                      << "2"
                                      << "3";
    QTest::newRow("Script") << "Script"
                            << "type"
                            << "return 1"
                            << "return%201";
    QTest::newRow("Rename_Columns") << "Rename_Columns"
                                    << "rename"
                                    << "z" << items({"z", "*NORENAME*", "*NORENAME*"});
    QTest::newRow("Split_Rows") << "Split_Rows"
                                << "splitText"
                                << ";" << items({"0", "1", "1", "0", "0", "%3B"});
    QTest::newRow("Unique_Columns") << "Unique_Columns"
                                    << "unique"
                                    << "" << items({"2", "1", "1"});
    QTest::newRow("Replace_Terms") << "Replace_Terms"
                                   << "from"
                                   << "from" << items({"0", "from", ""});
    QTest::newRow("Real") << "Real"
                          << "up"
                          << ""
                          << "2.5";
    QTest::newRow("Long_Text") << "Long_Text"
                               << "type"
                               << "words"
                               << "words";
    QTest::newRow("Verify_Rules") << "Verify_Rules"
                                  << "severity"
                                  << ""
                                  << "*";
    QTest::newRow("Label") << "Label"
                           << "none"
                           << ""
                           << "";
    QTest::newRow("Date") << "Date"
                          << "up"
                          << ""
                          << "2021-05-06";
    QTest::newRow("Group_Columns") << "Group_Columns"
                                   << "add"
                                   << ""
                                   << "1";
    QTest::newRow("Locale") << "Locale"
                            << "down"
                            << ""
                            << "*";
}

void TestItemWidgets::editIsOneStep()
{
    QFETCH(QString, name);
    QFETCH(QString, action);
    QFETCH(QString, input);
    QFETCH(QString, expected);
    TransformItemWidget *widget = showTransform();
    ParameterWidget *parameterWidget = widget->parameterWidget(name);
    QVERIFY(parameterWidget);
    Parameter *parameter = parameterWidget->parameter();
    const QString before = parameter->toText();
    QWidget *target = parameterWidget->focusTarget();
    QWidget *own = parameterWidget->widget();
    target->setFocus();
    if (action == QLatin1String("down")) {
        QTest::keyClick(target, Qt::Key_Down);
    } else if (action == QLatin1String("up")) {
        if (auto *date = qobject_cast<QDateEdit *>(target))
            date->setCurrentSection(QDateTimeEdit::YearSection);
        QTest::keyClick(target, Qt::Key_Up);
    } else if (action == QLatin1String("click")) {
        QTest::keyClick(target, Qt::Key_Space);
    } else if (action == QLatin1String("check")) {
        auto *list = qobject_cast<QListWidget *>(target);
        list->setCurrentRow(input.toInt());
        QTest::keyClick(list, Qt::Key_Space);
    } else if (action == QLatin1String("type")) {
        QTest::keyClicks(target, input);
    } else if (action == QLatin1String("add")) {
        QTest::mouseClick(own->findChild<QPushButton *>(), Qt::LeftButton);
    } else if (action == QLatin1String("term")) {
        ConditionTable *table = qobject_cast<FilterColumnsParameterWidget *>(own)->table();
        QTest::keyClicks(table->termEdit(0), input);
    } else if (action == QLatin1String("ctrlUp")) {
        auto *list = qobject_cast<QListWidget *>(target);
        list->setCurrentRow(input.toInt());
        QTest::keyClick(list, Qt::Key_Up, Qt::ControlModifier);
    } else if (action == QLatin1String("result")) {
        QTest::keyClicks(qobject_cast<IfParameterWidget *>(own)->resultEdit(0), input);
    } else if (action == QLatin1String("rename")) {
        QTest::keyClicks(qobject_cast<RenameColumnsParameterWidget *>(own)->nameEdit(0), input);
    } else if (action == QLatin1String("splitText")) {
        QTest::keyClicks(qobject_cast<SplitRowsParameterWidget *>(own)->textEdit(), input);
    } else if (action == QLatin1String("unique")) {
        QComboBox *combo = qobject_cast<UniqueParameterWidget *>(own)->optionCombo(0);
        combo->setFocus();
        QTest::keyClick(combo, Qt::Key_Down);
    } else if (action == QLatin1String("from")) {
        QTest::keyClicks(qobject_cast<ReplaceTermsParameterWidget *>(own)->fromEdit(0), input);
    } else if (action == QLatin1String("severity")) {
        QTableWidget *table = qobject_cast<VerifyRulesParameterWidget *>(own)->datasetTable();
        auto *combo = qobject_cast<QComboBox *>(table->cellWidget(0, 2));
        combo->setFocus();
        QTest::keyClick(combo, Qt::Key_Up);
    }
    if (action == QLatin1String("none")) {
        // A label has no value: nothing to edit and nothing on the stack.
        QVERIFY(!parameterWidget->value().isValid());
        QCOMPARE(m_undoStack->count(), 0);
        return;
    }
    if (expected == QLatin1String("*"))
        QVERIFY(parameter->toText() != before);
    else
        QCOMPARE(parameter->toText(), expected);
    const QString after = parameter->toText();
    QCOMPARE(m_undoStack->count(), 1);
    QCOMPARE(m_undoStack->text(0), QStringLiteral("'%1' change").arg(parameter->label()));
    m_undoStack->undo();
    QCOMPARE(this->parameter(name)->toText(), before);
    // The pane shows the restored item.
    auto *restored = qobject_cast<TransformItemWidget *>(m_pane->itemWidget());
    QVERIFY(restored);
    QVERIFY(restored->parameterWidget(name));
    m_undoStack->redo();
    QCOMPARE(this->parameter(name)->toText(), after);
}

void TestItemWidgets::typingMergesIntoOneStep_data()
{
    QTest::addColumn<QString>("name");
    QTest::newRow("text field") << "Text";
    QTest::newRow("long text") << "Long_Text";
    QTest::newRow("script") << "Script";
}

void TestItemWidgets::typingMergesIntoOneStep()
{
    QFETCH(QString, name);
    TransformItemWidget *widget = showTransform();
    QWidget *edit = widget->parameterWidget(name)->focusTarget();
    edit->setFocus();
    QTest::keyClicks(edit, QStringLiteral("hello"));
    QCOMPARE(m_undoStack->count(), 1);
    QCOMPARE(widget->parameterWidget(name)->parameter()->stringValue(), QStringLiteral("hello"));
    // Another option is another step.
    QWidget *other = widget
                         ->parameterWidget(name == QLatin1String("Text") ? QStringLiteral("Long_Text")
                                                                         : QStringLiteral("Text"))
                         ->focusTarget();
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
    QTest::newRow("a filter term waits for the delay") << "term" << false;
    QTest::newRow("Enter applies typing at once") << "typeThenEnter" << true;
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
        QWidget *combo = widget->parameterWidget(QStringLiteral("Selection"))->focusTarget();
        combo->setFocus();
        QTest::keyClick(combo, Qt::Key_Down);
    } else if (how == QLatin1String("term")) {
        auto *filter = qobject_cast<FilterColumnsParameterWidget *>(
            widget->parameterWidget(QStringLiteral("Filter_Columns"))->widget());
        filter->table()->termEdit(0)->setFocus();
        QTest::keyClicks(filter->table()->termEdit(0), QStringLiteral("a"));
    } else {
        QWidget *edit = widget->parameterWidget(QStringLiteral("Text"))->focusTarget();
        edit->setFocus();
        QTest::keyClicks(edit, QStringLiteral("a"));
        if (how == QLatin1String("typeThenLeave"))
            widget->parameterWidget(QStringLiteral("Long_Text"))->focusTarget()->setFocus();
        if (how == QLatin1String("typeThenEnter"))
            QTest::keyClick(edit, Qt::Key_Return);
    }
    if (atOnce) {
        QCOMPARE(m_transformNode->status(), int(Node::NeedsUpdating));
    } else {
        QCOMPARE(m_transformNode->status(), int(Node::UpToDate));
        QVERIFY(widget->isInvalidatePending());
        QTRY_COMPARE_WITH_TIMEOUT(m_transformNode->status(), int(Node::NeedsUpdating), 2000);
    }
}

void TestItemWidgets::disabledDuringRun()
{
    TransformItemWidget *widget = showTransform();
    m_pane->setRunning(true);
    QWidget *text = widget->parameterWidget(QStringLiteral("Text"))->widget();
    QVERIFY(!text->isEnabled());
    m_pane->setRunning(false);
    QVERIFY(text->isEnabled());
    // A run's end reloads the widgets from the options, with no step.
    parameter(QStringLiteral("Text"))->setValue(QStringLiteral("set by the run"));
    m_pane->refresh();
    QCOMPARE(qobject_cast<QLineEdit *>(text)->text(), QStringLiteral("set by the run"));
    QCOMPARE(m_undoStack->count(), 0);
}

void TestItemWidgets::exploreButton_data()
{
    QTest::addColumn<QString>("transform");
    QTest::addColumn<QString>("text"); // empty: no button
    QTest::addColumn<QString>("tip");
    QTest::newRow("join compares keys") << "Join"
                                        << "Explore Keys..."
                                        << "Click to compare keys between the 2 input datasets.";
    QTest::newRow("dedupe explores duplicates") << "Dedupe"
                                                << "Explore Duplicates..."
                                                << "Click to explorer duplicates in the dataset.\nMay be "
                                                   "slow for large datasets, especially for fuzzy "
                                                   "match.";
    QTest::newRow("sort has neither") << "Sort"
                                      << ""
                                      << "";
}

void TestItemWidgets::exploreButton()
{
    QFETCH(QString, transform);
    QFETCH(QString, text);
    QFETCH(QString, tip);
    const Transform *prototype = nullptr;
    for (const Transform *candidate : Application::instance()->transforms()) {
        if (candidate->id() == transform)
            prototype = candidate;
    }
    QVERIFY(prototype);
    auto *node = new TransformNode(prototype->clone());
    m_scene->addNode(node);
    QVERIFY(m_scene->connectNodes(m_input, node));
    m_pane->setCurrentNode(node);
    m_pane->show();
    auto *widget = qobject_cast<TransformItemWidget *>(m_pane->itemWidget());
    QVERIFY(widget);
    if (text.isEmpty()) {
        QVERIFY(!widget->exploreButton());
        return;
    }
    QPushButton *button = widget->exploreButton();
    QVERIFY(button);
    QCOMPARE(button->text(), text);
    QCOMPARE(button->toolTip(), tip);
    QVERIFY(button->isVisible());
    // It comes before the options in the tab order, counted from the top of the pane.
    QWidget *first = widget->parameterWidget(node->transform()->parameterList().first()->name())->focusTarget();
    QList<QWidget *> chain;
    for (QWidget *next = widget->nextInFocusChain(); next && next != widget && !chain.contains(next);
         next = next->nextInFocusChain())
        chain << next;
    QVERIFY(chain.contains(first));
    QVERIFY(chain.contains(button));
    QVERIFY(chain.indexOf(button) < chain.indexOf(first));
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
