#include "transforms/transformpivot.h"

namespace {

const QStringList &groupOptionNames()
{
    static const QStringList names {
        QStringLiteral("Row_Columns"), QStringLiteral("Column_Columns"), QStringLiteral("Value_Columns")};
    return names;
}

} // namespace

void TransformPivot::createParameters(const QList<Node *> &inputs, bool useDefaults)
{
    Transform::createParameters(inputs, useDefaults);

    auto *rowColumns = new Parameter(
        ParameterKind::GroupColumns, QStringLiteral("Row_Columns"), tr("Rows"), inputs.value(0));
    rowColumns->setTooltip(
        tr("Columns whose values become the rows of the table, each in the order chosen."));
    addParameter(rowColumns);

    auto *columnColumns = new Parameter(
        ParameterKind::GroupColumns, QStringLiteral("Column_Columns"), tr("Columns"), inputs.value(0));
    columnColumns->setTooltip(
        tr("Columns whose values become the columns of the table, each in the order chosen."));
    addParameter(columnColumns);

    // The order of the value columns matters; an ascending flag means nothing for them.
    auto *valueColumns = new Parameter(
        ParameterKind::GroupColumns, QStringLiteral("Value_Columns"), tr("Values"), inputs.value(0));
    valueColumns->setSortOrderShown(false);
    valueColumns->setTooltip(tr("Columns to summarise in each cell."));
    addParameter(valueColumns);

    // Choices are stored in documents by their text, so they are not translated.
    auto *aggregate = new Parameter(ParameterKind::Selection, QStringLiteral("Aggregate"), tr("Summary"),
        QStringLiteral("Sum"),
        QStringList {QStringLiteral("Count"), QStringLiteral("Count non-empty"),
            QStringLiteral("Count unique"), QStringLiteral("Sum"), QStringLiteral("Mean"),
            QStringLiteral("Median"), QStringLiteral("Minimum"), QStringLiteral("Maximum"),
            QStringLiteral("Standard deviation"), QStringLiteral("First"), QStringLiteral("Last")});
    aggregate->setTooltip(tr("How to summarise the values of each cell. Count needs no value column."));
    applyDefault(useDefaults, aggregate);
    addParameter(aggregate);

    auto *emptyCell =
        new Parameter(ParameterKind::Text, QStringLiteral("Empty_Cell"), tr("Empty cells"), QString());
    emptyCell->setTextRequired(false);
    emptyCell->setTooltip(tr("Text for combinations that have no rows, such as 0."));
    applyDefault(useDefaults, emptyCell);
    addParameter(emptyCell);

    auto *caseSensitive =
        new Parameter(ParameterKind::Bool, QStringLiteral("Case_Sensitive"), tr("case sensitive"), true);
    caseSensitive->setTooltip(tr("Uncheck to put key values that differ only in case together."));
    applyDefault(useDefaults, caseSensitive);
    addParameter(caseSensitive);
}

QList<QPair<QString, bool>> TransformPivot::parameterStates() const
{
    const Parameter *aggregate = parameter(QStringLiteral("Aggregate"));
    if (!aggregate)
        return {};
    return {{QStringLiteral("Value_Columns"), aggregate->selectionText() != QLatin1String("Count")}};
}

void TransformPivot::setUpstream(const QList<Node *> &nodes)
{
    Node *node = nodes.value(0);
    for (const QString &name : groupOptionNames()) {
        Parameter *option = parameter(name);
        if (!option)
            continue;
        if (!node) {
            option->clearUpstream();
            continue;
        }
        // Columns of another dataset mean nothing here. A document's text still waiting to
        // be read is kept for when the new node has data.
        if (option->upstream() != node && !option->isPending())
            option->setValue(QVariant::fromValue(SortColumnList()));
        option->setUpstream(node, false);
    }
}

Dataset TransformPivot::process(const QList<Node *> &inputs, bool &failed)
{
    Q_UNUSED(failed)
    return notAvailableYet(inputs);
}
