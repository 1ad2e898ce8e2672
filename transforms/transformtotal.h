#pragma once

#include "transforms/transform.h"

// Adds a total row, a total column, or both.
class TransformTotal : public Transform
{
    Q_OBJECT
public:
    int type() const override { return 67; }
    QString id() const override { return QStringLiteral("Total"); }
    QString name() const override { return tr("Total"); }
    TransformCategory category() const override { return TransformCategory::Analysis; }
    bool isAdvanced() const override { return true; }
    bool isInPlace() const override { return false; }
    bool keepsDrilldown() const override { return false; }
    int minimumInputs() const override { return 1; }
    int maximumInputs() const override { return 1; }
    QString description() const override
    {
        return tr("Add a total row at the bottom, a total column at the right, or both, with a sum, mean, "
                  "count, minimum or maximum.");
    }
    bool hasMinimumOptions() const override { return false; }
    TABRELLE_TRANSFORM_CLONE(TransformTotal)
    void createParameters(const QList<Node *> &inputs, bool useDefaults) override;
    Dataset process(const QList<Node *> &inputs, bool &failed) override;
};
