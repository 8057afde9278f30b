// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#ifndef ORV_TESTS_REFUSEDALLOCATIONS_H
#define ORV_TESTS_REFUSEDALLOCATIONS_H

// To be included by one source of an executable whose tests ask for more memory than there is: the
// sanitizers end the program at such a request unless told otherwise.

extern "C" const char* __asan_default_options();
extern "C" const char* __asan_default_options()
{
    return "allocator_may_return_null=1";
}
extern "C" const char* __tsan_default_options();
extern "C" const char* __tsan_default_options()
{
    return "allocator_may_return_null=1";
}

#endif
