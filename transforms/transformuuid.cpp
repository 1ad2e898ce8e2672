#include "transforms/transformuuid.h"

void TransformUUID::createParameters(const QList<Node *> &inputs, bool useDefaults)
{
    Transform::createParameters(inputs, useDefaults);

    // Choices are stored in documents by their text, so they are not translated.
    auto *version = new Parameter(ParameterKind::Selection, QStringLiteral("Version"), tr("Kind"),
        QStringLiteral("Random (version 4)"),
        QStringList {QStringLiteral("Random (version 4)"), QStringLiteral("Name-based SHA-1 (version 5)"),
            QStringLiteral("Name-based MD5 (version 3)")});
    version->setTooltip(tr(
        "Random UUIDs differ on every run; name-based ones are the same for the same name and namespace."));
    applyDefault(useDefaults, version);
    addParameter(version);

    auto *nameColumn = new Parameter(
        ParameterKind::Column, QStringLiteral("Name_Column"), tr("Name column"), inputs.value(0));
    nameColumn->setTooltip(tr("The column whose values name each UUID."));
    addParameter(nameColumn);

    auto *space = new Parameter(ParameterKind::Selection, QStringLiteral("Namespace"), tr("Namespace"),
        QStringLiteral("URL"),
        QStringList {QStringLiteral("URL"), QStringLiteral("DNS"), QStringLiteral("OID"),
            QStringLiteral("X.500"), QStringLiteral("Custom")});
    space->setTooltip(tr("The namespace the names belong to."));
    applyDefault(useDefaults, space);
    addParameter(space);

    auto *customSpace = new Parameter(
        ParameterKind::Text, QStringLiteral("Custom_Namespace"), tr("Custom namespace"), QString());
    customSpace->setTooltip(tr("A UUID naming your own namespace."));
    applyDefault(useDefaults, customSpace);
    addParameter(customSpace);

    auto *format = new Parameter(ParameterKind::Selection, QStringLiteral("Format"), tr("Format"),
        QStringLiteral("Without braces"),
        QStringList {
            QStringLiteral("Without braces"), QStringLiteral("With braces"), QStringLiteral("Digits only")});
    format->setTooltip(tr("xxxxxxxx-xxxx-xxxx-xxxx-xxxxxxxxxxxx, the same in {}, or 32 digits."));
    applyDefault(useDefaults, format);
    addParameter(format);

    auto *upperCase =
        new Parameter(ParameterKind::Bool, QStringLiteral("Upper_Case"), tr("upper case"), false);
    upperCase->setTooltip(tr("Check to write the letters a to f in upper case."));
    applyDefault(useDefaults, upperCase);
    addParameter(upperCase);

    auto *newName =
        new Parameter(ParameterKind::Text, QStringLiteral("New_Name"), tr("New column name"), tr("UUID"));
    newName->setTooltip(tr("The name of the new column."));
    applyDefault(useDefaults, newName);
    addParameter(newName);
}

QList<QPair<QString, bool>> TransformUUID::parameterStates() const
{
    const Parameter *version = parameter(QStringLiteral("Version"));
    const Parameter *space = parameter(QStringLiteral("Namespace"));
    if (!version || !space)
        return {};
    const bool nameBased = version->selectionText() != QLatin1String("Random (version 4)");
    return {
        {QStringLiteral("Name_Column"), nameBased},
        {QStringLiteral("Namespace"), nameBased},
        {QStringLiteral("Custom_Namespace"), nameBased && space->selectionText() == QLatin1String("Custom")},
    };
}

Dataset TransformUUID::process(const QList<Node *> &inputs, bool &failed)
{
    Q_UNUSED(failed)
    return notAvailableYet(inputs);
}
