#include "transforms/transformrandom.h"

#include <QDate>

void TransformRandom::createParameters(const QList<Node *> &inputs, bool useDefaults)
{
    Transform::createParameters(inputs, useDefaults);

    // Choices are stored in documents by their text, so they are not translated.
    auto *type =
        new Parameter(ParameterKind::Selection, QStringLiteral("Type"), tr("Type"), QStringLiteral("Integer"),
            QStringList {QStringLiteral("Integer"), QStringLiteral("Decimal"),
                QStringLiteral("Normal distribution"), QStringLiteral("Date"), QStringLiteral("Text"),
                QStringLiteral("From list")});
    type->setTooltip(tr("What kind of random values to make."));
    applyDefault(useDefaults, type);
    addParameter(type);

    auto *minimumInt = new Parameter(ParameterKind::Int, QStringLiteral("Minimum_Int"), tr("Minimum"), 1);
    minimumInt->setMinimum(-Parameter::MaximumInt);
    minimumInt->setMaximum(Parameter::MaximumInt);
    minimumInt->setTooltip(tr("The smallest integer."));
    applyDefault(useDefaults, minimumInt);
    addParameter(minimumInt);

    // Inclusive: a document older than version 78 held an exclusive maximum, which the
    // document reader lowers by 1.
    auto *maximumInt = new Parameter(ParameterKind::Int, QStringLiteral("Maximum_Int"), tr("Maximum"), 100);
    maximumInt->setMinimum(-Parameter::MaximumInt);
    maximumInt->setMaximum(Parameter::MaximumInt);
    maximumInt->setTooltip(tr("The largest integer, which can occur."));
    applyDefault(useDefaults, maximumInt);
    addParameter(maximumInt);

    auto *minimumReal =
        new Parameter(ParameterKind::Real, QStringLiteral("Minimum_Real"), tr("Minimum"), 0.0);
    minimumReal->setRealMinimum(-1e12);
    minimumReal->setRealMaximum(1e12);
    minimumReal->setTooltip(tr("The lower limit."));
    applyDefault(useDefaults, minimumReal);
    addParameter(minimumReal);

    auto *maximumReal =
        new Parameter(ParameterKind::Real, QStringLiteral("Maximum_Real"), tr("Maximum"), 1.0);
    maximumReal->setRealMinimum(-1e12);
    maximumReal->setRealMaximum(1e12);
    maximumReal->setTooltip(tr("The upper limit."));
    applyDefault(useDefaults, maximumReal);
    addParameter(maximumReal);

    auto *mean = new Parameter(ParameterKind::Real, QStringLiteral("Mean"), tr("Mean"), 0.0);
    mean->setRealMinimum(-1e12);
    mean->setRealMaximum(1e12);
    mean->setTooltip(tr("The mean of the normal distribution."));
    applyDefault(useDefaults, mean);
    addParameter(mean);

    auto *deviation = new Parameter(
        ParameterKind::Real, QStringLiteral("Standard_Deviation"), tr("Standard deviation"), 1.0);
    deviation->setRealMinimum(0);
    deviation->setRealMaximum(1e12);
    deviation->setTooltip(tr("The standard deviation of the normal distribution."));
    applyDefault(useDefaults, deviation);
    addParameter(deviation);

    auto *decimals =
        new Parameter(ParameterKind::Int, QStringLiteral("Decimal_Places"), tr("Decimal places"), 2);
    decimals->setMinimum(0);
    decimals->setMaximum(15);
    decimals->setTooltip(tr("Round values to this many decimal places."));
    applyDefault(useDefaults, decimals);
    addParameter(decimals);

    auto *minimumDate = new Parameter(
        ParameterKind::Date, QStringLiteral("Minimum_Date"), tr("From date"), QDate(2000, 1, 1));
    minimumDate->setTooltip(tr("The earliest date."));
    applyDefault(useDefaults, minimumDate);
    addParameter(minimumDate);

    auto *maximumDate = new Parameter(
        ParameterKind::Date, QStringLiteral("Maximum_Date"), tr("To date"), QDate(2029, 12, 31));
    maximumDate->setTooltip(tr("The latest date, which can occur."));
    applyDefault(useDefaults, maximumDate);
    addParameter(maximumDate);

    auto *dateFormat = new Parameter(
        ParameterKind::Text, QStringLiteral("Date_Format"), tr("Date format"), QStringLiteral("yyyy-MM-dd"));
    dateFormat->setTooltip(tr("How to write the dates."));
    applyDefault(useDefaults, dateFormat);
    addParameter(dateFormat);

    auto *textLength = new Parameter(ParameterKind::Int, QStringLiteral("Text_Length"), tr("Length"), 8);
    textLength->setMinimum(1);
    textLength->setMaximum(1000);
    textLength->setTooltip(tr("Characters in each text."));
    applyDefault(useDefaults, textLength);
    addParameter(textLength);

    auto *characters = new Parameter(ParameterKind::Selection, QStringLiteral("Characters"), tr("Characters"),
        QStringLiteral("Letters and digits"),
        QStringList {QStringLiteral("Letters and digits"), QStringLiteral("Upper case letters"),
            QStringLiteral("Lower case letters"), QStringLiteral("Digits"),
            QStringLiteral("Hexadecimal digits")});
    characters->setTooltip(tr("The characters to make texts from."));
    applyDefault(useDefaults, characters);
    addParameter(characters);

    auto *list = new Parameter(ParameterKind::LongText, QStringLiteral("List"), tr("Values"), QString());
    list->setTooltip(tr("The values to pick from, one per line."));
    applyDefault(useDefaults, list);
    addParameter(list);

    auto *seed = new Parameter(ParameterKind::Int, QStringLiteral("Seed"), tr("Seed"), 1);
    seed->setMinimum(0);
    seed->setMaximum(Parameter::MaximumInt);
    seed->setTooltip(tr("The same seed gives the same values on every run; change it for other values."));
    applyDefault(useDefaults, seed);
    addParameter(seed);

    auto *newName =
        new Parameter(ParameterKind::Text, QStringLiteral("New_Name"), tr("New column name"), tr("Random"));
    newName->setTooltip(tr("The name of the new column."));
    applyDefault(useDefaults, newName);
    addParameter(newName);
}

QList<QPair<QString, bool>> TransformRandom::parameterStates() const
{
    const Parameter *type = parameter(QStringLiteral("Type"));
    if (!type)
        return {};
    const QString what = type->selectionText();
    const bool integer = what == QLatin1String("Integer");
    const bool decimal = what == QLatin1String("Decimal");
    const bool normal = what == QLatin1String("Normal distribution");
    const bool date = what == QLatin1String("Date");
    const bool text = what == QLatin1String("Text");
    return {
        {QStringLiteral("Minimum_Int"), integer},
        {QStringLiteral("Maximum_Int"), integer},
        {QStringLiteral("Minimum_Real"), decimal},
        {QStringLiteral("Maximum_Real"), decimal},
        {QStringLiteral("Mean"), normal},
        {QStringLiteral("Standard_Deviation"), normal},
        {QStringLiteral("Decimal_Places"), decimal || normal},
        {QStringLiteral("Minimum_Date"), date},
        {QStringLiteral("Maximum_Date"), date},
        {QStringLiteral("Date_Format"), date},
        {QStringLiteral("Text_Length"), text},
        {QStringLiteral("Characters"), text},
        {QStringLiteral("List"), what == QLatin1String("From list")},
    };
}

Dataset TransformRandom::process(const QList<Node *> &inputs, bool &failed)
{
    Q_UNUSED(failed)
    return notAvailableYet(inputs);
}
