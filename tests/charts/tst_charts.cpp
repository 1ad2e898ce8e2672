#include "charts/chartdocument.h"
#include "charts/chartnode.h"
#include "charts/chartview.h"
#include "charts/chartwidget.h"
#include "flow/graphscene.h"
#include "flow/runreport.h"
#include "testutil.h"

#include <QDir>
#include <QFile>
#include <QGridLayout>
#include <QImage>
#include <QImageReader>
#include <QLocale>
#include <QSet>
#include <QTemporaryDir>
#include <QtCharts/QAbstractBarSeries>
#include <QtCharts/QAreaSeries>
#include <QtCharts/QBarSet>
#include <QtCharts/QChart>
#include <QtCharts/QLegend>
#include <QtCharts/QLineSeries>
#include <QtCharts/QPieSeries>
#include <QtCharts/QXYSeries>
#include <QtCharts/QValueAxis>
#include <QtTest>

#include <functional>
#include <memory>

using Configure = std::function<void(ChartOptions &)>;
Q_DECLARE_METATYPE(Configure)

namespace {

// The upstream item of a chart: holds a table and is up to date.
class SourceNode : public Node
{
public:
    QString typeName() const override { return QStringLiteral("Source"); }
    int maxUpstream() const override { return 0; }
    int maxDownstream() const override { return 1000; }
    void process(bool, bool) override { }
};

QString numbers(int count, const QString &header = QStringLiteral("X,Y"))
{
    QStringList lines {header};
    for (int i = 1; i <= count; ++i) {
        QStringList cells {QString::number(i)};
        for (int c = 1; c < header.count(QLatin1Char(',')) + 1; ++c)
            cells << QString::number(i * (c + 1));
        lines << cells.join(QLatin1Char(','));
    }
    return lines.join(QLatin1Char('\n'));
}

QList<int> range(int first, int last)
{
    QList<int> list;
    for (int i = first; i <= last; ++i)
        list << i;
    return list;
}

// Distinct colours of an image, ignoring greys: series colours, not the frame.
QSet<QRgb> saturatedColours(const QImage &image)
{
    QSet<QRgb> colours;
    for (int y = 0; y < image.height(); y += 2) {
        for (int x = 0; x < image.width(); x += 2) {
            const QColor colour(image.pixel(x, y));
            if (colour.hsvSaturation() > 120 && colour.value() > 60)
                colours.insert(colour.rgb() & 0xF0F0F0); // near shades count once
        }
    }
    return colours;
}

// The commonest of colours in image, compared as saturatedColours does.
QRgb mostCommon(const QImage &image, const QSet<QRgb> &colours)
{
    QHash<QRgb, int> counts;
    for (int y = 0; y < image.height(); y += 2) {
        for (int x = 0; x < image.width(); x += 2) {
            const QRgb shade = QColor(image.pixel(x, y)).rgb() & 0xF0F0F0;
            if (colours.contains(shade))
                ++counts[shade];
        }
    }
    QRgb best = 0;
    for (auto it = counts.constBegin(); it != counts.constEnd(); ++it) {
        if (it.value() > counts.value(best, 0))
            best = it.key();
    }
    return best;
}

} // namespace

class TestCharts : public QObject
{
    Q_OBJECT

private slots:
    void init();

    void refusals_data();
    void refusals();
    void builderMessages_data();
    void builderMessages();
    void refusedBuilderDrawsNothing();
    void facetGridAndCommonRange();
    void titlesAndLegend_data();
    void titlesAndLegend();

    void statusAndSize_data();
    void statusAndSize();
    void noInput();
    void widgetFollowsTheNode();

    void images_data();
    void images();
    void pdfPage();
    void fileMessages();
    void unwritableFile();
    void runReportCountsChartFiles();

    void documentRoundTrip();
    void documentOrderAndDefaults();
    void documentNonsense();

private:
    ChartNode *makeChart(const QString &table, int type, int x, const QList<int> &ys,
        const Configure &configure = Configure());
    bool run(ChartNode *chart);

    std::unique_ptr<GraphScene> m_scene;
    SourceNode *m_source = nullptr;
    QTemporaryDir m_dir;
};

void TestCharts::init()
{
    QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedStates));
    m_scene = std::make_unique<GraphScene>();
    m_source = nullptr;
}

ChartNode *TestCharts::makeChart(
    const QString &table, int type, int x, const QList<int> &ys, const Configure &configure)
{
    m_source = new SourceNode;
    m_scene->addNode(m_source);
    m_source->setDataset(testutil::toDataset(table, true));
    m_source->assignColumnIds();
    m_source->setStatus(Node::UpToDate, false);
    auto *chart = new ChartNode;
    m_scene->addNode(chart);
    m_scene->connectNodes(m_source, chart);
    ChartOptions options;
    options.type = type;
    if (configure)
        configure(options);
    chart->setOptions(options);
    chart->setPendingColumns(x, ys);
    return chart;
}

bool TestCharts::run(ChartNode *chart)
{
    chart->setStatus(Node::NeedsUpdating, false);
    chart->process(false, false);
    return chart->status() == Node::UpToDate;
}

