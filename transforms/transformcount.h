#pragma once

#include "transforms/transform.h"

// Counts rows per distinct key, with optional sums; each result row drills down.
class TransformCount : public Transform
{
    Q_OBJECT
public:
    int type() const override { return 11; }
    QString id() const override { return QStringLiteral("Count"); }
    QString name() const override { return tr("Count"); }
    TransformCategory category() const override { return TransformCategory::Analysis; }
    bool isAdvanced() const override { return false; }
    bool isInPlace() const override { return false; }
    bool keepsDrilldown() const override { return true; }
    int minimumInputs() const override { return 1; }
    int maximumInputs() const override { return 1; }
    QString description() const override
    {
        return tr("Count the rows for each distinct value, or combination of values, of the selected "
                  "columns, with optional sums.");
    }
    bool hasMinimumOptions() const override { return false; }
    TABRELLE_TRANSFORM_CLONE(TransformCount)
    void createParameters(const QList<Node *> &inputs, bool useDefaults) override;
    Dataset process(const QList<Node *> &inputs, bool &failed) override;
};
