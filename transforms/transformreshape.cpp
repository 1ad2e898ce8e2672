#include "transforms/transformreshape.h"

QString TransformReshape::description() const
{
    return tr("Re-flow all the cells into a new number of columns, or into rows ended by empty cells.");
}

QSet<QString> TransformReshape::keywords() const
{
    QSet<QString> words = Transform::keywords();
    for (const char *word : {"wrap", "unwrap", "fold", "records", "list", "columns", "rows", "flow"})
        words.insert(QLatin1String(word));
    return words;
}

QList<QPair<QString, bool>> TransformReshape::parameterStates() const
{
    // Rows ended by empty cells have no fixed width, and their empty cells are the row ends.
    const Parameter *reshapeType = parameter(QStringLiteral("Reshape_Type"));
    const bool fixed = !reshapeType || reshapeType->selectionIndex() == 0;
    return {qMakePair(QStringLiteral("New_Columns"), fixed), qMakePair(QStringLiteral("Skip_Empty"), fixed)};
}

void TransformReshape::createParameters(const QList<Node *> &inputs, bool useDefaults)
{
    Transform::createParameters(inputs, useDefaults);

    // Choices are stored in documents by their text.
    const QStringList reshapeTypes = {
        QStringLiteral("Fixed number of columns"), QStringLiteral("Empty cell ends a row")};
    auto *reshapeType = new Parameter(ParameterKind::Selection, QStringLiteral("Reshape_Type"),
        tr("Reshape by"), reshapeTypes.first(), reshapeTypes);
    applyDefault(useDefaults, reshapeType);
    reshapeType->setTooltip(
        tr("Fill rows of a fixed number of columns, or start a new row at each empty cell."));
    addParameter(reshapeType);

    auto *newColumns =
        new Parameter(ParameterKind::Int, QStringLiteral("New_Columns"), tr("Number of columns"), 2);
    newColumns->setMinimum(1);
    newColumns->setMaximum(10000);
    applyDefault(useDefaults, newColumns);
    newColumns->setTooltip(tr("The number of columns of the reshaped dataset."));
    addParameter(newColumns);

    const QStringList readOrders = {QStringLiteral("Row by row"), QStringLiteral("Column by column")};
    auto *readOrder = new Parameter(ParameterKind::Selection, QStringLiteral("Read_Order"), tr("Read cells"),
        readOrders.first(), readOrders);
    applyDefault(useDefaults, readOrder);
    readOrder->setTooltip(tr("Read the cells across each row in turn, or down each column in turn."));
    addParameter(readOrder);

    auto *skipEmpty =
        new Parameter(ParameterKind::Bool, QStringLiteral("Skip_Empty"), tr("skip empty cells"), false);
    applyDefault(useDefaults, skipEmpty);
    skipEmpty->setTooltip(tr("Check to leave out empty cells."));
    addParameter(skipEmpty);
}

Dataset TransformReshape::process(const QList<Node *> &inputs, bool &failed)
{
    Q_UNUSED(failed)
    return notAvailableYet(inputs);
}
