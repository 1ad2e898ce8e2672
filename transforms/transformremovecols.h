#pragma once

#include "transforms/transform.h"

// Keeps the checked columns and removes the others.
class TransformRemoveCols : public Transform
{
    Q_OBJECT
public:
    int type() const override { return 43; }
    QString id() const override { return QStringLiteral("Remove"); }
    QString name() const override { return tr("Remove Cols"); }
    TransformCategory category() const override { return TransformCategory::Column; }
    bool isAdvanced() const override { return false; }
    bool isInPlace() const override { return false; }
    bool keepsDrilldown() const override { return false; }
    int minimumInputs() const override { return 1; }
    int maximumInputs() const override { return 1; }
    bool hasMinimumOptions() const override { return false; }
    QString description() const override;
    QSet<QString> keywords() const override;
    // A new upstream node met with an empty list checks every column.
    void setUpstream(const QList<Node *> &nodes) override;
    TABRELLE_TRANSFORM_CLONE(TransformRemoveCols)
    void createParameters(const QList<Node *> &inputs, bool useDefaults) override;
    Dataset process(const QList<Node *> &inputs, bool &failed) override;
};
