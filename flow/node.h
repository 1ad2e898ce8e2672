#pragma once

#include "core/dataset.h"

#include <QDateTime>
#include <QGraphicsObject>
#include <QHash>
#include <QList>
#include <QPair>
#include <QString>
#include <QStringList>

class Connection;
class GraphScene;
class Node;
class QPainterPath;

// How nodes and connections look in a window. The flow draws plain tiles by itself; the
// window installs a painter that draws them with icons, status glyphs and badges.
class ItemPainter
{
public:
    virtual ~ItemPainter() = default;
    virtual QRectF nodeBoundingRect(const Node &node) const = 0;
    virtual void paintNode(const Node &node, QPainter *painter, const QStyleOptionGraphicsItem *option) = 0;
    // Around the connection's path, with room for its arrow head and pen.
    virtual QRectF connectionBoundingRect(const Connection &connection) const = 0;
    virtual QPainterPath connectionShape(const Connection &connection) const = 0;
    virtual void paintConnection(
        const Connection &connection, QPainter *painter, const QStyleOptionGraphicsItem *option) = 0;
};

// One row of an item's details table: (property, value).
using DetailRow = QPair<QString, QString>;

// An item of the flow: a graphics object in a GraphScene that holds one Dataset, its
// status and the messages of its last processing. Subclasses say how many connections
// they take and how they process; everything that walks the graph is here.
class Node : public QGraphicsObject
{
    Q_OBJECT
public:
    enum Status : int { NeedsUpdating = 0, Updating = 1, UpToDate = 2, Error = 3 };
    enum ConnectionKind : int { Outgoing = 0, Incoming = 1, AllConnections = 2 };
    enum { Type = UserType + 1 };

    explicit Node(QGraphicsItem *parent = nullptr);
    ~Node() override;

    int type() const override { return Type; }
    QRectF boundingRect() const override;
    void paint(QPainter *painter, const QStyleOptionGraphicsItem *option, QWidget *widget) override;

    // Ids: -1 takes the next free id from the process-wide counter, any other value is
    // stored as given and leaves the counter alone.
    virtual void assignId(int id);
    virtual int id() const { return m_id; }

    virtual QString comment() const { return m_comment; }
    virtual void setComment(const QString &comment);

    virtual QString typeName() const = 0;
    virtual QString displayTypeName() const { return typeName(); }

    // The user's name for the item; subclasses may derive it from what they hold.
    virtual QString name() const { return m_name; }
    virtual void setName(const QString &name);

    // "'name', Id=n, [status],   Type: summary"; the extended form adds the warning
    // count and textLines(), one per line.
    virtual QString statusText(bool extended) const;
    virtual QString summaryText() const;
    virtual QStringList textLines() const { return QStringList(); }
    virtual QList<DetailRow> details() const;

    virtual QList<Connection *> connections(int kind) const;
    virtual void connectionAdded(Connection *connection);

    virtual void setStatus(int status, bool propagate);
    virtual int status() const { return m_status; }

    // "3 cols x 1 row"; the change form compares with the first upstream node in
    // connection order and signs every number: "+1 col x -3 rows", "0 cols x +2 rows".
    // Without an upstream node the change form is the plain size.
    virtual QString sizeText() const;
    virtual QString sizeChangeText() const;

    virtual int maxUpstream() const = 0;
    virtual int maxDownstream() const = 0;

    // Direct neighbours in connection order, or in scene order when sorted.
    virtual QList<Node *> upstream(bool sorted) const;
    virtual QList<Node *> downstream(bool sorted) const;

    // The outputs of every upstream node; previous and next go by scene order.
    virtual QList<Node *> siblings(bool includeSelf) const;
    virtual Node *previousSibling() const;
    virtual Node *nextSibling() const;

    // Every node above (or below) this one, nearest first, each once. The selected forms
    // keep the selected nodes of the whole closure, walking through unselected ones.
    virtual QList<Node *> upstreamClosure() const;
    virtual QList<Node *> downstreamClosure() const;
    virtual QList<Node *> selectedUpstreamClosure() const;
    virtual QList<Node *> selectedDownstreamClosure() const;

