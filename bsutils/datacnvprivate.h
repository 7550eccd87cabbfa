#ifndef BSUTILS_DATACNVPRIVATE_H
#define BSUTILS_DATACNVPRIVATE_H

// What DataCnv's sources share. Its members are spread over one source per family; trace and
// exceptions name them all by the one module.

#include <cstdint>

inline constexpr const char* kDataCnvModule = "datacnv";

// Room for the bytes of any one character in any code page, shift bytes included.
inline constexpr std::int32_t kCharBytesCapacity = 32;

#endif  // BSUTILS_DATACNVPRIVATE_H
