#include "transforms/transformsort.h"

QString TransformSort::description() const
{
    return tr("Sort the rows by one or more columns, ascending or descending.");
}

QSet<QString> TransformSort::keywords() const
{
    QSet<QString> words = Transform::keywords();
    words << QStringLiteral("order") << QStringLiteral("ascending") << QStringLiteral("descending")
          << QStringLiteral("arrange") << QStringLiteral("rank") << QStringLiteral("alphabetical");
    return words;
}

void TransformSort::createParameters(const QList<Node *> &inputs, bool useDefaults)
{
    Transform::createParameters(inputs, useDefaults);

    auto *columns = new Parameter(
        ParameterKind::SortColumns, QStringLiteral("Columns"), tr("Sort columns"), inputs.value(0));
    columns->setTooltip(
        tr("Select the columns to sort by, in order of priority, each ascending or descending."));
    addParameter(columns);

    // Choices are stored in documents as they stand, so they are not translated.
    auto *sortType = new Parameter(ParameterKind::Selection, QStringLiteral("Sort_Type"), tr("Sort type"),
        QStringLiteral("Automatic"), QStringList {QStringLiteral("Automatic"), QStringLiteral("Text")});
    applyDefault(useDefaults, sortType);
    sortType->setTooltip(
        tr("Automatic sorts a column as numbers, dates or times when its values allow, otherwise "
           "as text."));
    addParameter(sortType);

    auto *caseSensitive =
        new Parameter(ParameterKind::Bool, QStringLiteral("Case_Sensitive"), tr("case sensitive"), false);
    applyDefault(useDefaults, caseSensitive);
    caseSensitive->setTooltip(tr("Check for case sensitive sorting of text."));
    addParameter(caseSensitive);
}

Dataset TransformSort::process(const QList<Node *> &inputs, bool &failed)
{
    Q_UNUSED(failed)
    return notAvailableYet(inputs);
}
