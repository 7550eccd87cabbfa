#ifndef BSUTILS_FORMATTERPRIVATE_H
#define BSUTILS_FORMATTERPRIVATE_H

// What the date-time formatter's sources share: trace and failures name them all by one module.

namespace bsutils::internal {

inline constexpr const char* kFormatterModule = "pwffrmtr";

}  // namespace bsutils::internal

#endif  // BSUTILS_FORMATTERPRIVATE_H
