#pragma once

#include "transforms/transform.h"

// Adds a column numbering the rows, optionally restarting for each group.
class TransformRowNum : public Transform
{
    Q_OBJECT
public:
    int type() const override { return 50; }
    QString id() const override { return QStringLiteral("Row_Num"); }
    QString name() const override { return tr("Row Num"); }
    TransformCategory category() const override { return TransformCategory::Row; }
    bool isAdvanced() const override { return false; }
    bool isInPlace() const override { return false; }
    bool keepsDrilldown() const override { return false; }
    int minimumInputs() const override { return 1; }
    int maximumInputs() const override { return 1; }
    bool hasMinimumOptions() const override { return false; }
    QString description() const override;
    QSet<QString> keywords() const override;
    TABRELLE_TRANSFORM_CLONE(TransformRowNum)
    void createParameters(const QList<Node *> &inputs, bool useDefaults) override;
    Dataset process(const QList<Node *> &inputs, bool &failed) override;
};
