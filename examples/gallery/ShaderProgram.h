// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#ifndef GALLERY_SHADERPROGRAM_H
#define GALLERY_SHADERPROGRAM_H

#include <QtCore/QString>
#include <QtCore/QVariant>

#include <epoxy/gl.h>

namespace Gallery {

/// A GL program made of a vertex shader and a fragment shader from the resources directory.
class ShaderProgram
{
public:
    ShaderProgram() = default;
    ~ShaderProgram();
    ShaderProgram(const ShaderProgram&) = delete;
    ShaderProgram& operator=(const ShaderProgram&) = delete;

    /// Reads, compiles and links the shaders. Common.glsl is put in front of every shader.
    /// \return false, with the reason on one line in \p error.
    bool build(const QString& vertexFile, const QString& fragmentFile, QString& error);
    void clear();

    void use() const { glUseProgram(program); }
    /// Sets a uniform of the program in use: an int, a number, a QVector3D or a QMatrix4x4. Ignores
    /// a uniform that the shaders do not have.
    void set(const char* uniform, const QVariant& value) const;

private:
    GLuint program = 0;
};

} // namespace Gallery

#endif
