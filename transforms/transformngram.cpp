#include "transforms/transformngram.h"

void TransformNgram::createParameters(const QList<Node *> &inputs, bool useDefaults)
{
    Transform::createParameters(inputs, useDefaults);

    auto *column =
        new Parameter(ParameterKind::Column, QStringLiteral("Column"), tr("Column"), inputs.value(0));
    column->setTooltip(tr("The column of text to analyse."));
    addParameter(column);

    auto *minimumWords =
        new Parameter(ParameterKind::Int, QStringLiteral("Minimum_Words"), tr("Minimum words"), 1);
    minimumWords->setMinimum(1);
    minimumWords->setMaximum(10);
    minimumWords->setTooltip(tr("The fewest words in a phrase."));
    applyDefault(useDefaults, minimumWords);
    addParameter(minimumWords);

    auto *maximumWords =
        new Parameter(ParameterKind::Int, QStringLiteral("Maximum_Words"), tr("Maximum words"), 3);
    maximumWords->setMinimum(1);
    maximumWords->setMaximum(10);
    maximumWords->setTooltip(tr("The most words in a phrase."));
    applyDefault(useDefaults, maximumWords);
    addParameter(maximumWords);

    auto *caseSensitive =
        new Parameter(ParameterKind::Bool, QStringLiteral("Case_Sensitive"), tr("case sensitive"), false);
    caseSensitive->setTooltip(tr("Check to count words that differ in case separately."));
    applyDefault(useDefaults, caseSensitive);
    addParameter(caseSensitive);

    auto *stopWords =
        new Parameter(ParameterKind::LongText, QStringLiteral("Stop_Words"), tr("Stop words"), QString());
    stopWords->setTextRequired(false);
    stopWords->setTooltip(
        tr("Words to ignore, one per line. A phrase that starts or ends with one is not counted."));
    applyDefault(useDefaults, stopWords);
    addParameter(stopWords);

    auto *minimumCount =
        new Parameter(ParameterKind::Int, QStringLiteral("Minimum_Count"), tr("Minimum count"), 1);
    minimumCount->setMinimum(1);
    minimumCount->setMaximum(Parameter::MaximumInt);
    minimumCount->setTooltip(tr("Leave out phrases that occur fewer times than this."));
    applyDefault(useDefaults, minimumCount);
    addParameter(minimumCount);
}

Dataset TransformNgram::process(const QList<Node *> &inputs, bool &failed)
{
    Q_UNUSED(failed)
    return notAvailableYet(inputs);
}
