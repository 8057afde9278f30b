// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#include "Steps.h"
#include "support/WildRenderer.h"

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <QtCore/QDebug>

using namespace Kestrin::Orv;
using namespace Kestrin::Orv::Inspect;

namespace {

using ByteList = std::vector<std::uint8_t>;

ByteList someBytes()
{
    return *rc::gen::scale(6.0, rc::gen::container<ByteList>(anyByte()));
}

/// Everything in a snapshot, to the last field.
std::string described(const Snapshot& snapshot)
{
    QString text;
    QDebug out(&text);
    const auto showPorts = [&out](const QVector<PortRecord>& ports) {
        for (const PortRecord& port : ports)
            out << port.name << port.group << port.source << port.destinations << port.defaultValue
                << "|";
        out << "\n";
    };
    for (const NodeRecord& node : snapshot.nodes) {
        out << node.name << node.parent << node.value << node.removed << node.pass << node.enabled
            << node.type << node.groups << node.children << "\n";
        showPorts(node.inputs);
        showPorts(node.outputs);
    }
    for (const EdgeRecord& edge : snapshot.edges)
        out << edge.srcNode << edge.srcIndex << edge.dstNode << edge.dstIndex << edge.removed
            << "\n";
    out << snapshot.parameters << snapshot.numOutputs << snapshot.target;
    return text.toStdString();
}

void survives(Snapshot snapshot, QVector<Problem>* losses)
{
    const QByteArray document = writeDocument(snapshot, losses);
    const std::string failure = documentFailure(document, true);
    if (!failure.empty())
        RC_FAIL(failure + "\nof\n" + document.toStdString());
}

} // namespace

RC_GTEST_PROP(Documents, HoldEverythingOfARenderer, ())
{
    WildRenderer wild(someBytes(), WildRenderer::Adding);
    const Snapshot snapshot = Snapshot::of(wild.renderer);
    QVector<Problem> losses;
    survives(snapshot, &losses);
    for (const Problem& loss : qAsConst(losses))
        RC_FAIL(loss.text.toStdString());
    RC_ASSERT(described(readDocument(writeDocument(snapshot)).snapshot) == described(snapshot));
}

RC_GTEST_PROP(Documents, HoldWhatIsLeftOfARenderer, ())
{
    WildRenderer wild(someBytes(), WildRenderer::Removing);
    QVector<Problem> losses;
    survives(Snapshot::of(wild.renderer), &losses);
    for (const Problem& loss : qAsConst(losses)) {
        // The graph has taken what it would not take again: see Graph::addEdge().
        if (loss.code != QLatin1String("edge-order") && loss.code != QLatin1String("cycle")
            && loss.code != QLatin1String("target-gone"))
            RC_FAIL(loss.text.toStdString());
    }
}

RC_GTEST_PROP(Documents, AreSoundWhateverTheyAreWrittenOf, ())
{
    WildRenderer wild(someBytes(), WildRenderer::Anything);
    survives(Snapshot::of(wild.renderer), nullptr);
}

namespace {

/// A tree of groups in which every node has two inputs and two outputs, and edges of all kinds
/// between their ports.
struct RandomWiring
{
    struct Wire
    {
        int src, srcIndex, dst, dstIndex;
    };
    std::vector<int> parents{-1};
    std::vector<Wire> wires;

    RandomWiring()
    {
        const int numNodes = *rc::gen::inRange(2, 9);
        for (int i = 1; i < numNodes; ++i)
            parents.push_back(*rc::gen::inRange(0, i));
        const auto pairs =
            *rc::gen::resize(60,
                             rc::gen::container<std::vector<std::pair<std::uint8_t, std::uint8_t>>>(
                                 rc::gen::pair(anyByte(), anyByte())));
        for (const auto& pair : pairs) {
            const int a = pair.first % numNodes;
            const int b = pair.first / 16 % numNodes;
            const int pa = parents[static_cast<std::size_t>(a)];
            const int pb = parents[static_cast<std::size_t>(b)];
            if (pa == pb || pb == a || pa == b)
                wires.push_back({a, pair.second % 2, b, pair.second / 2 % 2});
        }
    }

    int parent(int node) const { return parents[static_cast<std::size_t>(node)]; }

    /// What the graph says to each.
    std::vector<bool> accepted() const
    {
        Graph graph;
        for (int node = 0; node < int(parents.size()); ++node) {
            if (node > 0)
                graph.addNode(QString(), 0, 0, parent(node));
            for (int port = 0; port < 2; ++port) {
                graph.addInput(node, QString(), -1);
                graph.addOutput(node, QString(), -1);
            }
        }
        std::vector<bool> all;
        for (const Wire& w : wires) {
            int edge = -1;
            if (parent(w.src) == parent(w.dst))
                edge = graph.addEdge(w.src, w.srcIndex, w.dst, w.dstIndex);
            else if (parent(w.dst) == w.src)
                edge = graph.addDownEdge(w.srcIndex, w.dst, w.dstIndex);
            else
                edge = graph.addUpEdge(w.dstIndex, w.src, w.srcIndex);
            all.push_back(edge >= 0);
        }
        return all;
    }

    std::string path(int node) const
    {
        if (node == 0)
            return {};
        const std::string above = path(parent(node));
        return (above.empty() ? "" : above + "/") + "N" + std::to_string(node);
    }
    std::string port(int node, int index) const
    {
        return (node == 0 ? "" : path(node) + ".") + (index ? "b" : "a");
    }
    /// The edges are one a line, from line 1 on.
    std::string document() const
    {
        std::string text = "{\"edges\":[";
        for (std::size_t i = 0; i < wires.size(); ++i)
            text += (i ? ",\n\"" : "\"") + port(wires[i].src, wires[i].srcIndex) + " -> "
                + port(wires[i].dst, wires[i].dstIndex) + "\"";
        text += "],\"format\":\"orv-graph\",\"nodes\":[";
        for (int node = 1; node < int(parents.size()); ++node)
            text += std::string(node > 1 ? "," : "") + "{\"path\":\"" + path(node)
                + "\",\"inputs\":[\"a\",\"b\"],\"outputs\":[\"a\",\"b\"]}";
        return text + "],\"outputs\":[\"a\",\"b\"],\"parameters\":[\"a\",\"b\"],\"version\":1}";
    }
};

} // namespace

RC_GTEST_PROP(Documents, AreReadIfAGraphAcceptsTheirEdgesInThatOrder, ())
{
    const RandomWiring wiring;
    const std::vector<bool> expected = wiring.accepted();
    const ReadResult read = readDocument(QByteArray::fromStdString(wiring.document()));
    std::vector<bool> actual(expected.size(), true);
    for (const Problem& problem : qAsConst(read.problems)) {
        RC_LOG() << problem.text.toStdString() << "\n";
        RC_ASSERT(problem.place.line <= int(actual.size()));
        RC_ASSERT(actual[std::size_t(problem.place.line - 1)]); // told once
        actual[std::size_t(problem.place.line - 1)] = false;
    }
    RC_CLASSIFY(read.problems.isEmpty() && !expected.empty(), "accepted");
    const auto isCycle = [](const Problem& p) { return p.code == QLatin1String("cycle"); };
    RC_CLASSIFY(std::any_of(read.problems.cbegin(), read.problems.cend(), isCycle), "cycle");
    const auto leaves = [](const Problem& p) { return p.code == QLatin1String("leaves-group"); };
    RC_CLASSIFY(std::any_of(read.problems.cbegin(), read.problems.cend(), leaves), "leaves");
    RC_ASSERT(actual == expected);
}
