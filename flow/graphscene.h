#pragma once

#include <QDateTime>
#include <QElapsedTimer>
#include <QGraphicsScene>
#include <QHash>
#include <QList>

#include <functional>

class Connection;
class Node;
class Settings;

// The flow of one document: owns its nodes and the connections between them, and
// keeps the connection rules. It needs no view, so a flow can be built and run headless.
//
// It also runs the flow. A run is a plain recursive walk on the one thread: each node
// without upstream nodes is processed, and each node goes on downstream once its direct
// upstream nodes are ready. Progress reports run the event loop, so the window stays
// alive; the running flag turns away a second run started from inside one.
class GraphScene : public QGraphicsScene
{
    Q_OBJECT
public:
    enum RunMode : int { RunEverything = 0, RunChanges = 1, RunSelected = 2, RunBatch = 3 };
    // Decides whether a run over the memory limit goes on: given the memory in use, it
    // returns true with a new limit, or false to end the program.
    using MemoryLimitHandler = std::function<bool(double currentGb, double &newLimitGb)>;

    explicit GraphScene(QObject *parent = nullptr);
    ~GraphScene() override;

    // Takes ownership; a node with id -1 is given the next free id.
    void addNode(Node *node);
    // Takes the node and its connections out of the scene; the caller owns the node.
    void takeNode(Node *node);
    // Deletes the node and its connections.
    void removeNode(Node *node);

    // In ascending id order.
    QList<Node *> nodes() const;
    // In scene order.
    QList<Node *> selectedNodes() const;
    Node *node(int id) const;
    // By start id, then end id.
    QList<Connection *> connections() const;

    // Scene order: top to bottom, then left to right, then by id, so that the order
    // is total and stable however items are placed.
    static bool sceneOrderLessThan(const Node *a, const Node *b);
    static void sortNodes(QList<Node *> &nodes);

    // Refusals give a text for the status line; a connection to itself gives none.
    bool canConnect(const Node *start, const Node *end, QString *reason = nullptr) const;
    Connection *connectNodes(Node *start, Node *end, QString *reason = nullptr);
    bool disconnectNodes(Node *start, Node *end);
    void removeConnection(Connection *connection);

    // Nodes that can take a connection from start, in scene order: not start, with room
    // for one more input, not already connected from start and not upstream of it.
    QList<Node *> candidateTargets(const Node *start) const;

    // Where the run reads the beep, the memory limit and the blocked extensions, and
    // where it adds the rows it processed; without settings none of these apply.
    void setSettings(Settings *settings) { m_settings = settings; }
    Settings *settings() const { return m_settings; }
    void setMemoryLimitHandler(const MemoryLimitHandler &handler) { m_memoryLimitHandler = handler; }
    // Where the memory in use is read, in GB (-1: unknown); processMemoryGb by default.
    void setMemoryProbe(const std::function<double()> &probe) { m_memoryProbe = probe; }

    bool isRunning() const { return m_running; }
    void setRunning(bool running) { m_running = running; }

    // Runs the flow in one of the RunMode ways. Quiet runs (batch) never beep.
    void run(int mode, bool quiet);
    // The Run menu: each does nothing during a run and clears the stop flag before and
    // after its run.
    void runEverything();
    void runChanges();
    void runSelected();
    // Asks the run to stop after the item in progress; switches Auto Run off.
    void stopRun();

    bool isAutoRun() const { return m_autoRun; }
    // Only the flag: the caller decides whether switching it on runs the flow.
    void setAutoRun(bool on);
    // Marks the node and everything below it as needing an update, and with Auto Run on
    // runs the changes. Nothing happens for a null node or during a run.
    void invalidate(Node *node);
    // With Auto Run on, runs what is not up to date.
    void runIfAuto();
    // With Auto Run on, writes every output and chart again and runs what else changed.
    void rerunOutputs();
    // True when any node needs updating or failed: Run Changes has work.
    bool hasChanges() const;

    // The stop request is one flag for the process, read on entry to each item and
    // between the top-level steps of a run.
    static bool isStopRequested();
    static void setStopRequested(bool stop);

    // Called by items, readers and writers with the fraction of their work done. Checks
    // the memory limit, then passes on at most one report in 250 ms per node, and none
    // that moved by less than 0.02, but always 0 and 1.0. Throws MaxMemoryException when
    // memory is over the limit and the limit isn't raised.
    static void reportProgress(Node *node, qreal fraction);
    // Resident memory of this process in GB, or -1 when it can't be read.
    static double processMemoryGb();

    // The memory saver of batch runs: clears the data of each direct upstream node of
    // node that has data and whose direct downstream nodes are all past needing an update.
    // Their status stays.
    static void freeUpstreamMemory(Node *node);

    // Rows produced by transforms since the counter in the settings was last brought up
    // to date; the end of each run adds them there.
    void addRowsProcessed(qint64 rows) { m_rowsProcessed += rows; }
    qint64 rowsNotCounted() const { return m_rowsProcessed; }
    void flushRowCounter();

    // Writes per absolute path in the current (or last) run. recordWrite returns how often
    // the path has now been written.
    int recordWrite(const QString &path);
    QHash<QString, int> writeCounts() const { return m_writeCounts; }
    // The paths written more than once, with their counts.
    QHash<QString, int> overwrittenPaths() const;

    int itemsToProcess() const { return m_itemsToProcess; }
    int itemsProcessed() const { return m_itemsProcessed; }

    // "12.5 second(s)", or "<0.001 second(s)" for no time at all.
    static QString runTimeText(qint64 milliseconds);

signals:
    void nodesMoved(QList<Node *> nodes);
    void connectionRemoved(Node *start, Node *end);

    // Lines for the run log and texts for the status bar (0: until replaced).
    void logMessage(const QString &text);
    void statusMessage(const QString &text, int timeoutMs);
    // True as a run begins (controls off), false when it has ended (controls on).
    void runningChanged(bool running);
    void runCompleted();
    // Percent of the items to process that are done.
    void progressChanged(int percent);
    // The run has ended: views of items should reload.
    void refreshRequested();
    void autoRunChanged(bool on);
    // A stop switched Auto Run off; the window may offer to switch it back on.
    void autoRunStopped();
    void memoryUsageChanged(double usedGb, double limitGb);
    // The settings counter grew by added rows and now stands at total.
    void lifetimeRowsAdded(qint64 added, qint64 total);

private slots:
    void onProcessingStart(Node *node);
    void onProcessed(Node *node, qreal fraction);
    void onProcessingEnd(Node *node);

private:
    struct ProgressMark
    {
        qreal fraction = -1;
        qint64 when = 0; // ms on the scene's clock
    };

    void guardedRun(int mode, bool quiet);
    void prepareAndRunRoots(int mode);
    void runSelectedNodes();
    void finishRun(qint64 elapsed, bool quiet);
    void checkMemory();

    Settings *m_settings = nullptr;
    MemoryLimitHandler m_memoryLimitHandler;
    std::function<double()> m_memoryProbe;
    bool m_running = false;
    bool m_autoRun = false;
    int m_itemsToProcess = 0;
    int m_itemsProcessed = 0;
    qint64 m_rowsProcessed = 0;
    QHash<QString, int> m_writeCounts;
    QHash<const Node *, ProgressMark> m_progressMarks;
    QElapsedTimer m_clock;
    qint64 m_lastEventsRun = -1;
};
