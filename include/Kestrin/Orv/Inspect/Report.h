// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#ifndef KESTRIN_ORV_INSPECT_REPORT_H
#define KESTRIN_ORV_INSPECT_REPORT_H

#include <Kestrin/Orv/Inspect/Export.h>
#include <Kestrin/Orv/Inspect/Snapshot.h>

#include <QtCore/QByteArray>

namespace Kestrin {
namespace Orv {
namespace Inspect {

class Trace;

/// The content of a report.
struct ReportContent
{
    QString title;                      ///< "Render graph" if empty
    const Snapshot* snapshot = nullptr; ///< null stands for an empty renderer
    const Trace* trace = nullptr;       ///< for frame times and timelines; may be null
    /// The picture as SVG, drawn by Graphviz. It need not be trusted: the report takes only its
    /// shapes and texts. If it is empty or not SVG, the report shows the Graphviz text instead.
    QByteArray picture;
    QVector<int> failed; ///< the nodes whose passes have failed
};

/// Writes a report on a graph and its frames as one HTML file in UTF-8. The report shows the
/// picture, each pass with its state, the reason and its times, a histogram of frame times, and the
/// timelines of the median and of the longest frame. The file loads nothing and runs nothing.
///
/// Passes of the snapshot and of the trace are matched by their paths, see Trace::namePasses(). The
/// same content gives the same bytes. Linear in the size of the snapshot and the trace and in the
/// length of the paths, plus the time of sorting the frame times.
ORV_INSPECT_EXPORT QByteArray toHtml(const ReportContent& content);

} // namespace Inspect
} // namespace Orv
} // namespace Kestrin

#endif
