#include "transforms/transformsubtract.h"

#include "transforms/inputorder.h"
#include "transforms/keyguess.h"

QString TransformSubtract::description() const
{
    return tr("Remove the rows of the top dataset whose key value occurs in the bottom dataset.");
}

QSet<QString> TransformSubtract::keywords() const
{
    QSet<QString> words = Transform::keywords();
    words << QStringLiteral("anti") << QStringLiteral("except") << QStringLiteral("minus")
          << QStringLiteral("remove") << QStringLiteral("exclude") << QStringLiteral("suppress")
          << QStringLiteral("blacklist") << QStringLiteral("keys");
    return words;
}

void TransformSubtract::createParameters(const QList<Node *> &inputs, bool useDefaults)
{
    Transform::createParameters(inputs, useDefaults);

    auto *topKey = new Parameter(
        ParameterKind::Column, QStringLiteral("Column_1"), tr("Top key column"), inputs.value(0));
    topKey->setTooltip(tr("Select a common (key) column in top input dataset."));
    addParameter(topKey);

    auto *bottomKey = new Parameter(
        ParameterKind::Column, QStringLiteral("Column_2"), tr("Bottom key column"), inputs.value(1));
    bottomKey->setTooltip(tr("Select a common (key) column in the bottom input data."));
    addParameter(bottomKey);

    auto *caseSensitive =
        new Parameter(ParameterKind::Bool, QStringLiteral("Case_Sensitive"), tr("case sensitive"), true);
    applyDefault(useDefaults, caseSensitive);
    caseSensitive->setTooltip(tr("Check for case sensitive matching of keys."));
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

bool TransformSubtract::reorderInputs(QList<Node *> &inputs)
{
    return swapInputsByPosition(
        inputs, parameter(QStringLiteral("Column_1")), parameter(QStringLiteral("Column_2")));
}

Dataset TransformSubtract::process(const QList<Node *> &inputs, bool &failed)
{
    Q_UNUSED(failed)
    return notAvailableYet(inputs);
}
