#include "transforms/transformbin.h"
#include "transforms/transformclone.h"
#include "transforms/transformcluster.h"
#include "transforms/transformcorrelate.h"
#include "transforms/transformcount.h"
#include "transforms/transformdiff.h"
#include "transforms/transformhash.h"
#include "transforms/transformimpute.h"
#include "transforms/transformngram.h"
#include "transforms/transformoutliers.h"
#include "transforms/transformpivot.h"
#include "transforms/transformrandom.h"
#include "transforms/transformstamp.h"
#include "transforms/transformstats.h"
#include "transforms/transformsubstitute.h"
#include "transforms/transformsummary.h"
#include "transforms/transformtotal.h"
#include "transforms/transformtranspose.h"
#include "transforms/transformunits.h"
#include "transforms/transformuuid.h"
#include "transforms/transformverify.h"

#include "flow/testgraph.h"
#include "testutil.h"

#include <QDate>
#include <QLocale>
#include <QtTest>

#include <memory>

namespace {

std::unique_ptr<Transform> prototype(const QString &id)
{
    const QList<Transform *> all {new TransformBin, new TransformClone, new TransformCluster,
        new TransformCorrelate, new TransformCount, new TransformDiff, new TransformHash, new TransformImpute,
        new TransformNgram, new TransformOutliers, new TransformPivot, new TransformRandom,
        new TransformStamp, new TransformStats, new TransformSubstitute, new TransformSummary,
        new TransformTotal, new TransformTranspose, new TransformUnits, new TransformUUID,
        new TransformVerify};
    std::unique_ptr<Transform> found;
    for (Transform *transform : all) {
        if (!found && transform->id() == id)
            found.reset(transform);
        else
            delete transform;
    }
    return found;
}

// A transform of the given id with its options built from their defaults, for the inputs.
std::unique_ptr<Transform> make(const QString &id, const QList<Node *> &inputs = {})
{
    std::unique_ptr<Transform> transform = prototype(id);
    if (transform)
        transform->createParameters(inputs, false);
    return transform;
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
            // A choice that isn't offered would leave the case silently on the default.
            if (parameter->kind() == ParameterKind::Selection
                && !parameter->selectionOptions().contains(value))
                return false;
            parameter->setValue(value);
        }
    }
    return true;
}

QString disabledNames(const Transform &transform)
{
    QStringList names;
    for (const auto &state : transform.parameterStates()) {
        if (!state.second)
            names << state.first;
    }
    return names.join(QLatin1Char(','));
}

// A node holding "a,b,c" with ids (nodeId, 1..3), at the given height on the canvas.
StubNode *dataNode(int nodeId, qreal y, const QString &name)
{
    auto *node = new StubNode;
    node->assignId(nodeId);
    node->setName(name);
    node->setPos(0, y);
    Dataset dataset = testutil::toDataset(QStringLiteral("a,b,c\n1,2,3"), true);
    dataset.assignColumnIds(nodeId);
    node->setDataset(dataset);
    return node;
}

// "node:id" for a Column option, "node:id,id" for a list, "(pending text)" while pending.
QString describe(const Parameter *parameter)
{
    if (!parameter)
        return QStringLiteral("missing");
    QString text = TestGraph::name(parameter->upstream()) + QLatin1Char(':');
    if (parameter->isPending())
        return text + QLatin1Char('(') + parameter->pendingText() + QLatin1Char(')');
    QStringList ids;
    if (parameter->kind() == ParameterKind::Column) {
        if (!parameter->columnId().isUnset())
            ids << QString::number(parameter->columnId().sequence());
    } else {
        for (const SortColumn &column : parameter->value().value<SortColumnList>())
            ids << QString::number(column.column.sequence());
    }
    return text + ids.join(QLatin1Char(','));
}

} // namespace

