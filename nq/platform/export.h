// export.h -- what crosses the border of the shared library.
//
// NQ_EXPORT marks every class and function that applications may use. Define
// NQ_STATIC when linking the static library; NQ_BUILDING_SHARED is the
// library's own.

#ifndef NQ_PLATFORM_EXPORT_H
#define NQ_PLATFORM_EXPORT_H

#if defined(NQ_STATIC)
#define NQ_EXPORT
#elif defined(_WIN32)
#if defined(NQ_BUILDING_SHARED)
#define NQ_EXPORT __declspec(dllexport)
#else
#define NQ_EXPORT __declspec(dllimport)
#endif
#else
#define NQ_EXPORT __attribute__((visibility("default")))
#endif

#endif  // NQ_PLATFORM_EXPORT_H
