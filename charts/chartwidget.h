#pragma once

#include <QImage>
#include <QList>
#include <QPointer>
#include <QWidget>

class ChartNode;
class ChartView;
class QGridLayout;
class QPainter;

// Shows a chart item as one ChartView, or as a grid of them when the layout is Faceted,
// wrapping at the item's facets across. It checks, in a fixed order, whether the chart can
// be drawn at all before drawing anything, and it renders what it drew into images and
// PDF pages for the item's file.
//
// In a window: make one and call setNode(node, true); it then follows the item. The item's
// own run reports the messages; a widget for display draws without adding them again.
class ChartWidget : public QWidget
{
    Q_OBJECT
public:
    explicit ChartWidget(QWidget *parent = nullptr);

    ChartNode *node() const { return m_node; }
    // With follow, the widget draws again (once per turn of the event loop) whenever the
    // node's status, data or options change, without reporting to the node.
    void setNode(ChartNode *node, bool follow = false);

    // Draws the node's chart; true when it was drawn. With reportToNode the refusals and
    // what the drawing had to tell are added to the node's warnings and information.
    bool updateChart(bool reportToNode = false);

    QList<ChartView *> views() const { return m_views; }
    // Facets when the layout is Faceted (the Y columns that resolve), else 1.
    int facetCount() const;
    // The layout is Faceted and the facets need more than five rows.
    bool tooManyFacetRows() const;
    bool tooManyDataPoints() const;

    // The drawn views, laid out as on screen, rendered into target.
    void render(QPainter &painter, const QRectF &target, const QSizeF &logicalSize);
    // An image of the given size in pixels; null when there is nothing to render.
    QImage renderImage(const QSize &size);
    // One PDF page of the page size name ("A4"), orientation (0 portrait, 1 landscape) and
    // resolution in dots per inch; false when the file can't be written.
    bool writePdf(const QString &path, const QString &pageSize, int orientation, int resolution);

private:
    void setViewCount(int count);
    void setOverlay(const QString &text);
    QString refusal(QStringList *warnings) const;
    void applyCommonYRange();
    void scheduleUpdate();

    QPointer<ChartNode> m_node;
    QGridLayout *m_grid = nullptr;
    QList<ChartView *> m_views;
    QList<QMetaObject::Connection> m_nodeConnections;
    bool m_updateScheduled = false;
};
