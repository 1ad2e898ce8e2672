#include "transforms/inputorder.h"

#include "flow/node.h"
#include "transforms/parameter.h"

#include <algorithm>

namespace {

// Gives target the upstream node and the value (or the document text still waiting to be
// read) that source had.
void takeOver(Parameter *target, const Parameter &source)
{
    target->clearUpstream();
    target->setUpstream(source.upstream(), false);
    if (source.isPending())
        target->setPendingText(source.pendingText(), source.pendingVersion());
    else
        target->setValue(source.value());
}

} // namespace

bool swapInputsByPosition(
    QList<Node *> &inputs, Parameter *top, Parameter *bottom, const QList<Parameter *> &bottomOnly)
{
    if (!top || !bottom)
        return false;
    Node *topNode = top->upstream();
    Node *bottomNode = bottom->upstream();
    if (!topNode || !bottomNode || topNode == bottomNode || !(topNode->y() > bottomNode->y()))
        return false;

    const Parameter oldTop(*top);
    takeOver(top, *bottom);
    takeOver(bottom, oldTop);
    for (Parameter *parameter : bottomOnly) {
        if (!parameter)
            continue;
        // The stored ids stay: the getters show only those the new bottom holds, and the
        // option recovers when the items are moved back.
        parameter->clearUpstream();
        parameter->setUpstream(topNode, false);
    }

    const int topIndex = inputs.indexOf(topNode);
    const int bottomIndex = inputs.indexOf(bottomNode);
    if (topIndex >= 0 && bottomIndex >= 0)
        inputs.swapItemsAt(topIndex, bottomIndex);
    return true;
}

bool sortInputsByPosition(QList<Node *> &inputs)
{
    if (inputs.contains(nullptr))
        return false;
    QList<Node *> sorted = inputs;
    std::stable_sort(
        sorted.begin(), sorted.end(), [](const Node *a, const Node *b) { return a->y() < b->y(); });
    if (sorted == inputs)
        return false;
    inputs = sorted;
    return true;
}

void setTopBottomUpstream(const QList<Node *> &nodes, Parameter *top, const QList<Parameter *> &bottom)
{
    if (top) {
        top->clearUpstream();
        top->setUpstream(nodes.value(0), false);
    }
    for (Parameter *parameter : bottom) {
        if (!parameter)
            continue;
        parameter->clearUpstream();
        parameter->setUpstream(nodes.value(1), false);
    }
}
