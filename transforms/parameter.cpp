#include "transforms/parameter.h"

#include "flow/node.h"
#include "transforms/verifyrules.h"

namespace {

void registerValueTypes()
{
    static const bool registered = [] {
        qRegisterMetaType<ColumnId>("ColumnId");
        qRegisterMetaType<QList<ColumnId>>("QList<ColumnId>");
        qRegisterMetaType<SortColumnList>("SortColumnList");
        qRegisterMetaType<FilterColumnsValue>("FilterColumnsValue");
        qRegisterMetaType<IfValue>("IfValue");
        qRegisterMetaType<SplitRule>("SplitRule");
        qRegisterMetaType<UniqueColumnsValue>("UniqueColumnsValue");
        qRegisterMetaType<RenameColumnsValue>("RenameColumnsValue");
        qRegisterMetaType<ReplaceTermList>("ReplaceTermList");
        qRegisterMetaType<VerifyRulesValue>("VerifyRulesValue");
        QMetaType::registerEqualsComparator<ColumnId>();
        QMetaType::registerEqualsComparator<QList<ColumnId>>();
        QMetaType::registerEqualsComparator<SortColumnList>();
        QMetaType::registerEqualsComparator<FilterColumnsValue>();
        QMetaType::registerEqualsComparator<IfValue>();
        QMetaType::registerEqualsComparator<SplitRule>();
        QMetaType::registerEqualsComparator<UniqueColumnsValue>();
        QMetaType::registerEqualsComparator<RenameColumnsValue>();
        QMetaType::registerEqualsComparator<ReplaceTermList>();
        QMetaType::registerEqualsComparator<VerifyRulesValue>();
        return true;
    }();
    Q_UNUSED(registered)
}

QVariant defaultValue(ParameterKind kind)
{
    switch (kind) {
    case ParameterKind::Column:
        return QVariant::fromValue(ColumnId());
    case ParameterKind::Columns:
    case ParameterKind::OptionalColumns:
    case ParameterKind::ReorderColumns:
        return QVariant::fromValue(QList<ColumnId>());
    case ParameterKind::SortColumns:
    case ParameterKind::GroupColumns:
        return QVariant::fromValue(SortColumnList());
    case ParameterKind::FilterColumns:
        return QVariant::fromValue(FilterColumnsValue());
    case ParameterKind::If:
        return QVariant::fromValue(IfValue());
    case ParameterKind::RenameColumns:
        return QVariant::fromValue(RenameColumnsValue());
    case ParameterKind::SplitRows:
        return QVariant::fromValue(SplitRule());
    case ParameterKind::UniqueColumns:
        return QVariant::fromValue(UniqueColumnsValue());
    case ParameterKind::ReplaceTerms:
        return QVariant::fromValue(ReplaceTermList());
    case ParameterKind::VerifyRules:
        return QVariant::fromValue(VerifyRulesValue());
    case ParameterKind::Bool:
        return false;
    case ParameterKind::Int:
        return 0;
    case ParameterKind::Real:
        return 0.0;
    case ParameterKind::Char:
        return QChar();
    case ParameterKind::Date:
        return QDate(2000, 1, 1);
    case ParameterKind::Selection:
    case ParameterKind::Text:
    case ParameterKind::LongText:
    case ParameterKind::Script:
    case ParameterKind::Locale:
        return QString();
    case ParameterKind::Label:
        break;
    }
    return QVariant();
}

bool isLive(const Dataset *dataset, ColumnId id)
{
    return dataset && dataset->columnIndex(id).isValid();
}

} // namespace

Parameter::Parameter(ParameterKind kind, const QString &name, const QString &label, const QVariant &value,
    const QVariant &options)
    : m_kind(kind)
    , m_name(name)
    , m_label(label)
    , m_value(value.isValid() ? value : defaultValue(kind))
    , m_options(options)
{
    registerValueTypes();
}

