// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#include "ShaderProgram.h"

#include <Kestrin/Orv/Core.h>
#include <Kestrin/Orv/Memory.h>

#include <QtGui/QMatrix4x4>
#include <QtGui/QVector3D>

namespace Gallery {

namespace {

bool readResource(const QString& file, QByteArray& text, QString& error)
{
    Kestrin::Orv::MemoryMappedFile mapped(Kestrin::Orv::resourcesPath() + QLatin1Char('/') + file);
    unsigned char* bytes = mapped.get(0, mapped.size());
    if (!bytes) {
        error = QStringLiteral("cannot read %1/%2").arg(Kestrin::Orv::resourcesPath(), file);
        return false;
    }
    text = QByteArray(reinterpret_cast<const char*>(bytes), static_cast<int>(mapped.size()));
    mapped.release(bytes);
    return true;
}

/// The first error in a driver's log.
QString firstLine(const QByteArray& log)
{
    return QString::fromUtf8(log.constData())
        .trimmed()
        .section(QLatin1Char('\n'), 0, 0)
        .simplified();
}

GLuint compile(GLenum kind, const QString& file, QString& error)
{
    QByteArray common;
    QByteArray text;
    if (!readResource(QStringLiteral("Common.glsl"), common, error)
        || !readResource(file, text, error))
        return 0;
    const QByteArray source = common + "\n#line 1\n" + text;
    const char* pointer = source.constData();
    const GLuint shader = glCreateShader(kind);
    glShaderSource(shader, 1, &pointer, nullptr);
    glCompileShader(shader);
    GLint compiled = GL_FALSE;
    glGetShaderiv(shader, GL_COMPILE_STATUS, &compiled);
    if (compiled)
        return shader;
    QByteArray log(4096, '\0');
    glGetShaderInfoLog(shader, log.size(), nullptr, log.data());
    error = QStringLiteral("%1 does not compile: %2").arg(file, firstLine(log));
    glDeleteShader(shader);
    return 0;
}

} // namespace

ShaderProgram::~ShaderProgram()
{
    clear();
}

void ShaderProgram::clear()
{
    if (program)
        glDeleteProgram(program);
    program = 0;
}

bool ShaderProgram::build(const QString& vertexFile, const QString& fragmentFile, QString& error)
{
    clear();
    const GLuint vertex = compile(GL_VERTEX_SHADER, vertexFile, error);
    if (!vertex)
        return false;
    const GLuint fragment = compile(GL_FRAGMENT_SHADER, fragmentFile, error);
    if (!fragment) {
        glDeleteShader(vertex);
        return false;
    }
    program = glCreateProgram();
    glAttachShader(program, vertex);
    glAttachShader(program, fragment);
    glLinkProgram(program);
    glDeleteShader(vertex);
    glDeleteShader(fragment);
    GLint linked = GL_FALSE;
    glGetProgramiv(program, GL_LINK_STATUS, &linked);
    if (linked)
        return true;
    QByteArray log(4096, '\0');
    glGetProgramInfoLog(program, log.size(), nullptr, log.data());
    error =
        QStringLiteral("%1 and %2 do not link: %3").arg(vertexFile, fragmentFile, firstLine(log));
    clear();
    return false;
}

void ShaderProgram::set(const char* uniform, const QVariant& value) const
{
    const GLint location = glGetUniformLocation(program, uniform);
    if (location < 0)
        return;
    switch (static_cast<int>(value.type())) {
    case QMetaType::Bool:
    case QMetaType::Int:
        glUniform1i(location, value.toInt());
        break;
    case QMetaType::QVector3D: {
        const auto v = value.value<QVector3D>();
        glUniform3f(location, v.x(), v.y(), v.z());
        break;
    }
    case QMetaType::QMatrix4x4:
        glUniformMatrix4fv(location, 1, GL_FALSE, value.value<QMatrix4x4>().constData());
        break;
    case QMetaType::Float:
    case QMetaType::Double:
        glUniform1f(location, value.toFloat());
        break;
    default: // textures are bound, not set
        break;
    }
}

} // namespace Gallery
