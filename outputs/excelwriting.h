#pragma once

#include "core/dataset.h"

#include <QDate>
#include <QString>
#include <QStringList>
#include <QVector>

// What the .xlsx and .xls writers share: the sheet name rule, how each cell's text becomes
// an Excel value with a number format, column widths, and replacing a file only once the
// new one is complete.
namespace ExcelWriting {

constexpr int maxTextLength = 32767;
// Shown text widths of a column, in characters.
constexpr int minColumnWidth = 8;
constexpr int maxColumnWidth = 60;

// The name as Excel accepts it: each of [ ] : * ? / \ made "_", a leading or trailing "'"
// removed, at most 31 characters, "Tabrelle" when empty. A name that changed (other than
// an empty one) adds the line "Sheet name '%1' written as '%2'" to information.
QString sheetName(const QString &name, QStringList *information);

// The serial Excel shows as this date in the 1900 system, with its 29 February 1900; false
// before 1900-01-01 and after 9999-12-31, which Excel can't show.
bool dateSerial(const QDate &date, double *serial);

// One cell as Excel is to hold it.
struct Cell
{
    enum Kind { Empty, Text, Number };
    Kind kind = Empty;
    double number = 0;
    QString text; // Text: cut to maxTextLength
    QString format; // number format code; empty for General
};

// Decides how the cells of a table are written, by the "Formatting" option: 0 "Automatic"
// chooses per column so that every cell shows in Excel exactly the text it had; 1 "All
// text"; 2 "Manual" with one format per column position (0 Automatic, 1 Text, 2 Number,
// 3 Date, 4 Time, 5 Date and time; positions past the list's end take 0). A cell that
// doesn't fit its column is written as text and warned about.
class CellPlan
{
public:
    enum Formatting { Automatic = 0, AllText = 1, Manual = 2 };

    CellPlan(const Dataset &dataset, int formatting, const QList<int> &manualFormats, int columns);
    ~CellPlan();
    CellPlan(const CellPlan &) = delete;
    CellPlan &operator=(const CellPlan &) = delete;

    // "Column '%1' written as %2, ..." for each column that "Automatic" didn't make text.
    QStringList information() const { return m_information; }
    // The cell at a data row (0-based), counting the cells that don't fit their column.
    Cell cell(int row, int column);
    // The display header, as text.
    Cell header(int column);
    // The format of the whole column: "@" for a "Text" column, else empty.
    QString columnFormat(int column) const;
    // The first five cells that didn't fit, then "+ %1 %2"; and the count of cut texts.
    QStringList warnings() const;
    // Widths in characters from the header (when written) and the first 1,000 rows.
    QVector<double> columnWidths(bool withHeader) const;

private:
    struct Column;
    Column planColumn(int column, int format);
    Cell textCell(const QString &text);
    Cell misfit(const QString &text, int row, int column, const QString &kind);

    const Dataset m_dataset;
    QStringList m_headers;
    QVector<Column> m_columns;
    QStringList m_information;
    QStringList m_misfits;
    int m_misfitCount = 0;
    int m_cutCount = 0;
};

// Writing into a temporary file beside the target that takes the target's place only when
// complete, so that a failed write leaves the old file as it was. Libraries that write to
// a path write to temporaryPath(). A symbolic link is followed: the file it names is replaced.
class ReplacingFile
{
public:
    explicit ReplacingFile(const QString &target);
    ~ReplacingFile(); // removes the temporary file unless committed
    // Reserves the temporary file; false with the reason when the folder isn't writable.
    bool open(QString *error);
    QString temporaryPath() const { return m_temporaryPath; }
    // Gives the new file the old one's permissions (or the usual ones for a new file) and
    // moves it into place.
    bool commit(QString *error);

private:
    QString m_target;
    QString m_temporaryPath;
    bool m_committed = false;
};

} // namespace ExcelWriting
