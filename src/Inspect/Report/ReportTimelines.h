// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#ifndef KESTRIN_ORV_INSPECT_REPORTTIMELINES_H
#define KESTRIN_ORV_INSPECT_REPORTTIMELINES_H

#include <Kestrin/Orv/Inspect/Trace.h>

#include <QtCore/QByteArray>
#include <QtCore/QVector>

namespace Kestrin {
namespace Orv {
namespace Inspect {

/// The timelines of the median frame and of the longest one, pass by pass, each with the same as a
/// table, as markup.
/// \param frames the frames that were recorded to their end, at least one.
QByteArray timelinesOf(const Trace& trace, const QVector<TraceEvent>& frames);

} // namespace Inspect
} // namespace Orv
} // namespace Kestrin

#endif
