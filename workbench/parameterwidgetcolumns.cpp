#include "workbench/parameterwidgets.h"

#include "workbench/itemwidget.h"

#include <QApplication>
#include <QClipboard>
#include <QCollator>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QKeyEvent>
#include <QListWidget>
#include <QMenu>
#include <QMouseEvent>
#include <QPushButton>
#include <QStandardItemModel>
#include <QTimer>
#include <QToolButton>
#include <QVBoxLayout>

#include <algorithm>

using namespace parameterwidgets;

namespace {

const int IdRole = Qt::UserRole + 1;

ColumnId idOf(const QListWidgetItem *item)
{
    return item->data(IdRole).value<ColumnId>();
}

QToolButton *makeRemove(QWidget *parent)
{
    auto *button = new QToolButton(parent);
    button->setText(QStringLiteral("✕"));
    button->setToolTip(QObject::tr("Remove"));
    button->setAccessibleName(QObject::tr("Remove"));
    button->setAutoRaise(true);
    return button;
}

void fitHeight(QTableWidget *table, int minimumRows, int maximumRows)
{
    // Rows take the height of their widgets; the table shows up to maximumRows of them.
    int rowHeight = table->verticalHeader()->defaultSectionSize();
    for (int r = 0; r < table->rowCount(); ++r) {
        for (int c = 0; c < table->columnCount(); ++c) {
            if (QWidget *widget = table->cellWidget(r, c))
                rowHeight = qMax(rowHeight, widget->sizeHint().height());
        }
    }
    for (int r = 0; r < table->rowCount(); ++r)
        table->setRowHeight(r, rowHeight);
    const int height = table->horizontalHeader()->sizeHint().height()
        + rowHeight * qBound(minimumRows, table->rowCount(), maximumRows);
    table->setFixedHeight(height + 2 * table->frameWidth() + 2);
}

void fitHeight(QListWidget *list, int minimumRows, int maximumRows)
{
    const int rowHeight = list->count() > 0 ? list->sizeHintForRow(0) : list->fontMetrics().height() + 4;
    list->setFixedHeight(
        rowHeight * qBound(minimumRows, list->count(), maximumRows) + 2 * list->frameWidth() + 4);
}

QLineEdit *makeFilter(QWidget *parent)
{
    auto *filter = new QLineEdit(parent);
    filter->setPlaceholderText(QObject::tr("Filter columns"));
    filter->setAccessibleName(QObject::tr("Filter columns"));
    filter->setClearButtonEnabled(true);
    return filter;
}

} // namespace

// Columns and OptionalColumns

MultipleColumnsParameterWidget::MultipleColumnsParameterWidget(Parameter *parameter, QWidget *parent)
    : CompositeParameterWidget(parameter, parent)
{
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    m_filter = makeFilter(this);
    m_list = new QListWidget(this);
    m_list->setSelectionMode(QAbstractItemView::ExtendedSelection);
    m_list->viewport()->installEventFilter(this);
    m_list->installEventFilter(this);
    auto *buttons = new QHBoxLayout;
    const QStringList names = {tr("All"), tr("None"), tr("Invert")};
    for (int i = 0; i < names.size(); ++i) {
        auto *button = new QPushButton(names.at(i), this);
        button->setToolTip(tr("Acts on the columns the filter shows."));
        connect(button, &QPushButton::clicked, this, [this, i] { setShownChecks(i); });
        buttons->addWidget(button);
    }
    buttons->addStretch(1);
    m_count = new QLabel(this);
    buttons->addWidget(m_count);
    m_missingLabel = new QLabel(this);
    m_missingLabel->setTextFormat(Qt::RichText);
    m_missingLabel->setTextInteractionFlags(Qt::LinksAccessibleByMouse | Qt::LinksAccessibleByKeyboard);
    layout->addWidget(m_filter);
    layout->addWidget(m_list);
    layout->addLayout(buttons);
    layout->addWidget(m_missingLabel);
    connect(m_filter, &QLineEdit::textChanged, this, [this](const QString &text) {
        for (int i = 0; i < m_list->count(); ++i)
            m_list->item(i)->setHidden(!m_list->item(i)->text().contains(text, Qt::CaseInsensitive));
    });
    connect(m_list, &QListWidget::itemChanged, this, [this] {
        updateCount();
        onChanged();
    });
    connect(m_missingLabel, &QLabel::linkActivated, this, [this] {
        m_missing.clear();
        m_missingLabel->hide();
        onChanged();
    });
    updateFromParameter();
}

