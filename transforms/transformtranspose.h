#pragma once

#include "transforms/transform.h"

// Swaps rows and columns.
class TransformTranspose : public Transform
{
    Q_OBJECT
public:
    int type() const override { return 68; }
    QString id() const override { return QStringLiteral("Transpose"); }
    QString name() const override { return tr("Transpose"); }
    TransformCategory category() const override { return TransformCategory::Other; }
    bool isAdvanced() const override { return false; }
    bool isInPlace() const override { return false; }
    bool keepsDrilldown() const override { return false; }
    int minimumInputs() const override { return 1; }
    int maximumInputs() const override { return 1; }
    QString description() const override
    {
        return tr("Swap rows and columns, so that each column becomes a row.");
    }
    bool hasMinimumOptions() const override { return false; }
    TABRELLE_TRANSFORM_CLONE(TransformTranspose)
    void createParameters(const QList<Node *> &inputs, bool useDefaults) override;
    Dataset process(const QList<Node *> &inputs, bool &failed) override;
};
