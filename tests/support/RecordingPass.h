// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#ifndef ORV_TESTS_RECORDINGPASS_H
#define ORV_TESTS_RECORDINGPASS_H

#include <Kestrin/Orv/Graph.h>
#include <Kestrin/Orv/RenderPass.h>
#include <Kestrin/Orv/Renderer.h>

#include <QtCore/QVector>

#include <cstdint>
#include <functional>
#include <set>
#include <sstream>
#include <string>
#include <utility>

/// A host's callbacks pointer that shows up in the log as this number. Nothing ever looks behind
/// it.
inline Kestrin::Orv::RenderCallbacks* callbacksNo(std::uintptr_t number)
{
    return reinterpret_cast<Kestrin::Orv::RenderCallbacks*>(number);
}

inline std::string show(const QVariant& value)
{
    if (!value.isValid())
        return "invalid";
    std::string text = value.toString().toStdString();
    if (value.type() == QVariant::Double && text.find('.') == std::string::npos)
        text += ".0";
    return text;
}

/// The calls that the passes of one scene received, in order, as one string: "A.start(7)
/// B.start(7)".
class CallLog
{
public:
    /// From now on only calls of these operations, given as "start skip", are recorded; "" for all.
    void keepOnly(const std::string& operations)
    {
        kept.clear();
        std::istringstream words(operations);
        for (std::string word; words >> word;)
            kept.insert(word);
        text.clear();
    }
    void add(const std::string& pass, const std::string& operation, const std::string& arguments)
    {
        if (kept.empty() || kept.count(operation) != 0)
            note(pass + "." + operation + arguments);
    }
    /// Adds an entry of the test's own.
    void note(const std::string& entry)
    {
        if (!text.empty())
            text += ' ';
        text += entry;
    }
    /// Everything since the last take().
    std::string take() { return std::exchange(text, std::string()); }

private:
    std::string text;
    std::set<std::string> kept;
};

/// A pass that records every call with its arguments.
///
/// Output j is invalid at first; start() number n makes it "<name><j>#<n>", so each value tells
/// where and when it was made. The default of input i is "<name><i>?". Fields script the rest.
class RecordingPass : public Kestrin::Orv::RenderPass
{
public:
    using Callbacks = Kestrin::Orv::RenderCallbacks*;

    RecordingPass(CallLog& callLog, std::string passName, int inputCount, int outputCount)
        : log(callLog)
        , name(std::move(passName))
        , inputNames(inputCount)
        , outputNames(outputCount)
        , values(inputCount)
        , defaults(inputCount)
        , results(outputCount)
        , users(outputCount, -1)
    {
        for (int i = 0; i < inputCount; ++i) {
            inputNames[i] = QStringLiteral("in%1").arg(i);
            defaults[i] = QString::fromStdString(name + std::to_string(i) + "?");
        }
        for (int j = 0; j < outputCount; ++j)
            outputNames[j] = QStringLiteral("out%1").arg(j);
    }
    ~RecordingPass() override
    {
        log.add(name, "delete", "");
        if (onDelete)
            onDelete();
    }

    void setup(Callbacks c) override { record("setup", c); }
    void beginFrame(Callbacks c) override { record("beginFrame", c); }
    void start(Callbacks c) override
    {
        ++starts;
        for (int j = 0; j < results.size(); ++j)
            results[j] =
                QString::fromStdString(name + std::to_string(j) + "#" + std::to_string(starts));
        error = failStart;
        unfinished = unfinishedPolls;
        record("start", c);
    }
    void skip(Callbacks c) override
    {
        error = failSkip;
        unfinished = unfinishedPolls;
        record("skip", c);
    }
    void endFrame(Callbacks c) override { record("endFrame", c); }
    bool isFinished() const override
    {
        record("isFinished");
        return unfinished-- <= 0;
    }
    void teardown(Callbacks c) override { record("teardown", c); }
    void teardownContextData(Callbacks c) override { record("teardownContextData", c); }

    int numInputs() const override
    {
        record("numInputs");
        return inputNames.size() + extraInputs;
    }
    int numOutputs() const override
    {
        record("numOutputs");
        return outputNames.size() + extraOutputs;
    }
    QString inputName(int index) const override
    {
        record("inputName", index);
        return inputNames.value(index);
    }
    QString outputName(int index) const override
    {
        record("outputName", index);
        return outputNames.value(index);
    }
    void setInput(int index, const QVariant& value) override
    {
        if (index >= 0 && index < values.size())
            values[index] = value;
        call("setInput", "(" + std::to_string(index) + "," + show(value) + ")");
    }
    QVariant defaultValue(int index) const override
    {
        record("defaultValue", index);
        return defaults.value(index);
    }
    void setDefaultValue(int index, const QVariant& value) override
    {
        call("setDefaultValue", "(" + std::to_string(index) + "," + show(value) + ")");
    }
    QVariant output(int index) const override
    {
        record("output", index);
        return results.value(index);
    }
    void setNumOutputUsers(int index, int count) override
    {
        if (index >= 0 && index < users.size())
            users[index] = count;
        call("setNumOutputUsers", "(" + std::to_string(index) + "," + std::to_string(count) + ")");
    }
    void resetNumOutputUsers() override
    {
        users.fill(0);
        record("resetNumOutputUsers");
    }
    unsigned int errorCode() const override
    {
        record("errorCode");
        return error;
    }
    void clearErrorCode() override
    {
        error = 0;
        record("clearErrorCode");
    }
    void setErrorCode(unsigned int code) override
    {
        call("setErrorCode", "(" + std::to_string(code) + ")");
    }

