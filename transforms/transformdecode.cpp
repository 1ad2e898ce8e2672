#include "transforms/transformdecode.h"

QString TransformDecode::description() const
{
    return tr("Decode or encode values: URL, HTML, Base64, quoted-printable, hexadecimal, JSON escapes and "
              "Punycode.");
}

void TransformDecode::createParameters(const QList<Node *> &inputs, bool useDefaults)
{
    Transform::createParameters(inputs, useDefaults);

    auto *columns =
        new Parameter(ParameterKind::Columns, QStringLiteral("Columns"), tr("Columns"), inputs.value(0));
    columns->setTooltip(tr("Select the columns to decode or encode."));
    addParameter(columns);

    auto *direction = new Parameter(ParameterKind::Selection, QStringLiteral("Direction"), tr("Direction"),
        QStringLiteral("Decode"), QStringList {QStringLiteral("Decode"), QStringLiteral("Encode")});
    direction->setTooltip(tr("Decode escaped values to plain text, or encode plain text."));
    applyDefault(useDefaults, direction);
    addParameter(direction);

    auto *encoding = new Parameter(ParameterKind::Selection, QStringLiteral("Encoding"), tr("Encoding"),
        QStringLiteral("URL percent"),
        QStringList {QStringLiteral("URL percent"), QStringLiteral("URL form"),
            QStringLiteral("HTML entities"), QStringLiteral("Base64"), QStringLiteral("Base64url"),
            QStringLiteral("Quoted-printable"), QStringLiteral("Hexadecimal"), QStringLiteral("JSON escapes"),
            QStringLiteral("Punycode")});
    encoding->setTooltip(
        tr("The encoding to decode from or encode to. Text is taken as UTF-8 bytes where bytes are "
           "needed."));
    applyDefault(useDefaults, encoding);
    addParameter(encoding);
}

Dataset TransformDecode::process(const QList<Node *> &inputs, bool &failed)
{
    Q_UNUSED(failed)
    return notAvailableYet(inputs);
}
