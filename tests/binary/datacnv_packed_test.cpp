// Packed decimal both ways and in both byte orders, the integer and double forms, and TLOG forms.

#include <bsutils/dataconv.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <unistd.h>

#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <fstream>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include "support/expect_failure.h"
#include "support/field_conventions.h"

namespace {

using Bytes = std::vector<unsigned char>;
using Inserts = std::vector<std::string>;
constexpr auto kBig = BigEndian;
constexpr auto kLittle = LittleEndian;
constexpr auto kFromDec = &DataCnv::PckdDecFromDec;
constexpr auto kFromInt32 = &DataCnv::PckdDecFromInt32;
constexpr auto kFromInt64 = &DataCnv::PckdDecFromPWFInt64;
const Code kTooLong{"CP_CONV_INPUT_DATA_TOO_LONG", 0xC0001583, "CPI InputData Too Long"};

// The field in the given order, from its big-endian bytes.
Bytes inOrder(const Bytes& bigEndian, EEndian endian) {
  return endian == kLittle ? Bytes(bigEndian.rbegin(), bigEndian.rend()) : bigEndian;
}

std::string decimalText(const PWFData& value) {
  EXPECT_EQ(value.getDataLogicalType(), eDecimal);
  return value.getDecimalText().toUtf8();
}

// Reads from a buffer of exactly the field's size, so that a read past it is the sanitizer's.
std::string readDecimal(DataCnv& cnv, const Bytes& field, EEndian endian, std::int32_t scale,
                        DataCnv::ESign sign) {
  return decimalText(
      cnv.PckdDecToDec(field.data(), static_cast<std::int32_t>(field.size()), endian, scale, sign));
}

// Runs a writer on a buffer of exactly `size` bytes and returns them.
template <class Writer, class Value>
Bytes pack(DataCnv& cnv, Writer writer, Value value, std::int32_t size, EEndian endian,
           std::int32_t scale, DataCnv::ESign sign) {
  Bytes field(static_cast<std::size_t>(size), 0xEE);
  std::int32_t length = size;
  (cnv.*writer)(value, field.data(), length, endian, scale, sign);
  EXPECT_EQ(length, size);
  return field;
}

TEST(DataCnvPacked, WritesAndReadsFieldsInBothByteOrders) {
  // By hand. Written: the magnitude times ten to the scale, truncated, the sign last. Read back
  // (unless null): the digits with their zeros, the point moved over them alone, then the sign.
  const std::tuple<const char16_t*, std::int32_t, DataCnv::ESign, Bytes, const char*> cases[] = {
      {u"123.45", 2, kSigned, {0x12, 0x34, 0x5C}, "123.45"},
      {u"-5", 0, kSigned, {0x00, 0x00, 0x5D}, "-00005"},
      {u"0", 0, kUnsigned, {0x00, 0x00, 0x0F}, "00000"},
      {u"-0.05", 2, kSigned, {0x5D}, "-0.05"},
      {u"12345", -2, kSigned, {0x12, 0x3C}, "12300"},
      {u"-0.5", 0, kSigned, {0x0D}, "-0"},
      {u"-0.5", 0, kUnsigned, {0x0F}, "0"},
      {u"+7", 0, kSigned, {0x7C}, "7"},
      {u" 42 ", 0, kUnsigned, {0x04, 0x2F}, "042"},
      {u"12345", -9, kSigned, {0x0C}, "0000000000"},
      {u"000123", 0, kSigned, {0x12, 0x3C}, "123"},
      {u"0.00", 999999, kSigned, {0x0C}, nullptr},
  };
  DataCnv cnv;
  for (const auto& [text, scale, sign, bigEndian, read] : cases) {
    for (const EEndian endian : {kBig, kLittle}) {
      SCOPED_TRACE(ZanStringBase(text).toUtf8() + (endian == kBig ? " big" : " little"));
      const Bytes field = inOrder(bigEndian, endian);
      const auto size = static_cast<std::int32_t>(field.size());
      EXPECT_EQ(pack(cnv, kFromDec, text, size, endian, scale, sign), field);
      if (read != nullptr) {
        EXPECT_EQ(readDecimal(cnv, field, endian, scale, sign), read);
      }
    }
  }
  // 40 bytes, beyond the stack buffer: 79 nibbles, more than one block of text.
  for (const EEndian endian : {kBig, kLittle}) {
    const Bytes field = pack(cnv, kFromInt64, INT64_MIN, 40, endian, 0, kSigned);
    EXPECT_EQ(cnv.PckdDecToPWFInt64(field.data(), 40, endian, 0, kSigned), INT64_MIN);
  }
}

TEST(DataCnvPacked, ReaderFailures) {
  // Sign nibbles: A, C, E, F positive; D negative; B a negative code read as positive; 0-9 none.
  DataCnv cnv;
  const char* kFunction = "DataCnv::ValidatePackedDecimal";
  for (unsigned char nibble = 0; nibble < 32; ++nibble) {
    const DataCnv::ESign sign = nibble < 16 ? kSigned : kUnsigned;
    const Bytes field = {0x12, static_cast<unsigned char>(0x30 | nibble % 16)};
    const bool negative = nibble % 16 == 0xB || nibble % 16 == 0xD;
    const char* failure = nibble % 16 <= 9 ? "packed decimal, no sign found "
                          : negative && sign == kUnsigned
                              ? "packed decimal, negative sign found on unsigned data "
                              : nullptr;
    if (failure != nullptr) {
      expectConversionFailure([&] { readDecimal(cnv, field, kBig, 0, sign); }, kInvalid, kFunction,
                              {failure, std::string("0x123") + "0123456789abcdef"[nibble % 16]});
    } else {
      EXPECT_EQ(readDecimal(cnv, field, kBig, 0, sign), nibble == 0xD ? "-123" : "123") << +nibble;
    }
  }
  // A non-digit at either end of the digits; the insert is the field in its own byte order.
  const std::tuple<Bytes, EEndian, const char*> nonDigits[] = {
      {{0xF2, 0x34, 0x5C}, kBig, "0xf2345c"},
      {{0x5C, 0x34, 0xF2}, kLittle, "0x5c34f2"},
      {{0x12, 0x34, 0xCC}, kBig, "0x1234cc"},
      {{0xCC, 0x34, 0x12}, kLittle, "0xcc3412"}};
  for (const auto& [field, endian, text] : nonDigits) {
    expectConversionFailure([&] { readDecimal(cnv, field, endian, 0, kSigned); }, kInvalid,
                            kFunction, {"packed decimal, non-numeric data found", text});
  }
  // The checks that the decimal, integer and double readers share, and the TLOG readers'.
  const unsigned char byte = 0x1C;
  const Inserts badSize = {"Invalid input length: ", "0"};
  expectConversionFailure([&] { cnv.PckdDecToDec(nullptr, 1, kBig, 0, kSigned); }, kInternal,
                          "DataCnv::PckdDecToDec", {"Null input pointer"});
  expectConversionFailure([&] { cnv.PckdDecToDec(&byte, 0, kBig, 0, kSigned); }, kInternal,
                          "DataCnv::PckdDecToDec", badSize);
  expectConversionFailure([&] { cnv.TLOGPckdStrToStr(&byte, 0, kLittle); }, kInternal,
                          "DataCnv::TLOGPckdStrToStr", badSize);
  expectConversionFailure([&] { cnv.TLOGPckdDecToDec(&byte, -1, kBig); }, kInternal,
                          "DataCnv::TLOGPckdDecToDec", {"Invalid input length: ", "-1"});
}

TEST(DataCnvPacked, WriterFailuresLeaveTheFieldAlone) {
  DataCnv cnv;
  Bytes field(3, 0xEE);
  const std::tuple<const char16_t*, std::int32_t, DataCnv::ESign, std::int32_t, Code, Inserts>
      cases[] = {
          {u"1234567", 0, kSigned, 3, kTooLong, {"packed decimal", "decimal", "3"}},
          {u"1", 2147483647, kSigned, 3, kTooLong, {"packed decimal", "decimal", "3"}},
          {u"1", 0, kSigned, 0, kTooLong, {"packed decimal", "decimal", "0"}},
          {u"-5", 0, kUnsigned, 3, kBounds, {"decimal", "packed decimal (no sign)"}},
          {nullptr, 0, kSigned, 3, kInternal, {"Null input pointer"}},
          {u"1,234", 0, kSigned, 3, kInvalid, {"decimal", "1,234"}},
          {u"1.2.3", 0, kSigned, 3, kInvalid, {"decimal", "1.2.3"}},
          {u".", 0, kSigned, 3, kInvalid, {"decimal", "."}},
      };
  for (auto [text, scale, sign, size, code, inserts] : cases) {
    expectConversionFailure(
        [&] { cnv.PckdDecFromDec(text, field.data(), size, kBig, scale, sign); }, code,
        "DataCnv::PckdDecFromDec", inserts);
  }
  std::int32_t size = 3;
  expectConversionFailure([&] { cnv.PckdDecFromDec(u"1", nullptr, size, kBig, 0, kSigned); },
                          kInternal, "DataCnv::PckdDecFromDec", {"Null output buffer pointer"});
  EXPECT_EQ(field, Bytes(3, 0xEE));
  // The positive sign is the object's; one not read back as positive, or not a nibble, is refused.
  DataCnv unsignedPositive(1200, kLittle, IEEEFloat, 53, nullptr, nullptr, 0, true, 0xF);
  EXPECT_EQ(pack(unsignedPositive, kFromDec, u"5", 1, kBig, 0, kSigned), Bytes{0x5F});
  for (const char sign : {'C', '\x0B', '\x05'}) {
    DataCnv bad(1200, kLittle, IEEEFloat, 53, nullptr, nullptr, 0, true, sign);
    expectConversionFailure(
        [&] { pack(bad, kFromDec, u"5", 1, kBig, 0, kSigned); }, kInternal,
        "DataCnv::GetPackedDecimalSign",
        {"Invalid positive packed sign: ", std::to_string(static_cast<unsigned char>(sign))});
  }
}

TEST(DataCnvPacked, IntegerAndDoubleFormsBothWays) {
  DataCnv cnv;
  // By hand in one byte order; the nibbles are the decimal forms'.
  const Bytes int32Min = {0x02, 0x14, 0x74, 0x83, 0x64, 0x8D};
  const Bytes int64Min = {0x92, 0x23, 0x37, 0x20, 0x36, 0x85, 0x47, 0x75, 0x80, 0x8D};
  EXPECT_EQ(pack(cnv, kFromInt32, INT32_MIN, 6, kBig, 0, kSigned), int32Min);
  EXPECT_EQ(cnv.PckdDecToInt32(int32Min.data(), 6, kBig, 0, kSigned), INT32_MIN);
  EXPECT_EQ(pack(cnv, kFromInt64, INT64_MIN, 10, kLittle, 0, kSigned), inOrder(int64Min, kLittle));
  EXPECT_EQ(cnv.PckdDecToPWFInt64(int64Min.data(), 10, kBig, 0, kSigned), INT64_MIN);
  // The integer readers truncate the fraction.
  const Bytes scaled = {0x12, 0x34, 0x5D};
  EXPECT_EQ(pack(cnv, &DataCnv::PckdDecFromDbl, -123.456, 3, kBig, 2, kSigned), scaled);
  EXPECT_EQ(cnv.PckdDecToInt32(scaled.data(), 3, kBig, 2, kSigned), -123);
  EXPECT_DOUBLE_EQ(cnv.PckdDecToDbl(scaled.data(), 3, kBig, 2, kSigned), -123.45);
  const Bytes scaledInt = {0x05, 0x00, 0x0D};
  EXPECT_EQ(pack(cnv, kFromInt32, -5, 3, kBig, 3, kSigned), scaledInt);
  EXPECT_EQ(cnv.PckdDecToInt32(scaledInt.data(), 3, kBig, 3, kSigned), -5);
  // Beyond the range, the failure is the integer writer's.
  const Bytes int32MaxPlusOne = {0x02, 0x14, 0x74, 0x83, 0x64, 0x8C};
  expectFailure<ZanConversionException>(
      [&] { cnv.PckdDecToInt32(int32MaxPlusOne.data(), 6, kBig, 0, kSigned); }, kTooLong.symbol,
      kTooLong.messageNumber, "Overflow converting a PWFInt64 to PWFInt32", "datacnv",
      "DataCnv::IntFromInt64", {"integer", "4-byte integer", "4"});
  expectConversionFailure([&] { pack(cnv, &DataCnv::PckdDecFromDbl, NAN, 2, kBig, 0, kSigned); },
                          kInvalid, "DataCnv::doubleToUString", {"double", "nan"});
}

// In a forked child: the address space capped just above a 100 MB field refuses its nibbles.
TEST(DataCnvPackedDeathTest, RefusedUnpackingIsAConversionFailure) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  EXPECT_EXIT(
      {
        DataCnv cnv;
        const Bytes field(100u << 20);
        long pages = 0;
        std::ifstream("/proc/self/statm") >> pages;
        rlimit cap;
        cap.rlim_cur = cap.rlim_max = rlim_t(pages) * sysconf(_SC_PAGESIZE) + (64 << 20);
        setrlimit(RLIMIT_AS, &cap);
        expectFailure<ZanConversionException>(
            [&] { cnv.PckdDecToDec(field.data(), 100 << 20, kBig, 0, kSigned); },
            "CP_MEMORY_ALLOC_FAILURE", 0xC0000806, "CPI Memory allocation failure", "datacnv",
            "DataCnv::getUnpackedBuffer", {"malloc returned NULL"});
        std::_Exit(::testing::Test::HasFailure() ? 1 : 0);
      },
      ::testing::ExitedWithCode(0), "");
}

