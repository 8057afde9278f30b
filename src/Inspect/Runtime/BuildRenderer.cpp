// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#include <Kestrin/Orv/Inspect/BuildRenderer.h>
#include <Kestrin/Orv/Inspect/Paths.h>
#include <Kestrin/Orv/Inspect/StandInPass.h>

#include "Document/CanonicalSnapshot.h"
#include "Model/LookUp.h"
#include "Rules/EdgeCheck.h"

#include <Kestrin/Orv/Graph.h>
#include <Kestrin/Orv/Renderer.h>

#include <QtCore/QSet>

#include <algorithm>
#include <memory>
#include <vector>

namespace Kestrin {
namespace Orv {
namespace Inspect {

void PassFactory::add(const QString& type, const Maker& maker)
{
    makers.insert(type, maker);
}

void PassFactory::setFallback(const Maker& maker)
{
    fallback = maker;
}

PassFactory PassFactory::standIns()
{
    PassFactory factory;
    factory.setFallback(
        [](const PassRequest& request) -> RenderPass* { return new StandInPass(request.node); });
    return factory;
}

PassFactory::Maker PassFactory::maker(const QString& type) const
{
    return makers.value(type, fallback);
}

namespace {

/// How the ports of a pass differ from those of its node; empty if they do not.
QString mismatch(const RenderPass& pass, const NodeRecord& node)
{
    const auto compare = [](const char* kind, int number, const QVector<PortRecord>& ports,
                            const std::function<QString(int)>& nameOf) {
        if (number != ports.size())
            return QLatin1String("the pass has ") + QString::number(number) + QLatin1String(kind)
                + QLatin1String("s, not ") + QString::number(ports.size());
        for (int i = 0; i < number; ++i) {
            const QString name = nameOf(i);
            if (name != ports.at(i).name)
                return QLatin1String("the pass's") + QLatin1String(kind) + QLatin1Char(' ')
                    + QString::number(i) + QLatin1String(" is called \"") + Paths::escaped(name)
                    + QLatin1String("\", not \"") + Paths::escaped(ports.at(i).name)
                    + QLatin1Char('"');
        }
        return QString();
    };
    QString inputs = compare(" input", pass.numInputs(), node.inputs,
                             [&pass](int i) { return pass.inputName(i); });
    if (!inputs.isEmpty())
        return inputs;
    return compare(" output", pass.numOutputs(), node.outputs,
                   [&pass](int i) { return pass.outputName(i); });
}

bool holdsOnlyItsRoot(Renderer& renderer)
{
    const Graph& graph = *renderer.getGraph();
    return graph.numNodesGlobal() == 1 && graph.isValidNode(0) && graph.numInputs(0) == 0
        && graph.numOutputs(0) == 0 && graph.numInputGroups(0) == 0 && graph.numEdgesGlobal() == 0
        && renderer.numParameters() == 0 && renderer.numOutputs() == 0
        && renderer.Renderer::getGraphProcessingMode() == 0; // no pass without a node either
}

class Building
{
public:
    Building(const Snapshot& shown, const PassFactory& passFactory, const Places& documentPlaces)
        : canonical(shown)
        , snapshot(canonical.snapshot)
        , paths(snapshot)
        , factory(passFactory)
        , places(documentPlaces)
        , passes(static_cast<std::size_t>(snapshot.nodes.size()))
    {
    }

    QVector<Problem> run(Renderer& renderer)
    {
        for (const CanonicalSnapshot::Loss& loss : qAsConst(canonical.losses)) {
            if (loss.gone)
                report(loss.code, loss.text,
                       loss.node >= 0 ? lookUp(places.nodes, loss.node)
                                      : lookUp(places.edges, loss.edge));
        }
        makePasses();
        if (!holdsOnlyItsRoot(renderer))
            report(QLatin1String("renderer-not-empty"), QLatin1String("the renderer is not empty"),
                   Place());
        if (problems.isEmpty())
            build(renderer);
        return problems;
    }

private:
    void report(const QString& code, const QString& text, const Place& place)
    {
        problems.append({code, text, place});
    }
    void makePasses();
    void build(Renderer& renderer);
    static void addPorts(Graph& graph, int node, const NodeRecord& record);
    static bool hasGroups(const QVector<PortRecord>& ports);

