#include "app/transformregistry.h"
#include "../flow/testgraph.h"
#include "testutil.h"
#include "transforms/transform.h"

#include <QtTest>

#include <memory>

namespace {

constexpr int NoLimit = Transform::NoLimit;
constexpr TransformCategory Merge = TransformCategory::Merge;
constexpr TransformCategory Column = TransformCategory::Column;
constexpr TransformCategory Row = TransformCategory::Row;
constexpr TransformCategory Format = TransformCategory::Format;
constexpr TransformCategory Analysis = TransformCategory::Analysis;
constexpr TransformCategory Other = TransformCategory::Other;

int g_position = 0;

void row(const char *className, int type, const char *id, const char *name, TransformCategory category,
    int minimum, int maximum, bool advanced, bool inPlace, bool keepsDrilldown)
{
    QTest::newRow(className) << g_position++ << type << QString::fromLatin1(id) << QString::fromLatin1(name)
                             << int(category) << minimum << maximum << advanced << inPlace << keepsDrilldown;
}

} // namespace

class TestRegistry : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase();
    void cleanupTestCase();
    void table_data();
    void table();
    void everyTransform_data();
    void everyTransform();
    void optionsRoundTrip_data();
    void optionsRoundTrip();

private:
    QList<Transform *> m_prototypes;
};

void TestRegistry::initTestCase()
{
    m_prototypes = createTransformPrototypes();
    QCOMPARE(m_prototypes.size(), 73);
}

void TestRegistry::cleanupTestCase()
{
    qDeleteAll(m_prototypes);
}

