#include "testutil.h"

#include "app/application.h"
#include "core/matching.h"
#include "flow/document.h"
#include "flow/graphscene.h"
#include "inputs/inputnode.h"
#include "transforms/parameter.h"
#include "transforms/verifyrules.h"
#include "workbench/parameterwidgets.h"

#include <QFontDatabase>
#include <QListView>
#include <QListWidget>
#include <QPushButton>
#include <QStandardPaths>
#include <QToolButton>
#include <QtTest>

#include <memory>

namespace {

// Items of a saved list, joined as documents join them.
QString items(const QStringList &list)
{
    return list.join(QChar(0x1F));
}

} // namespace

class TestParameterWidgets : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase();
    void cleanupTestCase();
    void roundTrip_data();
    void roundTrip();
    void edit_data();
    void edit();
    void operatorDisplayOrder();
    void termDisabledForEmptyTests_data();
    void termDisabledForEmptyTests();
    void invalidPatternMarked_data();
    void invalidPatternMarked();
    void missingColumnsShownAndKept_data();
    void missingColumnsShownAndKept();
    void forgetMissingColumns();
    void newRowsFollowInTabOrder();
    void columnListFilters_data();
    void columnListFilters();
    void scriptSyntaxMessage_data();
    void scriptSyntaxMessage();

private:
    // A parameter of the kind on the test input, read from its saved text.
    std::unique_ptr<Parameter> make(ParameterKind kind, const QString &text) const;
    static QString textOf(const Parameter &parameter, const QVariant &value);

    std::unique_ptr<GraphScene> m_scene;
    InputNode *m_input = nullptr;
};

void TestParameterWidgets::initTestCase()
{
    m_scene = std::make_unique<GraphScene>();
    m_input = new InputNode;
    m_scene->addNode(m_input);
    Dataset dataset = testutil::toDataset("a,b,c\n1,x,2021-01-01\n2,y,2021-01-02", true);
    dataset.assignColumnIds(m_input->id());
    m_input->setDataset(dataset);
    m_input->setStatus(Node::UpToDate, false);
}

void TestParameterWidgets::cleanupTestCase()
{
    m_scene.reset();
}

std::unique_ptr<Parameter> TestParameterWidgets::make(ParameterKind kind, const QString &text) const
{
    auto parameter =
        std::make_unique<Parameter>(kind, QStringLiteral("Option"), QStringLiteral("option"), m_input);
    parameter->setUpstream(m_input, true);
    if (!text.isNull())
        parameter->fromText(text, Document::CurrentVersion);
    return parameter;
}

QString TestParameterWidgets::textOf(const Parameter &parameter, const QVariant &value)
{
    Parameter copy(parameter);
    copy.setValue(value);
    return copy.toText();
}

void TestParameterWidgets::roundTrip_data()
{
    QTest::addColumn<int>("kind");
    QTest::addColumn<QString>("text");
    QTest::newRow("filter: remove, any, two conditions")
        << int(ParameterKind::FilterColumns) << items({"0", "0", "2", "1", "x", "0", "19", ""});
    QTest::newRow("filter: keep all, regex on c")
        << int(ParameterKind::FilterColumns) << items({"1", "1", "3", "8", "2021-0%5B12%5D"});
    QTest::newRow("if: two blocks and else")
        << int(ParameterKind::If)
        << items({"*StartIf*", "1", "6", "2", "2", "0", "y", "*EndIf*", "big", "*StartIf*", "0", "20", "",
               "*EndIf*", "%24%28a%29", "other"});
    QTest::newRow("sort: c descending, a ascending") << int(ParameterKind::SortColumns) << items({"-3", "1"});
    QTest::newRow("group: b") << int(ParameterKind::GroupColumns) << items({"2"});
    QTest::newRow("rename: b only") << int(ParameterKind::RenameColumns)
                                    << items({"*NORENAME*", "Bee", "*NORENAME*"});
    QTest::newRow("split at text") << int(ParameterKind::SplitRows)
                                   << items({"0", "1", "0", "0", "5", "%3B"});
    QTest::newRow("split by count column")
        << int(ParameterKind::SplitRows) << items({"2", "0", "1", "1", "0", ""});
    QTest::newRow("unique: key a, concatenate c")
        << int(ParameterKind::UniqueColumns) << items({"0", "1", "5"});
    QTest::newRow("replace: text and regex")
        << int(ParameterKind::ReplaceTerms) << items({"0", "a", "b", "3", "x%2B", "y", "4", "%2A.txt", ""});
    QTest::newRow("reorder: c first") << int(ParameterKind::ReorderColumns) << items({"3", "1", "2"});
    QTest::newRow("columns: a and c") << int(ParameterKind::Columns) << items({"1", "3"});
    // Verify rules: the starting rules with a dataset rule and a column rule switched on.
    auto verify = make(ParameterKind::VerifyRules, QString());
    VerifyRulesValue rules = verify->verifyRules();
    rules.datasetRules[0].severity = 1;
    rules.datasetRules[0].value = QStringLiteral("2");
    const ColumnId b = m_input->dataset().columnId(1);
    rules.columns[b].rules[0].severity = 0;
    rules.columns[b].rules[0].flag = true;
    verify->setValue(QVariant::fromValue(rules));
    QTest::newRow("verify: a dataset rule and a column rule")
        << int(ParameterKind::VerifyRules) << verify->toText();
}

