// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#include "GlContext.h"

#include <QtCore/QVector>

#include <epoxy/gl.h>

#include <algorithm>
#include <cstdlib>

namespace Gallery {

namespace {

bool isSoftware(EGLDeviceEXT device)
{
    const char* extensions = eglQueryDeviceStringEXT(device, EGL_EXTENSIONS);
    return extensions && QByteArray(extensions).contains("EGL_MESA_device_software");
}

/// All displays that need no window system, the most promising first.
QVector<EGLDisplay> windowlessDisplays()
{
    QVector<EGLDisplay> displays;
    const bool hasPlatforms = epoxy_has_egl_extension(EGL_NO_DISPLAY, "EGL_EXT_platform_base");
    if (hasPlatforms && epoxy_has_egl_extension(EGL_NO_DISPLAY, "EGL_EXT_platform_device")
        && epoxy_has_egl_extension(EGL_NO_DISPLAY, "EGL_EXT_device_enumeration")) {
        EGLDeviceEXT devices[16];
        EGLint numDevices = 0;
        if (!eglQueryDevicesEXT(16, devices, &numDevices))
            numDevices = 0;
        std::stable_partition(devices, devices + numDevices,
                              [](EGLDeviceEXT device) { return !isSoftware(device); });
        for (int i = 0; i < numDevices; ++i)
            displays.append(eglGetPlatformDisplayEXT(EGL_PLATFORM_DEVICE_EXT, devices[i], nullptr));
    }
    if (hasPlatforms && epoxy_has_egl_extension(EGL_NO_DISPLAY, "EGL_MESA_platform_surfaceless"))
        displays.append(
            eglGetPlatformDisplayEXT(EGL_PLATFORM_SURFACELESS_MESA, EGL_DEFAULT_DISPLAY, nullptr));
    displays.append(eglGetDisplay(EGL_DEFAULT_DISPLAY));
    displays.removeAll(EGL_NO_DISPLAY);
    return displays;
}

} // namespace

GlContext::~GlContext()
{
    if (display == EGL_NO_DISPLAY)
        return;
    eglMakeCurrent(display, EGL_NO_SURFACE, EGL_NO_SURFACE, EGL_NO_CONTEXT);
    if (context != EGL_NO_CONTEXT)
        eglDestroyContext(display, context);
    // The display belongs to the whole process and stays. Ending it would also unload the driver.
    // Then a leak checker could not distinguish the driver's leaks from ours.
}

bool GlContext::createOn(EGLDisplay candidate)
{
    if (!eglInitialize(candidate, nullptr, nullptr))
        return false;
    display = candidate;
    static const EGLint configAttributes[] = {EGL_SURFACE_TYPE, EGL_PBUFFER_BIT,
                                              EGL_RENDERABLE_TYPE, EGL_OPENGL_ES3_BIT, EGL_NONE};
    static const EGLint contextAttributes[] = {EGL_CONTEXT_CLIENT_VERSION, 3, EGL_NONE};
    EGLConfig config = nullptr;
    EGLint numConfigs = 0;
    if (!eglBindAPI(EGL_OPENGL_ES_API)
        || !eglChooseConfig(display, configAttributes, &config, 1, &numConfigs))
        numConfigs = 0;
    // Nothing is ever shown, so a context without a configuration is sufficient.
    context = eglCreateContext(display, numConfigs > 0 ? config : EGL_NO_CONFIG_KHR, EGL_NO_CONTEXT,
                               contextAttributes);
    if (context != EGL_NO_CONTEXT
        && eglMakeCurrent(display, EGL_NO_SURFACE, EGL_NO_SURFACE, context))
        return true;

    if (context != EGL_NO_CONTEXT)
        eglDestroyContext(display, context);
    eglTerminate(display);
    context = EGL_NO_CONTEXT;
    display = EGL_NO_DISPLAY;
    return false;
}

bool GlContext::create(QString& error)
{
    // The threads of Mesa's software rasteriser corrupt the heap in about 1 of 200 runs (version
    // 22.3.6; with one thread in about 1 of 50; never in 600 runs without threads). Users who set
    // the variable get threads.
    setenv("LP_NUM_THREADS", "0", 0);
    const QVector<EGLDisplay> displays = windowlessDisplays();
    if (std::none_of(displays.begin(), displays.end(),
                     [this](EGLDisplay candidate) { return createOn(candidate); })) {
        error = QStringLiteral("no OpenGL ES 3 driver found through EGL");
        return false;
    }
    if (!epoxy_has_gl_extension("GL_EXT_color_buffer_float")) {
        error = QStringLiteral("%1 cannot render to floating-point textures").arg(rendererName());
        return false;
    }
    return true;
}

QString GlContext::rendererName() const
{
    return QString::fromLatin1(reinterpret_cast<const char*>(glGetString(GL_RENDERER)));
}

} // namespace Gallery
