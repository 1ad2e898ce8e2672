#include "chartview.h"

#include "charts/chartnode.h"
#include "core/values.h"

#include <QCoreApplication>
#include <QDateTime>
#include <QHash>
#include <QPainter>
#include <QtCharts/QAreaSeries>
#include <QtCharts/QBarCategoryAxis>
#include <QtCharts/QBarSeries>
#include <QtCharts/QBarSet>
#include <QtCharts/QChart>
#include <QtCharts/QDateTimeAxis>
#include <QtCharts/QHorizontalBarSeries>
#include <QtCharts/QHorizontalStackedBarSeries>
#include <QtCharts/QLegend>
#include <QtCharts/QLegendMarker>
#include <QtCharts/QLineSeries>
#include <QtCharts/QLogValueAxis>
#include <QtCharts/QPieSeries>
#include <QtCharts/QPieSlice>
#include <QtCharts/QScatterSeries>
#include <QtCharts/QSplineSeries>
#include <QtCharts/QStackedBarSeries>
#include <QtCharts/QValueAxis>

#include <cmath>
#include <limits>

using namespace QtCharts;

namespace {

QString tr(const char *text)
{
    return QCoreApplication::translate("ChartView", text);
}

// Messages of one kind of cell failure: the first five are told, the rest counted.
class CountedMessages
{
public:
    void add(const QString &text)
    {
        if (m_told.size() < 5)
            m_told << text;
        else
            ++m_more;
    }
    void flush(QStringList &into) const
    {
        into << m_told;
        if (m_more > 0)
            into << tr("+ %1 %2").arg(m_more).arg(m_more == 1 ? tr("other") : tr("others"));
    }

private:
    QStringList m_told;
    int m_more = 0;
};

QChart::ChartTheme themeFor(int theme)
{
    switch (theme) {
    case 1:
        return QChart::ChartThemeBlueNcs;
    case 2:
        return QChart::ChartThemeBlueIcy;
    case 3:
        return QChart::ChartThemeBlueCerulean;
    case 4:
        return QChart::ChartThemeQt;
    case 5:
        return QChart::ChartThemeBrownSand;
    case 6:
        return QChart::ChartThemeDark;
    default:
        return QChart::ChartThemeLight;
    }
}

QString formatTick(const QString &pattern, double value)
{
    if (pattern == QLatin1String("%i"))
        return QString::number(qint64(value));
    return QString::asprintf(pattern.toLatin1().constData(), value);
}

// True when two neighbouring ticks print alike, or a whole-number format drops a fraction.
bool truncatesTicks(const QString &pattern, const QList<double> &ticks)
{
    for (int i = 0; i < ticks.size(); ++i) {
        if (pattern == QLatin1String("%i") && std::abs(ticks.at(i) - std::round(ticks.at(i))) > 1e-9)
            return true;
        if (i > 0 && formatTick(pattern, ticks.at(i)) == formatTick(pattern, ticks.at(i - 1)))
            return true;
    }
    return false;
}

} // namespace

// Fills a view's chart from a chart item: the series of its type, its axes and their
// options, title and legend. One builder serves one draw.
class ChartBuilder
{
public:
    ChartBuilder(ChartView &view, const ChartNode &node, int facet, ChartMessages &messages)
        : m_view(view)
        , m_node(node)
        , m_options(node.options())
        , m_data(node.dataset())
        , m_messages(messages)
    {
        m_x = node.xColumnIndex();
        m_facet = facet;
        const QList<DataColumnIndex> all = node.yColumnIndexes();
        if (facet < 0)
            m_y = all;
        else if (facet < all.size())
            m_y = {all.at(facet)};
    }

    bool build()
    {
        m_chart = new QChart;
        m_chart->setLocale(QLocale());
        // The theme comes first so that the series styled below keep their pens.
        m_chart->setTheme(themeFor(m_options.theme));
        m_chart->setBackgroundRoundness(0);
        bool drawn = true;
        const int type = m_options.type;
        if (ChartOptions::isXYType(type))
            drawn = buildXY();
        else if (ChartOptions::isBarType(type))
            drawn = buildBars();
        else if (ChartOptions::isPieType(type))
            buildPies();
        m_numberFailures.flush(m_messages.warnings);
        m_dateFailures.flush(m_messages.warnings);
        m_logFailures.flush(m_messages.warnings);
        if (!drawn) {
            delete m_chart;
            m_view.clearChart();
            return false;
        }
        setTitle();
        setLegend();
        QChart *old = m_view.chart();
        m_view.m_xAxis = m_xAxis;
        m_view.m_yAxis = m_yAxis;
        m_view.setChart(m_chart);
        delete old;
        return true;
    }

private:
    QString columnName(DataColumnIndex column) const { return m_data.headerText(column); }
    QString xName() const { return m_x.isValid() ? columnName(m_x) : QString(); }
    QString yNames() const
    {
        QStringList names;
        for (const DataColumnIndex column : m_y)
            names << columnName(column);
        return names.join(QStringLiteral(" / "));
    }
    QString substitute(QString text) const
    {
        return text.replace(QLatin1String("$(X)"), xName()).replace(QLatin1String("$(Y)"), yNames());
    }

