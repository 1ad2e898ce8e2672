#pragma once

#include "transforms/transform.h"

// Adds a column computed by the user's script, called once for each row.
class TransformJavascript : public Transform
{
    Q_OBJECT
public:
    int type() const override { return 28; }
    QString id() const override { return QStringLiteral("Javascript"); }
    QString name() const override { return tr("Javascript"); }
    TransformCategory category() const override { return TransformCategory::Other; }
    bool isAdvanced() const override { return true; }
    bool isInPlace() const override { return false; }
    bool keepsDrilldown() const override { return false; }
    int minimumInputs() const override { return 1; }
    int maximumInputs() const override { return 1; }
    bool hasMinimumOptions() const override { return false; }
    QString description() const override;
    TABRELLE_TRANSFORM_CLONE(TransformJavascript)
    void createParameters(const QList<Node *> &inputs, bool useDefaults) override;
    Dataset process(const QList<Node *> &inputs, bool &failed) override;
};
