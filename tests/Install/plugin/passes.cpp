// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#include "PassPlugin.h"

#include <Kestrin/Orv/RenderPassHelper.h>

using namespace Kestrin::Orv;

namespace {

class DoublePass : public RenderPassHelper
{
public:
    DoublePass()
    {
        addInput(QStringLiteral("value"), 0);
        addOutput(QStringLiteral("doubled"));
    }
    void start(RenderCallbacks*) override { outputs[0].value = inputs[0].value.toInt() * 2; }
};

} // namespace

class Passes : public QObject, public PassPlugin
{
    Q_OBJECT
    Q_PLUGIN_METADATA(IID "Kestrin.Orv.Tests.PassPlugin/1")
    Q_INTERFACES(PassPlugin)

public:
    RenderPass* makePass() override { return new DoublePass; }
    bool isHelper(RenderPass* pass) override
    {
        return dynamic_cast<RenderPassHelper*>(pass) != nullptr;
    }
};

/// The way in for hosts that use dlopen().
extern "C" Q_DECL_EXPORT PassPlugin* passPlugin()
{
    static Passes passes;
    return &passes;
}

#include "passes.moc"
