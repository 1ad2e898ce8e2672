#include "transforms/transformsample.h"

QString TransformSample::description() const
{
    return tr("Keep a random sample of the rows, or every Nth row.");
}

QSet<QString> TransformSample::keywords() const
{
    QSet<QString> words = Transform::keywords();
    words << QStringLiteral("random") << QStringLiteral("subset") << QStringLiteral("reduce")
          << QStringLiteral("audit") << QStringLiteral("nth") << QStringLiteral("every")
          << QStringLiteral("percentage") << QStringLiteral("sampling");
    return words;
}

QList<QPair<QString, bool>> TransformSample::parameterStates() const
{
    const Parameter *type = parameter(QStringLiteral("Sample_Type"));
    const QString sampleType = type ? type->selectionText() : QString();
    const bool everyNth = sampleType == QLatin1String("Every Nth row");
    return {{QStringLiteral("Rows"), sampleType == QLatin1String("Number of rows")},
        {QStringLiteral("Percent"), sampleType == QLatin1String("Percentage of rows")},
        {QStringLiteral("Nth"), everyNth}, {QStringLiteral("Seed"), !everyNth}};
}

void TransformSample::createParameters(const QList<Node *> &inputs, bool useDefaults)
{
    Transform::createParameters(inputs, useDefaults);

    // Choices are stored in documents as they stand, so they are not translated.
    auto *type = new Parameter(ParameterKind::Selection, QStringLiteral("Sample_Type"), tr("Sample"),
        QStringLiteral("Number of rows"),
        QStringList {QStringLiteral("Number of rows"), QStringLiteral("Percentage of rows"),
            QStringLiteral("Every Nth row")});
    applyDefault(useDefaults, type);
    type->setTooltip(tr("Choose a random number of rows, a random percentage of rows, or every Nth row."));
    addParameter(type);

    auto *rows = new Parameter(ParameterKind::Int, QStringLiteral("Rows"), tr("Rows"), 1000);
    rows->setMinimum(1);
    rows->setMaximum(Parameter::MaximumInt);
    applyDefault(useDefaults, rows);
    rows->setTooltip(tr("The number of rows to keep."));
    addParameter(rows);

    auto *percent = new Parameter(ParameterKind::Real, QStringLiteral("Percent"), tr("Percentage"), 10.0);
    percent->setRealMinimum(0);
    percent->setRealMaximum(100);
    applyDefault(useDefaults, percent);
    percent->setTooltip(tr("The percentage of rows to keep."));
    addParameter(percent);

    auto *nth = new Parameter(ParameterKind::Int, QStringLiteral("Nth"), tr("Keep every"), 10);
    nth->setMinimum(2);
    nth->setMaximum(1000000);
    applyDefault(useDefaults, nth);
    nth->setTooltip(tr("Keep the first row and then every Nth row."));
    addParameter(nth);

    auto *seed = new Parameter(ParameterKind::Int, QStringLiteral("Seed"), tr("Random seed"), 1);
    seed->setMinimum(0);
    seed->setMaximum(Parameter::MaximumInt);
    applyDefault(useDefaults, seed);
    seed->setTooltip(
        tr("Change to get a different random sample. The same seed gives the same sample of the same "
           "data."));
    addParameter(seed);

    auto *disable =
        new Parameter(ParameterKind::Bool, QStringLiteral("Disable"), tr("disable sampling"), false);
    disable->setDisableSwitch(true);
    applyDefault(useDefaults, disable);
    disable->setTooltip(tr("Check to disable sampling (which means that transform does nothing)."));
    addParameter(disable);
}

Dataset TransformSample::process(const QList<Node *> &inputs, bool &failed)
{
    Q_UNUSED(failed)
    return notAvailableYet(inputs);
}
