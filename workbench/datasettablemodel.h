#pragma once

#include "core/dataset.h"

#include <QAbstractTableModel>
#include <QColor>
#include <QVector>

// A table model over an item's Dataset. It holds the dataset by value, which shares its
// storage, and reads each cell when asked: nothing is copied or cached, so a table of ten
// million rows opens as fast as one of ten. A long table is shown through a window of
// windowRows() rows, moved with setWindowStart; the window keeps its length as it moves,
// so that a view's headers are laid out once per table, not once per row of the table.
class DatasetTableModel : public QAbstractTableModel
{
    Q_OBJECT
public:
    enum Role { HasLinksRole = Qt::UserRole + 1 };
    // The view lays out its row header for every model row when a table opens: a window
    // of this many rows keeps that quick however long the table is.
    static constexpr int WindowRows = 250000;

    explicit DatasetTableModel(QObject *parent = nullptr);

    // Replaces the table with a reset; the column alignments are worked out again.
    void setDataset(const Dataset &dataset, int nodeId = -1);
    const Dataset &dataset() const { return m_dataset; }
    int nodeId() const { return m_nodeId; }

    // The first dataset row shown; kept within the table so that the window is always
    // full, and kept on a new dataset while it still fits.
    int windowStart() const { return m_windowStart; }
    void setWindowStart(int row);
    // The window's length: WindowRows unless set (tests use short windows).
    int windowRows() const { return m_windowRows; }
    void setWindowRows(int rows);
    // Whether the table is longer than the window.
    bool isWindowed() const { return m_dataset.rowCount() > m_windowRows; }
    // Dataset row of a model row, and back (-1 when outside the window).
    int datasetRow(int modelRow) const { return m_windowStart + modelRow; }
    int modelRow(int datasetRow) const;

    // Cells longer than this are cut, with "…" after; setting table_max_cell_chars.
    void setMaxCellChars(int chars);
    int maxCellChars() const { return m_maxCellChars; }
    void setShowWhitespace(bool on);
    bool showWhitespace() const { return m_showWhitespace; }
    void setDarkColours(bool dark);

    int rowCount(const QModelIndex &parent = QModelIndex()) const override;
    int columnCount(const QModelIndex &parent = QModelIndex()) const override;
    QVariant data(const QModelIndex &index, int role = Qt::DisplayRole) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role = Qt::DisplayRole) const override;

    // The text a cell shows: line breaks as "↵", tabs as "⇥", spaces as "·" with
    // whitespace shown, cut at maxChars characters with "…" after.
    static QString displayText(const QString &text, int maxChars, bool showWhitespace);
    QString displayText(int datasetRow, int column) const;

signals:
    // The window moved without a reset: every cell and row header now stands for other
    // dataset rows, and a view shifts its selection by the difference.
    void windowMoved(int oldStart, int newStart);

public:
    // The verify colour of a severity (VerifyFailNone gives an invalid colour), and the
    // severity's name.
    static QColor verifyColour(OnVerifyFail severity, bool dark);
    static QString severityName(OnVerifyFail severity);
    static QString columnRuleName(int rule);

    // How many times data() has been asked for a cell since the last reset of the count;
    // lets a benchmark and tests see that a view reads only what it shows.
    qint64 cellReads() const { return m_cellReads; }
    void resetCellReads() { m_cellReads = 0; }

private:
    QString cellToolTip(int row, int column) const;
    ColumnType typeOfColumn(int column) const;

    Dataset m_dataset;
    int m_nodeId = -1;
    int m_windowStart = 0;
    int m_windowRows = WindowRows;
    int m_maxCellChars = 1000;
    bool m_showWhitespace = false;
    bool m_dark = false;
    // Worked out on first use, once per dataset: -1 not yet known, else a ColumnType.
    mutable QVector<int> m_columnTypes;
    mutable qint64 m_cellReads = 0;
};
