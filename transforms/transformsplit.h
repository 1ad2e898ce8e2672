#pragma once

#include "transforms/transform.h"

// Splits a column into several new columns at a text or regular expression delimiter.
class TransformSplit : public Transform
{
    Q_OBJECT
public:
    int type() const override { return 57; }
    QString id() const override { return QStringLiteral("Split"); }
    QString name() const override { return tr("Split Col"); }
    TransformCategory category() const override { return TransformCategory::Column; }
    bool isAdvanced() const override { return false; }
    bool isInPlace() const override { return false; }
    bool keepsDrilldown() const override { return false; }
    int minimumInputs() const override { return 1; }
    int maximumInputs() const override { return 1; }
    bool hasMinimumOptions() const override { return false; }
    QString description() const override;
    QSet<QString> keywords() const override;
    TABRELLE_TRANSFORM_CLONE(TransformSplit)
    void createParameters(const QList<Node *> &inputs, bool useDefaults) override;
    Dataset process(const QList<Node *> &inputs, bool &failed) override;
};
