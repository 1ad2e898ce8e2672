#pragma once

#include "charts/chartoptions.h"
#include "workbench/itemwidget.h"

#include <functional>

class ChartNode;
class Settings;
class QCheckBox;
class QComboBox;
class QDoubleSpinBox;
class QGridLayout;
class QLabel;
class QLineEdit;
class QListWidget;
class QPushButton;
class QSpinBox;
class QTabWidget;

// The item widget of a chart: its options in three tabs. "General" holds the data (type,
// columns, layout), the appearance and the file it writes; "X Axis" and "Y Axis" hold each
// axis's options. The drawing itself is in the pane's "Chart" tab below. Each edit is one
// undo step "'%1' change" and invalidates the item.
class ChartItemWidget : public ItemWidget
{
    Q_OBJECT
public:
    ChartItemWidget(ChartNode *node, GraphScene *scene, QUndoStack *undoStack, QWidget *parent = nullptr);

    bool canSaveDefaults() const override { return true; }
    void saveDefaults() override;
    void restoreDefaults(bool factoryOnly) override;
    // The options stored as defaults of new charts, over the factory ones; columns, path
    // and alias are never part of them.
    static ChartOptions defaultOptions(const Settings *settings);
    static void rememberDefaults(const ChartOptions &options, Settings *settings);

    QTabWidget *optionTabs() const { return m_optionTabs; }
    QComboBox *typeCombo() const { return m_typeCombo; }
    QComboBox *xColumnCombo() const { return m_xColumnCombo; }
    QComboBox *xAsCombo() const { return m_xAsCombo; }
    // The upstream columns, checkable; the checked ones in list order are the Y columns.
    QListWidget *yColumnsList() const { return m_yColumnsList; }
    QComboBox *layoutCombo() const { return m_layoutCombo; }
    QCheckBox *writeFileCheck() const { return m_writeFileCheck; }
    QLineEdit *fileEdit() const { return m_fileEdit; }
    QComboBox *imageTypeCombo() const { return m_imageTypeCombo; }
    QSpinBox *widthSpin() const { return m_widthSpin; }
    QSpinBox *heightSpin() const { return m_heightSpin; }
    QLabel *pdfNote() const { return m_pdfNote; }
    QLabel *noXAxisLabel() const { return m_noXAxisLabel; }
    // An option control by the accessible name of its row, on a tab: "General", "X Axis"
    // or "Y Axis". For tests and keyboard focus.
    QWidget *control(const QString &tab, const QString &name) const;
    // Whether the control's row shows for the current options.
    bool isControlShown(const QString &tab, const QString &name) const;

    // Moves the current Y column up (-1) or down (+1) in the list, as the buttons do.
    void moveYColumn(int step);
    // Sets the file as typed or browsed. A known extension of another image type asks
    // "Change file type to '%1'?"; a typed path to an existing file asks before replacing it.
    void setFile(const QString &path, bool askReplace = false);
    // Sets the image type; a file whose extension says another type asks "Change file
    // extension to '%1'?".
    void setImageType(int type);

protected:
    void updateFromNode() override;
    QString connectionHint() const override;
    bool hasAlias() const override { return true; }
    bool hasEditableName() const override { return true; }

private:
    using IntField = std::function<int &(ChartOptions &)>;
    using BoolField = std::function<bool &(ChartOptions &)>;
    using DoubleField = std::function<double &(ChartOptions &)>;
    using TextField = std::function<QString &(ChartOptions &)>;
    struct Row
    {
        QString tab;
        QString name;
        QList<QWidget *> widgets;
    };

    ChartNode *chartNode() const;
    void applyOptions(const QString &label, const ChartOptions &options, bool burst = false,
        const QString &mergeKey = QString());
    void applyXColumn();
    void applyYColumns(const QString &label);
    void updateRows(const ChartOptions &options);

    QWidget *buildGeneralTab();
    QWidget *buildAxisTab(bool x);
    QGridLayout *group(QWidget *page, const QString &title);
    // Adds "label:" and the widget (a null label: the widget spans the row).
    void addRow(QGridLayout *grid, const QString &tab, const QString &label, QWidget *widget,
        QWidget *accessible = nullptr);
    // The controls' edits; the key tells apart the X and Y axis's options of the same label.
    void bindCombo(QComboBox *combo, const QString &label, const QString &key, const IntField &field);
    void bindCheck(QCheckBox *check, const QString &label, const QString &key, const BoolField &field);
    void bindSpin(QSpinBox *spin, const QString &label, const QString &key, const IntField &field);
    void bindDouble(QDoubleSpinBox *spin, const QString &label, const QString &key, const DoubleField &field);
    void bindText(QLineEdit *edit, const QString &label, const QString &key, const TextField &field);

    QTabWidget *m_optionTabs;
    QComboBox *m_typeCombo;
    QComboBox *m_xColumnCombo;
    QComboBox *m_xAsCombo;
    QListWidget *m_yColumnsList;
    QPushButton *m_upButton;
    QPushButton *m_downButton;
    QComboBox *m_layoutCombo;
    QCheckBox *m_writeFileCheck;
    QLineEdit *m_fileEdit;
    QPushButton *m_browseButton;
    QComboBox *m_imageTypeCombo;
    QLabel *m_pdfNote;
    QSpinBox *m_widthSpin;
    QSpinBox *m_heightSpin;
    QLabel *m_noXAxisLabel;
    QWidget *m_xAxisOptions;
    QList<Row> m_rows;
    QList<std::function<void(ChartOptions &)>> m_loaders;
};
