#pragma once

#include "core/dataset.h"

#include "flow/graphscene.h"
#include "flow/node.h"
#include <QDialog>

#include <QPointer>

class DataTableView;
class DatasetTableModel;

class QLabel;
class QPushButton;

// "Linked Rows": the rows of the first upstream item that one folded cell stands for,
// with their upstream row numbers in a first column "Row". Cells of this table that have
// links of their own can be drilled into again.
class DrilldownDialog : public QDialog
{
    Q_OBJECT
public:
    // row and column are in node's dataset.
    DrilldownDialog(Node *node, int row, int column, QWidget *parent = nullptr);

    // The rows shown, built from the upstream dataset: "Row" then its columns. Empty with
    // a reason when the upstream item has no data for the links.
    static Dataset linkedRows(const Node *node, int row, int column, QString *reason = nullptr);

    const Dataset &rows() const { return m_rows; }
    QString text() const;

signals:
    // The upstream item should be run (Run Selected) to give the rows.
    void runRequested(Node *node);

private slots:
    void onDrilldown(int row, int column);
    void onCopy();

private:
    QPointer<Node> m_node;
    QPointer<Node> m_upstream;
    Dataset m_rows;
    QLabel *m_label;
    DatasetTableModel *m_model;
    DataTableView *m_view;
};
