#include <bsutils/cputils.h>

#include <sstream>

std::string CPUtils::binaryDump(const unsigned char* data, std::int32_t length) {
  static constexpr char kDigits[] = "0123456789abcdef";
  std::string dump = "0x";
  if (data == nullptr || length <= 0) return dump;
  dump.reserve(2 + 2 * static_cast<std::size_t>(length));
  for (std::int32_t i = 0; i < length; ++i) {
    dump += kDigits[data[i] >> 4];
    dump += kDigits[data[i] & 0x0F];
  }
  return dump;
}

std::string CPUtils::pwfDateTimeDump(const PWFDateTime& value) {
  std::ostringstream dump;
  dump << "year = " << value.year << ", month = " << value.month << ", day = " << value.day
       << ", hour = " << value.hour << ", minute = " << value.minute
       << ", second = " << value.second << ", subsecond = " << value.subsecond
       << ", scale = " << value.scale << ", timezone = " << value.timezone
       << ", localTimeZone = " << value.localTimeZone;
  return dump.str();
}