void TestParameterWidgets::roundTrip()
{
    QFETCH(int, kind);
    QFETCH(QString, text);
    auto parameter = make(ParameterKind(kind), text);
    QCOMPARE(parameter->toText(), text); // the case itself is well formed
    std::unique_ptr<ParameterWidget> widget(createParameterWidget(parameter.get(), nullptr));
    // Loading is never an edit, and the widget gives back what it was given.
    QCOMPARE(textOf(*parameter, widget->value()), text);
    // The value a widget gives, loaded into a new widget, comes back unchanged.
    auto second = make(ParameterKind(kind), QString());
    second->setValue(widget->value());
    std::unique_ptr<ParameterWidget> again(createParameterWidget(second.get(), nullptr));
    QCOMPARE(textOf(*second, again->value()), text);
}

void TestParameterWidgets::edit_data()
{
    QTest::addColumn<int>("kind");
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("action");
    QTest::addColumn<QString>("expected");
    QTest::newRow("filter: remove instead of keep")
        << int(ParameterKind::FilterColumns) << items({"1", "1", "2", "1", "x"}) << "keep"
        << items({"0", "1", "2", "1", "x"});
    QTest::newRow("filter: a term typed in the empty row")
        << int(ParameterKind::FilterColumns) << items({"1", "1", "2", "1", "x"}) << "term:z"
        << items({"1", "1", "2", "1", "x", "0", "0", "z"});
    QTest::newRow("filter: first condition removed")
        << int(ParameterKind::FilterColumns) << items({"1", "1", "2", "1", "x", "1", "0", "1"}) << "remove"
        << items({"1", "1", "1", "0", "1"});
    QTest::newRow("sort: a column added")
        << int(ParameterKind::SortColumns) << items({"2"}) << "add" << items({"2", "1"});
    QTest::newRow("sort: second row moved up")
        << int(ParameterKind::SortColumns) << items({"2", "-3"}) << "up" << items({"-3", "2"});
    QTest::newRow("reorder: reset to the input's order")
        << int(ParameterKind::ReorderColumns) << items({"3", "1", "2"}) << "reset" << items({"1", "2", "3"});
    QTest::newRow("reorder: reverse") << int(ParameterKind::ReorderColumns) << items({"1", "2", "3"})
                                      << "reverse" << items({"3", "2", "1"});
    QTest::newRow("rename: pasted names")
        << int(ParameterKind::RenameColumns) << QString() << "paste:A\nB" << items({"A", "B", "*NORENAME*"});
    QTest::newRow("replace: pasted terms") << int(ParameterKind::ReplaceTerms) << QString()
                                           << "paste:x\ty\nq\t" << items({"0", "x", "y", "0", "q", ""});
    QTest::newRow("unique: selected rows set to Unique")
        << int(ParameterKind::UniqueColumns) << items({"1", "1", "1"}) << "setTo:0" << items({"0", "0", "1"});
    QTest::newRow("if: a block added and typed in")
        << int(ParameterKind::If) << items({"*StartIf*", "1", "0", "1", "*EndIf*", "one", ""})
        << "addBlock:two"
        << items({"*StartIf*", "1", "0", "1", "*EndIf*", "one", "*StartIf*", "*EndIf*", "two", ""});
    QTest::newRow("columns: none of the shown")
        << int(ParameterKind::Columns) << items({"1", "2", "3"}) << "filter:b,none" << items({"1", "3"});
}

