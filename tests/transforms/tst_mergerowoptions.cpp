#include "flow/testgraph.h"
#include "testutil.h"
#include "transforms/transformconcatrows.h"
#include "transforms/transformcross.h"
#include "transforms/transformdedupe.h"
#include "transforms/transformfilter.h"
#include "transforms/transformheader.h"
#include "transforms/transforminterpolate.h"
#include "transforms/transformintersect.h"
#include "transforms/transformjoin.h"
#include "transforms/transformlookup.h"
#include "transforms/transformnewrows.h"
#include "transforms/transformrownum.h"
#include "transforms/transformsample.h"
#include "transforms/transformsequence.h"
#include "transforms/transformslice.h"
#include "transforms/transformsort.h"
#include "transforms/transformsplitrows.h"
#include "transforms/transformstack.h"
#include "transforms/transformsubtract.h"
#include "transforms/transformunique.h"

#include <QLocale>
#include <QtTest>

#include <memory>

namespace {

constexpr int CurrentVersion = 100;

// A fresh transform of the given id with its options built for inputs.
std::unique_ptr<Transform> make(const QString &id, const QList<Node *> &inputs = QList<Node *>())
{
    const QList<Transform *> all {new TransformConcatRows, new TransformCross, new TransformDedupe,
        new TransformFilter, new TransformHeader, new TransformInterpolate, new TransformIntersect,
        new TransformJoin, new TransformLookup, new TransformNewRows, new TransformRowNum,
        new TransformSample, new TransformSequence, new TransformSlice, new TransformSort,
        new TransformSplitRows, new TransformStack, new TransformSubtract, new TransformUnique};
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

// "Name=text|Name=text", each read as a document would; false for an unknown option or
// a choice that isn't offered, which would leave the test silently on the default.
bool setValues(Transform *transform, const QString &values)
{
    for (const QString &assignment : values.split(QLatin1Char('|'), Qt::SkipEmptyParts)) {
        Parameter *parameter = transform->parameter(assignment.section(QLatin1Char('='), 0, 0));
        const QString text = assignment.section(QLatin1Char('='), 1);
        if (!parameter)
            return false;
        if (parameter->kind() == ParameterKind::Selection && !parameter->selectionOptions().contains(text))
            return false;
        parameter->fromText(text, CurrentVersion);
    }
    return true;
}

QString disabledNames(const Transform *transform)
{
    QStringList names;
    for (const Parameter *parameter : transform->parameterList()) {
        for (const QPair<QString, bool> &state : transform->parameterStates()) {
            if (state.first == parameter->name() && !state.second) {
                names << parameter->name();
                break;
            }
        }
    }
    return names.join(QLatin1Char(','));
}

// "b:b1;b2": the option's upstream item and the headers of the columns it holds there.
QString describe(const Parameter *parameter)
{
    if (!parameter)
        return QStringLiteral("absent");
    const Dataset *dataset = parameter->upstreamDataset();
    QStringList headers;
    if (dataset) {
        const QList<DataColumnIndex> columns = parameter->kind() == ParameterKind::Column
            ? QList<DataColumnIndex> {parameter->columnIndex()}
            : parameter->columnIndexes();
        for (DataColumnIndex column : columns)
            headers << (column.isValid() ? dataset->headerText(column) : QStringLiteral("?"));
    }
    return TestGraph::name(parameter->upstream()) + QLatin1Char(':') + headers.join(QLatin1Char(';'));
}

void setData(StubNode *node, const QString &text)
{
    node->setDataset(testutil::toDataset(text, true));
    node->assignColumnIds();
}

// Two items whose columns share no value, so that no key is guessed.
void fillPair(const TestGraph &graph)
{
    setData(graph["a"], QStringLiteral("a1,a2,a3\n1,2,3"));
    setData(graph["b"], QStringLiteral("b1,b2\nx,y"));
}

} // namespace

class TestMergeRowOptions : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase();
    void defaults_data();
    void defaults();
    void parameterStates_data();
    void parameterStates();
    void sequenceStatesFollowColumn_data();
    void sequenceStatesFollowColumn();
    void minimumOptions_data();
    void minimumOptions();
    void keyGuess_data();
    void keyGuess();
    void keyInputsByPosition_data();
    void keyInputsByPosition();
    void bottomValuesRecover_data();
    void bottomValuesRecover();
    void manyInputsByPosition_data();
    void manyInputsByPosition();
    void topBottomUpstream_data();
    void topBottomUpstream();
};