    CallLog& log;
    std::string name;
    QVector<QString> inputNames;
    QVector<QString> outputNames;
    QVector<QVariant> values; ///< what setInput() stored
    QVector<QVariant> defaults;
    QVector<QVariant> results;
    QVector<int> users;
    int extraInputs = 0; ///< added to what numInputs() tells
    int extraOutputs = 0;
    int starts = 0;
    unsigned int failStart = 0; ///< the error code that start() leaves
    unsigned int failSkip = 0;
    unsigned int error = 0;
    int unfinishedPolls = 0; ///< how often isFinished() says no in each frame
    /// Runs within every call, after it has been recorded.
    std::function<void(const std::string& operation)> onCall;
    std::function<void()> onDelete;

private:
    void call(const char* operation, const std::string& arguments) const
    {
        log.add(name, operation, arguments);
        if (onCall)
            onCall(operation);
    }
    void record(const char* operation) const { call(operation, ""); }
    void record(const char* operation, int index) const
    {
        call(operation, "(" + std::to_string(index) + ")");
    }
    void record(const char* operation, Callbacks c) const
    {
        call(operation, "(" + std::to_string(reinterpret_cast<std::uintptr_t>(c)) + ")");
    }

    mutable int unfinished = 0;
};

/// A renderer of this type, or of one derived from it, with recording passes and short names for
/// the wiring.
template<typename RendererType = Kestrin::Orv::Renderer>
struct BasicScene
{
    static constexpr int kRoot = 0;

    CallLog log;
    RendererType renderer;
    Kestrin::Orv::Graph& graph = *renderer.getGraph();

    /// Registers a pass; registration itself leaves no trace in the log.
    int pass(const std::string& name, int inputs, int outputs, int parent = kRoot)
    {
        const std::string before = log.take();
        const int node = renderer.addPass(QString::fromStdString(name),
                                          new RecordingPass(log, name, inputs, outputs), parent);
        log.take();
        if (!before.empty())
            log.note(before);
        return node;
    }
    int group(const char* name, int inputs, int outputs, int parent = kRoot)
    {
        return renderer.addGroup(QLatin1String(name), inputs, outputs, parent);
    }
    int output(const char* name = "out") { return renderer.addOutput(QLatin1String(name)); }
    int parameter(const QVariant& value, const char* name = "p")
    {
        return renderer.addParameter(QLatin1String(name), value);
    }
    int staggered(bool on = true) { return parameter(on, "Orv_bool_staggeredFirstFrame"); }

    /// Output \p port of \p from into input \p input of its sibling \p to.
    int edge(int from, int port, int to, int input) { return graph.addEdge(from, port, to, input); }
    /// From an output of \p child to an output of its parent.
    int up(int child, int port, int parentOutput)
    {
        return graph.addUpEdge(parentOutput, child, port);
    }
    /// From an input of the parent of \p child to an input of \p child.
    int down(int parentInput, int child, int input)
    {
        return graph.addDownEdge(parentInput, child, input);
    }
    /// \p count passes named A, B, ... of one input and one output each, every one fed by the one
    /// before; the last feeds a new output of the renderer. The node of A; the others follow.
    int chain(int count)
    {
        int first = -1;
        for (int i = 0; i < count; ++i) {
            const int node = pass(std::string(1, static_cast<char>('A' + i)), 1, 1);
            if (i == 0)
                first = node;
            else
                edge(node - 1, 0, node, 0);
        }
        up(first + count - 1, 0, output());
        return first;
    }

    RecordingPass& at(int node) { return static_cast<RecordingPass&>(*renderer.renderPass(node)); }

    void setup(std::uintptr_t callbacks = 7) { renderer.setup(callbacksNo(callbacks)); }
    bool render(std::uintptr_t callbacks = 7) { return renderer.render(callbacksNo(callbacks)); }
    void teardown(std::uintptr_t callbacks = 7) { renderer.teardown(callbacksNo(callbacks)); }
    /// What the passes recorded of one frame.
    std::string frame()
    {
        log.take();
        render();
        return log.take();
    }
    /// The passes that a frame runs, in order: "A B C".
    std::string order()
    {
        log.keepOnly("beginFrame");
        std::string text = frame();
        log.keepOnly("");
        std::string names;
        std::istringstream words(text);
        for (std::string word; words >> word;)
            names += (names.empty() ? "" : " ") + word.substr(0, word.find('.'));
        return names;
    }
};

using Scene = BasicScene<>;

#endif
