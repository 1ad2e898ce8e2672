#include "graphviewpainter.h"

#include "flow/connection.h"
#include "flow/fileformat.h"
#include "flow/ionode.h"
#include "inputs/inputnode.h"
#include "outputs/outputnode.h"
#include "transforms/transform.h"
#include "transforms/transformnode.h"

#include <QFontMetricsF>
#include <QPainter>
#include <QPainterPathStroker>
#include <QStyleOptionGraphicsItem>
#include <QtMath>

namespace {

const qreal Tile = 56.0;
const qreal Half = Tile / 2;
const qreal CaptionWidth = 150.0;
const qreal PortRadius = 4.0;
const qreal ArrowSize = 8.0;
// Below this scale the status glyphs, marks and arrow heads are left out and tiles are
// drawn plainly; below the second, small texts and dash patterns.
const qreal MarksDetail = 0.35;
const qreal TextDetail = 0.5;

CanvasTheme s_light = CanvasTheme::light();
CanvasTheme s_dark = CanvasTheme::dark();
bool s_isDark = false;

QFont smallFont(const QFont &base)
{
    QFont font = base;
    font.setPointSizeF(qMax(6.0, base.pointSizeF() - 1.5));
    return font;
}

// Up to two lines of text in width, the second elided at its end.
QStringList twoLines(const QString &text, const QFontMetricsF &metrics, qreal width)
{
    if (metrics.horizontalAdvance(text) <= width)
        return {text};
    // Break at the last space that fits, else at the last character that fits.
    int fit = 0;
    for (int i = 1; i <= text.size(); ++i) {
        if (metrics.horizontalAdvance(text.left(i)) > width)
            break;
        fit = i;
    }
    // After a space, dash, underscore or dot, so that file names break between words.
    int cut = -1;
    for (int i = fit - 1; i > 0; --i) {
        const QChar c = text.at(i - 1);
        if (c == QLatin1Char(' ') || c == QLatin1Char('-') || c == QLatin1Char('_') || c == QLatin1Char('.')) {
            cut = i;
            break;
        }
    }
    if (cut <= 0)
        return {metrics.elidedText(text, Qt::ElideMiddle, width)};
    const QString first = text.left(cut).trimmed();
    const QString rest = text.mid(cut).trimmed();
    return {first, metrics.elidedText(rest, Qt::ElideRight, width)};
}

} // namespace

CanvasTheme CanvasTheme::light()
{
    CanvasTheme t;
    t.background = QColor(0xF7, 0xF7, 0xF7);
    t.gridDots = QColor(0xD6, 0xD6, 0xD6);
    t.itemFill = Qt::white;
    t.text = QColor(0x20, 0x20, 0x20);
    t.secondaryText = QColor(0x66, 0x66, 0x66);
    t.accent = QColor(0x1E, 0x6F, 0xD9);
    t.status[0] = QColor(0xB7, 0x79, 0x1F);
    t.status[1] = QColor(0x1E, 0x6F, 0xD9);
    t.status[2] = QColor(0x2E, 0x85, 0x40);
    t.status[3] = QColor(0xC8, 0x37, 0x2D);
    t.connection = QColor(0x7A, 0x7A, 0x7A);
    t.warning = QColor(0xE0, 0x9B, 0x00);
    return t;
}

CanvasTheme CanvasTheme::dark()
{
    CanvasTheme t;
    t.background = QColor(0x1F, 0x1F, 0x1F);
    t.gridDots = QColor(0x36, 0x36, 0x36);
    t.itemFill = QColor(0x2B, 0x2B, 0x2B);
    t.text = QColor(0xE6, 0xE6, 0xE6);
    t.secondaryText = QColor(0xA8, 0xA8, 0xA8);
    t.accent = QColor(0x4C, 0x9A, 0xFF);
    t.status[0] = QColor(0xE0, 0xA5, 0x26);
    t.status[1] = QColor(0x4C, 0x9A, 0xFF);
    t.status[2] = QColor(0x4C, 0xB8, 0x60);
    t.status[3] = QColor(0xFF, 0x6B, 0x5E);
    t.connection = QColor(0x9A, 0x9A, 0x9A);
    t.warning = QColor(0xF0, 0xB0, 0x20);
    return t;
}

const CanvasTheme &CanvasTheme::current()
{
    return s_isDark ? s_dark : s_light;
}

void CanvasTheme::setDark(bool dark)
{
    s_isDark = dark;
}

