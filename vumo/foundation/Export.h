#pragma once

#if !defined(__cpp_rtti)
#error "vumo needs run-time type information: indices of different types are told apart by it (no -fno-rtti)"
#endif

/// Marks what the shared library offers to its users; everything else stays hidden in it.
///
/// `VUMO_STATIC` is defined for users of a static build by its package.
#if defined(VUMO_STATIC)
#define VUMO_EXPORT
#else
#define VUMO_EXPORT __attribute__((visibility("default")))
#endif
