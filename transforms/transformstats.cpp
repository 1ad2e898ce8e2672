#include "transforms/transformstats.h"

void TransformStats::createParameters(const QList<Node *> &inputs, bool useDefaults)
{
    Transform::createParameters(inputs, useDefaults);

    auto *columns =
        new Parameter(ParameterKind::Columns, QStringLiteral("Columns"), tr("Columns"), inputs.value(0));
    columns->setTooltip(tr("Select the columns of numbers to describe."));
    addParameter(columns);

    auto *groupBy = new Parameter(
        ParameterKind::OptionalColumns, QStringLiteral("Group_By"), tr("Group by"), inputs.value(0));
    groupBy->setTooltip(tr("Optional columns whose values make the groups."));
    addParameter(groupBy);

    auto *caseSensitive =
        new Parameter(ParameterKind::Bool, QStringLiteral("Case_Sensitive"), tr("case sensitive"), true);
    caseSensitive->setTooltip(tr("Uncheck to put group values that differ only in case together."));
    applyDefault(useDefaults, caseSensitive);
    addParameter(caseSensitive);

    auto *decimals =
        new Parameter(ParameterKind::Int, QStringLiteral("Decimal_Places"), tr("Decimal places"), -1);
    decimals->setMinimum(-1);
    decimals->setMaximum(15);
    decimals->setSpecialValueText(tr("Automatic"));
    decimals->setTooltip(tr("Round the statistics to this many decimal places."));
    applyDefault(useDefaults, decimals);
    addParameter(decimals);
}

QList<QPair<QString, bool>> TransformStats::parameterStates() const
{
    const Parameter *groupBy = parameter(QStringLiteral("Group_By"));
    if (!groupBy)
        return {};
    // Case only matters for grouping; columns gone from the input make no groups.
    return {{QStringLiteral("Case_Sensitive"), !groupBy->columnIds().isEmpty()}};
}

Dataset TransformStats::process(const QList<Node *> &inputs, bool &failed)
{
    Q_UNUSED(failed)
    return notAvailableYet(inputs);
}
