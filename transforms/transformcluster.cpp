#include "transforms/transformcluster.h"

#include "core/matching.h"
#include "core/values.h"
#include "flow/node.h"

#include <QElapsedTimer>
#include <QHash>
#include <QMap>
#include <QRandomGenerator>
#include <QSet>

#include <algorithm>
#include <cmath>
#include <numeric>

namespace {

const QString &noneText()
{
    static const QString text = QStringLiteral("<None>");
    return text;
}

// Values told by name under "Values not clustered:".
constexpr int UnclusteredShown = 20;
// Above this many cached closeness values the cache of the search starts again.
constexpr qint64 CacheLimit = 64 * 1024 * 1024;

QString normalForm(const QString &text, bool caseSensitive)
{
    return caseSensitive ? text.trimmed() : text.trimmed().toLower();
}

// A random row: a 32-bit random number times the row count, top 32 bits kept.
int randomRow(QRandomGenerator &random, int rowCount)
{
    return int((quint64(random.generate()) * quint64(rowCount)) >> 32);
}

bool isWordCharacter(uint code)
{
    return QChar::isLetter(code) || QChar::isDigit(code) || code == 0x27 || code == 0x2019;
}

// Runs of 1, then 2, then 3 consecutive words, lower-cased and joined with a blank. Words
// are letters, decimal digits and apostrophes; everything else separates them.
QStringList wordNgrams(const QString &text)
{
    QStringList words;
    QString word;
    const int size = text.size();
    for (int i = 0; i < size; ++i) {
        uint code = text.at(i).unicode();
        int width = 1;
        if (QChar::isHighSurrogate(code) && i + 1 < size && text.at(i + 1).isLowSurrogate()) {
            code = QChar::surrogateToUcs4(text.at(i), text.at(i + 1));
            width = 2;
        }
        if (isWordCharacter(code)) {
            word += text.mid(i, width);
        } else if (!word.isEmpty()) {
            words << word.toLower();
            word.clear();
        }
        i += width - 1;
    }
    if (!word.isEmpty())
        words << word.toLower();

    QStringList ngrams;
    for (int length = 1; length <= 3; ++length) {
        for (int first = 0; first + length <= words.size(); ++first)
            ngrams << words.mid(first, length).join(QLatin1Char(' '));
    }
    return ngrams;
}

// How often each character occurs, in 64 buckets: letters and digits each their own, the
// rest shared. One edit changes these counts by at most 2 in all, so half their difference
// is a lower bound of the edit distance, found without the distance itself.
struct CharacterCounts
{
    quint8 counts[64] = {};

    explicit CharacterCounts(const QString &text = QString())
    {
        for (const QChar character : text) {
            const ushort c = character.unicode();
            int bucket = 62 + (c & 1);
            if (c >= 'a' && c <= 'z')
                bucket = c - 'a';
            else if (c >= 'A' && c <= 'Z')
                bucket = c - 'A' + 26;
            else if (c >= '0' && c <= '9')
                bucket = c - '0' + 52;
            // Capped counts only make the bound lower, so it stays a bound.
            if (counts[bucket] < 255)
                ++counts[bucket];
        }
    }

    int distanceBound(const CharacterCounts &other) const
    {
        int difference = 0;
        for (int i = 0; i < 64; ++i)
            difference += std::abs(int(counts[i]) - int(other.counts[i]));
        return (difference + 1) / 2;
    }
};

// closeness() of core/matching, with pairs that cannot be within the tolerance turned away
// before the distance is computed: the same result, sooner for far-off pairs.
int quickCloseness(const QString &a, const CharacterCounts &countsA, const QString &b,
    const CharacterCounts &countsB, int minimum)
{
    const int longest = qMax(a.size(), b.size());
    if (longest == 0)
        return 100;
    const double tolerance = std::trunc((100.0 - minimum) * longest / 100);
    if (std::abs(a.size() - b.size()) > tolerance || countsA.distanceBound(countsB) > tolerance)
        return -1;
    return closeness(a, b, minimum);
}

// The rows' normal forms, each distinct one once, so that a text repeated on many rows is
// compared with the terms once.
struct DistinctTexts
{
    QStringList texts; // in order of first appearance
    QVector<int> rowText; // row -> index in texts
    QVector<int> rowCounts; // index in texts -> rows holding it
    QVector<CharacterCounts> counts; // index in texts -> its character counts

