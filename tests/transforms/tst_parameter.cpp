#include "flow/testgraph.h"
#include "testutil.h"
#include "transforms/parameter.h"
#include "transforms/verifyrules.h"

#include <QtTest>

#include <memory>

Q_DECLARE_METATYPE(ParameterKind)

namespace {

using K = ParameterKind;
using Ids = QList<ColumnId>;
const QChar US(0x1F);

// Items joined with U+001F, written with "|" so that a case fits on a line.
QString items(const QString &text)
{
    return QString(text).replace(QLatin1Char('|'), US);
}

template<typename T>
QVariant v(const T &value)
{
    return QVariant::fromValue(value);
}

ColumnId col(int n)
{
    return ColumnId(7, n);
}

// The item upstream of every option under test: its columns have the ids (7, 1), (7, 2), ...
std::unique_ptr<StubNode> makeUpstream(
    const QString &table = QStringLiteral("a,b,c,d\n1,2,3,4"), int status = Node::UpToDate)
{
    auto node = std::make_unique<StubNode>();
    node->assignId(7);
    node->setDataset(testutil::toDataset(table, true));
    node->assignColumnIds();
    node->setStatus(status, false);
    return node;
}

Parameter makeParameter(K kind, Node *upstream, const QStringList &options = {"First", "Second"})
{
    if (Parameter::isColumnKind(kind))
        return Parameter(kind, QStringLiteral("Option"), QStringLiteral("option"), upstream);
    return Parameter(kind, QStringLiteral("Option"), QStringLiteral("option"), QVariant(), options);
}

// Column 0 is "<Any>".
Condition condition(int column, int op, const QString &term)
{
    return Condition {column == 0, column > 0 ? col(column) : ColumnId(), op, term};
}

// "id:value:severity:flag" per rule, dataset rules first, then "@column/type" and its rules.
QString summary(const VerifyRulesValue &rules)
{
    auto ruleText = [](const VerifyRule &r) {
        return QStringLiteral("%1:%2:%3:%4").arg(r.id).arg(r.value).arg(r.severity).arg(int(r.flag));
    };
    QStringList parts;
    for (const VerifyRule &rule : rules.datasetRules)
        parts << ruleText(rule);
    for (int n = 1; n <= 4; ++n) {
        if (!rules.columns.contains(col(n)))
            continue;
        parts << QStringLiteral("@%1/%2").arg(n).arg(rules.columns.value(col(n)).type);
        for (const VerifyRule &rule : rules.columns.value(col(n)).rules)
            parts << ruleText(rule);
    }
    return parts.join(QLatin1Char(' '));
}

} // namespace

class TestParameter : public QObject
{
    Q_OBJECT
private slots:
    void roundTrip_data();
    void roundTrip();
    void textForm_data();
    void textForm();
    void pendingApplied();
    void followsDeletedColumn_data();
    void followsDeletedColumn();
    void verifyRecords_data();
    void verifyRecords();
    void verifyEmptyState_data();
    void verifyEmptyState();
    void isUnset_data();
    void isUnset();
};

