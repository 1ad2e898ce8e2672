#include "graphscene.h"

#include "connection.h"
#include "node.h"

#include <QSet>

#include <algorithm>

GraphScene::GraphScene(QObject *parent)
    : QGraphicsScene(parent)
{ }

GraphScene::~GraphScene()
{
    // Nodes first, each taking its connections with it, so that no connection outlives
    // an end while the base class clears what is left.
    qDeleteAll(nodes());
}

void GraphScene::addNode(Node *node)
{
    if (!node || node->scene() == this)
        return;
    if (node->id() == -1)
        node->assignId(-1);
    addItem(node);
    for (Connection *connection : node->connections(Node::AllConnections)) {
        if (!connection->scene())
            addItem(connection);
    }
    node->sceneAdded(this);
}

void GraphScene::takeNode(Node *node)
{
    if (!node || node->scene() != this)
        return;
    qDeleteAll(node->connections(Node::AllConnections));
    removeItem(node);
    node->disconnect(this);
    disconnect(node);
}

void GraphScene::removeNode(Node *node)
{
    if (!node || node->scene() != this)
        return;
    delete node;
}

QList<Node *> GraphScene::nodes() const
{
    QList<Node *> result;
    for (QGraphicsItem *item : items()) {
        if (Node *node = qgraphicsitem_cast<Node *>(item))
            result << node;
    }
    std::sort(result.begin(), result.end(), [](const Node *a, const Node *b) { return a->id() < b->id(); });
    return result;
}

QList<Node *> GraphScene::selectedNodes() const
{
    QList<Node *> result;
    for (QGraphicsItem *item : selectedItems()) {
        if (Node *node = qgraphicsitem_cast<Node *>(item))
            result << node;
    }
    sortNodes(result);
    return result;
}

Node *GraphScene::node(int id) const
{
    for (QGraphicsItem *item : items()) {
        Node *node = qgraphicsitem_cast<Node *>(item);
        if (node && node->id() == id)
            return node;
    }
    return nullptr;
}

QList<Connection *> GraphScene::connections() const
{
    QList<Connection *> result;
    for (QGraphicsItem *item : items()) {
        if (Connection *connection = qgraphicsitem_cast<Connection *>(item))
            result << connection;
    }
    std::sort(result.begin(), result.end(), [](const Connection *a, const Connection *b) {
        return qMakePair(a->start()->id(), a->end()->id()) < qMakePair(b->start()->id(), b->end()->id());
    });
    return result;
}

bool GraphScene::sceneOrderLessThan(const Node *a, const Node *b)
{
    const QPointF p = a->scenePos();
    const QPointF q = b->scenePos();
    if (p.y() != q.y())
        return p.y() < q.y();
    if (p.x() != q.x())
        return p.x() < q.x();
    return a->id() < b->id();
}

void GraphScene::sortNodes(QList<Node *> &nodes)
{
    std::stable_sort(nodes.begin(), nodes.end(), sceneOrderLessThan);
}

bool GraphScene::canConnect(const Node *start, const Node *end, QString *reason) const
{
    const auto refuse = [reason](const QString &text) {
        if (reason)
            *reason = text;
        return false;
    };
    if (!start || !end || start == end || start->scene() != this || end->scene() != this)
        return refuse(QString());
    if (end->isConnectedFrom(start))
        return refuse(tr("'%1' is already connected to '%2'").arg(start->name(), end->name()));
    if (start->connections(Node::Outgoing).size() >= start->maxDownstream())
        return refuse(tr("'%1' can't be connected to other items").arg(start->name()));
    if (end->connections(Node::Incoming).size() >= end->maxUpstream())
        return refuse(tr("'%1' takes no more inputs").arg(end->name()));
    if (end->reachable(start))
        return refuse(tr("Can't connect '%1' to '%2': it would make a loop").arg(start->name(), end->name()));
    if (reason)
        reason->clear();
    return true;
}

Connection *GraphScene::connectNodes(Node *start, Node *end, QString *reason)
{
    if (!canConnect(start, end, reason))
        return nullptr;
    auto *connection = new Connection(start, end);
    addItem(connection);
    end->connectionAdded(connection);
    start->connectionAdded(connection);
    return connection;
}

bool GraphScene::disconnectNodes(Node *start, Node *end)
{
    if (!start)
        return false;
    for (Connection *connection : start->connections(Node::Outgoing)) {
        if (connection->end() == end) {
            removeConnection(connection);
            return true;
        }
    }
    return false;
}

void GraphScene::removeConnection(Connection *connection)
{
    delete connection;
}

QList<Node *> GraphScene::candidateTargets(const Node *start) const
{
    QList<Node *> result;
    if (!start)
        return result;
    const QList<Node *> closure = start->upstreamClosure();
    const QSet<Node *> above(closure.cbegin(), closure.cend());
    for (Node *node : nodes()) {
        if (node != start && node->connections(Node::Incoming).size() < node->maxUpstream()
            && !node->isConnectedFrom(start) && !above.contains(node))
            result << node;
    }
    sortNodes(result);
    return result;
}
