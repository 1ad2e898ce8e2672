#include "transforms/transformsubstitute.h"

void TransformSubstitute::createParameters(const QList<Node *> &inputs, bool useDefaults)
{
    Transform::createParameters(inputs, useDefaults);

    auto *templateText =
        new Parameter(ParameterKind::LongText, QStringLiteral("Template"), tr("Template"), QString());
    templateText->setTooltip(
        tr("Text for the new column. $(name) or $(3) is replaced with the value of that column "
           "in the same row."));
    applyDefault(useDefaults, templateText);
    addParameter(templateText);

    auto *newName = new Parameter(
        ParameterKind::Text, QStringLiteral("New_Name"), tr("New column name"), tr("Substitute"));
    newName->setTooltip(tr("The name of the new column."));
    applyDefault(useDefaults, newName);
    addParameter(newName);

    auto *emptyIfMissing = new Parameter(ParameterKind::Bool, QStringLiteral("Empty_If_Missing"),
        tr("leave empty when a named value is empty"), false);
    emptyIfMissing->setTooltip(
        tr("Check to give an empty cell when any column named in the template is empty in that row."));
    applyDefault(useDefaults, emptyIfMissing);
    addParameter(emptyIfMissing);
}

Dataset TransformSubstitute::process(const QList<Node *> &inputs, bool &failed)
{
    Q_UNUSED(failed)
    return notAvailableYet(inputs);
}
