#include "transforms/transformwhitespace.h"

QString TransformWhitespace::description() const
{
    return tr(
        "Remove leading, trailing and repeated whitespace, and other invisible characters, from values.");
}

void TransformWhitespace::createParameters(const QList<Node *> &inputs, bool useDefaults)
{
    Transform::createParameters(inputs, useDefaults);

    auto *columns =
        new Parameter(ParameterKind::Columns, QStringLiteral("Columns"), tr("Columns"), inputs.value(0));
    columns->setTooltip(tr("Select the columns to clean."));
    addParameter(columns);

    auto *trimLeading = new Parameter(
        ParameterKind::Bool, QStringLiteral("Trim_Leading"), tr("remove leading whitespace"), true);
    trimLeading->setTooltip(tr("Remove blanks, tabs and line breaks at the start."));
    applyDefault(useDefaults, trimLeading);
    addParameter(trimLeading);

    auto *trimTrailing = new Parameter(
        ParameterKind::Bool, QStringLiteral("Trim_Trailing"), tr("remove trailing whitespace"), true);
    trimTrailing->setTooltip(tr("Remove blanks, tabs and line breaks at the end."));
    applyDefault(useDefaults, trimTrailing);
    addParameter(trimTrailing);

    auto *collapse = new Parameter(ParameterKind::Bool, QStringLiteral("Collapse"),
        tr("replace repeated whitespace with one blank"), true);
    collapse->setTooltip(tr("Replace each run of whitespace inside a value with a single blank."));
    applyDefault(useDefaults, collapse);
    addParameter(collapse);

    auto *convert = new Parameter(ParameterKind::Bool, QStringLiteral("Convert"),
        tr("convert tabs, line breaks and non-breaking spaces to blanks"), true);
    convert->setTooltip(
        tr("Make every kind of whitespace a plain blank, so that each value fits on one line."));
    applyDefault(useDefaults, convert);
    addParameter(convert);

    auto *removeAll =
        new Parameter(ParameterKind::Bool, QStringLiteral("Remove_All"), tr("remove all whitespace"), false);
    removeAll->setTooltip(tr("Remove every whitespace character, inside values too."));
    applyDefault(useDefaults, removeAll);
    addParameter(removeAll);

    auto *removeInvisible = new Parameter(
        ParameterKind::Bool, QStringLiteral("Remove_Invisible"), tr("remove invisible characters"), false);
    removeInvisible->setTooltip(
        tr("Remove control characters and zero-width characters such as U+200B and the byte "
           "order mark."));
    applyDefault(useDefaults, removeInvisible);
    addParameter(removeInvisible);
}

QList<QPair<QString, bool>> TransformWhitespace::parameterStates() const
{
    const Parameter *removeAll = parameter(QStringLiteral("Remove_All"));
    if (!removeAll)
        return {};
    // Removing every whitespace character leaves nothing for the finer steps to do.
    const bool finer = !removeAll->boolValue();
    return {
        {QStringLiteral("Trim_Leading"), finer},
        {QStringLiteral("Trim_Trailing"), finer},
        {QStringLiteral("Collapse"), finer},
        {QStringLiteral("Convert"), finer},
    };
}

Dataset TransformWhitespace::process(const QList<Node *> &inputs, bool &failed)
{
    Q_UNUSED(failed)
    return notAvailableYet(inputs);
}
