#include "transforms/transformpad.h"

QString TransformPad::description() const
{
    return tr("Pad values to a length with a character, on the left, the right or both sides.");
}

void TransformPad::createParameters(const QList<Node *> &inputs, bool useDefaults)
{
    Transform::createParameters(inputs, useDefaults);

    auto *columns =
        new Parameter(ParameterKind::Columns, QStringLiteral("Columns"), tr("Columns"), inputs.value(0));
    columns->setTooltip(tr("Select the columns to pad."));
    addParameter(columns);

    auto *length = new Parameter(ParameterKind::Int, QStringLiteral("Length"), tr("Length"), 5);
    length->setMinimum(1);
    length->setMaximum(10000);
    length->setTooltip(tr("The length to pad values to. Longer values are left as they are."));
    applyDefault(useDefaults, length);
    addParameter(length);

    auto *padCharacter = new Parameter(
        ParameterKind::Char, QStringLiteral("Pad_Character"), tr("Pad character"), QChar(QLatin1Char('0')));
    padCharacter->setTooltip(tr("The character to pad with."));
    applyDefault(useDefaults, padCharacter);
    addParameter(padCharacter);

    auto *side =
        new Parameter(ParameterKind::Selection, QStringLiteral("Side"), tr("Pad on"), QStringLiteral("Left"),
            QStringList {QStringLiteral("Left"), QStringLiteral("Right"), QStringLiteral("Both")});
    side->setTooltip(tr("Where to add the characters. Both centres the value, any odd character going on the "
                        "right."));
    applyDefault(useDefaults, side);
    addParameter(side);

    auto *skipEmpty = new Parameter(
        ParameterKind::Bool, QStringLiteral("Skip_Empty"), tr("leave empty values empty"), true);
    skipEmpty->setTooltip(tr("Uncheck to pad empty values too."));
    applyDefault(useDefaults, skipEmpty);
    addParameter(skipEmpty);
}

Dataset TransformPad::process(const QList<Node *> &inputs, bool &failed)
{
    Q_UNUSED(failed)
    return notAvailableYet(inputs);
}