void TestParameterWidgets::edit()
{
    QFETCH(int, kind);
    QFETCH(QString, text);
    QFETCH(QString, action);
    QFETCH(QString, expected);
    auto parameter = make(ParameterKind(kind), text);
    ParameterWidget *created = createParameterWidget(parameter.get(), nullptr);
    std::unique_ptr<QWidget> owner(created->widget());
    QSignalSpy processNow(created->widget(), SIGNAL(processNow()));
    QSignalSpy startTimer(created->widget(), SIGNAL(startTimer()));
    const QString argument = action.section(QLatin1Char(':'), 1);
    if (auto *filter = qobject_cast<FilterColumnsParameterWidget *>(created->widget())) {
        ConditionTable *table = filter->table();
        if (action == QLatin1String("keep")) {
            filter->keepCombo()->setCurrentIndex(1);
            emit filter->keepCombo()->activated(1);
        } else if (action.startsWith(QLatin1String("term"))) {
            QTest::keyClicks(table->termEdit(table->rowCount() - 1), argument);
        } else if (action == QLatin1String("remove")) {
            QTest::mouseClick(table->removeButton(0), Qt::LeftButton);
        }
    } else if (auto *sort = qobject_cast<SortColumnsParameterWidget *>(created->widget())) {
        if (action == QLatin1String("add")) {
            sort->addColumn();
        } else {
            sort->table()->setCurrentCell(1, 0);
            sort->moveCurrent(-1);
        }
    } else if (auto *reorder = qobject_cast<ReorderColumnsParameterWidget *>(created->widget())) {
        if (action == QLatin1String("reset"))
            reorder->resetOrder();
        else
            reorder->reverse();
    } else if (auto *rename = qobject_cast<RenameColumnsParameterWidget *>(created->widget())) {
        rename->pasteNames(argument);
    } else if (auto *replace = qobject_cast<ReplaceTermsParameterWidget *>(created->widget())) {
        replace->pasteTerms(argument);
    } else if (auto *unique = qobject_cast<UniqueParameterWidget *>(created->widget())) {
        unique->table()->selectRow(0);
        unique->table()->selectionModel()->select(
            unique->table()->model()->index(1, 0), QItemSelectionModel::Select | QItemSelectionModel::Rows);
        unique->setSelectedTo(argument.toInt());
    } else if (auto *ifWidget = qobject_cast<IfParameterWidget *>(created->widget())) {
        ifWidget->addBlock();
        QCOMPARE(ifWidget->blockCount(), 2);
        QTest::keyClicks(ifWidget->resultEdit(1), argument);
    } else if (auto *columns = qobject_cast<MultipleColumnsParameterWidget *>(created->widget())) {
        columns->filterEdit()->setText(argument.section(QLatin1Char(','), 0, 0));
        columns->setShownChecks(1);
    }
    QCOMPARE(parameter->toText(), expected);
    QVERIFY(processNow.count() + startTimer.count() > 0);
    // What the widget now holds loads back the same into a new widget.
    auto reloaded = make(ParameterKind(kind), expected);
    std::unique_ptr<ParameterWidget> again(createParameterWidget(reloaded.get(), nullptr));
    QCOMPARE(textOf(*reloaded, again->value()), expected);
}

void TestParameterWidgets::operatorDisplayOrder()
{
    auto parameter = make(ParameterKind::FilterColumns, QString());
    FilterColumnsParameterWidget widget(parameter.get());
    QComboBox *combo = widget.table()->operatorCombo(0);
    QList<int> shown;
    for (int i = 0; i < combo->count(); ++i)
        shown << combo->itemData(i).toInt();
    // The empty tests come before the fuzzy ones.
    const QList<int> expected = {0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 19, 20, 14, 15, 16, 17, 18};
    QCOMPARE(shown, expected);
    QCOMPARE(combo->itemText(14), operatorLabel(19));
    QCOMPARE(combo->font().family(), QFontDatabase::systemFont(QFontDatabase::FixedFont).family());
}

