// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#include "GraphReport.h"

#include "GalleryGraph.h"

#include <Kestrin/Orv/Graph.h>
#include <Kestrin/Orv/Graphviz.h>

#include <QtCore/QRegularExpression>
#include <QtCore/QSaveFile>

namespace Gallery {

using Kestrin::Orv::Graph;

namespace {

QStringList* recorded = nullptr; // where the message handler puts what it gets

void record(QtMsgType, const QMessageLogContext&, const QString& text)
{
    static const QRegularExpression prefix(QStringLiteral("^\\[[^\\]]*:[0-9]+\\] "));
    recorded->append(QString(text).remove(prefix));
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
    const Graph& graph = *gallery.renderer().getGraph();
    QStringList lines;
    const QVector<int> order = gallery.executionOrder();
    for (const int pass : order) {
        QString path = graph.nodeName(pass);
        for (int group = graph.parentNode(pass); group != Graph::kRootNodeRef;
             group = graph.parentNode(group))
            path.prepend(graph.nodeName(group) + QLatin1Char('/'));
        lines.append(QStringLiteral("%1 %2").arg(lines.size() + 1, 2).arg(path));
    }
    return lines;
}

bool writeGraphviz(GalleryGraph& gallery, const QString& file, QString& error)
{
    const QStringList lines =
        messagesOf([&gallery] { Kestrin::Orv::dumpAsGraphviz(gallery.renderer().getGraph()); });
    const QByteArray text = lines.join(QLatin1Char('\n')).toUtf8() + '\n';
    QSaveFile out(file);
    if (out.open(QIODevice::WriteOnly) && out.write(text) == text.size() && out.commit())
        return true;
    error = QStringLiteral("cannot write %1: %2").arg(file, out.errorString());
    return false;
}

} // namespace Gallery
