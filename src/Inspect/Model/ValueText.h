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

/// A text that the host wrote, on one line: control characters are escaped as in paths.
QString oneLine(const QString& text);

/// A text in quotes, on one line.
QString quoted(const QString& text);

/// JSON without spaces and line breaks.
QString compactJson(const QJsonValue& value);

/// The number with the fewest digits that rounds to the same float.
double shortestNumber(float number);

/// A float or double in the fewest digits that are read as the same number: 0.9F is "0.9".
/// Not-a-number is "nan".
QString numberText(const QVariant& value);

/// A bool or a number; empty for a value of any other type.
QString scalarText(const QVariant& value);

} // namespace Inspect
} // namespace Orv
} // namespace Kestrin

#endif
