#pragma once

#include "transforms/transform.h"

// Repeats rows a fixed number of times or as a column says.
class TransformClone : public Transform
{
    Q_OBJECT
public:
    int type() const override { return 4; }
    QString id() const override { return QStringLiteral("Clone"); }
    QString name() const override { return tr("Clone"); }
    TransformCategory category() const override { return TransformCategory::Other; }
    bool isAdvanced() const override { return true; }
    bool isInPlace() const override { return false; }
    bool keepsDrilldown() const override { return false; }
    int minimumInputs() const override { return 1; }
    int maximumInputs() const override { return 1; }
    QString description() const override
    {
        return tr("Repeat each row a fixed number of times, or as many times as a column says.");
    }
    bool hasMinimumOptions() const override { return false; }
    bool hidesDisabledParameters() const override { return true; }
    QList<QPair<QString, bool>> parameterStates() const override;
    TABRELLE_TRANSFORM_CLONE(TransformClone)
    void createParameters(const QList<Node *> &inputs, bool useDefaults) override;
    Dataset process(const QList<Node *> &inputs, bool &failed) override;
};
