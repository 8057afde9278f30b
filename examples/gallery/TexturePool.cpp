// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#include "TexturePool.h"

#include <algorithm>

namespace Gallery {

namespace {

int bytesPerTexel(GLenum format)
{
    switch (format) {
    case GL_R8:
        return 1;
    case GL_RGBA16F:
        return 8;
    default: // GL_RGBA8, GL_R11F_G11F_B10F, GL_DEPTH_COMPONENT24
        return 4;
    }
}

qint64 bytesOf(GLenum format, int width, int height)
{
    return qint64(bytesPerTexel(format)) * width * height;
}

GLuint makeTexture(GLenum format, int width, int height)
{
    GLuint name = 0;
    glGenTextures(1, &name);
    glBindTexture(GL_TEXTURE_2D, name);
    glTexStorage2D(GL_TEXTURE_2D, 1, format, width, height);
    const GLint filter = format == GL_DEPTH_COMPONENT24 ? GL_NEAREST : GL_LINEAR;
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, filter);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, filter);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_S, GL_CLAMP_TO_EDGE);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_T, GL_CLAMP_TO_EDGE);
    return name;
}

} // namespace

TexturePool::TexturePool(bool reuse_)
    : reuse(reuse_)
{
}

TexturePool::~TexturePool()
{
    for (const Slot& slot : qAsConst(slots))
        glDeleteTextures(1, &slot.name);
}

Texture TexturePool::acquire(GLenum format, int width, int height, int users)
{
    requested += bytesOf(format, width, height);
    ++requests;
    const auto fits = [=](const Slot& slot) {
        return slot.available && slot.format == format && slot.width == width
            && slot.height == height;
    };
    auto found = std::find_if(slots.begin(), slots.end(), fits);
    if (found == slots.end()) {
        slots.append({makeTexture(format, width, height), format, width, height, 0, true});
        found = slots.end() - 1;
    }
    found->users = users;
    found->available = false;
    return {found->name, width, height, static_cast<int>(found - slots.begin())};
}

void TexturePool::release(const Texture& texture)
{
    if (texture.slot < 0)
        return;
    Slot& slot = slots[texture.slot];
    Q_ASSERT(!slot.available);
    if (--slot.users <= 0)
        slot.available = reuse;
}

int TexturePool::recycle()
{
    int held = 0;
    for (Slot& slot : slots) {
        held += slot.users > 0;
        slot.users = 0;
        slot.available = true;
    }
    mostRequested = std::max(mostRequested, requested);
    mostRequests = std::max(mostRequests, requests);
    requested = 0;
    requests = 0;
    return held;
}

qint64 TexturePool::bytes() const
{
    qint64 sum = 0;
    for (const Slot& slot : slots)
        sum += bytesOf(slot.format, slot.width, slot.height);
    return sum;
}

} // namespace Gallery
