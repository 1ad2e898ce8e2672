#include "transforms/transformdedupe.h"

QString TransformDedupe::description() const
{
    return tr("Remove duplicate rows, comparing the chosen columns exactly or fuzzily.");
}

QSet<QString> TransformDedupe::keywords() const
{
    QSet<QString> words = Transform::keywords();
    words << QStringLiteral("duplicates") << QStringLiteral("deduplicate") << QStringLiteral("distinct")
          << QStringLiteral("fuzzy") << QStringLiteral("similar") << QStringLiteral("unique")
          << QStringLiteral("remove") << QStringLiteral("doubles");
    return words;
}

QList<QPair<QString, bool>> TransformDedupe::parameterStates() const
{
    const Parameter *matchType = parameter(QStringLiteral("Match_Type"));
    return {{QStringLiteral("Fuzziness"), matchType && matchType->selectionText() == QLatin1String("Fuzzy")}};
}

void TransformDedupe::createParameters(const QList<Node *> &inputs, bool useDefaults)
{
    Transform::createParameters(inputs, useDefaults);

    auto *columns =
        new Parameter(ParameterKind::Columns, QStringLiteral("Columns"), tr("Columns"), inputs.value(0));
    columns->setTooltip(
        tr("Select the columns to compare. Rows are duplicates when all of these columns match."));
    addParameter(columns);

    // Choices are stored in documents as they stand, so they are not translated.
    auto *matchType = new Parameter(ParameterKind::Selection, QStringLiteral("Match_Type"), tr("Match"),
        QStringLiteral("Exact"), QStringList {QStringLiteral("Exact"), QStringLiteral("Fuzzy")});
    applyDefault(useDefaults, matchType);
    matchType->setTooltip(
        tr("Exact compares the values after the options below; Fuzzy also accepts values that "
           "are close."));
    addParameter(matchType);

    auto *fuzziness = new Parameter(ParameterKind::Int, QStringLiteral("Fuzziness"), tr("Closeness"), 90);
    fuzziness->setMinimum(50);
    fuzziness->setMaximum(100);
    fuzziness->setSuffix(QStringLiteral("%"));
    applyDefault(useDefaults, fuzziness);
    fuzziness->setTooltip(tr("The minimum closeness for 2 values to count as the same."));
    addParameter(fuzziness);

    auto *caseSensitive =
        new Parameter(ParameterKind::Bool, QStringLiteral("Case_Sensitive"), tr("case sensitive"), false);
    applyDefault(useDefaults, caseSensitive);
    caseSensitive->setTooltip(tr("Check for case sensitive comparison."));
    addParameter(caseSensitive);

    auto *ignoreSpaces =
        new Parameter(ParameterKind::Bool, QStringLiteral("Ignore_Spaces"), tr("ignore whitespace"), false);
    applyDefault(useDefaults, ignoreSpaces);
    ignoreSpaces->setTooltip(tr("Check to ignore all whitespace characters when comparing."));
    addParameter(ignoreSpaces);

    auto *ignorePunctuation = new Parameter(
        ParameterKind::Bool, QStringLiteral("Ignore_Punctuation"), tr("ignore punctuation"), false);
    applyDefault(useDefaults, ignorePunctuation);
    ignorePunctuation->setTooltip(tr("Check to ignore punctuation characters when comparing."));
    addParameter(ignorePunctuation);

    auto *mode = new Parameter(ParameterKind::Selection, QStringLiteral("Dedupe_Mode"), tr("Mode"),
        QStringLiteral("Remove duplicates"),
        QStringList {QStringLiteral("Remove duplicates"), QStringLiteral("Keep only duplicates"),
            QStringLiteral("Mark duplicates")});
    applyDefault(useDefaults, mode);
    mode->setTooltip(
        tr("Remove duplicates keeps the first row of each group, Keep only duplicates keeps the rows "
           "that have duplicates, Mark duplicates adds a group number."));
    addParameter(mode);
}

Dataset TransformDedupe::process(const QList<Node *> &inputs, bool &failed)
{
    Q_UNUSED(failed)
    return notAvailableYet(inputs);
}
