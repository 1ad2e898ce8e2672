#include "transforms/transformgather.h"

QString TransformGather::description() const
{
    return tr("Turn selected columns into rows of key and value pairs (wide to long).");
}

QSet<QString> TransformGather::keywords() const
{
    QSet<QString> words = Transform::keywords();
    for (const char *word : {"unpivot", "melt", "long", "wide", "normalise", "normalize", "stack", "pairs"})
        words.insert(QLatin1String(word));
    return words;
}

void TransformGather::createParameters(const QList<Node *> &inputs, bool useDefaults)
{
    Transform::createParameters(inputs, useDefaults);

    auto *columns = new Parameter(
        ParameterKind::Columns, QStringLiteral("Columns"), tr("Columns to gather"), inputs.value(0));
    columns->setTooltip(tr("Select the columns whose headers and values become rows."));
    addParameter(columns);

    auto *keyName = new Parameter(
        ParameterKind::Text, QStringLiteral("Key_Name"), tr("Key column name"), QStringLiteral("Key"));
    applyDefault(useDefaults, keyName);
    keyName->setTooltip(tr("The name for the new column holding the gathered column headers."));
    addParameter(keyName);

    auto *valueName = new Parameter(
        ParameterKind::Text, QStringLiteral("Value_Name"), tr("Value column name"), QStringLiteral("Value"));
    applyDefault(useDefaults, valueName);
    valueName->setTooltip(tr("The name for the new column holding the gathered values."));
    addParameter(valueName);

    auto *skipEmpty =
        new Parameter(ParameterKind::Bool, QStringLiteral("Skip_Empty"), tr("skip empty values"), false);
    applyDefault(useDefaults, skipEmpty);
    skipEmpty->setTooltip(tr("Check to leave out pairs whose value is empty."));
    addParameter(skipEmpty);
}

Dataset TransformGather::process(const QList<Node *> &inputs, bool &failed)
{
    Q_UNUSED(failed)
    return notAvailableYet(inputs);
}
