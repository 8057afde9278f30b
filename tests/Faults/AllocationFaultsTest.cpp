// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#include "Scale/Limits.h"
#include "oracle/GraphCalls.h"

#include <Kestrin/Orv/Memory.h>
#include <Kestrin/Orv/RenderPassHelper.h>
#include <Kestrin/Orv/Renderer.h>

#include <gtest/gtest.h>

#include <QtCore/QFile>

#include <cerrno>
#include <cstddef>
#include <functional>

#include <fcntl.h>
#include <unistd.h>

using namespace Kestrin::Orv;

// Memory runs out at each allocation of an operation in turn. Qt and operator new allocate by
// malloc, which this executable replaces; the sanitizers replace it themselves.

#ifndef ORV_SANITIZED

namespace {

bool counting = false;
long untilFailure = -1; // allocations that succeed before one fails; -1 for ever
long outstanding = 0;   // allocated and not freed since counting began

bool mayAllocate()
{
    if (!counting || untilFailure < 0)
        return true;
    if (untilFailure-- > 0)
        return true;
    errno = ENOMEM;
    return false;
}

} // namespace

extern "C" {
void* __libc_malloc(std::size_t size);
void* __libc_calloc(std::size_t count, std::size_t size);
void* __libc_realloc(void* block, std::size_t size);
void __libc_free(void* block);

void* malloc(std::size_t size) noexcept
{
    void* block = mayAllocate() ? __libc_malloc(size) : nullptr;
    outstanding += counting && block;
    return block;
}

void* calloc(std::size_t count, std::size_t size) noexcept
{
    void* block = mayAllocate() ? __libc_calloc(count, size) : nullptr;
    outstanding += counting && block;
    return block;
}

void* realloc(void* block, std::size_t size) noexcept
{
    if (!mayAllocate())
        return nullptr;
    outstanding += counting && !block;
    return __libc_realloc(block, size);
}

void free(void* block) noexcept
{
    outstanding -= counting && block;
    __libc_free(block);
}
}

namespace {

/// While it lives, allocations are counted, and after so many one fails.
class Shortage
{
public:
    explicit Shortage(long successes)
    {
        untilFailure = successes;
        counting = true;
    }
    ~Shortage()
    {
        counting = false;
        untilFailure = -1;
    }
    Shortage(const Shortage&) = delete;
    Shortage& operator=(const Shortage&) = delete;
    bool struck() const { return untilFailure < 0; }
};

GraphCall call(GraphOp op, std::initializer_list<int> ints = {},
               std::initializer_list<QString> strings = {})
{
    GraphCall made = {};
    made.op = op;
    std::copy(ints.begin(), ints.end(), made.ints);
    std::copy(strings.begin(), strings.end(), made.strings);
    return made;
}

const QString kName = QStringLiteral("name");

/// Nodes with ports, `size` of them so that tables are met at every fill level, a group among them.
std::vector<GraphCall> building(int size)
{
    using Op = GraphOp;
    std::vector<GraphCall> calls = {
        call(Op::addInput, {0, -1}, {kName}),  call(Op::addOutput, {0, -1}, {kName}),
        call(Op::addNode, {2, 2, 0}, {kName}), call(Op::addNode, {2, 2, 1}, {kName}),
        call(Op::addDownEdge, {0, 1, 0}),      call(Op::addDownEdge, {0, 2, 0}),
        call(Op::addUpEdge, {0, 2, 0}),        call(Op::addUpEdge, {0, 1, 0}),
    };
    for (int i = 0; i < size; ++i) {
        calls.push_back(call(Op::addNode, {2, 2, 0}, {kName}));
        calls.push_back(call(Op::addInputGroup, {3}, {kName}));
        calls.push_back(call(Op::addInput, {3, 0}, {kName}));
        calls.push_back(call(Op::addEdge, {3 + i, 0, 2 + i, 1}));
    }
    calls.push_back(call(Op::addNode, {1, 1, 0}));
    calls.push_back(call(Op::removeNode, {3 + size}));
    return calls;
}

template<typename G>
void build(G& graph, int size)
{
    for (const GraphCall& step : building(size))
        perform(graph, step);
}

/// Carries the call out with memory running out at its first allocation, at its second, and so on.
void expectToSurviveShortageOf(const GraphCall& tried)
{
    SCOPED_TRACE(tried.text());
    for (int size = 1; size <= 9; ++size) {
        bool struck = true;
        for (long successes = 0; struck; ++successes) {
            ASSERT_LT(successes, 1000);
            Graph graph;
            Oracle::Graph model;
            build(graph, size);
            build(model, size);
            Outcome outcome;
            {
                const Shortage shortage(successes);
                outcome = perform(graph, tried);
                struck = shortage.struck();
            }
            EXPECT_EQ(outcome.badAlloc, struck);
            if (struck) {
                // Nothing happened, and once there is memory again, everything does.
                EXPECT_EQ(difference(graph, model), "")
                    << "after " << successes << " allocations at size " << size;
                outcome = perform(graph, tried);
            }
            EXPECT_EQ(outcome.print(), perform(model, tried).print());
            EXPECT_EQ(difference(graph, model), "");
        }
    }
}

} // namespace

