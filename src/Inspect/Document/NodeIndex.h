// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#ifndef KESTRIN_ORV_INSPECT_NODEINDEX_H
#define KESTRIN_ORV_INSPECT_NODEINDEX_H

#include "Document/DocumentSyntax.h"
#include "Model/PathSegment.h"
#include "Model/PortNumbers.h"

#include <Kestrin/Orv/Inspect/Snapshot.h>

#include <QtCore/QHash>
#include <QtCore/QPair>
#include <QtCore/QSet>

namespace Kestrin {
namespace Orv {
namespace Inspect {

/// Finds the nodes of a document by their paths, while the document is being read. Reports invalid
/// paths, and paths that lead to no node.
///
/// Every problem is reported once, at the first item that has it. What may follow from a problem
/// that has been reported is not reported.
class NodeIndex
{
public:
    /// What is known about the entry of a node.
    struct Entry
    {
        int pathItem = 0;                      ///< the item of its path
        int ordinal = PathSegment::kNoOrdinal; ///< the number at the end of its path
        bool hasAllInputs = true;              ///< whether all its inputs could be read
        bool hasAllOutputs = true;             ///< likewise
    };

    /// \param nodes has the root, and gets every node that is added here. Outlives this.
    NodeIndex(DocumentSyntax& documentSyntax, const Snapshot& nodes)
        : syntax(documentSyntax)
        , snapshot(nodes)
        , entries(1)
    {
    }

    /// Reads the path of a new entry, and sets the name and the parent of its node.
    /// \return false, and reports a problem, if there can be no such node.
    bool readPath(int item, NodeRecord& node, Entry& entry);
    /// Adds the node of an entry whose path has been read. Its ref is the next one.
    void add(const NodeRecord& node, const Entry& entry);
    /// Notes that the path of an entry could not be read. Any missing node may be that one, so no
    /// missing node is reported from now on.
    void setIncomplete() { complete = false; }
    /// Reports numbers in paths that do not follow the order of the entries.
    void checkOrdinals();

    /// The node that an edge or the target names; negative if there is none.
    /// \param where the start of the problem's text
    int find(const QString& path, int item, const QString& where);

    Entry& entry(int ref) { return at(entries, ref); }
    const Entry& entry(int ref) const { return at(entries, ref); }

private:
    static constexpr int kNone = -1;
    static constexpr int kSeveral = -2;

    int resolve(const QString& path) const;
    int findParent(const QString& path, const QString& parentPath, int item);
    void reportRepetition(int item, const QString& path, int first);

    DocumentSyntax& syntax;
    const Snapshot& snapshot;
    Table<Entry> entries;                                 // by node
    QHash<QString, int> nodesByPath;                      // by path as the entry has it
    QHash<QPair<int, QString>, QVector<int>> nodesByName; // by parent and name, in their order
    QSet<QString> missing;                                // paths that have been reported
    QSet<QString> repeated;                               // paths that several entries have
    bool complete = true;                                 // every entry has a path
};

} // namespace Inspect
} // namespace Orv
} // namespace Kestrin

#endif