void MultipleColumnsParameterWidget::updateFromParameter()
{
    if (showsCurrentValue())
        return;
    load([this] {
        m_list->clear();
        const Dataset *dataset = m_parameter->upstreamDataset();
        const QList<ColumnId> chosen = m_parameter->value().value<QList<ColumnId>>();
        m_missing.clear();
        if (dataset) {
            const QStringList texts = columnTexts(*dataset);
            for (int c = 0; c < texts.size(); ++c) {
                auto *item = new QListWidgetItem(texts.at(c), m_list);
                item->setFlags(Qt::ItemIsEnabled | Qt::ItemIsUserCheckable | Qt::ItemIsSelectable);
                item->setCheckState(chosen.contains(dataset->columnId(c)) ? Qt::Checked : Qt::Unchecked);
                item->setData(IdRole, QVariant::fromValue(dataset->columnId(c)));
                item->setToolTip(columnSummary(*dataset, c));
                item->setHidden(!m_filter->text().isEmpty()
                    && !item->text().contains(m_filter->text(), Qt::CaseInsensitive));
            }
            for (const ColumnId &id : chosen) {
                if (!dataset->columnIndex(id).isValid())
                    m_missing << id;
            }
        }
        m_missingLabel->setText(
            tr("%1 selected column(s) are no longer in the input. <a href=\"forget\">Forget</a>")
                .arg(m_missing.size()));
        m_missingLabel->setVisible(!m_missing.isEmpty());
        fitHeight(m_list, 3, 10);
        m_list->setEnabled(m_parameter->upstream() != nullptr);
        updateCount();
    });
}

QVariant MultipleColumnsParameterWidget::value() const
{
    // The checked columns in the input's order; gone ones stay until forgotten.
    QList<ColumnId> ids;
    for (int i = 0; i < m_list->count(); ++i) {
        if (m_list->item(i)->checkState() == Qt::Checked)
            ids << idOf(m_list->item(i));
    }
    ids << m_missing;
    if (ids == m_parameter->value().value<QList<ColumnId>>() || m_list->count() == 0)
        return m_parameter->value();
    return QVariant::fromValue(ids);
}

QWidget *MultipleColumnsParameterWidget::focusTarget() const
{
    return m_list;
}

void MultipleColumnsParameterWidget::setShownChecks(int how)
{
    {
        const QSignalBlocker blocker(m_list);
        for (int i = 0; i < m_list->count(); ++i) {
            QListWidgetItem *item = m_list->item(i);
            if (item->isHidden())
                continue;
            const bool checked = how == 0 || (how == 2 && item->checkState() != Qt::Checked);
            item->setCheckState(checked ? Qt::Checked : Qt::Unchecked);
        }
    }
    updateCount();
    onChanged();
}

void MultipleColumnsParameterWidget::updateCount()
{
    int checked = 0;
    for (int i = 0; i < m_list->count(); ++i)
        checked += m_list->item(i)->checkState() == Qt::Checked;
    m_count->setText(tr("%1 of %2 selected").arg(checked).arg(m_list->count()));
}

bool MultipleColumnsParameterWidget::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == m_list && event->type() == QEvent::KeyPress) {
        // Space toggles every selected row at once.
        const auto *key = static_cast<QKeyEvent *>(event);
        const QList<QListWidgetItem *> selected = m_list->selectedItems();
        if (key->key() == Qt::Key_Space && selected.size() > 1) {
            const bool check = m_list->currentItem() && m_list->currentItem()->checkState() != Qt::Checked;
            const QSignalBlocker blocker(m_list);
            for (QListWidgetItem *item : selected)
                item->setCheckState(check ? Qt::Checked : Qt::Unchecked);
            updateCount();
            onChanged();
            return true;
        }
    }
    if (watched == m_list->viewport() && event->type() == QEvent::MouseButtonRelease) {
        // Shift+click on a check box sets the whole range from the last one clicked.
        const auto *mouse = static_cast<QMouseEvent *>(event);
        QListWidgetItem *item = m_list->itemAt(mouse->pos());
        const int row = item ? m_list->row(item) : -1;
        if (row >= 0 && (mouse->modifiers() & Qt::ShiftModifier) && m_lastClicked >= 0) {
            const Qt::CheckState state = m_list->item(m_lastClicked)->checkState();
            const QSignalBlocker blocker(m_list);
            for (int i = qMin(row, m_lastClicked); i <= qMax(row, m_lastClicked); ++i) {
                if (!m_list->item(i)->isHidden())
                    m_list->item(i)->setCheckState(state);
            }
            updateCount();
            onChanged();
            return true;
        }
        if (row >= 0)
            m_lastClicked = row;
    }
    return CompositeParameterWidget::eventFilter(watched, event);
}

