#pragma once

#include "transforms/transform.h"

// Removes the top rows whose key occurs in the bottom dataset (an anti-join).
class TransformSubtract : public Transform
{
    Q_OBJECT
public:
    int type() const override { return 65; }
    QString id() const override { return QStringLiteral("Subtract"); }
    QString name() const override { return tr("Subtract"); }
    TransformCategory category() const override { return TransformCategory::Merge; }
    bool isAdvanced() const override { return true; }
    bool isInPlace() const override { return false; }
    bool keepsDrilldown() const override { return false; }
    int minimumInputs() const override { return 2; }
    int maximumInputs() const override { return 2; }
    bool hasMinimumOptions() const override { return false; }
    QString description() const override;
    QSet<QString> keywords() const override;
    bool canExploreKeys() const override { return true; }
    QString topKeyColumnParameterName() const override { return QStringLiteral("Column_1"); }
    QString bottomKeyColumnParameterName() const override { return QStringLiteral("Column_2"); }
    QString caseSensitiveParameterName() const override { return QStringLiteral("Case_Sensitive"); }
    TABRELLE_TRANSFORM_CLONE(TransformSubtract)
    void createParameters(const QList<Node *> &inputs, bool useDefaults) override;
    bool reorderInputs(QList<Node *> &inputs) override;
    Dataset process(const QList<Node *> &inputs, bool &failed) override;
};
