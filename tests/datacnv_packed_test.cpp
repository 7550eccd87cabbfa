// Packed decimal both ways and in both byte orders, every sign nibble, the integer and double
// forms, round trips, and the TLOG forms.

#include <bsutils/cpalloc.h>
#include <bsutils/dataconv.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <unistd.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <limits>
#include <random>
#include <string>
#include <vector>

#include "support/datacnv_test_access.h"
#include "support/expect_failure.h"

namespace {

using Bytes = std::vector<unsigned char>;
constexpr auto kBig = BigEndian;
constexpr auto kLittle = LittleEndian;
constexpr auto kUnsigned = DataCnv::eNoSign;
constexpr auto kSigned = DataCnv::eLeadingEmbeddedSign;  // style 1 is "signed" for packed fields
const Code kTooLong{"CP_CONV_INPUT_DATA_TOO_LONG", 0xC0001583, "CPI InputData Too Long"};

Bytes reversed(Bytes bytes) { return Bytes(bytes.rbegin(), bytes.rend()); }

// The field in the given order, from its big-endian bytes.
Bytes inOrder(const Bytes& bigEndian, EEndian endian) {
  return endian == kLittle ? reversed(bigEndian) : bigEndian;
}

std::string decimalText(const PWFData& value) {
  EXPECT_EQ(value.getDataLogicalType(), eDecimal);
  return ZanStringBase(value.getDecimalValue(), value.getDecimalLength()).toUtf8();
}

// Reads from a buffer of exactly the field's size, so that a read past it is the sanitizer's.
std::string readDecimal(DataCnv& cnv, const Bytes& field, EEndian endian, std::int32_t scale,
                        DataCnv::ESign sign) {
  return decimalText(
      cnv.PckdDecToDec(field.data(), static_cast<std::int32_t>(field.size()), endian, scale, sign));
}

// Runs a writer on a buffer of exactly `size` bytes and returns them.
template <class Writer>
Bytes written(std::int32_t size, const Writer& write) {
  Bytes field(static_cast<std::size_t>(size), 0xEE);
  std::int32_t length = size;
  write(field.data(), length);
  EXPECT_EQ(length, size);
  return field;
}

Bytes writeDecimal(DataCnv& cnv, const char16_t* text, std::int32_t size, EEndian endian,
                   std::int32_t scale, DataCnv::ESign sign) {
  return written(size, [&](unsigned char* out, std::int32_t& length) {
    cnv.PckdDecFromDec(text, out, length, endian, scale, sign);
  });
}

std::string dump(const Bytes& field) {
  static constexpr char kHex[] = "0123456789abcdef";
  std::string text = "0x";
  for (const unsigned char byte : field) text += {kHex[byte >> 4], kHex[byte & 0xF]};
  return text;
}

TEST(DataCnvPacked, ReadsFieldsInBothByteOrders) {
  struct Case {
    Bytes bigEndian;
    std::int32_t scale;
    DataCnv::ESign sign;
    const char* decimal;
  };
  // By hand: the digit nibbles in order, the point moved over the digits alone, then the sign.
  const Case cases[] = {
      {{0x12, 0x34, 0x5C}, 0, kSigned, "12345"},
      {{0x12, 0x34, 0x5D}, 0, kSigned, "-12345"},
      {{0x12, 0x34, 0x5B}, 0, kSigned, "12345"},
      {{0x12, 0x34, 0x5F}, 0, kUnsigned, "12345"},
      {{0x12, 0x34, 0x5C}, 2, kSigned, "123.45"},
      {{0x5D}, 2, kSigned, "-0.05"},
      {{0x12, 0x34, 0x5D}, 7, kSigned, "-0.0012345"},
      {{0x12, 0x3C}, -2, kSigned, "12300"},
      {{0x00, 0x12, 0x3F}, 0, kUnsigned, "00123"},
      {{0x00, 0x00, 0x5D}, 2, kSigned, "-000.05"},
      {{0x0D}, 0, kSigned, "-0"},
      {{0x9A}, 0, kUnsigned, "9"},
      {{0x9E}, 1, kUnsigned, "0.9"},
  };
  DataCnv cnv;
  for (const Case& c : cases) {
    for (const EEndian endian : {kBig, kLittle}) {
      SCOPED_TRACE(std::string(c.decimal) + (endian == kBig ? " big" : " little"));
      EXPECT_EQ(readDecimal(cnv, inOrder(c.bigEndian, endian), endian, c.scale, c.sign), c.decimal);
    }
  }
}

TEST(DataCnvPacked, EverySignNibbleIsReadAsDocumented) {
  // A, C, E, F positive; D negative; B a negative code that reads as positive; 0 to 9 no sign.
  DataCnv cnv;
  for (unsigned char nibble = 0; nibble < 16; ++nibble) {
    for (const DataCnv::ESign sign : {kSigned, kUnsigned}) {
      SCOPED_TRACE(std::to_string(nibble) + (sign == kSigned ? " signed" : " unsigned"));
      const Bytes field = {0x12, static_cast<unsigned char>(0x30 | nibble)};
      const auto read = [&] { readDecimal(cnv, field, kBig, 0, sign); };
      if (nibble <= 9) {
        expectConversionFailure(read, kInvalid, "DataCnv::ValidatePackedDecimal",
                                {"packed decimal, no sign found ", dump(field)});
      } else if ((nibble == 0xB || nibble == 0xD) && sign == kUnsigned) {
        expectConversionFailure(
            read, kInvalid, "DataCnv::ValidatePackedDecimal",
            {"packed decimal, negative sign found on unsigned data ", dump(field)});
      } else {
        EXPECT_EQ(readDecimal(cnv, field, kBig, 0, sign), nibble == 0xD ? "-123" : "123");
      }
    }
  }
}

TEST(DataCnvPacked, NonDigitNibblesAreRejectedWhereverTheyStand) {
  // The insert is the field as the caller gave it, in its own byte order.
  DataCnv cnv;
  for (const Bytes& field : {Bytes{0x1A, 0x34, 0x5C}, Bytes{0xF2, 0x34, 0x5C},
                             Bytes{0x12, 0x34, 0xCC}, Bytes{0x12, 0xB4, 0x5D}}) {
    for (const EEndian endian : {kBig, kLittle}) {
      const Bytes given = inOrder(field, endian);
      expectConversionFailure([&] { readDecimal(cnv, given, endian, 0, kSigned); }, kInvalid,
                              "DataCnv::ValidatePackedDecimal",
                              {"packed decimal, non-numeric data found", dump(given)});
    }
  }
}

TEST(DataCnvPacked, ReadersRefuseNullSourcesAndSizesBelowOne) {
  // The TLOG readers give an empty value for a null source instead (tested with them).
  DataCnv cnv;
  const unsigned char byte = 0x1C;
  struct Reader {
    const char* function;
    bool nullFails;
    std::function<void(const unsigned char*, std::int32_t)> read;
  };
  const Reader readers[] = {
      {"DataCnv::PckdDecToDec", true,
       [&](auto* s, auto n) { cnv.PckdDecToDec(s, n, kBig, 0, kSigned); }},
      {"DataCnv::PckdDecToDbl", true,
       [&](auto* s, auto n) { cnv.PckdDecToDbl(s, n, kBig, 0, kSigned); }},
      {"DataCnv::PckdDecToInt32", true,
       [&](auto* s, auto n) { cnv.PckdDecToInt32(s, n, kLittle, 0, kSigned); }},
      {"DataCnv::PckdDecToPWFInt64", true,
       [&](auto* s, auto n) { cnv.PckdDecToPWFInt64(s, n, kBig, 0, kSigned); }},
      {"DataCnv::TLOGPckdStrToStr", false,
       [&](auto* s, auto n) { cnv.TLOGPckdStrToStr(s, n, kLittle); }},
      {"DataCnv::TLOGPckdDecToDec", false,
       [&](auto* s, auto n) { cnv.TLOGPckdDecToDec(s, n, kBig); }},
  };
  for (const Reader& reader : readers) {
    SCOPED_TRACE(reader.function);
    if (reader.nullFails) {
      expectConversionFailure([&] { reader.read(nullptr, 1); }, kInternal, reader.function,
                              {"Null input pointer"});
    }
    for (const std::int32_t size : {0, -1}) {
      expectConversionFailure([&] { reader.read(&byte, size); }, kInternal, reader.function,
                              {"Invalid input length: ", std::to_string(size)});
    }
  }
}

TEST(DataCnvPacked, IntegerAndDoubleReadersTruncateAndCheckTheRange) {
  DataCnv cnv;
  for (const EEndian endian : {kBig, kLittle}) {
    const Bytes scaled = inOrder({0x12, 0x34, 0x5D}, endian);
    EXPECT_EQ(cnv.PckdDecToInt32(scaled.data(), 3, endian, 2, kSigned), -123);
    EXPECT_EQ(cnv.PckdDecToPWFInt64(scaled.data(), 3, endian, 2, kSigned), -123);
    EXPECT_DOUBLE_EQ(cnv.PckdDecToDbl(scaled.data(), 3, endian, 2, kSigned), -123.45);

    const Bytes int32Max = inOrder({0x02, 0x14, 0x74, 0x83, 0x64, 0x7C}, endian);
    EXPECT_EQ(cnv.PckdDecToInt32(int32Max.data(), 6, endian, 0, kSigned), 2147483647);
    const Bytes int64Min =
        inOrder({0x92, 0x23, 0x37, 0x20, 0x36, 0x85, 0x47, 0x75, 0x80, 0x8D}, endian);
    EXPECT_EQ(cnv.PckdDecToPWFInt64(int64Min.data(), 10, endian, 0, kSigned),
              std::numeric_limits<std::int64_t>::min());
  }
  // Beyond the range, the failure is the integer writer's.
  const Bytes int32MaxPlusOne = {0x02, 0x14, 0x74, 0x83, 0x64, 0x8C};
  expectFailure<ZanConversionException>(
      [&] { cnv.PckdDecToInt32(int32MaxPlusOne.data(), 6, kBig, 0, kSigned); }, kTooLong.symbol,
      kTooLong.messageNumber, "Overflow converting a PWFInt64 to PWFInt32", "datacnv",
      "DataCnv::IntFromInt64", {"integer", "4-byte integer", "4"});
}

TEST(DataCnvPacked, WritesFieldsInBothByteOrders) {
  struct Case {
    const char16_t* text;
    std::int32_t size;
    std::int32_t scale;
    DataCnv::ESign sign;
    Bytes bigEndian;
  };
  // By hand: the magnitude shifted by the scale and truncated, zero bytes in front, the sign last.
  const Case cases[] = {
      {u"123.45", 3, 2, kSigned, {0x12, 0x34, 0x5C}},
      {u"-5", 3, 0, kSigned, {0x00, 0x00, 0x5D}},
      {u"0", 3, 0, kUnsigned, {0x00, 0x00, 0x0F}},
      {u"123.999", 3, 0, kSigned, {0x00, 0x12, 0x3C}},
      {u"-0.05", 2, 2, kSigned, {0x00, 0x5D}},
      {u"-0.05", 2, 1, kSigned, {0x00, 0x0D}},
      {u"+7", 1, 0, kSigned, {0x7C}},
      {u" 42 ", 2, 0, kUnsigned, {0x04, 0x2F}},
      {u"12345", 2, -2, kSigned, {0x12, 0x3C}},
      {u"12345", 1, -9, kSigned, {0x0C}},
      {u"000123", 2, 0, kSigned, {0x12, 0x3C}},
      {u"-0.5", 1, 0, kUnsigned, {0x0F}},
      {u"0.00", 1, 999999, kSigned, {0x0C}},
  };
  DataCnv cnv;
  for (const Case& c : cases) {
    for (const EEndian endian : {kBig, kLittle}) {
      SCOPED_TRACE(ZanStringBase(c.text).toUtf8() + (endian == kBig ? " big" : " little"));
      EXPECT_EQ(writeDecimal(cnv, c.text, c.size, endian, c.scale, c.sign),
                inOrder(c.bigEndian, endian));
    }
  }
}

TEST(DataCnvPacked, WriterFailuresLeaveTheFieldAlone) {
  DataCnv cnv;
  Bytes field(3, 0xEE);
  std::int32_t size = 3;
  const auto write = [&](const char16_t* text, std::int32_t scale, DataCnv::ESign sign) {
    return [&cnv, &field, &size, text, scale, sign] {
      cnv.PckdDecFromDec(text, field.data(), size, kBig, scale, sign);
    };
  };
  const char* kFunction = "DataCnv::PckdDecFromDec";
  expectConversionFailure(write(u"1234567", 0, kSigned), kTooLong, kFunction,
                          {"packed decimal", "decimal", "3"});
  expectConversionFailure(write(u"1", 2147483647, kSigned), kTooLong, kFunction,
                          {"packed decimal", "decimal", "3"});
  for (const char16_t* text :
       {u"12a", u"1,234", u"1.2.3", u"--5", u"1e5", u"- 5", u"", u"-", u"."}) {
    expectConversionFailure(write(text, 0, kSigned), kInvalid, kFunction,
                            {"decimal", ZanStringBase(text).toUtf8()});
  }
  expectConversionFailure(write(u"-5", 0, kUnsigned), kBounds, kFunction,
                          {"decimal", "packed decimal (no sign)"});
  expectConversionFailure(write(nullptr, 0, kSigned), kInternal, kFunction, {"Null input pointer"});
  expectConversionFailure([&] { cnv.PckdDecFromDec(u"1", nullptr, size, kBig, 0, kSigned); },
                          kInternal, kFunction, {"Null output buffer pointer"});
  for (const std::int32_t badSize : {0, -1}) {
    size = badSize;
    expectConversionFailure(write(u"1", 0, kSigned), kTooLong, kFunction,
                            {"packed decimal", "decimal", std::to_string(badSize)});
  }
  EXPECT_EQ(field, Bytes(3, 0xEE));
}

TEST(DataCnvPacked, PositiveSignComesFromTheObject) {
  DataCnv unsignedPositive(1200, kLittle, IEEEFloat, 53, nullptr, nullptr, 0, true, 0xF);
  EXPECT_EQ(writeDecimal(unsignedPositive, u"5", 1, kBig, 0, kSigned), Bytes{0x5F});
  EXPECT_EQ(writeDecimal(unsignedPositive, u"-5", 1, kBig, 0, kSigned), Bytes{0x5D});
  // A sign that would not read back as positive, or would spill into the digit, is refused.
  for (const char sign : {'C', '\x0B', '\x05'}) {
    DataCnv cnv(1200, kLittle, IEEEFloat, 53, nullptr, nullptr, 0, true, sign);
    expectConversionFailure(
        [&] { writeDecimal(cnv, u"5", 1, kBig, 0, kSigned); }, kInternal,
        "DataCnv::GetPackedDecimalSign",
        {"Invalid positive packed sign: ", std::to_string(static_cast<unsigned char>(sign))});
  }
}

TEST(DataCnvPacked, WritesIntegersAndDoubles) {
  DataCnv cnv;
  constexpr auto kInt32Min = std::numeric_limits<std::int32_t>::min();
  constexpr auto kInt64Min = std::numeric_limits<std::int64_t>::min();
  for (const EEndian endian : {kBig, kLittle}) {
    SCOPED_TRACE(endian == kBig ? "big" : "little");
    EXPECT_EQ(written(6,
                      [&](auto* out, auto& size) {
                        cnv.PckdDecFromInt32(kInt32Min, out, size, endian, 0, kSigned);
                      }),
              inOrder({0x02, 0x14, 0x74, 0x83, 0x64, 0x8D}, endian));
    EXPECT_EQ(written(10,
                      [&](auto* out, auto& size) {
                        cnv.PckdDecFromPWFInt64(kInt64Min, out, size, endian, 0, kSigned);
                      }),
              inOrder({0x92, 0x23, 0x37, 0x20, 0x36, 0x85, 0x47, 0x75, 0x80, 0x8D}, endian));
    EXPECT_EQ(written(3,
                      [&](auto* out, auto& size) {
                        cnv.PckdDecFromInt32(123, out, size, endian, 2, kSigned);  // digits 12300
                      }),
              inOrder({0x12, 0x30, 0x0C}, endian));
    EXPECT_EQ(written(3,
                      [&](auto* out, auto& size) {
                        cnv.PckdDecFromDbl(-123.456, out, size, endian, 2, kSigned);
                      }),
              inOrder({0x12, 0x34, 0x5D}, endian));
  }
  std::int32_t size = 2;
  unsigned char field[2];
  constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
  expectConversionFailure([&] { cnv.PckdDecFromDbl(kNaN, field, size, kBig, 0, kSigned); },
                          kInvalid, "DataCnv::doubleToUString", {"double", "nan"});
  expectConversionFailure([&] { cnv.PckdDecFromPWFInt64(-1, field, size, kBig, 0, kUnsigned); },
                          kBounds, "DataCnv::PckdDecFromPWFInt64",
                          {"decimal", "packed decimal (no sign)"});
}

TEST(DataCnvPacked, EveryValidTwoByteFieldWritesBackAsItReads) {
  // Exhaustive: with the object's positive sign C, a signed field signed C or D, and an unsigned
  // field signed F, come back byte for byte; every valid field reads back to its own value.
  DataCnv cnv;
  for (std::uint32_t bits = 0; bits < 0x10000; ++bits) {
    const Bytes field = {static_cast<unsigned char>(bits >> 8), static_cast<unsigned char>(bits)};
    const unsigned char signNibble = bits & 0xF;
    const bool digits = ((bits >> 4) & 0xF) <= 9 && ((bits >> 8) & 0xF) <= 9 && (bits >> 12) <= 9;
    if (!digits || signNibble <= 9) continue;
    for (const EEndian endian : {kBig, kLittle}) {
      const Bytes given = inOrder(field, endian);
      const std::string text = readDecimal(cnv, given, endian, 1, kSigned);
      const Bytes back = writeDecimal(cnv, ZanStringBase::fromUtf8(text).terminatedData(), 2,
                                      endian, 1, signNibble == 0xF ? kUnsigned : kSigned);
      if (signNibble == 0xA || signNibble == 0xB || signNibble == 0xE) {
        ASSERT_EQ(readDecimal(cnv, back, endian, 1, kSigned), text);
      } else {
        ASSERT_EQ(back, given) << text;
      }
    }
  }
}

TEST(DataCnvPacked, RandomIntegersRoundTrip) {
  DataCnv cnv;
  std::mt19937_64 random(20240611);
  for (int i = 0; i < 2000; ++i) {
    const auto value = static_cast<std::int64_t>(random());
    const auto value32 = static_cast<std::int32_t>(value);
    const EEndian endian = i % 2 == 0 ? kBig : kLittle;
    const Bytes field64 = written(10, [&](auto* out, auto& size) {
      cnv.PckdDecFromPWFInt64(value, out, size, endian, 0, kSigned);
    });
    ASSERT_EQ(cnv.PckdDecToPWFInt64(field64.data(), 10, endian, 0, kSigned), value);
    // Ten digits and three places.
    const Bytes field32 = written(7, [&](auto* out, auto& size) {
      cnv.PckdDecFromInt32(value32, out, size, endian, 3, kSigned);
    });
    ASSERT_EQ(cnv.PckdDecToInt32(field32.data(), 7, endian, 3, kSigned), value32);
  }
}

TEST(DataCnvPacked, LongFieldsAreUnpackedOnTheHeap) {
  // 40 bytes: beyond the stack buffer; 79 digits.
  DataCnv cnv;
  std::u16string digits;
  for (int i = 0; i < 79; ++i) digits += static_cast<char16_t>(u'1' + i % 9);
  const std::u16string text = u"-" + digits.substr(0, 77) + u"." + digits.substr(77);
  for (const EEndian endian : {kBig, kLittle}) {
    const Bytes field = writeDecimal(cnv, text.c_str(), 40, endian, 2, kSigned);
    EXPECT_EQ(readDecimal(cnv, field, endian, 2, kSigned), ZanStringBase(text.c_str()).toUtf8());
  }
  const Bytes field = {0x12, 0x3C};
  unsigned char* nibbles = DataCnvTestAccess::getUnpackedBuffer(cnv, field.data(), 2, kLittle);
  EXPECT_EQ(Bytes(nibbles, nibbles + 4), (Bytes{0x3, 0xC, 0x1, 0x2}));
  cpFree(nibbles);
  EXPECT_EQ(DataCnvTestAccess::getUnpackedBuffer(cnv, nullptr, 2, kBig), nullptr);
}

// Caps the address space a little above what the process maps now, so that a large request fails
// in malloc itself.
void capAddressSpace() {
  long pages = 0;
  if (FILE* statm = std::fopen("/proc/self/statm", "r")) {
    if (std::fscanf(statm, "%ld", &pages) != 1) pages = 0;
    std::fclose(statm);
  }
  const auto limit =
      static_cast<rlim_t>(pages) * static_cast<rlim_t>(sysconf(_SC_PAGESIZE)) + (64u << 20);
  const rlimit cap{limit, limit};
  setrlimit(RLIMIT_AS, &cap);
}

// In a child process (a death-test fork), so the cap never reaches the suite: a 100 MB field is
// held, then its 200 MB of nibbles are refused.
TEST(DataCnvPackedDeathTest, RefusedUnpackingIsAConversionFailure) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  EXPECT_EXIT(
      {
        DataCnv cnv;
        const Bytes field(100u << 20);
        capAddressSpace();
        expectFailure<ZanConversionException>(
            [&] { cnv.PckdDecToDec(field.data(), 100 << 20, kBig, 0, kSigned); },
            "CP_MEMORY_ALLOC_FAILURE", 0xC0000806, "CPI Memory allocation failure", "datacnv",
            "DataCnv::getUnpackedBuffer", {"malloc returned NULL"});
        std::_Exit(::testing::Test::HasFailure() ? 1 : 0);
      },
      ::testing::ExitedWithCode(0), "");
}

