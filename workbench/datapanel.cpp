#include "workbench/datapanel.h"

#include "core/settings.h"
#include "flow/graphscene.h"
#include "flow/node.h"
#include "workbench/datasettablemodel.h"
#include "workbench/datatableview.h"
#include "workbench/drilldowndialog.h"
#include "workbench/findbar.h"

#include <QFontDatabase>
#include <QHBoxLayout>
#include <QInputDialog>
#include <QLabel>
#include <QLocale>
#include <QScrollBar>
#include <QToolButton>
#include <QVBoxLayout>

DataPanel::DataPanel(QWidget *parent)
    : QWidget(parent)
{
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(2);

    auto *toolBar = new QHBoxLayout;
    toolBar->setContentsMargins(4, 2, 4, 0);
    m_sizeLabel = new QLabel(this);
    m_sizeLabel->setTextInteractionFlags(Qt::TextSelectableByMouse);
    auto button = [this](const QString &text, const QString &tip) {
        auto *result = new QToolButton(this);
        result->setText(text);
        result->setToolTip(tip);
        result->setAutoRaise(true);
        return result;
    };
    m_findButton = button(tr("Find"), tr("Find in the table (Ctrl+F)"));
    m_findButton->setCheckable(true);
    m_goToRowButton = button(tr("Go to Row"), tr("Go to a row by its number (Ctrl+G)"));
    m_whitespaceButton =
        button(tr("Show Whitespace"), tr("Show spaces as '·' and line breaks and tabs in grey"));
    m_whitespaceButton->setCheckable(true);
    m_linksNote = new QLabel(tr("Double-click a marked cell to see the rows behind it"), this);
    m_linksNote->setVisible(false);
    QPalette secondary = m_linksNote->palette();
    secondary.setColor(QPalette::WindowText, secondary.color(QPalette::PlaceholderText));
    m_linksNote->setPalette(secondary);
    toolBar->addWidget(m_sizeLabel);
    toolBar->addWidget(m_linksNote);
    toolBar->addStretch(1);
    toolBar->addWidget(m_findButton);
    toolBar->addWidget(m_goToRowButton);
    toolBar->addWidget(m_whitespaceButton);
    layout->addLayout(toolBar);

    m_model = new DatasetTableModel(this);
    m_view = new DataTableView(this);
    m_view->setDatasetModel(m_model);
    m_findBar = new TableFindBar(m_view, this);
    m_findBar->setVisible(false);
    layout->addWidget(m_findBar);
    layout->addWidget(m_view, 1);

    connect(m_findButton, &QToolButton::toggled, this, [this](bool on) {
        if (on)
            m_findBar->activate();
        else
            m_findBar->hide();
    });
    connect(m_findBar, &TableFindBar::closed, this, [this] {
        const QSignalBlocker blocker(m_findButton);
        m_findButton->setChecked(false);
    });
    connect(m_goToRowButton, &QToolButton::clicked, this, &DataPanel::onGoToRow);
    connect(m_whitespaceButton, &QToolButton::toggled, this, [this](bool on) {
        setShowWhitespace(on);
        emit showWhitespaceToggled(on);
    });
    connect(m_view, &DataTableView::drilldownRequested, this, &DataPanel::onDrilldown);
    setNode(nullptr, nullptr);
}

void DataPanel::setNode(Node *node, GraphScene *scene)
{
    m_scene = scene;
    if (scene && scene->settings()) {
        const Settings *settings = scene->settings();
        m_model->setMaxCellChars(settings->intValue(QStringLiteral("table_max_cell_chars")));
        const QString fontText = settings->stringValue(QStringLiteral("table_font"));
        QFont font = this->font();
        if (!fontText.isEmpty())
            font.fromString(fontText);
        m_view->setTableFont(font);
        const QSignalBlocker blocker(m_whitespaceButton);
        m_whitespaceButton->setChecked(settings->boolValue(QStringLiteral("table_show_whitespace")));
        m_model->setShowWhitespace(m_whitespaceButton->isChecked());
    }
    m_model->setDarkColours(palette().color(QPalette::Window).lightness() < 128);
    if (node != m_node) {
        m_node = node;
        m_findBar->cancel();
        m_model->setWindowStart(0);
        m_model->setDataset(node ? node->dataset() : Dataset(), node ? node->id() : -1);
        m_view->scrollToTop();
        m_view->horizontalScrollBar()->setValue(0);
        m_findBar->updateColumns();
    } else {
        refresh();
        return;
    }
    updateOverlay();
}

