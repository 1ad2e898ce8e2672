#pragma once

#include "workbench/itemwidget.h"

#include "inputs/inputoptions.h"
#include "outputs/outputoptions.h"

class InputNode;
class OutputNode;
class QButtonGroup;
class QCheckBox;
class QComboBox;
class QLabel;
class QLineEdit;
class QPlainTextEdit;
class QPushButton;
class QSpinBox;
class QToolButton;

// The encodings offered: "Automatic" (inputs only), the common ones, then every other
// codec the toolkit knows, sorted and without duplicates. The separator is an empty name.
QStringList encodingNames(bool withAutomatic);
// The variables a file name or meta information text may hold: "{date}", ...
QStringList fileNameVariables();

// The item widget of an input: where the data comes from and how its text is laid out.
// Rows that don't apply to the chosen source and format are hidden. Every change is one
// undo step named after the option.
class InputItemWidget : public ItemWidget
{
    Q_OBJECT
public:
    InputItemWidget(InputNode *node, GraphScene *scene, QUndoStack *undoStack, QWidget *parent = nullptr);

    bool canSaveDefaults() const override { return true; }
    void saveDefaults() override;
    void restoreDefaults(bool factoryOnly) override;

    // The controls, for tests and keyboard focus.
    QComboBox *formatCombo() const { return m_formatCombo; }
    QComboBox *delimiterCombo() const { return m_delimiterCombo; }
    QLineEdit *fileEdit() const { return m_fileEdit; }
    QComboBox *hasHeaderCombo() const { return m_hasHeaderCombo; }
    QCheckBox *trimCheck() const { return m_trimCheck; }
    QSpinBox *ignoreSpin() const { return m_ignoreSpin; }
    // Whether a row of the form is shown for the current source and format.
    bool isRowShown(const QString &label) const;

    // Sets the file, and the format from its extension when that names one.
    void setFile(const QString &path);
    // "Edit Widths..." and "Schema...": each dialog's OK is one undo step.
    void editWidths();
    void editSchema();
    // The lines the widths dialog shows: the pasted text's or the file's first 50.
    QStringList sampleLines() const;

protected:
    void updateFromNode() override;
    bool hasAlias() const override { return true; }
    bool hasEditableName() const override { return true; }

private:
    InputNode *inputNode() const;
    // One step "'label' change": the node takes options (and text, for pasted text).
    void applyOptions(const QString &label, const InputOptions &options, bool burst = false,
        int mergeId = ItemEditCommand::OptionMerge);
    void updateRows(const InputOptions &options);
    void updateSheets();
    int row(const QString &label, QWidget *widget);

    QHash<QString, int> m_rowByLabel;
    QButtonGroup *m_sourceGroup;
    QLineEdit *m_fileEdit;
    QComboBox *m_sheetCombo;
    QString m_sheetsFor;
    QLabel *m_pastedLabel;
    QComboBox *m_formatCombo;
    QComboBox *m_delimiterCombo;
    QLineEdit *m_customDelimiterEdit;
    QComboBox *m_quotingCombo;
    QCheckBox *m_repeatedCheck;
    QComboBox *m_columnsCombo;
    QLineEdit *m_widthsEdit;
    QComboBox *m_encodingCombo;
    QCheckBox *m_arraysCheck;
    QComboBox *m_longWideCombo;
    QSpinBox *m_ignoreSpin;
    QComboBox *m_hasHeaderCombo;
    QCheckBox *m_trimCheck;
    QCheckBox *m_simplifyCheck;
    QCheckBox *m_emptyRowsCheck;
    QCheckBox *m_emptyColumnsCheck;
    QCheckBox *m_hiddenRowsCheck;
    QCheckBox *m_hiddenColumnsCheck;
    QComboBox *m_metaCombo;
    QLineEdit *m_metaTextEdit;
    QLineEdit *m_metaColumnEdit;
    QCheckBox *m_schemaCheck;
    QCheckBox *m_watchCheck;
};

// The item widget of an output: where the dataset goes and how it is written.
class OutputItemWidget : public ItemWidget
{
    Q_OBJECT
public:
    OutputItemWidget(OutputNode *node, GraphScene *scene, QUndoStack *undoStack, QWidget *parent = nullptr);

    bool canSaveDefaults() const override { return true; }
    void saveDefaults() override;
    void restoreDefaults(bool factoryOnly) override;

    QComboBox *fileTypeCombo() const { return m_fileTypeCombo; }
    QComboBox *writeModeCombo() const { return m_writeModeCombo; }
    QLineEdit *fileEdit() const { return m_fileEdit; }
    bool isRowShown(const QString &label) const;
    void setFile(const QString &path);
    // Sets the file type; when the file's extension names another type, asks "Change file
    // extension to '%1'?" and on Yes changes the extension in the same step.
    void setFileType(int type);
    // "Column Types..." (JSON, YAML) and "Column Formats..." (Excel) on the upstream columns.
    void editColumnTypes();
    void editColumnFormats();

protected:
    void updateFromNode() override;
    QString connectionHint() const override;
    bool hasAlias() const override { return true; }
    bool hasEditableName() const override { return true; }

private:
    OutputNode *outputNode() const;
    QString writtenPath() const;
    void applyOptions(const QString &label, const OutputOptions &options, bool burst = false,
        int mergeId = ItemEditCommand::OptionMerge);
    QStringList upstreamColumns() const;
    void updateRows(const OutputOptions &options);
    int row(const QString &label, QWidget *widget);

    QHash<QString, int> m_rowByLabel;
    QComboBox *m_outputToCombo;
    QLineEdit *m_fileEdit;
    QComboBox *m_filesColumnCombo;
    QCheckBox *m_confirmCheck;
    QComboBox *m_sheetCombo;
    QCheckBox *m_replaceSheetCheck;
    QComboBox *m_fileTypeCombo;
    QComboBox *m_writeModeCombo;
    QCheckBox *m_headerCheck;
    QCheckBox *m_headerIfEmptyCheck;
    QComboBox *m_delimiterCombo;
    QLineEdit *m_customDelimiterEdit;
    QComboBox *m_quotingCombo;
    QComboBox *m_lineEndingsCombo;
    QComboBox *m_encodingCombo;
    QCheckBox *m_bomCheck;
    QComboBox *m_typesCombo;
    QComboBox *m_formattingCombo;
    QPushButton *m_typesButton;
    QPushButton *m_formatsButton;
    QCheckBox *m_templateCheck;
    QLineEdit *m_templateEdit;
    QPlainTextEdit *m_aboveRootEdit;
    QLineEdit *m_rootNameEdit;
    QPlainTextEdit *m_belowRootEdit;
    QLineEdit *m_rowNameEdit;
    QCheckBox *m_escapeCheck;
    QCheckBox *m_removeEmptyCheck;
    QLineEdit *m_fileCommentEdit;
    QPushButton *m_openFileButton;
    QPushButton *m_openFolderButton;
};
