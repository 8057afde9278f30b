// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#include "GraphReport.h"

#include "GalleryGraph.h"
#include "Options.h"
#include "ValueTypes.h"

#include <Kestrin/Orv/Graphviz.h>
#include <Kestrin/Orv/Inspect/Paths.h>
#include <Kestrin/Orv/Inspect/Picture.h>
#include <Kestrin/Orv/Inspect/Report.h>
#include <Kestrin/Orv/Inspect/Trace.h>

#include <QtCore/QFileInfo>
#include <QtCore/QProcess>
#include <QtCore/QRegularExpression>
#include <QtCore/QSaveFile>

namespace Gallery {

namespace {

QStringList* recorded = nullptr; // the message handler appends messages here

void record(QtMsgType, const QMessageLogContext&, const QString& text)
{
    static const QRegularExpression prefix(QStringLiteral("^\\[[^\\]]*:[0-9]+\\] "));
    recorded->append(QString(text).remove(prefix));
}

bool writeFile(const QString& file, const QByteArray& content, QString& error)
{
    QSaveFile out(file);
    if (out.open(QIODevice::WriteOnly) && out.write(content) == content.size() && out.commit())
        return true;
    error = QStringLiteral("cannot write %1: %2").arg(file, out.errorString());
    return false;
}

/// The picture as Graphviz draws it; empty if Graphviz is not installed.
QByteArray draw(const QByteArray& picture)
{
    const int limitMs = 20000;
    QProcess dot;
    dot.start(QStringLiteral("dot"), {QStringLiteral("-Tsvg")});
    dot.write(picture);
    dot.closeWriteChannel();
    if (dot.waitForFinished(limitMs) && dot.exitStatus() == QProcess::NormalExit
        && dot.exitCode() == 0)
        return dot.readAllStandardOutput();
    dot.kill();
    dot.waitForFinished();
    return {};
}

} // namespace

QStringList messagesOf(const std::function<void()>& action)
{
    QStringList messages;
    recorded = &messages;
    const QtMessageHandler previous = qInstallMessageHandler(&record);
    action();
    qInstallMessageHandler(previous);
    recorded = nullptr;
    return messages;
}

QStringList executionList(GalleryGraph& gallery)
{
    const Inspect::Snapshot snapshot = gallery.snapshot();
    const Inspect::Paths paths(snapshot);
    QStringList lines;
    const QVector<int> order = gallery.executionOrder();
    for (const int pass : order)
        lines.append(QStringLiteral("%1 ").arg(lines.size() + 1, 2) + paths.node(pass));
    return lines;
}

bool writeGraphviz(GalleryGraph& gallery, const QString& file, QString& error)
{
    const QStringList lines =
        messagesOf([&gallery] { Kestrin::Orv::dumpAsGraphviz(gallery.renderer().getGraph()); });
    return writeFile(file, lines.join(QLatin1Char('\n')).toUtf8() + '\n', error);
}

bool writeGraph(const Inspect::Snapshot& snapshot, const QString& file, QString& error)
{
    return writeFile(file, Inspect::writeDocument(snapshot, nullptr, valueTypes()), error);
}

bool writeRecords(const Options& options, const Inspect::Snapshot& snapshot,
                  const Inspect::Trace& trace, const QVector<int>& failed, QString& error)
{
    if (!options.traceFile.isEmpty() && !writeFile(options.traceFile, trace.toTraceEvents(), error))
        return false;
    if (options.reportFile.isEmpty())
        return true;
    Inspect::ReportContent report;
    report.title = QFileInfo(options.model).completeBaseName();
    report.snapshot = &snapshot;
    report.trace = &trace;
    report.picture = draw(Inspect::toGraphviz(snapshot, failed));
    report.failed = failed;
    return writeFile(options.reportFile, Inspect::toHtml(report), error);
}

} // namespace Gallery
