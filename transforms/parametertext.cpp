#include "transforms/parameter.h"

#include "flow/node.h"
#include "transforms/verifyrules.h"

#include <QUrl>

#include <cstdlib>

namespace {

const QChar ItemSeparator(0x1F);
const QLatin1String StartIf("*StartIf*");
const QLatin1String EndIf("*EndIf*");
const QLatin1String NoRename("*NORENAME*");

// Documents before this version numbered the two "is empty" operators 14 and 15.
constexpr int OperatorRenumberVersion = 57;
constexpr int OperatorLimit = 21;
constexpr int VerifyRecordItems = 4;

bool readInt(const QString &text, int *value)
{
    bool ok = false;
    const int number = text.trimmed().toInt(&ok);
    if (ok)
        *value = number;
    return ok;
}

QString flagText(bool on)
{
    return on ? QStringLiteral("1") : QStringLiteral("0");
}

int renumberOperator(int op, int version)
{
    if (version < OperatorRenumberVersion) {
        if (op == 14)
            return 19;
        if (op == 15)
            return 20;
    }
    return op;
}

// 1-based position of a column in the dataset, 0 when it isn't there.
int positionOf(const Dataset *dataset, ColumnId id)
{
    return dataset ? dataset->columnIndex(id).toInt() + 1 : 0;
}

ColumnId columnAt(const Dataset *dataset, int position)
{
    if (!dataset || position < 1 || position > dataset->columnCount())
        return ColumnId();
    return dataset->columnId(DataColumnIndex(position - 1));
}

// A condition on a column that is gone is written as -1: never "<Any>" (0), and never a
// column that may exist when the document is read again.
void appendCondition(QStringList &items, const Condition &condition, const Dataset *dataset)
{
    int position = 0;
    if (!condition.anyColumn) {
        position = positionOf(dataset, condition.column);
        if (position == 0)
            position = -1;
    }
    items << QString::number(position) << QString::number(condition.op)
          << Parameter::encodeItem(condition.term);
}

// The condition whose three items start at index; false when its operator doesn't read.
bool readCondition(
    const QStringList &items, int index, int version, const Dataset *dataset, Condition *condition)
{
    int op = 0;
    if (!readInt(items.at(index + 1), &op))
        return false;
    int position = -1;
    readInt(items.at(index), &position);
    condition->anyColumn = position == 0;
    condition->column = condition->anyColumn ? ColumnId() : columnAt(dataset, position);
    condition->op = renumberOperator(op, version);
    condition->term = Parameter::decodeItem(items.at(index + 2));
    return true;
}

// Where the parts of an If text stand in its list of items.
struct IfLayout
{
    struct Block
    {
        QList<int> conditions; // first item of each condition
        int result = -1;
    };
    QList<Block> blocks;
    int elseText = -1;
};

IfLayout ifLayout(const QStringList &items)
{
    IfLayout layout;
    int i = 0;
    while (i < items.size() && items.at(i) == StartIf) {
        ++i;
        IfLayout::Block block;
        bool complete = false;
        while (i < items.size()) {
            if (items.at(i) == EndIf) {
                complete = i + 1 < items.size();
                break;
            }
            // A condition, then "*EndIf*" and the result still to come: five items at least.
            if (items.size() - i < 5)
                break;
            block.conditions.append(i);
            i += 3;
        }
        if (!complete)
            return layout;
        block.result = i + 1;
        layout.blocks.append(block);
        i += 2;
    }
    if (i < items.size())
        layout.elseText = i;
    return layout;
}

enum class RecordRead { Rule, Skipped, Truncated };

// One VerifyRules record: its item count, then id, value, severity and flag, and any
// items a later version added. A record claiming more items than remain ends the reading.
RecordRead readVerifyRecord(const QStringList &items, int &index, VerifyRule *rule)
{
    int count = 0;
    if (index >= items.size() || !readInt(items.at(index), &count) || count < 0
        || count > items.size() - index - 1)
        return RecordRead::Truncated;
    const int first = index + 1;
    index = first + count;
    int id = 0;
    int severity = 0;
    int flag = 0;
    if (count < VerifyRecordItems || !readInt(items.at(first), &id)
        || !readInt(items.at(first + 2), &severity) || !readInt(items.at(first + 3), &flag))
        return RecordRead::Skipped;
    rule->id = id;
    rule->value = Parameter::decodeItem(items.at(first + 1));
    rule->severity = severity;
    rule->flag = flag != 0;
    return RecordRead::Rule;
}

void appendVerifyRecord(QStringList &items, const VerifyRule &rule)
{
    items << QString::number(VerifyRecordItems) << QString::number(rule.id)
          << Parameter::encodeItem(rule.value) << QString::number(rule.severity) << flagText(rule.flag);
}

// Columns whose rules are all off and empty are left out of documents.
bool hasContent(const VerifyColumnRules &rules)
{
    for (const VerifyRule &rule : rules.rules) {
        if (rule.severity != VerifyFailNone || !rule.value.isEmpty())
            return true;
    }
    return false;
}

// Puts rule in place of the one with the same id, keeping the list in id order.
void mergeRule(QList<VerifyRule> &rules, const VerifyRule &rule)
{
    int i = 0;
    while (i < rules.size() && rules.at(i).id < rule.id)
        ++i;
    if (i < rules.size() && rules.at(i).id == rule.id)
        rules[i] = rule;
    else
        rules.insert(i, rule);
}

// Text read from a document and not yet parsed, as it is written back: each item decoded
// and encoded again, so that its meaning is kept whatever separator it came with.
QString reencodedText(ParameterKind kind, const QString &text, int version)
{
    switch (kind) {
    case ParameterKind::Column:
    case ParameterKind::Bool:
    case ParameterKind::Int:
    case ParameterKind::Real:
    case ParameterKind::Date:
    case ParameterKind::Label:
        return text;
    case ParameterKind::Selection:
    case ParameterKind::Text:
    case ParameterKind::LongText:
    case ParameterKind::Script:
    case ParameterKind::Char:
    case ParameterKind::Locale:
        return Parameter::encodeItem(Parameter::decodeItem(text));
    default:
        break;
    }
    QStringList items = Parameter::splitItems(text);
    // The text is written back with the current version, so old operator numbers are
    // renumbered now, as reading it would have done.
    if (version < OperatorRenumberVersion) {
        int op = 0;
        if (kind == ParameterKind::FilterColumns) {
            for (int i = 2; i + 2 < items.size();) {
                if (readInt(items.at(i + 1), &op)) {
                    op = renumberOperator(op, version);
                    if (op >= OperatorLimit) {
                        items.erase(items.begin() + i, items.begin() + i + 3);
                        continue;
                    }
                    items[i + 1] = QString::number(op);
                }
                i += 3;
            }
        } else if (kind == ParameterKind::If) {
            for (const IfLayout::Block &block : ifLayout(items).blocks) {
                for (int i : block.conditions) {
                    if (readInt(items.at(i + 1), &op))
                        items[i + 1] = QString::number(renumberOperator(op, version));
                }
            }
        }
    }
    for (QString &item : items) {
        if (item != StartIf && item != EndIf && item != NoRename)
            item = Parameter::encodeItem(Parameter::decodeItem(item));
    }
    return Parameter::joinItems(items);
}

// Rules read from a document take the place of those with the same id, and columns read
// take the place of their entry; the rest of the value (columns whose rules were all off
// when saved) stays as the upstream dataset gave it.
bool readVerifyRules(const QString &text, const Dataset *dataset, VerifyRulesValue *rules)
{
    const QStringList items = Parameter::splitItems(text);
    int datasetRuleCount = 0;
    if (items.isEmpty() || !readInt(items.at(0), &datasetRuleCount))
        return false;
    int index = 1;
    bool truncated = false;
    for (int n = 0; n < datasetRuleCount && !truncated; ++n) {
        VerifyRule rule;
        const RecordRead read = readVerifyRecord(items, index, &rule);
        truncated = read == RecordRead::Truncated;
        if (read == RecordRead::Rule && rule.id >= 0 && rule.id < VerifyDatasetRuleCount)
            mergeRule(rules->datasetRules, rule);
    }
    while (!truncated && index + 3 <= items.size()) {
        int position = 0;
        VerifyColumnRules column;
        int ruleCount = 0;
        readInt(items.at(index), &position);
        const bool typeRead = readInt(items.at(index + 1), &column.type);
        if (!readInt(items.at(index + 2), &ruleCount))
            break;
        index += 3;
        for (int n = 0; n < ruleCount && !truncated; ++n) {
            VerifyRule rule;
            const RecordRead read = readVerifyRecord(items, index, &rule);
            truncated = read == RecordRead::Truncated;
            if (read == RecordRead::Rule)
                column.rules.append(rule);
        }
        const ColumnId id = columnAt(dataset, position);
        if (typeRead && !id.isUnset())
            rules->columns.insert(id, column);
    }
    return true;
}

} // namespace

