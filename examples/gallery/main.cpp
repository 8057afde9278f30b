// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#include "FrameLoop.h"
#include "GalleryGraph.h"
#include "GlContext.h"
#include "GraphReport.h"
#include "Model.h"
#include "Options.h"
#include "Scene.h"

#include <Kestrin/Orv/Core.h>
#include <Kestrin/Orv/RenderPass.h>

#include <QtCore/QCoreApplication>
#include <QtCore/QDir>
#include <QtCore/QFileInfo>
#include <QtCore/QTextStream>

#include <cstdio>
#include <utility>

namespace Gallery {

namespace {

bool findPass(GalleryGraph& graph, const QString& name, int& node, QString& error)
{
    node = graph.findPass(name);
    if (node >= 0)
        return true;
    error = QStringLiteral("no pass is called \"%1\"; see --list").arg(name);
    return false;
}

bool choosePasses(const Options& options, GalleryGraph& graph, QString& error)
{
    int node = 0;
    if (!options.target.isEmpty()) {
        if (!findPass(graph, options.target, node, error))
            return false;
        graph.renderer().setTarget(node);
    }
    for (const QString& name : options.disabled) {
        if (!findPass(graph, name, node, error))
            return false;
        graph.renderer().setEnabled(node, false);
    }
    graph.disableIdlePasses();
    return true;
}

bool makeFolder(const QString& path, QString& error)
{
    if (QDir().mkpath(path) && QFileInfo(path).isWritable())
        return true;
    error = QStringLiteral("cannot write to the folder %1").arg(path);
    return false;
}

/// The numbers that the target has found.
void printTarget(GalleryGraph& graph, QTextStream& out)
{
    const Kestrin::Orv::RenderPass* pass =
        graph.renderer().renderPass(graph.renderer().getTarget());
    for (int i = 0; pass && i < pass->numOutputs(); ++i) {
        const QVariant value = pass->output(i);
        if (value.canConvert<double>())
            out << pass->outputName(i) << ": " << value.toDouble() << '\n';
    }
}

bool render(const Options& options, GalleryGraph& graph, QTextStream& out, QString& error)
{
    Model model;
    GlContext context;
    if (!makeFolder(options.outDirectory, error) || !model.load(options.model, error)
        || !context.create(error))
        return false;
    const Scene scene(std::move(model));
    FrameLoop loop(options, graph, scene, out);
    if (options.verbose)
        out << "driver: " << context.rendererName() << '\n';
    if (!loop.run(error))
        return false;
    printTarget(graph, out);
    return true;
}

bool run(const Options& options, QTextStream& out, QString& error)
{
    if (!options.message.isEmpty()) {
        out << options.message;
        return true;
    }
    if (!options.resources.isEmpty())
        Kestrin::Orv::setResourcesPath(options.resources);
    GalleryGraph graph;
    if (!choosePasses(options, graph, error))
        return false;
    if (!options.graphFile.isEmpty() && !writeGraphviz(graph, options.graphFile, error))
        return false;
    if (options.list) {
        const QStringList lines = executionList(graph);
        for (const QString& line : lines)
            out << line << '\n';
    }
    if (options.list || !options.graphFile.isEmpty())
        return true;
    return render(options, graph, out, error);
}

} // namespace

} // namespace Gallery

int main(int argc, char* argv[])
{
    // Drivers that are tried and found wanting are no news.
    if (!qEnvironmentVariableIsSet("EGL_LOG_LEVEL"))
        qputenv("EGL_LOG_LEVEL", "fatal");
    const QCoreApplication application(argc, argv);

    Gallery::Options options;
    QString error;
    QTextStream out(stdout);
    bool done =
        options.parse(QCoreApplication::arguments(), error) && Gallery::run(options, out, error);
    out.flush();
    if (done && (out.status() != QTextStream::Ok || std::fflush(stdout) != 0)) {
        error = QStringLiteral("cannot write to standard output");
        done = false;
    }
    if (!done)
        std::fprintf(stderr, "gallery: %s\n", qPrintable(error));
    return done ? 0 : 1;
}
