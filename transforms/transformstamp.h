#pragma once

#include "transforms/transform.h"

// Adds a column holding one stamp: the run's time, a fixed date or text, or the input file.
class TransformStamp : public Transform
{
    Q_OBJECT
public:
    int type() const override { return 62; }
    QString id() const override { return QStringLiteral("Stamp"); }
    QString name() const override { return tr("Stamp"); }
    TransformCategory category() const override { return TransformCategory::Other; }
    bool isAdvanced() const override { return true; }
    bool isInPlace() const override { return false; }
    bool keepsDrilldown() const override { return false; }
    int minimumInputs() const override { return 1; }
    int maximumInputs() const override { return 1; }
    QString description() const override
    {
        return tr("Add a column holding the run's date and time, a fixed date or text, or the name of the "
                  "input file.");
    }
    bool hasMinimumOptions() const override { return false; }
    bool hidesDisabledParameters() const override { return true; }
    QList<QPair<QString, bool>> parameterStates() const override;
    TABRELLE_TRANSFORM_CLONE(TransformStamp)
    void createParameters(const QList<Node *> &inputs, bool useDefaults) override;
    Dataset process(const QList<Node *> &inputs, bool &failed) override;
};
