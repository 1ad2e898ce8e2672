#include "node.h"

#include "connection.h"
#include "graphscene.h"

#include <QFontMetricsF>
#include <QLocale>
#include <QPainter>
#include <QSet>

namespace {

int s_nextId = 1;
ItemPainter *s_itemPainter = nullptr;

const qreal TileSize = 56.0;
const qreal CaptionWidth = 150.0;
const qreal CaptionHeight = 24.0;

QColor statusColor(int status)
{
    switch (status) {
    case Node::Updating:
        return QColor(0x1E, 0x6F, 0xD9);
    case Node::UpToDate:
        return QColor(0x2E, 0x85, 0x40);
    case Node::Error:
        return QColor(0xC8, 0x37, 0x2D);
    default:
        return QColor(0xB7, 0x79, 0x1F);
    }
}

} // namespace

Node::Node(QGraphicsItem *parent)
    : QGraphicsObject(parent)
{
    setFlags(ItemIsSelectable | ItemIsMovable | ItemSendsGeometryChanges);
}

Node::~Node()
{
    // Each connection takes itself off both of its ends as it goes.
    const QList<Connection *> connections = m_connections;
    qDeleteAll(connections);
}

QRectF Node::tileRect()
{
    return QRectF(-TileSize / 2, -TileSize / 2, TileSize, TileSize);
}

void Node::setItemPainter(ItemPainter *painter)
{
    s_itemPainter = painter;
}

ItemPainter *Node::itemPainter()
{
    return s_itemPainter;
}

QRectF Node::boundingRect() const
{
    if (s_itemPainter)
        return s_itemPainter->nodeBoundingRect(*this);
    const QRectF tile = tileRect();
    return QRectF(-CaptionWidth / 2, tile.top() - 2, CaptionWidth, tile.height() + CaptionHeight + 4);
}

void Node::paint(QPainter *painter, const QStyleOptionGraphicsItem *option, QWidget *widget)
{
    Q_UNUSED(widget)
    if (s_itemPainter) {
        s_itemPainter->paintNode(*this, painter, option);
        return;
    }
    const QRectF tile = tileRect();
    painter->setPen(QPen(statusColor(m_status), isSelected() ? 3.0 : 2.0));
    painter->setBrush(Qt::white);
    painter->drawRoundedRect(tile, 8, 8);
    const QRectF caption(-CaptionWidth / 2, tile.bottom() + 2, CaptionWidth, CaptionHeight);
    const QString text = QFontMetricsF(painter->font()).elidedText(name(), Qt::ElideRight, caption.width());
    painter->setPen(Qt::black);
    painter->drawText(caption, Qt::AlignHCenter | Qt::AlignTop, text);
}

void Node::assignId(int id)
{
    m_id = id == -1 ? s_nextId++ : id;
}

int Node::nextId()
{
    return s_nextId;
}

void Node::setNextId(int id)
{
    s_nextId = id;
}

void Node::raiseNextId(int id)
{
    if (id >= s_nextId)
        s_nextId = id + 1;
}

void Node::setComment(const QString &comment)
{
    if (comment == m_comment)
        return;
    m_comment = comment;
    update();
    emit nodeCommentChanged(this);
}

void Node::setName(const QString &name)
{
    m_name = name;
    update();
}

QString Node::statusText(bool extended) const
{
    QStringList pieces;
    pieces << tr("'%1'").arg(name()) << tr("Id=%1").arg(id()) << tr("[%1]").arg(statusName(status()))
           << tr("  %1: %2").arg(displayTypeName(), summaryText());
    if (extended)
        pieces << tr("%1 warning(s)").arg(warningCount());
    QString text = pieces.join(QStringLiteral(", "));
    if (extended) {
        for (const QString &line : textLines())
            text += QLatin1Char('\n') + line;
    }
    return text;
}

QString Node::summaryText() const
{
    if (m_dataset.hasNoColumns() && m_dataset.hasNoRows())
        return noDataText();
    return sizeText();
}

QList<DetailRow> Node::details() const
{
    return identityRows() + commonRows() + fileRows();
}

QList<Connection *> Node::connections(int kind) const
{
    if (kind != Outgoing && kind != Incoming)
        return m_connections;
    QList<Connection *> result;
    for (Connection *connection : m_connections) {
        const Node *mine = kind == Outgoing ? connection->start() : connection->end();
        if (mine == this)
            result << connection;
    }
    return result;
}

