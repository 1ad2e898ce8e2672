#include "transforms/transformconcat.h"

QString TransformConcat::description() const
{
    return tr("Join the values of several columns into one new column, with a separator.");
}

QSet<QString> TransformConcat::keywords() const
{
    QSet<QString> words = Transform::keywords();
    for (const char *word : {"concatenate", "join", "combine", "merge", "glue", "fullname", "address"})
        words.insert(QLatin1String(word));
    return words;
}

void TransformConcat::createParameters(const QList<Node *> &inputs, bool useDefaults)
{
    Transform::createParameters(inputs, useDefaults);

    auto *columns =
        new Parameter(ParameterKind::Columns, QStringLiteral("Columns"), tr("Columns"), inputs.value(0));
    columns->setTooltip(
        tr("Select the columns to concatenate. They are joined in their order in the dataset."));
    addParameter(columns);

    // An empty separator is legal: the values are then run together.
    auto *separator =
        new Parameter(ParameterKind::Text, QStringLiteral("Separator"), tr("Separator"), QStringLiteral(" "));
    separator->setTextRequired(false);
    applyDefault(useDefaults, separator);
    separator->setTooltip(tr("The text put between values."));
    addParameter(separator);

    auto *skipEmpty =
        new Parameter(ParameterKind::Bool, QStringLiteral("Skip_Empty"), tr("skip empty values"), true);
    applyDefault(useDefaults, skipEmpty);
    skipEmpty->setTooltip(tr("Check to leave out empty values, so that separators do not pile up."));
    addParameter(skipEmpty);

    auto *newName = new Parameter(ParameterKind::Text, QStringLiteral("New_Name"), tr("New column name"),
        QStringLiteral("Concat Cols"));
    applyDefault(useDefaults, newName);
    newName->setTooltip(tr("The name for the new column."));
    addParameter(newName);

    auto *removeOriginals = new Parameter(
        ParameterKind::Bool, QStringLiteral("Remove_Originals"), tr("remove concatenated columns"), false);
    applyDefault(useDefaults, removeOriginals);
    removeOriginals->setTooltip(tr("Check to remove the columns that were concatenated."));
    addParameter(removeOriginals);
}

Dataset TransformConcat::process(const QList<Node *> &inputs, bool &failed)
{
    Q_UNUSED(failed)
    return notAvailableYet(inputs);
}
