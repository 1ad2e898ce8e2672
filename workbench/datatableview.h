#pragma once

#include "core/dataset.h"

#include <QHash>
#include <QStyledItemDelegate>
#include <QTableView>

class DatasetTableModel;

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
// cells on screen.
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

    explicit DataTableView(QWidget *parent = nullptr);

    void setDatasetModel(DatasetTableModel *model);
    DatasetTableModel *datasetModel() const { return m_model; }
    void setTableFont(const QFont &font);

    // The width a column is given: its header and first rows, measured, plus 16 px.
    int fittedWidth(int column, int rows) const;

    // The bounding rectangle of the selection as text: tab-separated (with quoting) and
    // as an HTML table. Empty when nothing is selected.
    void selectedCells(Dataset &cells, bool withHeaders) const;
    void copySelection(bool withHeaders);
    qint64 selectedCellCount() const;
    // Makes a dataset cell current and scrolls it to the centre; false when out of range.
    bool goToCell(int datasetRow, int column);

    // Placed over the empty viewport, centred; empty hides it.
    void setOverlayText(const QString &text);
    QString overlayText() const { return m_overlayText; }

signals:
    // Asks for the linked rows of a dataset cell.
    void drilldownRequested(int datasetRow, int column);
    // The current cell's dataset row lies outside the model's window.
    void windowMoveRequested(int datasetRow);

protected:
    void keyPressEvent(QKeyEvent *event) override;
    void paintEvent(QPaintEvent *event) override;
    void scrollContentsBy(int dx, int dy) override;
    void contextMenuEvent(QContextMenuEvent *event) override;

private slots:
    void onModelReset();
    void onSectionResized(int column, int oldSize, int newSize);
    void onSectionHandleDoubleClicked(int column);
    void onDoubleClicked(const QModelIndex &index);

private:
    void fitVisibleColumns();
    void setColumnWidthQuietly(int column, int width);
    bool hasLinks(const QModelIndex &index) const;

    DatasetTableModel *m_model = nullptr;
    QString m_overlayText;
    QVector<bool> m_fitted;
    // Widths the user dragged, by column identity, for the rest of the session.
    QHash<QPair<int, int>, int> m_userWidths;
    bool m_settingWidth = false;
};
