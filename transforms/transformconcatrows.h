#pragma once

#include "transforms/transform.h"

// Joins groups of consecutive rows into one, for records that run over several rows.
class TransformConcatRows : public Transform
{
    Q_OBJECT
public:
    int type() const override { return 8; }
    QString id() const override { return QStringLiteral("Concat_Rows"); }
    QString name() const override { return tr("Concat Rows"); }
    TransformCategory category() const override { return TransformCategory::Row; }
    bool isAdvanced() const override { return true; }
    bool isInPlace() const override { return false; }
    bool keepsDrilldown() const override { return false; }
    int minimumInputs() const override { return 1; }
    int maximumInputs() const override { return 1; }
    bool hasMinimumOptions() const override { return false; }
    QString description() const override;
    QSet<QString> keywords() const override;
    bool hidesDisabledParameters() const override { return true; }
    QList<QPair<QString, bool>> parameterStates() const override;
    TABRELLE_TRANSFORM_CLONE(TransformConcatRows)
    void createParameters(const QList<Node *> &inputs, bool useDefaults) override;
    Dataset process(const QList<Node *> &inputs, bool &failed) override;
};
