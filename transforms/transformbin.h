#pragma once

#include "transforms/transform.h"

// Counts the numbers of one column per range, for histograms.
class TransformBin : public Transform
{
    Q_OBJECT
public:
    int type() const override { return 0; }
    QString id() const override { return QStringLiteral("Bin"); }
    QString name() const override { return tr("Bin"); }
    TransformCategory category() const override { return TransformCategory::Analysis; }
    bool isAdvanced() const override { return true; }
    bool isInPlace() const override { return false; }
    bool keepsDrilldown() const override { return true; }
    int minimumInputs() const override { return 1; }
    int maximumInputs() const override { return 1; }
    QString description() const override
    {
        return tr("Count how many values of a column of numbers fall into each of a set of ranges, as for a "
                  "histogram.");
    }
    bool hasMinimumOptions() const override { return false; }
    bool hidesDisabledParameters() const override { return true; }
    QList<QPair<QString, bool>> parameterStates() const override;
    TABRELLE_TRANSFORM_CLONE(TransformBin)
    void createParameters(const QList<Node *> &inputs, bool useDefaults) override;
    Dataset process(const QList<Node *> &inputs, bool &failed) override;
};
