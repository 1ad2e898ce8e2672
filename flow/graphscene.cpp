#include "graphscene.h"

#include "connection.h"
#include "maxmemoryexception.h"
#include "node.h"

#include "core/settings.h"

#include <QApplication>
#include <QFile>
#include <QLocale>
#include <QSet>

#include <algorithm>

#include <unistd.h>

namespace {

bool s_stopRequested = false;

// Pass-on rules of progress reports, in ms and in fraction.
const qint64 ReportInterval = 250;
const qreal ReportStep = 0.02;
// Events run from a progress report only once this long has passed since they last ran.
const qint64 EventsInterval = 500;

} // namespace

GraphScene::GraphScene(QObject *parent)
    : QGraphicsScene(parent)
    , m_memoryProbe(&GraphScene::processMemoryGb)
{
    m_clock.start();
}

GraphScene::~GraphScene()
{
    // Nodes first, each taking its connections with it, so that no connection outlives
    // an end while the base class clears what is left.
    qDeleteAll(nodes());
}

void GraphScene::addNode(Node *node)
{
    if (!node || node->scene() == this)
        return;
    if (node->id() == -1)
        node->assignId(-1);
    addItem(node);
    for (Connection *connection : node->connections(Node::AllConnections)) {
        if (!connection->scene())
            addItem(connection);
    }
    node->sceneAdded(this);
    connect(node, &Node::processingStart, this, &GraphScene::onProcessingStart);
    connect(node, &Node::processed, this, &GraphScene::onProcessed);
    connect(node, &Node::processingEnd, this, &GraphScene::onProcessingEnd);
}

void GraphScene::takeNode(Node *node)
{
    if (!node || node->scene() != this)
        return;
    // Signals first, so that only the nodes left behind hear of the lost connections.
    node->disconnect(this);
    disconnect(node);
    for (Connection *connection : node->connections(Node::AllConnections))
        removeConnection(connection);
    removeItem(node);
    m_progressMarks.remove(node);
}

void GraphScene::removeNode(Node *node)
{
    if (!node || node->scene() != this)
        return;
    takeNode(node);
    delete node;
}

QList<Node *> GraphScene::nodes() const
{
    QList<Node *> result;
    for (QGraphicsItem *item : items()) {
        if (Node *node = qgraphicsitem_cast<Node *>(item))
            result << node;
    }
    std::sort(result.begin(), result.end(), [](const Node *a, const Node *b) { return a->id() < b->id(); });
    return result;
}

QList<Node *> GraphScene::selectedNodes() const
{
    QList<Node *> result;
    for (QGraphicsItem *item : selectedItems()) {
        if (Node *node = qgraphicsitem_cast<Node *>(item))
            result << node;
    }
    sortNodes(result);
    return result;
}

Node *GraphScene::node(int id) const
{
    for (QGraphicsItem *item : items()) {
        Node *node = qgraphicsitem_cast<Node *>(item);
        if (node && node->id() == id)
            return node;
    }
    return nullptr;
}

QList<Connection *> GraphScene::connections() const
{
    QList<Connection *> result;
    for (QGraphicsItem *item : items()) {
        if (Connection *connection = qgraphicsitem_cast<Connection *>(item))
            result << connection;
    }
    std::sort(result.begin(), result.end(), [](const Connection *a, const Connection *b) {
        return qMakePair(a->start()->id(), a->end()->id()) < qMakePair(b->start()->id(), b->end()->id());
    });
    return result;
}

bool GraphScene::sceneOrderLessThan(const Node *a, const Node *b)
{
    const QPointF p = a->scenePos();
    const QPointF q = b->scenePos();
    if (p.y() != q.y())
        return p.y() < q.y();
    if (p.x() != q.x())
        return p.x() < q.x();
    return a->id() < b->id();
}

void GraphScene::sortNodes(QList<Node *> &nodes)
{
    std::stable_sort(nodes.begin(), nodes.end(), sceneOrderLessThan);
}

