#include "transformnode.h"

#include "transform.h"

#include "flow/connection.h"
#include "flow/graphscene.h"

#include <algorithm>

#include <QElapsedTimer>

TransformNode::TransformNode(Transform *transform, QGraphicsItem *parent)
    : Node(parent)
    , m_transform(transform)
{
    Q_ASSERT(m_transform);
    connect(m_transform, &Transform::processed, this,
        [this](qreal fraction) { GraphScene::reportProgress(this, fraction); });
}

TransformNode::~TransformNode()
{
    delete m_transform;
}

QString TransformNode::displayTypeName() const
{
    return tr("Transform");
}

QString TransformNode::name() const
{
    return m_transform->name();
}

int TransformNode::maxUpstream() const
{
    return m_transform->maximumInputs();
}

bool TransformNode::isInPlace() const
{
    return m_transform->isInPlace();
}

void TransformNode::createParameters(bool useDefaults)
{
    if (m_parametersCreated)
        return;
    m_parametersCreated = true;
    m_transform->createParameters(upstream(false), useDefaults);
    emit nodeParametersChanged(this);
}

void TransformNode::connectionAdded(Connection *connection)
{
    Node::connectionAdded(connection);
    if (!connection || connection->end() != this)
        return;
    if (m_parametersCreated)
        updateUpstream();
    else
        createParameters(true);
}

void TransformNode::sceneAdded(GraphScene *scene)
{
    Node::sceneAdded(scene);
    connect(scene, &GraphScene::connectionRemoved, this, [this](Node *start, Node *end) {
        Q_UNUSED(start)
        if (end == this && m_parametersCreated)
            updateUpstream();
    });
}

QList<Node *> TransformNode::inputs() const
{
    const QList<Node *> connected = upstream(false);
    QList<Node *> result;
    for (const QPointer<Node> &node : m_inputOrder) {
        if (node && connected.contains(node))
            result << node;
    }
    for (Node *node : connected) {
        if (!result.contains(node))
            result << node;
    }
    return result;
}

void TransformNode::updateUpstream()
{
    m_transform->setUpstream(inputs());
    emit nodeParametersChanged(this);
}

void TransformNode::applyPending()
{
    bool changed = false;
    for (Parameter *parameter : m_transform->parameterList())
        changed = parameter->applyPending() || changed;
    if (changed)
        emit nodeParametersChanged(this);
}

bool TransformNode::isReady() const
{
    const QList<Node *> above = upstream(false);
    return std::none_of(above.cbegin(), above.cend(),
        [](const Node *node) { return node->status() == NeedsUpdating || node->status() == Error; });
}

void TransformNode::process(bool recursive, bool freeMemory)
{
    if (GraphScene::isStopRequested())
        return;
    if (status() != UpToDate && isReady()) {
        m_dataset = Dataset();
        m_warnings.clear();
        m_information.clear();
        setStatus(Updating, false);
        emit processingStart(this);
        applyPending();
        // The top input of a merge is the higher item on the canvas, whatever the order
        // in which the connections were made. The order is kept, so that the next run
        // starts from the order the options now follow.
        QList<Node *> inputs = this->inputs();
        m_transform->reorderInputs(inputs);
        m_inputOrder.clear();
        for (Node *node : qAsConst(inputs))
            m_inputOrder << node;
        QElapsedTimer timer;
        timer.start();
        GraphScene::reportProgress(this, 0);

        m_transform->clearMessages();
        bool failed = false;
        m_dataset = m_transform->process(inputs, failed);
        // What an upstream item recorded is not passed on unless the transform says so.
        if (!m_transform->keepsDrilldown())
            m_dataset.clearCellRowLinks();
        if (!m_transform->keepsVerifyResults())
            m_dataset.clearVerifyMarks();
        assignColumnIds();
        GraphScene::reportProgress(this, 1.0);
        m_transform->processingEnded();
        m_transform->checkParameters();
        setProcessingTime(int(timer.elapsed()));
        setLastProcessed(QDateTime::currentDateTime());
        m_warnings << m_transform->warnings();
        m_information << m_transform->information();
        addTooFewInputsWarning(inputs.size());
        setStatus(failed ? Error : UpToDate, false);

        // Options below that wait for this item's columns can be read now.
        const QList<Node *> below = downstream(false);
        for (Node *node : below) {
            if (auto *transformNode = qobject_cast<TransformNode *>(node))
                transformNode->applyPending();
        }
        emit processingEnd(this);
        m_dataset.releaseValuePools();
        if (GraphScene *scene = graphScene())
            scene->addRowsProcessed(m_dataset.rowCount());
        emit nodeDataChanged(this);
        for (Node *node : below)
            node->update();
        update();
        if (freeMemory)
            GraphScene::freeUpstreamMemory(this);
    }
    if (status() == UpToDate && recursive) {
        for (Node *node : downstream(false))
            node->process(true, freeMemory);
    }
}

void TransformNode::addTooFewInputsWarning(int inputCount)
{
    const int minimum = m_transform->minimumInputs();
    if (inputCount >= minimum)
        return;
    if (minimum == m_transform->maximumInputs())
        addWarning(tr("%1 upstream %2 expected")
                       .arg(minimum)
                       .arg(minimum < 2 ? tr("connection") : tr("connections")));
    else
        addWarning(tr("At least %1 upstream connections expected").arg(minimum));
}

QList<DetailRow> TransformNode::details() const
{
    return Node::details()
        + QList<DetailRow> {
            {tr("Result"), m_transform->result()},
            {tr("Description"), m_transform->description()},
        };
}
