// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#ifndef KESTRIN_ORV_GRAPHVIZ_H
#define KESTRIN_ORV_GRAPHVIZ_H

#include <Kestrin/Orv/Export.h>

namespace Kestrin {
namespace Orv {

class Graph;

/// Writes the top level of a graph to Qt's debug log as a Graphviz "digraph", one message per line.
///
/// The nodes are the root's children. Each pair of connected nodes gives one edge. An up edge to
/// the root is written as an edge to the empty name. Every line begins with the library's
/// "[file:line] " prefix: remove it before Graphviz reads the text. Names are not escaped, not even
/// quotes, backslashes and line breaks.
///
/// \param graph the graph to write; nothing is written for null.
/// Linear in the top level's nodes and in the edges that leave their outputs.
ORV_EXPORT void dumpAsGraphviz(const Graph* graph);

} // namespace Orv
} // namespace Kestrin

#endif
