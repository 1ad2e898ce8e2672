#pragma once

#include "workbench/itemwidget.h"

class Parameter;
class ParameterWidget;
class QLabel;
class QPushButton;
class TransformNode;

// The item widget of a transform: its description, its result, and one row per option in
// the transform's order, each with the parameter widget of its kind. Rows follow the
// transform's parameterStates(): disabled, or hidden when the transform hides disabled
// options; an option that is not set shows its label in the marking colour.
class TransformItemWidget : public ItemWidget
{
    Q_OBJECT
public:
    TransformItemWidget(
        TransformNode *node, GraphScene *scene, QUndoStack *undoStack, QWidget *parent = nullptr);

    TransformNode *transformNode() const;
    QString helpTopic() const override;
    bool canSaveDefaults() const override { return true; }
    void saveDefaults() override;
    void restoreDefaults(bool factoryOnly) override;

    ParameterWidget *parameterWidget(const QString &parameterName) const;
    QLabel *label(const QString &parameterName) const;
    // The "Explore Keys..." or "Explore Duplicates..." button, when the transform has one.
    QPushButton *exploreButton() const { return m_exploreButton; }
    // Disables or hides rows, and marks unset options; after every change and run.
    void applyParameterStates();

protected:
    void updateFromNode() override;
    QString connectionHint() const override;
    QString descriptionText() const override;
    QString resultText() const override;

private slots:
    void onParameterChange(bool processNow);
    void onStartTimer();
    void onProcessNow();
    void onExplore();

private:
    void buildRows();
    struct Row
    {
        Parameter *parameter = nullptr;
        ParameterWidget *widget = nullptr;
        QLabel *label = nullptr;
    };
    QList<Row> m_rows;
    QList<Parameter *> m_builtFor;
    QWidget *m_exploreRow = nullptr;
    QPushButton *m_exploreButton = nullptr;
};