    // True when node lies downstream of this one, however far.
    virtual bool reachable(const Node *node) const;
    // True when an outgoing connection of node ends here.
    virtual bool isConnectedFrom(const Node *node) const;

    virtual void process(bool recursive, bool freeMemory) = 0;

    // Whether the report after a run walks this item; an output that writes nothing and a
    // chart that only draws on screen are passed over.
    virtual bool isReportedInRun() const { return true; }
    // Absolute native paths written by the last processing, each once, in order.
    virtual QStringList writtenFiles() const { return QStringList(); }
    // Takes the path of an alias assignment ("-file alias=value" or a batch cell). Inputs
    // and outputs hold theirs in IONode; a chart that writes a file takes it here.
    virtual void setAliasPath(const QString &path) { Q_UNUSED(path) }

    virtual QString alias() const { return m_alias; }
    virtual void setAlias(const QString &alias);

    // Called by GraphScene::addNode once the node is in the scene, to wire its signals.
    virtual void sceneAdded(GraphScene *scene);

    virtual bool canConnectOut() const;
    virtual int depth() const;

    virtual int warningCount() const { return m_warnings.size(); }
    virtual int informationCount() const { return m_information.size(); }
    virtual const QStringList &warnings() const { return m_warnings; }
    virtual const QStringList &information() const { return m_information; }
    virtual void addWarning(const QString &text);
    virtual void addInformation(const QString &text);
    virtual void clearWarnings() { m_warnings.clear(); }
    virtual void clearInformation() { m_information.clear(); }
    // The first line of the first warning, or empty.
    virtual QString warningSummary() const;

    virtual const Dataset &dataset() const { return m_dataset; }
    virtual void setDataset(const Dataset &dataset);
    static QString noDataText();

    virtual QList<DetailRow> identityRows() const;
    virtual QList<DetailRow> commonRows() const;
    virtual QList<DetailRow> fileRows() const { return QList<DetailRow>(); }

    int processingTime() const { return m_processingTime; }
    void setProcessingTime(int milliseconds) { m_processingTime = milliseconds; }
    QDateTime lastProcessed() const { return m_lastProcessed; }
    void setLastProcessed(const QDateTime &when) { m_lastProcessed = when; }

    // Gives every column without an id the id (this node's id, n), n from 1.
    void assignColumnIds();

    GraphScene *graphScene() const;

    static QString statusName(int status);
    // Counts with the locale's group separators; signed counts carry "+" or "-".
    static QString formatSize(int columns, int rows, bool signedCounts);
    static QString processingTimeText(int milliseconds);
    static QString dateTimeText(const QDateTime &when);
    static QString countText(qlonglong count);

    // The next id that assignId(-1) hands out.
    static int nextId();
    static void setNextId(int id);
    // After a document read: the counter moves past id unless it is already beyond.
    static void raiseNextId(int id);

    // The painter of every node and connection; nullptr for the plain drawing. The caller
    // keeps ownership.
    static void setItemPainter(ItemPainter *painter);
    static ItemPainter *itemPainter();

    // The tile that ports and connections attach to, in item coordinates.
    static QRectF tileRect();
    QPointF outPortScenePos() const;
    QPointF inPortScenePos() const;

signals:
    void processingStart(Node *node);
    void processed(Node *node, qreal fraction);
    void processingEnd(Node *node);
    void nodeStatusChanged();
    void nodeDataChanged(Node *node);
    void nodeCommentChanged(Node *node);
    void nodePosChanged(QList<Node *> nodes);
    void sourceChanged(Node *node);

protected:
    QVariant itemChange(GraphicsItemChange change, const QVariant &value) override;
    void updateConnectionGeometry();

    Dataset m_dataset;
    QStringList m_warnings;
    QStringList m_information;

private:
    friend class Connection;

    QList<Node *> closure(bool up, bool selectedOnly) const;
    int depth(QHash<const Node *, int> &known) const;

    int m_id = -1;
    int m_status = NeedsUpdating;
    QString m_name;
    QString m_alias;
    QString m_comment;
    QList<Connection *> m_connections; // in the order they were made
    int m_processingTime = 0;
    QDateTime m_lastProcessed;
};
