#include "transforms/transformcount.h"

void TransformCount::createParameters(const QList<Node *> &inputs, bool useDefaults)
{
    Transform::createParameters(inputs, useDefaults);

    auto *columns =
        new Parameter(ParameterKind::Columns, QStringLiteral("Columns"), tr("Count by"), inputs.value(0));
    columns->setTooltip(
        tr("Select the columns whose distinct values, or combinations of values, are counted."));
    addParameter(columns);

    auto *caseSensitive =
        new Parameter(ParameterKind::Bool, QStringLiteral("Case_Sensitive"), tr("case sensitive"), true);
    caseSensitive->setTooltip(tr("Uncheck to count values that differ only in case together."));
    applyDefault(useDefaults, caseSensitive);
    addParameter(caseSensitive);

    auto *sumColumns = new Parameter(
        ParameterKind::OptionalColumns, QStringLiteral("Sum_Columns"), tr("Sum columns"), inputs.value(0));
    sumColumns->setTooltip(tr("Columns of numbers to total for each distinct value."));
    addParameter(sumColumns);

    auto *percent =
        new Parameter(ParameterKind::Bool, QStringLiteral("Percent"), tr("add percent column"), false);
    percent->setTooltip(tr("Check to add each count as a percentage of all rows."));
    applyDefault(useDefaults, percent);
    addParameter(percent);

    auto *sort = new Parameter(ParameterKind::Selection, QStringLiteral("Sort"), tr("Sort by"),
        QStringLiteral("Count, highest first"),
        QStringList {QStringLiteral("Count, highest first"), QStringLiteral("Count, lowest first"),
            QStringLiteral("Values"), QStringLiteral("First occurrence")});
    sort->setTooltip(
        tr("The order of the result rows. Equal counts keep the order in which values first occur."));
    applyDefault(useDefaults, sort);
    addParameter(sort);
}

Dataset TransformCount::process(const QList<Node *> &inputs, bool &failed)
{
    Q_UNUSED(failed)
    return notAvailableYet(inputs);
}
