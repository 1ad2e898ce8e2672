#include "transforms/transformfilter.h"

#include "core/matching.h"
#include "core/values.h"
#include "flow/node.h"

#include <vector>

namespace {

// Longest summary shown in the item's tool tip before it is cut with "…".
constexpr int SummaryLength = 250;

// A usable condition with its columns found in the input: none for a column that no
// longer exists, every column for "<Any>".
struct RowTest
{
    std::vector<int> columns;
    int op = 0;
    QString term;
    bool hasVariables = false;
};

std::vector<RowTest> rowTests(const FilterColumnsValue &filter, const Dataset &dataset)
{
    std::vector<RowTest> tests;
    for (const Condition &condition : filter.conditions) {
        if (!TransformFilter::isUsable(condition))
            continue;
        RowTest test;
        test.op = condition.op;
        test.term = condition.term;
        test.hasVariables = condition.term.contains(QLatin1String("$("));
        if (condition.anyColumn) {
            for (int c = 0; c < dataset.columnCount(); ++c)
                test.columns.push_back(c);
        } else {
            const DataColumnIndex column = dataset.columnIndex(condition.column);
            if (column.isValid() && column.toInt() < dataset.columnCount())
                test.columns.push_back(column.toInt());
        }
        tests.push_back(test);
    }
    return tests;
}

// Whether the row meets the conditions: every one with matchAll, else any one. A
// condition holds when one of its columns matches; the walk stops as soon as the answer
// is known.
bool rowMatches(
    const Dataset &dataset, int row, const std::vector<RowTest> &tests, bool matchAll, bool caseSensitive)
{
    const QStringList &cells = dataset.row(row);
    for (const RowTest &test : tests) {
        // Variables take this row's cells, once for all the columns of "<Any>".
        const QString term = test.hasVariables ? dataset.substituteVariables(row, test.term) : test.term;
        bool holds = false;
        for (int c : test.columns) {
            if (c < cells.size() && matches(test.op, cells.at(c), term, caseSensitive)) {
                holds = true;
                break;
            }
        }
        if (holds != matchAll)
            return holds;
    }
    return matchAll;
}

// "equal to" from "=   Equal to": the words of an operator's label without its symbol.
QString operatorWords(int op)
{
    const QString label = operatorLabel(op);
    const int space = label.indexOf(QLatin1Char(' '));
    QString words = space < 0 ? label : label.mid(space).trimmed();
    if (words.isEmpty())
        return QStringLiteral("?");
    words[0] = words.at(0).toLower();
    return words;
}

} // namespace

QString TransformFilter::description() const
{
    return tr("Keep or remove the rows that meet conditions on their values.");
}

void TransformFilter::createParameters(const QList<Node *> &inputs, bool useDefaults)
{
    Transform::createParameters(inputs, useDefaults);

    auto *conditions = new Parameter(
        ParameterKind::FilterColumns, QStringLiteral("Columns"), tr("Filtering"), inputs.value(0));
    conditions->setTooltip(tr("Set the conditions that decide which rows are kept or removed."));
    addParameter(conditions);

    auto *caseSensitive =
        new Parameter(ParameterKind::Bool, QStringLiteral("Case_Sensitive"), tr("case sensitive"), false);
    applyDefault(useDefaults, caseSensitive);
    caseSensitive->setTooltip(tr("Check for case sensitive text matching."));
    addParameter(caseSensitive);

    auto *disable =
        new Parameter(ParameterKind::Bool, QStringLiteral("Disable"), tr("disable filtering"), false);
    disable->setDisableSwitch(true);
    applyDefault(useDefaults, disable);
    disable->setTooltip(tr("Check to disable filtering (which means that transform does nothing)."));
    addParameter(disable);
}

bool TransformFilter::isUsable(const Condition &condition)
{
    return !condition.term.isEmpty() || needsNoTerm(condition.op);
}

Dataset TransformFilter::process(const QList<Node *> &inputs, bool &failed)
{
    Q_UNUSED(failed) // only a verifying transform may stop the flow
    const Parameter *conditions = parameter(QStringLiteral("Columns"));
    const Parameter *caseSensitive = parameter(QStringLiteral("Case_Sensitive"));
    const Parameter *disable = parameter(QStringLiteral("Disable"));
    if (inputs.size() != 1 || !inputs.first() || !conditions || !caseSensitive || !disable)
        return Dataset();
    const Dataset &input = inputs.first()->dataset();
    if (disable->boolValue()) {
        addInformation(tr("Filtering is disabled"));
        return input;
    }

    const FilterColumnsValue filter = conditions->filterColumns();
    const std::vector<RowTest> tests = rowTests(filter, input);
    if (tests.empty()) {
        setResult(tr("No changes"));
        return input;
    }

    const int rowCount = input.rowCount();
    const bool cs = caseSensitive->boolValue();
    std::vector<int> kept;
    kept.reserve(size_t(rowCount));
    for (int r = 0; r < rowCount; ++r) {
        reportRowProgress(r, rowCount);
        if (rowMatches(input, r, tests, filter.matchAll, cs) == filter.keep)
            kept.push_back(r);
    }

    const int removed = rowCount - int(kept.size());
    if (removed == 0) {
        setResult(tr("No changes"));
        return input;
    }
    // The kept rows move up in place in a copy, so that the output shares every row list
    // and cell with the input and keeps its columns, headers and ids.
    Dataset output = input;
    for (int k = 0; k < int(kept.size()); ++k) {
        if (kept[size_t(k)] != k)
            output.mutableRow(k) = input.row(kept[size_t(k)]);
    }
    output.setRowCount(int(kept.size()));
    // Marks recorded upstream point at rows that have moved.
    output.clearCellRowLinks();
    output.clearVerifyMarks();
    setResult(tr("%1 %2 removed").arg(formatCount(removed), plural(removed, tr("row"), tr("rows"))));
    return output;
}

QString TransformFilter::summary() const
{
    const Parameter *conditions = parameter(QStringLiteral("Columns"));
    if (!conditions)
        return QString();
    return summary(conditions->filterColumns(), conditions->upstreamDataset());
}

QString TransformFilter::summary(const FilterColumnsValue &filter, const Dataset *dataset)
{
    if (filter.conditions.isEmpty())
        return tr("No filter terms");
    QStringList parts;
    for (const Condition &condition : filter.conditions) {
        QString column;
        if (condition.anyColumn) {
            column = tr("<Any>");
        } else {
            const DataColumnIndex index =
                dataset ? dataset->columnIndex(condition.column) : DataColumnIndex();
            column = index.isValid() ? dataset->headerText(index) : tr("<None selected>");
        }
        if (needsNoTerm(condition.op))
            parts << tr("(%1 %2)").arg(column, operatorWords(condition.op));
        else
            parts << tr("(%1 %2 '%3')").arg(column, operatorWords(condition.op), condition.term);
    }
    const QString text = (filter.keep ? tr("Keep") : tr("Remove")) + QLatin1Char(' ')
        + parts.join(filter.matchAll ? tr(" AND ") : tr(" OR "));
    return elideText(text, SummaryLength, true);
}
