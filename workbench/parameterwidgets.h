#pragma once

#include "workbench/parameterwidget.h"

#include <QTableWidget>

class QFrame;
class QListWidget;
class QListWidgetItem;
class QPushButton;
class QToolButton;
class QVBoxLayout;

// The rows of conditions that Filter and If share: column, operator, term and a remove
// button, always ending with one empty row that becomes a condition once a column is
// chosen or a term typed. Rows after the first read "and" in the row header when asked.
class ConditionTable : public QTableWidget
{
    Q_OBJECT
public:
    explicit ConditionTable(bool andHeaders, QWidget *parent = nullptr);
    void setDataset(const Dataset *dataset) { m_dataset = dataset; }
    void setConditions(const QList<Condition> &conditions);
    QList<Condition> conditions() const;
    QComboBox *columnCombo(int row) const;
    QComboBox *operatorCombo(int row) const;
    QLineEdit *termEdit(int row) const;
    QToolButton *removeButton(int row) const;
    void removeConditionRow(int row);

signals:
    // burst: the change is typing.
    void changed(bool burst);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void addRow(const Condition &condition, bool empty);
    void ensureEmptyLastRow();
    bool isEmptyRow(int row) const;
    int rowOf(QWidget *widget) const;
    void applyOperator(int row);
    void fitHeight();

    const Dataset *m_dataset = nullptr;
    bool m_andHeaders;
};

// Columns (1) and OptionalColumns (11): a filterable checkable list of the upstream
// columns with All, None and Invert for the rows shown.
class MultipleColumnsParameterWidget : public CompositeParameterWidget
{
    Q_OBJECT
public:
    MultipleColumnsParameterWidget(Parameter *parameter, QWidget *parent = nullptr);
    void updateFromParameter() override;
    QVariant value() const override;
    QWidget *focusTarget() const override;
    QListWidget *list() const { return m_list; }
    QLineEdit *filterEdit() const { return m_filter; }
    QLabel *missingLabel() const { return m_missingLabel; }
    // Checks (0), clears (1) or inverts (2) the rows the filter shows.
    void setShownChecks(int how);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void updateCount();
    QLineEdit *m_filter;
    QListWidget *m_list;
    QLabel *m_count;
    QLabel *m_missingLabel;
    QList<ColumnId> m_missing; // stored columns the input no longer holds, kept until forgotten
    int m_lastClicked = -1;
};

// SortColumns (2) and GroupColumns (22): one row per column with its order.
class SortColumnsParameterWidget : public CompositeParameterWidget
{
    Q_OBJECT
public:
    SortColumnsParameterWidget(Parameter *parameter, QWidget *parent = nullptr);
    void updateFromParameter() override;
    QVariant value() const override;
    QWidget *focusTarget() const override;
    QTableWidget *table() const { return m_table; }
    QComboBox *columnCombo(int row) const;
    QComboBox *orderCombo(int row) const;
    void addColumn();
    void moveCurrent(int by);
    void removeSortRow(int row);

private:
    void setRows(const SortColumnList &columns);
    void addRow(const SortColumn &column);
    void greyUsedColumns();
    int rowOf(QWidget *widget) const;
    QTableWidget *m_table;
    QPushButton *m_add;
};

// FilterColumns (3): Keep or Remove rows matching all or any of the conditions.
class FilterColumnsParameterWidget : public CompositeParameterWidget
{
    Q_OBJECT
public:
    FilterColumnsParameterWidget(Parameter *parameter, QWidget *parent = nullptr);
    void updateFromParameter() override;
    QVariant value() const override;
    QWidget *focusTarget() const override { return m_keep; }
    ConditionTable *table() const { return m_table; }
    QComboBox *keepCombo() const { return m_keep; }
    QComboBox *matchCombo() const { return m_match; }

private:
    QComboBox *m_keep;
    QComboBox *m_match;
    ConditionTable *m_table;
};

