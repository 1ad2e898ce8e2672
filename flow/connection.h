#pragma once

#include <QGraphicsPathItem>

class Node;

// An arrow from one node's output to another node's input. Making one registers it at
// both ends and deleting it takes it off them, so a node's connection list always
// matches the scene. GraphScene checks the connection rules before making one.
class Connection : public QGraphicsPathItem
{
public:
    enum { Type = UserType + 2 };

    Connection(Node *start, Node *end);
    ~Connection() override;

    int type() const override { return Type; }
    // Drawn by the node's item painter when one is installed.
    QRectF boundingRect() const override;
    QPainterPath shape() const override;
    void paint(QPainter *painter, const QStyleOptionGraphicsItem *option, QWidget *widget) override;
    Node *start() const { return m_start; }
    Node *end() const { return m_end; }

    // A cubic curve from the start's out port to the end's in port.
    void updatePath();

private:
    Node *m_start;
    Node *m_end;
};