void TestMergeRowOptions::initTestCase()
{
    QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedStates));
}

// Options in display order, each as name=text form (items decoded, U+001F shown as "^"),
// so that a renamed, reordered or re-defaulted option shows.
void TestMergeRowOptions::defaults_data()
{
    QTest::addColumn<QString>("id");
    QTest::addColumn<QString>("expected");
    QTest::newRow("Cross") << "Cross"
                           << "";
    QTest::newRow("Stack") << "Stack"
                           << "Stack_By=Header|Add_Source=0";
    QTest::newRow("Join") << "Join"
                          << "By=Key|Column_1=0|Include_Non_Matching_1=0|Column_2=0|Include_Non_Matching_2=0"
                             "|Case_Sensitive=1|Detailed_Report=0";
    QTest::newRow("Intersect") << "Intersect"
                               << "Column_1=0|Column_2=0|Case_Sensitive=1|Detailed_Report=0";
    QTest::newRow("Subtract") << "Subtract"
                              << "Column_1=0|Column_2=0|Case_Sensitive=1|Detailed_Report=0";
    QTest::newRow("Interpolate") << "Interpolate"
                                 << "Top_X_Column=0|Bottom_X_Column=0|Bottom_Value_Columns=|X_Type=Automatic"
                                    "|Method=Linear|Outside_Range=Leave empty";
    QTest::newRow("Lookup") << "Lookup"
                            << "Top_Lookup_Column=0|Bottom_Lookup_Column=0|Bottom_Value_Columns=|Not_Found="
                               "|Case_Sensitive=1|Detailed_Report=0";
    QTest::newRow("Filter") << "Filter"
                            << "Columns=1^1|Case_Sensitive=0|Disable=0";
    QTest::newRow("Concat Rows") << "Concat_Rows"
                                 << "Concat_Type=Continuation rows|Column=0|Rows=2|Separator= |Skip_Empty=1";
    QTest::newRow("Dedupe") << "Dedupe"
                            << "Columns=|Match_Type=Exact|Fuzziness=90|Case_Sensitive=0|Ignore_Spaces=0"
                               "|Ignore_Punctuation=0|Dedupe_Mode=Remove duplicates";
    QTest::newRow("Header") << "Header"
                            << "Action=Use row as header|Row=1|Header_Rows=1";
    QTest::newRow("New Rows") << "New_Rows"
                              << "Position=End|Number_Of_Rows=1|Values=|Delimiter=,";
    QTest::newRow("Row Num") << "Row_Num"
                             << "New_Name=Row Num|Start=1|Increment=1|Position=First column|Group_Columns=";
    QTest::newRow("Sample") << "Sample"
                            << "Sample_Type=Number of rows|Rows=1000|Percent=10|Nth=10|Seed=1|Disable=0";
    QTest::newRow("Sequence")
        << "Sequence"
        << "Column=0|Sequence_Type=Automatic|Step=1|Date_Unit=Days"
           "|How_Name=Add missing rows|Mark_Added=0|User_Define_Minimum=0"
           "|User_Define_Minimum_Missing_Date=2000-01-01|User_Define_Minimum_Missing_Int=1"
           "|User_Define_Maximum=0|User_Define_Maximum_Missing_Date=2000-12-31"
           "|User_Define_Maximum_Missing_Int=100";
    QTest::newRow("Slice") << "Slice"
                           << "From_Row=1|To_Row=100|Count_From=Start|Action=Keep rows in range";
    QTest::newRow("Sort") << "Sort"
                          << "Columns=|Sort_Type=Automatic|Case_Sensitive=0";
    QTest::newRow("Split Rows") << "Split_Rows"
                                << "Columns=|Rule=0^1^1^0^0^";
    QTest::newRow("Unique") << "Unique"
                            << "Column_Options=|Case_Sensitive=1|Add_Count=0";
}

void TestMergeRowOptions::defaults()
{
    QFETCH(QString, id);
    QFETCH(QString, expected);
    const std::unique_ptr<Transform> transform = make(id);
    QVERIFY(transform);
    QVERIFY(transform->hasUniqueParameterNames());
    QStringList options;
    for (const Parameter *parameter : transform->parameterList()) {
        QStringList items = Parameter::splitItems(parameter->toText());
        for (QString &item : items)
            item = Parameter::decodeItem(item);
        options << parameter->name() + QLatin1Char('=') + items.join(QLatin1Char('^'));
    }
    QCOMPARE(options.join(QLatin1Char('|')), expected);
}