TEST(DataCnvPackedTlog, ReadsDigitStringsAndHexadecimalCharacters) {
  DataCnv cnv;
  struct Case {
    Bytes bigEndian;
    const char* decimal;
    const char* characters;
  };
  // By hand: D anywhere negates and F first is a filler; the characters are the nibbles in hex.
  const Case cases[] = {
      {{0xF1, 0x23}, "123", "F123"}, {{0x12, 0x3D}, "-123", "123D"}, {{0xD1, 0x23}, "-123", "D123"},
      {{0xF0}, "0", "F0"},           {{0xFD}, "-0", "FD"},
  };
  for (const Case& c : cases) {
    for (const EEndian endian : {kBig, kLittle}) {
      SCOPED_TRACE(std::string(c.characters) + (endian == kBig ? " big" : " little"));
      const Bytes field = inOrder(c.bigEndian, endian);
      const auto size = static_cast<std::int32_t>(field.size());
      EXPECT_EQ(decimalText(cnv.TLOGPckdDecToDec(field.data(), size, endian)), c.decimal);
      EXPECT_EQ(cnv.TLOGPckdStrToStr(field.data(), size, endian).getPWFStringValue().toUtf8(),
                c.characters);
    }
  }
  for (const PWFData& empty :
       {cnv.TLOGPckdStrToStr(nullptr, 2, kBig), cnv.TLOGPckdDecToDec(nullptr, 2, kBig)}) {
    EXPECT_EQ(empty.getDataLogicalType(), eString);
    EXPECT_EQ(empty.getStringLength(), 0);
  }
  for (const Bytes& bad : {Bytes{0x1C}, Bytes{0x1F}, Bytes{0x12, 0xF3}, Bytes{0xA1}}) {
    expectConversionFailure(
        [&] { cnv.TLOGPckdDecToDec(bad.data(), static_cast<std::int32_t>(bad.size()), kBig); },
        kInvalid, "DataCnv::TLOGPckdDecToDec", {"TLOG packed decimal", dump(bad)});
  }
}

