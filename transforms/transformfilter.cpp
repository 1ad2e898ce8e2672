#include "transforms/transformfilter.h"

QString TransformFilter::description() const
{
    return tr("Keep or remove the rows that meet conditions on their values.");
}

void TransformFilter::createParameters(const QList<Node *> &inputs, bool useDefaults)
{
    Transform::createParameters(inputs, useDefaults);

    auto *conditions = new Parameter(
        ParameterKind::FilterColumns, QStringLiteral("Columns"), tr("Filtering"), inputs.value(0));
    conditions->setTooltip(tr("Set the conditions that decide which rows are kept or removed."));
    addParameter(conditions);

    auto *caseSensitive =
        new Parameter(ParameterKind::Bool, QStringLiteral("Case_Sensitive"), tr("case sensitive"), false);
    applyDefault(useDefaults, caseSensitive);
    caseSensitive->setTooltip(tr("Check for case sensitive text matching."));
    addParameter(caseSensitive);

    auto *disable =
        new Parameter(ParameterKind::Bool, QStringLiteral("Disable"), tr("disable filtering"), false);
    disable->setDisableSwitch(true);
    applyDefault(useDefaults, disable);
    disable->setTooltip(tr("Check to disable filtering (which means that transform does nothing)."));
    addParameter(disable);
}

Dataset TransformFilter::process(const QList<Node *> &inputs, bool &failed)
{
    Q_UNUSED(failed)
    return notAvailableYet(inputs);
}
