#include "transforms/transformcluster.h"

void TransformCluster::createParameters(const QList<Node *> &inputs, bool useDefaults)
{
    Transform::createParameters(inputs, useDefaults);

    auto *column =
        new Parameter(ParameterKind::Column, QStringLiteral("Column"), tr("Column"), inputs.value(0));
    column->setTooltip(tr("The column with text to cluster."));
    addParameter(column);

    // Choices are stored in documents by their text, so they are not translated.
    auto *clustering = new Parameter(ParameterKind::Selection, QStringLiteral("Clustering"), tr("Clustering"),
        QStringLiteral("Manual"),
        QStringList {QStringLiteral("Manual"), QStringLiteral("Guided"), QStringLiteral("Automatic")});
    clustering->setTooltip(
        tr("How to cluster. Automatic and Guided can be slow.\nClick the ? button for details."));
    applyDefault(useDefaults, clustering);
    addParameter(clustering);

    auto *terms = new Parameter(ParameterKind::LongText, QStringLiteral("Terms"), tr("Terms"), QString());
    terms->setTooltip(tr("A list of terms to cluster by, one per line.\nClick the ? button for details."));
    applyDefault(useDefaults, terms);
    addParameter(terms);

    auto *fuzziness = new Parameter(ParameterKind::Int, QStringLiteral("Fuzziness"), tr("Closeness"), 50);
    fuzziness->setMinimum(0);
    fuzziness->setMaximum(100);
    fuzziness->setSuffix(QStringLiteral("%"));
    fuzziness->setTooltip(tr("How minimum closeness to be considered part of a cluster.\nSet to 0% to assign "
                             "everything to the nearest cluster.\nClick the ? button for details."));
    applyDefault(useDefaults, fuzziness);
    addParameter(fuzziness);

    auto *maxClusters =
        new Parameter(ParameterKind::Int, QStringLiteral("Max_Auto_Clusters"), tr("Max clusters"), 10);
    maxClusters->setMinimum(1);
    maxClusters->setMaximum(1000);
    maxClusters->setTooltip(tr("The maximum number of clusters to create."));
    applyDefault(useDefaults, maxClusters);
    addParameter(maxClusters);

    auto *maxTime = new Parameter(ParameterKind::Int, QStringLiteral("Max_Auto_Time"), tr("Max time"), 60);
    maxTime->setMinimum(10);
    maxTime->setMaximum(10000);
    maxTime->setSuffix(tr(" seconds"));
    maxTime->setTooltip(tr("The maximum time to calculate clustering, in seconds."));
    applyDefault(useDefaults, maxTime);
    addParameter(maxTime);

    auto *caseSensitive =
        new Parameter(ParameterKind::Bool, QStringLiteral("Case_Sensitive"), tr("case sensitive"), false);
    caseSensitive->setTooltip(tr("Ignore case if unchecked."));
    applyDefault(useDefaults, caseSensitive);
    addParameter(caseSensitive);
}

QList<QPair<QString, bool>> TransformCluster::parameterStates() const
{
    const Parameter *clustering = parameter(QStringLiteral("Clustering"));
    if (!clustering)
        return {};
    // Manual clusters by the terms given; Automatic searches for its own; Guided does both.
    const QString how = clustering->selectionText();
    const bool searches = how != QLatin1String("Manual");
    return {
        {QStringLiteral("Terms"), how != QLatin1String("Automatic")},
        {QStringLiteral("Max_Auto_Clusters"), searches},
        {QStringLiteral("Max_Auto_Time"), searches},
    };
}

Dataset TransformCluster::process(const QList<Node *> &inputs, bool &failed)
{
    Q_UNUSED(failed)
    return notAvailableYet(inputs);
}
