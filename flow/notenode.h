#pragma once

#include "node.h"

#include <QColor>

// A sticky note on the canvas. Its comment is its text; it takes no connections and
// holds no data.
class NoteNode : public Node
{
    Q_OBJECT
public:
    enum Arrow : int { NoArrow = 0, LeftArrow = 1, RightArrow = 2, UpArrow = 3, DownArrow = 4 };

    explicit NoteNode(QGraphicsItem *parent = nullptr);

    QString typeName() const override { return QStringLiteral("Note"); }
    QString displayTypeName() const override { return tr("Note"); }
    int maxUpstream() const override { return 0; }
    int maxDownstream() const override { return 0; }
    // Nothing to compute: a note is up to date as soon as it is asked.
    void process(bool recursive, bool freeMemory) override;
    void setComment(const QString &comment) override;

    QString text() const { return comment(); }
    void setText(const QString &text) { setComment(text); }
    QColor color() const { return m_color; }
    void setColor(const QColor &color);
    int arrow() const { return m_arrow; }
    // A number outside 0..4 draws no arrow.
    void setArrow(int arrow);

    static QColor defaultColor();

    QRectF boundingRect() const override;
    void paint(QPainter *painter, const QStyleOptionGraphicsItem *option, QWidget *widget) override;

private:
    static QRectF measureText(const QString &text);

    QColor m_color;
    QRectF m_textRect;
    int m_arrow = NoArrow;
};