    DistinctTexts(const Dataset &dataset, DataColumnIndex column, bool caseSensitive)
    {
        QHash<QString, int> index;
        const int rowCount = dataset.rowCount();
        rowText.resize(rowCount);
        for (int r = 0; r < rowCount; ++r) {
            const QString text = normalForm(dataset.cell(r, column), caseSensitive);
            auto found = index.constFind(text);
            if (found == index.constEnd()) {
                found = index.insert(text, texts.size());
                texts << text;
                rowCounts << 0;
                counts << CharacterCounts(text);
            }
            rowText[r] = found.value();
            ++rowCounts[found.value()];
        }
    }
};

// The term a text goes to: the first with the highest closeness that is at least the
// minimum; -1 for none or for an empty text.
QPair<int, int> nearestTerm(const QString &text, const CharacterCounts &textCounts, const QStringList &terms,
    const QVector<CharacterCounts> &termCounts, int minimum)
{
    if (text.isEmpty())
        return {-1, -1};
    int best = -1;
    int bestCloseness = -1;
    for (int t = 0; t < terms.size(); ++t) {
        const int c = quickCloseness(text, textCounts, terms.at(t), termCounts.at(t), minimum);
        if (c != -1 && c >= minimum && c > bestCloseness) {
            best = t;
            bestCloseness = c;
            if (c == 100)
                break; // nothing later can be strictly closer
        }
    }
    return {best, bestCloseness};
}

// Removes working[p] for each p of positions (ascending, repeats kept) from the highest
// down, as one removal after another would: a position met twice removes the item that
// moved into its place, and a position past the end removes nothing.
void removePositions(QVector<int> &working, const QVector<int> &positions)
{
    const int size = working.size();
    // nextAlive[i]: the smallest index at or above i still in the list (size: none).
    QVector<int> nextAlive(size + 1);
    std::iota(nextAlive.begin(), nextAlive.end(), 0);
    auto find = [&nextAlive](int i) {
        int root = i;
        while (nextAlive[root] != root)
            root = nextAlive[root];
        while (nextAlive[i] != root) {
            const int next = nextAlive[i];
            nextAlive[i] = root;
            i = next;
        }
        return root;
    };
    for (int k = positions.size() - 1; k >= 0; --k) {
        const int p = positions.at(k);
        if (p < 0 || p >= size)
            continue;
        // Every index below p is untouched, so the item now at p is the first left at or above it.
        const int victim = find(p);
        if (victim < size)
            nextAlive[victim] = victim + 1;
    }
    QVector<int> kept;
    kept.reserve(size);
    for (int i = 0; i < size; ++i) {
        if (find(i) == i)
            kept << working.at(i);
    }
    working = kept;
}

// The result of assigning every row to the nearest of a list of terms.
struct Assignment
{
    QStringList terms;
    QVector<int> rowTerm; // index in terms, -1 for "<None>"
    QVector<int> rowCloseness; // -1 for "<None>"
    int assigned = 0;
};

// A term list as one text, each term with its length, so that no two lists share a key.
QString listKey(const QStringList &terms)
{
    QString key;
    for (const QString &term : terms)
        key += QString::number(term.size()) + QLatin1Char(':') + term;
    return key;
}

} // namespace

