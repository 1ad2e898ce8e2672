#pragma once

#include "core/dataset.h"

#include <QHash>
#include <QItemSelection>
#include <QStyledItemDelegate>
#include <QTableView>

class DatasetTableModel;
class QScrollBar;

// Draws a cell's display text, with the characters that stand for whitespace in the
// secondary colour while whitespace is shown, and a small triangle in the corner of a
// cell that has linked rows.
class DatasetItemDelegate : public QStyledItemDelegate
{
    Q_OBJECT
public:
    explicit DatasetItemDelegate(QObject *parent = nullptr);
    void paint(
        QPainter *painter, const QStyleOptionViewItem &option, const QModelIndex &index) const override;
};

// A table view fitted for very long tables: fixed row heights, no wrapping, and column
// widths measured over the first rows only, so that opening and scrolling read only the
// cells on screen. A table longer than the model's window scrolls with a scroll bar over
// all its rows; the window follows, and the selection and current cell move with it. A
// selection that covers every row of the window (a column header, Select All) stands for
// every row of the table.
class DataTableView : public QTableView
{
    Q_OBJECT
public:
    static constexpr int FitRows = 200;
    static constexpr int RefitRows = 2000;
    static constexpr int FitColumnsAtReset = 200;
    static constexpr int MinimumColumnWidth = 48;
    static constexpr int MaximumColumnWidth = 320;
    static constexpr int UnfittedColumnWidth = 100;
    // A larger copy asks first.
    static constexpr qint64 MaxCellsWithoutAsking = 1000000;
    // A copy runs in slices of this many cells, the window answering between them.
    static constexpr qint64 CopySliceCells = 200000;

    explicit DataTableView(QWidget *parent = nullptr);

    void setDatasetModel(DatasetTableModel *model);
    DatasetTableModel *datasetModel() const { return m_model; }
    void setTableFont(const QFont &font);

    // The width a column is given: its header and first rows, measured, plus 16 px.
    int fittedWidth(int column, int rows) const;

    // The cells of the selection's bounding rectangle, unselected ones empty.
    void selectedCells(Dataset &cells, bool withHeaders) const;
    // Puts the selection's bounding rectangle on the clipboard, tab-separated (with
    // quoting) and as an HTML table; a long copy shows its progress and can be cancelled.
    void copySelection(bool withHeaders);
    qint64 selectedCellCount() const;
    // Makes a dataset cell current and scrolls it to the centre; false when out of range.
    bool goToCell(int datasetRow, int column);

    // The scroll bar over all the rows of a windowed table (hidden otherwise).
    QScrollBar *rowScrollBar() const { return m_rowBar; }
    // The dataset row at the top of the viewport, and scrolling to put one there.
    int firstVisibleRow() const;
    void scrollToRow(int datasetRow);
    // Scroll to the first and last row of the whole table.
    void scrollToTop();
    void scrollToBottom();
    // The selection as dataset rows and columns: QRect(column, row, width, height) each.
    QVector<QRect> selectedRanges() const;

    // Placed over the empty viewport, centred; empty hides it.
    void setOverlayText(const QString &text);
    QString overlayText() const { return m_overlayText; }

signals:
    // Asks for the linked rows of a dataset cell.
    void drilldownRequested(int datasetRow, int column);

protected:
    void keyPressEvent(QKeyEvent *event) override;
    void paintEvent(QPaintEvent *event) override;
    void scrollContentsBy(int dx, int dy) override;
    void contextMenuEvent(QContextMenuEvent *event) override;
    QModelIndex moveCursor(CursorAction cursorAction, Qt::KeyboardModifiers modifiers) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void currentChanged(const QModelIndex &current, const QModelIndex &previous) override;

private slots:
    void onModelReset();
    void onSectionResized(int column, int oldSize, int newSize);
    void onSectionHandleDoubleClicked(int column);
    void onDoubleClicked(const QModelIndex &index);

private:
    void fitVisibleColumns();
    void setColumnWidthQuietly(int column, int width);
    bool hasLinks(const QModelIndex &index) const;
    // Moves the model's window to start near newStart, with firstRow (by default the
    // first visible row) at the top.
    void moveWindow(int newStart, int firstRow = -1);
    // Moves the window so that a dataset row lies in its middle, when it is near an edge.
    void centreWindowOn(int datasetRow, int margin);
    void onWindowMoved(int oldStart, int newStart);
    void onInnerScrolled(int value);
    void onRowBarMoved(int value);
    void updateRowBar();
    // Selects a dataset rectangle: the part inside the window shows in the selection
    // model, the whole of it is kept in m_extended when it is taller than the window.
    void selectDatasetRange(const QRect &range, const QModelIndex &current);

    DatasetTableModel *m_model = nullptr;
    QString m_overlayText;
    QVector<bool> m_fitted;
    // Widths the user dragged, by column identity, for the rest of the session.
    QHash<QPair<int, int>, int> m_userWidths;
    bool m_settingWidth = false;
    QScrollBar *m_rowBar = nullptr;
    bool m_syncing = false;
    // Where a Shift+click range starts: the dataset cell made current without Shift.
    QPoint m_anchor{-1, -1}; // (column, dataset row)
    // A Shift+click range taller than the window, in dataset rows; empty otherwise.
    QRect m_extended;
    bool m_selectingExtended = false;
    // The press was a Shift+click handled here: its moves and release are not the view's.
    bool m_shiftClickHandled = false;
    // A key or click with Shift is being handled: the current cell it makes is no anchor.
    bool m_shiftHeld = false;
};
