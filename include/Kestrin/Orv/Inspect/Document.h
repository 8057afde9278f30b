// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#ifndef KESTRIN_ORV_INSPECT_DOCUMENT_H
#define KESTRIN_ORV_INSPECT_DOCUMENT_H

#include <Kestrin/Orv/Inspect/Export.h>
#include <Kestrin/Orv/Inspect/Snapshot.h>

#include <QtCore/QByteArray>
#include <QtCore/QHash>
#include <QtCore/QJsonValue>
#include <QtCore/QPair>

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

/// How values of types that JSON does not know are written and read.
///
/// Known from the start: bool, int, uint, qlonglong, qulonglong, float, double, QString,
/// QStringList, QByteArray, QVariantList and QVariantMap. A value of another type is written
/// through what the host has added here; failing that as the bytes of QDataStream; failing that it
/// is lost, which writeDocument() tells. A reader that does not know a type keeps the value as it
/// stands in the document (see ForeignValue) and writes it as it was.
class ORV_INSPECT_EXPORT ValueTypes
{
public:
    /// Puts a value of a type into JSON.
    using ToJson = std::function<QJsonValue(const QVariant&)>;
    /// Answers an invalid value for JSON that it cannot read.
    using FromJson = std::function<QVariant(const QJsonValue&)>;

    /// \param type the type's name, as QVariant::typeName() answers it.
    void add(const QString& type, const ToJson& toJson, const FromJson& fromJson);
    /// The converters of a type; null ones if it was not added.
    ToJson toJson(const QString& type) const;
    /// As toJson(), the other way.
    FromJson fromJson(const QString& type) const;

private:
    QHash<QString, QPair<ToJson, FromJson>> converters;
};

/// A value of a type that this program does not know, as it stands in the document.
struct ForeignValue
{
    QString type;     ///< the name of its type
    QJsonValue value; ///< what stands for it
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

/// Makes the passes of a renderer that is built from a snapshot.
class ORV_INSPECT_EXPORT PassFactory
{
public:
    /// Makes a pass for a node. Its ports must be those of the node, in number, order and name.
    using Maker = std::function<RenderPass*(const NodeRecord&)>;

    /// Passes of this type are made by \p maker from now on.
    void add(const QString& type, const Maker& maker);
    /// Passes of types that were not added are made by \p maker; without one they are a problem.
    void setFallback(const Maker& maker);
    /// A factory that makes a StandInPass of everything.
    static PassFactory standIns();

    /// The maker for a type; null if there is none.
    Maker maker(const QString& type) const;

private:
    QHash<QString, Maker> makers;
    Maker fallback;
};

/// Builds what a snapshot shows in a renderer that holds nothing but its root: the document, read
/// and built, gives a renderer whose snapshot is written as the same document. Removed nodes and
/// edges are left out, so refs may differ.
/// \return what stands in the way: types that the factory does not know, passes whose ports are not
/// those of the document, a renderer that is not empty, edges that the graph refuses. When it is
/// not empty, the renderer has been left as it was.
///
/// Takes the time of the graph's own calls: Graph::addEdge() tests each edge for cycles.
ORV_INSPECT_EXPORT QVector<Problem> buildRenderer(const Snapshot& snapshot, Renderer& renderer,
                                                  const PassFactory& factory,
                                                  const Places& places = Places());

} // namespace Inspect
} // namespace Orv
} // namespace Kestrin

Q_DECLARE_METATYPE(Kestrin::Orv::Inspect::ForeignValue)

#endif
