#pragma once

#include <QDialog>
#include <QList>
#include <QStringList>

#include <functional>

class QComboBox;
class QLineEdit;
class QPushButton;
class QRadioButton;
class QTableWidget;

// Runs an option dialog modally and returns its result. Tests replace the runner with a
// script that fills the dialog and accepts or rejects it, so that no test waits on it.
int runOptionDialog(QDialog *dialog);
// nullptr goes back to exec().
void setOptionDialogRunner(const std::function<int(QDialog *)> &runner);

class FixedWidthsView;

// "Column Widths": the sample lines of a fixed-width input under a character ruler. A
// click on a character position toggles a column boundary before it; the widths are kept
// in step with the boundaries in an editable line below. "Guess" takes the widths the
// reader would guess from the sample.
class FixedWidthsDialog : public QDialog
{
    Q_OBJECT
public:
    FixedWidthsDialog(const QStringList &sample, const QList<int> &widths, QWidget *parent = nullptr);

    QList<int> widths() const;
    void setWidths(const QList<int> &widths);
    // Toggles the boundary before the character at position (from 0), as a click does.
    void toggleBoundary(int position);
    void guess();

    QLineEdit *widthsEdit() const { return m_widthsEdit; }
    FixedWidthsView *view() const { return m_view; }

    // "10, 8, 12" and back; parts that are no positive number are left out.
    static QString widthsText(const QList<int> &widths);
    static QList<int> parseWidths(const QString &text);

private:
    void showWidths();

    QStringList m_sample;
    FixedWidthsView *m_view;
    QLineEdit *m_widthsEdit;
};

// "Schema": the column names an input should have, with the value a missing one is filled
// with, and what to do with missing, misplaced and extra columns.
class SchemaDialog : public QDialog
{
    Q_OBJECT
public:
    struct Schema
    {
        QStringList columnNames;
        QStringList missingValues;
        int missingColumns = 0; // 0 add them, 1 error
        int reorderColumns = 0; // 0 keep the file's order, 1 schema order
        int extraColumns = 0; // 0 keep, 1 remove, 2 error
        bool operator==(const Schema &other) const;
    };

    SchemaDialog(const Schema &schema, const QStringList &currentColumns, QWidget *parent = nullptr);

    // Rows with an empty name are left out.
    Schema schema() const;

    QTableWidget *table() const { return m_table; }
    QComboBox *missingCombo() const { return m_missingCombo; }
    QComboBox *orderCombo() const { return m_orderCombo; }
    QComboBox *extraCombo() const { return m_extraCombo; }
    void addRow(const QString &name = QString(), const QString &missingValue = QString());
    void removeCurrentRow();
    void moveCurrentRow(int step);
    // Replaces the names with the input's current columns.
    void fillFromCurrentColumns();

private:
    void updateButtons();

    QStringList m_currentColumns;
    QTableWidget *m_table;
    QPushButton *m_removeButton;
    QPushButton *m_upButton;
    QPushButton *m_downButton;
    QComboBox *m_missingCombo;
    QComboBox *m_orderCombo;
    QComboBox *m_extraCombo;
};

// A table of the upstream columns with a choice per column, kept by column position.
class ColumnChoiceDialog : public QDialog
{
    Q_OBJECT
public:
    ColumnChoiceDialog(const QString &title, const QString &choiceHeader, const QStringList &choices,
        const QStringList &columns, const QList<int> &values, QWidget *parent = nullptr);

    // One value per column; positions beyond the columns keep what they held.
    QList<int> values() const;
    QComboBox *combo(int column) const;
    QTableWidget *table() const { return m_table; }

private:
    QTableWidget *m_table;
    QList<int> m_initial;
};

// JSON and YAML "Manual" types: "Automatic", "Text", "Number", "Boolean", "JSON".
class ColumnTypesDialog : public ColumnChoiceDialog
{
    Q_OBJECT
public:
    ColumnTypesDialog(const QStringList &columns, const QList<int> &types, QWidget *parent = nullptr);
    static QStringList typeNames();
};

// Excel "Manual" formatting: "Automatic", "Text", "Number", "Date", "Time", "Date and time".
class ColumnFormatsDialog : public ColumnChoiceDialog
{
    Q_OBJECT
public:
    ColumnFormatsDialog(const QStringList &columns, const QList<int> &formats, QWidget *parent = nullptr);
    static QStringList formatNames();
};
