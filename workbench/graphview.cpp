#include "graphview.h"

#include "graphviewchooser.h"
#include "graphviewpainter.h"
#include "itemwidgetchart.h"
#include "prompts.h"
#include "undo.h"

#include "charts/chartnode.h"
#include "flow/connection.h"
#include "flow/document.h"
#include "flow/fileformat.h"
#include "flow/graphscene.h"
#include "flow/notenode.h"
#include "inputs/inputnode.h"
#include "outputs/outputnode.h"
#include "transforms/transform.h"
#include "transforms/transformnode.h"

#include <QAccessible>
#include <QApplication>
#include <QClipboard>
#include <QContextMenuEvent>
#include <QDragEnterEvent>
#include <QFile>
#include <QFileInfo>
#include <QGraphicsPathItem>
#include <QGraphicsTextItem>
#include <QInputDialog>
#include <QPainter>
#include <QTextCursor>
#include <QTextDocument>
#include <QKeyEvent>
#include <QMimeData>
#include <QMouseEvent>
#include <QScrollBar>
#include <QTextCodec>
#include <QTimer>
#include <QUndoStack>
#include <QUrl>
#include <QWheelEvent>
#include <QtMath>

#include <functional>

namespace {

const qreal StepX = 200.0;
const qreal StepY = 96.0;
const int MessageMs = 5000;

// The file type for a path: by its extension, else by what its first 64 KiB look like.
int fileTypeFor(const QString &path, bool *guessed)
{
    *guessed = false;
    const int byExtension = FileFormat::forExtension(QFileInfo(path).suffix());
    if (byExtension != IONode::NoFileType)
        return byExtension;
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return IONode::DelimitedText;
    const QByteArray head = file.read(65536);
    *guessed = true;
    return InputNode::guessTextFormat(QString::fromUtf8(head));
}

bool canHaveDownstream(const Node *node)
{
    return node->maxDownstream() > 0;
}

} // namespace

// The text field over a note being edited: the note's own colours and font, growing as
// the text does, with the note's padding around it.
class NoteEditor : public QGraphicsTextItem
{
public:
    static constexpr qreal Padding = 8.0;
    static constexpr qreal TextWidth = 224.0; // the widest note's text

    NoteEditor(NoteNode *note, std::function<void(bool)> finished)
        : QGraphicsTextItem(note)
        , m_note(note)
        , m_finished(std::move(finished))
    {
        document()->setDocumentMargin(0);
        setFont(QFont());
        setDefaultTextColor(note->color().lightness() < 128 ? QColor(0xF0, 0xF0, 0xF0) : QColor(0x20, 0x20, 0x20));
        setPlainText(note->text());
        setTextWidth(TextWidth);
        setPos(Padding, Padding);
        setTextInteractionFlags(Qt::TextEditorInteraction);
        // The note's size when the edit began: a shorter text still covers the old one.
        const QRectF box = note->boundingRect();
        m_least = QRectF(-Padding - 1, -Padding - 1, box.width() - 24, box.height() - 24);
    }

    QRectF boundingRect() const override
    {
        return QGraphicsTextItem::boundingRect().adjusted(-Padding - 1, -Padding - 1, Padding, Padding).united(m_least);
    }

    void paint(QPainter *painter, const QStyleOptionGraphicsItem *option, QWidget *widget) override
    {
        painter->save();
        painter->setRenderHint(QPainter::Antialiasing);
        painter->setPen(QPen(CanvasTheme::current().accent, 1.5));
        painter->setBrush(m_note ? m_note->color() : QColor(Qt::white));
        painter->drawRoundedRect(boundingRect().adjusted(0.75, 0.75, -0.75, -0.75), 4, 4);
        painter->restore();
        QGraphicsTextItem::paint(painter, option, widget);
    }

    void finish(bool keep)
    {
        if (m_done)
            return;
        m_done = true;
        if (m_finished)
            m_finished(keep);
    }
    bool isDone() const { return m_done; }

protected:
    void keyPressEvent(QKeyEvent *event) override
    {
        if (event->key() == Qt::Key_Escape) {
            finish(false);
            return;
        }
        if ((event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter)
            && (event->modifiers() & Qt::ControlModifier)) {
            finish(true);
            return;
        }
        QGraphicsTextItem::keyPressEvent(event);
    }

    void focusOutEvent(QFocusEvent *event) override
    {
        QGraphicsTextItem::focusOutEvent(event);
        // A context menu or another window taking focus for a moment is no end.
        if (event->reason() != Qt::PopupFocusReason && event->reason() != Qt::ActiveWindowFocusReason)
            finish(true);
    }

private:
    QPointer<NoteNode> m_note;
    std::function<void(bool)> m_finished;
    QRectF m_least;
    bool m_done = false;
};

GraphView::GraphView(QWidget *parent)
    : QGraphicsView(parent)
{
    GraphViewPainter::install();
    setRenderHint(QPainter::Antialiasing);
    setRenderHint(QPainter::TextAntialiasing);
    setViewportUpdateMode(QGraphicsView::MinimalViewportUpdate);
    setDragMode(QGraphicsView::RubberBandDrag);
    setRubberBandSelectionMode(Qt::IntersectsItemShape);
    setTransformationAnchor(QGraphicsView::AnchorUnderMouse);
    setResizeAnchor(QGraphicsView::AnchorViewCenter);
    setAcceptDrops(true);
    setMouseTracking(true);
    setFocusPolicy(Qt::StrongFocus);
    setAccessibleName(tr("Canvas"));
    setObjectName(QStringLiteral("canvas"));
    connect(UndoNotifier::instance(), &UndoNotifier::aboutToRestore, this, &GraphView::onAboutToRestore);
    connect(UndoNotifier::instance(), &UndoNotifier::restored, this, &GraphView::onRestored);
}

GraphView::~GraphView()
{
    if (m_noteEditor) {
        const QSignalBlocker blocker(this);
        finishNoteEdit(false);
    }
    if (GraphViewPainter::instance()->currentNode() == m_current)
        GraphViewPainter::instance()->setCurrentNode(nullptr);
    GraphViewPainter::instance()->setHoveredNode(nullptr);
    GraphViewPainter::instance()->clearDrag();
}

void GraphView::setGraphScene(GraphScene *scene, QUndoStack *undoStack)
{
    if (m_noteEditor)
        finishNoteEdit(false);
    if (m_scene)
        disconnect(m_scene, nullptr, this, nullptr);
    cancelConnectionDrag();
    m_current = nullptr;
    m_currentId = -1;
    GraphViewPainter::instance()->setCurrentNode(nullptr);
    GraphViewPainter::instance()->setHoveredNode(nullptr);
    m_scene = scene;
    m_undoStack = undoStack;
    m_pasteCount = 0;
    setScene(scene);
    if (m_scene) {
        m_scene->setBackgroundBrush(Qt::NoBrush);
        connect(m_scene, &QGraphicsScene::selectionChanged, this, &GraphView::onSceneSelectionChanged);
        connect(m_scene, &QGraphicsScene::changed, this, [this] { updateSceneRect(); });
        connect(m_scene, &GraphScene::refreshRequested, this, [this] {
            viewport()->update();
            setAccessibleDescription(describeCurrent());
        });
    }
    updateSceneRect();
    emit currentNodeChanged(nullptr);
}

