#include "transforms/transformsequence.h"

#include "core/values.h"

#include <QDate>

#include <cmath>

namespace {

bool isChecked(const Parameter *parameter)
{
    return parameter && parameter->boolValue();
}

} // namespace

QString TransformSequence::description() const
{
    return tr(
        "Find values missing from a sequence of integers or dates, and add a row for each or list them.");
}

QSet<QString> TransformSequence::keywords() const
{
    QSet<QString> words = Transform::keywords();
    words << QStringLiteral("missing") << QStringLiteral("gaps") << QStringLiteral("complete")
          << QStringLiteral("series") << QStringLiteral("dates") << QStringLiteral("consecutive")
          << QStringLiteral("fill") << QStringLiteral("calendar");
    return words;
}

bool TransformSequence::hasMinimumOptions() const
{
    const Parameter *how = parameter(QStringLiteral("How_Name"));
    return how && how->selectionText() == QLatin1String("Add missing rows");
}

TransformSequence::SequenceType TransformSequence::guessType(
    const Dataset &dataset, DataColumnIndex column, QString *dateFormat)
{
    if (!column.isValid() || column.toInt() >= dataset.columnCount())
        return SequenceType::Unknown;
    if (dataset.isNumericColumn(column, false, 100)) {
        bool whole = true;
        const int rows = qMin(100, dataset.rowCount());
        for (int row = 0; row < rows && whole; ++row) {
            const QString &cell = dataset.cell(row, column);
            if (cell.trimmed().isEmpty())
                continue;
            bool ok = false;
            const double value = toNumber(cell, false, false, &ok);
            whole = ok && std::floor(value) == value;
        }
        if (whole)
            return SequenceType::Integer;
    }
    QString format;
    const bool isDate = dataset.guessDateFormat(column, dateFormats(), &format, 50);
    if (dateFormat)
        *dateFormat = format;
    return isDate ? SequenceType::Date : SequenceType::Unknown;
}

TransformSequence::SequenceType TransformSequence::effectiveType() const
{
    const Parameter *type = parameter(QStringLiteral("Sequence_Type"));
    const QString chosen = type ? type->selectionText() : QString();
    if (chosen == QLatin1String("Integer"))
        return SequenceType::Integer;
    if (chosen == QLatin1String("Date"))
        return SequenceType::Date;
    const Parameter *column = parameter(QStringLiteral("Column"));
    const Dataset *dataset = column ? column->upstreamDataset() : nullptr;
    if (!dataset)
        return SequenceType::Unknown;
    return guessType(*dataset, column->columnIndex(), nullptr);
}

QList<QPair<QString, bool>> TransformSequence::parameterStates() const
{
    // While the type is unknown both kinds of bound stay available.
    const SequenceType type = effectiveType();
    const bool dates = type != SequenceType::Integer;
    const bool integers = type != SequenceType::Date;
    const bool minimum = isChecked(parameter(QStringLiteral("User_Define_Minimum")));
    const bool maximum = isChecked(parameter(QStringLiteral("User_Define_Maximum")));
    const Parameter *how = parameter(QStringLiteral("How_Name"));
    const bool addRows = how && how->selectionText() == QLatin1String("Add missing rows");
    return {{QStringLiteral("Date_Unit"), dates}, {QStringLiteral("Mark_Added"), addRows},
        {QStringLiteral("User_Define_Minimum_Missing_Date"), dates && minimum},
        {QStringLiteral("User_Define_Minimum_Missing_Int"), integers && minimum},
        {QStringLiteral("User_Define_Maximum_Missing_Date"), dates && maximum},
        {QStringLiteral("User_Define_Maximum_Missing_Int"), integers && maximum}};
}