// SortColumns and GroupColumns

SortColumnsParameterWidget::SortColumnsParameterWidget(Parameter *parameter, QWidget *parent)
    : CompositeParameterWidget(parameter, parent)
{
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    m_table = new QTableWidget(0, 3, this);
    m_table->setHorizontalHeaderLabels({tr("Column"), tr("Order"), QString()});
    m_table->horizontalHeader()->setSectionResizeMode(0, QHeaderView::Stretch);
    m_table->horizontalHeader()->setSectionResizeMode(1, QHeaderView::Fixed);
    m_table->horizontalHeader()->setSectionResizeMode(2, QHeaderView::Fixed);
    m_table->verticalHeader()->setVisible(false);
    m_table->setSelectionBehavior(QAbstractItemView::SelectRows);
    m_table->setSelectionMode(QAbstractItemView::SingleSelection);
    m_table->setEditTriggers(QAbstractItemView::NoEditTriggers);
    m_table->setTabKeyNavigation(false);
    m_table->setColumnHidden(1, !parameter->isSortOrderShown());
    m_table->setAccessibleName(parameter->label());
    layout->addWidget(m_table);
    auto *buttons = new QHBoxLayout;
    m_add = new QPushButton(tr("Add Column"), this);
    auto *up = new QPushButton(tr("Up"), this);
    auto *down = new QPushButton(tr("Down"), this);
    buttons->addWidget(m_add);
    buttons->addStretch(1);
    buttons->addWidget(up);
    buttons->addWidget(down);
    layout->addLayout(buttons);
    connect(m_add, &QPushButton::clicked, this, &SortColumnsParameterWidget::addColumn);
    connect(up, &QPushButton::clicked, this, [this] { moveCurrent(-1); });
    connect(down, &QPushButton::clicked, this, [this] { moveCurrent(1); });
    updateFromParameter();
}

void SortColumnsParameterWidget::updateFromParameter()
{
    if (showsCurrentValue())
        return;
    load([this] {
        setRows(m_parameter->value().value<SortColumnList>());
        m_add->setEnabled(m_parameter->upstream() != nullptr);
    });
}

void SortColumnsParameterWidget::setRows(const SortColumnList &columns)
{
    m_table->setRowCount(0);
    for (const SortColumn &column : columns)
        addRow(column);
    greyUsedColumns();
    fitHeight(m_table, 2, 12);
}

void SortColumnsParameterWidget::addRow(const SortColumn &column)
{
    const int row = m_table->rowCount();
    m_table->insertRow(row);
    auto *combo = new QComboBox(m_table);
    ignoreWheelWithoutFocus(combo);
    combo->setAccessibleName(tr("Column %1").arg(row + 1));
    fillColumnCombo(combo, m_parameter->upstreamDataset(), QString(), column.column);
    auto *order = new QComboBox(m_table);
    ignoreWheelWithoutFocus(order);
    order->addItems({tr("Ascending"), tr("Descending")});
    order->setCurrentIndex(column.ascending ? 0 : 1);
    order->setAccessibleName(tr("Order"));
    QToolButton *remove = makeRemove(m_table);
    m_table->setCellWidget(row, 0, combo);
    m_table->setCellWidget(row, 1, order);
    m_table->setCellWidget(row, 2, remove);
    m_table->setColumnWidth(1, order->sizeHint().width());
    m_table->setColumnWidth(2, remove->sizeHint().width() + 4);
    connect(combo, QOverload<int>::of(&QComboBox::activated), this, [this] {
        greyUsedColumns();
        onChanged();
    });
    connect(order, QOverload<int>::of(&QComboBox::activated), this, &SortColumnsParameterWidget::onChanged);
    connect(remove, &QToolButton::clicked, this, [this, remove] { removeSortRow(rowOf(remove)); });
}

