#include "transforms/transformrenamecols.h"

QString TransformRenameCols::description() const
{
    return tr("Rename columns.");
}

QSet<QString> TransformRenameCols::keywords() const
{
    QSet<QString> words = Transform::keywords();
    for (const char *word : {"rename", "headers", "names", "title", "label", "columns"})
        words.insert(QLatin1String(word));
    return words;
}

void TransformRenameCols::createParameters(const QList<Node *> &inputs, bool useDefaults)
{
    Transform::createParameters(inputs, useDefaults);

    // Starts with no renames: a column without an entry keeps its name.
    auto *newNames = new Parameter(
        ParameterKind::RenameColumns, QStringLiteral("New_Names"), tr("New names"), inputs.value(0));
    newNames->setTooltip(
        tr("Type a new name beside each column to rename. Leave it blank to keep the name."));
    addParameter(newNames);
}

Dataset TransformRenameCols::process(const QList<Node *> &inputs, bool &failed)
{
    Q_UNUSED(failed)
    return notAvailableYet(inputs);
}