void GraphView::setCurrentNode(Node *node)
{
    if (node == m_current)
        return;
    Node *old = m_current;
    m_current = node;
    m_currentId = node ? node->id() : -1;
    GraphViewPainter::instance()->setCurrentNode(node);
    if (old)
        old->update();
    if (node) {
        node->update();
        ensureVisible(node, 40, 40);
    }
    setAccessibleDescription(describeCurrent());
    if (QAccessible::isActive()) {
        QAccessibleEvent event(this, QAccessible::DescriptionChanged);
        QAccessible::updateAccessibility(&event);
    }
    emit currentNodeChanged(node);
}

QString GraphView::describeCurrent() const
{
    const int count = m_scene ? m_scene->nodes().size() : 0;
    if (!m_current)
        return tr("%1 item(s) in the flow.").arg(count);
    return tr("Current item: '%1', %2, %3. %4 item(s) in the flow.")
        .arg(m_current->name(), Node::statusName(m_current->status()),
            GraphViewPainter::instance()->sizeTextOf(*m_current))
        .arg(count);
}

qreal GraphView::zoom() const
{
    return transform().m11();
}

void GraphView::setZoom(qreal zoomLevel)
{
    const qreal bounded = qBound(MinimumZoom, zoomLevel, MaximumZoom);
    QTransform t;
    t.scale(bounded, bounded);
    setTransform(t);
}

void GraphView::zoomBy(qreal factor)
{
    const qreal target = qBound(MinimumZoom, zoom() * factor, MaximumZoom);
    const qreal applied = target / zoom();
    scale(applied, applied);
}

void GraphView::zoomToFit()
{
    if (!m_scene || m_scene->items().isEmpty()) {
        setZoom(1.0);
        return;
    }
    QRectF bounds;
    for (QGraphicsItem *item : m_scene->items()) {
        if (item != m_dragLine)
            bounds |= item->sceneBoundingRect();
    }
    bounds.adjust(-40, -40, 40, 40);
    const QRectF area = viewport()->rect();
    const qreal fit = qMin(area.width() / bounds.width(), area.height() / bounds.height());
    setZoom(qMin(1.0, fit));
    centerOn(bounds.center());
}

QPointF GraphView::snapped(const QPointF &point)
{
    return QPointF(qRound(point.x() / GridStep) * GridStep, qRound(point.y() / GridStep) * GridStep);
}

void GraphView::setEditingEnabled(bool enabled)
{
    m_editingEnabled = enabled;
    if (!enabled)
        cancelConnectionDrag();
    if (m_scene) {
        for (Node *node : m_scene->nodes())
            node->setFlag(QGraphicsItem::ItemIsMovable, enabled);
    }
}

void GraphView::updateSceneRect()
{
    if (!m_scene)
        return;
    QRectF bounds = m_scene->itemsBoundingRect();
    if (bounds.isNull())
        bounds = QRectF(0, 0, 1, 1);
    const QRectF wanted = bounds.adjusted(-2000, -2000, 2000, 2000);
    if (!m_scene->sceneRect().contains(wanted))
        m_scene->setSceneRect(m_scene->sceneRect() | wanted);
}

void GraphView::drawBackground(QPainter *painter, const QRectF &rect)
{
    const CanvasTheme &theme = CanvasTheme::current();
    painter->fillRect(rect, theme.background);
    qreal step = zoom() >= 0.5 ? GridStep : GridStep * 4;
    if (zoom() * step < 6)
        return;
    // Far out, every other dot, so that the dots stay a texture rather than a fog.
    while (zoom() * step < 12)
        step *= 2;
    // Dots as small device-pixel squares without antialiasing, which the raster engine
    // fills as spans: thousands of them cost well under a millisecond.
    const QTransform toDevice = painter->worldTransform();
    if (toDevice.type() > QTransform::TxScale)
        return;
    const qreal left = qFloor(rect.left() / step) * step;
    const qreal top = qFloor(rect.top() / step) * step;
    const QPointF origin = toDevice.map(QPointF(left, top));
    const qreal stepX = step * toDevice.m11();
    const qreal stepY = step * toDevice.m22();
    const QRectF device = toDevice.mapRect(rect);
    QVector<QRect> dots;
    dots.reserve(int((device.width() / stepX + 2) * (device.height() / stepY + 2)));
    for (qreal x = origin.x(); x < device.right(); x += stepX)
        for (qreal y = origin.y(); y < device.bottom(); y += stepY)
            dots << QRect(qRound(x) - 1, qRound(y) - 1, 2, 2);
    painter->save();
    painter->resetTransform();
    painter->setRenderHint(QPainter::Antialiasing, false);
    painter->setPen(Qt::NoPen);
    painter->setBrush(theme.gridDots);
    painter->drawRects(dots.constData(), dots.size());
    painter->restore();
}

Node *GraphView::nodeAt(const QPoint &viewPos) const
{
    for (QGraphicsItem *item : items(viewPos)) {
        if (item == m_dragLine)
            continue;
        if (Node *node = dynamic_cast<Node *>(item))
            return node;
    }
    return nullptr;
}

Connection *GraphView::connectionAt(const QPoint &viewPos) const
{
    for (QGraphicsItem *item : items(viewPos)) {
        if (item->type() == Connection::Type)
            return static_cast<Connection *>(item);
        if (dynamic_cast<Node *>(item))
            return nullptr;
    }
    return nullptr;
}

void GraphView::makeCurrentAndSelect(Node *node)
{
    if (!m_scene)
        return;
    m_scene->clearSelection();
    if (node)
        node->setSelected(true);
    setCurrentNode(node);
}

void GraphView::onSceneSelectionChanged()
{
    if (!m_scene)
        return;
    // The current item follows a single selected item; clearing the selection shows the flow.
    const QList<Node *> selected = m_scene->selectedNodes();
    if (selected.isEmpty()) {
        if (m_scene->selectedItems().isEmpty())
            setCurrentNode(nullptr);
    } else if (!selected.contains(m_current)) {
        setCurrentNode(selected.size() == 1 ? selected.first() : selected.last());
    }
}

void GraphView::onAboutToRestore(GraphScene *scene)
{
    if (scene != m_scene)
        return;
    if (m_noteEditor)
        finishNoteEdit(false);
    cancelConnectionDrag();
    m_moving = false;
    m_moveStart.clear();
    GraphViewPainter::instance()->setHoveredNode(nullptr);
    GraphViewPainter::instance()->setCurrentNode(nullptr);
    const int keep = m_currentId;
    setCurrentNode(nullptr);
    m_currentId = keep;
}

