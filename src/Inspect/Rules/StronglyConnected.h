// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#ifndef KESTRIN_ORV_INSPECT_STRONGLYCONNECTED_H
#define KESTRIN_ORV_INSPECT_STRONGLYCONNECTED_H

#include "Model/Table.h"

namespace Kestrin {
namespace Orv {
namespace Inspect {

/// The arcs of a directed graph whose vertices are numbered from 0.
class Arcs
{
public:
    explicit Arcs(int numVertices);

    void add(int from, int to) { arcs.push_back({from, to}); }
    /// Groups the arcs by the vertex that they leave; after the last add().
    void sort();

    int numVertices() const { return static_cast<int>(firsts.size()) - 1; }
    /// The positions of the arcs that leave a vertex.
    int begin(int vertex) const { return at(firsts, vertex); }
    int end(int vertex) const { return at(firsts, vertex + 1); }
    /// The vertex that the arc at a position enters.
    int target(int position) const { return at(targets, position); }

private:
    struct Arc
    {
        int from;
        int to;
    };
    Table<Arc> arcs;
    Table<int> firsts; // by vertex
    Table<int> targets;
};

/// The strongly connected components of a graph: the largest sets of vertices in which each reaches
/// every other.
struct StronglyConnected
{
    /// Tarjan's algorithm, with the path on a list of its own. Linear in vertices and arcs.
    explicit StronglyConnected(const Arcs& arcs);

    Table<int> components; ///< by vertex: the number of its component; -1 where it is alone in it
    Table<int> finished;   ///< by vertex: the order in which the search left it
};

} // namespace Inspect
} // namespace Orv
} // namespace Kestrin

#endif
