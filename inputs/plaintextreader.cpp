#include "plaintextreader.h"

#include "core/dataset.h"
#include "rowsink.h"
#include "textsource.h"

namespace {

constexpr qint64 ProgressChars = 10000;

} // namespace

bool readPlainText(TextSource &source, const InputOptions &options, Dataset &table, ReadReport &report)
{
    RowSink sink(options, table);
    QString line;
    int inputRow = 0;
    qint64 sinceProgress = 0;
    while (source.readLine(line)) {
        sinceProgress += line.size() + 1;
        if (sinceProgress >= ProgressChars) {
            sinceProgress = 0;
            report.reportProgress(source.progress());
        }
        const QStringList parts =
            line.contains(QLatin1Char('\r')) ? line.split(QLatin1Char('\r')) : QStringList {line};
        for (const QString &part : parts) {
            if (inputRow >= options.ignoreFirstRows) {
                QStringList row {part};
                sink.add(row, inputRow);
            }
            ++inputRow;
        }
    }
    sink.finish(report);
    return true;
}