struct TransformCluster::Options
{
    DataColumnIndex column;
    DataColumnIndex clusterColumn;
    DataColumnIndex closenessColumn;
    QString terms;
    bool guided = false;
    int fuzziness = 50;
    bool caseSensitive = false;
    int maxClusters = 10;
    int maxTime = 60;
};

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
    if (inputs.size() != 1 || !inputs.first())
        return Dataset();
    const Parameter *columnOption = parameter(QStringLiteral("Column"));
    const Parameter *clusteringOption = parameter(QStringLiteral("Clustering"));
    const Parameter *termsOption = parameter(QStringLiteral("Terms"));
    const Parameter *fuzzinessOption = parameter(QStringLiteral("Fuzziness"));
    const Parameter *maxClustersOption = parameter(QStringLiteral("Max_Auto_Clusters"));
    const Parameter *maxTimeOption = parameter(QStringLiteral("Max_Auto_Time"));
    const Parameter *caseOption = parameter(QStringLiteral("Case_Sensitive"));
    if (!columnOption || !clusteringOption || !termsOption || !fuzzinessOption || !maxClustersOption
        || !maxTimeOption || !caseOption)
        return Dataset();

    const Dataset &input = inputs.first()->dataset();
    Dataset output = input;
    output.appendColumn();
    const DataColumnIndex clusterColumn = output.lastColumn();
    output.appendColumn();
    const DataColumnIndex closenessColumn = output.lastColumn();
    output.setHeader(clusterColumn, QStringLiteral("Cluster"));
    output.setHeader(closenessColumn, QStringLiteral("Closeness"));

    const int rowCount = input.rowCount();
    const DataColumnIndex column = columnOption->columnIndex();
    QStringList warnings;
    int clustered = 0;
    const bool hasColumn = column.isValid() && column.toInt() < input.columnCount();
    if (hasColumn && rowCount > 0) {
        Options options;
        options.column = column;
        options.clusterColumn = clusterColumn;
        options.closenessColumn = closenessColumn;
        options.terms = termsOption->stringValue();
        options.fuzziness = qBound(0, fuzzinessOption->intValue(), 100);
        options.caseSensitive = caseOption->boolValue();
        options.maxClusters = qMax(1, maxClustersOption->intValue());
        options.maxTime = qMax(1, maxTimeOption->intValue());
        const QString how = clusteringOption->selectionText();
        options.guided = how == QLatin1String("Guided");
        if (options.guided || how == QLatin1String("Automatic"))
            clustered = clusterBySearch(input, output, options, warnings);
        else
            clustered = clusterByTerms(input, output, options, warnings);
    }

    // Rows per cluster, and the texts left over, in plain text order.
    QMap<QString, int> clusterCounts;
    QMap<QString, int> unclustered;
    for (int r = 0; r < rowCount; ++r) {
        const QString &cluster = output.cell(r, clusterColumn);
        if (cluster == noneText() && hasColumn)
            ++unclustered[input.cell(r, column)];
        else if (!cluster.isEmpty())
            ++clusterCounts[cluster];
    }
    if (!clusterCounts.isEmpty()) {
        addInformation(tr("%1 clustering term(s)").arg(clusterCounts.size()));
        addInformation(tr("Clustering term(s) alphabetically:"));
        for (auto it = clusterCounts.constBegin(); it != clusterCounts.constEnd(); ++it)
            addInformation(it.key());
        addInformation(tr("Clustering term(s) by count:"));
        QVector<QPair<QString, int>> byCount;
        for (auto it = clusterCounts.constBegin(); it != clusterCounts.constEnd(); ++it)
            byCount << qMakePair(it.key(), it.value());
        std::stable_sort(byCount.begin(), byCount.end(),
            [](const QPair<QString, int> &a, const QPair<QString, int> &b) { return a.second > b.second; });
        for (const auto &entry : qAsConst(byCount))
            addInformation(tr("%1  - %2").arg(entry.second).arg(entry.first));
    }
    if (!unclustered.isEmpty()) {
        warnings << tr("Values not clustered:");
        int shown = 0;
        for (auto it = unclustered.constBegin(); it != unclustered.constEnd() && shown < UnclusteredShown;
             ++it, ++shown)
            warnings << QStringLiteral("'%1'").arg(it.key());
        if (unclustered.size() > shown)
            warnings << tr("+ %1 more").arg(unclustered.size() - shown);
    }
    if (clustered < rowCount)
        warnings.prepend(tr("%1 row(s) not assigned a cluster").arg(rowCount - clustered));
    for (const QString &warning : qAsConst(warnings))
        addWarning(warning);
    setResult(tr("%1 clustered from %2 row(s)").arg(formatCount(clustered), formatCount(rowCount)));
    return output;
}

