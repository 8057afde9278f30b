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
    QString title;
    const Snapshot* snapshot = nullptr; ///< must be set
    const Trace* trace = nullptr;       ///< frame times and timeline; none without it
    QByteArray picture; ///< the picture as SVG, as Graphviz draws it; without it, its text is shown
    QVector<int> failed; ///< the nodes whose passes have failed
};

/// A report on a graph and its frames as one HTML file, UTF-8, which needs nothing from elsewhere.
/// Linear in what the snapshot and the trace hold.
ORV_INSPECT_EXPORT QByteArray toHtml(const ReportContent& content);

} // namespace Inspect
} // namespace Orv
} // namespace Kestrin

#endif
