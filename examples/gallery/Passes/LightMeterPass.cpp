// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#include "LightMeterPass.h"

#include "ReadPixels.h"

#include <cmath>

namespace Gallery {

LightMeterPass::LightMeterPass(const QString& name)
    : FilterPass(name, QStringLiteral("LightMeter.frag"))
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
        if (readPixels(meter, GL_FLOAT, texel))
            outputs[luminance].value = std::exp2(texel[0]);
        else
            fail(*callbacks, PassError::Driver, QStringLiteral("its target cannot be read"));
    }
    FilterPass::endFrame(callbacks);
}

} // namespace Gallery
