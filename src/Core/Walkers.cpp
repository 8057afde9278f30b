// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#include <Kestrin/Orv/Graph.h>
#include <Kestrin/Orv/Walkers.h>

#include "GraphImpl.h"
#include "WalkFrame.h"

namespace Kestrin {
namespace Orv {

namespace {

void push(WalkFrame*& stack, int node)
{
    stack = new WalkFrame{node, 0, stack};
}

void popFrom(WalkFrame*& stack)
{
    WalkFrame* top = stack;
    stack = top->below;
    delete top;
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
        const Port& input = node.inputs.at(stack->nextIndex++);
        const int source = view.feedingNode(node, input, followHierarchy);
        if (source != Graph::kInvalidNodeRef && reach(source))
            push(stack, source);
    }
}

void BottomUpInputWalker::pop()
{
    popFrom(stack);
}

/// Marks a node of the graph reached; false when it was already.
bool BottomUpInputWalker::reach(int node)
{
    if (node < numVisited) {
        if (visited[node])
            return false;
        visited[node] = 1;
        return true;
    }
    if (visitedElsewhere.isEmpty())
        visitedElsewhere.resize(graph->numNodesGlobal());
    if (node >= visitedElsewhere.size() || visitedElsewhere.testBit(node))
        return false;
    visitedElsewhere.setBit(node);
    return true;
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
        visited[node] = 1;
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
    const Node& node = tables.node(queue[head++]);
    const int numNodes = queue[-1];
    for (const Port& input : node.inputs) {
        const int source = view.feedingNode(node, input, followHierarchy);
        if (source < 0 || source >= numNodes || visited[source])
            continue;
        visited[source] = 1;
        queue[tail++] = source;
    }
}

} // namespace Orv
} // namespace Kestrin
