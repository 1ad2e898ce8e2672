#pragma once

#include "transforms/transform.h"

// Classifies rows by the closeness of one text column to given or discovered terms.
class TransformCluster : public Transform
{
    Q_OBJECT
public:
    int type() const override { return 5; }
    QString id() const override { return QStringLiteral("Cluster"); }
    QString name() const override { return tr("Cluster"); }
    TransformCategory category() const override { return TransformCategory::Analysis; }
    bool isAdvanced() const override { return true; }
    bool isInPlace() const override { return false; }
    bool keepsDrilldown() const override { return false; }
    int minimumInputs() const override { return 1; }
    int maximumInputs() const override { return 1; }
    QString description() const override { return tr("Classify rows with similar text into clusters."); }
    bool hasMinimumOptions() const override { return false; }
    bool hidesDisabledParameters() const override { return true; }
    QList<QPair<QString, bool>> parameterStates() const override;
    TABRELLE_TRANSFORM_CLONE(TransformCluster)
    void createParameters(const QList<Node *> &inputs, bool useDefaults) override;
    Dataset process(const QList<Node *> &inputs, bool &failed) override;

private:
    struct Options;
    // Each fills the two new columns and returns how many rows it assigned.
    int clusterByTerms(const Dataset &input, Dataset &output, const Options &options, QStringList &warnings);
    int clusterBySearch(const Dataset &input, Dataset &output, const Options &options, QStringList &warnings);
};
