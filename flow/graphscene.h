#pragma once

#include <QGraphicsScene>
#include <QList>

class Connection;
class Node;

// The flow of one document: owns its nodes and the connections between them, and
// keeps the connection rules. It needs no view, so a flow can be built and run headless.
class GraphScene : public QGraphicsScene
{
    Q_OBJECT
public:
    explicit GraphScene(QObject *parent = nullptr);
    ~GraphScene() override;

    // Takes ownership; a node with id -1 is given the next free id.
    void addNode(Node *node);
    // Takes the node and its connections out of the scene; the caller owns the node.
    void takeNode(Node *node);
    // Deletes the node and its connections.
    void removeNode(Node *node);

    // In ascending id order.
    QList<Node *> nodes() const;
    // In scene order.
    QList<Node *> selectedNodes() const;
    Node *node(int id) const;
    // By start id, then end id.
    QList<Connection *> connections() const;

    // Scene order: top to bottom, then left to right, then by id, so that the order
    // is total and stable however items are placed.
    static bool sceneOrderLessThan(const Node *a, const Node *b);
    static void sortNodes(QList<Node *> &nodes);

    // Refusals give a text for the status line; a connection to itself gives none.
    bool canConnect(const Node *start, const Node *end, QString *reason = nullptr) const;
    Connection *connectNodes(Node *start, Node *end, QString *reason = nullptr);
    bool disconnectNodes(Node *start, Node *end);
    void removeConnection(Connection *connection);

    // Nodes that can take a connection from start, in scene order: not start, with room
    // for one more input, not already connected from start and not upstream of it.
    QList<Node *> candidateTargets(const Node *start) const;

    bool isRunning() const { return m_running; }
    void setRunning(bool running) { m_running = running; }

signals:
    void nodesMoved(QList<Node *> nodes);

private:
    bool m_running = false;
};
