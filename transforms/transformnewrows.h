#pragma once

#include "transforms/transform.h"

// Adds rows, empty or holding given values, at the start or the end.
class TransformNewRows : public Transform
{
    Q_OBJECT
public:
    int type() const override { return 33; }
    QString id() const override { return QStringLiteral("New_Rows"); }
    QString name() const override { return tr("New Rows"); }
    TransformCategory category() const override { return TransformCategory::Row; }
    bool isAdvanced() const override { return true; }
    bool isInPlace() const override { return false; }
    bool keepsDrilldown() const override { return false; }
    int minimumInputs() const override { return 1; }
    int maximumInputs() const override { return 1; }
    bool hasMinimumOptions() const override { return false; }
    QString description() const override;
    QSet<QString> keywords() const override;
    QList<QPair<QString, bool>> parameterStates() const override;
    TABRELLE_TRANSFORM_CLONE(TransformNewRows)
    void createParameters(const QList<Node *> &inputs, bool useDefaults) override;
    Dataset process(const QList<Node *> &inputs, bool &failed) override;
};
