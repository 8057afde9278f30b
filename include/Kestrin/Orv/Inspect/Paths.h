// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#ifndef KESTRIN_ORV_INSPECT_PATHS_H
#define KESTRIN_ORV_INSPECT_PATHS_H

#include <Kestrin/Orv/Inspect/Export.h>
#include <Kestrin/Orv/Inspect/Snapshot.h>

#include <memory>

namespace Kestrin {
namespace Orv {
namespace Inspect {

/// Gives nodes and ports readable names, called paths, and finds them by these names. Documents,
/// messages and commands use the same paths.
///
///     Bloom/Blur               the node Blur in the group Bloom
///     Bloom/Blur.color         its port
///     Angle                    a parameter or an output of the renderer, where a port is meant
///     Bloom/Blur[1]            the second of Bloom's children of that name
///     Bloom/Blur.color[0]      the first of Blur's inputs (or outputs) of that name
///
/// A number in brackets follows a name only if the name is not unique or empty. In a name, the
/// characters % / . [ ] and > are written as %25 %2F %2E %5B %5D %3E, and control characters in the
/// same way. The path of the root is empty. The path of a removed node has its ref,
/// Bloom/Blur[removed 12], and so has the path of a node that its parent does not list,
/// Bloom/Blur[unlisted 12]. Such paths cannot be found again.
///
/// Keeps a reference to the snapshot. The snapshot must neither change nor be destroyed while this
/// object is in use.
class ORV_INSPECT_EXPORT Paths
{
public:
    /// Linear in the size of the snapshot.
    explicit Paths(const Snapshot& snapshot);
    ~Paths();

    /// The path of a node. Linear in its depth.
    QString node(int ref) const;
    /// The path of an input. Linear in the depth of the node.
    QString input(int node, int index) const;
    /// The path of an output. Linear in the depth of the node.
    QString output(int node, int index) const;
    /// The path of a port. Linear in the depth of the node.
    QString port(const PortRef& ref) const;
    /// A single name, escaped for use in a path.
    static QString escaped(const QString& name);

    /// The nodes with this path: none, one, or several if the path leaves out a number in brackets.
    /// Does not find removed nodes. Linear in the length of the path and in the number of nodes
    /// found.
    QVector<int> findNodes(const QString& path) const;
    /// The ports with this path, in the same way. Inputs come first: an input and an output may
    /// have the same path.
    QVector<PortRef> findPorts(const QString& path) const;

private:
    struct Impl;
    std::unique_ptr<const Impl> impl;
};

} // namespace Inspect
} // namespace Orv
} // namespace Kestrin

#endif
