// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#include "SmallGraphs.h"
#include "oracle/RendererOracle.h"
#include "oracle/ScriptedPass.h"

#include <Kestrin/Orv/Renderer.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>

// What a renderer does with a graph follows from the graph and from the passes that are enabled. So
// each state that SmallGraphs comes to is built in a renderer once for each set of enabled passes,
// and one setup and one frame show the order, the user counts, and the values of all inputs and
// outputs.

namespace {

using SmallPath = SmallGraphs::Path;

const int kNumNodes = 3; // below the root, at the beginning

/// One of the two renderers, with passes in the leaves of the tree and groups above them.
template<typename R>
struct Side
{
    std::vector<PassEvent> events;
    R renderer;

    void build(const SmallGraphs::Plan& plan, const SmallPath& path)
    {
        for (int port = 0; port < plan.numPorts; ++port) {
            renderer.addParameter(QString(), 100 + port);
            renderer.addOutput(QString());
        }
        for (int node = 1; node <= kNumNodes; ++node) {
            const int parent = plan.parents[static_cast<std::size_t>(node - 1)];
            if (std::count(plan.parents.begin(), plan.parents.end(), node) > 0)
                renderer.addGroup(QString(), plan.numPorts, plan.numPorts, parent);
            else
                renderer.addPass(QString(),
                                 new ScriptedPass(events, node, plan.numPorts, plan.numPorts),
                                 parent);
        }
        for (const SmallGraphs::Edit& edit : path)
            perform(*renderer.getGraph(), edit.call());
    }

    void runFrame(unsigned enabled, int target)
    {
        events.clear();
        for (int node = 1; node <= kNumNodes; ++node) {
            if (!(enabled >> node & 1))
                renderer.setEnabled(node, false);
        }
        renderer.setTarget(target);
        renderer.setup(nullptr);
        renderer.render(nullptr);
        for (int output = 0; output < renderer.numOutputs(); ++output) {
            const QVariant value = renderer.output(output);
            events.push_back({-1, PassCall::output, output,
                              value.isValid() ? value.toLongLong() : PassEvent::kInvalid});
        }
    }
};

std::string print(const std::vector<PassEvent>& events)
{
    std::string text;
    for (const PassEvent& event : events)
        text += "\n    " + event.print();
    return text;
}

struct Count
{
    std::size_t setups = 0;
    std::size_t comparisons = 0;
};

/// Compares all sets of enabled passes, without a target and with one.
std::string compareFrames(const SmallGraphs::Plan& plan, const SmallPath& edits, Count& count)
{
    unsigned passes = 0;
    for (int node = 1; node <= kNumNodes; ++node) {
        if (std::count(plan.parents.begin(), plan.parents.end(), node) == 0)
            passes |= 1u << node;
    }
    for (unsigned enabled = 0; enabled <= passes; enabled += 2) {
        if (enabled & ~passes)
            continue;
        for (const int target : {-1, 1}) {
            if (target == 1 && enabled != passes)
                continue;
            Side<Kestrin::Orv::Renderer> library;
            Side<Oracle::Renderer> model;
            model.build(plan, edits);
            library.build(plan, edits);
            model.renderer.getGraph()->open = false;
            model.runFrame(enabled, target);
            library.runFrame(enabled, target);
            ++count.setups;
            if (model.renderer.getGraph()->open)
                continue; // that it ended is all there is to check
            count.comparisons += model.events.size();
            if (library.events != model.events)
                return "with passes " + std::to_string(enabled) + " enabled, target "
                    + std::to_string(target) + ", the passes received" + print(library.events)
                    + "\n  instead of" + print(model.events);
        }
    }
    return std::string();
}

void agree(const char* name, SmallGraphs::Plan plan, double sequences, std::size_t setups)
{
#ifdef ORV_SHORT_SEQUENCES
    --plan.length; // an instrumented build
    sequences = 0;
    setups = 0;
#endif
    SmallGraphs graphs(plan);
    const auto numBaseEdits =
        static_cast<std::ptrdiff_t>(SmallGraphs::base({plan.parents, plan.numPorts, 0, 0}).size());
    Count count;
    graphs.onState = [&](const SmallPath& path) {
        // The nodes and ports of the base are made by the renderer.
        return compareFrames(plan, SmallPath(path.begin() + numBaseEdits, path.end()), count);
    };
    const std::string failure = graphs.run();
    ASSERT_TRUE(failure.empty()) << failure;
    std::printf("%s: all %.0f sequences of up to %d edits; %zu distinct graphs, %zu setups and "
                "frames, %zu calls of passes compared\n",
                name, graphs.count.sequences, plan.length, graphs.count.states, count.setups,
                count.comparisons);
    EXPECT_GE(graphs.count.sequences, sequences);
    EXPECT_GE(count.setups, setups);
}

} // namespace

#define ORV_SMALL(shape, plan, numPorts, kinds, length, wired, sequences, setups)                  \
    TEST(SmallRenderers, shape##_##plan)                                                           \
    {                                                                                              \
        agree(#shape ", " #plan, {SmallGraphs::shape, numPorts, kinds, length, wired}, sequences,  \
              setups);                                                                             \
    }

const unsigned kWires = 0;
const unsigned kCuts = SmallGraphs::RemovePorts | SmallGraphs::RemoveNodes;
const unsigned kAll = SmallGraphs::All;

ORV_SMALL(flat, wires, 1, kWires, 5, false, 620000, 210000)
ORV_SMALL(flat, cuts, 1, kCuts, 4, true, 680000, 74000)
ORV_SMALL(flat, twoPorts, 2, kWires, 3, true, 150000, 46000)
ORV_SMALL(aGroup, wires, 1, kWires, 5, false, 120000, 46000)
ORV_SMALL(aGroup, cuts, 1, kCuts, 4, true, 480000, 34000)
ORV_SMALL(aGroup, twoPorts, 2, kWires, 3, true, 57000, 20000)
ORV_SMALL(aGroup, allWithTwoPorts, 2, kAll, 2, true, 23000, 13000)
ORV_SMALL(aFullGroup, wires, 1, kWires, 5, false, 120000, 45000)
ORV_SMALL(aFullGroup, cuts, 1, kCuts, 4, true, 470000, 34000)
ORV_SMALL(aFullGroup, twoPorts, 2, kWires, 3, true, 57000, 18000)
ORV_SMALL(groupOfGroups, wires, 1, kWires, 5, false, 42000, 16000)
ORV_SMALL(groupOfGroups, cuts, 1, kCuts, 4, true, 420000, 20000)
ORV_SMALL(groupOfGroups, twoPorts, 2, kWires, 3, true, 31000, 9600)
