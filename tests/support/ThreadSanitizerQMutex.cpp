// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

// Qt is not built with ThreadSanitizer, which therefore does not see what QMutex orders and reports
// races where there are none. Linked into an executable, this tells it; in other builds it is
// empty.

#if defined(__has_feature)
#    if __has_feature(thread_sanitizer)
#        define ORV_THREAD_SANITIZER
#    endif
#elif defined(__SANITIZE_THREAD__)
#    define ORV_THREAD_SANITIZER
#endif

#ifdef ORV_THREAD_SANITIZER

#    include <QtCore/QMutex>

#    include <dlfcn.h>

extern "C" void __tsan_acquire(void* address);
extern "C" void __tsan_release(void* address);

namespace {

using Operation = void (*)(QMutex*);

Operation qtsOwn(const char* symbol)
{
    return reinterpret_cast<Operation>(dlsym(RTLD_NEXT, symbol));
}

} // namespace

void QMutex::lock() QT_MUTEX_LOCK_NOEXCEPT
{
    static const Operation real = qtsOwn("_ZN6QMutex4lockEv");
    real(this);
    __tsan_acquire(this);
}

void QMutex::unlock() noexcept
{
    static const Operation real = qtsOwn("_ZN6QMutex6unlockEv");
    __tsan_release(this);
    real(this);
}

#endif