QString Parameter::encodeItem(const QString &text)
{
    return QString::fromLatin1(QUrl::toPercentEncoding(text));
}

QString Parameter::decodeItem(const QString &text)
{
    return QUrl::fromPercentEncoding(text.toUtf8());
}

QString Parameter::joinItems(const QStringList &items)
{
    return items.join(ItemSeparator);
}

QStringList Parameter::splitItems(const QString &text)
{
    if (text.isEmpty())
        return QStringList();
    return text.split(text.contains(ItemSeparator) ? ItemSeparator : QChar(QLatin1Char('^')));
}

void Parameter::setPendingText(const QString &text, int version)
{
    m_pendingText = text;
    m_pendingVersion = version;
    m_pending = true;
}

bool Parameter::applyPending()
{
    if (!m_pending || (m_upstream && m_upstream->status() != Node::UpToDate))
        return false;
    const QString text = m_pendingText;
    fromText(text, m_pendingVersion);
    return true;
}

QString Parameter::toText() const
{
    if (m_pending)
        return reencodedText(m_kind, m_pendingText, m_pendingVersion);
    const Dataset *dataset = upstreamDataset();
    QStringList items;
    switch (m_kind) {
    case ParameterKind::Column:
        return QString::number(positionOf(dataset, m_value.value<ColumnId>()));
    case ParameterKind::Columns:
    case ParameterKind::OptionalColumns:
    case ParameterKind::ReorderColumns:
        for (ColumnId id : m_value.value<QList<ColumnId>>()) {
            const int position = positionOf(dataset, id);
            if (position > 0)
                items << QString::number(position);
        }
        break;
    case ParameterKind::SortColumns:
    case ParameterKind::GroupColumns:
        for (const SortColumn &column : m_value.value<SortColumnList>()) {
            const int position = positionOf(dataset, column.column);
            if (position > 0)
                items << QString::number(column.ascending ? position : -position);
        }
        break;
    case ParameterKind::FilterColumns: {
        const FilterColumnsValue filter = m_value.value<FilterColumnsValue>();
        items << flagText(filter.keep) << flagText(filter.matchAll);
        for (const Condition &condition : filter.conditions)
            appendCondition(items, condition, dataset);
        break;
    }
    case ParameterKind::If: {
        const IfValue ifValue = m_value.value<IfValue>();
        for (const IfBlock &block : ifValue.blocks) {
            items << StartIf;
            for (const Condition &condition : block.conditions)
                appendCondition(items, condition, dataset);
            items << EndIf << encodeItem(block.result);
        }
        items << encodeItem(ifValue.elseText);
        break;
    }
    case ParameterKind::RenameColumns: {
        if (!dataset)
            break;
        const RenameColumnsValue names = m_value.value<RenameColumnsValue>();
        for (int c = 0; c < dataset->columnCount(); ++c) {
            const auto name = names.constFind(dataset->columnId(c));
            items << (name == names.constEnd() ? QString(NoRename) : encodeItem(*name));
        }
        break;
    }
    case ParameterKind::SplitRows: {
        const SplitRule rule = m_value.value<SplitRule>();
        items << QString::number(rule.mode) << flagText(rule.trim) << flagText(rule.skipEmpty)
              << QString::number(positionOf(dataset, rule.column)) << QString::number(rule.maximum)
              << encodeItem(rule.text);
        break;
    }
    case ParameterKind::UniqueColumns: {
        if (!dataset)
            break;
        const UniqueColumnsValue options = m_value.value<UniqueColumnsValue>();
        for (int c = 0; c < dataset->columnCount(); ++c)
            items << QString::number(options.value(dataset->columnId(c), UniqueFirst));
        break;
    }
    case ParameterKind::ReplaceTerms:
        for (const ReplaceTerm &term : m_value.value<ReplaceTermList>())
            items << QString::number(term.type) << encodeItem(term.from) << encodeItem(term.to);
        break;
    case ParameterKind::VerifyRules: {
        const VerifyRulesValue rules = m_value.value<VerifyRulesValue>();
        items << QString::number(rules.datasetRules.size());
        for (const VerifyRule &rule : rules.datasetRules)
            appendVerifyRecord(items, rule);
        if (!dataset)
            break;
        for (int c = 0; c < dataset->columnCount(); ++c) {
            const auto column = rules.columns.constFind(dataset->columnId(c));
            if (column == rules.columns.constEnd() || !hasContent(*column))
                continue;
            items << QString::number(c + 1) << QString::number(column->type)
                  << QString::number(column->rules.size());
            for (const VerifyRule &rule : column->rules)
                appendVerifyRecord(items, rule);
        }
        break;
    }
    case ParameterKind::Bool:
        return flagText(m_value.toBool());
    case ParameterKind::Int:
        return QString::number(m_value.toInt());
    case ParameterKind::Real:
        // Six significant digits, as documents have always held them.
        return QString::number(m_value.toDouble(), 'g', 6);
    case ParameterKind::Char: {
        const QChar c = charValue();
        return c.isNull() ? QString() : encodeItem(QString(c));
    }
    case ParameterKind::Date:
        return dateValue().toString(QStringLiteral("yyyy-MM-dd"));
    case ParameterKind::Selection:
    case ParameterKind::Text:
    case ParameterKind::LongText:
    case ParameterKind::Script:
    case ParameterKind::Locale:
        return encodeItem(m_value.toString());
    case ParameterKind::Label:
        return QString();
    }
    return joinItems(items);
}