TEST(DataCnvPackedTlog, WritesDigitStringsThatReadBack) {
  struct Case {
    const char16_t* text;
    std::int32_t size;
    bool trimLeadingZeros;
    Bytes bigEndian;
    const char* readBack;
  };
  // By hand: the text right-aligned over "0" characters, "-" as D where it falls; trimming drops
  // pairs of leading zeros and puts an F filler before an odd one out.
  const Case cases[] = {
      {u"-123", 3, false, {0x00, 0xD1, 0x23}, "-00123"},
      {u"-123", 3, true, {0xD1, 0x23}, "-123"},
      {u"123", 3, true, {0xF1, 0x23}, "123"},
      {u"123", 3, false, {0x00, 0x01, 0x23}, "000123"},
      {u"0", 2, true, {0xF0}, "0"},
      {u"-12", 2, true, {0xFD, 0x12}, "-12"},
      {u"123-", 2, true, {0x12, 0x3D}, "-123"},
      {u"000042", 3, true, {0x42}, "42"},
  };
  DataCnv cnv;
  for (const Case& c : cases) {
    for (const EEndian endian : {kBig, kLittle}) {
      SCOPED_TRACE(ZanStringBase(c.text).toUtf8() + (endian == kBig ? " big" : " little"));
      Bytes target(static_cast<std::size_t>(c.size), 0xEE);
      std::int32_t written = -1;
      EXPECT_EQ(cnv.TLOGPWFDataToPckdDecimal(PWFData(c.text, eString), target.data(), c.size,
                                             endian, c.trimLeadingZeros, written),
                target.data());
      ASSERT_EQ(written, static_cast<std::int32_t>(c.bigEndian.size()));
      EXPECT_EQ(Bytes(target.begin(), target.begin() + written), inOrder(c.bigEndian, endian));
      EXPECT_EQ(decimalText(cnv.TLOGPckdDecToDec(target.data(), written, endian)), c.readBack);
    }
  }
  // Decimal and integer values give their text too.
  Bytes target(2);
  std::int32_t written = 0;
  cnv.TLOGPWFDataToPckdDecimal(PWFData(u"-42", eDecimal), target.data(), 2, kBig, false, written);
  EXPECT_EQ(target, (Bytes{0x0D, 0x42}));
  cnv.TLOGPWFDataToPckdDecimal(PWFData(std::int32_t{1234}), target.data(), 2, kBig, false, written);
  EXPECT_EQ(target, (Bytes{0x12, 0x34}));
}

