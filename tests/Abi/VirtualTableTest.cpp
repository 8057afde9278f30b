// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

// Calls virtual operations by their slot, as a host does that was built against older headers, and
// looks at which one ran. Slots 0 and 1 are the two variants of the destructor.

#include <Kestrin/Orv/OrvCore.h>

#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <type_traits>

using namespace Kestrin::Orv;

namespace {

std::string called;

/// The address that a slot of the object's virtual table holds.
template<typename Object>
void* slotOf(const Object& object, std::size_t slot)
{
    void* const* table;
    std::memcpy(&table, static_cast<const void*>(&object), sizeof table);
    return table[slot];
}

template<typename Result, typename Object, typename... Arguments>
Result callSlot(Object& object, std::size_t slot, Arguments... arguments)
{
    const auto function = reinterpret_cast<Result (*)(Object*, Arguments...)>(slotOf(object, slot));
    return function(&object, arguments...);
}

template<typename Object, typename... Arguments>
std::string slotName(Object& object, std::size_t slot, Arguments... arguments)
{
    called.clear();
    callSlot<void>(object, slot, arguments...);
    return called;
}

/// As slotName(), of an operation that has a result.
template<typename Result, typename Object, typename... Arguments>
std::string slotNameOf(Object& object, std::size_t slot, Arguments... arguments)
{
    called.clear();
    callSlot<Result>(object, slot, arguments...);
    return called;
}

class NamingPass : public RenderPassHelper
{
public:
    ~NamingPass() override { called = "destructor"; }
    void setup(RenderCallbacks*) override { called = "setup"; }
    void beginFrame(RenderCallbacks*) override { called = "beginFrame"; }
    void start(RenderCallbacks*) override { called = "start"; }
    void skip(RenderCallbacks*) override { called = "skip"; }
    void endFrame(RenderCallbacks*) override { called = "endFrame"; }
    bool isFinished() const override { return named("isFinished"), true; }
    void teardown(RenderCallbacks*) override { called = "teardown"; }
    void teardownContextData(RenderCallbacks*) override { called = "teardownContextData"; }
    int numInputs() const override { return named("numInputs"), 0; }
    int numOutputs() const override { return named("numOutputs"), 0; }
    QString inputName(int) const override { return named("inputName"), QString(); }
    QString outputName(int) const override { return named("outputName"), QString(); }
    void setInput(int, const QVariant&) override { called = "setInput"; }
    QVariant defaultValue(int) const override { return named("defaultValue"), QVariant(); }
    void setDefaultValue(int, const QVariant&) override { called = "setDefaultValue"; }
    QVariant output(int) const override { return named("output"), QVariant(); }
    void setNumOutputUsers(int, int) override { called = "setNumOutputUsers"; }
    void resetNumOutputUsers() override { called = "resetNumOutputUsers"; }
    unsigned int errorCode() const override { return named("errorCode"), 0; }
    void clearErrorCode() override { called = "clearErrorCode"; }
    void setErrorCode(unsigned int) override { called = "setErrorCode"; }
    int addInput(const QString&, const QVariant&) override { return named("addInput"), 0; }
    int addOutput(const QString&) override { return named("addOutput"), 0; }
    int findInput(const QString&) const override { return named("findInput"), 0; }
    int findOutput(const QString&) const override { return named("findOutput"), 0; }

private:
    static void named(const char* name) { called = name; }
};

class NamingRenderer : public Renderer
{
public:
    ~NamingRenderer() override { called = "destructor"; }
    void setup(RenderCallbacks*) override { called = "setup"; }
    bool render(RenderCallbacks*) override { return called = "render", true; }
    void teardown(RenderCallbacks*) override { called = "teardown"; }
    int getGraphProcessingMode() const override { return called = "getGraphProcessingMode", 0; }
    void beginFrame(RenderCallbacks*) override { called = "beginFrame"; }
    void endFrame(RenderCallbacks*) override { called = "endFrame"; }
};

class NamingHistogram : public HistogramFrameTimes
{
public:
    ~NamingHistogram() override { called = "destructor"; }
    void flush() override { called = "flush"; }
    void dump() override { called = "dump"; }
};

class NamingMemory : public Memory
{
public:
    ~NamingMemory() override { called = "destructor"; }
    unsigned long size() const override { return called = "size", 0; }
    unsigned char* get(unsigned long, unsigned long) override { return called = "get", nullptr; }
    void release(unsigned char*) override { called = "release"; }
};

RenderCallbacks* const noCallbacks = nullptr;

/// The second slot destroys the object and frees it.
template<typename Object>
void expectDeletingDestructorInSlotOne()
{
    called.clear();
    callSlot<void>(*new Object, 1);
    EXPECT_EQ(called, "destructor");
}

} // namespace

