#include "transforms/transformreorder.h"

QString TransformReorder::description() const
{
    return tr("Put the columns in a new order.");
}

QSet<QString> TransformReorder::keywords() const
{
    QSet<QString> words = Transform::keywords();
    for (const char *word : {"order", "move", "arrange", "columns", "rearrange", "sequence"})
        words.insert(QLatin1String(word));
    return words;
}

void TransformReorder::createParameters(const QList<Node *> &inputs, bool useDefaults)
{
    Transform::createParameters(inputs, useDefaults);

    // Starts as the upstream order, so that a new item changes nothing until a column is dragged.
    auto *order = new Parameter(
        ParameterKind::ReorderColumns, QStringLiteral("Order"), tr("Column order"), inputs.value(0));
    if (const Dataset *upstream = order->upstreamDataset()) {
        QList<ColumnId> ids;
        for (ColumnId id : upstream->columnIds()) {
            if (!id.isUnset())
                ids.append(id);
        }
        order->setValue(QVariant::fromValue(ids));
    }
    order->setTooltip(tr("Drag the columns into the order you want."));
    addParameter(order);
}

Dataset TransformReorder::process(const QList<Node *> &inputs, bool &failed)
{
    Q_UNUSED(failed)
    return notAvailableYet(inputs);
}