TEST(DataCnvPackedTlog, WritesHexadecimalCharacters) {
  DataCnv cnv;
  struct Case {
    const char16_t* text;
    std::int32_t size;
    Bytes bigEndian;
    const char* readBack;
  };
  // By hand: two characters a byte, right-aligned over "0".
  const Case cases[] = {{u"4AF0", 2, {0x4A, 0xF0}, "4AF0"},
                        {u"abc", 2, {0x0A, 0xBC}, "0ABC"},
                        {u"1", 3, {0x00, 0x00, 0x01}, "000001"},
                        {u"", 1, {0x00}, "00"}};
  for (const Case& c : cases) {
    for (const EEndian endian : {kBig, kLittle}) {
      SCOPED_TRACE(ZanStringBase(c.text).toUtf8() + (endian == kBig ? " big" : " little"));
      Bytes target(static_cast<std::size_t>(c.size), 0xEE);
      EXPECT_EQ(cnv.TLOGPWFDataToPckdStr(PWFData(c.text, eString), target.data(), c.size, endian),
                target.data());
      EXPECT_EQ(target, inOrder(c.bigEndian, endian));
      EXPECT_EQ(cnv.TLOGPckdStrToStr(target.data(), c.size, endian).getPWFStringValue().toUtf8(),
                c.readBack);
    }
  }
}