void Node::connectionAdded(Connection *connection)
{
    Q_UNUSED(connection)
}

void Node::setStatus(int status, bool propagate)
{
    const bool changed = status != m_status;
    if (changed) {
        m_status = status;
        update();
        emit nodeStatusChanged();
    }
    // Downstream nodes may hold an older status than this one, so the walk goes on even
    // when nothing changed here.
    if (propagate) {
        for (Node *node : downstream(false))
            node->setStatus(status, true);
    }
    if (changed) {
        for (Connection *connection : qAsConst(m_connections))
            connection->update();
    }
}

QString Node::sizeText() const
{
    return formatSize(m_dataset.columnCount(), m_dataset.rowCount(), false);
}

QString Node::sizeChangeText() const
{
    const Node *source = upstream(false).value(0);
    if (!source)
        return sizeText();
    const Dataset &before = source->dataset();
    return formatSize(
        m_dataset.columnCount() - before.columnCount(), m_dataset.rowCount() - before.rowCount(), true);
}

QString Node::formatSize(int columns, int rows, bool signedCounts)
{
    const auto count = [signedCounts](int n) {
        const QString digits = countText(qAbs(qlonglong(n)));
        if (n < 0)
            return QLatin1Char('-') + digits;
        if (n > 0 && signedCounts)
            return QLatin1Char('+') + digits;
        return digits;
    };
    return tr("%1 %2 x %3 %4")
        .arg(count(columns), qAbs(columns) == 1 ? tr("col") : tr("cols"), count(rows),
            qAbs(rows) == 1 ? tr("row") : tr("rows"));
}

QList<Node *> Node::upstream(bool sorted) const
{
    QList<Node *> nodes;
    for (Connection *connection : m_connections) {
        if (connection->end() == this)
            nodes << connection->start();
    }
    if (sorted && nodes.size() > 1)
        GraphScene::sortNodes(nodes);
    return nodes;
}

QList<Node *> Node::downstream(bool sorted) const
{
    QList<Node *> nodes;
    for (Connection *connection : m_connections) {
        if (connection->start() == this)
            nodes << connection->end();
    }
    if (sorted && nodes.size() > 1)
        GraphScene::sortNodes(nodes);
    return nodes;
}

QList<Node *> Node::siblings(bool includeSelf) const
{
    QList<Node *> nodes;
    for (const Node *parent : upstream(false)) {
        for (Node *node : parent->downstream(false)) {
            if (!nodes.contains(node))
                nodes << node;
        }
    }
    Node *self = const_cast<Node *>(this);
    if (!includeSelf)
        nodes.removeAll(self);
    else if (!nodes.contains(self))
        nodes << self;
    return nodes;
}

Node *Node::previousSibling() const
{
    QList<Node *> nodes = siblings(true);
    GraphScene::sortNodes(nodes);
    const int index = nodes.indexOf(const_cast<Node *>(this));
    return index > 0 ? nodes.at(index - 1) : nullptr;
}

Node *Node::nextSibling() const
{
    QList<Node *> nodes = siblings(true);
    GraphScene::sortNodes(nodes);
    const int index = nodes.indexOf(const_cast<Node *>(this));
    return index + 1 < nodes.size() ? nodes.at(index + 1) : nullptr;
}

QList<Node *> Node::closure(bool up, bool selectedOnly) const
{
    // Breadth first, so that the nearest nodes come first; the visited set keeps a
    // diamond from listing a node twice.
    QList<Node *> result;
    QSet<const Node *> seen {this};
    QList<Node *> frontier = up ? upstream(false) : downstream(false);
    for (int i = 0; i < frontier.size(); ++i) {
        Node *node = frontier.at(i);
        if (seen.contains(node))
            continue;
        seen.insert(node);
        if (!selectedOnly || node->isSelected())
            result << node;
        frontier << (up ? node->upstream(false) : node->downstream(false));
    }
    return result;
}

QList<Node *> Node::upstreamClosure() const
{
    return closure(true, false);
}

QList<Node *> Node::downstreamClosure() const
{
    return closure(false, false);
}

QList<Node *> Node::selectedUpstreamClosure() const
{
    return closure(true, true);
}

QList<Node *> Node::selectedDownstreamClosure() const
{
    return closure(false, true);
}

