#include "transforms/transformjoin.h"

#include "transforms/inputorder.h"
#include "transforms/keyguess.h"

QString TransformJoin::description() const
{
    return tr(
        "Merge 2 input datasets side by side using common (key) columns or row numbers. The bottom dataset "
        "(by vertical position) is joined to the right of the top dataset.");
}

QSet<QString> TransformJoin::keywords() const
{
    QSet<QString> words = Transform::keywords();
    words << QStringLiteral("joins") << QStringLiteral("denormalise") << QStringLiteral("denormalize")
          << QStringLiteral("two") << QStringLiteral("2") << QStringLiteral("common")
          << QStringLiteral("keys") << QStringLiteral("side") << QStringLiteral("horizontally")
          << QStringLiteral("unique") << QStringLiteral("ids") << QStringLiteral("inner")
          << QStringLiteral("outer") << QStringLiteral("left") << QStringLiteral("right")
          << QStringLiteral("enrich");
    return words;
}

QList<QPair<QString, bool>> TransformJoin::parameterStates() const
{
    const Parameter *by = parameter(QStringLiteral("By"));
    const bool byKey = !by || by->selectionText() != QLatin1String("Row number");
    return {{QStringLiteral("Column_1"), byKey}, {QStringLiteral("Column_2"), byKey},
        {QStringLiteral("Case_Sensitive"), byKey}, {QStringLiteral("Detailed_Report"), byKey}};
}

void TransformJoin::createParameters(const QList<Node *> &inputs, bool useDefaults)
{
    Transform::createParameters(inputs, useDefaults);

    // Choices are stored in documents as they stand, so they are not translated.
    auto *by = new Parameter(ParameterKind::Selection, QStringLiteral("By"), tr("By"), QStringLiteral("Key"),
        QStringList {QStringLiteral("Key"), QStringLiteral("Row number")});
    applyDefault(useDefaults, by);
    by->setTooltip(tr("Choose how to join the 2 datsets."));
    addParameter(by);

    // Each key column watches its own input: the first the top, the second the bottom.
    auto *topKey = new Parameter(
        ParameterKind::Column, QStringLiteral("Column_1"), tr("Top key column"), inputs.value(0));
    topKey->setTooltip(tr("Select a common (key) column in top input dataset."));
    addParameter(topKey);

    auto *includeTop = new Parameter(ParameterKind::Bool, QStringLiteral("Include_Non_Matching_1"),
        tr("include top non-matching rows"), false);
    applyDefault(useDefaults, includeTop);
    includeTop->setTooltip(
        tr("Check to include rows in the top input dataset with no matching value in the bottom "
           "input dataset ('left join')."));
    addParameter(includeTop);

    auto *bottomKey = new Parameter(
        ParameterKind::Column, QStringLiteral("Column_2"), tr("Bottom key column"), inputs.value(1));
    bottomKey->setTooltip(tr("Select a common (key) column in the bottom input data."));
    addParameter(bottomKey);

    auto *includeBottom = new Parameter(ParameterKind::Bool, QStringLiteral("Include_Non_Matching_2"),
        tr("include bottom non-matching rows"), false);
    applyDefault(useDefaults, includeBottom);
    includeBottom->setTooltip(
        tr("Check to include rows in the bottom input dataset with no matching value in the "
           "top input dataset ('right join')."));
    addParameter(includeBottom);

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
           "and trailing whitespace in keys. This slows down the join."));
    addParameter(report);

    if (inputs.size() >= 2)
        guessKeyColumns(topKey, bottomKey, false);
}

bool TransformJoin::reorderInputs(QList<Node *> &inputs)
{
    return swapInputsByPosition(
        inputs, parameter(QStringLiteral("Column_1")), parameter(QStringLiteral("Column_2")));
}

Dataset TransformJoin::process(const QList<Node *> &inputs, bool &failed)
{
    Q_UNUSED(failed)
    return notAvailableYet(inputs);
}
