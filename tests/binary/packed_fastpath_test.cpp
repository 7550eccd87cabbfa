// The packed readers read valid fields straight from their bytes (a double bit for bit), and the
// integer writers pack straight from the value, leaving everything else to the general path, which
// also runs whenever debug trace is on. With debug trace on, then, the general path answers alone;
// these tests hold the two to the same answer, value, bytes or failure, over every 2-byte field,
// every 3-byte one, and seeded sets of long fields and of values.

#include <bsutils/dataconv.h>
#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <cstdint>
#include <limits>
#include <random>
#include <string>
#include <vector>

#include "support/outcome.h"

namespace {

struct Reading {
  EEndian endian;
  std::int32_t scale;
  DataCnv::ESign sign;
};

// Both byte orders, scales inside and outside the fast path's, signed and unsigned fields.
const Reading kReadings[] = {
    {BigEndian, 0, DataCnv::eLeadingEmbeddedSign},
    {LittleEndian, 0, DataCnv::eLeadingEmbeddedSign},
    {BigEndian, 2, DataCnv::eLeadingEmbeddedSign},
    {BigEndian, 0, DataCnv::eNoSign},
    {LittleEndian, 3, DataCnv::eNoSign},
    {BigEndian, -1, DataCnv::eLeadingEmbeddedSign},
    {BigEndian, 19, DataCnv::eLeadingEmbeddedSign},
};

void expectSameOutcomes(const std::vector<unsigned char>& field, const Reading& reading) {
  DataCnv cnv;
  const auto size = static_cast<std::int32_t>(field.size());
  const auto read64 = [&] {
    return cnv.PckdDecToPWFInt64(field.data(), size, reading.endian, reading.scale, reading.sign);
  };
  const auto read32 = [&] {
    return cnv.PckdDecToInt32(field.data(), size, reading.endian, reading.scale, reading.sign);
  };
  const auto readText = [&] {
    return cnv.PckdDecToDec(field.data(), size, reading.endian, reading.scale, reading.sign);
  };
  const Outcome fast64 = outcomeOf(read64);
  const Outcome fast32 = outcomeOf(read32);
  const auto readDouble = [&] {
    return std::bit_cast<std::uint64_t>(
        cnv.PckdDecToDbl(field.data(), size, reading.endian, reading.scale, reading.sign));
  };
  const Outcome fastText = outcomeOf(readText);
  const Outcome fastDouble = outcomeOf(readDouble);
  GeneralPathOnly general;
  ASSERT_EQ(fast64, outcomeOf(read64));
  ASSERT_EQ(fast32, outcomeOf(read32));
  ASSERT_EQ(fastText, outcomeOf(readText));
  ASSERT_EQ(fastDouble, outcomeOf(readDouble));
}

TEST(PackedFastPath, EveryTwoByteFieldReadsAsTheGeneralPathReadsIt) {
  // Each byte order and sign convention once; the scales are the long fields' to vary.
  const Reading readings[] = {kReadings[0], kReadings[4]};
  for (const Reading& reading : readings) {
    SCOPED_TRACE(testing::Message() << "endian " << reading.endian << ", scale " << reading.scale
                                    << ", sign " << reading.sign);
    for (std::uint32_t bytes = 0; bytes < 0x10000; bytes += kExhaustiveStep) {
      SCOPED_TRACE(bytes);
      expectSameOutcomes(
          {static_cast<unsigned char>(bytes >> 8), static_cast<unsigned char>(bytes)}, reading);
    }
  }
}

TEST(PackedFastPath, EveryByteOfAThreeByteFieldReadsAsTheGeneralPathReadsIt) {
  // Each byte position takes every value while the others hold valid digits and a sign.
  const std::vector<unsigned char> valid = {0x12, 0x34, 0x5D};
  for (const Reading& reading : kReadings) {
    for (std::size_t position = 0; position < valid.size(); ++position) {
      for (std::uint32_t byte = 0; byte < 0x100; byte += kExhaustiveStep == 1 ? 1 : 7) {
        std::vector<unsigned char> field = valid;
        field[position] = static_cast<unsigned char>(byte);
        SCOPED_TRACE(testing::Message() << "position " << position << ", byte " << byte);
        expectSameOutcomes(field, reading);
      }
    }
  }
}

TEST(PackedFastPath, LongFieldsReadAsTheGeneralPathReadsThem) {
  // Mostly valid digits, now and then a bad nibble, every sign nibble, 1 to 12 bytes: past 10 bytes
  // and past 63 bits the general path answers alone.
  std::mt19937 random(20261125);
  for (int n = 0; n < 4000; ++n) {
    std::vector<unsigned char> field(1 + random() % 12);
    for (auto& byte : field) {
      byte = static_cast<unsigned char>((random() % 10) << 4 | random() % 10);
      if (random() % 50 == 0) byte = static_cast<unsigned char>(random());
    }
    field.back() = static_cast<unsigned char>((field.back() & 0xF0) | (random() % 16));
    SCOPED_TRACE(n);
    expectSameOutcomes(field, kReadings[random() % std::size(kReadings)]);
  }
}

struct Writing {
  std::int32_t size;
  EEndian endian;
  std::int32_t scale;
  DataCnv::ESign sign;
};

void expectSameBytes(std::int64_t value, const Writing& writing) {
  DataCnv cnv;
  const auto write64 = [&] {
    std::vector<unsigned char> field(static_cast<std::size_t>(writing.size), 0xEE);
    std::int32_t size = writing.size;
    cnv.PckdDecFromPWFInt64(value, field.data(), size, writing.endian, writing.scale, writing.sign);
    return field;
  };
  const Outcome fast64 = outcomeOf(write64);
  if (value >= INT32_MIN && value <= INT32_MAX) {
    const auto write32 = [&] {
      std::vector<unsigned char> field(static_cast<std::size_t>(writing.size), 0xEE);
      std::int32_t size = writing.size;
      cnv.PckdDecFromInt32(static_cast<std::int32_t>(value), field.data(), size, writing.endian,
                           writing.scale, writing.sign);
      return field;
    };
    const Outcome fast32 = outcomeOf(write32);
    GeneralPathOnly general;
    ASSERT_EQ(fast32, outcomeOf(write32));
  }
  GeneralPathOnly general;
  ASSERT_EQ(fast64, outcomeOf(write64));
}

TEST(PackedFastPath, IntegersPackAsTheGeneralPathPacksThem) {
  // Small values in every small field, then values of every magnitude up to the extremes, with
  // scales either way inside and outside the fast path's, into fields that fit and fields that
  // do not.
  const Writing small[] = {{1, BigEndian, 0, DataCnv::eLeadingEmbeddedSign},
                           {2, LittleEndian, 0, DataCnv::eNoSign},
                           {2, BigEndian, 1, DataCnv::eLeadingEmbeddedSign},
                           {2, BigEndian, -1, DataCnv::eNoSign}};
  for (const Writing& writing : small) {
    for (std::int64_t value = -1200; value <= 1200; ++value) {
      SCOPED_TRACE(testing::Message() << "size " << writing.size << ", value " << value);
      expectSameBytes(value, writing);
    }
  }
  std::mt19937_64 random(20261125);
  const std::int32_t scales[] = {0, 0, 2, -3, 18, -18, 19, -25};
  for (int n = 0; n < 6000; ++n) {
    const std::int64_t value = n % 500 == 0 ? INT64_MIN + n % 3
                               : n % 500 == 1
                                   ? INT64_MAX - n % 3
                                   : static_cast<std::int64_t>(random()) >> random() % 64;
    const Writing writing{static_cast<std::int32_t>(random() % 12),
                          random() % 2 ? BigEndian : LittleEndian,
                          scales[random() % std::size(scales)],
                          random() % 3 ? DataCnv::eLeadingEmbeddedSign : DataCnv::eNoSign};
    SCOPED_TRACE(testing::Message() << "n " << n << ", value " << value);
    expectSameBytes(value, writing);
  }
}

TEST(PackedFastPath, DoublesPackAsTheGeneralPathPacksThem) {
  // Values of every magnitude from far below a cent to beyond 2 to the 53, with few and many
  // digits, both zeros, ties of truncation and the non-finite values; scales either way.
  std::mt19937_64 random(20261127);
  std::vector<double> values = {0.0,
                                -0.0,
                                0.29,
                                -0.001,
                                1e-7,
                                123.456,
                                9007199254740991.0,
                                9007199254740992.0,
                                1e300,
                                -5e-324,
                                std::numeric_limits<double>::infinity(),
                                std::numeric_limits<double>::quiet_NaN()};
  for (int n = 0; n < 4000; ++n) {
    const double digits = static_cast<double>(random() % 100000000);
    const double value = std::ldexp(digits, static_cast<int>(random() % 80) - 60) *
                         (random() % 2 ? 1 : -1) / (random() % 2 ? 1.0 : 100.0);
    values.push_back(value);
  }
  const std::int32_t scales[] = {0, 2, 5, -2, 18, -19};
  for (std::size_t n = 0; n < values.size(); ++n) {
    const Writing writing{static_cast<std::int32_t>(1 + random() % 11),
                          random() % 2 ? BigEndian : LittleEndian,
                          scales[random() % std::size(scales)],
                          random() % 3 ? DataCnv::eLeadingEmbeddedSign : DataCnv::eNoSign};
    DataCnv cnv;
    const auto write = [&] {
      std::vector<unsigned char> field(static_cast<std::size_t>(writing.size), 0xEE);
      std::int32_t size = writing.size;
      cnv.PckdDecFromDbl(values[n], field.data(), size, writing.endian, writing.scale,
                         writing.sign);
      return field;
    };
    SCOPED_TRACE(testing::Message() << "value " << values[n] << ", scale " << writing.scale);
    const Outcome fast = outcomeOf(write);
    GeneralPathOnly general;
    ASSERT_EQ(fast, outcomeOf(write));
  }
}

}  // namespace
