#pragma once

#include "core/dataset.h"

#include <QDate>
#include <QHash>
#include <QList>
#include <QMetaType>
#include <QString>
#include <QStringList>
#include <QVariant>

class Node;

// The 24 kinds of option. The numbers are stored nowhere but must not change.
enum class ParameterKind : int {
    Column = 0,
    Columns = 1,
    SortColumns = 2,
    FilterColumns = 3,
    ReorderColumns = 4,
    Bool = 5,
    Selection = 6,
    Text = 7,
    Int = 8,
    Char = 9,
    If = 10,
    OptionalColumns = 11,
    Script = 12,
    RenameColumns = 13,
    SplitRows = 14,
    UniqueColumns = 15,
    ReplaceTerms = 16,
    Real = 17,
    LongText = 18,
    VerifyRules = 19,
    Label = 20,
    Date = 21,
    GroupColumns = 22,
    Locale = 23,
};

// One column of a sort or grouping, with its direction.
struct SortColumn
{
    ColumnId column;
    bool ascending = true;
    friend bool operator==(const SortColumn &a, const SortColumn &b)
    {
        return a.column == b.column && a.ascending == b.ascending;
    }
};
using SortColumnList = QList<SortColumn>;

// A test of a column (or of every column, for "<Any>") against a term with an operator.
struct Condition
{
    bool anyColumn = false; // "<Any>": written as position 0
    ColumnId column;        // unset when the column no longer exists upstream
    int op = 0;             // operator number, see core/matching.h
    QString term;
    friend bool operator==(const Condition &a, const Condition &b)
    {
        return a.anyColumn == b.anyColumn && a.column == b.column && a.op == b.op && a.term == b.term;
    }
};

// The value of a FilterColumns option.
struct FilterColumnsValue
{
    bool keep = true;     // true keeps matching rows, false removes them
    bool matchAll = true; // true: every condition must hold; false: any one
    QList<Condition> conditions;
    friend bool operator==(const FilterColumnsValue &a, const FilterColumnsValue &b)
    {
        return a.keep == b.keep && a.matchAll == b.matchAll && a.conditions == b.conditions;
    }
};

// One "if" block: when all its conditions hold, the row takes result.
struct IfBlock
{
    QList<Condition> conditions;
    QString result;
    friend bool operator==(const IfBlock &a, const IfBlock &b)
    {
        return a.conditions == b.conditions && a.result == b.result;
    }
};

struct IfValue
{
    QList<IfBlock> blocks;
    QString elseText;
    friend bool operator==(const IfValue &a, const IfValue &b)
    {
        return a.blocks == b.blocks && a.elseText == b.elseText;
    }
};

// How Split Rows splits: 0 at text, 1 at line breaks, 2 repeat by a count column.
struct SplitRule
{
    int mode = 0;
    bool trim = true;
    bool skipEmpty = true;
    ColumnId column;
    int maximum = 0; // 0: no limit
    QString text;
    friend bool operator==(const SplitRule &a, const SplitRule &b)
    {
        return a.mode == b.mode && a.trim == b.trim && a.skipEmpty == b.skipEmpty && a.column == b.column
            && a.maximum == b.maximum && a.text == b.text;
    }
};

// What Unique keeps of a column; a column with no entry is First.
enum UniqueOption : int {
    UniqueKey = 0,
    UniqueFirst = 1,
    UniqueLast = 2,
    UniqueMinimum = 3,
    UniqueMaximum = 4,
    UniqueConcatenate = 5,
    UniqueRemove = 6,
};
using UniqueColumnsValue = QHash<ColumnId, int>;
using RenameColumnsValue = QHash<ColumnId, QString>;

// One term of Replace: type 0 text, 1 whole value, 2 whole word, 3 regex, 4 wildcard.
struct ReplaceTerm
{
    int type = 0;
    QString from;
    QString to;
    friend bool operator==(const ReplaceTerm &a, const ReplaceTerm &b)
    {
        return a.type == b.type && a.from == b.from && a.to == b.to;
    }
};
using ReplaceTermList = QList<ReplaceTerm>;

