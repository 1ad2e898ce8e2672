#include "transforms/transformsummary.h"

void TransformSummary::createParameters(const QList<Node *> &inputs, bool useDefaults)
{
    Transform::createParameters(inputs, useDefaults);

    // A summary made on a selected item covers every column of it at once.
    Node *input = inputs.value(0);
    auto *columns = new Parameter(ParameterKind::Columns, QStringLiteral("Columns"), tr("Columns"), input);
    columns->selectAllColumns();
    columns->setTooltip(tr("Select the columns to summarise."));
    addParameter(columns);
}

Dataset TransformSummary::process(const QList<Node *> &inputs, bool &failed)
{
    Q_UNUSED(failed)
    return notAvailableYet(inputs);
}
