// Lock annotations that clang checks at compile time (-Wthread-safety); other compilers see
// nothing.
#pragma once

#if defined(__clang__)
#define KX_THREAD_ANNOTATION(attribute) __attribute__((attribute))
#else
#define KX_THREAD_ANNOTATION(attribute)
#endif

#define KX_CAPABILITY KX_THREAD_ANNOTATION(capability("mutex"))
#define KX_SCOPED_CAPABILITY KX_THREAD_ANNOTATION(scoped_lockable)
#define KX_GUARDED_BY(mutex) KX_THREAD_ANNOTATION(guarded_by(mutex))
#define KX_REQUIRES(mutex) KX_THREAD_ANNOTATION(requires_capability(mutex))
#define KX_ACQUIRE(...) KX_THREAD_ANNOTATION(acquire_capability(__VA_ARGS__))
#define KX_TRY_ACQUIRE(...) KX_THREAD_ANNOTATION(try_acquire_capability(__VA_ARGS__))
#define KX_RETURNS_LOCK(mutex) KX_THREAD_ANNOTATION(lock_returned(mutex))
#define KX_RELEASE(...) KX_THREAD_ANNOTATION(release_capability(__VA_ARGS__))
#define KX_NO_THREAD_SAFETY_ANALYSIS KX_THREAD_ANNOTATION(no_thread_safety_analysis)
