#include "outputs/plaintextwriter.h"

#include "outputs/textoutput.h"

#include <QCoreApplication>

namespace {

QString tr(const char *text)
{
    return QCoreApplication::translate("PlainTextWriter", text);
}

// Appends the cells joined by tabs and the line ending; returns how many held a line break.
int appendLine(QString &buffer, const QStringList &cells, const QString &lineEnding)
{
    int broken = 0;
    for (int c = 0, count = cells.size(); c < count; ++c) {
        if (c > 0)
            buffer += QLatin1Char('\t');
        const QString &cell = cells.at(c);
        if (cell.contains(QLatin1Char('\n')) || cell.contains(QLatin1Char('\r')))
            ++broken;
        buffer += cell;
    }
    buffer += lineEnding;
    return broken;
}

} // namespace

bool writePlainText(
    const Dataset &table, const OutputOptions &options, QIODevice &device, WriteReport &report)
{
    if (table.hasNoColumns()) {
        report.information << tr("The dataset has no columns, so the file is empty");
        return true;
    }
    TextOutput output(device, options.encoding);
    const QString lineEnding = TextOutputFormat::lineEnding(options.lineEndings, options.fileType);
    qint64 broken = 0;
    if (options.writeHeader && table.hasHeaders())
        broken += appendLine(output.buffer(), table.headers(), lineEnding);
    const int rows = table.rowCount();
    for (int r = 0; r < rows; ++r) {
        broken += appendLine(output.buffer(), table.row(r), lineEnding);
        if (!output.flushIfFull())
            return false;
        if (r % 1000 == 999)
            report.reportProgress(double(r + 1) / rows);
    }
    if (!output.flush())
        return false;
    report.warnings << output.messages();
    if (broken > 0) {
        report.warnings << tr("%1 %2 hold line breaks and will read back as more than one row")
                               .arg(broken)
                               .arg(TextOutputFormat::plural(broken, tr("value"), tr("values")));
    }
    report.reportProgress(1.0);
    return true;
}
