// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#include "oracle/ScriptedPass.h"

#include <Kestrin/Orv/Graph.h>
#include <Kestrin/Orv/Renderer.h>

#include <gtest/gtest.h>

#include <algorithm>

using namespace Kestrin::Orv;

// A port count beyond all memory is to end as std::bad_alloc under AddressSanitizer too.
extern "C" __attribute__((visibility("default"))) const char* __asan_default_options();
const char* __asan_default_options()
{
    return "allocator_may_return_null=1";
}

namespace {

/// A chain of three passes: a parameter feeds the first, the last feeds the renderer's output.
class Chain
{
public:
    explicit Chain(bool staggered = false)
    {
        renderer->addParameter(QStringLiteral("p"), 1);
        if (staggered)
            renderer->addParameter(QStringLiteral("Orv_bool_staggeredFirstFrame"), true);
        renderer->addOutput(QStringLiteral("o"));
        for (int i = 0; i < 3; ++i) {
            passes[i] = addPass();
            nodes[i] = renderer->addPass(QString(), passes[i], Graph::kRootNodeRef);
        }
        Graph& graph = *renderer->getGraph();
        graph.addDownEdge(0, nodes[0], 0);
        graph.addEdge(nodes[0], 0, nodes[1], 0);
        graph.addEdge(nodes[1], 0, nodes[2], 0);
        graph.addUpEdge(0, nodes[2], 0);
    }

    ScriptedPass* addPass() { return new ScriptedPass(events, numPasses++, 1, 1); }

    int count(int pass, PassCall call) const
    {
        return static_cast<int>(
            std::count_if(events.begin(), events.end(), [pass, call](const PassEvent& event) {
                return event.pass == pass && event.call == call;
            }));
    }

    /// Destroys the renderer; whether each pass was deleted once.
    bool deletesEachPassOnce()
    {
        renderer.reset();
        for (int i = 0; i < numPasses; ++i) {
            if (count(i, PassCall::destructor) != 1)
                return false;
        }
        return true;
    }

    /// Whether a frame runs all three passes in their order and fills the output.
    bool rendersWell()
    {
        events.clear();
        if (!renderer->render(nullptr) || renderer->getNumPasses() != 3
            || !renderer->output(0).isValid())
            return false;
        std::string order;
        for (const PassEvent& event : events) {
            if (event.call == PassCall::start || event.call == PassCall::endFrame)
                order += std::to_string(event.pass);
        }
        return order == "001122";
    }

    std::vector<PassEvent> events; // outlives the renderer, whose passes write to it
    int numPasses = 0;
    ScriptedPass* passes[3];
    int nodes[3];
    std::unique_ptr<Renderer> renderer = std::make_unique<Renderer>();
};

std::string describe(int pass, PassCall call, int number)
{
    return PassEvent{pass, call, number, 0}.print();
}

/// The operations that setup, a frame and teardown call on a pass.
std::vector<PassCall> runningCalls(bool staggered)
{
    std::vector<PassCall> calls = {PassCall::setup,          PassCall::beginFrame,
                                   PassCall::endFrame,       PassCall::isFinished,
                                   PassCall::teardown,       PassCall::numInputs,
                                   PassCall::setInput,       PassCall::output,
                                   PassCall::errorCode,      PassCall::setNumOutputUsers,
                                   PassCall::clearErrorCode, PassCall::resetNumOutputUsers};
    calls.push_back(staggered ? PassCall::skip : PassCall::start);
    return calls;
}

/// Runs everything that calls a pass; whether the pass threw on the way.
bool throwsOnTheWay(Chain& chain)
{
    int thrown = 0;
    const auto attempt = [&thrown](auto&& work) {
        try {
            work();
        } catch (const PassFailure&) {
            ++thrown;
        }
    };
    attempt([&] { chain.renderer->setup(nullptr); });
    attempt([&] { chain.renderer->render(nullptr); });
    attempt([&] { chain.renderer->teardown(nullptr); });
    EXPECT_LE(thrown, 1);
    return thrown == 1;
}

} // namespace

TEST(PassFaults, WhatAPassThrowsReachesTheCallerAndTheNextFrameWorks)
{
    for (const bool staggered : {false, true}) {
        for (const PassCall call : runningCalls(staggered)) {
            SCOPED_TRACE(describe(1, call, 0));
            Chain chain(staggered);
            chain.passes[1]->throwsAt = static_cast<int>(call);
            EXPECT_TRUE(throwsOnTheWay(chain));
            if (staggered)
                chain.renderer->setParameter(1, false);
            chain.renderer->setup(nullptr);
            EXPECT_TRUE(chain.rendersWell());
            EXPECT_TRUE(chain.deletesEachPassOnce());
        }
    }
}

TEST(PassFaults, AFrameAfterAThrowingFrameStartsAfreshWithoutASetup)
{
    for (const PassCall call : {PassCall::beginFrame, PassCall::start, PassCall::isFinished,
                                PassCall::endFrame, PassCall::errorCode}) {
        SCOPED_TRACE(describe(1, call, 0));
        Chain chain;
        chain.renderer->setup(nullptr);
        chain.passes[1]->throwsAt = static_cast<int>(call);
        EXPECT_THROW(chain.renderer->render(nullptr), PassFailure);
        EXPECT_TRUE(chain.rendersWell());
    }
}

