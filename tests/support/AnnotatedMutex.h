// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#ifndef ORV_TESTS_ANNOTATEDMUTEX_H
#define ORV_TESTS_ANNOTATEDMUTEX_H

// To be included by one source of an executable with threads. ThreadSanitizer does not see into
// Qt, which is built without it, and takes everything that a QMutex guards for a race. Here the
// executable puts itself before Qt's lock() and unlock() and reports what they do; it suppresses
// nothing.

#if defined(__SANITIZE_THREAD__)

#    include <QtCore/QMutex>

#    include <dlfcn.h>
#    include <sanitizer/tsan_interface.h>

namespace AnnotatedMutex {

/// Qt's own function of this mangled name.
inline void callQt(const char* name, QMutex* mutex)
{
    reinterpret_cast<void (*)(QMutex*)>(dlsym(RTLD_NEXT, name))(mutex);
}

} // namespace AnnotatedMutex

void QMutex::lock()
{
    __tsan_mutex_pre_lock(this, 0);
    AnnotatedMutex::callQt("_ZN6QMutex4lockEv", this);
    __tsan_mutex_post_lock(this, 0, 0);
}

void QMutex::unlock() noexcept
{
    __tsan_mutex_pre_unlock(this, 0);
    AnnotatedMutex::callQt("_ZN6QMutex6unlockEv", this);
    __tsan_mutex_post_unlock(this, 0);
}

#endif

#endif
