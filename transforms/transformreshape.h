#pragma once

#include "transforms/transform.h"

// Re-flows all the cells into a new number of columns or into rows ended by empty cells.
class TransformReshape : public Transform
{
    Q_OBJECT
public:
    int type() const override { return 49; }
    QString id() const override { return QStringLiteral("Reshape"); }
    QString name() const override { return tr("Reshape"); }
    TransformCategory category() const override { return TransformCategory::Column; }
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
    TABRELLE_TRANSFORM_CLONE(TransformReshape)
    void createParameters(const QList<Node *> &inputs, bool useDefaults) override;
    Dataset process(const QList<Node *> &inputs, bool &failed) override;
};