void GraphView::onRestored(GraphScene *scene, const QList<int> &selectedIds)
{
    Q_UNUSED(selectedIds)
    if (scene != m_scene)
        return;
    setEditingEnabled(m_editingEnabled);
    setCurrentNode(m_scene->node(m_currentId));
    updateSceneRect();
    runSoon();
}

QPointF GraphView::viewCentre() const
{
    return mapToScene(viewport()->rect().center());
}

bool GraphView::hasSelection() const
{
    return m_scene && !m_scene->selectedItems().isEmpty();
}

QPointF GraphView::freePosition(QPointF pos, const Node *ignore, const QRectF &shape) const
{
    if (!m_scene)
        return pos;
    const QRectF itemShape(-75, -28, 150, 106); // tile and caption
    const QRectF footprint = (shape.isNull() ? itemShape : shape).adjusted(-16, -16, 16, 16);
    for (int guard = 0; guard < 1000; ++guard) {
        bool overlaps = false;
        for (const Node *node : m_scene->nodes()) {
            if (node == ignore)
                continue;
            const QRectF other = qobject_cast<const NoteNode *>(node) ? node->sceneBoundingRect()
                                                                     : itemShape.translated(node->pos());
            if (footprint.translated(pos).intersects(other)) {
                overlaps = true;
                break;
            }
        }
        if (!overlaps)
            break;
        pos.ry() += StepY;
    }
    return m_snapToGrid ? snapped(pos) : pos;
}

QPointF GraphView::nextInputPosition() const
{
    if (!m_scene || m_scene->nodes().isEmpty())
        return mapToScene(QPoint(40 + 75, 40 + 28));
    qreal left = 1e12;
    qreal lowestInput = -1e12;
    bool anyInput = false;
    for (const Node *node : m_scene->nodes()) {
        left = qMin(left, node->pos().x());
        if (node->typeName() == QLatin1String("Input")) {
            lowestInput = qMax(lowestInput, node->pos().y());
            anyInput = true;
        }
    }
    const qreal y = anyInput ? lowestInput + StepY : mapToScene(QPoint(0, 40 + 28)).y();
    return QPointF(left, y);
}

void GraphView::runSoon()
{
    QTimer::singleShot(0, m_scene, [scene = QPointer<GraphScene>(m_scene)] {
        if (scene)
            scene->runIfAuto();
    });
}

QList<Node *> GraphView::placeAndSelect(const QList<Node *> &nodes)
{
    m_scene->clearSelection();
    for (Node *node : nodes)
        node->setSelected(true);
    if (!nodes.isEmpty()) {
        setCurrentNode(nodes.last());
        ensureVisible(nodes.last(), 60, 60);
    }
    updateSceneRect();
    return nodes;
}

// ----- edits

bool GraphView::connectNodes(Node *start, Node *end)
{
    if (!m_scene || !start || !end || !m_editingEnabled)
        return false;
    QString reason;
    if (!m_scene->canConnect(start, end, &reason)) {
        if (!reason.isEmpty())
            emit statusMessage(reason, MessageMs);
        return false;
    }
    {
        UndoScope scope(m_scene, m_undoStack, tr("connect"));
        m_scene->connectNodes(start, end);
        if (auto *transformNode = qobject_cast<TransformNode *>(end)) {
            QList<Node *> inputs = transformNode->inputs();
            if (transformNode->transform() && transformNode->transform()->reorderInputs(inputs))
                transformNode->transform()->setUpstream(inputs);
        }
    }
    end->setStatus(Node::NeedsUpdating, true);
    emit editingDone();
    runSoon();
    return true;
}

void GraphView::insertIntoConnection(Node *node, Connection *connection)
{
    Node *start = connection->start();
    Node *end = connection->end();
    // The end keeps its input position: its inputs are reconnected in their old order with
    // the new item in place of the old start.
    const QList<Node *> endInputs = end->upstream(false);
    const QPointF middle = (start->pos() + end->pos()) / 2;
    node->setPos(m_snapToGrid ? snapped(middle) : middle);
    if (qAbs(end->pos().x() - middle.x()) < StepX) {
        const QList<Node *> below = end->downstreamClosure() << end;
        for (Node *moved : below)
            moved->setPos(moved->pos() + QPointF(StepX, 0));
    }
    for (Node *input : endInputs)
        m_scene->disconnectNodes(input, end);
    m_scene->addNode(node);
    m_scene->connectNodes(start, node);
    for (Node *input : endInputs)
        m_scene->connectNodes(input == start ? node : input, end);
}

Node *GraphView::addTransform(const Transform *prototype, const QPointF *at)
{
    if (!m_scene || !prototype || !m_editingEnabled)
        return nullptr;
    QList<Node *> candidates;
    for (Node *node : m_scene->selectedNodes()) {
        if (canHaveDownstream(node))
            candidates << node;
    }
    GraphScene::sortNodes(candidates);
    const QList<QGraphicsItem *> selectedItems = m_scene->selectedItems();
    QList<Connection *> selectedConnections;
    for (QGraphicsItem *item : selectedItems) {
        if (item->type() == Connection::Type)
            selectedConnections << static_cast<Connection *>(item);
    }
    if (candidates.size() > prototype->maximumInputs()) {
        const QString tip = prototype->buttonTip();
        // "Select 2 Input/Transform items in the Center pane ..." gives "2 Input/Transform items".
        QString countText = tip.section(QLatin1Char('\n'), 0, 0);
        if (countText.startsWith(QLatin1String("Select ")))
            countText = countText.mid(7);
        const int end = countText.indexOf(QLatin1String(" in the "));
        if (end >= 0)
            countText = countText.left(end);
        emit statusMessage(tr("'%1' takes %2; %3 items are selected")
                               .arg(prototype->name(), countText)
                               .arg(candidates.size()),
            MessageMs);
        return nullptr;
    }

    auto *node = new TransformNode(prototype->clone());
    if (candidates.isEmpty() && selectedConnections.size() == 1) {
        {
            UndoScope scope(m_scene, m_undoStack, tr("insert '%1'").arg(prototype->name()));
            insertIntoConnection(node, selectedConnections.first());
        }
    } else {
        UndoScope scope(m_scene, m_undoStack, tr("add '%1'").arg(prototype->name()));
        QPointF pos;
        if (at) {
            pos = *at;
        } else if (!candidates.isEmpty()) {
            qreal right = -1e12;
            qreal sumY = 0;
            for (const Node *candidate : candidates) {
                right = qMax(right, candidate->pos().x());
                sumY += candidate->pos().y();
            }
            pos = QPointF(right + StepX, sumY / candidates.size());
        } else if (m_current) {
            pos = m_current->pos() + QPointF(StepX, 0);
        } else {
            pos = viewCentre();
        }
        node->setPos(freePosition(pos));
        m_scene->addNode(node);
        for (Node *candidate : qAsConst(candidates))
            m_scene->connectNodes(candidate, node);
        QList<Node *> inputs = node->inputs();
        if (inputs.size() >= 2 && node->transform()->reorderInputs(inputs))
            node->transform()->setUpstream(inputs);
        if (!node->hasParameters())
            node->createParameters(true);
    }
    placeAndSelect({node});
    node->setStatus(Node::NeedsUpdating, true);
    emit editingDone();
    runSoon();
    return node;
}

