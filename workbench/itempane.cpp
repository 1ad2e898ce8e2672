#include "workbench/itempane.h"

#include "charts/chartnode.h"
#include "charts/chartwidget.h"
#include "flow/graphscene.h"
#include "flow/node.h"
#include "flow/notenode.h"
#include "inputs/inputnode.h"
#include "outputs/outputnode.h"
#include "transforms/transform.h"
#include "transforms/transformnode.h"
#include "workbench/datapanel.h"
#include "workbench/itemwidget.h"
#include "workbench/itemwidgetchart.h"
#include "workbench/itemwidgetio.h"
#include "workbench/itemwidgetnote.h"
#include "workbench/itemwidgettransform.h"
#include "workbench/prompts.h"
#include "workbench/undo.h"

#include <QApplication>
#include <QSplitter>
#include <QStackedWidget>
#include <QTabWidget>
#include <QUndoStack>
#include <QVBoxLayout>

namespace {

// The panes of every window; the write pipeline's question goes to the active one.
QList<ItemPane *> &panes()
{
    static QList<ItemPane *> list;
    return list;
}

// Asks before an output writes many files, as a question with "OK" and "Cancel".
bool confirmMultiFileOutput(const QString &title, const QString &text)
{
    QWidget *parent = QApplication::activeWindow();
    if (!parent && !panes().isEmpty())
        parent = panes().constLast()->window();
    return Prompts::instance()->ask(parent, title, text, QString(), {ItemPane::tr("OK"), ItemPane::tr("Cancel")}, 0, 1)
        == 0;
}

} // namespace

ItemPane::~ItemPane()
{
    panes().removeAll(this);
    if (panes().isEmpty())
        OutputNode::setConfirmation(OutputNode::Confirmation());
}

ItemPane::ItemPane(QWidget *parent)
    : QWidget(parent)
{
    // Runs from a window are interactive: an output writing many files asks first.
    panes().append(this);
    OutputNode::setConfirmation(&confirmMultiFileOutput);

    setMinimumWidth(320);
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    m_splitter = new QSplitter(Qt::Vertical, this);
    m_splitter->setObjectName(QStringLiteral("m_itemSplitter"));
    m_splitter->setChildrenCollapsible(false);
    m_stack = new QStackedWidget(m_splitter);
    m_dataTabs = new QTabWidget(m_splitter);
    m_dataTabs->setDocumentMode(true);
    m_dataTabs->setTabBarAutoHide(true);
    m_dataPanel = new DataPanel(m_dataTabs);
    m_dataTabs->addTab(m_dataPanel, tr("Data"));
    m_splitter->addWidget(m_stack);
    m_splitter->addWidget(m_dataTabs);
    m_splitter->setStretchFactor(0, 45);
    m_splitter->setStretchFactor(1, 55);
    layout->addWidget(m_splitter);
    connect(m_dataPanel, &DataPanel::runRequested, this, &ItemPane::runRequested);
    // An undo step replaces the items: let go of the node, then show its replacement.
    connect(UndoNotifier::instance(), &UndoNotifier::aboutToRestore, this, [this](GraphScene *scene) {
        if (scene != m_scene)
            return;
        m_restoringId = m_node ? m_node->id() : -1;
        setCurrentNode(nullptr);
    });
    connect(UndoNotifier::instance(), &UndoNotifier::restored, this, [this](GraphScene *scene) {
        if (scene != m_scene || m_restoringId < 0)
            return;
        const int id = m_restoringId;
        m_restoringId = -1;
        setCurrentNode(scene->node(id));
    });
    setCurrentNode(nullptr);
}

void ItemPane::setScene(GraphScene *scene, QUndoStack *undoStack)
{
    if (m_scene)
        disconnect(m_scene, nullptr, this, nullptr);
    if (m_undoStack)
        disconnect(m_undoStack, nullptr, this, nullptr);
    m_scene = scene;
    m_undoStack = undoStack;
    if (scene)
        connect(scene, &GraphScene::refreshRequested, this, &ItemPane::refresh);
    if (undoStack)
        connect(undoStack, &QUndoStack::indexChanged, this, &ItemPane::onUndoIndexChanged);
    m_node = nullptr;
    setCurrentNode(nullptr);
}

