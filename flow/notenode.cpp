#include "notenode.h"

#include <QFontMetricsF>
#include <QPainter>

namespace {

const qreal MaxWidth = 240.0;
const qreal Padding = 8.0;
const qreal ArrowSize = 12.0;
const int TextFlags = Qt::AlignLeft | Qt::AlignTop | Qt::TextWordWrap;

} // namespace

NoteNode::NoteNode(QGraphicsItem *parent)
    : Node(parent)
    , m_color(defaultColor())
    , m_textRect(measureText(QString()))
{ }

QColor NoteNode::defaultColor()
{
    return QColor(0xFF, 0xF2, 0xA8);
}

void NoteNode::process(bool recursive, bool freeMemory)
{
    Q_UNUSED(recursive)
    Q_UNUSED(freeMemory)
    setStatus(UpToDate, false);
}

void NoteNode::setComment(const QString &comment)
{
    if (comment == this->comment())
        return;
    prepareGeometryChange();
    m_textRect = measureText(comment);
    Node::setComment(comment);
}

void NoteNode::setColor(const QColor &color)
{
    m_color = color;
    update();
}

void NoteNode::setArrow(int arrow)
{
    prepareGeometryChange();
    m_arrow = arrow >= NoArrow && arrow <= DownArrow ? arrow : NoArrow;
}

QRectF NoteNode::measureText(const QString &text)
{
    // Measured once per change with the application font, which the note is painted with.
    const QRectF measured =
        QFontMetricsF(QFont()).boundingRect(QRectF(0, 0, MaxWidth - 2 * Padding, 1e6), TextFlags, text);
    const qreal width = qMax(measured.width(), 40.0);
    const qreal height = qMax(measured.height(), QFontMetricsF(QFont()).height());
    return QRectF(Padding, Padding, width, height);
}

QRectF NoteNode::boundingRect() const
{
    const QRectF text = m_textRect;
    const QRectF note(0, 0, text.width() + 2 * Padding, text.height() + 2 * Padding);
    return note.adjusted(-ArrowSize - 1, -ArrowSize - 1, ArrowSize + 1, ArrowSize + 1);
}

void NoteNode::paint(QPainter *painter, const QStyleOptionGraphicsItem *option, QWidget *widget)
{
    Q_UNUSED(option)
    Q_UNUSED(widget)
    const QRectF text = m_textRect;
    const QRectF note(0, 0, text.width() + 2 * Padding, text.height() + 2 * Padding);
    painter->setPen(isSelected() ? QPen(QColor(0x1E, 0x6F, 0xD9), 2) : QPen(Qt::NoPen));
    painter->setBrush(m_color);
    painter->drawRoundedRect(note, 4, 4);
    const QPointF c = note.center();
    QPolygonF tip;
    switch (m_arrow) {
    case LeftArrow:
        tip << QPointF(note.left(), c.y() - ArrowSize / 2) << QPointF(note.left() - ArrowSize, c.y())
            << QPointF(note.left(), c.y() + ArrowSize / 2);
        break;
    case RightArrow:
        tip << QPointF(note.right(), c.y() - ArrowSize / 2) << QPointF(note.right() + ArrowSize, c.y())
            << QPointF(note.right(), c.y() + ArrowSize / 2);
        break;
    case UpArrow:
        tip << QPointF(c.x() - ArrowSize / 2, note.top()) << QPointF(c.x(), note.top() - ArrowSize)
            << QPointF(c.x() + ArrowSize / 2, note.top());
        break;
    case DownArrow:
        tip << QPointF(c.x() - ArrowSize / 2, note.bottom()) << QPointF(c.x(), note.bottom() + ArrowSize)
            << QPointF(c.x() + ArrowSize / 2, note.bottom());
        break;
    default:
        break;
    }
    if (!tip.isEmpty())
        painter->drawPolygon(tip);
    painter->setPen(m_color.lightness() < 128 ? QColor(0xF0, 0xF0, 0xF0) : QColor(0x20, 0x20, 0x20));
    painter->setFont(QFont());
    painter->drawText(text, TextFlags, comment());
}