Parameter::Parameter(ParameterKind kind, const QString &name, const QString &label, Node *upstream)
    : m_kind(kind)
    , m_name(name)
    , m_label(label)
    , m_value(defaultValue(kind))
{
    registerValueTypes();
    setUpstream(upstream, true);
}

void Parameter::setValue(const QVariant &value)
{
    m_value = value;
    m_pending = false;
    m_pendingText.clear();
}

const Dataset *Parameter::upstreamDataset() const
{
    return m_upstream ? &m_upstream->dataset() : nullptr;
}

void Parameter::setUpstream(Node *node, bool reset)
{
    if (!node)
        return;
    m_upstream = node;
    if (!reset)
        return;
    const Dataset &dataset = node->dataset();
    switch (m_kind) {
    case ParameterKind::FilterColumns:
        m_value = QVariant::fromValue(FilterColumnsValue());
        break;
    case ParameterKind::If:
        m_value = QVariant::fromValue(IfValue());
        break;
    case ParameterKind::SplitRows:
        m_value = QVariant::fromValue(SplitRule());
        break;
    case ParameterKind::UniqueColumns: {
        UniqueColumnsValue options;
        for (ColumnId id : dataset.columnIds()) {
            if (!id.isUnset())
                options.insert(id, UniqueFirst);
        }
        m_value = QVariant::fromValue(options);
        break;
    }
    case ParameterKind::VerifyRules:
        m_value = QVariant::fromValue(verifyRulesOff(dataset));
        break;
    default:
        break;
    }
}

void Parameter::selectAllColumns()
{
    if (m_kind != ParameterKind::Columns && m_kind != ParameterKind::OptionalColumns)
        return;
    const Dataset *dataset = upstreamDataset();
    if (!dataset || dataset->hasNoColumns())
        return;
    QList<ColumnId> ids;
    for (ColumnId id : dataset->columnIds()) {
        if (!id.isUnset())
            ids.append(id);
    }
    // A document's text still waiting to be read wins over this starting choice.
    m_value = QVariant::fromValue(ids);
}

bool Parameter::isUnset() const
{
    switch (m_kind) {
    case ParameterKind::Column:
        return m_columnRequired && !columnIndex().isValid();
    case ParameterKind::Columns:
        return columnIds().isEmpty();
    case ParameterKind::SortColumns:
    case ParameterKind::GroupColumns:
        return m_value.value<SortColumnList>().isEmpty();
    case ParameterKind::FilterColumns:
        return m_value.value<FilterColumnsValue>().conditions.isEmpty();
    case ParameterKind::Selection: {
        const QStringList options = selectionOptions();
        return m_selectionRequired && !options.isEmpty() && m_value.toString() == options.first();
    }
    case ParameterKind::Text:
    case ParameterKind::LongText:
        return m_textRequired && m_value.toString().isEmpty();
    case ParameterKind::Int:
        return m_intRequired && m_value.toInt() == 0;
    case ParameterKind::Char:
        return charValue().isNull();
    case ParameterKind::If:
        return m_value.value<IfValue>().blocks.isEmpty();
    case ParameterKind::Script:
        return m_value.toString().trimmed().isEmpty();
    case ParameterKind::SplitRows: {
        const SplitRule rule = splitRule();
        const Dataset *dataset = upstreamDataset();
        return (rule.mode == 2 && !isLive(dataset, rule.column)) || (rule.mode == 0 && rule.text.isEmpty());
    }
    case ParameterKind::UniqueColumns: {
        const UniqueColumnsValue options = uniqueColumns();
        for (auto it = options.constBegin(); it != options.constEnd(); ++it) {
            if (it.value() == UniqueKey)
                return false;
        }
        return true;
    }
    case ParameterKind::ReplaceTerms:
        return m_value.value<ReplaceTermList>().isEmpty();
    default:
        break;
    }
    return false;
}

bool Parameter::boolValue() const
{
    return m_value.toBool();
}

int Parameter::intValue() const
{
    return m_value.toInt();
}

