#include "workbench/duplicatefinder.h"

#include "core/matching.h"

#include <QElapsedTimer>

QString DuplicateFinder::normalForm(const QString &cell, const Options &options)
{
    QString text;
    if (options.ignoreSpaces || options.ignorePunctuation) {
        text.reserve(cell.size());
        for (const QChar c : cell) {
            if ((options.ignoreSpaces && c.isSpace()) || (options.ignorePunctuation && c.isPunct()))
                continue;
            text.append(c);
        }
    } else {
        text = cell;
    }
    return options.caseSensitive ? text : text.toLower();
}

void DuplicateFinder::start(const Dataset &dataset, const Options &options)
{
    m_dataset = dataset;
    m_options = options;
    m_row = 0;
    m_groupOfKey.clear();
    m_groups.clear();
    m_closeness.assign(size_t(dataset.rowCount()), 100);
    // Without a column there is nothing to compare: every row stands alone.
    if (m_options.columns.isEmpty())
        m_row = dataset.rowCount();
    for (int column : qAsConst(m_options.columns)) {
        if (column < 0 || column >= dataset.columnCount())
            m_row = dataset.rowCount();
    }
}

bool DuplicateFinder::step(int budgetMs)
{
    QElapsedTimer timer;
    timer.start();
    const int rows = m_dataset.rowCount();
    const int width = m_options.columns.size();
    const QChar separator(0x1F);
    QStringList forms;
    while (m_row < rows) {
        const int row = m_row++;
        forms.clear();
        for (int column : qAsConst(m_options.columns))
            forms << normalForm(m_dataset.cell(row, column), m_options);
        const QString key = forms.join(separator);
        int group = m_groupOfKey.value(key, -1);
        if (group < 0 && m_options.fuzzy) {
            // Only the first row of each group is compared, so chains of near matches
            // never pull far rows together.
            qint64 bestScore = -1;
            int bestLowest = 100;
            for (int g = 0; g < int(m_groups.size()); ++g) {
                const QStringList &representative = m_groups[size_t(g)].representative;
                qint64 score = 0;
                int lowest = 100;
                bool fits = true;
                for (int c = 0; c < width && fits; ++c) {
                    const int value = closeness(forms.at(c), representative.at(c), m_options.fuzziness);
                    fits = value >= m_options.fuzziness;
                    score += value;
                    lowest = qMin(lowest, value);
                }
                if (fits && score > bestScore) {
                    bestScore = score;
                    bestLowest = lowest;
                    group = g;
                }
            }
            if (group >= 0)
                m_closeness[size_t(row)] = bestLowest;
        }
        if (group < 0) {
            group = int(m_groups.size());
            Group entry;
            entry.representative = forms;
            m_groups.push_back(entry);
            m_groupOfKey.insert(key, group);
        }
        m_groups[size_t(group)].rows.push_back(row);
        if (budgetMs >= 0 && (m_options.fuzzy || (m_row & 255) == 0) && timer.elapsed() >= budgetMs)
            return isDone();
    }
    return true;
}

double DuplicateFinder::progress() const
{
    return m_dataset.rowCount() > 0 ? double(m_row) / m_dataset.rowCount() : 1.0;
}

std::vector<int> DuplicateFinder::duplicateGroups() const
{
    std::vector<int> result;
    for (int g = 0; g < int(m_groups.size()); ++g) {
        if (m_groups[size_t(g)].rows.size() > 1)
            result.push_back(g);
    }
    return result;
}