    double readNumber(const QString &text, bool *ok) const { return toNumber(text, false, true, ok); }

    void numberFailure(const QString &text, DataColumnIndex column, int row)
    {
        m_numberFailures.add(tr("'%1' is not a valid number in column '%2' at row %3")
                                 .arg(text, columnName(column), formatCount(row + 1)));
    }
    void logFailure(const QString &text, DataColumnIndex column, int row)
    {
        m_logFailures.add(tr("'%1' is not a valid number for a logarithmic axis in column '%2' at row %3 (must be > 0)")
                              .arg(text, columnName(column), formatCount(row + 1)));
    }

    // A Y cell as a number; false (told) when it isn't one or can't go on a log axis.
    // Empty cells are gaps, not failures.
    bool readY(int row, DataColumnIndex column, bool logAxis, double *value)
    {
        const QString &text = m_data.cell(row, column);
        if (text.trimmed().isEmpty())
            return false;
        bool ok = false;
        *value = readNumber(text, &ok);
        if (!ok) {
            numberFailure(text, column, row);
            return false;
        }
        if (logAxis && *value <= 0) {
            logFailure(text, column, row);
            return false;
        }
        return true;
    }

    int resolveXKind()
    {
        int kind = m_options.xAs;
        if (kind == ChartOptions::XAutomatic) {
            QString format;
            if (m_data.isNumericColumn(m_x, true, 100))
                kind = ChartOptions::XNumeric;
            else if (m_data.guessDateFormat(m_x, dateFormats(), &format, 50))
                kind = ChartOptions::XDate;
            else
                kind = ChartOptions::XText;
            m_messages.information << tr("X axis interpreted as %1").arg(ChartOptions::xAsName(kind));
        }
        return kind;
    }

    // Refuses text X values that repeat, telling up to five of them.
    bool checkDuplicates()
    {
        QStringList order;
        QHash<QString, int> counts;
        for (int row = 0; row < m_data.rowCount(); ++row) {
            const QString &text = m_data.cell(row, m_x);
            if (!counts.contains(text))
                order << text;
            ++counts[text];
        }
        QStringList lines;
        int more = 0;
        for (const QString &text : qAsConst(order)) {
            if (counts.value(text) < 2)
                continue;
            if (lines.size() < 5)
                lines << tr("X axis value '%1' occurs %2 times").arg(text).arg(counts.value(text));
            else
                ++more;
        }
        if (lines.isEmpty())
            return true;
        QString warning = tr("Duplicate values are not allowed for an X axis of type text in %1 charts\n"
                             "You can use a 'Count' transform to sum duplicates.")
                              .arg(ChartOptions::typeName(m_options.type));
        warning += QLatin1Char('\n') + lines.join(QLatin1Char('\n'));
        if (more > 0)
            warning += QLatin1Char('\n') + tr("+ %1 more").arg(more);
        m_messages.warnings << warning;
        return false;
    }

