#include "transforms/transformrownum.h"

QString TransformRowNum::description() const
{
    return tr("Add a column numbering the rows, optionally restarting for each group.");
}

QSet<QString> TransformRowNum::keywords() const
{
    QSet<QString> words = Transform::keywords();
    words << QStringLiteral("number") << QStringLiteral("index") << QStringLiteral("counter")
          << QStringLiteral("id") << QStringLiteral("rank") << QStringLiteral("sequence")
          << QStringLiteral("rownum");
    return words;
}

void TransformRowNum::createParameters(const QList<Node *> &inputs, bool useDefaults)
{
    Transform::createParameters(inputs, useDefaults);

    auto *newName =
        new Parameter(ParameterKind::Text, QStringLiteral("New_Name"), tr("New column name"), tr("Row Num"));
    applyDefault(useDefaults, newName);
    newName->setTooltip(tr("The name for the new column."));
    addParameter(newName);

    auto *start = new Parameter(ParameterKind::Int, QStringLiteral("Start"), tr("Start at"), 1);
    start->setMinimum(-Parameter::MaximumInt);
    start->setMaximum(Parameter::MaximumInt);
    applyDefault(useDefaults, start);
    start->setTooltip(tr("The number of the first row (of each group)."));
    addParameter(start);

    auto *increment = new Parameter(ParameterKind::Int, QStringLiteral("Increment"), tr("Increment"), 1);
    increment->setMinimum(-999999);
    increment->setMaximum(999999);
    applyDefault(useDefaults, increment);
    increment->setTooltip(tr("The amount added for each following row."));
    addParameter(increment);

    // Choices are stored in documents as they stand, so they are not translated.
    auto *position = new Parameter(ParameterKind::Selection, QStringLiteral("Position"), tr("Position"),
        QStringLiteral("First column"),
        QStringList {QStringLiteral("First column"), QStringLiteral("Last column")});
    applyDefault(useDefaults, position);
    position->setTooltip(tr("Put the new column before the first column or after the last."));
    addParameter(position);

    auto *groups = new Parameter(ParameterKind::OptionalColumns, QStringLiteral("Group_Columns"),
        tr("Restart numbering for each"), inputs.value(0));
    groups->setTooltip(
        tr("Optionally select columns: numbering restarts for each different combination of their "
           "values."));
    addParameter(groups);
}

Dataset TransformRowNum::process(const QList<Node *> &inputs, bool &failed)
{
    Q_UNUSED(failed)
    return notAvailableYet(inputs);
}
