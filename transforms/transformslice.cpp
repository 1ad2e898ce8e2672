#include "transforms/transformslice.h"

QString TransformSlice::description() const
{
    return tr("Keep or remove a range of rows, counted from the start or the end of the dataset.");
}

QSet<QString> TransformSlice::keywords() const
{
    QSet<QString> words = Transform::keywords();
    words << QStringLiteral("range") << QStringLiteral("first") << QStringLiteral("last")
          << QStringLiteral("top") << QStringLiteral("head") << QStringLiteral("tail")
          << QStringLiteral("rows") << QStringLiteral("limit");
    return words;
}

void TransformSlice::createParameters(const QList<Node *> &inputs, bool useDefaults)
{
    Transform::createParameters(inputs, useDefaults);

    auto *from = new Parameter(ParameterKind::Int, QStringLiteral("From_Row"), tr("From row"), 1);
    from->setMinimum(1);
    from->setMaximum(Parameter::MaximumInt);
    applyDefault(useDefaults, from);
    from->setTooltip(tr("The first row of the range, counted from 1."));
    addParameter(from);

    auto *to = new Parameter(ParameterKind::Int, QStringLiteral("To_Row"), tr("To row"), 100);
    to->setMinimum(0);
    to->setMaximum(Parameter::MaximumInt);
    to->setSpecialValueText(tr("Last row"));
    applyDefault(useDefaults, to);
    to->setTooltip(tr("The last row of the range. 'Last row' takes the range to the end."));
    addParameter(to);

    // Choices are stored in documents as they stand, so they are not translated.
    auto *countFrom =
        new Parameter(ParameterKind::Selection, QStringLiteral("Count_From"), tr("Count rows from"),
            QStringLiteral("Start"), QStringList {QStringLiteral("Start"), QStringLiteral("End")});
    applyDefault(useDefaults, countFrom);
    countFrom->setTooltip(
        tr("Count row numbers from the start, or from the end, where row 1 is the last row."));
    addParameter(countFrom);

    auto *action = new Parameter(ParameterKind::Selection, QStringLiteral("Action"), tr("Action"),
        QStringLiteral("Keep rows in range"),
        QStringList {QStringLiteral("Keep rows in range"), QStringLiteral("Remove rows in range")});
    applyDefault(useDefaults, action);
    action->setTooltip(tr("Keep the rows in the range, or remove them and keep the rest."));
    addParameter(action);
}

Dataset TransformSlice::process(const QList<Node *> &inputs, bool &failed)
{
    Q_UNUSED(failed)
    return notAvailableYet(inputs);
}
