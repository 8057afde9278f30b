// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#ifndef GALLERY_GRAPHREPORT_H
#define GALLERY_GRAPHREPORT_H

#include <QtCore/QString>
#include <QtCore/QStringList>

#include <functional>

namespace Gallery {

class GalleryGraph;

/// The messages that Qt's logger receives while `action` runs, without the library's
/// "[file:line] " prefixes.
QStringList messagesOf(const std::function<void()>& action);

/// One line per pass in the order of execution: number, groups and name.
QStringList executionList(GalleryGraph& graph);

/// Writes the graph's top level as a Graphviz file.
/// \return false, with the reason in \p error, when the file cannot be written.
bool writeGraphviz(GalleryGraph& graph, const QString& file, QString& error);

} // namespace Gallery

#endif