// One verification rule: severity 3 means the rule is off.
struct VerifyRule
{
    int id = 0;
    QString value;
    int severity = 3;
    bool flag = false;
    friend bool operator==(const VerifyRule &a, const VerifyRule &b)
    {
        return a.id == b.id && a.value == b.value && a.severity == b.severity && a.flag == b.flag;
    }
};

struct VerifyColumnRules
{
    int type = 0; // VerifyColumnType: 0 Text, 1 Integer, 2 Number, 3 Date, 4 Time, 5 Boolean
    QList<VerifyRule> rules;
    friend bool operator==(const VerifyColumnRules &a, const VerifyColumnRules &b)
    {
        return a.type == b.type && a.rules == b.rules;
    }
};

struct VerifyRulesValue
{
    QList<VerifyRule> datasetRules;
    QHash<ColumnId, VerifyColumnRules> columns;
    friend bool operator==(const VerifyRulesValue &a, const VerifyRulesValue &b)
    {
        return a.datasetRules == b.datasetRules && a.columns == b.columns;
    }
};

Q_DECLARE_METATYPE(ColumnId)
Q_DECLARE_METATYPE(QList<ColumnId>)
Q_DECLARE_METATYPE(SortColumnList)
Q_DECLARE_METATYPE(FilterColumnsValue)
Q_DECLARE_METATYPE(IfValue)
Q_DECLARE_METATYPE(SplitRule)
Q_DECLARE_METATYPE(UniqueColumnsValue)
Q_DECLARE_METATYPE(RenameColumnsValue)
Q_DECLARE_METATYPE(ReplaceTermList)
Q_DECLARE_METATYPE(VerifyRulesValue)

// One typed option of a transform: a value with a stable name, a label, validity rules
// and a text form for documents. Column options hold ColumnIds, so they keep pointing at
// their column when the upstream dataset gains, loses or reorders columns; in documents
// they are positions, so reading one waits (pending) until the upstream item has data.
class Parameter
{
public:
    Parameter(ParameterKind kind, const QString &name, const QString &label, const QVariant &value,
              const QVariant &options = QVariant());
    // For the column kinds: the upstream node whose dataset the option refers to.
    Parameter(ParameterKind kind, const QString &name, const QString &label, Node *upstream);
    Parameter(const Parameter &other) = default;
    Parameter &operator=(const Parameter &other) = default;

    static constexpr int ColumnKindMask = 0x48FC1F;
    static constexpr int MaximumInt = 999999999;
    static bool isColumnKind(ParameterKind kind) { return (ColumnKindMask >> int(kind)) & 1; }

    ParameterKind kind() const { return m_kind; }
    const QString &name() const { return m_name; }
    const QString &label() const { return m_label; }

    // The value, whose type depends on the kind (see the structs above). Setting it ends
    // any pending document text.
    const QVariant &value() const { return m_value; }
    void setValue(const QVariant &value);
    const QVariant &options() const { return m_options; }
    void setOptions(const QVariant &options) { m_options = options; }
    QStringList selectionOptions() const { return m_options.toStringList(); }

    // Text form, as stored in documents.
    void fromText(const QString &text, int version);
    QString toText() const;
    void setPendingText(const QString &text, int version);
    bool applyPending();  // true when the pending text was parsed now
    bool isPending() const { return m_pending; }
    const QString &pendingText() const { return m_pendingText; }
    int pendingVersion() const { return m_pendingVersion; }

    bool isUnset() const;
    bool isColumnOption() const { return isColumnKind(m_kind); }

    Node *upstream() const { return m_upstream; }
    // With reset, kinds whose value depends on the upstream dataset go back to their
    // empty state for it. A null node changes nothing.
    void setUpstream(Node *node, bool reset);
    void clearUpstream() { m_upstream = nullptr; }
    const Dataset *upstreamDataset() const;
    void selectAllColumns();

