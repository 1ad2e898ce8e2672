#pragma once

#include "transforms/transform.h"

// Appends the rows of one or more datasets, lining their columns up by header or by position.
class TransformStack : public Transform
{
    Q_OBJECT
public:
    int type() const override { return 61; }
    QString id() const override { return QStringLiteral("Stack"); }
    QString name() const override { return tr("Stack"); }
    TransformCategory category() const override { return TransformCategory::Merge; }
    bool isAdvanced() const override { return false; }
    bool isInPlace() const override { return false; }
    bool keepsDrilldown() const override { return false; }
    int minimumInputs() const override { return 1; }
    int maximumInputs() const override { return NoLimit; }
    bool hasMinimumOptions() const override { return false; }
    QString description() const override;
    QSet<QString> keywords() const override;
    QString imageName() const override { return QStringLiteral("stack.png"); }
    TABRELLE_TRANSFORM_CLONE(TransformStack)
    void createParameters(const QList<Node *> &inputs, bool useDefaults) override;
    bool reorderInputs(QList<Node *> &inputs) override;
    Dataset process(const QList<Node *> &inputs, bool &failed) override;
};
