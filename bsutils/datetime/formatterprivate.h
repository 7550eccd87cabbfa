#ifndef BSUTILS_FORMATTERPRIVATE_H
#define BSUTILS_FORMATTERPRIVATE_H

// What the date-time formatter's sources share: trace and failures name them all by one module.

#include <bsutils/pwfdata.h>

#include <cstdint>

namespace bsutils::internal {

inline constexpr const char* kFormatterModule = "pwffrmtr";

// The fraction `subsecond` x 10^-scale at `digits` digits, cut or filled with zeros.
inline std::int64_t fractionAt(std::int32_t subsecond, std::int32_t scale, std::int32_t digits) {
  // Past 18 digits below the requested ones nothing of a 32-bit fraction is left.
  if (subsecond == PWFDateTime::kNotSet || scale < 0 || scale - digits > 18) return 0;
  std::int64_t value = subsecond;
  for (std::int32_t s = scale; s > digits; --s) value /= 10;
  for (std::int32_t s = scale; s < digits; ++s) value *= 10;
  return value;
}

}  // namespace bsutils::internal

#endif  // BSUTILS_FORMATTERPRIVATE_H
