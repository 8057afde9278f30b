// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

// What docs/plugins.md says about unloading.

#include "PluginPasses.h"

#include <Kestrin/Orv/OrvCore.h>

#include <gtest/gtest.h>

#include <dlfcn.h>

using namespace Kestrin::Orv;

namespace {

using MakePass = RenderPass* (*)();

MakePass makePassOf(void* plugin)
{
    return reinterpret_cast<MakePass>(dlsym(plugin, "makePass"));
}

bool isLoaded()
{
    void* plugin = dlopen(ORV_PLUGIN, RTLD_NOW | RTLD_NOLOAD);
    if (plugin)
        dlclose(plugin);
    return plugin != nullptr;
}

} // namespace

TEST(Plugins, WhatAHostKeepsOutlivesThePlugin)
{
    // Twice: a type registered by the host is good for a plugin that is loaded again.
    for (int round = 0; round < 2; ++round) {
        void* plugin = dlopen(ORV_PLUGIN, RTLD_NOW | RTLD_LOCAL);
        ASSERT_NE(plugin, nullptr) << dlerror();
        const MakePass makePass = makePassOf(plugin);
        ASSERT_NE(makePass, nullptr);

        QString name;
        QVariant mesh;
        //! [host]
        qRegisterMetaType<Mesh>(); // before a plugin uses it: the type is the host's
        {
            Renderer renderer;
            const int node =
                renderer.addPass(QStringLiteral("pass"), makePass(), Graph::kRootNodeRef);
            const int result = renderer.addOutput(QStringLiteral("result"));
            renderer.getGraph()->addUpEdge(result, node, 0);
            renderer.setup(nullptr);
            renderer.render(nullptr);
            name = renderer.getGraph()->outputName(node, 0);
            mesh = renderer.output(result);
            renderer.teardown(nullptr);
        } // deletes the pass, whose code is in the plugin
        dlclose(plugin);
        //! [host]

        EXPECT_FALSE(isLoaded());
        EXPECT_EQ(name, QStringLiteral("mesh"));
        EXPECT_EQ(mesh.value<Mesh>().vertices, QByteArray("vvv"));
    }
}

TEST(Plugins, ADeclaredTypeStaysRegistered)
{
    EXPECT_FALSE(QMetaType::unregisterType(qRegisterMetaType<Mesh>()));
}
