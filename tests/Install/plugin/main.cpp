// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#include "PassPlugin.h"

#include <Kestrin/Orv/OrvCore.h>

#include <QtCore/QPluginLoader>

#include <cstdio>

#include <dlfcn.h>

using namespace Kestrin::Orv;

namespace {

class FivePass : public RenderPassHelper
{
public:
    FivePass() { addOutput(QStringLiteral("five")); }
    void start(RenderCallbacks*) override { outputs[0].value = 5; }
};

/// Renders five, doubled twice by passes of the plugin. All is destroyed before the plugin is
/// unloaded.
void render(const char* loader, PassPlugin* plugin)
{
    Renderer renderer;
    auto* five = new FivePass;
    auto* once = plugin->makePass();
    auto* twice = plugin->makePass();
    const int fiveNode = renderer.addPass(QStringLiteral("five"), five, Graph::kRootNodeRef);
    const int onceNode = renderer.addPass(QStringLiteral("once"), once, Graph::kRootNodeRef);
    const int twiceNode = renderer.addPass(QStringLiteral("twice"), twice, Graph::kRootNodeRef);
    const int result = renderer.addOutput(QStringLiteral("result"));
    Graph* graph = renderer.getGraph();
    graph->addEdgeByName(fiveNode, QStringLiteral("five"), onceNode, QStringLiteral("value"));
    graph->addEdgeByName(onceNode, QStringLiteral("doubled"), twiceNode, QStringLiteral("value"));
    graph->addUpEdgeByName(QStringLiteral("result"), twiceNode, QStringLiteral("doubled"));

    renderer.setup(nullptr);
    const bool succeeded = renderer.render(nullptr);
    std::printf("%s: %s, result %d\n", loader, succeeded ? "ok" : "failed",
                renderer.output(result).toInt());
    std::printf("host sees the plugin's type: %s\n",
                dynamic_cast<RenderPassHelper*>(once) ? "yes" : "no");
    std::printf("plugin sees the host's type: %s\n", plugin->isHelper(five) ? "yes" : "no");
    renderer.teardown(nullptr);
}

} // namespace

int main()
{
    QPluginLoader loader(QStringLiteral(PLUGIN));
    auto* plugin = qobject_cast<PassPlugin*>(loader.instance());
    if (!plugin) {
        std::fprintf(stderr, "%s\n", qPrintable(loader.errorString()));
        return 1;
    }
    render("QPluginLoader", plugin);
    loader.unload();

    void* library = dlopen(PLUGIN, RTLD_NOW | RTLD_LOCAL);
    if (!library) {
        std::fprintf(stderr, "%s\n", dlerror());
        return 1;
    }
    using PassPluginFunction = PassPlugin* (*)();
    const auto passPlugin = reinterpret_cast<PassPluginFunction>(dlsym(library, "passPlugin"));
    render("dlopen", passPlugin());
    dlclose(library);
}
