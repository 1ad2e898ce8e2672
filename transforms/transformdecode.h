#pragma once

#include "transforms/transform.h"

// Decodes or encodes values: URL, HTML, Base64, quoted-printable, hexadecimal, JSON escapes and Punycode.
class TransformDecode : public Transform
{
    Q_OBJECT
public:
    int type() const override { return 14; }
    QString id() const override { return QStringLiteral("Decode"); }
    QString name() const override { return tr("Decode"); }
    TransformCategory category() const override { return TransformCategory::Format; }
    bool isAdvanced() const override { return true; }
    bool isInPlace() const override { return true; }
    bool keepsDrilldown() const override { return false; }
    int minimumInputs() const override { return 1; }
    int maximumInputs() const override { return 1; }
    bool hasMinimumOptions() const override { return false; }
    QString description() const override;
    TABRELLE_TRANSFORM_CLONE(TransformDecode)
    void createParameters(const QList<Node *> &inputs, bool useDefaults) override;
    Dataset process(const QList<Node *> &inputs, bool &failed) override;
};
