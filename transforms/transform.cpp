#include "transforms/transform.h"

#include "core/settings.h"
#include "core/values.h"
#include "flow/node.h"

#include <algorithm>

namespace {

// Remembered defaults are stored in the text form of the documents this version writes.
constexpr int DefaultsDocumentVersion = 84;
// Row failures told word for word before the rest are only counted.
constexpr int FailuresShown = 5;

Settings *g_settings = nullptr;

} // namespace

QString categoryText(TransformCategory category, bool withMnemonic)
{
    switch (category) {
    case TransformCategory::All:
        return withMnemonic ? Transform::tr("&All") : Transform::tr("All");
    case TransformCategory::Merge:
        return withMnemonic ? Transform::tr("&Merge") : Transform::tr("Merge");
    case TransformCategory::Column:
        return withMnemonic ? Transform::tr("&Column") : Transform::tr("Column");
    case TransformCategory::Row:
        return withMnemonic ? Transform::tr("&Row") : Transform::tr("Row");
    case TransformCategory::Format:
        return withMnemonic ? Transform::tr("&Format") : Transform::tr("Format");
    case TransformCategory::Analysis:
        return withMnemonic ? Transform::tr("Anal&ysis") : Transform::tr("Analysis");
    case TransformCategory::Other:
        break;
    }
    return withMnemonic ? Transform::tr("&Other") : Transform::tr("Other");
}

QStringList categoryKeywords(TransformCategory category)
{
    switch (category) {
    case TransformCategory::Merge:
        return {QStringLiteral("blends"), QStringLiteral("merges")};
    case TransformCategory::Column:
        return {QStringLiteral("columns")};
    case TransformCategory::Row:
        return {QStringLiteral("rows")};
    case TransformCategory::Format:
        return {QStringLiteral("formatting"), QStringLiteral("formats")};
    case TransformCategory::Analysis:
        return {QStringLiteral("analyse"), QStringLiteral("analyze"), QStringLiteral("analysis")};
    case TransformCategory::All:
    case TransformCategory::Other:
        break;
    }
    return {};
}

Transform::Transform() = default;

Transform::~Transform()
{
    deleteParameters();
}

QSet<QString> Transform::keywords() const
{
    QSet<QString> words;
    for (const QString &word : name().toLower().split(QLatin1Char(' '), Qt::SkipEmptyParts))
        words.insert(word);
    for (const QString &word : categoryKeywords(category()))
        words.insert(word);
    return words;
}

void Transform::createParameters(const QList<Node *> &inputs, bool useDefaults)
{
    Q_UNUSED(inputs)
    Q_UNUSED(useDefaults)
    deleteParameters();
}

Parameter *Transform::parameter(const QString &name) const
{
    for (Parameter *parameter : m_parameters) {
        if (parameter->name() == name)
            return parameter;
    }
    return nullptr;
}

Parameter *Transform::parameterForUpstream(const Node *node) const
{
    for (Parameter *parameter : m_parameters) {
        if (parameter->upstream() == node)
            return parameter;
    }
    return nullptr;
}

QList<Parameter *> Transform::parametersForUpstream(const Node *node) const
{
    QList<Parameter *> found;
    for (Parameter *parameter : m_parameters) {
        if (parameter->upstream() == node)
            found << parameter;
    }
    return found;
}

bool Transform::reorderInputs(QList<Node *> &inputs)
{
    Q_UNUSED(inputs)
    return false;
}

QString Transform::imageTag() const
{
    return QStringLiteral("<img src=':/images/%1'>").arg(imageName());
}

QString Transform::buttonTip() const
{
    const int minimum = minimumInputs();
    const int maximum = maximumInputs();
    QString count;
    if (minimum == 1 && maximum == 1)
        count = tr("1 Input/Transform item");
    else if (minimum == maximum)
        count = tr("%1 Input/Transform items").arg(minimum);
    else if (maximum == NoLimit)
        count = tr("%1 or more Input/Transform items").arg(minimum);
    else if (maximum > minimum)
        count = tr("%1 to %2 Input/Transform items").arg(minimum).arg(maximum);
    if (count.isEmpty())
        return QString();
    return tr("Select %1 in the Center pane\nand then click this button to perform this transform.")
        .arg(count);
}

void Transform::setParameterList(const QList<Parameter *> &parameters)
{
    // The transform owns its parameters: those the new list drops are gone for good.
    for (Parameter *parameter : qAsConst(m_parameters)) {
        if (!parameters.contains(parameter))
            delete parameter;
    }
    m_parameters = parameters;
}

void Transform::setUpstream(const QList<Node *> &nodes)
{
    // A single-input transform points every column option at its one input; a merge
    // hands out its inputs in order, one per column option, until they run out.
    QList<Node *> remaining = nodes;
    for (Parameter *parameter : qAsConst(m_parameters)) {
        if (!parameter->isColumnOption())
            continue;
        if (remaining.isEmpty()) {
            parameter->clearUpstream();
            continue;
        }
        Node *node = maximumInputs() < 2 ? remaining.first() : remaining.takeFirst();
        // Values chosen on another dataset are emptied; an option that was disconnected
        // keeps its value, so that inserting an item into a connection loses nothing.
        Node *previous = parameter->upstream();
        parameter->setUpstream(node, previous && previous != node);
    }
}