// The whole registry in its order: by class name, except Spread before Split, Stats
// before Stamp and Units before UUID. Type numbers 44, 47 and 69 belong to no class.
void TestRegistry::table_data()
{
    QTest::addColumn<int>("position");
    QTest::addColumn<int>("type");
    QTest::addColumn<QString>("id");
    QTest::addColumn<QString>("name");
    QTest::addColumn<int>("category");
    QTest::addColumn<int>("minimum");
    QTest::addColumn<int>("maximum");
    QTest::addColumn<bool>("advanced");
    QTest::addColumn<bool>("inPlace");
    QTest::addColumn<bool>("keepsDrilldown");
    g_position = 0;
    // clang-format off
    row("TransformBin",          0,  "Bin",           "Bin",             Analysis, 1, 1,       true,  false, true);
    row("TransformCalculate",    1,  "Calculate",     "Calculate",       Column,   1, 1,       false, false, false);
    row("TransformCase",         2,  "Case",          "Case",            Format,   1, 1,       false, true,  false);
    row("TransformChop",         3,  "Chop",          "Chop",            Format,   1, 1,       false, true,  false);
    row("TransformClone",        4,  "Clone",         "Clone",           Other,    1, 1,       true,  false, false);
    row("TransformCluster",      5,  "Cluster",       "Cluster",         Analysis, 1, 1,       true,  false, false);
    row("TransformCompare",      6,  "Compare_Cols",  "Compare Cols",    Column,   1, 1,       true,  false, false);
    row("TransformConcat",       7,  "Concat",        "Concat Cols",     Column,   1, 1,       false, false, false);
    row("TransformConcatRows",   8,  "Concat_Rows",   "Concat Rows",     Row,      1, 1,       true,  false, false);
    row("TransformCopy",         9,  "Copy",          "Copy Cols",       Column,   1, 1,       false, false, false);
    row("TransformCorrelate",    10, "Correlate",     "Correlate",       Analysis, 1, 1,       true,  false, false);
    row("TransformCount",        11, "Count",         "Count",           Analysis, 1, 1,       false, false, true);
    row("TransformCross",        12, "Cross",         "Cross",           Merge,    2, NoLimit, true,  false, false);
    row("TransformDateFormat",   13, "Date_Format",   "DateTime Format", Format,   1, 1,       false, true,  false);
    row("TransformDecode",       14, "Decode",        "Decode",          Format,   1, 1,       true,  true,  false);
    row("TransformDedupe",       15, "Dedupe",        "Dedupe",          Row,      1, 1,       false, false, true);
    row("TransformDiff",         16, "Difference",    "Difference",      Analysis, 2, 2,       true,  false, false);
    row("TransformExtract",      17, "Extract",       "Extract",         Format,   1, 1,       false, true,  false);
    row("TransformFillDown",     18, "Fill",          "Fill",            Format,   1, 1,       false, true,  false);
    row("TransformFilter",       19, "Filter",        "Filter",          Row,      1, 1,       false, false, false);
    row("TransformGather",       20, "Gather",        "Gather",          Column,   1, 1,       true,  false, false);
    row("TransformHash",         21, "Hash",          "Hash",            Other,    1, 1,       true,  true,  false);
    row("TransformHeader",       22, "Header",        "Header",          Row,      1, 1,       true,  false, false);
    row("TransformIf",           23, "If",            "If",              Column,   1, 1,       true,  false, false);
    row("TransformImpute",       24, "Impute",        "Impute",          Other,    1, 1,       true,  true,  false);
    row("TransformInsert",       25, "Insert",        "Insert",          Format,   1, 1,       false, true,  false);
    row("TransformIntersect",    26, "Intersect",     "Intersect",       Merge,    2, 2,       true,  false, false);
    row("TransformInterpolate",  27, "Interpolate",   "Interpolate",     Merge,    2, 2,       true,  false, false);
    row("TransformJavascript",   28, "Javascript",    "Javascript",      Other,    1, 1,       true,  false, false);
    row("TransformJoin",         29, "Join",          "Join",            Merge,    2, 2,       false, false, false);
    row("TransformLookup",       30, "Lookup",        "Lookup",          Merge,    2, 2,       false, false, false);
    row("TransformMoving",       31, "Moving",        "Moving",          Column,   1, 1,       true,  false, false);
    row("TransformNewCol",       32, "New_Col",       "New Col",         Column,   1, 1,       false, false, false);
    row("TransformNewRows",      33, "New_Rows",      "New Rows",        Row,      1, 1,       true,  false, false);
    row("TransformNgram",        34, "Ngram",         "Ngram",           Analysis, 1, 1,       true,  false, true);
    row("TransformNumBase",      35, "Num_Base",      "Num Base",        Format,   1, 1,       true,  true,  false);
    row("TransformNumberFormat", 36, "Num_Format",    "Num Format",      Format,   1, 1,       false, true,  false);
    row("TransformOffset",       37, "Offset",        "Offset",          Column,   1, 1,       true,  true,  false);
    row("TransformOutliers",     38, "Outliers",      "Outliers",        Other,    1, 1,       true,  true,  false);
    row("TransformPad",          39, "Pad",           "Pad",             Format,   1, 1,       false, true,  false);
    row("TransformPivot",        40, "Pivot",         "Pivot",           Analysis, 1, 1,       true,  false, true);
    row("TransformPseudonym",    41, "Pseudonym",     "Pseudonym",       Column,   1, 1,       true,  false, false);
    row("TransformRandom",       42, "Random",        "Random",          Other,    1, 1,       true,  false, false);
    row("TransformRemoveCols",   43, "Remove",        "Remove Cols",     Column,   1, 1,       false, false, false);
    row("TransformRenameCols",   45, "Rename_Cols",   "Rename Cols",     Column,   1, 1,       false, false, false);
    row("TransformReorder",      46, "Reorder",       "Reorder Cols",    Column,   1, 1,       false, false, false);
    row("TransformReplaceMulti", 48, "Replace_Multi", "Replace",         Format,   1, 1,       false, true,  false);
    row("TransformReshape",      49, "Reshape",       "Reshape",         Column,   1, 1,       true,  false, false);
    row("TransformRowNum",       50, "Row_Num",       "Row Num",         Row,      1, 1,       false, false, false);
    row("TransformSample",       51, "Sample",        "Sample",          Row,      1, 1,       false, false, false);
    row("TransformScale",        52, "Scale",         "Scale",           Format,   1, 1,       true,  true,  false);
    row("TransformSequence",     53, "Sequence",      "Sequence",        Row,      1, 1,       true,  false, false);
    row("TransformSlice",        54, "Slice",         "Slice",           Row,      1, 1,       true,  false, false);
    row("TransformSlide",        55, "Slide",         "Slide",           Format,   1, 1,       true,  true,  false);
    row("TransformSort",         56, "Sort",          "Sort",            Row,      1, 1,       false, false, false);
    row("TransformSpread",       60, "Spread",        "Spread",          Column,   1, 1,       true,  false, false);
    row("TransformSplit",        57, "Split",         "Split Col",       Column,   1, 1,       false, false, false);
    row("TransformSplitName",    58, "Split_Name",    "Split Name",      Column,   1, 1,       true,  false, false);
    row("TransformSplitRows",    59, "Split_Rows",    "Split Rows",      Row,      1, 1,       true,  false, false);
    row("TransformStack",        61, "Stack",         "Stack",           Merge,    1, NoLimit, false, false, false);
    row("TransformStats",        63, "Stats",         "Stats",           Analysis, 1, 1,       true,  false, false);
    row("TransformStamp",        62, "Stamp",         "Stamp",           Other,    1, 1,       true,  false, false);
    row("TransformSubstitute",   64, "Substitute",    "Substitute",      Other,    1, 1,       true,  false, false);
    row("TransformSubtract",     65, "Subtract",      "Subtract",        Merge,    2, 2,       true,  false, false);
    row("TransformSummary",      66, "Summary",       "Summary",         Analysis, 1, 1,       false, false, false);
    row("TransformTotal",        67, "Total",         "Total",           Analysis, 1, 1,       true,  false, false);
    row("TransformTranspose",    68, "Transpose",     "Transpose",       Other,    1, 1,       false, false, false);
    row("TransformUnfill",       70, "Unfill",        "Unfill",          Format,   1, 1,       true,  true,  false);
    row("TransformUnique",       71, "Unique",        "Unique",          Row,      1, 1,       true,  false, true);
    row("TransformUnits",        72, "Units",         "Units",           Other,    1, 1,       true,  true,  false);
    row("TransformUUID",         73, "UUID",          "UUID",            Other,    1, 1,       true,  false, false);
    row("TransformVerify",       74, "Verify",        "Verify",          Other,    1, 1,       true,  false, false);
    row("TransformWhitespace",   75, "Whitespace",    "Whitespace",      Format,   1, 1,       false, true,  false);
    // clang-format on
}

