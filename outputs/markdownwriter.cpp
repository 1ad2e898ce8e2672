#include "markdownwriter.h"

#include "structuredtext.h"

#include "core/dataset.h"

#include <QVector>

using namespace StructuredText;

namespace {

const int MarkdownFileType = 9;
const int MaximumWidth = 40;

// Characters, not UTF-16 units: a surrogate pair is one.
int characterCount(const QString &text)
{
    int count = text.size();
    for (const QChar c : text) {
        if (c.isLowSurrogate())
            --count;
    }
    return count;
}

class Line
{
public:
    Line(const QVector<int> &widths, const QVector<bool> &right)
        : m_widths(widths)
        , m_right(right)
    { }
    QString operator()(const QStringList &cells) const
    {
        QString line = QStringLiteral("| ");
        for (int c = 0; c < m_widths.size(); ++c) {
            if (c > 0)
                line += QLatin1String(" | ");
            const QString &cell = cells.at(c);
            const QString padding(qMax(0, m_widths.at(c) - characterCount(cell)), QLatin1Char(' '));
            line += m_right.at(c) ? padding + cell : cell + padding;
        }
        return line + QLatin1String(" |");
    }

private:
    const QVector<int> &m_widths;
    const QVector<bool> &m_right;
};

} // namespace

QString markdownCell(const QString &text, bool escapeSpecial)
{
    QString result;
    result.reserve(text.size() + 4);
    const int n = text.size();
    for (int i = 0; i < n; ++i) {
        const QChar c = text.at(i);
        switch (c.unicode()) {
        case '|':
            result += QLatin1String("\\|");
            break;
        case '\r':
            if (i + 1 < n && text.at(i + 1) == QLatin1Char('\n'))
                ++i;
            result += QLatin1String("<br>");
            break;
        case '\n':
            result += QLatin1String("<br>");
            break;
        case '\\':
        case '`':
        case '*':
        case '_':
        case '[':
        case ']':
        case '<':
        case '>':
        case '~':
            if (escapeSpecial)
                result += QLatin1Char('\\');
            result += c;
            break;
        default:
            result += c;
        }
    }
    return result;
}

bool writeMarkdown(
    const Dataset &dataset, const OutputOptions &options, QIODevice &device, WriteReport &report)
{
    const QString lineEnding = StructuredText::lineEnding(options, MarkdownFileType, false, report);
    TextSink sink(device, options.encoding, lineEnding);
    const int columns = dataset.columnCount();
    if (columns == 0)
        return sink.finish(report);
    // Appended rows go under the table already in the file, which has its header lines.
    const bool headerLines = options.writeMode != OutputOptions::Append || holdsNoText(device);

    // Padding needs the widest cell of each column first.
    QStringList header;
    if (options.writeHeader) {
        for (const QString &name : dataset.displayHeaders())
            header << markdownCell(name, options.escapeHtml);
    } else {
        for (int c = 0; c < columns; ++c)
            header << QString();
    }
    QVector<int> widths(columns, 3);
    QVector<bool> right(columns);
    for (int c = 0; c < columns; ++c) {
        right[c] = dataset.isNumericColumn(c, false, 100);
        if (headerLines)
            widths[c] = qMax(widths.at(c), characterCount(header.at(c)));
    }
    const int rows = dataset.rowCount();
    QList<QStringList> cells;
    cells.reserve(rows);
    for (int r = 0; r < rows; ++r) {
        if (r % 1000 == 0)
            report.reportProgress(0.5 * r / rows);
        QStringList row;
        row.reserve(columns);
        for (int c = 0; c < columns; ++c) {
            row << markdownCell(dataset.row(r).value(c), options.escapeHtml);
            widths[c] = qMax(widths.at(c), characterCount(row.last()));
        }
        cells << row;
    }
    for (int &width : widths)
        width = qMin(width, MaximumWidth);

    const Line line(widths, right);
    if (headerLines) {
        sink << line(header);
        sink.endLine();
        QStringList rule;
        for (int c = 0; c < columns; ++c) {
            QString dashes(widths.at(c), QLatin1Char('-'));
            if (right.at(c))
                dashes[dashes.size() - 1] = QLatin1Char(':');
            rule << dashes;
        }
        sink << line(rule);
        sink.endLine();
    }
    for (int r = 0; r < rows; ++r) {
        if (r % 1000 == 0)
            report.reportProgress(0.5 + 0.5 * r / rows);
        sink << line(cells.at(r));
        sink.endLine();
    }
    report.reportProgress(1);
    return sink.finish(report);
}
