#include "nodefactory.h"

void NodeFactory::registerCreator(const QString &typeName, const Creator &creator)
{
    if (!m_creators.contains(typeName))
        m_typeNames << typeName;
    m_creators.insert(typeName, creator);
}

Node *NodeFactory::create(const QString &typeName) const
{
    const auto found = m_creators.constFind(typeName);
    if (found == m_creators.constEnd() || !found.value())
        return nullptr;
    return found.value()();
}
