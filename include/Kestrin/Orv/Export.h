// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#ifndef KESTRIN_ORV_EXPORT_H
#define KESTRIN_ORV_EXPORT_H

#include <Kestrin/Orv/QtVersion.h>

/// ORV_EXPORT marks everything that libOrvCore exports. ORV_NO_EXPORT marks the parts of an
/// exported class that stay private to the library. All other symbols are hidden. Both macros are
/// empty in a static build, which defines ORV_CORE_STATIC for itself and its users. On Windows, the
/// build of the library defines OrvCore_EXPORTS, and all members of an exported class are exported.
#if defined(ORV_CORE_STATIC)
#    define ORV_EXPORT
#    define ORV_NO_EXPORT
#elif defined(_WIN32)
#    if defined(OrvCore_EXPORTS)
#        define ORV_EXPORT __declspec(dllexport)
#    else
#        define ORV_EXPORT __declspec(dllimport)
#    endif
#    define ORV_NO_EXPORT
#else
#    define ORV_EXPORT __attribute__((visibility("default")))
#    define ORV_NO_EXPORT __attribute__((visibility("hidden")))
#endif

#endif
