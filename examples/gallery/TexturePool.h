// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#ifndef GALLERY_TEXTUREPOOL_H
#define GALLERY_TEXTUREPOOL_H

#include <QtCore/QMetaType>
#include <QtCore/QVector>

#include <epoxy/gl.h>

namespace Gallery {

/// A texture, the value that edges of the graph carry.
struct Texture
{
    GLuint name = 0; ///< 0 for none
    int width = 0;
    int height = 0;
    int slot = -1; ///< in the pool; -1 when the texture is not the pool's
};

/// Textures that live within a frame, from the pass that fills them to the last pass that reads
/// them.
///
/// When all readers have released a texture, it serves the next request of the same format and
/// size.
class TexturePool
{
public:
    /// \param reuse false gives every request of a frame its own texture, for comparison.
    explicit TexturePool(bool reuse);
    ~TexturePool();
    TexturePool(const TexturePool&) = delete;
    TexturePool& operator=(const TexturePool&) = delete;

    /// A texture with undefined content, to be released by `users` readers.
    Texture acquire(GLenum format, int width, int height, int users);
    /// Releases a texture for one reader. Ignores textures that do not belong to the pool.
    void release(const Texture& texture);
    /// Ends the frame. Takes back the textures that readers have not released, because they are
    /// disabled or because a pass before them failed.
    /// \return the number of textures taken back.
    int recycle();

    int numTextures() const { return slots.size(); }
    /// The memory of all textures of the pool.
    qint64 bytes() const;
    /// The largest memory that a frame has requested, with each request counted separately.
    qint64 requestedBytes() const { return mostRequested; }
    int numRequests() const { return mostRequests; }

private:
    struct Slot
    {
        GLuint name;
        GLenum format;
        int width;
        int height;
        int users;      // readers that have not released it yet
        bool available; // for the next request
    };

    bool reuse;
    QVector<Slot> slots;
    qint64 requested = 0;
    int requests = 0;
    qint64 mostRequested = 0;
    int mostRequests = 0;
};

} // namespace Gallery

Q_DECLARE_METATYPE(Gallery::Texture)

#endif
