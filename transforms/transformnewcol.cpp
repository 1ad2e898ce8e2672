#include "transforms/transformnewcol.h"

QString TransformNewCol::description() const
{
    return tr("Add a new column holding a fixed value, or a value built from other columns.");
}

QSet<QString> TransformNewCol::keywords() const
{
    QSet<QString> words = Transform::keywords();
    for (const char *word : {"add", "insert", "constant", "column", "fixed", "template"})
        words.insert(QLatin1String(word));
    return words;
}

void TransformNewCol::createParameters(const QList<Node *> &inputs, bool useDefaults)
{
    Transform::createParameters(inputs, useDefaults);

    auto *newName = new Parameter(
        ParameterKind::Text, QStringLiteral("New_Name"), tr("New column name"), QStringLiteral("New Col"));
    applyDefault(useDefaults, newName);
    newName->setTooltip(tr("The name for the new column."));
    addParameter(newName);

    // An empty value gives an empty column, which is a legal choice.
    auto *value = new Parameter(ParameterKind::Text, QStringLiteral("Value"), tr("Value"), QString());
    value->setTextRequired(false);
    applyDefault(useDefaults, value);
    value->setTooltip(tr("The value for every row. $(name) or $(3) inserts the row's value of that column."));
    addParameter(value);
}

Dataset TransformNewCol::process(const QList<Node *> &inputs, bool &failed)
{
    Q_UNUSED(failed)
    return notAvailableYet(inputs);
}