QList<Node *> GraphView::addInputFiles(const QStringList &paths, const QPointF *at)
{
    QList<Node *> added;
    if (!m_scene || paths.isEmpty() || !m_editingEnabled)
        return added;
    QPointF pos = at ? *at : nextInputPosition();
    QString guessMessage;
    {
        UndoScope scope(m_scene, m_undoStack, tr("add input"));
        for (const QString &path : paths) {
            auto *input = new InputNode;
            bool guessed = false;
            const int type = fileTypeFor(path, &guessed);
            // A new item starts from the options the user saved as defaults.
            InputOptions options = InputNode::defaultOptions(m_scene->settings());
            options.path = QFileInfo(path).absoluteFilePath();
            options.fileType = type;
            input->setOptions(options);
            if (guessed)
                guessMessage = tr("'%1' read as %2. Set 'Format' to change.")
                                   .arg(QFileInfo(path).fileName(), FileFormat::name(type));
            input->setPos(at ? (m_snapToGrid ? snapped(pos) : pos) : freePosition(pos));
            m_scene->addNode(input);
            added << input;
            pos.ry() += StepY;
        }
    }
    placeAndSelect(added);
    if (!guessMessage.isEmpty())
        emit statusMessage(guessMessage, MessageMs);
    emit editingDone();
    runSoon();
    return added;
}

Node *GraphView::addTextInput(const QString &text, const QPointF *at, const QString &stepName)
{
    if (!m_scene || !m_editingEnabled)
        return nullptr;
    auto *input = new InputNode;
    const int type = InputNode::guessTextFormat(text);
    {
        UndoScope scope(m_scene, m_undoStack, stepName.isEmpty() ? tr("paste text") : stepName);
        InputOptions options = InputNode::defaultOptions(m_scene->settings());
        options.fileType = type;
        input->setOptions(options);
        input->setMedium(IONode::Clipboard);
        input->setText(text);
        input->setPos(at ? *at : freePosition(nextInputPosition()));
        m_scene->addNode(input);
    }
    placeAndSelect({input});
    if (text.size() > 10000000)
        emit statusMessage(tr("The pasted text (%1 MB) is stored in the .tflow file. Save it to a file and read "
                              "that file instead to keep the .tflow file small.")
                               .arg(text.size() / 1000000),
            MessageMs);
    else
        emit statusMessage(tr("Pasted text read as %1. Set 'Format' to change.").arg(FileFormat::name(type)),
            MessageMs);
    emit editingDone();
    runSoon();
    return input;
}

Node *GraphView::addOutput(const QString &path)
{
    if (!m_scene || !m_editingEnabled)
        return nullptr;
    auto *output = new OutputNode;
    {
        UndoScope scope(m_scene, m_undoStack, tr("add output"));
        output->applyDefaults(m_scene->settings());
        OutputOptions options = output->options();
        options.path = QFileInfo(path).absoluteFilePath();
        const int type = FileFormat::forExtension(QFileInfo(path).suffix());
        options.fileType = type == IONode::NoFileType ? int(IONode::DelimitedText) : type;
        output->setOptions(options);
        Node *from = m_current && canHaveDownstream(m_current) ? m_current : nullptr;
        output->setPos(freePosition(from ? from->pos() + QPointF(StepX, 0) : viewCentre()));
        m_scene->addNode(output);
        if (from)
            m_scene->connectNodes(from, output);
    }
    placeAndSelect({output});
    emit editingDone();
    runSoon();
    return output;
}

Node *GraphView::addChart(const QString &path, const QPointF *at)
{
    if (!m_scene || !m_editingEnabled)
        return nullptr;
    auto *chart = new ChartNode;
    {
        UndoScope scope(m_scene, m_undoStack, tr("add chart"));
        ChartOptions options = ChartItemWidget::defaultOptions(m_scene->settings());
        options.writeFile = !path.isEmpty();
        if (!path.isEmpty()) {
            options.path = QFileInfo(path).absoluteFilePath();
            const int type = ChartOptions::imageTypeForExtension(QFileInfo(path).suffix());
            if (type >= 0)
                options.imageType = type;
        }
        chart->setOptions(options);
        Node *from = m_current && canHaveDownstream(m_current) ? m_current : nullptr;
        chart->setPos(freePosition(at ? *at : from ? from->pos() + QPointF(StepX, 0) : viewCentre()));
        m_scene->addNode(chart);
        if (from)
            m_scene->connectNodes(from, chart);
    }
    placeAndSelect({chart});
    emit editingDone();
    runSoon();
    return chart;
}

Node *GraphView::addNote(const QPointF *at)
{
    if (!m_scene || !m_editingEnabled)
        return nullptr;
    auto *note = new NoteNode;
    {
        UndoScope scope(m_scene, m_undoStack, tr("add note"));
        note->setText(tr("Note"));
        note->setPos(at ? *at : freePosition(viewCentre(), nullptr, note->boundingRect()));
        m_scene->addNode(note);
    }
    placeAndSelect({note});
    emit editingDone();
    editNote(note, true);
    return note;
}

void GraphView::editNote(NoteNode *note, bool selectAll)
{
    if (!note || !m_scene || !m_editingEnabled || note->scene() != m_scene)
        return;
    if (m_noteEditor) {
        if (m_noteEditor->parentItem() == note)
            return;
        finishNoteEdit(true);
    }
    auto *editor = new NoteEditor(note, [this](bool keep) { finishNoteEdit(keep); });
    m_noteEditor = editor;
    setFocus(Qt::OtherFocusReason);
    editor->setFocus(Qt::OtherFocusReason);
    QTextCursor cursor(editor->document());
    if (selectAll)
        cursor.select(QTextCursor::Document);
    else
        cursor.movePosition(QTextCursor::End);
    editor->setTextCursor(cursor);
    ensureVisible(editor, 40, 40);
}

QGraphicsTextItem *GraphView::noteEditor() const
{
    return m_noteEditor;
}