int SortColumnsParameterWidget::rowOf(QWidget *widget) const
{
    for (int r = 0; r < m_table->rowCount(); ++r) {
        for (int c = 0; c < m_table->columnCount(); ++c) {
            if (m_table->cellWidget(r, c) == widget)
                return r;
        }
    }
    return -1;
}

void SortColumnsParameterWidget::greyUsedColumns()
{
    chainTableTabOrder(m_table);
    QList<ColumnId> used;
    for (int r = 0; r < m_table->rowCount(); ++r)
        used << columnCombo(r)->currentData().value<ColumnId>();
    for (int r = 0; r < m_table->rowCount(); ++r) {
        QComboBox *combo = columnCombo(r);
        auto *model = qobject_cast<QStandardItemModel *>(combo->model());
        for (int i = 0; model && i < combo->count(); ++i) {
            const ColumnId id = combo->itemData(i).value<ColumnId>();
            model->item(i)->setEnabled(i == combo->currentIndex() || !used.contains(id));
        }
    }
}

QVariant SortColumnsParameterWidget::value() const
{
    SortColumnList columns;
    for (int r = 0; r < m_table->rowCount(); ++r) {
        SortColumn column;
        column.column = columnCombo(r)->currentData().value<ColumnId>();
        column.ascending = orderCombo(r)->currentIndex() == 0;
        if (!column.column.isUnset())
            columns << column;
    }
    return QVariant::fromValue(columns);
}

QWidget *SortColumnsParameterWidget::focusTarget() const
{
    return m_table->rowCount() > 0 ? m_table->cellWidget(0, 0) : m_add;
}

QComboBox *SortColumnsParameterWidget::columnCombo(int row) const
{
    return qobject_cast<QComboBox *>(m_table->cellWidget(row, 0));
}

QComboBox *SortColumnsParameterWidget::orderCombo(int row) const
{
    return qobject_cast<QComboBox *>(m_table->cellWidget(row, 1));
}

void SortColumnsParameterWidget::addColumn()
{
    const Dataset *dataset = m_parameter->upstreamDataset();
    if (!dataset || dataset->columnCount() == 0)
        return;
    // The first column not yet used, so that the new row is a real choice at once.
    SortColumnList columns = value().value<SortColumnList>();
    SortColumn column;
    for (int c = 0; c < dataset->columnCount() && column.column.isUnset(); ++c) {
        const ColumnId id = dataset->columnId(c);
        if (std::none_of(
                columns.cbegin(), columns.cend(), [id](const SortColumn &s) { return s.column == id; }))
            column.column = id;
    }
    if (column.column.isUnset())
        column.column = dataset->columnId(0);
    addRow(column);
    greyUsedColumns();
    fitHeight(m_table, 2, 12);
    m_table->setCurrentCell(m_table->rowCount() - 1, 0);
    columnCombo(m_table->rowCount() - 1)->setFocus();
    onChanged();
}

void SortColumnsParameterWidget::moveCurrent(int by)
{
    const int row = m_table->currentRow();
    const int to = row + by;
    if (row < 0 || to < 0 || to >= m_table->rowCount())
        return;
    SortColumnList columns;
    for (int r = 0; r < m_table->rowCount(); ++r)
        columns << SortColumn {
            columnCombo(r)->currentData().value<ColumnId>(), orderCombo(r)->currentIndex() == 0};
    columns.move(row, to);
    setRows(columns);
    m_table->setCurrentCell(to, 0);
    onChanged();
}

void SortColumnsParameterWidget::removeSortRow(int row)
{
    if (row < 0 || row >= m_table->rowCount())
        return;
    m_table->removeRow(row);
    greyUsedColumns();
    fitHeight(m_table, 2, 12);
    onChanged();
}

// ReorderColumns

