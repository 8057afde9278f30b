// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#ifndef KESTRIN_ORV_UPSTREAMSEARCH_H
#define KESTRIN_ORV_UPSTREAMSEARCH_H

#include "GraphView.h"
#include "SearchMark.h"

#include <algorithm>
#include <cstring>
#include <memory>

namespace Kestrin {
namespace Orv {

/// The search of Graph::precedes(): breadth first, from one node to all nodes that feed it.
///
/// A list holds the nodes in the order in which they were found. Nodes before `head` have been
/// expanded. Each node is found once, so the list needs space for all nodes, plus one, see
/// searchAll(). Most searches find only a few nodes and take no memory from the heap.
template<bool followHierarchy>
class UpstreamSearch
{
public:
    UpstreamSearch(const GraphView& graph, int nodeToFind)
        : view(graph)
        , wanted(nodeToFind)
    {
    }

    /// Whether the node to find lies upstream of `start`. Both are in the table and differ.
    bool run(int start)
    {
        int first[handful] = {start};
        const auto numNodes = static_cast<std::size_t>(view.numNodes);
        if (numNodes <= smallGraph) {
            int nodes[smallGraph + 1];
            unsigned char marks[smallGraph];
            return searchAll(first, nodes, marks);
        }
        if (searchHandful(first))
            return true;
        if (head == tail)
            return false;
        const std::unique_ptr<int[]> nodes(new int[numNodes + 1]);
        const std::unique_ptr<unsigned char[]> marks(new unsigned char[numNodes]);
        return searchAll(first, nodes.get(), marks.get());
    }

private:
    static constexpr int smallGraph = 512;
    static constexpr int handful = 16;

    /// Stops when it would find more nodes than the small list holds. Then `head` is the node in
    /// whose inputs it stopped.
    bool searchHandful(int* nodes)
    {
        for (; head < tail; ++head) {
            const Node& node = view.nodes[nodes[head]];
            for (const Port& input : node.inputs) {
                const int source = view.feedingNode(node, input, followHierarchy);
                if (source == wanted)
                    return true;
                int* const end = nodes + tail;
                if (source == Graph::kInvalidNodeRef || std::find(nodes, end, source) != end)
                    continue;
                if (tail == handful)
                    return false;
                nodes[tail++] = source;
            }
        }
        return false;
    }

    /// Continues to the end. The loop uses only local variables, which stay in registers.
    bool searchAll(const int* first, int* nodes, unsigned char* marks)
    {
        const GraphView graph = view;
        int end = tail;
        std::memset(marks, 0, static_cast<std::size_t>(graph.numNodes));
        for (int i = 0; i < end; ++i) {
            nodes[i] = first[i];
            SearchMark(marks[first[i]]).reach();
        }

        for (int next = head; next < end; ++next) {
            graph.prefetchInputs(nodes + next, end - next);
            const Node& node = graph.nodes[nodes[next]];
            for (const Port& input : node.inputs) {
                const Edge* feed = graph.feedOf(node, input, followHierarchy);
                if (!feed)
                    continue;
                int source = feed->srcNode;
                if (followHierarchy) {
                    if (!SearchMark(marks[source]).trace(feed->srcIndex))
                        continue;
                    source = graph.producerOf(source, feed->srcIndex);
                }
                if (source == wanted)
                    return true;
                // Whether a node is new is unpredictable, so this does not branch on it. A node
                // that was found before is written behind the end of the list and ignored.
                nodes[end] = source;
                end += SearchMark(marks[source]).reach();
            }
        }
        return false;
    }

    const GraphView view;
    const int wanted;
    int head = 0; // the next of the found nodes to be expanded
    int tail = 1; // the number of found nodes
};

} // namespace Orv
} // namespace Kestrin

#endif
