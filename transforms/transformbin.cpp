#include "transforms/transformbin.h"

void TransformBin::createParameters(const QList<Node *> &inputs, bool useDefaults)
{
    Transform::createParameters(inputs, useDefaults);

    auto *column =
        new Parameter(ParameterKind::Column, QStringLiteral("Column"), tr("Column"), inputs.value(0));
    column->setTooltip(tr("The column of numbers to bin."));
    addParameter(column);

    // Choices are stored in documents by their text, so they are not translated.
    auto *bins = new Parameter(ParameterKind::Selection, QStringLiteral("Bins"), tr("Bins"),
        QStringLiteral("Number of bins"),
        QStringList {
            QStringLiteral("Number of bins"), QStringLiteral("Bin width"), QStringLiteral("Boundaries")});
    bins->setTooltip(
        tr("Equal bins from the smallest to the largest value, bins of a given width, or your own "
           "boundaries."));
    applyDefault(useDefaults, bins);
    addParameter(bins);

    auto *binCount = new Parameter(ParameterKind::Int, QStringLiteral("Bin_Count"), tr("Number of bins"), 10);
    binCount->setMinimum(1);
    binCount->setMaximum(1000);
    binCount->setTooltip(tr("How many equal bins to make."));
    applyDefault(useDefaults, binCount);
    addParameter(binCount);

    auto *binWidth = new Parameter(ParameterKind::Real, QStringLiteral("Bin_Width"), tr("Bin width"), 10.0);
    binWidth->setRealMinimum(1e-9);
    binWidth->setRealMaximum(1e12);
    binWidth->setTooltip(tr("The width of each bin."));
    applyDefault(useDefaults, binWidth);
    addParameter(binWidth);

    auto *binStart = new Parameter(ParameterKind::Real, QStringLiteral("Bin_Start"), tr("Align to"), 0.0);
    binStart->setRealMinimum(-1e12);
    binStart->setRealMaximum(1e12);
    binStart->setTooltip(tr("Boundaries lie at this value plus whole multiples of the width."));
    applyDefault(useDefaults, binStart);
    addParameter(binStart);

    auto *boundaries =
        new Parameter(ParameterKind::LongText, QStringLiteral("Boundaries"), tr("Boundaries"), QString());
    boundaries->setTooltip(tr("Bin boundaries, one number per line."));
    applyDefault(useDefaults, boundaries);
    addParameter(boundaries);

    auto *upperInclusive = new Parameter(ParameterKind::Bool, QStringLiteral("Upper_Inclusive"),
        tr("include upper boundary in each bin"), false);
    upperInclusive->setTooltip(tr("Check for bins (a, b] rather than [a, b)."));
    applyDefault(useDefaults, upperInclusive);
    addParameter(upperInclusive);

    auto *emptyBins =
        new Parameter(ParameterKind::Bool, QStringLiteral("Empty_Bins"), tr("include empty bins"), true);
    emptyBins->setTooltip(tr("Uncheck to leave out bins with no values."));
    applyDefault(useDefaults, emptyBins);
    addParameter(emptyBins);
}

QList<QPair<QString, bool>> TransformBin::parameterStates() const
{
    const Parameter *bins = parameter(QStringLiteral("Bins"));
    if (!bins)
        return {};
    const QString how = bins->selectionText();
    const bool byWidth = how == QLatin1String("Bin width");
    return {
        {QStringLiteral("Bin_Count"), how == QLatin1String("Number of bins")},
        {QStringLiteral("Bin_Width"), byWidth},
        {QStringLiteral("Bin_Start"), byWidth},
        {QStringLiteral("Boundaries"), how == QLatin1String("Boundaries")},
    };
}

Dataset TransformBin::process(const QList<Node *> &inputs, bool &failed)
{
    Q_UNUSED(failed)
    return notAvailableYet(inputs);
}
