#include "transforms/transformoffset.h"

QString TransformOffset::description() const
{
    return tr("Move the values of selected columns up or down by a number of rows, within groups if wanted.");
}

QSet<QString> TransformOffset::keywords() const
{
    QSet<QString> words = Transform::keywords();
    for (const char *word : {"lag", "lead", "shift", "previous", "next", "prior", "delta"})
        words.insert(QLatin1String(word));
    return words;
}

void TransformOffset::createParameters(const QList<Node *> &inputs, bool useDefaults)
{
    Transform::createParameters(inputs, useDefaults);

    auto *columns =
        new Parameter(ParameterKind::Columns, QStringLiteral("Columns"), tr("Columns"), inputs.value(0));
    columns->setTooltip(tr("Select the columns whose values are moved."));
    addParameter(columns);

    auto *offset = new Parameter(ParameterKind::Int, QStringLiteral("Offset"), tr("Offset"), 1);
    offset->setMinimum(-1000000);
    offset->setMaximum(1000000);
    applyDefault(useDefaults, offset);
    offset->setTooltip(
        tr("The number of rows to move values by: positive moves them down, negative moves them up."));
    addParameter(offset);

    auto *fill = new Parameter(ParameterKind::Text, QStringLiteral("Fill"), tr("Fill value"), QString());
    fill->setTextRequired(false);
    applyDefault(useDefaults, fill);
    fill->setTooltip(tr("The value for cells left with nothing to take."));
    addParameter(fill);

    auto *groups = new Parameter(ParameterKind::OptionalColumns, QStringLiteral("Group_Columns"),
        tr("Within groups of"), inputs.value(0));
    groups->setTooltip(
        tr("Optionally select columns: values only move between rows with the same values in these "
           "columns."));
    addParameter(groups);
}

Dataset TransformOffset::process(const QList<Node *> &inputs, bool &failed)
{
    Q_UNUSED(failed)
    return notAvailableYet(inputs);
}
