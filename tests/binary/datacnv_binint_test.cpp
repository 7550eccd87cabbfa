// Binary integers: readers and writers in both byte orders, every overflow row, doubles and
// decimals with implied places.

#include <bsutils/dataconv.h>
#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <functional>
#include <string>
#include <tuple>
#include <vector>

#include "support/expect_failure.h"
#include "support/field_conventions.h"

namespace {

using Bytes = std::vector<unsigned char>;

// The low `size` bytes of `bits` as a field in `endian` order.
Bytes field(std::uint64_t bits, std::int32_t size, EEndian endian) {
  Bytes bytes(static_cast<std::size_t>(size));
  for (std::int32_t i = 0; i < size; ++i) {
    bytes[endian == BigEndian ? size - 1 - i : i] = static_cast<unsigned char>(bits >> 8 * i);
  }
  return bytes;
}

// The narrowing failures: their trace text names the source and target kinds.
void expectOverflow(const std::function<void()>& operation, const std::string& kinds,
                    const std::string& function, const std::string& target, std::int32_t size) {
  const std::string text = "Overflow converting a " + kinds;
  expectConversionFailure(operation, Code{"CP_CONV_INPUT_DATA_TOO_LONG", 0xC0001583, text.c_str()},
                          "DataCnv::" + function, {"integer", target, std::to_string(size)});
}

TEST(DataCnvBinInt, ReadsEverySizeInBothByteOrdersAndRefusesWhatDoesNotFit) {
  // Values by hand from the two's-complement bytes; only style 1 is signed.
  const std::tuple<std::uint64_t, std::int32_t, DataCnv::ESign, std::int64_t> cases[] = {
      {0xFF, 1, kSigned, -1},
      {0xFF, 1, kUnsigned, 255},
      {0xFFFF, 2, kSigned, -1},
      {0xFFFF, 2, kUnsigned, 65535},
      {0x80000000, 4, kSigned, -2147483648},
      {0x7FFFFFFF, 4, kUnsigned, 2147483647},
      {0xFFFFFFFF'FFFFFFFE, 8, kSigned, -2},
      {0xFFFF, 2, DataCnv::eTrailingEmbeddedSign, 65535}};
  for (const EEndian endian : {BigEndian, LittleEndian}) {
    DataCnv cnv(1200, endian);
    for (const auto& [bits, size, sign, value] : cases) {
      SCOPED_TRACE(value);
      const Bytes bytes = field(bits, size, endian);
      if (size < 8) {
        EXPECT_EQ(cnv.IntToInt32(bytes.data(), size, sign), value);
      }
      EXPECT_EQ(cnv.IntToInt64(bytes.data(), size, sign), value);
      EXPECT_EQ(cnv.UIntToUInt64(bytes.data(), size), bits);
    }
  }
  // The same four bytes are 128 little-endian and 2^31 big-endian, which no int32 holds unsigned.
  DataCnv big(1200, BigEndian);
  const Bytes top{0x80, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00};
  EXPECT_EQ(DataCnv(1200, LittleEndian).IntToInt32(top.data(), 4, kUnsigned), 128);
  expectOverflow([&] { big.IntToInt32(top.data(), 4, kUnsigned); }, "PWFUInt32 to PWFInt32",
                 "IntToInt32", "4-byte integer", 4);
  expectOverflow([&] { big.IntToInt64(top.data(), 8, kUnsigned); }, "PWFUInt64 to PWFInt64",
                 "IntToInt64", "8-byte integer", 8);
}

TEST(DataCnvBinInt, WritersCheckEveryRangeRow) {
  enum Writer { kInt32, kUInt32, kInt64 };
  // The bits written, or the kinds and target that the overflow names.
  const std::tuple<Writer, std::int64_t, std::int32_t, DataCnv::ESign, std::uint64_t, const char*,
                   const char*>
      cases[] = {
          {kInt32, -1, 4, kSigned, 0xFFFFFFFF, nullptr, nullptr},
          {kInt32, -1, 4, kUnsigned, 0, "PWFInt32 to PWFUInt32", "4-byte integer"},
          {kInt32, 32767, 2, kSigned, 0x7FFF, nullptr, nullptr},
          {kInt32, 32768, 2, kSigned, 0, "PWFInt32 to PWFInt16", "2-byte integer"},
          {kInt32, 65535, 2, kUnsigned, 0xFFFF, nullptr, nullptr},
          {kInt32, 65536, 2, kUnsigned, 0, "PWFInt32 to PWFUInt16", "2-byte integer"},
          {kInt32, -1, 2, kUnsigned, 0, "PWFInt32 to PWFUInt16", "2-byte integer"},
          {kInt32, -128, 1, kSigned, 0x80, nullptr, nullptr},
          {kInt32, -129, 1, kSigned, 0, "PWFInt32 to PWFInt8", "1-byte integer"},
          {kInt32, 256, 1, kUnsigned, 0, "PWFInt32 to PWFUInt8", "1-byte integer"},
          {kUInt32, 4294967295, 4, kUnsigned, 0xFFFFFFFF, nullptr, nullptr},
          {kUInt32, 65536, 2, kUnsigned, 0, "PWFUInt32 to PWFUInt16", "2-byte unsigned integer"},
          {kUInt32, 256, 1, kUnsigned, 0, "PWFUInt32 to PWFUInt8", "1-byte unsigned integer"},
          {kInt64, INT64_MIN, 8, kSigned, 0x80000000'00000000, nullptr, nullptr},
          {kInt64, -1, 8, kUnsigned, 0, "PWFInt64 to PWFUInt64", "8-byte integer"},
          {kInt64, 2147483648, 4, kSigned, 0, "PWFInt64 to PWFInt32", "4-byte integer"},
          {kInt64, 4294967295, 4, kUnsigned, 0xFFFFFFFF, nullptr, nullptr},
          {kInt64, 4294967296, 4, kUnsigned, 0, "PWFInt64 to PWFUInt32", "4-byte integer"},
          {kInt64, -32769, 2, kSigned, 0, "PWFInt64 to PWFInt16", "2-byte integer"},
          {kInt64, 65536, 2, kUnsigned, 0, "PWFInt64 to PWFUInt16", "2-byte integer"},
          {kInt64, 128, 1, kSigned, 0, "PWFInt64 to PWFInt8", "1-byte integer"},
          {kInt64, -1, 1, kUnsigned, 0, "PWFInt64 to PWFUInt8", "1-byte integer"},
      };
  const char* functions[] = {"IntFromInt32", "UIntFromUInt32", "IntFromInt64"};
  for (const EEndian endian : {BigEndian, LittleEndian}) {
    DataCnv cnv(1200, endian);
    for (const auto& [writer, value, length, sign, bits, kinds, target] : cases) {
      SCOPED_TRACE(std::to_string(value) + " in " + std::to_string(length));
      Bytes out(8, 0xEE);
      std::int32_t size = length;
      const auto write = [&] {
        if (writer == kInt32) cnv.IntFromInt32(std::int32_t(value), out.data(), size, sign);
        if (writer == kUInt32) cnv.UIntFromUInt32(std::uint32_t(value), out.data(), size);
        if (writer == kInt64) cnv.IntFromInt64(value, out.data(), size, sign);
      };
      if (kinds == nullptr) {
        write();
        EXPECT_EQ(Bytes(out.begin(), out.begin() + length), field(bits, length, endian));
      } else {
        expectOverflow(write, kinds, functions[writer], target, length);
        EXPECT_EQ(out, Bytes(8, 0xEE)) << "nothing written before the checks pass";
      }
      EXPECT_EQ(size, length);
    }
  }
}

TEST(DataCnvBinInt, UnsignedSixtyFourBitWriterTakesTheWholeRange) {
  // The bits written by hand, or the target kind and description that the overflow names.
  struct Row {
    const char* name;
    std::uint64_t value;
    std::int32_t size;
    std::uint64_t bits;
    const char* kinds;
    const char* target;
  };
  const Row rows[] = {
      {"largest 8-byte", UINT64_MAX, 8, 0xFFFFFFFF'FFFFFFFF, nullptr, nullptr},
      {"2^63, past the signed range", 0x80000000'00000000, 8, 0x80000000'00000000, nullptr,
       nullptr},
      {"zero", 0, 8, 0, nullptr, nullptr},
      {"bytes in order", 0x01020304'05060708, 8, 0x01020304'05060708, nullptr, nullptr},
      {"largest 4-byte", 4294967295, 4, 0xFFFFFFFF, nullptr, nullptr},
      {"2^32 into 4", 4294967296, 4, 0, "PWFUInt64 to PWFUInt32", "4-byte unsigned integer"},
      {"largest 2-byte", 65535, 2, 0xFFFF, nullptr, nullptr},
      {"65536 into 2", 65536, 2, 0, "PWFUInt64 to PWFUInt16", "2-byte unsigned integer"},
      {"largest 1-byte", 255, 1, 0xFF, nullptr, nullptr},
      {"256 into 1", 256, 1, 0, "PWFUInt64 to PWFUInt8", "1-byte unsigned integer"},
      {"largest 8-byte into 1", UINT64_MAX, 1, 0, "PWFUInt64 to PWFUInt8",
       "1-byte unsigned integer"},
  };
  for (const EEndian endian : {BigEndian, LittleEndian}) {
    DataCnv cnv(1200, endian);
    for (const Row& row : rows) {
      SCOPED_TRACE(std::string(row.name) + " endian " + std::to_string(endian));
      Bytes out(8, 0xEE);
      std::int32_t size = row.size;
      const auto write = [&] { cnv.UIntFromUInt64(row.value, out.data(), size); };
      if (row.kinds == nullptr) {
        write();
        EXPECT_EQ(Bytes(out.begin(), out.begin() + row.size), field(row.bits, row.size, endian));
        EXPECT_EQ(cnv.UIntToUInt64(out.data(), row.size), row.value) << "reads back";
      } else {
        expectOverflow(write, row.kinds, "UIntFromUInt64", row.target, row.size);
        EXPECT_EQ(out, Bytes(8, 0xEE)) << "nothing written before the checks pass";
      }
      EXPECT_EQ(size, row.size);
    }
  }
  DataCnv cnv(1200, BigEndian);
  Bytes out(8, 0xEE);
  std::int32_t three = 3, zero = 0, eight = 8;
  expectConversionFailure([&] { cnv.UIntFromUInt64(1, out.data(), three); }, kInternal,
                          "DataCnv::UIntFromUInt64", {"Invalid integer size: ", "3"});
  expectConversionFailure([&] { cnv.UIntFromUInt64(1, out.data(), zero); }, kInternal,
                          "DataCnv::UIntFromUInt64", {"Invalid integer size: ", "0"});
  expectConversionFailure([&] { cnv.UIntFromUInt64(1, nullptr, eight); }, kInternal,
                          "DataCnv::UIntFromUInt64", {"Null output buffer pointer"});
  EXPECT_EQ(out, Bytes(8, 0xEE));
}

TEST(DataCnvBinInt, DoublesTruncateWithinInclusiveBounds) {
  // The bits written, or the target that the out-of-bounds failure names. Any style but 0 is
  // signed. The 8-byte bounds are 2^63 and 2^64 themselves: accepted, written as the largest
  // values.
  const std::tuple<double, std::int32_t, DataCnv::ESign, std::int32_t, std::uint64_t, const char*>
      cases[] = {
          {12.345, 4, kSigned, 2, 1234, nullptr},
          {-2.9, 1, kSigned, 0, 0xFE, nullptr},
          {2.9, 1, kUnsigned, 0, 0x02, nullptr},
          {255.0, 1, kUnsigned, 0, 0xFF, nullptr},
          {255.5, 1, kUnsigned, 0, 0, "unsigned 1-byte integer"},
          {-0.5, 1, kUnsigned, 0, 0, "unsigned 1-byte integer"},
          {-128.0, 1, DataCnv::eTrailingSeparateSign, 0, 0x80, nullptr},
          {32768.0, 2, kSigned, 0, 0, "signed 2-byte integer"},
          {4294967295.0, 4, kUnsigned, 0, 0xFFFFFFFF, nullptr},
          {-2147483649.0, 4, kSigned, 0, 0, "signed 4-byte integer"},
          {0x1p63, 8, kSigned, 0, 0x7FFFFFFF'FFFFFFFF, nullptr},
          {-0x1p63, 8, kSigned, 0, 0x80000000'00000000, nullptr},
          {0x1p64, 8, kUnsigned, 0, 0xFFFFFFFF'FFFFFFFF, nullptr},
          {1.9e19, 8, kUnsigned, 0, 0, "unsigned 8-byte integer"},
          {NAN, 4, kSigned, 0, 0, "signed 4-byte integer"},
      };
  for (const EEndian endian : {BigEndian, LittleEndian}) {
    DataCnv cnv(1200, endian);
    for (const auto& [value, length, sign, scale, bits, target] : cases) {
      SCOPED_TRACE(value);
      Bytes out(8, 0xEE);
      std::int32_t size = length;
      const auto write = [&] { cnv.IntFromDbl(value, out.data(), size, sign, scale); };
      if (target == nullptr) {
        write();
        EXPECT_EQ(Bytes(out.begin(), out.begin() + length), field(bits, length, endian));
      } else {
        expectConversionFailure(write, kBounds, "DataCnv::IntFromDbl", {"double float", target});
      }
    }
  }
}

TEST(DataCnvBinInt, ImpliedPlacesInDoublesAndDecimals) {
  DataCnv cnv(1200, BigEndian);
  const Bytes value12345{0x00, 0x00, 0x30, 0x39};
  const Bytes minusOne{0xFF, 0xFF};
  EXPECT_NEAR(cnv.IntToDbl(value12345.data(), 4, 2, kSigned), 123.45, 1e-12);
  EXPECT_EQ(cnv.IntToDbl(minusOne.data(), 2, 0, kUnsigned), 65535.0);
  // Decimals always read the bytes as signed, and move the point over the digits alone.
  const std::tuple<Bytes, std::int32_t, const char*> decimals[] = {{minusOne, 0, "-1"},
                                                                   {{0xFF, 0xFB}, 2, "-0.05"},
                                                                   {value12345, 2, "123.45"},
                                                                   {value12345, 7, "0.0012345"}};
  for (const auto& [bytes, scale, text] : decimals) {
    const auto size = static_cast<std::int32_t>(bytes.size());
    EXPECT_EQ(cnv.IntToDec(bytes.data(), size, scale).getDecimalText().toUtf8(), text);
  }
}

TEST(DataCnvBinInt, DecimalsAreWrittenTruncatedAndRangeChecked) {
  const std::tuple<const char16_t*, std::int32_t, std::int32_t, std::int64_t> cases[] = {
      {u"123.99", 4, 0, 123},
      {u"-123.99", 4, 0, -123},
      {u"-1.5", 2, 1, -15},
      {u"0.05", 2, 2, 5},
      {u"+0042", 1, 0, 42},
      {u"", 4, 0, 0},
      {u"-9223372036854775808", 8, 0, INT64_MIN}};
  for (const EEndian endian : {BigEndian, LittleEndian}) {
    DataCnv cnv(1200, endian);
    for (const auto& [decimal, size, scale, value] : cases) {
      Bytes out(8);
      std::int32_t length = size;
      cnv.IntFromDec(decimal, out.data(), length, scale);
      EXPECT_EQ(cnv.IntToInt64(out.data(), size, kSigned), value);
    }
  }
  DataCnv cnv(1200, BigEndian);
  Bytes out(8);
  std::int32_t size = 1;
  expectOverflow([&] { cnv.IntFromDec(u"128", out.data(), size, 0); }, "PWFInt64 to PWFInt8",
                 "IntFromInt64", "1-byte integer", 1);
  expectConversionFailure([&] { cnv.IntFromDec(u"1x", out.data(), size, 0); }, kInvalid,
                          "DataCnv::UStringToInt64", {"string", "1x"});
}

TEST(DataCnvBinInt, ArgumentFaultsAreInternalErrors) {
  DataCnv cnv(1200, BigEndian);
  unsigned char b[8] = {};
  std::int32_t zero = 0, three = 3, four = 4, eight = 8;
  const auto fails = [](const std::function<void()>& call, const std::string& function,
                        const std::vector<std::string>& inserts) {
    expectConversionFailure(call, kInternal, "DataCnv::" + function, inserts);
  };
  fails([&] { cnv.IntToInt32(b, 8, kSigned); }, "IntToInt32", {"Invalid integer size: ", "8"});
  fails([&] { cnv.IntToInt64(b, 3, kSigned); }, "IntToInt64", {"Invalid integer size: ", "3"});
  fails([&] { cnv.IntToInt32(nullptr, 4, kSigned); }, "IntToInt32",
        {"DataCnv::IntToInt32 called with a Null input pointer for the source."});
  fails([&] { cnv.IntToInt64(nullptr, 4, kSigned); }, "IntToInt64",
        {"Null input pointer passed into DataCnv::IntToInt64"});
  fails([&] { cnv.UIntToUInt64(nullptr, 4); }, "UIntToUInt64", {"Null input pointer"});
  fails([&] { cnv.IntToDbl(b, 0, 0, kSigned); }, "IntToDbl", {"Invalid input size: ", "0"});
  fails([&] { cnv.IntToDec(b, 4, -1); }, "IntToDec", {"Invalid scale: ", "-1"});
  fails([&] { cnv.IntFromInt32(1, b, eight, kSigned); }, "IntFromInt32",
        {"Invalid integer size: ", "8"});
  fails([&] { cnv.IntFromDbl(1, b, three, kSigned, 0); }, "IntFromDbl",
        {"Invalid integer size: ", "3"});
  fails([&] { cnv.IntFromDbl(1, b, four, kSigned, -2); }, "IntFromDbl", {"Invalid scale: ", "-2"});
  fails([&] { cnv.IntFromDec(nullptr, b, four, 0); }, "IntFromDec", {"Null input pointer"});
  fails([&] { cnv.IntFromDec(u"1", b, zero, 0); }, "IntFromDec",
        {"Invalid output buffer size: ", "0"});
}

}  // namespace
