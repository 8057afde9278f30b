// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#ifndef GALLERY_FRAMELOOP_H
#define GALLERY_FRAMELOOP_H

#include "Options.h"
#include "RenderCallbacks.h"

#include <Kestrin/Orv/HistogramFrameTimes.h>

#include <QtCore/QTextStream>

namespace Kestrin {
namespace Orv {
namespace Inspect {
class Trace;
} // namespace Inspect
} // namespace Orv
} // namespace Kestrin

namespace Gallery {

class GalleryGraph;

namespace Inspect = Kestrin::Orv::Inspect;

/// Frame times that are written every minute instead of being dropped.
class FrameTimes : public Kestrin::Orv::HistogramFrameTimes
{
public:
    explicit FrameTimes(QTextStream& out);
    void flush() override;
    /// Writes the frames that were counted since the last flush().
    void print();

private:
    QTextStream& out;
};

/// Renders the frames that the options name, and writes their pictures.
class FrameLoop
{
public:
    /// \param out receives the reports.
    /// \param trace records the frames, if it is not null.
    FrameLoop(const Options& options, GalleryGraph& graph, const Scene& scene, QTextStream& out,
              Inspect::Trace* trace);

    /// \return false, with the reason on one line in \p error, when a pass fails or a picture
    /// cannot be written. The frames before are complete.
    bool run(QString& error);

private:
    bool renderFrames(QString& error);
    bool bringUp(QString& error);
    bool renderFrame(int frame, QString& error);
    bool renderTraced();
    bool write(int output, const char* prefix, int frame, QString& error);
    void endFrame();
    bool hasProgress() const;
    void showProgress(int frame) const;
    void clearProgress() const;
    void report();

    const Options& options;
    GalleryGraph& graph;
    QTextStream& out;
    Inspect::Trace* trace;
    // Of the renderer; -1 for one that its graph does not have.
    int angle;
    int staggered;
    int debug;
    int picture;
    Kestrin::Orv::RenderCallbacks callbacks;
    FrameTimes times;
    int texturesHeld = 0; // by readers that did not release them, in the last frame
};

} // namespace Gallery

#endif