TEST(AllocationFaults, ReachTheLibraryAtAll)
{
    Graph graph;
    const Shortage shortage(0);
    EXPECT_TRUE(perform(graph, call(GraphOp::addNode, {3, 3, 0}, {kName})).badAlloc);
}

TEST(AllocationFaults, AShortageWhileEditingReachesTheCallerAndLeavesTheGraphAsItWas)
{
    using Op = GraphOp;
    const GraphCall calls[] = {
        call(Op::addNode, {3, 3, 0}, {kName}),
        call(Op::addNode, {0, 0, 2}, {kName}),
        call(Op::addInput, {3, 1}, {kName}),
        call(Op::addOutput, {3, 1}, {kName}),
        call(Op::addInputGroup, {3}, {kName}),
        call(Op::addOutputGroup, {2}, {kName}),
        call(Op::addEdge, {3, 1, 1, 1}),
        call(Op::addEdge, {3, 0, 1, 1}),
        call(Op::addUpEdge, {1, 2, 1}),
        call(Op::addUpEdge, {1, 2, 0}),
        call(Op::addDownEdge, {1, 2, 1}),
        call(Op::addDownEdge, {0, 1, 1}),
        call(Op::addEdgeByName, {3, 1}, {QString(), QString()}),
        call(Op::removeEdge, {0}),
        call(Op::removeEdge, {4}),
        call(Op::disconnectInput, {0, 0}),
        call(Op::disconnectInputGroup, {1, -1}),
        call(Op::removeNode, {1}),
        call(Op::removeNode, {0}),
        call(Op::removeChildNode, {1}),
        call(Op::removeInput, {1, 1}),
        call(Op::removeOutput, {1, 1}),
        call(Op::removeInputGroup, {3, 0}),
        call(Op::removeOutputGroup, {3, -1}),
        call(Op::setNodeName, {1}, {QStringLiteral("new")}),
        call(Op::setInputName, {1, 1}, {QStringLiteral("new")}),
        call(Op::setInputGroupName, {3, 0}, {QStringLiteral("new")}),
        call(Op::setNodeValue, {1, 7}),
        call(Op::purge),
        call(Op::precedes, {2, 3, 1}),
        call(Op::bottomUpInputs, {1, 1}),
        call(Op::breadthFirstInputs, {1, 1}),
        call(Op::bottomUpSubgraph, {0}),
    };
    for (const GraphCall& tried : calls)
        expectToSurviveShortageOf(tried);
}

TEST(AllocationFaults, AShortageWhileEditingLeaksNothing)
{
    using Op = GraphOp;
    const auto leakOf = [](const GraphCall& tried, long successes, bool& struck) {
        const std::vector<GraphCall> calls = building(5);
        outstanding = 0;
        {
            counting = true;
            Graph graph;
            for (const GraphCall& step : calls)
                perform(graph, step);
            {
                const Shortage shortage(successes);
                perform(graph, tried);
                struck = shortage.struck();
            }
            counting = true;
        }
        counting = false;
        return outstanding;
    };
    const GraphCall calls[] = {
        call(Op::addNode, {3, 3, 0}, {kName}),
        call(Op::addInput, {3, 1}, {kName}),
        call(Op::addEdge, {3, 1, 1, 1}),
        call(Op::addUpEdge, {1, 2, 1}),
        call(Op::addDownEdge, {1, 2, 1}),
        call(Op::removeNode, {1}),
        call(Op::purge),
        call(Op::bottomUpInputs, {1, 1}),
        call(Op::breadthFirstInputs, {1, 1}),
        call(Op::bottomUpSubgraph, {0}),
    };
    for (const GraphCall& tried : calls) {
        SCOPED_TRACE(tried.text());
        bool struck = true;
        leakOf(tried, 0, struck); // what is made once and kept for ever
        for (long successes = 0; struck; ++successes)
            EXPECT_EQ(leakOf(tried, successes, struck), 0) << "after " << successes;
    }
}