void TestCharts::refusals_data()
{
    QTest::addColumn<QString>("table");
    QTest::addColumn<int>("type");
    QTest::addColumn<int>("x");
    QTest::addColumn<QList<int>>("ys");
    QTest::addColumn<Configure>("configure");
    QTest::addColumn<QStringList>("warnings"); // empty: drawn
    QTest::addColumn<QString>("overlay");

    const QString small = numbers(3, QStringLiteral("X,Y,Z"));
    const auto faceted = [](int across) {
        return Configure([across](ChartOptions &o) {
            o.layout = ChartOptions::Faceted;
            o.facetsAcross = across;
        });
    };
    QTest::newRow("no type first, before the columns")
        << small << 0 << 0 << QList<int>() << Configure() << QStringList {"Select a chart type"}
        << "Select a chart type";
    QTest::newRow("no X column") << small << 2 << 0 << QList<int> {2} << Configure()
                                 << QStringList {"Select a data column for the X axis"}
                                 << "Select a column for the X axis";
    QTest::newRow("X beyond the columns") << small << 2 << 9 << QList<int> {2} << Configure()
                                          << QStringList {"Select a data column for the X axis"}
                                          << "Select a column for the X axis";
    QTest::newRow("no Y column") << small << 2 << 1 << QList<int>() << Configure()
                                 << QStringList {"Select one or more data columns for the Y axis"}
                                 << "Select one or more columns for the Y axis";
    QTest::newRow("Pie of 100 rows is drawn") << numbers(100) << 7 << 1 << QList<int> {2} << Configure()
                                              << QStringList() << QString();
    QTest::newRow("Pie of 101 rows")
        << numbers(101) << 7 << 1 << QList<int> {2} << Configure()
        << QStringList {"Pie charts can display a maximum of 100 data points (per facet, if faceted) - you can use "
                        "a 'Sample', 'Filter' or 'Slice' transforms to reduce the amount of data"}
        << "Too many data points";
    QTest::newRow("faceted Pie at 202 points")
        << numbers(101, "X,Y,Z") << 7 << 1 << QList<int> {2, 3} << faceted(2)
        << QStringList {"Pie charts can display a maximum of 100 data points (per facet, if faceted) - you can use "
                        "a 'Sample', 'Filter' or 'Slice' transforms to reduce the amount of data"}
        << "Too many data points";
    QTest::newRow("grouped Pie at 200 points has a limit of 100")
        << numbers(100, "X,Y,Z") << 8 << 1 << QList<int> {2, 3} << Configure()
        << QStringList {"Donut charts can display a maximum of 100 data points (per facet, if faceted) - you can "
                        "use a 'Sample', 'Filter' or 'Slice' transforms to reduce the amount of data"}
        << "Too many data points";
    QTest::newRow("faceted Pie at 200 points is drawn")
        << numbers(100, "X,Y,Z") << 7 << 1 << QList<int> {2, 3} << faceted(2) << QStringList() << QString();
    QTest::newRow("bar limit with group separators")
        << numbers(1001) << 5 << 1 << QList<int> {2} << Configure()
        << QStringList {"Vertical Bar charts can display a maximum of 1,000 data points (per facet, if faceted) - "
                        "you can use a 'Sample', 'Filter' or 'Slice' transforms to reduce the amount of data"}
        << "Too many data points";
    QTest::newRow("a Y column that no longer resolves is not counted")
        << numbers(100) << 7 << 1 << QList<int> {2, 7} << Configure() << QStringList() << QString();

    QStringList wide {"X"};
    for (int i = 1; i <= 26; ++i)
        wide << QStringLiteral("Y%1").arg(i);
    const QString wideTable = wide.join(',') + "\n" + QStringList(QVector<QString>(27, "1").toList()).join(',');
    QTest::newRow("26 facets with 4 across: no hint")
        << wideTable << 2 << 1 << range(2, 27) << faceted(4)
        << QStringList {"A maximum of 5 rows of facets can be displayed"} << "Too many rows of facets";
    QTest::newRow("11 facets with 2 across: the hint")
        << wideTable << 1 << 1 << range(2, 12) << faceted(2)
        << QStringList {"A maximum of 5 rows of facets can be displayed\nTry increasing the number of facets across"}
        << "Too many rows of facets";
    QTest::newRow("26 facets with 5 across: no hint")
        << wideTable << 1 << 1 << range(2, 27) << faceted(5)
        << QStringList {"A maximum of 5 rows of facets can be displayed"} << "Too many rows of facets";
    QTest::newRow("25 facets with 5 across are drawn")
        << wideTable << 1 << 1 << range(2, 26) << faceted(5) << QStringList() << QString();
    QTest::newRow("too many points is told before too many facet rows")
        << numbers(101, wide.join(',')) << 7 << 1 << range(2, 27) << faceted(1)
        << QStringList {"Pie charts can display a maximum of 100 data points (per facet, if faceted) - you can use "
                        "a 'Sample', 'Filter' or 'Slice' transforms to reduce the amount of data"}
        << "Too many data points";
}

void TestCharts::refusals()
{
    QFETCH(QString, table);
    QFETCH(int, type);
    QFETCH(int, x);
    QFETCH(QList<int>, ys);
    QFETCH(Configure, configure);
    QFETCH(QStringList, warnings);
    QFETCH(QString, overlay);
    ChartNode *chart = makeChart(table, type, x, ys, configure);
    const bool drawn = run(chart);
    if (warnings.isEmpty()) {
        QVERIFY2(drawn, qPrintable(chart->warnings().join('|')));
        QCOMPARE(chart->statusWord(), QStringLiteral("Plotted"));
        return;
    }
    QVERIFY(!drawn);
    QCOMPARE(chart->warnings(), warnings);
    QCOMPARE(chart->statusWord(), QStringLiteral("Error plotting"));
    // A widget on screen shows the short form over an empty chart.
    ChartWidget widget;
    widget.setNode(chart);
    QVERIFY(!widget.updateChart());
    QVERIFY(!widget.views().isEmpty());
    for (ChartView *view : widget.views()) {
        QCOMPARE(view->overlayText(), overlay);
        QVERIFY(!view->hasSeries());
    }
    QCOMPARE(chart->warnings(), warnings); // a display draw adds nothing
}

