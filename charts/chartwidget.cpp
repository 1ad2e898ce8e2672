#include "chartwidget.h"

#include "charts/chartnode.h"
#include "charts/chartview.h"
#include "core/values.h"
#include "flow/graphscene.h"

#include <QGraphicsScene>
#include <QGridLayout>
#include <QPageLayout>
#include <QPageSize>
#include <QPainter>
#include <QPdfWriter>
#include <QTimer>
#include <QtCharts/QChart>

#include <cmath>

namespace {

QPageSize::PageSizeId pageSizeId(const QString &name)
{
    static const QHash<QString, QPageSize::PageSizeId> ids = {
        {QStringLiteral("A0"), QPageSize::A0},
        {QStringLiteral("A1"), QPageSize::A1},
        {QStringLiteral("A2"), QPageSize::A2},
        {QStringLiteral("A3"), QPageSize::A3},
        {QStringLiteral("A4"), QPageSize::A4},
        {QStringLiteral("A5"), QPageSize::A5},
        {QStringLiteral("A6"), QPageSize::A6},
        {QStringLiteral("Ledger"), QPageSize::Ledger},
        {QStringLiteral("Legal"), QPageSize::Legal},
        {QStringLiteral("Letter"), QPageSize::Letter},
        {QStringLiteral("Tabloid"), QPageSize::Tabloid},
    };
    return ids.value(name, ChartOptions::systemPdfSize() == QLatin1String("Letter") ? QPageSize::Letter
                                                                                     : QPageSize::A4);
}

} // namespace

ChartWidget::ChartWidget(QWidget *parent)
    : QWidget(parent)
    , m_grid(new QGridLayout(this))
{
    m_grid->setContentsMargins(0, 0, 0, 0);
    m_grid->setSpacing(0);
    setViewCount(1);
}

void ChartWidget::setNode(ChartNode *node, bool follow)
{
    for (const QMetaObject::Connection &connection : qAsConst(m_nodeConnections))
        disconnect(connection);
    m_nodeConnections.clear();
    m_node = node;
    if (!node || !follow)
        return;
    m_nodeConnections << connect(node, &Node::nodeStatusChanged, this, &ChartWidget::scheduleUpdate)
                      << connect(node, &Node::nodeDataChanged, this, &ChartWidget::scheduleUpdate)
                      << connect(node, &ChartNode::optionsChanged, this, &ChartWidget::scheduleUpdate);
    scheduleUpdate();
}

void ChartWidget::scheduleUpdate()
{
    if (m_updateScheduled)
        return;
    m_updateScheduled = true;
    QTimer::singleShot(0, this, [this] {
        m_updateScheduled = false;
        updateChart(false);
    });
}

int ChartWidget::facetCount() const
{
    if (!m_node || m_node->options().layout != ChartOptions::Faceted)
        return 1;
    return m_node->yColumnIndexes().size();
}

bool ChartWidget::tooManyFacetRows() const
{
    if (!m_node || m_node->options().layout != ChartOptions::Faceted)
        return false;
    const int across = qBound(1, m_node->options().facetsAcross, ChartOptions::MaxFacetsAcross);
    return double(facetCount()) / across > ChartOptions::MaxFacetRows;
}

bool ChartWidget::tooManyDataPoints() const
{
    if (!m_node)
        return false;
    const qint64 limit = ChartOptions::pointLimit(m_node->options().type);
    return m_node->dataPointCount() > limit * qMax(1, facetCount());
}

void ChartWidget::setViewCount(int count)
{
    count = qMax(1, count);
    while (m_views.size() > count)
        delete m_views.takeLast();
    while (m_views.size() < count)
        m_views << new ChartView(this);
    for (ChartView *view : qAsConst(m_views))
        m_grid->removeWidget(view);
    const int across = m_node ? qBound(1, m_node->options().facetsAcross, ChartOptions::MaxFacetsAcross) : 1;
    for (int i = 0; i < m_views.size(); ++i)
        m_grid->addWidget(m_views.at(i), i / across, i % across);
    for (int row = 0; row < m_grid->rowCount(); ++row)
        m_grid->setRowStretch(row, 1);
    for (int column = 0; column < m_grid->columnCount(); ++column)
        m_grid->setColumnStretch(column, 1);
}

