// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#ifndef ORV_TESTS_GRAPHSNAPSHOT_H
#define ORV_TESTS_GRAPHSNAPSHOT_H

#include <Kestrin/Orv/Graph.h>

#include <QtCore/QString>

#include <sstream>
#include <string>

namespace GraphSnapshotDetail {

using Kestrin::Orv::Graph;

// Quoted, so that no name can be mistaken for what stands around it.
inline std::string quoted(const QString& name)
{
    std::string text = "'";
    for (const char c : name.toStdString()) {
        if (c == '\'' || c == '\\')
            text += '\\';
        text += c;
    }
    return text + "'";
}

inline void writeInput(std::ostream& out, const Graph& graph, int node, int port)
{
    out << "  input " << port << ' ' << quoted(graph.inputName(node, port)) << " group "
        << graph.inputGroup(node, port) << " source " << graph.inputSource(node, port)
        << " destinations";
    for (int i = 0; i < graph.numInputDestinations(node, port); ++i)
        out << ' ' << graph.inputDestination(node, port, i);
    out << '\n';
}

inline void writeOutput(std::ostream& out, const Graph& graph, int node, int port)
{
    out << "  output " << port << ' ' << quoted(graph.outputName(node, port)) << " group "
        << graph.outputGroup(node, port) << " source " << graph.outputSource(node, port)
        << " destinations";
    for (int i = 0; i < graph.numOutputDestinations(node, port); ++i)
        out << ' ' << graph.outputDestination(node, port, i);
    out << '\n';
}

inline void writeNode(std::ostream& out, const Graph& graph, int node)
{
    out << "node " << node << ' ' << quoted(graph.nodeName(node))
        << (graph.isValidNode(node) ? "" : " removed") << " parent " << graph.parentNode(node)
        << " position " << graph.indexOfNode(node) << " value " << graph.nodeValue(node)
        << " children";
    for (int i = 0; i < graph.numNodes(node); ++i)
        out << ' ' << graph.getNode(i, node);
    out << '\n';
    for (int i = 0; i < graph.numInputs(node); ++i)
        writeInput(out, graph, node, i);
    for (int i = 0; i < graph.numOutputs(node); ++i)
        writeOutput(out, graph, node, i);
    for (int i = 0; i < graph.numInputGroups(node); ++i)
        out << "  input group " << i << ' ' << quoted(graph.inputGroupName(node, i)) << '\n';
    for (int i = 0; i < graph.numOutputGroups(node); ++i)
        out << "  output group " << i << ' ' << quoted(graph.outputGroupName(node, i)) << '\n';
}

inline void writeEdge(std::ostream& out, const Graph& graph, int edge)
{
    out << "edge " << edge << (graph.isValidEdge(edge) ? "" : " removed")
        << (graph.isRegularEdge(edge) ? " regular" : "") << (graph.isDownEdge(edge) ? " down" : "")
        << (graph.isUpEdge(edge) ? " up" : "") << ' ' << graph.edgeSourceNode(edge) << '.'
        << graph.edgeSourceIndex(edge) << " -> " << graph.edgeDestNode(edge) << '.'
        << graph.edgeDestIndex(edge) << '\n';
}

} // namespace GraphSnapshotDetail

/// All that the queries tell about the graph, removed slots included, as text: two equal snapshots
/// mean that no query can tell what lies between them.
inline std::string graphSnapshot(const Kestrin::Orv::Graph& graph)
{
    std::ostringstream out;
    for (int node = 0; node < graph.numNodesGlobal(); ++node)
        GraphSnapshotDetail::writeNode(out, graph, node);
    for (int edge = 0; edge < graph.numEdgesGlobal(); ++edge)
        GraphSnapshotDetail::writeEdge(out, graph, edge);
    return out.str();
}

#endif