TEST(DataCnvPackedTlog, WriterFailuresLeaveTheTargetAlone) {
  DataCnv cnv;
  Bytes target(2, 0xEE);
  std::int32_t written = -1;
  const char* kDecimal = "DataCnv::TLOGPWFDataToPckdDecimal";
  const char* kString = "DataCnv::TLOGPWFDataToPckdStr";
  const auto decimal = [&](const PWFData& value, std::int32_t size) {
    return [&cnv, &target, &written, value, size] {
      cnv.TLOGPWFDataToPckdDecimal(value, target.data(), size, kBig, true, written);
    };
  };
  const auto hex = [&](const PWFData& value, std::int32_t size) {
    return [&cnv, &target, value, size] {
      cnv.TLOGPWFDataToPckdStr(value, target.data(), size, kLittle);
    };
  };
  expectConversionFailure(decimal(PWFData(u"12345", eString), 2), kTooLong, kDecimal,
                          {"TLOG packed decimal", "decimal", "2"});
  expectConversionFailure(hex(PWFData(u"12345", eString), 2), kTooLong, kString,
                          {"TLOG packed string", "string", "2"});
  for (const char16_t* text : {u"1.5", u"+5", u"1 2", u"A"}) {
    expectConversionFailure(decimal(PWFData(text, eString), 2), kInvalid, kDecimal,
                            {"TLOG packed decimal", ZanStringBase(text).toUtf8()});
  }
  expectConversionFailure(hex(PWFData(u"4G", eString), 2), kInvalid, kString,
                          {"TLOG packed string", "4G"});
  for (const std::int32_t size : {0, -1}) {
    expectConversionFailure(decimal(PWFData(u"1", eString), size), kInternal, kDecimal,
                            {"Invalid input length: ", std::to_string(size)});
    expectConversionFailure(hex(PWFData(u"1", eString), size), kInternal, kString,
                            {"Invalid input length: ", std::to_string(size)});
  }
  expectConversionFailure(decimal(PWFData(eString), 2), kInternal, kDecimal,
                          {"Should not call this method with null data"});
  expectConversionFailure(hex(PWFData(1.5), 2), kInternal, kString,
                          {"Should not call this method without a valid type"});
  EXPECT_EQ(target, Bytes(2, 0xEE));
  EXPECT_EQ(written, -1);
  EXPECT_EQ(cnv.TLOGPWFDataToPckdDecimal(PWFData(u"1", eString), nullptr, 2, kBig, true, written),
            nullptr);
  EXPECT_EQ(written, -1);
  EXPECT_EQ(cnv.TLOGPWFDataToPckdStr(PWFData(u"1", eString), nullptr, 2, kBig), nullptr);
}

}  // namespace