void TestCharts::builderMessages_data()
{
    QTest::addColumn<QString>("table");
    QTest::addColumn<int>("type");
    QTest::addColumn<QList<int>>("ys");
    QTest::addColumn<Configure>("configure");
    QTest::addColumn<QStringList>("warnings");
    QTest::addColumn<QStringList>("information");
    QTest::addColumn<int>("points"); // drawn, over all series

    const auto xAs = [](int kind) { return Configure([kind](ChartOptions &o) { o.xAs = kind; }); };
    QTest::newRow("numeric X found") << "X,Y\n1,5\n2,6" << 1 << QList<int> {2} << Configure() << QStringList()
                                     << QStringList {"X axis interpreted as Numeric"} << 2;
    QTest::newRow("text X found, one point")
        << "X,Y\nJan,5" << 2 << QList<int> {2} << Configure() << QStringList()
        << QStringList {"X axis interpreted as Text", "1 data point for column 'Y'"} << 1;
    QTest::newRow("scatter has no one-point note")
        << "X,Y\n1,5" << 1 << QList<int> {2} << xAs(1) << QStringList() << QStringList() << 1;
    QTest::newRow("date X found") << "X,Y\n2024-01-31,5\n2024-02-29,6" << 2 << QList<int> {2} << Configure()
                                  << QStringList()
                                  << QStringList {"X axis interpreted as Date",
                                         "'yyyy-M-d' inferred as date format for column 'X'"}
                                  << 2;
    QTest::newRow("a bad date among dates")
        << "X,Y\n2024-01-31,5\n2024-02-29,6\nsoon,7" << 2 << QList<int> {2} << xAs(3)
        << QStringList {"Some values in column 'X' are not recognized as dates",
               "'soon' is not a valid date in column 'X' at row 3"}
        << QStringList {"'yyyy-M-d' inferred as date format for column 'X'"} << 2;
    QTest::newRow("no date format at all") << "X,Y\nabc,5" << 2 << QList<int> {2} << xAs(3)
                                           << QStringList {"Could not infer a date format for column 'X'",
                                                  "'abc' is not a valid date in column 'X' at row 1"}
                                           << QStringList {"No data points for column 'Y'"} << 0;
    QTest::newRow("text in a numeric Y column: the rest is drawn")
        << "X,Y\n1,5\n2,abc\n3,$7" << 1 << QList<int> {2} << xAs(1)
        << QStringList {"'abc' is not a valid number in column 'Y' at row 2"} << QStringList() << 2;
    QTest::newRow("six bad numbers: five and one other")
        << "X,Y\n1,a\n2,b\n3,c\n4,d\n5,e\n6,f\n7,1" << 1 << QList<int> {2} << xAs(1)
        << QStringList {"'a' is not a valid number in column 'Y' at row 1",
               "'b' is not a valid number in column 'Y' at row 2", "'c' is not a valid number in column 'Y' at row 3",
               "'d' is not a valid number in column 'Y' at row 4", "'e' is not a valid number in column 'Y' at row 5",
               "+ 1 other"}
        << QStringList() << 1;
    QTest::newRow("seven bad numbers: two others; each kind counted apart")
        << "X,Y\n1,a\n2,b\n3,c\n4,d\n5,e\n6,f\n7,g\n8,0" << 1 << QList<int> {2} << Configure([](ChartOptions &o) {
               o.xAs = 1;
               o.yAxis.scale = ChartAxisOptions::Log10;
           })
        << QStringList {"'a' is not a valid number in column 'Y' at row 1",
               "'b' is not a valid number in column 'Y' at row 2", "'c' is not a valid number in column 'Y' at row 3",
               "'d' is not a valid number in column 'Y' at row 4", "'e' is not a valid number in column 'Y' at row 5",
               "+ 2 others",
               "'0' is not a valid number for a logarithmic axis in column 'Y' at row 8 (must be > 0)"}
        << QStringList {"No data points for column 'Y'"} << 0;
    QTest::newRow("zero on a log axis is skipped")
        << "X,Y\n1,0\n2,10\n3,100" << 2 << QList<int> {2} << Configure([](ChartOptions &o) {
               o.xAs = 1;
               o.yAxis.scale = ChartAxisOptions::Log10;
           })
        << QStringList {"'0' is not a valid number for a logarithmic axis in column 'Y' at row 1 (must be > 0)"}
        << QStringList() << 2;
    QTest::newRow("negative X on a log X axis")
        << "X,Y\n-1,1\n2,10" << 1 << QList<int> {2} << Configure([](ChartOptions &o) {
               o.xAs = 1;
               o.xAxis.scale = ChartAxisOptions::Log2;
           })
        << QStringList {"'-1' is not a valid number for a logarithmic axis in column 'X' at row 1 (must be > 0)"}
        << QStringList() << 1;
    QTest::newRow("duplicate text X refuses a line chart")
        << "X,Y\na,1\nb,2\na,3\nc,4\nd,5\ne,6\nf,7\nc,8\nd,9\ne,1\nf,2\ng,3\ng,4\nb,5" << 2 << QList<int> {2} << xAs(2)
        << QStringList {"Duplicate values are not allowed for an X axis of type text in Line charts\nYou can use a "
                        "'Count' transform to sum duplicates.\nX axis value 'a' occurs 2 times\nX axis value 'b' "
                        "occurs 2 times\nX axis value 'c' occurs 2 times\nX axis value 'd' occurs 2 times\nX axis "
                        "value 'e' occurs 2 times\n+ 2 more"}
        << QStringList() << -1;
    QTest::newRow("unordered X in a line")
        << "X,Y\n1,1\n3,2\n2,3" << 2 << QList<int> {2} << xAs(1)
        << QStringList {"X values are not ordered in column 'Y, use a 'Sort' transform to sort them"} << QStringList()
        << 3;
    QTest::newRow("unordered X in an area")
        << "X,Y\n1,1\n3,2\n2,3" << 4 << QList<int> {2} << xAs(1)
        << QStringList {"X values are not ordered in column 'Y', use a 'Sort' transform to sort them"}
        << QStringList() << 3;
    QTest::newRow("falling X is ordered") << "X,Y\n3,1\n2,2\n1,3" << 3 << QList<int> {2} << xAs(1) << QStringList()
                                          << QStringList() << 3;
    QTest::newRow("scatter X need not be ordered")
        << "X,Y\n1,1\n3,2\n2,3" << 1 << QList<int> {2} << xAs(1) << QStringList() << QStringList() << 3;
    QTest::newRow("an empty Y column is dropped")
        << "X,Y,Z\n1,1,\n2,2," << 2 << QList<int> {2, 3} << xAs(1) << QStringList()
        << QStringList {"No data points for column 'Z'"} << 2;
    QTest::newRow("grouped areas may hide each other")
        << "X,Y,Z\n1,1,2\n2,2,3" << 4 << QList<int> {2, 3} << xAs(1) << QStringList()
        << QStringList {"Data may be obscured in grouped area charts - try faceted or stacked instead or set the "
                        "series opacity to < 100%"}
        << 4;
    QTest::newRow("translucent areas don't")
        << "X,Y,Z\n1,1,2\n2,2,3" << 4 << QList<int> {2, 3} << Configure([](ChartOptions &o) {
               o.xAs = 1;
               o.opacity = 60;
           })
        << QStringList() << QStringList() << 4;
    QTest::newRow("stacked areas don't") << "X,Y,Z\n1,1,2\n2,2,3" << 4 << QList<int> {2, 3}
                                         << Configure([](ChartOptions &o) {
                                                o.xAs = 1;
                                                o.layout = ChartOptions::Stacked;
                                            })
                                         << QStringList() << QStringList() << 4;
    QTest::newRow("negative area values")
        << "X,Y\n1,-1\n2,2" << 4 << QList<int> {2} << xAs(1)
        << QStringList {"Area charts are not a good choice for negative values (1 negative value)"} << QStringList()
        << 2;
    QTest::newRow("bars sum the same X")
        << "X,Y\na,1\nb,2\na,3\n,4" << 5 << QList<int> {2} << Configure() << QStringList()
        << QStringList {"Y values with the same X value are summed"} << 3;
    QTest::newRow("bars with bad numbers")
        << "X,Y\na,1\nb,x" << 6 << QList<int> {2} << Configure()
        << QStringList {"'x' is not a valid number in column 'Y' at row 2"} << QStringList() << 1;
    QTest::newRow("pie with negatives")
        << "X,Y\na,-1\nb,-2\nc,3" << 7 << QList<int> {2} << Configure()
        << QStringList {"Pie charts are not a good choice for negative values (2 negative values )"}
        << QStringList {"1 data point for column 'Y'"} << 1;
    QTest::newRow("donut rings, summed") << "X,Y,Z\na,1,2\na,2,3\nb,1,1" << 8 << QList<int> {2, 3} << Configure()
                                         << QStringList()
                                         << QStringList {"Y values with the same X value are summed"} << 4;
    QTest::newRow("custom minimum above the maximum: drawn and told")
        << "X,Y\n1,1\n2,2" << 2 << QList<int> {2} << Configure([](ChartOptions &o) {
               o.xAs = 1;
               o.yAxis.minRangeOption = o.yAxis.maxRangeOption = ChartAxisOptions::RangeCustom;
               o.yAxis.minRangeCustomValue = 10;
               o.yAxis.maxRangeCustomValue = 5;
               o.xAxis.minRangeOption = o.xAxis.maxRangeOption = ChartAxisOptions::RangeCustom;
               o.xAxis.minRangeCustomValue = 3;
               o.xAxis.maxRangeCustomValue = 3;
           })
        << QStringList {"X axis minimum (3) should be < X axis maximum (3)",
               "Y axis minimum (10) should be < Y axis maximum (5)"}
        << QStringList() << 2;
    QTest::newRow("log axes: the X wording, and bounds below 1")
        << "X,Y\n1,1\n2,2" << 2 << QList<int> {2} << Configure([](ChartOptions &o) {
               o.xAs = 1;
               o.xAxis.scale = o.yAxis.scale = ChartAxisOptions::LogE;
               o.xAxis.minRangeOption = o.xAxis.maxRangeOption = ChartAxisOptions::RangeCustom;
               o.xAxis.minRangeCustomValue = 0;
               o.xAxis.maxRangeCustomValue = -1;
               o.yAxis.minRangeOption = ChartAxisOptions::RangeCustom;
               o.yAxis.minRangeCustomValue = -2;
               o.xAxis.labelFormat = o.yAxis.labelFormat = ChartAxisOptions::FormatG;
               o.xAxis.labelPrecision = o.yAxis.labelPrecision = 3;
           })
        << QStringList {"X axis minimum (0) should < X axis maximum (-1)",
               "X axis minimum should be > 0 for a logarithmic scale",
               "X axis maximum should be > 0 for a logarithmic scale",
               "Y axis minimum should be > 0 for a logarithmic scale"}
        << QStringList() << 2;
    QTest::newRow("whole-number labels on fractions")
        << "X,Y\n1,0.1\n2,0.5" << 2 << QList<int> {2} << Configure([](ChartOptions &o) {
               o.xAs = 1;
               o.yAxis.labelFormat = ChartAxisOptions::FormatI;
               o.xAxis.labelFormat = ChartAxisOptions::FormatF;
               o.xAxis.labelPrecision = 0;
           })
        << QStringList {"Label format '%.0f' may truncate X axis values.",
               "Label format '%i' may truncate Y axis values."}
        << QStringList() << 2;
}

