#include "undo.h"

#include "flow/document.h"
#include "flow/documentelement.h"
#include "flow/graphscene.h"
#include "flow/node.h"

#include <QDateTime>
#include <QHash>
#include <QUndoStack>

namespace {

QHash<const GraphScene *, int> &openScopes()
{
    static QHash<const GraphScene *, int> scopes;
    return scopes;
}

bool s_restoring = false;

qint64 now()
{
    return QDateTime::currentMSecsSinceEpoch();
}

} // namespace

UndoScope::UndoScope(GraphScene *scene, QUndoStack *stack, const QString &name, int mergeId, const QString &mergeKey)
    : m_scene(scene)
    , m_stack(stack)
    , m_name(name)
    , m_mergeId(mergeId)
    , m_mergeKey(mergeKey)
{
    if (!m_scene || s_restoring)
        return;
    int &depth = openScopes()[m_scene];
    m_outermost = depth == 0;
    ++depth;
    if (m_outermost)
        m_before = UndoState::capture(*m_scene);
}

UndoScope::~UndoScope()
{
    if (!m_scene || s_restoring)
        return;
    int &depth = openScopes()[m_scene];
    --depth;
    if (depth <= 0)
        openScopes().remove(m_scene);
    if (!m_outermost || m_cancelled || !m_stack)
        return;
    const QByteArray after = UndoState::capture(*m_scene);
    if (after == m_before)
        return;
    m_stack->push(new SceneChangeCommand(m_scene, m_name, m_before, after, m_mergeId, m_mergeKey));
}

bool UndoScope::isOpen(const GraphScene *scene)
{
    return openScopes().value(scene) > 0;
}

bool UndoScope::isRestoring()
{
    return s_restoring;
}

SceneChangeCommand::SceneChangeCommand(GraphScene *scene, const QString &name, const QByteArray &before,
    const QByteArray &after, int mergeId, const QString &mergeKey)
    : QUndoCommand(name)
    , m_scene(scene)
    , m_before(before)
    , m_after(after)
    , m_mergeId(mergeId)
    , m_mergeKey(mergeKey)
    , m_lastChange(now())
{
}

void SceneChangeCommand::undo()
{
    UndoState::restore(*m_scene, m_before);
    m_done = false;
}

void SceneChangeCommand::redo()
{
    if (m_done)
        return; // the edit itself made the change
    UndoState::restore(*m_scene, m_after);
    m_done = true;
}

bool SceneChangeCommand::mergeWith(const QUndoCommand *other)
{
    const auto *next = dynamic_cast<const SceneChangeCommand *>(other);
    if (!next || m_mergeId == UndoScope::NoMerge || next->m_mergeId != m_mergeId || next->m_mergeKey != m_mergeKey
        || next->m_scene != m_scene || next->m_lastChange - m_lastChange >= UndoState::MergeIntervalMs)
        return false;
    m_after = next->m_after;
    m_lastChange = next->m_lastChange;
    // Back where it started: the step is dropped from the stack.
    setObsolete(m_after == m_before);
    return true;
}

UndoNotifier *UndoNotifier::instance()
{
    static UndoNotifier notifier;
    return &notifier;
}

namespace UndoState {

QByteArray capture(const GraphScene &scene)
{
    DocumentElement root;
    Document::writeItems(scene, false, DocumentProperties(), root);
    // The meta element names the writer and the time: not part of the flow.
    if (DocumentElement *meta = root.firstChild(QStringLiteral("meta")))
        meta->children().clear();
    return root.toXml(Document::documentType());
}

void restore(GraphScene &scene, const QByteArray &state)
{
    QList<int> selectedIds;
    for (const Node *node : scene.selectedNodes())
        selectedIds << node->id();
    const bool wasRestoring = s_restoring;
    s_restoring = true;
    emit UndoNotifier::instance()->aboutToRestore(&scene);
    const QList<Node *> nodes = scene.nodes();
    for (Node *node : nodes)
        scene.removeNode(node);
    QString error;
    Document::readDocumentText(state, QString(), scene, nullptr, &error, nullptr);
    for (Node *node : scene.nodes())
        node->setSelected(selectedIds.contains(node->id()));
    s_restoring = wasRestoring;
    emit UndoNotifier::instance()->restored(&scene, selectedIds);
}

} // namespace UndoState