bool Node::reachable(const Node *node) const
{
    if (!node || node == this)
        return false;
    QSet<const Node *> seen {this};
    QList<Node *> frontier = downstream(false);
    for (int i = 0; i < frontier.size(); ++i) {
        Node *next = frontier.at(i);
        if (next == node)
            return true;
        if (seen.contains(next))
            continue;
        seen.insert(next);
        frontier << next->downstream(false);
    }
    return false;
}

bool Node::isConnectedFrom(const Node *node) const
{
    if (!node)
        return false;
    for (Connection *connection : node->connections(Outgoing)) {
        if (connection->end() == this)
            return true;
    }
    return false;
}

void Node::setAlias(const QString &alias)
{
    m_alias = alias.trimmed();
}

void Node::sceneAdded(GraphScene *scene)
{
    connect(this, &Node::nodePosChanged, scene, &GraphScene::nodesMoved);
}

bool Node::canConnectOut() const
{
    const GraphScene *scene = graphScene();
    return scene && connections(Outgoing).size() < maxDownstream()
        && !scene->candidateTargets(this).isEmpty();
}

int Node::depth() const
{
    QHash<const Node *, int> known;
    return depth(known);
}

int Node::depth(QHash<const Node *, int> &known) const
{
    // Remembered per call, so that a flow with many diamonds is walked once.
    const auto found = known.constFind(this);
    if (found != known.constEnd())
        return found.value();
    int result = 0;
    for (const Node *node : upstream(false))
        result = qMax(result, node->depth(known) + 1);
    known.insert(this, result);
    return result;
}

void Node::addWarning(const QString &text)
{
    m_warnings << text;
}

void Node::addInformation(const QString &text)
{
    m_information << text;
}

QString Node::warningSummary() const
{
    if (m_warnings.isEmpty())
        return QString();
    return m_warnings.first().section(QLatin1Char('\n'), 0, 0);
}

void Node::setDataset(const Dataset &dataset)
{
    m_dataset = dataset;
}

QString Node::noDataText()
{
    return tr("No data");
}

QList<DetailRow> Node::identityRows() const
{
    const qlonglong values = qlonglong(m_dataset.rowCount()) * m_dataset.columnCount();
    return {
        {tr("Name"), name()},
        {tr("Id"), QString::number(id())},
        {tr("Status"), statusName(status())},
        {tr("Size"), sizeText()},
        {tr("Type"), displayTypeName()},
        {tr("Dataset columns"), countText(m_dataset.columnCount())},
        {tr("Dataset rows"), countText(m_dataset.rowCount())},
        {tr("Dataset values"), countText(values)},
    };
}

QList<DetailRow> Node::commonRows() const
{
    return {
        {tr("Comment"), comment()},
        {tr("Warnings"), countText(warningCount())},
        {tr("Info"), countText(informationCount())},
        {tr("Last processed"), dateTimeText(m_lastProcessed)},
        {tr("Processing time"), processingTimeText(m_processingTime)},
    };
}

void Node::assignColumnIds()
{
    m_dataset.assignColumnIds(id());
}

GraphScene *Node::graphScene() const
{
    return qobject_cast<GraphScene *>(scene());
}

QString Node::statusName(int status)
{
    switch (status) {
    case NeedsUpdating:
        return tr("Needs updating");
    case Updating:
        return tr("Updating");
    case UpToDate:
        return tr("Up to date");
    case Error:
        return tr("Error");
    default:
        return QString();
    }
}

QString Node::processingTimeText(int milliseconds)
{
    if (milliseconds < 1000)
        return tr("%1 ms").arg(countText(milliseconds));
    return tr("%1 second(s)").arg(QLocale().toString(milliseconds / 1000.0, 'f', 3));
}

QString Node::dateTimeText(const QDateTime &when)
{
    return when.isValid() ? QLocale().toString(when, QLocale::LongFormat) : QString();
}

QString Node::countText(qlonglong count)
{
    return QLocale().toString(count);
}

QPointF Node::outPortScenePos() const
{
    const QRectF tile = tileRect();
    return mapToScene(QPointF(tile.right(), tile.center().y()));
}

QPointF Node::inPortScenePos() const
{
    const QRectF tile = tileRect();
    return mapToScene(QPointF(tile.left(), tile.center().y()));
}

QVariant Node::itemChange(GraphicsItemChange change, const QVariant &value)
{
    if (change == ItemPositionHasChanged)
        updateConnectionGeometry();
    return QGraphicsObject::itemChange(change, value);
}

void Node::updateConnectionGeometry()
{
    for (Connection *connection : qAsConst(m_connections))
        connection->updatePath();
}
