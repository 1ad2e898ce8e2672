#pragma once

#include "transforms/transform.h"

// Removes, keeps or marks rows that match on the chosen columns, exactly or fuzzily.
class TransformDedupe : public Transform
{
    Q_OBJECT
public:
    int type() const override { return 15; }
    QString id() const override { return QStringLiteral("Dedupe"); }
    QString name() const override { return tr("Dedupe"); }
    TransformCategory category() const override { return TransformCategory::Row; }
    bool isAdvanced() const override { return false; }
    bool isInPlace() const override { return false; }
    bool keepsDrilldown() const override { return true; }
    int minimumInputs() const override { return 1; }
    int maximumInputs() const override { return 1; }
    bool hasMinimumOptions() const override { return false; }
    QString description() const override;
    QSet<QString> keywords() const override;
    bool canExploreDuplicates() const override { return true; }
    QString caseSensitiveParameterName() const override { return QStringLiteral("Case_Sensitive"); }
    QString columnsParameterName() const override { return QStringLiteral("Columns"); }
    QString matchTypeParameterName() const override { return QStringLiteral("Match_Type"); }
    QString ignoreSpacesParameterName() const override { return QStringLiteral("Ignore_Spaces"); }
    QString ignorePunctuationParameterName() const override { return QStringLiteral("Ignore_Punctuation"); }
    QString fuzzinessParameterName() const override { return QStringLiteral("Fuzziness"); }
    QString dedupeModeParameterName() const override { return QStringLiteral("Dedupe_Mode"); }
    bool hidesDisabledParameters() const override { return true; }
    QList<QPair<QString, bool>> parameterStates() const override;
    TABRELLE_TRANSFORM_CLONE(TransformDedupe)
    void createParameters(const QList<Node *> &inputs, bool useDefaults) override;
    Dataset process(const QList<Node *> &inputs, bool &failed) override;
};