// The options that don't apply for the given values, in display order.
void TestMergeRowOptions::parameterStates_data()
{
    QTest::addColumn<QString>("id");
    QTest::addColumn<QString>("values");
    QTest::addColumn<QString>("disabled");

    QTest::newRow("join: by key") << "Join"
                                  << ""
                                  << "";
    QTest::newRow("join: by row number") << "Join"
                                         << "By=Row number"
                                         << "Column_1,Column_2,Case_Sensitive,Detailed_Report";
    QTest::newRow("interpolate: linear") << "Interpolate"
                                         << ""
                                         << "";
    QTest::newRow("interpolate: nearest point") << "Interpolate"
                                                << "Method=Nearest point"
                                                << "Outside_Range";
    QTest::newRow("concat rows: continuation") << "Concat_Rows"
                                               << ""
                                               << "Rows";
    QTest::newRow("concat rows: fixed number") << "Concat_Rows"
                                               << "Concat_Type=Fixed number of rows"
                                               << "Column";
    QTest::newRow("dedupe: exact") << "Dedupe"
                                   << ""
                                   << "Fuzziness";
    QTest::newRow("dedupe: fuzzy") << "Dedupe"
                                   << "Match_Type=Fuzzy"
                                   << "";
    QTest::newRow("header: use row") << "Header"
                                     << ""
                                     << "";
    QTest::newRow("header: move into data") << "Header"
                                            << "Action=Move header into data"
                                            << "Row,Header_Rows";
    QTest::newRow("new rows: no values") << "New_Rows"
                                         << ""
                                         << "Delimiter";
    QTest::newRow("new rows: values") << "New_Rows"
                                      << "Values=Total%2C%2C0"
                                      << "";
    QTest::newRow("new rows: a blank is a value") << "New_Rows"
                                                  << "Values=%20"
                                                  << "";
    QTest::newRow("sample: number") << "Sample"
                                    << ""
                                    << "Percent,Nth";
    QTest::newRow("sample: percentage") << "Sample"
                                        << "Sample_Type=Percentage of rows"
                                        << "Rows,Nth";
    QTest::newRow("sample: every Nth has no seed") << "Sample"
                                                   << "Sample_Type=Every Nth row"
                                                   << "Rows,Percent,Seed";
    QTest::newRow("sequence: automatic without column, no bounds")
        << "Sequence"
        << ""
        << "User_Define_Minimum_Missing_Date,User_Define_Minimum_Missing_Int,"
           "User_Define_Maximum_Missing_Date,User_Define_Maximum_Missing_Int";
    QTest::newRow("sequence: automatic without column, both bounds")
        << "Sequence"
        << "User_Define_Minimum=1|User_Define_Maximum=1"
        << "";
    QTest::newRow("sequence: integer with minimum")
        << "Sequence"
        << "Sequence_Type=Integer|User_Define_Minimum=1"
        << "Date_Unit,User_Define_Minimum_Missing_Date,User_Define_Maximum_Missing_Date,"
           "User_Define_Maximum_Missing_Int";
    QTest::newRow("sequence: date with maximum, listed")
        << "Sequence"
        << "Sequence_Type=Date|How_Name=List missing values|User_Define_Maximum=1"
        << "Mark_Added,User_Define_Minimum_Missing_Date,User_Define_Minimum_Missing_Int,"
           "User_Define_Maximum_Missing_Int";
    QTest::newRow("split rows: at text") << "Split_Rows"
                                         << ""
                                         << "";
    QTest::newRow("split rows: at line breaks") << "Split_Rows"
                                                << "Rule=1^1^1^0^0^"
                                                << "";
    QTest::newRow("split rows: repeat by count") << "Split_Rows"
                                                 << "Rule=2^1^1^0^0^"
                                                 << "Columns";
}

void TestMergeRowOptions::parameterStates()
{
    QFETCH(QString, id);
    QFETCH(QString, values);
    QFETCH(QString, disabled);
    const std::unique_ptr<Transform> transform = make(id);
    QVERIFY(transform);
    QVERIFY(setValues(transform.get(), values));
    QCOMPARE(disabledNames(transform.get()), disabled);
}