void Parameter::fromText(const QString &text, int version)
{
    m_pending = false;
    m_pendingText.clear();
    const Dataset *dataset = upstreamDataset();
    switch (m_kind) {
    case ParameterKind::Column: {
        int position = 0;
        readInt(text, &position);
        m_value = QVariant::fromValue(columnAt(dataset, position));
        break;
    }
    case ParameterKind::Columns:
    case ParameterKind::OptionalColumns:
    case ParameterKind::ReorderColumns: {
        QList<ColumnId> ids;
        for (const QString &item : splitItems(text)) {
            int position = 0;
            readInt(item, &position);
            const ColumnId id = columnAt(dataset, position);
            if (!id.isUnset())
                ids.append(id);
        }
        m_value = QVariant::fromValue(ids);
        break;
    }
    case ParameterKind::SortColumns:
    case ParameterKind::GroupColumns: {
        SortColumnList columns;
        for (const QString &item : splitItems(text)) {
            int position = 0;
            readInt(item, &position);
            const ColumnId id = columnAt(dataset, std::abs(position));
            if (!id.isUnset())
                columns.append({id, position > 0});
        }
        m_value = QVariant::fromValue(columns);
        break;
    }
    case ParameterKind::FilterColumns: {
        const QStringList items = splitItems(text);
        FilterColumnsValue filter;
        int keep = 0;
        int matchAll = 0;
        if (items.size() < 2 || !readInt(items.at(0), &keep) || !readInt(items.at(1), &matchAll))
            break;
        filter.keep = keep != 0;
        filter.matchAll = matchAll != 0;
        for (int i = 2; i + 2 < items.size(); i += 3) {
            Condition condition;
            if (!readCondition(items, i, version, dataset, &condition))
                continue;
            if (version < OperatorRenumberVersion && condition.op >= OperatorLimit)
                continue;
            filter.conditions.append(condition);
        }
        m_value = QVariant::fromValue(filter);
        break;
    }
    case ParameterKind::If: {
        const QStringList items = splitItems(text);
        const IfLayout layout = ifLayout(items);
        IfValue ifValue;
        for (const IfLayout::Block &block : layout.blocks) {
            IfBlock ifBlock;
            for (int i : block.conditions) {
                Condition condition;
                if (readCondition(items, i, version, dataset, &condition))
                    ifBlock.conditions.append(condition);
            }
            ifBlock.result = decodeItem(items.at(block.result));
            ifValue.blocks.append(ifBlock);
        }
        if (layout.elseText >= 0)
            ifValue.elseText = decodeItem(items.at(layout.elseText));
        m_value = QVariant::fromValue(ifValue);
        break;
    }
    case ParameterKind::RenameColumns: {
        const QStringList items = splitItems(text);
        RenameColumnsValue names;
        if (dataset) {
            for (int c = 0; c < qMin(items.size(), dataset->columnCount()); ++c) {
                const ColumnId id = dataset->columnId(c);
                if (items.at(c) != NoRename && !id.isUnset())
                    names.insert(id, decodeItem(items.at(c)));
            }
        }
        m_value = QVariant::fromValue(names);
        break;
    }
    case ParameterKind::SplitRows: {
        const QStringList items = splitItems(text);
        if (items.size() < 6)
            break;
        SplitRule rule = splitRule();
        int number = 0;
        if (readInt(items.at(0), &number))
            rule.mode = number;
        if (readInt(items.at(1), &number))
            rule.trim = number != 0;
        if (readInt(items.at(2), &number))
            rule.skipEmpty = number != 0;
        number = 0;
        readInt(items.at(3), &number);
        rule.column = columnAt(dataset, number);
        if (readInt(items.at(4), &number))
            rule.maximum = number;
        rule.text = decodeItem(items.at(5));
        m_value = QVariant::fromValue(rule);
        break;
    }
    case ParameterKind::UniqueColumns: {
        const QStringList items = splitItems(text);
        UniqueColumnsValue options;
        if (dataset) {
            for (int c = 0; c < qMin(items.size(), dataset->columnCount()); ++c) {
                const ColumnId id = dataset->columnId(c);
                int option = 0;
                if (!id.isUnset() && readInt(items.at(c), &option))
                    options.insert(id, option);
            }
        }
        m_value = QVariant::fromValue(options);
        break;
    }
    case ParameterKind::ReplaceTerms: {
        const QStringList items = splitItems(text);
        ReplaceTermList terms;
        for (int i = 0; i + 2 < items.size(); i += 3) {
            ReplaceTerm term;
            if (!readInt(items.at(i), &term.type))
                continue;
            term.from = decodeItem(items.at(i + 1));
            term.to = decodeItem(items.at(i + 2));
            terms.append(term);
        }
        m_value = QVariant::fromValue(terms);
        break;
    }
    case ParameterKind::VerifyRules: {
        VerifyRulesValue rules = m_value.value<VerifyRulesValue>();
        if (readVerifyRules(text, dataset, &rules))
            m_value = QVariant::fromValue(rules);
        break;
    }
    case ParameterKind::Bool: {
        int number = 0;
        if (readInt(text, &number))
            m_value = number != 0;
        else if (text.trimmed().compare(QLatin1String("true"), Qt::CaseInsensitive) == 0)
            m_value = true;
        else if (text.trimmed().compare(QLatin1String("false"), Qt::CaseInsensitive) == 0)
            m_value = false;
        break;
    }
    case ParameterKind::Int: {
        int number = 0;
        if (readInt(text, &number))
            m_value = number;
        break;
    }
    case ParameterKind::Real: {
        bool ok = false;
        const double number = text.trimmed().toDouble(&ok);
        if (ok)
            m_value = number;
        break;
    }
    case ParameterKind::Char: {
        const QString decoded = decodeItem(text);
        m_value = decoded.isEmpty() ? QChar() : decoded.at(0);
        break;
    }
    case ParameterKind::Date: {
        const QDate date = QDate::fromString(text.trimmed(), QStringLiteral("yyyy-MM-dd"));
        m_value = date.isValid() ? date : QDate(2000, 1, 1);
        break;
    }
    case ParameterKind::Selection: {
        const QString choice = decodeItem(text);
        if (selectionOptions().contains(choice))
            m_value = choice;
        break;
    }
    case ParameterKind::Text:
    case ParameterKind::LongText:
    case ParameterKind::Script:
    case ParameterKind::Locale:
        m_value = decodeItem(text);
        break;
    case ParameterKind::Label:
        break;
    }
}
