#include "workbench/datatableview.h"

#include "workbench/datasettablemodel.h"
#include "workbench/prompts.h"

#include <QApplication>
#include <QClipboard>
#include <QContextMenuEvent>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLocale>
#include <QMenu>
#include <QMimeData>
#include <QPainter>
#include <QScrollBar>

namespace {

bool isMark(QChar c)
{
    return c == QChar(0x00B7) || c == QChar(0x21B5) || c == QChar(0x21E5);
}

} // namespace

DatasetItemDelegate::DatasetItemDelegate(QObject *parent)
    : QStyledItemDelegate(parent)
{ }

void DatasetItemDelegate::paint(
    QPainter *painter, const QStyleOptionViewItem &option, const QModelIndex &index) const
{
    const auto *model = qobject_cast<const DatasetTableModel *>(index.model());
    QStyleOptionViewItem opt = option;
    initStyleOption(&opt, index);
    const bool marks = model && model->showWhitespace()
        && std::any_of(opt.text.cbegin(), opt.text.cend(), [](QChar c) { return isMark(c); });
    if (!marks) {
        QStyledItemDelegate::paint(painter, option, index);
    } else {
        // Background and selection by the style, then the text in runs so that the
        // whitespace marks take the secondary colour.
        const QString text = opt.text;
        opt.text.clear();
        const QWidget *widget = opt.widget;
        QStyle *style = widget ? widget->style() : QApplication::style();
        style->drawControl(QStyle::CE_ItemViewItem, &opt, painter, widget);
        const QRect textRect =
            style->subElementRect(QStyle::SE_ItemViewItemText, &opt, widget).adjusted(3, 0, -3, 0);
        const bool selected = opt.state & QStyle::State_Selected;
        const QColor normal = opt.palette.color(selected ? QPalette::HighlightedText : QPalette::Text);
        QColor secondary = normal;
        secondary.setAlphaF(0.45);
        painter->save();
        painter->setFont(opt.font);
        painter->setClipRect(textRect);
        const QFontMetrics metrics(opt.font);
        int x = textRect.left();
        int start = 0;
        while (start < text.size() && x < textRect.right()) {
            const bool mark = isMark(text.at(start));
            int end = start + 1;
            while (end < text.size() && isMark(text.at(end)) == mark)
                ++end;
            const QString run = text.mid(start, end - start);
            painter->setPen(mark ? secondary : normal);
            const int width = metrics.horizontalAdvance(run);
            painter->drawText(QRect(x, textRect.top(), width + 1, textRect.height()),
                Qt::AlignLeft | Qt::AlignVCenter | Qt::TextSingleLine, run);
            x += width;
            start = end;
        }
        painter->restore();
    }
    if (index.data(DatasetTableModel::HasLinksRole).toBool()) {
        const QRect r = option.rect;
        QPolygon triangle;
        triangle << QPoint(r.right() - 6, r.top()) << QPoint(r.right(), r.top())
                 << QPoint(r.right(), r.top() + 6);
        painter->save();
        painter->setRenderHint(QPainter::Antialiasing);
        painter->setPen(Qt::NoPen);
        painter->setBrush(option.palette.color(QPalette::Highlight));
        painter->drawPolygon(triangle);
        painter->restore();
    }
}

DataTableView::DataTableView(QWidget *parent)
    : QTableView(parent)
{
    setWordWrap(false);
    setTextElideMode(Qt::ElideRight);
    setSortingEnabled(false);
    setSelectionBehavior(QAbstractItemView::SelectItems);
    setSelectionMode(QAbstractItemView::ExtendedSelection);
    setEditTriggers(QAbstractItemView::NoEditTriggers);
    setItemDelegate(new DatasetItemDelegate(this));
    setAccessibleName(tr("Data table"));
    verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    verticalHeader()->setDefaultAlignment(Qt::AlignRight | Qt::AlignVCenter);
    horizontalHeader()->setSectionResizeMode(QHeaderView::Interactive);
    horizontalHeader()->setDefaultSectionSize(UnfittedColumnWidth);
    horizontalHeader()->setHighlightSections(true);
    setTableFont(font());
    connect(horizontalHeader(), &QHeaderView::sectionResized, this, &DataTableView::onSectionResized);
    connect(horizontalHeader(), &QHeaderView::sectionHandleDoubleClicked, this,
        &DataTableView::onSectionHandleDoubleClicked);
    connect(this, &QAbstractItemView::doubleClicked, this, &DataTableView::onDoubleClicked);
}

void DataTableView::setDatasetModel(DatasetTableModel *model)
{
    if (m_model)
        disconnect(m_model, nullptr, this, nullptr);
    m_model = model;
    setModel(model);
    if (model)
        connect(model, &QAbstractItemModel::modelReset, this, &DataTableView::onModelReset);
    onModelReset();
}

