#pragma once

#include "transforms/transform.h"

// Adds a column of random or name-based UUIDs.
class TransformUUID : public Transform
{
    Q_OBJECT
public:
    int type() const override { return 73; }
    QString id() const override { return QStringLiteral("UUID"); }
    QString name() const override { return tr("UUID"); }
    TransformCategory category() const override { return TransformCategory::Other; }
    bool isAdvanced() const override { return true; }
    bool isInPlace() const override { return false; }
    bool keepsDrilldown() const override { return false; }
    int minimumInputs() const override { return 1; }
    int maximumInputs() const override { return 1; }
    QString description() const override
    {
        return tr("Add a column of universally unique identifiers (UUIDs), random or derived from a column's "
                  "values.");
    }
    bool hasMinimumOptions() const override { return false; }
    bool hidesDisabledParameters() const override { return true; }
    QList<QPair<QString, bool>> parameterStates() const override;
    TABRELLE_TRANSFORM_CLONE(TransformUUID)
    void createParameters(const QList<Node *> &inputs, bool useDefaults) override;
    Dataset process(const QList<Node *> &inputs, bool &failed) override;
};