bool GraphScene::canConnect(const Node *start, const Node *end, QString *reason) const
{
    const auto refuse = [reason](const QString &text) {
        if (reason)
            *reason = text;
        return false;
    };
    if (!start || !end || start == end || start->scene() != this || end->scene() != this)
        return refuse(QString());
    if (end->isConnectedFrom(start))
        return refuse(tr("'%1' is already connected to '%2'").arg(start->name(), end->name()));
    if (start->connections(Node::Outgoing).size() >= start->maxDownstream())
        return refuse(tr("'%1' can't be connected to other items").arg(start->name()));
    if (end->connections(Node::Incoming).size() >= end->maxUpstream())
        return refuse(tr("'%1' takes no more inputs").arg(end->name()));
    if (end->reachable(start))
        return refuse(tr("Can't connect '%1' to '%2': it would make a loop").arg(start->name(), end->name()));
    if (reason)
        reason->clear();
    return true;
}

Connection *GraphScene::connectNodes(Node *start, Node *end, QString *reason)
{
    if (!canConnect(start, end, reason))
        return nullptr;
    auto *connection = new Connection(start, end);
    addItem(connection);
    end->connectionAdded(connection);
    start->connectionAdded(connection);
    return connection;
}

bool GraphScene::disconnectNodes(Node *start, Node *end)
{
    if (!start)
        return false;
    for (Connection *connection : start->connections(Node::Outgoing)) {
        if (connection->end() == end) {
            removeConnection(connection);
            return true;
        }
    }
    return false;
}

void GraphScene::removeConnection(Connection *connection)
{
    if (!connection)
        return;
    Node *start = connection->start();
    Node *end = connection->end();
    delete connection;
    emit connectionRemoved(start, end);
}

QList<Node *> GraphScene::candidateTargets(const Node *start) const
{
    QList<Node *> result;
    if (!start)
        return result;
    const QList<Node *> closure = start->upstreamClosure();
    const QSet<Node *> above(closure.cbegin(), closure.cend());
    for (Node *node : nodes()) {
        if (node != start && node->connections(Node::Incoming).size() < node->maxUpstream()
            && !node->isConnectedFrom(start) && !above.contains(node))
            result << node;
    }
    sortNodes(result);
    return result;
}

void GraphScene::run(int mode, bool quiet)
{
    if (m_running)
        return;
    m_running = true;
    // A run left by an exception (memory exhaustion) must not lock the flow for good.
    struct RunningGuard
    {
        bool &running;
        ~RunningGuard() { running = false; }
    } guard {m_running};
    emit runningChanged(true);
    QCoreApplication::processEvents();

    emit logMessage(tr("Started: %1").arg(QDateTime::currentDateTime().toString()));
    QElapsedTimer timer;
    timer.start();
    m_itemsToProcess = 0;
    m_itemsProcessed = 0;
    m_writeCounts.clear();
    m_progressMarks.clear();
    emit progressChanged(0);

    if (mode == RunSelected)
        runSelectedNodes();
    else
        prepareAndRunRoots(mode);
    finishRun(timer.elapsed(), quiet);
}

void GraphScene::prepareAndRunRoots(int mode)
{
    const bool everything = mode == RunEverything || mode == RunBatch;
    QList<Node *> all = nodes();
    for (Node *node : qAsConst(all)) {
        if (everything || node->status() == Node::Error)
            node->setStatus(Node::NeedsUpdating, false);
    }
    m_itemsToProcess = int(std::count_if(
        all.cbegin(), all.cend(), [](const Node *node) { return node->status() != Node::UpToDate; }));
    sortNodes(all);
    for (Node *node : qAsConst(all)) {
        if (!node->upstream(false).isEmpty())
            continue;
        node->process(true, mode == RunBatch);
        if (s_stopRequested) {
            emit logMessage(tr("  Stopped by user"));
            break;
        }
    }
}

void GraphScene::runSelectedNodes()
{
    const QList<Node *> selected = selectedNodes();
    for (Node *node : selected)
        node->setStatus(Node::NeedsUpdating, true);
    QList<Node *> work;
    for (Node *node : selected) {
        if (!work.contains(node))
            work << node;
        for (Node *above : node->upstreamClosure()) {
            if (above->status() == Node::Error)
                node->setStatus(Node::NeedsUpdating, false);
            else if (above->status() != Node::NeedsUpdating)
                continue;
            if (!work.contains(above))
                work << above;
        }
    }
    m_itemsToProcess = work.size();
    sortNodes(work);
    while (!work.isEmpty()) {
        if (s_stopRequested) {
            emit logMessage(tr("  Stopped by user"));
            break;
        }
        bool processedAny = false;
        const QList<Node *> pass = work;
        for (Node *node : pass) {
            const QList<Node *> above = node->upstream(false);
            const bool waiting = std::any_of(above.cbegin(), above.cend(),
                [](const Node *n) { return n->status() == Node::NeedsUpdating; });
            if (waiting)
                continue;
            node->process(false, false);
            work.removeOne(node);
            processedAny = true;
        }
        // A node below one that failed to get ready waits for ever; what is left can't run.
        if (!processedAny)
            break;
    }
}

