// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#ifndef KESTRIN_ORV_PROFILERHELPER_H
#define KESTRIN_ORV_PROFILERHELPER_H

#include <Kestrin/Orv/Export.h>

namespace Kestrin {
namespace Orv {

/// Marks a scope with a name: made at its start, destroyed at its end. Does nothing; it is the
/// place at which a later version of the library can attach a profiler without touching its users.
class ORV_EXPORT ProfilerHelper
{
public:
    /// Begins the scope. \p name is ignored, null included.
    explicit ProfilerHelper(const char* name);
    /// Ends the scope.
    ~ProfilerHelper();
    ProfilerHelper(const ProfilerHelper&) = delete;
    ProfilerHelper& operator=(const ProfilerHelper&) = delete;
};

} // namespace Orv
} // namespace Kestrin

#endif