// Under "Automatic" the bounds that apply follow the type guessed from the column, with
// both bounds switched on.
void TestMergeRowOptions::sequenceStatesFollowColumn_data()
{
    QTest::addColumn<QString>("cells");
    QTest::addColumn<QString>("disabled");
    const QString dateOptions =
        QStringLiteral("Date_Unit,User_Define_Minimum_Missing_Date,User_Define_Maximum_Missing_Date");
    const QString intOptions =
        QStringLiteral("User_Define_Minimum_Missing_Int,User_Define_Maximum_Missing_Int");
    QTest::newRow("integers") << "1\n2\n5" << dateOptions;
    QTest::newRow("years are integers") << "2019\n\n2021" << dateOptions;
    QTest::newRow("fractions are no sequence") << "1.5\n2"
                                               << "";
    QTest::newRow("dates") << "2020-01-01\n2020-01-03" << intOptions;
    QTest::newRow("text") << "a\nb"
                          << "";
    QTest::newRow("empty column") << ""
                                  << "";
}

void TestMergeRowOptions::sequenceStatesFollowColumn()
{
    QFETCH(QString, cells);
    QFETCH(QString, disabled);
    TestGraph graph(QStringLiteral("a"));
    setData(graph["a"],
        QStringLiteral("n,other\n") + cells.split(QLatin1Char('\n')).join(QStringLiteral(",x\n"))
            + QStringLiteral(",x"));
    const std::unique_ptr<Transform> transform = make(QStringLiteral("Sequence"), {graph["a"]});
    QVERIFY(
        setValues(transform.get(), QStringLiteral("Column=1|User_Define_Minimum=1|User_Define_Maximum=1")));
    QCOMPARE(describe(transform->parameter(QStringLiteral("Column"))), QStringLiteral("a:n"));
    QCOMPARE(disabledNames(transform.get()), disabled);
}

void TestMergeRowOptions::minimumOptions_data()
{
    QTest::addColumn<QString>("id");
    QTest::addColumn<QString>("values");
    QTest::addColumn<bool>("removeColumn"); // the upstream item loses its first column
    QTest::addColumn<bool>("expected");
    QTest::newRow("sequence: add rows") << "Sequence"
                                        << "" << false << true;
    QTest::newRow("sequence: list values") << "Sequence"
                                           << "How_Name=List missing values" << false << false;
    QTest::newRow("unique: every column first") << "Unique"
                                                << "" << false << false;
    QTest::newRow("unique: a key column") << "Unique"
                                          << "Column_Options=0^1^5" << false << true;
    QTest::newRow("unique: removed only") << "Unique"
                                          << "Column_Options=6^6^6" << false << false;
    QTest::newRow("unique: key column gone upstream") << "Unique"
                                                      << "Column_Options=0^1^1" << true << false;
    QTest::newRow("unique: other key column left") << "Unique"
                                                   << "Column_Options=0^0^1" << true << true;
}

void TestMergeRowOptions::minimumOptions()
{
    QFETCH(QString, id);
    QFETCH(QString, values);
    QFETCH(bool, removeColumn);
    QFETCH(bool, expected);
    TestGraph graph(QStringLiteral("a"));
    setData(graph["a"], QStringLiteral("k,v,w\n1,2,3"));
    const std::unique_ptr<Transform> transform = make(id, {graph["a"]});
    QVERIFY(setValues(transform.get(), values));
    if (removeColumn) {
        Dataset dataset = graph["a"]->dataset();
        dataset.removeColumn(0);
        graph["a"]->setDataset(dataset);
    }
    QCOMPARE(transform->hasMinimumOptions(), expected);
}

// A key-based merge made with both inputs guesses its keys from their contents.
void TestMergeRowOptions::keyGuess_data()
{
    QTest::addColumn<QString>("id");
    QTest::addColumn<int>("inputs");
    QTest::addColumn<QString>("keys");
    for (const QString &id : {QStringLiteral("Join"), QStringLiteral("Intersect"), QStringLiteral("Subtract"),
             QStringLiteral("Lookup")}) {
        const QByteArray prefix = id.toLatin1() + ": ";
        QTest::newRow(prefix + "two inputs") << id << 2 << "a:id b:id";
        QTest::newRow(prefix + "one input") << id << 1 << "a:? -:";
    }
}

