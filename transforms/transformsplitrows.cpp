#include "transforms/transformsplitrows.h"

QString TransformSplitRows::description() const
{
    return tr("Split values holding several items into one row per item, or repeat rows by a count.");
}

QSet<QString> TransformSplitRows::keywords() const
{
    QSet<QString> words = Transform::keywords();
    words << QStringLiteral("explode") << QStringLiteral("unnest") << QStringLiteral("expand")
          << QStringLiteral("multivalue") << QStringLiteral("list") << QStringLiteral("repeat")
          << QStringLiteral("lines");
    return words;
}

QList<QPair<QString, bool>> TransformSplitRows::parameterStates() const
{
    // Repeating by a count splits no column.
    const Parameter *rule = parameter(QStringLiteral("Rule"));
    return {{QStringLiteral("Columns"), !rule || rule->splitRule().mode != 2}};
}

void TransformSplitRows::createParameters(const QList<Node *> &inputs, bool useDefaults)
{
    Transform::createParameters(inputs, useDefaults);

    auto *columns = new Parameter(
        ParameterKind::Columns, QStringLiteral("Columns"), tr("Columns to split"), inputs.value(0));
    columns->setTooltip(
        tr("Select the columns whose values are split into rows. Several columns split side by "
           "side."));
    addParameter(columns);

    auto *rule =
        new Parameter(ParameterKind::SplitRows, QStringLiteral("Rule"), tr("Split"), inputs.value(0));
    rule->setTooltip(tr("Choose how to split, and the delimiter or count column."));
    addParameter(rule);
}

Dataset TransformSplitRows::process(const QList<Node *> &inputs, bool &failed)
{
    Q_UNUSED(failed)
    return notAvailableYet(inputs);
}
