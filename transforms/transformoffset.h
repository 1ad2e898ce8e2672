#pragma once

#include "transforms/transform.h"

// Moves the values of columns up or down by a number of rows, in place.
class TransformOffset : public Transform
{
    Q_OBJECT
public:
    int type() const override { return 37; }
    QString id() const override { return QStringLiteral("Offset"); }
    QString name() const override { return tr("Offset"); }
    TransformCategory category() const override { return TransformCategory::Column; }
    bool isAdvanced() const override { return true; }
    bool isInPlace() const override { return true; }
    bool keepsDrilldown() const override { return false; }
    int minimumInputs() const override { return 1; }
    int maximumInputs() const override { return 1; }
    bool hasMinimumOptions() const override { return false; }
    QString description() const override;
    QSet<QString> keywords() const override;
    TABRELLE_TRANSFORM_CLONE(TransformOffset)
    void createParameters(const QList<Node *> &inputs, bool useDefaults) override;
    Dataset process(const QList<Node *> &inputs, bool &failed) override;
};
