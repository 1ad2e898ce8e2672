#include "transforms/transforminsert.h"

QString TransformInsert::description() const
{
    return tr("Insert text at the start, at the end or at a position in values.");
}

void TransformInsert::createParameters(const QList<Node *> &inputs, bool useDefaults)
{
    Transform::createParameters(inputs, useDefaults);

    auto *columns =
        new Parameter(ParameterKind::Columns, QStringLiteral("Columns"), tr("Columns"), inputs.value(0));
    columns->setTooltip(tr("Select the columns to insert into."));
    addParameter(columns);

    auto *text = new Parameter(ParameterKind::Text, QStringLiteral("Text"), tr("Text"), QString());
    text->setTooltip(
        tr("The text to insert. $(name) or $(3) inserts the value of that column in the same row."));
    applyDefault(useDefaults, text);
    addParameter(text);

    auto *where = new Parameter(ParameterKind::Selection, QStringLiteral("Where"), tr("Where"),
        QStringLiteral("At start"),
        QStringList {QStringLiteral("At start"), QStringLiteral("At end"), QStringLiteral("At position")});
    where->setTooltip(tr("Where to insert the text."));
    applyDefault(useDefaults, where);
    addParameter(where);

    auto *position = new Parameter(ParameterKind::Int, QStringLiteral("Position"), tr("Position"), 1);
    position->setMinimum(0);
    position->setMaximum(1000000);
    position->setTooltip(tr("How many characters stand before the insertion point."));
    applyDefault(useDefaults, position);
    addParameter(position);

    auto *fromEnd = new Parameter(
        ParameterKind::Bool, QStringLiteral("From_End"), tr("count position from the end"), false);
    fromEnd->setTooltip(tr("Check to count the position from the end of the value."));
    applyDefault(useDefaults, fromEnd);
    addParameter(fromEnd);

    auto *skipEmpty = new Parameter(
        ParameterKind::Bool, QStringLiteral("Skip_Empty"), tr("leave empty values empty"), true);
    skipEmpty->setTooltip(tr("Uncheck to insert into empty values too."));
    applyDefault(useDefaults, skipEmpty);
    addParameter(skipEmpty);
}

QList<QPair<QString, bool>> TransformInsert::parameterStates() const
{
    const Parameter *where = parameter(QStringLiteral("Where"));
    if (!where)
        return {};
    const bool atPosition = where->selectionText() == QLatin1String("At position");
    return {{QStringLiteral("Position"), atPosition}, {QStringLiteral("From_End"), atPosition}};
}

Dataset TransformInsert::process(const QList<Node *> &inputs, bool &failed)
{
    Q_UNUSED(failed)
    return notAvailableYet(inputs);
}