void TestParameterWidgets::termDisabledForEmptyTests_data()
{
    QTest::addColumn<int>("op");
    QTest::addColumn<bool>("termEnabled");
    QTest::newRow("contains") << 0 << true;
    QTest::newRow("matches regex") << 8 << true;
    QTest::newRow("fuzzy 90") << 14 << true;
    QTest::newRow("is empty") << 19 << false;
    QTest::newRow("is not empty") << 20 << false;
}

void TestParameterWidgets::termDisabledForEmptyTests()
{
    QFETCH(int, op);
    QFETCH(bool, termEnabled);
    auto parameter = make(ParameterKind::FilterColumns, items({"1", "1", "1", "0", "abc"}));
    FilterColumnsParameterWidget widget(parameter.get());
    ConditionTable *table = widget.table();
    QComboBox *combo = table->operatorCombo(0);
    combo->setCurrentIndex(combo->findData(op));
    emit combo->activated(combo->currentIndex());
    QCOMPARE(table->termEdit(0)->isEnabled(), termEnabled);
    QCOMPARE(table->termEdit(0)->text().isEmpty(), !termEnabled);
    QCOMPARE(parameter->filterColumns().conditions.value(0).op, op);
    QCOMPARE(
        parameter->filterColumns().conditions.value(0).term, termEnabled ? QStringLiteral("abc") : QString());
}

void TestParameterWidgets::invalidPatternMarked_data()
{
    QTest::addColumn<int>("kind");
    QTest::addColumn<int>("op"); // the filter operator, or the replace term type
    QTest::addColumn<QString>("pattern");
    QTest::addColumn<bool>("marked");
    QTest::newRow("filter regex that compiles") << int(ParameterKind::FilterColumns) << 8 << "a+" << false;
    QTest::newRow("filter regex with an open group")
        << int(ParameterKind::FilterColumns) << 8 << "a(" << true;
    QTest::newRow("filter negated regex, bad") << int(ParameterKind::FilterColumns) << 13 << "[b" << true;
    QTest::newRow("filter contains takes any text")
        << int(ParameterKind::FilterColumns) << 0 << "a(" << false;
    QTest::newRow("replace regex, bad") << int(ParameterKind::ReplaceTerms) << 3 << "(x" << true;
    QTest::newRow("replace text takes any text") << int(ParameterKind::ReplaceTerms) << 0 << "(x" << false;
}

void TestParameterWidgets::invalidPatternMarked()
{
    QFETCH(int, kind);
    QFETCH(int, op);
    QFETCH(QString, pattern);
    QFETCH(bool, marked);
    auto parameter = make(ParameterKind(kind), QString());
    std::unique_ptr<ParameterWidget> widget(createParameterWidget(parameter.get(), nullptr));
    QLineEdit *edit = nullptr;
    if (auto *filter = dynamic_cast<FilterColumnsParameterWidget *>(widget.get())) {
        QComboBox *combo = filter->table()->operatorCombo(0);
        combo->setCurrentIndex(combo->findData(op));
        emit combo->activated(combo->currentIndex());
        edit = filter->table()->termEdit(0);
    } else if (auto *replace = dynamic_cast<ReplaceTermsParameterWidget *>(widget.get())) {
        replace->typeCombo(0)->setCurrentIndex(op);
        emit replace->typeCombo(0)->activated(op);
        edit = replace->fromEdit(0);
    }
    QVERIFY(edit);
    QTest::keyClicks(edit, pattern);
    QCOMPARE(edit->styleSheet().contains(QStringLiteral("#fc3300")), marked);
    if (marked) {
        QRegularExpression regex(pattern);
        QCOMPARE(edit->toolTip(), QStringLiteral("Invalid regular expression: %1").arg(regex.errorString()));
    } else {
        QVERIFY(edit->toolTip().isEmpty());
    }
}

void TestParameterWidgets::missingColumnsShownAndKept_data()
{
    QTest::addColumn<int>("kind");
    QTest::newRow("column") << int(ParameterKind::Column);
    QTest::newRow("filter condition") << int(ParameterKind::FilterColumns);
    QTest::newRow("sort column") << int(ParameterKind::SortColumns);
    QTest::newRow("split count column") << int(ParameterKind::SplitRows);
}

