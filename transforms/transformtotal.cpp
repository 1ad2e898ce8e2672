#include "transforms/transformtotal.h"

void TransformTotal::createParameters(const QList<Node *> &inputs, bool useDefaults)
{
    Transform::createParameters(inputs, useDefaults);

    auto *columns =
        new Parameter(ParameterKind::Columns, QStringLiteral("Columns"), tr("Columns"), inputs.value(0));
    columns->setTooltip(tr("Select the columns of numbers to total."));
    addParameter(columns);

    // Choices are stored in documents by their text, so they are not translated.
    auto *function = new Parameter(ParameterKind::Selection, QStringLiteral("Function"), tr("Function"),
        QStringLiteral("Sum"),
        QStringList {QStringLiteral("Sum"), QStringLiteral("Mean"), QStringLiteral("Count"),
            QStringLiteral("Minimum"), QStringLiteral("Maximum")});
    function->setTooltip(tr("How to total. Count counts the numbers."));
    applyDefault(useDefaults, function);
    addParameter(function);

    auto *totalRow =
        new Parameter(ParameterKind::Bool, QStringLiteral("Total_Row"), tr("add total row"), true);
    totalRow->setTooltip(tr("Check to add a row at the bottom."));
    applyDefault(useDefaults, totalRow);
    addParameter(totalRow);

    auto *totalColumn =
        new Parameter(ParameterKind::Bool, QStringLiteral("Total_Column"), tr("add total column"), false);
    totalColumn->setTooltip(tr("Check to add a column at the right, totalling each row."));
    applyDefault(useDefaults, totalColumn);
    addParameter(totalColumn);

    auto *label = new Parameter(ParameterKind::Text, QStringLiteral("Label"), tr("Label"), tr("Total"));
    label->setTooltip(tr("Text for the total row's label and the total column's header."));
    applyDefault(useDefaults, label);
    addParameter(label);

    auto *decimals =
        new Parameter(ParameterKind::Int, QStringLiteral("Decimal_Places"), tr("Decimal places"), -1);
    decimals->setMinimum(-1);
    decimals->setMaximum(15);
    decimals->setSpecialValueText(tr("Automatic"));
    decimals->setTooltip(tr("Round totals to this many decimal places."));
    applyDefault(useDefaults, decimals);
    addParameter(decimals);
}

Dataset TransformTotal::process(const QList<Node *> &inputs, bool &failed)
{
    Q_UNUSED(failed)
    return notAvailableYet(inputs);
}
