#pragma once

#include "transforms/transform.h"

// Fills empty cells from the value above or below, or with a fixed value.
class TransformFillDown : public Transform
{
    Q_OBJECT
public:
    int type() const override { return 18; }
    QString id() const override { return QStringLiteral("Fill"); }
    QString name() const override { return tr("Fill"); }
    TransformCategory category() const override { return TransformCategory::Format; }
    bool isAdvanced() const override { return false; }
    bool isInPlace() const override { return true; }
    bool keepsDrilldown() const override { return false; }
    int minimumInputs() const override { return 1; }
    int maximumInputs() const override { return 1; }
    bool hasMinimumOptions() const override { return false; }
    bool hidesDisabledParameters() const override { return true; }
    QList<QPair<QString, bool>> parameterStates() const override;
    QString description() const override;
    TABRELLE_TRANSFORM_CLONE(TransformFillDown)
    void createParameters(const QList<Node *> &inputs, bool useDefaults) override;
    Dataset process(const QList<Node *> &inputs, bool &failed) override;
};
