#pragma once

#include "transforms/transform.h"

// Adds to each top row the values of the first bottom row with the same lookup value.
class TransformLookup : public Transform
{
    Q_OBJECT
public:
    int type() const override { return 30; }
    QString id() const override { return QStringLiteral("Lookup"); }
    QString name() const override { return tr("Lookup"); }
    TransformCategory category() const override { return TransformCategory::Merge; }
    bool isAdvanced() const override { return false; }
    bool isInPlace() const override { return false; }
    bool keepsDrilldown() const override { return false; }
    int minimumInputs() const override { return 2; }
    int maximumInputs() const override { return 2; }
    bool hasMinimumOptions() const override { return false; }
    QString description() const override;
    QSet<QString> keywords() const override;
    bool canExploreKeys() const override { return true; }
    QString topKeyColumnParameterName() const override { return QStringLiteral("Top_Lookup_Column"); }
    QString bottomKeyColumnParameterName() const override { return QStringLiteral("Bottom_Lookup_Column"); }
    QString caseSensitiveParameterName() const override { return QStringLiteral("Case_Sensitive"); }
    TABRELLE_TRANSFORM_CLONE(TransformLookup)
    void createParameters(const QList<Node *> &inputs, bool useDefaults) override;
    void setUpstream(const QList<Node *> &nodes) override;
    bool reorderInputs(QList<Node *> &inputs) override;
    Dataset process(const QList<Node *> &inputs, bool &failed) override;
};
