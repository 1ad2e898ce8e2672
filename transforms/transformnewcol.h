#pragma once

#include "transforms/transform.h"

// Adds a column holding a fixed value or one built from other columns.
class TransformNewCol : public Transform
{
    Q_OBJECT
public:
    int type() const override { return 32; }
    QString id() const override { return QStringLiteral("New_Col"); }
    QString name() const override { return tr("New Col"); }
    TransformCategory category() const override { return TransformCategory::Column; }
    bool isAdvanced() const override { return false; }
    bool isInPlace() const override { return false; }
    bool keepsDrilldown() const override { return false; }
    int minimumInputs() const override { return 1; }
    int maximumInputs() const override { return 1; }
    bool hasMinimumOptions() const override { return false; }
    QString description() const override;
    QSet<QString> keywords() const override;
    TABRELLE_TRANSFORM_CLONE(TransformNewCol)
    void createParameters(const QList<Node *> &inputs, bool useDefaults) override;
    Dataset process(const QList<Node *> &inputs, bool &failed) override;
};
