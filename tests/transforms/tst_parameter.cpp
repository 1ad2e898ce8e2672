#include "flow/testgraph.h"
#include "testutil.h"
#include "transforms/parameter.h"
#include "transforms/verifyrules.h"

#include <QtTest>

#include <memory>

Q_DECLARE_METATYPE(ParameterKind)

namespace {

const QChar US(0x1F);

// Items joined with U+001F, written with "|" so that a case fits on a line.
QString items(const QString &text)
{
    return QString(text).replace(QLatin1Char('|'), US);
}

ColumnId col(int n)
{
    return ColumnId(7, n);
}

// The item upstream of every option under test: a table whose columns have the ids
// (7, 1), (7, 2), ... in column order.
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

Parameter makeParameter(ParameterKind kind, Node *upstream, const QStringList &options = {})
{
    if (Parameter::isColumnKind(kind))
        return Parameter(kind, QStringLiteral("Option"), QStringLiteral("option"), upstream);
    return Parameter(kind, QStringLiteral("Option"), QStringLiteral("option"), QVariant(), options);
}

Condition condition(int column, int op, const QString &term)
{
    Condition c;
    c.anyColumn = column == 0;
    c.column = column > 0 ? col(column) : ColumnId();
    c.op = op;
    c.term = term;
    return c;
}

// "id:value:severity:flag" per rule, dataset rules first, then "@column/type" and its rules.
QString summary(const VerifyRulesValue &rules)
{
    auto ruleText = [](const VerifyRule &rule) {
        return QStringLiteral("%1:%2:%3:%4")
            .arg(rule.id)
            .arg(rule.value)
            .arg(rule.severity)
            .arg(int(rule.flag));
    };
    QStringList parts;
    for (const VerifyRule &rule : rules.datasetRules)
        parts << ruleText(rule);
    for (int n = 1; n <= 4; ++n) {
        if (!rules.columns.contains(col(n)))
            continue;
        const VerifyColumnRules &column = rules.columns.value(col(n));
        parts << QStringLiteral("@%1/%2").arg(n).arg(column.type);
        for (const VerifyRule &rule : column.rules)
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
    void readWrite_data();
    void readWrite();
    void pendingWrittenBack_data();
    void pendingWrittenBack();
    void pendingApplied();
    void followsDeletedColumn_data();
    void followsDeletedColumn();
    void listItems_data();
    void listItems();
    void operatorNumbers_data();
    void operatorNumbers();
    void verifyRecords_data();
    void verifyRecords();
    void verifyEmptyState_data();
    void verifyEmptyState();
    void isUnset_data();
    void isUnset();
};

void TestParameter::roundTrip_data()
{
    QTest::addColumn<ParameterKind>("kind");
    QTest::addColumn<QVariant>("value");
    QTest::addColumn<QStringList>("options");

    const QString awkward = QStringLiteral("a^b") + US + QStringLiteral("c %25 *NORENAME* é\n");
    auto row = [](const char *name, ParameterKind kind, const QVariant &value,
                   const QStringList &options = {}) { QTest::newRow(name) << kind << value << options; };
    row("Column", ParameterKind::Column, QVariant::fromValue(col(3)));
    row("Columns", ParameterKind::Columns, QVariant::fromValue(QList<ColumnId> {col(4), col(1)}));
    row("OptionalColumns empty", ParameterKind::OptionalColumns, QVariant::fromValue(QList<ColumnId>()));
    row("ReorderColumns", ParameterKind::ReorderColumns,
        QVariant::fromValue(QList<ColumnId> {col(3), col(1), col(2), col(4)}));
    row("SortColumns", ParameterKind::SortColumns,
        QVariant::fromValue(SortColumnList {{col(2), true}, {col(4), false}}));
    row("GroupColumns", ParameterKind::GroupColumns, QVariant::fromValue(SortColumnList {{col(1), false}}));
    FilterColumnsValue filter;
    filter.keep = false;
    filter.matchAll = false;
    filter.conditions = {condition(0, 1, awkward), condition(2, 19, QString()), condition(4, 8, "^\\d+$")};
    row("FilterColumns", ParameterKind::FilterColumns, QVariant::fromValue(filter));
    row("Bool", ParameterKind::Bool, true);
    row("Selection", ParameterKind::Selection, QStringLiteral("b c"), {"a", "b c", "d"});
    row("Text", ParameterKind::Text, awkward);
    row("Int", ParameterKind::Int, -42);
    row("Char", ParameterKind::Char, QChar(0x1F));
    IfValue ifValue;
    ifValue.blocks = {{{condition(1, 4, "10"), condition(0, 19, QString())}, "*EndIf*"}, {{}, awkward}};
    ifValue.elseText = QStringLiteral("*StartIf*");
    row("If", ParameterKind::If, QVariant::fromValue(ifValue));
    row("Script", ParameterKind::Script, QStringLiteral("x = $(a) ^ 2;\n"));
    row("RenameColumns", ParameterKind::RenameColumns,
        QVariant::fromValue(RenameColumnsValue {{col(1), awkward}, {col(3), QString()}}));
    row("SplitRows", ParameterKind::SplitRows,
        QVariant::fromValue(SplitRule {2, false, true, col(4), 5, "; "}));
    row("UniqueColumns", ParameterKind::UniqueColumns,
        QVariant::fromValue(UniqueColumnsValue {{col(1), 0}, {col(2), 1}, {col(3), 5}, {col(4), 6}}));
    row("ReplaceTerms", ParameterKind::ReplaceTerms,
        QVariant::fromValue(ReplaceTermList {{0, "a^", awkward}, {3, "(\\d+)", "<\\1>"}}));
    row("Real", ParameterKind::Real, 0.125);
    row("LongText", ParameterKind::LongText, QStringLiteral("line 1\r\nline 2"));
    row("Date", ParameterKind::Date, QDate(2024, 2, 29));
    row("Locale", ParameterKind::Locale, QStringLiteral("de-CH"));
    auto upstream = makeUpstream();
    VerifyRulesValue rules = verifyRulesOff(upstream->dataset());
    rules.datasetRules[0].severity = VerifyFailError;
    rules.datasetRules[0].value = QStringLiteral("100");
    VerifyRule &rule = rules.columns[col(2)].rules[3];
    rule.value = awkward;
    rule.severity = VerifyFailWarning;
    rule.flag = true;
    row("VerifyRules", ParameterKind::VerifyRules, QVariant::fromValue(rules));
}

void TestParameter::roundTrip()
{
    QFETCH(ParameterKind, kind);
    QFETCH(QVariant, value);
    QFETCH(QStringList, options);
    auto upstream = makeUpstream();
    Parameter written = makeParameter(kind, upstream.get(), options);
    written.setValue(value);
    const QString text = written.toText();

    Parameter read = makeParameter(kind, upstream.get(), options);
    read.fromText(text, 84);
    QCOMPARE(read.value(), value);
    QCOMPARE(read.toText(), text);
    // A copy holds its own value.
    Parameter copy(read);
    copy.setValue(QVariant());
    QCOMPARE(read.value(), value);
}

// Text read and written again: what reading keeps, mends or leaves alone.
void TestParameter::readWrite_data()
{
    QTest::addColumn<ParameterKind>("kind");
    QTest::addColumn<QVariant>("initial");
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("written");

    // "<none>" leaves the text unread: what the value itself writes.
    auto row = [](const char *name, ParameterKind kind, const QVariant &initial, const QString &text,
                   const QString &written) {
        QTest::newRow(name) << kind << initial << items(text) << items(written);
    };
    row("real keeps six digits", ParameterKind::Real, 1234567.5, "<none>", "1.23457e+06");
    row("real read", ParameterKind::Real, 0.0, "1.23457e+06", "1.23457e+06");
    row("real not a number", ParameterKind::Real, 2.5, "abc", "2.5");
    row("int not a number", ParameterKind::Int, 7, "12abc", "7");
    row("int with blanks", ParameterKind::Int, 7, " 12 ", "12");
    row("bool word", ParameterKind::Bool, false, "True", "1");
    row("bool not a flag", ParameterKind::Bool, true, "yes", "1");
    row("selection gone", ParameterKind::Selection, "Second", "Third", "Second");
    row("selection case differs", ParameterKind::Selection, "Second", "first", "Second");
    row("selection known", ParameterKind::Selection, "Second", "First", "First");
    row("date invalid", ParameterKind::Date, QDate(2024, 5, 1), "2024-13-01", "2000-01-01");
    row("date empty", ParameterKind::Date, QDate(2024, 5, 1), "", "2000-01-01");
    row("date never set", ParameterKind::Date, QDate(), "x", "2000-01-01");
    row("char empty is null", ParameterKind::Char, QChar('x'), "", "");
    row("char keeps the first", ParameterKind::Char, QChar('x'), "%3B%3A", "%3B");
    row("text not split on caret", ParameterKind::Text, QString(), "a^b", "a%5Eb");
    row("label has no text", ParameterKind::Label, QVariant(), "abc", "");
    row("column 0", ParameterKind::Column, QVariant(), "0", "0");
    row("column past the end", ParameterKind::Column, QVariant(), "5", "0");
    row("column negative", ParameterKind::Column, QVariant(), "-2", "0");
    row("column not a number", ParameterKind::Column, QVariant(), "x", "0");
    row("columns drop bad positions", ParameterKind::Columns, QVariant(), "2|0|9|x|4", "2|4");
    row("sort signs", ParameterKind::SortColumns, QVariant(), "-2|0|9|3", "-2|3");
    row("filter any and gone", ParameterKind::FilterColumns, QVariant(), "0|1|0|1|a|9|2|b|3|x|c|2",
        "0|1|0|1|a|-1|2|b");
    row("filter flags not numbers", ParameterKind::FilterColumns, QVariant(), "x|1|0|1|a", "1|1");
    row("filter one flag", ParameterKind::FilterColumns, QVariant(), "0", "1|1");
    row("if complete", ParameterKind::If, QVariant(), "*StartIf*|1|1|a|*EndIf*|r|e",
        "*StartIf*|1|1|a|*EndIf*|r|e");
    row("if short list ends conditions", ParameterKind::If, QVariant(), "*StartIf*|1|1|a|*EndIf*", "");
    row("if block without result", ParameterKind::If, QVariant(),
        "*StartIf*|1|1|a|*EndIf*|r|*StartIf*|*EndIf*", "*StartIf*|1|1|a|*EndIf*|r|");
    row("if else only", ParameterKind::If, QVariant(), "e%20f", "e%20f");
    row("rename fewer items", ParameterKind::RenameColumns, QVariant(), "X",
        "X|*NORENAME*|*NORENAME*|*NORENAME*");
    row("rename extra items", ParameterKind::RenameColumns, QVariant(),
        "*NORENAME*|*NORENAME*|*NORENAME*|D|E", "*NORENAME*|*NORENAME*|*NORENAME*|D");
    row("unique fewer items", ParameterKind::UniqueColumns, QVariant(), "0|x", "0|1|1|1");
    row("split five items", ParameterKind::SplitRows, QVariant(), "1|0|0|2|3", "0|1|1|0|0|");
    row("split bad numbers", ParameterKind::SplitRows, QVariant(), "x|0|0|9|y|%3B", "0|0|0|0|0|%3B");
    row("replace partial term", ParameterKind::ReplaceTerms, QVariant(), "1|a|b|2|c", "1|a|b");
}

void TestParameter::readWrite()
{
    QFETCH(ParameterKind, kind);
    QFETCH(QVariant, initial);
    QFETCH(QString, text);
    QFETCH(QString, written);
    auto upstream = makeUpstream();
    Parameter parameter = makeParameter(kind, upstream.get(), {"First", "Second"});
    if (initial.isValid())
        parameter.setValue(initial);
    if (text != QLatin1String("<none>"))
        parameter.fromText(text, 84);
    QCOMPARE(parameter.toText(), written);

    // What is written reads back to the same text.
    Parameter again = makeParameter(kind, upstream.get(), {"First", "Second"});
    again.fromText(written, 84);
    QCOMPARE(again.toText(), written);
    if (kind == ParameterKind::Real)
        QCOMPARE(again.realValue(), written.toDouble());
}

void TestParameter::pendingWrittenBack_data()
{
    QTest::addColumn<ParameterKind>("kind");
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("version");
    QTest::addColumn<QString>("written");

    auto row = [](const char *name, ParameterKind kind, const QString &text, int version,
                   const QString &written) {
        QTest::newRow(name) << kind << items(text) << version << items(written);
    };
    row("column 3", ParameterKind::Column, "3", 84, "3");
    row("column 0", ParameterKind::Column, "0", 84, "0");
    row("real as saved", ParameterKind::Real, "1.5e+06", 84, "1.5e+06");
    row("columns old separator", ParameterKind::Columns, "3^1^12", 40, "3|1|12");
    row("sort", ParameterKind::SortColumns, "-3|2", 84, "-3|2");
    row("text encoded", ParameterKind::Text, "a%5Eb%1F", 84, "a%5Eb%1F");
    row("text bare percent", ParameterKind::Text, "50%", 84, "50%25");
    row("text with caret kept whole", ParameterKind::Text, "a^b", 40, "a%5Eb");
    row("rename markers kept", ParameterKind::RenameColumns, "*NORENAME*^New name", 40,
        "*NORENAME*|New%20name");
    row("if markers kept", ParameterKind::If, "*StartIf*|3|1|a%20b|*EndIf*|r|e", 84,
        "*StartIf*|3|1|a%20b|*EndIf*|r|e");
    row("filter old operators", ParameterKind::FilterColumns, "1|0|3|14|x|2|15||4|21|y|1|16|z", 56,
        "1|0|3|19|x|2|20||1|16|z");
    row("filter current operators", ParameterKind::FilterColumns, "1|0|3|14|x|4|21|y", 57,
        "1|0|3|14|x|4|21|y");
    row("if old operators", ParameterKind::If, "*StartIf*|3|14|x|0|21|y|*EndIf*|r|e", 56,
        "*StartIf*|3|19|x|0|21|y|*EndIf*|r|e");
    row("verify", ParameterKind::VerifyRules, "1|4|2|a%0Ab|1|0|3|1|1|5|2|x|3|1|9", 84,
        "1|4|2|a%0Ab|1|0|3|1|1|5|2|x|3|1|9");
}

// A document whose input couldn't be read is saved again without loss.
void TestParameter::pendingWrittenBack()
{
    QFETCH(ParameterKind, kind);
    QFETCH(QString, text);
    QFETCH(int, version);
    QFETCH(QString, written);
    for (int status : {int(Node::NeedsUpdating), int(Node::Error)}) {
        auto upstream = makeUpstream(QString(), status);
        Parameter parameter = makeParameter(kind, upstream.get());
        parameter.setPendingText(text, version);
        if (parameter.isColumnOption())
            QVERIFY(!parameter.applyPending());
        QVERIFY(parameter.isPending());
        QCOMPARE(parameter.toText(), written);
        // Written back, the text reads as the original would have.
        Parameter again = makeParameter(kind, upstream.get());
        again.setPendingText(written, 84);
        QCOMPARE(again.toText(), written);
    }
}

void TestParameter::pendingApplied()
{
    auto upstream = makeUpstream(QStringLiteral("a,b,c,d\n1,2,3,4"), Node::NeedsUpdating);
    Parameter column = makeParameter(ParameterKind::Column, upstream.get());
    Parameter text = makeParameter(ParameterKind::Text, nullptr);
    column.setPendingText(QStringLiteral("3"), 84);
    text.setPendingText(QStringLiteral("a%20b"), 84);

    QVERIFY(!column.applyPending());
    QVERIFY(text.applyPending()); // no upstream to wait for
    QCOMPARE(text.stringValue(), QStringLiteral("a b"));
    QVERIFY(!text.applyPending());

    upstream->setStatus(Node::UpToDate, false);
    QVERIFY(column.applyPending());
    QVERIFY(!column.isPending());
    QVERIFY(column.pendingText().isEmpty());
    QCOMPARE(column.columnId(), col(3));

    column.setPendingText(QStringLiteral("1"), 84);
    column.setValue(QVariant::fromValue(col(4)));
    QVERIFY(!column.isPending());
    QCOMPARE(column.toText(), QStringLiteral("4"));
}

void TestParameter::followsDeletedColumn_data()
{
    QTest::addColumn<ParameterKind>("kind");
    QTest::addColumn<QVariant>("value");
    QTest::addColumn<QString>("written");
    QTest::addColumn<QString>("liveIndexes");

    auto row = [](const char *name, ParameterKind kind, const QVariant &value, const QString &written,
                   const QString &indexes) {
        QTest::newRow(name) << kind << value << items(written) << indexes;
    };
    row("column", ParameterKind::Column, QVariant::fromValue(col(3)), "2", "1");
    row("column gone", ParameterKind::Column, QVariant::fromValue(col(2)), "0", "");
    row("columns", ParameterKind::Columns, QVariant::fromValue(QList<ColumnId> {col(4), col(2), col(3)}),
        "3|2", "2,1");
    row("sort", ParameterKind::SortColumns,
        QVariant::fromValue(SortColumnList {{col(2), true}, {col(3), false}}), "-2", "1");
    FilterColumnsValue filter;
    filter.conditions = {condition(2, 1, "a"), condition(3, 1, "b"), condition(0, 1, "c")};
    row("filter", ParameterKind::FilterColumns, QVariant::fromValue(filter), "1|1|-1|1|a|2|1|b|0|1|c", "");
    row("rename", ParameterKind::RenameColumns,
        QVariant::fromValue(RenameColumnsValue {{col(2), "B"}, {col(3), "C"}}), "*NORENAME*|C|*NORENAME*",
        "");
    row("unique", ParameterKind::UniqueColumns,
        QVariant::fromValue(UniqueColumnsValue {{col(2), 0}, {col(3), 2}}), "1|2|1", "");
    row("split", ParameterKind::SplitRows, QVariant::fromValue(SplitRule {2, true, true, col(3), 0, ""}),
        "2|1|1|2|0|", "");
}

void TestParameter::followsDeletedColumn()
{
    QFETCH(ParameterKind, kind);
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
    if (kind == ParameterKind::Column && parameter.columnIndex().isValid())
        QCOMPARE(dataset.cell(0, parameter.columnIndex()), QStringLiteral("3"));
    // The stored value keeps dead ids, so the option recovers when the column returns.
    QCOMPARE(parameter.value(), value);
}

void TestParameter::listItems_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QStringList>("split");

    QTest::newRow("empty") << QString() << QStringList();
    QTest::newRow("one item") << "a" << QStringList {"a"};
    QTest::newRow("separator") << items("a||b") << QStringList {"a", "", "b"};
    QTest::newRow("caret only") << "a^b^" << QStringList {"a", "b", ""};
    QTest::newRow("caret beside separator") << items("a^b|c") << QStringList {"a^b", "c"};
}

void TestParameter::listItems()
{
    QFETCH(QString, text);
    QFETCH(QStringList, split);
    QCOMPARE(Parameter::splitItems(text), split);
    QStringList encoded;
    for (const QString &item : split)
        encoded << Parameter::encodeItem(item + QStringLiteral("^") + US + QStringLiteral("% *é"));
    const QStringList back = Parameter::splitItems(Parameter::joinItems(encoded));
    QCOMPARE(back.size(), split.isEmpty() ? 0 : split.size());
    for (int i = 0; i < back.size(); ++i)
        QCOMPARE(Parameter::decodeItem(back.at(i)),
            split.at(i) + QStringLiteral("^") + US + QStringLiteral("% *é"));
    // Only letters, digits and "-._~" stand as they are.
    QCOMPARE(Parameter::encodeItem(QStringLiteral("aZ09-._~*^ /")), QStringLiteral("aZ09-._~%2A%5E%20%2F"));
}

void TestParameter::operatorNumbers_data()
{
    QTest::addColumn<ParameterKind>("kind");
    QTest::addColumn<int>("version");
    QTest::addColumn<QString>("operators");
    QTest::addColumn<QString>("expected");

    QTest::newRow("filter old") << ParameterKind::FilterColumns << 56 << "14,15,16,19,20,21,30"
                                << "19,20,16,19,20";
    QTest::newRow("filter 57") << ParameterKind::FilterColumns << 57 << "14,15,21"
                               << "14,15,21";
    QTest::newRow("if old") << ParameterKind::If << 56 << "14,15,16,21"
                            << "19,20,16,21";
    QTest::newRow("if 57") << ParameterKind::If << 57 << "14,15"
                           << "14,15";
}

void TestParameter::operatorNumbers()
{
    QFETCH(ParameterKind, kind);
    QFETCH(int, version);
    QFETCH(QString, operators);
    QFETCH(QString, expected);
    auto upstream = makeUpstream();
    QStringList parts;
    for (const QString &op : operators.split(QLatin1Char(',')))
        parts << QStringLiteral("1") << op << QStringLiteral("t");
    const QString text = kind == ParameterKind::If
        ? items(QStringLiteral("*StartIf*|%1|*EndIf*|r|e").arg(parts.join(US)))
        : items(QStringLiteral("1|1|")) + parts.join(US);

    Parameter parameter = makeParameter(kind, upstream.get());
    parameter.fromText(text, version);
    const QList<Condition> conditions = kind == ParameterKind::If
        ? parameter.ifValue().blocks.value(0).conditions
        : parameter.filterColumns().conditions;
    QStringList read;
    for (const Condition &condition : conditions)
        read << QString::number(condition.op);
    QCOMPARE(read.join(QLatin1Char(',')), expected);

    // Pending text saved again at the current version reads the same.
    Parameter pending = makeParameter(kind, upstream.get());
    pending.setPendingText(text, version);
    Parameter again = makeParameter(kind, upstream.get());
    again.fromText(pending.toText(), 84);
    QCOMPARE(again.value(), parameter.value());
}

void TestParameter::verifyRecords_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("expected");

