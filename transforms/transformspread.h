#pragma once

#include "transforms/transform.h"

// Turns the values of a key column into new columns, filled from a value column (long to wide).
class TransformSpread : public Transform
{
    Q_OBJECT
public:
    int type() const override { return 60; }
    QString id() const override { return QStringLiteral("Spread"); }
    QString name() const override { return tr("Spread"); }
    TransformCategory category() const override { return TransformCategory::Column; }
    bool isAdvanced() const override { return true; }
    bool isInPlace() const override { return false; }
    bool keepsDrilldown() const override { return false; }
    int minimumInputs() const override { return 1; }
    int maximumInputs() const override { return 1; }
    bool hasMinimumOptions() const override { return false; }
    QString description() const override;
    QSet<QString> keywords() const override;
    // The three column options follow the single input; a new node empties the row columns.
    void setUpstream(const QList<Node *> &nodes) override;
    TABRELLE_TRANSFORM_CLONE(TransformSpread)
    void createParameters(const QList<Node *> &inputs, bool useDefaults) override;
    Dataset process(const QList<Node *> &inputs, bool &failed) override;
};
