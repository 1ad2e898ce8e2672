#include "transforms/transformscale.h"

QString TransformScale::description() const
{
    return tr("Rescale numbers in the selected columns: to a range, to z-scores, by the maximum, as a "
              "fraction of the "
              "total, or by a factor.");
}

void TransformScale::createParameters(const QList<Node *> &inputs, bool useDefaults)
{
    Transform::createParameters(inputs, useDefaults);

    auto *columns =
        new Parameter(ParameterKind::Columns, QStringLiteral("Columns"), tr("Columns"), inputs.value(0));
    columns->setTooltip(tr("Select the columns of numbers to scale. Each column is scaled on its own."));
    addParameter(columns);

    auto *method = new Parameter(ParameterKind::Selection, QStringLiteral("Method"), tr("Method"),
        QStringLiteral("Range"),
        QStringList {QStringLiteral("Range"), QStringLiteral("Z-score"), QStringLiteral("Maximum absolute"),
            QStringLiteral("Fraction of total"), QStringLiteral("Factor")});
    method->setTooltip(
        tr("Range maps the smallest value to the new minimum and the largest to the new maximum. "
           "Z-score gives (value - mean) / standard deviation."));
    applyDefault(useDefaults, method);
    addParameter(method);

    auto *newMinimum =
        new Parameter(ParameterKind::Real, QStringLiteral("New_Minimum"), tr("New minimum"), 0.0);
    newMinimum->setRealMinimum(-1e12);
    newMinimum->setRealMaximum(1e12);
    newMinimum->setTooltip(tr("The value that the column's smallest value becomes."));
    applyDefault(useDefaults, newMinimum);
    addParameter(newMinimum);

    auto *newMaximum =
        new Parameter(ParameterKind::Real, QStringLiteral("New_Maximum"), tr("New maximum"), 1.0);
    newMaximum->setRealMinimum(-1e12);
    newMaximum->setRealMaximum(1e12);
    newMaximum->setTooltip(tr("The value that the column's largest value becomes."));
    applyDefault(useDefaults, newMaximum);
    addParameter(newMaximum);

    // A Real keeps six significant digits in documents; factors such as 0.45359237 need more.
    auto *factor =
        new Parameter(ParameterKind::Text, QStringLiteral("Factor"), tr("Factor"), QStringLiteral("1"));
    factor->setTooltip(tr("The number to multiply by."));
    applyDefault(useDefaults, factor);
    addParameter(factor);

    auto *decimalPlaces =
        new Parameter(ParameterKind::Int, QStringLiteral("Decimal_Places"), tr("Decimal places"), -1);
    decimalPlaces->setMinimum(-1);
    decimalPlaces->setMaximum(15);
    decimalPlaces->setSpecialValueText(tr("Automatic"));
    decimalPlaces->setTooltip(tr("Round results to this many decimal places."));
    applyDefault(useDefaults, decimalPlaces);
    addParameter(decimalPlaces);
}

QList<QPair<QString, bool>> TransformScale::parameterStates() const
{
    const Parameter *method = parameter(QStringLiteral("Method"));
    if (!method)
        return {};
    const QString text = method->selectionText();
    const bool range = text == QLatin1String("Range");
    return {
        {QStringLiteral("New_Minimum"), range},
        {QStringLiteral("New_Maximum"), range},
        {QStringLiteral("Factor"), text == QLatin1String("Factor")},
    };
}

Dataset TransformScale::process(const QList<Node *> &inputs, bool &failed)
{
    Q_UNUSED(failed)
    return notAvailableYet(inputs);
}
