// Binary integers: readers and writers in both byte orders, every overflow row, doubles and
// decimals with implied places.

#include <bsutils/dataconv.h>
#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <limits>
#include <string>
#include <vector>

#include "support/expect_failure.h"

namespace {

using Bytes = std::vector<unsigned char>;
constexpr auto kSigned = DataCnv::eLeadingEmbeddedSign;  // the one style read as signed
constexpr auto kUnsigned = DataCnv::eNoSign;

// The narrowing failures: their trace text names the source and target kinds.
Code tooLong(const char* overflow) {
  return Code{"CP_CONV_INPUT_DATA_TOO_LONG", 0xC0001583, overflow};
}

// The same bytes as the other byte order sees them.
Bytes reversed(Bytes bytes) { return Bytes(bytes.rbegin(), bytes.rend()); }

TEST(DataCnvBinInt, ReadsEverySizeInBothByteOrders) {
  struct Case {
    Bytes bigEndian;
    DataCnv::ESign sign;
    std::int64_t value;
  };
  // Values by hand from the two's-complement bytes.
  const Case cases[] = {
      {{0xFF}, kSigned, -1},
      {{0xFF}, kUnsigned, 255},
      {{0xFF, 0xFF}, kSigned, -1},
      {{0xFF, 0xFF}, kUnsigned, 65535},
      {{0xFF, 0xFF}, DataCnv::eTrailingEmbeddedSign, 65535},  // only style 1 is signed
      {{0x80, 0x00, 0x00, 0x00}, kSigned, std::numeric_limits<std::int32_t>::min()},
      {{0x00, 0x00, 0x30, 0x39}, kUnsigned, 12345},
      {{0x7F, 0xFF, 0xFF, 0xFF}, kUnsigned, std::numeric_limits<std::int32_t>::max()},
  };
  DataCnv big(1200, BigEndian);
  DataCnv little(1200, LittleEndian);
  for (const Case& c : cases) {
    SCOPED_TRACE(c.value);
    const auto size = static_cast<std::int32_t>(c.bigEndian.size());
    const Bytes littleBytes = reversed(c.bigEndian);
    EXPECT_EQ(big.IntToInt32(c.bigEndian.data(), size, c.sign), c.value);
    EXPECT_EQ(little.IntToInt32(littleBytes.data(), size, c.sign), c.value);
    EXPECT_EQ(big.IntToInt64(c.bigEndian.data(), size, c.sign), c.value);
    EXPECT_EQ(little.IntToInt64(littleBytes.data(), size, c.sign), c.value);
  }
  const Bytes eight{0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFE};
  EXPECT_EQ(big.IntToInt64(eight.data(), 8, kSigned), -2);
  EXPECT_EQ(big.UIntToUInt64(eight.data(), 8), 0xFFFFFFFFFFFFFFFEULL);
  EXPECT_EQ(little.UIntToUInt64(eight.data(), 8), 0xFEFFFFFFFFFFFFFFULL);
  EXPECT_EQ(little.UIntToUInt64(eight.data(), 2), 0xFFFFu);
}

TEST(DataCnvBinInt, ReadersRefuseWhatDoesNotFit) {
  DataCnv big(1200, BigEndian);
  DataCnv little(1200, LittleEndian);
  const Bytes top{0x80, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00};
  // The same four bytes are 128 little-endian and 2^31 big-endian, which no int32 holds unsigned.
  EXPECT_EQ(little.IntToInt32(top.data(), 4, kUnsigned), 128);
  expectConversionFailure([&] { big.IntToInt32(top.data(), 4, kUnsigned); },
                          tooLong("Overflow converting a PWFUInt32 to PWFInt32"),
                          "DataCnv::IntToInt32", {"integer", "4-byte integer", "4"});
  expectConversionFailure([&] { big.IntToInt64(top.data(), 8, kUnsigned); },
                          tooLong("Overflow converting a PWFUInt64 to PWFInt64"),
                          "DataCnv::IntToInt64", {"integer", "8-byte integer", "8"});
  expectConversionFailure([&] { big.IntToInt32(top.data(), 8, kSigned); }, kInternal,
                          "DataCnv::IntToInt32", {"Invalid integer size: ", "8"});
  expectConversionFailure([&] { big.IntToInt64(top.data(), 3, kSigned); }, kInternal,
                          "DataCnv::IntToInt64", {"Invalid integer size: ", "3"});
  expectConversionFailure([&] { big.IntToInt32(nullptr, 4, kSigned); }, kInternal,
                          "DataCnv::IntToInt32",
                          {"DataCnv::IntToInt32 called with a Null input pointer for the source."});
  expectConversionFailure([&] { big.IntToInt64(nullptr, 4, kSigned); }, kInternal,
                          "DataCnv::IntToInt64",
                          {"Null input pointer passed into DataCnv::IntToInt64"});
  expectConversionFailure([&] { big.UIntToUInt64(nullptr, 4); }, kInternal, "DataCnv::UIntToUInt64",
                          {"Null input pointer"});
  expectConversionFailure([&] { big.IntToDbl(top.data(), 0, 0, kSigned); }, kInternal,
                          "DataCnv::IntToDbl", {"Invalid input size: ", "0"});
  expectConversionFailure([&] { big.IntToDec(top.data(), 4, -1); }, kInternal, "DataCnv::IntToDec",
                          {"Invalid scale: ", "-1"});
}

TEST(DataCnvBinInt, WritersCheckEveryRangeRow) {
  enum Writer { kInt32, kUInt32, kInt64 };
  struct Case {
    Writer writer;
    std::int64_t value;
    std::int32_t size;
    DataCnv::ESign sign;
    Bytes bigEndian;  // empty: the overflow below
    const char* overflow;
    const char* target;
  };
  const Case cases[] = {
      {kInt32, -1, 4, kSigned, {0xFF, 0xFF, 0xFF, 0xFF}, nullptr, nullptr},
      {kInt32,
       -1,
       4,
       kUnsigned,
       {},
       "Overflow converting a PWFInt32 to PWFUInt32",
       "4-byte integer"},
      {kInt32, 32767, 2, kSigned, {0x7F, 0xFF}, nullptr, nullptr},
      {kInt32,
       32768,
       2,
       kSigned,
       {},
       "Overflow converting a PWFInt32 to PWFInt16",
       "2-byte integer"},
      {kInt32, 65535, 2, kUnsigned, {0xFF, 0xFF}, nullptr, nullptr},
      {kInt32,
       65536,
       2,
       kUnsigned,
       {},
       "Overflow converting a PWFInt32 to PWFUInt16",
       "2-byte integer"},
      {kInt32,
       -1,
       2,
       kUnsigned,
       {},
       "Overflow converting a PWFInt32 to PWFUInt16",
       "2-byte integer"},
      {kInt32, -128, 1, kSigned, {0x80}, nullptr, nullptr},
      {kInt32, -129, 1, kSigned, {}, "Overflow converting a PWFInt32 to PWFInt8", "1-byte integer"},
      {kInt32,
       256,
       1,
       kUnsigned,
       {},
       "Overflow converting a PWFInt32 to PWFUInt8",
       "1-byte integer"},
      {kUInt32, 4294967295, 4, kUnsigned, {0xFF, 0xFF, 0xFF, 0xFF}, nullptr, nullptr},
      {kUInt32,
       65536,
       2,
       kUnsigned,
       {},
       "Overflow converting a PWFUInt32 to PWFUInt16",
       "2-byte unsigned integer"},
      {kUInt32,
       256,
       1,
       kUnsigned,
       {},
       "Overflow converting a PWFUInt32 to PWFUInt8",
       "1-byte unsigned integer"},
      {kInt64,
       std::numeric_limits<std::int64_t>::min(),
       8,
       kSigned,
       {0x80, 0, 0, 0, 0, 0, 0, 0},
       nullptr,
       nullptr},
      {kInt64,
       -1,
       8,
       kUnsigned,
       {},
       "Overflow converting a PWFInt64 to PWFUInt64",
       "8-byte integer"},
      {kInt64,
       2147483648,
       4,
       kSigned,
       {},
       "Overflow converting a PWFInt64 to PWFInt32",
       "4-byte integer"},
      {kInt64, 4294967295, 4, kUnsigned, {0xFF, 0xFF, 0xFF, 0xFF}, nullptr, nullptr},
      {kInt64,
       4294967296,
       4,
       kUnsigned,
       {},
       "Overflow converting a PWFInt64 to PWFUInt32",
       "4-byte integer"},
      {kInt64,
       -32769,
       2,
       kSigned,
       {},
       "Overflow converting a PWFInt64 to PWFInt16",
       "2-byte integer"},
      {kInt64,
       65536,
       2,
       kUnsigned,
       {},
       "Overflow converting a PWFInt64 to PWFUInt16",
       "2-byte integer"},
      {kInt64, 128, 1, kSigned, {}, "Overflow converting a PWFInt64 to PWFInt8", "1-byte integer"},
      {kInt64,
       -1,
       1,
       kUnsigned,
       {},
       "Overflow converting a PWFInt64 to PWFUInt8",
       "1-byte integer"},
  };
  const char* functions[] = {"DataCnv::IntFromInt32", "DataCnv::UIntFromUInt32",
                             "DataCnv::IntFromInt64"};
  for (EEndian endian : {BigEndian, LittleEndian}) {
    DataCnv cnv(1200, endian);
    for (const Case& c : cases) {
      SCOPED_TRACE(std::to_string(c.value) + " in " + std::to_string(c.size));
      Bytes out(8, 0xEE);
      std::int32_t size = c.size;
      const auto write = [&] {
        switch (c.writer) {
          case kInt32:
            cnv.IntFromInt32(static_cast<std::int32_t>(c.value), out.data(), size, c.sign);
            break;
          case kUInt32:
            cnv.UIntFromUInt32(static_cast<std::uint32_t>(c.value), out.data(), size);
            break;
          case kInt64:
            cnv.IntFromInt64(c.value, out.data(), size, c.sign);
            break;
        }
      };
      if (c.overflow == nullptr) {
        write();
        const Bytes expected = endian == BigEndian ? c.bigEndian : reversed(c.bigEndian);
        EXPECT_EQ(Bytes(out.begin(), out.begin() + c.size), expected);
      } else {
        expectConversionFailure(write, tooLong(c.overflow), functions[c.writer],
                                {"integer", c.target, std::to_string(c.size)});
        EXPECT_EQ(out, Bytes(8, 0xEE)) << "nothing written before the checks pass";
      }
      EXPECT_EQ(size, c.size);
    }
  }
}

TEST(DataCnvBinInt, DoublesTruncateWithinInclusiveBounds) {
  struct Case {
    double value;
    std::int32_t size;
    DataCnv::ESign sign;
    std::int32_t scale;
    Bytes bigEndian;     // empty: out of bounds
    const char* target;  // of the out-of-bounds failure
  };
  const Case cases[] = {
      {12.345, 4, kSigned, 2, {0x00, 0x00, 0x04, 0xD2}, nullptr},  // 1234
      {-2.9, 1, kSigned, 0, {0xFE}, nullptr},
      {2.9, 1, kUnsigned, 0, {0x02}, nullptr},
      {255.0, 1, kUnsigned, 0, {0xFF}, nullptr},
      {255.5, 1, kUnsigned, 0, {}, "unsigned 1-byte integer"},
      {-0.5, 1, kUnsigned, 0, {}, "unsigned 1-byte integer"},
      {-128.0, 1, DataCnv::eTrailingSeparateSign, 0, {0x80}, nullptr},  // any style but 0 signed
      {32768.0, 2, kSigned, 0, {}, "signed 2-byte integer"},
      {4294967295.0, 4, kUnsigned, 0, {0xFF, 0xFF, 0xFF, 0xFF}, nullptr},
      {-2147483649.0, 4, kSigned, 0, {}, "signed 4-byte integer"},
      // The 8-byte bounds are 2^63 and 2^64 themselves: accepted, written as the largest values.
      {9223372036854775808.0,
       8,
       kSigned,
       0,
       {0x7F, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF},
       nullptr},
      {-9223372036854775808.0, 8, kSigned, 0, {0x80, 0, 0, 0, 0, 0, 0, 0}, nullptr},
      {18446744073709551616.0,
       8,
       kUnsigned,
       0,
       {0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF},
       nullptr},
      {1.9e19, 8, kUnsigned, 0, {}, "unsigned 8-byte integer"},
      {NAN, 4, kSigned, 0, {}, "signed 4-byte integer"},
  };
  for (EEndian endian : {BigEndian, LittleEndian}) {
    DataCnv cnv(1200, endian);
    for (const Case& c : cases) {
      SCOPED_TRACE(c.value);
      Bytes out(8, 0xEE);
      std::int32_t size = c.size;
      const auto write = [&] { cnv.IntFromDbl(c.value, out.data(), size, c.sign, c.scale); };
      if (c.target == nullptr) {
        write();
        const Bytes expected = endian == BigEndian ? c.bigEndian : reversed(c.bigEndian);
        EXPECT_EQ(Bytes(out.begin(), out.begin() + c.size), expected);
      } else {
        expectConversionFailure(write, kBounds, "DataCnv::IntFromDbl", {"double float", c.target});
      }
    }
  }
  DataCnv cnv(1200, BigEndian);
  Bytes out(4);
  std::int32_t size = 3;
  expectConversionFailure([&] { cnv.IntFromDbl(1.0, out.data(), size, kSigned, 0); }, kInternal,
                          "DataCnv::IntFromDbl", {"Invalid integer size: ", "3"});
  size = 4;
  expectConversionFailure([&] { cnv.IntFromDbl(1.0, out.data(), size, kSigned, -2); }, kInternal,
                          "DataCnv::IntFromDbl", {"Invalid scale: ", "-2"});
}

TEST(DataCnvBinInt, ImpliedPlacesInDoublesAndDecimals) {
  DataCnv cnv(1200, BigEndian);
  const Bytes value12345{0x00, 0x00, 0x30, 0x39};
  EXPECT_NEAR(cnv.IntToDbl(value12345.data(), 4, 2, kSigned), 123.45, 1e-12);
  const Bytes minusOne{0xFF, 0xFF};
  EXPECT_EQ(cnv.IntToDbl(minusOne.data(), 2, 0, kUnsigned), 65535.0);
  // Decimals always read the bytes as signed, and move the point over the digits alone.
  struct DecimalCase {
    Bytes bytes;
    std::int32_t scale;
    const char* text;
  };
  const DecimalCase decimals[] = {
      {{0xFF, 0xFF}, 0, "-1"},
      {{0xFF, 0xFB}, 2, "-0.05"},
      {{0x00, 0x00, 0x30, 0x39}, 2, "123.45"},
      {{0x00, 0x00, 0x30, 0x39}, 7, "0.0012345"},
  };
  for (const DecimalCase& c : decimals) {
    const PWFData decimal =
        cnv.IntToDec(c.bytes.data(), static_cast<std::int32_t>(c.bytes.size()), c.scale);
    EXPECT_EQ(decimal.getDecimalText().toUtf8(), c.text);
  }
}

TEST(DataCnvBinInt, DecimalsAreWrittenTruncatedAndRangeChecked) {
  struct Case {
    const char16_t* decimal;
    std::int32_t size;
    std::int32_t scale;
    std::int64_t value;
  };
  const Case cases[] = {
      {u"123.99", 4, 0, 123},
      {u"-123.99", 4, 0, -123},
      {u"-1.5", 2, 1, -15},
      {u"0.05", 2, 2, 5},
      {u"+0042", 1, 0, 42},
      {u"", 4, 0, 0},
      {u"-9223372036854775808", 8, 0, std::numeric_limits<std::int64_t>::min()},
  };
  for (EEndian endian : {BigEndian, LittleEndian}) {
    DataCnv cnv(1200, endian);
    for (const Case& c : cases) {
      Bytes out(8);
      std::int32_t size = c.size;
      cnv.IntFromDec(c.decimal, out.data(), size, c.scale);
      EXPECT_EQ(cnv.IntToInt64(out.data(), c.size, kSigned), c.value);
    }
  }
  DataCnv cnv(1200, BigEndian);
  Bytes out(8);
  std::int32_t size = 1;
  expectConversionFailure([&] { cnv.IntFromDec(u"128", out.data(), size, 0); },
                          tooLong("Overflow converting a PWFInt64 to PWFInt8"),
                          "DataCnv::IntFromInt64", {"integer", "1-byte integer", "1"});
  expectConversionFailure([&] { cnv.IntFromDec(u"1x", out.data(), size, 0); }, kInvalid,
                          "DataCnv::UStringToInt64", {"string", "1x"});
  expectConversionFailure([&] { cnv.IntFromDec(nullptr, out.data(), size, 0); }, kInternal,
                          "DataCnv::IntFromDec", {"Null input pointer"});
  size = 0;
  expectConversionFailure([&] { cnv.IntFromDec(u"1", out.data(), size, 0); }, kInternal,
                          "DataCnv::IntFromDec", {"Invalid output buffer size: ", "0"});
}

}  // namespace
