// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#ifndef ORV_TESTS_SAMPLERENDERER_H
#define ORV_TESTS_SAMPLERENDERER_H

#include <Kestrin/Orv/Inspect/Snapshot.h>

#include <QtCore/QStringList>

/// Snapshots filled by hand, as sound as a graph's own.
class SnapshotBuilder
{
public:
    Kestrin::Orv::Inspect::Snapshot snapshot;

    int parameter(const char* name, const QVariant& value)
    {
        snapshot.parameters.append(value);
        return addPorts(snapshot.nodes[0].inputs, {name});
    }
    int output(const char* name)
    {
        ++snapshot.numOutputs;
        return addPorts(snapshot.nodes[0].outputs, {name});
    }
    int group(const char* name, std::initializer_list<const char*> inputs,
              std::initializer_list<const char*> outputs, int parent = 0)
    {
        Kestrin::Orv::Inspect::NodeRecord node;
        node.name = QString::fromUtf8(name);
        node.parent = parent;
        node.removed = false;
        addPorts(node.inputs, inputs);
        addPorts(node.outputs, outputs);
        const int ref = snapshot.nodes.size();
        snapshot.nodes.append(node);
        snapshot.nodes[parent].children.append(ref);
        return ref;
    }
    int pass(const char* name, std::initializer_list<const char*> inputs,
             std::initializer_list<const char*> outputs, int parent = 0, const char* type = "")
    {
        const int ref = group(name, inputs, outputs, parent);
        Kestrin::Orv::Inspect::NodeRecord& node = snapshot.nodes[ref];
        node.pass = true;
        node.enabled = true;
        node.value = numPasses++;
        node.type = QString::fromUtf8(type);
        return ref;
    }
    void setDefault(int node, int input, const QVariant& value)
    {
        snapshot.nodes[node].inputs[input].defaultValue = value;
    }
    /// A regular, down or up edge, as the parents of its ends say.
    int connect(int from, int fromIndex, int to, int toIndex)
    {
        const int ref = snapshot.edges.size();
        Kestrin::Orv::Inspect::EdgeRecord edge;
        edge.srcNode = from;
        edge.srcIndex = fromIndex;
        edge.dstNode = to;
        edge.dstIndex = toIndex;
        edge.removed = false;
        snapshot.edges.append(edge);
        const Kestrin::Orv::Inspect::EdgeKind kind = snapshot.kindOf(ref);
        Kestrin::Orv::Inspect::NodeRecord& source = snapshot.nodes[from];
        Kestrin::Orv::Inspect::NodeRecord& destination = snapshot.nodes[to];
        const bool isDown = kind == Kestrin::Orv::Inspect::EdgeKind::Down;
        const bool isUp = kind == Kestrin::Orv::Inspect::EdgeKind::Up;
        (isDown ? source.inputs : source.outputs)[fromIndex].destinations.append(ref);
        (isUp ? destination.outputs : destination.inputs)[toIndex].source = ref;
        return ref;
    }

private:
    static int addPorts(QVector<Kestrin::Orv::Inspect::PortRecord>& ports,
                        std::initializer_list<const char*> names)
    {
        for (const char* name : names) {
            Kestrin::Orv::Inspect::PortRecord port;
            port.name = QString::fromUtf8(name);
            ports.append(port);
        }
        return ports.size() - 1;
    }

    int numPasses = 0;
};

/// Passes that feed one another, and the last an output.
struct BuiltChain : SnapshotBuilder
{
    explicit BuiltChain(int size)
    {
        output("o");
        int last = 0;
        for (int i = 0; i < size; ++i) {
            const int node = pass("P", {"i"}, {"o"});
            if (last)
                connect(last, 0, node, 0);
            last = node;
        }
        connect(last, 0, 0, 0);
    }
};

/// A renderer as one might have it: a scene with shadows, bloom in a group, and passes in every
/// state.
struct SampleRenderer : SnapshotBuilder
{
    int sun, time, picture;
    int geometry, shadows, lighting, bloom, bright, blur, blend, grain, tone, overlay, antialias;

    SampleRenderer()
    {
        sun = parameter("sun angle", 42.5);
        time = parameter("time", 1.25);
        picture = output("picture");
        geometry = pass("Geometry", {"time"}, {"albedo", "normal", "depth"}, 0, "GBuffer");
        shadows = pass("Shadows", {"light", "depth"}, {"mask"}, 0, "ShadowMap");
        lighting = pass("Lighting", {"albedo", "normal", "mask"}, {"color"}, 0, "Deferred");
        bloom = group("Bloom", {"color", "sigma"}, {"color"});
        bright = pass("Bright", {"color", "threshold"}, {"color"}, bloom, "Filter");
        blur = pass("Blur", {"color", "sigma"}, {"color"}, bloom, "Gauss");
        blend = pass("Blend", {"base", "glow"}, {"color"}, bloom, "Filter");
        grain = pass("Grain", {"color", "amount"}, {"color"}, 0, "Noise");
        tone = pass("Tone", {"color", "grain", "exposure"}, {"color"}, 0, "Filmic");
        antialias = pass("Antialias", {"color"}, {"color"}, 0, "Fxaa");
        overlay = pass("Wireframe", {"depth"}, {"color"}, 0, "Overlay");
        snapshot.nodes[grain].enabled = false;
        setDefault(bright, 1, 0.8);
        setDefault(blur, 1, 2.5);
        setDefault(tone, 1, 0.0);
        setDefault(tone, 2, 1.0);

        connect(0, time, geometry, 0);
        connect(0, sun, shadows, 0);
        connect(geometry, 2, shadows, 1);
        connect(geometry, 0, lighting, 0);
        connect(geometry, 1, lighting, 1);
        connect(shadows, 0, lighting, 2);
        connect(lighting, 0, bloom, 0);
        connect(bloom, 0, bright, 0);
        connect(bright, 0, blur, 0);
        connect(bloom, 1, blur, 1);
        connect(bloom, 0, blend, 0);
        connect(blur, 0, blend, 1);
        connect(blend, 0, bloom, 0);
        connect(bloom, 0, tone, 0);
        connect(lighting, 0, grain, 0);
        connect(grain, 0, tone, 1);
        connect(tone, 0, antialias, 0);
        connect(antialias, 0, 0, picture);
        connect(geometry, 2, overlay, 0);
    }
};

#endif