int TransformCluster::clusterByTerms(
    const Dataset &input, Dataset &output, const Options &options, QStringList &warnings)
{
    // The cells show each term as typed; rows are compared with its normal form.
    QStringList labels;
    QStringList terms;
    for (const QString &line : options.terms.split(QLatin1Char('\n'))) {
        const QString label = line.trimmed();
        if (label.isEmpty())
            continue;
        labels << label;
        terms << normalForm(label, options.caseSensitive);
    }
    if (terms.isEmpty()) {
        warnings << tr("No terms to cluster on");
        return 0;
    }

    const DistinctTexts distinct(input, options.column, options.caseSensitive);
    QVector<CharacterCounts> termCounts;
    for (const QString &term : qAsConst(terms))
        termCounts << CharacterCounts(term);
    constexpr int NotYet = -2;
    QVector<QPair<int, int>> nearest(distinct.texts.size(), qMakePair(NotYet, -1));
    QVector<QString> percentTexts(101);
    for (int c = 0; c <= 100; ++c)
        percentTexts[c] = QString::number(c);

    const int rowCount = input.rowCount();
    int assigned = 0;
    for (int r = 0; r < rowCount; ++r) {
        reportRowProgress(r, rowCount);
        const int text = distinct.rowText.at(r);
        QPair<int, int> &term = nearest[text];
        if (term.first == NotYet)
            term = nearestTerm(
                distinct.texts.at(text), distinct.counts.at(text), terms, termCounts, options.fuzziness);
        if (term.first < 0) {
            output.setCell(r, options.clusterColumn, noneText());
            continue;
        }
        output.setCell(r, options.clusterColumn, labels.at(term.first));
        output.setCell(r, options.closenessColumn, percentTexts.at(term.second));
        ++assigned;
    }
    return assigned;
}