double Parameter::realValue() const
{
    return m_value.toDouble();
}

QString Parameter::stringValue() const
{
    if (m_kind == ParameterKind::Char) {
        const QChar c = charValue();
        return c.isNull() ? QString() : QString(c);
    }
    return m_value.toString();
}

QChar Parameter::charValue() const
{
    if (m_value.userType() == QMetaType::QChar)
        return m_value.toChar();
    const QString text = m_value.toString();
    return text.isEmpty() ? QChar() : text.at(0);
}

QDate Parameter::dateValue() const
{
    const QDate date = m_value.toDate();
    return date.isValid() ? date : QDate(2000, 1, 1);
}

int Parameter::selectionIndex() const
{
    return selectionOptions().indexOf(m_value.toString());
}

QString Parameter::selectionText() const
{
    return m_value.toString();
}

ColumnId Parameter::columnId() const
{
    return m_value.value<ColumnId>();
}

DataColumnIndex Parameter::columnIndex() const
{
    const Dataset *dataset = upstreamDataset();
    return dataset ? dataset->columnIndex(columnId()) : DataColumnIndex();
}

QList<ColumnId> Parameter::columnIds() const
{
    const Dataset *dataset = upstreamDataset();
    QList<ColumnId> ids;
    if (m_kind == ParameterKind::Column) {
        if (isLive(dataset, columnId()))
            ids.append(columnId());
    } else if (m_kind == ParameterKind::SortColumns || m_kind == ParameterKind::GroupColumns) {
        for (const SortColumn &column : sortColumns())
            ids.append(column.column);
    } else {
        for (ColumnId id : m_value.value<QList<ColumnId>>()) {
            if (isLive(dataset, id))
                ids.append(id);
        }
    }
    return ids;
}

QList<DataColumnIndex> Parameter::columnIndexes() const
{
    const Dataset *dataset = upstreamDataset();
    return dataset ? dataset->columnIndexes(columnIds()) : QList<DataColumnIndex>();
}

SortColumnList Parameter::sortColumns() const
{
    const Dataset *dataset = upstreamDataset();
    SortColumnList columns;
    for (const SortColumn &column : m_value.value<SortColumnList>()) {
        if (isLive(dataset, column.column))
            columns.append(column);
    }
    return columns;
}

FilterColumnsValue Parameter::filterColumns() const
{
    return m_value.value<FilterColumnsValue>();
}

IfValue Parameter::ifValue() const
{
    return m_value.value<IfValue>();
}

SplitRule Parameter::splitRule() const
{
    return m_value.value<SplitRule>();
}

UniqueColumnsValue Parameter::uniqueColumns() const
{
    const Dataset *dataset = upstreamDataset();
    UniqueColumnsValue options = m_value.value<UniqueColumnsValue>();
    for (auto it = options.begin(); it != options.end();) {
        if (isLive(dataset, it.key()))
            ++it;
        else
            it = options.erase(it);
    }
    return options;
}

int Parameter::uniqueOption(ColumnId column) const
{
    return m_value.value<UniqueColumnsValue>().value(column, UniqueFirst);
}

RenameColumnsValue Parameter::renameColumns() const
{
    const Dataset *dataset = upstreamDataset();
    RenameColumnsValue names = m_value.value<RenameColumnsValue>();
    for (auto it = names.begin(); it != names.end();) {
        if (isLive(dataset, it.key()))
            ++it;
        else
            it = names.erase(it);
    }
    return names;
}

ReplaceTermList Parameter::replaceTerms() const
{
    return m_value.value<ReplaceTermList>();
}

VerifyRulesValue Parameter::verifyRules() const
{
    const Dataset *dataset = upstreamDataset();
    VerifyRulesValue rules = m_value.value<VerifyRulesValue>();
    for (auto it = rules.columns.begin(); it != rules.columns.end();) {
        if (isLive(dataset, it.key()))
            ++it;
        else
            it = rules.columns.erase(it);
    }
    return rules;
}