// ReorderColumns (4): the upstream columns in the chosen order.
class ReorderColumnsParameterWidget : public CompositeParameterWidget
{
    Q_OBJECT
public:
    ReorderColumnsParameterWidget(Parameter *parameter, QWidget *parent = nullptr);
    void updateFromParameter() override;
    QVariant value() const override;
    QWidget *focusTarget() const override;
    QListWidget *list() const { return m_list; }
    // Moves the selected rows: -2 to the top, -1 up, 1 down, 2 to the bottom.
    void moveSelected(int how);
    void sortByName();
    void reverse();
    void resetOrder();

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void setOrder(const QList<ColumnId> &order, const QList<ColumnId> &stored);
    QListWidget *m_list;
    QList<ColumnId> m_missing;
};

// If (10): if-blocks of conditions, each with its result, and an else value.
class IfParameterWidget : public CompositeParameterWidget
{
    Q_OBJECT
public:
    IfParameterWidget(Parameter *parameter, QWidget *parent = nullptr);
    void updateFromParameter() override;
    QVariant value() const override;
    QWidget *focusTarget() const override;
    int blockCount() const { return m_blocks.size(); }
    ConditionTable *conditionTable(int block) const { return m_blocks.at(block).table; }
    QLineEdit *resultEdit(int block) const { return m_blocks.at(block).result; }
    QLineEdit *elseEdit() const { return m_else; }
    void addBlock();
    void moveBlock(int block, int by);
    void removeBlock(int block);

private:
    struct Block
    {
        QFrame *frame = nullptr;
        QLabel *title = nullptr;
        ConditionTable *table = nullptr;
        QLineEdit *result = nullptr;
        QToolButton *up = nullptr;
        QToolButton *down = nullptr;
        QToolButton *remove = nullptr;
    };
    // Every block shown, the empty ones too.
    IfValue shownValue() const;
    void setBlocks(const IfValue &value);
    int blockOf(QObject *object) const;
    QVBoxLayout *m_blockLayout;
    QList<Block> m_blocks;
    QLineEdit *m_else;
};

// Script (12): a monospaced editor with line numbers and colouring, checked for syntax
// half a second after typing stops.
class ScriptParameterWidget : public CompositeParameterWidget
{
    Q_OBJECT
public:
    ScriptParameterWidget(Parameter *parameter, QWidget *parent = nullptr);
    void updateFromParameter() override;
    QVariant value() const override;
    QWidget *focusTarget() const override;
    QPlainTextEdit *editor() const;
    QLabel *errorLabel() const { return m_error; }
    // Checks the script now; the message shows under the editor.
    void checkSyntax();
    // "Syntax error at line %1: %2", or empty for a script that compiles.
    static QString syntaxMessage(const QString &script, int *line = nullptr);

private:
    class Editor;
    Editor *m_editor;
    QLabel *m_error;
    QTimer *m_checkTimer;
};

// RenameColumns (13): each upstream column with an editable new name.
class RenameColumnsParameterWidget : public CompositeParameterWidget
{
    Q_OBJECT
public:
    RenameColumnsParameterWidget(Parameter *parameter, QWidget *parent = nullptr);
    void updateFromParameter() override;
    QVariant value() const override;
    QWidget *focusTarget() const override;
    QTableWidget *table() const { return m_table; }
    QLineEdit *nameEdit(int row) const;
    QLineEdit *filterEdit() const { return m_filter; }
    // Clipboard lines fill the new names from the current row down.
    void pasteNames(const QString &text);
    void clearNames();

private:
    void markDuplicates();
    QLineEdit *m_filter;
    QTableWidget *m_table;
    QList<ColumnId> m_ids;
};

