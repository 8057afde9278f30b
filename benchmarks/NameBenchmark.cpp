// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#include "support/Rows.h"

#include <Kestrin/Orv/Graph.h>

#include <algorithm>
#include <memory>
#include <vector>

// Look-ups by name, which are linear by design, and connections by name.

using namespace OrvBench;
using Kestrin::Orv::Graph;

namespace {

/// Names as hosts choose them: they begin alike, so a comparison has to read them to the end.
QString nameOf(int index)
{
    return QStringLiteral("renderPass%1").arg(index, 5, 10, QLatin1Char('0'));
}

std::vector<QString> makeNames(int count)
{
    std::vector<QString> names;
    for (int i = 0; i < count; ++i)
        names.push_back(nameOf(i));
    return names;
}

int findIn(const std::vector<QString>& names, const QString& name)
{
    const auto found = std::find(names.begin(), names.end(), name);
    return found == names.end() ? -1 : static_cast<int>(found - names.begin());
}

/// Looks up the last of `size` names with another string of the same content.
struct Named
{
    explicit Named(int size)
        : names(makeNames(size))
        , wanted(nameOf(size - 1))
        , node(graph.addNode(QStringLiteral("node"), 0, 0, Graph::kRootNodeRef))
    {
        for (const QString& name : names) {
            graph.addInput(node, name, Graph::kInvalidGroupRef);
            graph.addNode(name, 0, 0, node);
        }
        requireEqual(findIn(names, wanted), size - 1, "the last name");
        for (const QString& name : {wanted, nameOf(0), nameOf(size / 2), nameOf(size)}) {
            const int position = findIn(names, name);
            requireEqual(graph.findInput(node, name), position, "findInput");
            requireEqual(graph.indexOfNode(graph.findNode(name, node)), position, "findNode");
        }
    }

    std::vector<QString> names;
    QString wanted;
    Graph graph;
    int node;
};

void addFindRows(int size)
{
    const auto add = [size](const char* work, const char* subject, auto find) {
        addRow("name", work, subject, size, [=](benchmark::State& state) {
            static Cache<Named> cache;
            const Named& named =
                cache.get(std::to_string(size), [size] { return std::make_unique<Named>(size); });
            for (auto _ : state)
                benchmark::DoNotOptimize(find(named));
        });
    };
    const auto scan = [](const Named& named) { return findIn(named.names, named.wanted); };
    add("find a node", "orv",
        [](const Named& named) { return named.graph.findNode(named.wanted, named.node); });
    add("find a node", "scan", scan);
    add("find an input", "orv",
        [](const Named& named) { return named.graph.findInput(named.node, named.wanted); });
    add("find an input", "scan", scan);
}

// Connects every node of a chain with the one before it, port by port

struct Chain
{
    Graph graph;
    std::vector<int> nodes;
    std::vector<QString> names; // of the ports: outputs in this order, inputs in the opposite one
};

std::unique_ptr<Chain> makeChain(int numNodes)
{
    constexpr int numPorts = 8;
    auto chain = std::make_unique<Chain>();
    static const std::vector<QString> names = makeNames(numPorts);
    chain->names = names;
    for (int i = 0; i < numNodes; ++i) {
        const int node = chain->graph.addNode(QString(), numPorts, numPorts, Graph::kRootNodeRef);
        for (int port = 0; port < numPorts; ++port) {
            chain->graph.setOutputName(node, port, names[static_cast<std::size_t>(port)]);
            chain->graph.setInputName(node, numPorts - 1 - port,
                                      names[static_cast<std::size_t>(port)]);
        }
        chain->nodes.push_back(node);
    }
    return chain;
}

/// Connects the last pair first, so that cycle tests find nothing.
template<typename Connect>
void connectAll(Chain& chain, Connect connect)
{
    for (std::size_t i = chain.nodes.size() - 1; i > 0; --i)
        connect(chain, chain.nodes[i - 1], chain.nodes[i]);
}

void connectByName(Chain& chain, int src, int dst)
{
    chain.graph.connectByName(src, dst);
}

/// The code of a host that keeps its names beside the graph and makes no unneeded call.
void joinByHand(Chain& chain, int src, int dst)
{
    const int numPorts = static_cast<int>(chain.names.size());
    for (int input = 0; input < numPorts; ++input) {
        const QString& name = chain.names[static_cast<std::size_t>(numPorts - 1 - input)];
        if (chain.graph.inputSource(dst, input) == Graph::kInvalidEdgeRef)
            chain.graph.addEdge(src, findIn(chain.names, name), dst, input);
    }
}

std::vector<int> edgesOf(const Graph& graph)
{
    std::vector<int> ends;
    for (int edge = 0; edge < graph.numEdgesGlobal(); ++edge) {
        ends.insert(ends.end(),
                    {graph.edgeSourceNode(edge), graph.edgeSourceIndex(edge),
                     graph.edgeDestNode(edge), graph.edgeDestIndex(edge)});
    }
    return ends;
}

void addConnectRows(int size)
{
    const auto compare = [size] {
        const auto byName = makeChain(size);
        const auto byHand = makeChain(size);
        connectAll(*byName, connectByName);
        connectAll(*byHand, joinByHand);
        requireEqual(edgesOf(byName->graph), edgesOf(byHand->graph), "edges connected by name");
        requireSame(byName->graph.numEdgesGlobal() == 8 * (size - 1), "all ports connected");
        return std::make_unique<bool>(true);
    };
    const auto add = [&](const char* subject, auto connect) {
        addRow("name", "connect a chain", subject, size, [=](benchmark::State& state) {
            static Cache<bool> compared;
            compared.get(std::to_string(size), compare);
            timeOnFresh(
                state, [size] { return makeChain(size); },
                [&](Chain& chain) { connectAll(chain, connect); });
        });
    };
    add("orv", connectByName);
    add("join", joinByHand);
}

const bool registered = [] {
    for (const int size : {10, 100, 1000})
        addFindRows(size);
    for (const int size : {100, 1000})
        addConnectRows(size);
    return true;
}();

} // namespace
