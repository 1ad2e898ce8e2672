#include "htmlwriter.h"

#include "structuredtext.h"

#include "core/dataset.h"

#include <QCoreApplication>
#include <QFileInfo>

using namespace StructuredText;

namespace {

const int HtmlFileType = 8;

QString tr(const char *text)
{
    return QCoreApplication::translate("HtmlWriter", text);
}

// One table row: each cell escaped when the option says so, else as it stands so that it
// can carry markup.
void appendRow(QString &out, const QStringList &cells, QLatin1String tag, bool escape)
{
    out += QLatin1String("<tr>");
    for (const QString &cell : cells) {
        out += QLatin1Char('<');
        out += tag;
        out += QLatin1Char('>');
        if (escape)
            appendEscapedHtml(out, cell, true);
        else
            out += cell;
        out += QLatin1String("</");
        out += tag;
        out += QLatin1Char('>');
    }
    out += QLatin1String("</tr>");
}

} // namespace

QString escapeHtml(const QString &text, bool lineBreaks)
{
    QString result;
    result.reserve(text.size() + 8);
    appendEscapedHtml(result, text, lineBreaks);
    return result;
}

void appendEscapedHtml(QString &result, const QString &text, bool lineBreaks)
{
    const int n = text.size();
    for (int i = 0; i < n; ++i) {
        const QChar c = text.at(i);
        switch (c.unicode()) {
        case '&':
            result += QLatin1String("&amp;");
            break;
        case '<':
            result += QLatin1String("&lt;");
            break;
        case '>':
            result += QLatin1String("&gt;");
            break;
        case '"':
            result += QLatin1String("&quot;");
            break;
        case '\'':
            result += QLatin1String("&#39;");
            break;
        case '\r':
            if (!lineBreaks) {
                result += c;
                break;
            }
            if (i + 1 < n && text.at(i + 1) == QLatin1Char('\n'))
                ++i;
            result += QLatin1String("<br>");
            break;
        case '\n':
            result += lineBreaks ? QStringLiteral("<br>") : QStringLiteral("\n");
            break;
        default:
            result += c;
        }
    }
}

bool writeHtml(const Dataset &dataset, const OutputOptions &options, QIODevice &device, WriteReport &report)
{
    const QString lineEnding = StructuredText::lineEnding(options, HtmlFileType, false, report);
    TextSink sink(device, options.encoding, lineEnding);
    const bool appending = options.writeMode == OutputOptions::Append && !holdsNoText(device);
    ClosingText closing;
    if (appending) {
        if (!makeSeekable(device) || !closing.find(device, sink, QStringLiteral("</tbody>"), false)) {
            report.warnings.prepend(
                tr("Unable to append to '%1': it has no '</tbody>'").arg(absolutePath(options.path)));
            return false;
        }
        if (dataset.hasNoRows())
            return sink.finish(report);
        closing.seekToStart(device);
    } else {
        const QStringList head = {QStringLiteral("<!DOCTYPE html>"), QStringLiteral("<html>"),
            QStringLiteral("<head>"), QStringLiteral("<meta charset=\"%1\">").arg(sink.encodingName()),
            QStringLiteral("<title>%1</title>")
                .arg(escapeHtml(QFileInfo(options.path).completeBaseName(), false)),
            QStringLiteral("<style>"), QStringLiteral("table { border-collapse: collapse; }"),
            QStringLiteral("th, td { border: 1px solid #bbb; padding: 2px 6px; vertical-align: top; }"),
            QStringLiteral("th { background: #eee; text-align: left; }"), QStringLiteral("</style>"),
            QStringLiteral("</head>"), QStringLiteral("<body>")};
        for (const QString &line : head) {
            sink << line;
            sink.endLine();
        }
        const QString comment = markupComment(options.fileComment, QDateTime::currentDateTime());
        if (!comment.isEmpty()) {
            sink << comment;
            sink.endLine();
        }
        sink << QLatin1String("<table>");
        sink.endLine();
        if (options.writeHeader) {
            sink << QLatin1String("<thead>");
            sink.endLine();
            appendRow(sink.buffer(), dataset.displayHeaders(), QLatin1String("th"), options.escapeHtml);
            sink.endLine();
            sink << QLatin1String("</thead>");
            sink.endLine();
        }
        sink << QLatin1String("<tbody>");
        sink.endLine();
    }

    const int rows = dataset.rowCount();
    for (int r = 0; r < rows; ++r) {
        if (r % 1000 == 0)
            report.reportProgress(double(r) / rows);
        appendRow(sink.buffer(), dataset.row(r), QLatin1String("td"), options.escapeHtml);
        sink.endLine();
    }
    if (appending) {
        // A device that fails is named by the write pipeline.
        if (!closing.finish(device, sink))
            return false;
    } else {
        for (const char *line : {"</tbody>", "</table>", "</body>", "</html>"}) {
            sink << QLatin1String(line);
            sink.endLine();
        }
    }
    report.reportProgress(1);
    return sink.finish(report);
}
