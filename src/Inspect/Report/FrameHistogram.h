// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#ifndef KESTRIN_ORV_INSPECT_FRAMEHISTOGRAM_H
#define KESTRIN_ORV_INSPECT_FRAMEHISTOGRAM_H

#include <Kestrin/Orv/Inspect/Trace.h>

#include <QtCore/QByteArray>
#include <QtCore/QVector>

namespace Kestrin {
namespace Orv {
namespace Inspect {

/// How many frames took how long: a chart with the median and the 99th percentile, and the same as
/// a table, as markup.
/// \param sorted the times of the frames in nanoseconds, ascending; at least one.
QByteArray frameHistogram(const QVector<qint64>& sorted, const TraceSummary& summary);

} // namespace Inspect
} // namespace Orv
} // namespace Kestrin

#endif