class TestAnalysisOtherOptions : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase();
    void defaults_data();
    void defaults();
    void parameterStates_data();
    void parameterStates();
    void unsetOptions_data();
    void unsetOptions();
    void statsCaseSensitive_data();
    void statsCaseSensitive();
    void differenceReorder_data();
    void differenceReorder();
    void pivotUpstream_data();
    void pivotUpstream();
    void verifyMinimumOptions_data();
    void verifyMinimumOptions();
    void summaryTakesEveryColumn();
};

void TestAnalysisOtherOptions::initTestCase()
{
    QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedStates));
}

// Options in display order as name=text form, list items decoded and joined by ",", so a
// renamed, reordered or re-defaulted option shows. "%today" stands for the current date.
void TestAnalysisOtherOptions::defaults_data()
{
    QTest::addColumn<QString>("id");
    QTest::addColumn<QString>("expected");
    QTest::newRow("Bin") << "Bin"
                         << "Column=0|Bins=Number of bins|Bin_Count=10|Bin_Width=10|Bin_Start=0|Boundaries="
                            "|Upper_Inclusive=0|Empty_Bins=1";
    QTest::newRow("Correlate") << "Correlate"
                               << "Columns=|Method=Pearson|Layout=Matrix|Decimal_Places=4";
    QTest::newRow("Count") << "Count"
                           << "Columns=|Case_Sensitive=1|Sum_Columns=|Percent=0|Sort=Count, highest first";
    QTest::newRow("Difference") << "Difference"
                                << "Compare_By=Whole rows|Column_1=0|Column_2=0|Case_Sensitive=1"
                                   "|Ignore_Whitespace=0|Show_Same=0";
    QTest::newRow("Ngram") << "Ngram"
                           << "Column=0|Minimum_Words=1|Maximum_Words=3|Case_Sensitive=0|Stop_Words="
                              "|Minimum_Count=1";
    QTest::newRow("Pivot") << "Pivot"
                           << "Row_Columns=|Column_Columns=|Value_Columns=|Aggregate=Sum|Empty_Cell="
                              "|Case_Sensitive=1";
    QTest::newRow("Stats") << "Stats"
                           << "Columns=|Group_By=|Case_Sensitive=1|Decimal_Places=-1";
    QTest::newRow("Summary") << "Summary"
                             << "Columns=";
    QTest::newRow("Total")
        << "Total"
        << "Columns=|Function=Sum|Total_Row=1|Total_Column=0|Label=Total|Decimal_Places=-1";
    QTest::newRow("Cluster") << "Cluster"
                             << "Column=0|Clustering=Manual|Terms=|Fuzziness=50|Max_Auto_Clusters=10"
                                "|Max_Auto_Time=60|Case_Sensitive=0";
    QTest::newRow("Clone") << "Clone"
                           << "Copies_From=Fixed number|Copies=2|Copies_Column=0|Order=Copies together"
                              "|Copy_Number=0";
    QTest::newRow("Hash")
        << "Hash"
        << "Columns=|Algorithm=SHA-256|Salt=|Normalise=0|Output=Hexadecimal|Hash_Empty=0|Length=0";
    QTest::newRow("Impute")
        << "Impute"
        << "Columns=|Method=Median|Fixed_Value=|Group_By=|Missing_Values=|Decimal_Places=-1";
    QTest::newRow("Outliers")
        << "Outliers"
        << "Columns=|Method=Interquartile range|IQR_Multiplier=1.5|Standard_Deviations=3"
           "|MAD_Threshold=3.5|Percentile=1|Side=Both|Replace_With=Empty value"
           "|Fixed_Text=Outlier|Decimal_Places=-1";
    QTest::newRow("Random")
        << "Random"
        << "Type=Integer|Minimum_Int=1|Maximum_Int=100|Minimum_Real=0|Maximum_Real=1|Mean=0"
           "|Standard_Deviation=1|Decimal_Places=2|Minimum_Date=2000-01-01"
           "|Maximum_Date=2029-12-31|Date_Format=yyyy-MM-dd|Text_Length=8"
           "|Characters=Letters and digits|List=|Seed=1|New_Name=Random";
    QTest::newRow("Stamp") << "Stamp"
                           << "Stamp=Date and time of run|Format=yyyy-MM-dd HH:mm:ss|Fixed_Date=%today"
                              "|Fixed_Text=|UTC=0|Locale=en|New_Name=Stamp|Position=Last column";
    QTest::newRow("Substitute") << "Substitute"
                                << "Template=|New_Name=Substitute|Empty_If_Missing=0";
    QTest::newRow("Transpose") << "Transpose"
                               << "Headers_To_Column=1|Column_To_Headers=1";
    QTest::newRow("Units") << "Units"
                           << "Columns=|From_Unit=Length: mile (mi)|To_Unit=Length: kilometre (km)"
                              "|Decimal_Places=-1|Add_Symbol=0";
    QTest::newRow("UUID") << "UUID"
                          << "Version=Random (version 4)|Name_Column=0|Namespace=URL|Custom_Namespace="
                             "|Format=Without braces|Upper_Case=0|New_Name=UUID";
    // Six dataset rules, each a record of 4 items (id, value, severity, flag), all off.
    QTest::newRow("Verify") << "Verify"
                            << "Rules=6,4,0,1,3,0,4,1,1000000,3,0,4,2,,3,0,4,3,,3,0,4,4,,3,0,4,5,,3,0"
                               "|Output=Marked data";
}

