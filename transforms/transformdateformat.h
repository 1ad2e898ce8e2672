#pragma once

#include "transforms/transform.h"

// Rewrites dates and times from one format to another: custom, ISO 8601, Unix time or spreadsheet serial
// numbers.
class TransformDateFormat : public Transform
{
    Q_OBJECT
public:
    int type() const override { return 13; }
    QString id() const override { return QStringLiteral("Date_Format"); }
    QString name() const override { return tr("DateTime Format"); }
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
    TABRELLE_TRANSFORM_CLONE(TransformDateFormat)
    void createParameters(const QList<Node *> &inputs, bool useDefaults) override;
    Dataset process(const QList<Node *> &inputs, bool &failed) override;
};
