#pragma once

#include "transforms/transform.h"

// Replaces values with a cryptographic hash of them.
class TransformHash : public Transform
{
    Q_OBJECT
public:
    int type() const override { return 21; }
    QString id() const override { return QStringLiteral("Hash"); }
    QString name() const override { return tr("Hash"); }
    TransformCategory category() const override { return TransformCategory::Other; }
    bool isAdvanced() const override { return true; }
    bool isInPlace() const override { return true; }
    bool keepsDrilldown() const override { return false; }
    int minimumInputs() const override { return 1; }
    int maximumInputs() const override { return 1; }
    QString description() const override
    {
        return tr("Replace values with a cryptographic hash, such as SHA-256, to pseudonymise or fingerprint "
                  "them.");
    }
    bool hasMinimumOptions() const override { return false; }
    TABRELLE_TRANSFORM_CLONE(TransformHash)
    void createParameters(const QList<Node *> &inputs, bool useDefaults) override;
    Dataset process(const QList<Node *> &inputs, bool &failed) override;
};
