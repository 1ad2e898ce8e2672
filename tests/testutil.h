#pragma once

#include "core/dataset.h"

#include <QStringList>

// Small tables written as text, so that a test case fits on a line:
// rows split on "\n", cells on ",", no quoting. "a,b\n1,2" with headers
// gives headers a, b and one row 1, 2.
namespace testutil {

inline Dataset toDataset(const QString &text, bool withHeaders = false)
{
    Dataset dataset;
    if (text.isEmpty())
        return dataset;
    const QStringList lines = text.split(QLatin1Char('\n'));
    int width = 0;
    for (const QString &line : lines)
        width = qMax(width, int(line.split(QLatin1Char(',')).size()));
    dataset.setColumnCount(width);
    for (int i = 0; i < lines.size(); ++i) {
        const QStringList cells = lines.at(i).split(QLatin1Char(','));
        if (i == 0 && withHeaders)
            dataset.setHeaders(cells);
        else
            dataset.appendRow(cells, true);
    }
    return dataset;
}

// The cells as "a,b\n1,2"; with withHeaders the display headers come first.
inline QString toText(const Dataset &dataset, bool withHeaders = false)
{
    QStringList lines;
    if (withHeaders)
        lines << dataset.displayHeaders().join(QLatin1Char(','));
    for (int r = 0; r < dataset.rowCount(); ++r)
        lines << dataset.row(r).join(QLatin1Char(','));
    return lines.join(QLatin1Char('\n'));
}

} // namespace testutil
