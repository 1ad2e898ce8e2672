#include "transforms/transformjoin.h"

#include "core/values.h"
#include "flow/node.h"
#include "transforms/inputorder.h"
#include "transforms/keyguess.h"

#include <QHash>

#include <vector>

namespace {

// The most rows a table can hold: its row list is one block of pointers.
constexpr qint64 MaximumRows = (qint64(2147483647) - 64) / qint64(sizeof(void *));

// Appends the first count cells of cells, empty ones where the row is short, leaving out
// the cell at skip.
void appendCells(QStringList &row, const QStringList &cells, int count, int skip = -1)
{
    for (int c = 0; c < count; ++c) {
        if (c != skip)
            row.append(c < cells.size() ? cells.at(c) : QString());
    }
}

void appendEmpty(QStringList &row, int count)
{
    for (int c = 0; c < count; ++c)
        row.append(QString());
}

// The bottom rows grouped by key, each group's rows in ascending order: what an ordered
// multi-map filled from the last bottom row to the first yields for a key, found by hash.
struct BottomKeys
{
    QHash<QString, int> groupOfKey;
    std::vector<int> firstRow; // per group
    std::vector<int> size; // per group
    std::vector<int> nextRow; // per bottom row: the next row with the same key, or -1
    std::vector<int> group; // per bottom row

    BottomKeys(const Dataset &bottom, int column, bool caseSensitive)
    {
        const int rows = bottom.rowCount();
        groupOfKey.reserve(rows);
        nextRow.assign(size_t(rows), -1);
        group.resize(size_t(rows));
        std::vector<int> lastRow;
        for (int b = 0; b < rows; ++b) {
            const QString key = matchKey(bottom.cell(b, column), caseSensitive);
            const auto found = groupOfKey.constFind(key);
            int g;
            if (found == groupOfKey.constEnd()) {
                g = int(firstRow.size());
                groupOfKey.insert(key, g);
                firstRow.push_back(b);
                lastRow.push_back(b);
                size.push_back(1);
            } else {
                g = found.value();
                nextRow[size_t(lastRow[size_t(g)])] = b;
                lastRow[size_t(g)] = b;
                ++size[size_t(g)];
            }
            group[size_t(b)] = g;
        }
    }

    int find(const QString &key) const { return groupOfKey.value(key, -1); }
};

} // namespace

QString TransformJoin::description() const
{
    return tr(
        "Merge 2 input datasets side by side using common (key) columns or row numbers. The bottom dataset "
        "(by vertical position) is joined to the right of the top dataset.");
}

QSet<QString> TransformJoin::keywords() const
{
    QSet<QString> words = Transform::keywords();
    words << QStringLiteral("joins") << QStringLiteral("denormalise") << QStringLiteral("denormalize")
          << QStringLiteral("two") << QStringLiteral("2") << QStringLiteral("common")
          << QStringLiteral("keys") << QStringLiteral("side") << QStringLiteral("horizontally")
          << QStringLiteral("unique") << QStringLiteral("ids") << QStringLiteral("inner")
          << QStringLiteral("outer") << QStringLiteral("left") << QStringLiteral("right")
          << QStringLiteral("enrich");
    return words;
}

QList<QPair<QString, bool>> TransformJoin::parameterStates() const
{
    const Parameter *by = parameter(QStringLiteral("By"));
    const bool byKey = !by || by->selectionText() != QLatin1String("Row number");
    return {{QStringLiteral("Column_1"), byKey}, {QStringLiteral("Column_2"), byKey},
        {QStringLiteral("Case_Sensitive"), byKey}, {QStringLiteral("Detailed_Report"), byKey}};
}

