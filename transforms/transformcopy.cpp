#include "transforms/transformcopy.h"

QString TransformCopy::description() const
{
    return tr("Make copies of columns, each beside its original.");
}

QSet<QString> TransformCopy::keywords() const
{
    QSet<QString> words = Transform::keywords();
    for (const char *word : {"duplicate", "clone", "copy", "columns", "backup"})
        words.insert(QLatin1String(word));
    return words;
}

void TransformCopy::createParameters(const QList<Node *> &inputs, bool useDefaults)
{
    Transform::createParameters(inputs, useDefaults);

    auto *columns =
        new Parameter(ParameterKind::Columns, QStringLiteral("Columns"), tr("Columns"), inputs.value(0));
    columns->setTooltip(tr("Select the columns to copy."));
    addParameter(columns);

    auto *copies = new Parameter(ParameterKind::Int, QStringLiteral("Copies"), tr("Number of copies"), 1);
    copies->setMinimum(1);
    copies->setMaximum(100);
    applyDefault(useDefaults, copies);
    copies->setTooltip(tr("How many copies to make of each column."));
    addParameter(copies);
}

Dataset TransformCopy::process(const QList<Node *> &inputs, bool &failed)
{
    Q_UNUSED(failed)
    return notAvailableYet(inputs);
}