void TestParameter::roundTrip_data()
{
    QTest::addColumn<K>("kind");
    QTest::addColumn<QVariant>("value");

    const QString odd = QStringLiteral("a^b") + US + QStringLiteral("c %25 *NORENAME* é\n");
    auto row = [](const char *name, K kind, const QVariant &value) { QTest::newRow(name) << kind << value; };
    row("Column", K::Column, v(col(3)));
    row("Columns", K::Columns, v(Ids {col(4), col(1)}));
    row("OptionalColumns empty", K::OptionalColumns, v(Ids()));
    row("ReorderColumns", K::ReorderColumns, v(Ids {col(3), col(1), col(2), col(4)}));
    row("SortColumns", K::SortColumns, v(SortColumnList {{col(2), true}, {col(4), false}}));
    row("GroupColumns", K::GroupColumns, v(SortColumnList {{col(1), false}}));
    row("FilterColumns", K::FilterColumns,
        v(FilterColumnsValue {
            false, false, {condition(0, 1, odd), condition(2, 19, ""), condition(4, 8, "^\\d")}}));
    row("Bool", K::Bool, true);
    row("Selection", K::Selection, "Second");
    row("Text", K::Text, odd);
    row("Int", K::Int, -42);
    row("Char", K::Char, QChar(0x1F));
    row("If", K::If,
        v(IfValue {{{{condition(1, 4, "10"), condition(0, 19, "")}, "*EndIf*"}, {{}, odd}}, "*StartIf*"}));
    row("Script", K::Script, "x = $(a) ^ 2;\n");
    row("RenameColumns", K::RenameColumns, v(RenameColumnsValue {{col(1), odd}, {col(3), ""}}));
    row("SplitRows", K::SplitRows, v(SplitRule {2, false, true, col(4), 5, "; "}));
    row("UniqueColumns", K::UniqueColumns,
        v(UniqueColumnsValue {{col(1), 0}, {col(2), 1}, {col(3), 5}, {col(4), 6}}));
    row("ReplaceTerms", K::ReplaceTerms, v(ReplaceTermList {{0, "a^", odd}, {3, "(\\d+)", "<\\1>"}}));
    row("Real", K::Real, 0.125);
    row("LongText", K::LongText, "line 1\r\nline 2");
    row("Date", K::Date, QDate(2024, 2, 29));
    row("Locale", K::Locale, "de-CH");
    auto upstream = makeUpstream();
    VerifyRulesValue rules = verifyRulesOff(upstream->dataset());
    rules.datasetRules[0] = VerifyRule {0, "100", VerifyFailError, false};
    rules.columns[col(2)].rules[3] = VerifyRule {VerifyMinimumValue, odd, VerifyFailWarning, true};
    row("VerifyRules", K::VerifyRules, v(rules));
}

void TestParameter::roundTrip()
{
    QFETCH(K, kind);
    QFETCH(QVariant, value);
    auto upstream = makeUpstream();
    Parameter written = makeParameter(kind, upstream.get());
    written.setValue(value);
    Parameter read = makeParameter(kind, upstream.get());
    read.fromText(written.toText(), 84);
    QCOMPARE(read.value(), value);
    QCOMPARE(read.toText(), written.toText());
}

// What a text form reads as, shown by the text written back. "<none>" reads nothing, so
// the row shows what the value writes; a pending row is held while the upstream item has
// no data (not run, or its input missing) and written back as it stands.
void TestParameter::textForm_data()
{
    QTest::addColumn<K>("kind");
    QTest::addColumn<QVariant>("initial");
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("version");
    QTest::addColumn<bool>("pending");
    QTest::addColumn<QString>("written");

    auto row = [](const char *name, K kind, const QVariant &initial, const QString &text,
                   const QString &written, int version = 84, bool pending = false) {
        QTest::newRow(name) << kind << initial << items(text) << version << pending << items(written);
    };
    const QVariant none;
    row("real keeps six digits", K::Real, 1234567.5, "<none>", "1.23457e+06");
    row("real read", K::Real, none, "1.23457e+06", "1.23457e+06");
    row("int not a number", K::Int, 7, "12abc", "7");
    row("selection gone", K::Selection, "Second", "Third", "Second");
    row("date invalid", K::Date, QDate(2024, 5, 1), "2024-13-01", "2000-01-01");
    row("char empty is null", K::Char, QChar('x'), "", "");
    row("text not split on caret", K::Text, none, "a^b", "a%5Eb");
    row("column past the end", K::Column, none, "5", "0");
    row("columns caret only", K::Columns, none, "1^3", "1|3");
    row("columns drop bad positions", K::Columns, none, "2|0|9|x|-1|4", "2|4");
    row("sort signs", K::SortColumns, none, "-2|0|9|3", "-2|3");
    row("filter any and gone", K::FilterColumns, none, "0|1|0|1|a|9|2|b|3|x|c|2", "0|1|0|1|a|-1|2|b");
    row("filter old operators", K::FilterColumns, none, "1|1|1|14|t|1|15|t|1|16|t|1|21|t",
        "1|1|1|19|t|1|20|t|1|16|t", 56);
    row("filter 57 operators", K::FilterColumns, none, "1|1|1|14|t|1|21|t", "1|1|1|14|t|1|21|t", 57);
    row("if old operators", K::If, none, "*StartIf*|1|14|t|1|21|t|*EndIf*|r|e",
        "*StartIf*|1|19|t|1|21|t|*EndIf*|r|e", 56);
    row("if short list ends conditions", K::If, none, "*StartIf*|1|1|a|*EndIf*", "");
    row("rename fewer items", K::RenameColumns, none, "X", "X|*NORENAME*|*NORENAME*|*NORENAME*");
    row("rename extra items", K::RenameColumns, none, "*NORENAME*||*NORENAME*|D|E",
        "*NORENAME*||*NORENAME*|D");
    row("unique fewer items", K::UniqueColumns, none, "0|x", "0|1|1|1");
    row("split five items", K::SplitRows, none, "1|0|0|2|3", "0|1|1|0|0|");
    row("pending column 3", K::Column, none, "3", "3", 84, true);
    row("pending columns caret", K::Columns, none, "3^1^12", "3|1|12", 40, true);
    row("pending text bare percent", K::Text, none, "50%", "50%25", 84, true);
    row("pending rename", K::RenameColumns, none, "*NORENAME*^New name", "*NORENAME*|New%20name", 40, true);
    row("pending old operators", K::FilterColumns, none, "1|0|3|14|x|2|15||4|21|y", "1|0|3|19|x|2|20|", 56,
        true);
    row("pending if old operators", K::If, none, "*StartIf*|3|14|x|*EndIf*|r|e",
        "*StartIf*|3|19|x|*EndIf*|r|e", 56, true);
}

