#include "transforms/transformnumbase.h"

QString TransformNumBase::description() const
{
    return tr("Convert whole numbers between bases 2 to 36, such as decimal, hexadecimal and binary.");
}

void TransformNumBase::createParameters(const QList<Node *> &inputs, bool useDefaults)
{
    Transform::createParameters(inputs, useDefaults);

    auto *columns =
        new Parameter(ParameterKind::Columns, QStringLiteral("Columns"), tr("Columns"), inputs.value(0));
    columns->setTooltip(tr("Select the columns to convert."));
    addParameter(columns);

    auto *fromBase = new Parameter(ParameterKind::Int, QStringLiteral("From_Base"), tr("From base"), 10);
    fromBase->setMinimum(2);
    fromBase->setMaximum(36);
    fromBase->setTooltip(tr("The base the values are written in now."));
    applyDefault(useDefaults, fromBase);
    addParameter(fromBase);

    auto *toBase = new Parameter(ParameterKind::Int, QStringLiteral("To_Base"), tr("To base"), 16);
    toBase->setMinimum(2);
    toBase->setMaximum(36);
    toBase->setTooltip(tr("The base to write them in."));
    applyDefault(useDefaults, toBase);
    addParameter(toBase);

    auto *upperCase =
        new Parameter(ParameterKind::Bool, QStringLiteral("Upper_Case"), tr("upper case letters"), true);
    upperCase->setTooltip(tr("Write digits above 9 as A to Z rather than a to z."));
    applyDefault(useDefaults, upperCase);
    addParameter(upperCase);

    auto *addPrefix = new Parameter(
        ParameterKind::Bool, QStringLiteral("Add_Prefix"), tr("add prefix 0x, 0o or 0b"), false);
    addPrefix->setTooltip(tr("Write 0x before base 16, 0o before base 8 and 0b before base 2 values."));
    applyDefault(useDefaults, addPrefix);
    addParameter(addPrefix);

    auto *minimumDigits =
        new Parameter(ParameterKind::Int, QStringLiteral("Minimum_Digits"), tr("Minimum digits"), 0);
    minimumDigits->setMinimum(0);
    minimumDigits->setMaximum(64);
    minimumDigits->setSpecialValueText(tr("None"));
    minimumDigits->setTooltip(tr("Pad with zeros to at least this many digits."));
    applyDefault(useDefaults, minimumDigits);
    addParameter(minimumDigits);
}

Dataset TransformNumBase::process(const QList<Node *> &inputs, bool &failed)
{
    Q_UNUSED(failed)
    return notAvailableYet(inputs);
}
