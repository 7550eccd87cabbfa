// Correctly rounded HFP: HFPToDouble and DoubleToHFP against values worked out by hand and against
// a reference done here in exact arithmetic, both byte orders, round trips and failures.
//
// The reference works in long double, whose 64-bit significand holds every 56-bit HFP fraction and
// every double exactly; scaling by powers of two is exact there, and the only rounding steps are
// the final narrowing to double and nearbyintl, both IEEE round to nearest, ties to even. So the
// reference rounds once, from the exact value, which is the definition being tested.

#include <bsutils/dataconv.h>
#include <gtest/gtest.h>

#include <bit>
#include <cfenv>
#include <cmath>
#include <cstdint>
#include <functional>
#include <limits>
#include <random>
#include <sstream>
#include <string>
#include <vector>

#include "support/expect_failure.h"

namespace {

static_assert(std::numeric_limits<long double>::digits >= 64,
              "the reference needs a long double that holds 64-bit integers exactly");

using Bytes = std::vector<unsigned char>;

// The `size` low bytes of `bits` (most significant first) as the object's byte order lays them.
Bytes bytesOf(std::uint64_t bits, std::int32_t size, EEndian endian) {
  Bytes bytes;
  for (int i = size - 1; i >= 0; --i) bytes.push_back(static_cast<unsigned char>(bits >> 8 * i));
  return endian == BigEndian ? bytes : Bytes(bytes.rbegin(), bytes.rend());
}

std::string hex(std::uint64_t bits) {
  std::ostringstream text;
  text << std::hex << std::uppercase << bits;
  return text.str();
}

int digitsOf(std::int32_t size) { return size == 4 ? 6 : 14; }

// The exact value of HFP `bits` of `size` bytes, rounded once to a double.
double referenceValue(std::uint64_t bits, std::int32_t size) {
  const int fractionBits = 4 * digitsOf(size);
  const std::uint64_t fraction = bits & ((std::uint64_t{1} << fractionBits) - 1);
  const int characteristic = static_cast<int>(bits >> fractionBits) & 0x7F;
  const bool negative = (bits >> (fractionBits + 7) & 1) != 0;
  const long double exact =
      std::ldexp(static_cast<long double>(fraction), 4 * (characteristic - 64) - fractionBits);
  return static_cast<double>(negative ? -exact : exact);
}

// The HFP bits nearest to `value` (ties to even), normalised, characteristic 0 below 16^-65;
// false when the nearest lies beyond the largest HFP value.
bool referenceBits(double value, std::int32_t size, std::uint64_t& bits) {
  const int digits = digitsOf(size);
  const long double magnitude = std::fabs(static_cast<long double>(value));
  // The power of 16 by comparison: 16^(e - 1) <= magnitude < 16^e, at least -64.
  int e = -64;
  while (magnitude >= std::ldexp(1.0L, 4 * e)) ++e;
  long double fraction = std::nearbyint(std::ldexp(magnitude, 4 * (digits - e)));
  if (fraction == std::ldexp(1.0L, 4 * digits)) {
    fraction /= 16;
    ++e;
  }
  if (e + 64 > 127) return false;
  const std::uint64_t sign = std::signbit(value) ? 1 : 0;
  bits = (sign << (4 * digits + 7)) | (static_cast<std::uint64_t>(e + 64) << (4 * digits)) |
         static_cast<std::uint64_t>(fraction);
  return true;
}

struct ReadRow {
  const char* name;
  std::uint64_t bits;  // most significant byte first
  std::int32_t size;
  double value;  // by hand
};

// Worked out by hand: fraction F of 24 or 56 bits, value F x 2^(4 (c - 64) - 24 or 56).
const ReadRow kReadRows[] = {
    {"one", 0x41100000, 4, 1.0},
    {"minus one hundred", 0xC2640000, 4, -100.0},
    {"16^-65, the smallest normalised, not zero", 0x00100000, 4, 0x1p-260},
    {"16777215 exactly", 0x46FFFFFF, 4, 16777215.0},
    {"largest short", 0x7FFFFFFF, 4, 0x1.fffffep251},
    {"smallest short, unnormalised", 0x00000001, 4, 0x1p-280},
    {"unnormalised short", 0x000FFFFF, 4, 0xFFFFFp-280},
    {"zero fraction is zero, not 16", 0x41000000, 4, 0.0},
    {"negative zero", 0x80000000, 4, -0.0},
    {"negative zero with a characteristic", 0xC1000000, 4, -0.0},
    {"long one", 0x41100000'00000000, 8, 1.0},
    {"long 16777215", 0x46FFFFFF'00000000, 8, 16777215.0},
    {"long 0.1", 0x40199999'9999999A, 8, 0.1},
    {"long 16^-65", 0x00100000'00000000, 8, 0x1p-260},
    {"largest long rounds up to 16^63", 0x7FFFFFFF'FFFFFFFF, 8, 0x1p252},
    {"smallest long, unnormalised", 0x00000000'00000001, 8, 0x1p-312},
    {"unnormalised long, empty high fraction", 0x41000000'00000001, 8, 0x1p-52},
    {"unnormalised long, 48 bits", 0x4100FFFF'FFFFFFFF, 8, 0xFFFFFFFFFFFFp-52},
    {"digit 1: 53 bits, exact", 0x411FFFFF'FFFFFFFF, 8, 0x1.fffffffffffffp0},
    {"digit 2: tie to even, down", 0x41200000'00000001, 8, 2.0},
    {"digit 2: tie to even, up", 0x41200000'00000003, 8, 0x1.0000000000002p1},
    {"digit 4: tie to even, down", 0x41400000'00000002, 8, 4.0},
    {"digit 4: tie to even, up", 0x41400000'00000006, 8, 0x1.0000000000002p2},
    {"digit F: tie to even, down", 0x41F00000'00000004, 8, 15.0},
    {"digit F: tie to even, up", 0x41F00000'0000000C, 8, 0x1.e000000000002p3},
    {"digit F: above the half", 0x41F00000'00000005, 8, 0x1.e000000000001p3},
    {"digit F: all ones round to 16", 0x41FFFFFF'FFFFFFFF, 8, 16.0},
    {"long negative zero", 0x80000000'00000000, 8, -0.0},
    {"long zero fraction, negative", 0xC2000000'00000000, 8, -0.0},
    {"long minus one", 0xC1100000'00000000, 8, -1.0},
};

TEST(DataCnvHfpExact, ReadsEdgeValuesInBothByteOrders) {
  for (const EEndian endian : {BigEndian, LittleEndian}) {
    // The object's float format does not matter: these always read HFP.
    DataCnv cnv(1200, endian, IEEEFloat);
    for (const ReadRow& row : kReadRows) {
      SCOPED_TRACE(std::string(row.name) + " " + hex(row.bits) + " endian " +
                   std::to_string(endian));
      const Bytes bytes = bytesOf(row.bits, row.size, endian);
      const double value = cnv.HFPToDouble(bytes.data(), row.size);
      EXPECT_EQ(std::bit_cast<std::uint64_t>(value), std::bit_cast<std::uint64_t>(row.value));
      EXPECT_EQ(std::bit_cast<std::uint64_t>(referenceValue(row.bits, row.size)),
                std::bit_cast<std::uint64_t>(row.value))
          << "hand and reference disagree";
    }
  }
}

struct WriteRow {
  const char* name;
  double value;
  std::int32_t size;
  std::uint64_t bits;  // by hand, most significant byte first
};

const WriteRow kWriteRows[] = {
    {"one", 1.0, 4, 0x41100000},
    {"long one", 1.0, 8, 0x41100000'00000000},
    {"minus one hundred", -100.0, 4, 0xC2640000},
    {"0.1 rounds up in 6 digits", 0.1, 4, 0x4019999A},
    {"0.1 is exact in 14 digits", 0.1, 8, 0x40199999'9999999A},
    {"16777215", 16777215.0, 4, 0x46FFFFFF},
    {"16^-65", 0x1p-260, 4, 0x00100000},
    {"long 16^-65", 0x1p-260, 8, 0x00100000'00000000},
    {"zero", 0.0, 4, 0x00000000},
    {"negative zero", -0.0, 4, 0x80000000},
    {"long negative zero", -0.0, 8, 0x80000000'00000000},
    {"tie to even, down", 0x1.000008p0, 4, 0x41100000},
    {"tie to even, up", 0x1.000018p0, 4, 0x41100002},
    {"rounding carries into the next power of 16", 0x1.ffffffcp3, 4, 0x42100000},
    {"largest short", 0x1.fffffep251, 4, 0x7FFFFFFF},
    {"below the half past the largest short", 0x1.fffffe8p251, 4, 0x7FFFFFFF},
    {"largest double below 16^63", 0x1.fffffffffffffp251, 8, 0x7FFFFFFF'FFFFFFF8},
    {"half of 16^-65: unnormalised", 0x1p-261, 4, 0x00080000},
    {"long half of 16^-65", -0x1p-261, 8, 0x80080000'00000000},
    {"unnormalised, rounded", 0x1.234567p-264, 4, 0x00012345},
    {"smallest short", 0x1p-280, 4, 0x00000001},
    {"half the smallest short: tie to even zero", 0x1p-281, 4, 0x00000000},
    {"negative: a zero of the sign", -0x1p-281, 4, 0x80000000},
    {"three quarters of the smallest short", 0x1.8p-281, 4, 0x00000001},
    {"one and a half smallest short: tie to two", 0x1.8p-280, 4, 0x00000002},
    {"smallest long", 0x1p-312, 8, 0x00000000'00000001},
    {"half the smallest long", 0x1p-313, 8, 0x00000000'00000000},
    {"smallest subnormal double", -0x1p-1074, 8, 0x80000000'00000000},
};

TEST(DataCnvHfpExact, WritesEdgeValuesInBothByteOrders) {
  for (const EEndian endian : {BigEndian, LittleEndian}) {
    DataCnv cnv(1200, endian, IEEEFloat);
    for (const WriteRow& row : kWriteRows) {
      SCOPED_TRACE(std::string(row.name) + " endian " + std::to_string(endian));
      Bytes out(8, 0xEE);
      std::int32_t size = row.size;
      cnv.DoubleToHFP(row.value, out.data(), size);
      EXPECT_EQ(size, row.size);
      EXPECT_EQ(Bytes(out.begin(), out.begin() + row.size), bytesOf(row.bits, row.size, endian));
      EXPECT_EQ(Bytes(out.begin() + row.size, out.end()), Bytes(8 - row.size, 0xEE));
      std::uint64_t reference = 0;
      ASSERT_TRUE(referenceBits(row.value, row.size, reference));
      EXPECT_EQ(hex(reference), hex(row.bits)) << "hand and reference disagree";
    }
  }
}

TEST(DataCnvHfpExact, AgreesWithTheReferenceOnRandomValues) {
  ASSERT_EQ(std::fegetround(), FE_TONEAREST);
  std::mt19937_64 random(20240611);
  DataCnv big(1200, BigEndian, HFPFloat);
  DataCnv little(1200, LittleEndian, HFPFloat);
  for (int i = 0; i < 20000; ++i) {
    // Any bits, and any magnitude from well below 16^-65 to just past 16^63.
    const std::int32_t size = (i & 1) != 0 ? 8 : 4;
    const std::uint64_t bits = size == 8 ? random() : random() >> 32;
    SCOPED_TRACE(hex(bits));
    const Bytes field = bytesOf(bits, size, BigEndian);
    EXPECT_EQ(std::bit_cast<std::uint64_t>(big.HFPToDouble(field.data(), size)),
              std::bit_cast<std::uint64_t>(referenceValue(bits, size)));
    const double value = std::ldexp(std::bit_cast<double>((random() >> 12) | 0x3FF0000000000000),
                                    -300 + static_cast<int>(random() % 556)) *
                         ((random() & 1) != 0 ? -1 : 1);
    std::uint64_t expected = 0;
    Bytes out(static_cast<std::size_t>(size));
    std::int32_t length = size;
    if (referenceBits(value, size, expected)) {
      little.DoubleToHFP(value, out.data(), length);
      EXPECT_EQ(out, bytesOf(expected, size, LittleEndian)) << value;
    } else {
      // Beyond the largest value: the failure's full contract is checked in FailuresRaise... below.
      try {
        little.DoubleToHFP(value, out.data(), length);
        ADD_FAILURE() << "no failure for " << value;
      } catch (const ZanConversionException& failure) {
        EXPECT_EQ(static_cast<std::uint32_t>(failure.messageNumber()), kBounds.messageNumber);
      }
    }
  }
}

TEST(DataCnvHfpExact, DoublesInTheNormalisedRangeRoundTripThroughEightBytes) {
  // From 16^-65 up to 16^63 every double's 53 bits fit in 14 hexadecimal digits, whose first has
  // at most three leading zero bits, so double -> HFP -> double gives the double back. Short
  // normalised words go the other way: every one is a double.
  std::mt19937_64 random(7031);
  for (const EEndian endian : {BigEndian, LittleEndian}) {
    DataCnv cnv(1200, endian, HFPFloat);
    for (int i = 0; i < 5000; ++i) {
      const double magnitude =
          std::ldexp(std::bit_cast<double>((random() >> 12) | 0x3FF0000000000000),
                     -260 + static_cast<int>(random() % 512));
      const double value = (random() & 1) != 0 ? -magnitude : magnitude;
      Bytes out(8);
      std::int32_t size = 8;
      cnv.DoubleToHFP(value, out.data(), size);
      EXPECT_EQ(std::bit_cast<std::uint64_t>(cnv.HFPToDouble(out.data(), 8)),
                std::bit_cast<std::uint64_t>(value))
          << value;
      const std::uint64_t word =
          (random() & 0xFF000000) | (1 + random() % 15) << 20 | (random() & 0xFFFFF);
      const Bytes shortField = bytesOf(word, 4, endian);
      size = 4;
      cnv.DoubleToHFP(cnv.HFPToDouble(shortField.data(), 4), out.data(), size);
      EXPECT_EQ(Bytes(out.begin(), out.begin() + 4), shortField) << hex(word);
    }
  }
}

TEST(DataCnvHfpExact, FailuresRaiseBeforeWriting) {
  DataCnv cnv(1200, BigEndian, HFPFloat);
  const Bytes one = bytesOf(0x41100000'00000000, 8, BigEndian);
  using Inserts = std::vector<std::string>;
  Bytes out;
  std::int32_t size = 0;
  const auto read = [&](const unsigned char* source) {
    return [&, source] { cnv.HFPToDouble(source, size); };
  };
  const auto write = [&](double value) {
    return [&, value] { cnv.DoubleToHFP(value, out.data(), size); };
  };
  struct Case {
    const char* name;
    std::int32_t size;
    std::function<void()> call;
    const char* function;
    Code code;
    Inserts inserts;
  };
  const Case cases[] = {
      {"null source",
       4,
       read(nullptr),
       "HFPToDouble",
       kInternal,
       {"Null input pointer passed into DataCnv::HFPToDouble"}},
      {"size 0", 0, read(one.data()), "HFPToDouble", kInternal, {"Invalid input size: ", "0"}},
      {"size -4", -4, read(one.data()), "HFPToDouble", kInternal, {"Invalid input size: ", "-4"}},
      {"size 6", 6, read(one.data()), "HFPToDouble", kInternal, {"Invalid float size: ", "6"}},
      {"null output",
       8,
       [&] { cnv.DoubleToHFP(1.0, nullptr, size); },
       "DoubleToHFP",
       kInternal,
       {"Null output buffer pointer"}},
      {"size 0", 0, write(1.0), "DoubleToHFP", kInternal, {"Invalid output buffer size: ", "0"}},
      {"size 6", 6, write(1.0), "DoubleToHFP", kInternal, {"Invalid float size: ", "6"}},
      {"size checked before the value",
       6,
       write(NAN),
       "DoubleToHFP",
       kInternal,
       {"Invalid float size: ", "6"}},
      {"NaN", 8, write(NAN), "DoubleToHFP", kInvalid, {"double", "nan"}},
      {"infinity", 4, write(INFINITY), "DoubleToHFP", kInvalid, {"double", "inf"}},
      {"minus infinity", 8, write(-INFINITY), "DoubleToHFP", kInvalid, {"double", "-inf"}},
      {"16^63", 8, write(0x1p252), "DoubleToHFP", kBounds, {"double", "7.237005577332262e+75"}},
      {"-1e300", 4, write(-1e300), "DoubleToHFP", kBounds, {"double", "-1e+300"}},
      // The half between the largest short and 16^63 is a tie whose even neighbour is 16^63.
      {"tie past the largest short",
       4,
       write(0x1.ffffffp251),
       "DoubleToHFP",
       kBounds,
       {"double", "7.237005361652689e+75"}},  // 2^252 x (1 - 2^-25)
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(std::string(c.function) + ": " + c.name);
    out.assign(8, 0xEE);
    size = c.size;
    expectConversionFailure(c.call, c.code, std::string("DataCnv::") + c.function, c.inserts);
    EXPECT_EQ(size, c.size);
    EXPECT_EQ(out, Bytes(8, 0xEE));
  }
}

}  // namespace