ReorderColumnsParameterWidget::ReorderColumnsParameterWidget(Parameter *parameter, QWidget *parent)
    : CompositeParameterWidget(parameter, parent)
{
    auto *layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    m_list = new QListWidget(this);
    m_list->setSelectionMode(QAbstractItemView::ExtendedSelection);
    m_list->setDragDropMode(QAbstractItemView::InternalMove);
    m_list->setDefaultDropAction(Qt::MoveAction);
    m_list->installEventFilter(this);
    layout->addWidget(m_list, 1);
    auto *buttons = new QVBoxLayout;
    const QList<QPair<QString, int>> moves = {
        {tr("Top"), -2}, {tr("Up"), -1}, {tr("Down"), 1}, {tr("Bottom"), 2}};
    for (const auto &move : moves) {
        auto *button = new QPushButton(move.first, this);
        const int how = move.second;
        connect(button, &QPushButton::clicked, this, [this, how] { moveSelected(how); });
        buttons->addWidget(button);
    }
    buttons->addSpacing(8);
    auto *sort = new QPushButton(tr("Sort A–Z"), this);
    auto *reverse = new QPushButton(tr("Reverse"), this);
    auto *reset = new QPushButton(tr("Reset"), this);
    reset->setToolTip(tr("Back to the input's order"));
    buttons->addWidget(sort);
    buttons->addWidget(reverse);
    buttons->addWidget(reset);
    buttons->addStretch(1);
    layout->addLayout(buttons);
    connect(sort, &QPushButton::clicked, this, &ReorderColumnsParameterWidget::sortByName);
    connect(reverse, &QPushButton::clicked, this, &ReorderColumnsParameterWidget::reverse);
    connect(reset, &QPushButton::clicked, this, &ReorderColumnsParameterWidget::resetOrder);
    // A drop moves rows inside the list; the order is read once the drop is over.
    m_list->viewport()->installEventFilter(this);
    connect(m_list->model(), &QAbstractItemModel::rowsMoved, this, [this] { onChanged(); });
    updateFromParameter();
}

void ReorderColumnsParameterWidget::updateFromParameter()
{
    if (showsCurrentValue())
        return;
    load([this] {
        const QList<ColumnId> stored = m_parameter->value().value<QList<ColumnId>>();
        setOrder(stored, stored);
        m_list->setEnabled(m_parameter->upstream() != nullptr);
    });
}

void ReorderColumnsParameterWidget::setOrder(const QList<ColumnId> &order, const QList<ColumnId> &stored)
{
    m_list->clear();
    m_missing.clear();
    const Dataset *dataset = m_parameter->upstreamDataset();
    if (!dataset)
        return;
    const QStringList texts = columnTexts(*dataset);
    const auto add = [this, dataset, &texts](int c, bool isNew) {
        auto *item = new QListWidgetItem(isNew ? tr("%1 (new)").arg(texts.at(c)) : texts.at(c), m_list);
        item->setData(IdRole, QVariant::fromValue(dataset->columnId(c)));
        item->setData(Qt::UserRole + 2, texts.at(c));
        item->setToolTip(columnSummary(*dataset, c));
        if (isNew) {
            QFont italic = item->font();
            italic.setItalic(true);
            item->setFont(italic);
        }
    };
    for (const ColumnId &id : order) {
        const int c = dataset->columnIndex(id).toInt();
        if (c >= 0)
            add(c, false);
        else
            m_missing << id;
    }
    // Columns the stored order doesn't name come at the end, marked as new.
    for (int c = 0; c < dataset->columnCount(); ++c) {
        if (!order.contains(dataset->columnId(c)))
            add(c, !stored.isEmpty());
    }
    fitHeight(m_list, 6, 14);
}

QVariant ReorderColumnsParameterWidget::value() const
{
    QList<ColumnId> ids;
    for (int i = 0; i < m_list->count(); ++i)
        ids << idOf(m_list->item(i));
    ids << m_missing;
    return QVariant::fromValue(ids);
}

QWidget *ReorderColumnsParameterWidget::focusTarget() const
{
    return m_list;
}

void ReorderColumnsParameterWidget::moveSelected(int how)
{
    QList<int> rows;
    for (QListWidgetItem *item : m_list->selectedItems())
        rows << m_list->row(item);
    if (rows.isEmpty() && m_list->currentRow() >= 0)
        rows << m_list->currentRow();
    if (rows.isEmpty())
        return;
    std::sort(rows.begin(), rows.end());
    QList<QListWidgetItem *> moving;
    if (how == -1 && rows.first() == 0)
        return;
    if (how == 1 && rows.last() == m_list->count() - 1)
        return;
    const int first = rows.first();
    for (int i = rows.size() - 1; i >= 0; --i)
        moving.prepend(m_list->takeItem(rows.at(i)));
    int at = how == -2 ? 0 : how == 2 ? m_list->count() : first + how;
    at = qBound(0, at, m_list->count());
    for (int i = 0; i < moving.size(); ++i)
        m_list->insertItem(at + i, moving.at(i));
    m_list->clearSelection();
    for (QListWidgetItem *item : qAsConst(moving))
        item->setSelected(true);
    m_list->setCurrentItem(moving.first(), QItemSelectionModel::NoUpdate);
    onChanged();
}

