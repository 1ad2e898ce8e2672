#pragma once

#include "transforms/transform.h"

// Builds a cross table of aggregated values by row keys and column keys.
class TransformPivot : public Transform
{
    Q_OBJECT
public:
    int type() const override { return 40; }
    QString id() const override { return QStringLiteral("Pivot"); }
    QString name() const override { return tr("Pivot"); }
    TransformCategory category() const override { return TransformCategory::Analysis; }
    bool isAdvanced() const override { return true; }
    bool isInPlace() const override { return false; }
    bool keepsDrilldown() const override { return true; }
    int minimumInputs() const override { return 1; }
    int maximumInputs() const override { return 1; }
    QString description() const override
    {
        return tr("Summarise a column by the values of row keys and column keys, in a cross table.");
    }
    bool hasMinimumOptions() const override { return false; }
    QList<QPair<QString, bool>> parameterStates() const override;
    void setUpstream(const QList<Node *> &nodes) override;
    TABRELLE_TRANSFORM_CLONE(TransformPivot)
    void createParameters(const QList<Node *> &inputs, bool useDefaults) override;
    Dataset process(const QList<Node *> &inputs, bool &failed) override;
};
