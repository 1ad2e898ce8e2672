#include "workbench/missingfilesdialog.h"

#include "flow/graphscene.h"
#include "flow/ionode.h"
#include "workbench/dialogutil.h"
#include "workbench/prompts.h"
#include "workbench/undo.h"

#include <QDialogButtonBox>
#include <QDir>
#include <QFileInfo>
#include <QHeaderView>
#include <QLabel>
#include <QPushButton>
#include <QTableWidget>
#include <QVBoxLayout>

QList<IONode *> MissingFilesDialog::missingInputs(const GraphScene *scene)
{
    QList<IONode *> missing;
    if (!scene)
        return missing;
    for (Node *node : scene->nodes()) {
        auto *io = qobject_cast<IONode *>(node);
        if (io && io->typeName() == QLatin1String("Input") && io->medium() == IONode::File && !io->path().isEmpty()
            && !QFileInfo::exists(io->path()))
            missing << io;
    }
    return missing;
}

MissingFilesDialog::MissingFilesDialog(GraphScene *scene, QUndoStack *undoStack, QWidget *parent)
    : QDialog(parent)
    , m_scene(scene)
    , m_undoStack(undoStack)
{
    setObjectName(QStringLiteral("MissingFilesDialog"));
    setWindowTitle(tr("Missing Input Files"));
    setModal(true);
    auto *layout = new QVBoxLayout(this);
    m_text = new QLabel(this);
    m_text->setWordWrap(true);
    layout->addWidget(m_text);
    m_table = new QTableWidget(this);
    m_table->setObjectName(QStringLiteral("missingTable"));
    m_table->setAccessibleName(tr("Missing input files"));
    m_table->setColumnCount(3);
    m_table->setHorizontalHeaderLabels({tr("Input"), tr("File"), QString()});
    m_table->horizontalHeader()->setSectionResizeMode(1, QHeaderView::Stretch);
    m_table->horizontalHeader()->setSectionResizeMode(2, QHeaderView::ResizeToContents);
    m_table->verticalHeader()->hide();
    m_table->setEditTriggers(QAbstractItemView::NoEditTriggers);
    m_table->setSelectionBehavior(QAbstractItemView::SelectRows);
    layout->addWidget(m_table, 1);
    auto *note = new QLabel(tr("Inputs whose files are still missing will fail when run."), this);
    note->setWordWrap(true);
    layout->addWidget(note);
    auto *buttons = new QDialogButtonBox(this);
    QPushButton *next = buttons->addButton(tr("C&ontinue"), QDialogButtonBox::AcceptRole);
    next->setObjectName(QStringLiteral("continueButton"));
    next->setDefault(true);
    connect(next, &QPushButton::clicked, this, &QDialog::accept);
    layout->addWidget(buttons);
    for (IONode *input : missingInputs(scene))
        m_inputs << input;
    reload();
    DialogGeometry::restore(this, QSize(640, 320));
}

void MissingFilesDialog::reload()
{
    QList<QPointer<IONode>> still;
    for (const QPointer<IONode> &input : qAsConst(m_inputs)) {
        if (input && !QFileInfo::exists(input->path()))
            still << input;
    }
    m_text->setText(tr("%1 input file(s) of this flow can't be found:").arg(still.size()));
    m_table->setRowCount(m_inputs.size());
    for (int row = 0; row < m_inputs.size(); ++row) {
        IONode *input = m_inputs.at(row);
        const bool found = input && QFileInfo::exists(input->path());
        m_table->setItem(row, 0, new QTableWidgetItem(input ? input->name() : QString()));
        auto *file = new QTableWidgetItem(input ? QDir::toNativeSeparators(input->path()) : QString());
        if (found)
            file->setToolTip(tr("Located"));
        else {
            QFont font = file->font();
            font.setItalic(true);
            file->setFont(font);
            file->setToolTip(tr("File not found"));
        }
        m_table->setItem(row, 1, file);
        auto *button = new QPushButton(found ? tr("Located") : tr("&Locate..."), m_table);
        button->setEnabled(!found);
        button->setAccessibleName(tr("Locate '%1'").arg(input ? input->name() : QString()));
        connect(button, &QPushButton::clicked, this, [this, row] { locate(row); });
        m_table->setCellWidget(row, 2, button);
    }
    m_table->resizeColumnToContents(0);
}

QStringList MissingFilesDialog::rows() const
{
    QStringList lines;
    for (int row = 0; row < m_table->rowCount(); ++row)
        lines << m_table->item(row, 0)->text() + QLatin1Char('\t') + m_table->item(row, 1)->text();
    return lines;
}

bool MissingFilesDialog::locate(int row)
{
    IONode *input = m_inputs.value(row);
    if (!input || !m_scene)
        return false;
    const QFileInfo old(input->path());
    const QString path = FileDialogs::instance()->openFile(this, tr("Locate '%1'").arg(old.fileName()),
        old.absolutePath(), tr("%1;;All files (*)").arg(old.fileName()));
    if (path.isEmpty())
        return false;
    const auto setFile = [this](IONode *node, const QString &file) {
        UndoScope scope(m_scene, m_undoStack, tr("'File' change"));
        node->setPath(QFileInfo(file).absoluteFilePath());
    };
    setFile(input, path);
    m_scene->invalidate(input);
    // Files that moved together: the others missing with a name found in the new folder.
    const QDir folder = QFileInfo(path).absoluteDir();
    for (const QPointer<IONode> &other : qAsConst(m_inputs)) {
        if (!other || other == input || QFileInfo::exists(other->path()))
            continue;
        const QString candidate = folder.filePath(QFileInfo(other->path()).fileName());
        if (QFileInfo::exists(candidate)) {
            setFile(other, candidate);
            m_scene->invalidate(other);
        }
    }
    reload();
    return true;
}
