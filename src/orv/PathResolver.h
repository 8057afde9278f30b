// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#ifndef KESTRIN_ORV_PROGRAM_PATHRESOLVER_H
#define KESTRIN_ORV_PROGRAM_PATHRESOLVER_H

#include <Kestrin/Orv/Inspect/Paths.h>

#include <QtCore/QStringList>

namespace Kestrin::Orv::Program {

/// Resolves paths from the command line to nodes and ports. Throws an InputError if a path is
/// unknown or ambiguous; the error lists the paths that may be meant.
class PathResolver
{
public:
    /// Keeps references to the snapshot and its paths.
    /// \param name of the file, for messages.
    PathResolver(QString name, const Inspect::Snapshot& graph, const Inspect::Paths& graphPaths);

    /// Everything that one path names.
    struct Match
    {
        int node = -1;
        Inspect::PortRef input;
        Inspect::PortRef output;
    };
    /// A node, an input or an output, or several of them if they share the path.
    Match resolve(const QString& path) const;
    /// A node that is a pass.
    int resolvePass(const QString& path) const;
    /// The index of a parameter of the renderer.
    int resolveParameter(const QString& path) const;
    /// The ports with this path: several if an input and an output share it.
    QVector<Inspect::PortRef> resolvePorts(const QString& path) const;
    /// The only input or output among the ports that were found for a path; its node is -1 if there
    /// is none.
    Inspect::PortRef singlePort(const QString& path, const QVector<Inspect::PortRef>& ports,
                                bool isOutput) const;

private:
    enum Kind { Node, Parameter, Anything };

    [[noreturn]] void throwUnknown(const QString& path, Kind kind) const;
    [[noreturn]] void throwAmbiguous(const QString& path, const QStringList& matches) const;
    int singleNode(const QString& path, const QVector<int>& nodes) const;
    QStringList nearestNodes(const QString& path) const;
    QStringList nearestPorts(int node, const QString& name) const;

    QString file;
    const Inspect::Snapshot& snapshot;
    const Inspect::Paths& paths;
};

} // namespace Kestrin::Orv::Program

#endif
