#include "flow/testgraph.h"
#include "testutil.h"
#include "transforms/transformcalculate.h"
#include "transforms/transformcompare.h"
#include "transforms/transformconcat.h"
#include "transforms/transformcopy.h"
#include "transforms/transformgather.h"
#include "transforms/transformif.h"
#include "transforms/transformjavascript.h"
#include "transforms/transformmoving.h"
#include "transforms/transformnewcol.h"
#include "transforms/transformoffset.h"
#include "transforms/transformpseudonym.h"
#include "transforms/transformremovecols.h"
#include "transforms/transformrenamecols.h"
#include "transforms/transformreorder.h"
#include "transforms/transformreshape.h"
#include "transforms/transformsplit.h"
#include "transforms/transformsplitname.h"
#include "transforms/transformspread.h"

#include <QSet>
#include <QtTest>

#include <memory>

namespace {

// A fresh transform of the given id; its options are built when inputs are given.
std::unique_ptr<Transform> make(const QString &id, const QList<Node *> &inputs = {})
{
    const QList<Transform *> all {new TransformCalculate, new TransformCompare, new TransformConcat,
        new TransformCopy, new TransformGather, new TransformIf, new TransformJavascript, new TransformMoving,
        new TransformNewCol, new TransformOffset, new TransformPseudonym, new TransformRemoveCols,
        new TransformRenameCols, new TransformReorder, new TransformReshape, new TransformSplit,
        new TransformSplitName, new TransformSpread};
    std::unique_ptr<Transform> found;
    for (Transform *transform : all) {
        if (!found && transform->id() == id)
            found.reset(transform);
        else
            delete transform;
    }
    if (found)
        found->createParameters(inputs, false);
    return found;
}

// "Name=value|Name=value": a Bool takes 1 or 0, every other option its text.
bool setValues(Transform *transform, const QString &values)
{
    for (const QString &assignment : values.split(QLatin1Char('|'), Qt::SkipEmptyParts)) {
        Parameter *parameter = transform->parameter(assignment.section(QLatin1Char('='), 0, 0));
        const QString value = assignment.section(QLatin1Char('='), 1);
        if (!parameter)
            return false;
        if (parameter->kind() == ParameterKind::Bool) {
            parameter->setValue(value == QLatin1String("1"));
        } else {
            // A choice that isn't offered would leave the test silently on the default.
            if (parameter->kind() == ParameterKind::Selection
                && !parameter->selectionOptions().contains(value))
                return false;
            parameter->setValue(value);
        }
    }
    return true;
}

// The headers of the live columns of a column list option, in its order.
QString liveHeaders(const Parameter *parameter)
{
    const Dataset *dataset = parameter->upstreamDataset();
    QStringList headers;
    for (DataColumnIndex column : parameter->columnIndexes())
        headers << dataset->headerText(column);
    return headers.join(QLatin1Char(','));
}

} // namespace

class TestColumnOptions : public QObject
{
    Q_OBJECT
private slots:
    void defaults_data();
    void defaults();
    void columnsFollowInput_data();
    void columnsFollowInput();
    void parameterStates_data();
    void parameterStates();
    void unsetOptions_data();
    void unsetOptions();
    void calculateTooltips_data();
    void calculateTooltips();
    void calculateOperations_data();
    void calculateOperations();
    void calculateOperationNumbers();
    void upstreamOverrides_data();
    void upstreamOverrides();
};

