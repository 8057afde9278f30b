// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#ifndef KESTRIN_ORV_INSPECT_VALUETYPES_H
#define KESTRIN_ORV_INSPECT_VALUETYPES_H

#include <Kestrin/Orv/Inspect/Export.h>
#include <Kestrin/Orv/Inspect/ForeignValue.h>

#include <QtCore/QHash>
#include <QtCore/QJsonValue>
#include <QtCore/QPair>
#include <QtCore/QString>
#include <QtCore/QVariant>

#include <functional>

namespace Kestrin {
namespace Orv {
namespace Inspect {

/// Converters between JSON and values of types that JSON does not have.
///
/// These types need no converter: bool, int, uint, qlonglong, qulonglong, float, double, QString,
/// QStringList, QByteArray, QVariantList and QVariantMap. A value of another type is written with
/// the converter that the host has added here. Without a converter, it is written as the bytes of
/// QDataStream. Without stream operators, it is lost, and writeDocument() reports the loss. A
/// reader that does not know a type keeps the value as the document has it (see ForeignValue) and
/// writes it unchanged.
class ORV_INSPECT_EXPORT ValueTypes
{
public:
    /// Turns a value of a type into JSON.
    using ToJson = std::function<QJsonValue(const QVariant&)>;
    /// Turns JSON into a value. Returns an invalid value for JSON that it cannot read.
    using FromJson = std::function<QVariant(const QJsonValue&)>;

    /// Adds the converters of a type.
    /// \param type the type's name, as QVariant::typeName() returns it.
    void add(const QString& type, const ToJson& toJson, const FromJson& fromJson);
    /// The converter of a type to JSON; null if the type was not added.
    ToJson toJson(const QString& type) const;
    /// The converter of a type from JSON; null if the type was not added.
    FromJson fromJson(const QString& type) const;

private:
    QHash<QString, QPair<ToJson, FromJson>> converters;
};

} // namespace Inspect
} // namespace Orv
} // namespace Kestrin

#endif