void GraphView::finishNoteEdit(bool keep)
{
    NoteEditor *editor = m_noteEditor;
    m_noteEditor = nullptr;
    if (!editor)
        return;
    editor->finish(keep); // no-op when it is the editor that finished
    auto *note = static_cast<NoteNode *>(editor->parentItem());
    const QString text = editor->toPlainText();
    // Out of the scene at once; deleted later, since this may run inside its own event.
    editor->hide();
    editor->setParentItem(nullptr);
    if (editor->scene())
        editor->scene()->removeItem(editor);
    editor->deleteLater();
    if (keep && note && m_scene && m_scene->nodes().contains(note) && text != note->text()) {
        UndoScope scope(m_scene, m_undoStack, tr("note change"));
        note->setText(text);
    }
    if (note)
        note->update();
    emit editingDone();
}

bool GraphView::confirmDisconnect(const QList<Node *> &nodes, const QList<Connection *> &connections, bool deleting)
{
    // Column options of the items directly below a removed connection may be unset.
    QSet<Node *> affected;
    for (const Connection *connection : connections)
        affected.insert(connection->end());
    for (const Node *node : nodes) {
        for (Node *below : node->downstream(false))
            affected.insert(below);
    }
    for (const Node *node : nodes)
        affected.remove(const_cast<Node *>(node));
    int count = 0;
    for (Node *node : qAsConst(affected)) {
        if (auto *transformNode = qobject_cast<TransformNode *>(node))
            if (transformNode->transform())
                count += transformNode->transform()->columnParameterCount();
    }
    if (count == 0)
        return true;
    const QString text = deleting
        ? tr("This deletion may reset %1 column related option(s) downstream. Are you sure you want to do that?")
              .arg(count)
        : tr("This disconnection may reset %1 column related option(s) downstream. Are you sure you want to do "
             "that?\n\nNote that you can insert a transform by selecting an exiting connection then adding a "
             "transform.")
              .arg(count);
    return Prompts::instance()->ask(this, QApplication::applicationName(), text, QString(),
               {tr("&Yes"), tr("&No")}, 1, 1)
        == 0;
}

void GraphView::deleteSelection()
{
    if (!m_scene || !m_editingEnabled)
        return;
    QList<Node *> nodes = m_scene->selectedNodes();
    QList<Connection *> connections;
    for (QGraphicsItem *item : m_scene->selectedItems()) {
        if (item->type() == Connection::Type) {
            auto *connection = static_cast<Connection *>(item);
            if (!nodes.contains(connection->start()) && !nodes.contains(connection->end()))
                connections << connection;
        }
    }
    if (nodes.isEmpty() && connections.isEmpty())
        return;
    if (!confirmDisconnect(nodes, connections, !nodes.isEmpty()))
        return;
    QSet<Node *> below;
    for (Connection *connection : qAsConst(connections))
        below.insert(connection->end());
    for (Node *node : qAsConst(nodes))
        for (Node *downstream : node->downstream(false))
            below.insert(downstream);
    for (Node *node : qAsConst(nodes))
        below.remove(node);
    {
        UndoScope scope(m_scene, m_undoStack, nodes.isEmpty() ? tr("disconnect") : tr("delete"));
        if (nodes.contains(m_current))
            setCurrentNode(nullptr);
        GraphViewPainter::instance()->setHoveredNode(nullptr);
        for (Connection *connection : qAsConst(connections))
            m_scene->removeConnection(connection);
        for (Node *node : qAsConst(nodes))
            m_scene->removeNode(node);
    }
    for (Node *node : qAsConst(below))
        node->setStatus(Node::NeedsUpdating, true);
    emit editingDone();
    runSoon();
}

void GraphView::copySelection()
{
    if (!m_scene || m_scene->selectedNodes().isEmpty())
        return;
    // Connections between two selected items go along, selected or not.
    QList<Connection *> selectedLater;
    for (Connection *connection : m_scene->connections()) {
        if (connection->start()->isSelected() && connection->end()->isSelected() && !connection->isSelected()) {
            connection->setSelected(true);
            selectedLater << connection;
        }
    }
    const int count = m_scene->selectedNodes().size();
    QApplication::clipboard()->setMimeData(Document::copyMimeData(*m_scene));
    for (Connection *connection : qAsConst(selectedLater))
        connection->setSelected(false);
    m_pasteCount = 0;
    emit statusMessage(tr("Copied %1 item(s)").arg(count), MessageMs);
}

void GraphView::cutSelection()
{
    if (!m_scene || !m_editingEnabled || m_scene->selectedNodes().isEmpty())
        return;
    copySelection();
    QList<Node *> nodes = m_scene->selectedNodes();
    QSet<Node *> below;
    for (Node *node : qAsConst(nodes))
        for (Node *downstream : node->downstream(false))
            below.insert(downstream);
    {
        UndoScope scope(m_scene, m_undoStack, tr("cut"));
        if (nodes.contains(m_current))
            setCurrentNode(nullptr);
        GraphViewPainter::instance()->setHoveredNode(nullptr);
        for (Node *node : qAsConst(nodes)) {
            below.remove(node);
            m_scene->removeNode(node);
        }
    }
    for (Node *node : qAsConst(below))
        node->setStatus(Node::NeedsUpdating, true);
    emit editingDone();
}

void GraphView::paste(const QMimeData *data)
{
    if (!m_scene || !data || !m_editingEnabled)
        return;
    if (Document::canPaste(data)) {
        QList<Node *> pasted;
        QString error;
        QString information;
        bool ok = false;
        {
            UndoScope scope(m_scene, m_undoStack, tr("paste"));
            ok = Document::pasteMimeData(data, *m_scene, &error, &pasted, &information);
            if (ok && !pasted.isEmpty()) {
                QRectF box;
                for (const Node *node : qAsConst(pasted))
                    box |= QRectF(node->pos(), QSizeF(1, 1));
                const QPoint pointer = viewport()->mapFromGlobal(QCursor::pos());
                QPointF offset;
                if (viewport()->rect().contains(pointer) && underMouse()) {
                    offset = mapToScene(pointer) - box.topLeft();
                } else {
                    ++m_pasteCount;
                    offset = QPointF(24, 24) * m_pasteCount;
                }
                for (Node *node : qAsConst(pasted))
                    node->setPos(m_snapToGrid ? snapped(node->pos() + offset) : node->pos() + offset);
            }
        }
        if (!ok) {
            Prompts::instance()->warning(this, QApplication::applicationName(), error);
            return;
        }
        placeAndSelect(pasted);
        if (!information.isEmpty())
            Prompts::instance()->information(this, QApplication::applicationName(), information);
        emit editingDone();
        runSoon();
        return;
    }
    if (data->hasUrls()) {
        QStringList paths;
        for (const QUrl &url : data->urls()) {
            if (url.isLocalFile())
                paths << url.toLocalFile();
        }
        if (!paths.isEmpty()) {
            dropFiles(paths, viewCentre(), nullptr);
            return;
        }
    }
    // Foreign XML that is no payload of ours says so rather than turning into an input.
    if (data->hasFormat(Document::xmlMimeType())) {
        QString error;
        Document::pasteText(data->data(Document::xmlMimeType()), *m_scene, &error);
        Prompts::instance()->warning(this, QApplication::applicationName(), error);
        return;
    }
    if (data->hasText() && !data->text().isEmpty())
        addTextInput(data->text(), nullptr);
}

