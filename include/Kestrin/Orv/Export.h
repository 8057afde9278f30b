// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#ifndef KESTRIN_ORV_EXPORT_H
#define KESTRIN_ORV_EXPORT_H

#include <Kestrin/Orv/QtVersion.h>

/// ORV_EXPORT marks what libOrvCore exports, ORV_NO_EXPORT what an exported class keeps to the
/// library; everything else is hidden anyway. Both are empty in a static build, which defines
/// ORV_CORE_STATIC for itself and its users. On Windows, OrvCore_EXPORTS is defined where the
/// library is built, and the members of an exported class are all exported.
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
