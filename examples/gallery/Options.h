// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#ifndef GALLERY_OPTIONS_H
#define GALLERY_OPTIONS_H

#include <QtCore/QSize>
#include <QtCore/QString>
#include <QtCore/QStringList>

namespace Gallery {

/// The options of the command line.
struct Options
{
    QString model;
    QSize size{960, 720};
    int firstFrame = 0;
    int lastFrame = 0;
    int turn = 120; ///< frames in a full turn of the camera
    QString outDirectory;
    QStringList disabled;
    QString target;
    QString resources;
    QString graphFile;      ///< the document to build the graph of
    QString savedGraphFile; ///< the document to write
    QString traceFile;
    QString reportFile;
    QString graphvizFile;
    bool staggered = false;
    bool list = false;
    bool times = false;
    bool verbose = false;
    bool reuseTextures = true;

    /// The text to print instead of rendering, for --help and --version.
    QString message;

    /// Whether to record the passes.
    bool isTraced() const { return !traceFile.isEmpty() || !reportFile.isEmpty(); }

    /// \return false, with the reason on one line in \p error, when the command line is wrong.
    bool parse(const QStringList& arguments, QString& error);
};

} // namespace Gallery

#endif
