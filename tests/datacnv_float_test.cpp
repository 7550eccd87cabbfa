// Floating point: the bit-exact conversions between IEEE and HFP, floats of both sizes, formats and
// byte orders read and written, decimals with implied places, round trips and argument faults.

#include <bsutils/dataconv.h>
#include <gtest/gtest.h>
#include <zan/zaninsert.h>

#include <atomic>
#include <bit>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <random>
#include <string>
#include <thread>
#include <vector>

#include "support/datacnv_test_access.h"
#include "support/expect_failure.h"

namespace {

using Bytes = std::vector<unsigned char>;
using Convert4 = void (*)(float*, float*);
using Convert8 = void (*)(double*, double*, EEndian);

std::uint32_t convert4(Convert4 convert, std::uint32_t bits) {
  float word;
  std::memcpy(&word, &bits, sizeof word);
  convert(&word, &word);
  std::memcpy(&bits, &word, sizeof bits);
  return bits;
}

// `bits` is the high word above the low word; the words are laid out in `order`.
std::uint64_t convert8(Convert8 convert, std::uint64_t bits, EEndian order) {
  const auto high = static_cast<std::uint32_t>(bits >> 32);
  const auto low = static_cast<std::uint32_t>(bits);
  std::uint32_t words[2] = {order == BigEndian ? high : low, order == BigEndian ? low : high};
  double in;
  double out;
  std::memcpy(&in, words, sizeof in);
  convert(&in, &out, order);
  std::memcpy(words, &out, sizeof out);
  return order == BigEndian ? (std::uint64_t{words[0]} << 32) | words[1]
                            : (std::uint64_t{words[1]} << 32) | words[0];
}

Bytes reversed(Bytes bytes) { return Bytes(bytes.rbegin(), bytes.rend()); }

// The bytes of a float as the object lays them out; the value's big-endian bytes are given.
Bytes inOrder(const Bytes& bigEndian, EEndian endian) {
  return endian == BigEndian ? bigEndian : reversed(bigEndian);
}

Bytes write(DataCnv& cnv, double value, std::int32_t size) {
  Bytes out(static_cast<std::size_t>(size), 0xEE);
  cnv.FltFromDbl(value, out.data(), size);
  return out;
}

std::string decimalText(const PWFData& value) {
  EXPECT_EQ(value.getDataLogicalType(), eDecimal);
  return ZanStringBase(value.getDecimalValue(), value.getDecimalLength()).toUtf8();
}

TEST(DataCnvFloatFormats, ConvertsSingleWordsBitForBit) {
  // By hand from the two formats' definitions: (F / 2^24) x 16^(c - 64) against 1.m x 2^(e - 127).
  struct Case {
    std::uint32_t hfp;
    std::uint32_t ieee;
  };
  const Case hfpToIeee[] = {
      {0x41100000, 0x3F800000}, {0xC1100000, 0xBF800000},  // 1, -1
      {0x42640000, 0x42C80000}, {0x40800000, 0x3F000000},  // 100, 0.5
      {0x60FFFFFF, 0x7F7FFFFF},                            // the largest single, exactly
      {0x61100000, 0x7F7FFFFF}, {0x7FFFFFFF, 0x7F7FFFFF},  // beyond it: saturated
      {0xFFFFFFFF, 0xFF7FFFFF},                            //
      {0x21400000, 0x00800000},                            // the smallest normal single
      {0x21200000, 0x00000000}, {0x00100000, 0x00000000},  // below it: zero, no denormal
      {0x80100000, 0x80000000},                            //
      {0x41000000, 0x41800000},                            // zero fraction: 16, not 0
      {0x80000000, 0x80000000}, {0x00000000, 0x00000000}};
  for (const Case& c : hfpToIeee) {
    SCOPED_TRACE(c.hfp);
    EXPECT_EQ(convert4(DataCnv::ConvertFloatHFPtoIEEE, c.hfp), c.ieee);
  }
  const Case ieeeToHfp[] = {
      {0x41100000, 0x3F800000}, {0x40800000, 0x3F000000}, {0xC1100000, 0xBF800000},
      {0x42640000, 0x42C80000}, {0x40C00000, 0x3F400000},  // 0.75
      {0x41100000, 0x3F800001},                            // 1 + 2^-23: truncated
      {0x60FFFFFF, 0x7F7FFFFF}, {0x21400000, 0x00800000},  // largest, smallest normal
      {0x21200000, 0x00000001},                            // a denormal read as if normal
      {0x61100000, 0x7F800000}, {0xE1100000, 0xFF800000},  // infinities: finite HFP
      {0x80000000, 0x80000000}};
  for (const Case& c : ieeeToHfp) {
    SCOPED_TRACE(c.ieee);
    EXPECT_EQ(convert4(DataCnv::ConvertFloatIEEEtoHFP, c.ieee), c.hfp);
  }
}

TEST(DataCnvFloatFormats, ConvertsWordPairsBitForBitInBothWordOrders) {
  // By hand as above, with 56 HFP fraction bits against 52 mantissa bits.
  struct Case {
    std::uint64_t from;
    std::uint64_t to;
  };
  const Case hfpToIeee[] = {
      {0x41100000'00000000, 0x3FF00000'00000000}, {0xC1100000'00000000, 0xBFF00000'00000000},
      {0x42640000'00000000, 0x40590000'00000000},   // 100
      {0x41200000'00000001, 0x40000000'00000001},   // 2 + 2^-52: the half rounds up
      {0x41800000'00000003, 0x40200000'00000000},   // 8 + 3 x 2^-52: bits 23/22 truncate
      {0x41FFFFFF'FFFFFFFF, 0x40300000'00000000},   // 16 - 2^-52 rounds up to 16
      {0x7FFFFFFF'FFFFFFFF, 0x4FB00000'00000000},   // the largest HFP, rounded: 2^252
      {0x00100000'00000000, 0x2FB00000'00000000},   // the smallest normal HFP: 2^-260
      {0x41000000'00000000, 0x3FF00000'00000000},   // zero fraction: 1
      {0x41000000'00000001, 0x3FF00000'00000001},   // empty high fraction: left unnormalised
      {0x80000000'12345678, 0x80000000'12345678}};  // zero high word: copied
  const Case ieeeToHfp[] = {{0x3FF00000'00000000, 0x41100000'00000000},
                            {0x3FE00000'00000000, 0x40800000'00000000},
                            {0xC0590000'00000000, 0xC2640000'00000000},
                            {0x3FB99999'9999999A, 0x40199999'9999999A},  // 0.1
                            {0x4FAFFFFF'FFFFFFFF, 0x7FFFFFFF'FFFFFFF8},  // just below 16^63
                            {0x4FB00000'00000000, 0x7FFFFFFF'FFFFFFFF},  // 16^63: saturated
                            {0xCFB00000'00000000, 0xFFFFFFFF'FFFFFFFF},
                            {0x7FF00000'00000000, 0x7FFFFFFF'FFFFFFFF},
                            {0x7FF80000'00000000, 0x7FFFFFFF'FFFFFFFF},  // NaN
                            {0x2FB00000'00000000, 0x00100000'00000000},  // 16^-65
                            {0x2FA00000'00000000, 0x00000000'00000000},  // 2^-261: below HFP, zero
                            {0xAFA00000'00000000, 0x80000000'00000000},
                            {0x80000000'00000001, 0x80000000'00000001}};  // zero high word: copied
  for (EEndian order : {LittleEndian, BigEndian}) {
    for (const Case& c : hfpToIeee) {
      SCOPED_TRACE(c.from);
      EXPECT_EQ(convert8(DataCnv::ConvertDoubleHFPtoIEEE, c.from, order), c.to) << order;
    }
    for (const Case& c : ieeeToHfp) {
      SCOPED_TRACE(c.from);
      EXPECT_EQ(convert8(DataCnv::ConvertDoubleIEEEtoHFP, c.from, order), c.to) << order;
    }
  }
}

TEST(DataCnvFloatBytes, ReadsAndWritesEachSizeFormatAndByteOrder) {
  // Bytes by hand; IEEE from the published formats, HFP as in the table above.
  struct Case {
    EFloatFmt format;
    double value;
    Bytes bigEndian;
  };
  const Case cases[] = {{IEEEFloat, 1.0, {0x3F, 0x80, 0x00, 0x00}},
                        {IEEEFloat, -0.15625, {0xBE, 0x20, 0x00, 0x00}},
                        {IEEEFloat, -2.5, {0xC0, 0x04, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00}},
                        {IEEEFloat, 0.1, {0x3F, 0xB9, 0x99, 0x99, 0x99, 0x99, 0x99, 0x9A}},
                        {HFPFloat, 1.0, {0x41, 0x10, 0x00, 0x00}},
                        {HFPFloat, -100.0, {0xC2, 0x64, 0x00, 0x00}},
                        {HFPFloat, 100.0, {0x42, 0x64, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00}},
                        {HFPFloat, 0.1, {0x40, 0x19, 0x99, 0x99, 0x99, 0x99, 0x99, 0x9A}},
                        {HFPFloat, -0.0, {0x80, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00}}};
  for (EEndian endian : {LittleEndian, BigEndian}) {
    for (const Case& c : cases) {
      SCOPED_TRACE(testing::Message() << c.format << " " << c.value << " " << endian);
      DataCnv cnv(1200, endian, c.format);
      const Bytes bytes = inOrder(c.bigEndian, endian);
      const auto size = static_cast<std::int32_t>(bytes.size());
      EXPECT_EQ(std::bit_cast<std::uint64_t>(cnv.FltToDbl(bytes.data(), size)),
                std::bit_cast<std::uint64_t>(c.value));
      EXPECT_EQ(write(cnv, c.value, size), bytes);
    }
  }
  // Any format number but HFP's is IEEE, any order but LittleEndian reversed.
  DataCnv other(1200, static_cast<EEndian>(0), static_cast<EFloatFmt>(7));
  const Bytes one = {0x3F, 0x80, 0x00, 0x00};
  EXPECT_EQ(other.FltToDbl(one.data(), 4), 1.0);
}

TEST(DataCnvFloatBytes, FourByteWritesRoundToSingleThenTruncateToHfp) {
  DataCnv ieee(1200, BigEndian, IEEEFloat);
  DataCnv hfp(1200, BigEndian, HFPFloat);
  EXPECT_EQ(write(ieee, 0.1, 4), (Bytes{0x3D, 0xCC, 0xCC, 0xCD}));  // to nearest
  EXPECT_EQ(write(hfp, 0.1, 4), (Bytes{0x40, 0x19, 0x99, 0x99}));   // the last bits lost
  const Bytes truncated = {0x40, 0x19, 0x99, 0x99};
  EXPECT_EQ(hfp.FltToDbl(truncated.data(), 4),
            static_cast<double>(std::bit_cast<float>(0x3DCCCCC8)));
  // Beyond the single range the narrowing gives an infinity, and HFP its finite image.
  EXPECT_EQ(write(ieee, 1e300, 4), (Bytes{0x7F, 0x80, 0x00, 0x00}));
  EXPECT_EQ(write(hfp, -1e300, 4), (Bytes{0xE1, 0x10, 0x00, 0x00}));
}

TEST(DataCnvFloatBytes, RoundTripsExactValues) {
  std::mt19937_64 random(20240517);
  for (EEndian endian : {LittleEndian, BigEndian}) {
    DataCnv ieee(1200, endian, IEEEFloat);
    DataCnv hfp(1200, endian, HFPFloat);
    for (int i = 0; i < 2000; ++i) {
      // Any finite double through IEEE bytes.
      double value = std::bit_cast<double>(random());
      if (!std::isfinite(value)) continue;
      EXPECT_EQ(std::bit_cast<std::uint64_t>(ieee.FltToDbl(write(ieee, value, 8).data(), 8)),
                std::bit_cast<std::uint64_t>(value));
      // A double within HFP's range (2^-260 to 2^252) needs at most 56 fraction bits: exact both
      // ways, so its HFP bytes come back too.
      value = std::ldexp(std::bit_cast<double>((random() >> 12) | 0x3FF0000000000000),
                         -260 + static_cast<int>(random() % 511));
      const Bytes hfpBytes = write(hfp, value, 8);
      EXPECT_EQ(hfp.FltToDbl(hfpBytes.data(), 8), value);
      EXPECT_EQ(write(hfp, hfp.FltToDbl(hfpBytes.data(), 8), 8), hfpBytes);
      // A normalised short HFP word within the single range: its 24 bits fit a single's.
      const auto word = static_cast<std::uint32_t>(
          ((34 + random() % 62) << 24) | ((1 + random() % 15) << 20) | (random() & 0xFFFFF));
      const Bytes shortBytes =
          inOrder({static_cast<unsigned char>(word >> 24), static_cast<unsigned char>(word >> 16),
                   static_cast<unsigned char>(word >> 8), static_cast<unsigned char>(word)},
                  endian);
      EXPECT_EQ(write(hfp, hfp.FltToDbl(shortBytes.data(), 4), 4), shortBytes) << word;
    }
  }
}

TEST(DataCnvFloatDecimal, ReadsDecimalsWithTheSignBeforeTheScaledDigits) {
  struct Case {
    EFloatFmt format;
    std::int32_t size;
    double value;
    std::int32_t scale;
    const char* decimal;
  };
  const Case cases[] = {{IEEEFloat, 8, -5.0, 2, "-0.05"}, {IEEEFloat, 8, 12345, 2, "123.45"},
                        {IEEEFloat, 8, 1.5, -3, "1500"},  {IEEEFloat, 8, -1.5, -3, "-1500"},
                        {IEEEFloat, 8, 0.25, 0, "0.25"},  {IEEEFloat, 8, -0.0, 0, "0"},
                        {IEEEFloat, 4, 0.5, 3, "0.0005"}, {HFPFloat, 4, -100, 1, "-10.0"},
                        {HFPFloat, 8, 0.1, 1, "0.01"},    {HFPFloat, 8, -0.125, 2, "-0.00125"}};
  for (const Case& c : cases) {
    SCOPED_TRACE(c.decimal);
    DataCnv cnv(1200, BigEndian, c.format);
    EXPECT_EQ(decimalText(cnv.FltToDec(write(cnv, c.value, c.size).data(), c.size, c.scale)),
              c.decimal);
  }
}

TEST(DataCnvFloatDecimal, WritesDecimalsWithTheirScale) {
  struct Case {
    EFloatFmt format;
    std::int32_t size;
    const char16_t* decimal;
    std::int32_t scale;
    double value;
  };
  const Case cases[] = {{IEEEFloat, 8, u"-0.05", 2, -5.0}, {IEEEFloat, 8, u"123.45", 2, 12345},
                        {IEEEFloat, 8, u"+7", -1, 0.7},    {IEEEFloat, 8, u"-1500", -3, -1.5},
                        {IEEEFloat, 4, u"12.5", 0, 12.5},  {HFPFloat, 8, u"0.01", 1, 0.1},
                        {HFPFloat, 4, u"-10", 1, -100}};
  for (const Case& c : cases) {
    SCOPED_TRACE(ZanStringBase(c.decimal).toUtf8());
    DataCnv cnv(1200, LittleEndian, c.format);
    Bytes out(static_cast<std::size_t>(c.size));
    std::int32_t size = c.size;
    cnv.FltFromDec(c.decimal, out.data(), size, c.scale);
    EXPECT_EQ(size, c.size);
    EXPECT_EQ(out, write(cnv, c.value, c.size));
  }
}

TEST(DataCnvFloatDecimal, NanAndInfinityHaveNoDecimal) {
  DataCnv cnv(1200, BigEndian, IEEEFloat);
  struct Case {
    Bytes bytes;
    double value;
  };
  const Case cases[] = {{{0x7F, 0xF8, 0, 0, 0, 0, 0, 0}, std::numeric_limits<double>::quiet_NaN()},
                        {{0x7F, 0xF0, 0, 0, 0, 0, 0, 0}, INFINITY},
                        {{0xFF, 0x80, 0, 0}, -INFINITY}};
  for (const Case& c : cases) {
    const auto size = static_cast<std::int32_t>(c.bytes.size());
    expectConversionFailure([&] { cnv.FltToDec(c.bytes.data(), size, 2); }, kInvalid,
                            "DataCnv::doubleToUString", {"double", zanInsertText(c.value)});
  }
}

TEST(DataCnvFloatArguments, BadPointersSizesAndTextFailBeforeWriting) {
  DataCnv cnv(1200, BigEndian, HFPFloat);
  const unsigned char bytes[8] = {0x41, 0x10};
  for (std::int32_t size : {0, -1}) {
    expectConversionFailure([&] { cnv.FltToDbl(bytes, size); }, kInternal, "DataCnv::FltToDbl",
                            {"Invalid input size: ", std::to_string(size)});
  }
  expectConversionFailure([&] { cnv.FltToDbl(nullptr, 4); }, kInternal, "DataCnv::FltToDbl",
                          {"Null input pointer passed into DataCnv::FltToDbl"});
  expectConversionFailure([&] { cnv.FltToDbl(bytes, 6); }, kInternal, "DataCnv::FltToDbl",
                          {"Invalid float size: ", "6"});
  expectConversionFailure([&] { cnv.FltToDec(nullptr, 8, 2); }, kInternal, "DataCnv::FltToDbl",
                          {"Null input pointer passed into DataCnv::FltToDbl"});

  struct Case {
    const char16_t* decimal;
    bool nullOutput;
    std::int32_t size;
    std::int32_t scale;
    Code code;
    const char* function;
    std::vector<std::string> inserts;
  };
  const std::string huge = "1" + std::string(400, '0');
  const ZanStringBase hugeText = ZanStringBase::fromUtf8(huge);
  const Case cases[] = {
      {u"1", false, 0, 0, kInternal, "DataCnv::FltFromDec", {"Invalid output buffer size: ", "0"}},
      {u"1",
       false,
       -1,
       0,
       kInternal,
       "DataCnv::FltFromDec",
       {"Invalid output buffer size: ", "-1"}},
      {u"1", false, 6, 0, kInternal, "DataCnv::FltFromDec", {"Invalid float size: ", "6"}},
      {nullptr, false, 4, 0, kInternal, "DataCnv::FltFromDec", {"Null input pointer"}},
      {u"1", true, 4, 0, kInternal, "DataCnv::FltFromDec", {"Null output buffer pointer"}},
      {u"1",
       false,
       4,
       std::numeric_limits<std::int32_t>::min(),
       kInternal,
       "DataCnv::FltFromDec",
       {"Invalid scale: ", "-2147483648"}},
      {u"1e5", false, 8, 2, kInvalid, "DataCnv::validateDecimal", {"decimal"}},
      {u"1-2", false, 8, 0, kInvalid, "DataCnv::validateDecimal", {"decimal"}},
      {u"", false, 8, 0, kInvalid, "DataCnv::PWFStringTodouble", {"double", ""}},
      {u"1,5", false, 8, 0, kInvalid, "DataCnv::PWFStringTodouble", {"double", "1,5"}},
      {hugeText.terminatedData(),
       false,
       8,
       0,
       kBounds,
       "DataCnv::PWFStringTodouble",
       {"double", huge}}};
  for (const Case& c : cases) {
    SCOPED_TRACE(c.inserts.back());
    unsigned char out[8] = {0xEE, 0xEE, 0xEE, 0xEE, 0xEE, 0xEE, 0xEE, 0xEE};
    std::int32_t size = c.size;
    expectConversionFailure(
        [&] { cnv.FltFromDec(c.decimal, c.nullOutput ? nullptr : out, size, c.scale); }, c.code,
        c.function, c.inserts);
    EXPECT_EQ(size, c.size);
    for (unsigned char byte : out) EXPECT_EQ(byte, 0xEE);
  }

  unsigned char out[8] = {};
  for (std::int32_t size : {0, -1, 6}) {
    const char* message = size == 6 ? "Invalid float size: " : "Invalid output buffer size: ";
    expectConversionFailure([&] { cnv.FltFromDbl(1.0, out, size); }, kInternal,
                            "DataCnv::FltFromDbl", {message, std::to_string(size)});
  }
  std::int32_t four = 4;
  expectConversionFailure([&] { cnv.FltFromDbl(1.0, nullptr, four); }, kInternal,
                          "DataCnv::FltFromDbl", {"Null output buffer pointer"});

  float word = 0;
  double pair = 0;
  const std::vector<std::string> nullInput = {"Null input pointer"};
  const std::vector<std::string> nullOutput = {"Null output buffer pointer"};
  expectConversionFailure([&] { DataCnv::ConvertFloatHFPtoIEEE(nullptr, &word); }, kInternal,
                          "DataCnv::ConvertFloatHFPtoIEEE", nullInput);
  expectConversionFailure([&] { DataCnv::ConvertFloatIEEEtoHFP(&word, nullptr); }, kInternal,
                          "DataCnv::ConvertFloatIEEEtoHFP", nullOutput);
  expectConversionFailure([&] { DataCnv::ConvertDoubleHFPtoIEEE(&pair, nullptr, BigEndian); },
                          kInternal, "DataCnv::ConvertDoubleHFPtoIEEE", nullOutput);
  expectConversionFailure([&] { DataCnv::ConvertDoubleIEEEtoHFP(nullptr, &pair, BigEndian); },
                          kInternal, "DataCnv::ConvertDoubleIEEEtoHFP", nullInput);
}

TEST(DataCnvFloatHelpers, ScalesByPowersOfTen) {
  struct Case {
    double value;
    std::int32_t power;
    double multiplied;
    double divided;
  };
  const Case cases[] = {{2.5, 3, 2500, 0.0025},
                        {2.5, 0, 2.5, 2.5},
                        {1.5, -2, 0.015, 150},
                        {1.5, -400, 1.5, 1.5},  // ten to -400 is 0 as a double: unchanged
                        {1.0, 400, INFINITY, 0}};
  DataCnv cnv;
  for (const Case& c : cases) {
    SCOPED_TRACE(c.power);
    EXPECT_DOUBLE_EQ(DataCnvTestAccess::MultiplyDouble(cnv, c.value, c.power), c.multiplied);
    EXPECT_DOUBLE_EQ(DataCnvTestAccess::DivideDouble(cnv, c.value, c.power), c.divided);
  }
}

TEST(DataCnvFloatThreads, EightByteConversionsAgreeAcrossWordOrders) {
  // Each thread converts with its own word order; results must match a single-threaded run.
  std::mt19937_64 random(7);
  std::vector<std::uint64_t> values(64);
  for (std::uint64_t& value : values) value = random();
  std::vector<std::uint64_t> toHfp[2];
  std::vector<std::uint64_t> toIeee[2];
  const EEndian orders[2] = {LittleEndian, BigEndian};
  for (int o = 0; o < 2; ++o) {
    for (std::uint64_t value : values) {
      toHfp[o].push_back(convert8(DataCnv::ConvertDoubleIEEEtoHFP, value, orders[o]));
      toIeee[o].push_back(convert8(DataCnv::ConvertDoubleHFPtoIEEE, value, orders[o]));
    }
  }
  std::atomic<int> mismatches{0};
  std::vector<std::thread> threads;
  for (int t = 0; t < 4; ++t) {
    threads.emplace_back([&, o = t % 2] {
      for (int round = 0; round < 500; ++round) {
        for (std::size_t i = 0; i < values.size(); ++i) {
          if (convert8(DataCnv::ConvertDoubleIEEEtoHFP, values[i], orders[o]) != toHfp[o][i] ||
              convert8(DataCnv::ConvertDoubleHFPtoIEEE, values[i], orders[o]) != toIeee[o][i]) {
            ++mismatches;
          }
        }
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(mismatches.load(), 0);
}

}  // namespace