void DataTableView::setTableFont(const QFont &font)
{
    setFont(font);
    const int height = QFontMetrics(font).height() + 6;
    verticalHeader()->setMinimumSectionSize(height);
    verticalHeader()->setDefaultSectionSize(height);
}

int DataTableView::fittedWidth(int column, int rows) const
{
    if (!m_model || column < 0 || column >= m_model->columnCount())
        return UnfittedColumnWidth;
    const Dataset &dataset = m_model->dataset();
    const QFontMetrics metrics(font());
    const QFontMetrics headerMetrics(horizontalHeader()->font());
    // The header also carries the sort indicator space and the style's margins.
    int width = headerMetrics.horizontalAdvance(dataset.headerText(column)) + 8;
    const int last = qMin(m_model->windowStart() + rows, dataset.rowCount());
    for (int row = m_model->windowStart(); row < last; ++row) {
        const QString &cell = dataset.cell(row, column);
        if (cell.isEmpty())
            continue;
        // Text past the widest column can't change the answer.
        const QString shown = DatasetTableModel::displayText(
            cell.size() > 80 ? cell.left(80) : cell, m_model->maxCellChars(), m_model->showWhitespace());
        width = qMax(width, metrics.horizontalAdvance(shown));
        if (width >= MaximumColumnWidth)
            break;
    }
    return qBound(MinimumColumnWidth, width + 16, MaximumColumnWidth);
}

void DataTableView::setColumnWidthQuietly(int column, int width)
{
    m_settingWidth = true;
    setColumnWidth(column, width);
    m_settingWidth = false;
}

void DataTableView::onModelReset()
{
    const int columns = m_model ? m_model->columnCount() : 0;
    m_fitted = QVector<bool>(columns, false);
    const Dataset *dataset = m_model ? &m_model->dataset() : nullptr;
    for (int column = 0; column < columns; ++column) {
        const ColumnId id = dataset->columnId(column);
        const auto user = m_userWidths.constFind(qMakePair(id.nodeId(), id.sequence()));
        if (!id.isUnset() && user != m_userWidths.constEnd()) {
            setColumnWidthQuietly(column, user.value());
            m_fitted[column] = true;
        } else if (column < FitColumnsAtReset) {
            setColumnWidthQuietly(column, fittedWidth(column, FitRows));
            m_fitted[column] = true;
        } else {
            setColumnWidthQuietly(column, UnfittedColumnWidth);
        }
    }
    viewport()->update();
}

void DataTableView::fitVisibleColumns()
{
    if (!m_model || m_fitted.isEmpty())
        return;
    const int first = columnAt(0);
    int last = columnAt(viewport()->width() - 1);
    if (first < 0)
        return;
    if (last < 0)
        last = m_model->columnCount() - 1;
    for (int column = first; column <= last && column < m_fitted.size(); ++column) {
        if (!m_fitted.at(column)) {
            m_fitted[column] = true;
            setColumnWidthQuietly(column, fittedWidth(column, FitRows));
        }
    }
}

void DataTableView::scrollContentsBy(int dx, int dy)
{
    QTableView::scrollContentsBy(dx, dy);
    if (dx != 0)
        fitVisibleColumns();
}

void DataTableView::onSectionResized(int column, int oldSize, int newSize)
{
    Q_UNUSED(oldSize)
    if (m_settingWidth || !m_model)
        return;
    const ColumnId id = m_model->dataset().columnId(column);
    if (!id.isUnset())
        m_userWidths.insert(qMakePair(id.nodeId(), id.sequence()), newSize);
}

void DataTableView::onSectionHandleDoubleClicked(int column)
{
    setColumnWidthQuietly(column, fittedWidth(column, RefitRows));
}

bool DataTableView::hasLinks(const QModelIndex &index) const
{
    return index.isValid() && index.data(DatasetTableModel::HasLinksRole).toBool();
}

void DataTableView::onDoubleClicked(const QModelIndex &index)
{
    if (hasLinks(index))
        emit drilldownRequested(m_model->datasetRow(index.row()), index.column());
}

void DataTableView::keyPressEvent(QKeyEvent *event)
{
    if ((event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) && hasLinks(currentIndex())) {
        onDoubleClicked(currentIndex());
        return;
    }
    if (event->matches(QKeySequence::Copy)) {
        copySelection(false);
        return;
    }
    if (event->key() == Qt::Key_C && event->modifiers() == (Qt::ControlModifier | Qt::ShiftModifier)) {
        copySelection(true);
        return;
    }
    QTableView::keyPressEvent(event);
}