    bool buildXY()
    {
        const int type = m_options.type;
        const int kind = resolveXKind();
        if (kind == ChartOptions::XText && !checkDuplicates())
            return false;
        QString dateFormat;
        if (kind == ChartOptions::XDate) {
            m_data.guessDateFormat(m_x, dateFormats(), &dateFormat, 50);
            if (dateFormat.isEmpty()) {
                m_messages.warnings << tr("Could not infer a date format for column '%1'").arg(xName());
            } else {
                m_messages.information
                    << tr("'%1' inferred as date format for column '%2'").arg(dateFormat, xName());
            }
        }
        const bool xLog = kind == ChartOptions::XNumeric && m_options.xAxis.isLog();
        const bool yLog = m_options.yAxis.isLog();
        const bool stacked = type == ChartOptions::Area && m_options.layout == ChartOptions::Stacked;
        const int rows = m_data.rowCount();

        // X values once for every series: NaN where the cell can't be placed.
        QVector<double> xs(rows, std::numeric_limits<double>::quiet_NaN());
        bool someDatesFailed = false;
        for (int row = 0; row < rows; ++row) {
            const QString &text = m_data.cell(row, m_x);
            if (kind == ChartOptions::XText) {
                xs[row] = row;
            } else if (kind == ChartOptions::XDate) {
                if (text.trimmed().isEmpty())
                    continue;
                const QDate date = dateFormat.isEmpty() ? QDate() : toDate(text, dateFormat);
                if (!date.isValid()) {
                    someDatesFailed = true;
                    m_dateFailures.add(tr("'%1' is not a valid date in column '%2' at row %3")
                                           .arg(text, xName(), formatCount(row + 1)));
                    continue;
                }
                xs[row] = double(QDateTime(date, QTime(0, 0)).toMSecsSinceEpoch());
            } else {
                if (text.trimmed().isEmpty())
                    continue;
                bool ok = false;
                const double value = readNumber(text, &ok);
                if (!ok)
                    numberFailure(text, m_x, row);
                else if (xLog && value <= 0)
                    logFailure(text, m_x, row);
                else
                    xs[row] = value;
            }
        }
        if (someDatesFailed && !dateFormat.isEmpty())
            m_messages.warnings << tr("Some values in column '%1' are not recognized as dates").arg(xName());

        QVector<double> stackBase(rows, 0.0);
        QList<QAbstractSeries *> series;
        int negatives = 0;
        double xMin = std::numeric_limits<double>::max(), xMax = -xMin;
        double yMin = xMin, yMax = -xMin;
        for (const DataColumnIndex column : qAsConst(m_y)) {
            QXYSeries *upper = nullptr;
            QLineSeries *lower = nullptr;
            if (type == ChartOptions::Scatter)
                upper = new QScatterSeries;
            else if (type == ChartOptions::SmoothLine)
                upper = new QSplineSeries;
            else
                upper = new QLineSeries;
            if (stacked)
                lower = new QLineSeries;
            bool rises = false;
            bool falls = false;
            double previous = std::numeric_limits<double>::quiet_NaN();
            for (int row = 0; row < rows; ++row) {
                const double x = xs.at(row);
                double y = 0;
                if (std::isnan(x) || !readY(row, column, yLog, &y))
                    continue;
                if (y < 0)
                    ++negatives;
                double base = 0;
                if (stacked) {
                    base = stackBase.at(row);
                    y += base;
                    stackBase[row] = y;
                    lower->append(x, base);
                }
                upper->append(x, y);
                if (!std::isnan(previous)) {
                    rises = rises || x > previous;
                    falls = falls || x < previous;
                }
                previous = x;
                xMin = qMin(xMin, x);
                xMax = qMax(xMax, x);
                yMin = qMin(yMin, qMin(y, stacked ? base : y));
                yMax = qMax(yMax, y);
            }
            const QString name = columnName(column);
            if (upper->count() == 0) {
                m_messages.information << tr("No data points for column '%1'").arg(name);
                delete upper;
                delete lower;
                continue;
            }
            if (upper->count() == 1 && type != ChartOptions::Scatter)
                m_messages.information << tr("1 data point for column '%1'").arg(name);
            if (type != ChartOptions::Scatter && kind != ChartOptions::XText && rises && falls) {
                m_messages.warnings << (type == ChartOptions::Area
                        ? tr("X values are not ordered in column '%1', use a 'Sort' transform to sort them").arg(name)
                        : tr("X values are not ordered in column '%1, use a 'Sort' transform to sort them").arg(name));
            }
            QAbstractSeries *added = upper;
            if (type == ChartOptions::Area) {
                auto *area = new QAreaSeries(static_cast<QLineSeries *>(upper), lower);
                upper->setParent(area);
                if (lower)
                    lower->setParent(area);
                added = area;
            }
            added->setName(name);
            m_chart->addSeries(added);
            styleXY(added);
            series << added;
        }
        if (type == ChartOptions::Area) {
            if (series.size() > 1 && m_options.layout == ChartOptions::Grouped && m_options.opacity >= 100) {
                m_messages.information
                    << tr("Data may be obscured in %1 %2 charts - try %3 or %4 instead or set the series opacity to < 100%")
                           .arg(ChartOptions::layoutName(ChartOptions::Grouped).toLower(),
                               ChartOptions::typeName(type).toLower(),
                               ChartOptions::layoutName(ChartOptions::Faceted).toLower(),
                               ChartOptions::layoutName(ChartOptions::Stacked).toLower());
            }
            warnNegatives(negatives);
        }
        if (series.isEmpty())
            return true;

        // Axes by the kind of X, then the value axis.
        if (kind == ChartOptions::XText) {
            auto *axis = new QBarCategoryAxis;
            QStringList categories;
            for (int row = 0; row < rows; ++row)
                categories << m_data.cell(row, m_x);
            axis->append(categories);
            m_xAxis = axis;
        } else if (kind == ChartOptions::XDate) {
            auto *axis = new QDateTimeAxis;
            axis->setFormat(m_options.xAxis.labelDateFormat);
            m_xAxis = axis;
        } else {
            m_xAxis = valueAxis(m_options.xAxis);
        }
        m_yAxis = valueAxis(m_options.yAxis);
        m_chart->addAxis(m_xAxis, Qt::AlignBottom);
        m_chart->addAxis(m_yAxis, Qt::AlignLeft);
        for (QAbstractSeries *one : qAsConst(series)) {
            one->attachAxis(m_xAxis);
            one->attachAxis(m_yAxis);
        }
        if (kind == ChartOptions::XDate) {
            auto *axis = static_cast<QDateTimeAxis *>(m_xAxis);
            const qint64 low = qint64(xMin), high = qint64(xMax);
            axis->setRange(QDateTime::fromMSecsSinceEpoch(low),
                QDateTime::fromMSecsSinceEpoch(high > low ? high : low + 86400000));
        } else if (kind == ChartOptions::XNumeric) {
            setAutomaticRange(m_xAxis, xMin, xMax, false);
        }
        // An area is filled down to 0, so its axis shows 0.
        setAutomaticRange(m_yAxis, yMin, yMax, type == ChartOptions::Area);
        applyAxisOptions(m_xAxis, m_options.xAxis, true, substituteAxisTitle(m_options.xAxis, true));
        applyAxisOptions(m_yAxis, m_options.yAxis, false, substituteAxisTitle(m_options.yAxis, false));
        validateAxis(m_xAxis, m_options.xAxis, true);
        validateAxis(m_yAxis, m_options.yAxis, false);
        return true;
    }

