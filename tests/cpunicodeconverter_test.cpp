// Code-page conversion through real ICU data: single-byte EBCDIC and ASCII pages, UTF-8, UTF-16 in
// both byte orders, mixed single/double-byte EBCDIC, and a CCSID that ICU does not have.

#include <bsutils/cpunicodeconverter.h>
#include <gtest/gtest.h>
#include <unicode/putil.h>
#include <unistd.h>

#include <cstring>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "support/expect_failure.h"

namespace {

using Bytes = std::vector<unsigned char>;

Bytes encode(const CPUnicodeConverter& converter, const ZanStringBase& text) {
  std::vector<char> buffer(64);
  std::int32_t length = static_cast<std::int32_t>(buffer.size());
  UErrorCode status = U_ZERO_ERROR;
  converter.fromUnicodeString(buffer.data(), length, text, status);
  EXPECT_EQ(status, U_ZERO_ERROR) << u_errorName(status);
  return Bytes(buffer.begin(), buffer.begin() + length);
}

ZanStringBase decode(const CPUnicodeConverter& converter, const Bytes& bytes) {
  ZanStringBase text;
  UErrorCode status = U_ZERO_ERROR;
  converter.toUnicodeString(text, reinterpret_cast<const char*>(bytes.data()),
                            static_cast<std::int32_t>(bytes.size()), status);
  EXPECT_EQ(status, U_ZERO_ERROR) << u_errorName(status);
  return text;
}

// Expected bytes are from the published code charts of each code page: the national variants of
// EBCDIC differ exactly in where they put the brackets and the umlauts.
TEST(CPUnicodeConverter, ConvertsBothWaysInEveryKindOfCodePage) {
  struct Case {
    const char* name;
    std::int32_t ccsid;
    EEndian endian;
    const char16_t* text;
    Bytes bytes;
  };
  const Case cases[] = {
      {"EBCDIC US 37", 37, BigEndian, u"A1[]", {0xC1, 0xF1, 0xBA, 0xBB}},
      {"EBCDIC international 500", 500, BigEndian, u"A1[]", {0xC1, 0xF1, 0x4A, 0x5A}},
      {"EBCDIC Open Systems 1047", 1047, BigEndian, u"A1[]", {0xC1, 0xF1, 0xAD, 0xBD}},
      {"EBCDIC Germany 273", 273, BigEndian, u"A\u00C4\u00FC", {0xC1, 0x4A, 0xD0}},
      {"Latin-1 819", 819, BigEndian, u"A\u00E9", {0x41, 0xE9}},
      {"UTF-8 1208", 1208, LittleEndian, u"A\u20AC", {0x41, 0xE2, 0x82, 0xAC}},
      {"UTF-8 1208 ignores the byte order", 1208, BigEndian, u"\u00E9", {0xC3, 0xA9}},
      {"UTF-16 1200 little-endian", 1200, LittleEndian, u"A\u20AC", {0x41, 0x00, 0xAC, 0x20}},
      {"UTF-16 13488 big-endian", 13488, BigEndian, u"A\u20AC", {0x00, 0x41, 0x20, 0xAC}},
      {"UTF-16 17584 big-endian", 17584, BigEndian, u"\U0001F600", {0xD8, 0x3D, 0xDE, 0x00}},
      {"UTF-16 1200 outside the BMP, little-endian",
       1200,
       LittleEndian,
       u"\U0001F600",
       {0x3D, 0xD8, 0x00, 0xDE}},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    const CPUnicodeConverter converter(c.ccsid, c.endian);
    EXPECT_EQ(encode(converter, ZanStringBase(c.text)), c.bytes);
    EXPECT_EQ(decode(converter, c.bytes), ZanStringBase(c.text));
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
    const Bytes bytes = encode(converter, text);
    ASSERT_EQ(bytes.size(), 8u);
    EXPECT_EQ(bytes[0], 0xC1);
    EXPECT_EQ(bytes[1], 0x0E);
    EXPECT_EQ(bytes[6], 0x0F);
    EXPECT_EQ(bytes[7], 0xF1);
    EXPECT_EQ(decode(converter, bytes), text);
  }
}

TEST(CPUnicodeConverter, ReportsCharacterWidths) {
  struct Case {
    std::int32_t ccsid;
    signed char minBytes;
    signed char maxBytes;
  };
  for (const Case& c : {Case{37, 1, 1}, Case{1208, 1, 3}, Case{13488, 2, 2}}) {
    SCOPED_TRACE(c.ccsid);
    const CPUnicodeConverter converter(c.ccsid, BigEndian);
    EXPECT_EQ(converter.getMinBytesPerChar(), c.minBytes);
    EXPECT_EQ(converter.getMaxBytesPerChar(), c.maxBytes);
  }
  CPUnicodeConverter any(37, BigEndian);
  EXPECT_EQ(any.MaxBytesPerChar(), 3) << "UTF-8, the local code page";
}

TEST(CPUnicodeConverter, IsUnicodeMeansUtf16Only) {
  for (const std::int32_t ccsid : {1200, 13488, 17584})
    EXPECT_TRUE(CPUnicodeConverter::IsUnicode(ccsid));
  for (const std::int32_t ccsid : {1208, 37, 0, -1200})
    EXPECT_FALSE(CPUnicodeConverter::IsUnicode(ccsid));
}

TEST(CPUnicodeConverter, ACodePageThatCannotBeOpenedIsRefused) {
  struct Case {
    std::int32_t ccsid;
    EEndian endian;
    const char* name;
  };
  const Case cases[] = {
      {99999, BigEndian, "ibm-99999"},  // ICU has no such table
      {-5, BigEndian, "ibm--5"},
      {1200, static_cast<EEndian>(0), ""},  // UTF-16 in no defined byte order
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    expectFailure<ZanRecoverableException>(
        [&] { CPUnicodeConverter converter(c.ccsid, c.endian); }, "QZR2130", 0xC0000852,
        "Error creating convertor", "cpunicodeconverter", "cpunicodeconverter::cpunicodeconverter",
        {std::to_string(c.ccsid), c.name});
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

  ZanStringBase target(u"kept");
  UErrorCode status = U_ZERO_ERROR;
  ebcdic.toUnicodeString(target, "\xC1", 0, status);
  EXPECT_EQ(status, U_ILLEGAL_ARGUMENT_ERROR);
  EXPECT_EQ(target, ZanStringBase(u"kept"));

  char out[2];
  std::int32_t length = 2;
  status = U_ZERO_ERROR;
  ebcdic.fromUnicodeString(out, length, ZanStringBase(u"ABC"), status);
  EXPECT_EQ(status, U_BUFFER_OVERFLOW_ERROR);
  EXPECT_EQ(length, 2);
  EXPECT_EQ(Bytes(out, out + 2), (Bytes{0xC1, 0xC2}));

  // A character cut off by a full target is dropped, not written first into the next text.
  const CPUnicodeConverter utf8(1208, LittleEndian);
  length = 1;
  status = U_ZERO_ERROR;
  utf8.fromUnicodeString(out, length, ZanStringBase(u"\u00E9"), status);
  EXPECT_EQ(status, U_BUFFER_OVERFLOW_ERROR);
  length = 2;
  status = U_ZERO_ERROR;
  utf8.fromUnicodeString(out, length, ZanStringBase(u"AB"), status);
  EXPECT_EQ(Bytes(out, out + length), (Bytes{'A', 'B'}));

  length = 0;
  status = U_ZERO_ERROR;
  ebcdic.fromUnicodeString(out, length, ZanStringBase(u"A"), status);
  EXPECT_EQ(status, U_ILLEGAL_ARGUMENT_ERROR);

  // ICU's default callbacks substitute: a UTF-8 sequence cut short reads as U+FFFD, not as a
  // failure.
  status = U_ZERO_ERROR;
  utf8.toUnicodeString(target, "ab\xE2\x82", 4, status);
  EXPECT_EQ(status, U_ZERO_ERROR);
  EXPECT_EQ(target, ZanStringBase(u"ab\uFFFD"));
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
  std::vector<char> back(bytes.size());
  std::int32_t length = static_cast<std::int32_t>(back.size());
  UErrorCode status = U_ZERO_ERROR;
  ebcdic.fromUnicodeString(back.data(), length, text, status);
  ASSERT_EQ(status, U_ZERO_ERROR);
  EXPECT_EQ(Bytes(back.begin(), back.end()), bytes);
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

  const std::string overflow = std::to_string(U_BUFFER_OVERFLOW_ERROR);
  expectFailure<ZanConversionException>(
      [&] {
        int small = 4;
        CPUnicodeConverter::fromUnicodeToLocal(utf8, &small, text, 2);
      },
      "CP_INTERNAL_ERROR", 0xC000157E, "Error converting to text to local codepage",
      "cpunicodeconverter", "CPUnicodeConverter::fromUnicodeToLocal", {overflow});
  expectFailure<ZanConversionException>(
      [&] {
        int small = 1;
        CPUnicodeConverter::fromLocalToUnicode(units, &small, utf8, 5);
      },
      "CP_INTERNAL_ERROR", 0xC000157E, "Error converting from local codepage to unicode",
      "cpunicodeconverter", "CPUnicodeConverter::fromUnicodeToLocal", {overflow});
}

TEST(CPUnicodeConverter, LocalConversionsRefuseBadArguments) {
  char utf8[4];
  int capacity = 4;
  int negative = -1;
  struct Case {
    const char* name;
    std::function<void()> call;
    std::vector<std::string> inserts;
  };
  const Case cases[] = {
      {"null source",
       [&] { CPUnicodeConverter::fromUnicodeToLocal(utf8, &capacity, nullptr, 2); },
       {"Null input pointer"}},
      {"negative source length",
       [&] { CPUnicodeConverter::fromUnicodeToLocal(utf8, &capacity, u"a", -1); },
       {"Invalid input length: ", "-1"}},
      {"null target length",
       [&] { CPUnicodeConverter::fromLocalToUnicode(nullptr, nullptr, "a", 1); },
       {"Null output buffer pointer"}},
      {"negative capacity",
       [&] { CPUnicodeConverter::fromLocalToUnicode(nullptr, &negative, "a", 1); },
       {"Invalid output buffer length: ", "-1"}},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    expectFailure<ZanConversionException>(c.call, "CP_INTERNAL_ERROR", 0xC000157E,
                                          "CPI Internal Error", "cpunicodeconverter",
                                          "CPUnicodeConverter::fromUnicodeToLocal", c.inserts);
  }
}

}  // namespace