void TestParameter::textForm()
{
    QFETCH(K, kind);
    QFETCH(QVariant, initial);
    QFETCH(QString, text);
    QFETCH(int, version);
    QFETCH(bool, pending);
    QFETCH(QString, written);
    for (int status : {int(Node::NeedsUpdating), int(Node::Error)}) {
        auto upstream = pending ? makeUpstream(QString(), status) : makeUpstream();
        Parameter parameter = makeParameter(kind, upstream.get());
        if (initial.isValid())
            parameter.setValue(initial);
        if (pending) {
            parameter.setPendingText(text, version);
            QVERIFY(!parameter.isColumnOption() || !parameter.applyPending());
            QVERIFY(parameter.isPending());
        } else if (text != QLatin1String("<none>")) {
            parameter.fromText(text, version);
        }
        QCOMPARE(parameter.toText(), written);
        // Written at the current version, the text reads as it was.
        Parameter again = makeParameter(kind, upstream.get());
        if (pending)
            again.setPendingText(written, 84);
        else
            again.fromText(written, 84);
        QCOMPARE(again.toText(), written);
        if (kind == K::Real)
            QCOMPARE(again.realValue(), 1234570.0);
    }
}

void TestParameter::pendingApplied()
{
    auto upstream = makeUpstream(QStringLiteral("a,b,c,d\n1,2,3,4"), Node::NeedsUpdating);
    Parameter column = makeParameter(K::Column, upstream.get());
    Parameter text = makeParameter(K::Text, nullptr);
    column.setPendingText(QStringLiteral("3"), 84);
    text.setPendingText(QStringLiteral("a%20b"), 84);
    QVERIFY(!column.applyPending());
    QVERIFY(text.applyPending()); // no upstream to wait for
    QCOMPARE(text.stringValue(), QStringLiteral("a b"));
    QVERIFY(!text.applyPending());

    upstream->setStatus(Node::UpToDate, false);
    QVERIFY(column.applyPending());
    QVERIFY(!column.isPending() && column.pendingText().isEmpty());
    QCOMPARE(column.columnId(), col(3));
    column.setPendingText(QStringLiteral("1"), 84);
    column.setValue(v(col(4)));
    QVERIFY(!column.isPending());
    QCOMPARE(column.toText(), QStringLiteral("4"));
}

