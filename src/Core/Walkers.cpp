// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#include <Kestrin/Orv/Graph.h>
#include <Kestrin/Orv/Walkers.h>

#include "GraphView.h"
#include "WalkFrame.h"

#include <QtCore/QBitArray>

#include <algorithm>
#include <memory>
#include <new>

namespace Kestrin {
namespace Orv {

// BottomUpInputWalker

namespace {

/// The header in front of the bytes of BottomUpInputWalker::visited, in the same block.
struct VisitedHead
{
    int length;               // of `visited`
    int lengthElsewhere;      // of `elsewhere`
    unsigned char* elsewhere; // marks by node ref for the nodes beyond `visited`; null until needed
};

VisitedHead* headOf(unsigned char* visited)
{
    return reinterpret_cast<VisitedHead*>(visited) - 1;
}

unsigned char* newVisited(int length)
{
    auto* block = new unsigned char[sizeof(VisitedHead) + static_cast<std::size_t>(length)]();
    return reinterpret_cast<unsigned char*>(new (block) VisitedHead{length, 0, nullptr} + 1);
}

void deleteVisited(unsigned char* visited)
{
    if (!visited)
        return;
    delete[] headOf(visited)->elsewhere;
    delete[] reinterpret_cast<unsigned char*>(headOf(visited));
}

/// Marks a node of the graph as reached. False if it was reached before, or was added to the graph
/// after the marks were made.
bool reach(unsigned char* visited, int node, int numNodes)
{
    VisitedHead& head = *headOf(visited);
    unsigned char* marks = visited;
    if (node >= head.length) {
        if (!head.elsewhere) {
            head.elsewhere = new unsigned char[static_cast<std::size_t>(numNodes)]();
            head.lengthElsewhere = numNodes;
        }
        if (node >= head.lengthElsewhere)
            return false;
        marks = head.elsewhere;
    }
    const bool isNew = marks[node] == 0;
    marks[node] = 1;
    return isNew;
}

} // namespace

BottomUpInputWalker::BottomUpInputWalker(const Graph& graphToWalk, int node, bool follow)
    : graph(&graphToWalk)
    , followHierarchy(follow)
    , visited(nullptr)
    , stack(nullptr)
{
    if (node == Graph::kInvalidNodeRef)
        return;
    try {
        visited = newVisited(graph->numNodes(Graph::kRootNodeRef));
        stack = new WalkFrame{node, 0, nullptr};
        moveNext();
    } catch (...) {
        while (stack)
            pop();
        deleteVisited(visited);
        throw;
    }
}

BottomUpInputWalker::~BottomUpInputWalker()
{
    while (stack)
        pop();
    deleteVisited(visited);
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
    const GraphView view(tables);
    while (stack) {
        const Node& node = tables.node(stack->node);
        if (stack->nextIndex >= node.inputs.size())
            return;
        const Port& input = firstOf(node.inputs)[stack->nextIndex++];
        const int source = view.feedingNode(node, input, followHierarchy);
        if (source != Graph::kInvalidNodeRef && reach(visited, source, view.numNodes))
            stack = new WalkFrame{source, 0, stack};
    }
}

void BottomUpInputWalker::pop()
{
    const std::unique_ptr<WalkFrame> top(stack);
    stack = top->below;
}

// BottomUpSubgraphWalker

namespace {

/// A frame of the subgraph walker. The top one holds the marks, if there are any.
///
/// On a tree, the walk reaches each node once without marks. After a purge, a list of children
/// begins with the refs 0, 1, 2 and so on, whatever these nodes are, and may lead back to nodes
/// above it. The first entry that is in the table shows whether a purge has rewritten a list: then
/// the ref is not higher than the node's own. In a list that only addNode() has filled, all refs
/// are higher, and the lists of all nodes below are of this kind, too. So the first node of the
/// walk decides, and no other node has been reached by then.
struct SubgraphFrame : WalkFrame
{
    std::unique_ptr<QBitArray> reached; // by node ref; null on a tree
};

/// Whether the walk continues down into a child of the top frame's node.
bool reach(SubgraphFrame& top, int child, int numNodes)
{
    if (child < 0 || child >= numNodes)
        return false;
    if (!top.reached) {
        if (child > top.node)
            return true;
        top.reached = std::make_unique<QBitArray>(numNodes);
        top.reached->setBit(top.node);
    }
    if (child >= top.reached->size() || top.reached->testBit(child))
        return false;
    top.reached->setBit(child);
    return true;
}

SubgraphFrame* topOf(WalkFrame* stack)
{
    return static_cast<SubgraphFrame*>(stack);
}

} // namespace

BottomUpSubgraphWalker::BottomUpSubgraphWalker(const Graph& graphToWalk, int node)
    : graph(&graphToWalk)
    , stack(nullptr)
{
    if (!graph->isValidNode(node))
        return;
    try {
        stack = new SubgraphFrame{{node, 0, nullptr}, nullptr};
        moveNext();
    } catch (...) {
        while (stack)
            pop();
        throw;
    }
}

BottomUpSubgraphWalker::~BottomUpSubgraphWalker()
{
    while (stack)
        pop();
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
    const GraphTables& tables = tablesOf(*graph);
    while (SubgraphFrame* top = topOf(stack)) {
        const QVector<int>& children = tables.node(top->node).children;
        if (top->nextIndex >= children.size())
            return;
        const int child = children.at(top->nextIndex++);
        if (reach(*top, child, tables.nodes.size())) {
            auto* frame = new SubgraphFrame{{child, 0, stack}, nullptr};
            frame->reached = std::move(top->reached);
            stack = frame;
        }
    }
}

void BottomUpSubgraphWalker::pop()
{
    const std::unique_ptr<SubgraphFrame> top(topOf(stack));
    stack = top->below;
    if (stack)
        topOf(stack)->reached = std::move(top->reached);
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
    std::unique_ptr<unsigned char[]> marks(new unsigned char[static_cast<std::size_t>(numNodes)]());
    // One entry more than nodes, and the length of `visited` in front of the queue.
    int* const lengthAndQueue = new int[static_cast<std::size_t>(numNodes) + 2];
    lengthAndQueue[0] = numNodes;
    queue = lengthAndQueue + 1;
    visited = marks.release();
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
    const GraphView view(tables);
    view.prefetchInputs(queue + head, tail - head);
    const Node& node = tables.node(queue[head++]);
    const int numNodes = queue[-1];
    int end = tail;
    for (const Port& input : node.inputs) {
        const int source = view.feedingNode(node, input, followHierarchy);
        if (source == Graph::kInvalidNodeRef || source >= numNodes)
            continue;
        // Whether a node is new is unpredictable, so this does not branch on it. A node that was
        // reached before is written behind the end of the queue and ignored.
        queue[end] = source;
        end += !visited[source];
        visited[source] = 1;
    }
    tail = end;
}

} // namespace Orv
} // namespace Kestrin
