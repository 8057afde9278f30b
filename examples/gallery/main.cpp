// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#include "FrameLoop.h"
#include "GalleryGraph.h"
#include "GlContext.h"
#include "GraphReport.h"
#include "Model.h"
#include "Options.h"
#include "Scene.h"
#include "ValueTypes.h"

#include <Kestrin/Orv/Core.h>
#include <Kestrin/Orv/Graph.h>
#include <Kestrin/Orv/Inspect/Trace.h>
#include <Kestrin/Orv/RenderPass.h>

#include <QtCore/QCoreApplication>
#include <QtCore/QDir>
#include <QtCore/QFile>
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
    return true;
}

/// Builds the graph of a document, or prints all its problems, one line each, in the form of
/// compiler messages.
bool readGraph(const QString& path, GalleryGraph& graph, QString& error)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        error = QStringLiteral("cannot read %1: %2").arg(path, file.errorString());
        return false;
    }
    const Inspect::ReadResult document = Inspect::readDocument(file.readAll(), valueTypes());
    QVector<Inspect::Problem> problems = document.problems;
    if (problems.isEmpty())
        problems = graph.build(document);
    if (problems.isEmpty())
        return true;
    for (const Inspect::Problem& problem : qAsConst(problems)) {
        const QByteArray line = path.toUtf8() + ':' + QByteArray::number(problem.place.line) + ':'
            + QByteArray::number(problem.place.column) + ": " + problem.code.toUtf8() + ": "
            + problem.text.toUtf8() + '\n';
        std::fputs(line.constData(), stderr);
    }
    error = QStringLiteral("no graph in %1: %2 problem%3")
                .arg(path, QString::number(problems.size()),
                     QString::fromLatin1(problems.size() == 1 ? "" : "s"));
    return false;
}

bool makeFolder(const QString& path, QString& error)
{
    if (QDir().mkpath(path) && QFileInfo(path).isWritable())
        return true;
    error = QStringLiteral("cannot write to the folder %1").arg(path);
    return false;
}

/// The numbers that the target has measured.
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

QVector<int> failedPasses(GalleryGraph& graph)
{
    QVector<int> failed;
    for (int node = 0; node < graph.renderer().getGraph()->numNodesGlobal(); ++node) {
        const Kestrin::Orv::RenderPass* pass = graph.renderer().renderPass(node);
        if (pass && pass->errorCode() != 0)
            failed.append(node);
    }
    return failed;
}

bool render(const Options& options, GalleryGraph& graph, Inspect::Trace* trace, QTextStream& out,
            QString& error)
{
    Model model;
    GlContext context;
    if (!model.load(options.model, error) || !context.create(error))
        return false;
    const Scene scene(std::move(model));
    FrameLoop loop(options, graph, scene, out, trace);
    if (options.verbose)
        out << "driver: " << context.rendererName() << '\n';
    const Inspect::Snapshot snapshot = graph.snapshot();
    const bool done = loop.run(error);
    if (done)
        printTarget(graph, out);
    // Write the report even after a failure.
    QString recordError;
    if (trace && !writeRecords(options, snapshot, *trace, failedPasses(graph), recordError)) {
        if (done)
            error = recordError;
        return false;
    }
    return done;
}

bool run(Options options, QTextStream& out, QString& error)
{
    if (!options.message.isEmpty()) {
        out << options.message;
        return true;
    }
    if (!options.resources.isEmpty())
        Kestrin::Orv::setResourcesPath(options.resources);
    Inspect::Trace recorded;
    Inspect::Trace* const trace = options.isTraced() ? &recorded : nullptr;
    GalleryGraph graph(trace);
    if (options.graphFile.isEmpty())
        graph.build();
    else if (!readGraph(options.graphFile, graph, error))
        return false;
    if (!choosePasses(options, graph, error))
        return false;
    const bool isRendered = !options.list && options.graphvizFile.isEmpty();
    if (isRendered && !makeFolder(options.outDirectory, error)) // other files may go there, too
        return false;
    if (!options.savedGraphFile.isEmpty()
        && !writeGraph(graph.snapshot(), options.savedGraphFile, error))
        return false;
    if (!options.graphvizFile.isEmpty() && !writeGraphviz(graph, options.graphvizFile, error))
        return false;
    if (options.list) {
        const QStringList lines = executionList(graph);
        for (const QString& line : lines)
            out << line << '\n';
    }
    if (!isRendered)
        return true;

    const QString uncounted = graph.uncountedReader();
    if (!uncounted.isEmpty()) {
        out << "every output gets a texture of its own: " << uncounted << '\n';
        options.reuseTextures = false;
    }
    return render(options, graph, trace, out, error);
}

} // namespace

} // namespace Gallery

int main(int argc, char* argv[])
{
    // Do not report drivers that were tried and failed.
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
