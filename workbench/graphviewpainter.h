#pragma once

#include "flow/node.h"

#include <QColor>
#include <QFont>
#include <QHash>
#include <QStringList>
#include <QPointer>
#include <QSet>

// The colours of the canvas in the light and the dark theme.
struct CanvasTheme
{
    QColor background;
    QColor gridDots;
    QColor itemFill;
    QColor text;
    QColor secondaryText;
    QColor accent;
    QColor status[4]; // by Node::Status
    QColor connection;
    QColor warning;

    static CanvasTheme light();
    static CanvasTheme dark();
    // The theme in use by every canvas of the process.
    static const CanvasTheme &current();
    static void setDark(bool dark);
    static bool isDark();
};

// Draws the items of the flow on the canvas: a tile with the item's icon, a border and
// glyph in its status colour, warning and comment marks, and a caption with its name and
// size; connections as curves with arrow heads. One painter serves every view; it keeps
// the little state that the views share with it (hovered and current item, drag targets).
class GraphViewPainter : public ItemPainter
{
public:
    static GraphViewPainter *instance();
    // Installs the painter for every node and connection.
    static void install();

    QRectF nodeBoundingRect(const Node &node) const override;
    void paintNode(const Node &node, QPainter *painter, const QStyleOptionGraphicsItem *option) override;
    QRectF connectionBoundingRect(const Connection &connection) const override;
    QPainterPath connectionShape(const Connection &connection) const override;
    void paintConnection(
        const Connection &connection, QPainter *painter, const QStyleOptionGraphicsItem *option) override;

    // Hovered items show their out port.
    void setHoveredNode(const Node *node);
    const Node *hoveredNode() const { return m_hovered; }
    // The item the item pane shows.
    void setCurrentNode(const Node *node);
    const Node *currentNode() const { return m_current; }
    void setFocusShown(bool shown) { m_focusShown = shown; }
    // While a connection is dragged: the start, its candidates (the others are dimmed)
    // and the candidate under the pointer (ringed).
    void setDrag(const Node *start, const QSet<const Node *> &candidates, const Node *target);
    void clearDrag();
    // Forgets what it keeps about node, which is going away.
    void forget(const Node *node) { m_captions.remove(node); }
    void setShowSizeChanges(bool on) { m_showSizeChanges = on; }
    bool showSizeChanges() const { return m_showSizeChanges; }

    // The caption's texts: the name, the first comment line, the size text.
    QString sizeTextOf(const Node &node) const;
    // A short word for the item's icon: the format's extension for inputs and outputs.
    static QString formatTag(const Node &node);
    // "1", "2" at the arrow head when the end takes several inputs; empty otherwise.
    static QString inputPositionText(const Connection &connection);

    // Where the out port is, in item coordinates, and how near counts as on it.
    static QPointF outPortPos();
    static bool isOnOutPort(const Node &node, const QPointF &itemPos);
    static bool hasRoomDownstream(const Node &node);

private:
    GraphViewPainter() = default;
    void drawIcon(const Node &node, QPainter *painter, const QRectF &box, const QColor &color) const;
    void drawStatusGlyph(const Node &node, QPainter *painter, const QPointF &centre) const;
    void paintTileOnly(const Node &node, QPainter *painter, qreal opacity) const;

    struct CaptionCache
    {
        QString name;
        QFont font;
        QStringList lines;
    };
    // Broken caption lines by node, remade when the name or font changes.
    QHash<const Node *, CaptionCache> m_captions;
    const Node *m_hovered = nullptr;
    const Node *m_current = nullptr;
    const Node *m_dragStart = nullptr;
    const Node *m_dragTarget = nullptr;
    QSet<const Node *> m_candidates;
    bool m_dragging = false;
    bool m_focusShown = false;
    bool m_showSizeChanges = false;
};
