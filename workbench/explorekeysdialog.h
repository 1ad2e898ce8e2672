#pragma once

#include "core/dataset.h"

#include <QDialog>
#include <QElapsedTimer>
#include <QHash>
#include <QPointer>

#include <vector>

class GraphScene;
class KeyTableModel;
class Node;
class QCheckBox;
class QComboBox;
class QLabel;
class QProgressBar;
class QPushButton;
class QTableView;
class QTimer;
class QUndoStack;
class DatasetTableModel;
class TransformNode;

// The counts behind the key-based merges: how the keys of a top and a bottom column
// meet. Keys are the cells as the merges see them (lower-cased when not case
// sensitive), so the numbers are the ones a run gives. Counting goes in slices, so a
// caller can keep the window alive over tables of millions of rows.
class KeyCounter
{
public:
    struct Key
    {
        QString text; // the first cell seen with this key, as it stands
        int top = 0;
        int bottom = 0;
        int topFirst = -1;
        int bottomFirst = -1;
        int topLast = -1;
        int bottomLast = -1;
    };
    struct Summary
    {
        qint64 topRows = 0, bottomRows = 0;
        qint64 topKeys = 0, bottomKeys = 0;
        qint64 topDuplicated = 0, bottomDuplicated = 0;
        qint64 bothKeys = 0, bothTopRows = 0, bothBottomRows = 0;
        qint64 topOnlyKeys = 0, topOnlyRows = 0;
        qint64 bottomOnlyKeys = 0, bottomOnlyRows = 0;
        qint64 matchingRows = 0; // what a join by these keys gives: top count x bottom count
    };

    void start(const Dataset &top, int topColumn, const Dataset &bottom, int bottomColumn, bool caseSensitive);
    // Counts for about budgetMs (any budget below 0: to the end); true when done.
    bool step(int budgetMs);
    bool isDone() const { return m_side > 1; }
    // How far the counting is, 0 to 1.
    double progress() const;

    const std::vector<Key> &keys() const { return m_keys; }
    Summary summary() const;
    // The rows holding a key on one side (0 top, 1 bottom), at most limit, ascending.
    QList<int> rows(int keyIndex, int side, int limit) const;

private:
    Dataset m_top, m_bottom;
    int m_topColumn = -1, m_bottomColumn = -1;
    bool m_caseSensitive = false;
    int m_side = 2;
    int m_row = 0;
    QHash<QString, int> m_index;
    std::vector<Key> m_keys;
    std::vector<int> m_nextTop, m_nextBottom;
};

// Tools > Explore Keys: the keys of a merge's top and bottom key columns, how many rows
// each side has per key, and the rows a join would match, with the keys that don't meet.
// The key columns and case sensitivity can be tried out and then given to the item.
class ExploreKeysDialog : public QDialog
{
    Q_OBJECT
public:
    // Shows the keys of node's two inputs in its top and bottom order. Edits go on
    // undoStack; without one, the stack of the window or item pane holding parent.
    ExploreKeysDialog(TransformNode *node, QWidget *parent, QUndoStack *undoStack = nullptr);
    ~ExploreKeysDialog() override;

    // Counting in slices starts above this many rows in all.
    static constexpr int SlicedRows = 200000;

    bool isCounting() const;
    const KeyCounter &counter() const { return m_counter; }
    // The summary lines as shown.
    QStringList summaryLines() const;

    // The undo stack the edits of a dialog go on: undoStack when set, else that of the
    // window or item pane holding parent.
    static QUndoStack *findUndoStack(QWidget *parent);

public slots:
    void refresh();
    void guess();
    void useTheseColumns();
    void copyTable();
    void stop();

protected:
    void done(int result) override;

private:
    void fillColumnCombo(QComboBox *combo, const Node *input, int column);
    void countStep();
    void showCounts();
    void showSelectedKey();
    void runUpstream();
    void setWorking(bool working);

    QPointer<TransformNode> m_node;
    QPointer<GraphScene> m_scene;
    QPointer<QUndoStack> m_undoStack;
    QPointer<Node> m_topInput, m_bottomInput;
    KeyCounter m_counter;
    QTimer *m_timer;
    QElapsedTimer m_elapsed;

    QComboBox *m_topCombo;
    QComboBox *m_bottomCombo;
    QCheckBox *m_caseCheck;
    QPushButton *m_guessButton;
    QPushButton *m_refreshButton;
    QLabel *m_noDataLabel;
    QPushButton *m_runButton;
    QLabel *m_summaryLabel;
    QProgressBar *m_progress;
    QPushButton *m_stopButton;
    QComboBox *m_showCombo;
    QTableView *m_keyView;
    KeyTableModel *m_keyModel;
    QTableView *m_topRowsView;
    QTableView *m_bottomRowsView;
    DatasetTableModel *m_topRowsModel;
    DatasetTableModel *m_bottomRowsModel;
    QLabel *m_topMoreLabel;
    QLabel *m_bottomMoreLabel;
    QPushButton *m_useButton;
    QPushButton *m_copyButton;
};
