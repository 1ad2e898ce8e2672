#pragma once

#include "transforms/transform.h"

// Rescales the numbers of each selected column: to a range, to z-scores, by the maximum, as fractions of the
// total or by a factor.
class TransformScale : public Transform
{
    Q_OBJECT
public:
    int type() const override { return 52; }
    QString id() const override { return QStringLiteral("Scale"); }
    QString name() const override { return tr("Scale"); }
    TransformCategory category() const override { return TransformCategory::Format; }
    bool isAdvanced() const override { return true; }
    bool isInPlace() const override { return true; }
    bool keepsDrilldown() const override { return false; }
    int minimumInputs() const override { return 1; }
    int maximumInputs() const override { return 1; }
    bool hasMinimumOptions() const override { return false; }
    bool hidesDisabledParameters() const override { return true; }
    QList<QPair<QString, bool>> parameterStates() const override;
    QString description() const override;
    TABRELLE_TRANSFORM_CLONE(TransformScale)
    void createParameters(const QList<Node *> &inputs, bool useDefaults) override;
    Dataset process(const QList<Node *> &inputs, bool &failed) override;
};
