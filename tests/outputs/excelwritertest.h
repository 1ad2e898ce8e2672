#pragma once

#include "core/dataset.h"
#include "outputs/outputoptions.h"

#include <QCryptographicHash>
#include <QDir>
#include <QFile>
#include <QString>
#include <QStringList>

// What the two Excel writer tests share: tables written as text with "|" between cells
// (cells may hold commas), and the files a failed write must leave alone.
namespace excelwritertest {

// "a|b\n1|2"; with headers the first line names the columns.
inline Dataset table(const QString &text, bool withHeaders = false)
{
    Dataset dataset;
    const QStringList lines = text.split(QLatin1Char('\n'));
    int width = 0;
    for (const QString &line : lines)
        width = qMax(width, int(line.split(QLatin1Char('|')).size()));
    dataset.setColumnCount(width);
    for (int i = 0; i < lines.size(); ++i) {
        const QStringList cells = lines.at(i).split(QLatin1Char('|'));
        if (i == 0 && withHeaders)
            dataset.setHeaders(cells);
        else
            dataset.appendRow(cells, true);
    }
    return dataset;
}

// One column of cells, one cell per "|"-separated item.
inline Dataset column(const QString &cells)
{
    Dataset dataset;
    dataset.setColumnCount(1);
    for (const QString &cell : cells.split(QLatin1Char('|')))
        dataset.appendRow({cell});
    return dataset;
}

inline OutputOptions options(const QString &sheet, int mode = OutputOptions::Overwrite, bool header = true)
{
    OutputOptions result;
    result.sheet = sheet;
    result.writeMode = mode;
    result.writeHeader = header;
    return result;
}

inline QByteArray digest(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return QByteArray();
    return QCryptographicHash::hash(file.readAll(), QCryptographicHash::Sha256);
}

// Entries of a folder, so that a test sees no temporary file left behind.
inline QStringList entries(const QString &folder)
{
    return QDir(folder).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot, QDir::Name);
}

} // namespace excelwritertest
