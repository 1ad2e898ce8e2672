#pragma once

#include "transforms/transform.h"

// Slides values left or right across the selected columns to close up empty cells.
class TransformSlide : public Transform
{
    Q_OBJECT
public:
    int type() const override { return 55; }
    QString id() const override { return QStringLiteral("Slide"); }
    QString name() const override { return tr("Slide"); }
    TransformCategory category() const override { return TransformCategory::Format; }
    bool isAdvanced() const override { return true; }
    bool isInPlace() const override { return true; }
    bool keepsDrilldown() const override { return false; }
    int minimumInputs() const override { return 1; }
    int maximumInputs() const override { return 1; }
    bool hasMinimumOptions() const override { return false; }
    QString description() const override;
    TABRELLE_TRANSFORM_CLONE(TransformSlide)
    void createParameters(const QList<Node *> &inputs, bool useDefaults) override;
    Dataset process(const QList<Node *> &inputs, bool &failed) override;
};