    // A facet's one series takes the theme's colour for its column, as it has when grouped,
    // so that the facets tell their columns apart.
    QColor facetColour() const
    {
        if (m_facet < 1)
            return QColor();
        QChart sample;
        sample.setTheme(themeFor(m_options.theme));
        QLineSeries *last = nullptr;
        for (int i = 0; i <= m_facet; ++i) {
            last = new QLineSeries;
            sample.addSeries(last);
        }
        return last->color();
    }

    void styleXY(QAbstractSeries *series)
    {
        series->setOpacity(qBound(0, m_options.opacity, 100) / 100.0);
        const QColor colour = facetColour();
        if (colour.isValid()) {
            if (auto *xy = qobject_cast<QXYSeries *>(series))
                xy->setColor(colour);
            else if (auto *area = qobject_cast<QAreaSeries *>(series))
                area->setColor(colour);
        }
        if (auto *scatter = qobject_cast<QScatterSeries *>(series)) {
            scatter->setMarkerShape(QScatterSeries::MarkerShapeCircle);
            scatter->setMarkerSize(pointSize());
            scatter->setBorderColor(Qt::transparent);
            return;
        }
        if (auto *line = qobject_cast<QXYSeries *>(series)) {
            QPen pen = line->pen();
            pen.setWidthF(m_options.lineThickness);
            line->setPen(pen);
            line->setPointsVisible(m_options.showLineDataPoints);
            return;
        }
        if (auto *area = qobject_cast<QAreaSeries *>(series)) {
            QPen pen = area->pen();
            pen.setWidthF(m_options.lineThickness);
            area->setPen(pen);
            area->setPointsVisible(m_options.showLineDataPoints);
        }
    }

    double pointSize() const
    {
        if (m_options.pointSizeOption == ChartOptions::PointSizeCustom)
            return qBound(1.0, m_options.customPointSize, 100.0);
        const int points = m_data.rowCount();
        return points <= 100 ? 12.0 : points <= 1000 ? 8.0 : 5.0;
    }

    void warnNegatives(int negatives)
    {
        if (negatives <= 0)
            return;
        m_messages.warnings << tr("%1 charts are not a good choice for negative values (%2 negative %3)")
                                   .arg(ChartOptions::typeName(m_options.type), formatCount(negatives),
                                       negatives == 1 ? tr("value") : tr("values "));
    }