    QTest::newRow("written form") << "2|4|0|100|1|0|4|2|a%0Ab|3|1|2|1|1|4|0|x|2|1"
                                  << "0:100:1:0 2:a\nb:3:1 @2/1 0:x:2:1";
    QTest::newRow("extra items skipped") << "1|6|1|5|0|1|new|more|3|2|1|5|1||3|0|z"
                                         << "1:5:0:1 @3/2 1::3:0";
    QTest::newRow("record past the end") << "2|4|0|1|2|0|9|1|x"
                                         << "0:1:2:0";
    QTest::newRow("column record past the end") << "0|2|1|2|4|0||1|0|4|1|x"
                                                << "@2/1 0::1:0";
    QTest::newRow("dataset rule 6 skipped") << "2|4|6|x|1|0|4|5||2|1"
                                            << "5::2:1";
    QTest::newRow("short record skipped") << "2|2|0|1|4|3||0|0"
                                          << "3::0:0";
    QTest::newRow("column gone") << "0|9|1|1|4|0||1|0|1|1|1|4|0||2|0"
                                 << "@1/1 0::2:0";
    QTest::newRow("count not a number") << "x|4|0|1|2|0"
                                        << "";
    QTest::newRow("old separator") << "1^4^0^5^2^1"
                                   << "0:5:2:1";
}