TEST(AllocationFaults, AShortageDuringSetupReachesTheCallerAndTheNextSetupWorks)
{
    struct Pass : RenderPassHelper
    {
        void start(RenderCallbacks*) override { outputs[0].value = inputs[0].value.toInt() + 1; }
    };
    bool struck = true;
    for (long successes = 0; struck; ++successes) {
        SCOPED_TRACE(successes);
        Renderer renderer;
        Graph& graph = *renderer.getGraph();
        renderer.addOutput(QString());
        int downstream = 0;
        for (int i = 0; i < 10; ++i) {
            Pass* pass = new Pass;
            pass->addInput(QString(), 0);
            pass->addOutput(QString());
            const int node = renderer.addPass(QString(), pass, Graph::kRootNodeRef);
            if (i == 0)
                graph.addUpEdge(0, node, 0);
            else
                graph.addEdge(node, 0, downstream, 0);
            downstream = node;
        }
        bool thrown = false;
        {
            const Shortage shortage(successes);
            try {
                renderer.setup(nullptr);
            } catch (const std::bad_alloc&) {
                thrown = true;
            }
            struck = shortage.struck();
        }
        EXPECT_EQ(thrown, struck);
        renderer.setup(nullptr);
        EXPECT_TRUE(renderer.render(nullptr));
        EXPECT_EQ(renderer.getNumPasses(), 10);
        EXPECT_EQ(renderer.output(0), QVariant(10));
        ASSERT_LT(successes, 10000);
    }
}

TEST(AllocationFaults, AShortageDuringRegistrationReachesTheCallerAndThePassIsOwned)
{
    struct Pass : RenderPassHelper
    {
        explicit Pass(int& counter)
            : deleted(counter)
        {
            addInput(QString(), 0);
            addOutput(QString());
        }
        ~Pass() override { ++deleted; }
        int& deleted;
    };
    bool struck = true;
    for (long successes = 0; struck; ++successes) {
        SCOPED_TRACE(successes);
        ASSERT_LT(successes, 1000);
        int deleted = 0;
        {
            Renderer renderer;
            Pass* pass = new Pass(deleted);
            const Shortage shortage(successes);
            bool thrown = false;
            try {
                renderer.addPass(kName, pass, Graph::kRootNodeRef);
            } catch (const std::bad_alloc&) {
                thrown = true;
            }
            struck = shortage.struck();
            counting = false;
            EXPECT_EQ(thrown, struck);
        }
        EXPECT_EQ(deleted, 1);
    }
}

// The next pass of a host may lie where the one that was deleted lay.
TEST(AllocationFaults, APassThatCouldNotBeKeptIsNotTakenForRegistered)
{
    struct Pass : RenderPassHelper
    {
        static void* place()
        {
            alignas(std::max_align_t) static unsigned char storage[sizeof(Pass)];
            return storage;
        }
        static void* operator new(std::size_t) { return place(); }
        static void operator delete(void*) { ++deleted(); }
        static int& deleted()
        {
            static int count = 0;
            return count;
        }
    };
    int timesTried = 0;
    bool struck = true;
    for (long successes = 0; struck; ++successes) {
        SCOPED_TRACE(successes);
        ASSERT_LT(successes, 1000);
        Pass::deleted() = 0;
        Renderer renderer;
        auto* pass = new Pass;
        {
            const Shortage shortage(successes);
            try {
                renderer.addPass(kName, pass, Graph::kRootNodeRef);
            } catch (const std::bad_alloc&) {
            }
            struck = shortage.struck();
        }
        if (Pass::deleted() == 1) {
            EXPECT_NE(renderer.addPass(kName, new Pass, Graph::kRootNodeRef), -1);
            ++timesTried;
        }
    }
    EXPECT_GT(timesTried, 0);
}

