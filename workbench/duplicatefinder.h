#pragma once

#include "core/dataset.h"

#include <QHash>
#include <QList>
#include <QStringList>

#include <vector>

// Groups the rows of a table that match on chosen columns, exactly or fuzzily, as the
// Dedupe transform does: a cell's normal form drops whitespace and punctuation when
// asked and is lower-cased unless case matters; an exact match is an equal key, a fuzzy
// one a closeness of at least the chosen percentage in every column with a group's
// first row. Work goes in slices, so a caller can keep the window alive.
class DuplicateFinder
{
public:
    struct Options
    {
        QList<int> columns; // dataset column indexes, in column order
        bool fuzzy = false;
        int fuzziness = 90;
        bool caseSensitive = false;
        bool ignoreSpaces = false;
        bool ignorePunctuation = false;
    };
    struct Group
    {
        std::vector<int> rows; // ascending
        QStringList representative; // normal forms of the first row
    };

    static QString normalForm(const QString &cell, const Options &options);

    void start(const Dataset &dataset, const Options &options);
    // Works for about budgetMs (below 0: to the end); true when done.
    bool step(int budgetMs);
    bool isDone() const { return m_row >= m_dataset.rowCount(); }
    double progress() const;

    const std::vector<Group> &groups() const { return m_groups; }
    // Per row: the lowest column closeness to its group's first row, in percent.
    int rowCloseness(int row) const { return m_closeness[size_t(row)]; }
    // Groups of two or more rows, in the order of their first rows.
    std::vector<int> duplicateGroups() const;
    const Options &options() const { return m_options; }

private:
    Dataset m_dataset;
    Options m_options;
    int m_row = 0;
    QHash<QString, int> m_groupOfKey;
    std::vector<Group> m_groups;
    std::vector<int> m_closeness;
};
