#include "connection.h"

#include "node.h"

#include <QPainterPath>
#include <QPen>

Connection::Connection(Node *start, Node *end)
    : m_start(start)
    , m_end(end)
{
    setFlag(ItemIsSelectable);
    setZValue(-1); // under the nodes, so that a click on a tile picks the tile
    setPen(QPen(QColor(0x7A, 0x7A, 0x7A), 1.5));
    m_start->m_connections << this;
    m_end->m_connections << this;
    updatePath();
}

Connection::~Connection()
{
    m_start->m_connections.removeOne(this);
    m_end->m_connections.removeOne(this);
}

void Connection::updatePath()
{
    const QPointF from = m_start->outPortScenePos();
    const QPointF to = m_end->inPortScenePos();
    const qreal reach = qMax(40.0, qAbs(to.x() - from.x()) / 2);
    QPainterPath path(from);
    path.cubicTo(from + QPointF(reach, 0), to - QPointF(reach, 0), to);
    setPath(path);
}

QRectF Connection::boundingRect() const
{
    if (ItemPainter *painter = Node::itemPainter())
        return painter->connectionBoundingRect(*this);
    return QGraphicsPathItem::boundingRect();
}

QPainterPath Connection::shape() const
{
    if (ItemPainter *painter = Node::itemPainter())
        return painter->connectionShape(*this);
    return QGraphicsPathItem::shape();
}

void Connection::paint(QPainter *painter, const QStyleOptionGraphicsItem *option, QWidget *widget)
{
    if (ItemPainter *itemPainter = Node::itemPainter()) {
        itemPainter->paintConnection(*this, painter, option);
        return;
    }
    QGraphicsPathItem::paint(painter, option, widget);
}