namespace {

/// A pass whose lists can be counted.
struct CountedPass : RenderPassHelper
{
    explicit CountedPass(int numPorts)
    {
        for (int i = 0; i < numPorts; ++i) {
            addInput(kName, i);
            addOutput(kName);
        }
    }
    QVector<int> lengths() const
    {
        return {inputs.size(), defaultValues.size(), outputs.size(), outputUsers.size()};
    }
};

/// Adds a port to passes with none, one, two and more, with memory running out at each allocation.
void expectBothListsOrNone(const std::function<int(CountedPass&)>& addPort,
                           const QVector<int>& growth)
{
    for (int numPorts = 0; numPorts < 20; ++numPorts) {
        bool struck = true;
        for (long successes = 0; struck; ++successes) {
            ASSERT_LT(successes, 1000);
            CountedPass pass(numPorts);
            QVector<int> expected = pass.lengths();
            int index = -1;
            {
                const Shortage shortage(successes);
                try {
                    index = addPort(pass);
                } catch (const std::bad_alloc&) {
                }
                struck = shortage.struck();
            }
            EXPECT_EQ(index, struck ? -1 : numPorts);
            if (struck) {
                EXPECT_EQ(pass.lengths(), expected)
                    << "after " << successes << " allocations with " << numPorts << " ports";
                // Once there is memory again, the port has the place that it would have had.
                EXPECT_EQ(addPort(pass), numPorts);
            }
            for (int list = 0; list < expected.size(); ++list)
                expected[list] += growth.at(list);
            EXPECT_EQ(pass.lengths(), expected);
        }
    }
}

int numOpenFiles()
{
    int count = 0;
    for (int file = 0; file < 1024; ++file)
        count += fcntl(file, F_GETFD) != -1;
    return count;
}

} // namespace

TEST(AllocationFaults, AShortageWhileAddingAPassInputLeavesBothListsAsTheyWere)
{
    const QVariant value(1.5);
    expectBothListsOrNone([&](CountedPass& pass) { return pass.addInput(kName, value); },
                          {1, 1, 0, 0});
}

TEST(AllocationFaults, AShortageWhileAddingAPassOutputLeavesBothListsAsTheyWere)
{
    expectBothListsOrNone([](CountedPass& pass) { return pass.addOutput(kName); }, {0, 0, 1, 1});
}

TEST(AllocationFaults, AMappedFileThatCannotBeMadeLeaksNeitherMemoryNorADescriptor)
{
    const QString path = QFile::decodeName("/proc/self/exe");
    const auto make = [&path](long successes, bool& struck) {
        bool thrown = false;
        outstanding = 0;
        {
            const Shortage shortage(successes);
            try {
                MemoryMappedFile file(path);
                struck = shortage.struck();
                EXPECT_TRUE(struck || file.size() > 0);
            } catch (const std::bad_alloc&) {
                thrown = true;
                struck = true;
            }
        }
        return thrown;
    };
    bool struck = true;
    make(-1, struck); // what is made once and kept for ever
    const int before = numOpenFiles();
    int numThrown = 0;
    struck = true;
    for (long successes = 0; struck; ++successes) {
        ASSERT_LT(successes, 1000);
        numThrown += make(successes, struck);
        EXPECT_EQ(outstanding, 0) << "after " << successes << " allocations";
        EXPECT_EQ(numOpenFiles(), before) << "after " << successes << " allocations";
    }
    EXPECT_GT(numThrown, 0);
}

#else

TEST(AllocationFaults, AreInjectedWithoutSanitizers)
{
    GTEST_SKIP() << "the sanitizers replace malloc themselves";
}

#endif

TEST(AllocationFaults, ABufferThatWasNotAllocatedHasNoRange)
{
    for (const unsigned long size : {0UL, 1UL, 16UL, ~0UL}) {
        RawMemory memory(nullptr, size);
        EXPECT_EQ(memory.size(), size);
        for (const unsigned long offset : {0UL, 1UL, 15UL, ~0UL - 1}) {
            for (const unsigned long length : {0UL, 1UL, 16UL, ~0UL})
                EXPECT_EQ(memory.get(offset, length), nullptr) << offset << ", " << length;
        }
    }
}