void TestParameterWidgets::missingColumnsShownAndKept()
{
    QFETCH(int, kind);
    // A column that was upstream once: same node, a sequence number it no longer has.
    const ColumnId gone(m_input->id(), 999);
    auto parameter = make(ParameterKind(kind), QString());
    QComboBox *combo = nullptr;
    switch (ParameterKind(kind)) {
    case ParameterKind::FilterColumns: {
        FilterColumnsValue value;
        value.conditions << Condition {false, gone, 1, QStringLiteral("x")};
        parameter->setValue(QVariant::fromValue(value));
        break;
    }
    case ParameterKind::SortColumns:
        parameter->setValue(QVariant::fromValue(SortColumnList {SortColumn {gone, false}}));
        break;
    case ParameterKind::SplitRows: {
        SplitRule rule;
        rule.mode = 2;
        rule.column = gone;
        parameter->setValue(QVariant::fromValue(rule));
        break;
    }
    default:
        parameter->setValue(QVariant::fromValue(gone));
        break;
    }
    const QVariant before = parameter->value();
    std::unique_ptr<ParameterWidget> widget(createParameterWidget(parameter.get(), nullptr));
    if (auto *filter = dynamic_cast<FilterColumnsParameterWidget *>(widget.get()))
        combo = filter->table()->columnCombo(0);
    else if (auto *sort = dynamic_cast<SortColumnsParameterWidget *>(widget.get()))
        combo = sort->columnCombo(0);
    else if (auto *split = dynamic_cast<SplitRowsParameterWidget *>(widget.get()))
        combo = split->columnCombo();
    else
        combo = qobject_cast<QComboBox *>(widget->widget());
    QVERIFY(combo);
    QCOMPARE(combo->currentText(), QStringLiteral("<Missing column>"));
    QCOMPARE(
        combo->itemData(combo->currentIndex(), Qt::ForegroundRole).value<QColor>(), QColor(0xFC, 0x33, 0x00));
    QVERIFY(widget->value() == before);
}

void TestParameterWidgets::forgetMissingColumns()
{
    const ColumnId gone(m_input->id(), 999);
    auto parameter = make(ParameterKind::Columns, QString());
    const QList<ColumnId> stored = {m_input->dataset().columnId(0), gone};
    parameter->setValue(QVariant::fromValue(stored));
    MultipleColumnsParameterWidget widget(parameter.get());
    QVERIFY(!widget.missingLabel()->isHidden());
    QVERIFY(widget.missingLabel()->text().startsWith(
        QStringLiteral("1 selected column(s) are no longer in the input")));
    QCOMPARE(widget.value().value<QList<ColumnId>>(), stored);
    // Checking another column keeps the gone one; Forget drops it.
    widget.list()->item(2)->setCheckState(Qt::Checked);
    const QList<ColumnId> checked = {m_input->dataset().columnId(0), m_input->dataset().columnId(2), gone};
    QCOMPARE(parameter->value().value<QList<ColumnId>>(), checked);
    emit widget.missingLabel()->linkActivated(QStringLiteral("forget"));
    QCOMPARE(parameter->value().value<QList<ColumnId>>(), checked.mid(0, 2));
    QVERIFY(widget.missingLabel()->isHidden());
}

void TestParameterWidgets::newRowsFollowInTabOrder()
{
    // A condition added by typing in the empty row of the first block: its new empty row
    // is reached by Tab before the block's result, not after everything else.
    auto parameter = make(ParameterKind::If, items({"*StartIf*", "1", "0", "1", "*EndIf*", "one", ""}));
    IfParameterWidget widget(parameter.get());
    ConditionTable *table = widget.conditionTable(0);
    QCOMPARE(table->rowCount(), 2);
    QTest::keyClicks(table->termEdit(1), QStringLiteral("z"));
    QCOMPARE(table->rowCount(), 3);
    QList<QWidget *> chain;
    for (QWidget *next = table; next && !chain.contains(next); next = next->nextInFocusChain())
        chain << next;
    const QList<QWidget *> expected = {table->columnCombo(0), table->termEdit(0), table->columnCombo(1),
        table->termEdit(1), table->columnCombo(2), table->termEdit(2), widget.resultEdit(0),
        widget.elseEdit()};
    int last = -1;
    for (QWidget *control : expected) {
        QVERIFY(chain.indexOf(control) > last);
        last = chain.indexOf(control);
    }
}

