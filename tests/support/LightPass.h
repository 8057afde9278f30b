// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#ifndef ORV_TESTS_LIGHTPASS_H
#define ORV_TESTS_LIGHTPASS_H

#include <Kestrin/Orv/RenderPass.h>

/// A pass that costs next to nothing, for graphs of millions. Its outputs are one more than the
/// input that was set last.
class LightPass : public Kestrin::Orv::RenderPass
{
public:
    using Callbacks = Kestrin::Orv::RenderCallbacks*;

    LightPass(int inputCount, int outputCount)
        : inputs(inputCount)
        , outputs(outputCount)
    {
    }

    void setup(Callbacks) override { }
    void beginFrame(Callbacks) override { }
    void start(Callbacks) override { result = input + 1; }
    void skip(Callbacks) override { }
    void endFrame(Callbacks) override { }
    void teardown(Callbacks) override { }
    void teardownContextData(Callbacks) override { }
    int numInputs() const override { return inputs; }
    int numOutputs() const override { return outputs; }
    QString inputName(int) const override { return QString(); }
    QString outputName(int) const override { return QString(); }
    void setInput(int, const QVariant& value) override { input = value.toInt(); }
    QVariant defaultValue(int) const override { return 0; }
    void setDefaultValue(int, const QVariant&) override { }
    QVariant output(int) const override { return result; }
    void setNumOutputUsers(int, int) override { }
    void resetNumOutputUsers() override { }
    unsigned int errorCode() const override { return 0; }
    void clearErrorCode() override { }
    void setErrorCode(unsigned int) override { }

private:
    int inputs;
    int outputs;
    int input = 0;
    int result = 0;
};

#endif