void TestParameter::verifyRecords()
{
    QFETCH(QString, text);
    QFETCH(QString, expected);
    auto upstream = makeUpstream();
    Parameter parameter(ParameterKind::VerifyRules, QStringLiteral("Rules"), QStringLiteral("Rules"),
        QVariant::fromValue(VerifyRulesValue()));
    parameter.setUpstream(upstream.get(), false);
    parameter.fromText(items(text), 84);
    QCOMPARE(summary(parameter.verifyRules()), expected);
}

void TestParameter::verifyEmptyState_data()
{
    QTest::addColumn<QString>("values");
    QTest::addColumn<int>("type");
    QTest::addColumn<QString>("typeRuleValue");
    QTest::addColumn<QString>("rules");

    QTest::newRow("whole numbers") << "1,-20,,3.0" << int(VerifyTypeInteger) << ""
                                   << "0 1 2 3 4 5 6 7 8 9";
    QTest::newRow("a fraction") << "1,2.5" << int(VerifyTypeNumber) << ""
                                << "0 1 2 3 4 5 6 7 8 9";
    QTest::newRow("text") << "1,x" << int(VerifyTypeText) << ""
                          << "0 1 3 4 5 6 7 8 9";
    QTest::newRow("boolean") << "true,FALSE" << int(VerifyTypeBoolean) << ""
                             << "0 1 2 5 6 7 8 9";
    QTest::newRow("time") << "12:30,8:05:10" << int(VerifyTypeTime) << ""
                          << "0 1 2 3 4 5 6 7 8 9";
    QTest::newRow("date") << "2024-01-31,2023-12-01" << int(VerifyTypeDate) << "yyyy-M-d"
                          << "0 1 2 3 4 5 6 7 8 9";
}

