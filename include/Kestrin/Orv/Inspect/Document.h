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

/// A place in a document; line and column count from 1, columns in characters. 0 for no place.
struct Place
{
    int line = 0;   ///< from 1
    int column = 0; ///< from 1
};

/// Something wrong with a document.
struct Problem
{
    QString code; ///< stable and documented, such as "unknown-port"
    QString text; ///< for people, one line
    Place place;  ///< where in the document; none if it is not about one place
};

/// Where the parts of a snapshot stand in the document that it was read from.
struct Places
{
    QVector<Place> nodes;           ///< by node ref; the root's is that of the document
    QVector<QVector<Place>> inputs; ///< by node ref and index; the root's are the parameters
    QVector<QVector<Place>>
        outputs;          ///< by node ref and index; the root's are the renderer's outputs
    QVector<Place> edges; ///< by edge ref
    Place target;         ///< of the target; none if there is no target
};

/// Writes a snapshot as a document: JSON, the same bytes for the same snapshot everywhere. Removed
/// nodes and edges are left out.
/// \param losses told what a document cannot hold, if not null: values without a written form,
/// edges between unrelated groups, nodes that are not listed by their parent, passes that several
/// nodes share.
/// Linear in what the snapshot holds.
ORV_INSPECT_EXPORT QByteArray writeDocument(const Snapshot& snapshot,
                                            QVector<Problem>* losses = nullptr,
                                            const ValueTypes& types = ValueTypes());

/// What came of reading a document.
struct ReadResult
{
    Snapshot snapshot;         ///< only the root when there are problems
    Places places;             ///< where the parts of the snapshot stand in the document
    QVector<Problem> problems; ///< in the order of their places; empty if all is well
};

/// Reads a document. Everything wrong is reported at once, in the order of the text and without
/// repetition: what follows from a problem reported already is not a problem of its own. Whatever
/// the bytes are, the answer is a sound snapshot or at least one problem.
///
/// Edges must be such that a graph accepts them in the order of the document; one that it would
/// refuse is reported with the rule that refuses it. Linear in the size of the document; where
/// passes are wired in a cycle, the connections within the cycle are tried one by one.
ORV_INSPECT_EXPORT ReadResult readDocument(const QByteArray& json,
                                           const ValueTypes& types = ValueTypes());

} // namespace Inspect
} // namespace Orv
} // namespace Kestrin

#endif
