#pragma once

#include "flow/graphscene.h"
#include "flow/node.h"

#include <QDateTime>
#include <QPointer>
#include <QUndoCommand>
#include <QWidget>

#include <functional>

class QFormLayout;
class QGridLayout;
class QLabel;
class QLineEdit;
class QPlainTextEdit;
class QScrollArea;
class QTabWidget;
class QTableWidget;
class QTimer;
class QToolButton;
class QUndoStack;
class QVBoxLayout;

// One edit of what the flow keeps beside its items (its notes, its locale) as an undo
// step; item edits go through UndoScope. It finds its node by id each time (-1 for none); the change itself
// is a pair of functions that set the value from before and after. Steps with the same merge key made less
// than two seconds apart merge, so typing a word is one step.
class ItemEditCommand : public QUndoCommand
{
public:
    using Apply = std::function<void(Node *node)>;
    enum MergeId : int { NoMerge = -1, OptionMerge = 1, CommentMerge = 3 };
    static constexpr int MergeIntervalMs = 2000;

    ItemEditCommand(GraphScene *scene, int nodeId, const QString &name, const Apply &undo, const Apply &redo,
        int mergeId = NoMerge, const QString &mergeKey = QString());

    void undo() override;
    void redo() override;
    int id() const override { return m_mergeId; }
    bool mergeWith(const QUndoCommand *other) override;

private:
    QPointer<GraphScene> m_scene;
    int m_nodeId;
    Apply m_undo;
    Apply m_redo;
    int m_mergeId;
    QString m_mergeKey;
    qint64 m_lastChange;
    bool m_done = true; // pushed after the edit was made: the first redo does nothing
};

// The upper half of the item pane for one item: a header with the item's name, status,
// "?" and "⋯"; then, in an "Options" tab that scrolls, the description, the connection
// hint, the messages of the last run, the type's own option form and the alias and
// comment; and a "Details" tab with the node's details table. Subclasses fill the form
// and load it in updateFromNode(), with signals blocked so that loading is never an edit.
class ItemWidget : public QWidget
{
    Q_OBJECT
public:
    ItemWidget(Node *node, GraphScene *scene, QUndoStack *undoStack, QWidget *parent = nullptr);

    Node *node() const { return m_node; }
    GraphScene *scene() const { return m_scene; }
    QUndoStack *undoStack() const { return m_undoStack; }

    // Reloads everything from the node: header, messages, details and the form.
    void refresh();
    // Options can't be changed during a run.
    virtual void setRunning(bool running);
    bool isRunning() const { return m_running; }
    // Whether the data panel belongs under this widget (notes and the flow have none).
    virtual bool showsData() const { return true; }
    // The name shown in the header and in messages.
    virtual QString displayName() const;
    // Help topic: a transform id or an item type.
    virtual QString helpTopic() const;

    // The defaults of the "⋯" menu. Saving is not an edit; restoring is one step.
    virtual bool canSaveDefaults() const { return false; }
    virtual void saveDefaults() { }
    virtual void restoreDefaults(bool factoryOnly) { Q_UNUSED(factoryOnly) }

    // Makes a change of the node one undo step named name, merged with the step before
    // when both have the same merge id and key (the key is per node). Invalidation is the
    // caller's.
    void recordEdit(const QString &name, const std::function<void(Node *node)> &change,
        int mergeId = ItemEditCommand::NoMerge, const QString &mergeKey = QString());

    // The Auto Run delay: a burst of changes (typing) invalidates the item once the
    // setting auto_run_delay_ms has passed without another; a discrete change at once.
    void startInvalidateTimer();
    void invalidateNow();
    bool isInvalidatePending() const;

    // The height that shows every option without scrolling.
    int fullHeightHint() const;

    QWidget *formWidget() const { return m_form; }
    QLabel *statusLabel() const { return m_statusLabel; }
    QLineEdit *nameEdit() const { return m_nameEdit; }
    QLabel *messagesLabel() const { return m_messagesLabel; }
    QTableWidget *detailsTable() const { return m_detailsTable; }
    QTabWidget *tabs() const { return m_tabs; }

    // The colour of a status, for the current theme.
    static QColor statusColour(int status, bool dark);
    // The colour of descriptions and other secondary text.
    static QColor secondaryColour(bool dark);

    // Opens the help page of helpTopic(), as the "?" button does.
    void showHelp();

signals:
    // A help page was asked for: a transform id or an item type name.
    void helpRequested(const QString &topic);

protected:
    // The type's own options, loaded from the node.
    virtual void updateFromNode() { }
    // "Connect %1 to this item." when the item takes inputs and lacks some; empty else.
    virtual QString connectionHint() const;
    virtual QString descriptionText() const { return QString(); }
    virtual QString resultText() const { return QString(); }
    // Inputs, outputs and charts have an alias and an editable name.
    virtual bool hasAlias() const { return false; }
    virtual bool hasEditableName() const { return false; }
    // A note has no status, and its comment is its text.
    virtual bool hasStatusAndComment() const { return true; }
    // Places a child with its label in the form; a null label spans the row.
    QGridLayout *formLayout() const { return m_formLayout; }
    int addFormRow(const QString &label, QWidget *widget);
    void setRowVisible(int row, bool visible);
    bool isRowVisible(int row) const;
    // Blocks the signals of every control of the form while it is loaded.
    void blockFormSignals(bool block);
    void setRowEnabled(int row, bool enabled);

    bool eventFilter(QObject *watched, QEvent *event) override;
    void changeEvent(QEvent *event) override;
    // After "Reset to Factory Options": when defaults are saved under group, asks "Also
    // forget the saved defaults for %1?" and removes them on "Forget". True when removed.
    bool offerToForgetDefaults(const QString &group, const QString &typeName);

private slots:
    void onNameEdited();
    void onAliasEdited();
    void onCommentChanged();
    void onNodeChanged();
    void onFocusChanged(QWidget *old, QWidget *now);

private:
    void buildHeader(QVBoxLayout *layout);
    void refreshHeader();
    void refreshMessages();
    void refreshDetails();
    void refreshItemSection();

    QPointer<Node> m_node;
    QPointer<GraphScene> m_scene;
    QPointer<QUndoStack> m_undoStack;
    bool m_running = false;
    bool m_showAllWarnings = false;

    QLabel *m_iconLabel;
    QLabel *m_nameLabel;
    QLineEdit *m_nameEdit;
    QLabel *m_statusLabel;
    QToolButton *m_helpButton;
    QToolButton *m_menuButton;
    QTabWidget *m_tabs;
    QScrollArea *m_scrollArea;
    QLabel *m_descriptionLabel;
    QLabel *m_imageLabel;
    QLabel *m_hintLabel;
    QLabel *m_messagesLabel;
    QToolButton *m_informationButton;
    QLabel *m_informationLabel;
    QWidget *m_form;
    QGridLayout *m_formLayout;
    QWidget *m_itemSection;
    QLabel *m_aliasLabel;
    QLineEdit *m_aliasEdit;
    QPlainTextEdit *m_commentEdit;
    QTableWidget *m_detailsTable = nullptr; // made last: set once the widget is built
    QTimer *m_invalidateTimer;
    QList<QList<QWidget *>> m_rows;
};

// Combo boxes and spin boxes of the option pane take the mouse wheel only with focus, so
// that scrolling the pane never changes an option.
void ignoreWheelWithoutFocus(QWidget *widget);
