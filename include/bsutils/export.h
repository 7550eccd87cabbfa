#ifndef BSUTILS_EXPORT_H
#define BSUTILS_EXPORT_H

// The library is built with hidden symbols, so that its private helpers stay private; what the
// public headers declare is marked with BSUTILS_EXPORT and is all that the shared library exports.
// In a static build the mark is harmless.

#if defined(__GNUC__) || defined(__clang__)
#define BSUTILS_EXPORT __attribute__((visibility("default")))
#else
#define BSUTILS_EXPORT
#endif

#endif  // BSUTILS_EXPORT_H
