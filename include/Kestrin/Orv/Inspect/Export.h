// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#ifndef KESTRIN_ORV_INSPECT_EXPORT_H
#define KESTRIN_ORV_INSPECT_EXPORT_H

#include <Kestrin/Orv/QtVersion.h>

/// ORV_INSPECT_EXPORT marks everything that libOrvInspect exports. All other symbols are hidden.
/// The macro is empty in a static build, which defines ORV_CORE_STATIC for itself and its users. On
/// Windows, the build of the library defines OrvInspect_EXPORTS.
#if defined(ORV_CORE_STATIC)
#    define ORV_INSPECT_EXPORT
#elif defined(_WIN32)
#    if defined(OrvInspect_EXPORTS)
#        define ORV_INSPECT_EXPORT __declspec(dllexport)
#    else
#        define ORV_INSPECT_EXPORT __declspec(dllimport)
#    endif
#else
#    define ORV_INSPECT_EXPORT __attribute__((visibility("default")))
#endif

#endif
