#include "transforms/keyguess.h"

#include "core/values.h"
#include "transforms/parameter.h"
#include "transforms/transform.h"

#include <QHash>
#include <QVariant>

#include <algorithm>

namespace {

constexpr int MaximumGuessRows = 10000;
constexpr int CandidatePairLimit = 100;
constexpr int SampleRows = 1000;
constexpr int SampleValues = 200;
constexpr int ExamplesShown = 5;

QString tr(const char *text)
{
    return Transform::tr(text);
}

QString plural(qint64 count, const QString &singular, const QString &pluralForm)
{
    return count == 1 ? singular : pluralForm;
}

QString lowerHeader(const Dataset &dataset, DataColumnIndex column)
{
    return dataset.headers().value(column.toInt()).toLower();
}

// 2 for equal headers, 1 when one of more than 2 characters occurs in the other, else 0.
int headerRelation(
    const Dataset &top, DataColumnIndex topColumn, const Dataset &bottom, DataColumnIndex bottomColumn)
{
    if (!top.hasHeaders() || !bottom.hasHeaders())
        return 0;
    const QString a = lowerHeader(top, topColumn);
    const QString b = lowerHeader(bottom, bottomColumn);
    if (a == b)
        return 2;
    if ((a.size() > 2 && b.contains(a)) || (b.size() > 2 && a.contains(b)))
        return 1;
    return 0;
}

bool sharesNonEmptyValue(const QSet<QString> &a, const QSet<QString> &b)
{
    const QSet<QString> &small = a.size() <= b.size() ? a : b;
    const QSet<QString> &large = a.size() <= b.size() ? b : a;
    return std::any_of(small.cbegin(), small.cend(),
        [&](const QString &value) { return !value.isEmpty() && large.contains(value); });
}

} // namespace

QSet<QString> columnKeys(const Dataset &dataset, DataColumnIndex column, bool caseSensitive)
{
    QSet<QString> keys;
    if (column.toInt() < 0 || column.toInt() >= dataset.columnCount())
        return keys;
    for (int r = 0; r < dataset.rowCount(); ++r)
        keys.insert(matchKey(dataset.cell(r, column), caseSensitive));
    return keys;
}

QSet<QString> keySample(const Dataset &dataset, DataColumnIndex column)
{
    QSet<QString> values;
    if (column.toInt() < 0 || column.toInt() >= dataset.columnCount())
        return values;
    const int rows = qMin(dataset.rowCount(), SampleRows);
    for (int r = 0; r < rows; ++r)
        values.insert(dataset.cell(r, column));
    if (values.size() <= SampleValues)
        return values;
    QStringList sorted = values.values();
    std::sort(sorted.begin(), sorted.end());
    sorted.erase(sorted.begin() + SampleValues, sorted.end());
    return QSet<QString>(sorted.cbegin(), sorted.cend());
}

QList<ColumnPair> candidateKeyPairs(
    const Dataset &top, const Dataset &bottom, int limit, const QList<ColumnPair> &excluded)
{
    QSet<int> excludedTop;
    QSet<int> excludedBottom;
    for (const ColumnPair &pair : excluded) {
        excludedTop.insert(pair.first.toInt());
        excludedBottom.insert(pair.second.toInt());
    }
    QHash<int, QSet<QString>> bottomSamples;
    for (int b = 0; b < bottom.columnCount(); ++b) {
        if (!excludedBottom.contains(b))
            bottomSamples.insert(b, keySample(bottom, b));
    }

    // Three groups by strength of evidence, so that the limit keeps the likeliest pairs.
    QList<ColumnPair> groups[3];
    for (int t = 0; t < top.columnCount(); ++t) {
        if (excludedTop.contains(t))
            continue;
        const QSet<QString> topSample = keySample(top, t);
        for (int b = 0; b < bottom.columnCount(); ++b) {
            if (excludedBottom.contains(b))
                continue;
            const int relation = headerRelation(top, t, bottom, b);
            if (relation == 2)
                groups[0] << ColumnPair(t, b);
            else if (relation == 1)
                groups[1] << ColumnPair(t, b);
            else if (sharesNonEmptyValue(topSample, bottomSamples.value(b)))
                groups[2] << ColumnPair(t, b);
        }
    }
    QList<ColumnPair> pairs = groups[0] + groups[1] + groups[2];
    if (pairs.size() > limit)
        pairs.erase(pairs.begin() + qMax(0, limit), pairs.end());
    return pairs;
}