void GraphView::pasteAsInput(const QString &text)
{
    if (!text.isEmpty())
        addTextInput(text, nullptr);
}

void GraphView::duplicateSelection()
{
    if (!m_scene || !m_editingEnabled)
        return;
    const QList<Node *> originals = m_scene->selectedNodes();
    if (originals.isEmpty())
        return;
    QList<Connection *> selectedLater;
    for (Connection *connection : m_scene->connections()) {
        if (connection->start()->isSelected() && connection->end()->isSelected() && !connection->isSelected()) {
            connection->setSelected(true);
            selectedLater << connection;
        }
    }
    const QByteArray payload = Document::copyText(*m_scene);
    for (Connection *connection : qAsConst(selectedLater))
        connection->setSelected(false);
    QList<Node *> pasted;
    {
        UndoScope scope(m_scene, m_undoStack, tr("duplicate"));
        QString error;
        if (!Document::pasteText(payload, *m_scene, &error, &pasted)) {
            scope.cancel();
            return;
        }
        // Pasted nodes come in document order, as do the originals written.
        QList<Node *> written;
        for (const QString &type : {QStringLiteral("Input"), QStringLiteral("Transform"), QStringLiteral("Output"),
                 QStringLiteral("Chart"), QStringLiteral("Note")}) {
            for (Node *node : m_scene->nodes())
                if (originals.contains(node) && node->typeName() == type)
                    written << node;
        }
        for (int i = 0; i < pasted.size() && i < written.size(); ++i) {
            Node *copy = pasted.at(i);
            Node *original = written.at(i);
            copy->setPos(original->pos() + QPointF(24, 24));
            if (original->typeName() == QLatin1String("Input") || original->typeName() == QLatin1String("Note"))
                continue;
            for (Node *up : original->upstream(false)) {
                if (!originals.contains(up) && m_scene->canConnect(up, copy))
                    m_scene->connectNodes(up, copy);
            }
        }
    }
    placeAndSelect(pasted);
    emit editingDone();
    runSoon();
}

void GraphView::tidyLayout()
{
    if (!m_scene || !m_editingEnabled)
        return;
    QList<Node *> nodes = m_scene->selectedNodes();
    if (nodes.size() < 2)
        nodes = m_scene->nodes();
    QMap<int, QList<Node *>> columns;
    qreal left = 1e12;
    for (Node *node : qAsConst(nodes)) {
        if (node->typeName() == QLatin1String("Note"))
            continue;
        columns[node->depth()] << node;
        left = qMin(left, node->pos().x());
    }
    if (columns.isEmpty())
        return;
    UndoScope scope(m_scene, m_undoStack, tr("tidy layout"));
    qreal previousCentre = 0;
    bool first = true;
    for (auto it = columns.begin(); it != columns.end(); ++it) {
        QList<Node *> column = it.value();
        std::sort(column.begin(), column.end(), [](Node *a, Node *b) { return a->pos().y() < b->pos().y(); });
        qreal centre = 0;
        for (Node *node : qAsConst(column))
            centre += node->pos().y();
        centre /= column.size();
        if (!first)
            centre = previousCentre;
        const qreal top = centre - (column.size() - 1) * StepY / 2;
        for (int i = 0; i < column.size(); ++i) {
            QPointF pos(left + StepX * it.key(), top + i * StepY);
            column.at(i)->setPos(m_snapToGrid ? snapped(pos) : pos);
        }
        previousCentre = centre;
        first = false;
    }
}

void GraphView::selectAllItems()
{
    if (!m_scene)
        return;
    for (QGraphicsItem *item : m_scene->items())
        if (item != m_dragLine)
            item->setSelected(true);
}

void GraphView::moveSelection(const QPointF &delta, bool keyboard)
{
    if (!m_scene || !m_editingEnabled)
        return;
    QList<Node *> nodes = m_scene->selectedNodes();
    if (nodes.isEmpty())
        return;
    QStringList ids;
    for (const Node *node : qAsConst(nodes))
        ids << QString::number(node->id());
    UndoScope scope(m_scene, m_undoStack, tr("move"), keyboard ? UndoScope::KeyboardMoveMerge : UndoScope::NoMerge,
        ids.join(QLatin1Char(',')));
    for (Node *node : qAsConst(nodes))
        node->setPos(node->pos() + delta);
}

// ----- mouse

void GraphView::mousePressEvent(QMouseEvent *event)
{
    if (event->button() == Qt::MiddleButton) {
        m_panning = true;
        m_panLast = event->pos();
        viewport()->setCursor(Qt::ClosedHandCursor);
        event->accept();
        return;
    }
    Node *node = nodeAt(event->pos());
    if (event->button() == Qt::LeftButton && node && m_editingEnabled
        && GraphViewPainter::isOnOutPort(*node, node->mapFromScene(mapToScene(event->pos())))) {
        // Start dragging a connection.
        m_dragStart = node;
        QSet<const Node *> candidates;
        for (const Node *candidate : m_scene->candidateTargets(node))
            candidates.insert(candidate);
        GraphViewPainter::instance()->setDrag(node, candidates, nullptr);
        m_dragLine = new QGraphicsPathItem;
        m_dragLine->setPen(QPen(CanvasTheme::current().accent, 1.5, Qt::DashLine));
        m_dragLine->setZValue(10);
        m_scene->addItem(m_dragLine);
        m_scene->update();
        event->accept();
        return;
    }
    QGraphicsView::mousePressEvent(event);
    if (event->button() == Qt::LeftButton && node) {
        if (!(event->modifiers() & Qt::ControlModifier) || node->isSelected())
            setCurrentNode(node);
        // A move may follow: remember where every selected item was.
        if (m_editingEnabled && node->isSelected()) {
            m_moving = true;
            m_moveBefore = UndoState::capture(*m_scene);
            m_moveStart.clear();
            for (Node *selected : m_scene->selectedNodes())
                m_moveStart.insert(selected, selected->pos());
        }
    } else if (event->button() == Qt::LeftButton && !node && !connectionAt(event->pos())
        && !(event->modifiers() & (Qt::ControlModifier | Qt::ShiftModifier))) {
        setCurrentNode(nullptr);
    }
}

