// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#ifndef GALLERY_GEOMETRYPASS_H
#define GALLERY_GEOMETRYPASS_H

#include "GalleryPass.h"

namespace Gallery {

/// Draws the scene's triangles as seen by the camera of its input matrices.
class GeometryPass : public GalleryPass
{
public:
    /// A pass that draws from the light into its own square target: "LightMatrix" to "ShadowDepth".
    static GeometryPass* makeShadowMap(const QString& name);
    /// A pass that draws from the camera: "View" and "Projection" to "Albedo" (and metalness),
    /// "Normal" (in view space, and roughness) and "Depth".
    static GeometryPass* makeGBuffer(const QString& name);

protected:
    QSize targetSize(const QSize& frameSize) const override;
    void draw(Kestrin::Orv::RenderCallbacks& callbacks) override;

private:
    using GalleryPass::GalleryPass;

    QSize fixedSize; // null for the size of the frame
};

} // namespace Gallery

#endif