void TransformJoin::createParameters(const QList<Node *> &inputs, bool useDefaults)
{
    Transform::createParameters(inputs, useDefaults);

    // Choices are stored in documents as they stand, so they are not translated.
    auto *by = new Parameter(ParameterKind::Selection, QStringLiteral("By"), tr("By"), QStringLiteral("Key"),
        QStringList {QStringLiteral("Key"), QStringLiteral("Row number")});
    applyDefault(useDefaults, by);
    by->setTooltip(tr("Choose how to join the 2 datsets."));
    addParameter(by);

    // Each key column watches its own input: the first the top, the second the bottom.
    auto *topKey = new Parameter(
        ParameterKind::Column, QStringLiteral("Column_1"), tr("Top key column"), inputs.value(0));
    topKey->setTooltip(tr("Select a common (key) column in top input dataset."));
    addParameter(topKey);

    auto *includeTop = new Parameter(ParameterKind::Bool, QStringLiteral("Include_Non_Matching_1"),
        tr("include top non-matching rows"), false);
    applyDefault(useDefaults, includeTop);
    includeTop->setTooltip(
        tr("Check to include rows in the top input dataset with no matching value in the bottom "
           "input dataset ('left join')."));
    addParameter(includeTop);

    auto *bottomKey = new Parameter(
        ParameterKind::Column, QStringLiteral("Column_2"), tr("Bottom key column"), inputs.value(1));
    bottomKey->setTooltip(tr("Select a common (key) column in the bottom input data."));
    addParameter(bottomKey);

    auto *includeBottom = new Parameter(ParameterKind::Bool, QStringLiteral("Include_Non_Matching_2"),
        tr("include bottom non-matching rows"), false);
    applyDefault(useDefaults, includeBottom);
    includeBottom->setTooltip(
        tr("Check to include rows in the bottom input dataset with no matching value in the "
           "top input dataset ('right join')."));
    addParameter(includeBottom);

    auto *caseSensitive =
        new Parameter(ParameterKind::Bool, QStringLiteral("Case_Sensitive"), tr("case sensitive"), true);
    applyDefault(useDefaults, caseSensitive);
    caseSensitive->setTooltip(tr("Check for case sensitive matching of keys."));
    addParameter(caseSensitive);

    auto *report =
        new Parameter(ParameterKind::Bool, QStringLiteral("Detailed_Report"), tr("detailed report"), false);
    applyDefault(useDefaults, report);
    report->setTooltip(
        tr("Report on duplicate keys in each dataset, overlap of keys in both datasets and leading "
           "and trailing whitespace in keys. This slows down the join."));
    addParameter(report);

    if (inputs.size() >= 2)
        guessKeyColumns(topKey, bottomKey, false);
}

bool TransformJoin::reorderInputs(QList<Node *> &inputs)
{
    Parameter *topKey = parameter(QStringLiteral("Column_1"));
    Parameter *bottomKey = parameter(QStringLiteral("Column_2"));
    const bool swapped = swapInputsByPosition(inputs, topKey, bottomKey);
    // The key options say which input is the top one; inputs listed the other way round,
    // as when a document lists its connections by item id, follow them.
    if (topKey && bottomKey && inputs.size() == 2 && topKey->upstream() == inputs.at(1)
        && bottomKey->upstream() == inputs.at(0)) {
        inputs.swapItemsAt(0, 1);
        return true;
    }
    return swapped;
}

void TransformJoin::setUpstream(const QList<Node *> &nodes)
{
    Transform::setUpstream(nodes);
    Parameter *topKey = parameter(QStringLiteral("Column_1"));
    Parameter *bottomKey = parameter(QStringLiteral("Column_2"));
    if (nodes.size() < 2 || !topKey || !bottomKey)
        return;
    // The higher item is the top one from the moment both are connected, whatever the
    // order of connecting: a document lists its connections by item id, and the positions
    // in its key options count the columns of the top and of the bottom item.
    QList<Node *> order = nodes;
    swapInputsByPosition(order, topKey, bottomKey);
    // A second input reaching a join whose keys are still open: guess them, as when the
    // join is made on two items at once. Keys chosen before, or waiting in a document's
    // text, stay as they are.
    if (topKey->isPending() || bottomKey->isPending())
        return;
    if (topKey->columnId().isUnset() && bottomKey->columnId().isUnset())
        guessKeyColumns(topKey, bottomKey, false);
}

