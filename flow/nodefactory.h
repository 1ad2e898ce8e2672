#pragma once

#include <QHash>
#include <QString>
#include <QStringList>

#include <functional>

class Node;

// Makes nodes by type name ("Input", "Output", "Transform", "Chart", "Note", or a
// transform id), so that the flow can build items whose classes it doesn't know. The
// application registers one creator per type name at start.
class NodeFactory
{
public:
    using Creator = std::function<Node *()>;

    // A second registration under the same name replaces the first.
    void registerCreator(const QString &typeName, const Creator &creator);
    bool contains(const QString &typeName) const { return m_creators.contains(typeName); }
    // In the order they were registered.
    QStringList typeNames() const { return m_typeNames; }
    // A new node owned by the caller, or nullptr for a name nobody registered.
    Node *create(const QString &typeName) const;

private:
    QHash<QString, Creator> m_creators;
    QStringList m_typeNames;
};
