#pragma once

/// @file
/// Lets clang's -Wthread-safety check which lock guards what. Other compilers see nothing.

#if defined(__clang__)
#define LYR_THREAD_ANNOTATION(x) __attribute__((x))
#else
#define LYR_THREAD_ANNOTATION(x)
#endif

#define LYR_CAPABILITY(name) LYR_THREAD_ANNOTATION(capability(name))
#define LYR_SCOPED_CAPABILITY LYR_THREAD_ANNOTATION(scoped_lockable)
#define LYR_GUARDED_BY(lock) LYR_THREAD_ANNOTATION(guarded_by(lock))
#define LYR_REQUIRES(...) LYR_THREAD_ANNOTATION(requires_capability(__VA_ARGS__))
#define LYR_ACQUIRE(...) LYR_THREAD_ANNOTATION(acquire_capability(__VA_ARGS__))
#define LYR_RELEASE(...) LYR_THREAD_ANNOTATION(release_capability(__VA_ARGS__))
#define LYR_NO_THREAD_SAFETY_ANALYSIS LYR_THREAD_ANNOTATION(no_thread_safety_analysis)