Dataset TransformJoin::process(const QList<Node *> &inputs, bool &failed)
{
    Q_UNUSED(failed) // only a verifying transform may stop the flow
    if (inputs.isEmpty() || inputs.size() > 2 || inputs.contains(nullptr))
        return Dataset();
    if (inputs.size() == 1)
        return passThrough(inputs, tr("Connect a second dataset"));
    for (const char *name : {"By", "Column_1", "Include_Non_Matching_1", "Column_2", "Include_Non_Matching_2",
             "Case_Sensitive", "Detailed_Report"}) {
        if (!parameter(QLatin1String(name)))
            return Dataset();
    }
    const Dataset &top = inputs.at(0)->dataset();
    const Dataset &bottom = inputs.at(1)->dataset();
    if (parameter(QStringLiteral("By"))->selectionText() == QLatin1String("Row number"))
        return joinByRowNumber(top, bottom);
    return joinByKey(top, bottom);
}

Dataset TransformJoin::joinByKey(const Dataset &top, const Dataset &bottom)
{
    const Parameter *topKey = parameter(QStringLiteral("Column_1"));
    const Parameter *bottomKey = parameter(QStringLiteral("Column_2"));
    // Each key is looked for in its own input, which is the dataset the option watches.
    const int tk = top.columnIndex(topKey->columnId()).toInt();
    const int bk = bottom.columnIndex(bottomKey->columnId()).toInt();
    if (tk < 0 || bk < 0) {
        setResult(tr("No changes"));
        return top;
    }
    const bool includeTop = parameter(QStringLiteral("Include_Non_Matching_1"))->boolValue();
    const bool includeBottom = parameter(QStringLiteral("Include_Non_Matching_2"))->boolValue();
    const bool caseSensitive = parameter(QStringLiteral("Case_Sensitive"))->boolValue();
    const bool detailed = parameter(QStringLiteral("Detailed_Report"))->boolValue();
    const int topColumns = top.columnCount();
    const int bottomColumns = bottom.columnCount();
    const int topRows = top.rowCount();
    const int bottomRows = bottom.rowCount();

    // First the lookups, so that the size of the output is known before it is built.
    const BottomKeys keys(bottom, bk, caseSensitive);
    std::vector<int> topGroup(size_t(topRows), -1);
    std::vector<char> groupMatched(keys.firstRow.size(), 0);
    qint64 matchedRows = 0;
    qint64 topOnly = 0;
    for (int t = 0; t < topRows; ++t) {
        reportRowProgress(t, topRows);
        const int g = keys.find(matchKey(top.cell(t, tk), caseSensitive));
        topGroup[size_t(t)] = g;
        if (g < 0) {
            ++topOnly;
            continue;
        }
        groupMatched[size_t(g)] = 1;
        matchedRows += keys.size[size_t(g)];
    }
    qint64 bottomOnly = 0;
    for (int b = 0; b < bottomRows; ++b) {
        if (!groupMatched[size_t(keys.group[size_t(b)])])
            ++bottomOnly;
    }
    const qint64 total = matchedRows + (includeTop ? topOnly : 0) + (includeBottom ? bottomOnly : 0);

    // The bottom key column is left out as the rows are built: its values live on in the
    // top key column.
    Dataset output;
    output.setColumnCount(topColumns + bottomColumns - 1);
    joinColumns(output, top, bottom, bk);
    if (total > MaximumRows) {
        addWarning(tr("The join would give %1 rows, more than a table can hold: repeated keys multiply "
                      "rows, so check the key columns")
                       .arg(formatCount(total)));
        setResult(tr("%1 %2 joined").arg(formatCount(0), tr("rows")));
        return output;
    }
    output.setRowCount(int(total));

    const int width = output.columnCount();
    int out = 0;
    const auto place = [&](QStringList &row) {
        reportRowProgress(out, int(total));
        output.mutableRow(out++).swap(row);
    };
    for (int t = 0; t < topRows; ++t) {
        const int g = topGroup[size_t(t)];
        if (g < 0)
            continue;
        const QStringList &topCells = top.row(t);
        for (int b = keys.firstRow[size_t(g)]; b >= 0; b = keys.nextRow[size_t(b)]) {
            QStringList row;
            row.reserve(width);
            appendCells(row, topCells, topColumns);
            appendCells(row, bottom.row(b), bottomColumns, bk);
            place(row);
        }
    }
    if (includeTop) {
        for (int t = 0; t < topRows; ++t) {
            if (topGroup[size_t(t)] >= 0)
                continue;
            QStringList row;
            row.reserve(width);
            appendCells(row, top.row(t), topColumns);
            appendEmpty(row, bottomColumns - 1);
            place(row);
        }
    }
    if (includeBottom) {
        for (int b = 0; b < bottomRows; ++b) {
            if (groupMatched[size_t(keys.group[size_t(b)])])
                continue;
            // The key is kept in the surviving key column, as the bottom row writes it.
            QStringList row;
            row.reserve(width);
            appendEmpty(row, topColumns);
            row[tk] = bottom.cell(b, bk);
            appendCells(row, bottom.row(b), bottomColumns, bk);
            place(row);
        }
    }

    setResult(tr("%1 %2 joined")
                  .arg(formatCount(output.rowCount()), plural(output.rowCount(), tr("row"), tr("rows"))));
    addInformation(tr("%1 rows have keys in both datasets").arg(formatCount(matchedRows)));
    if (detailed) {
        QSet<QString> matched;
        for (auto it = keys.groupOfKey.cbegin(); it != keys.groupOfKey.cend(); ++it) {
            if (groupMatched[size_t(it.value())])
                matched.insert(it.key());
        }
        const QStringList lines = detailedKeyReport(
            {topKey->label(), top, tk}, {bottomKey->label(), bottom, bk}, caseSensitive, matched);
        for (const QString &line : lines)
            addInformation(line);
    }
    return output;
}

