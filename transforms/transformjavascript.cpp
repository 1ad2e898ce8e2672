#include "transforms/transformjavascript.h"

QString TransformJavascript::description() const
{
    return tr("Script your own custom transform in Javascript.");
}

void TransformJavascript::createParameters(const QList<Node *> &inputs, bool useDefaults)
{
    Transform::createParameters(inputs, useDefaults);

    auto *newName = new Parameter(
        ParameterKind::Text, QStringLiteral("New_Name"), tr("New column name"), QStringLiteral("Javascript"));
    applyDefault(useDefaults, newName);
    newName->setTooltip(tr("The name for the new column."));
    addParameter(newName);

    // Choices are stored in documents by their text.
    const QStringList typings = {QStringLiteral("Number/Boolean/String"), QStringLiteral("String")};
    auto *typeAs = new Parameter(
        ParameterKind::Selection, QStringLiteral("Type_As"), tr("Type columns as"), typings.first(), typings);
    applyDefault(useDefaults, typeAs);
    typeAs->setTooltip(
        tr("Whether to type values as Number/Boolean/String (according to column contents) or all as "
           "String."));
    addParameter(typeAs);

    // The script names columns as $(name) or $(3), so it follows the input; it has no tooltip.
    auto *script =
        new Parameter(ParameterKind::Script, QStringLiteral("Script"), tr("Javascript"), inputs.value(0));
    script->setValue(
        QStringLiteral("// see help (? button top right) for details\nreturn \"Hello world!\";"));
    addParameter(script);
}

Dataset TransformJavascript::process(const QList<Node *> &inputs, bool &failed)
{
    Q_UNUSED(failed)
    return notAvailableYet(inputs);
}
