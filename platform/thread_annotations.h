// Names for clang's thread-safety analysis, which checks at compile time that what a lock guards is
// touched only while it is held. Other compilers see nothing of them.
#pragma once

#if defined(__clang__)
#define HALVENOR_THREAD_ANNOTATION(x) __attribute__((x))
#else
#define HALVENOR_THREAD_ANNOTATION(x)
#endif

#define HALVENOR_CAPABILITY(name) HALVENOR_THREAD_ANNOTATION(capability(name))
#define HALVENOR_SCOPED_CAPABILITY HALVENOR_THREAD_ANNOTATION(scoped_lockable)
#define HALVENOR_GUARDED_BY(lock) HALVENOR_THREAD_ANNOTATION(guarded_by(lock))
#define HALVENOR_PT_GUARDED_BY(lock) HALVENOR_THREAD_ANNOTATION(pt_guarded_by(lock))
#define HALVENOR_REQUIRES(...) HALVENOR_THREAD_ANNOTATION(requires_capability(__VA_ARGS__))
#define HALVENOR_EXCLUDES(...) HALVENOR_THREAD_ANNOTATION(locks_excluded(__VA_ARGS__))
#define HALVENOR_ACQUIRE(...) HALVENOR_THREAD_ANNOTATION(acquire_capability(__VA_ARGS__))
#define HALVENOR_RELEASE(...) HALVENOR_THREAD_ANNOTATION(release_capability(__VA_ARGS__))
#define HALVENOR_NO_ANALYSIS HALVENOR_THREAD_ANNOTATION(no_thread_safety_analysis)
