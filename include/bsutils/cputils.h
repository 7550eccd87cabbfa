#ifndef BSUTILS_CPUTILS_H
#define BSUTILS_CPUTILS_H

// Narrow-text renderings of raw bytes and date-time records for trace and debugging output.

#include <bsutils/export.h>
#include <bsutils/pwfdata.h>

#include <cstdint>
#include <string>

class BSUTILS_EXPORT CPUtils {
 public:
  // "0x" and every byte as two lower-case hexadecimal digits, no separators: 00 AB 7F ->
  // "0x00ab7f". A length of 0 or less, or null data, gives "0x".
  static std::string binaryDump(const unsigned char* data, std::int32_t length);

  // "year = 2004, month = 2, day = 29, hour = 13, minute = 5, second = 9, subsecond = 123,
  // scale = 3, timezone = 3600000, localTimeZone = 0": every field but the era, in decimal; a field
  // that is not set shows as -2147483648.
  static std::string pwfDateTimeDump(const PWFDateTime& value);
};

#endif  // BSUTILS_CPUTILS_H
