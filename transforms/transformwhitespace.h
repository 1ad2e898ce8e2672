#pragma once

#include "transforms/transform.h"

// Trims and tidies whitespace and removes invisible characters. Documents naming the retired "Trim" id open
// as this one.
class TransformWhitespace : public Transform
{
    Q_OBJECT
public:
    int type() const override { return 75; }
    QString id() const override { return QStringLiteral("Whitespace"); }
    QString name() const override { return tr("Whitespace"); }
    TransformCategory category() const override { return TransformCategory::Format; }
    bool isAdvanced() const override { return false; }
    bool isInPlace() const override { return true; }
    bool keepsDrilldown() const override { return false; }
    int minimumInputs() const override { return 1; }
    int maximumInputs() const override { return 1; }
    bool hasMinimumOptions() const override { return false; }
    QList<QPair<QString, bool>> parameterStates() const override;
    QString description() const override;
    TABRELLE_TRANSFORM_CLONE(TransformWhitespace)
    void createParameters(const QList<Node *> &inputs, bool useDefaults) override;
    Dataset process(const QList<Node *> &inputs, bool &failed) override;
};
