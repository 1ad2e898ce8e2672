#include "transforms/transformremovecols.h"

QString TransformRemoveCols::description() const
{
    return tr("Remove columns: uncheck the columns you don't want to keep.");
}

QSet<QString> TransformRemoveCols::keywords() const
{
    QSet<QString> words = Transform::keywords();
    for (const char *word : {"delete", "drop", "keep", "select", "hide", "columns", "empty"})
        words.insert(QLatin1String(word));
    return words;
}

void TransformRemoveCols::setUpstream(const QList<Node *> &nodes)
{
    Parameter *columns = parameter(QStringLiteral("Columns"));
    if (!columns)
        return;
    Node *node = nodes.value(0);
    if (!node) {
        columns->clearUpstream();
        return;
    }
    const bool newNode = columns->upstream() != node;
    columns->setUpstream(node, false);
    // A new item keeps everything until columns are unchecked. A document's list is
    // pending or not empty, so it is never replaced here.
    if (newNode && !columns->isPending() && columns->value().value<QList<ColumnId>>().isEmpty())
        columns->selectAllColumns();
}

void TransformRemoveCols::createParameters(const QList<Node *> &inputs, bool useDefaults)
{
    Transform::createParameters(inputs, useDefaults);

    auto *columns = new Parameter(
        ParameterKind::Columns, QStringLiteral("Columns"), tr("Columns to keep"), inputs.value(0));
    columns->selectAllColumns();
    columns->setTooltip(tr("Check the columns to keep. Unchecked columns are removed."));
    addParameter(columns);

    auto *removeEmpty = new Parameter(
        ParameterKind::Bool, QStringLiteral("Remove_Empty"), tr("also remove empty columns"), false);
    applyDefault(useDefaults, removeEmpty);
    removeEmpty->setTooltip(tr("Check to also remove columns in which every cell is empty."));
    addParameter(removeEmpty);
}

Dataset TransformRemoveCols::process(const QList<Node *> &inputs, bool &failed)
{
    Q_UNUSED(failed)
    return notAvailableYet(inputs);
}