void TestParameter::followsDeletedColumn_data()
{
    QTest::addColumn<K>("kind");
    QTest::addColumn<QVariant>("value");
    QTest::addColumn<QString>("written");
    QTest::addColumn<QString>("liveIndexes");

    auto row = [](const char *name, K kind, const QVariant &value, const QString &written,
                   const QString &indexes) {
        QTest::newRow(name) << kind << value << items(written) << indexes;
    };
    row("column", K::Column, v(col(3)), "2", "1");
    row("column gone", K::Column, v(col(2)), "0", "");
    row("columns", K::Columns, v(Ids {col(4), col(2), col(3)}), "3|2", "2,1");
    row("sort", K::SortColumns, v(SortColumnList {{col(2), true}, {col(3), false}}), "-2", "1");
    row("filter", K::FilterColumns,
        v(FilterColumnsValue {
            true, true, {condition(2, 1, "a"), condition(3, 1, "b"), condition(0, 1, "c")}}),
        "1|1|-1|1|a|2|1|b|0|1|c", "");
}

void TestParameter::followsDeletedColumn()
{
    QFETCH(K, kind);
    QFETCH(QVariant, value);
    QFETCH(QString, written);
    QFETCH(QString, liveIndexes);
    auto upstream = makeUpstream();
    Parameter parameter = makeParameter(kind, upstream.get());
    parameter.setValue(value);
    Dataset dataset = upstream->dataset();
    dataset.removeColumn(1);
    upstream->setDataset(dataset);

    QCOMPARE(parameter.toText(), written);
    QStringList indexes;
    for (DataColumnIndex index : parameter.columnIndexes())
        indexes << QString::number(index.toInt());
    QCOMPARE(indexes.join(QLatin1Char(',')), liveIndexes);
    if (kind == K::Column && parameter.columnIndex().isValid())
        QCOMPARE(dataset.cell(0, parameter.columnIndex()), QStringLiteral("3"));
    // The stored value keeps dead ids, so the option recovers when the column returns.
    QCOMPARE(parameter.value(), value);
}

void TestParameter::verifyRecords_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("expected");
    auto row = [](const char *name, const char *text, const char *expected) {
        QTest::newRow(name) << items(text) << QString(expected);
    };
    row("written form", "2|4|0|100|1|0|4|2|a%0Ab|3|1|2|1|1|4|0|x|2|1", "0:100:1:0 2:a\nb:3:1 @2/1 0:x:2:1");
    row("extra items skipped", "1|6|1|5|0|1|new|more|3|2|1|5|1||3|0|z", "1:5:0:1 @3/2 1::3:0");
    row("record past the end", "2|4|0|1|2|0|9|1|x", "0:1:2:0");
    row("dataset rule 6 skipped", "2|4|6|x|1|0|4|5||2|1", "5::2:1");
    row("column gone", "0|9|1|1|4|0||1|0|1|1|1|4|0||2|0", "@1/1 0::2:0");
}

void TestParameter::verifyRecords()
{
    QFETCH(QString, text);
    QFETCH(QString, expected);
    auto upstream = makeUpstream();
    Parameter parameter(
        K::VerifyRules, QStringLiteral("Rules"), QStringLiteral("Rules"), v(VerifyRulesValue()));
    parameter.setUpstream(upstream.get(), false);
    parameter.fromText(text, 84);
    QCOMPARE(summary(parameter.verifyRules()), expected);
}

void TestParameter::verifyEmptyState_data()
{
    QTest::addColumn<QString>("values");
    QTest::addColumn<int>("type");
    QTest::addColumn<QString>("typeRuleValue");
    QTest::addColumn<QString>("rules");
    auto row = [](const char *name, const char *values, int type, const char *format, const char *rules) {
        QTest::newRow(name) << QString(values) << type << QString(format) << QString(rules);
    };
    row("whole numbers", "1,-20,,3.0", VerifyTypeInteger, "", "0 1 2 3 4 5 6 7 8 9");
    row("a fraction", "1,2.5", VerifyTypeNumber, "", "0 1 2 3 4 5 6 7 8 9");
    row("boolean", "true,FALSE", VerifyTypeBoolean, "", "0 1 2 5 6 7 8 9");
    row("date", "2024-01-31,2023-12-01", VerifyTypeDate, "yyyy-M-d", "0 1 2 3 4 5 6 7 8 9");
}

