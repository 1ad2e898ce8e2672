#pragma once

#include "charts/chartoptions.h"
#include "workbench/itemwidget.h"

class ChartNode;
class ChartWidget;
class QCheckBox;
class QComboBox;
class QLineEdit;
class QListWidget;
class QPushButton;
class QSpinBox;
class QToolButton;

// The item widget of a chart: the chart itself, drawn from the node and redrawn as it
// changes, above a compact form of its main options (type, columns, layout and the file
// it writes). Each edit is one undo step "'%1' change" and invalidates the item.
class ChartItemWidget : public ItemWidget
{
    Q_OBJECT
public:
    ChartItemWidget(ChartNode *node, GraphScene *scene, QUndoStack *undoStack, QWidget *parent = nullptr);

    ChartWidget *chartWidget() const { return m_chartWidget; }
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

    // Moves the current Y column up (-1) or down (+1) in the list, as the buttons do.
    void moveYColumn(int step);
    // Sets the file as the Browse button does, the image type following a known extension.
    void setFile(const QString &path);

protected:
    void updateFromNode() override;
    QString connectionHint() const override;
    bool hasAlias() const override { return true; }
    bool hasEditableName() const override { return true; }

private:
    ChartNode *chartNode() const;
    void applyOptions(const QString &label, const ChartOptions &options, bool burst = false);
    void applyXColumn();
    void applyYColumns(const QString &label);
    void updateRows(const ChartOptions &options);

    ChartWidget *m_chartWidget;
    QComboBox *m_typeCombo;
    QComboBox *m_xColumnCombo;
    QComboBox *m_xAsCombo;
    QListWidget *m_yColumnsList;
    QPushButton *m_upButton;
    QPushButton *m_downButton;
    QComboBox *m_layoutCombo;
    QSpinBox *m_facetsSpin;
    QCheckBox *m_writeFileCheck;
    QLineEdit *m_fileEdit;
    QPushButton *m_browseButton;
    QComboBox *m_imageTypeCombo;
    QSpinBox *m_widthSpin;
    QSpinBox *m_heightSpin;
    int m_facetsRow = -1;
    int m_fileRow = -1;
    int m_widthRow = -1;
    int m_heightRow = -1;
};
