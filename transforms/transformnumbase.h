#pragma once

#include "transforms/transform.h"

// Converts whole numbers between bases 2 to 36.
class TransformNumBase : public Transform
{
    Q_OBJECT
public:
    int type() const override { return 35; }
    QString id() const override { return QStringLiteral("Num_Base"); }
    QString name() const override { return tr("Num Base"); }
    TransformCategory category() const override { return TransformCategory::Format; }
    bool isAdvanced() const override { return true; }
    bool isInPlace() const override { return true; }
    bool keepsDrilldown() const override { return false; }
    int minimumInputs() const override { return 1; }
    int maximumInputs() const override { return 1; }
    bool hasMinimumOptions() const override { return false; }
    QString description() const override;
    TABRELLE_TRANSFORM_CLONE(TransformNumBase)
    void createParameters(const QList<Node *> &inputs, bool useDefaults) override;
    Dataset process(const QList<Node *> &inputs, bool &failed) override;
};