bool CanvasTheme::isDark()
{
    return s_isDark;
}

GraphViewPainter *GraphViewPainter::instance()
{
    static GraphViewPainter painter;
    return &painter;
}

void GraphViewPainter::install()
{
    Node::setItemPainter(instance());
}

void GraphViewPainter::setHoveredNode(const Node *node)
{
    m_hovered = node;
}

void GraphViewPainter::setCurrentNode(const Node *node)
{
    m_current = node;
}

void GraphViewPainter::setDrag(const Node *start, const QSet<const Node *> &candidates, const Node *target)
{
    m_dragging = true;
    m_dragStart = start;
    m_candidates = candidates;
    m_dragTarget = target;
}

void GraphViewPainter::clearDrag()
{
    m_dragging = false;
    m_dragStart = nullptr;
    m_dragTarget = nullptr;
    m_candidates.clear();
}

QPointF GraphViewPainter::outPortPos()
{
    return QPointF(Half, 0);
}

bool GraphViewPainter::hasRoomDownstream(const Node &node)
{
    // Room for one more item below: a drag from the port can connect one or open the chooser.
    return node.connections(Node::Outgoing).size() < node.maxDownstream();
}

bool GraphViewPainter::isOnOutPort(const Node &node, const QPointF &itemPos)
{
    if (!hasRoomDownstream(node))
        return false;
    return QLineF(itemPos, outPortPos()).length() <= 9.0;
}

QRectF GraphViewPainter::nodeBoundingRect(const Node &node) const
{
    Q_UNUSED(node)
    // Tile with its outline and glyphs, and three caption lines below; wide enough for
    // the caption and the ports.
    return QRectF(-CaptionWidth / 2 - 2, -Half - 12, CaptionWidth + 4, Tile + 12 + 74);
}

QString GraphViewPainter::formatTag(const Node &node)
{
    if (const auto *io = qobject_cast<const IONode *>(&node)) {
        if (io->medium() == IONode::Clipboard)
            return QStringLiteral("TEXT");
        int type = io->fileType();
        if (type < 0 || type > 10) {
            const QString suffix = QFileInfo(io->path()).suffix();
            type = FileFormat::forExtension(suffix);
        }
        if (type == IONode::FixedWidth)
            return QStringLiteral("FIX");
        if (type == IONode::PlainText)
            return QStringLiteral("TXT");
        const QString ext = FileFormat::defaultExtension(type);
        return ext.isEmpty() ? QStringLiteral("?") : ext.toUpper();
    }
    return QString();
}

QString GraphViewPainter::sizeTextOf(const Node &node) const
{
    if (node.typeName() == QLatin1String("Note"))
        return QString();
    const Dataset &data = node.dataset();
    if (data.hasNoColumns() && data.hasNoRows())
        return QString();
    return m_showSizeChanges ? node.sizeChangeText() : node.sizeText();
}

QString GraphViewPainter::inputPositionText(const Connection &connection)
{
    const Node *end = connection.end();
    if (!end || end->maxUpstream() < 2)
        return QString();
    const QList<Node *> inputs = end->upstream(true);
    const int index = inputs.indexOf(connection.start());
    return index < 0 ? QString() : QString::number(index + 1);
}

