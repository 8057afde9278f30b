// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#ifndef GALLERY_LIGHTMETERPASS_H
#define GALLERY_LIGHTMETERPASS_H

#include "FilterPass.h"

namespace Gallery {

/// Measures the picture before tone mapping: "Color" to "Luminance", the geometric mean as a
/// number. No picture needs it, so it runs only as the renderer's target.
class LightMeterPass : public FilterPass
{
public:
    explicit LightMeterPass(const QString& name);

    void endFrame(Kestrin::Orv::RenderCallbacks* callbacks) override;

protected:
    QSize targetSize(const QSize& frameSize) const override;

private:
    int luminance; // output
};

} // namespace Gallery

#endif
