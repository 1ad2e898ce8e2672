#include "transforms/transformchop.h"

QString TransformChop::description() const
{
    return tr("Remove or keep a number of characters at the start or end of values.");
}

void TransformChop::createParameters(const QList<Node *> &inputs, bool useDefaults)
{
    Transform::createParameters(inputs, useDefaults);

    auto *columns =
        new Parameter(ParameterKind::Columns, QStringLiteral("Columns"), tr("Columns"), inputs.value(0));
    columns->setTooltip(tr("Select the columns to chop."));
    addParameter(columns);

    auto *mode = new Parameter(ParameterKind::Selection, QStringLiteral("Mode"), tr("Chop"),
        QStringLiteral("Remove from end"),
        QStringList {QStringLiteral("Remove from start"), QStringLiteral("Remove from end"),
            QStringLiteral("Keep start"), QStringLiteral("Keep end")});
    mode->setTooltip(tr("Remove characters, or keep only some, at the start or the end of each value."));
    applyDefault(useDefaults, mode);
    addParameter(mode);

    auto *characters = new Parameter(ParameterKind::Int, QStringLiteral("Characters"), tr("Characters"), 1);
    characters->setMinimum(1);
    characters->setMaximum(1000000);
    characters->setTooltip(tr("How many characters to remove or keep."));
    applyDefault(useDefaults, characters);
    addParameter(characters);
}

Dataset TransformChop::process(const QList<Node *> &inputs, bool &failed)
{
    Q_UNUSED(failed)
    return notAvailableYet(inputs);
}