void GraphView::mouseMoveEvent(QMouseEvent *event)
{
    if (m_panning) {
        const QPoint delta = event->pos() - m_panLast;
        m_panLast = event->pos();
        horizontalScrollBar()->setValue(horizontalScrollBar()->value() - delta.x());
        verticalScrollBar()->setValue(verticalScrollBar()->value() - delta.y());
        return;
    }
    if (m_dragStart) {
        const QPointF from = m_dragStart->outPortScenePos();
        const QPointF to = mapToScene(event->pos());
        const qreal reach = qMax(40.0, qAbs(to.x() - from.x()) / 2);
        QPainterPath path(from);
        path.cubicTo(from + QPointF(reach, 0), to - QPointF(reach, 0), to);
        m_dragLine->setPath(path);
        Node *target = nodeAt(event->pos());
        QSet<const Node *> candidates;
        for (const Node *candidate : m_scene->candidateTargets(m_dragStart))
            candidates.insert(candidate);
        GraphViewPainter::instance()->setDrag(
            m_dragStart, candidates, candidates.contains(target) ? target : nullptr);
        m_scene->update();
        return;
    }
    Node *hovered = nodeAt(event->pos());
    if (hovered != GraphViewPainter::instance()->hoveredNode()) {
        if (const Node *old = GraphViewPainter::instance()->hoveredNode())
            const_cast<Node *>(old)->update();
        GraphViewPainter::instance()->setHoveredNode(hovered);
        if (hovered)
            hovered->update();
    }
    if (hovered && m_editingEnabled
        && GraphViewPainter::isOnOutPort(*hovered, hovered->mapFromScene(mapToScene(event->pos()))))
        viewport()->setCursor(Qt::CrossCursor);
    else
        viewport()->unsetCursor();
    QGraphicsView::mouseMoveEvent(event);
}

void GraphView::mouseReleaseEvent(QMouseEvent *event)
{
    if (m_panning && event->button() == Qt::MiddleButton) {
        m_panning = false;
        viewport()->unsetCursor();
        return;
    }
    if (m_dragStart && event->button() == Qt::LeftButton) {
        finishConnectionDrag(event->pos());
        return;
    }
    QGraphicsView::mouseReleaseEvent(event);
    if (m_moving && event->button() == Qt::LeftButton) {
        m_moving = false;
        bool moved = false;
        for (auto it = m_moveStart.cbegin(); it != m_moveStart.cend(); ++it) {
            if (m_scene->nodes().contains(it.key()) && it.key()->pos() != it.value()) {
                moved = true;
                if (m_snapToGrid)
                    it.key()->setPos(snapped(it.key()->pos()));
            }
        }
        m_moveStart.clear();
        if (moved && m_undoStack) {
            const QByteArray after = UndoState::capture(*m_scene);
            if (after != m_moveBefore)
                m_undoStack->push(new SceneChangeCommand(m_scene, tr("move"), m_moveBefore, after));
        }
        m_moveBefore.clear();
        updateSceneRect();
    }
}

void GraphView::finishConnectionDrag(const QPoint &viewPos)
{
    Node *start = m_dragStart;
    Node *target = nodeAt(viewPos);
    cancelConnectionDrag();
    if (!start)
        return;
    if (target) {
        connectNodes(start, target);
        return;
    }
    // Released on empty canvas: a chooser of what to add there, connected from the start.
    const QPointF at = mapToScene(viewPos);
    auto *popup = new ItemChooserPopup(start->name(), m_prototypes, m_showAdvanced, this);
    const int startId = start->id();
    connect(popup, &ItemChooserPopup::chosen, this, [this, startId, at](int kind, const Transform *prototype) {
        const ChosenKind chosen = kind == ItemChooserPopup::OutputItem ? ChosenOutput
            : kind == ItemChooserPopup::ChartItem                      ? ChosenChart
                                                                       : ChosenTransform;
        if (Node *from = m_scene ? m_scene->node(startId) : nullptr)
            addConnectedFrom(from, chosen, prototype, at);
    });
    popup->move(viewport()->mapToGlobal(viewPos));
    popup->show();
    popup->searchEdit()->setFocus();
}

Node *GraphView::addConnectedFrom(Node *start, ChosenKind kind, const Transform *prototype, const QPointF &pos)
{
    if (!m_scene || !start || !m_editingEnabled)
        return nullptr;
    makeCurrentAndSelect(start);
    if (kind == ChosenTransform)
        return prototype ? addTransform(prototype, &pos) : nullptr;
    if (kind == ChosenChart)
        return addChart(QString(), &pos);
    const QString path = FileDialogs::instance()->saveFile(this, tr("Add Output File"), tr("Output.csv"),
        tr("Data files (*.csv *.tsv *.txt *.xlsx *.xls *.json *.xml *.vcf *.yaml *.html *.md);;All files (*)"));
    if (path.isEmpty())
        return nullptr;
    // Placed to the right of the start, which is current.
    return addOutput(path);
}

void GraphView::cancelConnectionDrag()
{
    if (m_dragLine) {
        if (m_dragLine->scene())
            m_dragLine->scene()->removeItem(m_dragLine);
        delete m_dragLine;
        m_dragLine = nullptr;
    }
    m_dragStart = nullptr;
    GraphViewPainter::instance()->clearDrag();
    if (m_scene)
        m_scene->update();
}

void GraphView::mouseDoubleClickEvent(QMouseEvent *event)
{
    // A double-click on a note edits its text, as one step.
    auto *note = qobject_cast<NoteNode *>(nodeAt(event->pos()));
    if (note && m_noteEditor && m_noteEditor->parentItem() == note) {
        // Within the text being edited: the editor selects a word.
        QGraphicsView::mouseDoubleClickEvent(event);
        return;
    }
    if (note && m_editingEnabled && event->button() == Qt::LeftButton) {
        editNote(note);
        event->accept();
        return;
    }
    QGraphicsView::mouseDoubleClickEvent(event);
}

void GraphView::wheelEvent(QWheelEvent *event)
{
    if (event->modifiers() & Qt::ControlModifier) {
        const int notches = event->angleDelta().y() / 120;
        if (notches != 0)
            zoomBy(qPow(1.15, notches));
        event->accept();
        return;
    }
    if (event->modifiers() & Qt::ShiftModifier) {
        horizontalScrollBar()->setValue(horizontalScrollBar()->value() - event->angleDelta().y());
        event->accept();
        return;
    }
    QGraphicsView::wheelEvent(event);
}

