// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#ifndef KESTRIN_ORV_INSPECT_REPORTNUMBERS_H
#define KESTRIN_ORV_INSPECT_REPORTNUMBERS_H

#include <QtCore/QByteArray>

namespace Kestrin {
namespace Orv {
namespace Inspect {

/// A coordinate or another number of SVG and CSS, with three decimals.
QByteArray number(double value);
QByteArray count(qint64 value);
/// A part of a whole, 1, as a length of SVG and CSS.
QByteArray percent(double part);

/// Nanoseconds as a time with three digits, in the unit that suits it.
QByteArray timeText(double ns);
inline QByteArray timeText(qint64 ns)
{
    return timeText(static_cast<double>(ns));
}
/// Nanoseconds as the label of a tick: few digits, as ticks stand at round times.
QByteArray tickText(double ns);

/// The smallest number that is 1, 2 or 5 times a power of ten and not below `value`.
double roundedUp(double value);

} // namespace Inspect
} // namespace Orv
} // namespace Kestrin

#endif
