#pragma once

#include "transforms/transform.h"

// Descriptive statistics of columns of numbers, overall or per group.
class TransformStats : public Transform
{
    Q_OBJECT
public:
    int type() const override { return 63; }
    QString id() const override { return QStringLiteral("Stats"); }
    QString name() const override { return tr("Stats"); }
    TransformCategory category() const override { return TransformCategory::Analysis; }
    bool isAdvanced() const override { return true; }
    bool isInPlace() const override { return false; }
    bool keepsDrilldown() const override { return false; }
    int minimumInputs() const override { return 1; }
    int maximumInputs() const override { return 1; }
    QString description() const override
    {
        return tr("Describe columns of numbers: count, sum, mean, standard deviation, minimum, quartiles and "
                  "maximum, overall or by group.");
    }
    bool hasMinimumOptions() const override { return false; }
    QList<QPair<QString, bool>> parameterStates() const override;
    TABRELLE_TRANSFORM_CLONE(TransformStats)
    void createParameters(const QList<Node *> &inputs, bool useDefaults) override;
    Dataset process(const QList<Node *> &inputs, bool &failed) override;
};
