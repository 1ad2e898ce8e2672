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
#include <QMouseEvent>
#include <QPainter>
#include <QPointer>
#include <QProgressDialog>
#include <QScrollBar>

namespace {

bool isMark(QChar c)
{
    return c == QChar(0x00B7) || c == QChar(0x21B5) || c == QChar(0x21E5);
}

// A cell with a tab, a line break or a double quote goes in double quotes, each double
// quote doubled, so that a spreadsheet pastes it as one cell.
QString quotedForTabs(const QString &text)
{
    for (const QChar c : text) {
        if (c == QLatin1Char('\t') || c == QLatin1Char('\n') || c == QLatin1Char('\r') || c == QLatin1Char('"')) {
            QString quoted = text;
            quoted.replace(QLatin1Char('"'), QLatin1String("\"\""));
            return QLatin1Char('"') + quoted + QLatin1Char('"');
        }
    }
    return text;
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
    setVerticalScrollMode(QAbstractItemView::ScrollPerItem);
    // Beside the view's own vertical scroll bar, which stays hidden while the table is
    // longer than the model's window and keeps moving the rows of the window.
    m_rowBar = new QScrollBar(Qt::Vertical, this);
    m_rowBar->setObjectName(QStringLiteral("rowScrollBar"));
    m_rowBar->setAccessibleName(tr("Rows"));
    m_rowBar->setVisible(false);
    addScrollBarWidget(m_rowBar, Qt::AlignTop);
    connect(m_rowBar, &QScrollBar::valueChanged, this, &DataTableView::onRowBarMoved);
    connect(verticalScrollBar(), &QScrollBar::valueChanged, this, &DataTableView::onInnerScrolled);
    connect(verticalScrollBar(), &QScrollBar::rangeChanged, this, &DataTableView::updateRowBar);
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
    if (selectionModel())
        connect(selectionModel(), &QItemSelectionModel::selectionChanged, this, [this] {
            if (!m_selectingExtended)
                m_extended = QRect();
        });
    if (model) {
        connect(model, &QAbstractItemModel::modelReset, this, &DataTableView::onModelReset);
        connect(model, &DatasetTableModel::windowMoved, this, &DataTableView::onWindowMoved);
    }
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
    m_extended = QRect();
    m_anchor = QPoint(-1, -1);
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
    // Row numbers of the whole table fit the row header wherever the window is.
    const int rows = dataset ? dataset->rowCount() : 0;
    // The current row's number is drawn in bold.
    QFont bold = verticalHeader()->font();
    bold.setBold(true);
    const QFontMetrics metrics(bold);
    verticalHeader()->setMinimumWidth(metrics.horizontalAdvance(QLocale().toString(qMax(1, rows))) + 12);
    updateRowBar();
    viewport()->update();
}

int DataTableView::firstVisibleRow() const
{
    return (m_model ? m_model->windowStart() : 0) + verticalScrollBar()->value();
}

void DataTableView::scrollToRow(int datasetRow)
{
    if (!m_model)
        return;
    if (m_model->isWindowed())
        m_rowBar->setValue(datasetRow);
    else
        verticalScrollBar()->setValue(datasetRow);
}

void DataTableView::scrollToTop()
{
    if (m_model && m_model->isWindowed())
        moveWindow(0);
    QTableView::scrollToTop();
}

void DataTableView::scrollToBottom()
{
    if (m_model && m_model->isWindowed())
        moveWindow(m_model->dataset().rowCount());
    QTableView::scrollToBottom();
}

void DataTableView::updateRowBar()
{
    const bool windowed = m_model && m_model->isWindowed();
    verticalScrollBar()->setVisible(!windowed);
    m_rowBar->setVisible(windowed);
    if (!windowed)
        return;
    const QScrollBar *inner = verticalScrollBar();
    const QSignalBlocker blocker(m_rowBar);
    m_rowBar->setRange(0, m_model->dataset().rowCount() - m_model->rowCount() + inner->maximum());
    m_rowBar->setPageStep(inner->pageStep());
    m_rowBar->setSingleStep(1);
    m_rowBar->setValue(firstVisibleRow());
}

void DataTableView::moveWindow(int newStart, int firstRow)
{
    if (!m_model || !m_model->isWindowed())
        return;
    if (firstRow < 0)
        firstRow = firstVisibleRow();
    m_model->setWindowStart(newStart);
    m_syncing = true;
    verticalScrollBar()->setValue(firstRow - m_model->windowStart());
    m_syncing = false;
    const QSignalBlocker blocker(m_rowBar);
    m_rowBar->setValue(firstVisibleRow());
}

void DataTableView::centreWindowOn(int datasetRow, int margin)
{
    if (!m_model || !m_model->isWindowed())
        return;
    const int start = m_model->windowStart();
    const int end = start + m_model->rowCount();
    const int rows = m_model->dataset().rowCount();
    if ((datasetRow - start < margin && start > 0) || (end - datasetRow <= margin && end < rows)
        || datasetRow < start || datasetRow >= end)
        moveWindow(datasetRow - m_model->windowRows() / 2);
}

void DataTableView::onWindowMoved(int oldStart, int newStart)
{
    // The selection and the current cell keep their dataset rows; what falls outside
    // the window is dropped, except that a range over every row of the window stays so.
    QItemSelectionModel *selection = selectionModel();
    if (!selection)
        return;
    const int shift = oldStart - newStart;
    const int rows = m_model->rowCount();
    QItemSelection moved;
    if (m_extended.isValid()) {
        const QRect inside = m_extended.intersected(QRect(m_extended.left(), newStart, m_extended.width(), rows));
        if (!inside.isEmpty())
            moved.select(m_model->index(inside.top() - newStart, inside.left()),
                m_model->index(inside.bottom() - newStart, inside.right()));
    }
    for (const QItemSelectionRange &range : m_extended.isValid() ? QItemSelection() : selection->selection()) {
        int top = range.top();
        int bottom = range.bottom();
        if (top != 0 || bottom != rows - 1) {
            top = qMax(0, top + shift);
            bottom = qMin(rows - 1, bottom + shift);
            if (top > bottom)
                continue;
        }
        moved.select(m_model->index(top, range.left()), m_model->index(bottom, range.right()));
    }
    const QModelIndex current = selection->currentIndex();
    m_selectingExtended = true;
    selection->select(moved, QItemSelectionModel::ClearAndSelect);
    m_selectingExtended = false;
    if (current.isValid()) {
        // A current cell left behind comes along to the window's edge, so that the keys
        // go on from near what is shown.
        // Without scrolling to it: the rows on screen stay where they are.
        const int row = qBound(0, current.row() + shift, rows - 1);
        const bool autoScrolling = hasAutoScroll();
        const bool syncing = m_syncing;
        setAutoScroll(false);
        m_syncing = true;
        selection->setCurrentIndex(m_model->index(row, current.column()), QItemSelectionModel::NoUpdate);
        m_syncing = syncing;
        setAutoScroll(autoScrolling);
    }
}

void DataTableView::onInnerScrolled(int value)
{
    if (m_syncing || !m_model || !m_model->isWindowed())
        return;
    // Near an edge of the window, it moves on so that scrolling never stops short.
    const int margin = qMax(verticalScrollBar()->pageStep() * 2, m_model->windowRows() / 4);
    centreWindowOn(m_model->windowStart() + value, margin);
    const QSignalBlocker blocker(m_rowBar);
    m_rowBar->setValue(firstVisibleRow());
}

void DataTableView::onRowBarMoved(int value)
{
    if (!m_model || !m_model->isWindowed())
        return;
    const int inner = value - m_model->windowStart();
    if (inner < 0 || inner > verticalScrollBar()->maximum()) {
        moveWindow(value - m_model->windowRows() / 2, value);
        return;
    }
    m_syncing = true;
    verticalScrollBar()->setValue(inner);
    m_syncing = false;
}

void DataTableView::currentChanged(const QModelIndex &current, const QModelIndex &previous)
{
    QTableView::currentChanged(current, previous);
    // A cell made current without Shift starts the next Shift+click range; moving the
    // window carries the current cell along without making it an anchor.
    if (current.isValid() && m_model && !m_syncing && !m_selectingExtended && !m_shiftHeld)
        m_anchor = QPoint(current.column(), m_model->datasetRow(current.row()));
}

void DataTableView::mousePressEvent(QMouseEvent *event)
{
    const QModelIndex index = indexAt(event->pos());
    const bool extend = event->button() == Qt::LeftButton && event->modifiers() == Qt::ShiftModifier;
    if (!extend || !index.isValid() || !m_model || !m_model->isWindowed() || m_anchor.y() < 0
        || m_anchor.y() >= m_model->dataset().rowCount() || m_anchor.x() >= m_model->columnCount()) {
        m_shiftHeld = event->modifiers() & Qt::ShiftModifier;
        QTableView::mousePressEvent(event);
        m_shiftHeld = false;
        return;
    }
    // From the anchor to the clicked cell in dataset rows, however far apart they are.
    const QPoint clicked(index.column(), m_model->datasetRow(index.row()));
    const QRect range = QRect(m_anchor, clicked).normalized();
    selectDatasetRange(range, index);
    m_shiftClickHandled = true;
    event->accept();
}

void DataTableView::mouseMoveEvent(QMouseEvent *event)
{
    if (m_shiftClickHandled) {
        event->accept();
        return;
    }
    QTableView::mouseMoveEvent(event);
}

void DataTableView::mouseReleaseEvent(QMouseEvent *event)
{
    if (m_shiftClickHandled) {
        m_shiftClickHandled = false;
        event->accept();
        return;
    }
    QTableView::mouseReleaseEvent(event);
}

void DataTableView::selectDatasetRange(const QRect &range, const QModelIndex &current)
{
    const int clickedRow = m_model->datasetRow(current.row());
    const int column = current.column();
    const int rows = m_model->rowCount();
    const int page = verticalScrollBar()->pageStep();
    if (range.height() + 2 * page < rows && (range.top() < m_model->windowStart()
            || range.bottom() >= m_model->windowStart() + rows)) {
        // It fits: the window moves to hold it, the rows on screen staying put.
        moveWindow(range.top() - (rows - range.height()) / 2);
    }
    const int start = m_model->windowStart();
    const bool fits = range.top() >= start && range.bottom() < start + rows;
    const QRect inside = range.intersected(QRect(range.left(), start, range.width(), rows));
    QItemSelection selection;
    if (!inside.isEmpty())
        selection.select(m_model->index(inside.top() - start, inside.left()),
            m_model->index(inside.bottom() - start, inside.right()));
    m_selectingExtended = true;
    selectionModel()->select(selection, QItemSelectionModel::ClearAndSelect);
    selectionModel()->setCurrentIndex(m_model->index(clickedRow - start, column), QItemSelectionModel::NoUpdate);
    m_selectingExtended = false;
    m_extended = fits ? QRect() : range;
}

QModelIndex DataTableView::moveCursor(CursorAction cursorAction, Qt::KeyboardModifiers modifiers)
{
    if (m_model && m_model->isWindowed()) {
        const bool control = modifiers & Qt::ControlModifier;
        const QModelIndex current = currentIndex();
        if (control && cursorAction == MoveHome) {
            moveWindow(0);
        } else if (control && cursorAction == MoveEnd) {
            moveWindow(m_model->dataset().rowCount());
        } else if (current.isValid()) {
            // Keys move from the current cell: it is kept well inside the window.
            centreWindowOn(m_model->datasetRow(current.row()), verticalScrollBar()->pageStep() * 2 + 2);
        }
    }
    return QTableView::moveCursor(cursorAction, modifiers);
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
    // Shift with a key extends the selection from the anchor, which stays.
    m_shiftHeld = event->modifiers() & Qt::ShiftModifier;
    QTableView::keyPressEvent(event);
    m_shiftHeld = false;
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

QVector<QRect> DataTableView::selectedRanges() const
{
    QVector<QRect> ranges;
    if (!m_model || !selectionModel())
        return ranges;
    if (m_extended.isValid())
        return {m_extended};
    const int windowRows = m_model->rowCount();
    const bool windowed = m_model->isWindowed();
    for (const QItemSelectionRange &range : selectionModel()->selection()) {
        if (windowed && range.top() == 0 && range.bottom() == windowRows - 1)
            ranges << QRect(range.left(), 0, range.width(), m_model->dataset().rowCount());
        else
            ranges << QRect(range.left(), m_model->datasetRow(range.top()), range.width(), range.height());
    }
    return ranges;
}

void DataTableView::selectedCells(Dataset &cells, bool withHeaders) const
{
    cells.clear();
    const QVector<QRect> ranges = selectedRanges();
    if (ranges.isEmpty())
        return;
    QRect bounds;
    for (const QRect &range : ranges)
        bounds = bounds.united(range);
    const Dataset &dataset = m_model->dataset();
    cells.setColumnCount(bounds.width());
    if (withHeaders) {
        QStringList headers;
        for (int column = bounds.left(); column <= bounds.right(); ++column)
            headers << dataset.headerText(column);
        cells.setHeaders(headers);
    }
    cells.reserveRows(bounds.height());
    const bool whole = ranges.size() == 1;
    for (int row = bounds.top(); row <= bounds.bottom(); ++row) {
        QStringList values;
        values.reserve(bounds.width());
        for (int column = bounds.left(); column <= bounds.right(); ++column) {
            bool selected = whole;
            for (int i = 0; !selected && i < ranges.size(); ++i)
                selected = ranges.at(i).contains(column, row);
            values << (selected ? dataset.cell(row, column) : QString());
        }
        cells.appendRow(values, true);
    }
}

qint64 DataTableView::selectedCellCount() const
{
    qint64 count = 0;
    for (const QRect &range : selectedRanges())
        count += qint64(range.width()) * range.height();
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
    const QVector<QRect> ranges = selectedRanges();
    if (ranges.isEmpty())
        return;
    QRect bounds;
    for (const QRect &range : ranges)
        bounds = bounds.united(range);
    // Held by value: a run that replaces the table meanwhile doesn't disturb the copy.
    const Dataset dataset = m_model->dataset();
    const bool whole = ranges.size() == 1;
    QString text;
    QString html = QStringLiteral("<table>\n");
    auto appendRow = [&](const QStringList &cells, QLatin1String tag) {
        html += QLatin1String("<tr>");
        for (int i = 0; i < cells.size(); ++i) {
            if (i > 0)
                text += QLatin1Char('\t');
            text += quotedForTabs(cells.at(i));
            html += QLatin1Char('<') + tag + QLatin1Char('>') + cells.at(i).toHtmlEscaped() + QLatin1String("</")
                + tag + QLatin1Char('>');
        }
        text += QLatin1Char('\n');
        html += QLatin1String("</tr>\n");
    };
    if (withHeaders)
        appendRow(dataset.displayHeaders().mid(bounds.left(), bounds.width()), QLatin1String("th"));

    // Long copies go in slices, with a progress dialog whose Cancel drops the copy.
    const qint64 total = qint64(bounds.width()) * bounds.height();
    // Owned by the view: if the view goes while events run, the dialog goes with it.
    struct Owner
    {
        QPointer<QProgressDialog> dialog;
        ~Owner() { delete dialog.data(); }
    } owner;
    QProgressDialog *progress = nullptr;
    if (total > CopySliceCells) {
        progress = new QProgressDialog(tr("Copying... %1%").arg(0), tr("Cancel"), 0, 100, this);
        owner.dialog = progress;
        progress->setWindowTitle(tr("Copy"));
        progress->setWindowModality(Qt::WindowModal);
        progress->setMinimumDuration(500);
        progress->setAutoReset(false);
        progress->setObjectName(QStringLiteral("copyProgress"));
    }
    QPointer<DataTableView> alive(this);
    qint64 done = 0;
    qint64 sliceEnd = CopySliceCells;
    QStringList values;
    for (int row = bounds.top(); row <= bounds.bottom(); ++row) {
        values.clear();
        for (int column = bounds.left(); column <= bounds.right(); ++column) {
            bool selected = whole;
            for (int i = 0; !selected && i < ranges.size(); ++i)
                selected = ranges.at(i).contains(column, row);
            values << (selected ? dataset.cell(row, column) : QString());
        }
        appendRow(values, QLatin1String("td"));
        done += bounds.width();
        if (progress && done >= sliceEnd) {
            sliceEnd = done + CopySliceCells;
            const int percent = int(done * 100 / total);
            progress->setLabelText(tr("Copying... %1%").arg(percent));
            progress->setValue(percent);
            QCoreApplication::processEvents();
            if (!alive || !owner.dialog || progress->wasCanceled())
                return;
        }
    }
    html += QLatin1String("</table>\n");
    auto *mime = new QMimeData;
    mime->setText(text);
    mime->setHtml(html);
    QApplication::clipboard()->setMimeData(mime);
}

bool DataTableView::goToCell(int datasetRow, int column)
{
    if (!m_model || datasetRow < 0 || datasetRow >= m_model->dataset().rowCount() || column < 0
        || column >= m_model->columnCount())
        return false;
    centreWindowOn(datasetRow, verticalScrollBar()->pageStep() + 1);
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