ItemWidget *ItemPane::createItemWidget(Node *node)
{
    if (!node)
        return new FlowItemWidget(m_scene, m_undoStack, m_stack);
    if (auto *transformNode = qobject_cast<TransformNode *>(node))
        return new TransformItemWidget(transformNode, m_scene, m_undoStack, m_stack);
    if (auto *input = qobject_cast<InputNode *>(node))
        return new InputItemWidget(input, m_scene, m_undoStack, m_stack);
    if (auto *output = qobject_cast<OutputNode *>(node))
        return new OutputItemWidget(output, m_scene, m_undoStack, m_stack);
    if (auto *chart = qobject_cast<ChartNode *>(node))
        return new ChartItemWidget(chart, m_scene, m_undoStack, m_stack);
    if (auto *note = qobject_cast<NoteNode *>(node))
        return new NoteItemWidget(note, m_scene, m_undoStack, m_stack);
    return new ItemWidget(node, m_scene, m_undoStack, m_stack);
}

void ItemPane::setCurrentNode(Node *node)
{
    if (m_node)
        disconnect(m_node, nullptr, this, nullptr);
    m_node = node;
    if (m_itemWidget) {
        m_stack->removeWidget(m_itemWidget);
        m_itemWidget->deleteLater();
    }
    m_itemWidget = createItemWidget(node);
    connect(m_itemWidget, &ItemWidget::helpRequested, this, &ItemPane::helpRequested);
    m_stack->addWidget(m_itemWidget);
    m_stack->setCurrentWidget(m_itemWidget);
    m_itemWidget->refresh();
    m_itemWidget->setRunning(m_running);
    if (node) {
        connect(node, &Node::nodeDataChanged, this, &ItemPane::onNodeDataChanged);
        connect(node, &Node::nodeStatusChanged, this, &ItemPane::onNodeStatusChanged);
        connect(node, &QObject::destroyed, this, [this] { setCurrentNode(nullptr); });
    }
    const bool notes = node && !m_itemWidget->showsData();
    m_dataTabs->setVisible(!notes);
    m_dataPanel->setNode(node, m_scene);
    // A chart shows its drawing first, its input's table on the second tab.
    auto *chart = qobject_cast<ChartNode *>(node);
    if (m_chartView && (!chart || m_chartView->node() != chart)) {
        m_dataTabs->removeTab(m_dataTabs->indexOf(m_chartView));
        delete m_chartView;
        m_chartView = nullptr;
    }
    if (chart && !m_chartView) {
        m_chartView = new ChartWidget(m_dataTabs);
        m_chartView->setObjectName(QStringLiteral("m_chartView"));
        m_chartView->setAccessibleName(tr("Chart"));
        m_chartView->setNode(chart, true);
        m_dataTabs->insertTab(0, m_chartView, tr("Chart"));
        m_dataTabs->setCurrentIndex(0);
    }
    fitSplitter();
}

void ItemPane::fitSplitter()
{
    // A chart's options take at most half the pane: the drawing below needs room.
    if (qobject_cast<const ChartNode *>(m_node.data()) && !m_dataTabs->isHidden()) {
        const int total = m_splitter->height();
        if (total > 0) {
            const int options = qMin(m_itemWidget->fullHeightHint(), total / 2);
            m_splitter->setSizes({options, total - options});
        }
        return;
    }
    // A transform that needs little room for its options gives the rest to the data.
    const auto *transformNode = qobject_cast<const TransformNode *>(m_node.data());
    if (!transformNode || !transformNode->transform()->hasMinimumOptions() || m_dataTabs->isHidden())
        return;
    const int total = m_splitter->height();
    if (total <= 0)
        return;
    const int options = qMin(m_itemWidget->fullHeightHint(), total * 60 / 100);
    m_splitter->setSizes({options, total - options});
}

void ItemPane::setRunning(bool running)
{
    m_running = running;
    if (m_itemWidget)
        m_itemWidget->setRunning(running);
}

void ItemPane::refresh()
{
    if (m_itemWidget)
        m_itemWidget->refresh();
    m_dataPanel->refresh();
}

void ItemPane::onNodeDataChanged()
{
    m_dataPanel->refresh();
}

void ItemPane::onNodeStatusChanged()
{
    m_dataPanel->updateOverlay();
}

void ItemPane::onUndoIndexChanged()
{
    // An undo or redo may have changed any option of the item shown.
    if (m_itemWidget)
        m_itemWidget->refresh();
}

QByteArray ItemPane::saveSplitterState() const
{
    return m_splitter->saveState();
}

bool ItemPane::restoreSplitterState(const QByteArray &state)
{
    return m_splitter->restoreState(state);
}
