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

/// Names nodes and ports by paths, as documents, messages and commands do, and finds them again.
///
///     Bloom/Blur               the node Blur in the group Bloom
///     Bloom/Blur.color         its port
///     Angle                    a parameter or an output of the renderer, where a port is meant
///     Bloom/Blur[1]            the second of Bloom's children of that name
///     Bloom/Blur.color[0]      the first of Blur's inputs (or outputs) of that name
///
/// Numbers in brackets stand only where names are not unique, and after an empty name. In a name
/// the characters % / . [ ] and > are written as %25 %2F %2E %5B %5D %3E, control characters
/// likewise. The path of the root is empty. A removed node is written with its ref,
/// Bloom/Blur[removed 12], and so is one that its parent does not list, Bloom/Blur[unlisted 12];
/// those paths are not found again.
///
/// Keeps a reference to the snapshot, which must neither change nor go while this is used.
class ORV_INSPECT_EXPORT Paths
{
public:
    /// Linear in what the snapshot holds.
    explicit Paths(const Snapshot& snapshot);
    ~Paths();

    /// The path of a node. Linear in its depth.
    QString node(int ref) const;
    /// The path of an input; linear in the depth of the node.
    QString input(int node, int index) const;
    /// The path of an output; linear in the depth of the node.
    QString output(int node, int index) const;
    /// The path of a port.
    QString port(const PortRef& ref) const;
    /// A name alone, as a part of a path.
    static QString escaped(const QString& name);

    /// The nodes that a path names: none, one, or all that it may mean where it leaves out a number
    /// in brackets. Removed nodes are not found. Linear in the length of the path and in what is
    /// found.
    QVector<int> findNodes(const QString& path) const;
    /// The ports that a path names, as above; inputs come first. An input and an output may have
    /// the same path.
    QVector<PortRef> findPorts(const QString& path) const;

private:
    struct Impl;
    std::unique_ptr<const Impl> impl;
};

} // namespace Inspect
} // namespace Orv
} // namespace Kestrin

#endif