void GraphView::navigate(int key, bool extend)
{
    if (!m_scene)
        return;
    const QList<Node *> nodes = m_scene->nodes();
    if (nodes.isEmpty())
        return;
    if (!m_current) {
        QList<Node *> sorted = nodes;
        GraphScene::sortNodes(sorted);
        makeCurrentAndSelect(sorted.first());
        return;
    }
    const QPointF from = m_current->pos();
    Node *best = nullptr;
    qreal bestDistance = 1e18;
    for (Node *node : nodes) {
        if (node == m_current)
            continue;
        const QPointF d = node->pos() - from;
        bool inCone = false;
        switch (key) {
        case Qt::Key_Left:
            inCone = d.x() < 0 && qAbs(d.y()) <= -d.x();
            break;
        case Qt::Key_Right:
            inCone = d.x() > 0 && qAbs(d.y()) <= d.x();
            break;
        case Qt::Key_Up:
            inCone = d.y() < 0 && qAbs(d.x()) <= -d.y();
            break;
        default:
            inCone = d.y() > 0 && qAbs(d.x()) <= d.y();
            break;
        }
        const qreal distance = d.x() * d.x() + d.y() * d.y();
        if (inCone && distance < bestDistance) {
            best = node;
            bestDistance = distance;
        }
    }
    if (!best)
        return;
    if (extend) {
        best->setSelected(true);
        setCurrentNode(best);
    } else {
        makeCurrentAndSelect(best);
    }
}

void GraphView::keyPressEvent(QKeyEvent *event)
{
    const int key = event->key();
    if (m_noteEditor) {
        // Every key goes to the note's text while it is edited.
        QGraphicsView::keyPressEvent(event);
        return;
    }
    if ((key == Qt::Key_Return || key == Qt::Key_Enter) && m_editingEnabled) {
        if (auto *note = qobject_cast<NoteNode *>(m_current)) {
            editNote(note);
            event->accept();
            return;
        }
    }
    const bool arrow = key == Qt::Key_Left || key == Qt::Key_Right || key == Qt::Key_Up || key == Qt::Key_Down;
    if (key == Qt::Key_Escape && m_dragStart) {
        cancelConnectionDrag();
        return;
    }
    if (arrow) {
        const Qt::KeyboardModifiers mods = event->modifiers() & (Qt::ControlModifier | Qt::ShiftModifier);
        if (mods & Qt::ControlModifier) {
            const qreal step = (mods & Qt::ShiftModifier) ? 1.0 : GridStep;
            QPointF delta;
            if (key == Qt::Key_Left)
                delta = QPointF(-step, 0);
            else if (key == Qt::Key_Right)
                delta = QPointF(step, 0);
            else if (key == Qt::Key_Up)
                delta = QPointF(0, -step);
            else
                delta = QPointF(0, step);
            moveSelection(delta, true);
        } else {
            navigate(key, mods & Qt::ShiftModifier);
        }
        event->accept();
        return;
    }
    if (key == Qt::Key_Space && m_current) {
        m_current->setSelected(!m_current->isSelected());
        event->accept();
        return;
    }
    if (key == Qt::Key_Home) {
        zoomToFit();
        event->accept();
        return;
    }
    if ((key == Qt::Key_Menu || (key == Qt::Key_F10 && (event->modifiers() & Qt::ShiftModifier))) && m_current) {
        const QPoint at = mapFromScene(m_current->pos());
        emit contextMenuWanted(m_current, nullptr, viewport()->mapToGlobal(at), m_current->pos());
        event->accept();
        return;
    }
    if (key == Qt::Key_Delete && m_editingEnabled) {
        deleteSelection();
        event->accept();
        return;
    }
    QGraphicsView::keyPressEvent(event);
}

void GraphView::contextMenuEvent(QContextMenuEvent *event)
{
    Node *node = nodeAt(event->pos());
    Connection *connection = node ? nullptr : connectionAt(event->pos());
    if (node && !node->isSelected())
        makeCurrentAndSelect(node);
    else if (node)
        setCurrentNode(node);
    if (connection && !connection->isSelected()) {
        m_scene->clearSelection();
        connection->setSelected(true);
    }
    emit contextMenuWanted(node, connection, event->globalPos(), mapToScene(event->pos()));
}

void GraphView::focusInEvent(QFocusEvent *event)
{
    GraphViewPainter::instance()->setFocusShown(true);
    if (m_current)
        m_current->update();
    QGraphicsView::focusInEvent(event);
}

void GraphView::focusOutEvent(QFocusEvent *event)
{
    GraphViewPainter::instance()->setFocusShown(false);
    if (m_current)
        m_current->update();
    QGraphicsView::focusOutEvent(event);
}

void GraphView::leaveEvent(QEvent *event)
{
    if (const Node *old = GraphViewPainter::instance()->hoveredNode()) {
        GraphViewPainter::instance()->setHoveredNode(nullptr);
        const_cast<Node *>(old)->update();
    }
    QGraphicsView::leaveEvent(event);
}

// ----- drops

void GraphView::dragEnterEvent(QDragEnterEvent *event)
{
    const QMimeData *data = event->mimeData();
    bool local = false;
    for (const QUrl &url : data->urls())
        local = local || url.isLocalFile();
    if (m_editingEnabled && (local || data->hasText() || data->hasFormat(QStringLiteral("application/x-tabrelle-transform"))))
        event->acceptProposedAction();
    else
        event->ignore();
}

void GraphView::dragMoveEvent(QDragMoveEvent *event)
{
    event->acceptProposedAction();
}

void GraphView::dropFiles(const QStringList &paths, const QPointF &at, Node *onto)
{
    if (paths.size() == 1 && paths.first().endsWith(QLatin1String(".tflow"), Qt::CaseInsensitive)) {
        emit openDocumentRequested(paths.first());
        return;
    }
    QStringList files;
    QStringList refused;
    for (const QString &path : paths) {
        const QFileInfo info(path);
        if (info.isDir() || !info.exists())
            refused << QDir::toNativeSeparators(path);
        else
            files << path;
    }
    if (!refused.isEmpty())
        emit statusMessage(tr("Not a file: '%1'").arg(refused.join(QStringLiteral("', '"))), MessageMs);
    if (files.isEmpty())
        return;
    if (files.size() == 1) {
        if (auto *input = qobject_cast<InputNode *>(onto)) {
            bool guessed = false;
            const int type = fileTypeFor(files.first(), &guessed);
            {
                UndoScope scope(m_scene, m_undoStack, tr("'%1' change").arg(tr("File")));
                InputOptions options = input->options();
                options.path = QFileInfo(files.first()).absoluteFilePath();
                options.fileType = type;
                input->setOptions(options);
            }
            makeCurrentAndSelect(input);
            input->setStatus(Node::NeedsUpdating, true);
            emit editingDone();
            runSoon();
            return;
        }
    }
    addInputFiles(files, &at);
}

void GraphView::dropEvent(QDropEvent *event)
{
    if (!m_scene || !m_editingEnabled) {
        event->ignore();
        return;
    }
    const QMimeData *data = event->mimeData();
    const QPointF at = mapToScene(event->pos());
    Node *onto = nodeAt(event->pos());
    QStringList paths;
    for (const QUrl &url : data->urls()) {
        if (url.isLocalFile())
            paths << url.toLocalFile();
    }
    event->acceptProposedAction();
    if (!paths.isEmpty()) {
        dropFiles(paths, at, onto);
        return;
    }
    if (data->hasText() && !data->text().isEmpty())
        addTextInput(data->text(), &at);
}
