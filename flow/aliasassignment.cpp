#include "aliasassignment.h"

#include "ionode.h"
#include "node.h"

#include <QFileInfo>

void AliasAssignment::splitValue(const QString &value, QString *file, QString *sheet)
{
    const int open = value.indexOf(QLatin1Char('['));
    if (open < 0) {
        *file = value;
        sheet->clear();
        return;
    }
    *file = value.left(open);
    const int close = value.indexOf(QLatin1Char(']'), open + 1);
    *sheet = value.mid(open + 1, close < 0 ? -1 : close - open - 1).trimmed();
}

QList<Node *> AliasAssignment::matchingNodes(const QList<Node *> &nodes, const QString &alias)
{
    const QString wanted = alias.trimmed();
    QList<Node *> result;
    if (wanted.isEmpty())
        return result; // items without an alias are not one group
    for (const QString &type : {QStringLiteral("Input"), QStringLiteral("Output"), QStringLiteral("Chart")}) {
        for (Node *node : nodes) {
            if (node && node->typeName() == type && node->alias().trimmed() == wanted)
                result << node;
        }
    }
    return result;
}

QString AliasAssignment::apply(
    const QList<Node *> &nodes, const QString &alias, const QString &value, bool *inputChanged)
{
    if (inputChanged)
        *inputChanged = false;
    const QList<Node *> matches = matchingNodes(nodes, alias);
    if (matches.isEmpty())
        return tr("Alias '%1' not recognized").arg(alias);
    QString file;
    QString sheet;
    splitValue(value, &file, &sheet);
    for (const Node *node : matches) {
        if (node->typeName() == QLatin1String("Input") && !QFileInfo::exists(file))
            return tr("File '%1' does not exist").arg(file);
    }
    for (Node *node : matches) {
        auto *io = qobject_cast<IONode *>(node);
        if (!io) {
            node->setAliasPath(value);
            continue;
        }
        const bool isInput = node->typeName() == QLatin1String("Input");
        if (isInput && inputChanged && (io->path() != file || io->worksheet() != sheet))
            *inputChanged = true;
        io->setMedium(IONode::File);
        io->setPath(file);
        io->setWorksheet(sheet);
    }
    return QString();
}
