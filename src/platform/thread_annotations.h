// Lock annotations that clang checks (-Wthread-safety): which lock guards which member, and who takes it.
#ifndef QXCM_PLATFORM_THREAD_ANNOTATIONS_H
#define QXCM_PLATFORM_THREAD_ANNOTATIONS_H

#if defined(__clang__)
#define QXCM_ANNOTATION(x) __attribute__((x))
#else
#define QXCM_ANNOTATION(x)
#endif

#define QXCM_CAPABILITY QXCM_ANNOTATION(capability("lock"))
#define QXCM_SCOPED_CAPABILITY QXCM_ANNOTATION(scoped_lockable)
#define QXCM_GUARDED_BY(lock) QXCM_ANNOTATION(guarded_by(lock))
#define QXCM_REQUIRES(...) QXCM_ANNOTATION(requires_capability(__VA_ARGS__))
#define QXCM_ACQUIRE(...) QXCM_ANNOTATION(acquire_capability(__VA_ARGS__))
#define QXCM_RELEASE(...) QXCM_ANNOTATION(release_capability(__VA_ARGS__))
#define QXCM_EXCLUDES(...) QXCM_ANNOTATION(locks_excluded(__VA_ARGS__))
#define QXCM_RETURN_CAPABILITY(lock) QXCM_ANNOTATION(lock_returned(lock))

#endif
