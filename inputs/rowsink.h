#pragma once

#include "inputoptions.h"

#include <QCoreApplication>
#include <map>

class Dataset;

// Where the line readers hand their rows: trims and simplifies cells, drops blank rows,
// widens the table to the widest row and pads shorter ones, and keeps what the ragged
// row warning and the empty row count tell.
class RowSink
{
    Q_DECLARE_TR_FUNCTIONS(RowSink)
public:
    RowSink(const InputOptions &options, Dataset &table);

    // Adds one row; inputRow is its 0-based number among all input rows, ignored ones
    // included. The cells may be changed.
    void add(QStringList &row, int inputRow);
    // Adds the ragged row warning and the empty row count to the report.
    void finish(ReadReport &report) const;

    int emptyRows() const { return m_emptyRows; }

private:
    struct Width
    {
        int rows = 0;
        int firstInputRow = 0;
    };

    Dataset &m_table;
    bool m_trim;
    bool m_simplify;
    bool m_ignoreEmptyRows;
    int m_emptyRows = 0;
    std::map<int, Width> m_widths;
    Width *m_lastWidth = nullptr; // rows mostly share one width: skips the map lookup
    int m_lastWidthValues = -1;
};