void TestCharts::builderMessages()
{
    QFETCH(QString, table);
    QFETCH(int, type);
    QFETCH(QList<int>, ys);
    QFETCH(Configure, configure);
    QFETCH(QStringList, warnings);
    QFETCH(QStringList, information);
    QFETCH(int, points);
    ChartNode *chart = makeChart(table, type, 1, ys, configure);
    const bool drawn = run(chart);
    QCOMPARE(chart->warnings(), warnings);
    QCOMPARE(chart->information(), information);
    QCOMPARE(drawn, points >= 0);
    if (points < 0)
        return;
    ChartWidget widget;
    widget.setNode(chart);
    QVERIFY(widget.updateChart());
    int drawnPoints = 0;
    for (QtCharts::QAbstractSeries *series : widget.views().first()->chart()->series()) {
        if (auto *xy = qobject_cast<QtCharts::QXYSeries *>(series))
            drawnPoints += xy->count();
        else if (auto *area = qobject_cast<QtCharts::QAreaSeries *>(series))
            drawnPoints += area->upperSeries()->count();
        else if (auto *bars = qobject_cast<QtCharts::QAbstractBarSeries *>(series)) {
            // A bar set holds every category; count the bars that aren't 0.
            for (QtCharts::QBarSet *set : bars->barSets())
                for (int i = 0; i < set->count(); ++i)
                    drawnPoints += set->at(i) != 0 ? 1 : 0;
        } else if (auto *pie = qobject_cast<QtCharts::QPieSeries *>(series))
            drawnPoints += pie->count();
    }
    QCOMPARE(drawnPoints, points);
}

void TestCharts::refusedBuilderDrawsNothing()
{
    ChartNode *chart = makeChart("X,Y\na,1\na,2", 2, 1, {2});
    QVERIFY(!run(chart));
    QCOMPARE(chart->statusWord(), QStringLiteral("Error plotting"));
    ChartWidget widget;
    widget.setNode(chart);
    QVERIFY(!widget.updateChart());
    QVERIFY(!widget.views().first()->hasSeries());
    // Bars take repeated text as categories.
    ChartOptions options = chart->options();
    options.type = ChartOptions::VerticalBar;
    chart->setOptions(options);
    QVERIFY(run(chart));
}

