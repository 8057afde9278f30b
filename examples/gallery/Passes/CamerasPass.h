// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#ifndef GALLERY_CAMERASPASS_H
#define GALLERY_CAMERASPASS_H

#include <Kestrin/Orv/RenderPassHelper.h>

namespace Gallery {

/// Places the camera, which looks at the model from a circle around it, and the light.
///
/// Inputs: "Angle" in degrees, "LightDirection" towards the light.
/// Outputs: the matrices "View", "Projection" and "LightMatrix" (world to the shadow map's clip
/// space).
class CamerasPass : public Kestrin::Orv::RenderPassHelper
{
public:
    explicit CamerasPass(const QString& name);

    void start(Kestrin::Orv::RenderCallbacks* callbacks) override;
    void skip(Kestrin::Orv::RenderCallbacks* callbacks) override;

private:
    QString passName;
};

} // namespace Gallery

#endif
