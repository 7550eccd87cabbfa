// The zoned integer reader builds its value straight from the field's digits, where the other
// readers go through the digits' text. Read as text with no places and parsed back, the field must
// give the same value, and the same failure, over every 2-byte field and a seeded set of long
// ones, in every sign style and both code-page families.

#include <bsutils/dataconv.h>
#include <gtest/gtest.h>

#include <bit>
#include <cstdint>
#include <cstdlib>
#include <random>
#include <string>
#include <vector>

#include "support/outcome.h"

namespace {

struct Convention {
  std::int32_t ccsid;  // 37 EBCDIC, 819 ASCII
  DataCnv::ESign sign;
};

const Convention kConventions[] = {
    {37, DataCnv::eTrailingEmbeddedSign},
    {37, DataCnv::eLeadingSeparateSign},
    {819, DataCnv::eLeadingEmbeddedSign},
    {819, DataCnv::eTrailingSeparateSign},
    {37, DataCnv::eNoSign},
};

void expectSameOutcomes(const std::vector<unsigned char>& field, const Convention& convention) {
  DataCnv cnv(convention.ccsid);
  const auto size = static_cast<std::int32_t>(field.size());
  const Outcome direct = outcomeOf([&] {
    return cnv.ExtDecToInt64(field.data(), size, convention.sign, DataCnv::eRightJustified, u'0',
                             true, false, nullptr, nullptr);
  });
  const Outcome throughText = outcomeOf([&] {
    const PWFData text =
        cnv.ExtDecToDec(field.data(), size, 0, convention.sign, DataCnv::eRightJustified, u'0',
                        true, false, nullptr, nullptr);
    return std::stoll(text.getDecimalText().toUtf8());
  });
  ASSERT_EQ(direct, throughText);
}

TEST(ZonedFastPath, EveryTwoByteFieldReadsAsItsText) {
  for (const Convention& convention : kConventions) {
    SCOPED_TRACE(testing::Message()
                 << "ccsid " << convention.ccsid << ", sign " << convention.sign);
    for (std::uint32_t bytes = 0; bytes < 0x10000; bytes += kExhaustiveStep) {
      SCOPED_TRACE(bytes);
      expectSameOutcomes(
          {static_cast<unsigned char>(bytes >> 8), static_cast<unsigned char>(bytes)}, convention);
    }
  }
}

TEST(ZonedFastPath, LongFieldsReadAsTheirText) {
  // 15 to 18 digits, where the direct value's arithmetic is widest, and now and then a byte that
  // is no digit.
  std::mt19937 random(20261125);
  for (int n = 0; n < 4000; ++n) {
    const Convention& convention = kConventions[random() % std::size(kConventions)];
    const unsigned char zone = convention.ccsid == 37 ? 0xF0 : 0x30;
    std::vector<unsigned char> field(15 + random() % 4);
    for (auto& byte : field) {
      byte = static_cast<unsigned char>(zone | random() % 10);
      if (random() % 40 == 0) byte = static_cast<unsigned char>(random());
    }
    SCOPED_TRACE(n);
    expectSameOutcomes(field, convention);
  }
}

// The decimal reader builds its text on the stack for the usual scales; with debug trace on it
// goes through the text path alone. The double reader builds its value from the digits.
void expectSameDecimals(const std::vector<unsigned char>& field, const Convention& convention,
                        std::int32_t scale) {
  DataCnv cnv(convention.ccsid);
  const auto read = [&] {
    return cnv.ExtDecToDec(field.data(), static_cast<std::int32_t>(field.size()), scale,
                           convention.sign, DataCnv::eRightJustified, u'0', true, false, nullptr,
                           nullptr);
  };
  const Outcome fast = outcomeOf(read);
  // The double reader reads the field as the C library reads its decimal text, bit for bit.
  const auto bitsOf = [](double value) { return std::bit_cast<std::uint64_t>(value); };
  const Outcome asDouble = outcomeOf([&] {
    return bitsOf(cnv.ExtDecToDbl(field.data(), static_cast<std::int32_t>(field.size()), scale,
                                  convention.sign, DataCnv::eRightJustified, u'0', true, false,
                                  nullptr, nullptr));
  });
  const Outcome viaText = outcomeOf(
      [&] { return bitsOf(std::strtod(read().getDecimalText().toUtf8().c_str(), nullptr)); });
  ASSERT_EQ(asDouble, viaText);
  GeneralPathOnly general;
  ASSERT_EQ(fast, outcomeOf(read));
}

TEST(ZonedFastPath, DecimalsReadAsTheGeneralPathReadsThem) {
  // Every 2-byte field with two places; a sample of them at the other scales, inside and outside
  // the fast path's.
  const std::int32_t scales[] = {0, 1, 2, 3, 40, 41, -2};
  for (const Convention& convention : kConventions) {
    for (const std::int32_t scale : scales) {
      SCOPED_TRACE(testing::Message() << "ccsid " << convention.ccsid << ", sign "
                                      << convention.sign << ", scale " << scale);
      for (std::uint32_t bytes = 0; bytes < 0x10000;
           bytes += scale == 2 ? kExhaustiveStep : 31 * kExhaustiveStep) {
        SCOPED_TRACE(bytes);
        expectSameDecimals(
            {static_cast<unsigned char>(bytes >> 8), static_cast<unsigned char>(bytes)}, convention,
            scale);
      }
    }
  }
  std::mt19937 random(20261126);
  for (int n = 0; n < 3000; ++n) {
    const Convention& convention = kConventions[random() % std::size(kConventions)];
    const unsigned char zone = convention.ccsid == 37 ? 0xF0 : 0x30;
    std::vector<unsigned char> field(1 + random() % 70);
    for (auto& byte : field)
      byte = static_cast<unsigned char>(zone | (random() % 3 ? 0 : random() % 10));
    if (random() % 20 == 0) field[random() % field.size()] = static_cast<unsigned char>(random());
    SCOPED_TRACE(n);
    expectSameDecimals(field, convention, scales[random() % std::size(scales)]);
  }
}

}  // namespace
