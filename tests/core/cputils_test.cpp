// Diagnostic dumps of bytes and date-time records.

#include <bsutils/cputils.h>
#include <gtest/gtest.h>

#include <cstdio>
#include <string>

namespace {

TEST(CPUtils, BinaryDumpIsTwoLowerCaseDigitsPerByte) {
  const unsigned char bytes[] = {0x00, 0xAB, 0x7F};
  EXPECT_EQ(CPUtils::binaryDump(bytes, 3), "0x00ab7f");
  EXPECT_EQ(CPUtils::binaryDump(bytes, 0), "0x");
  EXPECT_EQ(CPUtils::binaryDump(bytes, -1), "0x");
  EXPECT_EQ(CPUtils::binaryDump(nullptr, 4), "0x");

  unsigned char all[256];
  for (int i = 0; i < 256; ++i) all[i] = static_cast<unsigned char>(i);
  const std::string dump = CPUtils::binaryDump(all, 256);
  ASSERT_EQ(dump.size(), 2u + 512u);
  for (int i = 0; i < 256; ++i) {
    char expected[3];
    std::snprintf(expected, sizeof expected, "%02x", i);
    EXPECT_EQ(dump.substr(2 + 2 * static_cast<std::size_t>(i), 2), expected);
  }
}

TEST(CPUtils, DateTimeDumpShowsEveryFieldButTheEra) {
  const PWFDateTime leapDay{1, 2004, 2, 29, 13, 5, 9, 123, 3, 3600000, 0};
  EXPECT_EQ(CPUtils::pwfDateTimeDump(leapDay),
            "year = 2004, month = 2, day = 29, hour = 13, minute = 5, second = 9, "
            "subsecond = 123, scale = 3, timezone = 3600000, localTimeZone = 0");

  PWFDateTime unset{};
  unset.year = PWFDateTime::kNotSet;
  unset.timezone = -18000000;
  EXPECT_EQ(CPUtils::pwfDateTimeDump(unset),
            "year = -2147483648, month = 0, day = 0, hour = 0, minute = 0, second = 0, "
            "subsecond = 0, scale = 0, timezone = -18000000, localTimeZone = 0");
}

}  // namespace