TEST(DataCnvPackedTlog, WritesFieldsThatReadBackAndFailures) {
  // By hand: the text right-aligned over "0", "-" as D where it falls, trimming leaving out pairs
  // of leading zeros (an odd one out gets an F filler); hex: two characters a byte.
  const std::tuple<bool, PWFData, std::int32_t, bool, Bytes, const char*> cases[] = {
      {false, PWFData(u"-123", eString), 3, true, {0xD1, 0x23}, "-123"},
      {false, PWFData(u"123", eString), 3, true, {0xF1, 0x23}, "123"},
      {false, PWFData(u"0", eString), 2, true, {0xF0}, "0"},
      {false, PWFData(u"-", eString), 1, true, {0xFD}, "-0"},
      {false, PWFData(u"123-", eString), 2, true, {0x12, 0x3D}, "-123"},
      {false, PWFData(u"-42", eDecimal), 2, false, {0x0D, 0x42}, "-042"},
      {false, PWFData(std::int32_t{1234}), 2, false, {0x12, 0x34}, "1234"},
      {true, PWFData(u"4AF0", eString), 2, false, {0x4A, 0xF0}, "4AF0"},
      {true, PWFData(u"abc", eString), 2, false, {0x0A, 0xBC}, "0ABC"},
      {true, PWFData(u"", eString), 1, false, {0x00}, "00"},
  };
  DataCnv cnv;
  for (const auto& [hex, value, size, trim, bigEndian, readBack] : cases) {
    for (const EEndian endian : {kBig, kLittle}) {
      SCOPED_TRACE(std::string(readBack) + (endian == kBig ? " big" : " little"));
      Bytes target(static_cast<std::size_t>(size), 0xEE);
      std::int32_t written = size;
      EXPECT_EQ(
          hex ? cnv.TLOGPWFDataToPckdStr(value, target.data(), size, endian)
              : cnv.TLOGPWFDataToPckdDecimal(value, target.data(), size, endian, trim, written),
          target.data());
      ASSERT_EQ(written, static_cast<std::int32_t>(bigEndian.size()));
      EXPECT_EQ(Bytes(target.begin(), target.begin() + written), inOrder(bigEndian, endian));
      const PWFData back = hex ? cnv.TLOGPckdStrToStr(target.data(), written, endian)
                               : cnv.TLOGPckdDecToDec(target.data(), written, endian);
      EXPECT_EQ(hex ? back.getPWFStringValue().toUtf8() : decimalText(back), readBack);
    }
  }
  // A null source reads as an empty string.
  for (const PWFData& empty :
       {cnv.TLOGPckdStrToStr(nullptr, 2, kBig), cnv.TLOGPckdDecToDec(nullptr, 2, kBig)}) {
    EXPECT_EQ(empty.getDataLogicalType(), eString);
    EXPECT_EQ(empty.getStringLength(), 0);
  }
  // F other than first, and a nibble above 9 other than D and F.
  for (const auto& [bad, text] : {std::pair{Bytes{0x1F}, "0x1f"}, std::pair{Bytes{0xA1}, "0xa1"}}) {
    expectConversionFailure([&] { cnv.TLOGPckdDecToDec(bad.data(), 1, kBig); }, kInvalid,
                            "DataCnv::TLOGPckdDecToDec", {"TLOG packed decimal", text});
  }
  // A failed write leaves the target and the length alone.
  Bytes target(2, 0xEE);
  std::int32_t written = -1;
  const PWFData tooLong(u"12345", eString), one(u"1", eString);
  const std::tuple<bool, PWFData, std::int32_t, Code, Inserts> failures[] = {
      {false, tooLong, 2, kTooLong, {"TLOG packed decimal", "decimal", "2"}},
      {true, tooLong, 2, kTooLong, {"TLOG packed string", "string", "2"}},
      {false, PWFData(u"1.5", eString), 2, kInvalid, {"TLOG packed decimal", "1.5"}},
      {true, PWFData(u"4G", eString), 2, kInvalid, {"TLOG packed string", "4G"}},
      {false, one, 0, kInternal, {"Invalid input length: ", "0"}},
      {true, one, -1, kInternal, {"Invalid input length: ", "-1"}},
      {false, PWFData(eString), 2, kInternal, {"Should not call this method with null data"}},
      {true, PWFData(1.5), 2, kInternal, {"Should not call this method without a valid type"}},
  };
  for (const auto& [hex, value, size, code, inserts] : failures) {
    const auto write = [&] {
      hex ? cnv.TLOGPWFDataToPckdStr(value, target.data(), size, kLittle)
          : cnv.TLOGPWFDataToPckdDecimal(value, target.data(), size, kBig, true, written);
    };
    expectConversionFailure(
        write, code, hex ? "DataCnv::TLOGPWFDataToPckdStr" : "DataCnv::TLOGPWFDataToPckdDecimal",
        inserts);
  }
  EXPECT_EQ(target, Bytes(2, 0xEE));
  EXPECT_EQ(cnv.TLOGPWFDataToPckdDecimal(one, nullptr, 2, kBig, true, written), nullptr);
  EXPECT_EQ(written, -1);
  EXPECT_EQ(cnv.TLOGPWFDataToPckdStr(one, nullptr, 2, kBig), nullptr);
}

}  // namespace
