#include "transforms/transformtranspose.h"

void TransformTranspose::createParameters(const QList<Node *> &inputs, bool useDefaults)
{
    Transform::createParameters(inputs, useDefaults);

    auto *headersToColumn = new Parameter(ParameterKind::Bool, QStringLiteral("Headers_To_Column"),
        tr("headers become the first column"), true);
    headersToColumn->setTooltip(
        tr("Check to start each new row with the header of the column it came from."));
    applyDefault(useDefaults, headersToColumn);
    addParameter(headersToColumn);

    auto *columnToHeaders = new Parameter(ParameterKind::Bool, QStringLiteral("Column_To_Headers"),
        tr("first column becomes the headers"), true);
    columnToHeaders->setTooltip(tr("Check to use the values of the first column as the new headers."));
    applyDefault(useDefaults, columnToHeaders);
    addParameter(columnToHeaders);
}

Dataset TransformTranspose::process(const QList<Node *> &inputs, bool &failed)
{
    Q_UNUSED(failed)
    return notAvailableYet(inputs);
}