void ReorderColumnsParameterWidget::sortByName()
{
    QList<QListWidgetItem *> items;
    while (m_list->count() > 0)
        items << m_list->takeItem(0);
    QCollator collator;
    collator.setNumericMode(true);
    collator.setCaseSensitivity(Qt::CaseInsensitive);
    std::stable_sort(items.begin(), items.end(), [&collator](QListWidgetItem *a, QListWidgetItem *b) {
        return collator.compare(a->data(Qt::UserRole + 2).toString(), b->data(Qt::UserRole + 2).toString())
            < 0;
    });
    for (QListWidgetItem *item : qAsConst(items))
        m_list->addItem(item);
    onChanged();
}

void ReorderColumnsParameterWidget::reverse()
{
    QList<QListWidgetItem *> items;
    while (m_list->count() > 0)
        items.prepend(m_list->takeItem(0));
    for (QListWidgetItem *item : qAsConst(items))
        m_list->addItem(item);
    onChanged();
}

void ReorderColumnsParameterWidget::resetOrder()
{
    const Dataset *dataset = m_parameter->upstreamDataset();
    QList<ColumnId> order;
    for (int c = 0; dataset && c < dataset->columnCount(); ++c)
        order << dataset->columnId(c);
    setOrder(order, order);
    onChanged();
}

bool ReorderColumnsParameterWidget::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == m_list->viewport() && event->type() == QEvent::Drop)
        QTimer::singleShot(0, this, &ReorderColumnsParameterWidget::onChanged);
    if (watched == m_list && event->type() == QEvent::KeyPress) {
        const auto *key = static_cast<QKeyEvent *>(event);
        if (key->modifiers() & Qt::ControlModifier) {
            if (key->key() == Qt::Key_Up || key->key() == Qt::Key_Down) {
                moveSelected(key->key() == Qt::Key_Up ? -1 : 1);
                return true;
            }
        }
    }
    return CompositeParameterWidget::eventFilter(watched, event);
}

// RenameColumns

RenameColumnsParameterWidget::RenameColumnsParameterWidget(Parameter *parameter, QWidget *parent)
    : CompositeParameterWidget(parameter, parent)
{
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    m_filter = makeFilter(this);
    m_table = new QTableWidget(0, 2, this);
    m_table->setHorizontalHeaderLabels({tr("Column"), tr("New name")});
    m_table->horizontalHeader()->setSectionResizeMode(QHeaderView::Stretch);
    m_table->verticalHeader()->setVisible(false);
    m_table->setSelectionBehavior(QAbstractItemView::SelectRows);
    m_table->setEditTriggers(QAbstractItemView::NoEditTriggers);
    m_table->setTabKeyNavigation(false);
    m_table->setAccessibleName(parameter->label());
    auto *buttons = new QHBoxLayout;
    auto *paste = new QPushButton(tr("Paste Names"), this);
    paste->setToolTip(tr("The clipboard's lines become the new names from the current row down."));
    auto *clear = new QPushButton(tr("Clear"), this);
    buttons->addWidget(paste);
    buttons->addWidget(clear);
    buttons->addStretch(1);
    layout->addWidget(m_filter);
    layout->addWidget(m_table);
    layout->addLayout(buttons);
    connect(m_filter, &QLineEdit::textChanged, this, [this](const QString &text) {
        for (int r = 0; r < m_table->rowCount(); ++r) {
            const bool shown = m_table->item(r, 0)->text().contains(text, Qt::CaseInsensitive)
                || nameEdit(r)->text().contains(text, Qt::CaseInsensitive);
            m_table->setRowHidden(r, !shown);
        }
    });
    connect(paste, &QPushButton::clicked, this, [this] { pasteNames(QApplication::clipboard()->text()); });
    connect(clear, &QPushButton::clicked, this, &RenameColumnsParameterWidget::clearNames);
    updateFromParameter();
}

