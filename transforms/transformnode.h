#pragma once

#include "flow/node.h"

#include <QPointer>

class Parameter;
class Transform;

// The flow item that carries out one Transform on the datasets of its upstream items.
// It owns the transform, keeps the transform's options pointed at the right upstream
// items as connections change, and runs it when its inputs are ready.
class TransformNode : public Node
{
    Q_OBJECT
public:
    // Takes ownership of transform, normally a clone of a registry prototype.
    explicit TransformNode(Transform *transform, QGraphicsItem *parent = nullptr);
    ~TransformNode() override;

    Transform *transform() const { return m_transform; }

    QString typeName() const override { return QStringLiteral("Transform"); }
    QString displayTypeName() const override;
    QString name() const override;
    int maxUpstream() const override;
    int maxDownstream() const override { return 2147483647; }
    bool isInPlace() const;

    // Builds the transform's options for the current upstream items, once; later calls
    // do nothing. The first incoming connection calls it with remembered defaults, so a
    // reader that sets options before connecting calls it first.
    void createParameters(bool useDefaults);
    bool hasParameters() const { return m_parametersCreated; }

    void connectionAdded(Connection *connection) override;
    void sceneAdded(GraphScene *scene) override;

    // Parses the options still waiting for their upstream columns, where those are known.
    virtual void applyPending();

    // The upstream items in the order the transform last put them (a merge puts its top
    // input first by canvas position), then any connected since, in connection order.
    QList<Node *> inputs() const;

    // Ready when no direct upstream item needs updating or failed.
    bool isReady() const;
    void process(bool recursive, bool freeMemory) override;

    QList<DetailRow> details() const override;

signals:
    void nodeParametersChanged(TransformNode *node);

private:
    void updateUpstream();
    void addTooFewInputsWarning(int inputCount);

    Transform *m_transform;
    bool m_parametersCreated = false;
    QList<QPointer<Node>> m_inputOrder;
};
