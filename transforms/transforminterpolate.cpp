#include "transforms/transforminterpolate.h"

#include "transforms/inputorder.h"

QString TransformInterpolate::description() const
{
    return tr(
        "Estimate values at the top dataset's X values from the known points (X and values) in the bottom "
        "dataset.");
}

QSet<QString> TransformInterpolate::keywords() const
{
    QSet<QString> words = Transform::keywords();
    words << QStringLiteral("linear") << QStringLiteral("estimate") << QStringLiteral("between")
          << QStringLiteral("curve") << QStringLiteral("asof") << QStringLiteral("points")
          << QStringLiteral("rates");
    return words;
}

QList<QPair<QString, bool>> TransformInterpolate::parameterStates() const
{
    // The nearest point always exists, so nothing lies outside the range.
    const Parameter *method = parameter(QStringLiteral("Method"));
    const bool nearest = method && method->selectionText() == QLatin1String("Nearest point");
    return {{QStringLiteral("Outside_Range"), !nearest}};
}

void TransformInterpolate::createParameters(const QList<Node *> &inputs, bool useDefaults)
{
    Transform::createParameters(inputs, useDefaults);

    auto *topX = new Parameter(
        ParameterKind::Column, QStringLiteral("Top_X_Column"), tr("Top X column"), inputs.value(0));
    topX->setTooltip(
        tr("Select the column of the top dataset holding the X values (numbers or dates) at which to "
           "estimate."));
    addParameter(topX);

    auto *bottomX = new Parameter(
        ParameterKind::Column, QStringLiteral("Bottom_X_Column"), tr("Bottom X column"), inputs.value(1));
    bottomX->setTooltip(
        tr("Select the column of the bottom dataset holding the X values of the known points."));
    addParameter(bottomX);

    auto *values = new Parameter(ParameterKind::Columns, QStringLiteral("Bottom_Value_Columns"),
        tr("Bottom value columns"), inputs.value(1));
    values->setTooltip(tr("Select the columns of the bottom dataset holding the known values."));
    addParameter(values);

    // Choices are stored in documents as they stand, so they are not translated.
    auto *xType = new Parameter(ParameterKind::Selection, QStringLiteral("X_Type"), tr("X type"),
        QStringLiteral("Automatic"),
        QStringList {QStringLiteral("Automatic"), QStringLiteral("Number"), QStringLiteral("Date")});
    applyDefault(useDefaults, xType);
    xType->setTooltip(tr("How to read the X values. Automatic tries numbers first, then dates."));
    addParameter(xType);

    auto *method = new Parameter(ParameterKind::Selection, QStringLiteral("Method"), tr("Method"),
        QStringLiteral("Linear"),
        QStringList {QStringLiteral("Linear"), QStringLiteral("Previous point"), QStringLiteral("Next point"),
            QStringLiteral("Nearest point")});
    applyDefault(useDefaults, method);
    method->setTooltip(
        tr("How to estimate between 2 known points. Linear needs numbers; the others copy a known "
           "value."));
    addParameter(method);

    auto *outside = new Parameter(ParameterKind::Selection, QStringLiteral("Outside_Range"),
        tr("Outside range"), QStringLiteral("Leave empty"),
        QStringList {
            QStringLiteral("Leave empty"), QStringLiteral("Use end point"), QStringLiteral("Extend line")});
    applyDefault(useDefaults, outside);
    outside->setTooltip(tr("What to do for X values beyond the known points."));
    addParameter(outside);
}

void TransformInterpolate::setUpstream(const QList<Node *> &nodes)
{
    // The value columns belong to the bottom dataset, like its X column; the base would
    // give a third column option no node.
    setTopBottomUpstream(nodes, parameter(QStringLiteral("Top_X_Column")),
        {parameter(QStringLiteral("Bottom_X_Column")), parameter(QStringLiteral("Bottom_Value_Columns"))});
}

bool TransformInterpolate::reorderInputs(QList<Node *> &inputs)
{
    return swapInputsByPosition(inputs, parameter(QStringLiteral("Top_X_Column")),
        parameter(QStringLiteral("Bottom_X_Column")), {parameter(QStringLiteral("Bottom_Value_Columns"))});
}

Dataset TransformInterpolate::process(const QList<Node *> &inputs, bool &failed)
{
    Q_UNUSED(failed)
    return notAvailableYet(inputs);
}