void ChartWidget::setOverlay(const QString &text)
{
    for (ChartView *view : qAsConst(m_views)) {
        view->clearChart();
        view->setOverlayText(text);
    }
}

// The first reason the chart can't be drawn, as the short overlay text; the full
// warnings go to warnings.
QString ChartWidget::refusal(QStringList *warnings) const
{
    const ChartOptions &options = m_node->options();
    if (options.type <= ChartOptions::NoType || options.type >= ChartOptions::TypeCount) {
        *warnings << tr("Select a chart type");
        return tr("Select a chart type");
    }
    if (!m_node->xColumnIndex().isValid()) {
        *warnings << tr("Select a data column for the X axis");
        return tr("Select a column for the X axis");
    }
    if (m_node->yColumnIndexes().isEmpty()) {
        *warnings << tr("Select one or more data columns for the Y axis");
        return tr("Select one or more columns for the Y axis");
    }
    if (tooManyDataPoints()) {
        *warnings << tr("%1 charts can display a maximum of %2 data points (per facet, if faceted) - you can use a "
                        "'Sample', 'Filter' or 'Slice' transforms to reduce the amount of data")
                         .arg(ChartOptions::typeName(options.type), formatCount(ChartOptions::pointLimit(options.type)));
        return tr("Too many data points");
    }
    if (tooManyFacetRows()) {
        QString warning = tr("A maximum of %1 rows of facets can be displayed").arg(ChartOptions::MaxFacetRows);
        if (options.facetsAcross < ChartOptions::MaxFacetsAcross
            && facetCount() < ChartOptions::MaxFacetsAcross * ChartOptions::MaxFacetRows)
            warning += QLatin1Char('\n') + tr("Try increasing the number of facets across");
        *warnings << warning;
        return tr("Too many rows of facets");
    }
    return QString();
}

bool ChartWidget::updateChart(bool reportToNode)
{
    if (!m_node)
        return false;
    setViewCount(tooManyFacetRows() ? 1 : facetCount());

    const QString edition = ChartNode::editionRefusal();
    if (!edition.isEmpty()) {
        if (reportToNode)
            m_node->addWarning(edition);
        setOverlay(edition);
        return false;
    }
    // A widget on screen shows the item's state; the item's own draw is its processing.
    if (!reportToNode) {
        const GraphScene *scene = m_node->graphScene();
        if (m_node->status() == Node::NeedsUpdating) {
            setOverlay(scene && scene->isAutoRun() ? tr("Awaiting update") : tr("Run to update"));
            return false;
        }
        if (m_node->status() == Node::Updating) {
            setOverlay(tr("Processing..."));
            return false;
        }
    }
    QStringList refusals;
    const QString overlay = refusal(&refusals);
    if (!overlay.isEmpty()) {
        if (reportToNode) {
            for (const QString &warning : qAsConst(refusals))
                m_node->addWarning(warning);
        }
        setOverlay(overlay);
        return false;
    }

    const bool faceted = m_node->options().layout == ChartOptions::Faceted;
    ChartMessages messages;
    bool drawn = true;
    for (int i = 0; i < m_views.size(); ++i) {
        if (!m_views.at(i)->draw(*m_node, faceted ? i : -1, messages))
            drawn = false;
    }
    if (drawn)
        applyCommonYRange();
    if (reportToNode) {
        // Facets guess and refuse alike: a message they share is told once.
        messages.information.removeDuplicates();
        messages.warnings.removeDuplicates();
        for (const QString &text : qAsConst(messages.information))
            m_node->addInformation(text);
        for (const QString &text : qAsConst(messages.warnings))
            m_node->addWarning(text);
    }
    if (!drawn) {
        for (ChartView *view : qAsConst(m_views))
            view->clearChart();
    }
    return drawn;
}