double keyPairScore(const Dataset &top, DataColumnIndex topColumn, const QSet<QString> &topSample,
    const Dataset &bottom, DataColumnIndex bottomColumn, const QSet<QString> &bottomSample)
{
    double score = 0;
    for (const QString &value : topSample) {
        if (!value.isEmpty() && bottomSample.contains(value))
            score += 1.0;
    }
    switch (headerRelation(top, topColumn, bottom, bottomColumn)) {
    case 2:
        return (score + 2.0) * 1.5;
    case 1:
        return (score + 1.0) * 1.25;
    default:
        return score;
    }
}

double keyGuessThreshold(int topRows, int bottomRows, bool strict)
{
    if (!strict)
        return 5.0;
    // With no rows on a side the ratio is infinite, so nothing can pass.
    const double topRatio = topRows > 0 ? 200.0 / topRows : qInf();
    const double bottomRatio = bottomRows > 0 ? 200.0 / bottomRows : qInf();
    return qMax(10.0, 150.0 * qMin(topRatio, bottomRatio));
}

bool guessKeyColumns(Parameter *top, Parameter *bottom, bool strict)
{
    if (!top || !bottom || top->kind() != ParameterKind::Column || bottom->kind() != ParameterKind::Column)
        return false;
    const Dataset *topData = top->upstreamDataset();
    const Dataset *bottomData = bottom->upstreamDataset();
    if (!top->upstream() || !bottom->upstream() || !topData || !bottomData)
        return false;
    if (topData->rowCount() > MaximumGuessRows || bottomData->rowCount() > MaximumGuessRows)
        return false;

    QHash<int, QSet<QString>> topSamples;
    QHash<int, QSet<QString>> bottomSamples;
    double best = 0;
    ColumnPair bestPair;
    for (const ColumnPair &pair : candidateKeyPairs(*topData, *bottomData, CandidatePairLimit)) {
        auto topIt = topSamples.find(pair.first.toInt());
        if (topIt == topSamples.end())
            topIt = topSamples.insert(pair.first.toInt(), keySample(*topData, pair.first));
        auto bottomIt = bottomSamples.find(pair.second.toInt());
        if (bottomIt == bottomSamples.end())
            bottomIt = bottomSamples.insert(pair.second.toInt(), keySample(*bottomData, pair.second));
        const double score = keyPairScore(*topData, pair.first, *topIt, *bottomData, pair.second, *bottomIt);
        if (score > best) {
            best = score;
            bestPair = pair;
        }
    }
    if (!(best > keyGuessThreshold(topData->rowCount(), bottomData->rowCount(), strict)))
        return false;
    const ColumnId topId = topData->columnId(bestPair.first);
    const ColumnId bottomId = bottomData->columnId(bestPair.second);
    // A dataset that has not been given its column ids yet has nothing to point at.
    if (topId.isUnset() || bottomId.isUnset())
        return false;
    top->setValue(QVariant::fromValue(topId));
    bottom->setValue(QVariant::fromValue(bottomId));
    return true;
}

