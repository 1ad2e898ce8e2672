#include "transforms/transformcorrelate.h"

void TransformCorrelate::createParameters(const QList<Node *> &inputs, bool useDefaults)
{
    Transform::createParameters(inputs, useDefaults);

    auto *columns =
        new Parameter(ParameterKind::Columns, QStringLiteral("Columns"), tr("Columns"), inputs.value(0));
    columns->setTooltip(tr("Select two or more columns of numbers."));
    addParameter(columns);

    auto *method = new Parameter(ParameterKind::Selection, QStringLiteral("Method"), tr("Method"),
        QStringLiteral("Pearson"), QStringList {QStringLiteral("Pearson"), QStringLiteral("Spearman")});
    method->setTooltip(
        tr("Pearson measures straight-line relationships. Spearman ranks the values first, so it "
           "measures any steady rise or fall and resists outliers."));
    applyDefault(useDefaults, method);
    addParameter(method);

    auto *layout = new Parameter(ParameterKind::Selection, QStringLiteral("Layout"), tr("Layout"),
        QStringLiteral("Matrix"), QStringList {QStringLiteral("Matrix"), QStringLiteral("Pairs")});
    layout->setTooltip(tr("A square table of every pair, or one row per pair."));
    applyDefault(useDefaults, layout);
    addParameter(layout);

    auto *decimals =
        new Parameter(ParameterKind::Int, QStringLiteral("Decimal_Places"), tr("Decimal places"), 4);
    decimals->setMinimum(-1);
    decimals->setMaximum(15);
    decimals->setSpecialValueText(tr("Automatic"));
    decimals->setTooltip(tr("Round correlations to this many decimal places."));
    applyDefault(useDefaults, decimals);
    addParameter(decimals);
}

Dataset TransformCorrelate::process(const QList<Node *> &inputs, bool &failed)
{
    Q_UNUSED(failed)
    return notAvailableYet(inputs);
}
