#pragma once

#include <QList>

class Node;
class Parameter;

// Which input is the top one is decided by where the items stand on the canvas, not by
// the order in which they were connected. These helpers put the inputs of the merges in
// that order.

// For a two-input merge whose top and bottom key options each watch one input: when both
// have an upstream node and the top one's item stands strictly lower than the bottom
// one's, the two nodes change places in inputs, each key option's value moves with its
// dataset, and the options in bottomOnly follow the new bottom node keeping their values.
// Returns whether anything was swapped.
bool swapInputsByPosition(QList<Node *> &inputs, Parameter *top, Parameter *bottom,
    const QList<Parameter *> &bottomOnly = QList<Parameter *>());

// For a many-input merge: a stable sort of the inputs by their items' y coordinates, top
// first, so that items at the same height keep their connection order. Returns whether
// the order changed.
bool sortInputsByPosition(QList<Node *> &inputs);

// For a two-input merge with options of its own on each side: top watches the first node,
// and every option in bottom the second, or none while there is no second node. An empty
// list clears them all. Values stay as they are.
void setTopBottomUpstream(const QList<Node *> &nodes, Parameter *top, const QList<Parameter *> &bottom);
