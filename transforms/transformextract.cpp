#include "transforms/transformextract.h"

QString TransformExtract::description() const
{
    return tr("Keep only the wanted piece of each value: a regex match, text before, after or between "
              "delimiters, a "
              "number, digits, letters, an email or a web address.");
}

void TransformExtract::createParameters(const QList<Node *> &inputs, bool useDefaults)
{
    Transform::createParameters(inputs, useDefaults);

    auto *columns =
        new Parameter(ParameterKind::Columns, QStringLiteral("Columns"), tr("Columns"), inputs.value(0));
    columns->setTooltip(tr("Select the columns to extract from."));
    addParameter(columns);

    auto *extract = new Parameter(ParameterKind::Selection, QStringLiteral("Extract"), tr("Extract"),
        QStringLiteral("Number"),
        QStringList {QStringLiteral("Number"), QStringLiteral("Regex match"), QStringLiteral("Text before"),
            QStringLiteral("Text after"), QStringLiteral("Text between"), QStringLiteral("Digits"),
            QStringLiteral("Letters"), QStringLiteral("Email address"), QStringLiteral("Web address")});
    extract->setTooltip(tr("What to keep from each value."));
    applyDefault(useDefaults, extract);
    addParameter(extract);

    auto *regex = new Parameter(ParameterKind::Text, QStringLiteral("Regex"), tr("Regex"), QString());
    regex->setTooltip(
        tr("A regular expression. With a capture group the first group is kept, otherwise the whole "
           "match."));
    applyDefault(useDefaults, regex);
    addParameter(regex);

    auto *startText =
        new Parameter(ParameterKind::Text, QStringLiteral("Start_Text"), tr("Start text"), QString());
    startText->setTooltip(
        tr("The delimiter before the wanted text (Text after, Text between), or after it (Text "
           "before)."));
    applyDefault(useDefaults, startText);
    addParameter(startText);

    auto *endText = new Parameter(ParameterKind::Text, QStringLiteral("End_Text"), tr("End text"), QString());
    endText->setTooltip(tr("The delimiter that ends the wanted text."));
    applyDefault(useDefaults, endText);
    addParameter(endText);

    auto *occurrence = new Parameter(ParameterKind::Selection, QStringLiteral("Occurrence"), tr("Occurrence"),
        QStringLiteral("First"),
        QStringList {QStringLiteral("First"), QStringLiteral("Last"), QStringLiteral("All")});
    occurrence->setTooltip(tr("Which match to keep. All keeps every match, joined by the separator."));
    applyDefault(useDefaults, occurrence);
    addParameter(occurrence);

    auto *separator = new Parameter(
        ParameterKind::Text, QStringLiteral("Separator"), tr("Separator"), QStringLiteral(", "));
    separator->setTextRequired(false);
    separator->setTooltip(tr("Text put between matches when Occurrence is All."));
    applyDefault(useDefaults, separator);
    addParameter(separator);

    auto *caseSensitive =
        new Parameter(ParameterKind::Bool, QStringLiteral("Case_Sensitive"), tr("case sensitive"), false);
    caseSensitive->setTooltip(tr("Check for case sensitive matching of the regex or the delimiters."));
    applyDefault(useDefaults, caseSensitive);
    addParameter(caseSensitive);

    auto *ifNotFound = new Parameter(ParameterKind::Selection, QStringLiteral("If_Not_Found"),
        tr("If not found"), QStringLiteral("Make empty"),
        QStringList {QStringLiteral("Make empty"), QStringLiteral("Leave unchanged")});
    ifNotFound->setTooltip(tr("What to do with a value in which nothing is found."));
    applyDefault(useDefaults, ifNotFound);
    addParameter(ifNotFound);
}

QList<QPair<QString, bool>> TransformExtract::parameterStates() const
{
    const Parameter *extract = parameter(QStringLiteral("Extract"));
    const Parameter *occurrence = parameter(QStringLiteral("Occurrence"));
    if (!extract || !occurrence)
        return {};
    const QString what = extract->selectionText();
    const bool regex = what == QLatin1String("Regex match");
    const bool between = what == QLatin1String("Text between");
    const bool delimited =
        between || what == QLatin1String("Text before") || what == QLatin1String("Text after");
    return {
        {QStringLiteral("Regex"), regex},
        {QStringLiteral("Start_Text"), delimited},
        {QStringLiteral("End_Text"), between},
        {QStringLiteral("Separator"), occurrence->selectionText() == QLatin1String("All")},
        {QStringLiteral("Case_Sensitive"), regex || delimited},
    };
}

Dataset TransformExtract::process(const QList<Node *> &inputs, bool &failed)
{
    Q_UNUSED(failed)
    return notAvailableYet(inputs);
}