void GraphScene::finishRun(qint64 elapsed, bool quiet)
{
    emit logMessage(tr("Finished: %1").arg(QDateTime::currentDateTime().toString()));
    emit runCompleted();
    emit progressChanged(100);
    const QList<Node *> all = nodes();
    if (m_itemsProcessed >= 1) {
        const QString processed =
            tr("%1 item(s) processed in %2").arg(m_itemsProcessed).arg(runTimeText(elapsed));
        emit statusMessage(processed, 0);
        emit logMessage(processed);
        const int withWarnings = int(std::count_if(
            all.cbegin(), all.cend(), [](const Node *node) { return node->warningCount() > 0; }));
        emit logMessage(tr("%1 item(s) with warnings").arg(withWarnings));
        QStringList counts;
        for (int status : {int(Node::NeedsUpdating), int(Node::UpToDate), int(Node::Error)}) {
            const int count = int(std::count_if(
                all.cbegin(), all.cend(), [status](const Node *node) { return node->status() == status; }));
            counts << tr("%1: %2").arg(Node::statusName(status)).arg(count);
        }
        emit logMessage(counts.join(QStringLiteral(", ")) + QLatin1Char('\n'));
    }
    const QHash<QString, int> overwritten = overwrittenPaths();
    QStringList paths = overwritten.keys();
    paths.sort();
    for (const QString &path : qAsConst(paths))
        emit logMessage(tr("Overwrote '%1' %2 times").arg(path).arg(overwritten.value(path)));
    flushRowCounter();

    emit refreshRequested();
    update();
    if (!quiet && m_settings && m_settings->boolValue(QStringLiteral("beep_when_finished"))
        && qobject_cast<QApplication *>(QCoreApplication::instance()))
        QApplication::beep();
    emit runningChanged(false);
}

void GraphScene::runEverything()
{
    guardedRun(RunEverything, false);
}

void GraphScene::runChanges()
{
    guardedRun(RunChanges, false);
}

void GraphScene::runSelected()
{
    guardedRun(RunSelected, false);
}

void GraphScene::guardedRun(int mode, bool quiet)
{
    if (m_running)
        return;
    s_stopRequested = false;
    run(mode, quiet);
    s_stopRequested = false;
}

void GraphScene::stopRun()
{
    emit statusMessage(tr("Run stopped by user"), 2000);
    s_stopRequested = true;
    if (m_autoRun) {
        setAutoRun(false);
        emit autoRunStopped();
    }
}

void GraphScene::setAutoRun(bool on)
{
    if (on == m_autoRun)
        return;
    m_autoRun = on;
    emit autoRunChanged(on);
}

void GraphScene::invalidate(Node *node)
{
    if (!node || m_running)
        return;
    node->setStatus(Node::NeedsUpdating, true);
    if (m_autoRun)
        guardedRun(RunChanges, false);
}

void GraphScene::runIfAuto()
{
    if (m_autoRun)
        guardedRun(RunChanges, false);
}

void GraphScene::rerunOutputs()
{
    if (!m_autoRun || m_running)
        return;
    for (Node *node : nodes()) {
        const QString type = node->typeName();
        if (type == QLatin1String("Output") || type == QLatin1String("Chart"))
            node->setStatus(Node::NeedsUpdating, false);
    }
    guardedRun(RunChanges, false);
}

bool GraphScene::hasChanges() const
{
    const QList<Node *> all = nodes();
    return std::any_of(all.cbegin(), all.cend(), [](const Node *node) {
        return node->status() == Node::NeedsUpdating || node->status() == Node::Error;
    });
}

bool GraphScene::isStopRequested()
{
    return s_stopRequested;
}

void GraphScene::setStopRequested(bool stop)
{
    s_stopRequested = stop;
}

void GraphScene::reportProgress(Node *node, qreal fraction)
{
    GraphScene *scene = node ? node->graphScene() : nullptr;
    if (!scene)
        return;
    scene->checkMemory();
    ProgressMark &mark = scene->m_progressMarks[node];
    const qint64 now = scene->m_clock.elapsed();
    const bool reported = mark.fraction >= 0;
    if (fraction < 1.0 && reported && now - mark.when < ReportInterval)
        return;
    if (fraction != 0 && fraction < 1.0 && reported && qAbs(fraction - mark.fraction) < ReportStep)
        return;
    mark.fraction = fraction;
    node->update();
    emit node->processed(node, fraction);
    mark.when = now;
}

