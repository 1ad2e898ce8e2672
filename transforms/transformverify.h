#pragma once

#include "transforms/transform.h"

// Checks a dataset against table and column rules and marks the values that fail.
class TransformVerify : public Transform
{
    Q_OBJECT
public:
    int type() const override { return 74; }
    QString id() const override { return QStringLiteral("Verify"); }
    QString name() const override { return tr("Verify"); }
    TransformCategory category() const override { return TransformCategory::Other; }
    bool isAdvanced() const override { return true; }
    bool isInPlace() const override { return false; }
    bool keepsDrilldown() const override { return false; }
    // The marks this transform makes are its output.
    bool keepsVerifyResults() const override { return true; }
    int minimumInputs() const override { return 1; }
    int maximumInputs() const override { return 1; }
    QString description() const override
    {
        return tr("Check the dataset against rules for the whole table and for each column, and mark the "
                  "values that fail.");
    }
    // True once any rule is on (severity other than None).
    bool hasMinimumOptions() const override;
    TABRELLE_TRANSFORM_CLONE(TransformVerify)
    void createParameters(const QList<Node *> &inputs, bool useDefaults) override;
    Dataset process(const QList<Node *> &inputs, bool &failed) override;
};
