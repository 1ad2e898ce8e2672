#pragma once

#include <QGraphicsView>
#include <QPointer>

class Connection;
class GraphScene;
class Node;
class NoteEditor;
class NoteNode;
class QMimeData;
class QUndoStack;
class Transform;

// The canvas: a view of the document's GraphScene where items are selected, moved,
// connected, added, copied and deleted. Every edit is one undo step; runs, selection and
// zoom are not edits. Refusals and results go out as status messages.
class GraphView : public QGraphicsView
{
    Q_OBJECT
public:
    explicit GraphView(QWidget *parent = nullptr);
    ~GraphView() override;

    void setGraphScene(GraphScene *scene, QUndoStack *undoStack);
    GraphScene *graphScene() const { return m_scene; }
    QUndoStack *undoStack() const { return m_undoStack; }

    // The item the item pane shows; nullptr for the flow.
    Node *currentNode() const { return m_current; }
    void setCurrentNode(Node *node);

    // Zoom: 1.0 is 100%, held within 10% and 400%.
    qreal zoom() const;
    void setZoom(qreal zoom);
    void zoomBy(qreal factor);
    void zoomToFit();
    static constexpr qreal MinimumZoom = 0.1;
    static constexpr qreal MaximumZoom = 4.0;

    bool snapToGrid() const { return m_snapToGrid; }
    void setSnapToGrid(bool on) { m_snapToGrid = on; }
    static QPointF snapped(const QPointF &point);
    static constexpr qreal GridStep = 16.0;

    // Off during a run: no moving, connecting, deleting or adding.
    void setEditingEnabled(bool enabled);
    bool isEditingEnabled() const { return m_editingEnabled; }

    // Edits, each one undo step. connectNodes says a refusal in the status bar.
    bool connectNodes(Node *start, Node *end);
    // The transform pane's rules: connected from the selected inputs and transforms,
    // inserted into a selected connection, or added alone. at: a drop point.
    Node *addTransform(const Transform *prototype, const QPointF *at = nullptr);
    QList<Node *> addInputFiles(const QStringList &paths, const QPointF *at = nullptr);
    Node *addTextInput(const QString &text, const QPointF *at = nullptr, const QString &stepName = QString());
    Node *addOutput(const QString &path);
    // A chart placed as an output is; with a path it writes that file, its image type
    // taken from the extension.
    // at: placed there instead (the chooser's release point).
    Node *addChart(const QString &path = QString(), const QPointF *at = nullptr);
    // The new note's text is open for editing.
    Node *addNote(const QPointF *at = nullptr);
    // Edits a note's text in place: Escape drops the change; Ctrl+Enter, or focus going
    // elsewhere, keeps it as one step "note change". Enter starts a new line.
    void editNote(NoteNode *note, bool selectAll = false);
    // The text field of the note being edited; nullptr when none is.
    QGraphicsTextItem *noteEditor() const;
    void deleteSelection();
    void copySelection();
    void cutSelection();
    // The clipboard's items, file URLs or text, first match wins.
    void paste(const QMimeData *data);
    void pasteAsInput(const QString &text);
    void duplicateSelection();
    void tidyLayout();
    void selectAllItems();
    // Moves the selected items by delta as one step; keyboard moves merge.
    void moveSelection(const QPointF &delta, bool keyboard);
    bool hasSelection() const;

    // Where a new input goes: below the lowest input.
    QPointF nextInputPosition() const;
    // Moves pos down until shape (relative to pos; an item's tile and caption when null)
    // overlaps no other item or note.
    QPointF freePosition(QPointF pos, const Node *ignore = nullptr, const QRectF &shape = QRectF()) const;

    // The transforms the chooser popup offers, and whether advanced ones are among them.
    void setTransformPrototypes(const QList<Transform *> &prototypes) { m_prototypes = prototypes; }
    void setShowAdvanced(bool on) { m_showAdvanced = on; }
    // What the chooser popup offers besides the transforms.
    enum ChosenKind { ChosenTransform, ChosenOutput, ChosenChart };
    // Adds, at pos, the output, chart or transform chosen in the chooser popup, connected
    // from start.
    Node *addConnectedFrom(Node *start, ChosenKind kind, const Transform *prototype, const QPointF &pos);

    // For tests and the accessible description.
    QString describeCurrent() const;

signals:
    void currentNodeChanged(Node *node);
    void statusMessage(const QString &text, int timeoutMs);
    // A .tflow file dropped alone.
    void openDocumentRequested(const QString &path);
    // The context menu for what is at pos (a node, a connection or nothing).
    void contextMenuWanted(Node *node, Connection *connection, const QPoint &globalPos, const QPointF &scenePos);
    void editingDone();

protected:
    void drawBackground(QPainter *painter, const QRectF &rect) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void mouseDoubleClickEvent(QMouseEvent *event) override;
    void wheelEvent(QWheelEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void contextMenuEvent(QContextMenuEvent *event) override;
    void dragEnterEvent(QDragEnterEvent *event) override;
    void dragMoveEvent(QDragMoveEvent *event) override;
    void dropEvent(QDropEvent *event) override;
    void focusInEvent(QFocusEvent *event) override;
    void focusOutEvent(QFocusEvent *event) override;
    void leaveEvent(QEvent *event) override;

private:
    Node *nodeAt(const QPoint &viewPos) const;
    Connection *connectionAt(const QPoint &viewPos) const;
    void finishConnectionDrag(const QPoint &viewPos);
    void cancelConnectionDrag();
    void navigate(int key, bool extend);
    void makeCurrentAndSelect(Node *node);
    void updateSceneRect();
    void onSceneSelectionChanged();
    void onAboutToRestore(GraphScene *scene);
    void onRestored(GraphScene *scene, const QList<int> &selectedIds);
    QPointF viewCentre() const;
    QList<Node *> placeAndSelect(const QList<Node *> &nodes);
    // Runs what an edit changed once it has returned to the event loop, when Auto Run is on.
    void runSoon();
    void insertIntoConnection(Node *node, Connection *connection);
    bool confirmDisconnect(const QList<Node *> &nodes, const QList<Connection *> &connections, bool deleting);
    void dropFiles(const QStringList &paths, const QPointF &at, Node *onto);
    void finishNoteEdit(bool keep);

    GraphScene *m_scene = nullptr;
    QUndoStack *m_undoStack = nullptr;
    Node *m_current = nullptr;
    int m_currentId = -1;
    bool m_snapToGrid = false;
    bool m_editingEnabled = true;

    // Mouse gestures.
    Node *m_dragStart = nullptr; // a connection being dragged from this node's port
    QGraphicsPathItem *m_dragLine = nullptr;
    bool m_moving = false;
    QByteArray m_moveBefore;
    QHash<Node *, QPointF> m_moveStart;
    bool m_panning = false;
    QPoint m_panLast;
    int m_pasteCount = 0;
    QList<Transform *> m_prototypes;
    bool m_showAdvanced = false;
    QPointer<NoteEditor> m_noteEditor;
};
