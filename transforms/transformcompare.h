#pragma once

#include "transforms/transform.h"

// Compares two columns row by row and appends a column with the outcome.
class TransformCompare : public Transform
{
    Q_OBJECT
public:
    int type() const override { return 6; }
    QString id() const override { return QStringLiteral("Compare_Cols"); }
    QString name() const override { return tr("Compare Cols"); }
    TransformCategory category() const override { return TransformCategory::Column; }
    bool isAdvanced() const override { return true; }
    bool isInPlace() const override { return false; }
    bool keepsDrilldown() const override { return false; }
    int minimumInputs() const override { return 1; }
    int maximumInputs() const override { return 1; }
    bool hasMinimumOptions() const override { return true; }
    QString description() const override;
    QSet<QString> keywords() const override;
    TABRELLE_TRANSFORM_CLONE(TransformCompare)
    void createParameters(const QList<Node *> &inputs, bool useDefaults) override;
    Dataset process(const QList<Node *> &inputs, bool &failed) override;
};
