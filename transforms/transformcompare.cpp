#include "transforms/transformcompare.h"

QString TransformCompare::description() const
{
    return tr("Compare 2 columns row by row and add a column with the outcome.");
}

QSet<QString> TransformCompare::keywords() const
{
    QSet<QString> words = Transform::keywords();
    for (const char *word :
        {"compare", "equal", "difference", "match", "check", "versus", "closeness", "reconcile"})
        words.insert(QLatin1String(word));
    return words;
}

void TransformCompare::createParameters(const QList<Node *> &inputs, bool useDefaults)
{
    Transform::createParameters(inputs, useDefaults);

    // Both columns belong to the single input.
    auto *first =
        new Parameter(ParameterKind::Column, QStringLiteral("Column_1"), tr("First column"), inputs.value(0));
    first->setTooltip(tr("Select the first column to compare."));
    addParameter(first);

    auto *second = new Parameter(
        ParameterKind::Column, QStringLiteral("Column_2"), tr("Second column"), inputs.value(0));
    second->setTooltip(tr("Select the second column to compare."));
    addParameter(second);

    // Choices are stored in documents by their text.
    const QStringList compareTypes = {QStringLiteral("Equal (true/false)"), QStringLiteral("Order (<, =, >)"),
        QStringLiteral("Closeness (%)")};
    auto *compareType = new Parameter(ParameterKind::Selection, QStringLiteral("Compare_Type"), tr("Result"),
        compareTypes.first(), compareTypes);
    applyDefault(useDefaults, compareType);
    compareType->setTooltip(
        tr("What the new column shows: whether the values are equal, how they are ordered, "
           "or how close they are as text."));
    addParameter(compareType);

    auto *caseSensitive =
        new Parameter(ParameterKind::Bool, QStringLiteral("Case_Sensitive"), tr("case sensitive"), true);
    applyDefault(useDefaults, caseSensitive);
    caseSensitive->setTooltip(tr("Check for case sensitive comparison of text."));
    addParameter(caseSensitive);

    auto *trim = new Parameter(
        ParameterKind::Bool, QStringLiteral("Trim"), tr("ignore leading and trailing whitespace"), false);
    applyDefault(useDefaults, trim);
    trim->setTooltip(tr("Check to trim both values before comparing."));
    addParameter(trim);

    auto *newName = new Parameter(ParameterKind::Text, QStringLiteral("New_Name"), tr("New column name"),
        QStringLiteral("Compare Cols"));
    applyDefault(useDefaults, newName);
    newName->setTooltip(tr("The name for the new column."));
    addParameter(newName);
}

Dataset TransformCompare::process(const QList<Node *> &inputs, bool &failed)
{
    Q_UNUSED(failed)
    return notAvailableYet(inputs);
}
