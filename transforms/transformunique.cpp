#include "transforms/transformunique.h"

QString TransformUnique::description() const
{
    return tr("Keep one row for each unique combination of key columns, choosing what to keep from the other "
              "columns.");
}

QSet<QString> TransformUnique::keywords() const
{
    QSet<QString> words = Transform::keywords();
    words << QStringLiteral("distinct") << QStringLiteral("group") << QStringLiteral("collapse")
          << QStringLiteral("first") << QStringLiteral("last") << QStringLiteral("minimum")
          << QStringLiteral("maximum") << QStringLiteral("keys");
    return words;
}

bool TransformUnique::hasMinimumOptions() const
{
    // Only a key column that the upstream dataset still holds counts.
    const Parameter *options = parameter(QStringLiteral("Column_Options"));
    const Dataset *dataset = options ? options->upstreamDataset() : nullptr;
    if (!dataset)
        return false;
    const UniqueColumnsValue value = options->uniqueColumns();
    for (auto it = value.cbegin(); it != value.cend(); ++it) {
        if (it.value() == UniqueKey && dataset->columnIndex(it.key()).isValid())
            return true;
    }
    return false;
}

void TransformUnique::createParameters(const QList<Node *> &inputs, bool useDefaults)
{
    Transform::createParameters(inputs, useDefaults);

    auto *options = new Parameter(
        ParameterKind::UniqueColumns, QStringLiteral("Column_Options"), tr("Columns"), inputs.value(0));
    options->setTooltip(
        tr("For each column choose Unique to group by it, or what to keep from the rows of each "
           "group."));
    addParameter(options);

    auto *caseSensitive =
        new Parameter(ParameterKind::Bool, QStringLiteral("Case_Sensitive"), tr("case sensitive"), true);
    applyDefault(useDefaults, caseSensitive);
    caseSensitive->setTooltip(tr("Check for case sensitive matching of key values."));
    addParameter(caseSensitive);

    auto *addCount =
        new Parameter(ParameterKind::Bool, QStringLiteral("Add_Count"), tr("add count column"), false);
    applyDefault(useDefaults, addCount);
    addCount->setTooltip(tr("Check to add a column 'Count' with the number of rows in each group."));
    addParameter(addCount);
}

Dataset TransformUnique::process(const QList<Node *> &inputs, bool &failed)
{
    Q_UNUSED(failed)
    return notAvailableYet(inputs);
}
