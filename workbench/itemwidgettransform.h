#pragma once

#include "workbench/itemwidget.h"

#include <QHash>

class ParameterEditor;
class Parameter;
class QLabel;
class TransformNode;

// The item widget of a transform: its description, its result, and one row per option in
// the transform's order, each with the editor of its kind. Rows follow the transform's
// parameterStates(): disabled, or hidden when the transform hides disabled options; an
// option that is not set shows its label in the marking colour.
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

    ParameterEditor *editor(const QString &parameterName) const;
    QLabel *label(const QString &parameterName) const;
    // Disables or hides rows, and marks unset options; after every change and run.
    void applyParameterStates();

protected:
    void updateFromNode() override;
    QString connectionHint() const override;
    QString descriptionText() const override;
    QString resultText() const override;

private slots:
    void onEdited(bool burst);

private:
    void buildRows();
    struct Row
    {
        Parameter *parameter = nullptr;
        ParameterEditor *editor = nullptr;
        QLabel *label = nullptr;
        int row = -1;
    };
    QList<Row> m_rows;
    QList<Parameter *> m_builtFor;
};
