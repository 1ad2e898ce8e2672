#include "transforms/transformpseudonym.h"

QString TransformPseudonym::description() const
{
    return tr("Replace identifying values with consistent pseudonyms such as 'Customer 017'.");
}

QSet<QString> TransformPseudonym::keywords() const
{
    QSet<QString> words = Transform::keywords();
    for (const char *word :
        {"anonymise", "anonymize", "mask", "privacy", "gdpr", "obfuscate", "deidentify", "pseudonymise"})
        words.insert(QLatin1String(word));
    return words;
}

QList<QPair<QString, bool>> TransformPseudonym::parameterStates() const
{
    // The seed only shuffles the numbers of "Random order".
    const Parameter *numbering = parameter(QStringLiteral("Numbering"));
    const bool random = !numbering || numbering->selectionIndex() != 1;
    return {qMakePair(QStringLiteral("Seed"), random)};
}

void TransformPseudonym::createParameters(const QList<Node *> &inputs, bool useDefaults)
{
    Transform::createParameters(inputs, useDefaults);

    auto *columns =
        new Parameter(ParameterKind::Columns, QStringLiteral("Columns"), tr("Columns"), inputs.value(0));
    columns->setTooltip(tr("Select the columns holding identifying values."));
    addParameter(columns);

    // Empty stands for the column's name and a blank.
    auto *prefix = new Parameter(ParameterKind::Text, QStringLiteral("Prefix"), tr("Prefix"), QString());
    prefix->setTextRequired(false);
    applyDefault(useDefaults, prefix);
    prefix->setTooltip(
        tr("The text before each pseudonym number. Leave empty to use the column's name and a blank."));
    addParameter(prefix);

    // Choices are stored in documents by their text.
    const QStringList numberings = {QStringLiteral("Random order"), QStringLiteral("Order of appearance")};
    auto *numbering = new Parameter(ParameterKind::Selection, QStringLiteral("Numbering"), tr("Numbering"),
        numberings.first(), numberings);
    applyDefault(useDefaults, numbering);
    numbering->setTooltip(
        tr("Random order hides the order of the original rows; order of appearance numbers values "
           "as they first occur."));
    addParameter(numbering);

    auto *seed = new Parameter(ParameterKind::Int, QStringLiteral("Seed"), tr("Random seed"), 1);
    seed->setMinimum(0);
    seed->setMaximum(999999999);
    applyDefault(useDefaults, seed);
    seed->setTooltip(
        tr("Change to get different pseudonyms. The same seed gives the same pseudonyms for the same "
           "data."));
    addParameter(seed);

    auto *caseSensitive =
        new Parameter(ParameterKind::Bool, QStringLiteral("Case_Sensitive"), tr("case sensitive"), true);
    applyDefault(useDefaults, caseSensitive);
    caseSensitive->setTooltip(tr("Uncheck to give values that differ only in case the same pseudonym."));
    addParameter(caseSensitive);

    auto *keepOriginal = new Parameter(
        ParameterKind::Bool, QStringLiteral("Keep_Original"), tr("keep original columns"), false);
    applyDefault(useDefaults, keepOriginal);
    keepOriginal->setTooltip(tr("Check to keep each original column beside its pseudonyms."));
    addParameter(keepOriginal);
}

Dataset TransformPseudonym::process(const QList<Node *> &inputs, bool &failed)
{
    Q_UNUSED(failed)
    return notAvailableYet(inputs);
}
