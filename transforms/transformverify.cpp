#include "transforms/transformverify.h"

#include "transforms/verifyrules.h"

#include <algorithm>

void TransformVerify::createParameters(const QList<Node *> &inputs, bool useDefaults)
{
    Transform::createParameters(inputs, useDefaults);

    // With an input the option starts from that dataset's rules, all off; without one it
    // still offers the dataset rules, and gains the columns once connected.
    auto *rules =
        new Parameter(ParameterKind::VerifyRules, QStringLiteral("Rules"), tr("Rules"), inputs.value(0));
    if (!inputs.value(0))
        rules->setValue(QVariant::fromValue(verifyRulesOff(Dataset())));
    rules->setTooltip(tr("Rules for the whole dataset and for each column, each with a severity."));
    addParameter(rules);

    // Choices are stored in documents by their text, so they are not translated.
    auto *output = new Parameter(ParameterKind::Selection, QStringLiteral("Output"), tr("Output"),
        QStringLiteral("Marked data"),
        QStringList {QStringLiteral("Marked data"), QStringLiteral("Marked data with result columns"),
            QStringLiteral("Failure report")});
    output->setTooltip(
        tr("The data with failing values marked; the same with two columns that say which rules each "
           "row failed; or a table with one row per failure."));
    applyDefault(useDefaults, output);
    addParameter(output);
}

bool TransformVerify::hasMinimumOptions() const
{
    const Parameter *rules = parameter(QStringLiteral("Rules"));
    if (!rules)
        return false;
    const VerifyRulesValue value = rules->verifyRules();
    const auto isOn = [](const VerifyRule &rule) { return rule.severity != VerifyFailNone; };
    if (std::any_of(value.datasetRules.cbegin(), value.datasetRules.cend(), isOn))
        return true;
    for (const VerifyColumnRules &column : value.columns) {
        if (std::any_of(column.rules.cbegin(), column.rules.cend(), isOn))
            return true;
    }
    return false;
}

Dataset TransformVerify::process(const QList<Node *> &inputs, bool &failed)
{
    Q_UNUSED(failed)
    return notAvailableYet(inputs);
}
