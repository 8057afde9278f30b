// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#ifndef KESTRIN_ORV_GRAPHVIZ_H
#define KESTRIN_ORV_GRAPHVIZ_H

#include <Kestrin/Orv/Export.h>

namespace Kestrin {
namespace Orv {

class Graph;

/// Writes the top level of a graph to Qt's debug log as a Graphviz "digraph", one message a line.
///
/// The root's children are the nodes; one edge is written for each pair of nodes that is connected,
/// an up edge to the root as an edge to the empty name. Every line carries the library's
/// "[file:line] " prefix, to be stripped before Graphviz reads it. Names are written as they are:
/// quotes, backslashes and line breaks in them are not escaped.
///
/// \param graph the graph to write; nothing is written for null.
/// Linear in the top level's nodes and in the edges that leave their outputs.
ORV_EXPORT void dumpAsGraphviz(const Graph* graph);

} // namespace Orv
} // namespace Kestrin

#endif
