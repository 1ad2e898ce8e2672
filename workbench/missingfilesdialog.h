#pragma once

#include <QDialog>
#include <QPointer>

class GraphScene;
class IONode;
class QLabel;
class QTableWidget;
class QUndoStack;

// After a flow is opened: its input files that can't be found, each with Locate...; a
// file located in a new folder brings along every other missing file found there.
class MissingFilesDialog : public QDialog
{
    Q_OBJECT
public:
    MissingFilesDialog(GraphScene *scene, QUndoStack *undoStack, QWidget *parent = nullptr);

    // Inputs of scene that read a file that doesn't exist, in id order.
    static QList<IONode *> missingInputs(const GraphScene *scene);
    // The rows as "input name<TAB>file" lines.
    QStringList rows() const;

public slots:
    // Asks where the input of the given row is now; true when one was located.
    bool locate(int row);

private:
    void reload();

    QPointer<GraphScene> m_scene;
    QPointer<QUndoStack> m_undoStack;
    QList<QPointer<IONode>> m_inputs;
    QLabel *m_text;
    QTableWidget *m_table;
};
