#pragma once

#include <QString>
#include <QStringList>
#include <QtCharts/QChartView>

class ChartNode;

// What drawing a chart has to tell: warnings (data that couldn't be drawn, refusals,
// options that don't fit) and information (what was guessed or summed).
struct ChartMessages
{
    QStringList warnings;
    QStringList information;
};

// One chart of a ChartWidget: a graphics view on a QChart, drawn from a chart item's
// options and dataset, all its Y columns or the one column of a facet. While it has
// nothing to show it prints one centred message over its viewport.
class ChartView : public QtCharts::QChartView
{
    Q_OBJECT
public:
    explicit ChartView(QWidget *parent = nullptr);

    // Builds the chart of node, for one facet (an index into the node's resolved Y
    // columns) or -1 for all. False when the data refuses the chart (duplicate text X
    // values); the view is then empty. Problems with single cells are told and skipped.
    bool draw(const ChartNode &node, int facet, ChartMessages &messages);
    // An empty chart, as before any draw.
    void clearChart();

    bool hasSeries() const;
    QString overlayText() const { return m_overlayText; }
    void setOverlayText(const QString &text);

    // The range of the Y (value) axis, when the chart has one.
    bool yRange(double *minimum, double *maximum) const;
    void setYMinimum(double minimum);
    void setYMaximum(double maximum);
    bool yAxisIsLinear() const;
    int yTickCount() const;
    void setYTickCount(int count);
    // Nice numbers on a linear Y axis; a bound that isn't free stays as it is.
    void applyNiceYRange(bool freeMinimum, bool freeMaximum);

    QtCharts::QAbstractAxis *xAxis() const { return m_xAxis; }
    QtCharts::QAbstractAxis *yAxis() const { return m_yAxis; }

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    friend class ChartBuilder;

    QString m_overlayText;
    QtCharts::QAbstractAxis *m_xAxis = nullptr;
    QtCharts::QAbstractAxis *m_yAxis = nullptr;
};
