#pragma once

#include "transforms/transform.h"

// Puts the columns in a chosen order.
class TransformReorder : public Transform
{
    Q_OBJECT
public:
    int type() const override { return 46; }
    QString id() const override { return QStringLiteral("Reorder"); }
    QString name() const override { return tr("Reorder Cols"); }
    TransformCategory category() const override { return TransformCategory::Column; }
    bool isAdvanced() const override { return false; }
    bool isInPlace() const override { return false; }
    bool keepsDrilldown() const override { return false; }
    int minimumInputs() const override { return 1; }
    int maximumInputs() const override { return 1; }
    bool hasMinimumOptions() const override { return false; }
    QString description() const override;
    QSet<QString> keywords() const override;
    TABRELLE_TRANSFORM_CLONE(TransformReorder)
    void createParameters(const QList<Node *> &inputs, bool useDefaults) override;
    Dataset process(const QList<Node *> &inputs, bool &failed) override;
};
