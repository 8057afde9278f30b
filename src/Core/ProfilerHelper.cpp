// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#include <Kestrin/Orv/ProfilerHelper.h>

namespace Kestrin {
namespace Orv {

ProfilerHelper::ProfilerHelper(const char*) { }

ProfilerHelper::~ProfilerHelper() { } // NOLINT(modernize-use-equals-default): a place for code

} // namespace Orv
} // namespace Kestrin
