#include "workbench/drilldowndialog.h"

#include "flow/node.h"
#include "workbench/datasettablemodel.h"
#include "workbench/datatableview.h"

#include <QApplication>
#include <QClipboard>
#include <QDialogButtonBox>
#include <QLabel>
#include <QLocale>
#include <QMimeData>
#include <QPushButton>
#include <QVBoxLayout>

#include <algorithm>

Dataset DrilldownDialog::linkedRows(const Node *node, int row, int column, QString *reason)
{
    Dataset rows;
    if (!node)
        return rows;
    QList<DataRowIndex> links = node->dataset().cellRowLinks(row, column);
    std::sort(links.begin(), links.end());
    const Node *upstream = node->upstream(false).value(0);
    const int needed = links.isEmpty() ? 0 : links.last().toInt() + 1;
    if (!upstream || upstream->status() != Node::UpToDate || upstream->dataset().rowCount() < needed) {
        if (reason)
            *reason = DrilldownDialog::tr("'%1' has no data for these rows. Run it to see them.")
                          .arg(upstream ? upstream->name() : DrilldownDialog::tr("<unset>"));
        return rows;
    }
    const Dataset &source = upstream->dataset();
    rows.setColumnCount(source.columnCount() + 1);
    rows.setHeaders(QStringList(DrilldownDialog::tr("Row")) + source.displayHeaders());
    for (DataRowIndex link : links) {
        if (link.toInt() < 0)
            continue;
        rows.appendRow(QStringList(QString::number(link.toInt() + 1)) + source.row(link), true);
        // The row's own links, one column to the right, so they can be drilled into too.
        for (int c = 0; c < source.columnCount(); ++c) {
            const QList<DataRowIndex> inner = source.cellRowLinks(link, c);
            if (!inner.isEmpty())
                rows.addCellRowLinks(rows.lastRow(), c + 1, inner);
        }
    }
    return rows;
}

DrilldownDialog::DrilldownDialog(Node *node, int row, int column, QWidget *parent)
    : QDialog(parent)
    , m_node(node)
{
    setObjectName(QStringLiteral("DrilldownDialog"));
    setWindowTitle(tr("Linked Rows"));
    setAttribute(Qt::WA_DeleteOnClose);
    setModal(false);
    m_upstream = node ? node->upstream(false).value(0) : nullptr;
    QString reason;
    m_rows = linkedRows(node, row, column, &reason);

    auto *layout = new QVBoxLayout(this);
    m_label = new QLabel(this);
    m_label->setWordWrap(true);
    m_label->setTextInteractionFlags(Qt::TextSelectableByMouse);
    const int links = node ? node->dataset().cellRowLinks(row, column).size() : 0;
    m_label->setText(tr("Row %1, column '%2' of '%3' stands for %4 row(s) of '%5':")
                         .arg(QLocale().toString(row + 1))
                         .arg(node ? node->dataset().headerText(column) : QString())
                         .arg(node ? node->name() : QString())
                         .arg(links)
                         .arg(m_upstream ? m_upstream->name() : tr("<unset>")));
    layout->addWidget(m_label);
    if (!reason.isEmpty()) {
        auto *reasonLabel = new QLabel(reason, this);
        reasonLabel->setWordWrap(true);
        layout->addWidget(reasonLabel);
        auto *run = new QPushButton(tr("&Run"), this);
        connect(run, &QPushButton::clicked, this, [this] {
            if (m_upstream)
                emit runRequested(m_upstream);
        });
        layout->addWidget(run, 0, Qt::AlignLeft);
    }
    m_model = new DatasetTableModel(this);
    m_model->setDataset(m_rows, -1);
    m_view = new DataTableView(this);
    m_view->setDatasetModel(m_model);
    m_view->setVisible(reason.isEmpty());
    layout->addWidget(m_view, 1);
    connect(m_view, &DataTableView::drilldownRequested, this, &DrilldownDialog::onDrilldown);

    auto *buttons = new QDialogButtonBox(QDialogButtonBox::Close, this);
    QPushButton *copy = buttons->addButton(tr("&Copy"), QDialogButtonBox::ActionRole);
    copy->setEnabled(m_rows.hasRows());
    connect(copy, &QPushButton::clicked, this, &DrilldownDialog::onCopy);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    layout->addWidget(buttons);
    resize(720, 420);
}

QString DrilldownDialog::text() const
{
    return m_label->text();
}

void DrilldownDialog::onDrilldown(int row, int column)
{
    // Deeper links point into the upstream item's own first upstream item.
    if (!m_upstream || column < 1)
        return;
    const int upstreamRow = m_rows.cell(row, 0).toInt() - 1;
    auto *dialog = new DrilldownDialog(m_upstream, upstreamRow, column - 1, parentWidget());
    connect(dialog, &DrilldownDialog::runRequested, this, &DrilldownDialog::runRequested);
    dialog->show();
}

void DrilldownDialog::onCopy()
{
    auto *mime = new QMimeData;
    mime->setText(m_rows.toTabSeparatedText(true));
    mime->setHtml(m_rows.toHtml(true));
    QApplication::clipboard()->setMimeData(mime);
}
