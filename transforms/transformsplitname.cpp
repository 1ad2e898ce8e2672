#include "transforms/transformsplitname.h"

QString TransformSplitName::description() const
{
    return tr("Split people's names into title, first, middle and last name and suffix.");
}

QSet<QString> TransformSplitName::keywords() const
{
    QSet<QString> words = Transform::keywords();
    for (const char *word : {"names", "person", "first", "last", "surname", "forename", "title", "parse"})
        words.insert(QLatin1String(word));
    return words;
}

void TransformSplitName::createParameters(const QList<Node *> &inputs, bool useDefaults)
{
    Transform::createParameters(inputs, useDefaults);

    auto *column =
        new Parameter(ParameterKind::Column, QStringLiteral("Column"), tr("Name column"), inputs.value(0));
    column->setTooltip(tr("Select the column holding full names."));
    addParameter(column);

    // Choices are stored in documents by their text.
    const QStringList nameOrders = {
        QStringLiteral("Automatic"), QStringLiteral("First Last"), QStringLiteral("Last First")};
    auto *nameOrder = new Parameter(ParameterKind::Selection, QStringLiteral("Name_Order"), tr("Name order"),
        nameOrders.first(), nameOrders);
    applyDefault(useDefaults, nameOrder);
    nameOrder->setTooltip(tr("How names are written. Automatic reads a name with a comma as 'Last, First'."));
    addParameter(nameOrder);

    auto *removeOriginal = new Parameter(
        ParameterKind::Bool, QStringLiteral("Remove_Original"), tr("remove original column"), false);
    applyDefault(useDefaults, removeOriginal);
    removeOriginal->setTooltip(tr("Check to remove the column that was split."));
    addParameter(removeOriginal);
}

Dataset TransformSplitName::process(const QList<Node *> &inputs, bool &failed)
{
    Q_UNUSED(failed)
    return notAvailableYet(inputs);
}