void TestCharts::facetGridAndCommonRange()
{
    const Configure faceted = [](ChartOptions &o) {
        o.xAs = ChartOptions::XNumeric;
        o.layout = ChartOptions::Faceted;
        o.facetsAcross = 2;
        o.yAxis.sameRangeAllFacets = true;
        o.yAxis.niceValues = false;
    };
    ChartNode *chart = makeChart("X,A,B,C\n1,1,10,100\n2,2,20,300", 2, 1, {2, 3, 4}, faceted);
    QVERIFY(run(chart));
    ChartWidget widget;
    widget.setNode(chart);
    QVERIFY(widget.updateChart());
    QCOMPARE(widget.views().size(), 3);
    QStringList titles;
    for (ChartView *view : widget.views()) {
        double low = 0, high = 0;
        QVERIFY(view->yRange(&low, &high));
        QCOMPARE(low, 1.0);
        QCOMPARE(high, 300.0);
        titles << view->chart()->title();
    }
    // Each facet's title names its own column.
    QCOMPARE(titles, QStringList({"X vs A", "X vs B", "X vs C"}));
    // Two across: the third view starts the second row.
    auto *grid = widget.findChild<QGridLayout *>();
    QVERIFY(grid);
    int row = -1, column = -1, span = 0;
    grid->getItemPosition(grid->indexOf(widget.views().at(2)), &row, &column, &span, &span);
    QCOMPARE(row, 1);
    QCOMPARE(column, 0);

    // A custom maximum stays; the automatic minimum is shared. The facet whose data lie
    // above the maximum starts from 0 to meet it, and so the others do too.
    ChartOptions options = chart->options();
    options.yAxis.maxRangeOption = ChartAxisOptions::RangeCustom;
    options.yAxis.maxRangeCustomValue = 50;
    chart->setOptions(options);
    QVERIFY(widget.updateChart());
    for (ChartView *view : widget.views()) {
        double low = 0, high = 0;
        QVERIFY(view->yRange(&low, &high));
        QCOMPARE(low, 0.0);
        QCOMPARE(high, 50.0);
    }
    // An area is filled down to 0, and its axis shows 0.
    ChartNode *area = makeChart("X,Y\n1,10\n2,20", 4, 1, {2}, [](ChartOptions &o) { o.xAs = ChartOptions::XNumeric; });
    QVERIFY(run(area));
    ChartWidget areaWidget;
    areaWidget.setNode(area);
    QVERIFY(areaWidget.updateChart());
    double areaLow = 1, areaHigh = 0;
    QVERIFY(areaWidget.views().first()->yRange(&areaLow, &areaHigh));
    QCOMPARE(areaLow, 0.0);

    // A log axis runs between whole powers of its base, so that it has labelled ticks.
    ChartNode *log = makeChart("X,Y\n1,20\n2,500", 2, 1, {2}, [](ChartOptions &o) {
        o.xAs = ChartOptions::XNumeric;
        o.yAxis.scale = ChartAxisOptions::Log10;
    });
    QVERIFY(run(log));
    ChartWidget logWidget;
    logWidget.setNode(log);
    QVERIFY(logWidget.updateChart());
    double logLow = 0, logHigh = 0;
    QVERIFY(logWidget.views().first()->yRange(&logLow, &logHigh));
    QCOMPARE(logLow, 10.0);
    QCOMPARE(logHigh, 1000.0);

    // Without the option each facet keeps its own range.
    options.yAxis.sameRangeAllFacets = false;
    options.yAxis.maxRangeOption = ChartAxisOptions::RangeAutomatic;
    chart->setOptions(options);
    QVERIFY(widget.updateChart());
    double low = 0, high = 0;
    QVERIFY(widget.views().at(2)->yRange(&low, &high));
    QCOMPARE(low, 100.0);
}

void TestCharts::titlesAndLegend_data()
{
    QTest::addColumn<int>("type");
    QTest::addColumn<QList<int>>("ys");
    QTest::addColumn<Configure>("configure");
    QTest::addColumn<QString>("title");
    QTest::addColumn<QString>("yTitle");
    QTest::addColumn<int>("legend"); // -1 hidden, else the alignment

    QTest::newRow("default title, one series: no legend")
        << 2 << QList<int> {2} << Configure() << "Month vs Sales" << "Sales" << -1;
    QTest::newRow("Y names joined, legend below")
        << 2 << QList<int> {2, 3} << Configure() << "Month vs Sales / Costs" << "Sales / Costs" << int(Qt::AlignBottom);
    QTest::newRow("no title, custom axis title, legend right")
        << 2 << QList<int> {2, 3} << Configure([](ChartOptions &o) {
               o.titleOption = ChartAxisOptions::TitleNone;
               o.yAxis.customTitle = QStringLiteral("Money in $(Y)");
               o.legendPosition = ChartOptions::LegendRight;
           })
        << "" << "Money in Sales / Costs" << int(Qt::AlignRight);
    QTest::newRow("custom title, axis title none")
        << 5 << QList<int> {2} << Configure([](ChartOptions &o) {
               o.titleOption = ChartAxisOptions::TitleCustom;
               o.customTitle = QStringLiteral("$(Y) per $(X)!");
               o.yAxis.titleOption = ChartAxisOptions::TitleNone;
               o.legendPosition = ChartOptions::LegendTop;
           })
        << "Sales per Month!" << "" << int(Qt::AlignTop);
    QTest::newRow("pie slices are legend markers: more than five go left")
        << 7 << QList<int> {2} << Configure() << "Sales by Month" << QString() << int(Qt::AlignLeft);
}

void TestCharts::titlesAndLegend()
{
    QFETCH(int, type);
    QFETCH(QList<int>, ys);
    QFETCH(Configure, configure);
    ChartNode *chart = makeChart(
        "Month,Sales,Costs\nJan,1,2\nFeb,2,3\nMar,3,1\nApr,4,1\nMay,5,2\nJun,6,2", type, 1, ys, configure);
    QVERIFY(run(chart));
    ChartWidget widget;
    widget.setNode(chart);
    QVERIFY(widget.updateChart());
    QtCharts::QChart *drawn = widget.views().first()->chart();
    QTEST(drawn->title(), "title");
    QFETCH(QString, yTitle);
    if (!yTitle.isNull()) {
        QtCharts::QAbstractAxis *y = widget.views().first()->yAxis();
        QVERIFY(y);
        QCOMPARE(y->titleText(), yTitle);
        QCOMPARE(y->isTitleVisible(), !yTitle.isEmpty());
    }
    QFETCH(int, legend);
    QCOMPARE(drawn->legend()->isVisible(), legend >= 0);
    if (legend >= 0)
        QCOMPARE(int(drawn->legend()->alignment()), legend);
    QVERIFY(drawn->legend()->showToolTips());
}

void TestCharts::statusAndSize_data()
{
    QTest::addColumn<int>("type");
    QTest::addColumn<QList<int>>("ys");
    QTest::addColumn<bool>("writeFile");
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("word");
    QTest::addColumn<QString>("size");

    QTest::newRow("no type") << 0 << QList<int> {2} << false << "Chart" << "Error plotting" << "1 series / 3 points";
    QTest::newRow("plotted") << 3 << QList<int> {2, 3} << false << "Smooth Line chart" << "Plotted"
                             << "2 series / 6 points";
    QTest::newRow("written") << 5 << QList<int> {2} << true << "Vertical Bar chart" << "Written"
                             << "1 series / 3 points";
    QTest::newRow("error writing") << 0 << QList<int>() << true << "Chart" << "Error writing"
                                   << "0 series / 0 points";
    QTest::newRow("lost Y columns are not counted")
        << 1 << QList<int> {2, 9} << false << "Scatter chart" << "Plotted" << "1 series / 3 points";
}

