#include "transforms/transformimpute.h"

void TransformImpute::createParameters(const QList<Node *> &inputs, bool useDefaults)
{
    Transform::createParameters(inputs, useDefaults);

    auto *columns =
        new Parameter(ParameterKind::Columns, QStringLiteral("Columns"), tr("Columns"), inputs.value(0));
    columns->setTooltip(tr("Select the columns with missing values."));
    addParameter(columns);

    // Choices are stored in documents by their text, so they are not translated.
    auto *method = new Parameter(ParameterKind::Selection, QStringLiteral("Method"), tr("Method"),
        QStringLiteral("Median"),
        QStringList {QStringLiteral("Mean"), QStringLiteral("Median"), QStringLiteral("Most common"),
            QStringLiteral("Minimum"), QStringLiteral("Maximum"), QStringLiteral("Fixed value"),
            QStringLiteral("Linear interpolation")});
    method->setTooltip(
        tr("How to compute the value for missing cells. Interpolation fills gaps between numbers "
           "above and below."));
    applyDefault(useDefaults, method);
    addParameter(method);

    auto *fixedValue =
        new Parameter(ParameterKind::Text, QStringLiteral("Fixed_Value"), tr("Fixed value"), QString());
    fixedValue->setTooltip(tr("The text to put in missing cells."));
    applyDefault(useDefaults, fixedValue);
    addParameter(fixedValue);

    auto *groupBy = new Parameter(
        ParameterKind::OptionalColumns, QStringLiteral("Group_By"), tr("Group by"), inputs.value(0));
    groupBy->setTooltip(tr("Optional columns: values are computed, or interpolated, within each group of "
                           "rows with equal values."));
    addParameter(groupBy);

    auto *missingValues =
        new Parameter(ParameterKind::Text, QStringLiteral("Missing_Values"), tr("Also missing"), QString());
    missingValues->setTextRequired(false);
    missingValues->setTooltip(
        tr("Texts that also count as missing, separated by commas, such as NA,N/A,null,-."));
    applyDefault(useDefaults, missingValues);
    addParameter(missingValues);

    auto *decimals =
        new Parameter(ParameterKind::Int, QStringLiteral("Decimal_Places"), tr("Decimal places"), -1);
    decimals->setMinimum(-1);
    decimals->setMaximum(15);
    decimals->setSpecialValueText(tr("Automatic"));
    decimals->setTooltip(tr("Round computed values to this many decimal places."));
    applyDefault(useDefaults, decimals);
    addParameter(decimals);
}

QList<QPair<QString, bool>> TransformImpute::parameterStates() const
{
    const Parameter *method = parameter(QStringLiteral("Method"));
    if (!method)
        return {};
    const QString how = method->selectionText();
    const bool fixed = how == QLatin1String("Fixed value");
    // Only computed numbers are rounded; the other methods copy a text as it stands.
    const bool copiesText = fixed || how == QLatin1String("Most common") || how == QLatin1String("Minimum")
        || how == QLatin1String("Maximum");
    return {
        {QStringLiteral("Fixed_Value"), fixed},
        {QStringLiteral("Group_By"), !fixed},
        {QStringLiteral("Decimal_Places"), !copiesText},
    };
}

Dataset TransformImpute::process(const QList<Node *> &inputs, bool &failed)
{
    Q_UNUSED(failed)
    return notAvailableYet(inputs);
}
