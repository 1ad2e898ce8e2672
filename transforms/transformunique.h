#pragma once

#include "transforms/transform.h"

// One row per unique combination of key columns, with a rule for each other column.
class TransformUnique : public Transform
{
    Q_OBJECT
public:
    int type() const override { return 71; }
    QString id() const override { return QStringLiteral("Unique"); }
    QString name() const override { return tr("Unique"); }
    TransformCategory category() const override { return TransformCategory::Row; }
    bool isAdvanced() const override { return true; }
    bool isInPlace() const override { return false; }
    bool keepsDrilldown() const override { return true; }
    int minimumInputs() const override { return 1; }
    int maximumInputs() const override { return 1; }
    bool hasMinimumOptions() const override;
    QString description() const override;
    QSet<QString> keywords() const override;
    TABRELLE_TRANSFORM_CLONE(TransformUnique)
    void createParameters(const QList<Node *> &inputs, bool useDefaults) override;
    Dataset process(const QList<Node *> &inputs, bool &failed) override;
};
