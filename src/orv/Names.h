// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#ifndef KESTRIN_ORV_PROGRAM_NAMES_H
#define KESTRIN_ORV_PROGRAM_NAMES_H

#include <Kestrin/Orv/Inspect/Paths.h>

#include <QtCore/QStringList>

namespace Kestrin::Orv::Program {

/// Finds what paths on the command line mean. Whatever is not found, or may mean several things, is
/// thrown as a BadInput that names what may have been meant.
class Names
{
public:
    /// Keeps references to the snapshot and its paths.
    /// \param name of the file, for messages.
    Names(QString name, const Inspect::Snapshot& named, const Inspect::Paths& pathsOfNamed);

    /// What one path may mean at the same time.
    struct Meaning
    {
        int node = -1;
        Inspect::PortRef input;
        Inspect::PortRef output;
    };
    /// A node, an input or an output, or several of them that go by the same path.
    Meaning anything(const QString& path) const;
    /// A node that is a pass.
    int pass(const QString& path) const;
    /// The index of a parameter.
    int parameter(const QString& path) const;
    /// The ports of a path, several where an input and an output share it.
    QVector<Inspect::PortRef> ports(const QString& path) const;
    /// The one input or output among ports that were found for a path; its node is -1 if there is
    /// none.
    Inspect::PortRef onePort(const QString& path, const QVector<Inspect::PortRef>& ports,
                             bool isOutput) const;

private:
    enum Kind { Node, Parameter, Anything };

    [[noreturn]] void throwUnknown(const QString& path, Kind kind) const;
    [[noreturn]] void throwAmbiguous(const QString& path, const QStringList& meanings) const;
    int oneNode(const QString& path, const QVector<int>& nodes) const;
    QStringList nearestNodes(const QString& path) const;
    QStringList nearestPorts(int node, const QString& name) const;

    QString file;
    const Inspect::Snapshot& snapshot;
    const Inspect::Paths& paths;
};

} // namespace Kestrin::Orv::Program

#endif
