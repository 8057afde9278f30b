// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#ifndef KESTRIN_ORV_INSPECT_VALUEDIFFERENCE_H
#define KESTRIN_ORV_INSPECT_VALUEDIFFERENCE_H

#include <QtCore/QString>
#include <QtCore/QVariant>

namespace Kestrin {
namespace Orv {
namespace Inspect {

/// Whether two values have the same type and the same bytes. A ForeignValue is compared by its
/// JSON; a type without stream operators by its comparators. Values of a type that has neither are
/// the same.
bool isSameValue(const QVariant& a, const QVariant& b);

/// A value with its type, on one line: "int 3". A type without a text shows the first of its bytes.
QString typedValueText(const QVariant& value);

} // namespace Inspect
} // namespace Orv
} // namespace Kestrin

#endif
