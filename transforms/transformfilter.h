#pragma once

#include "transforms/transform.h"

// Keeps or removes the rows that meet a list of conditions.
class TransformFilter : public Transform
{
    Q_OBJECT
public:
    int type() const override { return 19; }
    QString id() const override { return QStringLiteral("Filter"); }
    QString name() const override { return tr("Filter"); }
    TransformCategory category() const override { return TransformCategory::Row; }
    bool isAdvanced() const override { return false; }
    bool isInPlace() const override { return false; }
    bool keepsDrilldown() const override { return false; }
    int minimumInputs() const override { return 1; }
    int maximumInputs() const override { return 1; }
    bool hasMinimumOptions() const override { return true; }
    QString description() const override;
    TABRELLE_TRANSFORM_CLONE(TransformFilter)
    void createParameters(const QList<Node *> &inputs, bool useDefaults) override;
    Dataset process(const QList<Node *> &inputs, bool &failed) override;

    // The conditions in one line for the item's tool tip, such as
    // "Remove (Status equal to 'Cancelled') OR (Notes is empty)".
    QString summary() const;
    // The same for a given value; dataset names the columns and may be null.
    static QString summary(const FilterColumnsValue &filter, const Dataset *dataset);

    // Whether a condition takes part in the test: it has a term, or its operator needs none.
    static bool isUsable(const Condition &condition);
};
