#pragma once

#include "core/dataset.h"

#include <QList>
#include <QPair>
#include <QSet>
#include <QString>
#include <QStringList>

class Parameter;

// What the key-based merges (Join, Intersect, Subtract, Lookup) share: the key of a
// cell, the guess of the two key columns, and the lines of the detailed report.

// The key a cell stands for: its text, lower-cased when matching ignores case. Nothing
// is trimmed, and an empty cell is a key like any other.
inline QString matchKey(const QString &cell, bool caseSensitive)
{
    return caseSensitive ? cell : cell.toLower();
}

// The keys of one column, folded as matchKey does.
QSet<QString> columnKeys(const Dataset &dataset, DataColumnIndex column, bool caseSensitive);

using ColumnPair = QPair<DataColumnIndex, DataColumnIndex>;

// Pairs (top column, bottom column) worth scoring as keys, at most limit of them: first
// the pairs whose lower-cased headers are equal, then those where one header holds the
// other, then the rest whose first 1000 rows share a non-empty value, each group in
// column order. Columns of either dataset listed in excluded (as top and bottom
// indexes) take part in no pair.
QList<ColumnPair> candidateKeyPairs(const Dataset &top, const Dataset &bottom, int limit,
    const QList<ColumnPair> &excluded = QList<ColumnPair>());

// The score that decides the guess: shared non-empty values of the two samples, raised
// for equal or related headers when both datasets have headers.
double keyPairScore(const Dataset &top, DataColumnIndex topColumn, const QSet<QString> &topSample,
    const Dataset &bottom, DataColumnIndex bottomColumn, const QSet<QString> &bottomSample);

// Distinct values of the first 1000 rows of a column; of more than 200, the 200 first
// in sort order.
QSet<QString> keySample(const Dataset &dataset, DataColumnIndex column);

// The score a best pair must pass: 5, or with strict 150 x min(200 / top rows, 200 /
// bottom rows) and at least 10.
double keyGuessThreshold(int topRows, int bottomRows, bool strict);

// Sets the two Column options top and bottom to the likeliest key pair of their upstream
// datasets; returns whether it did. Refuses options of another kind, options without an
// upstream node and datasets over 10000 rows; a weak best pair leaves both as they were.
bool guessKeyColumns(Parameter *top, Parameter *bottom, bool strict);

// Detailed report lines. name is the label of the key option, such as "Top key column".
// Keys that occur more than once, five of them by name.
QStringList duplicateKeyReport(
    const QString &name, const Dataset &dataset, DataColumnIndex column, bool caseSensitive);
// Key cells that start or end with a space character, five of them with their row.
QStringList whitespaceKeyReport(const QString &name, const Dataset &dataset, DataColumnIndex column);
// Rows whose key is not in matched (keys folded by matchKey), five of them with their
// row; returns the number of such rows and appends the lines to lines.
int missedKeyReport(const QString &name, const Dataset &dataset, DataColumnIndex column, bool caseSensitive,
    const QSet<QString> &matched, QStringList &lines);

// Every detailed line in the order the merges report them: misses of the top, misses of
// the bottom, the overlap counts, duplicates of each, whitespace of each.
struct KeySide
{
    QString name;
    Dataset dataset; // shared, not copied
    DataColumnIndex column;
};
QStringList detailedKeyReport(
    const KeySide &top, const KeySide &bottom, bool caseSensitive, const QSet<QString> &matched);
