#include "transforms/transformspread.h"

QString TransformSpread::description() const
{
    return tr("Turn the values of a key column into new columns, filled from a value column (long to wide).");
}

QSet<QString> TransformSpread::keywords() const
{
    QSet<QString> words = Transform::keywords();
    for (const char *word : {"pivot", "cast", "wide", "long", "crosstab", "columns", "unstack"})
        words.insert(QLatin1String(word));
    return words;
}

void TransformSpread::setUpstream(const QList<Node *> &nodes)
{
    Node *node = nodes.value(0);
    for (const QString &name :
        {QStringLiteral("Key_Column"), QStringLiteral("Value_Column"), QStringLiteral("Row_Columns")}) {
        Parameter *option = parameter(name);
        if (!option)
            continue;
        if (!node) {
            option->clearUpstream();
            continue;
        }
        const bool newNode = option->upstream() != node;
        option->setUpstream(node, false);
        // Row columns chosen on another dataset would silently narrow the rows, so they go,
        // and all other columns identify the rows again. A document's pending list stays.
        if (newNode && option->kind() == ParameterKind::OptionalColumns && !option->isPending())
            option->setValue(QVariant::fromValue(QList<ColumnId>()));
    }
}

void TransformSpread::createParameters(const QList<Node *> &inputs, bool useDefaults)
{
    Transform::createParameters(inputs, useDefaults);

    auto *keyColumn =
        new Parameter(ParameterKind::Column, QStringLiteral("Key_Column"), tr("Key column"), inputs.value(0));
    keyColumn->setTooltip(tr("Select the column whose values become the names of new columns."));
    addParameter(keyColumn);

    auto *valueColumn = new Parameter(
        ParameterKind::Column, QStringLiteral("Value_Column"), tr("Value column"), inputs.value(0));
    valueColumn->setTooltip(tr("Select the column whose values fill the new columns."));
    addParameter(valueColumn);

    auto *rowColumns = new Parameter(
        ParameterKind::OptionalColumns, QStringLiteral("Row_Columns"), tr("Row columns"), inputs.value(0));
    rowColumns->setTooltip(
        tr("Optionally select the columns that identify a row. With none selected, all the other "
           "columns do."));
    addParameter(rowColumns);

    // Choices are stored in documents by their text.
    const QStringList duplicateChoices = {QStringLiteral("Use first value"), QStringLiteral("Use last value"),
        QStringLiteral("Concatenate values")};
    auto *duplicates = new Parameter(ParameterKind::Selection, QStringLiteral("Duplicates"), tr("Duplicates"),
        duplicateChoices.first(), duplicateChoices);
    applyDefault(useDefaults, duplicates);
    duplicates->setTooltip(tr("What to do when a row has more than one value for the same key."));
    addParameter(duplicates);

    auto *missingValue = new Parameter(
        ParameterKind::Text, QStringLiteral("Missing_Value"), tr("Value if missing"), QString());
    missingValue->setTextRequired(false);
    applyDefault(useDefaults, missingValue);
    missingValue->setTooltip(tr("The value for a row that has no value for a key."));
    addParameter(missingValue);

    auto *sortNewColumns =
        new Parameter(ParameterKind::Bool, QStringLiteral("Sort_New_Columns"), tr("sort new columns"), false);
    applyDefault(useDefaults, sortNewColumns);
    sortNewColumns->setTooltip(
        tr("Check to order the new columns by key value; otherwise they come in order of "
           "first appearance."));
    addParameter(sortNewColumns);
}

Dataset TransformSpread::process(const QList<Node *> &inputs, bool &failed)
{
    Q_UNUSED(failed)
    return notAvailableYet(inputs);
}