void TestMergeRowOptions::keyGuess()
{
    QFETCH(QString, id);
    QFETCH(int, inputs);
    QFETCH(QString, keys);
    TestGraph flow(QStringLiteral("a b"));
    setData(flow["a"], QStringLiteral("name,id\nx,1\ny,2\nz,3"));
    setData(flow["b"], QStringLiteral("id,code\n3,q\n2,r\n1,s"));
    const std::unique_ptr<Transform> transform =
        make(id, QList<Node *> {flow["a"], flow["b"]}.mid(0, inputs));
    QCOMPARE(describe(transform->parameter(transform->topKeyColumnParameterName())) + QLatin1Char(' ')
            + describe(transform->parameter(transform->bottomKeyColumnParameterName())),
        keys);
}

// Item a is connected first with its second column as the top key, item b second with
// its first column as the bottom key; then the items' places decide which is on top.
void TestMergeRowOptions::keyInputsByPosition_data()
{
    QTest::addColumn<QString>("id");
    QTest::addColumn<QString>("graph");
    QTest::addColumn<bool>("swapped");
    QTest::addColumn<QString>("order");
    QTest::addColumn<QString>("top");
    QTest::addColumn<QString>("bottom");
    QTest::addColumn<QString>("values"); // the bottom value columns, where there are some

    const QString lower = QStringLiteral("a@0,100 b@0,0");
    const QString inOrder = QStringLiteral("a@0,0 b@0,100");
    const QString level = QStringLiteral("a@0,50 b@300,50");
    QTest::newRow("join: top below swaps") << "Join" << lower << true << "b,a"
                                           << "b:b1"
                                           << "a:a2"
                                           << "";
    QTest::newRow("join: in order stays") << "Join" << inOrder << false << "a,b"
                                          << "a:a2"
                                          << "b:b1"
                                          << "";
    QTest::newRow("join: same height stays") << "Join" << level << false << "a,b"
                                             << "a:a2"
                                             << "b:b1"
                                             << "";
    QTest::newRow("intersect: top below swaps") << "Intersect" << lower << true << "b,a"
                                                << "b:b1"
                                                << "a:a2"
                                                << "";
    QTest::newRow("subtract: top below swaps") << "Subtract" << lower << true << "b,a"
                                               << "b:b1"
                                               << "a:a2"
                                               << "";
    QTest::newRow("subtract: in order stays") << "Subtract" << inOrder << false << "a,b"
                                              << "a:a2"
                                              << "b:b1"
                                              << "";
    // The value columns follow the new bottom, which doesn't hold them.
    QTest::newRow("lookup: top below swaps") << "Lookup" << lower << true << "b,a"
                                             << "b:b1"
                                             << "a:a2"
                                             << "a:";
    QTest::newRow("lookup: in order stays") << "Lookup" << inOrder << false << "a,b"
                                            << "a:a2"
                                            << "b:b1"
                                            << "b:b2";
    QTest::newRow("interpolate: top below swaps") << "Interpolate" << lower << true << "b,a"
                                                  << "b:b1"
                                                  << "a:a2"
                                                  << "a:";
    QTest::newRow("interpolate: same height stays") << "Interpolate" << level << false << "a,b"
                                                    << "a:a2"
                                                    << "b:b1"
                                                    << "b:b2";
}

void TestMergeRowOptions::keyInputsByPosition()
{
    QFETCH(QString, id);
    QFETCH(QString, graph);
    QFETCH(bool, swapped);
    QFETCH(QString, order);
    QFETCH(QString, top);
    QFETCH(QString, bottom);
    QFETCH(QString, values);
    TestGraph flow(graph);
    fillPair(flow);
    QList<Node *> inputs {flow["a"], flow["b"]};
    const std::unique_ptr<Transform> transform = make(id, inputs);
    const QString topName = transform->topKeyColumnParameterName().isEmpty()
        ? QStringLiteral("Top_X_Column")
        : transform->topKeyColumnParameterName();
    const QString bottomName = transform->bottomKeyColumnParameterName().isEmpty()
        ? QStringLiteral("Bottom_X_Column")
        : transform->bottomKeyColumnParameterName();
    QVERIFY(setValues(transform.get(), topName + QStringLiteral("=2|") + bottomName + QStringLiteral("=1")));
    if (!values.isEmpty())
        QVERIFY(setValues(transform.get(), QStringLiteral("Bottom_Value_Columns=2")));

    QCOMPARE(transform->reorderInputs(inputs), swapped);
    QCOMPARE(TestGraph::names(inputs), order);
    QCOMPARE(describe(transform->parameter(topName)), top);
    QCOMPARE(describe(transform->parameter(bottomName)), bottom);
    if (!values.isEmpty())
        QCOMPARE(describe(transform->parameter(QStringLiteral("Bottom_Value_Columns"))), values);
}

