#pragma once

#include "flow/graphscene.h"
#include "flow/node.h"

#include <QPointer>
#include <QWidget>

class ChartWidget;
class DataPanel;
class QTabWidget;

class ItemWidget;

class QSplitter;
class QStackedWidget;
class QUndoStack;

// The right-hand pane: the current item's options above (an ItemWidget of its type) and
// its data below (DataPanel), in a vertical splitter. With no current item it shows the
// flow's own options.
class ItemPane : public QWidget
{
    Q_OBJECT
public:
    explicit ItemPane(QWidget *parent = nullptr);
    ~ItemPane() override;

    // The document's scene and undo stack; edits made in the pane are steps on it.
    void setScene(GraphScene *scene, QUndoStack *undoStack);
    GraphScene *scene() const { return m_scene; }
    // nullptr shows the flow.
    void setCurrentNode(Node *node);
    Node *currentNode() const { return m_node; }
    // Options are disabled during a run.
    void setRunning(bool running);
    // Reloads options and data from the node (after a run); loading is never an edit.
    void refresh();

    QByteArray saveSplitterState() const;
    bool restoreSplitterState(const QByteArray &state);

    ItemWidget *itemWidget() const { return m_itemWidget; }
    DataPanel *dataPanel() const { return m_dataPanel; }
    // Below a chart's options: the "Chart" tab with its drawing and the "Data" tab with
    // the table. Other items show the table alone.
    QTabWidget *dataTabs() const { return m_dataTabs; }
    // The drawing of the current chart; nullptr for other items.
    ChartWidget *chartView() const { return m_chartView; }
    QSplitter *splitter() const { return m_splitter; }

signals:
    // A help page: a transform id, or an item type ("Input", "Output", "Note", "Flow").
    void helpRequested(const QString &topic);
    // The drilldown dialog asks to run an upstream item (Run Selected).
    void runRequested(Node *node);

private slots:
    void onNodeDataChanged();
    void onNodeStatusChanged();
    void onUndoIndexChanged();

private:
    ItemWidget *createItemWidget(Node *node);
    void fitSplitter();

    QPointer<GraphScene> m_scene;
    QPointer<QUndoStack> m_undoStack;
    QPointer<Node> m_node;
    bool m_running = false;
    int m_restoringId = -1;
    QSplitter *m_splitter;
    QStackedWidget *m_stack;
    ItemWidget *m_itemWidget = nullptr;
    DataPanel *m_dataPanel;
    QTabWidget *m_dataTabs;
    ChartWidget *m_chartView = nullptr;
};
