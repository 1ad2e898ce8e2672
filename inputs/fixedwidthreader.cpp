#include "fixedwidthreader.h"

#include "core/dataset.h"
#include "core/values.h"
#include "textsource.h"

#include <QCoreApplication>
#include <QMap>

namespace {

constexpr int SampleLines = 50;
constexpr int ProgressLines = 1000;

QString tr(const char *text)
{
    return QCoreApplication::translate("FixedWidthReader", text);
}

bool isBlankCharacter(QChar c)
{
    return c == QLatin1Char(' ') || c == QLatin1Char('\t');
}

// Column starts of one block: each position where a non-blank run begins, the first
// moved to 0.
QList<int> blockStarts(const QStringList &lines, int first, int count, int width)
{
    QVector<bool> blank(width, true);
    for (int i = first; i < first + count; ++i) {
        const QString &line = lines.at(i);
        for (int position = 0; position < line.size(); ++position) {
            if (!isBlankCharacter(line.at(position)))
                blank[position] = false;
        }
    }
    QList<int> starts;
    bool previousBlank = true;
    for (int position = 0; position < width; ++position) {
        if (previousBlank && !blank.at(position))
            starts << position;
        previousBlank = blank.at(position);
    }
    if (!starts.isEmpty() && starts.first() != 0)
        starts.first() = 0;
    return starts;
}

} // namespace

namespace FixedWidthReader {

QList<int> guessWidths(const QStringList &allLines)
{
    // Titles and footers at either end would break the columns, so they are dropped
    // first: blank lines, then lines alternately from the front and the back.
    QStringList lines;
    for (const QString &line : allLines) {
        if (!line.trimmed().isEmpty())
            lines << line;
    }
    if (lines.size() > 20) {
        const int target = qMin(200, int(0.9 * allLines.size()));
        const int excess = lines.size() - target;
        if (excess > 0)
            lines = lines.mid((excess + 1) / 2, target);
    }
    int width = 0;
    for (const QString &line : qAsConst(lines))
        width = qMax(width, int(line.size()));
    if (width == 0)
        return {};

    const int count = lines.size();
    const int blockSize = count <= 10 ? 2 : count <= 50 ? 5 : 10;
    QList<QList<int>> blocks;
    for (int first = 0; first + blockSize <= count; first += blockSize)
        blocks << blockStarts(lines, first, blockSize, width);
    if (blocks.isEmpty())
        blocks << blockStarts(lines, 0, count, width);

    // Keep the blocks whose number of columns is the most common, then take the most
    // common list of starts among them, the first in block order on a tie.
    QMap<int, int> columnTally;
    for (const QList<int> &starts : qAsConst(blocks))
        ++columnTally[starts.size()];
    int highestColumnTally = 0;
    for (const int tally : qAsConst(columnTally))
        highestColumnTally = qMax(highestColumnTally, tally);
    QList<QList<int>> kept;
    for (const QList<int> &starts : qAsConst(blocks)) {
        if (columnTally.value(starts.size()) == highestColumnTally)
            kept << starts;
    }
    QList<int> best;
    int bestTally = 0;
    for (const QList<int> &starts : qAsConst(kept)) {
        const int tally = int(kept.count(starts));
        if (tally > bestTally) {
            bestTally = tally;
            best = starts;
        }
    }

    if (best.isEmpty())
        return {width};
    QList<int> widths;
    for (int i = 1; i < best.size(); ++i)
        widths << best.at(i) - best.at(i - 1);
    widths << width - best.last();
    return widths;
}

} // namespace FixedWidthReader

bool readFixedWidth(TextSource &source, const InputOptions &options, Dataset &table, ReadReport &report)
{
    QStringList lines;
    QString line;
    while (source.readLine(line)) {
        if (line.contains(QLatin1Char('\r')))
            lines += line.split(QLatin1Char('\r'));
        else
            lines << line;
    }
    report.reportProgress(source.progress());

    QList<int> widths = options.columnWidths;
    const bool automatic = options.fixedWidthColumns == FixedWidthReader::Automatic;
    if (automatic || widths.isEmpty())
        widths = FixedWidthReader::guessWidths(lines);
    if (automatic) {
        report.information << tr(
            "Columns=Automatic guesses %1 columns, set 'Columns' option to '%2' to change")
                                  .arg(widths.size())
                                  .arg(tr("Manual"));
    }
    report.columnWidths = widths;

    int emptyRows = 0;
    if (options.ignoreEmptyRows) {
        const int before = lines.size();
        lines.removeAll(QString());
        emptyRows = before - lines.size();
    }
    table.setColumnCount(widths.size());
    int used = 0;
    for (int i = 0; i < lines.size(); ++i) {
        if (i % ProgressLines == 0)
            report.reportProgress(double(i) / lines.size());
        if (i < options.ignoreFirstRows)
            continue;
        const QString &text = lines.at(i);
        if (used < SampleLines)
            report.sample << text;
        ++used;
        QStringList row;
        row.reserve(widths.size());
        int position = 0;
        for (const int width : qAsConst(widths)) {
            if (position >= text.size())
                break;
            QString value = text.mid(position, qMax(0, width));
            position += qMax(0, width);
            if (options.trimWhitespace)
                value = value.trimmed();
            if (options.simplifyWhitespace)
                simplifyWhitespace(value);
            row << value;
        }
        if (options.ignoreEmptyRows && Dataset::isBlank(row)) {
            ++emptyRows;
            continue;
        }
        if (table.hasHeaders() && table.headers().isEmpty()) {
            while (row.size() < widths.size())
                row << QString();
            table.setHeaders(row);
        } else
            table.appendRow(row, true);
    }
    if (used > SampleLines)
        report.sample << tr("(+%1 more rows)").arg(used - SampleLines);
    if (emptyRows > 0)
        report.information << tr("%1 empty row(s) ignored").arg(emptyRows);
    return true;
}