void TestCharts::statusAndSize()
{
    QFETCH(int, type);
    QFETCH(QList<int>, ys);
    QFETCH(bool, writeFile);
    const QString path = m_dir.filePath(QStringLiteral("status.png"));
    ChartNode *chart = makeChart(numbers(3, "X,Y,Z"), type, 1, ys, [&](ChartOptions &o) {
        o.writeFile = writeFile;
        o.path = path;
        o.imageType = ChartOptions::Png;
    });
    QCOMPARE(chart->name(), QStringLiteral("Chart").prepend(type ? ChartOptions::typeName(type) + " " : QString())
                                .replace(QLatin1String(" Chart"), QLatin1String(" chart")));
    run(chart);
    QTEST(chart->name(), "name");
    QTEST(chart->statusWord(), "word");
    QTEST(chart->sizeText(), "size");
    QCOMPARE(chart->isReportedInRun(), writeFile);
    const QList<DetailRow> rows = chart->details();
    QStringList names;
    for (const DetailRow &row : rows)
        names << row.first;
    const QStringList own {"Connections in", "Chart data series", "Chart data points", "Chart type", "X axis data",
        "Y axis data", "Chart layout", "Write to file", "Image type", "Alias"};
    QCOMPARE(names.mid(names.size() - own.size()), own);
    QCOMPARE(rows.at(names.indexOf("Write to file")).second, writeFile ? QStringLiteral("Yes") : QStringLiteral("No"));
    QCOMPARE(rows.at(names.indexOf("Image type")).second, QStringLiteral("PNG"));
    QCOMPARE(rows.at(names.indexOf("Connections in")).second, QStringLiteral("1"));
}

void TestCharts::noInput()
{
    auto *chart = new ChartNode;
    m_scene->addNode(chart);
    chart->process(false, false);
    QCOMPARE(chart->warnings(), QStringList {"No transforms or inputs connected"});
    ChartWidget widget;
    widget.setNode(chart);
    QVERIFY(!widget.updateChart());
    QCOMPARE(widget.views().first()->overlayText(), QStringLiteral("Select a chart type"));
    // Before a run the widget says why there is nothing.
    chart->setStatus(Node::NeedsUpdating, false);
    QVERIFY(!widget.updateChart());
    QCOMPARE(widget.views().first()->overlayText(), QStringLiteral("Run to update"));
    m_scene->setAutoRun(true);
    QVERIFY(!widget.updateChart());
    QCOMPARE(widget.views().first()->overlayText(), QStringLiteral("Awaiting update"));
    chart->setStatus(Node::Updating, false);
    QVERIFY(!widget.updateChart());
    QCOMPARE(widget.views().first()->overlayText(), QStringLiteral("Processing..."));
}

void TestCharts::widgetFollowsTheNode()
{
    ChartNode *chart = makeChart("X,Y,Z\n1,1,3\n2,2,4", 0, 1, {2});
    ChartWidget widget;
    widget.setNode(chart, true);
    QTRY_COMPARE(widget.views().first()->overlayText(), QStringLiteral("Run to update"));
    run(chart);
    QTRY_COMPARE(widget.views().first()->overlayText(), QStringLiteral("Select a chart type"));
    ChartOptions options = chart->options();
    options.type = ChartOptions::Line;
    options.layout = ChartOptions::Faceted;
    chart->setOptions(options);
    QTRY_VERIFY(widget.views().first()->hasSeries());
    chart->setYColumns({chart->yColumns().first(), m_source->dataset().columnId(2)});
    QTRY_COMPARE(widget.views().size(), 2);
    // Only the run reported; the display draws added nothing.
    QCOMPARE(chart->warnings(), QStringList {"Select a chart type"});
}

void TestCharts::images_data()
{
    QTest::addColumn<int>("type");
    QTest::addColumn<int>("imageType");
    QTest::addColumn<int>("layout");
    QTest::addColumn<QString>("file");

    QTest::newRow("line PNG") << 2 << int(ChartOptions::Png) << 0 << "line.png";
    QTest::newRow("scatter JPEG") << 1 << int(ChartOptions::Jpeg) << 0 << "scatter.jpg";
    QTest::newRow("stacked bars PNG") << 5 << int(ChartOptions::Png) << 2 << "bars.png";
    QTest::newRow("horizontal bars JPEG") << 6 << int(ChartOptions::Jpeg) << 0 << "hbars.jpeg";
    QTest::newRow("area faceted PNG") << 4 << int(ChartOptions::Png) << 1 << "area.png";
    QTest::newRow("donut PNG") << 8 << int(ChartOptions::Png) << 0 << "donut.png";
}

void TestCharts::images()
{
    QFETCH(int, type);
    QFETCH(int, imageType);
    QFETCH(int, layout);
    QFETCH(QString, file);
    const QString path = m_dir.filePath(file);
    QFile::remove(path);
    ChartNode *chart = makeChart("Month,North,South\nJan,10,4\nFeb,12,6\nMar,9,8\nApr,14,5", type, 1, {2, 3},
        [&](ChartOptions &o) {
            o.writeFile = true;
            o.path = path;
            o.imageType = imageType;
            o.imageWidth = 640;
            o.imageHeight = 400;
            o.layout = layout;
            o.xAs = type <= 4 ? ChartOptions::XNumeric : ChartOptions::XAutomatic;
        });
    // Numeric X for the XY types: the months become their row numbers.
    if (type <= 4)
    {
        m_source->setDataset(testutil::toDataset("Month,North,South\n1,10,4\n2,12,6\n3,9,8\n4,14,5", true));
        m_source->assignColumnIds();
    }
    QVERIFY2(run(chart), qPrintable(chart->warnings().join('|')));
    QImageReader reader(path);
    QCOMPARE(reader.format(), imageType == ChartOptions::Png ? QByteArray("png") : QByteArray("jpeg"));
    const QImage image = reader.read();
    QCOMPARE(image.size(), QSize(640, 400));
    // Not blank: two series in two colours of the theme.
    QVERIFY2(saturatedColours(image).size() >= 2, qPrintable(QString::number(saturatedColours(image).size())));
    QCOMPARE(chart->writtenFiles(), QStringList {QDir::toNativeSeparators(QFileInfo(path).absoluteFilePath())});
    QCOMPARE(chart->lastWrittenPath(), path);
    if (layout == ChartOptions::Faceted) {
        // Side by side facets, each in its column's colour.
        const QRect half(0, 0, image.width() / 2, image.height());
        const QSet<QRgb> left = saturatedColours(image.copy(half));
        const QSet<QRgb> right = saturatedColours(image.copy(half.translated(half.width(), 0)));
        QVERIFY(!left.isEmpty() && !right.isEmpty());
        QVERIFY(!left.contains(mostCommon(image.copy(half), right)));
    }
}

void TestCharts::pdfPage()
{
    const QString path = m_dir.filePath(QStringLiteral("chart.pdf"));
    ChartNode *chart = makeChart("X,Y\na,1\nb,3", 5, 1, {2}, [&](ChartOptions &o) {
        o.writeFile = true;
        o.path = path;
        o.imageType = ChartOptions::Pdf;
        o.pdfSize = QStringLiteral("A5");
        o.pdfOrientation = ChartOptions::Landscape;
        o.pdfResolution = 300;
    });
    QVERIFY(run(chart));
    QFile file(path);
    QVERIFY(file.open(QIODevice::ReadOnly));
    const QByteArray bytes = file.readAll();
    QVERIFY(bytes.startsWith("%PDF"));
    // A5 landscape: 595 by 420 points.
    QVERIFY2(bytes.contains("/MediaBox [0 0 595") || bytes.contains("/MediaBox [0 0 596"), bytes.left(2000).constData());
    QVERIFY(bytes.size() > 2000);
}

