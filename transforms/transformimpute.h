#pragma once

#include "transforms/transform.h"

// Fills missing values from the other values of the column or group.
class TransformImpute : public Transform
{
    Q_OBJECT
public:
    int type() const override { return 24; }
    QString id() const override { return QStringLiteral("Impute"); }
    QString name() const override { return tr("Impute"); }
    TransformCategory category() const override { return TransformCategory::Other; }
    bool isAdvanced() const override { return true; }
    bool isInPlace() const override { return true; }
    bool keepsDrilldown() const override { return false; }
    int minimumInputs() const override { return 1; }
    int maximumInputs() const override { return 1; }
    QString description() const override
    {
        return tr("Fill missing values with the mean, median, most common value, minimum, maximum, a fixed "
                  "value, or by interpolation, optionally within groups.");
    }
    bool hasMinimumOptions() const override { return false; }
    bool hidesDisabledParameters() const override { return true; }
    QList<QPair<QString, bool>> parameterStates() const override;
    TABRELLE_TRANSFORM_CLONE(TransformImpute)
    void createParameters(const QList<Node *> &inputs, bool useDefaults) override;
    Dataset process(const QList<Node *> &inputs, bool &failed) override;
};
