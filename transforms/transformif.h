#pragma once

#include "transforms/transform.h"

// Adds a column whose value is the result of the first block of conditions that holds.
class TransformIf : public Transform
{
    Q_OBJECT
public:
    int type() const override { return 23; }
    QString id() const override { return QStringLiteral("If"); }
    QString name() const override { return tr("If"); }
    TransformCategory category() const override { return TransformCategory::Column; }
    bool isAdvanced() const override { return true; }
    bool isInPlace() const override { return false; }
    bool keepsDrilldown() const override { return false; }
    int minimumInputs() const override { return 1; }
    int maximumInputs() const override { return 1; }
    bool hasMinimumOptions() const override { return true; }
    QString description() const override;
    QSet<QString> keywords() const override;
    TABRELLE_TRANSFORM_CLONE(TransformIf)
    void createParameters(const QList<Node *> &inputs, bool useDefaults) override;
    Dataset process(const QList<Node *> &inputs, bool &failed) override;
};
