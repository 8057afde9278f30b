// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#ifndef KESTRIN_ORV_CORE_H
#define KESTRIN_ORV_CORE_H

#include <Kestrin/Orv/Export.h>

#include <QtCore/QString>

namespace Kestrin {
namespace Orv {

/// @file
/// Paths of the executable and its resources, and the library's versions. Both paths are
/// determined on first use and kept for the life of the process. They have no lock: call these
/// functions from one thread at a time.

/// The absolute path of the running executable. When the system does not report it, logs at
/// critical level, returns an empty path and tries again on the next call.
ORV_EXPORT QString executablePath();

/// The resources directory: the path from setResourcesPath(), otherwise the directory "Resources"
/// beside the executable, with symbolic links resolved. The directory need not exist. Returns
/// "/Resources" if the executable's file has been removed.
ORV_EXPORT QString resourcesPath();

/// Replaces the resources directory, unchecked. After an empty path, the next resourcesPath()
/// determines the directory again.
ORV_EXPORT void setResourcesPath(const QString& path);

/// The library's versions.
namespace CoreVersions {

/// "1.0.0"
ORV_EXPORT QString getVersion();
/// Empty, but not null: releases carry no revision hash.
ORV_EXPORT QString getGitHash();
/// "1"
ORV_EXPORT QString getMd5Sum();

} // namespace CoreVersions

} // namespace Orv
} // namespace Kestrin

#endif
