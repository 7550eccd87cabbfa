#ifndef BSUTILS_CPALLOC_H
#define BSUTILS_CPALLOC_H

// Allocation that never returns null: a failed allocation is thrown as ZanFatalException, message
// 0xC0000806 (CP_MEMORY_ALLOC_FAILURE), trace text "malloc returned NULL" or "realloc returned
// NULL", after the "Throwing exception" trace record when trace is on.

#include <bsutils/export.h>

#include <cstdint>

// malloc(size). A zero size returns whatever malloc returns for it; only a null result fails.
BSUTILS_EXPORT void* cpMalloc(std::uint32_t size);
// realloc(p, size). On failure `p` is left allocated and unchanged, as realloc leaves it.
BSUTILS_EXPORT void* cpRealloc(void* p, std::uint32_t size);
// free(p), with no test of its own: free(nullptr) is harmless.
BSUTILS_EXPORT void cpFree(void* p);

#endif  // BSUTILS_CPALLOC_H
