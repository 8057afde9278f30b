// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#include "RenderCallbacks.h"

namespace Kestrin {
namespace Orv {

RenderCallbacks::RenderCallbacks(const Gallery::Scene& scene_, const QSize& frameSize_,
                                 bool reuseTextures)
    : scene(scene_)
    , frameSize(frameSize_)
    , textures(reuseTextures)
{
}

} // namespace Orv
} // namespace Kestrin
