#pragma once

#include "transforms/transform.h"

// Pads values to a fixed length with a character.
class TransformPad : public Transform
{
    Q_OBJECT
public:
    int type() const override { return 39; }
    QString id() const override { return QStringLiteral("Pad"); }
    QString name() const override { return tr("Pad"); }
    TransformCategory category() const override { return TransformCategory::Format; }
    bool isAdvanced() const override { return false; }
    bool isInPlace() const override { return true; }
    bool keepsDrilldown() const override { return false; }
    int minimumInputs() const override { return 1; }
    int maximumInputs() const override { return 1; }
    bool hasMinimumOptions() const override { return false; }
    QString description() const override;
    TABRELLE_TRANSFORM_CLONE(TransformPad)
    void createParameters(const QList<Node *> &inputs, bool useDefaults) override;
    Dataset process(const QList<Node *> &inputs, bool &failed) override;
};