void TransformSequence::createParameters(const QList<Node *> &inputs, bool useDefaults)
{
    Transform::createParameters(inputs, useDefaults);

    auto *column = new Parameter(
        ParameterKind::Column, QStringLiteral("Column"), tr("Sequence column"), inputs.value(0));
    column->setTooltip(tr("Select the column holding the sequence of integers or dates."));
    addParameter(column);

    // Choices are stored in documents as they stand, so they are not translated.
    auto *type = new Parameter(ParameterKind::Selection, QStringLiteral("Sequence_Type"), tr("Sequence type"),
        QStringLiteral("Automatic"),
        QStringList {QStringLiteral("Automatic"), QStringLiteral("Integer"), QStringLiteral("Date")});
    applyDefault(useDefaults, type);
    type->setTooltip(tr("How to read the sequence values."));
    addParameter(type);

    auto *step = new Parameter(ParameterKind::Int, QStringLiteral("Step"), tr("Step"), 1);
    step->setMinimum(1);
    step->setMaximum(Parameter::MaximumInt);
    applyDefault(useDefaults, step);
    step->setTooltip(tr("The difference between consecutive values of the sequence."));
    addParameter(step);

    auto *unit = new Parameter(ParameterKind::Selection, QStringLiteral("Date_Unit"), tr("Step unit"),
        QStringLiteral("Days"),
        QStringList {QStringLiteral("Days"), QStringLiteral("Weeks"), QStringLiteral("Months"),
            QStringLiteral("Years")});
    applyDefault(useDefaults, unit);
    unit->setTooltip(tr("The unit of the step for dates."));
    addParameter(unit);

    auto *how = new Parameter(ParameterKind::Selection, QStringLiteral("How_Name"), tr("How"),
        QStringLiteral("Add missing rows"),
        QStringList {QStringLiteral("Add missing rows"), QStringLiteral("List missing values")});
    applyDefault(useDefaults, how);
    how->setTooltip(tr("Add a row for each missing value, or output only the list of missing values."));
    addParameter(how);

    auto *markAdded = new Parameter(
        ParameterKind::Bool, QStringLiteral("Mark_Added"), tr("add column marking added rows"), false);
    applyDefault(useDefaults, markAdded);
    markAdded->setTooltip(
        tr("Check to add a column 'Added' holding true for added rows and false for the others."));
    addParameter(markAdded);

    auto *userMinimum = new Parameter(
        ParameterKind::Bool, QStringLiteral("User_Define_Minimum"), tr("user defined minimum"), false);
    applyDefault(useDefaults, userMinimum);
    userMinimum->setTooltip(
        tr("Check to set the first value of the sequence yourself, instead of the lowest value "
           "in the column."));
    addParameter(userMinimum);

    auto *minimumDate = new Parameter(ParameterKind::Date, QStringLiteral("User_Define_Minimum_Missing_Date"),
        tr("Minimum"), QDate(2000, 1, 1));
    applyDefault(useDefaults, minimumDate);
    minimumDate->setTooltip(tr("The first date of the sequence."));
    addParameter(minimumDate);

    auto *minimumInt = new Parameter(
        ParameterKind::Int, QStringLiteral("User_Define_Minimum_Missing_Int"), tr("Minimum"), 1);
    minimumInt->setMinimum(-Parameter::MaximumInt);
    minimumInt->setMaximum(Parameter::MaximumInt);
    applyDefault(useDefaults, minimumInt);
    minimumInt->setTooltip(tr("The first integer of the sequence."));
    addParameter(minimumInt);

    auto *userMaximum = new Parameter(
        ParameterKind::Bool, QStringLiteral("User_Define_Maximum"), tr("user defined maximum"), false);
    applyDefault(useDefaults, userMaximum);
    userMaximum->setTooltip(
        tr("Check to set the last value of the sequence yourself, instead of the highest value "
           "in the column."));
    addParameter(userMaximum);

    auto *maximumDate = new Parameter(ParameterKind::Date, QStringLiteral("User_Define_Maximum_Missing_Date"),
        tr("Maximum"), QDate(2000, 12, 31));
    applyDefault(useDefaults, maximumDate);
    maximumDate->setTooltip(tr("The last date of the sequence."));
    addParameter(maximumDate);

    auto *maximumInt = new Parameter(
        ParameterKind::Int, QStringLiteral("User_Define_Maximum_Missing_Int"), tr("Maximum"), 100);
    maximumInt->setMinimum(-Parameter::MaximumInt);
    maximumInt->setMaximum(Parameter::MaximumInt);
    applyDefault(useDefaults, maximumInt);
    maximumInt->setTooltip(tr("The last integer of the sequence."));
    addParameter(maximumInt);
}

Dataset TransformSequence::process(const QList<Node *> &inputs, bool &failed)
{
    Q_UNUSED(failed)
    return notAvailableYet(inputs);
}
