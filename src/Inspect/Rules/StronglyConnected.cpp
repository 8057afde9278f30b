// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#include "Rules/StronglyConnected.h"

#include <algorithm>

namespace Kestrin {
namespace Orv {
namespace Inspect {

Arcs::Arcs(int numVertices)
    : firsts(tableOf(numVertices + 1, 0))
{
}

void Arcs::sort()
{
    for (const Arc& arc : arcs)
        ++at(firsts, arc.from);
    int sum = 0;
    for (int& entry : firsts) {
        sum += entry;
        entry = sum;
    }
    targets.resize(arcs.size());
    for (const Arc& arc : arcs)
        at(targets, --at(firsts, arc.from)) = arc.to;
}

namespace {

class Search
{
public:
    Search(const Arcs& searched, StronglyConnected& found)
        : arcs(searched)
        , result(found)
        , indices(tableOf(searched.numVertices(), -1))
        , lowest(tableOf(searched.numVertices(), -1))
        , pending(tableOf(searched.numVertices(), char(0)))
    {
    }

    void run()
    {
        for (int start = 0; start < arcs.numVertices(); ++start) {
            if (at(indices, start) < 0)
                enter(start);
            while (!path.empty())
                advance();
        }
    }

private:
    struct Step
    {
        int vertex;
        int next; // the arc to follow next
    };

    void enter(int vertex)
    {
        at(indices, vertex) = at(lowest, vertex) = numFound++;
        stack.push_back(vertex);
        at(pending, vertex) = 1;
        path.push_back({vertex, arcs.begin(vertex)});
    }

    void advance()
    {
        const int vertex = path.back().vertex;
        if (path.back().next == arcs.end(vertex)) {
            leave(vertex);
            return;
        }
        const int next = arcs.target(path.back().next++);
        if (at(indices, next) < 0)
            enter(next);
        else if (at(pending, next))
            at(lowest, vertex) = std::min(at(lowest, vertex), at(indices, next));
    }

    void leave(int vertex)
    {
        path.pop_back();
        at(result.finished, vertex) = numFinished++;
        if (!path.empty()) {
            int& above = at(lowest, path.back().vertex);
            above = std::min(above, at(lowest, vertex));
        }
        if (at(lowest, vertex) == at(indices, vertex))
            closeComponent(vertex);
    }

    /// All that is pending from `first` on is one component.
    void closeComponent(int first)
    {
        const bool alone = stack.back() == first;
        int member = -1;
        do {
            member = stack.back();
            stack.pop_back();
            at(pending, member) = 0;
            if (!alone)
                at(result.components, member) = numComponents;
        } while (member != first);
        numComponents += !alone;
    }

    const Arcs& arcs;
    StronglyConnected& result;
    Table<int> indices;  // by vertex: the order in which the search reached it
    Table<int> lowest;   // by vertex: the lowest index that it reaches and that is still pending
    Table<char> pending; // by vertex: whether its component is still open
    Table<int> stack;    // the pending vertices
    Table<Step> path;
    int numFound = 0;
    int numFinished = 0;
    int numComponents = 0;
};

} // namespace

StronglyConnected::StronglyConnected(const Arcs& arcs)
    : components(tableOf(arcs.numVertices(), -1))
    , finished(tableOf(arcs.numVertices(), -1))
{
    Search(arcs, *this).run();
}

} // namespace Inspect
} // namespace Orv
} // namespace Kestrin
