#pragma once

#include "workbench/itemwidget.h"

class NoteNode;
class QButtonGroup;
class QComboBox;
class QLabel;
class QPlainTextEdit;

// The item widget of a note: its text, colour and pointer. A note has no data.
class NoteItemWidget : public ItemWidget
{
    Q_OBJECT
public:
    NoteItemWidget(NoteNode *node, GraphScene *scene, QUndoStack *undoStack, QWidget *parent = nullptr);

    bool showsData() const override { return false; }
    QString displayName() const override { return tr("Note"); }

    // The six colours offered, in order.
    static QList<QColor> colours();
    static QStringList colourNames();

    QPlainTextEdit *textEdit() const { return m_textEdit; }
    QComboBox *pointerCombo() const { return m_pointerCombo; }
    void setColour(const QColor &colour);

protected:
    void updateFromNode() override;
    bool hasStatusAndComment() const override { return false; }

private:
    NoteNode *noteNode() const;
    void edit(const std::function<void(NoteNode *)> &change, int mergeId);

    QPlainTextEdit *m_textEdit;
    QButtonGroup *m_colourGroup;
    QComboBox *m_pointerCombo;
};

// With no current item: the flow's notes, its locale and a count of its items.
class FlowItemWidget : public ItemWidget
{
    Q_OBJECT
public:
    FlowItemWidget(GraphScene *scene, QUndoStack *undoStack, QWidget *parent = nullptr);

    bool showsData() const override { return false; }
    QString displayName() const override { return tr("Flow"); }
    QString helpTopic() const override { return QStringLiteral("Flow"); }

    // "%1 inputs, %2 transforms, %3 outputs, %4 charts, %5 notes"
    QString summaryText() const;
    QPlainTextEdit *notesEdit() const { return m_notesEdit; }

    // The flow's notes and id are kept on the scene as the properties "documentNotes"
    // and "documentId", so that the window and the document share them.
    static QString notes(const GraphScene *scene);

protected:
    void updateFromNode() override;

private:
    QPlainTextEdit *m_notesEdit;
    QComboBox *m_localeCombo;
    QLabel *m_idLabel;
    int m_idRow = -1;
    QLabel *m_summaryLabel;
};