void ChartWidget::applyCommonYRange()
{
    const ChartOptions &options = m_node->options();
    const ChartAxisOptions &y = options.yAxis;
    const bool customMin = y.minRangeOption == ChartAxisOptions::RangeCustom;
    const bool customMax = y.maxRangeOption == ChartAxisOptions::RangeCustom;
    if (options.type < ChartOptions::Scatter || options.type > ChartOptions::HorizontalBar
        || options.layout != ChartOptions::Faceted || !y.sameRangeAllFacets || m_views.size() < 2
        || (customMin && customMax))
        return;
    double lowest = 0, highest = 0, widest = -1;
    ChartView *widestView = nullptr;
    bool any = false;
    for (ChartView *view : qAsConst(m_views)) {
        double low = 0, high = 0;
        if (!view->yRange(&low, &high))
            continue;
        lowest = any ? qMin(lowest, low) : low;
        highest = any ? qMax(highest, high) : high;
        any = true;
        if (high - low > widest) {
            widest = high - low;
            widestView = view;
        }
    }
    if (!any)
        return;
    // The widest view takes the common range first, with nice values when they are on, and
    // the others follow its bounds and ticks.
    if (!customMin)
        widestView->setYMinimum(lowest);
    if (!customMax)
        widestView->setYMaximum(highest);
    if (y.niceValues && widestView->yAxisIsLinear())
        widestView->applyNiceYRange(!customMin, !customMax);
    widestView->yRange(&lowest, &highest);
    const int ticks = widestView->yTickCount();
    for (ChartView *view : qAsConst(m_views)) {
        if (!customMin)
            view->setYMinimum(lowest);
        if (!customMax)
            view->setYMaximum(highest);
        if (view->yAxisIsLinear() && ticks > 1)
            view->setYTickCount(ticks);
    }
}

void ChartWidget::render(QPainter &painter, const QRectF &target, const QSizeF &logicalSize)
{
    const int count = m_views.size();
    const int across = qMin(count, m_node ? qBound(1, m_node->options().facetsAcross, ChartOptions::MaxFacetsAcross) : 1);
    const int rows = (count + across - 1) / across;
    const QSizeF cellLogical(logicalSize.width() / across, logicalSize.height() / rows);
    const QSizeF cellTarget(target.width() / across, target.height() / rows);
    for (int i = 0; i < count; ++i) {
        QtCharts::QChart *chart = m_views.at(i)->chart();
        if (!chart || !chart->scene())
            continue;
        chart->setPos(0, 0);
        chart->resize(cellLogical);
        const QRectF source(QPointF(0, 0), cellLogical);
        const QRectF cell(target.topLeft() + QPointF((i % across) * cellTarget.width(), (i / across) * cellTarget.height()),
            cellTarget);
        chart->scene()->render(&painter, cell, source, Qt::IgnoreAspectRatio);
    }
}

QImage ChartWidget::renderImage(const QSize &size)
{
    if (size.width() < 1 || size.height() < 1 || !m_views.value(0) || !m_views.first()->hasSeries())
        return QImage();
    QImage image(size, QImage::Format_ARGB32_Premultiplied);
    if (image.isNull())
        return image;
    image.fill(Qt::white);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setRenderHint(QPainter::TextAntialiasing);
    render(painter, QRectF(QPointF(0, 0), QSizeF(size)), QSizeF(size));
    painter.end();
    return image;
}

bool ChartWidget::writePdf(const QString &path, const QString &pageSize, int orientation, int resolution)
{
    if (!m_views.value(0) || !m_views.first()->hasSeries())
        return false;
    QPdfWriter writer(path);
    writer.setCreator(QStringLiteral("Tabrelle"));
    writer.setTitle(m_node ? m_node->name() : QString());
    writer.setResolution(qBound(72, resolution, 1200));
    const QPageLayout layout(QPageSize(pageSizeId(pageSize)),
        orientation == ChartOptions::Landscape ? QPageLayout::Landscape : QPageLayout::Portrait,
        QMarginsF(10, 10, 10, 10), QPageLayout::Millimeter);
    if (!writer.setPageLayout(layout))
        return false;
    QPainter painter;
    if (!painter.begin(&writer))
        return false;
    painter.setRenderHint(QPainter::Antialiasing);
    const QRectF target = QRectF(painter.viewport());
    // Charts are laid out at screen size, so that their text keeps its size on the page.
    const QSizeF inches = layout.paintRect(QPageLayout::Inch).size();
    render(painter, target, QSizeF(inches.width() * 96, inches.height() * 96));
    return painter.end();
}
