#pragma once

#include "workbench/duplicatefinder.h"

#include <QDialog>
#include <QPointer>

class DatasetTableModel;
class GraphScene;
class Node;
class QCheckBox;
class QComboBox;
class QLabel;
class QListWidget;
class QProgressBar;
class QPushButton;
class QSpinBox;
class QTableView;
class QTimer;
class QTreeWidget;
class QUndoStack;
class TransformNode;

// Tools > Explore Duplicates: the groups of matching rows a dedupe item would find,
// with its options as working copies to try out, then given to the item in one step.
class ExploreDuplicatesDialog : public QDialog
{
    Q_OBJECT
public:
    // Reads node's options; edits go on undoStack, or without one on the stack of the
    // window or item pane holding parent.
    ExploreDuplicatesDialog(TransformNode *node, QWidget *parent, QUndoStack *undoStack = nullptr);
    ~ExploreDuplicatesDialog() override;

    // More groups than this are counted but not listed.
    static constexpr int ListedGroupLimit = 5000;

    bool isFinding() const;
    const DuplicateFinder &finder() const { return m_finder; }
    QString summaryText() const;
    // The working options as the dialog's controls hold them.
    DuplicateFinder::Options options() const;

public slots:
    void find();
    void stop();
    void useTheseOptions();
    void copyTree();

protected:
    void done(int result) override;

private:
    void findStep();
    void showGroups();
    void showSelectedRow();
    void updateFuzziness();

    QPointer<TransformNode> m_node;
    QPointer<GraphScene> m_scene;
    QPointer<QUndoStack> m_undoStack;
    QPointer<Node> m_input;
    DuplicateFinder m_finder;
    QTimer *m_timer;

    QListWidget *m_columnsList;
    QComboBox *m_matchCombo;
    QSpinBox *m_fuzzinessSpin;
    QCheckBox *m_caseCheck;
    QCheckBox *m_spacesCheck;
    QCheckBox *m_punctuationCheck;
    QComboBox *m_modeCombo;
    QComboBox *m_orderCombo;
    QPushButton *m_findButton;
    QLabel *m_summaryLabel;
    QProgressBar *m_progress;
    QPushButton *m_stopButton;
    QTreeWidget *m_tree;
    QTableView *m_rowView;
    DatasetTableModel *m_rowModel;
    QPushButton *m_useButton;
    QPushButton *m_copyButton;
};