// Moving the items back restores the value columns, since their ids were kept.
void TestMergeRowOptions::bottomValuesRecover_data()
{
    QTest::addColumn<QString>("id");
    QTest::newRow("lookup") << "Lookup";
    QTest::newRow("interpolate") << "Interpolate";
}

void TestMergeRowOptions::bottomValuesRecover()
{
    QFETCH(QString, id);
    TestGraph flow(QStringLiteral("a@0,100 b@0,0"));
    fillPair(flow);
    QList<Node *> inputs {flow["a"], flow["b"]};
    const std::unique_ptr<Transform> transform = make(id, inputs);
    QVERIFY(setValues(transform.get(), QStringLiteral("Bottom_Value_Columns=1^2")));
    QVERIFY(transform->reorderInputs(inputs));
    const Parameter *values = transform->parameter(QStringLiteral("Bottom_Value_Columns"));
    QCOMPARE(describe(values), QStringLiteral("a:"));

    flow["a"]->setPos(0, -100);
    QVERIFY(transform->reorderInputs(inputs));
    QCOMPARE(TestGraph::names(inputs), QStringLiteral("a,b"));
    QCOMPARE(describe(values), QStringLiteral("b:b1;b2"));
}

void TestMergeRowOptions::manyInputsByPosition_data()
{
    QTest::addColumn<QString>("id");
    QTest::addColumn<QString>("graph");
    QTest::addColumn<bool>("changed");
    QTest::addColumn<QString>("order");
    for (const QString &id : {QStringLiteral("Cross"), QStringLiteral("Stack")}) {
        const QByteArray prefix = id.toLatin1() + ": ";
        QTest::newRow(prefix + "in order") << id << "a@0,0 b@0,10 c@0,20" << false << "a,b,c";
        QTest::newRow(prefix + "reversed") << id << "a@0,20 b@0,10 c@0,0" << true << "c,b,a";
        QTest::newRow(prefix + "same height keeps connection order")
            << id << "a@0,10 b@0,0 c@500,10" << true << "b,a,c";
        QTest::newRow(prefix + "all level") << id << "a@0,0 b@200,0 c@100,0" << false << "a,b,c";
    }
}

void TestMergeRowOptions::manyInputsByPosition()
{
    QFETCH(QString, id);
    QFETCH(QString, graph);
    QFETCH(bool, changed);
    QFETCH(QString, order);
    TestGraph flow(graph);
    QList<Node *> inputs {flow["a"], flow["b"], flow["c"]};
    const std::unique_ptr<Transform> transform = make(id, inputs);
    QCOMPARE(transform->reorderInputs(inputs), changed);
    QCOMPARE(TestGraph::names(inputs), order);
}

// Top option, then the two bottom options: each one's upstream item.
void TestMergeRowOptions::topBottomUpstream_data()
{
    QTest::addColumn<QString>("id");
    QTest::addColumn<QString>("nodes");
    QTest::addColumn<QString>("expected");
    for (const QString &id : {QStringLiteral("Lookup"), QStringLiteral("Interpolate")}) {
        const QByteArray prefix = id.toLatin1() + ": ";
        QTest::newRow(prefix + "two inputs") << id << "b,a"
                                             << "b,a,a";
        QTest::newRow(prefix + "one input") << id << "b"
                                            << "b,-,-";
        QTest::newRow(prefix + "none") << id << ""
                                       << "-,-,-";
    }
}

void TestMergeRowOptions::topBottomUpstream()
{
    QFETCH(QString, id);
    QFETCH(QString, nodes);
    QFETCH(QString, expected);
    TestGraph flow(QStringLiteral("a b"));
    const std::unique_ptr<Transform> transform = make(id, {flow["a"], flow["b"]});
    QList<Node *> upstream;
    for (const QString &name : nodes.split(QLatin1Char(','), Qt::SkipEmptyParts))
        upstream << flow[name];
    transform->setUpstream(upstream);
    QList<Node *> owners;
    for (const Parameter *parameter : transform->parameterList()) {
        if (parameter->isColumnOption())
            owners << parameter->upstream();
    }
    QCOMPARE(TestGraph::names(owners), expected);
}

QTEST_MAIN(TestMergeRowOptions)
#include "tst_mergerowoptions.moc"
