// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#include "FrameLoop.h"

#include "GalleryGraph.h"
#include "GraphReport.h"
#include "ReadPixels.h"

#include <Kestrin/Orv/Graph.h>
#include <Kestrin/Orv/Inspect/Trace.h>

#include <QtCore/QDir>
#include <QtCore/QElapsedTimer>
#include <QtCore/QSaveFile>
#include <QtGui/QImage>
#include <QtGui/QImageWriter>

#include <algorithm>
#include <cstdio>
#include <limits>

#include <unistd.h>

namespace Gallery {

namespace {

const int upInLastFrame = 2; // graph processing mode: every pass runs in every frame
const double firstAngle = 215;

QString megabytes(qint64 bytes)
{
    return QStringLiteral("%1 MiB").arg(double(bytes) / (1 << 20), 0, 'f', 1);
}

} // namespace

FrameTimes::FrameTimes(QTextStream& out_)
    : out(out_)
{
}

void FrameTimes::flush()
{
    print();
    clear();
}

void FrameTimes::print()
{
    const QStringList lines = messagesOf([this] { dump(); });
    for (const QString& line : lines)
        out << line << '\n';
}

FrameLoop::FrameLoop(const Options& options_, GalleryGraph& graph_, const Scene& scene,
                     QTextStream& out_, Inspect::Trace* trace_)
    : options(options_)
    , graph(graph_)
    , out(out_)
    , trace(trace_)
    , angle(graph.renderer().findParameter(QStringLiteral("Angle")))
    , staggered(graph.renderer().findParameter(QStringLiteral("Orv_bool_staggeredFirstFrame")))
    , debug(graph.renderer().findOutput(QStringLiteral("Debug")))
    , picture(graph.renderer().findOutput(QStringLiteral("Picture")))
    , callbacks(scene, options_.size, options_.reuseTextures)
    , times(out_)
{
}

bool FrameLoop::run(QString& error)
{
    if (picture < 0) {
        error = QStringLiteral("the graph has no output \"Picture\"");
        return false;
    }
    if (options.staggered && staggered < 0) {
        error = QStringLiteral("the graph has no parameter \"Orv_bool_staggeredFirstFrame\"");
        return false;
    }
    if (options.staggered)
        graph.disableIdlePasses();
    graph.renderer().setup(&callbacks);
    const bool done = renderFrames(error);
    graph.renderer().teardown(&callbacks);
    if (done)
        report();
    return done;
}

bool FrameLoop::renderFrames(QString& error)
{
    bool done = !options.staggered || bringUp(error);
    for (int frame = options.firstFrame; done && frame <= options.lastFrame; ++frame) {
        showProgress(frame);
        done = renderFrame(frame, error) && write(picture, "frame", frame, error)
            && write(debug, "debug", frame, error);
        endFrame();
    }
    clearProgress();
    return done;
}

/// Repeats the first frame, without writing it, until every pass has been started.
bool FrameLoop::bringUp(QString& error)
{
    graph.renderer().setParameter(staggered, true);
    const int numPasses = graph.executionOrder().size();
    int frames = 0;
    do {
        if (!renderFrame(options.firstFrame, error))
            return false;
        endFrame();
        ++frames;
    } while (graph.renderer().getGraphProcessingMode() != upInLastFrame && frames < numPasses);
    out << callbacks.started.size() << " passes came up in " << frames << " frames\n";
    return true;
}

bool FrameLoop::renderFrame(int frame, QString& error)
{
    const double degrees = firstAngle + 360.0 * (frame % options.turn) / options.turn;
    graph.renderer().setParameter(angle, float(degrees));
    callbacks.started.clear();

    QElapsedTimer timer;
    timer.start();
    if (!renderTraced()) {
        error = callbacks.failure;
        return false;
    }
    const qint64 us = timer.nsecsElapsed() / 1000;
    times.addFrameTimeUS(
        static_cast<unsigned>(std::min<qint64>(us, std::numeric_limits<unsigned>::max())));

    if (options.verbose)
        out << "frame " << frame << ": " << callbacks.started.size() << " of "
            << graph.renderer().getNumPasses()
            << " passes started: " << callbacks.started.join(QLatin1Char(' ')) << '\n';
    return true;
}

bool FrameLoop::renderTraced()
{
    if (trace)
        trace->beginFrame();
    const bool done = graph.renderer().render(&callbacks);
    if (trace)
        trace->endFrame();
    return done;
}

bool FrameLoop::write(int output, const char* prefix, int frame, QString& error)
{
    const auto texture = graph.renderer().output(output).value<Texture>();
    if (!texture.name) {
        if (output == debug) // is not made; only the picture matters
            return true;
        error = QStringLiteral("no pass left to make the picture");
        return false;
    }
    QImage image(texture.width, texture.height, QImage::Format_RGBA8888);
    if (image.isNull()) {
        error = QStringLiteral("no memory for the picture");
        return false;
    }
    const bool isPicture = readPixels(texture, GL_UNSIGNED_BYTE, image.bits());
    callbacks.textures.release(texture);
    if (!isPicture) {
        error = QStringLiteral("what arrives at the output \"%1\" cannot be written as a picture")
                    .arg(graph.renderer().getGraph()->outputName(Kestrin::Orv::Graph::kRootNodeRef,
                                                                 output));
        return false;
    }

    const QString path = QDir(options.outDirectory)
                             .filePath(QStringLiteral("%1-%2.png")
                                           .arg(QLatin1String(prefix))
                                           .arg(frame, 4, 10, QLatin1Char('0')));
    // A picture with this name is always complete, even if the program ends early.
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly)) {
        error = QStringLiteral("cannot write %1: %2").arg(path, file.errorString());
        return false;
    }
    QImageWriter writer(&file, "png");
    if (!writer.write(image.convertToFormat(QImage::Format_RGB888)) || !file.commit()) {
        error = QStringLiteral("cannot write %1: %2")
                    .arg(path,
                         file.error() != QFileDevice::NoError ? file.errorString()
                                                              : writer.errorString());
        return false;
    }
    return true;
}

void FrameLoop::endFrame()
{
    texturesHeld = callbacks.textures.recycle();
    out.flush();
}

/// Only on a terminal, and only if there is something to wait for.
bool FrameLoop::hasProgress() const
{
    return options.lastFrame > options.firstFrame && isatty(STDERR_FILENO);
}

void FrameLoop::showProgress(int frame) const
{
    if (hasProgress())
        std::fprintf(stderr, "\rframe %d, %d to go \x1b[K", frame, options.lastFrame - frame);
}

void FrameLoop::clearProgress() const
{
    if (hasProgress())
        std::fputs("\r\x1b[K", stderr);
}

void FrameLoop::report()
{
    const TexturePool& pool = callbacks.textures;
    out << "textures: " << megabytes(pool.bytes()) << " in " << pool.numTextures()
        << (options.reuseTextures ? " with" : " without") << " the pool";
    if (options.reuseTextures)
        out << ", " << megabytes(pool.requestedBytes()) << " in " << pool.numRequests()
            << " without";
    out << '\n';
    if (options.verbose)
        out << "textures that not all readers released: " << texturesHeld << '\n';
    if (options.times)
        times.print();
}

} // namespace Gallery
