// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#ifndef GALLERY_GEOMETRYPASS_H
#define GALLERY_GEOMETRYPASS_H

#include "GalleryPass.h"

namespace Gallery {

/// Draws the scene's triangles as the camera of its matrices sees them.
class GeometryPass : public GalleryPass
{
public:
    /// From the light, into a square of its own: "LightMatrix" to "ShadowDepth".
    static GeometryPass* makeShadowMap(const QString& name);
    /// From the camera: "View" and "Projection" to "Albedo" (and metalness), "Normal" (in view
    /// space, and roughness) and "Depth".
    static GeometryPass* makeGBuffer(const QString& name);

protected:
    QSize targetSize(const QSize& frameSize) const override;
    void draw(Kestrin::Orv::RenderCallbacks& callbacks) override;

private:
    using GalleryPass::GalleryPass;

    QSize fixedSize; // null for the frame's
};

} // namespace Gallery

#endif
