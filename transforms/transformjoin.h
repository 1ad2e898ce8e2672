#pragma once

#include "transforms/transform.h"

// Puts two datasets side by side, matching rows by key or by row number.
class TransformJoin : public Transform
{
    Q_OBJECT
public:
    int type() const override { return 29; }
    QString id() const override { return QStringLiteral("Join"); }
    QString name() const override { return tr("Join"); }
    TransformCategory category() const override { return TransformCategory::Merge; }
    bool isAdvanced() const override { return false; }
    bool isInPlace() const override { return false; }
    bool keepsDrilldown() const override { return false; }
    int minimumInputs() const override { return 2; }
    int maximumInputs() const override { return 2; }
    bool hasMinimumOptions() const override { return false; }
    QString description() const override;
    QSet<QString> keywords() const override;
    QString imageName() const override { return QStringLiteral("join.png"); }
    bool canExploreKeys() const override { return true; }
    QString topKeyColumnParameterName() const override { return QStringLiteral("Column_1"); }
    QString bottomKeyColumnParameterName() const override { return QStringLiteral("Column_2"); }
    QString caseSensitiveParameterName() const override { return QStringLiteral("Case_Sensitive"); }
    bool hidesDisabledParameters() const override { return true; }
    QList<QPair<QString, bool>> parameterStates() const override;
    TABRELLE_TRANSFORM_CLONE(TransformJoin)
    void createParameters(const QList<Node *> &inputs, bool useDefaults) override;
    bool reorderInputs(QList<Node *> &inputs) override;
    void setUpstream(const QList<Node *> &nodes) override;
    Dataset process(const QList<Node *> &inputs, bool &failed) override;

private:
    Dataset joinByKey(const Dataset &top, const Dataset &bottom);
    Dataset joinByRowNumber(const Dataset &top, const Dataset &bottom);
    // The output's headers and column ids: the top's, then the bottom's without the
    // column at skipBottom (-1 for none); ids that repeat are cleared.
    static void joinColumns(Dataset &output, const Dataset &top, const Dataset &bottom, int skipBottom);
};
