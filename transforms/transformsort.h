#pragma once

#include "transforms/transform.h"

// Sorts the rows by one or more columns, numbers as numbers and dates as dates.
class TransformSort : public Transform
{
    Q_OBJECT
public:
    int type() const override { return 56; }
    QString id() const override { return QStringLiteral("Sort"); }
    QString name() const override { return tr("Sort"); }
    TransformCategory category() const override { return TransformCategory::Row; }
    bool isAdvanced() const override { return false; }
    bool isInPlace() const override { return false; }
    bool keepsDrilldown() const override { return false; }
    int minimumInputs() const override { return 1; }
    int maximumInputs() const override { return 1; }
    bool hasMinimumOptions() const override { return true; }
    QString description() const override;
    QSet<QString> keywords() const override;
    TABRELLE_TRANSFORM_CLONE(TransformSort)
    void createParameters(const QList<Node *> &inputs, bool useDefaults) override;
    Dataset process(const QList<Node *> &inputs, bool &failed) override;
};
