// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#ifndef GALLERY_TEXTUREPOOL_H
#define GALLERY_TEXTUREPOOL_H

#include <QtCore/QMetaType>
#include <QtCore/QVector>

#include <epoxy/gl.h>

namespace Gallery {

/// What travels along the edges of the graph.
struct Texture
{
    GLuint name = 0; ///< 0 for none
    int width = 0;
    int height = 0;
    int slot = -1; ///< in the pool; -1 when the texture is not the pool's
};

/// Textures that live within a frame, from the pass that fills them to the last that reads them.
///
/// A texture whose readers have all released it serves the next request of the same format and
/// size.
class TexturePool
{
public:
    /// \param reuse false gives every request of a frame a texture of its own, for comparison.
    explicit TexturePool(bool reuse);
    ~TexturePool();
    TexturePool(const TexturePool&) = delete;
    TexturePool& operator=(const TexturePool&) = delete;

    /// A texture of undefined content that `users` readers are going to release.
    Texture acquire(GLenum format, int width, int height, int users);
    /// One reader is done. Textures that are not the pool's are passed over.
    void release(const Texture& texture);
    /// Ends the frame: takes back what readers have not released, because they are disabled or
    /// because a pass before them failed.
    /// \return the number of textures taken back.
    int recycle();

    int numTextures() const { return slots.size(); }
    /// The memory of all textures that the pool has made.
    qint64 bytes() const;
    /// The most that a frame has asked for, each request counted by itself.
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