void TestParameter::verifyEmptyState()
{
    QFETCH(QString, values);
    QFETCH(int, type);
    QFETCH(QString, typeRuleValue);
    QFETCH(QString, rules);
    auto upstream = makeUpstream(QStringLiteral("Id,Value\n") + values.split(',').join(",\n") + ",");
    Parameter parameter(
        ParameterKind::VerifyRules, QStringLiteral("Rules"), QStringLiteral("Rules"), upstream.get());
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
    QTest::addColumn<ParameterKind>("kind");
    QTest::addColumn<QVariant>("value");
    QTest::addColumn<bool>("required");
    QTest::addColumn<bool>("unset");

    auto row = [](const char *name, ParameterKind kind, const QVariant &value, bool required, bool unset) {
        QTest::newRow(name) << kind << value << required << unset;
    };
    row("column live", ParameterKind::Column, QVariant::fromValue(col(2)), true, false);
    row("column gone", ParameterKind::Column, QVariant::fromValue(col(9)), true, true);
    row("column not required", ParameterKind::Column, QVariant::fromValue(ColumnId()), false, false);
    row("columns one live", ParameterKind::Columns, QVariant::fromValue(QList<ColumnId> {col(9), col(1)}),
        true, false);
    row("columns all gone", ParameterKind::Columns, QVariant::fromValue(QList<ColumnId> {col(9)}), true,
        true);
    row("optional columns empty", ParameterKind::OptionalColumns, QVariant::fromValue(QList<ColumnId>()),
        true, false);
    row("sort empty", ParameterKind::SortColumns, QVariant::fromValue(SortColumnList()), true, true);
    row("group one", ParameterKind::GroupColumns, QVariant::fromValue(SortColumnList {{col(1), true}}), true,
        false);
    row("filter none", ParameterKind::FilterColumns, QVariant::fromValue(FilterColumnsValue()), true, true);
    row("selection first", ParameterKind::Selection, "First", true, true);
    row("selection first not required", ParameterKind::Selection, "First", false, false);
    row("selection second", ParameterKind::Selection, "Second", true, false);
    row("text empty", ParameterKind::Text, QString(), true, true);
    row("text empty not required", ParameterKind::Text, QString(), false, false);
    row("long text blank", ParameterKind::LongText, " ", true, false);
    row("int 0", ParameterKind::Int, 0, true, true);
    row("int 0 not required", ParameterKind::Int, 0, false, false);
    row("char null", ParameterKind::Char, QChar(), true, true);
    row("char blank", ParameterKind::Char, QChar(' '), true, false);
    row("if none", ParameterKind::If, QVariant::fromValue(IfValue {{}, "x"}), true, true);
    row("script blank", ParameterKind::Script, " \n", true, true);
    row("split text empty", ParameterKind::SplitRows, QVariant::fromValue(SplitRule()), true, true);
    row("split line breaks", ParameterKind::SplitRows,
        QVariant::fromValue(SplitRule {1, true, true, {}, 0, ""}), true, false);
    row("split count gone", ParameterKind::SplitRows,
        QVariant::fromValue(SplitRule {2, true, true, col(9), 0, ""}), true, true);
    row("split count live", ParameterKind::SplitRows,
        QVariant::fromValue(SplitRule {2, true, true, col(1), 0, ""}), true, false);
    row("unique no key", ParameterKind::UniqueColumns, QVariant::fromValue(UniqueColumnsValue {{col(1), 1}}),
        true, true);
    row("unique key gone", ParameterKind::UniqueColumns,
        QVariant::fromValue(UniqueColumnsValue {{col(9), 0}}), true, true);
    row("unique key", ParameterKind::UniqueColumns, QVariant::fromValue(UniqueColumnsValue {{col(4), 0}}),
        true, false);
    row("replace none", ParameterKind::ReplaceTerms, QVariant::fromValue(ReplaceTermList()), true, true);
    row("bool false", ParameterKind::Bool, false, true, false);
    row("real 0", ParameterKind::Real, 0.0, true, false);
    row("verify empty", ParameterKind::VerifyRules, QVariant::fromValue(VerifyRulesValue()), true, false);
}

void TestParameter::isUnset()
{
    QFETCH(ParameterKind, kind);
    QFETCH(QVariant, value);
    QFETCH(bool, required);
    QFETCH(bool, unset);
    auto upstream = makeUpstream();
    Parameter parameter = makeParameter(kind, upstream.get(), {"First", "Second"});
    parameter.setColumnRequired(required);
    parameter.setSelectionRequired(required);
    parameter.setTextRequired(required);
    parameter.setIntRequired(required);
    parameter.setValue(value);
    QCOMPARE(parameter.isUnset(), unset);
}

QTEST_MAIN(TestParameter)
#include "tst_parameter.moc"
