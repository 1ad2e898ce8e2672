#pragma once

#include "transforms/transform.h"

// Creates a column from a template filled with each row's values.
class TransformSubstitute : public Transform
{
    Q_OBJECT
public:
    int type() const override { return 64; }
    QString id() const override { return QStringLiteral("Substitute"); }
    QString name() const override { return tr("Substitute"); }
    TransformCategory category() const override { return TransformCategory::Other; }
    bool isAdvanced() const override { return true; }
    bool isInPlace() const override { return false; }
    bool keepsDrilldown() const override { return false; }
    int minimumInputs() const override { return 1; }
    int maximumInputs() const override { return 1; }
    QString description() const override
    {
        return tr("Create a new column from a template in which $(column) references are replaced with each "
                  "row's values.");
    }
    bool hasMinimumOptions() const override { return false; }
    TABRELLE_TRANSFORM_CLONE(TransformSubstitute)
    void createParameters(const QList<Node *> &inputs, bool useDefaults) override;
    Dataset process(const QList<Node *> &inputs, bool &failed) override;
};
