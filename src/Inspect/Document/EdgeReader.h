// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#ifndef KESTRIN_ORV_INSPECT_EDGEREADER_H
#define KESTRIN_ORV_INSPECT_EDGEREADER_H

#include "Document/NodeIndex.h"
#include "Model/Positions.h"
#include "Rules/EdgeCheck.h"

#include <Kestrin/Orv/Inspect/Paths.h>

namespace Kestrin {
namespace Orv {
namespace Inspect {

/// Reads the edges of a document whose nodes have been read, and adds those that a graph accepts.
class EdgeReader
{
public:
    EdgeReader(DocumentSyntax& documentSyntax, NodeIndex& nodeIndex, Snapshot& edited)
        : syntax(documentSyntax)
        , nodes(nodeIndex)
        , snapshot(edited)
    {
    }

    /// Reads an edge: "FROM -> TO". Reports a problem if it names no two ports.
    void read(int item);
    /// Adds the edges that have been read to the snapshot, in their order. Reports those that a
    /// graph refuses.
    /// \return the places of the edges that have been added
    QVector<Place> addAll();

private:
    /// One end of an edge, as written.
    struct End
    {
        int node = -1;
        QString nodePath;
        PathSegment port;
    };

    bool readEnd(const QString& path, int item, const QString& where, End& end);
    const Positions& portsByName(int node, bool isOutput);
    int findPort(const End& end, bool isOutput, int item, const QString& where);
    void reportPort(const End& end, bool isOutput, bool isAmbiguous, int item,
                    const QString& where);
    void reportRefused(int edge, EdgeCheck::Verdict verdict, const EdgeCheck& check,
                       const Paths& paths);
    QString startOf(int item) const;

    DocumentSyntax& syntax;
    NodeIndex& nodes;
    Snapshot& snapshot;
    QVector<EdgeRecord> edges;
    Table<int> items;                                 // by edge
    QHash<QPair<int, bool>, Positions> portPositions; // by node and side, once asked for
    QSet<QString> reportedPorts;
};

} // namespace Inspect
} // namespace Orv
} // namespace Kestrin

#endif
