#include "runreport.h"

#include "node.h"

#include <QSet>

namespace {

const QString InfoPrefix = QStringLiteral("    Info: ");
const QString WarningPrefix = QStringLiteral("    Warning: ");

// The kind of item a report walks, or -1 for one it passes over (notes).
int kindOf(const Node *node)
{
    const QString type = node->typeName();
    if (type == QLatin1String("Input"))
        return RunReport::Inputs;
    if (type == QLatin1String("Transform"))
        return RunReport::Transforms;
    if (type == QLatin1String("Output"))
        return RunReport::Outputs;
    if (type == QLatin1String("Chart"))
        return RunReport::Charts;
    return -1;
}

QStringList sortedDistinct(const QStringList &paths)
{
    QStringList result = QSet<QString>(paths.cbegin(), paths.cend()).values();
    result.sort();
    return result;
}

} // namespace

RunReport::RunReport(int verbosity, bool chartsInEdition)
    : m_verbosity(verbosity)
    , m_chartsInEdition(chartsInEdition)
{ }

void RunReport::count(const QList<Node *> &nodes, const QHash<QString, int> &overwritten)
{
    for (int kind = Inputs; kind < KindCount; ++kind) {
        for (Node *node : nodes) {
            if (node && kindOf(node) == kind && node->isReportedInRun())
                walk(node, Kind(kind));
        }
    }
    m_outputsWritten = sortedDistinct(m_outputsWritten);
    m_chartsWritten = sortedDistinct(m_chartsWritten);
    m_overwriteCounts = overwritten;
    m_overwritten = overwritten.keys();
    m_overwritten.sort();
    m_warnings += m_overwritten.size();
}

void RunReport::walk(Node *node, Kind kind)
{
    const bool upToDate = node->status() == Node::UpToDate;
    if (upToDate) {
        ++m_processed[kind];
        if (kind == Outputs)
            m_outputsWritten += node->writtenFiles();
        else if (kind == Charts)
            m_chartsWritten += node->writtenFiles();
    } else {
        ++m_errors;
        m_failedStatusLines << node->statusText(false);
    }
    if (m_verbosity >= 2)
        m_itemLines << Line {node->statusText(m_verbosity >= 3), !upToDate};
    if (m_verbosity >= 4) {
        for (const QString &text : node->information())
            m_itemLines << Line {prefixLines(text, InfoPrefix), false};
    }
    if (m_verbosity >= 3) {
        for (const QString &text : node->warnings())
            m_itemLines << Line {prefixLines(text, WarningPrefix), false};
    }
    m_warnings += node->warningCount();
}

QList<RunReport::Line> RunReport::summaryLines(qint64 elapsedNanoseconds) const
{
    QList<Line> lines;
    if (m_verbosity < 1)
        return lines;
    QStringList pieces {tr("%1 Input(s)").arg(m_processed[Inputs]),
        tr("%1 Transform(s)").arg(m_processed[Transforms]), tr("%1 Output(s)").arg(m_processed[Outputs])};
    if (m_chartsInEdition)
        pieces << tr("%1 Chart(s)").arg(m_processed[Charts]);
    lines << Line {tr("Processed: %1").arg(pieces.join(QStringLiteral(", ")))};

    const auto listPaths = [&lines, this](const QStringList &paths) {
        if (m_verbosity >= 3) {
            for (const QString &path : paths)
                lines << Line {QStringLiteral("  %1").arg(path)};
        }
    };
    lines << Line {tr("Outputs written: %1").arg(m_outputsWritten.size())};
    listPaths(m_outputsWritten);
    if (!m_chartsWritten.isEmpty()) {
        lines << Line {tr("Charts written: %1").arg(m_chartsWritten.size())};
        listPaths(m_chartsWritten);
    }
    if (!m_overwritten.isEmpty()) {
        lines << Line {tr("Overwritten multiple times: %1").arg(m_overwritten.size())};
        if (m_verbosity >= 3) {
            for (const QString &path : m_overwritten)
                lines << Line {
                    tr("  Warning: Overwrote '%1' %2 times").arg(path).arg(m_overwriteCounts.value(path))};
        }
    }
    lines << Line {tr("Elapsed: %1 second(s)").arg(secondsText(elapsedNanoseconds))};
    QStringList results {tr("%1 error(s)").arg(m_errors)};
    if (m_verbosity >= 2)
        results << tr("%1 warning(s)").arg(m_warnings);
    lines << Line {tr("Results: %1").arg(results.join(QStringLiteral(", ")))};
    return lines;
}

QString RunReport::secondsText(qint64 elapsedNanoseconds)
{
    return QString::number(double(elapsedNanoseconds) / 1e9, 'f', 3);
}

QString RunReport::prefixLines(const QString &text, const QString &prefix)
{
    QStringList lines = text.split(QLatin1Char('\n'));
    for (QString &line : lines)
        line.prepend(prefix);
    return lines.join(QLatin1Char('\n'));
}
