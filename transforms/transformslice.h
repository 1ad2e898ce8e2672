#pragma once

#include "transforms/transform.h"

// Keeps or removes a range of rows counted from the start or the end.
class TransformSlice : public Transform
{
    Q_OBJECT
public:
    int type() const override { return 54; }
    QString id() const override { return QStringLiteral("Slice"); }
    QString name() const override { return tr("Slice"); }
    TransformCategory category() const override { return TransformCategory::Row; }
    bool isAdvanced() const override { return true; }
    bool isInPlace() const override { return false; }
    bool keepsDrilldown() const override { return false; }
    int minimumInputs() const override { return 1; }
    int maximumInputs() const override { return 1; }
    bool hasMinimumOptions() const override { return false; }
    QString description() const override;
    QSet<QString> keywords() const override;
    TABRELLE_TRANSFORM_CLONE(TransformSlice)
    void createParameters(const QList<Node *> &inputs, bool useDefaults) override;
    Dataset process(const QList<Node *> &inputs, bool &failed) override;
};