TEST(AbiVirtualTable, RenderPass)
{
    NamingPass pass;
    RenderPass& base = pass;
    EXPECT_EQ(slotName(base, 2, noCallbacks), "setup");
    EXPECT_EQ(slotName(base, 3, noCallbacks), "beginFrame");
    EXPECT_EQ(slotName(base, 4, noCallbacks), "start");
    EXPECT_EQ(slotName(base, 5, noCallbacks), "skip");
    EXPECT_EQ(slotName(base, 6, noCallbacks), "endFrame");
    EXPECT_EQ(slotNameOf<bool>(base, 7), "isFinished");
    EXPECT_EQ(slotName(base, 8, noCallbacks), "teardown");
    EXPECT_EQ(slotName(base, 9, noCallbacks), "teardownContextData");
    EXPECT_EQ(slotNameOf<int>(base, 10), "numInputs");
    EXPECT_EQ(slotNameOf<int>(base, 11), "numOutputs");
}

TEST(AbiVirtualTable, RenderPassPorts)
{
    NamingPass pass;
    RenderPass& base = pass;
    const QVariant value;
    // Results of class type come through a hidden first argument.
    const auto nameOfResult = [&](std::size_t slot, auto* null) {
        using T = std::remove_pointer_t<decltype(null)>;
        using Function = void (*)(void*, const RenderPass*, int);
        called.clear();
        T result;
        result.~T();
        reinterpret_cast<Function>(slotOf(base, slot))(&result, &base, 0);
        return called;
    };
    const auto stringOf = [&](std::size_t slot) {
        return nameOfResult(slot, static_cast<QString*>(nullptr));
    };
    const auto variantOf = [&](std::size_t slot) {
        return nameOfResult(slot, static_cast<QVariant*>(nullptr));
    };
    EXPECT_EQ(stringOf(12), "inputName");
    EXPECT_EQ(stringOf(13), "outputName");
    EXPECT_EQ(slotName(base, 14, 0, &value), "setInput");
    EXPECT_EQ(variantOf(15), "defaultValue");
    EXPECT_EQ(slotName(base, 16, 0, &value), "setDefaultValue");
    EXPECT_EQ(variantOf(17), "output");
    EXPECT_EQ(slotName(base, 18, 0, 0), "setNumOutputUsers");
    EXPECT_EQ(slotName(base, 19), "resetNumOutputUsers");
    EXPECT_EQ(slotNameOf<unsigned int>(base, 20), "errorCode");
    EXPECT_EQ(slotName(base, 21), "clearErrorCode");
    EXPECT_EQ(slotName(base, 22, 0U), "setErrorCode");
    expectDeletingDestructorInSlotOne<NamingPass>();
}

TEST(AbiVirtualTable, RenderPassHelperAddsFourOperations)
{
    NamingPass pass;
    RenderPassHelper& helper = pass;
    const QString name;
    const QVariant value;
    EXPECT_EQ(slotNameOf<int>(helper, 23, &name, &value), "addInput");
    EXPECT_EQ(slotNameOf<int>(helper, 24, &name), "addOutput");
    EXPECT_EQ(slotNameOf<int>(helper, 25, &name), "findInput");
    EXPECT_EQ(slotNameOf<int>(helper, 26, &name), "findOutput");
}

TEST(AbiVirtualTable, Renderer)
{
    NamingRenderer renderer;
    Renderer& base = renderer;
    EXPECT_EQ(slotName(base, 2, noCallbacks), "setup");
    EXPECT_EQ(slotNameOf<bool>(base, 3, noCallbacks), "render");
    EXPECT_EQ(slotName(base, 4, noCallbacks), "teardown");
    EXPECT_EQ(slotNameOf<int>(base, 5), "getGraphProcessingMode");
    EXPECT_EQ(slotName(base, 6, noCallbacks), "beginFrame");
    EXPECT_EQ(slotName(base, 7, noCallbacks), "endFrame");
    expectDeletingDestructorInSlotOne<NamingRenderer>();
}

TEST(AbiVirtualTable, HistogramFrameTimes)
{
    NamingHistogram histogram;
    HistogramFrameTimes& base = histogram;
    EXPECT_EQ(slotName(base, 2), "flush");
    EXPECT_EQ(slotName(base, 3), "dump");
    expectDeletingDestructorInSlotOne<NamingHistogram>();
}

TEST(AbiVirtualTable, Memory)
{
    NamingMemory memory;
    Memory& base = memory;
    EXPECT_EQ(slotNameOf<unsigned long>(base, 2), "size");
    EXPECT_EQ(slotNameOf<unsigned char*>(base, 3, 0UL, 0UL), "get");
    EXPECT_EQ(slotName(base, 4, static_cast<unsigned char*>(nullptr)), "release");
    expectDeletingDestructorInSlotOne<NamingMemory>();
}