QStringList duplicateKeyReport(
    const QString &name, const Dataset &dataset, DataColumnIndex column, bool caseSensitive)
{
    QStringList lines;
    if (column.toInt() < 0 || column.toInt() >= dataset.columnCount())
        return lines;
    QHash<QString, int> counts;
    QStringList order; // keys in order of first occurrence, so that the examples repeat
    for (int r = 0; r < dataset.rowCount(); ++r) {
        const QString key = matchKey(dataset.cell(r, column), caseSensitive);
        int &count = counts[key];
        if (count == 0)
            order << key;
        ++count;
    }
    const QString caseNote = caseSensitive ? QString() : tr(" (case insensitive)");
    int duplicates = 0;
    for (const QString &key : qAsConst(order)) {
        const int count = counts.value(key);
        if (count < 2)
            continue;
        if (++duplicates <= ExamplesShown)
            lines << tr("'%1' occurs %2 times%3").arg(key, formatCount(count), caseNote);
    }
    const int rest = duplicates - ExamplesShown;
    if (rest > 0)
        lines << tr("+ %1 other %2").arg(formatCount(rest), plural(rest, tr("duplicate"), tr("duplicates")));
    lines.prepend(tr("%1 duplicated %2 in the %3:")
                      .arg(formatCount(duplicates), plural(duplicates, tr("key"), tr("keys")), name));
    return lines;
}

QStringList whitespaceKeyReport(const QString &name, const Dataset &dataset, DataColumnIndex column)
{
    QStringList lines;
    if (column.toInt() < 0 || column.toInt() >= dataset.columnCount())
        return lines;
    int found = 0;
    for (int r = 0; r < dataset.rowCount(); ++r) {
        const QString &cell = dataset.cell(r, column);
        if (cell.isEmpty() || !(cell.front().isSpace() || cell.back().isSpace()))
            continue;
        if (++found <= ExamplesShown)
            lines << tr("'%1' at row %2").arg(cell, formatCount(r + 1));
    }
    const int rest = found - ExamplesShown;
    if (rest > 0)
        lines << tr("+ %1 %2").arg(
            formatCount(rest), plural(rest, tr("other with whitespace"), tr("others with whitespace")));
    lines.prepend(
        tr("%1 values with leading or trailing whitespace in the %2:").arg(formatCount(found), name));
    lines << tr("(keys are whitespace and case sensitive)");
    return lines;
}

int missedKeyReport(const QString &name, const Dataset &dataset, DataColumnIndex column, bool caseSensitive,
    const QSet<QString> &matched, QStringList &lines)
{
    if (column.toInt() < 0 || column.toInt() >= dataset.columnCount())
        return 0;
    QStringList examples;
    int misses = 0;
    for (int r = 0; r < dataset.rowCount(); ++r) {
        const QString &cell = dataset.cell(r, column);
        if (matched.contains(matchKey(cell, caseSensitive)))
            continue;
        if (++misses <= ExamplesShown)
            examples << tr("'%1' at row %2").arg(cell, formatCount(r + 1));
    }
    lines << tr("%1 %2 in the %3:").arg(formatCount(misses), plural(misses, tr("miss"), tr("misses")), name);
    lines << examples;
    const int rest = misses - ExamplesShown;
    if (rest > 0)
        lines << tr("+ %1 other %2").arg(formatCount(rest), plural(rest, tr("miss"), tr("misses")));
    return misses;
}

QStringList detailedKeyReport(
    const KeySide &top, const KeySide &bottom, bool caseSensitive, const QSet<QString> &matched)
{
    QStringList lines;
    const int topOnly = missedKeyReport(top.name, top.dataset, top.column, caseSensitive, matched, lines);
    const int bottomOnly =
        missedKeyReport(bottom.name, bottom.dataset, bottom.column, caseSensitive, matched, lines);
    lines << tr("%1 unique keys appear in both datasets").arg(formatCount(matched.size()));
    lines << tr("%1 top only").arg(formatCount(topOnly));
    lines << tr("%1 bottom only").arg(formatCount(bottomOnly));
    lines << duplicateKeyReport(top.name, top.dataset, top.column, caseSensitive);
    lines << duplicateKeyReport(bottom.name, bottom.dataset, bottom.column, caseSensitive);
    lines << whitespaceKeyReport(top.name, top.dataset, top.column);
    lines << whitespaceKeyReport(bottom.name, bottom.dataset, bottom.column);
    return lines;
}
