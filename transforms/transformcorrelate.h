#pragma once

#include "transforms/transform.h"

// Correlates columns of numbers pairwise, as a matrix or a list of pairs.
class TransformCorrelate : public Transform
{
    Q_OBJECT
public:
    int type() const override { return 10; }
    QString id() const override { return QStringLiteral("Correlate"); }
    QString name() const override { return tr("Correlate"); }
    TransformCategory category() const override { return TransformCategory::Analysis; }
    bool isAdvanced() const override { return true; }
    bool isInPlace() const override { return false; }
    bool keepsDrilldown() const override { return false; }
    int minimumInputs() const override { return 1; }
    int maximumInputs() const override { return 1; }
    QString description() const override
    {
        return tr(
            "Measure how strongly columns of numbers move together, by Pearson or Spearman correlation.");
    }
    bool hasMinimumOptions() const override { return false; }
    TABRELLE_TRANSFORM_CLONE(TransformCorrelate)
    void createParameters(const QList<Node *> &inputs, bool useDefaults) override;
    Dataset process(const QList<Node *> &inputs, bool &failed) override;
};