void TestParameterWidgets::columnListFilters_data()
{
    QTest::addColumn<QString>("typed"); // "<" is Backspace
    QTest::addColumn<QStringList>("shown");
    QTest::addColumn<QString>("chosen"); // saved position after Enter
    QTest::newRow("nothing typed") << "" << QStringList {"a", "b", "c"} << "0";
    QTest::newRow("case folded") << "B" << QStringList {"b"} << "2";
    QTest::newRow("no match keeps the choice") << "z" << QStringList() << "0";
    QTest::newRow("backspace widens") << "cz<" << QStringList {"c"} << "3";
}

void TestParameterWidgets::columnListFilters()
{
    QFETCH(QString, typed);
    QFETCH(QStringList, shown);
    QFETCH(QString, chosen);
    auto parameter = make(ParameterKind::Column, QString());
    SingleColumnFilteredParameterWidget combo(parameter.get());
    combo.show();
    QVERIFY(QTest::qWaitForWindowExposed(&combo));
    combo.showPopup();
    QTRY_VERIFY(combo.view()->isVisible());
    // "<" stands for Backspace.
    for (const QChar c : typed) {
        if (c == QLatin1Char('<'))
            QTest::keyClick(combo.view(), Qt::Key_Backspace);
        else
            QTest::keyClick(combo.view(), c.toLatin1());
    }
    auto *list = qobject_cast<QListView *>(combo.view());
    QStringList visible;
    for (int i = 1; i < combo.count(); ++i) {
        if (!list->isRowHidden(i))
            visible << combo.itemText(i);
    }
    QCOMPARE(visible, shown);
    QCOMPARE(combo.itemText(0),
        typed.isEmpty() ? QStringLiteral("<None selected>")
                        : QStringLiteral("Filter: %1").arg(combo.popupFilter()));
    if (!shown.isEmpty()) {
        QTest::keyClick(combo.view(), Qt::Key_Return);
        QTRY_VERIFY(!combo.view()->isVisible());
    } else {
        combo.hidePopup();
    }
    QCOMPARE(parameter->toText(), chosen);
    // Closing the list shows every column again, and the none entry its own text.
    QCOMPARE(combo.itemText(0), QStringLiteral("<None selected>"));
    QVERIFY(!list->isRowHidden(1));
}

void TestParameterWidgets::scriptSyntaxMessage_data()
{
    QTest::addColumn<QString>("script");
    QTest::addColumn<QString>("message"); // its start; empty for none
    QTest::newRow("compiles") << "return $(a) + 1;"
                              << "";
    QTest::newRow("empty") << ""
                           << "";
    QTest::newRow("unclosed bracket on line 1") << "return (1 + ;"
                                                << "Syntax error at line 1: ";
    QTest::newRow("error on line 3") << "var a = 1;\nvar b = 2;\nreturn a +* b;"
                                     << "Syntax error at line 3: ";
    QTest::newRow("unbalanced brace at the end") << "if (a) {\n  return 1;"
                                                 << "Syntax error at line ";
}

void TestParameterWidgets::scriptSyntaxMessage()
{
    QFETCH(QString, script);
    QFETCH(QString, message);
    auto parameter = std::make_unique<Parameter>(
        ParameterKind::Script, QStringLiteral("Script"), QStringLiteral("script"), m_input);
    parameter->setValue(script);
    ScriptParameterWidget widget(parameter.get());
    widget.checkSyntax();
    if (message.isEmpty()) {
        QVERIFY(widget.errorLabel()->isHidden());
        QVERIFY(widget.errorLabel()->text().isEmpty());
    } else {
        QVERIFY(!widget.errorLabel()->isHidden());
        QVERIFY2(widget.errorLabel()->text().startsWith(message), qPrintable(widget.errorLabel()->text()));
        // The message names the error, not only the place.
        QVERIFY(widget.errorLabel()->text().size() > message.size() + 3);
    }
    // Typing a fix clears the message after the pause.
    if (!message.isEmpty()) {
        widget.editor()->setPlainText(QStringLiteral("return 1;"));
        QTRY_VERIFY(widget.errorLabel()->isHidden());
    }
}

int main(int argc, char **argv)
{
    QStandardPaths::setTestModeEnabled(true);
    Application app(argc, argv, false);
    TestParameterWidgets test;
    return QTest::qExec(&test, argc, argv);
}
#include "tst_parameterwidgets.moc"