void DataTableView::contextMenuEvent(QContextMenuEvent *event)
{
    QMenu menu(this);
    const QModelIndex index = indexAt(event->pos());
    QAction *copy = menu.addAction(tr("&Copy"), this, [this] { copySelection(false); });
    copy->setShortcut(QKeySequence::Copy);
    QAction *copyHeaders = menu.addAction(tr("Copy with &Headers"), this, [this] { copySelection(true); });
    copyHeaders->setShortcut(QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_C));
    copy->setEnabled(selectionModel() && selectionModel()->hasSelection());
    copyHeaders->setEnabled(copy->isEnabled());
    menu.addAction(tr("Select &All"), this, &QAbstractItemView::selectAll);
    if (hasLinks(index)) {
        menu.addSeparator();
        menu.addAction(tr("Show &Linked Rows"), this, [this, index] { onDoubleClicked(index); });
    }
    menu.exec(event->globalPos());
}

void DataTableView::selectedCells(Dataset &cells, bool withHeaders) const
{
    cells.clear();
    if (!m_model || !selectionModel())
        return;
    const QItemSelection selection = selectionModel()->selection();
    if (selection.isEmpty())
        return;
    int top = INT_MAX, left = INT_MAX, bottom = -1, right = -1;
    for (const QItemSelectionRange &range : selection) {
        top = qMin(top, range.top());
        left = qMin(left, range.left());
        bottom = qMax(bottom, range.bottom());
        right = qMax(right, range.right());
    }
    const Dataset &dataset = m_model->dataset();
    cells.setColumnCount(right - left + 1);
    if (withHeaders) {
        QStringList headers;
        for (int column = left; column <= right; ++column)
            headers << dataset.headerText(column);
        cells.setHeaders(headers);
    }
    cells.reserveRows(bottom - top + 1);
    const bool whole = selection.size() == 1;
    for (int row = top; row <= bottom; ++row) {
        QStringList values;
        values.reserve(right - left + 1);
        const int datasetRow = m_model->datasetRow(row);
        for (int column = left; column <= right; ++column) {
            if (whole || selectionModel()->isSelected(m_model->index(row, column)))
                values << dataset.cell(datasetRow, column);
            else
                values << QString();
        }
        cells.appendRow(values, true);
    }
}

qint64 DataTableView::selectedCellCount() const
{
    qint64 count = 0;
    if (selectionModel()) {
        const QItemSelection selection = selectionModel()->selection();
        for (const QItemSelectionRange &range : selection)
            count += qint64(range.width()) * range.height();
    }
    return count;
}

void DataTableView::copySelection(bool withHeaders)
{
    const qint64 count = selectedCellCount();
    if (count > MaxCellsWithoutAsking) {
        const QString copy = tr("Copy");
        const int answer = Prompts::instance()->ask(this, tr("Copy"),
            tr("Copy %1 cells to the clipboard? This can take a while and use a lot of memory.")
                .arg(QLocale().toString(count)),
            QString(), {copy, tr("Cancel")}, 0, 1);
        if (answer != 0)
            return;
    }
    Dataset cells;
    selectedCells(cells, withHeaders);
    if (cells.hasNoColumns())
        return;
    auto *mime = new QMimeData;
    mime->setText(cells.toTabSeparatedText(withHeaders));
    mime->setHtml(cells.toHtml(withHeaders));
    QApplication::clipboard()->setMimeData(mime);
}

bool DataTableView::goToCell(int datasetRow, int column)
{
    if (!m_model || datasetRow < 0 || datasetRow >= m_model->dataset().rowCount() || column < 0
        || column >= m_model->columnCount())
        return false;
    if (m_model->modelRow(datasetRow) < 0)
        emit windowMoveRequested(datasetRow);
    const int row = m_model->modelRow(datasetRow);
    if (row < 0)
        return false;
    const QModelIndex index = m_model->index(row, column);
    setCurrentIndex(index);
    scrollTo(index, QAbstractItemView::PositionAtCenter);
    return true;
}

void DataTableView::setOverlayText(const QString &text)
{
    if (text == m_overlayText)
        return;
    m_overlayText = text;
    viewport()->update();
}

void DataTableView::paintEvent(QPaintEvent *event)
{
    QTableView::paintEvent(event);
    if (m_overlayText.isEmpty())
        return;
    QPainter painter(viewport());
    QColor colour = palette().color(QPalette::Text);
    colour.setAlphaF(0.6);
    painter.setPen(colour);
    QFont bigger = font();
    bigger.setPointSizeF(bigger.pointSizeF() * 1.2);
    painter.setFont(bigger);
    painter.drawText(
        viewport()->rect().adjusted(16, 16, -16, -16), Qt::AlignCenter | Qt::TextWordWrap, m_overlayText);
}
