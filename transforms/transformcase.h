#pragma once

#include "transforms/transform.h"

// Changes the case of text in the selected columns, so that values group and join alike.
class TransformCase : public Transform
{
    Q_OBJECT
public:
    int type() const override { return 2; }
    QString id() const override { return QStringLiteral("Case"); }
    QString name() const override { return tr("Case"); }
    TransformCategory category() const override { return TransformCategory::Format; }
    bool isAdvanced() const override { return false; }
    bool isInPlace() const override { return true; }
    bool keepsDrilldown() const override { return false; }
    int minimumInputs() const override { return 1; }
    int maximumInputs() const override { return 1; }
    bool hasMinimumOptions() const override { return false; }
    QString description() const override;
    TABRELLE_TRANSFORM_CLONE(TransformCase)
    void createParameters(const QList<Node *> &inputs, bool useDefaults) override;
    Dataset process(const QList<Node *> &inputs, bool &failed) override;
};
