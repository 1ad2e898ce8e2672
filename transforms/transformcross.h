#pragma once

#include "transforms/transform.h"

// Every combination of the rows of two or more datasets, the top input's rows changing slowest.
class TransformCross : public Transform
{
    Q_OBJECT
public:
    int type() const override { return 12; }
    QString id() const override { return QStringLiteral("Cross"); }
    QString name() const override { return tr("Cross"); }
    TransformCategory category() const override { return TransformCategory::Merge; }
    bool isAdvanced() const override { return true; }
    bool isInPlace() const override { return false; }
    bool keepsDrilldown() const override { return false; }
    int minimumInputs() const override { return 2; }
    int maximumInputs() const override { return NoLimit; }
    bool hasMinimumOptions() const override { return false; }
    QString description() const override;
    QSet<QString> keywords() const override;
    QString imageName() const override { return QStringLiteral("cross.png"); }
    TABRELLE_TRANSFORM_CLONE(TransformCross)
    bool reorderInputs(QList<Node *> &inputs) override;
    Dataset process(const QList<Node *> &inputs, bool &failed) override;
};