    QAbstractAxis *valueAxis(const ChartAxisOptions &options)
    {
        if (options.isLog()) {
            auto *axis = new QLogValueAxis;
            axis->setBase(options.logBase());
            axis->setMinorTickCount(-1);
            return axis;
        }
        return new QValueAxis;
    }

    // The data range, widened a little when it is a single value; bars start from 0.
    void setAutomaticRange(QAbstractAxis *axis, double low, double high, bool fromZero)
    {
        if (low > high)
            return;
        if (auto *log = qobject_cast<QLogValueAxis *>(axis)) {
            // Whole powers of the base at both ends, so that the axis has labelled ticks.
            const double base = log->base();
            const double first = std::floor(std::log(low) / std::log(base) + 1e-9);
            double last = std::ceil(std::log(high) / std::log(base) - 1e-9);
            if (last <= first)
                last = first + 1;
            log->setRange(std::pow(base, first), std::pow(base, last));
            return;
        }
        if (fromZero) {
            low = qMin(low, 0.0);
            high = qMax(high, 0.0);
        }
        if (high <= low) {
            const double pad = low == 0 ? 1.0 : std::abs(low) * 0.1;
            low -= pad;
            high += pad;
        }
        static_cast<QValueAxis *>(axis)->setRange(low, high);
    }

    QString substituteAxisTitle(const ChartAxisOptions &options, bool isX) const
    {
        switch (options.titleOption) {
        case ChartAxisOptions::TitleNone:
            return QString();
        case ChartAxisOptions::TitleCustom:
            return substitute(options.customTitle);
        default:
            return substitute(isX ? QStringLiteral("$(X)") : QStringLiteral("$(Y)"));
        }
    }

    void applyAxisOptions(QAbstractAxis *axis, const ChartAxisOptions &options, bool isX, const QString &title)
    {
        Q_UNUSED(isX)
        if (!axis)
            return;
        axis->setLineVisible(options.show);
        axis->setLabelsVisible(options.show && options.showLabels);
        axis->setGridLineVisible(options.showGrid);
        axis->setTitleText(title);
        axis->setTitleVisible(options.show && !title.isEmpty());
        axis->setLabelsAngle(qBound(-90, options.labelAngle, 90));
        const bool customMin = options.minRangeOption == ChartAxisOptions::RangeCustom;
        const bool customMax = options.maxRangeOption == ChartAxisOptions::RangeCustom;
        const double low = options.minRangeCustomValue;
        const double high = options.maxRangeCustomValue;
        // A custom pair that is the wrong way round is told, not applied.
        const bool pairValid = !(customMin && customMax && low >= high);
        if (auto *value = qobject_cast<QValueAxis *>(axis)) {
            value->setLabelFormat(options.labelPattern());
            if (options.niceValues)
                value->applyNiceNumbers();
            if (pairValid) {
                // A single custom bound beyond the data takes the range with it.
                if (customMin && customMax)
                    value->setRange(low, high);
                else if (customMin)
                    value->setRange(low, low < value->max() ? value->max() : low + qMax(1.0, std::abs(low)));
                else if (customMax)
                    value->setRange(high > value->min() ? value->min() : high - qMax(1.0, std::abs(high)), high);
            }
        } else if (auto *log = qobject_cast<QLogValueAxis *>(axis)) {
            log->setLabelFormat(options.labelPattern());
            if (pairValid) {
                if (customMin && low > 0 && low < log->max())
                    log->setMin(low);
                if (customMax && high > 0 && high > log->min())
                    log->setMax(high);
            }
        } else if (auto *date = qobject_cast<QDateTimeAxis *>(axis)) {
            date->setFormat(options.labelDateFormat);
        }
    }

