#include "transforms/transformnewrows.h"

QString TransformNewRows::description() const
{
    return tr("Add new rows, empty or holding given values, at the start or end of the dataset.");
}

QSet<QString> TransformNewRows::keywords() const
{
    QSet<QString> words = Transform::keywords();
    words << QStringLiteral("add") << QStringLiteral("append") << QStringLiteral("insert")
          << QStringLiteral("blank") << QStringLiteral("empty") << QStringLiteral("rows");
    return words;
}

QList<QPair<QString, bool>> TransformNewRows::parameterStates() const
{
    // Without values there is nothing to separate.
    const Parameter *values = parameter(QStringLiteral("Values"));
    return {{QStringLiteral("Delimiter"), values && !values->stringValue().isEmpty()}};
}

void TransformNewRows::createParameters(const QList<Node *> &inputs, bool useDefaults)
{
    Transform::createParameters(inputs, useDefaults);

    // Choices are stored in documents as they stand, so they are not translated.
    auto *position = new Parameter(ParameterKind::Selection, QStringLiteral("Position"), tr("Add at"),
        QStringLiteral("End"), QStringList {QStringLiteral("End"), QStringLiteral("Start")});
    applyDefault(useDefaults, position);
    position->setTooltip(tr("Add the new rows after the last row or before the first row."));
    addParameter(position);

    auto *count =
        new Parameter(ParameterKind::Int, QStringLiteral("Number_Of_Rows"), tr("Number of rows"), 1);
    count->setMinimum(1);
    count->setMaximum(1000000);
    applyDefault(useDefaults, count);
    count->setTooltip(tr("How many new rows to add."));
    addParameter(count);

    auto *values = new Parameter(ParameterKind::Text, QStringLiteral("Values"), tr("Values"), QString());
    values->setTextRequired(false);
    applyDefault(useDefaults, values);
    values->setTooltip(
        tr("The values of each new row, separated by the delimiter. Leave empty for empty rows."));
    addParameter(values);

    auto *delimiter = new Parameter(
        ParameterKind::Char, QStringLiteral("Delimiter"), tr("Delimiter"), QChar(QLatin1Char(',')));
    applyDefault(useDefaults, delimiter);
    delimiter->setTooltip(tr("The character that separates the values."));
    addParameter(delimiter);
}

Dataset TransformNewRows::process(const QList<Node *> &inputs, bool &failed)
{
    Q_UNUSED(failed)
    return notAvailableYet(inputs);
}
