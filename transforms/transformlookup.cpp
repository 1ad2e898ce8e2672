#include "transforms/transformlookup.h"

#include "transforms/inputorder.h"
#include "transforms/keyguess.h"

QString TransformLookup::description() const
{
    return tr(
        "Add columns to the top dataset with values from the first row of the bottom dataset that has the "
        "same lookup value.");
}

QSet<QString> TransformLookup::keywords() const
{
    QSet<QString> words = Transform::keywords();
    words << QStringLiteral("vlookup") << QStringLiteral("xlookup") << QStringLiteral("enrich")
          << QStringLiteral("reference") << QStringLiteral("match") << QStringLiteral("find")
          << QStringLiteral("keys");
    return words;
}

void TransformLookup::createParameters(const QList<Node *> &inputs, bool useDefaults)
{
    Transform::createParameters(inputs, useDefaults);

    auto *topKey = new Parameter(
        ParameterKind::Column, QStringLiteral("Top_Lookup_Column"), tr("Top lookup column"), inputs.value(0));
    topKey->setTooltip(tr("Select the column of the top dataset whose values are looked up."));
    addParameter(topKey);

    auto *bottomKey = new Parameter(ParameterKind::Column, QStringLiteral("Bottom_Lookup_Column"),
        tr("Bottom lookup column"), inputs.value(1));
    bottomKey->setTooltip(tr("Select the column of the bottom dataset in which the values are looked up."));
    addParameter(bottomKey);

    auto *values = new Parameter(ParameterKind::OptionalColumns, QStringLiteral("Bottom_Value_Columns"),
        tr("Bottom value columns"), inputs.value(1));
    values->setTooltip(
        tr("Select the bottom columns to add. With none selected, every bottom column except the "
           "lookup column is added."));
    addParameter(values);

    auto *notFound =
        new Parameter(ParameterKind::Text, QStringLiteral("Not_Found"), tr("Value if not found"), QString());
    notFound->setTextRequired(false);
    applyDefault(useDefaults, notFound);
    notFound->setTooltip(tr("The value for the added columns when a top value is not found in the bottom "
                            "dataset."));
    addParameter(notFound);

    auto *caseSensitive =
        new Parameter(ParameterKind::Bool, QStringLiteral("Case_Sensitive"), tr("case sensitive"), true);
    applyDefault(useDefaults, caseSensitive);
    caseSensitive->setTooltip(tr("Check for case sensitive matching of lookup values."));
    addParameter(caseSensitive);

    auto *report =
        new Parameter(ParameterKind::Bool, QStringLiteral("Detailed_Report"), tr("detailed report"), false);
    applyDefault(useDefaults, report);
    report->setTooltip(
        tr("Report on duplicate keys in each dataset, overlap of keys in both datasets and leading "
           "and trailing whitespace in keys. This slows down the transform."));
    addParameter(report);

    if (inputs.size() >= 2)
        guessKeyColumns(topKey, bottomKey, false);
}

void TransformLookup::setUpstream(const QList<Node *> &nodes)
{
    setTopBottomUpstream(nodes, parameter(QStringLiteral("Top_Lookup_Column")),
        {parameter(QStringLiteral("Bottom_Lookup_Column")),
            parameter(QStringLiteral("Bottom_Value_Columns"))});
}

bool TransformLookup::reorderInputs(QList<Node *> &inputs)
{
    return swapInputsByPosition(inputs, parameter(QStringLiteral("Top_Lookup_Column")),
        parameter(QStringLiteral("Bottom_Lookup_Column")),
        {parameter(QStringLiteral("Bottom_Value_Columns"))});
}

Dataset TransformLookup::process(const QList<Node *> &inputs, bool &failed)
{
    Q_UNUSED(failed)
    return notAvailableYet(inputs);
}