    // Typed getters. Column lists leave out columns the upstream dataset no longer holds.
    bool boolValue() const;
    int intValue() const;
    double realValue() const;
    QString stringValue() const;
    QChar charValue() const;
    QDate dateValue() const; // 2000-01-01 when not a valid date
    int selectionIndex() const;
    QString selectionText() const;
    ColumnId columnId() const;
    DataColumnIndex columnIndex() const;      // -1 when gone or unset
    QList<ColumnId> columnIds() const;        // live columns, in stored order
    QList<DataColumnIndex> columnIndexes() const;
    SortColumnList sortColumns() const;       // live columns
    FilterColumnsValue filterColumns() const; // conditions on dead columns kept, test resolves them
    IfValue ifValue() const;
    SplitRule splitRule() const;
    UniqueColumnsValue uniqueColumns() const;
    int uniqueOption(ColumnId column) const; // First for a column with no entry
    RenameColumnsValue renameColumns() const;
    ReplaceTermList replaceTerms() const;
    VerifyRulesValue verifyRules() const;

    // Plain fields with their setters.
    int minimum() const { return m_minimum; }
    void setMinimum(int minimum) { m_minimum = minimum; }
    int maximum() const { return m_maximum; }
    void setMaximum(int maximum) { m_maximum = maximum; }
    double realMinimum() const { return m_realMinimum; }
    void setRealMinimum(double minimum) { m_realMinimum = minimum; }
    double realMaximum() const { return m_realMaximum; }
    void setRealMaximum(double maximum) { m_realMaximum = maximum; }
    const QString &specialValueText() const { return m_specialValueText; }
    void setSpecialValueText(const QString &text) { m_specialValueText = text; }
    const QString &suffix() const { return m_suffix; }
    void setSuffix(const QString &suffix) { m_suffix = suffix; }
    const QString &tooltip() const { return m_tooltip; }
    void setTooltip(const QString &tooltip) { m_tooltip = tooltip; }
    bool isDisableSwitch() const { return m_disableSwitch; }
    void setDisableSwitch(bool on) { m_disableSwitch = on; }
    bool isTextRequired() const { return m_textRequired; }
    void setTextRequired(bool on) { m_textRequired = on; }
    bool isIntRequired() const { return m_intRequired; }
    void setIntRequired(bool on) { m_intRequired = on; }
    const QString &noneText() const { return m_noneText; }
    void setNoneText(const QString &text) { m_noneText = text; }
    bool isColumnRequired() const { return m_columnRequired; }
    void setColumnRequired(bool on) { m_columnRequired = on; }
    bool isSortOrderShown() const { return m_sortOrderShown; }
    void setSortOrderShown(bool on) { m_sortOrderShown = on; }
    bool isSelectionRequired() const { return m_selectionRequired; }
    void setSelectionRequired(bool on) { m_selectionRequired = on; }
    bool isDefaultable() const { return m_defaultable; }
    void setDefaultable(bool on) { m_defaultable = on; }

    // List items are percent-encoded and joined with U+001F.
    static QString encodeItem(const QString &text);
    static QString decodeItem(const QString &text);
    static QString joinItems(const QStringList &items);
    // Splits on U+001F, or on "^" when the text holds no U+001F (older documents).
    static QStringList splitItems(const QString &text);

private:
    ParameterKind m_kind;
    QString m_name;
    QString m_label;
    int m_pendingVersion = -1;
    bool m_pending = false;
    QString m_pendingText;
    QVariant m_value;
    QVariant m_options;
    int m_minimum = 0;
    QString m_specialValueText;
    int m_maximum = MaximumInt;
    double m_realMinimum = 0;
    double m_realMaximum = 100;
    QString m_suffix;
    Node *m_upstream = nullptr;
    QString m_tooltip;
    bool m_disableSwitch = false;
    bool m_textRequired = true;
    bool m_intRequired = false;
    QString m_noneText = QStringLiteral("<None selected>");
    bool m_columnRequired = true;
    bool m_sortOrderShown = true;
    bool m_selectionRequired = false;
    bool m_defaultable = false;
};
