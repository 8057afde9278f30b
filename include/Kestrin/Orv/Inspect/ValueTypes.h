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

} // namespace Inspect
} // namespace Orv
} // namespace Kestrin

#endif
