#include "transforms/transformdateformat.h"

#include <QLocale>

QString TransformDateFormat::description() const
{
    return tr("Change the format of dates and times in the selected columns.");
}

void TransformDateFormat::createParameters(const QList<Node *> &inputs, bool useDefaults)
{
    Transform::createParameters(inputs, useDefaults);

    auto *columns =
        new Parameter(ParameterKind::Columns, QStringLiteral("Columns"), tr("Columns"), inputs.value(0));
    columns->setTooltip(tr("Select the columns holding dates or times."));
    addParameter(columns);

    auto *inputFormat = new Parameter(ParameterKind::Selection, QStringLiteral("Input_Format"),
        tr("Input format"), QStringLiteral("Automatic"),
        QStringList {QStringLiteral("Automatic"), QStringLiteral("Custom"), QStringLiteral("ISO 8601"),
            QStringLiteral("Unix seconds"), QStringLiteral("Unix milliseconds"),
            QStringLiteral("Excel serial number")});
    inputFormat->setTooltip(
        tr("How the values are written now. Automatic tries the date formats of Preferences, "
           "with and without times."));
    applyDefault(useDefaults, inputFormat);
    addParameter(inputFormat);

    auto *inputCustom = new Parameter(ParameterKind::Text, QStringLiteral("Input_Custom"),
        tr("Custom input format"), QStringLiteral("d/M/yyyy"));
    inputCustom->setTooltip(
        tr("The format of the values now, e.g. \"d.M.yyyy H:mm\". Fields: d dd ddd dddd M MM MMM "
           "MMMM yy yyyy h hh H HH m mm s ss z zzz AP; quote literal text with '."));
    applyDefault(useDefaults, inputCustom);
    addParameter(inputCustom);

    auto *twoDigitYears = new Parameter(
        ParameterKind::Int, QStringLiteral("Two_Digit_Years"), tr("Two-digit years from"), 1950);
    twoDigitYears->setMinimum(1000);
    twoDigitYears->setMaximum(9900);
    twoDigitYears->setTooltip(
        tr("A year written with two digits falls in the 100 years from this one: with 1950, 49 "
           "reads as 2049 and 50 as 1950."));
    applyDefault(useDefaults, twoDigitYears);
    addParameter(twoDigitYears);

    auto *outputFormat = new Parameter(ParameterKind::Selection, QStringLiteral("Output_Format"),
        tr("Output format"), QStringLiteral("Custom"),
        QStringList {QStringLiteral("Custom"), QStringLiteral("ISO 8601 date"),
            QStringLiteral("ISO 8601 date-time"), QStringLiteral("Short date"), QStringLiteral("Long date"),
            QStringLiteral("Short date-time"), QStringLiteral("Long date-time"),
            QStringLiteral("Unix seconds"), QStringLiteral("Unix milliseconds"),
            QStringLiteral("Excel serial number")});
    outputFormat->setTooltip(tr("How to write the values."));
    applyDefault(useDefaults, outputFormat);
    addParameter(outputFormat);

    auto *outputCustom = new Parameter(ParameterKind::Text, QStringLiteral("Output_Custom"),
        tr("Custom output format"), QStringLiteral("yyyy-MM-dd"));
    outputCustom->setTooltip(tr("The format to write, with the same fields as the input format."));
    applyDefault(useDefaults, outputCustom);
    addParameter(outputCustom);

    auto *locale =
        new Parameter(ParameterKind::Locale, QStringLiteral("Locale"), tr("Locale"), QLocale().bcp47Name());
    locale->setTooltip(tr("Language of month and day names, and of the short and long formats."));
    applyDefault(useDefaults, locale);
    addParameter(locale);

    auto *ifInvalid = new Parameter(ParameterKind::Selection, QStringLiteral("If_Invalid"),
        tr("If not a date"), QStringLiteral("Leave unchanged"),
        QStringList {QStringLiteral("Leave unchanged"), QStringLiteral("Make empty")});
    ifInvalid->setTooltip(tr("What to do with a value that doesn't match the input format."));
    applyDefault(useDefaults, ifInvalid);
    addParameter(ifInvalid);
}

QList<QPair<QString, bool>> TransformDateFormat::parameterStates() const
{
    const Parameter *inputFormat = parameter(QStringLiteral("Input_Format"));
    const Parameter *outputFormat = parameter(QStringLiteral("Output_Format"));
    if (!inputFormat || !outputFormat)
        return {};
    const QString input = inputFormat->selectionText();
    const QString output = outputFormat->selectionText();
    const bool customInput = input == QLatin1String("Custom");
    const bool customOutput = output == QLatin1String("Custom");
    // The short and long formats take their patterns from the locale.
    const bool localeOutput =
        output.startsWith(QLatin1String("Short ")) || output.startsWith(QLatin1String("Long "));
    return {
        {QStringLiteral("Input_Custom"), customInput},
        {QStringLiteral("Two_Digit_Years"), customInput || input == QLatin1String("Automatic")},
        {QStringLiteral("Output_Custom"), customOutput},
        {QStringLiteral("Locale"), customInput || customOutput || localeOutput},
    };
}

Dataset TransformDateFormat::process(const QList<Node *> &inputs, bool &failed)
{
    Q_UNUSED(failed)
    return notAvailableYet(inputs);
}
