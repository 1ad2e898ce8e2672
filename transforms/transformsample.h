#pragma once

#include "transforms/transform.h"

// Keeps a repeatable random sample of the rows, or every Nth row.
class TransformSample : public Transform
{
    Q_OBJECT
public:
    int type() const override { return 51; }
    QString id() const override { return QStringLiteral("Sample"); }
    QString name() const override { return tr("Sample"); }
    TransformCategory category() const override { return TransformCategory::Row; }
    bool isAdvanced() const override { return false; }
    bool isInPlace() const override { return false; }
    bool keepsDrilldown() const override { return false; }
    int minimumInputs() const override { return 1; }
    int maximumInputs() const override { return 1; }
    bool hasMinimumOptions() const override { return false; }
    QString description() const override;
    QSet<QString> keywords() const override;
    bool hidesDisabledParameters() const override { return true; }
    QList<QPair<QString, bool>> parameterStates() const override;
    TABRELLE_TRANSFORM_CLONE(TransformSample)
    void createParameters(const QList<Node *> &inputs, bool useDefaults) override;
    Dataset process(const QList<Node *> &inputs, bool &failed) override;
};
