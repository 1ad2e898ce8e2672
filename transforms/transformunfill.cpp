#include "transforms/transformunfill.h"

QString TransformUnfill::description() const
{
    return tr("Blank out values that repeat the value directly above, as in grouped reports.");
}

void TransformUnfill::createParameters(const QList<Node *> &inputs, bool useDefaults)
{
    Transform::createParameters(inputs, useDefaults);

    auto *columns =
        new Parameter(ParameterKind::Columns, QStringLiteral("Columns"), tr("Columns"), inputs.value(0));
    columns->setTooltip(tr("Select the columns whose repeated values are to be blanked."));
    addParameter(columns);

    auto *caseSensitive =
        new Parameter(ParameterKind::Bool, QStringLiteral("Case_Sensitive"), tr("case sensitive"), true);
    caseSensitive->setTooltip(tr("Uncheck to count values that differ only in case as repeats."));
    applyDefault(useDefaults, caseSensitive);
    addParameter(caseSensitive);

    auto *hierarchical = new Parameter(ParameterKind::Bool, QStringLiteral("Hierarchical"),
        tr("blank only when the columns to the left also repeat"), true);
    hierarchical->setTooltip(
        tr("Check to blank a value only when every selected column to its left repeats too, so "
           "a new group always shows its values."));
    applyDefault(useDefaults, hierarchical);
    addParameter(hierarchical);
}

Dataset TransformUnfill::process(const QList<Node *> &inputs, bool &failed)
{
    Q_UNUSED(failed)
    return notAvailableYet(inputs);
}
