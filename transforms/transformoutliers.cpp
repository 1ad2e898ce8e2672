#include "transforms/transformoutliers.h"

void TransformOutliers::createParameters(const QList<Node *> &inputs, bool useDefaults)
{
    Transform::createParameters(inputs, useDefaults);

    auto *columns =
        new Parameter(ParameterKind::Columns, QStringLiteral("Columns"), tr("Columns"), inputs.value(0));
    columns->setTooltip(tr("Select the columns of numbers to check. Each column is checked on its own."));
    addParameter(columns);

    // Choices are stored in documents by their text, so they are not translated.
    auto *method = new Parameter(ParameterKind::Selection, QStringLiteral("Method"), tr("Method"),
        QStringLiteral("Interquartile range"),
        QStringList {QStringLiteral("Interquartile range"), QStringLiteral("Standard deviations"),
            QStringLiteral("Median absolute deviation"), QStringLiteral("Percentiles")});
    method->setTooltip(tr("How to set the limits beyond which values are outliers."));
    applyDefault(useDefaults, method);
    addParameter(method);

    auto *iqrMultiplier =
        new Parameter(ParameterKind::Real, QStringLiteral("IQR_Multiplier"), tr("IQR multiplier"), 1.5);
    iqrMultiplier->setRealMinimum(0);
    iqrMultiplier->setRealMaximum(100);
    iqrMultiplier->setTooltip(
        tr("Values more than this many interquartile ranges beyond the quartiles are outliers."));
    applyDefault(useDefaults, iqrMultiplier);
    addParameter(iqrMultiplier);

    auto *deviations = new Parameter(
        ParameterKind::Real, QStringLiteral("Standard_Deviations"), tr("Standard deviations"), 3.0);
    deviations->setRealMinimum(0);
    deviations->setRealMaximum(100);
    deviations->setTooltip(tr("Values more than this many standard deviations from the mean are outliers."));
    applyDefault(useDefaults, deviations);
    addParameter(deviations);

    auto *madThreshold = new Parameter(
        ParameterKind::Real, QStringLiteral("MAD_Threshold"), tr("Modified z-score limit"), 3.5);
    madThreshold->setRealMinimum(0);
    madThreshold->setRealMaximum(100);
    madThreshold->setTooltip(
        tr("Values whose modified z-score, 0.6745 × (value − median) ÷ MAD, passes this are "
           "outliers."));
    applyDefault(useDefaults, madThreshold);
    addParameter(madThreshold);

    auto *percentile =
        new Parameter(ParameterKind::Real, QStringLiteral("Percentile"), tr("Percentile"), 1.0);
    percentile->setRealMinimum(0);
    percentile->setRealMaximum(50);
    percentile->setTooltip(tr("Values below this percentile, or above 100 minus it, are outliers."));
    applyDefault(useDefaults, percentile);
    addParameter(percentile);

    auto *side =
        new Parameter(ParameterKind::Selection, QStringLiteral("Side"), tr("Side"), QStringLiteral("Both"),
            QStringList {QStringLiteral("Both"), QStringLiteral("High only"), QStringLiteral("Low only")});
    side->setTooltip(tr("Which outliers to replace."));
    applyDefault(useDefaults, side);
    addParameter(side);

    auto *replaceWith = new Parameter(ParameterKind::Selection, QStringLiteral("Replace_With"),
        tr("Replace with"), QStringLiteral("Empty value"),
        QStringList {
            QStringLiteral("Empty value"), QStringLiteral("Nearest limit"), QStringLiteral("Fixed text")});
    replaceWith->setTooltip(
        tr("Blank outliers, cap them at the limit they pass, or put a text in their place."));
    applyDefault(useDefaults, replaceWith);
    addParameter(replaceWith);

    auto *fixedText =
        new Parameter(ParameterKind::Text, QStringLiteral("Fixed_Text"), tr("Fixed text"), tr("Outlier"));
    fixedText->setTooltip(tr("The text to put in place of outliers."));
    applyDefault(useDefaults, fixedText);
    addParameter(fixedText);

    auto *decimals =
        new Parameter(ParameterKind::Int, QStringLiteral("Decimal_Places"), tr("Decimal places"), -1);
    decimals->setMinimum(-1);
    decimals->setMaximum(15);
    decimals->setSpecialValueText(tr("Automatic"));
    decimals->setTooltip(tr("Round the limits written by Nearest limit."));
    applyDefault(useDefaults, decimals);
    addParameter(decimals);
}

QList<QPair<QString, bool>> TransformOutliers::parameterStates() const
{
    const Parameter *method = parameter(QStringLiteral("Method"));
    const Parameter *replaceWith = parameter(QStringLiteral("Replace_With"));
    if (!method || !replaceWith)
        return {};
    const QString how = method->selectionText();
    const QString with = replaceWith->selectionText();
    return {
        {QStringLiteral("IQR_Multiplier"), how == QLatin1String("Interquartile range")},
        {QStringLiteral("Standard_Deviations"), how == QLatin1String("Standard deviations")},
        {QStringLiteral("MAD_Threshold"), how == QLatin1String("Median absolute deviation")},
        {QStringLiteral("Percentile"), how == QLatin1String("Percentiles")},
        {QStringLiteral("Fixed_Text"), with == QLatin1String("Fixed text")},
        {QStringLiteral("Decimal_Places"), with == QLatin1String("Nearest limit")},
    };
}

Dataset TransformOutliers::process(const QList<Node *> &inputs, bool &failed)
{
    Q_UNUSED(failed)
    return notAvailableYet(inputs);
}
