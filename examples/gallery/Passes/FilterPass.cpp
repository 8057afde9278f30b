// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#include "FilterPass.h"

#include "RenderCallbacks.h"

#include <QtGui/QVector3D>

#include <algorithm>

namespace Gallery {

namespace {

QByteArray uniformName(const QString& inputName)
{
    return 'u' + inputName.toLatin1();
}

GLuint makeFlatTexture(const QColor& color)
{
    const GLubyte texel[4] = {GLubyte(color.red()), GLubyte(color.green()), GLubyte(color.blue()),
                              GLubyte(color.alpha())};
    GLuint name = 0;
    glGenTextures(1, &name);
    glBindTexture(GL_TEXTURE_2D, name);
    glTexStorage2D(GL_TEXTURE_2D, 1, GL_RGBA8, 1, 1);
    glTexSubImage2D(GL_TEXTURE_2D, 0, 0, 0, 1, 1, GL_RGBA, GL_UNSIGNED_BYTE, texel);
    return name;
}

} // namespace

FilterPass::FilterPass(const QString& name, const QString& shader)
    : GalleryPass(name)
{
    setShaders(QStringLiteral("FullScreen.vert"), shader);
}

FilterPass* FilterPass::texture(const char* inputName, const QColor& defaultColor)
{
    const QString name = QString::fromLatin1(inputName);
    samplers.append({addInput(name, defaultColor), uniformName(name), 0});
    return this;
}

FilterPass* FilterPass::value(const char* inputName, const QVariant& defaultValue)
{
    addInput(QString::fromLatin1(inputName), defaultValue);
    return this;
}

FilterPass* FilterPass::target(const char* outputName, GLenum format)
{
    addTarget(QString::fromLatin1(outputName), format);
    return this;
}

FilterPass* FilterPass::sizedLike(const char* inputName)
{
    const auto isIt = [=](const auto& input) { return input.name == QLatin1String(inputName); };
    const auto found = std::find_if(inputs.cbegin(), inputs.cend(), isIt);
    Q_ASSERT(found != inputs.cend());
    sizeInput = static_cast<int>(found - inputs.cbegin());
    return this;
}

FilterPass* FilterPass::scaledDown(int divisor_)
{
    divisor = divisor_;
    return this;
}

void FilterPass::setup(Kestrin::Orv::RenderCallbacks* callbacks)
{
    GalleryPass::setup(callbacks);
    for (Sampler& sampler : samplers)
        sampler.flat = makeFlatTexture(defaultValues.at(sampler.input).value<QColor>());
}

void FilterPass::teardown(Kestrin::Orv::RenderCallbacks* callbacks)
{
    for (Sampler& sampler : samplers) {
        glDeleteTextures(1, &sampler.flat);
        sampler.flat = 0;
    }
    GalleryPass::teardown(callbacks);
}

QSize FilterPass::targetSize(const QSize& frameSize) const
{
    QSize size = frameSize;
    if (sizeInput >= 0) {
        const auto texture = inputs.at(sizeInput).value.value<Texture>();
        size = {texture.width, texture.height};
    }
    return {std::max(1, size.width() / divisor), std::max(1, size.height() / divisor)};
}

void FilterPass::draw(Kestrin::Orv::RenderCallbacks& callbacks)
{
    for (const auto& input : qAsConst(inputs))
        shaders().set(uniformName(input.name).constData(), input.value);
    for (int unit = 0; unit < samplers.size(); ++unit) {
        const Sampler& sampler = samplers.at(unit);
        const GLuint live = inputs.at(sampler.input).value.value<Texture>().name;
        glActiveTexture(GL_TEXTURE0 + static_cast<GLenum>(unit));
        glBindTexture(GL_TEXTURE_2D, live ? live : sampler.flat);
        shaders().set(sampler.uniform.constData(), unit);
        shaders().set((sampler.uniform + "Live").constData(), live != 0);
    }
    const QSize size = targetSize(callbacks.frameSize);
    shaders().set("uTargetSize", QVector3D(float(size.width()), float(size.height()), 0));
    glDrawArrays(GL_TRIANGLES, 0, 3);
    glActiveTexture(GL_TEXTURE0);
}

} // namespace Gallery