void GraphScene::checkMemory()
{
    if (!m_settings || !m_memoryProbe)
        return;
    const double used = m_memoryProbe();
    if (used < 0)
        return;
    const double limit = m_settings->maxMemoryUsageGb();
    if (used <= limit)
        return;
    double newLimit = limit;
    if (!m_memoryLimitHandler || !m_memoryLimitHandler(used, newLimit))
        throw MaxMemoryException();
    m_settings->setValue(QStringLiteral("max_memory_usage"), newLimit);
    emit memoryUsageChanged(used, m_settings->maxMemoryUsageGb());
    QCoreApplication::processEvents();
}

double GraphScene::processMemoryGb()
{
    // The second field of statm is the resident set, in pages.
    QFile file(QStringLiteral("/proc/self/statm"));
    if (!file.open(QIODevice::ReadOnly))
        return -1;
    const QList<QByteArray> fields = file.readLine().simplified().split(' ');
    bool ok = false;
    const qint64 pages = fields.value(1).toLongLong(&ok);
    const long pageSize = sysconf(_SC_PAGESIZE);
    if (!ok || pageSize <= 0)
        return -1;
    return double(pages) * double(pageSize) / (1024.0 * 1024.0 * 1024.0);
}

void GraphScene::onProcessingStart(Node *node)
{
    emit statusMessage(tr("Processing '%1'").arg(node->name()), 0);
}

void GraphScene::onProcessed(Node *node, qreal fraction)
{
    Q_UNUSED(node)
    const qint64 now = m_clock.elapsed();
    if (fraction != 0 && fraction < 1.0 && m_lastEventsRun >= 0 && now - m_lastEventsRun < EventsInterval)
        return;
    m_lastEventsRun = now;
    if (m_settings && m_memoryProbe) {
        const double used = m_memoryProbe();
        if (used >= 0)
            emit memoryUsageChanged(used, m_settings->maxMemoryUsageGb());
    }
    QCoreApplication::processEvents();
}

void GraphScene::onProcessingEnd(Node *node)
{
    reportProgress(node, 1.0);
    ++m_itemsProcessed;
    const int percent =
        m_itemsProcessed >= m_itemsToProcess ? 100 : int(qint64(m_itemsProcessed) * 100 / m_itemsToProcess);
    emit progressChanged(percent);
}

void GraphScene::freeUpstreamMemory(Node *node)
{
    if (!node)
        return;
    for (Node *above : node->upstream(false)) {
        const Dataset &data = above->dataset();
        if (data.hasNoColumns() && data.hasNoRows())
            continue;
        const QList<Node *> below = above->downstream(false);
        const bool needed = std::any_of(
            below.cbegin(), below.cend(), [](const Node *n) { return n->status() == Node::NeedsUpdating; });
        if (!needed)
            above->setDataset(Dataset());
    }
}

void GraphScene::flushRowCounter()
{
    if (!m_settings || m_rowsProcessed <= 0)
        return;
    const qint64 added = m_rowsProcessed;
    m_rowsProcessed = 0;
    const qint64 total = m_settings->addToCounter(QStringLiteral("lifetime_rows_processed"), added);
    emit lifetimeRowsAdded(added, total);
}

int GraphScene::recordWrite(const QString &path)
{
    return ++m_writeCounts[path];
}

QHash<QString, int> GraphScene::overwrittenPaths() const
{
    QHash<QString, int> result;
    for (auto it = m_writeCounts.cbegin(); it != m_writeCounts.cend(); ++it) {
        if (it.value() > 1)
            result.insert(it.key(), it.value());
    }
    return result;
}

QString GraphScene::runTimeText(qint64 milliseconds)
{
    // Six significant digits read badly with group separators: "1234.57", not "1,234.57".
    QLocale locale;
    locale.setNumberOptions(locale.numberOptions() | QLocale::OmitGroupSeparator);
    if (milliseconds <= 0)
        return tr("<%1 second(s)").arg(locale.toString(0.001, 'g', 6));
    return tr("%1 second(s)").arg(locale.toString(milliseconds / 1000.0, 'g', 6));
}