// Options in display order, each as name=text form (items decoded), so that a renamed,
// reordered or re-defaulted option shows.
void TestColumnOptions::defaults_data()
{
    QTest::addColumn<QString>("id");
    QTest::addColumn<QString>("expected");
    QTest::newRow("Calculate") << "Calculate"
                               << "Auto_New_Name=1|New_Name=Calculate|Operation=+ Add|Type1=Column|Column1=0"
                                  "|Constant1=|Type2=Column|Column2=0|Constant2=";
    QTest::newRow("Compare Cols") << "Compare_Cols"
                                  << "Column_1=0|Column_2=0|Compare_Type=Equal (true/false)|Case_Sensitive=1"
                                     "|Trim=0|New_Name=Compare Cols";
    QTest::newRow("Concat Cols")
        << "Concat"
        << "Columns=|Separator= |Skip_Empty=1|New_Name=Concat Cols|Remove_Originals=0";
    QTest::newRow("Copy Cols") << "Copy"
                               << "Columns=|Copies=1";
    QTest::newRow("Gather") << "Gather"
                            << "Columns=|Key_Name=Key|Value_Name=Value|Skip_Empty=0";
    QTest::newRow("If") << "If"
                        << "Conditions=|Case_Sensitive=0|New_Name=If";
    QTest::newRow("Javascript")
        << "Javascript"
        << "New_Name=Javascript|Type_As=Number/Boolean/String"
           "|Script=// see help (? button top right) for details\nreturn \"Hello world!\";";
    QTest::newRow("Moving") << "Moving"
                            << "Column=0|Statistic=Average|Window=3|Alignment=Trailing|Partial_Windows=0";
    QTest::newRow("New Col") << "New_Col"
                             << "New_Name=New Col|Value=";
    QTest::newRow("Offset") << "Offset"
                            << "Columns=|Offset=1|Fill=|Group_Columns=";
    QTest::newRow("Pseudonym") << "Pseudonym"
                               << "Columns=|Prefix=|Numbering=Random order|Seed=1|Case_Sensitive=1"
                                  "|Keep_Original=0";
    QTest::newRow("Remove Cols") << "Remove"
                                 << "Columns=|Remove_Empty=0";
    QTest::newRow("Rename Cols") << "Rename_Cols"
                                 << "New_Names=";
    QTest::newRow("Reorder Cols") << "Reorder"
                                  << "Order=";
    QTest::newRow("Reshape") << "Reshape"
                             << "Reshape_Type=Fixed number of columns|New_Columns=2|Read_Order=Row by row"
                                "|Skip_Empty=0";
    QTest::newRow("Split Col") << "Split"
                               << "Column=0|Delimiter_Type=Text delimiter|Delimiter=,|Max_Columns=0|Trim=1"
                                  "|Remove_Original=0";
    QTest::newRow("Split Name") << "Split_Name"
                                << "Column=0|Name_Order=Automatic|Remove_Original=0";
    QTest::newRow("Spread") << "Spread"
                            << "Key_Column=0|Value_Column=0|Row_Columns=|Duplicates=Use first value"
                               "|Missing_Value=|Sort_New_Columns=0";
}

void TestColumnOptions::defaults()
{
    QFETCH(QString, id);
    QFETCH(QString, expected);
    const std::unique_ptr<Transform> transform = make(id);
    QVERIFY(transform);
    QVERIFY(transform->hasUniqueParameterNames());
    QStringList options;
    for (const Parameter *parameter : transform->parameterList())
        options << parameter->name() + QLatin1Char('=') + Parameter::decodeItem(parameter->toText());
    QCOMPARE(options.join(QLatin1Char('|')), expected);
}

// Every column option of a single-input transform looks at that input, and the options
// that start from the input's columns do so.
void TestColumnOptions::columnsFollowInput_data()
{
    QTest::addColumn<QString>("id");
    QTest::addColumn<QString>("expected"); // option=headers for the list options
    QTest::newRow("Calculate: both values") << "Calculate"
                                            << "";
    QTest::newRow("Compare Cols: both columns") << "Compare_Cols"
                                                << "";
    QTest::newRow("Remove Cols keeps everything") << "Remove"
                                                  << "Columns=a,b,c";
    QTest::newRow("Reorder Cols starts in input order") << "Reorder"
                                                        << "Order=a,b,c";
    QTest::newRow("Spread starts with no row columns") << "Spread"
                                                       << "Row_Columns=";
    QTest::newRow("Offset starts ungrouped") << "Offset"
                                             << "Columns=|Group_Columns=";
    QTest::newRow("Javascript script") << "Javascript"
                                       << "";
}

