// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#ifndef ORV_TESTS_SMALLGRAPHS_H
#define ORV_TESTS_SMALLGRAPHS_H

#include "oracle/GraphCalls.h"

#include <array>
#include <cstdint>
#include <functional>
#include <map>
#include <string>
#include <utility>
#include <vector>

/// Every sequence of edits up to a length, on the library's graph and on the oracle's.
///
/// Sequences are many, but most of them lead to the same graphs. So the search goes breadth first
/// over the distinct states: each edit that applies is made in each state, and a state that has
/// been met before is not left again. What tells two states apart is every field of the oracle's
/// tables and every field of the library's own records, those included that no query shows. So
/// nothing that can differ later is taken for the same. A state keeps the sequence that led to it
/// first, and a graph is built anew from that sequence for each edit.
///
/// After each edit all queries are asked. The library answers every time; the oracle, which is
/// slow, once for each state. Where the oracle leaves an answer open, the library must only come
/// to an end.
class SmallGraphs
{
public:
    /// The trees of three nodes below the root: their parents, in order.
    using Shape = std::array<int, 3>;
    static constexpr Shape flat{0, 0, 0};
    static constexpr Shape aGroup{0, 1, 0};
    static constexpr Shape aFullGroup{0, 1, 1};
    static constexpr Shape groupOfGroups{0, 1, 2};

    enum Kind : unsigned {
        RemovePorts = 1,
        AddPorts = 2,
        RemoveNodes = 4,
        AddNodes = 8,
        AnyPair = 16, ///< edges between any two nodes, edges by name, edges that are gone already
        Disconnect = 32,
        All = 63
    };

    struct Edit
    {
        GraphOp op;
        std::int8_t args[4];

        GraphCall call() const;
    };
    using Path = std::vector<Edit>;

    /// What is tried.
    struct Plan
    {
        Shape parents;
        int numPorts;   ///< that each node starts with, on each side; it gets two at most
        unsigned edits; ///< of these kinds, beside sound edges, removeEdge() and purge()
        int length;
        bool wired = false; ///< starts as a chain, from the root's input to its output
    };

    /// What came of it.
    struct Count
    {
        double sequences = 0;
        std::size_t states = 0;
        std::size_t edits = 0;
        std::size_t comparisons = 0;
    };

    explicit SmallGraphs(const Plan& searched);

    /// Told every state when it is met first; answers what is wrong with it.
    std::function<std::string(const Path&)> onState;

    /// \return nothing when all agreed; otherwise what did not, and the calls so far as source.
    std::string run();

    Count count;

    /// The edits that make the graph of a plan.
    static Path base(const Plan& plan);

private:
    struct State
    {
        int from;
        Edit edit;
        std::uint64_t answers; ///< a digest; 0 where the oracle leaves some open
    };

    Path pathTo(int state) const;
    std::vector<Edit> editsOf(const Oracle::Graph& graph) const;
    std::string leave(int state);
    std::string failure(Path path, const Edit& edit, const std::string& what) const;
    void countSequences();

    const Plan plan;
    const Path basePath;
    std::vector<State> states;
    std::vector<std::pair<int, int>> transitions;
    std::map<std::pair<std::uint64_t, std::uint64_t>, int> numbers; ///< of states, by digests
};

#endif