void TestAnalysisOtherOptions::defaults()
{
    QFETCH(QString, id);
    QFETCH(QString, expected);
    const std::unique_ptr<Transform> transform = make(id);
    QVERIFY(transform);
    QVERIFY(transform->hasUniqueParameterNames());
    QStringList options;
    for (const Parameter *parameter : transform->parameterList()) {
        QStringList items = parameter->toText().split(QChar(0x1F));
        for (QString &item : items)
            item = Parameter::decodeItem(item);
        options << parameter->name() + QLatin1Char('=') + items.join(QLatin1Char(','));
    }
    expected.replace(QLatin1String("%today"), QDate::currentDate().toString(QStringLiteral("yyyy-MM-dd")));
    QCOMPARE(options.join(QLatin1Char('|')), expected);
}

// The options that don't apply for the given values, in display order.
void TestAnalysisOtherOptions::parameterStates_data()
{
    QTest::addColumn<QString>("id");
    QTest::addColumn<QString>("values");
    QTest::addColumn<QString>("disabled");

    QTest::newRow("bin: number of bins") << "Bin"
                                         << ""
                                         << "Bin_Width,Bin_Start,Boundaries";
    QTest::newRow("bin: width") << "Bin"
                                << "Bins=Bin width"
                                << "Bin_Count,Boundaries";
    QTest::newRow("bin: boundaries") << "Bin"
                                     << "Bins=Boundaries"
                                     << "Bin_Count,Bin_Width,Bin_Start";

    QTest::newRow("difference: whole rows") << "Difference"
                                            << ""
                                            << "Column_1,Column_2";
    QTest::newRow("difference: key") << "Difference"
                                     << "Compare_By=Key column"
                                     << "";

    QTest::newRow("pivot: sum") << "Pivot"
                                << ""
                                << "";
    QTest::newRow("pivot: count") << "Pivot"
                                  << "Aggregate=Count"
                                  << "Value_Columns";
    QTest::newRow("pivot: count non-empty") << "Pivot"
                                            << "Aggregate=Count non-empty"
                                            << "";

    QTest::newRow("cluster: manual") << "Cluster"
                                     << ""
                                     << "Max_Auto_Clusters,Max_Auto_Time";
    QTest::newRow("cluster: guided") << "Cluster"
                                     << "Clustering=Guided"
                                     << "";
    QTest::newRow("cluster: automatic") << "Cluster"
                                        << "Clustering=Automatic"
                                        << "Terms";

    QTest::newRow("clone: fixed") << "Clone"
                                  << ""
                                  << "Copies_Column";
    QTest::newRow("clone: column") << "Clone"
                                   << "Copies_From=Column"
                                   << "Copies";

    QTest::newRow("impute: median") << "Impute"
                                    << ""
                                    << "Fixed_Value";
    QTest::newRow("impute: mean") << "Impute"
                                  << "Method=Mean"
                                  << "Fixed_Value";
    QTest::newRow("impute: most common") << "Impute"
                                         << "Method=Most common"
                                         << "Fixed_Value,Decimal_Places";
    QTest::newRow("impute: minimum") << "Impute"
                                     << "Method=Minimum"
                                     << "Fixed_Value,Decimal_Places";
    QTest::newRow("impute: maximum") << "Impute"
                                     << "Method=Maximum"
                                     << "Fixed_Value,Decimal_Places";
    QTest::newRow("impute: fixed") << "Impute"
                                   << "Method=Fixed value"
                                   << "Group_By,Decimal_Places";
    QTest::newRow("impute: interpolation") << "Impute"
                                           << "Method=Linear interpolation"
                                           << "Fixed_Value";

    QTest::newRow("outliers: IQR, empty")
        << "Outliers"
        << ""
        << "Standard_Deviations,MAD_Threshold,Percentile,Fixed_Text,Decimal_Places";
    QTest::newRow("outliers: deviations, nearest") << "Outliers"
                                                   << "Method=Standard deviations|Replace_With=Nearest limit"
                                                   << "IQR_Multiplier,MAD_Threshold,Percentile,Fixed_Text";
    QTest::newRow("outliers: MAD, fixed") << "Outliers"
                                          << "Method=Median absolute deviation|Replace_With=Fixed text"
                                          << "IQR_Multiplier,Standard_Deviations,Percentile,Decimal_Places";
    QTest::newRow("outliers: percentiles")
        << "Outliers"
        << "Method=Percentiles"
        << "IQR_Multiplier,Standard_Deviations,MAD_Threshold,Fixed_Text,Decimal_Places";

    const QString dateAndText =
        QStringLiteral("Minimum_Date,Maximum_Date,Date_Format,Text_Length,Characters,List");
    QTest::newRow("random: integer") << "Random"
                                     << ""
                                     << "Minimum_Real,Maximum_Real,Mean,Standard_Deviation,Decimal_Places,"
            + dateAndText;
    QTest::newRow("random: decimal") << "Random"
                                     << "Type=Decimal"
                                     << "Minimum_Int,Maximum_Int,Mean,Standard_Deviation," + dateAndText;
    QTest::newRow("random: normal") << "Random"
                                    << "Type=Normal distribution"
                                    << "Minimum_Int,Maximum_Int,Minimum_Real,Maximum_Real," + dateAndText;
    QTest::newRow("random: date")
        << "Random"
        << "Type=Date"
        << "Minimum_Int,Maximum_Int,Minimum_Real,Maximum_Real,Mean,Standard_Deviation,Decimal_Places,"
           "Text_Length,Characters,List";
    QTest::newRow("random: text")
        << "Random"
        << "Type=Text"
        << "Minimum_Int,Maximum_Int,Minimum_Real,Maximum_Real,Mean,Standard_Deviation,Decimal_Places,"
           "Minimum_Date,Maximum_Date,Date_Format,List";
    QTest::newRow("random: list")
        << "Random"
        << "Type=From list"
        << "Minimum_Int,Maximum_Int,Minimum_Real,Maximum_Real,Mean,Standard_Deviation,Decimal_Places,"
           "Minimum_Date,Maximum_Date,Date_Format,Text_Length,Characters";

    QTest::newRow("stamp: run time") << "Stamp"
                                     << ""
                                     << "Fixed_Date,Fixed_Text";
    QTest::newRow("stamp: fixed date") << "Stamp"
                                       << "Stamp=Fixed date"
                                       << "Fixed_Text,UTC";
    QTest::newRow("stamp: fixed text") << "Stamp"
                                       << "Stamp=Fixed text"
                                       << "Format,Fixed_Date,UTC,Locale";
    QTest::newRow("stamp: file name") << "Stamp"
                                      << "Stamp=Input file name"
                                      << "Format,Fixed_Date,Fixed_Text,UTC,Locale";
    QTest::newRow("stamp: file path") << "Stamp"
                                      << "Stamp=Input file path"
                                      << "Format,Fixed_Date,Fixed_Text,UTC,Locale";
    QTest::newRow("stamp: file modified") << "Stamp"
                                          << "Stamp=Input file modified"
                                          << "Fixed_Date,Fixed_Text";

    QTest::newRow("uuid: random") << "UUID"
                                  << ""
                                  << "Name_Column,Namespace,Custom_Namespace";
    QTest::newRow("uuid: random, custom") << "UUID"
                                          << "Namespace=Custom"
                                          << "Name_Column,Namespace,Custom_Namespace";
    QTest::newRow("uuid: version 5") << "UUID"
                                     << "Version=Name-based SHA-1 (version 5)"
                                     << "Custom_Namespace";
    QTest::newRow("uuid: version 3, custom") << "UUID"
                                             << "Version=Name-based MD5 (version 3)|Namespace=Custom"
                                             << "";

    QTest::newRow("hash: none") << "Hash"
                                << "Algorithm=MD5"
                                << "";
    QTest::newRow("verify: none") << "Verify"
                                  << "Output=Failure report"
                                  << "";
}

