// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#include "LightMeterPass.h"

#include "ReadPixels.h"

#include <cmath>

namespace Gallery {

LightMeterPass::LightMeterPass()
    : FilterPass(QStringLiteral("LightMeter"), QStringLiteral("LightMeter.frag"))
{
    texture("Color", Qt::black);
    target("LogLuminance", GL_RGBA16F);
    luminance = addOutput(QStringLiteral("Luminance"));
}

QSize LightMeterPass::targetSize(const QSize&) const
{
    return {1, 1};
}

void LightMeterPass::endFrame(Kestrin::Orv::RenderCallbacks* callbacks)
{
    const auto meter = outputs.at(0).value.value<Texture>();
    if (meter.name && error == 0) {
        float texel[4] = {0, 0, 0, 0};
        readPixels(meter, GL_FLOAT, texel);
        outputs[luminance].value = std::exp2(texel[0]);
    }
    FilterPass::endFrame(callbacks);
}

} // namespace Gallery