void TestColumnOptions::columnsFollowInput()
{
    QFETCH(QString, id);
    QFETCH(QString, expected);
    TestGraph graph(QStringLiteral("a"));
    graph["a"]->setDataset(testutil::toDataset(QStringLiteral("a,b,c\n1,2,3"), true));
    graph["a"]->assignColumnIds();
    const std::unique_ptr<Transform> transform = make(id, {graph["a"]});
    QVERIFY(transform);

    QStringList lists;
    for (const Parameter *parameter : transform->parameterList()) {
        if (!parameter->isColumnOption())
            continue;
        QCOMPARE(TestGraph::name(parameter->upstream()), QStringLiteral("a"));
        const ParameterKind kind = parameter->kind();
        if (kind == ParameterKind::Columns || kind == ParameterKind::OptionalColumns
            || kind == ParameterKind::ReorderColumns)
            lists << parameter->name() + QLatin1Char('=') + liveHeaders(parameter);
    }
    QCOMPARE(lists.join(QLatin1Char('|')), expected);
}

// The options that don't apply for the given values, in display order.
void TestColumnOptions::parameterStates_data()
{
    QTest::addColumn<QString>("id");
    QTest::addColumn<QString>("values");
    QTest::addColumn<QString>("disabled");

    QTest::newRow("calculate: defaults") << "Calculate"
                                         << ""
                                         << "New_Name,Constant1,Constant2";
    QTest::newRow("calculate: own name") << "Calculate"
                                         << "Auto_New_Name=0"
                                         << "Constant1,Constant2";
    QTest::newRow("calculate: constants") << "Calculate"
                                          << "Type1=Constant|Type2=Constant"
                                          << "New_Name,Column1,Column2";
    QTest::newRow("calculate: one value") << "Calculate"
                                          << "Operation=Abs"
                                          << "New_Name,Constant1,Type2,Column2,Constant2";
    QTest::newRow("calculate: one value, second typed constant")
        << "Calculate"
        << "Operation=Year|Type1=Constant|Type2=Constant"
        << "New_Name,Column1,Type2,Column2,Constant2";
    QTest::newRow("calculate: text operation of two values") << "Calculate"
                                                             << "Operation=LevDistance|Type2=Constant"
                                                             << "New_Name,Constant1,Column2";
    QTest::newRow("calculate: last two-value entry") << "Calculate"
                                                     << "Operation=XorBitwise"
                                                     << "New_Name,Constant1,Constant2";
    QTest::newRow("calculate: modulus, the last symbol") << "Calculate"
                                                         << "Operation=% Modulus"
                                                         << "New_Name,Constant1,Constant2";
    QTest::newRow("calculate: time text") << "Calculate"
                                          << "Operation=TimeToMSecs|Auto_New_Name=0"
                                          << "Constant1,Type2,Column2,Constant2";

    QTest::newRow("pseudonym: random") << "Pseudonym"
                                       << ""
                                       << "";
    QTest::newRow("pseudonym: order of appearance") << "Pseudonym"
                                                    << "Numbering=Order of appearance"
                                                    << "Seed";

    QTest::newRow("reshape: fixed") << "Reshape"
                                    << "Read_Order=Column by column"
                                    << "";
    QTest::newRow("reshape: empty cell ends a row") << "Reshape"
                                                    << "Reshape_Type=Empty cell ends a row"
                                                    << "New_Columns,Skip_Empty";

    QTest::newRow("spread: none") << "Spread"
                                  << "Duplicates=Concatenate values"
                                  << "";
    QTest::newRow("javascript: none") << "Javascript"
                                      << "Type_As=String"
                                      << "";
}

void TestColumnOptions::parameterStates()
{
    QFETCH(QString, id);
    QFETCH(QString, values);
    QFETCH(QString, disabled);
    const std::unique_ptr<Transform> transform = make(id);
    QVERIFY(transform);
    QVERIFY(setValues(transform.get(), values));

    QStringList off;
    QSet<QString> stated;
    for (const auto &state : transform->parameterStates()) {
        QVERIFY2(transform->parameter(state.first), qPrintable(state.first));
        QVERIFY2(!stated.contains(state.first), qPrintable(state.first));
        stated.insert(state.first);
        if (!state.second)
            off << state.first;
    }
    QCOMPARE(off.join(QLatin1Char(',')), disabled);
}

