#include "outputs/fixedwidthwriter.h"

#include "outputs/textoutput.h"

#include <QCoreApplication>

#include <algorithm>
#include <vector>

namespace {

QString tr(const char *text)
{
    return QCoreApplication::translate("FixedWidthWriter", text);
}

bool isBreakOrTab(ushort c)
{
    return c == '\n' || c == '\r' || c == '\t';
}

// Appends one line: each cell padded to its column's width, breaks and tabs as blanks.
// Returns the number of cells that held a break or a tab.
int appendLine(
    QString &buffer, const QStringList &cells, const std::vector<int> &widths, const QString &lineEnding)
{
    int blanked = 0;
    const int lineStart = buffer.size();
    for (int c = 0, count = int(widths.size()); c < count; ++c) {
        if (c > 0)
            buffer += QLatin1Char(' ');
        const QString &cell = c < cells.size() ? cells.at(c) : QString();
        const int cellStart = buffer.size();
        buffer += cell;
        bool held = false;
        QChar *data = buffer.data();
        for (int i = cellStart, end = buffer.size(); i < end; ++i) {
            if (isBreakOrTab(data[i].unicode())) {
                data[i] = QLatin1Char(' ');
                held = true;
            }
        }
        blanked += held ? 1 : 0;
        const int padding = widths[c] - TextOutputFormat::codePointCount(cell);
        if (padding > 0) {
            const int at = buffer.size();
            buffer.resize(at + padding);
            std::fill(buffer.data() + at, buffer.data() + at + padding, QLatin1Char(' '));
        }
    }
    int end = buffer.size();
    while (end > lineStart && buffer.at(end - 1) == QLatin1Char(' '))
        --end;
    buffer.resize(end);
    buffer += lineEnding;
    return blanked;
}

} // namespace

bool writeFixedWidth(
    const Dataset &table, const OutputOptions &options, QIODevice &device, WriteReport &report)
{
    if (table.hasNoColumns()) {
        report.information << tr("The dataset has no columns, so the file is empty");
        return true;
    }
    const int columns = table.columnCount();
    const int rows = table.rowCount();
    const bool header = options.writeHeader && table.hasHeaders();
    std::vector<int> widths(size_t(columns), 1);
    if (header) {
        for (int c = 0; c < columns; ++c)
            widths[size_t(c)] =
                qMax(widths[size_t(c)], TextOutputFormat::codePointCount(table.headers().value(c)));
    }
    for (int r = 0; r < rows; ++r) {
        const QStringList &cells = table.row(r);
        for (int c = 0; c < columns; ++c)
            widths[size_t(c)] = qMax(widths[size_t(c)], TextOutputFormat::codePointCount(cells.at(c)));
    }

    TextOutput output(device, options.encoding);
    const QString lineEnding = TextOutputFormat::lineEnding(options.lineEndings, options.fileType);
    qint64 blanked = 0;
    if (header)
        blanked += appendLine(output.buffer(), table.headers(), widths, lineEnding);
    for (int r = 0; r < rows; ++r) {
        blanked += appendLine(output.buffer(), table.row(r), widths, lineEnding);
        if (!output.flushIfFull())
            return false;
        if (r % 1000 == 999)
            report.reportProgress(double(r + 1) / rows);
    }
    if (!output.flush())
        return false;
    report.warnings << output.messages();
    if (blanked > 0) {
        report.warnings << tr("%1 %2 held line breaks or tabs, which were written as blanks")
                               .arg(blanked)
                               .arg(TextOutputFormat::plural(blanked, tr("value"), tr("values")));
    }
    QStringList reading;
    for (int c = 0; c < columns; ++c)
        reading << QString::number(widths[size_t(c)] + (c + 1 < columns ? 1 : 0));
    report.information << tr("Column widths for reading: %1").arg(reading.join(QStringLiteral(", ")));
    report.reportProgress(1.0);
    return true;
}
