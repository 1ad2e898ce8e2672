#pragma once

#include "charts/chartoptions.h"
#include "flow/filenamevariables.h"
#include "flow/node.h"

#include <functional>

class ChartWidget;

// The flow item that shows the dataset of its one input as a chart and may write that
// chart to a JPEG, PNG or PDF file. The drawing is ChartWidget's; the node holds the
// options, the columns and the messages of the last draw.
//
// Columns are held as ColumnIds. Documents store them as positions in the upstream
// dataset, so the positions read stay pending until the upstream item has data.
class ChartNode : public Node
{
    Q_OBJECT
public:
    explicit ChartNode(QGraphicsItem *parent = nullptr);

    QString typeName() const override { return QStringLiteral("Chart"); }
    QString displayTypeName() const override { return tr("Chart"); }
    // "Chart", or "Line chart" once a type is set.
    QString name() const override;
    int maxUpstream() const override { return 1; }
    int maxDownstream() const override { return 0; }

    const ChartOptions &options() const { return m_options; }
    void setOptions(const ChartOptions &options);

    // The X column and the ordered Y columns, as ids of the upstream dataset's columns.
    ColumnId xColumn() const { return m_xColumn; }
    void setXColumn(ColumnId column);
    QList<ColumnId> yColumns() const { return m_yColumns; }
    void setYColumns(const QList<ColumnId> &columns);
    // Positions counted from 1 (0: none), resolved against the upstream dataset once it
    // has columns. Documents and flows built in code set columns this way.
    void setPendingColumns(int xPosition, const QList<int> &yPositions);
    bool hasPendingColumns() const { return m_pending; }
    // The positions to store: from the live columns when the upstream has data, else
    // those last read or resolved.
    int xPosition() const;
    QList<int> yPositions() const;

    // The resolved columns in the node's dataset: the X column or -1, and the Y columns
    // that still resolve, in order.
    DataColumnIndex xColumnIndex() const;
    QList<DataColumnIndex> yColumnIndexes() const;
    // Rows times resolved Y columns.
    qint64 dataPointCount() const;
    int seriesCount() const { return yColumnIndexes().size(); }

    // "Plotted", "Error plotting", "Written" or "Error writing".
    QString statusWord() const;
    // "%1 series / %2 %3".
    QString sizeText() const override;
    QString summaryText() const override;
    QList<DetailRow> details() const override;

    void process(bool recursive, bool freeMemory) override;

    bool isReportedInRun() const override { return m_options.writeFile; }
    QStringList writtenFiles() const override { return m_writtenFiles; }
    void setAliasPath(const QString &path) override { m_options.path = path; }
    // The path of the last write, variables expanded.
    QString lastWrittenPath() const { return m_lastWrittenPath; }
    FileNameContext fileNameContext() const;

    // Whether the chart may be drawn in this edition: empty, or the refusal text.
    static QString editionRefusal();
    static void setEditionCheck(const std::function<QString()> &check);

signals:
    void optionsChanged();

private:
    void resolvePendingColumns();
    bool writeFile(ChartWidget &widget);
    void addWrittenFile(const QString &path);

    ChartOptions m_options;
    ColumnId m_xColumn;
    QList<ColumnId> m_yColumns;
    bool m_pending = false;
    int m_xPosition = 0;
    QList<int> m_yPositions;
    QString m_lastWrittenPath;
    QStringList m_writtenFiles;
};
