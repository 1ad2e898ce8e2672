#pragma once

#include "transforms/transform.h"

// Blanks values that repeat the one above, the reverse of Fill.
class TransformUnfill : public Transform
{
    Q_OBJECT
public:
    int type() const override { return 70; }
    QString id() const override { return QStringLiteral("Unfill"); }
    QString name() const override { return tr("Unfill"); }
    TransformCategory category() const override { return TransformCategory::Format; }
    bool isAdvanced() const override { return true; }
    bool isInPlace() const override { return true; }
    bool keepsDrilldown() const override { return false; }
    int minimumInputs() const override { return 1; }
    int maximumInputs() const override { return 1; }
    bool hasMinimumOptions() const override { return false; }
    QString description() const override;
    TABRELLE_TRANSFORM_CLONE(TransformUnfill)
    void createParameters(const QList<Node *> &inputs, bool useDefaults) override;
    Dataset process(const QList<Node *> &inputs, bool &failed) override;
};
