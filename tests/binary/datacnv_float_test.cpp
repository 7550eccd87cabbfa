// Floating point: the bit-exact conversions between IEEE and HFP, floats of both sizes, formats and
// byte orders read and written, decimals with implied places, round trips and argument faults.

#include <bsutils/dataconv.h>
#include <gtest/gtest.h>

#include <atomic>
#include <bit>
#include <cmath>
#include <cstdint>
#include <functional>
#include <random>
#include <string>
#include <thread>
#include <tuple>
#include <vector>

#include "support/expect_failure.h"

namespace {

using Bytes = std::vector<unsigned char>;

std::uint32_t convert4(void (*convert)(float*, float*), std::uint32_t bits) {
  auto word = std::bit_cast<float>(bits);
  convert(&word, &word);
  return std::bit_cast<std::uint32_t>(word);
}

// `bits` is the high word above the low word; the words are laid out in `order`.
std::uint64_t convert8(void (*fn)(double*, double*, EEndian), std::uint64_t bits, EEndian order) {
  const int turn = (order == BigEndian) == (std::endian::native == std::endian::little) ? 32 : 0;
  auto pair = std::bit_cast<double>(std::rotl(bits, turn));
  fn(&pair, &pair, order);
  return std::rotr(std::bit_cast<std::uint64_t>(pair), turn);
}

// The `size` low bytes of `bits` as an object in `endian` order lays them out.
Bytes bytesOf(std::uint64_t bits, std::int32_t size, EEndian endian) {
  Bytes bytes;
  for (int i = size - 1; i >= 0; --i) bytes.push_back(static_cast<unsigned char>(bits >> 8 * i));
  return endian == BigEndian ? bytes : Bytes(bytes.rbegin(), bytes.rend());
}

Bytes write(DataCnv& cnv, double value, std::int32_t size) {
  Bytes out(static_cast<std::size_t>(size), 0xEE);
  cnv.FltFromDbl(value, out.data(), size);
  return out;
}

TEST(DataCnvFloatFormats, ConvertsSingleWordsBitForBit) {
  // By hand from the two formats' definitions: (F / 2^24) x 16^(c - 64) against 1.m x 2^(e - 127).
  using Pair = std::tuple<std::uint32_t, std::uint32_t>;  // HFP, IEEE
  const Pair hfpToIeee[] = {
      {0x41100000, 0x3F800000}, {0x40800000, 0x3F000000},  // 1, 0.5
      {0x60FFFFFF, 0x7F7FFFFF},                            // the largest single, exactly
      {0x61100000, 0x7F7FFFFF}, {0xFFFFFFFF, 0xFF7FFFFF},  // beyond it: saturated
      {0x21400000, 0x00800000},                            // the smallest normal single
      {0x21200000, 0x00000000}, {0x80100000, 0x80000000},  // below it: zero, no denormal
      {0x41000000, 0x41800000},                            // zero fraction: 16, not 0
      {0x80000000, 0x80000000}};
  for (auto [hfp, ieee] : hfpToIeee) EXPECT_EQ(convert4(DataCnv::ConvertFloatHFPtoIEEE, hfp), ieee);
  const Pair ieeeToHfp[] = {
      {0x41100000, 0x3F800000}, {0x40800000, 0x3F000000},  // 1, 0.5
      {0x41100000, 0x3F800001},                            // 1 + 2^-23: truncated
      {0x60FFFFFF, 0x7F7FFFFF}, {0x21400000, 0x00800000},  // largest, smallest normal
      {0x21200000, 0x00000001},                            // a denormal read as if normal
      {0x61100000, 0x7F800000}, {0xE1100000, 0xFF800000},  // infinities: finite HFP
      {0x80000000, 0x80000000}};
  for (auto [hfp, ieee] : ieeeToHfp) EXPECT_EQ(convert4(DataCnv::ConvertFloatIEEEtoHFP, ieee), hfp);
}

TEST(DataCnvFloatFormats, ConvertsWordPairsBitForBitInBothWordOrders) {
  // By hand as above, with 56 HFP fraction bits against 52 mantissa bits.
  using Pair = std::tuple<std::uint64_t, std::uint64_t>;  // from, to
  const Pair hfpToIeee[] = {
      {0xC1100000'00000000, 0xBFF00000'00000000},   // -1
      {0x41200000'00000001, 0x40000000'00000001},   // 2 + 2^-52: the half rounds up
      {0x41800000'00000003, 0x40200000'00000000},   // 8 + 3 x 2^-52: bits 23/22 truncate
      {0x41FFFFFF'FFFFFFFF, 0x40300000'00000000},   // 16 - 2^-52 rounds up to 16
      {0x7FFFFFFF'FFFFFFFF, 0x4FB00000'00000000},   // the largest HFP, rounded: 2^252
      {0x00100000'00000000, 0x2FB00000'00000000},   // the smallest normal HFP: 2^-260
      {0x41000000'00000000, 0x3FF00000'00000000},   // zero fraction: 1
      {0x41000000'00000001, 0x3FF00000'00000001},   // empty high fraction: left unnormalised
      {0x80000000'12345678, 0x80000000'12345678}};  // zero high word: copied
  const Pair ieeeToHfp[] = {{0x3FE00000'00000000, 0x40800000'00000000},
                            {0xC0590000'00000000, 0xC2640000'00000000},
                            {0x3FB99999'9999999A, 0x40199999'9999999A},  // 0.1
                            {0x4FAFFFFF'FFFFFFFF, 0x7FFFFFFF'FFFFFFF8},  // just below 16^63
                            {0x4FB00000'00000000, 0x7FFFFFFF'FFFFFFFF},  // 16^63: saturated
                            {0xCFB00000'00000000, 0xFFFFFFFF'FFFFFFFF},  //
                            {0x7FF80000'00000000, 0x7FFFFFFF'FFFFFFFF},  // NaN
                            {0x2FB00000'00000000, 0x00100000'00000000},  // 16^-65
                            {0xAFA00000'00000000, 0x80000000'00000000},  // -2^-261: below HFP, zero
                            {0x80000000'00000001, 0x80000000'00000001}};  // zero high word: copied
  for (EEndian order : {LittleEndian, BigEndian}) {
    for (auto [from, to] : hfpToIeee) {
      EXPECT_EQ(convert8(DataCnv::ConvertDoubleHFPtoIEEE, from, order), to) << from << order;
    }
    for (auto [from, to] : ieeeToHfp) {
      EXPECT_EQ(convert8(DataCnv::ConvertDoubleIEEEtoHFP, from, order), to) << from << order;
    }
  }
}

TEST(DataCnvFloatBytes, ReadsWritesAndRoundTripsEachSizeFormatAndByteOrder) {
  // Format, size, value written, its bytes (big-endian), what they read back as. Four bytes are
  // rounded to the nearest single, HFP then truncated; beyond the single range they are an
  // infinity, and HFP its finite image.
  const std::tuple<EFloatFmt, std::int32_t, double, std::uint64_t, double> cases[] = {
      {IEEEFloat, 4, -0.15625, 0xBE200000, -0.15625},
      {IEEEFloat, 8, 0.1, 0x3FB99999'9999999A, 0.1},
      {HFPFloat, 4, -100.0, 0xC2640000, -100.0},
      {HFPFloat, 8, 0.1, 0x40199999'9999999A, 0.1},
      {IEEEFloat, 4, 0.1, 0x3DCCCCCD, 0x1.99999Ap-4},
      {HFPFloat, 4, 0.1, 0x40199999, 0x1.99999p-4},
      {IEEEFloat, 4, 1e300, 0x7F800000, INFINITY},
      {HFPFloat, 4, -1e300, 0xE1100000, -0x1.FFFFFEp127}};
  std::mt19937_64 random(20240517);
  for (EEndian endian : {LittleEndian, BigEndian}) {
    for (const auto& [format, size, value, bigEndianBits, readBack] : cases) {
      DataCnv cnv(1200, endian, format);
      const Bytes bytes = bytesOf(bigEndianBits, size, endian);
      EXPECT_EQ(write(cnv, value, size), bytes) << value << " " << endian;
      EXPECT_EQ(std::bit_cast<std::uint64_t>(cnv.FltToDbl(bytes.data(), size)),
                std::bit_cast<std::uint64_t>(readBack));
    }
    DataCnv hfp(1200, endian, HFPFloat);
    // Within HFP's range (2^-260 to 2^252) any double goes through HFP bytes exactly, and a
    // normalised short HFP word within the single range through a single.
    for (int i = 0; i < 1000; ++i) {
      const double value = std::ldexp(std::bit_cast<double>((random() >> 12) | 0x3FF0000000000000),
                                      -260 + static_cast<int>(random() % 511));
      const Bytes word = bytesOf(
          (34 + random() % 62) << 24 | (1 + random() % 15) << 20 | (random() & 0xFFFFF), 4, endian);
      EXPECT_EQ(hfp.FltToDbl(write(hfp, value, 8).data(), 8), value);
      EXPECT_EQ(write(hfp, hfp.FltToDbl(word.data(), 4), 4), word);
    }
  }
  // Any format number but HFP's is IEEE, any order but LittleEndian reversed.
  DataCnv other(1200, static_cast<EEndian>(0), static_cast<EFloatFmt>(7));
  EXPECT_EQ(other.FltToDbl(bytesOf(0x3F800000, 4, BigEndian).data(), 4), 1.0);
}

TEST(DataCnvFloatDecimal, ReadsAndWritesDecimalsWithTheSignBeforeTheScaledDigits) {
  const auto read = [](DataCnv& cnv, double value, std::int32_t size, std::int32_t scale) {
    const PWFData decimal = cnv.FltToDec(write(cnv, value, size).data(), size, scale);
    EXPECT_EQ(decimal.getDataLogicalType(), eDecimal);
    return decimal.getDecimalText().toUtf8();
  };
  const auto fromDecimal = [](DataCnv& cnv, const char* text, std::int32_t size, int scale) {
    Bytes out(static_cast<std::size_t>(size));
    cnv.FltFromDec(ZanStringBase::fromUtf8(text).terminatedData(), out.data(), size, scale);
    return out;
  };
  const std::tuple<EFloatFmt, std::int32_t, double, std::int32_t, const char*> cases[] = {
      {IEEEFloat, 8, -5.0, 2, "-0.05"}, {IEEEFloat, 8, -1.5, -3, "-1500"},
      {IEEEFloat, 8, 0.25, 0, "0.25"},  {IEEEFloat, 4, 0.5, 3, "0.0005"},
      {HFPFloat, 4, -100, 1, "-10.0"},  {HFPFloat, 8, 0.1, 1, "0.01"}};
  for (const auto& [format, size, value, scale, decimal] : cases) {
    DataCnv cnv(1200, BigEndian, format);
    EXPECT_EQ(read(cnv, value, size, scale), decimal) << value;
    EXPECT_EQ(fromDecimal(cnv, decimal, size, scale), write(cnv, value, size)) << value;
  }
  // One way only: a negative zero reads as "0", a plus sign is written.
  DataCnv cnv(1200, LittleEndian, IEEEFloat);
  EXPECT_EQ(read(cnv, -0.0, 8, 0), "0");
  EXPECT_EQ(fromDecimal(cnv, "+7", 8, -1), write(cnv, 0.7, 8));
}

TEST(DataCnvFloatArguments, FailuresRaiseBeforeWriting) {
  // Each call fails with the output and the size left as they were.
  DataCnv cnv(1200, BigEndian, IEEEFloat);
  const Bytes nan = bytesOf(0x7FF80000'00000000, 8, BigEndian);
  using Inserts = std::vector<std::string>;
  const Inserts nullRead = {"Null input pointer passed into DataCnv::FltToDbl"};
  const Inserts nullIn = {"Null input pointer"};
  const Inserts nullOut = {"Null output buffer pointer"};
  const Inserts badSize = {"Invalid output buffer size: ", "0"};
  Bytes out;
  std::int32_t size = 0;
  float f = 0;
  double d = 0;
  const auto toDec = [&] { cnv.FltToDec(nan.data(), size, 2); };
  const auto fromDec = [&](const char16_t* text, std::int32_t scale) {
    return [&, text, scale] { cnv.FltFromDec(text, out.data(), size, scale); };
  };
  struct Case {
    std::int32_t size;
    std::function<void()> call;
    const char* function;
    Inserts inserts;
    Code code = kInternal;
  };
  const Case cases[] = {
      {0, [&] { cnv.FltToDbl(nan.data(), size); }, "FltToDbl", {"Invalid input size: ", "0"}},
      {6, [&] { cnv.FltToDbl(nan.data(), size); }, "FltToDbl", {"Invalid float size: ", "6"}},
      {4, [&] { cnv.FltToDbl(nullptr, size); }, "FltToDbl", nullRead},
      {8, toDec, "doubleToUString", {"double", "nan"}, kInvalid},
      {0, [&] { cnv.FltFromDbl(1.0, out.data(), size); }, "FltFromDbl", badSize},
      {4, [&] { cnv.FltFromDbl(1.0, nullptr, size); }, "FltFromDbl", nullOut},
      {0, fromDec(u"1", 0), "FltFromDec", badSize},
      {6, fromDec(u"1", 0), "FltFromDec", {"Invalid float size: ", "6"}},
      {4, fromDec(nullptr, 0), "FltFromDec", nullIn},
      {4, [&] { cnv.FltFromDec(u"1", nullptr, size, 0); }, "FltFromDec", nullOut},
      {4, fromDec(u"1", INT32_MIN), "FltFromDec", {"Invalid scale: ", "-2147483648"}},
      {8, fromDec(u"1e5", 2), "validateDecimal", {"decimal"}, kInvalid},
      {8, fromDec(u"1,5", 0), "PWFStringTodouble", {"double", "1,5"}, kInvalid},
      {0, [&] { DataCnv::ConvertFloatHFPtoIEEE(nullptr, &f); }, "ConvertFloatHFPtoIEEE", nullIn},
      {0, [&] { DataCnv::ConvertFloatIEEEtoHFP(&f, nullptr); }, "ConvertFloatIEEEtoHFP", nullOut},
      {0, [&] { DataCnv::ConvertDoubleHFPtoIEEE(&d, nullptr, BigEndian); },
       "ConvertDoubleHFPtoIEEE", nullOut},
      {0, [&] { DataCnv::ConvertDoubleIEEEtoHFP(nullptr, &d, BigEndian); },
       "ConvertDoubleIEEEtoHFP", nullIn}};
  for (const Case& c : cases) {
    out.assign(8, 0xEE);
    size = c.size;
    expectConversionFailure(c.call, c.code, std::string("DataCnv::") + c.function, c.inserts);
    EXPECT_EQ(size, c.size) << c.inserts.back();
    EXPECT_EQ(out, Bytes(8, 0xEE)) << c.inserts.back();
  }
}

TEST(DataCnvFloatThreads, EightByteConversionsAgreeAcrossWordOrders) {
  // Threads of both word orders at once must each match a single-threaded run.
  const auto run = [](EEndian order) {
    std::mt19937_64 random(7);
    std::vector<std::uint64_t> out(128);
    for (std::uint64_t& bits : out) {
      bits = convert8(DataCnv::ConvertDoubleIEEEtoHFP,
                      convert8(DataCnv::ConvertDoubleHFPtoIEEE, random(), order), order);
    }
    return out;
  };
  std::atomic<int> mismatches{0};
  std::vector<std::jthread> threads;
  for (EEndian order : {LittleEndian, BigEndian, LittleEndian, BigEndian}) {
    threads.emplace_back([&, order, expected = run(order)] {
      for (int round = 0; round < 500; ++round) mismatches += run(order) != expected;
    });
  }
  threads.clear();  // joins them
  EXPECT_EQ(mismatches.load(), 0);
}

}  // namespace