void TestAnalysisOtherOptions::parameterStates()
{
    QFETCH(QString, id);
    QFETCH(QString, values);
    QFETCH(QString, disabled);
    const std::unique_ptr<Transform> transform = make(id);
    QVERIFY(transform);
    QVERIFY(setValues(transform.get(), values));
    QCOMPARE(disabledNames(*transform), disabled);
}

// The unset-option warning shows which options are required, and that options which
// don't apply are never asked for.
void TestAnalysisOtherOptions::unsetOptions_data()
{
    QTest::addColumn<QString>("id");
    QTest::addColumn<QString>("values");
    QTest::addColumn<QString>("warning");

    QTest::newRow("ngram: stop words optional") << "Ngram"
                                                << ""
                                                << "1 option not set ('Column')";
    QTest::newRow("pivot: all three lists") << "Pivot"
                                            << ""
                                            << "3 options not set ('Rows','Columns','Values')";
    QTest::newRow("pivot: count needs no values") << "Pivot"
                                                  << "Aggregate=Count"
                                                  << "2 options not set ('Rows','Columns')";
    QTest::newRow("count: sums optional") << "Count"
                                          << ""
                                          << "1 option not set ('Count by')";
    QTest::newRow("stats: groups optional") << "Stats"
                                            << ""
                                            << "1 option not set ('Columns')";
    QTest::newRow("hash: salt optional") << "Hash"
                                         << ""
                                         << "1 option not set ('Columns')";
    QTest::newRow("impute: median") << "Impute"
                                    << ""
                                    << "1 option not set ('Columns')";
    QTest::newRow("impute: fixed value") << "Impute"
                                         << "Method=Fixed value"
                                         << "2 options not set ('Columns','Fixed value')";
    QTest::newRow("cluster: manual needs terms") << "Cluster"
                                                 << ""
                                                 << "2 options not set ('Column','Terms')";
    QTest::newRow("cluster: automatic") << "Cluster"
                                        << "Clustering=Automatic"
                                        << "1 option not set ('Column')";
    QTest::newRow("clone: fixed") << "Clone"
                                  << ""
                                  << "";
    QTest::newRow("clone: column") << "Clone"
                                   << "Copies_From=Column"
                                   << "1 option not set ('Copies column')";
    QTest::newRow("difference: whole rows") << "Difference"
                                            << ""
                                            << "";
    QTest::newRow("difference: key") << "Difference"
                                     << "Compare_By=Key column"
                                     << "2 options not set ('Top key column','Bottom key column')";
    QTest::newRow("stamp: run time") << "Stamp"
                                     << ""
                                     << "";
    QTest::newRow("stamp: fixed text") << "Stamp"
                                       << "Stamp=Fixed text"
                                       << "1 option not set ('Text')";
    QTest::newRow("uuid: random") << "UUID"
                                  << ""
                                  << "";
    QTest::newRow("uuid: custom namespace") << "UUID"
                                            << "Version=Name-based SHA-1 (version 5)|Namespace=Custom"
                                            << "2 options not set ('Name column','Custom namespace')";
    QTest::newRow("random: integer") << "Random"
                                     << ""
                                     << "";
    QTest::newRow("random: list") << "Random"
                                  << "Type=From list"
                                  << "1 option not set ('Values')";
    QTest::newRow("random: no name") << "Random"
                                     << "New_Name="
                                     << "1 option not set ('New column name')";
    QTest::newRow("outliers: fixed text") << "Outliers"
                                          << "Replace_With=Fixed text|Fixed_Text="
                                          << "2 options not set ('Columns','Fixed text')";
    QTest::newRow("outliers: empty text unused") << "Outliers"
                                                 << "Fixed_Text="
                                                 << "1 option not set ('Columns')";
    QTest::newRow("substitute") << "Substitute"
                                << ""
                                << "1 option not set ('Template')";
    QTest::newRow("total: label") << "Total"
                                  << "Label="
                                  << "2 options not set ('Columns','Label')";
    QTest::newRow("transpose") << "Transpose"
                               << ""
                               << "";
    QTest::newRow("verify") << "Verify"
                            << ""
                            << "";
    QTest::newRow("summary") << "Summary"
                             << ""
                             << "1 option not set ('Columns')";
}

