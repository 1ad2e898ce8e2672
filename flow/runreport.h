#pragma once

#include <QCoreApplication>
#include <QHash>
#include <QList>
#include <QString>
#include <QStringList>

class Node;

// The report after a run without a window, shared by the command line and the batch
// runner so that both print the same thing. It walks the inputs, the transforms, the
// outputs that write and the charts that write a file; an item that is not "Up to date"
// is an error. Lines depend on the verbosity, 0 "Silent" to 4 "Maximum"; the counts
// don't.
class RunReport
{
    Q_DECLARE_TR_FUNCTIONS(RunReport)
public:
    enum Kind : int { Inputs = 0, Transforms = 1, Outputs = 2, Charts = 3, KindCount = 4 };

    struct Line
    {
        QString text;
        bool error = false; // for the error channel: red on a console
    };

    // chartsInEdition: whether "Processed: %1" has a "%1 Chart(s)" piece.
    explicit RunReport(int verbosity, bool chartsInEdition = true);

    // Walks nodes, grouped by kind and in the order given within a kind. overwritten holds
    // the paths that the run wrote more than once, with their counts; each such path is
    // one more warning.
    void count(const QList<Node *> &nodes, const QHash<QString, int> &overwritten);

    // The status, information and warning lines of the walked items, in walk order.
    QList<Line> itemLines() const { return m_itemLines; }
    // "Processed: %1" to "Results: %1"; empty at verbosity 0.
    QList<Line> summaryLines(qint64 elapsedNanoseconds) const;

    int verbosity() const { return m_verbosity; }
    int errorCount() const { return m_errors; }
    int warningCount() const { return m_warnings; }
    int processedCount(Kind kind) const { return m_processed[kind]; }
    // Distinct paths written by up-to-date outputs and charts, sorted.
    QStringList outputsWritten() const { return m_outputsWritten; }
    QStringList chartsWritten() const { return m_chartsWritten; }
    // The short status lines of the items that counted as errors.
    QStringList failedStatusLines() const { return m_failedStatusLines; }

    // "12.345": seconds with three decimals.
    static QString secondsText(qint64 elapsedNanoseconds);
    // Each line of text with prefix before it.
    static QString prefixLines(const QString &text, const QString &prefix);

private:
    void walk(Node *node, Kind kind);

    int m_verbosity = 0;
    bool m_chartsInEdition = true;
    int m_processed[KindCount] = {0, 0, 0, 0};
    int m_errors = 0;
    int m_warnings = 0;
    QStringList m_outputsWritten;
    QStringList m_chartsWritten;
    QStringList m_overwritten; // sorted
    QHash<QString, int> m_overwriteCounts;
    QStringList m_failedStatusLines;
    QList<Line> m_itemLines;
};
