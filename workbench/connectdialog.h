#pragma once

#include <QDialog>
#include <QPointer>

class GraphScene;
class Node;
class QLineEdit;
class QListWidget;
class QPushButton;
class QUndoStack;

// Item > Connect To and Connect From: the items the current one can be connected to (or
// from) by the connection rules, filtered by words; Enter or a double-click connects.
class ConnectDialog : public QDialog
{
    Q_OBJECT
public:
    enum Direction { To, From };

    ConnectDialog(GraphScene *scene, Node *node, Direction direction, QUndoStack *undoStack, QWidget *parent = nullptr);

    // The candidates shown, as their list texts.
    QStringList shownItems() const;
    void setFilter(const QString &text);
    // Candidates in scene order, before filtering.
    static QList<Node *> candidates(const GraphScene *scene, const Node *node, Direction direction);

public slots:
    // Connects with the current candidate as one undo step "connect" and closes.
    void connectCurrent();

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void reload();

    QPointer<GraphScene> m_scene;
    QPointer<Node> m_node;
    Direction m_direction;
    QPointer<QUndoStack> m_undoStack;
    QLineEdit *m_filter;
    QListWidget *m_list;
    QPushButton *m_connectButton = nullptr;
};
