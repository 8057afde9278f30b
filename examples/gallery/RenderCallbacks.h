// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#ifndef GALLERY_RENDERCALLBACKS_H
#define GALLERY_RENDERCALLBACKS_H

#include "TexturePool.h"

#include <QtCore/QSize>
#include <QtCore/QString>
#include <QtCore/QStringList>

namespace Gallery {
class Scene;
} // namespace Gallery

namespace Kestrin {
namespace Orv {

/// What this program's passes get from it: the scene, the textures of the frame, and a place to
/// leave word of what they did.
class RenderCallbacks
{
public:
    RenderCallbacks(const Gallery::Scene& scene, const QSize& frameSize, bool reuseTextures);

    const Gallery::Scene& scene;
    const QSize frameSize;
    Gallery::TexturePool textures;

    QStringList started; ///< names of the passes that this frame has started, in order
    QString failure;     ///< what a pass said when it set its error code
};

} // namespace Orv
} // namespace Kestrin

#endif