// The warning for unset options: options that don't apply are never asked for, and
// texts that may be empty never are either.
void TestColumnOptions::unsetOptions_data()
{
    QTest::addColumn<QString>("id");
    QTest::addColumn<QString>("values");
    QTest::addColumn<QString>("warning");

    const QString columnsOnly = QStringLiteral("1 option not set ('Columns')");
    QTest::newRow("calculate: two columns") << "Calculate"
                                            << "New_Name="
                                            << "2 options not set ('Value 1','Value 2')";
    QTest::newRow("calculate: own name emptied") << "Calculate"
                                                 << "Auto_New_Name=0|New_Name=|Operation=Abs"
                                                 << "2 options not set ('New column name','Value 1')";
    QTest::newRow("calculate: constant given") << "Calculate"
                                               << "Operation=Sign|Type1=Constant|Constant1=-4"
                                               << "";
    QTest::newRow("compare: two columns") << "Compare_Cols"
                                          << ""
                                          << "2 options not set ('First column','Second column')";
    QTest::newRow("concat: empty separator") << "Concat"
                                             << "Separator=" << columnsOnly;
    QTest::newRow("gather: names wanted") << "Gather"
                                          << "Key_Name=|Value_Name="
                                          << "3 options not set ('Columns to gather','Key column name',"
                                             "'Value column name')";
    QTest::newRow("if: a block wanted") << "If"
                                        << ""
                                        << "1 option not set ('Conditions')";
    QTest::newRow("javascript: script emptied") << "Javascript"
                                                << "Script= \n "
                                                << "1 option not set ('Javascript')";
    QTest::newRow("new col: empty value") << "New_Col"
                                          << ""
                                          << "";
    QTest::newRow("offset: no groups, no fill") << "Offset"
                                                << "" << columnsOnly;
    QTest::newRow("pseudonym: no prefix") << "Pseudonym"
                                          << "" << columnsOnly;
    QTest::newRow("split: no limit") << "Split"
                                     << "Delimiter="
                                     << "2 options not set ('Column to split','Delimiter')";
    QTest::newRow("spread: optional rows, empty missing value")
        << "Spread"
        << ""
        << "2 options not set ('Key column','Value column')";
}

void TestColumnOptions::unsetOptions()
{
    QFETCH(QString, id);
    QFETCH(QString, values);
    QFETCH(QString, warning);
    const std::unique_ptr<Transform> transform = make(id);
    QVERIFY(transform);
    QVERIFY(setValues(transform.get(), values));
    transform->clearMessages();
    transform->checkParameters();
    QCOMPARE(transform->warnings().join(QLatin1Char('\n')), warning);
}

// The value options speak of "the value" for one value and "the first value" for two.
void TestColumnOptions::calculateTooltips_data()
{
    QTest::addColumn<QString>("operation");
    QTest::addColumn<QString>("typeTooltip");
    QTest::addColumn<QString>("columnTooltip");
    QTest::newRow("add") << "+ Add"
                         << "Select whether the first value is a column or a constant."
                         << "Set the first value as a column.";
    QTest::newRow("abs") << "Abs"
                         << "Select whether the value is a column or a constant."
                         << "Set the value as a column.";
    QTest::newRow("year, last entry") << "Year"
                                      << "Select whether the value is a column or a constant."
                                      << "Set the value as a column.";
    QTest::newRow("index of") << "IndexOf"
                              << "Select whether the first value is a column or a constant."
                              << "Set the first value as a column.";
}

void TestColumnOptions::calculateTooltips()
{
    QFETCH(QString, operation);
    QFETCH(QString, typeTooltip);
    QFETCH(QString, columnTooltip);
    // The tooltips must follow a change made after the options were built.
    const std::unique_ptr<Transform> transform = make(QStringLiteral("Calculate"));
    QVERIFY(setValues(transform.get(), QStringLiteral("Operation=WordCount")));
    transform->parameterStates();
    QVERIFY(setValues(transform.get(), QStringLiteral("Operation=") + operation));
    transform->parameterStates();
    QCOMPARE(transform->parameter(QStringLiteral("Type1"))->tooltip(), typeTooltip);
    QCOMPARE(transform->parameter(QStringLiteral("Column1"))->tooltip(), columnTooltip);
    QCOMPARE(transform->parameter(QStringLiteral("Constant2"))->tooltip(),
        QStringLiteral("Set the second value as a constant."));
}

