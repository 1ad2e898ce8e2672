#include "transforms/transformsplit.h"

QString TransformSplit::description() const
{
    return tr("Split a column into several new columns at a text or regular expression delimiter.");
}

QSet<QString> TransformSplit::keywords() const
{
    QSet<QString> words = Transform::keywords();
    for (const char *word :
        {"split", "divide", "separate", "delimiter", "regex", "parts", "explode", "text to columns"})
        words.insert(QLatin1String(word));
    return words;
}

void TransformSplit::createParameters(const QList<Node *> &inputs, bool useDefaults)
{
    Transform::createParameters(inputs, useDefaults);

    auto *column = new Parameter(
        ParameterKind::Column, QStringLiteral("Column"), tr("Column to split"), inputs.value(0));
    column->setTooltip(tr("Select the column to split."));
    addParameter(column);

    // Choices are stored in documents by their text.
    const QStringList delimiterTypes = {QStringLiteral("Text delimiter"), QStringLiteral("Regex delimiter")};
    auto *delimiterType = new Parameter(ParameterKind::Selection, QStringLiteral("Delimiter_Type"),
        tr("Delimiter type"), delimiterTypes.first(), delimiterTypes);
    applyDefault(useDefaults, delimiterType);
    delimiterType->setTooltip(tr("Split at a text, or at matches of a regular expression."));
    addParameter(delimiterType);

    auto *delimiter =
        new Parameter(ParameterKind::Text, QStringLiteral("Delimiter"), tr("Delimiter"), QStringLiteral(","));
    applyDefault(useDefaults, delimiter);
    delimiter->setTooltip(tr("The text or regular expression at which to split."));
    addParameter(delimiter);

    auto *maxColumns =
        new Parameter(ParameterKind::Int, QStringLiteral("Max_Columns"), tr("Maximum columns"), 0);
    maxColumns->setMinimum(0);
    maxColumns->setMaximum(1000);
    maxColumns->setSpecialValueText(tr("No limit"));
    applyDefault(useDefaults, maxColumns);
    maxColumns->setTooltip(tr("The most columns to make. The last one holds the rest of the value."));
    addParameter(maxColumns);

    auto *trim = new Parameter(ParameterKind::Bool, QStringLiteral("Trim"), tr("trim values"), true);
    applyDefault(useDefaults, trim);
    trim->setTooltip(tr("Check to trim leading and trailing whitespace from each part."));
    addParameter(trim);

    auto *removeOriginal = new Parameter(
        ParameterKind::Bool, QStringLiteral("Remove_Original"), tr("remove original column"), false);
    applyDefault(useDefaults, removeOriginal);
    removeOriginal->setTooltip(tr("Check to remove the column that was split."));
    addParameter(removeOriginal);
}

Dataset TransformSplit::process(const QList<Node *> &inputs, bool &failed)
{
    Q_UNUSED(failed)
    return notAvailableYet(inputs);
}
