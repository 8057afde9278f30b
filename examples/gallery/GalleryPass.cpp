// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#include "GalleryPass.h"

#include "RenderCallbacks.h"

#include <algorithm>

namespace Gallery {

using Kestrin::Orv::RenderCallbacks;

GalleryPass::GalleryPass(const QString& name)
    : passName(name)
{
}

void GalleryPass::addTarget(const QString& outputName, GLenum format)
{
    targets.append({addOutput(outputName), format});
}

void GalleryPass::setShaders(const QString& vertexFile_, const QString& fragmentFile_)
{
    vertexFile = vertexFile_;
    fragmentFile = fragmentFile_;
}

QSize GalleryPass::targetSize(const QSize& frameSize) const
{
    return frameSize;
}

void GalleryPass::setup(RenderCallbacks*)
{
    // The renderer clears error codes before a frame, so start() reports the failure.
    buildError.clear();
    program.build(vertexFile, fragmentFile, buildError);
    glGenFramebuffers(1, &framebuffer);
}

void GalleryPass::start(RenderCallbacks* callbacks)
{
    callbacks->started.append(passName);
    if (!buildError.isEmpty()) {
        fail(*callbacks, PassError::Shader, buildError);
        return;
    }
    if (!bindTargets(*callbacks)) {
        fail(*callbacks, PassError::Framebuffer,
             QStringLiteral("the driver cannot draw to its targets"));
        return;
    }
    program.use();
    draw(*callbacks);
    fence = glFenceSync(GL_SYNC_GPU_COMMANDS_COMPLETE, 0);
    glFlush();
}

void GalleryPass::skip(RenderCallbacks*)
{
    // The textures of the last frame no longer belong to this pass.
    for (auto& output : outputs)
        output.value = QVariant();
}

bool GalleryPass::isFinished() const
{
    return !fence || glClientWaitSync(fence, 0, 0) != GL_TIMEOUT_EXPIRED;
}

void GalleryPass::endFrame(RenderCallbacks* callbacks)
{
    if (fence)
        glDeleteSync(fence);
    fence = nullptr;
    const GLenum glError = glGetError();
    if (glError != GL_NO_ERROR && error == 0)
        fail(*callbacks, PassError::Driver,
             QStringLiteral("GL error 0x%1").arg(glError, 4, 16, QLatin1Char('0')));

    for (const auto& input : qAsConst(inputs))
        callbacks->textures.release(input.value.value<Texture>());
    for (const Target& target : qAsConst(targets)) {
        if (outputUsers.at(target.output) == 0)
            callbacks->textures.release(outputs.at(target.output).value.value<Texture>());
    }
}

void GalleryPass::teardown(RenderCallbacks*)
{
    program.clear();
    if (framebuffer)
        glDeleteFramebuffers(1, &framebuffer);
    framebuffer = 0;
}

void GalleryPass::fail(RenderCallbacks& callbacks, PassError code, const QString& reason)
{
    callbacks.failure = QStringLiteral("pass \"%1\" failed: %2").arg(passName, reason);
    setErrorCode(static_cast<unsigned int>(code));
}

bool GalleryPass::bindTargets(RenderCallbacks& callbacks)
{
    const QSize size = targetSize(callbacks.frameSize);
    glBindFramebuffer(GL_FRAMEBUFFER, framebuffer);
    QVector<GLenum> drawBuffers;
    for (const Target& target : qAsConst(targets)) {
        const bool depth = target.format == GL_DEPTH_COMPONENT24;
        const int users = outputUsers.at(target.output);
        Texture texture;
        // The depth test needs the depth even if nothing reads it.
        if (users > 0 || depth || target.output == targets.first().output)
            texture = callbacks.textures.acquire(target.format, size.width(), size.height(), users);
        outputs[target.output].value = QVariant::fromValue(texture);

        const GLenum attachment = depth
            ? GL_DEPTH_ATTACHMENT
            : GL_COLOR_ATTACHMENT0 + static_cast<GLenum>(drawBuffers.size());
        glFramebufferTexture2D(GL_FRAMEBUFFER, attachment, GL_TEXTURE_2D, texture.name, 0);
        if (!depth)
            drawBuffers.append(texture.name ? attachment : GL_NONE);
    }
    if (drawBuffers.isEmpty())
        drawBuffers.append(GL_NONE);
    glDrawBuffers(drawBuffers.size(), drawBuffers.constData());
    glViewport(0, 0, size.width(), size.height());
    return glCheckFramebufferStatus(GL_FRAMEBUFFER) == GL_FRAMEBUFFER_COMPLETE;
}

} // namespace Gallery
