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

/// What a report shows.
struct ReportContent
{
    QString title;                      ///< "Render graph" if empty
    const Snapshot* snapshot = nullptr; ///< null stands for one of an empty renderer
    const Trace* trace = nullptr;       ///< frame times and timeline; none without it
    /// The picture as SVG, as Graphviz draws it. It need not be trusted: only its shapes and texts
    /// are taken over. Where there is none, or what is no SVG, the picture's text is shown.
    QByteArray picture;
    QVector<int> failed; ///< the nodes whose passes have failed
};

/// A report on a graph and its frames as one HTML file, UTF-8, which loads nothing and runs
/// nothing: the picture, each pass with its state, the reason and its times, a histogram of frame
/// times and the timelines of the median and of the longest frame. Passes are matched with those of
/// the trace by their paths, see Trace::namePasses(). The same bytes for the same content. Takes
/// the time of sorting the frame times, and otherwise linear in what the snapshot and the trace
/// hold and in the length of the paths.
ORV_INSPECT_EXPORT QByteArray toHtml(const ReportContent& content);

} // namespace Inspect
} // namespace Orv
} // namespace Kestrin

#endif
