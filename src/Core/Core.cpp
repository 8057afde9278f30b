// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#include <Kestrin/Orv/Core.h>

#include "Diagnostics.h"

#include <QtCore/QFileInfo>

#include <memory>

#include <unistd.h>

namespace Kestrin {
namespace Orv {

namespace {

// A path is known when it is not empty.
QString cachedExecutablePath;
QString cachedResourcesPath;

} // namespace

QString executablePath()
{
    if (!cachedExecutablePath.isEmpty())
        return cachedExecutablePath;

    constexpr std::size_t capacity = 65534;
    const std::unique_ptr<char[]> buffer(new char[capacity + 1]);
    const ssize_t length = readlink("/proc/self/exe", buffer.get(), capacity);
    if (length < 0 || static_cast<std::size_t>(length) == capacity)
        ORV_CRITICAL("Could not obtain executablePath");
    // A truncated path is used, too.
    buffer[length < 0 ? 0 : static_cast<std::size_t>(length)] = '\0';
    cachedExecutablePath = QString::fromUtf8(buffer.get());
    return cachedExecutablePath;
}

QString resourcesPath()
{
    if (cachedResourcesPath.isEmpty()) {
        const QFileInfo executable(executablePath());
        // For a file that does not exist, some releases of Qt return "." as its directory.
        const QString directory = executable.exists() ? executable.canonicalPath() : QString();
        cachedResourcesPath = directory + QLatin1String("/Resources");
    }
    return cachedResourcesPath;
}

void setResourcesPath(const QString& path)
{
    cachedResourcesPath = path;
}

// Returned strings own their memory: the memory of a literal is gone when a host unloads the
// library.
namespace CoreVersions {

QString getVersion()
{
    return QString::fromLatin1("1.0.0");
}

QString getGitHash()
{
    return QString::fromLatin1("");
}

QString getMd5Sum()
{
    return QString::fromLatin1("1");
}

} // namespace CoreVersions

} // namespace Orv
} // namespace Kestrin