void RenameColumnsParameterWidget::updateFromParameter()
{
    if (showsCurrentValue())
        return;
    load([this] {
        const RenameColumnsValue names = m_parameter->renameColumns();
        const Dataset *dataset = m_parameter->upstreamDataset();
        QList<ColumnId> ids;
        for (int c = 0; dataset && c < dataset->columnCount(); ++c)
            ids << dataset->columnId(c);
        m_ids = ids;
        m_table->setRowCount(0);
        const QStringList texts = dataset ? columnTexts(*dataset) : QStringList();
        for (int c = 0; c < texts.size(); ++c) {
            m_table->insertRow(c);
            auto *item = new QTableWidgetItem(texts.at(c));
            item->setFlags(Qt::ItemIsEnabled | Qt::ItemIsSelectable);
            item->setToolTip(columnSummary(*dataset, c));
            m_table->setItem(c, 0, item);
            auto *edit = new QLineEdit(names.value(ids.at(c)), m_table);
            edit->setPlaceholderText(dataset->displayHeaders().at(c));
            edit->setAccessibleName(tr("New name for %1").arg(texts.at(c)));
            edit->setFrame(false);
            m_table->setCellWidget(c, 1, edit);
            connect(edit, &QLineEdit::textEdited, this, [this] {
                markDuplicates();
                onTyped();
            });
        }
        fitHeight(m_table, 2, 14);
        chainTableTabOrder(m_table);
        markDuplicates();
    });
}

QVariant RenameColumnsParameterWidget::value() const
{
    // Names given to columns the input no longer holds stay until the column comes back.
    RenameColumnsValue names = m_parameter->renameColumns();
    for (int r = 0; r < m_table->rowCount() && r < m_ids.size(); ++r) {
        const QString text = nameEdit(r)->text();
        if (text.isEmpty())
            names.remove(m_ids.at(r));
        else
            names.insert(m_ids.at(r), text);
    }
    return QVariant::fromValue(names);
}

QWidget *RenameColumnsParameterWidget::focusTarget() const
{
    return m_table->rowCount() > 0 ? static_cast<QWidget *>(nameEdit(0)) : m_filter;
}

QLineEdit *RenameColumnsParameterWidget::nameEdit(int row) const
{
    return qobject_cast<QLineEdit *>(m_table->cellWidget(row, 1));
}

void RenameColumnsParameterWidget::markDuplicates()
{
    QStringList finals;
    for (int r = 0; r < m_table->rowCount(); ++r) {
        const QLineEdit *edit = nameEdit(r);
        finals << (edit->text().isEmpty() ? edit->placeholderText() : edit->text());
    }
    for (int r = 0; r < m_table->rowCount(); ++r) {
        QLineEdit *edit = nameEdit(r);
        const bool duplicate = !edit->text().isEmpty() && finals.count(finals.at(r)) > 1;
        edit->setStyleSheet(
            duplicate ? QStringLiteral("QLineEdit { background: #ffd27f; color: black; }") : QString());
        edit->setToolTip(duplicate ? tr("Duplicate column name") : QString());
    }
}

void RenameColumnsParameterWidget::pasteNames(const QString &text)
{
    QStringList lines = text.split(QLatin1Char('\n'));
    if (!lines.isEmpty() && lines.last().isEmpty())
        lines.removeLast();
    int row = qMax(0, m_table->currentRow());
    for (QString line : qAsConst(lines)) {
        if (row >= m_table->rowCount())
            break;
        if (line.endsWith(QLatin1Char('\r')))
            line.chop(1);
        nameEdit(row++)->setText(line.trimmed());
    }
    markDuplicates();
    onChanged();
}

void RenameColumnsParameterWidget::clearNames()
{
    for (int r = 0; r < m_table->rowCount(); ++r)
        nameEdit(r)->clear();
    markDuplicates();
    onChanged();
}

// UniqueColumns

QStringList UniqueParameterWidget::optionNames()
{
    return {
        tr("Unique"), tr("First"), tr("Last"), tr("Minimum"), tr("Maximum"), tr("Concatenate"), tr("Remove")};
}