void TestAnalysisOtherOptions::unsetOptions()
{
    QFETCH(QString, id);
    QFETCH(QString, values);
    QFETCH(QString, warning);
    const std::unique_ptr<Transform> transform = make(id);
    QVERIFY(transform);
    QVERIFY(setValues(transform.get(), values));
    transform->checkParameters();
    QCOMPARE(transform->warnings().join(QLatin1Char('\n')), warning);
}

// Case matters to Stats only while there are groups, and a group column gone from the
// input makes none.
void TestAnalysisOtherOptions::statsCaseSensitive_data()
{
    QTest::addColumn<bool>("connected");
    QTest::addColumn<int>("groupSequence");
    QTest::addColumn<bool>("applies");
    QTest::newRow("no group column") << true << 0 << false;
    QTest::newRow("live group column") << true << 2 << true;
    QTest::newRow("group column gone") << true << 7 << false;
    QTest::newRow("not connected") << false << 2 << false;
}

void TestAnalysisOtherOptions::statsCaseSensitive()
{
    QFETCH(bool, connected);
    QFETCH(int, groupSequence);
    QFETCH(bool, applies);
    const std::unique_ptr<StubNode> input(dataNode(1, 0, QStringLiteral("a")));
    const std::unique_ptr<Transform> transform =
        make(QStringLiteral("Stats"), connected ? QList<Node *> {input.get()} : QList<Node *> {});
    QList<ColumnId> groups;
    if (groupSequence > 0)
        groups << ColumnId(1, groupSequence);
    transform->parameter(QStringLiteral("Group_By"))->setValue(QVariant::fromValue(groups));
    QCOMPARE(disabledNames(*transform), applies ? QString() : QStringLiteral("Case_Sensitive"));
}

