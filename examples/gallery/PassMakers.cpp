// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#include "PassMakers.h"

#include "Passes/CamerasPass.h"
#include "Passes/FilterPass.h"
#include "Passes/GeometryPass.h"
#include "Passes/LightMeterPass.h"

#include <QtGui/QMatrix4x4>
#include <QtGui/QVector3D>

namespace Gallery {

using Kestrin::Orv::RenderPass;

namespace {

/// A filter with the shader of the type.
FilterPass* filter(const QString& type, const QString& name)
{
    return new FilterPass(name, type + QLatin1String(".frag"));
}

struct PassType
{
    const char* name;
    RenderPass* (*make)(const QString& type, const QString& name);
};

const PassType types[] = {
    {"Cameras",
     [](const QString&, const QString& name) -> RenderPass* { return new CamerasPass(name); }},
    {"ShadowMap",
     [](const QString&, const QString& name) -> RenderPass* {
         return GeometryPass::makeShadowMap(name);
     }},
    {"GBuffer",
     [](const QString&, const QString& name) -> RenderPass* {
         return GeometryPass::makeGBuffer(name);
     }},
    {"Occlusion",
     [](const QString& type, const QString& name) -> RenderPass* {
         return filter(type, name)
             ->texture("Normal", QColor(0, 0, 255))
             ->texture("Depth", Qt::white)
             ->value("Projection", QMatrix4x4())
             ->target("RawOcclusion", GL_R8);
     }},
    {"OcclusionBlur",
     [](const QString& type, const QString& name) -> RenderPass* {
         return filter(type, name)
             ->texture("RawOcclusion", Qt::white)
             ->texture("Depth", Qt::white)
             ->value("Projection", QMatrix4x4())
             ->target("Occlusion", GL_R8);
     }},
    {"Lighting",
     [](const QString& type, const QString& name) -> RenderPass* {
         return filter(type, name)
             ->texture("Albedo", Qt::gray)
             ->texture("Normal", QColor(0, 0, 255, 128))
             ->texture("Depth", Qt::white)
             ->texture("Occlusion", Qt::white)
             ->texture("ShadowDepth", Qt::white)
             ->value("View", QMatrix4x4())
             ->value("Projection", QMatrix4x4())
             ->value("LightMatrix", QMatrix4x4())
             ->value("LightDirection", QVector3D(0, 1, 0))
             ->target("Color", GL_RGBA16F)
             ->target("Terms", GL_RGBA8);
     }},
    {"Threshold",
     [](const QString& type, const QString& name) -> RenderPass* {
         return filter(type, name)
             ->texture("Color", Qt::black)
             ->target("Bright", GL_R11F_G11F_B10F)
             ->scaledDown(2);
     }},
    {"Downsample",
     [](const QString& type, const QString& name) -> RenderPass* {
         return filter(type, name)
             ->texture("Color", Qt::black)
             ->target("Color", GL_R11F_G11F_B10F)
             ->sizedLike("Color")
             ->scaledDown(2);
     }},
    {"Upsample",
     [](const QString& type, const QString& name) -> RenderPass* {
         return filter(type, name)
             ->texture("Color", Qt::black)
             ->texture("Detail", Qt::black)
             ->target("Color", GL_R11F_G11F_B10F)
             ->sizedLike("Detail");
     }},
    {"Glow",
     [](const QString& type, const QString& name) -> RenderPass* {
         return filter(type, name)
             ->texture("Color", Qt::black)
             ->value("BloomStrength", 0.0F)
             ->target("Bloom", GL_R11F_G11F_B10F)
             ->scaledDown(2);
     }},
    {"ToneMap",
     [](const QString& type, const QString& name) -> RenderPass* {
         return filter(type, name)
             ->texture("Color", Qt::black)
             ->texture("Bloom", Qt::black)
             ->value("Exposure", 1.0F)
             ->target("Color", GL_RGBA8);
     }},
    {"AntiAlias",
     [](const QString& type, const QString& name) -> RenderPass* {
         return filter(type, name)->texture("Color", Qt::black)->target("Smooth", GL_RGBA8);
     }},
    {"Present",
     [](const QString& type, const QString& name) -> RenderPass* {
         return filter(type, name)
             ->texture("Smooth", Qt::black)
             ->texture("Color", Qt::black)
             ->target("Picture", GL_RGBA8);
     }},
    {"DebugView",
     [](const QString& type, const QString& name) -> RenderPass* {
         return filter(type, name)
             ->texture("Albedo", Qt::black)
             ->texture("Normal", Qt::black)
             ->texture("Depth", Qt::white)
             ->texture("ShadowDepth", Qt::white)
             ->texture("Terms", Qt::black)
             ->value("Projection", QMatrix4x4())
             ->target("Debug", GL_RGBA8);
     }},
    {"LightMeter",
     [](const QString&, const QString& name) -> RenderPass* { return new LightMeterPass(name); }},
};

} // namespace

QStringList passTypes()
{
    QStringList names;
    for (const PassType& type : types)
        names.append(QString::fromLatin1(type.name));
    return names;
}

RenderPass* makePass(const QString& typeName, const QString& name)
{
    for (const PassType& type : types) {
        if (typeName == QLatin1String(type.name))
            return type.make(typeName, name);
    }
    return nullptr;
}

} // namespace Gallery
