#include "transforms/transformreplacemulti.h"

QString TransformReplaceMulti::description() const
{
    return tr("Find and replace text in the selected columns, with a list of terms applied in order.");
}

void TransformReplaceMulti::createParameters(const QList<Node *> &inputs, bool useDefaults)
{
    Transform::createParameters(inputs, useDefaults);

    auto *columns =
        new Parameter(ParameterKind::Columns, QStringLiteral("Columns"), tr("Columns"), inputs.value(0));
    columns->setTooltip(tr("Select the columns in which to replace."));
    addParameter(columns);

    auto *terms = new Parameter(ParameterKind::ReplaceTerms, QStringLiteral("Terms"), tr("Replace"),
        QVariant::fromValue(ReplaceTermList()));
    terms->setTooltip(
        tr("Each term replaces its 'From' text with its 'To' text. Terms apply in order, each to the "
           "result of the one before."));
    applyDefault(useDefaults, terms);
    addParameter(terms);

    auto *caseSensitive =
        new Parameter(ParameterKind::Bool, QStringLiteral("Case_Sensitive"), tr("case sensitive"), false);
    caseSensitive->setTooltip(tr("Check for case sensitive matching."));
    applyDefault(useDefaults, caseSensitive);
    addParameter(caseSensitive);
}

Dataset TransformReplaceMulti::process(const QList<Node *> &inputs, bool &failed)
{
    Q_UNUSED(failed)
    return notAvailableYet(inputs);
}