// SplitRows (14): the mode and what it needs.
class SplitRowsParameterWidget : public CompositeParameterWidget
{
    Q_OBJECT
public:
    SplitRowsParameterWidget(Parameter *parameter, QWidget *parent = nullptr);
    void updateFromParameter() override;
    QVariant value() const override;
    QWidget *focusTarget() const override { return m_mode; }
    bool isLarge() const override { return false; }
    QComboBox *modeCombo() const { return m_mode; }
    QLineEdit *textEdit() const { return m_text; }
    QComboBox *columnCombo() const { return m_column; }
    QCheckBox *trimBox() const { return m_trim; }
    QCheckBox *skipBox() const { return m_skip; }
    QSpinBox *maximumSpin() const { return m_maximum; }

private:
    void applyMode();
    QComboBox *m_mode;
    QLineEdit *m_text;
    QComboBox *m_column;
    QCheckBox *m_trim;
    QCheckBox *m_skip;
    QSpinBox *m_maximum;
};

// UniqueColumns (15): what each column keeps.
class UniqueParameterWidget : public CompositeParameterWidget
{
    Q_OBJECT
public:
    UniqueParameterWidget(Parameter *parameter, QWidget *parent = nullptr);
    void updateFromParameter() override;
    QVariant value() const override;
    QWidget *focusTarget() const override;
    QTableWidget *table() const { return m_table; }
    QComboBox *optionCombo(int row) const;
    QLineEdit *filterEdit() const { return m_filter; }
    void setSelectedTo(int option);
    static QStringList optionNames();

private:
    void markKeys();
    QLineEdit *m_filter;
    QTableWidget *m_table;
    QList<ColumnId> m_ids;
};

// ReplaceTerms (16): terms of five types, always with one empty last row.
class ReplaceTermsParameterWidget : public CompositeParameterWidget
{
    Q_OBJECT
public:
    ReplaceTermsParameterWidget(Parameter *parameter, QWidget *parent = nullptr);
    void updateFromParameter() override;
    QVariant value() const override;
    QWidget *focusTarget() const override;
    QTableWidget *table() const { return m_table; }
    QComboBox *typeCombo(int row) const;
    QLineEdit *fromEdit(int row) const;
    QLineEdit *toEdit(int row) const;
    void removeTermRow(int row);
    void moveCurrent(int by);
    // Lines of "from", tab, "to" added as Text terms.
    void pasteTerms(const QString &text);

private:
    void setTerms(const ReplaceTermList &terms);
    void addRow(const ReplaceTerm &term);
    void ensureEmptyLastRow();
    void checkRow(int row);
    int rowOf(QWidget *widget) const;
    QTableWidget *m_table;
};

// VerifyRules (19): the dataset rules, and for each column its type and rules.
class VerifyRulesParameterWidget : public CompositeParameterWidget
{
    Q_OBJECT
public:
    VerifyRulesParameterWidget(Parameter *parameter, QWidget *parent = nullptr);
    void updateFromParameter() override;
    QVariant value() const override;
    QWidget *focusTarget() const override;
    QTableWidget *datasetTable() const { return m_datasetTable; }
    QListWidget *columnList() const { return m_columns; }
    QComboBox *typeCombo() const { return m_type; }
    QTableWidget *columnTable() const { return m_columnTable; }
    static QString datasetRuleName(int id);
    static QString columnRuleName(int id);
    static QString typeName(int type);
    static QStringList severityNames();
    // Whether the rule can use the value: numbers for bounds, whole numbers for lengths,
    // a pattern that compiles for a regex.
    static bool isValueUsable(int ruleId, bool datasetRule, int type, const QString &value);

private:
    void fillRules(QTableWidget *table, const QList<VerifyRule> &rules, bool datasetRules, int type);
    QList<VerifyRule> rulesOf(const QTableWidget *table) const;
    void showColumn();
    void storeColumn();
    void updateColumnTexts();
    void onTableEdited(QTableWidget *table, bool burst);
    VerifyRulesValue m_value; // the value being edited, the shown column stored on each change
    QList<ColumnId> m_ids;
    int m_shownColumn = -1;
    // A column with no stored rules shows them off; they join the value once changed.
    bool m_shownStored = false;
    VerifyColumnRules m_shownInitial;
    QTableWidget *m_datasetTable;
    QListWidget *m_columns;
    QComboBox *m_type;
    QTableWidget *m_columnTable;
};
