// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#ifndef GALLERY_FILTERPASS_H
#define GALLERY_FILTERPASS_H

#include "GalleryPass.h"

namespace Gallery {

/// Fills its targets with one full-screen triangle.
///
/// The fragment shader of the input "Color" finds its texture in the sampler "uColor", and in the
/// int "uColorLive" whether a pass fed it. Otherwise the texture is of one colour, the input's
/// default. Other inputs arrive in uniforms of the same kind of name.
class FilterPass : public GalleryPass
{
public:
    FilterPass(const QString& name, const QString& shader);

    /// @name Declaring ports, before the pass is registered
    /// @{
    FilterPass* texture(const char* inputName, const QColor& defaultColor);
    FilterPass* value(const char* inputName, const QVariant& defaultValue);
    FilterPass* target(const char* outputName, GLenum format);
    /// Makes the targets as large as the texture at this input; a texel if no pass feeds it.
    /// Without this, they are as large as the frame.
    FilterPass* sizedLike(const char* inputName);
    /// Makes the targets smaller.
    FilterPass* scaledDown(int divisor);
    /// @}

    void setup(Kestrin::Orv::RenderCallbacks* callbacks) override;
    void teardown(Kestrin::Orv::RenderCallbacks* callbacks) override;

protected:
    QSize targetSize(const QSize& frameSize) const override;
    void draw(Kestrin::Orv::RenderCallbacks& callbacks) override;

private:
    struct Sampler
    {
        int input;
        QByteArray uniform;
        GLuint flat; // the one-coloured stand-in
    };

    QVector<Sampler> samplers;
    int sizeInput = -1; // -1 for the frame
    int divisor = 1;
};

} // namespace Gallery

#endif