void GraphViewPainter::drawIcon(const Node &node, QPainter *p, const QRectF &box, const QColor &color) const
{
    p->save();
    p->setPen(QPen(color, 1.6, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    p->setBrush(Qt::NoBrush);
    const QString type = node.typeName();
    if (type == QLatin1String("Input") || type == QLatin1String("Output")) {
        // A page with a folded corner and the format's name; an arrow in or out.
        const QRectF page(box.left() + 5, box.top(), box.width() - 10, box.height());
        QPainterPath path;
        path.moveTo(page.topLeft());
        path.lineTo(page.right() - 7, page.top());
        path.lineTo(page.right(), page.top() + 7);
        path.lineTo(page.bottomRight());
        path.lineTo(page.bottomLeft());
        path.closeSubpath();
        p->drawPath(path);
        p->drawLine(QPointF(page.right() - 7, page.top()), QPointF(page.right() - 7, page.top() + 7));
        p->drawLine(QPointF(page.right() - 7, page.top() + 7), QPointF(page.right(), page.top() + 7));
        if (QStyleOptionGraphicsItem::levelOfDetailFromTransform(p->worldTransform()) >= TextDetail) {
            QFont font = p->font();
            font.setPixelSize(8);
            font.setBold(true);
            p->setFont(font);
            p->drawText(
                QRectF(page.left() - 4, page.top() + 9, page.width() + 8, 10), Qt::AlignCenter, formatTag(node));
        }
        const qreal y = page.bottom() - 6;
        const bool in = type == QLatin1String("Input");
        const qreal x0 = page.left() + 5, x1 = page.right() - 5;
        p->drawLine(QPointF(x0, y), QPointF(x1, y));
        const qreal tipX = in ? x0 : x1;
        const qreal dir = in ? 1 : -1;
        p->drawLine(QPointF(tipX, y), QPointF(tipX + dir * 4, y - 3));
        p->drawLine(QPointF(tipX, y), QPointF(tipX + dir * 4, y + 3));
    } else if (const auto *transformNode = qobject_cast<const TransformNode *>(&node)) {
        const Transform *transform = transformNode->transform();
        const TransformCategory category = transform ? transform->category() : TransformCategory::Other;
        const QRectF r = box.adjusted(3, 5, -3, -5);
        switch (category) {
        case TransformCategory::Merge: {
            // Two streams joining into one.
            QPainterPath path;
            path.moveTo(r.left(), r.top());
            path.cubicTo(r.center().x(), r.top(), r.left() + r.width() / 3, r.center().y(), r.center().x() + 2,
                r.center().y());
            path.moveTo(r.left(), r.bottom());
            path.cubicTo(r.center().x(), r.bottom(), r.left() + r.width() / 3, r.center().y(),
                r.center().x() + 2, r.center().y());
            path.moveTo(r.center().x() + 2, r.center().y());
            path.lineTo(r.right(), r.center().y());
            p->drawPath(path);
            p->drawLine(QPointF(r.right(), r.center().y()), QPointF(r.right() - 4, r.center().y() - 3));
            p->drawLine(QPointF(r.right(), r.center().y()), QPointF(r.right() - 4, r.center().y() + 3));
            break;
        }
        case TransformCategory::Column: {
            const qreal w = r.width() / 4;
            for (int i = 0; i < 3; ++i) {
                QRectF column(r.left() + i * (w + w / 2), r.top(), w, r.height());
                if (i == 1)
                    p->fillRect(column, color);
                else
                    p->drawRect(column);
            }
            break;
        }
        case TransformCategory::Row: {
            const qreal h = r.height() / 4;
            for (int i = 0; i < 3; ++i) {
                QRectF row(r.left(), r.top() + i * (h + h / 2), r.width(), h);
                if (i == 1)
                    p->fillRect(row, color);
                else
                    p->drawRect(row);
            }
            break;
        }
        case TransformCategory::Format: {
            QFont font = p->font();
            font.setPixelSize(17);
            font.setBold(true);
            p->setFont(font);
            p->drawText(box, Qt::AlignCenter, QStringLiteral("Aa"));
            break;
        }
        case TransformCategory::Analysis: {
            const qreal w = r.width() / 5;
            const qreal heights[] = {0.45, 0.8, 0.3, 1.0};
            for (int i = 0; i < 4; ++i) {
                const qreal h = r.height() * heights[i];
                p->fillRect(QRectF(r.left() + i * (w + w / 3), r.bottom() - h, w, h), color);
            }
            break;
        }
        default: {
            // A cog-like wheel.
            const QPointF c = box.center();
            p->drawEllipse(c, 5, 5);
            for (int i = 0; i < 8; ++i) {
                const qreal a = i * M_PI / 4;
                p->drawLine(c + QPointF(qCos(a) * 8, qSin(a) * 8), c + QPointF(qCos(a) * 12, qSin(a) * 12));
            }
            break;
        }
        }
    } else {
        // A chart, or a kind of item this painter doesn't know: bars.
        const QRectF r = box.adjusted(3, 5, -3, -5);
        p->drawLine(r.bottomLeft(), r.bottomRight());
        p->drawLine(r.bottomLeft(), r.topLeft());
        p->drawPolyline(QPolygonF({QPointF(r.left() + 3, r.bottom() - 5), QPointF(r.center().x() - 3, r.center().y()),
            QPointF(r.center().x() + 4, r.center().y() + 5), QPointF(r.right(), r.top() + 3)}));
    }
    p->restore();
}

void GraphViewPainter::drawStatusGlyph(const Node &node, QPainter *p, const QPointF &c) const
{
    const CanvasTheme &theme = CanvasTheme::current();
    const int status = qBound(0, node.status(), 3);
    p->save();
    p->setPen(QPen(theme.background, 1.5));
    p->setBrush(theme.status[status]);
    p->drawEllipse(c, 8, 8);
    p->setPen(QPen(Qt::white, 1.6, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    p->setBrush(Qt::white);
    switch (status) {
    case Node::NeedsUpdating:
        p->setPen(Qt::NoPen);
        for (int i = -1; i <= 1; ++i)
            p->drawEllipse(c + QPointF(i * 3.6, 0), 1.2, 1.2);
        break;
    case Node::Updating: {
        p->setPen(Qt::NoPen);
        p->setBrush(Qt::white);
        // A pie that fills up; the run engine repaints the item as it goes.
        const QRectF r(c.x() - 5, c.y() - 5, 10, 10);
        p->drawPie(r, 90 * 16, -16 * 270);
        break;
    }
    case Node::UpToDate:
        p->drawPolyline(QPolygonF({c + QPointF(-4, 0), c + QPointF(-1, 3), c + QPointF(4, -3)}));
        break;
    default:
        p->drawLine(c + QPointF(-3, -3), c + QPointF(3, 3));
        p->drawLine(c + QPointF(-3, 3), c + QPointF(3, -3));
        break;
    }
    p->restore();
}

void GraphViewPainter::paintTileOnly(const Node &node, QPainter *p, qreal opacity) const
{
    // Tiles under about 20 px: the status colour carries the state, the glyphs and marks
    // would be specks.
    const CanvasTheme &theme = CanvasTheme::current();
    const QRectF tile(-Half, -Half, Tile, Tile);
    const int status = qBound(0, node.status(), 3);
    p->setOpacity(opacity);
    p->setRenderHint(QPainter::Antialiasing, false);
    p->setPen(Qt::NoPen);
    if (node.isSelected() || (m_dragging && &node == m_dragTarget)) {
        p->setBrush(theme.accent);
        p->drawRect(tile.adjusted(-6, -6, 6, 6));
    }
    p->setBrush(theme.status[status]);
    p->drawRect(tile);
    p->setBrush(theme.itemFill);
    p->drawRect(tile.adjusted(6, 6, -6, -6));
}

void GraphViewPainter::paintNode(const Node &node, QPainter *p, const QStyleOptionGraphicsItem *option)
{
    Q_UNUSED(option)
    const CanvasTheme &theme = CanvasTheme::current();
    const QRectF tile(-Half, -Half, Tile, Tile);
    const int status = qBound(0, node.status(), 3);
    p->save();
    p->setRenderHint(QPainter::Antialiasing);

    qreal opacity = 1.0;
    const auto *output = qobject_cast<const OutputNode *>(&node);
    const bool disabledOutput = output && output->writeMode() == OutputNode::Disabled;
    if (disabledOutput)
        opacity = 0.5;
    if (m_dragging && &node != m_dragStart && !m_candidates.contains(&node))
        opacity *= 0.4;
    p->setOpacity(opacity);

    // Far out the captions can't be read: the tiles alone keep the frame quick.
    const qreal detail = QStyleOptionGraphicsItem::levelOfDetailFromTransform(p->worldTransform());
    const bool captions = detail >= 0.4;
    if (detail < MarksDetail) {
        paintTileOnly(node, p, opacity);
        p->restore();
        return;
    }

    // Current item: a light accent fill behind the caption.
    const QFontMetricsF metrics(p->font());
    const QString name = node.name();
    CaptionCache &cached = m_captions[&node];
    if (cached.name != name || cached.font != p->font()) {
        cached.name = name;
        cached.font = p->font();
        cached.lines = twoLines(name, metrics, CaptionWidth);
    }
    const QStringList nameLines = captions ? cached.lines : QStringList();
    const QString commentLine = captions ? node.comment().section(QLatin1Char('\n'), 0, 0).trimmed() : QString();
    const QString size = captions ? sizeTextOf(node) : QString();
    const QFont small = smallFont(p->font());
    const QFontMetricsF smallMetrics(small);
    qreal captionHeight = nameLines.size() * metrics.height();
    if (!commentLine.isEmpty())
        captionHeight += metrics.height();
    if (!size.isEmpty())
        captionHeight += smallMetrics.height();
    const QRectF caption(-CaptionWidth / 2, tile.bottom() + 6, CaptionWidth, captionHeight);
    if (&node == m_current) {
        QColor fill = theme.accent;
        fill.setAlpha(40);
        p->setPen(Qt::NoPen);
        p->setBrush(fill);
        p->drawRoundedRect(caption.adjusted(-2, -1, 2, 1), 4, 4);
    }

    // Tile.
    QPen border(theme.status[status], 3);
    if (disabledOutput)
        border.setStyle(Qt::DashLine);
    p->setPen(border);
    p->setBrush(theme.itemFill);
    p->drawRoundedRect(tile.adjusted(1.5, 1.5, -1.5, -1.5), 8, 8);

    if (node.isSelected()) {
        p->setPen(QPen(theme.accent, 2));
        p->setBrush(Qt::NoBrush);
        p->drawRoundedRect(tile.adjusted(-4, -4, 4, 4), 11, 11);
    }
    if (&node == m_current && m_focusShown) {
        QPen ring(theme.text, 1, Qt::DashLine);
        p->setPen(ring);
        p->setBrush(Qt::NoBrush);
        p->drawRoundedRect(tile.adjusted(-7, -7, 7, 7), 13, 13);
    }
    if (m_dragging && &node == m_dragTarget) {
        p->setPen(QPen(theme.accent, 2));
        p->setBrush(Qt::NoBrush);
        p->drawRoundedRect(tile.adjusted(-5, -5, 5, 5), 12, 12);
    }

    if (detail >= 0.2)
        drawIcon(node, p, QRectF(-16, -16, 32, 32), theme.text);

    // Ports.
    if (node.maxUpstream() > 0) {
        p->setPen(Qt::NoPen);
        p->setBrush(theme.connection);
        p->drawPie(QRectF(-Half - 3, -3, 6, 6), 90 * 16, -180 * 16);
    }
    if (&node == m_hovered && hasRoomDownstream(node)) {
        p->setPen(QPen(theme.itemFill, 1.5));
        p->setBrush(theme.accent);
        p->drawEllipse(outPortPos(), PortRadius, PortRadius);
    }

    drawStatusGlyph(node, p, tile.bottomRight() + QPointF(-3, -3));

    // Warning badge.
    const int warnings = node.warningCount();
    if (warnings > 0 && status != Node::Error) {
        const QPointF c = tile.topRight() + QPointF(-3, 1);
        QPolygonF triangle({c + QPointF(0, -9), c + QPointF(9, 7), c + QPointF(-9, 7)});
        p->setPen(QPen(theme.background, 1.2));
        p->setBrush(theme.warning);
        p->drawPolygon(triangle);
        p->save();
        QFont font = p->font();
        font.setPixelSize(warnings > 9 ? 7 : 9);
        font.setBold(true);
        p->setFont(font);
        p->setPen(QColor(0x20, 0x20, 0x20));
        p->drawText(QRectF(c.x() - 9, c.y() - 3, 18, 10), Qt::AlignCenter,
            warnings > 99 ? QStringLiteral("99+") : QString::number(warnings));
        p->restore();
    }

    // Marks at the top left: a comment bubble, an eye for a watched input.
    qreal markX = tile.left() + 4;
    if (!node.comment().trimmed().isEmpty()) {
        p->setPen(QPen(theme.secondaryText, 1.2));
        p->setBrush(theme.itemFill);
        const QRectF bubble(markX, tile.top() + 4, 11, 8);
        p->drawRoundedRect(bubble, 2, 2);
        p->drawLine(QPointF(bubble.left() + 3, bubble.bottom()), QPointF(bubble.left() + 2, bubble.bottom() + 3));
        markX += 14;
    }
    if (const auto *input = qobject_cast<const InputNode *>(&node)) {
        if (input->isWatching()) {
            p->setPen(QPen(theme.secondaryText, 1.2));
            p->setBrush(Qt::NoBrush);
            const QRectF eye(markX, tile.top() + 5, 12, 7);
            p->drawEllipse(eye);
            p->setBrush(theme.secondaryText);
            p->drawEllipse(eye.center(), 1.6, 1.6);
        }
    }

    // Caption.
    qreal y = caption.top();
    p->setPen(theme.text);
    for (const QString &line : nameLines) {
        p->drawText(QRectF(caption.left(), y, CaptionWidth, metrics.height()), Qt::AlignHCenter | Qt::AlignTop,
            line);
        y += metrics.height();
    }
    if (!commentLine.isEmpty()) {
        QFont italic = p->font();
        italic.setItalic(true);
        p->setFont(italic);
        p->setPen(theme.secondaryText);
        p->drawText(QRectF(caption.left(), y, CaptionWidth, metrics.height()), Qt::AlignHCenter | Qt::AlignTop,
            QFontMetricsF(italic).elidedText(commentLine, Qt::ElideRight, CaptionWidth));
        y += metrics.height();
    }
    if (!size.isEmpty()) {
        p->setFont(small);
        p->setPen(theme.secondaryText);
        p->drawText(QRectF(caption.left(), y, CaptionWidth, smallMetrics.height()), Qt::AlignHCenter | Qt::AlignTop,
            smallMetrics.elidedText(size, Qt::ElideRight, CaptionWidth));
    }
    p->restore();
}

QRectF GraphViewPainter::connectionBoundingRect(const Connection &connection) const
{
    return connection.path().boundingRect().adjusted(-ArrowSize - 8, -ArrowSize - 8, ArrowSize + 8, ArrowSize + 8);
}

QPainterPath GraphViewPainter::connectionShape(const Connection &connection) const
{
    QPainterPathStroker stroker;
    stroker.setWidth(10);
    return stroker.createStroke(connection.path());
}

void GraphViewPainter::paintConnection(
    const Connection &connection, QPainter *p, const QStyleOptionGraphicsItem *option)
{
    Q_UNUSED(option)
    const CanvasTheme &theme = CanvasTheme::current();
    const Node *start = connection.start();
    const int status = start ? qBound(0, start->status(), 3) : 0;
    QColor color = status == Node::Error ? theme.status[Node::Error] : theme.connection;
    qreal width = 1.5;
    if (connection.isSelected()) {
        color = theme.accent;
        width = 3;
    }
    const qreal detail = QStyleOptionGraphicsItem::levelOfDetailFromTransform(p->worldTransform());
    QPen pen(color, width, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin);
    // Dashes under a pixel long can't be seen and cost the most to draw: far out, a lighter
    // solid line stands for them.
    const bool waiting = status == Node::NeedsUpdating || status == Node::Updating;
    if (waiting && detail >= TextDetail) {
        pen.setDashPattern({4 / width * 1.5, 4 / width * 1.5});
    } else if (waiting) {
        QColor lighter = color;
        lighter.setAlphaF(0.55);
        pen.setColor(lighter);
    }
    p->save();
    p->setRenderHint(QPainter::Antialiasing, detail >= MarksDetail);
    if (m_dragging && start != m_dragStart)
        p->setOpacity(0.5);
    const QPainterPath &path = connection.path();
    p->setPen(pen);
    p->setBrush(Qt::NoBrush);
    p->drawPath(path);

    if (detail < MarksDetail) {
        p->restore();
        return;
    }
    // Arrow head along the curve's last direction: the tangent at the end of the last
    // segment, from its last control point (measuring the path's length would flatten
    // the whole curve on every frame).
    const int count = path.elementCount();
    const QPointF tip = count > 0 ? QPointF(path.elementAt(count - 1)) : QPointF();
    QPointF towards = count > 1 ? tip - QPointF(path.elementAt(count - 2)) : QPointF(1, 0);
    for (int i = count - 3; qFuzzyIsNull(towards.manhattanLength()) && i >= 0; --i)
        towards = tip - QPointF(path.elementAt(i));
    const qreal length = qSqrt(QPointF::dotProduct(towards, towards));
    const QPointF back = length > 0 ? towards / length : QPointF(1, 0);
    const QPointF normal(-back.y(), back.x());
    const QPointF base = tip - back * ArrowSize;
    QPolygonF head({tip, base + normal * (ArrowSize / 2), base - normal * (ArrowSize / 2)});
    p->setPen(Qt::NoPen);
    p->setBrush(color);
    p->drawPolygon(head);

    const QString position = detail >= TextDetail ? inputPositionText(connection) : QString();
    if (!position.isEmpty()) {
        QFont font = p->font();
        font.setPixelSize(9);
        font.setBold(true);
        p->setFont(font);
        const QRectF label(base.x() - 16, base.y() - 14, 10, 10);
        p->setBrush(theme.background);
        p->drawEllipse(label.adjusted(-1, -1, 1, 1));
        p->setPen(theme.secondaryText);
        p->drawText(label, Qt::AlignCenter, position);
    }
    p->restore();
}
