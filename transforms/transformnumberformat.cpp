#include "transforms/transformnumberformat.h"

#include <QLocale>

QString TransformNumberFormat::description() const
{
    return tr("Format numbers with a chosen number of decimal places, separators, notation and locale.");
}

void TransformNumberFormat::createParameters(const QList<Node *> &inputs, bool useDefaults)
{
    Transform::createParameters(inputs, useDefaults);

    auto *columns =
        new Parameter(ParameterKind::Columns, QStringLiteral("Columns"), tr("Columns"), inputs.value(0));
    columns->setTooltip(tr("Select the columns of numbers to format."));
    addParameter(columns);

    auto *notation = new Parameter(ParameterKind::Selection, QStringLiteral("Notation"), tr("Notation"),
        QStringLiteral("Fixed decimal places"),
        QStringList {QStringLiteral("Fixed decimal places"), QStringLiteral("Significant figures"),
            QStringLiteral("Scientific"), QStringLiteral("Percentage")});
    notation->setTooltip(
        tr("How to write the numbers. Percentage multiplies by 100 and adds the percent sign."));
    applyDefault(useDefaults, notation);
    addParameter(notation);

    auto *decimalPlaces =
        new Parameter(ParameterKind::Int, QStringLiteral("Decimal_Places"), tr("Decimal places"), 2);
    decimalPlaces->setMinimum(0);
    decimalPlaces->setMaximum(15);
    decimalPlaces->setTooltip(tr("Digits after the decimal point."));
    applyDefault(useDefaults, decimalPlaces);
    addParameter(decimalPlaces);

    auto *significantFigures = new Parameter(
        ParameterKind::Int, QStringLiteral("Significant_Figures"), tr("Significant figures"), 3);
    significantFigures->setMinimum(1);
    significantFigures->setMaximum(17);
    significantFigures->setTooltip(tr("Digits kept, counted from the first that isn't zero."));
    applyDefault(useDefaults, significantFigures);
    addParameter(significantFigures);

    auto *groupSeparators = new Parameter(
        ParameterKind::Bool, QStringLiteral("Group_Separators"), tr("thousands separators"), true);
    groupSeparators->setTooltip(tr("Check to group digits, as in 1,234,567."));
    applyDefault(useDefaults, groupSeparators);
    addParameter(groupSeparators);

    auto *negative = new Parameter(ParameterKind::Selection, QStringLiteral("Negative"),
        tr("Negative numbers"), QStringLiteral("Minus sign"),
        QStringList {QStringLiteral("Minus sign"), QStringLiteral("Parentheses")});
    negative->setTooltip(tr("Write negative numbers as -1,234 or (1,234)."));
    applyDefault(useDefaults, negative);
    addParameter(negative);

    auto *prefix = new Parameter(ParameterKind::Text, QStringLiteral("Prefix"), tr("Prefix"), QString());
    prefix->setTextRequired(false);
    prefix->setTooltip(tr("Text before each number, such as a currency symbol."));
    applyDefault(useDefaults, prefix);
    addParameter(prefix);

    auto *suffix = new Parameter(ParameterKind::Text, QStringLiteral("Suffix"), tr("Suffix"), QString());
    suffix->setTextRequired(false);
    suffix->setTooltip(tr("Text after each number, such as a unit."));
    applyDefault(useDefaults, suffix);
    addParameter(suffix);

    auto *inputLocale = new Parameter(
        ParameterKind::Locale, QStringLiteral("Input_Locale"), tr("Read with locale"), QLocale().bcp47Name());
    inputLocale->setTooltip(tr("The locale whose separators the values use now."));
    applyDefault(useDefaults, inputLocale);
    addParameter(inputLocale);

    auto *outputLocale = new Parameter(ParameterKind::Locale, QStringLiteral("Output_Locale"),
        tr("Write with locale"), QLocale().bcp47Name());
    outputLocale->setTooltip(tr("The locale whose separators to write with."));
    applyDefault(useDefaults, outputLocale);
    addParameter(outputLocale);
}

QList<QPair<QString, bool>> TransformNumberFormat::parameterStates() const
{
    const Parameter *notation = parameter(QStringLiteral("Notation"));
    if (!notation)
        return {};
    const QString text = notation->selectionText();
    const bool significant = text == QLatin1String("Significant figures");
    return {
        {QStringLiteral("Decimal_Places"), !significant},
        {QStringLiteral("Significant_Figures"), significant},
        {QStringLiteral("Group_Separators"), text != QLatin1String("Scientific")},
    };
}

Dataset TransformNumberFormat::process(const QList<Node *> &inputs, bool &failed)
{
    Q_UNUSED(failed)
    return notAvailableYet(inputs);
}
