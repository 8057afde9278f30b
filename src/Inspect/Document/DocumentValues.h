// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#ifndef KESTRIN_ORV_INSPECT_DOCUMENTVALUES_H
#define KESTRIN_ORV_INSPECT_DOCUMENTVALUES_H

#include <Kestrin/Orv/Inspect/ValueTypes.h>

#include <QtCore/QJsonObject>

namespace Kestrin {
namespace Orv {
namespace Inspect {

/// Lists within lists: written and read no deeper than this.
const int kMaxValueDepth = 64;

/// Puts "type" and "value" into an object as a document has them; nothing for an invalid value.
/// \return false, and leaves the object as it was, if the value has no written form.
bool writeValue(const QVariant& value, const ValueTypes& types, QJsonObject& object);

/// Whether values of this type are lists or maps of values.
bool isValueList(const QString& type);
bool isValueMap(const QString& type);

/// The value of a type, other than a list or map of values, as a document has it.
/// \return false if that is none of the type.
bool readValue(const QString& type, const QJsonValue& json, const ValueTypes& types,
               QVariant& value);

} // namespace Inspect
} // namespace Orv
} // namespace Kestrin

#endif
