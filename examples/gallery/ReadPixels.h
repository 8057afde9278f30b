// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#ifndef GALLERY_READPIXELS_H
#define GALLERY_READPIXELS_H

#include "TexturePool.h"

namespace Gallery {

/// Copies a texture's RGBA texels as this GL type, from the bottom row up. Waits for the GPU.
/// \return false if the driver cannot do so for the texture's format.
bool readPixels(const Texture& texture, GLenum type, void* texels);

} // namespace Gallery

#endif
