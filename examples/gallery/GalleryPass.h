// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#ifndef GALLERY_GALLERYPASS_H
#define GALLERY_GALLERYPASS_H

#include "ShaderProgram.h"
#include "TexturePool.h"

#include <Kestrin/Orv/RenderPassHelper.h>

#include <QtCore/QSize>
#include <QtGui/QColor>

namespace Gallery {

/// Error codes of this program's passes. RenderCallbacks::failure has the details.
enum class PassError : unsigned int { None, Shader, Framebuffer, Driver };

/// A pass that draws into textures of the pool.
///
/// Each output declared with addTarget() gets a texture when the pass starts, for the number of
/// readers that the renderer counted. The first output always gets one, because a framebuffer needs
/// a texture to draw to. The others get one only if they have readers. A texture that arrives at an
/// input is released when the frame of this pass ends, also if the pass was skipped.
class GalleryPass : public Kestrin::Orv::RenderPassHelper
{
public:
    explicit GalleryPass(const QString& name);

    const QString& name() const { return passName; }

    void setup(Kestrin::Orv::RenderCallbacks* callbacks) override;
    void start(Kestrin::Orv::RenderCallbacks* callbacks) override;
    void skip(Kestrin::Orv::RenderCallbacks* callbacks) override;
    bool isFinished() const override;
    void endFrame(Kestrin::Orv::RenderCallbacks* callbacks) override;
    void teardown(Kestrin::Orv::RenderCallbacks* callbacks) override;

protected:
    /// Adds an output for a texture of this format.
    void addTarget(const QString& outputName, GLenum format);
    /// Names the shaders of the program that setup() builds.
    void setShaders(const QString& vertexFile, const QString& fragmentFile);
    /// The size of the targets, for a frame of this size.
    virtual QSize targetSize(const QSize& frameSize) const;
    /// Draws. The program is in use, the targets are bound and the viewport is set.
    virtual void draw(Kestrin::Orv::RenderCallbacks& callbacks) = 0;

    void fail(Kestrin::Orv::RenderCallbacks& callbacks, PassError code, const QString& reason);
    const ShaderProgram& shaders() const { return program; }

private:
    bool bindTargets(Kestrin::Orv::RenderCallbacks& callbacks);

    struct Target
    {
        int output;
        GLenum format;
    };

    QString passName;
    QString vertexFile;
    QString fragmentFile;
    QString buildError;
    ShaderProgram program;
    QVector<Target> targets;
    GLuint framebuffer = 0;
    GLsync fence = nullptr;
};

} // namespace Gallery

#endif
