// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#ifndef ORV_TESTS_HOST_H
#define ORV_TESTS_HOST_H

#include <Kestrin/Orv/Graph.h>
#include <Kestrin/Orv/Inspect/Snapshot.h>
#include <Kestrin/Orv/RenderPassHelper.h>
#include <Kestrin/Orv/Renderer.h>

#include <QtCore/QStringList>

/// A pass that does nothing but remember whether it has been set up and what its users are.
class IdlePass : public Kestrin::Orv::RenderPassHelper
{
public:
    IdlePass(const QStringList& inputNames, const QStringList& outputNames, const QVariant& value)
    {
        for (const QString& name : inputNames)
            addInput(name, value);
        for (const QString& name : outputNames)
            addOutput(name);
    }
    void setup(Kestrin::Orv::RenderCallbacks*) override { isSetUp = true; }
    int users(int output) const { return outputUsers.at(output); }

    bool isSetUp = false;
};

/// A renderer whose graph is written down in short. Lists of port names are separated by blanks.
struct Host
{
    Kestrin::Orv::Renderer renderer;
    Kestrin::Orv::Graph& graph = *renderer.getGraph();

    static QString text(const char* name) { return QString::fromUtf8(name); }
    static QStringList names(const char* list)
    {
        return *list ? text(list).split(QLatin1Char(' ')) : QStringList();
    }

    int pass(const char* name, const char* inputs, const char* outputs, int parent = 0,
             const QVariant& defaultValue = 0)
    {
        return renderer.addPass(text(name),
                                new IdlePass(names(inputs), names(outputs), defaultValue), parent);
    }
    int group(const char* name, const char* inputs, const char* outputs, int parent = 0)
    {
        const int node = renderer.addGroup(text(name), 0, 0, parent);
        for (const QString& input : names(inputs))
            graph.addInput(node, input, -1);
        for (const QString& output : names(outputs))
            graph.addOutput(node, output, -1);
        return node;
    }
    int parameter(const char* name, const QVariant& value = 0)
    {
        return renderer.addParameter(text(name), value);
    }
    int output(const char* name) { return renderer.addOutput(text(name)); }

    int link(int source, const char* from, int destination, const char* to)
    {
        return graph.addEdgeByName(source, text(from), destination, text(to));
    }
    int down(const char* from, int child, const char* to)
    {
        return graph.addDownEdgeByName(text(from), child, text(to));
    }
    int up(const char* to, int child, const char* from)
    {
        return graph.addUpEdgeByName(text(to), child, text(from));
    }

    IdlePass* idlePass(int node) const { return static_cast<IdlePass*>(renderer.renderPass(node)); }
    Kestrin::Orv::Inspect::Snapshot snapshot()
    {
        return Kestrin::Orv::Inspect::Snapshot::of(renderer);
    }
};

#endif
