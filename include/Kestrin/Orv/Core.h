// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#ifndef KESTRIN_ORV_CORE_H
#define KESTRIN_ORV_CORE_H

#include <Kestrin/Orv/Export.h>

#include <QtCore/QString>

namespace Kestrin {
namespace Orv {

/// @file
/// The two paths are worked out on first use and kept for the life of the process. They have no
/// lock: call these functions from one thread at a time.

/// The absolute path of the running executable. When the system does not say, logs at critical
/// level, answers an empty path and asks again on the next call.
ORV_EXPORT QString executablePath();

/// The resources directory: what setResourcesPath() set, otherwise the directory "Resources" beside
/// the executable, symbolic links resolved. It need not exist. If the executable's file has been
/// removed, "/Resources".
ORV_EXPORT QString resourcesPath();

/// Replaces the resources directory, unchecked. An empty path makes the next resourcesPath() work
/// it out again.
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
