#pragma once

#include "transforms/transform.h"

// Finds numbers beyond computed limits and blanks, caps or replaces them.
class TransformOutliers : public Transform
{
    Q_OBJECT
public:
    int type() const override { return 38; }
    QString id() const override { return QStringLiteral("Outliers"); }
    QString name() const override { return tr("Outliers"); }
    TransformCategory category() const override { return TransformCategory::Other; }
    bool isAdvanced() const override { return true; }
    bool isInPlace() const override { return true; }
    bool keepsDrilldown() const override { return false; }
    int minimumInputs() const override { return 1; }
    int maximumInputs() const override { return 1; }
    QString description() const override
    {
        return tr("Find unusually high or low numbers and blank them, cap them at a limit, or replace them "
                  "with a text.");
    }
    bool hasMinimumOptions() const override { return false; }
    bool hidesDisabledParameters() const override { return true; }
    QList<QPair<QString, bool>> parameterStates() const override;
    TABRELLE_TRANSFORM_CLONE(TransformOutliers)
    void createParameters(const QList<Node *> &inputs, bool useDefaults) override;
    Dataset process(const QList<Node *> &inputs, bool &failed) override;
};