Dataset TransformJoin::joinByRowNumber(const Dataset &top, const Dataset &bottom)
{
    const bool includeTop = parameter(QStringLiteral("Include_Non_Matching_1"))->boolValue();
    const bool includeBottom = parameter(QStringLiteral("Include_Non_Matching_2"))->boolValue();
    const int topRows = top.rowCount();
    const int bottomRows = bottom.rowCount();
    int rows = qMin(topRows, bottomRows);
    if (includeTop && includeBottom)
        rows = qMax(topRows, bottomRows);
    else if (includeTop)
        rows = topRows;
    else if (includeBottom)
        rows = bottomRows;

    const int topColumns = top.columnCount();
    const int bottomColumns = bottom.columnCount();
    Dataset output;
    if (topColumns + bottomColumns > 0) {
        output.setColumnCount(topColumns + bottomColumns);
        joinColumns(output, top, bottom, -1);
        output.setRowCount(rows);
        for (int r = 0; r < rows; ++r) {
            reportRowProgress(r, rows);
            QStringList row;
            row.reserve(topColumns + bottomColumns);
            if (r < topRows)
                appendCells(row, top.row(r), topColumns);
            else
                appendEmpty(row, topColumns);
            if (r < bottomRows)
                appendCells(row, bottom.row(r), bottomColumns);
            else
                appendEmpty(row, bottomColumns);
            output.mutableRow(r).swap(row);
        }
    }

    const int joined = output.rowCount();
    setResult(tr("%1 %2 joined").arg(formatCount(joined), plural(joined, tr("row"), tr("rows"))));
    const int topUsed = qMin(joined, topRows);
    const int bottomUsed = qMin(joined, bottomRows);
    addInformation(
        tr("%1 %2 used from %3 in top dataset")
            .arg(formatCount(topUsed), plural(topUsed, tr("row"), tr("rows")), formatCount(topRows)));
    addInformation(tr("%1 %2 used from %3 in bottom dataset")
                       .arg(formatCount(bottomUsed), plural(bottomUsed, tr("row"), tr("rows")),
                           formatCount(bottomRows)));
    return output;
}

void TransformJoin::joinColumns(Dataset &output, const Dataset &top, const Dataset &bottom, int skipBottom)
{
    QList<ColumnId> ids;
    QStringList headers;
    // A side without headers contributes its column numbers.
    const auto add = [&](const Dataset &side, int skip) {
        for (int c = 0; c < side.columnCount(); ++c) {
            if (c == skip)
                continue;
            ids << side.columnId(c);
            headers << (side.hasHeaders() ? side.headers().value(c) : QString::number(c + 1));
        }
    };
    add(top, -1);
    add(bottom, skipBottom);
    if (top.hasHeaders() || bottom.hasHeaders())
        output.setHeaders(headers);
    output.setColumnIds(ids);
    // Both inputs may descend from one source: the second of two equal ids is cleared, so
    // that an option downstream stays with the first column.
    output.clearDuplicateColumnIds();
}
