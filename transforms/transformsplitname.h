#pragma once

#include "transforms/transform.h"

// Splits people's names into title, first, middle and last name and suffix.
class TransformSplitName : public Transform
{
    Q_OBJECT
public:
    int type() const override { return 58; }
    QString id() const override { return QStringLiteral("Split_Name"); }
    QString name() const override { return tr("Split Name"); }
    TransformCategory category() const override { return TransformCategory::Column; }
    bool isAdvanced() const override { return true; }
    bool isInPlace() const override { return false; }
    bool keepsDrilldown() const override { return false; }
    int minimumInputs() const override { return 1; }
    int maximumInputs() const override { return 1; }
    bool hasMinimumOptions() const override { return false; }
    QString description() const override;
    QSet<QString> keywords() const override;
    TABRELLE_TRANSFORM_CLONE(TransformSplitName)
    void createParameters(const QList<Node *> &inputs, bool useDefaults) override;
    Dataset process(const QList<Node *> &inputs, bool &failed) override;
};
