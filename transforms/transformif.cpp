#include "transforms/transformif.h"

QString TransformIf::description() const
{
    return tr("Add a column whose value depends on conditions, tested in order: if, else if, else.");
}

QSet<QString> TransformIf::keywords() const
{
    QSet<QString> words = Transform::keywords();
    for (const char *word :
        {"else", "conditional", "case", "when", "classify", "categorise", "categorize", "rules", "flag"})
        words.insert(QLatin1String(word));
    return words;
}

void TransformIf::createParameters(const QList<Node *> &inputs, bool useDefaults)
{
    Transform::createParameters(inputs, useDefaults);

    // Starts with no block and an empty else text.
    auto *conditions =
        new Parameter(ParameterKind::If, QStringLiteral("Conditions"), tr("Conditions"), inputs.value(0));
    conditions->setTooltip(
        tr("Add blocks of conditions. The new column takes the result of the first block whose "
           "conditions all hold, or else the else value."));
    addParameter(conditions);

    auto *caseSensitive =
        new Parameter(ParameterKind::Bool, QStringLiteral("Case_Sensitive"), tr("case sensitive"), false);
    applyDefault(useDefaults, caseSensitive);
    caseSensitive->setTooltip(tr("Check for case sensitive text matching."));
    addParameter(caseSensitive);

    auto *newName = new Parameter(
        ParameterKind::Text, QStringLiteral("New_Name"), tr("New column name"), QStringLiteral("If"));
    applyDefault(useDefaults, newName);
    newName->setTooltip(tr("The name for the new column."));
    addParameter(newName);
}

Dataset TransformIf::process(const QList<Node *> &inputs, bool &failed)
{
    Q_UNUSED(failed)
    return notAvailableYet(inputs);
}
