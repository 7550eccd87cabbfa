// Code-page conversion through real ICU data: single-byte EBCDIC and ASCII pages, UTF-8, UTF-16 in
// both byte orders, mixed single/double-byte EBCDIC, and a CCSID that ICU does not have.

#include <bsutils/cpunicodeconverter.h>
#include <gtest/gtest.h>
#include <unicode/putil.h>
#include <unistd.h>

#include <cstring>
#include <filesystem>
#include <fstream>
#include <functional>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include "support/expect_failure.h"

namespace {

using Bytes = std::vector<unsigned char>;
using Encoded = std::pair<Bytes, UErrorCode>;

// What fits of `text` in a target of `capacity` bytes, and the status.
Encoded encode(const CPUnicodeConverter& converter, const ZanStringBase& text,
               std::int32_t capacity = 64) {
  std::vector<char> buffer(static_cast<std::size_t>(capacity) + 1);
  UErrorCode status = U_ZERO_ERROR;
  converter.fromUnicodeString(buffer.data(), capacity, text, status);
  return {Bytes(buffer.begin(), buffer.begin() + capacity), status};
}

ZanStringBase decode(const CPUnicodeConverter& converter, const Bytes& bytes) {
  ZanStringBase text;
  UErrorCode status = U_ZERO_ERROR;
  converter.toUnicodeString(text, reinterpret_cast<const char*>(bytes.data()),
                            static_cast<std::int32_t>(bytes.size()), status);
  EXPECT_EQ(status, U_ZERO_ERROR) << u_errorName(status);
  return text;
}

// Expected bytes are from the published code charts of each code page.
TEST(CPUnicodeConverter, ConvertsBothWaysInEveryKindOfCodePage) {
  const std::tuple<std::int32_t, EEndian, const char16_t*, Bytes> cases[] = {
      {37, BigEndian, u"A1[]", {0xC1, 0xF1, 0xBA, 0xBB}},
      {1208, LittleEndian, u"A\u20AC", {0x41, 0xE2, 0x82, 0xAC}},
      {1200, LittleEndian, u"A\U0001F600", {0x41, 0x00, 0x3D, 0xD8, 0x00, 0xDE}},
      {13488, BigEndian, u"A\u20AC", {0x00, 0x41, 0x20, 0xAC}},
  };
  for (const auto& [ccsid, endian, text, bytes] : cases) {
    SCOPED_TRACE(ccsid);
    const CPUnicodeConverter converter(ccsid, endian);
    EXPECT_EQ(encode(converter, ZanStringBase(text)), Encoded(bytes, U_ZERO_ERROR));
    EXPECT_EQ(decode(converter, bytes), ZanStringBase(text));
  }
}

TEST(CPUnicodeConverter, MixedByteEbcdicShiftsOutForDoubleByteText) {
  // Japanese (930) and Simplified Chinese (1388) host code pages: single-byte text, then SO (0x0E)
  // before the double-byte characters and SI (0x0F) after them.
  for (const std::int32_t ccsid : {930, 1388}) {
    SCOPED_TRACE(ccsid);
    CPUnicodeConverter converter(ccsid, BigEndian);
    EXPECT_EQ(converter.getType(), UCNV_EBCDIC_STATEFUL);
    const ZanStringBase text(u"A\u65E5\u672C1");  // "A", two ideographs, "1"
    const Bytes bytes = encode(converter, text).first;
    ASSERT_EQ(bytes.size(), 8u);
    EXPECT_EQ(Bytes({bytes[0], bytes[1], bytes[6], bytes[7]}), Bytes({0xC1, 0x0E, 0x0F, 0xF1}));
    EXPECT_EQ(decode(converter, bytes), text);
  }
}

TEST(CPUnicodeConverter, ReportsWidthsAndWhichPagesAreUtf16) {
  for (const auto& [ccsid, minBytes, maxBytes] :
       {std::tuple{37, 1, 1}, {1208, 1, 3}, {13488, 2, 2}}) {
    const CPUnicodeConverter converter(ccsid, BigEndian);
    EXPECT_EQ(converter.getMinBytesPerChar(), minBytes) << ccsid;
    EXPECT_EQ(converter.getMaxBytesPerChar(), maxBytes) << ccsid;
  }
  EXPECT_EQ(CPUnicodeConverter(37, BigEndian).MaxBytesPerChar(), 3) << "UTF-8, the local code page";
  for (const std::int32_t ccsid : {1200, 13488, 17584})
    EXPECT_TRUE(CPUnicodeConverter::IsUnicode(ccsid));
  for (const std::int32_t ccsid : {1208, 37, 0, -1200})
    EXPECT_FALSE(CPUnicodeConverter::IsUnicode(ccsid));
}

TEST(CPUnicodeConverter, ACodePageThatCannotBeOpenedIsRefused) {
  // ICU has no table 99999; UTF-16 needs a defined byte order.
  for (const auto& [ccsid, endian, name] :
       {std::tuple{99999, BigEndian, "ibm-99999"}, {1200, static_cast<EEndian>(0), ""}}) {
    expectFailure<ZanRecoverableException>(
        [&] { CPUnicodeConverter converter(ccsid, endian); }, "QZR2130", 0xC0000852,
        "Error creating convertor", "cpunicodeconverter", "cpunicodeconverter::cpunicodeconverter",
        {std::to_string(ccsid), name});
  }
}

TEST(CPUnicodeConverter, ABrokenTableIsAnInvalidCodePage) {
  // ICU looks for a converter it does not know as a table file under its data directory. Give it
  // one whose header is a converter table's but whose contents are not: what a corrupt or
  // mismatched table file looks like.
  const std::filesystem::path directory =
      std::filesystem::temp_directory_path() / ("bsutils-cnv-" + std::to_string(getpid()));
  std::filesystem::create_directories(directory / U_ICUDATA_NAME);
  unsigned char table[64] = {32, 0, 0xDA, 0x27};  // header size, magic
  unsigned char* const info = table + 4;
  info[0] = 20;                      // size of the data information
  info[4] = U_IS_BIG_ENDIAN;         // the machine's own byte order
  info[6] = 2;                       // sizeof(UChar)
  std::memcpy(info + 8, "cnvt", 4);  // data format
  info[12] = 6;                      // format version
  table[32] = 1;                     // a structure size no table has
  std::ofstream(directory / U_ICUDATA_NAME / "ibm-99998.cnv", std::ios::binary)
      .write(reinterpret_cast<const char*>(table), sizeof table);

  const std::string previous = u_getDataDirectory();
  u_setDataDirectory(directory.c_str());
  expectFailure<ZanRecoverableException>(
      [] { CPUnicodeConverter converter(99998, BigEndian); }, "QZR2132", 0xC0000854,
      "Invalid codepage (or missing table)", "cpunicodeconverter",
      "cpunicodeconverter::cpunicodeconverter", {"99998", "ibm-99998"});
  u_setDataDirectory(previous.c_str());
  std::filesystem::remove_all(directory);
}

TEST(CPUnicodeConverter, CopiesShareOneConverterAndItsStreamingState) {
  CPUnicodeConverter original(1200, BigEndian);
  CPUnicodeConverter copy(original);
  CPUnicodeConverter assigned(37, BigEndian);
  assigned = copy;
  // The first byte of "A" (00 41) goes into one copy without flushing; the second byte, given to
  // another copy, completes the character that the shared converter holds.
  const char bytes[] = {0x00, 0x41};
  char16_t units[4];
  char16_t* target = units;
  const char* source = bytes;
  UErrorCode status = U_ZERO_ERROR;
  original.toUnicode(target, units + 4, source, bytes + 1, nullptr, false, status);
  EXPECT_EQ(target, units);
  source = bytes + 1;
  assigned.toUnicode(target, units + 4, source, bytes + 2, nullptr, true, status);
  ASSERT_EQ(status, U_ZERO_ERROR);
  ASSERT_EQ(target, units + 1);
  EXPECT_EQ(units[0], u'A');
  // Each of the three goes out of scope here; the converter is closed once (the sanitizer build
  // would report a second close).
}

TEST(CPUnicodeConverter, StringConversionsReportThroughStatus) {
  const CPUnicodeConverter ebcdic(37, BigEndian);
  const CPUnicodeConverter utf8(1208, LittleEndian);
  EXPECT_EQ(encode(ebcdic, u"ABC", 2), Encoded({0xC1, 0xC2}, U_BUFFER_OVERFLOW_ERROR));
  EXPECT_EQ(encode(ebcdic, u"A", 0), Encoded({}, U_ILLEGAL_ARGUMENT_ERROR));
  // A character cut off by a full target is dropped, not written first into the next text.
  EXPECT_EQ(encode(utf8, u"\u00E9", 1).second, U_BUFFER_OVERFLOW_ERROR);
  EXPECT_EQ(encode(utf8, u"AB", 2), Encoded({'A', 'B'}, U_ZERO_ERROR));

  ZanStringBase target(u"kept");
  UErrorCode status = U_ZERO_ERROR;
  ebcdic.toUnicodeString(target, "\xC1", 0, status);
  EXPECT_EQ(status, U_ILLEGAL_ARGUMENT_ERROR);
  EXPECT_EQ(target, ZanStringBase(u"kept"));
  // ICU's default callbacks substitute: a UTF-8 sequence cut short reads as U+FFFD, not as a
  // failure.
  EXPECT_EQ(decode(utf8, {'a', 'b', 0xE2, 0x82}), ZanStringBase(u"ab\uFFFD"));
}

TEST(CPUnicodeConverter, LongTextConvertsWhole) {
  // Large enough to cross any internal chunking; every EBCDIC byte value that maps round trips.
  const CPUnicodeConverter ebcdic(1047, BigEndian);
  Bytes bytes;
  for (int round = 0; round < 400; ++round) {
    for (int byte = 0x40; byte < 0x100; ++byte) bytes.push_back(static_cast<unsigned char>(byte));
  }
  const ZanStringBase text = decode(ebcdic, bytes);
  ASSERT_EQ(text.length(), static_cast<std::int32_t>(bytes.size()));
  EXPECT_EQ(encode(ebcdic, text, static_cast<std::int32_t>(bytes.size())),
            Encoded(bytes, U_ZERO_ERROR));
}

TEST(CPUnicodeConverter, LocalConversionsAreUtf8AndNeverTruncate) {
  const char16_t text[] = u"\u00E9\u20AC";  // 2 + 3 bytes in UTF-8
  char utf8[8];
  int length = sizeof utf8;
  CPUnicodeConverter::fromUnicodeToLocal(utf8, &length, text, 2);
  ASSERT_EQ(length, 5);
  EXPECT_EQ(std::string(utf8, 5), "\xC3\xA9\xE2\x82\xAC");
  char16_t units[4];
  int unitCount = 4;
  CPUnicodeConverter::fromLocalToUnicode(units, &unitCount, utf8, 5);
  ASSERT_EQ(unitCount, 2);
  EXPECT_EQ(ZanStringBase(units, 2), ZanStringBase(text));

  // Both directions trace under one name.
  const auto fails = [](const std::function<void()>& call, const char* traceText,
                        const std::vector<std::string>& inserts) {
    expectFailure<ZanConversionException>(call, "CP_INTERNAL_ERROR", 0xC000157E, traceText,
                                          "cpunicodeconverter",
                                          "CPUnicodeConverter::fromUnicodeToLocal", inserts);
  };
  const std::string overflow = std::to_string(U_BUFFER_OVERFLOW_ERROR);
  int small = 4;
  int negative = -1;
  fails([&] { CPUnicodeConverter::fromUnicodeToLocal(utf8, &small, text, 2); },
        "Error converting to text to local codepage", {overflow});
  small = 1;
  fails([&] { CPUnicodeConverter::fromLocalToUnicode(units, &small, utf8, 5); },
        "Error converting from local codepage to unicode", {overflow});
  fails([&] { CPUnicodeConverter::fromUnicodeToLocal(utf8, &length, nullptr, 2); },
        "CPI Internal Error", {"Null input pointer"});
  fails([&] { CPUnicodeConverter::fromUnicodeToLocal(utf8, &length, u"a", -1); },
        "CPI Internal Error", {"Invalid input length: ", "-1"});
  fails([&] { CPUnicodeConverter::fromLocalToUnicode(nullptr, nullptr, "a", 1); },
        "CPI Internal Error", {"Null output buffer pointer"});
  fails([&] { CPUnicodeConverter::fromLocalToUnicode(nullptr, &negative, "a", 1); },
        "CPI Internal Error", {"Invalid output buffer length: ", "-1"});
}

}  // namespace
