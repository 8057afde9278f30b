// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#ifndef ORV_TESTS_SCRIPTEDPASS_H
#define ORV_TESTS_SCRIPTEDPASS_H

#include <Kestrin/Orv/RenderPass.h>

#include <functional>
#include <limits>
#include <string>
#include <vector>

#define ORV_PASS_CALLS(X)                                                                          \
    X(setup)                                                                                       \
    X(beginFrame)                                                                                  \
    X(start)                                                                                       \
    X(skip)                                                                                        \
    X(endFrame)                                                                                    \
    X(isFinished)                                                                                  \
    X(teardown)                                                                                    \
    X(numInputs)                                                                                   \
    X(numOutputs)                                                                                  \
    X(inputName)                                                                                   \
    X(outputName)                                                                                  \
    X(setInput)                                                                                    \
    X(defaultValue)                                                                                \
    X(output)                                                                                      \
    X(setNumOutputUsers)                                                                           \
    X(resetNumOutputUsers)                                                                         \
    X(errorCode)                                                                                   \
    X(clearErrorCode)                                                                              \
    X(teardownContextData)                                                                         \
    X(setDefaultValue)                                                                             \
    X(setErrorCode)                                                                                \
    X(destructor)

enum class PassCall {
#define ORV_ENUMERATOR(name) name,
    ORV_PASS_CALLS(ORV_ENUMERATOR)
#undef ORV_ENUMERATOR
};
/// The operations before this one are those that a renderer calls during setup, frames and
/// teardown.
const int kNumPassCalls = static_cast<int>(PassCall::teardownContextData);

/// One call that a pass received.
struct PassEvent
{
    static const qint64 kInvalid = std::numeric_limits<qint64>::min(); // an invalid QVariant

    int pass;
    PassCall call;
    int index;
    qint64 value;

    bool operator==(const PassEvent& other) const
    {
        return pass == other.pass && call == other.call && index == other.index
            && value == other.value;
    }
    std::string print() const
    {
        static const char* const names[] = {
#define ORV_NAME(name) #name,
            ORV_PASS_CALLS(ORV_NAME)
#undef ORV_NAME
        };
        return "pass " + std::to_string(pass) + ": " + names[static_cast<int>(call)] + " "
            + std::to_string(index)
            + (value == kInvalid ? " invalid" : " " + std::to_string(value));
    }
};

/// What a pass throws.
struct PassFailure
{
};

/// Writes down every call that it receives, from all passes of a renderer in one list. What its
/// outputs hold tells where every input came from and in which frame, and it misbehaves on demand.
class ScriptedPass : public Kestrin::Orv::RenderPass
{
public:
    using Callbacks = Kestrin::Orv::RenderCallbacks*;

    ScriptedPass(std::vector<PassEvent>& log, int id, int numInputs, int numOutputs)
        : events(log)
        , number(id)
        , inputCount(numInputs)
        , outputCount(numOutputs)
    {
    }
    ~ScriptedPass() override { events.push_back({number, PassCall::destructor, 0, 0}); }

    unsigned int failsWith = 0;    ///< the error code
    mutable int unfinishedFor = 0; ///< so many answers of isFinished are false
    int lie = 0;                   ///< added to numInputs
    mutable int throwsAt = -1;     ///< throws, once, from this call
    mutable int callsBackAt = -1;  ///< calls back, once, from this call
    std::function<void()> callback;

    void setup(Callbacks callbacks) override { note(PassCall::setup, callbacks); }
    void beginFrame(Callbacks callbacks) override { note(PassCall::beginFrame, callbacks); }
    void start(Callbacks callbacks) override
    {
        ++frame;
        qint64 sum = number * 1000003 + frame;
        for (const qint64 value : values)
            sum = (sum * 31 + value) % 1000000007;
        results = sum;
        note(PassCall::start, callbacks);
    }
    void skip(Callbacks callbacks) override { note(PassCall::skip, callbacks); }
    void endFrame(Callbacks callbacks) override { note(PassCall::endFrame, callbacks); }
    bool isFinished() const override
    {
        note(PassCall::isFinished, 0, 0);
        return unfinishedFor <= 0 || --unfinishedFor < 0;
    }
    void teardown(Callbacks callbacks) override { note(PassCall::teardown, callbacks); }
    void teardownContextData(Callbacks callbacks) override
    {
        note(PassCall::teardownContextData, callbacks);
    }
    int numInputs() const override
    {
        note(PassCall::numInputs, 0, 0);
        return inputCount + lie;
    }
    int numOutputs() const override
    {
        note(PassCall::numOutputs, 0, 0);
        return outputCount;
    }
    QString inputName(int index) const override
    {
        note(PassCall::inputName, index, 0);
        return nameOf(number + index);
    }
    QString outputName(int index) const override
    {
        note(PassCall::outputName, index, 0);
        return nameOf(number / 2 + index);
    }
    void setInput(int index, const QVariant& value) override
    {
        if (index >= static_cast<int>(values.size()))
            values.resize(static_cast<std::size_t>(index) + 1);
        values[static_cast<std::size_t>(index)] = code(value) % 1000000007;
        note(PassCall::setInput, index, code(value));
    }
    QVariant defaultValue(int index) const override
    {
        note(PassCall::defaultValue, index, 0);
        return index % 2 == 0 ? QVariant() : QVariant(-number * 10 - index);
    }
    void setDefaultValue(int index, const QVariant& value) override
    {
        note(PassCall::setDefaultValue, index, code(value));
    }
    QVariant output(int index) const override
    {
        note(PassCall::output, index, 0);
        return frame == 0 ? QVariant() : QVariant(results + index);
    }
    void setNumOutputUsers(int index, int users) override
    {
        note(PassCall::setNumOutputUsers, index, users);
    }
    void resetNumOutputUsers() override { note(PassCall::resetNumOutputUsers, 0, 0); }
    unsigned int errorCode() const override
    {
        note(PassCall::errorCode, 0, 0);
        return failsWith;
    }
    void clearErrorCode() override { note(PassCall::clearErrorCode, 0, 0); }
    void setErrorCode(unsigned int set) override { note(PassCall::setErrorCode, 0, set); }

private:
    /// Few names, so that ports of different passes match.
    static QString nameOf(int at)
    {
        const char letters[] = "-abA";
        return at % 4 == 0 ? QString() : QString(QLatin1Char(letters[at % 4]));
    }

    static qint64 code(const QVariant& value)
    {
        return value.isValid() ? value.toLongLong() : PassEvent::kInvalid;
    }

    void note(PassCall call, Callbacks callbacks)
    {
        note(call, 0, reinterpret_cast<qint64>(callbacks));
    }

    void note(PassCall call, int index, qint64 value) const
    {
        events.push_back({number, call, index, value});
        if (callsBackAt == static_cast<int>(call))
            callBack();
        if (throwsAt == static_cast<int>(call)) {
            throwsAt = -1;
            throw PassFailure();
        }
    }

    void callBack() const
    {
        callsBackAt = -1;
        callback();
    }

    std::vector<PassEvent>& events;
    int number;
    int inputCount, outputCount;
    std::vector<qint64> values;
    qint64 results = 0;
    int frame = 0;
};

#endif
