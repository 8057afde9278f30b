// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#ifndef ORV_TESTS_SMALLSTACK_H
#define ORV_TESTS_SMALLSTACK_H

#include <functional>
#include <stdexcept>

#include <pthread.h>

/// Runs the work to its end on a stack of 256 KiB, which no recursion to a depth of thousands fits
/// on.
inline void runOnSmallStack(std::function<void()> work)
{
    pthread_attr_t attributes;
    pthread_t thread;
    if (pthread_attr_init(&attributes) != 0
        || pthread_attr_setstacksize(&attributes, 256 * 1024) != 0
        || pthread_create(
               &thread, &attributes,
               [](void* function) -> void* {
                   (*static_cast<std::function<void()>*>(function))();
                   return nullptr;
               },
               &work)
            != 0)
        throw std::runtime_error("no thread");
    pthread_join(thread, nullptr);
    pthread_attr_destroy(&attributes);
}

#endif
