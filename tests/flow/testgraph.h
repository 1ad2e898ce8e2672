#pragma once

#include "flow/connection.h"
#include "flow/graphscene.h"
#include "flow/node.h"

#include <QMap>
#include <QRegularExpression>
#include <QStringList>

#include <climits>

// A node whose maxima a test chooses; processing only marks it up to date.
class StubNode : public Node
{
public:
    explicit StubNode(int maxUp = INT_MAX, int maxDown = INT_MAX)
        : m_maxUp(maxUp)
        , m_maxDown(maxDown)
    { }
    QString typeName() const override { return QStringLiteral("Test"); }
    int maxUpstream() const override { return m_maxUp; }
    int maxDownstream() const override { return m_maxDown; }
    void process(bool recursive, bool freeMemory) override
    {
        Q_UNUSED(recursive)
        Q_UNUSED(freeMemory)
        setStatus(UpToDate, false);
    }

private:
    int m_maxUp;
    int m_maxDown;
};

// A small flow written as text, so that a case fits on a line:
// "a b@0,100 o:1/0 | a>b b>o" makes nodes a, b (at 0,100) and o (at most one input,
// no outputs), then connects a to b and b to o, in that order. Nodes get ids 1, 2, ...
// in the order they are named.
class TestGraph
{
public:
    explicit TestGraph(const QString &layout)
    {
        const QStringList parts = layout.split(QLatin1Char('|'));
        static const QRegularExpression token(
            QStringLiteral("^(\\w+)(?::(\\d+)/(\\d+))?(?:@(-?\\d+),(-?\\d+))?$"));
        int id = 1;
        for (const QString &word : parts.value(0).split(QLatin1Char(' '), Qt::SkipEmptyParts)) {
            const QRegularExpressionMatch m = token.match(word);
            if (!m.hasMatch()) {
                valid = false;
                continue;
            }
            auto *node = m.captured(2).isEmpty() ? new StubNode
                                                 : new StubNode(m.captured(2).toInt(), m.captured(3).toInt());
            node->setName(m.captured(1));
            node->assignId(id++);
            if (!m.captured(4).isEmpty())
                node->setPos(m.captured(4).toInt(), m.captured(5).toInt());
            scene.addNode(node);
            m_nodes.insert(m.captured(1), node);
        }
        for (const QString &edge : parts.value(1).split(QLatin1Char(' '), Qt::SkipEmptyParts)) {
            const QStringList ends = edge.split(QLatin1Char('>'));
            if (ends.size() != 2 || !scene.connectNodes(node(ends.at(0)), node(ends.at(1))))
                valid = false;
        }
    }

    StubNode *node(const QString &name) const { return m_nodes.value(name); }
    StubNode *operator[](const QString &name) const { return node(name); }

    // "a,b" in the order given; "-" for a null node.
    static QString names(const QList<Node *> &nodes)
    {
        QStringList result;
        for (const Node *node : nodes)
            result << (node ? node->name() : QStringLiteral("-"));
        return result.join(QLatin1Char(','));
    }
    static QString name(const Node *node) { return node ? node->name() : QStringLiteral("-"); }

    GraphScene scene;
    bool valid = true;

private:
    QMap<QString, StubNode *> m_nodes;
};
