#pragma once

#include "outputs/outputoptions.h"
#include "testutil.h"

#include <QBuffer>
#include <QStringList>

#include <functional>

// Writers run on a QBuffer, with their options given as "key=value;..." so that a test
// case fits on a line.
namespace writertest {

using DeviceWriter = std::function<bool(const Dataset &, const OutputOptions &, QIODevice &, WriteReport &)>;

// Keys: types, manual (numbers joined by ","), remove, header, escape, lines, encoding,
// bom, mode, root, row, above, below, comment, path. Line endings default to LF and the file
// comment to none, so that expected texts don't depend on the platform or the clock.
inline OutputOptions options(const QString &optionText)
{
    OutputOptions result;
    result.lineEndings = OutputOptions::Lf;
    result.fileComment.clear();
    for (const QString &item : optionText.split(QLatin1Char(';'), Qt::SkipEmptyParts)) {
        const int equals = item.indexOf(QLatin1Char('='));
        const QString key = item.left(equals);
        const QString value = item.mid(equals + 1);
        if (key == QLatin1String("types"))
            result.jsonTypes = value.toInt();
        else if (key == QLatin1String("manual")) {
            for (const QString &number : value.split(QLatin1Char(',')))
                result.jsonManualColumnTypes << number.toInt();
        } else if (key == QLatin1String("remove"))
            result.removeEmpty = value == QLatin1String("1");
        else if (key == QLatin1String("header"))
            result.writeHeader = value == QLatin1String("1");
        else if (key == QLatin1String("escape"))
            result.escapeHtml = value == QLatin1String("1");
        else if (key == QLatin1String("lines"))
            result.lineEndings = value.toInt();
        else if (key == QLatin1String("encoding"))
            result.encoding = value;
        else if (key == QLatin1String("bom"))
            result.byteOrderMark = value == QLatin1String("1");
        else if (key == QLatin1String("mode"))
            result.writeMode = value.toInt();
        else if (key == QLatin1String("root"))
            result.xmlRootName = value;
        else if (key == QLatin1String("row"))
            result.xmlRowName = value;
        else if (key == QLatin1String("above"))
            result.xmlAboveRoot = value;
        else if (key == QLatin1String("below"))
            result.xmlBelowRoot = value;
        else if (key == QLatin1String("comment"))
            result.fileComment = value;
        else if (key == QLatin1String("path"))
            result.path = value;
        else
            qFatal("unknown option key %s", qPrintable(key));
    }
    return result;
}

// Like testutil::toDataset, headers first, with escapes in cells: "\\n" a line feed, "\\r" a
// carriage return, "\\t" a tab, "\\," a comma and "\\\\" a backslash.
inline Dataset table(const QString &text)
{
    Dataset dataset;
    if (text.isEmpty())
        return dataset;
    QList<QStringList> lines;
    for (const QString &line : text.split(QLatin1Char('\n'))) {
        QStringList cells(QString {});
        for (int i = 0; i < line.size(); ++i) {
            const QChar c = line.at(i);
            if (c == QLatin1Char(',')) {
                cells << QString();
            } else if (c == QLatin1Char('\\') && i + 1 < line.size()) {
                const QChar next = line.at(++i);
                cells.last() += next == QLatin1Char('n') ? QChar('\n')
                    : next == QLatin1Char('r')           ? QChar('\r')
                    : next == QLatin1Char('t')           ? QChar('\t')
                                                         : next;
            } else {
                cells.last() += c;
            }
        }
        lines << cells;
    }
    dataset.setColumnCount(lines.first().size());
    dataset.setHeaders(lines.first());
    for (int i = 1; i < lines.size(); ++i)
        dataset.appendRow(lines.at(i), true);
    return dataset;
}

// The writer's bytes after what the buffer held before (appending starts at its end).
inline QByteArray write(const DeviceWriter &writer, const Dataset &table, const OutputOptions &options,
    WriteReport &report, bool &ok, const QByteArray &before = QByteArray())
{
    QByteArray bytes = before;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::ReadWrite);
    buffer.seek(buffer.size());
    ok = writer(table, options, buffer, report);
    buffer.close();
    return bytes;
}

inline QString write(const DeviceWriter &writer, const QString &table, const QString &optionText,
    QStringList *warnings = nullptr, QStringList *information = nullptr)
{
    WriteReport report;
    bool ok = false;
    const QByteArray bytes = write(writer, writertest::table(table), options(optionText), report, ok);
    if (warnings)
        *warnings = report.warnings;
    if (information)
        *information = report.information;
    return QString::fromUtf8(bytes);
}

} // namespace writertest
