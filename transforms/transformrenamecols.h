#pragma once

#include "transforms/transform.h"

// Gives columns new header texts.
class TransformRenameCols : public Transform
{
    Q_OBJECT
public:
    int type() const override { return 45; }
    QString id() const override { return QStringLiteral("Rename_Cols"); }
    QString name() const override { return tr("Rename Cols"); }
    TransformCategory category() const override { return TransformCategory::Column; }
    bool isAdvanced() const override { return false; }
    bool isInPlace() const override { return false; }
    bool keepsDrilldown() const override { return false; }
    int minimumInputs() const override { return 1; }
    int maximumInputs() const override { return 1; }
    bool hasMinimumOptions() const override { return false; }
    QString description() const override;
    QSet<QString> keywords() const override;
    TABRELLE_TRANSFORM_CLONE(TransformRenameCols)
    void createParameters(const QList<Node *> &inputs, bool useDefaults) override;
    Dataset process(const QList<Node *> &inputs, bool &failed) override;
};