void DataPanel::refresh()
{
    const Dataset dataset = m_node ? m_node->dataset() : Dataset();
    const Dataset &old = m_model->dataset();
    const bool larger = dataset.rowCount() >= old.rowCount() && dataset.columnCount() >= old.columnCount();
    const int firstRow = m_view->firstVisibleRow();
    const int horizontal = m_view->horizontalScrollBar()->value();
    const QModelIndex current = m_view->currentIndex();
    const int currentRow = current.isValid() ? m_model->datasetRow(current.row()) : -1;
    const int currentColumn = current.column();
    m_model->setDataset(dataset, m_node ? m_node->id() : -1);
    if (larger) {
        if (currentRow >= 0 && m_model->modelRow(currentRow) >= 0)
            m_view->setCurrentIndex(m_model->index(m_model->modelRow(currentRow), currentColumn));
        m_view->scrollToRow(firstRow);
        m_view->horizontalScrollBar()->setValue(horizontal);
    }
    m_findBar->updateColumns();
    updateOverlay();
}

void DataPanel::updateOverlay()
{
    const Dataset &dataset = m_model->dataset();
    const bool hasData = dataset.hasRows() && dataset.hasColumns();
    QString overlay;
    if (!m_node) {
        overlay = tr("Select an item to see its data");
    } else if (!hasData) {
        switch (m_node->status()) {
        case Node::Updating:
            overlay = tr("Processing...");
            break;
        case Node::NeedsUpdating:
            overlay = (m_scene && m_scene->isAutoRun()) ? tr("Awaiting update") : tr("Run to update");
            break;
        case Node::Error:
            overlay = m_node->warnings().value(0, Node::noDataText());
            break;
        default:
            overlay = Node::noDataText();
            break;
        }
    }
    m_view->setOverlayText(overlay);
    m_sizeLabel->setText(
        m_node && hasData ? Node::formatSize(dataset.columnCount(), dataset.rowCount(), false) : QString());
    m_linksNote->setVisible(m_node && dataset.hasCellRowLinks());
    m_findButton->setEnabled(hasData);
    m_goToRowButton->setEnabled(dataset.hasRows());
}

bool DataPanel::showWhitespace() const
{
    return m_model->showWhitespace();
}

void DataPanel::setShowWhitespace(bool on)
{
    {
        const QSignalBlocker blocker(m_whitespaceButton);
        m_whitespaceButton->setChecked(on);
    }
    m_model->setShowWhitespace(on);
    if (m_scene && m_scene->settings())
        m_scene->settings()->setValue(QStringLiteral("table_show_whitespace"), on);
    m_view->viewport()->update();
}

void DataPanel::openFindBar()
{
    m_findButton->setChecked(true);
    m_findBar->activate();
}

bool DataPanel::goToRow(int row)
{
    return m_view->goToCell(row - 1, 0);
}

void DataPanel::onGoToRow()
{
    const int rows = m_model->dataset().rowCount();
    if (rows == 0)
        return;
    const QModelIndex current = m_view->currentIndex();
    bool ok = false;
    const int row =
        QInputDialog::getInt(this, tr("Go to Row"), tr("Row (1 to %1):").arg(QLocale().toString(rows)),
            current.isValid() ? m_model->datasetRow(current.row()) + 1 : 1, 1, rows, 1, &ok);
    if (ok) {
        goToRow(row);
        m_view->setFocus();
    }
}

void DataPanel::onDrilldown(int row, int column)
{
    if (!m_node)
        return;
    auto *dialog = new DrilldownDialog(m_node, row, column, window());
    connect(dialog, &DrilldownDialog::runRequested, this, &DataPanel::runRequested);
    dialog->show();
}