void TestCharts::fileMessages()
{
    const QString path = m_dir.filePath(QStringLiteral("x.png"));
    QFile::remove(path);
    ChartNode *chart = makeChart("X,Y\n1,1\n2,3", 2, 1, {2}, [&](ChartOptions &o) {
        o.writeFile = true;
        o.path = path;
        o.imageType = ChartOptions::Jpeg;
        o.xAs = ChartOptions::XNumeric;
    });
    QVERIFY(run(chart));
    const QString where = QDir::toNativeSeparators(QFileInfo(path).absoluteFilePath());
    QCOMPARE(chart->warnings(), QStringList {"'x.png' extension is 'png' but image type is JPEG"});
    QCOMPARE(chart->information(), QStringList {QStringLiteral("Created file '%1'").arg(where)});
    QCOMPARE(QImageReader(path).format(), QByteArray("jpeg"));
    QVERIFY(run(chart));
    QCOMPARE(chart->information(), QStringList {QStringLiteral("Overwrote file '%1'").arg(where)});
    // Within one run of the scene, a second write of the same path is told.
    QCOMPARE(chart->warnings().last(), QStringLiteral("Overwrote '%1' 2 times").arg(where));
}

void TestCharts::unwritableFile()
{
    const QString path = m_dir.filePath(QStringLiteral("missing/folder/chart.png"));
    ChartNode *chart = makeChart("X,Y\n1,1", 1, 1, {2}, [&](ChartOptions &o) {
        o.writeFile = true;
        o.path = path;
        o.imageType = ChartOptions::Png;
    });
    QVERIFY(!run(chart));
    QCOMPARE(chart->warnings(),
        QStringList {QStringLiteral("Unable to write to file '%1'")
                         .arg(QDir::toNativeSeparators(QFileInfo(path).absoluteFilePath()))});
    QCOMPARE(chart->statusWord(), QStringLiteral("Error writing"));
    QVERIFY(chart->writtenFiles().isEmpty());

    // No valid type writes nothing.
    const QString other = m_dir.filePath(QStringLiteral("untyped.png"));
    ChartNode *untyped = makeChart("X,Y\n1,1", 0, 1, {2}, [&](ChartOptions &o) {
        o.writeFile = true;
        o.path = other;
    });
    QVERIFY(!run(untyped));
    QCOMPARE(untyped->warnings(), QStringList {"Select a chart type"});
    QVERIFY(!QFile::exists(other));
}

void TestCharts::runReportCountsChartFiles()
{
    const QString path = m_dir.filePath(QStringLiteral("{date}-report.png"));
    ChartNode *written = makeChart("X,Y\n1,1\n2,2", 2, 1, {2}, [&](ChartOptions &o) {
        o.writeFile = true;
        o.path = path;
        o.imageType = ChartOptions::Png;
    });
    QVERIFY(run(written));
    auto *shown = new ChartNode; // draws on screen only: not walked
    m_scene->addNode(shown);
    RunReport report(3);
    report.count(m_scene->nodes(), {});
    QCOMPARE(report.processedCount(RunReport::Charts), 1);
    QCOMPARE(report.chartsWritten().size(), 1);
    QVERIFY(!report.chartsWritten().first().contains(QLatin1String("{date}")));
    QVERIFY(QFile::exists(report.chartsWritten().first()));
    QStringList lines;
    for (const RunReport::Line &line : report.summaryLines(0))
        lines << line.text;
    QVERIFY(lines.contains(QStringLiteral("Charts written: 1")));
    QVERIFY(written->statusText(false).endsWith(QLatin1String("Chart: Written, 1 series / 2 points")));
}

namespace {

QStringList attributeNames(const DocumentElement &element)
{
    QStringList names;
    for (const auto &attribute : element.attributes())
        names << attribute.first;
    return names;
}

} // namespace

void TestCharts::documentRoundTrip()
{
    ChartNode *chart = makeChart(numbers(3, "A,B,C,D"), 4, 2, {4, 1}, [](ChartOptions &o) {
        o.xAs = ChartOptions::XDate;
        o.layout = ChartOptions::Stacked;
        o.facetsAcross = 4;
        o.writeFile = true;
        o.path = QStringLiteral("{in.folder}/out^100%.pdf");
        o.imageType = ChartOptions::Pdf;
        o.imageWidth = 800;
        o.imageHeight = 600;
        o.pdfSize = QStringLiteral("Tabloid");
        o.pdfOrientation = ChartOptions::Landscape;
        o.pdfResolution = 300;
        o.xAxis.show = false;
        o.xAxis.titleOption = ChartAxisOptions::TitleNone;
        o.xAxis.scale = ChartAxisOptions::Log2;
        o.xAxis.minRangeOption = ChartAxisOptions::RangeCustom;
        o.xAxis.minRangeCustomValue = 0.25;
        o.xAxis.labelDateFormat = QStringLiteral("MMM yyyy");
        o.yAxis.showGrid = false;
        o.yAxis.customTitle = QStringLiteral("Total of $(Y)");
        o.yAxis.maxRangeOption = ChartAxisOptions::RangeCustom;
        o.yAxis.maxRangeCustomValue = 1e6;
        o.yAxis.niceValues = false;
        o.yAxis.showLabels = false;
        o.yAxis.labelAngle = -45;
        o.yAxis.labelFormat = ChartAxisOptions::FormatUpperE;
        o.yAxis.labelPrecision = 5;
        o.yAxis.sameRangeAllFacets = true;
        o.theme = 6;
        o.titleOption = ChartAxisOptions::TitleCustom;
        o.customTitle = QStringLiteral("Sales, 100% ^ up");
        o.legendPosition = ChartOptions::LegendHidden;
        o.lineThickness = 3.5;
        o.opacity = 40;
        o.showLineDataPoints = true;
        o.pointSizeOption = ChartOptions::PointSizeCustom;
        o.customPointSize = 7.5;
    });
    chart->setAlias(QStringLiteral("sales chart"));
    chart->setComment(QStringLiteral("by region"));
    chart->setPos(120, -40);
    DocumentElement first(QStringLiteral("chart"));
    ChartDocument::write(*chart, first);

    auto *copy = new ChartNode;
    m_scene->addNode(copy);
    DocumentReadContext context;
    ChartDocument::read(*copy, first, context);
    QVERIFY(copy->hasPendingColumns());
    m_scene->connectNodes(m_source, copy);
    DocumentElement second(QStringLiteral("chart"));
    ChartDocument::write(*copy, second);
    copy->setStatus(Node::NeedsUpdating, false);
    copy->process(false, false);
    QVERIFY(!copy->hasPendingColumns());
    QCOMPARE(copy->yColumns(), chart->yColumns());
    QCOMPARE(copy->xColumn(), chart->xColumn());
    // The id is the node's own; everything else reads back as written.
    QVector<QPair<QString, QString>> a = first.attributes(), b = second.attributes();
    a.removeFirst();
    b.removeFirst();
    QCOMPARE(b, a);
    QCOMPARE(first.attribute("chart_y_columns"), QStringLiteral("4") + QChar(0x1F) + QStringLiteral("1"));
    QCOMPARE(first.text("chart_custom_title"), QStringLiteral("Sales, 100% ^ up"));
}