// Key columns are given as node:column before and after; the old (top) input is the one
// higher on the canvas.
void TestAnalysisOtherOptions::differenceReorder_data()
{
    QTest::addColumn<qreal>("firstY");
    QTest::addColumn<qreal>("secondY");
    QTest::addColumn<bool>("bothConnected");
    QTest::addColumn<bool>("pendingTop");
    QTest::addColumn<bool>("swapped");
    QTest::addColumn<QString>("inputs");
    QTest::addColumn<QString>("top");
    QTest::addColumn<QString>("bottom");

    QTest::newRow("first below swaps") << 100.0 << 0.0 << true << false << true << "b,a"
                                       << "b:2"
                                       << "a:3";
    QTest::newRow("first above stays") << 0.0 << 100.0 << true << false << false << "a,b"
                                       << "a:3"
                                       << "b:2";
    QTest::newRow("same height stays") << 50.0 << 50.0 << true << false << false << "a,b"
                                       << "a:3"
                                       << "b:2";
    QTest::newRow("a hair lower swaps") << 0.5 << 0.0 << true << false << true << "b,a"
                                        << "b:2"
                                        << "a:3";
    QTest::newRow("one input stays") << 100.0 << 0.0 << false << false << false << "a"
                                     << "a:3"
                                     << "-:";
    QTest::newRow("document text moves too") << 100.0 << 0.0 << true << true << true << "b,a"
                                             << "b:2"
                                             << "a:(3)";
}

