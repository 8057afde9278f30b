// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#ifndef KESTRIN_ORV_INSPECT_DOCUMENTVALUES_H
#define KESTRIN_ORV_INSPECT_DOCUMENTVALUES_H

#include <Kestrin/Orv/Inspect/ValueTypes.h>

#include <QtCore/QJsonObject>

namespace Kestrin {
namespace Orv {
namespace Inspect {

/// How deep lists and maps of values may be nested.
const int kMaxValueDepth = 64;

/// Adds the keys "type" and "value" of a value to an object; none for an invalid value.
/// \return false, and leaves the object as it was, if the value has no written form.
bool writeValue(const QVariant& value, const ValueTypes& types, QJsonObject& object);

/// Whether values of this type are lists of values: written as lists of objects with values.
bool isValueList(const QString& type);
/// Whether values of this type are maps of values: written as objects of such objects.
bool isValueMap(const QString& type);

/// Reads a value of a type that is not a list or map of values.
/// \return false if the JSON is not a value of the type.
bool readValue(const QString& type, const QJsonValue& json, const ValueTypes& types,
               QVariant& value);

} // namespace Inspect
} // namespace Orv
} // namespace Kestrin

#endif
