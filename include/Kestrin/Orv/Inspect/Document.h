// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#ifndef KESTRIN_ORV_INSPECT_DOCUMENT_H
#define KESTRIN_ORV_INSPECT_DOCUMENT_H

#include <Kestrin/Orv/Inspect/Export.h>
#include <Kestrin/Orv/Inspect/Snapshot.h>
#include <Kestrin/Orv/Inspect/ValueTypes.h>

#include <QtCore/QByteArray>
#include <QtCore/QVector>

namespace Kestrin {
namespace Orv {
namespace Inspect {

/// A place in a document. Line and column count from 1, columns in characters. 0 for no place.
struct Place
{
    int line = 0;   ///< from 1
    int column = 0; ///< from 1
};

/// An error in a document.
struct Problem
{
    QString code; ///< stable and documented, such as "unknown-port"
    QString text; ///< for people, one line
    Place place;  ///< where in the document; no place if it is not about one
};

/// The places of a snapshot's parts in the document that it was read from.
struct Places
{
    QVector<Place> nodes;           ///< by node ref; for the root, the place of the document
    QVector<QVector<Place>> inputs; ///< by node ref and index; for the root, the parameters
    QVector<QVector<Place>>
        outputs;          ///< by node ref and index; for the root, the renderer's outputs
    QVector<Place> edges; ///< by edge ref
    Place target;         ///< of the target; no place if there is no target
};

/// Writes a snapshot as a document in JSON. The same snapshot gives the same bytes on every system.
/// Leaves out removed nodes and edges.
/// \param losses if not null, gets everything that a document cannot hold: values without a written
/// form, edges between unrelated groups, nodes that are not listed by their parent, passes that
/// several nodes share.
///
/// Linear in the size of the snapshot.
ORV_INSPECT_EXPORT QByteArray writeDocument(const Snapshot& snapshot,
                                            QVector<Problem>* losses = nullptr,
                                            const ValueTypes& types = ValueTypes());

/// The result of reading a document.
struct ReadResult
{
    Snapshot snapshot;         ///< only the root when there are problems
    Places places;             ///< the places of the snapshot's parts in the document
    QVector<Problem> problems; ///< in the order of their places; empty on success
};

/// Reads a document. Reports all problems at once, in the order of the text. Does not report a
/// problem that only follows from another one. Any bytes may be read: the result is a sound
/// snapshot or at least one problem.
///
/// A graph must accept the edges in the order of the document. An edge that a graph would refuse is
/// reported with the rule that refuses it. Linear in the size of the document. If passes form a
/// cycle, the connections within the cycle are tried one by one.
ORV_INSPECT_EXPORT ReadResult readDocument(const QByteArray& json,
                                           const ValueTypes& types = ValueTypes());

} // namespace Inspect
} // namespace Orv
} // namespace Kestrin

#endif