void TestAnalysisOtherOptions::differenceReorder()
{
    QFETCH(qreal, firstY);
    QFETCH(qreal, secondY);
    QFETCH(bool, bothConnected);
    QFETCH(bool, pendingTop);
    QFETCH(bool, swapped);
    QFETCH(QString, inputs);
    QFETCH(QString, top);
    QFETCH(QString, bottom);

    const std::unique_ptr<StubNode> a(dataNode(1, firstY, QStringLiteral("a")));
    const std::unique_ptr<StubNode> b(dataNode(2, secondY, QStringLiteral("b")));
    QList<Node *> nodes {a.get()};
    if (bothConnected)
        nodes << b.get();
    const std::unique_ptr<Transform> transform = make(QStringLiteral("Difference"), nodes);
    Parameter *topKey = transform->parameter(QStringLiteral("Column_1"));
    Parameter *bottomKey = transform->parameter(QStringLiteral("Column_2"));
    topKey->setValue(QVariant::fromValue(ColumnId(1, 3)));
    if (pendingTop)
        topKey->setPendingText(QStringLiteral("3"), 80);
    if (bothConnected)
        bottomKey->setValue(QVariant::fromValue(ColumnId(2, 2)));

    QCOMPARE(transform->reorderInputs(nodes), swapped);
    QCOMPARE(TestGraph::names(nodes), inputs);
    QCOMPARE(describe(topKey), top);
    QCOMPARE(describe(bottomKey), bottom);
    // Once in canvas order, a second call leaves everything alone.
    QVERIFY(!transform->reorderInputs(nodes));
}

// Every list of Pivot watches the first input; lists chosen on another dataset are
// emptied, unless they are a document's text still waiting to be read.
void TestAnalysisOtherOptions::pivotUpstream_data()
{
    QTest::addColumn<QString>("connectTo");
    QTest::addColumn<bool>("pending");
    QTest::addColumn<QString>("expected");
    QTest::newRow("same node keeps the lists") << "a" << false << "a:1|a:2|a:3";
    QTest::newRow("same node first of two") << "a,b" << false << "a:1|a:2|a:3";
    QTest::newRow("another node empties them") << "b,a" << false << "b:|b:|b:";
    QTest::newRow("document text waits") << "b" << true << "b:(1)|b:(2)|b:(3)";
    QTest::newRow("disconnected") << "" << false << "-:1|-:2|-:3";
}