// Looking an operation up by its stored text, and its short form in column names.
void TestColumnOptions::calculateOperations_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("operation");
    QTest::addColumn<QString>("shortOperator");
    QTest::addColumn<bool>("twoValues");
    QTest::newRow("add") << "+ Add" << int(CalculateOperation::Add) << "+" << true;
    QTest::newRow("subtract") << "- Subtract" << int(CalculateOperation::Subtract) << "-" << true;
    QTest::newRow("power") << "^ Power" << int(CalculateOperation::Power) << "^" << true;
    QTest::newRow("modulus") << "% Modulus" << int(CalculateOperation::Modulus) << "%" << true;
    QTest::newRow("abs") << "Abs" << int(CalculateOperation::Abs) << "Abs" << false;
    QTest::newRow("lev distance") << "LevDistance" << int(CalculateOperation::LevDistance) << "LevDistance"
                                  << true;
    QTest::newRow("msecs to time") << "MSecsToTime" << int(CalculateOperation::MSecsToTime) << "MSecsToTime"
                                   << false;
    QTest::newRow("unknown reads as add") << "Add" << int(CalculateOperation::Add) << "+" << true;
    QTest::newRow("empty reads as add") << "" << int(CalculateOperation::Add) << "+" << true;
}

void TestColumnOptions::calculateOperations()
{
    QFETCH(QString, text);
    QFETCH(int, operation);
    QFETCH(QString, shortOperator);
    QFETCH(bool, twoValues);
    const CalculateOperationInfo info = TransformCalculate::operationInfo(text);
    QCOMPARE(int(info.operation), operation);
    QCOMPARE(TransformCalculate::shortOperator(info), shortOperator);
    QCOMPARE(info.twoValues, twoValues);
}

// The list shows each of the 45 operations once, Subtract second, which processing relies on.
void TestColumnOptions::calculateOperationNumbers()
{
    const QList<CalculateOperationInfo> &operations = TransformCalculate::operations();
    QCOMPARE(operations.size(), 45);
    QCOMPARE(operations.at(1).operation, CalculateOperation::Subtract);
    QSet<int> numbers;
    QSet<QString> texts;
    int twoValues = 0;
    for (const CalculateOperationInfo &info : operations) {
        numbers.insert(int(info.operation));
        texts.insert(info.text);
        twoValues += info.twoValues ? 1 : 0;
    }
    QCOMPARE(texts.size(), 45);
    QCOMPARE(numbers.size(), 45);
    QCOMPARE(*std::min_element(numbers.cbegin(), numbers.cend()), 0);
    QCOMPARE(*std::max_element(numbers.cbegin(), numbers.cend()), 44);
    QCOMPARE(twoValues, 18);
}

