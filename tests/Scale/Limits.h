// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#ifndef ORV_TESTS_LIMITS_H
#define ORV_TESTS_LIMITS_H

#include <sys/resource.h>

#include <cstdio>
#include <cstdlib>
#include <thread>

#include <pthread.h>

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
#    define ORV_SANITIZED 1
#elif defined(__has_feature)
#    if __has_feature(address_sanitizer) || __has_feature(thread_sanitizer)
#        define ORV_SANITIZED 1
#    endif
#endif

/// Ends a child process unsuccessfully, saying why, unless the condition holds.
#define ORV_REQUIRE(condition)                                                                     \
    do {                                                                                           \
        if (!(condition)) {                                                                        \
            std::fprintf(stderr, "%s:%d: not so: %s\n", __FILE__, __LINE__, #condition);           \
            std::_Exit(1);                                                                         \
        }                                                                                          \
    } while (false)

/// For a child process: runs the work on a stack of 8 MiB, with so much address space in all (which
/// the sanitizers, who reserve terabytes, are spared), and ends the process successfully.
[[noreturn]] inline void endAfter(void (*work)(), rlim_t addressSpace)
{
#ifndef ORV_SANITIZED
    const rlimit limit = {addressSpace, addressSpace};
    ORV_REQUIRE(setrlimit(RLIMIT_AS, &limit) == 0);
#else
    (void)addressSpace;
#endif
    // A thread's stack has the size that it is given, whatever the shell's limit is.
    pthread_attr_t attributes;
    pthread_attr_init(&attributes);
    ORV_REQUIRE(pthread_attr_setstacksize(&attributes, 8 << 20) == 0);
    pthread_t thread;
    ORV_REQUIRE(pthread_create(
                    &thread, &attributes,
                    [](void* argument) -> void* {
                        reinterpret_cast<void (*)()>(argument)();
                        return nullptr;
                    },
                    reinterpret_cast<void*>(work))
                == 0);
    pthread_join(thread, nullptr);
    std::_Exit(0);
}

#endif