void Transform::checkParameters()
{
    const QList<QPair<QString, bool>> states = parameterStates();
    QStringList labels;
    for (const Parameter *parameter : qAsConst(m_parameters)) {
        if (!parameter->isUnset())
            continue;
        const bool notApplicable =
            std::any_of(states.cbegin(), states.cend(), [&](const QPair<QString, bool> &state) {
                return state.first == parameter->name() && !state.second;
            });
        if (!notApplicable)
            labels << QStringLiteral("'%1'").arg(parameter->label());
    }
    if (labels.isEmpty())
        return;
    addWarning(tr("%1 %2 not set (%3)")
                   .arg(formatCount(labels.size()), plural(labels.size(), tr("option"), tr("options")),
                       labels.join(QLatin1Char(','))));
}

int Transform::keywordMatches(const QStringList &words) const
{
    const QSet<QString> keys = keywords();
    int matches = 0;
    for (const QString &word : words) {
        const bool found = std::any_of(
            keys.cbegin(), keys.cend(), [&](const QString &keyword) { return keyword.startsWith(word); });
        if (found)
            ++matches;
    }
    return matches;
}

void Transform::clearMessages()
{
    m_warnings.clear();
    m_information.clear();
    m_result.clear();
}

int Transform::columnParameterCount() const
{
    return int(std::count_if(m_parameters.cbegin(), m_parameters.cend(),
        [](const Parameter *parameter) { return parameter->isColumnOption(); }));
}

bool Transform::hasUniqueParameterNames() const
{
    QSet<QString> names;
    for (const Parameter *parameter : m_parameters) {
        if (names.contains(parameter->name()))
            return false;
        names.insert(parameter->name());
    }
    return true;
}

void Transform::setSettings(Settings *settings)
{
    g_settings = settings;
}

Settings *Transform::settings()
{
    return g_settings;
}

QString Transform::defaultKey(const QString &transformId, const QString &parameterName)
{
    return QStringLiteral("defaults/transforms/%1/%2").arg(transformId, parameterName);
}

void Transform::addParameter(Parameter *parameter)
{
    if (parameter)
        m_parameters.append(parameter);
}

void Transform::applyDefault(bool useDefaults, Parameter *parameter)
{
    if (!useDefaults || !parameter)
        return;
    parameter->setDefaultable(true);
    if (!g_settings)
        return;
    const QString key = defaultKey(id(), parameter->name());
    if (!g_settings->contains(key))
        return;
    const QVariant stored = g_settings->value(key);
    // An ini file edited by hand reads "a,b" as a list: it was meant as one text.
    const QString text = stored.type() == QVariant::StringList ? stored.toStringList().join(QLatin1Char(','))
                                                               : stored.toString();
    parameter->fromText(text, DefaultsDocumentVersion);
}

void Transform::deleteParameters()
{
    qDeleteAll(m_parameters);
    m_parameters.clear();
}

void Transform::copyParametersTo(Transform *copy) const
{
    copy->deleteParameters();
    for (const Parameter *parameter : m_parameters)
        copy->m_parameters.append(new Parameter(*parameter));
}

int Transform::rewriteColumns(Dataset &dataset, const QList<DataColumnIndex> &columns,
    const std::function<QString(const QString &, DataRowIndex, DataColumnIndex)> &rewrite)
{
    // Ascending column order whatever the order of the list, each column once, so that
    // failures are told in reading order.
    QList<int> order;
    for (DataColumnIndex column : columns) {
        const int c = column.toInt();
        if (c >= 0 && c < dataset.columnCount() && !order.contains(c))
            order << c;
    }
    std::sort(order.begin(), order.end());
    if (order.isEmpty())
        return 0;

    int changed = 0;
    const int rowCount = dataset.rowCount();
    for (int r = 0; r < rowCount; ++r) {
        reportRowProgress(r, rowCount);
        for (int c : qAsConst(order)) {
            const QString &old = dataset.cell(r, c);
            QString text = rewrite(old, r, c);
            if (text != old) {
                dataset.setCell(r, c, text);
                ++changed;
            }
        }
    }
    return changed;
}

void Transform::addRowFailures(const QStringList &failures, int totalFailures)
{
    const int shown = qMin(FailuresShown, int(failures.size()));
    for (int i = 0; i < shown; ++i)
        addWarning(failures.at(i));
    const int rest = qMax(totalFailures, int(failures.size())) - shown;
    if (rest > 0)
        addWarning(tr("+ %1 %2").arg(formatCount(rest), plural(rest, tr("other"), tr("others"))));
}

QString Transform::plural(qint64 count, const QString &singular, const QString &pluralForm)
{
    return count == 1 ? singular : pluralForm;
}

Dataset Transform::passThrough(const QList<Node *> &inputs, const QString &resultText)
{
    setResult(resultText);
    if (inputs.isEmpty() || !inputs.first())
        return Dataset();
    return inputs.first()->dataset();
}

Dataset Transform::notAvailableYet(const QList<Node *> &inputs)
{
    addWarning(tr("'%1' is not available in this version").arg(name()));
    return passThrough(inputs, tr("Not available yet"));
}
