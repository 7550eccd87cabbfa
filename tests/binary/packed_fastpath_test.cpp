// The packed integer readers read valid fields straight from their bytes and leave everything else
// to the general path, which also runs whenever debug trace is on. With debug trace on, then, the
// general path answers alone; these tests hold the two to the same answer, value or failure, over
// every 2-byte field and a seeded set of long ones.

#include <bsutils/dataconv.h>
#include <gtest/gtest.h>
#include <zan/zanexception.h>
#include <zan/zanlog.h>

#include <cstdint>
#include <functional>
#include <random>
#include <string>
#include <vector>

#include "support/outcome.h"

namespace {

// Debug trace on, its records dropped: the readers take their general path.
class GeneralPathOnly {
 public:
  GeneralPathOnly() : filter_(ZanLog::iEffectiveLogFilter.load()) {
    sink_ = ZanLog::setSink([](const ZanLog::Record&) {});
    ZanLog::iEffectiveLogFilter = ZanLog::kDebugLevel;
  }
  ~GeneralPathOnly() {
    ZanLog::iEffectiveLogFilter = filter_;
    ZanLog::setSink(sink_);
  }

 private:
  int filter_;
  ZanLog::Sink sink_;
};

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
  const auto read32 = [&]() -> std::int64_t {
    return cnv.PckdDecToInt32(field.data(), size, reading.endian, reading.scale, reading.sign);
  };
  const Outcome fast64 = outcomeOf(read64);
  const Outcome fast32 = outcomeOf(read32);
  GeneralPathOnly general;
  ASSERT_EQ(fast64, outcomeOf(read64));
  ASSERT_EQ(fast32, outcomeOf(read32));
}

TEST(PackedFastPath, EveryTwoByteFieldReadsAsTheGeneralPathReadsIt) {
  // Each byte order and sign convention once; the scales are the long fields' to vary.
  const Reading readings[] = {kReadings[0], kReadings[4]};
  for (const Reading& reading : readings) {
    SCOPED_TRACE(testing::Message() << "endian " << reading.endian << ", scale " << reading.scale
                                    << ", sign " << reading.sign);
    for (std::uint32_t bytes = 0; bytes < 0x10000; ++bytes) {
      SCOPED_TRACE(bytes);
      expectSameOutcomes(
          {static_cast<unsigned char>(bytes >> 8), static_cast<unsigned char>(bytes)}, reading);
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

}  // namespace
