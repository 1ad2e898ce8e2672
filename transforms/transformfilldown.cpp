#include "transforms/transformfilldown.h"

QString TransformFillDown::description() const
{
    return tr("Fill empty cells with the value above, the value below or a fixed value.");
}

void TransformFillDown::createParameters(const QList<Node *> &inputs, bool useDefaults)
{
    Transform::createParameters(inputs, useDefaults);

    auto *columns =
        new Parameter(ParameterKind::Columns, QStringLiteral("Columns"), tr("Columns"), inputs.value(0));
    columns->setTooltip(tr("Select the columns to fill."));
    addParameter(columns);

    auto *fillFrom = new Parameter(ParameterKind::Selection, QStringLiteral("Fill_From"), tr("Fill with"),
        QStringLiteral("Value above"),
        QStringList {
            QStringLiteral("Value above"), QStringLiteral("Value below"), QStringLiteral("Fixed value")});
    fillFrom->setTooltip(tr("Where the value for an empty cell comes from."));
    applyDefault(useDefaults, fillFrom);
    addParameter(fillFrom);

    auto *fixedValue =
        new Parameter(ParameterKind::Text, QStringLiteral("Fixed_Value"), tr("Fixed value"), QString());
    fixedValue->setTooltip(tr("The text to put in every empty cell."));
    applyDefault(useDefaults, fixedValue);
    addParameter(fixedValue);

    auto *blankWhitespace = new Parameter(ParameterKind::Bool, QStringLiteral("Blank_Whitespace"),
        tr("treat whitespace-only values as empty"), false);
    blankWhitespace->setTooltip(tr("Check to fill cells that hold only blanks, tabs or line breaks too."));
    applyDefault(useDefaults, blankWhitespace);
    addParameter(blankWhitespace);

    auto *limit = new Parameter(ParameterKind::Int, QStringLiteral("Limit"), tr("Maximum to fill"), 0);
    limit->setMinimum(0);
    limit->setMaximum(999999999);
    limit->setSpecialValueText(tr("No limit"));
    limit->setTooltip(tr("Fill at most this many empty cells in a row from one value; 0 for no limit."));
    applyDefault(useDefaults, limit);
    addParameter(limit);
}

QList<QPair<QString, bool>> TransformFillDown::parameterStates() const
{
    const Parameter *fillFrom = parameter(QStringLiteral("Fill_From"));
    if (!fillFrom)
        return {};
    const bool fixed = fillFrom->selectionText() == QLatin1String("Fixed value");
    return {{QStringLiteral("Fixed_Value"), fixed}, {QStringLiteral("Limit"), !fixed}};
}

Dataset TransformFillDown::process(const QList<Node *> &inputs, bool &failed)
{
    Q_UNUSED(failed)
    return notAvailableYet(inputs);
}
