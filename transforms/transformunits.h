#pragma once

#include "transforms/transform.h"

// Converts numbers between units of the same quantity.
class TransformUnits : public Transform
{
    Q_OBJECT
public:
    int type() const override { return 72; }
    QString id() const override { return QStringLiteral("Units"); }
    QString name() const override { return tr("Units"); }
    TransformCategory category() const override { return TransformCategory::Other; }
    bool isAdvanced() const override { return true; }
    bool isInPlace() const override { return true; }
    bool keepsDrilldown() const override { return false; }
    int minimumInputs() const override { return 1; }
    int maximumInputs() const override { return 1; }
    QString description() const override
    {
        return tr("Convert numbers from one unit of measure to another, such as miles to kilometres or "
                  "Fahrenheit to Celsius.");
    }
    bool hasMinimumOptions() const override { return false; }
    TABRELLE_TRANSFORM_CLONE(TransformUnits)
    void createParameters(const QList<Node *> &inputs, bool useDefaults) override;
    Dataset process(const QList<Node *> &inputs, bool &failed) override;
};