    void validateAxis(QAbstractAxis *axis, const ChartAxisOptions &options, bool isX)
    {
        auto *value = qobject_cast<QValueAxis *>(axis);
        auto *log = qobject_cast<QLogValueAxis *>(axis);
        if (!value && !log)
            return;
        const bool customMin = options.minRangeOption == ChartAxisOptions::RangeCustom;
        const bool customMax = options.maxRangeOption == ChartAxisOptions::RangeCustom;
        const QString low = renderNumber(options.minRangeCustomValue);
        const QString high = renderNumber(options.maxRangeCustomValue);
        if (customMin && customMax && options.minRangeCustomValue >= options.maxRangeCustomValue) {
            if (isX && log)
                m_messages.warnings << tr("X axis minimum (%1) should < X axis maximum (%2)").arg(low, high);
            else if (isX)
                m_messages.warnings << tr("X axis minimum (%1) should be < X axis maximum (%2)").arg(low, high);
            else
                m_messages.warnings << tr("Y axis minimum (%1) should be < Y axis maximum (%2)").arg(low, high);
        }
        if (log) {
            if (customMin && options.minRangeCustomValue <= 0) {
                m_messages.warnings << (isX ? tr("X axis minimum should be > 0 for a logarithmic scale")
                                            : tr("Y axis minimum should be > 0 for a logarithmic scale"));
            }
            if (customMax && options.maxRangeCustomValue <= 0) {
                m_messages.warnings << (isX ? tr("X axis maximum should be > 0 for a logarithmic scale")
                                            : tr("Y axis maximum should be > 0 for a logarithmic scale"));
            }
        }
        QList<double> ticks;
        if (value) {
            const int count = qMax(2, value->tickCount());
            for (int i = 0; i < count; ++i)
                ticks << value->min() + (value->max() - value->min()) * i / (count - 1);
        } else {
            const double base = log->base();
            if (log->min() > 0 && log->max() > log->min()) {
                const int first = int(std::ceil(std::log(log->min()) / std::log(base) - 1e-9));
                const int last = int(std::floor(std::log(log->max()) / std::log(base) + 1e-9));
                for (int k = first; k <= last && ticks.size() < 64; ++k)
                    ticks << std::pow(base, k);
            }
        }
        const QString pattern = options.labelPattern();
        if (options.showLabels && truncatesTicks(pattern, ticks)) {
            m_messages.warnings << (isX ? tr("Label format '%1' may truncate X axis values.").arg(pattern)
                                        : tr("Label format '%1' may truncate Y axis values.").arg(pattern));
        }
    }

    QString xText(int row) const
    {
        const QString &text = m_data.cell(row, m_x);
        return text.isEmpty() ? tr("(empty)") : text;
    }

    // X texts in order of first appearance, and the category of each row.
    QStringList categories(QVector<int> *rowCategory) const
    {
        QStringList order;
        QHash<QString, int> index;
        rowCategory->resize(m_data.rowCount());
        for (int row = 0; row < m_data.rowCount(); ++row) {
            const QString text = xText(row);
            auto found = index.constFind(text);
            if (found == index.constEnd())
                found = index.insert(text, order.size()), order << text;
            (*rowCategory)[row] = found.value();
        }
        return order;
    }

    bool buildBars()
    {
        const bool vertical = m_options.type == ChartOptions::VerticalBar;
        const bool stacked = m_options.layout == ChartOptions::Stacked;
        const bool yLog = m_options.yAxis.isLog();
        QVector<int> rowCategory;
        const QStringList names = categories(&rowCategory);
        QAbstractBarSeries *series = nullptr;
        if (vertical)
            series = stacked ? static_cast<QAbstractBarSeries *>(new QStackedBarSeries) : new QBarSeries;
        else
            series = stacked ? static_cast<QAbstractBarSeries *>(new QHorizontalStackedBarSeries)
                             : new QHorizontalBarSeries;
        QVector<double> positive(names.size(), 0.0), negative(names.size(), 0.0);
        double low = std::numeric_limits<double>::max(), high = -low;
        bool summed = false;
        for (const DataColumnIndex column : qAsConst(m_y)) {
            QVector<double> sums(names.size(), 0.0);
            QVector<int> counts(names.size(), 0);
            int points = 0;
            for (int row = 0; row < m_data.rowCount(); ++row) {
                double y = 0;
                if (!readY(row, column, yLog, &y))
                    continue;
                const int category = rowCategory.at(row);
                sums[category] += y;
                if (++counts[category] > 1)
                    summed = true;
                ++points;
            }
            const QString name = columnName(column);
            if (points == 0) {
                m_messages.information << tr("No data points for column '%1'").arg(name);
                continue;
            }
            auto *set = new QBarSet(name);
            for (int category = 0; category < names.size(); ++category) {
                const double value = sums.at(category);
                *set << value;
                if (counts.at(category) == 0)
                    continue;
                if (stacked) {
                    (value < 0 ? negative : positive)[category] += value;
                } else {
                    low = qMin(low, value);
                    high = qMax(high, value);
                }
            }
            series->append(set);
        }
        if (stacked) {
            for (int category = 0; category < names.size(); ++category) {
                low = qMin(low, qMin(negative.at(category), positive.at(category)));
                high = qMax(high, qMax(negative.at(category), positive.at(category)));
            }
        }
        if (summed)
            m_messages.information << tr("Y values with the same X value are summed");
        if (series->count() == 0) {
            delete series;
            return true;
        }
        series->setOpacity(qBound(0, m_options.opacity, 100) / 100.0);
        m_chart->addSeries(series);
        const QColor colour = facetColour();
        if (colour.isValid() && series->count() == 1)
            series->barSets().first()->setColor(colour);
        auto *categoryAxis = new QBarCategoryAxis;
        categoryAxis->append(names);
        m_xAxis = categoryAxis;
        m_yAxis = valueAxis(m_options.yAxis);
        m_chart->addAxis(m_xAxis, vertical ? Qt::AlignBottom : Qt::AlignLeft);
        m_chart->addAxis(m_yAxis, vertical ? Qt::AlignLeft : Qt::AlignBottom);
        series->attachAxis(m_xAxis);
        series->attachAxis(m_yAxis);
        setAutomaticRange(m_yAxis, low, high, true);
        applyAxisOptions(m_xAxis, m_options.xAxis, true, substituteAxisTitle(m_options.xAxis, true));
        applyAxisOptions(m_yAxis, m_options.yAxis, false, substituteAxisTitle(m_options.yAxis, false));
        validateAxis(m_yAxis, m_options.yAxis, false);
        return true;
    }