void TestCharts::documentOrderAndDefaults()
{
    ChartNode *chart = makeChart(numbers(2), 1, 1, {2});
    chart->setAlias(QStringLiteral("a"));
    DocumentElement element(QStringLiteral("chart"));
    ChartDocument::write(*chart, element);
    QStringList axis = {"chart_show_%1_axis", "chart_show_%1_axis_grid", "chart_%1_axis_title_option",
        "chart_%1_axis_custom_title", "chart_%1_axis_scale", "chart_%1_axis_min_range_option",
        "chart_%1_axis_min_range_custom_value", "chart_%1_axis_max_range_option",
        "chart_%1_axis_max_range_custom_value", "chart_%1_axis_nice_values", "chart_%1_axis_show_labels",
        "chart_%1_axis_label_angle", "chart_%1_axis_label_format", "chart_%1_axis_label_precision"};
    QStringList expected = {"id", "pos_v12", "chart_type", "chart_x_column", "chart_x_as", "chart_y_columns",
        "chart_layout", "chart_facets_across", "write_file", "chart_image_type", "chart_image_width",
        "chart_image_height", "chart_pdf_size", "chart_pdf_orientation", "alias"};
    for (const QString &key : axis)
        expected << key.arg("x");
    expected << "chart_x_axis_label_date_format";
    for (const QString &key : axis)
        expected << key.arg("y");
    expected << "chart_y_axis_same_range_all_facets"
             << "chart_theme"
             << "chart_title_option"
             << "chart_custom_title"
             << "chart_legend_position"
             << "chart_line_thickness"
             << "chart_opacity"
             << "chart_show_Line_data_points"
             << "chart_point_size_option"
             << "chart_custom_points_size"
             << "chart_pdf_resolution";
    QCOMPARE(attributeNames(element), expected);

    // An element with nothing but an id reads as a new chart.
    auto *bare = new ChartNode;
    DocumentElement empty(QStringLiteral("chart"));
    empty.setInt(QStringLiteral("id"), 9);
    DocumentReadContext context;
    ChartDocument::read(*bare, empty, context);
    const ChartOptions &o = bare->options();
    QCOMPARE(o.type, 0);
    QCOMPARE(o.facetsAcross, 2);
    QCOMPARE(o.imageWidth, 1024);
    QCOMPARE(o.imageHeight, 1024);
    QCOMPARE(o.imageType, int(ChartOptions::Jpeg));
    QCOMPARE(o.pdfResolution, 150);
    QCOMPARE(o.pdfSize, QStringLiteral("Letter")); // the locale measures in inches
    QCOMPARE(o.xAxis.titleOption, int(ChartAxisOptions::TitleCustom));
    QCOMPARE(o.yAxis.titleOption, int(ChartAxisOptions::TitleCustom));
    QCOMPARE(o.xAxis.customTitle, QStringLiteral("$(X)"));
    QCOMPARE(o.yAxis.customTitle, QStringLiteral("$(Y)"));
    QCOMPARE(o.xAxis.labelPrecision, 2);
    QCOMPARE(o.yAxis.labelPrecision, 2);
    QCOMPARE(o.opacity, 100);
    QCOMPARE(o.customTitle, QStringLiteral("$(X) vs $(Y)"));
    QCOMPARE(o.lineThickness, 2.0);
    QCOMPARE(o.customPointSize, 15.0);
    QCOMPARE(o.yAxis.sameRangeAllFacets, false);
    QCOMPARE(bare->name(), QStringLiteral("Chart"));
    delete bare;
}

void TestCharts::documentNonsense()
{
    DocumentElement element(QStringLiteral("chart"));
    element.setAttribute(QStringLiteral("chart_type"), QStringLiteral("99"));
    element.setAttribute(QStringLiteral("chart_layout"), QStringLiteral("-1"));
    element.setAttribute(QStringLiteral("chart_facets_across"), QStringLiteral("40"));
    element.setAttribute(QStringLiteral("chart_image_width"), QStringLiteral("wide"));
    element.setAttribute(QStringLiteral("chart_pdf_size"), QStringLiteral("B9"));
    element.setAttribute(QStringLiteral("chart_line_thickness"), QStringLiteral("nan"));
    element.setAttribute(QStringLiteral("chart_opacity"), QStringLiteral("250"));
    element.setAttribute(QStringLiteral("chart_x_column"), QStringLiteral("-3"));
    element.setAttribute(QStringLiteral("chart_y_columns"), QStringLiteral("2^x^0^5"));
    element.setAttribute(QStringLiteral("chart_y_axis_label_angle"), QStringLiteral("400"));
    auto *chart = makeChart(numbers(2, "A,B,C,D,E"), 0, 0, {});
    DocumentReadContext context;
    ChartDocument::read(*chart, element, context);
    const ChartOptions &o = chart->options();
    QCOMPARE(o.type, 0);
    QCOMPARE(o.layout, 0);
    QCOMPARE(o.facetsAcross, 2);
    QCOMPARE(o.imageWidth, 1024);
    QCOMPARE(o.pdfSize, ChartOptions::systemPdfSize());
    QCOMPARE(o.lineThickness, 2.0);
    QCOMPARE(o.opacity, 100);
    QCOMPARE(o.yAxis.labelAngle, 90);
    // Positions outside the table resolve to nothing; the valid ones to their columns.
    QVERIFY(chart->xColumn().isUnset());
    QCOMPARE(chart->yColumns().size(), 2);
    QCOMPARE(chart->yColumnIndexes().size(), 0); // the chart hasn't run: its own table is empty
    run(chart);
    QCOMPARE(chart->yColumnIndexes(), QList<DataColumnIndex>({DataColumnIndex(1), DataColumnIndex(4)}));
}

QTEST_MAIN(TestCharts)
#include "tst_charts.moc"
