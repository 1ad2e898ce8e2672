#pragma once

#include "transforms/transform.h"

// Removes or keeps a number of characters at the start or end of values.
class TransformChop : public Transform
{
    Q_OBJECT
public:
    int type() const override { return 3; }
    QString id() const override { return QStringLiteral("Chop"); }
    QString name() const override { return tr("Chop"); }
    TransformCategory category() const override { return TransformCategory::Format; }
    bool isAdvanced() const override { return false; }
    bool isInPlace() const override { return true; }
    bool keepsDrilldown() const override { return false; }
    int minimumInputs() const override { return 1; }
    int maximumInputs() const override { return 1; }
    bool hasMinimumOptions() const override { return false; }
    QString description() const override;
    TABRELLE_TRANSFORM_CLONE(TransformChop)
    void createParameters(const QList<Node *> &inputs, bool useDefaults) override;
    Dataset process(const QList<Node *> &inputs, bool &failed) override;
};
