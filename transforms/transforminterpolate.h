#pragma once

#include "transforms/transform.h"

// Estimates values at the top dataset's X values from known points in the bottom dataset.
class TransformInterpolate : public Transform
{
    Q_OBJECT
public:
    int type() const override { return 27; }
    QString id() const override { return QStringLiteral("Interpolate"); }
    QString name() const override { return tr("Interpolate"); }
    TransformCategory category() const override { return TransformCategory::Merge; }
    bool isAdvanced() const override { return true; }
    bool isInPlace() const override { return false; }
    bool keepsDrilldown() const override { return false; }
    int minimumInputs() const override { return 2; }
    int maximumInputs() const override { return 2; }
    bool hasMinimumOptions() const override { return false; }
    QString description() const override;
    QSet<QString> keywords() const override;
    QList<QPair<QString, bool>> parameterStates() const override;
    TABRELLE_TRANSFORM_CLONE(TransformInterpolate)
    void createParameters(const QList<Node *> &inputs, bool useDefaults) override;
    void setUpstream(const QList<Node *> &nodes) override;
    bool reorderInputs(QList<Node *> &inputs) override;
    Dataset process(const QList<Node *> &inputs, bool &failed) override;
};
