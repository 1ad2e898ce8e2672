#include "transforms/transformcase.h"

QString TransformCase::description() const
{
    return tr("Change the case of text in the selected columns.");
}

void TransformCase::createParameters(const QList<Node *> &inputs, bool useDefaults)
{
    Transform::createParameters(inputs, useDefaults);

    auto *columns =
        new Parameter(ParameterKind::Columns, QStringLiteral("Columns"), tr("Columns"), inputs.value(0));
    columns->setTooltip(tr("Select the columns to change."));
    addParameter(columns);

    auto *caseChoice = new Parameter(ParameterKind::Selection, QStringLiteral("Case"), tr("Case"),
        QStringLiteral("lower case"),
        QStringList {QStringLiteral("lower case"), QStringLiteral("UPPER CASE"), QStringLiteral("Title Case"),
            QStringLiteral("Sentence case")});
    caseChoice->setTooltip(
        tr("The case to change to.\nTitle Case capitalises each word, Sentence case the first "
           "word of each sentence."));
    applyDefault(useDefaults, caseChoice);
    addParameter(caseChoice);
}

Dataset TransformCase::process(const QList<Node *> &inputs, bool &failed)
{
    Q_UNUSED(failed)
    return notAvailableYet(inputs);
}