int TransformCluster::clusterBySearch(
    const Dataset &input, Dataset &output, const Options &options, QStringList &warnings)
{
    QElapsedTimer timer;
    timer.start();
    // A fixed seed: the same data and options search in the same order every time.
    QRandomGenerator random(0);
    emit processed(0);

    const int rowCount = input.rowCount();
    const int fuzziness = options.fuzziness;
    const qint64 discoveryTime = qint64(options.maxTime) * 500;
    const qint64 searchTime = qint64(options.maxTime) * 1000;
    bool timeRanOut = false;
    const DistinctTexts distinct(input, options.column, options.caseSensitive);
    const int distinctCount = distinct.texts.size();

    QStringList terms;
    if (options.guided) {
        for (const QString &line : options.terms.split(QLatin1Char('\n'))) {
            if (terms.size() >= options.maxClusters)
                break;
            const QString term = normalForm(line, options.caseSensitive);
            if (!term.isEmpty())
                terms << term;
        }
    }

    // Term discovery: the most frequent word n-gram that is close to some row becomes a
    // term, and the rows holding it leave the working list. The working list holds each
    // row's text by its index in distinct.texts, and n-grams are numbered once.
    QHash<QString, int> ngramIndex;
    QStringList ngramTexts;
    QVector<QVector<int>> textNgrams(distinctCount);
    for (int d = 0; d < distinctCount; ++d) {
        if (distinct.texts.at(d).isEmpty())
            continue;
        for (const QString &ngram : wordNgrams(distinct.texts.at(d))) {
            auto found = ngramIndex.constFind(ngram);
            if (found == ngramIndex.constEnd()) {
                found = ngramIndex.insert(ngram, ngramTexts.size());
                ngramTexts << ngram;
            }
            textNgrams[d] << found.value();
        }
    }
    // Texts by length: a candidate is compared only with lengths within its tolerance.
    QMap<int, QVector<int>> textsByLength;
    for (int d = 0; d < distinctCount; ++d)
        textsByLength[distinct.texts.at(d).size()] << d;
    auto isClose = [&](int text, const QString &term, const CharacterCounts &termCounts) {
        const int c =
            quickCloseness(distinct.texts.at(text), distinct.counts.at(text), term, termCounts, fuzziness);
        return c != -1 && c >= fuzziness;
    };

    QSet<QString> skip;
    QVector<int> working = distinct.rowText;
    QVector<QVector<int>> positions(ngramTexts.size());
    bool discovering = true;
    while (discovering && !working.isEmpty() && terms.size() < options.maxClusters) {
        for (QVector<int> &list : positions)
            list.clear();
        QVector<int> candidates;
        for (int p = 0; p < working.size(); ++p) {
            for (int ngram : textNgrams.at(working.at(p))) {
                if (positions.at(ngram).isEmpty())
                    candidates << ngram;
                positions[ngram] << p;
            }
        }
        // Most positions first, then the longer text, then text order, so the order is fixed.
        std::sort(candidates.begin(), candidates.end(), [&](int a, int b) {
            if (positions.at(a).size() != positions.at(b).size())
                return positions.at(a).size() > positions.at(b).size();
            if (ngramTexts.at(a).size() != ngramTexts.at(b).size())
                return ngramTexts.at(a).size() > ngramTexts.at(b).size();
            return ngramTexts.at(a) < ngramTexts.at(b);
        });

        int chosen = -1;
        for (int candidate : qAsConst(candidates)) {
            const QString &text = ngramTexts.at(candidate);
            if (skip.contains(text))
                continue;
            // Testing candidates against every row can outlast the time for this phase.
            if (timer.elapsed() >= discoveryTime) {
                timeRanOut = true;
                discovering = false;
                break;
            }
            // Rows are tested in order, and each one that falls short before the first close
            // one puts the candidate on the skip list: so it is skipped from now on exactly
            // when the first row is not close.
            const CharacterCounts textCounts(text);
            if (isClose(distinct.rowText.at(0), text, textCounts)) {
                chosen = candidate;
                break;
            }
            skip.insert(text);
            const int length = text.size();
            for (auto it = textsByLength.constBegin(); it != textsByLength.constEnd() && chosen < 0; ++it) {
                const int longest = qMax(length, it.key());
                const double tolerance = std::trunc((100.0 - fuzziness) * longest / 100);
                if (std::abs(it.key() - length) > tolerance)
                    continue;
                for (int d : it.value()) {
                    if (isClose(d, text, textCounts)) {
                        chosen = candidate;
                        break;
                    }
                }
            }
            if (chosen >= 0)
                break;
        }
        if (chosen < 0)
            break;
        terms << ngramTexts.at(chosen);
        if (timer.elapsed() >= discoveryTime) {
            timeRanOut = true;
            break;
        }
        removePositions(working, positions.at(chosen));
        emit processed(terms.size() * 0.5 / options.maxClusters);
    }

    // Random fill: rows picked at random give the remaining terms.
    QSet<QString> termSet(terms.cbegin(), terms.cend());
    for (int attempt = 0; attempt < qMax(1, rowCount) && terms.size() < options.maxClusters; ++attempt) {
        const QString &text = distinct.texts.at(distinct.rowText.at(randomRow(random, rowCount)));
        if (!text.isEmpty() && !termSet.contains(text)) {
            terms << text;
            termSet.insert(text);
        }
    }

    if (terms.isEmpty()) {
        warnings << tr("Insufficient data for clustering");
        if (timeRanOut)
            warnings << tr("Set '%1' longer for better results").arg(QStringLiteral("Max_Auto_Time"));
        return 0;
    }

    // Improvement: replace one term at a time by the text of a row of its cluster (or,
    // now and then, of a row in no cluster), keeping a list only when it scores higher.
    // Each term's closeness to every distinct text is kept, so a list costs one new term.
    QHash<QString, QVector<qint8>> closenessCache;
    qint64 cachedValues = 0;
    auto termCloseness = [&](const QString &term) {
        auto found = closenessCache.constFind(term);
        if (found != closenessCache.constEnd())
            return found.value();
        if (cachedValues + distinctCount > CacheLimit) {
            closenessCache.clear();
            cachedValues = 0;
        }
        QVector<qint8> values(distinctCount);
        const CharacterCounts termCounts(term);
        for (int d = 0; d < distinctCount; ++d) {
            const QString &text = distinct.texts.at(d);
            values[d] = qint8(text.isEmpty()
                    ? -1
                    : quickCloseness(text, distinct.counts.at(d), term, termCounts, fuzziness));
        }
        cachedValues += distinctCount;
        closenessCache.insert(term, values);
        return values;
    };
    double squareRoots[101];
    for (int c = 0; c <= 100; ++c)
        squareRoots[c] = std::sqrt(double(c));

    const int limit = qMax(10, 2 * options.maxClusters);
    double bestScore = -3.4028234663852886e+38;
    int withoutGain = 0;
    int step = 0;
    int combinations = 0;
    QStringList bestTerms;
    QVector<int> bestTerm(distinctCount, -1);
    QVector<int> bestCloseness(distinctCount, -1);
    int bestAssigned = 0;
    QVector<int> textTerm(distinctCount);
    QVector<int> textCloseness(distinctCount);
    QVector<QVector<qint8>> columns;
    QSet<QString> tried;
    while (withoutGain < limit) {
        const QString key = listKey(terms);
        if (tried.contains(key)) {
            ++withoutGain;
        } else {
            columns.clear();
            for (const QString &term : qAsConst(terms))
                columns << termCloseness(term);
            for (int d = 0; d < distinctCount; ++d) {
                int best = -1;
                int bestValue = -1;
                for (int t = 0; t < columns.size(); ++t) {
                    const int c = columns.at(t).at(d);
                    if (c != -1 && c >= fuzziness && c > bestValue) {
                        best = t;
                        bestValue = c;
                    }
                }
                textTerm[d] = best;
                textCloseness[d] = bestValue;
            }
            // Many moderately close rows can outweigh a few exact ones.
            double score = 0;
            int assigned = 0;
            for (int r = 0; r < rowCount; ++r) {
                const int d = distinct.rowText.at(r);
                if (textTerm.at(d) >= 0) {
                    score += squareRoots[textCloseness.at(d)];
                    ++assigned;
                }
            }
            if (score > bestScore) {
                bestScore = score;
                bestTerms = terms;
                bestTerm = textTerm;
                bestCloseness = textCloseness;
                bestAssigned = assigned;
                withoutGain = 0;
            } else {
                terms = bestTerms;
                ++withoutGain;
            }
            tried.insert(key);
            ++combinations;
        }
        emit processed(withoutGain * 0.5 / limit + 0.5);

        const int position = step % terms.size();
        QString source = terms.at(position);
        if (fuzziness > 0 && quint64(random.generate()) * 5 < (quint64(1) << 31))
            source = noneText();
        const int start = randomRow(random, rowCount);
        for (int k = 0; k < rowCount; ++k) {
            const int r = int((qint64(start) + k) % rowCount);
            const int d = distinct.rowText.at(r);
            const int t = bestTerm.at(d);
            if ((t >= 0 ? bestTerms.at(t) : noneText()) != source)
                continue;
            const QString &text = distinct.texts.at(d);
            if (text.isEmpty() || text == terms.at(position))
                continue;
            terms[position] = text;
            break;
        }
        ++step;
        if (timer.elapsed() >= searchTime) {
            addInformation(tr("Exited when max time reached"));
            timeRanOut = true;
            break;
        }
    }

    QVector<QString> percentTexts(101);
    for (int c = 0; c <= 100; ++c)
        percentTexts[c] = QString::number(c);
    for (int r = 0; r < rowCount; ++r) {
        const int d = distinct.rowText.at(r);
        const int t = bestTerm.at(d);
        if (t < 0) {
            output.setCell(r, options.clusterColumn, noneText());
            continue;
        }
        output.setCell(r, options.clusterColumn, bestTerms.at(t));
        output.setCell(r, options.closenessColumn, percentTexts.at(bestCloseness.at(d)));
    }
    addInformation(tr("Tried %1 different combinations of clustering terms").arg(combinations));
    if (timeRanOut)
        warnings << tr("Set '%1' longer for better results").arg(QStringLiteral("Max_Auto_Time"));
    return bestAssigned;
}