void TestParameter::verifyEmptyState()
{
    QFETCH(QString, values);
    QFETCH(int, type);
    QFETCH(QString, typeRuleValue);
    QFETCH(QString, rules);
    auto upstream = makeUpstream(QStringLiteral("Id,Value\n") + values.split(',').join(",\n") + ",");
    Parameter parameter(K::VerifyRules, QStringLiteral("Rules"), QStringLiteral("Rules"), upstream.get());
    const VerifyRulesValue value = parameter.verifyRules();
    QCOMPARE(summary(VerifyRulesValue {value.datasetRules, {}}),
        QStringLiteral("0:1:3:0 1:1000000:3:0 2:Id\nValue:3:0 3::3:0 4::3:0 5::3:0"));
    const VerifyColumnRules column = value.columns.value(col(1));
    QCOMPARE(column.type, type);
    QStringList ids;
    for (const VerifyRule &rule : column.rules) {
        ids << QString::number(rule.id);
        QCOMPARE(rule.severity, int(VerifyFailNone));
        QCOMPARE(rule.value, rule.id == VerifyType ? typeRuleValue : QString());
    }
    QCOMPARE(ids.join(' '), rules);
    // Nothing is switched on, so only a column with a date format is written.
    QCOMPARE(parameter.toText().count(US) + 1, 1 + 6 * 5 + (typeRuleValue.isEmpty() ? 0 : 3 + 10 * 5));
}

void TestParameter::isUnset_data()
{
    QTest::addColumn<K>("kind");
    QTest::addColumn<QVariant>("value");
    QTest::addColumn<bool>("required");
    QTest::addColumn<bool>("unset");

    auto row = [](const char *name, K kind, const QVariant &value, bool required, bool unset) {
        QTest::newRow(name) << kind << value << required << unset;
    };
    row("column live", K::Column, v(col(2)), true, false);
    row("column gone", K::Column, v(col(9)), true, true);
    row("columns one live", K::Columns, v(Ids {col(9), col(1)}), true, false);
    row("columns all gone", K::Columns, v(Ids {col(9)}), true, true);
    row("sort empty", K::SortColumns, v(SortColumnList()), true, true);
    row("filter none", K::FilterColumns, v(FilterColumnsValue()), true, true);
    row("selection first", K::Selection, "First", true, true);
    row("selection second", K::Selection, "Second", true, false);
    row("text empty", K::Text, "", true, true);
    row("int 0", K::Int, 0, true, true);
    row("char null", K::Char, QChar(), true, true);
    row("if none", K::If, v(IfValue {{}, "x"}), true, true);
    row("script blank", K::Script, " \n", true, true);
    row("split text empty", K::SplitRows, v(SplitRule()), true, true);
    row("split line breaks", K::SplitRows, v(SplitRule {1, true, true, {}, 0, ""}), true, false);
    row("split count gone", K::SplitRows, v(SplitRule {2, true, true, col(9), 0, ""}), true, true);
    row("unique no key", K::UniqueColumns, v(UniqueColumnsValue {{col(1), 1}}), true, true);
    row("unique key", K::UniqueColumns, v(UniqueColumnsValue {{col(4), 0}}), true, false);
    row("replace none", K::ReplaceTerms, v(ReplaceTermList()), true, true);
}

void TestParameter::isUnset()
{
    QFETCH(K, kind);
    QFETCH(QVariant, value);
    QFETCH(bool, required);
    QFETCH(bool, unset);
    auto upstream = makeUpstream();
    Parameter parameter = makeParameter(kind, upstream.get());
    parameter.setColumnRequired(required);
    parameter.setSelectionRequired(required);
    parameter.setTextRequired(required);
    parameter.setIntRequired(required);
    parameter.setValue(value);
    QCOMPARE(parameter.isUnset(), unset);
}

QTEST_MAIN(TestParameter)
#include "tst_parameter.moc"
