// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#ifndef KESTRIN_ORV_INSPECT_VALUETEXT_H
#define KESTRIN_ORV_INSPECT_VALUETEXT_H

#include <QtCore/QJsonValue>
#include <QtCore/QString>
#include <QtCore/QVariant>

namespace Kestrin {
namespace Orv {
namespace Inspect {

/// A text of the host's on one line: control characters as in paths.
QString oneLine(const QString& text);

/// JSON without spaces and line breaks.
QString compactJson(const QJsonValue& value);

/// The shortest number that a reader rounds to the same float.
double shortestNumber(float number);

/// A float or double in few digits: 0.9F is "0.9". Not-a-number is "nan".
QString numberText(const QVariant& value);

/// A bool or a number; empty for a value of any other type.
QString scalarText(const QVariant& value);

} // namespace Inspect
} // namespace Orv
} // namespace Kestrin

#endif
