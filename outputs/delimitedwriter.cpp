#include "outputs/delimitedwriter.h"

#include "outputs/textoutput.h"

#include <QCoreApplication>
#include <QFileInfo>

namespace {

QString tr(const char *text)
{
    return QCoreApplication::translate("DelimitedWriter", text);
}

const ushort Quote = '"';

// The label of a delimiter choice, as the item pane lists it.
QString delimiterLabel(int delimiter)
{
    switch (delimiter) {
    case 2:
        return tr("Semi-colon (;)");
    case 3:
        return tr("Colon (:)");
    case 4:
        return tr("Tab (\\t)");
    case 5:
        return tr("Pipe (|)");
    case 6:
        return tr("Caret (^)");
    case 7:
        return tr("Space ( )");
    case 8:
        return tr("Custom");
    case 9:
        return tr("Unit separator (0x1F)");
    default:
        return tr("Comma (,)");
    }
}

// Appends rows to the output's buffer under one quoting rule.
class RowWriter
{
public:
    RowWriter(QString &buffer, QChar delimiter, int quoting, const QString &lineEnding)
        : m_buffer(buffer)
        , m_delimiter(delimiter.unicode())
        , m_quoting(quoting)
        , m_lineEnding(lineEnding)
    { }

    void writeRow(const QStringList &cells, int row, const Dataset &table)
    {
        const int count = cells.size();
        for (int c = 0; c < count; ++c) {
            if (c > 0)
                m_buffer += QChar(m_delimiter);
            const QString &cell = cells.at(c);
            switch (m_quoting) {
            case OutputOptions::Quoted:
                appendQuoted(cell);
                break;
            case OutputOptions::Unquoted:
                if (breaksRow(cell)) {
                    if (m_unsafe++ == 0) {
                        m_firstRow = row;
                        m_firstColumn = table.headerText(c);
                    }
                }
                m_buffer += cell;
                break;
            default:
                if (needsQuotes(cell, count == 1))
                    appendQuoted(cell);
                else
                    m_buffer += cell;
            }
        }
        m_buffer += m_lineEnding;
    }

    qint64 unsafeCount() const { return m_unsafe; }
    int firstUnsafeRow() const { return m_firstRow; }
    QString firstUnsafeColumn() const { return m_firstColumn; }

private:
    bool needsQuotes(const QString &cell, bool onlyCell) const
    {
        const int size = cell.size();
        if (size == 0)
            return onlyCell; // else the row would be an empty line, which readers drop
        const ushort *p = cell.utf16();
        if (p[0] == ' ' || p[0] == '\t' || p[size - 1] == ' ' || p[size - 1] == '\t')
            return true;
        for (int i = 0; i < size; ++i) {
            const ushort c = p[i];
            if (c == m_delimiter || c == Quote || c == '\n' || c == '\r')
                return true;
        }
        return false;
    }

    bool breaksRow(const QString &cell) const
    {
        const ushort *p = cell.utf16();
        for (int i = 0, size = cell.size(); i < size; ++i) {
            const ushort c = p[i];
            if (c == m_delimiter || c == '\n' || c == '\r')
                return true;
        }
        return false;
    }

    void appendQuoted(const QString &cell)
    {
        m_buffer += QLatin1Char('"');
        int from = 0;
        int quote;
        while ((quote = cell.indexOf(QLatin1Char('"'), from)) >= 0) {
            m_buffer.append(cell.constData() + from, quote + 1 - from);
            m_buffer += QLatin1Char('"');
            from = quote + 1;
        }
        if (from == 0)
            m_buffer += cell;
        else
            m_buffer.append(cell.constData() + from, cell.size() - from);
        m_buffer += QLatin1Char('"');
    }

    QString &m_buffer;
    const ushort m_delimiter;
    const int m_quoting;
    const QString m_lineEnding;
    qint64 m_unsafe = 0;
    int m_firstRow = 0;
    QString m_firstColumn;
};

} // namespace

QChar delimitedOutputDelimiter(const OutputOptions &options, WriteReport *report)
{
    switch (options.delimiter) {
    case 0: {
        const QString suffix = QFileInfo(options.path).suffix().toLower();
        const int chosen = suffix == QLatin1String("tsv") || suffix == QLatin1String("tab") ? 4 : 1;
        if (report) {
            report->information << tr("Delimiter=Automatic sets '%1', set 'Delimiter' option to change")
                                       .arg(delimiterLabel(chosen));
        }
        return chosen == 4 ? QLatin1Char('\t') : QLatin1Char(',');
    }
    case 2:
        return QLatin1Char(';');
    case 3:
        return QLatin1Char(':');
    case 4:
        return QLatin1Char('\t');
    case 5:
        return QLatin1Char('|');
    case 6:
        return QLatin1Char('^');
    case 7:
        return QLatin1Char(' ');
    case 8:
        if (options.customDelimiter.isNull()) {
            if (report)
                report->warnings << tr("The custom delimiter is empty; a comma was used");
            return QLatin1Char(',');
        }
        return options.customDelimiter;
    case 9:
        return QChar(0x1F);
    default:
        return QLatin1Char(',');
    }
}

bool writeDelimited(
    const Dataset &table, const OutputOptions &options, QIODevice &device, WriteReport &report)
{
    const QChar delimiter = delimitedOutputDelimiter(options, &report);
    if (table.hasNoColumns()) {
        report.information << tr("The dataset has no columns, so the file is empty");
        return true;
    }
    TextOutput output(device, options.encoding);
    RowWriter writer(output.buffer(), delimiter, options.quoting,
        TextOutputFormat::lineEnding(options.lineEndings, options.fileType));
    // A table without headers has no header row to write: its column numbers are not data.
    if (options.writeHeader && table.hasHeaders())
        writer.writeRow(table.headers(), 0, table);
    const int rows = table.rowCount();
    for (int r = 0; r < rows; ++r) {
        writer.writeRow(table.row(r), r + 1, table);
        if (!output.flushIfFull())
            return false;
        if (r % 1000 == 999)
            report.reportProgress(double(r + 1) / rows);
    }
    if (!output.flush())
        return false;
    report.warnings << output.messages();
    if (writer.unsafeCount() > 0) {
        report.warnings << tr("%1 %2 contain the delimiter or a line break and were written unquoted, so the "
                              "file won't read back as written. E.g. row %3, column '%4'")
                               .arg(writer.unsafeCount())
                               .arg(TextOutputFormat::plural(writer.unsafeCount(), tr("value"), tr("values")))
                               .arg(writer.firstUnsafeRow())
                               .arg(writer.firstUnsafeColumn());
    }
    report.reportProgress(1.0);
    return true;
}