UniqueParameterWidget::UniqueParameterWidget(Parameter *parameter, QWidget *parent)
    : CompositeParameterWidget(parameter, parent)
{
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    m_filter = makeFilter(this);
    m_table = new QTableWidget(0, 2, this);
    m_table->setHorizontalHeaderLabels({tr("Column"), tr("Keep")});
    m_table->horizontalHeader()->setSectionResizeMode(0, QHeaderView::Stretch);
    m_table->horizontalHeader()->setSectionResizeMode(1, QHeaderView::Fixed);
    m_table->verticalHeader()->setVisible(false);
    m_table->setSelectionBehavior(QAbstractItemView::SelectRows);
    m_table->setSelectionMode(QAbstractItemView::ExtendedSelection);
    m_table->setEditTriggers(QAbstractItemView::NoEditTriggers);
    m_table->setTabKeyNavigation(false);
    m_table->setAccessibleName(parameter->label());
    auto *buttons = new QHBoxLayout;
    auto *setTo = new QToolButton(this);
    setTo->setText(tr("Set Selected To"));
    setTo->setPopupMode(QToolButton::InstantPopup);
    setTo->setToolButtonStyle(Qt::ToolButtonTextOnly);
    auto *menu = new QMenu(setTo);
    const QStringList names = optionNames();
    for (int i = 0; i < names.size(); ++i)
        menu->addAction(names.at(i), this, [this, i] { setSelectedTo(i); });
    setTo->setMenu(menu);
    buttons->addWidget(setTo);
    buttons->addStretch(1);
    layout->addWidget(m_filter);
    layout->addWidget(m_table);
    layout->addLayout(buttons);
    connect(m_filter, &QLineEdit::textChanged, this, [this](const QString &text) {
        for (int r = 0; r < m_table->rowCount(); ++r)
            m_table->setRowHidden(r, !m_table->item(r, 0)->text().contains(text, Qt::CaseInsensitive));
    });
    updateFromParameter();
}

void UniqueParameterWidget::updateFromParameter()
{
    if (showsCurrentValue())
        return;
    load([this] {
        const Dataset *dataset = m_parameter->upstreamDataset();
        m_ids.clear();
        m_table->setRowCount(0);
        const QStringList texts = dataset ? columnTexts(*dataset) : QStringList();
        for (int c = 0; c < texts.size(); ++c) {
            const ColumnId id = dataset->columnId(c);
            m_ids << id;
            m_table->insertRow(c);
            auto *item = new QTableWidgetItem(texts.at(c));
            item->setFlags(Qt::ItemIsEnabled | Qt::ItemIsSelectable);
            item->setToolTip(columnSummary(*dataset, c));
            m_table->setItem(c, 0, item);
            auto *combo = new QComboBox(m_table);
            ignoreWheelWithoutFocus(combo);
            combo->addItems(optionNames());
            combo->setCurrentIndex(qBound(0, m_parameter->uniqueOption(id), int(UniqueRemove)));
            combo->setAccessibleName(tr("Keep for %1").arg(texts.at(c)));
            m_table->setCellWidget(c, 1, combo);
            m_table->setColumnWidth(1, combo->sizeHint().width());
            connect(combo, QOverload<int>::of(&QComboBox::activated), this, [this] {
                markKeys();
                onChanged();
            });
        }
        fitHeight(m_table, 2, 14);
        chainTableTabOrder(m_table);
        markKeys();
    });
}

void UniqueParameterWidget::markKeys()
{
    for (int r = 0; r < m_table->rowCount(); ++r) {
        QFont font = m_table->font();
        font.setBold(optionCombo(r)->currentIndex() == UniqueKey);
        m_table->item(r, 0)->setFont(font);
    }
}

QVariant UniqueParameterWidget::value() const
{
    UniqueColumnsValue options = m_parameter->uniqueColumns();
    for (int r = 0; r < m_table->rowCount() && r < m_ids.size(); ++r) {
        const int option = optionCombo(r)->currentIndex();
        // A column with no entry keeps its first value: no entry is needed for that.
        if (option == UniqueFirst && !options.contains(m_ids.at(r)))
            continue;
        options.insert(m_ids.at(r), option);
    }
    return QVariant::fromValue(options);
}

QWidget *UniqueParameterWidget::focusTarget() const
{
    return m_table->rowCount() > 0 ? static_cast<QWidget *>(optionCombo(0)) : m_filter;
}

QComboBox *UniqueParameterWidget::optionCombo(int row) const
{
    return qobject_cast<QComboBox *>(m_table->cellWidget(row, 1));
}

void UniqueParameterWidget::setSelectedTo(int option)
{
    QSet<int> rows;
    const QModelIndexList selected = m_table->selectionModel()->selectedRows();
    for (const QModelIndex &index : selected)
        rows.insert(index.row());
    if (rows.isEmpty() && m_table->currentRow() >= 0)
        rows.insert(m_table->currentRow());
    for (int row : qAsConst(rows))
        optionCombo(row)->setCurrentIndex(option);
    markKeys();
    onChanged();
}
