// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#ifndef KESTRIN_ORV_INSPECT_TOPOLOGICALORDER_H
#define KESTRIN_ORV_INSPECT_TOPOLOGICALORDER_H

#include <algorithm>
#include <cstddef>
#include <utility>
#include <vector>

namespace Kestrin {
namespace Orv {
namespace Inspect {

/// Vertices in an order that arcs between them always lead down in: the algorithm of Pearce and
/// Kelly. An arc that leads down already takes constant time; for another, what lies between its
/// ends is looked through and put in order.
class TopologicalOrder
{
public:
    /// \param startingPositions by vertex, each one once.
    explicit TopologicalOrder(std::vector<int> startingPositions)
        : positions(std::move(startingPositions))
        , lastSearch(positions.size(), 0)
        , leaving(positions.size(), -1)
        , entering(positions.size(), -1)
    {
    }

    /// Adds an arc; false, and adds nothing, if it closes a cycle.
    bool add(int from, int to)
    {
        if (at(positions, from) < at(positions, to) && !makeRoom(from, to))
            return false;
        links.push_back({to, at(leaving, from)});
        at(leaving, from) = static_cast<int>(links.size()) - 1;
        links.push_back({from, at(entering, to)});
        at(entering, to) = static_cast<int>(links.size()) - 1;
        return true;
    }

private:
    struct Link
    {
        int vertex; // at the other end
        int next;   // of the same vertex; -1 behind the last
    };

    static int& at(std::vector<int>& list, int i) { return list[static_cast<std::size_t>(i)]; }

    /// The vertices that arcs lead to, from `start` on, and that stand between both positions.
    std::vector<int> reached(int start, std::vector<int>& heads, int lowest, int highest)
    {
        ++searches;
        std::vector<int> vertices{start};
        at(lastSearch, start) = searches;
        for (std::size_t i = 0; i < vertices.size(); ++i) {
            for (int link = at(heads, vertices[i]); link >= 0;) {
                const Link& step = links[static_cast<std::size_t>(link)];
                link = step.next;
                const int position = at(positions, step.vertex);
                if (position < lowest || position > highest
                    || at(lastSearch, step.vertex) == searches)
                    continue;
                at(lastSearch, step.vertex) = searches;
                vertices.push_back(step.vertex);
            }
        }
        const auto isLower = [this](int a, int b) { return at(positions, a) < at(positions, b); };
        std::sort(vertices.begin(), vertices.end(), isLower);
        return vertices;
    }

    /// Moves `to` and what is reached from it below `from` and what it is reached from.
    bool makeRoom(int from, int to)
    {
        const int lowest = at(positions, from);
        const int highest = at(positions, to);
        std::vector<int> vertices = reached(to, leaving, lowest, highest);
        if (at(lastSearch, from) == searches)
            return false;
        const std::vector<int> above = reached(from, entering, lowest, highest);
        vertices.insert(vertices.end(), above.begin(), above.end());
        std::vector<int> free;
        free.reserve(vertices.size());
        for (const int vertex : vertices)
            free.push_back(at(positions, vertex));
        std::sort(free.begin(), free.end());
        for (std::size_t i = 0; i < vertices.size(); ++i)
            at(positions, vertices[i]) = free[i];
        return true;
    }

    std::vector<int> positions;
    std::vector<int> lastSearch; // by vertex: the last search that has reached it
    int searches = 0;
    std::vector<Link> links;
    std::vector<int> leaving; // by vertex: its last link along an arc
    std::vector<int> entering;
};

} // namespace Inspect
} // namespace Orv
} // namespace Kestrin

#endif