    void buildPies()
    {
        const bool donut = m_options.type == ChartOptions::Donut;
        QVector<int> rowCategory;
        const QStringList names = categories(&rowCategory);
        const int rings = m_y.size();
        const double outer = 0.8;
        const double hole = donut ? 0.3 : 0.0;
        const double step = rings > 0 ? (outer - hole) / rings : 0;
        int negatives = 0;
        bool summed = false;
        int ring = 0;
        for (const DataColumnIndex column : qAsConst(m_y)) {
            QVector<double> sums(names.size(), 0.0);
            QVector<int> counts(names.size(), 0);
            for (int row = 0; row < m_data.rowCount(); ++row) {
                double y = 0;
                if (!readY(row, column, false, &y))
                    continue;
                if (y < 0)
                    ++negatives;
                const int category = rowCategory.at(row);
                sums[category] += y;
                if (++counts[category] > 1)
                    summed = true;
            }
            const QString name = columnName(column);
            auto *series = new QPieSeries;
            series->setName(name);
            for (int category = 0; category < names.size(); ++category) {
                // A slice can't be negative: it is counted and told, not drawn.
                if (counts.at(category) == 0 || sums.at(category) < 0)
                    continue;
                const QString label = rings > 1 ? tr("%1 / %2").arg(name, names.at(category)) : names.at(category);
                series->append(label, sums.at(category));
            }
            if (series->count() == 0) {
                m_messages.information << tr("No data points for column '%1'").arg(name);
                delete series;
                continue;
            }
            if (series->count() == 1)
                m_messages.information << tr("1 data point for column '%1'").arg(name);
            series->setPieSize(outer - ring * step);
            series->setHoleSize(qMax(0.0, outer - (ring + 1) * step));
            series->setOpacity(qBound(0, m_options.opacity, 100) / 100.0);
            m_chart->addSeries(series);
            if (rings == 1 && series->count() <= 20) {
                for (QPieSlice *slice : series->slices())
                    slice->setLabelVisible(true);
            }
            ++ring;
        }
        if (summed)
            m_messages.information << tr("Y values with the same X value are summed");
        warnNegatives(negatives);
    }

    void setTitle()
    {
        QString title;
        if (m_options.titleOption == ChartAxisOptions::TitleCustom)
            title = substitute(m_options.customTitle);
        else if (m_options.titleOption == ChartAxisOptions::TitleDefault)
            title = substitute(ChartOptions::isPieType(m_options.type) ? QStringLiteral("$(Y) by $(X)")
                                                                        : QStringLiteral("$(X) vs $(Y)"));
        m_chart->setTitle(title);
        QFont font = m_chart->titleFont();
        font.setPointSizeF(font.pointSizeF() * 1.3);
        font.setBold(true);
        m_chart->setTitleFont(font);
    }

