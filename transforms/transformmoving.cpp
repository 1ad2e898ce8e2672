#include "transforms/transformmoving.h"

QString TransformMoving::description() const
{
    return tr("Add a column with a moving average, sum, minimum, maximum or median over a window of rows.");
}

QSet<QString> TransformMoving::keywords() const
{
    QSet<QString> words = Transform::keywords();
    for (const char *word :
        {"rolling", "average", "mean", "window", "smooth", "trailing", "running", "median"})
        words.insert(QLatin1String(word));
    return words;
}

void TransformMoving::createParameters(const QList<Node *> &inputs, bool useDefaults)
{
    Transform::createParameters(inputs, useDefaults);

    auto *column =
        new Parameter(ParameterKind::Column, QStringLiteral("Column"), tr("Column"), inputs.value(0));
    column->setTooltip(tr("Select the column of numbers."));
    addParameter(column);

    // Choices are stored in documents by their text.
    const QStringList statistics = {QStringLiteral("Average"), QStringLiteral("Sum"),
        QStringLiteral("Minimum"), QStringLiteral("Maximum"), QStringLiteral("Median")};
    auto *statistic = new Parameter(ParameterKind::Selection, QStringLiteral("Statistic"), tr("Statistic"),
        statistics.first(), statistics);
    applyDefault(useDefaults, statistic);
    statistic->setTooltip(tr("The statistic computed over each window."));
    addParameter(statistic);

    auto *window = new Parameter(ParameterKind::Int, QStringLiteral("Window"), tr("Window"), 3);
    window->setMinimum(2);
    window->setMaximum(1000);
    window->setSuffix(tr(" rows"));
    applyDefault(useDefaults, window);
    window->setTooltip(tr("The number of rows in each window."));
    addParameter(window);

    const QStringList alignments = {QStringLiteral("Trailing"), QStringLiteral("Centred")};
    auto *alignment = new Parameter(ParameterKind::Selection, QStringLiteral("Alignment"),
        tr("Window position"), alignments.first(), alignments);
    applyDefault(useDefaults, alignment);
    alignment->setTooltip(
        tr("Trailing uses the row and the rows before it; Centred uses rows on both sides."));
    addParameter(alignment);

    auto *partial = new Parameter(
        ParameterKind::Bool, QStringLiteral("Partial_Windows"), tr("include incomplete windows"), false);
    applyDefault(useDefaults, partial);
    partial->setTooltip(
        tr("Check to compute near the first and last rows over the rows that exist; otherwise "
           "those cells are empty."));
    addParameter(partial);
}

Dataset TransformMoving::process(const QList<Node *> &inputs, bool &failed)
{
    Q_UNUSED(failed)
    return notAvailableYet(inputs);
}