void TestRegistry::table()
{
    QFETCH(int, position);
    const Transform *transform = m_prototypes.value(position);
    QVERIFY(transform);
    QCOMPARE(QString::fromLatin1(transform->metaObject()->className()),
        QString::fromLatin1(QTest::currentDataTag()));
    QTEST(transform->type(), "type");
    QTEST(transform->id(), "id");
    QTEST(transform->name(), "name");
    QTEST(int(transform->category()), "category");
    QTEST(transform->minimumInputs(), "minimum");
    QTEST(transform->maximumInputs(), "maximum");
    QTEST(transform->isAdvanced(), "advanced");
    QTEST(transform->isInPlace(), "inPlace");
    QTEST(transform->keepsDrilldown(), "keepsDrilldown");
}

void TestRegistry::everyTransform_data()
{
    QTest::addColumn<int>("position");
    for (int i = 0; i < m_prototypes.size(); ++i)
        QTest::newRow(qPrintable(m_prototypes.at(i)->id())) << i;
}

// What the flow relies on from each class: a clone is the same transform with its own
// options, options have distinct names, and with no input the result is an empty table.
void TestRegistry::everyTransform()
{
    QFETCH(int, position);
    const Transform *prototype = m_prototypes.value(position);
    QVERIFY(prototype);
    std::unique_ptr<Transform> item(prototype->clone());
    QCOMPARE(item->type(), prototype->type());
    QCOMPARE(item->id(), prototype->id());
    item->createParameters({}, false);
    QVERIFY2(item->hasUniqueParameterNames(), qPrintable(item->id()));
    std::unique_ptr<Transform> copy(item->clone());
    QCOMPARE(copy->parameterList().size(), item->parameterList().size());
    for (int i = 0; i < copy->parameterList().size(); ++i)
        QVERIFY(copy->parameterList().at(i) != item->parameterList().at(i));
    bool failed = false;
    const Dataset output = item->process({}, failed);
    QVERIFY2(output.hasNoRows() && output.hasNoColumns(), qPrintable(item->id()));
    QVERIFY(!failed);
    QVERIFY(!item->buttonTip().isEmpty());
    QVERIFY(!item->description().isEmpty());
    QVERIFY(item->keywords().contains(item->name().toLower().section(QLatin1Char(' '), 0, 0)));
}

// Every option of every transform, built against real inputs, reads back its own text.
void TestRegistry::optionsRoundTrip_data()
{
    everyTransform_data();
}

void TestRegistry::optionsRoundTrip()
{
    QFETCH(int, position);
    TestGraph graph(QStringLiteral("top bottom@0,100"));
    for (const QString &name : {QStringLiteral("top"), QStringLiteral("bottom")}) {
        Dataset data = testutil::toDataset(QStringLiteral("id,name,amount\n1,Ann,2.5\n2,Bob,7"), true);
        graph[name]->setDataset(data);
        graph[name]->assignColumnIds();
        graph[name]->setStatus(Node::UpToDate, false);
    }
    std::unique_ptr<Transform> item(m_prototypes.value(position)->clone());
    QList<Node *> inputs {graph["top"], graph["bottom"]};
    inputs = inputs.mid(0, qMin(2, item->maximumInputs()));
    item->createParameters(inputs, false);
    for (Parameter *parameter : item->parameterList()) {
        if (parameter->kind() == ParameterKind::Label)
            continue;
        const QString text = parameter->toText();
        Parameter copy(*parameter);
        copy.fromText(text, 84);
        QVERIFY2(copy.toText() == text, qPrintable(parameter->name() + QLatin1String(": ") + text));
        QVERIFY2(copy.value() == parameter->value(), qPrintable(parameter->name()));
    }
}

QTEST_MAIN(TestRegistry)
#include "tst_registry.moc"
