#pragma once

#include <QByteArray>
#include <QList>
#include <QObject>
#include <QString>
#include <QUndoCommand>

class GraphScene;
class QUndoStack;

// Undo and redo of flow edits. An edit is wrapped in an UndoScope:
//
//     UndoScope scope(scene, undoStack, tr("'%1' change").arg(parameter->label()),
//                     UndoScope::OptionMerge, QStringLiteral("%1/%2").arg(node->id()).arg(name));
//     parameter->setValue(widget->value());
//
// The scope records the flow's items and connections as the document writer writes them
// when it starts, and again when it ends; a change pushes one step named by the scope,
// no change pushes nothing. Scopes nest: an inner scope joins the outermost one, whose
// name the step takes. Datasets, statuses, selection and zoom are never recorded.
class UndoScope
{
public:
    // Merge ids: a step merges into the step on top of the stack when both have the same
    // id and key and the top step is less than 2 seconds old, so that typing a word or
    // moving by keys is one step.
    enum MergeId : int { NoMerge = -1, OptionMerge = 1, KeyboardMoveMerge = 2, CommentMerge = 3 };

    UndoScope(GraphScene *scene, QUndoStack *stack, const QString &name, int mergeId = NoMerge,
        const QString &mergeKey = QString());
    ~UndoScope();
    UndoScope(const UndoScope &) = delete;
    UndoScope &operator=(const UndoScope &) = delete;

    // Ends the scope without pushing a step (the edit was refused or given up).
    void cancel() { m_cancelled = true; }
    // True while a scope is open on scene.
    static bool isOpen(const GraphScene *scene);
    // True while a step is being undone or redone: edits caused by the restore are not steps.
    static bool isRestoring();

private:
    GraphScene *m_scene;
    QUndoStack *m_stack;
    QString m_name;
    int m_mergeId;
    QString m_mergeKey;
    QByteArray m_before;
    bool m_outermost = false;
    bool m_cancelled = false;
};

// One step: the flow's recorded text before and after the edit.
class SceneChangeCommand : public QUndoCommand
{
public:
    SceneChangeCommand(GraphScene *scene, const QString &name, const QByteArray &before, const QByteArray &after,
        int mergeId = UndoScope::NoMerge, const QString &mergeKey = QString());

    void undo() override;
    void redo() override;
    int id() const override { return m_mergeId; }
    bool mergeWith(const QUndoCommand *other) override;

    QByteArray before() const { return m_before; }
    QByteArray after() const { return m_after; }

private:
    GraphScene *m_scene;
    QByteArray m_before;
    QByteArray m_after;
    int m_mergeId;
    QString m_mergeKey;
    qint64 m_lastChange; // ms since the epoch
    bool m_done = true; // pushed after the edit was made: the first redo does nothing
};

// Tells views that a step is about to replace the items of a scene, so that they let go
// of the node pointers they hold, and that it has, with the ids of the items that were
// selected and current so that they can be picked again.
class UndoNotifier : public QObject
{
    Q_OBJECT
public:
    static UndoNotifier *instance();

signals:
    void aboutToRestore(GraphScene *scene);
    void restored(GraphScene *scene, const QList<int> &selectedIds);
};

namespace UndoState {
// The items and connections of scene as document text, without anything that changes
// between two writes of the same flow.
QByteArray capture(const GraphScene &scene);
// Replaces every item of scene by those of state, with their ids. Nodes come back as
// "Needs updating"; the window runs them when Auto Run is on.
void restore(GraphScene &scene, const QByteArray &state);
// The maximum age of a step that another may merge into, in ms.
constexpr int MergeIntervalMs = 2000;
} // namespace UndoState