    void setLegend()
    {
        QLegend *legend = m_chart->legend();
        legend->setShowToolTips(true);
        int position = m_options.legendPosition;
        if (position == ChartOptions::LegendAutomatic) {
            const int markers = legend->markers().size();
            position = markers <= 1 ? ChartOptions::LegendHidden
                : markers <= 5      ? ChartOptions::LegendBottom
                                    : ChartOptions::LegendLeft;
        }
        switch (position) {
        case ChartOptions::LegendBottom:
            legend->setAlignment(Qt::AlignBottom);
            break;
        case ChartOptions::LegendLeft:
            legend->setAlignment(Qt::AlignLeft);
            break;
        case ChartOptions::LegendTop:
            legend->setAlignment(Qt::AlignTop);
            break;
        case ChartOptions::LegendRight:
            legend->setAlignment(Qt::AlignRight);
            break;
        default:
            legend->hide();
            return;
        }
        legend->show();
    }

    ChartView &m_view;
    const ChartNode &m_node;
    const ChartOptions &m_options;
    const Dataset &m_data;
    ChartMessages &m_messages;
    DataColumnIndex m_x = DataColumnIndex(-1);
    QList<DataColumnIndex> m_y;
    int m_facet = -1;
    QChart *m_chart = nullptr;
    QAbstractAxis *m_xAxis = nullptr;
    QAbstractAxis *m_yAxis = nullptr;
    CountedMessages m_numberFailures;
    CountedMessages m_dateFailures;
    CountedMessages m_logFailures;
};

ChartView::ChartView(QWidget *parent)
    : QChartView(parent)
{
    setRenderHint(QPainter::Antialiasing);
    setMinimumSize(120, 90);
}

bool ChartView::draw(const ChartNode &node, int facet, ChartMessages &messages)
{
    m_overlayText.clear();
    ChartBuilder builder(*this, node, facet, messages);
    return builder.build();
}

void ChartView::clearChart()
{
    QChart *old = chart();
    m_xAxis = nullptr;
    m_yAxis = nullptr;
    setChart(new QChart);
    delete old;
}

bool ChartView::hasSeries() const
{
    return chart() && !chart()->series().isEmpty();
}

void ChartView::setOverlayText(const QString &text)
{
    m_overlayText = text;
    viewport()->update();
}

bool ChartView::yRange(double *minimum, double *maximum) const
{
    if (auto *value = qobject_cast<QValueAxis *>(m_yAxis)) {
        *minimum = value->min();
        *maximum = value->max();
        return true;
    }
    if (auto *log = qobject_cast<QLogValueAxis *>(m_yAxis)) {
        *minimum = log->min();
        *maximum = log->max();
        return true;
    }
    return false;
}

void ChartView::setYMinimum(double minimum)
{
    if (auto *value = qobject_cast<QValueAxis *>(m_yAxis))
        value->setMin(minimum);
    else if (auto *log = qobject_cast<QLogValueAxis *>(m_yAxis))
        log->setMin(minimum);
}

void ChartView::setYMaximum(double maximum)
{
    if (auto *value = qobject_cast<QValueAxis *>(m_yAxis))
        value->setMax(maximum);
    else if (auto *log = qobject_cast<QLogValueAxis *>(m_yAxis))
        log->setMax(maximum);
}

bool ChartView::yAxisIsLinear() const
{
    return qobject_cast<QValueAxis *>(m_yAxis) != nullptr;
}

int ChartView::yTickCount() const
{
    auto *value = qobject_cast<QValueAxis *>(m_yAxis);
    return value ? value->tickCount() : 0;
}

void ChartView::setYTickCount(int count)
{
    if (auto *value = qobject_cast<QValueAxis *>(m_yAxis))
        value->setTickCount(count);
}

void ChartView::applyNiceYRange(bool freeMinimum, bool freeMaximum)
{
    auto *value = qobject_cast<QValueAxis *>(m_yAxis);
    if (!value)
        return;
    const double low = value->min();
    const double high = value->max();
    value->setTickCount(5);
    value->applyNiceNumbers();
    if (!freeMinimum)
        value->setMin(low);
    if (!freeMaximum)
        value->setMax(high);
}

void ChartView::paintEvent(QPaintEvent *event)
{
    QChartView::paintEvent(event);
    const QString text = !m_overlayText.isEmpty() ? m_overlayText : hasSeries() ? QString() : tr("No data");
    if (text.isEmpty())
        return;
    QPainter painter(viewport());
    painter.setPen(palette().color(QPalette::WindowText));
    painter.drawText(viewport()->rect(), Qt::AlignCenter | Qt::TextWordWrap, text);
}
