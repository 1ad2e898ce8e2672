#pragma once

#include "transforms/transform.h"

// Keeps only the wanted piece of each value: a regex match, delimited text, a number, digits, letters or an
// address.
class TransformExtract : public Transform
{
    Q_OBJECT
public:
    int type() const override { return 17; }
    QString id() const override { return QStringLiteral("Extract"); }
    QString name() const override { return tr("Extract"); }
    TransformCategory category() const override { return TransformCategory::Format; }
    bool isAdvanced() const override { return false; }
    bool isInPlace() const override { return true; }
    bool keepsDrilldown() const override { return false; }
    int minimumInputs() const override { return 1; }
    int maximumInputs() const override { return 1; }
    bool hasMinimumOptions() const override { return false; }
    bool hidesDisabledParameters() const override { return true; }
    QList<QPair<QString, bool>> parameterStates() const override;
    QString description() const override;
    TABRELLE_TRANSFORM_CLONE(TransformExtract)
    void createParameters(const QList<Node *> &inputs, bool useDefaults) override;
    Dataset process(const QList<Node *> &inputs, bool &failed) override;
};
