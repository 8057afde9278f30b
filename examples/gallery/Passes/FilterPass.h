// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#ifndef GALLERY_FILTERPASS_H
#define GALLERY_FILTERPASS_H

#include "GalleryPass.h"

namespace Gallery {

/// Fills its targets with one full-screen triangle.
///
/// For an input "Color", the fragment shader finds the texture in the sampler "uColor". The int
/// "uColorLive" says whether a pass fed it. If not, the texture has one colour, the input's
/// default. Other inputs arrive in uniforms with names of the same form.
class FilterPass : public GalleryPass
{
public:
    FilterPass(const QString& name, const QString& shader);

    /// @name Declaring ports, before the pass is registered
    /// @{
    FilterPass* texture(const char* inputName, const QColor& defaultColor);
    FilterPass* value(const char* inputName, const QVariant& defaultValue);
    FilterPass* target(const char* outputName, GLenum format);
    /// Makes the targets as large as the texture at this input, or one texel large if no pass feeds
    /// it. Without this call, they are as large as the frame.
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
        GLuint flat; // the texture with one colour
    };

    QVector<Sampler> samplers;
    int sizeInput = -1; // -1 for the frame
    int divisor = 1;
};

} // namespace Gallery

#endif
