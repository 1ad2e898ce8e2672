#pragma once

#include "flow/graphscene.h"
#include "flow/node.h"

#include <QPointer>
#include <QWidget>

class DataTableView;
class DatasetTableModel;

class QLabel;
class QToolButton;
class TableFindBar;

// The lower half of the item pane: a tool bar with the size text, "Find", "Go to Row" and
// "Show Whitespace", the find bar, and the data table of the current item with its
// overlay texts.
class DataPanel : public QWidget
{
    Q_OBJECT
public:
    explicit DataPanel(QWidget *parent = nullptr);

    // The item whose data is shown; nullptr shows "Select an item to see its data".
    void setNode(Node *node, GraphScene *scene);
    Node *node() const { return m_node; }
    // Takes the node's current dataset and status; keeps the scroll position and the
    // current cell when the new table is at least as large.
    void refresh();
    // Only the overlay and tool bar texts, for a status change.
    void updateOverlay();

    DataTableView *view() const { return m_view; }
    DatasetTableModel *model() const { return m_model; }
    TableFindBar *findBar() const { return m_findBar; }

    bool showWhitespace() const;
    // The whitespace view of every table; mirrors View > "Show Whitespace in Table".
    void setShowWhitespace(bool on);
    // Makes the first cell of a row (counted from 1) current; false when out of range.
    bool goToRow(int row);

public slots:
    void openFindBar();
    // Asks for a row number in a "Go to Row" dialog.
    void onGoToRow();

signals:
    void showWhitespaceToggled(bool on);
    // The drilldown dialog asks to run an upstream item (Run Selected).
    void runRequested(Node *node);

private slots:
    void onDrilldown(int row, int column);

private:
    QPointer<Node> m_node;
    QPointer<GraphScene> m_scene;
    QLabel *m_sizeLabel;
    QToolButton *m_findButton;
    QToolButton *m_goToRowButton;
    QToolButton *m_whitespaceButton;
    QLabel *m_linksNote;
    TableFindBar *m_findBar;
    DataTableView *m_view;
    DatasetTableModel *m_model;
};
