// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#ifndef KESTRIN_ORV_PROFILERHELPER_H
#define KESTRIN_ORV_PROFILERHELPER_H

#include <Kestrin/Orv/Export.h>

namespace Kestrin {
namespace Orv {

/// Marks a scope with a name: make it at the start of the scope and destroy it at the end. Does
/// nothing in this version. A later version of the library can attach a profiler here, without a
/// change in its users.
class ORV_EXPORT ProfilerHelper
{
public:
    /// Begins the scope. Ignores \p name, which may be null.
    explicit ProfilerHelper(const char* name);
    /// Ends the scope.
    ~ProfilerHelper();
    ProfilerHelper(const ProfilerHelper&) = delete;
    ProfilerHelper& operator=(const ProfilerHelper&) = delete;
};

} // namespace Orv
} // namespace Kestrin

#endif
