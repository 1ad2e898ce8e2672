#pragma once

#include "transforms/transform.h"

// Writes numbers with chosen places, notation, separators and locale.
class TransformNumberFormat : public Transform
{
    Q_OBJECT
public:
    int type() const override { return 36; }
    QString id() const override { return QStringLiteral("Num_Format"); }
    QString name() const override { return tr("Num Format"); }
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
    TABRELLE_TRANSFORM_CLONE(TransformNumberFormat)
    void createParameters(const QList<Node *> &inputs, bool useDefaults) override;
    Dataset process(const QList<Node *> &inputs, bool &failed) override;
};
