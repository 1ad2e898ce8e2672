#pragma once

#include "transforms/transform.h"

// Finds and replaces text with a list of terms applied in order. Documents naming the retired "Replace" id
// open as this one.
class TransformReplaceMulti : public Transform
{
    Q_OBJECT
public:
    int type() const override { return 48; }
    QString id() const override { return QStringLiteral("Replace_Multi"); }
    QString name() const override { return tr("Replace"); }
    TransformCategory category() const override { return TransformCategory::Format; }
    bool isAdvanced() const override { return false; }
    bool isInPlace() const override { return true; }
    bool keepsDrilldown() const override { return false; }
    int minimumInputs() const override { return 1; }
    int maximumInputs() const override { return 1; }
    bool hasMinimumOptions() const override { return false; }
    QString description() const override;
    TABRELLE_TRANSFORM_CLONE(TransformReplaceMulti)
    void createParameters(const QList<Node *> &inputs, bool useDefaults) override;
    Dataset process(const QList<Node *> &inputs, bool &failed) override;
};
