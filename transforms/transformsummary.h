#pragma once

#include "transforms/transform.h"

// Profiles columns: one output column per selected column, one row per statistic.
class TransformSummary : public Transform
{
    Q_OBJECT
public:
    int type() const override { return 66; }
    QString id() const override { return QStringLiteral("Summary"); }
    QString name() const override { return tr("Summary"); }
    TransformCategory category() const override { return TransformCategory::Analysis; }
    bool isAdvanced() const override { return false; }
    bool isInPlace() const override { return false; }
    bool keepsDrilldown() const override { return false; }
    int minimumInputs() const override { return 1; }
    int maximumInputs() const override { return 1; }
    QString description() const override
    {
        return tr("Profile the selected columns: type, empty and unique counts, most common value, minimum, "
                  "maximum, lengths and whitespace.");
    }
    bool hasMinimumOptions() const override { return true; }
    TABRELLE_TRANSFORM_CLONE(TransformSummary)
    void createParameters(const QList<Node *> &inputs, bool useDefaults) override;
    Dataset process(const QList<Node *> &inputs, bool &failed) override;
};