    const CanonicalSnapshot canonical;
    const Snapshot& snapshot;
    const Paths paths;
    const PassFactory& factory;
    const Places& places;
    std::vector<std::unique_ptr<RenderPass>> passes; // by node
    QVector<Problem> problems;
};

void Building::makePasses()
{
    QSet<QString> unknownTypes;
    QSet<const RenderPass*> made;
    for (int ref = 1; ref < snapshot.nodes.size(); ++ref) {
        const NodeRecord& node = snapshot.nodes.at(ref);
        if (!node.pass || unknownTypes.contains(node.type))
            continue;
        const Place place = lookUp(places.nodes, canonical.origins.at(ref));
        const PassFactory::Maker maker = factory.maker(node.type);
        if (!maker) {
            unknownTypes.insert(node.type);
            report(QLatin1String("unknown-type"),
                   paths.node(ref) + QLatin1String(": nothing makes passes of type \"")
                       + Paths::escaped(node.type) + QLatin1Char('"'),
                   place);
            continue;
        }
        RenderPass* const pass = maker({node, ref, paths.node(ref)});
        if (!pass) {
            report(QLatin1String("no-pass"),
                   paths.node(ref) + QLatin1String(": no pass of type \"")
                       + Paths::escaped(node.type) + QLatin1String("\" was made"),
                   place);
            continue;
        }
        if (made.contains(pass)) {
            report(QLatin1String("shared-pass"),
                   paths.node(ref)
                       + QLatin1String(": its pass has already been made for another node"),
                   place);
            continue;
        }
        made.insert(pass);
        passes[static_cast<std::size_t>(ref)].reset(pass);
        const QString wrong = mismatch(*pass, node);
        if (!wrong.isEmpty())
            report(QLatin1String("wrong-ports"), paths.node(ref) + QLatin1String(": ") + wrong,
                   place);
    }
}

bool Building::hasGroups(const QVector<PortRecord>& ports)
{
    return std::any_of(ports.cbegin(), ports.cend(),
                       [](const PortRecord& port) { return port.group != -1; });
}

void Building::addPorts(Graph& graph, int node, const NodeRecord& record)
{
    for (const PortRecord& input : record.inputs)
        graph.addInput(node, input.name, input.group);
    for (const PortRecord& output : record.outputs)
        graph.addOutput(node, output.name, output.group);
}

void Building::build(Renderer& renderer)
{
    Graph& graph = *renderer.getGraph();
    for (int ref = 0; ref < snapshot.nodes.size(); ++ref) {
        const NodeRecord& record = snapshot.nodes.at(ref);
        // A new graph numbers its nodes in the order of the canonical snapshot.
        if (ref == 0) {
            graph.setNodeName(0, record.name);
            graph.setNodeValue(0, record.value);
            for (int i = 0; i < record.inputs.size(); ++i)
                renderer.addParameter(record.inputs.at(i).name, snapshot.parameters.at(i));
            for (const PortRecord& output : record.outputs)
                renderer.addOutput(output.name);
        } else if (record.pass) {
            RenderPass* const pass = passes[static_cast<std::size_t>(ref)].release();
            renderer.addPass(record.name, pass, record.parent);
            for (int i = 0; i < record.inputs.size(); ++i)
                pass->setDefaultValue(i, record.inputs.at(i).defaultValue);
            if (!record.enabled)
                renderer.setEnabled(ref, false);
        } else {
            renderer.addGroup(record.name, 0, 0, record.parent);
            addPorts(graph, ref, record);
            graph.setNodeValue(ref, record.value);
        }
        for (const QString& group : record.groups)
            graph.addInputGroup(ref, group);
        if ((ref == 0 || record.pass) && (hasGroups(record.inputs) || hasGroups(record.outputs))) {
            // A port gets its group when it is added, not later.
            for (int i = record.inputs.size() - 1; i >= 0; --i)
                graph.removeInput(ref, i);
            for (int i = record.outputs.size() - 1; i >= 0; --i)
                graph.removeOutput(ref, i);
            addPorts(graph, ref, record);
        }
    }
    for (int i = 0; i < snapshot.edges.size(); ++i) {
        const EdgeRecord& edge = snapshot.edges.at(i);
        switch (snapshot.kindOf(i)) {
        case EdgeKind::Down:
            graph.addDownEdge(edge.srcIndex, edge.dstNode, edge.dstIndex);
            break;
        case EdgeKind::Up:
            graph.addUpEdge(edge.dstIndex, edge.srcNode, edge.srcIndex);
            break;
        default:
            graph.addEdge(edge.srcNode, edge.srcIndex, edge.dstNode, edge.dstIndex);
        }
    }
    if (snapshot.target >= 0)
        renderer.setTarget(snapshot.target);
}

} // namespace

QVector<Problem> buildRenderer(const Snapshot& snapshot, Renderer& renderer,
                               const PassFactory& factory, const Places& places)
{
    return Building(snapshot, factory, places).run(renderer);
}

} // namespace Inspect
} // namespace Orv
} // namespace Kestrin
