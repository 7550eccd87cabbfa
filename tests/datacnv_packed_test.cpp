// Packed decimal both ways and in both byte orders, the integer and double forms, and TLOG forms.

#include <bsutils/dataconv.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <unistd.h>

#include <cstdint>
#include <cstdlib>
#include <fstream>
#include <limits>
#include <random>
#include <string>
#include <tuple>
#include <vector>

#include "support/expect_failure.h"

namespace {

using Bytes = std::vector<unsigned char>;
using Inserts = std::vector<std::string>;
constexpr auto kBig = BigEndian;
constexpr auto kLittle = LittleEndian;
constexpr auto kUnsigned = DataCnv::eNoSign;
constexpr auto kSigned = DataCnv::eLeadingEmbeddedSign;  // style 1 is "signed" for packed fields
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

std::string dump(const Bytes& field) {
  static constexpr char kHex[] = "0123456789abcdef";
  std::string text = "0x";
  for (const unsigned char byte : field) text += {kHex[byte >> 4], kHex[byte & 0xF]};
  return text;
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
  // 40 bytes, beyond the stack buffer: 79 digits, through the writer, which has no size limit.
  std::u16string text = u"-";
  for (int i = 0; i < 80; ++i) text += static_cast<char16_t>(u'1' + i % 9);
  text[78] = u'.';  // 77 digits before it, 2 after
  for (const EEndian endian : {kBig, kLittle}) {
    const Bytes field = pack(cnv, kFromDec, text.c_str(), 40, endian, 2, kSigned);
    EXPECT_EQ(readDecimal(cnv, field, endian, 2, kSigned), ZanStringBase(text.c_str()).toUtf8());
  }
}

TEST(DataCnvPacked, ReaderFailures) {
  // Sign nibbles: A, C, E, F positive; D negative; B a negative code read as positive; 0-9 none.
  DataCnv cnv;
  const char* kFunction = "DataCnv::ValidatePackedDecimal";
  for (unsigned char nibble = 0; nibble < 16; ++nibble) {
    for (const DataCnv::ESign sign : {kSigned, kUnsigned}) {
      SCOPED_TRACE(std::to_string(nibble) + (sign == kSigned ? " signed" : " unsigned"));
      const Bytes field = {0x12, static_cast<unsigned char>(0x30 | nibble)};
      const char* failure = nibble <= 9 ? "packed decimal, no sign found "
                            : (nibble == 0xB || nibble == 0xD) && sign == kUnsigned
                                ? "packed decimal, negative sign found on unsigned data "
                                : nullptr;
      if (failure != nullptr) {
        expectConversionFailure([&] { readDecimal(cnv, field, kBig, 0, sign); }, kInvalid,
                                kFunction, {failure, dump(field)});
      } else {
        EXPECT_EQ(readDecimal(cnv, field, kBig, 0, sign), nibble == 0xD ? "-123" : "123");
      }
    }
  }
  // A non-digit at either end of the digits; the insert is the field in its own byte order.
  for (const Bytes& bad : {Bytes{0xF2, 0x34, 0x5C}, Bytes{0x12, 0x34, 0xCC}}) {
    for (const EEndian endian : {kBig, kLittle}) {
      const Bytes given = inOrder(bad, endian);
      expectConversionFailure([&] { readDecimal(cnv, given, endian, 0, kSigned); }, kInvalid,
                              kFunction, {"packed decimal, non-numeric data found", dump(given)});
    }
  }
  // Null sources and sizes below 1, through the checks that the decimal, integer and double
  // readers share, and the TLOG readers' (which give an empty value for a null source).
  const unsigned char byte = 0x1C;
  expectConversionFailure([&] { cnv.PckdDecToDec(nullptr, 1, kBig, 0, kSigned); }, kInternal,
                          "DataCnv::PckdDecToDec", {"Null input pointer"});
  for (const std::int32_t size : {0, -1}) {
    const Inserts inserts = {"Invalid input length: ", std::to_string(size)};
    expectConversionFailure([&] { cnv.PckdDecToDec(&byte, size, kBig, 0, kSigned); }, kInternal,
                            "DataCnv::PckdDecToDec", inserts);
    expectConversionFailure([&] { cnv.TLOGPckdStrToStr(&byte, size, kLittle); }, kInternal,
                            "DataCnv::TLOGPckdStrToStr", inserts);
    expectConversionFailure([&] { cnv.TLOGPckdDecToDec(&byte, size, kBig); }, kInternal,
                            "DataCnv::TLOGPckdDecToDec", inserts);
  }
}

TEST(DataCnvPacked, WriterFailuresLeaveTheFieldAlone) {
  DataCnv cnv;
  Bytes field(3, 0xEE);
  const char* kFunction = "DataCnv::PckdDecFromDec";
  const std::tuple<const char16_t*, std::int32_t, DataCnv::ESign, std::int32_t, Code, Inserts>
      cases[] = {
          {u"1234567", 0, kSigned, 3, kTooLong, {"packed decimal", "decimal", "3"}},
          {u"1", 2147483647, kSigned, 3, kTooLong, {"packed decimal", "decimal", "3"}},
          {u"1", 0, kSigned, 0, kTooLong, {"packed decimal", "decimal", "0"}},
          {u"-5", 0, kUnsigned, 3, kBounds, {"decimal", "packed decimal (no sign)"}},
          {nullptr, 0, kSigned, 3, kInternal, {"Null input pointer"}},
          {u"1,234", 0, kSigned, 3, kInvalid, {"decimal", "1,234"}},
          {u"1e5", 0, kSigned, 3, kInvalid, {"decimal", "1e5"}},
          {u"1.2.3", 0, kSigned, 3, kInvalid, {"decimal", "1.2.3"}},
          {u".", 0, kSigned, 3, kInvalid, {"decimal", "."}},
      };
  for (auto [text, scale, sign, size, code, inserts] : cases) {
    expectConversionFailure(
        [&] { cnv.PckdDecFromDec(text, field.data(), size, kBig, scale, sign); }, code, kFunction,
        inserts);
  }
  std::int32_t size = 3;
  expectConversionFailure([&] { cnv.PckdDecFromDec(u"1", nullptr, size, kBig, 0, kSigned); },
                          kInternal, kFunction, {"Null output buffer pointer"});
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
  constexpr auto kInt32Min = std::numeric_limits<std::int32_t>::min();
  constexpr auto kInt64Min = std::numeric_limits<std::int64_t>::min();
  // By hand in one byte order (the nibbles are the decimal forms'); at random in both.
  const Bytes int32Min = {0x02, 0x14, 0x74, 0x83, 0x64, 0x8D};
  const Bytes int64Min = {0x92, 0x23, 0x37, 0x20, 0x36, 0x85, 0x47, 0x75, 0x80, 0x8D};
  EXPECT_EQ(pack(cnv, kFromInt32, kInt32Min, 6, kBig, 0, kSigned), int32Min);
  EXPECT_EQ(cnv.PckdDecToInt32(int32Min.data(), 6, kBig, 0, kSigned), kInt32Min);
  EXPECT_EQ(pack(cnv, kFromInt64, kInt64Min, 10, kLittle, 0, kSigned), inOrder(int64Min, kLittle));
  EXPECT_EQ(cnv.PckdDecToPWFInt64(int64Min.data(), 10, kBig, 0, kSigned), kInt64Min);
  // The integer readers truncate the fraction.
  const Bytes scaled = {0x12, 0x34, 0x5D};
  EXPECT_EQ(pack(cnv, &DataCnv::PckdDecFromDbl, -123.456, 3, kBig, 2, kSigned), scaled);
  EXPECT_EQ(cnv.PckdDecToInt32(scaled.data(), 3, kBig, 2, kSigned), -123);
  EXPECT_DOUBLE_EQ(cnv.PckdDecToDbl(scaled.data(), 3, kBig, 2, kSigned), -123.45);
  std::mt19937_64 random(20240611);
  for (int i = 0; i < 2000; ++i) {
    const auto value = static_cast<std::int64_t>(random());
    const auto value32 = static_cast<std::int32_t>(value);
    const EEndian endian = i % 2 == 0 ? kBig : kLittle;
    const Bytes f64 = pack(cnv, kFromInt64, value, 10, endian, 0, kSigned);
    ASSERT_EQ(cnv.PckdDecToPWFInt64(f64.data(), 10, endian, 0, kSigned), value);
    const Bytes f32 = pack(cnv, kFromInt32, value32, 7, endian, 3, kSigned);
    ASSERT_EQ(cnv.PckdDecToInt32(f32.data(), 7, endian, 3, kSigned), value32);
  }
  // Beyond the range, the failure is the integer writer's.
  const Bytes int32MaxPlusOne = {0x02, 0x14, 0x74, 0x83, 0x64, 0x8C};
  expectFailure<ZanConversionException>(
      [&] { cnv.PckdDecToInt32(int32MaxPlusOne.data(), 6, kBig, 0, kSigned); }, kTooLong.symbol,
      kTooLong.messageNumber, "Overflow converting a PWFInt64 to PWFInt32", "datacnv",
      "DataCnv::IntFromInt64", {"integer", "4-byte integer", "4"});
  constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
  expectConversionFailure([&] { pack(cnv, &DataCnv::PckdDecFromDbl, kNaN, 2, kBig, 0, kSigned); },
                          kInvalid, "DataCnv::doubleToUString", {"double", "nan"});
}

TEST(DataCnvPacked, EveryValidTwoByteFieldWritesBackAsItReads) {
  // Every field reads back as written; C (the object's positive sign), D and F byte for byte.
  DataCnv cnv;
  for (int digits = 0; digits < 1000; ++digits) {
    for (unsigned char sign = 0xA; sign <= 0xF; ++sign) {
      const Bytes field = {static_cast<unsigned char>(digits / 100 << 4 | digits / 10 % 10),
                           static_cast<unsigned char>(digits % 10 << 4 | sign)};
      for (const EEndian endian : {kBig, kLittle}) {
        const Bytes given = inOrder(field, endian);
        const std::string text = readDecimal(cnv, given, endian, 1, kSigned);
        const Bytes back = pack(cnv, kFromDec, ZanStringBase::fromUtf8(text).terminatedData(), 2,
                                endian, 1, sign == 0xF ? kUnsigned : kSigned);
        if (sign == 0xC || sign == 0xD || sign == 0xF) {
          ASSERT_EQ(back, given) << text;
        }
        ASSERT_EQ(readDecimal(cnv, back, endian, 1, kSigned), text);
      }
    }
  }
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
        cap.rlim_cur = cap.rlim_max =
            static_cast<rlim_t>(pages) * sysconf(_SC_PAGESIZE) + (64 << 20);
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
  for (const PWFData& empty :
       {cnv.TLOGPckdStrToStr(nullptr, 2, kBig), cnv.TLOGPckdDecToDec(nullptr, 2, kBig)}) {
    EXPECT_EQ(empty.getDataLogicalType(), eString);
    EXPECT_EQ(empty.getStringLength(), 0);
  }
  // F other than first, and a nibble above 9 other than D and F.
  for (const Bytes& bad : {Bytes{0x1F}, Bytes{0xA1}}) {
    expectConversionFailure([&] { cnv.TLOGPckdDecToDec(bad.data(), 1, kBig); }, kInvalid,
                            "DataCnv::TLOGPckdDecToDec", {"TLOG packed decimal", dump(bad)});
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
