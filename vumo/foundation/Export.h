#pragma once

#if !defined(__cpp_rtti)
#error "vumo needs run-time type information: indices of different types are told apart by it (no -fno-rtti)"
#endif

/// Marks what the shared library offers to its users; everything else stays hidden in it.
///
/// `VUMO_STATIC` is defined for users of a static build by its package, `VUMO_BUILDING` by the
/// library's own build.
#if defined(VUMO_STATIC)
#define VUMO_EXPORT
#elif defined(_WIN32)
#if defined(VUMO_BUILDING)
#define VUMO_EXPORT __declspec(dllexport)
#else
#define VUMO_EXPORT __declspec(dllimport)
#endif
#else
#define VUMO_EXPORT __attribute__((visibility("default")))
#endif
