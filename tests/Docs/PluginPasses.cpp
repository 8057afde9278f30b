// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

// A plugin that can be unloaded, quoted by docs/plugins.md.

#include "PluginPasses.h"

#include <Kestrin/Orv/OrvCore.h>

using namespace Kestrin::Orv;

//! [plugin]
class MeshPass : public RenderPassHelper
{
public:
    MeshPass() { addOutput(QString::fromLatin1("mesh")); } // not QStringLiteral, see below

    void start(RenderCallbacks*) override
    {
        outputs[0].value = QVariant::fromValue(Mesh{QByteArray(3, 'v')});
    }
};

extern "C" Q_DECL_EXPORT RenderPass* makePass()
{
    return new MeshPass;
}
//! [plugin]
