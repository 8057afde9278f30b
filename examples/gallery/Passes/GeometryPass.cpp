// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#include "GeometryPass.h"

#include "RenderCallbacks.h"
#include "Scene.h"

#include <QtGui/QMatrix4x4>

namespace Gallery {

GeometryPass* GeometryPass::makeShadowMap(const QString& name)
{
    auto* pass = new GeometryPass(name);
    pass->fixedSize = QSize(1536, 1536);
    pass->setShaders(QStringLiteral("Geometry.vert"), QStringLiteral("ShadowMap.frag"));
    pass->addInput(QStringLiteral("LightMatrix"), QMatrix4x4());
    pass->addTarget(QStringLiteral("ShadowDepth"), GL_DEPTH_COMPONENT24);
    return pass;
}

GeometryPass* GeometryPass::makeGBuffer(const QString& name)
{
    auto* pass = new GeometryPass(name);
    pass->setShaders(QStringLiteral("Geometry.vert"), QStringLiteral("GBuffer.frag"));
    pass->addInput(QStringLiteral("View"), QMatrix4x4());
    pass->addInput(QStringLiteral("Projection"), QMatrix4x4());
    pass->addTarget(QStringLiteral("Albedo"), GL_RGBA8);
    pass->addTarget(QStringLiteral("Normal"), GL_RGBA16F);
    pass->addTarget(QStringLiteral("Depth"), GL_DEPTH_COMPONENT24);
    return pass;
}

QSize GeometryPass::targetSize(const QSize& frameSize) const
{
    return fixedSize.isEmpty() ? frameSize : fixedSize;
}

void GeometryPass::draw(Kestrin::Orv::RenderCallbacks& callbacks)
{
    QMatrix4x4 clipFromWorld;
    for (int i = inputs.size() - 1; i >= 0; --i)
        clipFromWorld = clipFromWorld * inputs.at(i).value.value<QMatrix4x4>();
    shaders().set("uClipFromWorld", clipFromWorld);
    shaders().set("uViewFromWorld", inputs.at(0).value);

    glEnable(GL_DEPTH_TEST);
    glClearColor(0, 0, 0, 0);
    glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
    callbacks.scene.draw(shaders());
    glDisable(GL_DEPTH_TEST);
}

} // namespace Gallery
