#include "transforms/transformstamp.h"

#include <QDate>
#include <QLocale>

void TransformStamp::createParameters(const QList<Node *> &inputs, bool useDefaults)
{
    Transform::createParameters(inputs, useDefaults);

    // Choices are stored in documents by their text, so they are not translated.
    auto *stamp = new Parameter(ParameterKind::Selection, QStringLiteral("Stamp"), tr("Stamp"),
        QStringLiteral("Date and time of run"),
        QStringList {QStringLiteral("Date and time of run"), QStringLiteral("Fixed date"),
            QStringLiteral("Fixed text"), QStringLiteral("Input file name"),
            QStringLiteral("Input file path"), QStringLiteral("Input file modified")});
    stamp->setTooltip(tr("What to write in every row."));
    applyDefault(useDefaults, stamp);
    addParameter(stamp);

    auto *format = new Parameter(ParameterKind::Text, QStringLiteral("Format"), tr("Date format"),
        QStringLiteral("yyyy-MM-dd HH:mm:ss"));
    format->setTooltip(tr("How to write dates and times, e.g. dd/MM/yyyy or yyyy-MM-dd HH:mm."));
    applyDefault(useDefaults, format);
    addParameter(format);

    auto *fixedDate =
        new Parameter(ParameterKind::Date, QStringLiteral("Fixed_Date"), tr("Date"), QDate::currentDate());
    fixedDate->setTooltip(tr("The date to write."));
    applyDefault(useDefaults, fixedDate);
    addParameter(fixedDate);

    auto *fixedText = new Parameter(ParameterKind::Text, QStringLiteral("Fixed_Text"), tr("Text"), QString());
    fixedText->setTooltip(tr("The text to write."));
    applyDefault(useDefaults, fixedText);
    addParameter(fixedText);

    auto *utc = new Parameter(ParameterKind::Bool, QStringLiteral("UTC"), tr("use UTC"), false);
    utc->setTooltip(tr("Check to use Coordinated Universal Time rather than local time."));
    applyDefault(useDefaults, utc);
    addParameter(utc);

    auto *locale =
        new Parameter(ParameterKind::Locale, QStringLiteral("Locale"), tr("Locale"), QLocale().bcp47Name());
    locale->setTooltip(tr("Language of month and day names."));
    applyDefault(useDefaults, locale);
    addParameter(locale);

    auto *newName =
        new Parameter(ParameterKind::Text, QStringLiteral("New_Name"), tr("New column name"), tr("Stamp"));
    newName->setTooltip(tr("The name of the new column."));
    applyDefault(useDefaults, newName);
    addParameter(newName);

    auto *position = new Parameter(ParameterKind::Selection, QStringLiteral("Position"), tr("Position"),
        QStringLiteral("Last column"),
        QStringList {QStringLiteral("Last column"), QStringLiteral("First column")});
    position->setTooltip(tr("Where to put the new column."));
    applyDefault(useDefaults, position);
    addParameter(position);
}

QList<QPair<QString, bool>> TransformStamp::parameterStates() const
{
    const Parameter *stamp = parameter(QStringLiteral("Stamp"));
    if (!stamp)
        return {};
    const QString what = stamp->selectionText();
    const bool runTime = what == QLatin1String("Date and time of run");
    const bool fixedDate = what == QLatin1String("Fixed date");
    const bool modified = what == QLatin1String("Input file modified");
    // Fixed dates carry no time of day, so time zones don't apply to them.
    return {
        {QStringLiteral("Format"), runTime || fixedDate || modified},
        {QStringLiteral("Fixed_Date"), fixedDate},
        {QStringLiteral("Fixed_Text"), what == QLatin1String("Fixed text")},
        {QStringLiteral("UTC"), runTime || modified},
        {QStringLiteral("Locale"), runTime || fixedDate || modified},
    };
}

Dataset TransformStamp::process(const QList<Node *> &inputs, bool &failed)
{
    Q_UNUSED(failed)
    return notAvailableYet(inputs);
}
