// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#ifndef GALLERY_GLCONTEXT_H
#define GALLERY_GLCONTEXT_H

#include <QtCore/QString>

#include <epoxy/egl.h>

namespace Gallery {

/// A current OpenGL ES 3 context that has no window and no default framebuffer.
class GlContext
{
public:
    GlContext() = default;
    ~GlContext();
    GlContext(const GlContext&) = delete;
    GlContext& operator=(const GlContext&) = delete;

    /// Makes the context on the first display that has a driver, hardware before software.
    /// \return false, with the reason in \p error, when there is none.
    bool create(QString& error);
    /// The name that the driver reports.
    QString rendererName() const;

private:
    bool createOn(EGLDisplay candidate);

    EGLDisplay display = EGL_NO_DISPLAY;
    EGLContext context = EGL_NO_CONTEXT;
};

} // namespace Gallery

#endif
