#include "transforms/transformslide.h"

QString TransformSlide::description() const
{
    return tr("Slide values left or right across the selected columns to close up empty cells.");
}

void TransformSlide::createParameters(const QList<Node *> &inputs, bool useDefaults)
{
    Transform::createParameters(inputs, useDefaults);

    auto *columns =
        new Parameter(ParameterKind::Columns, QStringLiteral("Columns"), tr("Columns"), inputs.value(0));
    columns->setTooltip(tr("Select the columns to slide across, taken in their order in the dataset."));
    addParameter(columns);

    auto *direction = new Parameter(ParameterKind::Selection, QStringLiteral("Direction"), tr("Slide"),
        QStringLiteral("Left"), QStringList {QStringLiteral("Left"), QStringLiteral("Right")});
    direction->setTooltip(tr("Slide values left, leaving empty cells on the right, or right."));
    applyDefault(useDefaults, direction);
    addParameter(direction);

    auto *blankWhitespace = new Parameter(ParameterKind::Bool, QStringLiteral("Blank_Whitespace"),
        tr("treat whitespace-only values as empty"), false);
    blankWhitespace->setTooltip(tr("Check to treat cells holding only blanks as empty; they end up empty."));
    applyDefault(useDefaults, blankWhitespace);
    addParameter(blankWhitespace);
}

Dataset TransformSlide::process(const QList<Node *> &inputs, bool &failed)
{
    Q_UNUSED(failed)
    return notAvailableYet(inputs);
}
