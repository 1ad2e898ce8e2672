#pragma once

#include "transforms/transform.h"

// Counts words and phrases of a text column; each phrase drills down to its rows.
class TransformNgram : public Transform
{
    Q_OBJECT
public:
    int type() const override { return 34; }
    QString id() const override { return QStringLiteral("Ngram"); }
    QString name() const override { return tr("Ngram"); }
    TransformCategory category() const override { return TransformCategory::Analysis; }
    bool isAdvanced() const override { return true; }
    bool isInPlace() const override { return false; }
    bool keepsDrilldown() const override { return true; }
    int minimumInputs() const override { return 1; }
    int maximumInputs() const override { return 1; }
    QString description() const override
    {
        return tr("Count the words and phrases of one to several words in a text column.");
    }
    bool hasMinimumOptions() const override { return false; }
    TABRELLE_TRANSFORM_CLONE(TransformNgram)
    void createParameters(const QList<Node *> &inputs, bool useDefaults) override;
    Dataset process(const QList<Node *> &inputs, bool &failed) override;
};
