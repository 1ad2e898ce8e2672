#pragma once

#include "transforms/transform.h"

// Replaces identifying values with consistent numbered pseudonyms.
class TransformPseudonym : public Transform
{
    Q_OBJECT
public:
    int type() const override { return 41; }
    QString id() const override { return QStringLiteral("Pseudonym"); }
    QString name() const override { return tr("Pseudonym"); }
    TransformCategory category() const override { return TransformCategory::Column; }
    bool isAdvanced() const override { return true; }
    bool isInPlace() const override { return false; }
    bool keepsDrilldown() const override { return false; }
    int minimumInputs() const override { return 1; }
    int maximumInputs() const override { return 1; }
    bool hasMinimumOptions() const override { return false; }
    QString description() const override;
    QSet<QString> keywords() const override;
    bool hidesDisabledParameters() const override { return true; }
    QList<QPair<QString, bool>> parameterStates() const override;
    TABRELLE_TRANSFORM_CLONE(TransformPseudonym)
    void createParameters(const QList<Node *> &inputs, bool useDefaults) override;
    Dataset process(const QList<Node *> &inputs, bool &failed) override;
};
