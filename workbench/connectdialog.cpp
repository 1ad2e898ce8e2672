#include "workbench/connectdialog.h"

#include "flow/graphscene.h"
#include "flow/node.h"
#include "workbench/dialogutil.h"
#include "workbench/undo.h"

#include <QCoreApplication>
#include <QDialogButtonBox>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QVBoxLayout>

namespace {
constexpr int IdRole = Qt::UserRole + 1;
} // namespace

QList<Node *> ConnectDialog::candidates(const GraphScene *scene, const Node *node, Direction direction)
{
    QList<Node *> result;
    if (!scene || !node)
        return result;
    if (direction == To)
        return scene->candidateTargets(node);
    for (Node *other : scene->nodes()) {
        if (other != node && scene->canConnect(other, node))
            result << other;
    }
    GraphScene::sortNodes(result);
    return result;
}

ConnectDialog::ConnectDialog(GraphScene *scene, Node *node, Direction direction, QUndoStack *undoStack, QWidget *parent)
    : QDialog(parent)
    , m_scene(scene)
    , m_node(node)
    , m_direction(direction)
    , m_undoStack(undoStack)
{
    setObjectName(QStringLiteral("ConnectDialog"));
    const QString name = node ? node->name() : QString();
    setWindowTitle(direction == To ? tr("Connect '%1' To").arg(name) : tr("Connect '%1' From").arg(name));
    setModal(true);

    auto *layout = new QVBoxLayout(this);
    m_filter = new QLineEdit(this);
    m_filter->setObjectName(QStringLiteral("filter"));
    m_filter->setPlaceholderText(tr("Filter"));
    m_filter->setAccessibleName(tr("Filter"));
    m_filter->setClearButtonEnabled(true);
    m_filter->installEventFilter(this);
    layout->addWidget(m_filter);
    m_list = new QListWidget(this);
    m_list->setObjectName(QStringLiteral("candidateList"));
    m_list->setAccessibleName(direction == To ? tr("Items to connect to") : tr("Items to connect from"));
    m_list->setWordWrap(true);
    layout->addWidget(m_list, 1);

    auto *buttons = new QDialogButtonBox(QDialogButtonBox::Cancel, this);
    QPushButton *connectButton = buttons->addButton(tr("&Connect"), QDialogButtonBox::AcceptRole);
    connectButton->setObjectName(QStringLiteral("connectButton"));
    connectButton->setDefault(true);
    m_connectButton = connectButton;
    layout->addWidget(buttons);
    connect(connectButton, &QPushButton::clicked, this, &ConnectDialog::connectCurrent);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    connect(m_list, &QListWidget::itemActivated, this, &ConnectDialog::connectCurrent);
    connect(m_filter, &QLineEdit::textChanged, this, &ConnectDialog::reload);
    // Up and Down in the filter move through the list, so that typing and choosing mix.
    connect(m_filter, &QLineEdit::returnPressed, this, &ConnectDialog::connectCurrent);
    reload();
    DialogGeometry::restore(this, QSize(380, 360));
}

void ConnectDialog::reload()
{
    m_list->clear();
    const QStringList words = m_filter->text().split(QLatin1Char(' '), Qt::SkipEmptyParts);
    for (Node *candidate : candidates(m_scene, m_node, m_direction)) {
        const QString text = QStringLiteral("%1 (%2)").arg(candidate->name(), candidate->displayTypeName());
        bool shown = true;
        for (const QString &word : words)
            shown = shown && text.contains(word, Qt::CaseInsensitive);
        if (!shown)
            continue;
        auto *item = new QListWidgetItem(text, m_list);
        item->setData(IdRole, candidate->id());
    }
    if (m_list->count() > 0)
        m_list->setCurrentRow(0);
    else if (m_filter->text().isEmpty())
        (new QListWidgetItem(m_direction == To ? tr("No item can take a connection from this one.")
                                               : tr("No item can be connected to this one."),
             m_list))
            ->setFlags(Qt::NoItemFlags);
    if (m_connectButton)
        m_connectButton->setEnabled(!shownItems().isEmpty());
}

QStringList ConnectDialog::shownItems() const
{
    QStringList items;
    for (int i = 0; i < m_list->count(); ++i) {
        if (m_list->item(i)->data(IdRole).isValid())
            items << m_list->item(i)->text();
    }
    return items;
}

void ConnectDialog::setFilter(const QString &text)
{
    m_filter->setText(text);
}

void ConnectDialog::connectCurrent()
{
    QListWidgetItem *item = m_list->currentItem();
    if (!item || !item->data(IdRole).isValid() || !m_scene || !m_node || m_scene->isRunning())
        return;
    Node *other = m_scene->node(item->data(IdRole).toInt());
    if (!other)
        return;
    Node *start = m_direction == To ? m_node.data() : other;
    Node *end = m_direction == To ? other : m_node.data();
    QString reason;
    {
        UndoScope scope(m_scene, m_undoStack, tr("connect"));
        if (!m_scene->connectNodes(start, end, &reason))
            scope.cancel();
    }
    if (!reason.isEmpty())
        return;
    accept();
    m_scene->invalidate(end);
}

bool ConnectDialog::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == m_filter && event->type() == QEvent::KeyPress) {
        const int key = static_cast<QKeyEvent *>(event)->key();
        if (key == Qt::Key_Up || key == Qt::Key_Down || key == Qt::Key_PageUp || key == Qt::Key_PageDown) {
            QCoreApplication::sendEvent(m_list, event);
            return true;
        }
    }
    return QDialog::eventFilter(watched, event);
}
