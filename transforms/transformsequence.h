#pragma once

#include "transforms/transform.h"

// Finds the values missing from a sequence of integers or dates, and adds or lists them.
class TransformSequence : public Transform
{
    Q_OBJECT
public:
    enum class SequenceType { Unknown, Integer, Date };

    int type() const override { return 53; }
    QString id() const override { return QStringLiteral("Sequence"); }
    QString name() const override { return tr("Sequence"); }
    TransformCategory category() const override { return TransformCategory::Row; }
    bool isAdvanced() const override { return true; }
    bool isInPlace() const override { return false; }
    bool keepsDrilldown() const override { return false; }
    int minimumInputs() const override { return 1; }
    int maximumInputs() const override { return 1; }
    bool hasMinimumOptions() const override;
    QString description() const override;
    QSet<QString> keywords() const override;
    bool hidesDisabledParameters() const override { return true; }
    QList<QPair<QString, bool>> parameterStates() const override;
    TABRELLE_TRANSFORM_CLONE(TransformSequence)
    void createParameters(const QList<Node *> &inputs, bool useDefaults) override;
    Dataset process(const QList<Node *> &inputs, bool &failed) override;

    // Integer when the column is numeric and its first 100 non-empty values are whole
    // numbers, else Date when a date format fits, else Unknown. dateFormat, when given,
    // receives the best date format found.
    static SequenceType guessType(const Dataset &dataset, DataColumnIndex column, QString *dateFormat);
    // The chosen type, or under "Automatic" the guess from the chosen column; Unknown
    // while no column is chosen.
    SequenceType effectiveType() const;
};
