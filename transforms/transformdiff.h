#pragma once

#include "transforms/transform.h"

// Shows the rows removed, added or changed between an old (top) and a new (bottom) dataset.
class TransformDiff : public Transform
{
    Q_OBJECT
public:
    int type() const override { return 16; }
    QString id() const override { return QStringLiteral("Difference"); }
    QString name() const override { return tr("Difference"); }
    TransformCategory category() const override { return TransformCategory::Analysis; }
    bool isAdvanced() const override { return true; }
    bool isInPlace() const override { return false; }
    bool keepsDrilldown() const override { return false; }
    int minimumInputs() const override { return 2; }
    int maximumInputs() const override { return 2; }
    QString description() const override
    {
        return tr("Compare two datasets and show the rows that are only in one of them, or that changed.");
    }
    bool hasMinimumOptions() const override { return false; }
    bool hidesDisabledParameters() const override { return true; }
    QList<QPair<QString, bool>> parameterStates() const override;
    bool reorderInputs(QList<Node *> &inputs) override;
    TABRELLE_TRANSFORM_CLONE(TransformDiff)
    void createParameters(const QList<Node *> &inputs, bool useDefaults) override;
    Dataset process(const QList<Node *> &inputs, bool &failed) override;
};
