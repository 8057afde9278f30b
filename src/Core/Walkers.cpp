// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#include <Kestrin/Orv/Graph.h>
#include <Kestrin/Orv/Walkers.h>

#include "GraphImpl.h"
#include "WalkFrame.h"

namespace Kestrin {
namespace Orv {

namespace {

/// Frames stand in blocks, so that a step into a node seldom takes memory. The last one of a block is
/// not used: it lies below itself, which tells it from all others.
struct FrameBlock
{
    static constexpr int size = 64;
    WalkFrame frames[size];
};

void push(WalkFrame*& stack, int node)
{
    WalkFrame* top = stack ? stack + 1 : nullptr;
    if (!top || top->below == top) {
        auto* block = new FrameBlock();
        WalkFrame* last = block->frames + FrameBlock::size - 1;
        last->below = last;
        top = block->frames;
    }
    *top = {node, 0, stack};
    stack = top;
}

void popFrom(WalkFrame*& stack)
{
    WalkFrame* top = stack;
    stack = top->below;
    if (stack != top - 1)
        delete reinterpret_cast<FrameBlock*>(top); // the first of its block
}

void popAll(WalkFrame*& stack)
{
    while (stack)
        popFrom(stack);
}

} // namespace

// BottomUpInputWalker

BottomUpInputWalker::BottomUpInputWalker(const Graph& graphToWalk, int node, bool follow)
    : graph(&graphToWalk)
    , followHierarchy(follow)
    , visited(nullptr)
    , stack(nullptr)
    , numVisited(0)
{
    if (node == Graph::kInvalidNodeRef)
        return;
    try {
        numVisited = graph->numNodes(Graph::kRootNodeRef);
        visited = new unsigned char[static_cast<std::size_t>(numVisited)]();
        push(stack, node);
        moveNext();
    } catch (...) {
        popAll(stack);
        delete[] visited;
        throw;
    }
}

BottomUpInputWalker::~BottomUpInputWalker()
{
    popAll(stack);
    delete[] visited;
}

bool BottomUpInputWalker::valid() const
{
    return stack != nullptr;
}

int BottomUpInputWalker::node() const
{
    return stack ? stack->node : Graph::kInvalidNodeRef;
}

void BottomUpInputWalker::next()
{
    if (!stack)
        return;
    pop();
    moveNext();
}

void BottomUpInputWalker::moveNext()
{
    const GraphTables& tables = tablesOf(*graph);
    const GraphView view = tables.view();
    while (stack) {
        const Node& node = tables.node(stack->node);
        if (stack->nextIndex >= node.inputs.size())
            return;
        const Port& input = firstOf(node.inputs)[stack->nextIndex++];
        const Edge* feed = view.feedOf(node, input, followHierarchy);
        if (!feed)
            continue;
        int source = feed->srcNode;
        unsigned char* mark = markOf(source);
        if (followHierarchy) {
            if (mark && !SearchMark(*mark).trace(feed->srcIndex))
                continue;
            source = view.producerOf(source, feed->srcIndex);
            mark = markOf(source);
        }
        if (mark && SearchMark(*mark).reach())
            push(stack, source);
    }
}

void BottomUpInputWalker::pop()
{
    popFrom(stack);
}

/// The SearchMark of a node of the graph; null when the node was not there at the start.
unsigned char* BottomUpInputWalker::markOf(int node)
{
    if (node < numVisited)
        return visited + node;
    if (visitedElsewhere.isEmpty())
        visitedElsewhere.fill('\0', graph->numNodesGlobal());
    return node < visitedElsewhere.size()
        ? reinterpret_cast<unsigned char*>(visitedElsewhere.data()) + node
        : nullptr;
}

// BottomUpSubgraphWalker

BottomUpSubgraphWalker::BottomUpSubgraphWalker(const Graph& graphToWalk, int node)
    : graph(&graphToWalk)
    , stack(nullptr)
{
    if (!graph->isValidNode(node))
        return;
    try {
        reached.resize(graph->numNodesGlobal());
        reached.setBit(node);
        push(stack, node);
        moveNext();
    } catch (...) {
        popAll(stack);
        throw;
    }
}

BottomUpSubgraphWalker::~BottomUpSubgraphWalker()
{
    popAll(stack);
}

bool BottomUpSubgraphWalker::valid() const
{
    return stack != nullptr;
}

int BottomUpSubgraphWalker::node() const
{
    return stack ? stack->node : Graph::kInvalidNodeRef;
}

void BottomUpSubgraphWalker::next()
{
    if (!stack)
        return;
    pop();
    moveNext();
}

void BottomUpSubgraphWalker::moveNext()
{
    while (stack && stack->nextIndex < graph->numNodes(stack->node)) {
        const int child = graph->getNode(stack->nextIndex++, stack->node);
        if (child < 0 || child >= reached.size() || reached.testBit(child))
            continue;
        reached.setBit(child);
        push(stack, child);
    }
}

void BottomUpSubgraphWalker::pop()
{
    popFrom(stack);
}

// BreadthFirstInputWalker

BreadthFirstInputWalker::BreadthFirstInputWalker(const Graph& graphToWalk, int node, bool follow)
    : graph(&graphToWalk)
    , followHierarchy(follow)
    , visited(nullptr)
    , queue(nullptr)
    , head(0)
    , tail(0)
{
    const int numNodes = graph->numNodesGlobal();
    visited = new unsigned char[static_cast<std::size_t>(numNodes)]();
    try {
        int* const lengthAndQueue = new int[static_cast<std::size_t>(numNodes) + 2];
        lengthAndQueue[0] = numNodes;
        queue = lengthAndQueue + 1;
    } catch (...) {
        delete[] visited;
        throw;
    }
    if (node == Graph::kInvalidNodeRef)
        return;
    if (node >= 0 && node < numNodes)
        SearchMark(visited[node]).reach();
    queue[tail++] = node;
}

BreadthFirstInputWalker::~BreadthFirstInputWalker()
{
    delete[](queue - 1);
    delete[] visited;
}

bool BreadthFirstInputWalker::valid() const
{
    return head < tail;
}

int BreadthFirstInputWalker::node() const
{
    return valid() ? queue[head] : Graph::kInvalidNodeRef;
}

void BreadthFirstInputWalker::next()
{
    if (!valid())
        return;
    const GraphTables& tables = tablesOf(*graph);
    const GraphView view = tables.view();
    view.fetchAhead(queue + head, tail - head);
    const Node& node = tables.node(queue[head++]);
    const int numNodes = queue[-1];
    const Port* input = firstOf(node.inputs);
    const Port* const inputsEnd = input + node.inputs.size();
    int end = tail;
    for (; input != inputsEnd; ++input) {
        const Edge* feed = view.feedOf(node, *input, followHierarchy);
        if (!feed)
            continue;
        int source = feed->srcNode;
        if (followHierarchy) {
            if (source < numNodes && !SearchMark(visited[source]).trace(feed->srcIndex))
                continue;
            source = view.producerOf(source, feed->srcIndex);
        }
        if (source >= numNodes)
            continue;
        // Whether a node is new cannot be foretold, so this does not branch on it.
        queue[end] = source;
        end += SearchMark(visited[source]).reach();
    }
    tail = end;
}

} // namespace Orv
} // namespace Kestrin
