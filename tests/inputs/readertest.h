#pragma once

#include "core/dataset.h"
#include "inputs/inputoptions.h"
#include "inputs/textsource.h"

#include <QBuffer>
#include <QRandomGenerator>
#include <QtTest>

// Shared by the reader tests: reading bytes from a buffer, and tables and options written
// on one line.
namespace readertest {

// One row of a data table on one line: row("name", value, value, ...).
template<typename... Values>
void row(const char *name, Values... values)
{
    (QTest::newRow(name) << ... << values);
}

// Rows on lines, cells joined by "|", with line breaks inside cells shown as \n and \r;
// the headers, when there are any, come first followed by "--".
inline QString tableText(const Dataset &table)
{
    const auto line = [](const QStringList &cells) {
        QStringList shown;
        for (QString cell : cells)
            shown << cell.replace(QLatin1Char('\n'), QLatin1String("\\n"))
                         .replace(QLatin1Char('\r'), QLatin1String("\\r"));
        return shown.join(QLatin1Char('|'));
    };
    QStringList lines;
    if (table.hasHeaders())
        lines << line(table.headers()) << QStringLiteral("--");
    for (int r = 0; r < table.rowCount(); ++r)
        lines << line(table.row(r));
    return lines.join(QLatin1Char('\n'));
}

// Options from "key=value" words: delimiter, custom, quoting, repeated, first (rows to
// ignore), trim, simplify, empty (ignore empty rows), columns, widths (comma list).
inline InputOptions options(const QString &text)
{
    InputOptions options;
    for (const QString &word : text.split(QLatin1Char(' '), Qt::SkipEmptyParts)) {
        const QString key = word.section(QLatin1Char('='), 0, 0);
        const QString value = word.section(QLatin1Char('='), 1);
        if (key == QLatin1String("delimiter"))
            options.delimiter = value.toInt();
        else if (key == QLatin1String("custom"))
            options.customDelimiter = value.at(0);
        else if (key == QLatin1String("quoting"))
            options.quoting = value.toInt();
        else if (key == QLatin1String("repeated"))
            options.ignoreRepeatedDelimiter = value.toInt();
        else if (key == QLatin1String("first"))
            options.ignoreFirstRows = value.toInt();
        else if (key == QLatin1String("trim"))
            options.trimWhitespace = value.toInt();
        else if (key == QLatin1String("simplify"))
            options.simplifyWhitespace = value.toInt();
        else if (key == QLatin1String("empty"))
            options.ignoreEmptyRows = value.toInt();
        else if (key == QLatin1String("columns"))
            options.fixedWidthColumns = value.toInt();
        else if (key == QLatin1String("widths"))
            for (const QString &width : value.split(QLatin1Char(',')))
                options.columnWidths << width.toInt();
    }
    return options;
}

// Reads bytes with a reader of the TextSource shape, as the input pipeline hands it a file.
template<typename Reader>
bool read(Reader reader, const QByteArray &bytes, const InputOptions &options, Dataset &table,
    ReadReport &report, const QString &encoding = QStringLiteral("Automatic"))
{
    QByteArray data = bytes;
    QBuffer buffer(&data);
    buffer.open(QIODevice::ReadOnly);
    TextSource source(&buffer, encoding);
    return reader(source, options, table, report);
}

// A deterministic mutation of a sample: one to four character flips, cuts, insertions of
// a piece of the sample and repeated blocks.
inline QString mutate(const QString &sample, QRandomGenerator &random)
{
    QString text = sample;
    const int steps = 1 + int(random.bounded(4));
    for (int step = 0; step < steps; ++step) {
        const int at = text.isEmpty() ? 0 : int(random.bounded(text.size()));
        switch (random.bounded(4)) {
        case 0:
            if (!text.isEmpty())
                text[at] = QChar(ushort(random.bounded(128)));
            break;
        case 1:
            text.truncate(at);
            break;
        case 2:
            text.insert(at, sample.mid(int(random.bounded(sample.size())), int(random.bounded(20))));
            break;
        default:
            text.insert(at, text.mid(at, int(random.bounded(30))).repeated(1 + int(random.bounded(50))));
        }
    }
    return text;
}

} // namespace readertest
