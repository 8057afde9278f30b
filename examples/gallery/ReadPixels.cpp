// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#include "ReadPixels.h"

namespace Gallery {

bool readPixels(const Texture& texture, GLenum type, void* texels)
{
    GLuint framebuffer = 0;
    glGenFramebuffers(1, &framebuffer);
    glBindFramebuffer(GL_FRAMEBUFFER, framebuffer);
    glFramebufferTexture2D(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_TEXTURE_2D, texture.name, 0);
    glReadPixels(0, 0, texture.width, texture.height, GL_RGBA, type, texels);
    glDeleteFramebuffers(1, &framebuffer);
    return glGetError() == GL_NO_ERROR;
}

} // namespace Gallery
