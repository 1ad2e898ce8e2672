#include "transforms/transformheader.h"

QString TransformHeader::description() const
{
    return tr("Use a row of the data as the header, or move the header down into the data.");
}

QSet<QString> TransformHeader::keywords() const
{
    QSet<QString> words = Transform::keywords();
    words << QStringLiteral("headers") << QStringLiteral("promote") << QStringLiteral("demote")
          << QStringLiteral("names") << QStringLiteral("title") << QStringLiteral("first")
          << QStringLiteral("row");
    return words;
}

QList<QPair<QString, bool>> TransformHeader::parameterStates() const
{
    const Parameter *action = parameter(QStringLiteral("Action"));
    const bool useRow = action && action->selectionText() == QLatin1String("Use row as header");
    return {{QStringLiteral("Row"), useRow}, {QStringLiteral("Header_Rows"), useRow}};
}

void TransformHeader::createParameters(const QList<Node *> &inputs, bool useDefaults)
{
    Transform::createParameters(inputs, useDefaults);

    // Choices are stored in documents as they stand, so they are not translated.
    auto *action = new Parameter(ParameterKind::Selection, QStringLiteral("Action"), tr("Action"),
        QStringLiteral("Use row as header"),
        QStringList {QStringLiteral("Use row as header"), QStringLiteral("Move header into data")});
    applyDefault(useDefaults, action);
    action->setTooltip(tr("Use a data row as the header, or make the header the first data row."));
    addParameter(action);

    auto *row = new Parameter(ParameterKind::Int, QStringLiteral("Row"), tr("Header row"), 1);
    row->setMinimum(1);
    row->setMaximum(Parameter::MaximumInt);
    applyDefault(useDefaults, row);
    row->setTooltip(tr("The data row to use as the header, counted from 1. Rows above it are removed."));
    addParameter(row);

    auto *headerRows = new Parameter(ParameterKind::Int, QStringLiteral("Header_Rows"), tr("Header rows"), 1);
    headerRows->setMinimum(1);
    headerRows->setMaximum(100);
    applyDefault(useDefaults, headerRows);
    headerRows->setTooltip(
        tr("The number of rows, from the header row down, that make up the header. Their values "
           "are joined with a blank."));
    addParameter(headerRows);
}

Dataset TransformHeader::process(const QList<Node *> &inputs, bool &failed)
{
    Q_UNUSED(failed)
    return notAvailableYet(inputs);
}
