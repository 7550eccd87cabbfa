// The binary integer reader's decimal text is built on the stack for the usual scales; with debug
// trace on, the general text path answers alone. The two must agree on every 1- and 2-byte field
// and on a seeded set of 4- and 8-byte ones, the extremes among them.

#include <bsutils/dataconv.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <random>
#include <vector>

#include "support/outcome.h"

namespace {

void expectSameDecimals(const std::vector<unsigned char>& field, EEndian endian,
                        std::int32_t scale) {
  DataCnv cnv(37, endian);
  const auto read = [&] {
    return cnv.IntToDec(field.data(), static_cast<std::int32_t>(field.size()), scale);
  };
  const Outcome fast = outcomeOf(read);
  GeneralPathOnly general;
  ASSERT_EQ(fast, outcomeOf(read));
}

TEST(BinIntFastPath, EveryShortFieldReadsAsTheGeneralPathReadsIt) {
  const std::int32_t scales[] = {0, 1, 4, 40};
  for (const std::int32_t scale : scales) {
    SCOPED_TRACE(scale);
    for (std::uint32_t byte = 0; byte < 0x100; ++byte) {
      expectSameDecimals({static_cast<unsigned char>(byte)}, BigEndian, scale);
    }
    for (std::uint32_t bytes = 0; bytes < 0x10000; bytes += kExhaustiveStep) {
      SCOPED_TRACE(bytes);
      expectSameDecimals(
          {static_cast<unsigned char>(bytes >> 8), static_cast<unsigned char>(bytes)}, LittleEndian,
          scale);
    }
  }
}

TEST(BinIntFastPath, LongFieldsReadAsTheGeneralPathReadsThem) {
  std::mt19937_64 random(20261125);
  const std::int32_t scales[] = {0, 2, 9, 19, 20, 25, 40, 41, 300};
  for (int n = 0; n < 4000; ++n) {
    std::vector<unsigned char> field(random() % 2 ? 4 : 8);
    const std::uint64_t bits =
        n < 4 ? (n % 2 ? ~0ULL >> 1 : 1ULL << 63) >> (n / 2 * 32) : random() >> random() % 64;
    for (std::size_t i = 0; i < field.size(); ++i) {
      field[i] = static_cast<unsigned char>(bits >> (8 * (field.size() - 1 - i)));
    }
    SCOPED_TRACE(n);
    expectSameDecimals(field, random() % 2 ? BigEndian : LittleEndian,
                       scales[random() % std::size(scales)]);
  }
}

}  // namespace