TEST(PassFaults, ADefaultValueThatThrowsReachesTheCaller)
{
    Chain chain;
    chain.renderer->getGraph()->disconnectInput(chain.nodes[1], 0);
    chain.renderer->setTarget(chain.nodes[1]);
    chain.passes[1]->throwsAt = static_cast<int>(PassCall::defaultValue);
    EXPECT_THROW(chain.renderer->setup(nullptr), PassFailure);
    EXPECT_TRUE(chain.deletesEachPassOnce());
}

TEST(PassFaults, APassThatThrowsDuringRegistrationIsOwnedNevertheless)
{
    for (const PassCall call :
         {PassCall::numInputs, PassCall::numOutputs, PassCall::inputName, PassCall::outputName}) {
        SCOPED_TRACE(describe(3, call, 0));
        Chain chain;
        ScriptedPass* pass = chain.addPass();
        pass->throwsAt = static_cast<int>(call);
        EXPECT_THROW(chain.renderer->addPass(QString(), pass, Graph::kRootNodeRef), PassFailure);
        chain.renderer->setup(nullptr);
        EXPECT_TRUE(chain.rendersWell());
        EXPECT_TRUE(chain.deletesEachPassOnce());
    }
}

TEST(PassFaults, APassWithMorePortsThanMemoryHoldsIsOwnedNevertheless)
{
    Chain chain;
    ScriptedPass* pass =
        new ScriptedPass(chain.events, chain.numPasses++, std::numeric_limits<int>::max(), 0);
    EXPECT_THROW(chain.renderer->addPass(QString(), pass, Graph::kRootNodeRef), std::bad_alloc);
    EXPECT_EQ(chain.renderer->getGraph()->numNodesGlobal(), 4);
    chain.renderer->setup(nullptr);
    EXPECT_TRUE(chain.rendersWell());
    EXPECT_TRUE(chain.deletesEachPassOnce());
}

TEST(PassFaults, APassMayCallBackIntoItsRendererFromAnyOperation)
{
    using CallBack = void (*)(Chain&);
    const CallBack callBacks[] = {
        [](Chain& chain) { chain.renderer->setup(nullptr); },
        [](Chain& chain) { chain.renderer->teardown(nullptr); },
        [](Chain& chain) { chain.renderer->render(nullptr); },
        [](Chain& chain) { chain.renderer->setEnabled(chain.nodes[2], false); },
        [](Chain& chain) { chain.renderer->setParameter(0, QStringLiteral("changed")); },
        [](Chain& chain) {
            for (int i = 0; i < 100; ++i) // enough to move every list
                chain.renderer->addPass(QString(), chain.addPass(), Graph::kRootNodeRef);
        },
        [](Chain& chain) {
            for (int i = 0; i < 100; ++i) {
                chain.renderer->addParameter(QString(), i);
                chain.renderer->addOutput(QString());
            }
        },
        [](Chain& chain) { chain.renderer->getGraph()->removeNode(chain.nodes[1]); },
        [](Chain& chain) {
            chain.renderer->getGraph()->removeNode(chain.nodes[0]);
            chain.renderer->getGraph()->purge();
        },
    };
    for (const bool staggered : {false, true}) {
        for (const PassCall call : runningCalls(staggered)) {
            int number = 0;
            for (const CallBack callBack : callBacks) {
                SCOPED_TRACE(describe(1, call, number++));
                Chain chain(staggered);
                chain.passes[1]->callsBackAt = static_cast<int>(call);
                bool called = false;
                chain.passes[1]->callback = [&] {
                    called = true;
                    callBack(chain);
                };
                chain.renderer->setup(nullptr);
                chain.renderer->render(nullptr);
                chain.renderer->render(nullptr);
                chain.renderer->teardown(nullptr);
                EXPECT_TRUE(called);
                EXPECT_TRUE(chain.deletesEachPassOnce());
            }
        }
    }
}

TEST(PassFaults, APassIsAskedUntilItHasFinished)
{
    Chain chain;
    chain.renderer->setup(nullptr);
    chain.passes[1]->unfinishedFor = 3;
    EXPECT_TRUE(chain.rendersWell());
    EXPECT_EQ(chain.count(0, PassCall::isFinished), 1);
    EXPECT_EQ(chain.count(1, PassCall::isFinished), 4);
    EXPECT_EQ(chain.count(1, PassCall::endFrame), 1);
}

TEST(PassFaults, InputsThatAPassInventsAfterRegistrationTakeTheirDefaults)
{
    Chain chain;
    chain.passes[1]->lie = 2;
    chain.renderer->setup(nullptr);
    EXPECT_TRUE(chain.rendersWell());
    EXPECT_EQ(chain.count(1, PassCall::setInput), 3);
    EXPECT_EQ(chain.count(1, PassCall::defaultValue), 2);
}

TEST(PassFaults, InputsThatAPassDeniesAfterRegistrationAreNotSet)
{
    for (const int lie : {-1, -2}) {
        Chain chain;
        chain.passes[1]->lie = lie;
        chain.renderer->setup(nullptr);
        EXPECT_TRUE(chain.rendersWell());
        EXPECT_EQ(chain.count(1, PassCall::setInput), 0);
    }
}
