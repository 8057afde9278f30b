// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#ifndef GALLERY_GRAPHREPORT_H
#define GALLERY_GRAPHREPORT_H

#include <QtCore/QString>
#include <QtCore/QStringList>
#include <QtCore/QVector>

#include <functional>

namespace Kestrin {
namespace Orv {
namespace Inspect {
class Snapshot;
class Trace;
} // namespace Inspect
} // namespace Orv
} // namespace Kestrin

namespace Gallery {

class GalleryGraph;
struct Options;

/// The messages that Qt's logger receives while `action` runs, without the library's
/// "[file:line] " prefixes.
QStringList messagesOf(const std::function<void()>& action);

/// One line per pass in the order of execution: number, groups and name.
QStringList executionList(GalleryGraph& gallery);

/// @name Writing files
/// They return false, with the reason in `error`, when the file cannot be written.
/// @{

/// Writes the graph's top level for Graphviz.
bool writeGraphviz(GalleryGraph& gallery, const QString& file, QString& error);
/// Writes the graph as a document.
bool writeGraph(const Kestrin::Orv::Inspect::Snapshot& snapshot, const QString& file,
                QString& error);
/// Writes the recorded data into the files that the options name.
/// \param failed the nodes whose passes have failed
bool writeRecords(const Options& options, const Kestrin::Orv::Inspect::Snapshot& snapshot,
                  const Kestrin::Orv::Inspect::Trace& trace, const QVector<int>& failed,
                  QString& error);

/// @}

} // namespace Gallery

#endif