// setUpstream of Remove Cols and Spread. Node a has columns a,b,c; node b passes the same
// column ids on under the headers x,y,z, as a transform downstream of a would. "value" is
// applied to the list option before the call: "none" empties it, "pending:T" holds
// document text T, any other text is read as positions on the current node.
void TestColumnOptions::upstreamOverrides_data()
{
    QTest::addColumn<QString>("id");
    QTest::addColumn<QString>("option");
    QTest::addColumn<QString>("createWith");
    QTest::addColumn<QString>("value");
    QTest::addColumn<QString>("nodes");
    QTest::addColumn<QString>("owners"); // of every column option, in display order
    QTest::addColumn<QString>("kept"); // the list option's live columns, after any pending text is read

    QTest::newRow("remove: new item checks all") << "Remove"
                                                 << "Columns"
                                                 << ""
                                                 << ""
                                                 << "a"
                                                 << "a"
                                                 << "a,b,c";
    QTest::newRow("remove: all unchecked, same node") << "Remove"
                                                      << "Columns"
                                                      << "a"
                                                      << "none"
                                                      << "a"
                                                      << "a"
                                                      << "";
    QTest::newRow("remove: empty list, new node") << "Remove"
                                                  << "Columns"
                                                  << "a"
                                                  << "none"
                                                  << "b"
                                                  << "b"
                                                  << "x,y,z";
    QTest::newRow("remove: chosen list kept on new node") << "Remove"
                                                          << "Columns"
                                                          << "a"
                                                          << "3^1"
                                                          << "b"
                                                          << "b"
                                                          << "z,x";
    QTest::newRow("remove: document list waits") << "Remove"
                                                 << "Columns"
                                                 << ""
                                                 << "pending:2"
                                                 << "a"
                                                 << "a"
                                                 << "b";
    QTest::newRow("remove: disconnected") << "Remove"
                                          << "Columns"
                                          << "a"
                                          << ""
                                          << ""
                                          << "-"
                                          << "";
    QTest::newRow("remove: first of several nodes") << "Remove"
                                                    << "Columns"
                                                    << ""
                                                    << ""
                                                    << "b,a"
                                                    << "b"
                                                    << "x,y,z";

    QTest::newRow("spread: same node keeps rows") << "Spread"
                                                  << "Row_Columns"
                                                  << "a"
                                                  << "2"
                                                  << "a"
                                                  << "a,a,a"
                                                  << "b";
    QTest::newRow("spread: new node empties rows") << "Spread"
                                                   << "Row_Columns"
                                                   << "a"
                                                   << "2"
                                                   << "b"
                                                   << "b,b,b"
                                                   << "";
    QTest::newRow("spread: document rows wait") << "Spread"
                                                << "Row_Columns"
                                                << ""
                                                << "pending:2"
                                                << "b"
                                                << "b,b,b"
                                                << "y";
    QTest::newRow("spread: connected later") << "Spread"
                                             << "Row_Columns"
                                             << ""
                                             << ""
                                             << "a"
                                             << "a,a,a"
                                             << "";
    QTest::newRow("spread: disconnected") << "Spread"
                                          << "Row_Columns"
                                          << "a"
                                          << "2"
                                          << ""
                                          << "-,-,-"
                                          << "";
}

void TestColumnOptions::upstreamOverrides()
{
    QFETCH(QString, id);
    QFETCH(QString, option);
    QFETCH(QString, createWith);
    QFETCH(QString, value);
    QFETCH(QString, nodes);
    QFETCH(QString, owners);
    QFETCH(QString, kept);

    TestGraph graph(QStringLiteral("a b"));
    graph["a"]->setDataset(testutil::toDataset(QStringLiteral("a,b,c\n1,2,3"), true));
    graph["a"]->assignColumnIds();
    Dataset passedOn = testutil::toDataset(QStringLiteral("x,y,z\n1,2,3"), true);
    passedOn.setColumnIds(graph["a"]->dataset().columnIds());
    graph["b"]->setDataset(passedOn);
    for (const QString &name : {QStringLiteral("a"), QStringLiteral("b")})
        graph[name]->setStatus(Node::UpToDate, false);

    QList<Node *> inputs;
    for (const QString &name : nodes.split(QLatin1Char(','), Qt::SkipEmptyParts))
        inputs << graph[name];
    const std::unique_ptr<Transform> transform =
        make(id, createWith.isEmpty() ? QList<Node *>() : QList<Node *> {graph[createWith]});
    QVERIFY(transform);
    Parameter *list = transform->parameter(option);
    QVERIFY(list);
    if (value == QLatin1String("none"))
        list->setValue(QVariant::fromValue(QList<ColumnId>()));
    else if (value.startsWith(QLatin1String("pending:")))
        list->setPendingText(value.mid(8), 60);
    else if (!value.isEmpty())
        list->fromText(value, 60);

    transform->setUpstream(inputs);
    list->applyPending();

    QStringList actualOwners;
    for (const Parameter *parameter : transform->parameterList()) {
        if (parameter->isColumnOption())
            actualOwners << TestGraph::name(parameter->upstream());
    }
    QCOMPARE(actualOwners.join(QLatin1Char(',')), owners);
    QCOMPARE(list->upstream() ? liveHeaders(list) : QString(), kept);
}

QTEST_MAIN(TestColumnOptions)
#include "tst_columnoptions.moc"