void TestAnalysisOtherOptions::pivotUpstream()
{
    QFETCH(QString, connectTo);
    QFETCH(bool, pending);
    QFETCH(QString, expected);

    const std::unique_ptr<StubNode> a(dataNode(1, 0, QStringLiteral("a")));
    const std::unique_ptr<StubNode> b(dataNode(2, 100, QStringLiteral("b")));
    const std::unique_ptr<Transform> transform = make(QStringLiteral("Pivot"), {a.get()});
    const QStringList names {
        QStringLiteral("Row_Columns"), QStringLiteral("Column_Columns"), QStringLiteral("Value_Columns")};
    for (int i = 0; i < names.size(); ++i) {
        Parameter *option = transform->parameter(names.at(i));
        option->setValue(QVariant::fromValue(SortColumnList {SortColumn {ColumnId(1, i + 1), true}}));
        if (pending)
            option->setPendingText(QString::number(i + 1), 80);
    }

    QList<Node *> nodes;
    for (const QString &name : connectTo.split(QLatin1Char(','), Qt::SkipEmptyParts))
        nodes << (name == QLatin1String("a") ? a.get() : b.get());
    transform->setUpstream(nodes);

    QStringList options;
    for (const QString &name : names)
        options << describe(transform->parameter(name));
    QCOMPARE(options.join(QLatin1Char('|')), expected);
}

// Severities: 0 warning, 1 error, 2 stop, 3 off. A rule on a column the input no longer
// has doesn't count.
void TestAnalysisOtherOptions::verifyMinimumOptions_data()
{
    QTest::addColumn<int>("datasetSeverity");
    QTest::addColumn<int>("columnSequence");
    QTest::addColumn<int>("columnSeverity");
    QTest::addColumn<bool>("expected");
    QTest::newRow("all off") << 3 << 2 << 3 << false;
    QTest::newRow("dataset rule warning") << 0 << 2 << 3 << true;
    QTest::newRow("dataset rule stop") << 2 << 2 << 3 << true;
    QTest::newRow("column rule error") << 3 << 2 << 1 << true;
    QTest::newRow("column rule on a gone column") << 3 << 9 << 1 << false;
}

void TestAnalysisOtherOptions::verifyMinimumOptions()
{
    QFETCH(int, datasetSeverity);
    QFETCH(int, columnSequence);
    QFETCH(int, columnSeverity);
    QFETCH(bool, expected);

    const std::unique_ptr<StubNode> input(dataNode(1, 0, QStringLiteral("a")));
    const std::unique_ptr<Transform> transform = make(QStringLiteral("Verify"), {input.get()});
    QVERIFY(!transform->hasMinimumOptions());
    Parameter *rules = transform->parameter(QStringLiteral("Rules"));
    VerifyRulesValue value = rules->value().value<VerifyRulesValue>();
    QVERIFY(!value.datasetRules.isEmpty());
    value.datasetRules.last().severity = datasetSeverity;
    VerifyColumnRules column;
    column.rules << VerifyRule {0, QString(), columnSeverity, false};
    value.columns.insert(ColumnId(1, columnSequence), column);
    rules->setValue(QVariant::fromValue(value));
    QCOMPARE(transform->hasMinimumOptions(), expected);
}

void TestAnalysisOtherOptions::summaryTakesEveryColumn()
{
    const std::unique_ptr<StubNode> input(dataNode(1, 0, QStringLiteral("a")));
    const std::unique_ptr<Transform> connected = make(QStringLiteral("Summary"), {input.get()});
    const QList<ColumnId> ids = connected->parameter(QStringLiteral("Columns"))->columnIds();
    QCOMPARE(ids, (QList<ColumnId> {ColumnId(1, 1), ColumnId(1, 2), ColumnId(1, 3)}));

    auto empty = std::make_unique<StubNode>();
    const std::unique_ptr<Transform> onEmpty = make(QStringLiteral("Summary"), {empty.get()});
    QVERIFY(onEmpty->parameter(QStringLiteral("Columns"))->columnIds().isEmpty());
}

QTEST_MAIN(TestAnalysisOtherOptions)
#include "tst_analysisotheroptions.moc"
