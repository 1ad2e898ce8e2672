#include "transforms/transformclone.h"

void TransformClone::createParameters(const QList<Node *> &inputs, bool useDefaults)
{
    Transform::createParameters(inputs, useDefaults);

    // Choices are stored in documents by their text, so they are not translated.
    auto *copiesFrom = new Parameter(ParameterKind::Selection, QStringLiteral("Copies_From"),
        tr("Copies from"), QStringLiteral("Fixed number"),
        QStringList {QStringLiteral("Fixed number"), QStringLiteral("Column")});
    copiesFrom->setTooltip(
        tr("Repeat every row the same number of times, or as many times as a column holds."));
    applyDefault(useDefaults, copiesFrom);
    addParameter(copiesFrom);

    auto *copies = new Parameter(ParameterKind::Int, QStringLiteral("Copies"), tr("Copies"), 2);
    copies->setMinimum(1);
    copies->setMaximum(100000);
    copies->setTooltip(tr("How many times each row appears in the output."));
    applyDefault(useDefaults, copies);
    addParameter(copies);

    auto *copiesColumn = new Parameter(
        ParameterKind::Column, QStringLiteral("Copies_Column"), tr("Copies column"), inputs.value(0));
    copiesColumn->setTooltip(
        tr("A column of whole numbers saying how many times each row appears; 0 leaves the row out."));
    addParameter(copiesColumn);

    auto *order = new Parameter(ParameterKind::Selection, QStringLiteral("Order"), tr("Order"),
        QStringLiteral("Copies together"),
        QStringList {QStringLiteral("Copies together"), QStringLiteral("Whole table repeated")});
    order->setTooltip(tr("Copies together gives rows 1, 1, 2, 2; Whole table repeated gives 1, 2, 1, 2."));
    applyDefault(useDefaults, order);
    addParameter(order);

    auto *copyNumber = new Parameter(
        ParameterKind::Bool, QStringLiteral("Copy_Number"), tr("add copy number column"), false);
    copyNumber->setTooltip(tr("Check to add a column \"Copy\" numbering each row's copies from 1."));
    applyDefault(useDefaults, copyNumber);
    addParameter(copyNumber);
}

QList<QPair<QString, bool>> TransformClone::parameterStates() const
{
    const Parameter *copiesFrom = parameter(QStringLiteral("Copies_From"));
    if (!copiesFrom)
        return {};
    const QString from = copiesFrom->selectionText();
    return {
        {QStringLiteral("Copies"), from == QLatin1String("Fixed number")},
        {QStringLiteral("Copies_Column"), from == QLatin1String("Column")},
    };
}

Dataset TransformClone::process(const QList<Node *> &inputs, bool &failed)
{
    Q_UNUSED(failed)
    return notAvailableYet(inputs);
}
