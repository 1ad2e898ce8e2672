#pragma once

#include <QCoreApplication>
#include <QList>
#include <QString>

class Node;

// The value an alias takes from "-file alias=value" on the command line or from a cell of
// the batch table: a path, for inputs and outputs with an optional sheet in brackets, as
// in "sales.xlsx[2024]".
class AliasAssignment
{
    Q_DECLARE_TR_FUNCTIONS(AliasAssignment)
public:
    // The file is the text before the first "[", the sheet the trimmed text between it and
    // the following "]" (or the end).
    static void splitValue(const QString &value, QString *file, QString *sheet);

    // Gives value to every input, then every output, then every chart whose trimmed alias
    // equals the trimmed alias. Returns an empty text, or why nothing was changed: "Alias '%1'
    // not recognized", or "File '%1' does not exist" for an input's missing file.
    // inputChanged tells whether an input took a new path.
    static QString apply(
        const QList<Node *> &nodes, const QString &alias, const QString &value, bool *inputChanged = nullptr);

    // The nodes apply() would change, inputs first, then outputs, then charts; none for an
    // empty alias.
    static QList<Node *> matchingNodes(const QList<Node *> &nodes, const QString &alias);
};
