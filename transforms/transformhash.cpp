#include "transforms/transformhash.h"

void TransformHash::createParameters(const QList<Node *> &inputs, bool useDefaults)
{
    Transform::createParameters(inputs, useDefaults);

    auto *columns =
        new Parameter(ParameterKind::Columns, QStringLiteral("Columns"), tr("Columns"), inputs.value(0));
    columns->setTooltip(tr("Select the columns to hash."));
    addParameter(columns);

    // Choices are stored in documents by their text, so they are not translated.
    auto *algorithm = new Parameter(ParameterKind::Selection, QStringLiteral("Algorithm"), tr("Algorithm"),
        QStringLiteral("SHA-256"),
        QStringList {QStringLiteral("MD4"), QStringLiteral("MD5"), QStringLiteral("SHA-1"),
            QStringLiteral("SHA-224"), QStringLiteral("SHA-256"), QStringLiteral("SHA-384"),
            QStringLiteral("SHA-512"), QStringLiteral("SHA3-224"), QStringLiteral("SHA3-256"),
            QStringLiteral("SHA3-384"), QStringLiteral("SHA3-512"), QStringLiteral("Keccak-224"),
            QStringLiteral("Keccak-256"), QStringLiteral("Keccak-384"), QStringLiteral("Keccak-512")});
    algorithm->setTooltip(
        tr("The hash function. MD4, MD5 and SHA-1 are no longer safe against deliberate collisions "
           "and are offered for compatibility."));
    applyDefault(useDefaults, algorithm);
    addParameter(algorithm);

    auto *salt = new Parameter(ParameterKind::Text, QStringLiteral("Salt"), tr("Salt"), QString());
    salt->setTextRequired(false);
    salt->setTooltip(
        tr("Secret text put before each value, so that hashes can't be looked up in tables of common "
           "values. It is saved in the .tflow file."));
    applyDefault(useDefaults, salt);
    addParameter(salt);

    auto *normalise =
        new Parameter(ParameterKind::Bool, QStringLiteral("Normalise"), tr("trim and ignore case"), false);
    normalise->setTooltip(tr("Check to hash the trimmed, case-folded value, so that \" Ann@X.com\" and "
                             "\"ann@x.com\" hash alike."));
    applyDefault(useDefaults, normalise);
    addParameter(normalise);

    auto *output = new Parameter(ParameterKind::Selection, QStringLiteral("Output"), tr("Output"),
        QStringLiteral("Hexadecimal"), QStringList {QStringLiteral("Hexadecimal"), QStringLiteral("Base64")});
    output->setTooltip(tr("How to write the hash."));
    applyDefault(useDefaults, output);
    addParameter(output);

    auto *hashEmpty =
        new Parameter(ParameterKind::Bool, QStringLiteral("Hash_Empty"), tr("hash empty values"), false);
    hashEmpty->setTooltip(tr("Check to hash empty values too; otherwise they stay empty."));
    applyDefault(useDefaults, hashEmpty);
    addParameter(hashEmpty);

    auto *length = new Parameter(ParameterKind::Int, QStringLiteral("Length"), tr("Keep characters"), 0);
    length->setMinimum(0);
    length->setMaximum(128);
    length->setSpecialValueText(tr("Full"));
    length->setTooltip(
        tr("Keep only this many characters of the hash, for shorter codes. Shorter codes are likelier "
           "to collide."));
    applyDefault(useDefaults, length);
    addParameter(length);
}

Dataset TransformHash::process(const QList<Node *> &inputs, bool &failed)
{
    Q_UNUSED(failed)
    return notAvailableYet(inputs);
}
