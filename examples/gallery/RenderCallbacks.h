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

/// The interface between this program and its passes: the scene, the textures of the frame, and
/// fields in which passes report what they did.
class RenderCallbacks
{
public:
    RenderCallbacks(const Gallery::Scene& scene, const QSize& frameSize, bool reuseTextures);

    const Gallery::Scene& scene;
    const QSize frameSize;
    Gallery::TexturePool textures;

    QStringList started; ///< names of the passes that this frame has started, in order
    QString failure;     ///< the message of a pass that set its error code
};

} // namespace Orv
} // namespace Kestrin

#endif
