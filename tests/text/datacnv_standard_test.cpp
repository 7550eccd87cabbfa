// The standard text form of values: one text per logical type, read back to the same value.

#include <bsutils/dataconv.h>
#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <limits>
#include <random>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include "support/expect_failure.h"

namespace {

PWFDateTime dateTime(std::int32_t era, std::int32_t year, std::int32_t month, std::int32_t day,
                     std::int32_t hour, std::int32_t minute, std::int32_t second,
                     std::int32_t subsecond, std::int32_t scale, std::int32_t timezone) {
  return PWFDateTime{era, year, month, day, hour, minute, second, subsecond, scale, timezone, 0};
}
constexpr std::int32_t kNotSet = PWFDateTime::kNotSet;

TEST(DataCnvStandardText, WritesEachTypeAndReadsItBack) {
  // Expected texts: XML Schema's canonical double, ISO 8601 extended date-times, upper-case hex.
  const unsigned char bytes[] = {0x0A, 0xFF, 0x00};
  const std::pair<PWFData, const char*> cases[] = {
      {PWFData(ZanStringBase(u"a b\u00E9")), "a b\xC3\xA9"},
      {PWFData(std::int64_t{-9007199254740993}), "-9007199254740993"},
      {PWFData(150.0), "1.5E2"},
      {PWFData(0.1), "1.0E-1"},
      {PWFData(0.0), "0.0E0"},
      {PWFData(-std::numeric_limits<double>::infinity()), "-INF"},
      {PWFData(u"-007.50", eDecimal), "-7.5"},
      {PWFData(bytes, 3, eBinary, eCopy), "0AFF00"},
      {PWFData(true), "true"},
      {PWFData(PWFInterval{0, 0, 90061500000, 1}), "-P1DT1H1M1.5S"},
      {PWFData(dateTime(1, 2004, 2, 29, 13, 5, 9, 123, 3, 3600000)),
       "2004-02-29T13:05:09.123+01:00"},
      {PWFData(dateTime(1, 2004, 2, 29, kNotSet, kNotSet, kNotSet, kNotSet, kNotSet, 0)),
       "2004-02-29Z"},
      {PWFData(dateTime(kNotSet, kNotSet, kNotSet, kNotSet, 23, 59, 60, 0, 0, -19800000)),
       "23:59:60-05:30"},
      {PWFData(dateTime(0, 2, 1, 1, kNotSet, kNotSet, kNotSet, kNotSet, kNotSet, kNotSet)),
       "-0001-01-01"},
  };
  DataCnv cnv;
  for (const auto& [value, expected] : cases) {
    SCOPED_TRACE(expected);
    const PWFData text = cnv.StandardStrFromData(value);
    ASSERT_EQ(text.getDataLogicalType(), eString);
    const ZanStringBase& units = text.getPWFStringValue();
    EXPECT_EQ(units.toUtf8(), expected);
    EXPECT_TRUE(cnv.StandardStrToData(units.data(), units.length(), value.getDataLogicalType()) ==
                value);
  }
  // NaN reads back as NaN, though it equals nothing.
  const PWFData nan = cnv.StandardStrFromData(PWFData(std::numeric_limits<double>::quiet_NaN()));
  EXPECT_EQ(nan.getPWFStringValue().toUtf8(), "NaN");
  EXPECT_TRUE(std::isnan(cnv.StandardStrToData(u"NaN", 3, eFloat).getDoubleValue()));
}

TEST(DataCnvStandardText, RandomValuesOfEveryTypeReadBack) {
  std::mt19937_64 random(20261121);  // fixed, so that a failure can be replayed
  const auto below = [&](std::uint64_t limit) {
    return static_cast<std::int32_t>(random() % limit);
  };
  DataCnv cnv;
  for (int i = 0; i < 500; ++i) {
    const double bits = std::bit_cast<double>(random());
    unsigned char bytes[8];
    for (unsigned char& byte : bytes) byte = static_cast<unsigned char>(random());
    std::string decimal = std::to_string(random() % 1000000000000ULL);
    decimal.insert(decimal.size() - std::min<std::size_t>(decimal.size(), below(8)), ".");
    const std::int32_t zone = below(2) ? kNotSet : (below(57) - 28) * 15 * 60000;
    const PWFData values[] = {
        PWFData(static_cast<std::int64_t>(random())),
        PWFData(std::isnan(bits) ? 0.0 : bits),
        PWFData(ZanStringBase::fromUtf8((below(2) ? "-" : "") + decimal).terminatedData(),
                eDecimal),
        PWFData(bytes, below(9), eBinary, eCopy),
        PWFData(below(2) == 1),
        PWFData(
            PWFInterval{0, 0, static_cast<std::int64_t>(random() % 8640000000000000ULL), below(2)}),
        PWFData(PWFInterval{below(10000), below(12), 0, below(2)}),
        PWFData(dateTime(1, 1 + below(9999), 1 + below(12), 1 + below(28), below(24), below(60),
                         below(60), below(1000), 3, zone)),
    };
    for (const PWFData& value : values) {
      const PWFData standard = cnv.StandardStrFromData(value);
      const ZanStringBase& text = standard.getPWFStringValue();
      ASSERT_TRUE(cnv.StandardStrToData(text.data(), text.length(), value.getDataLogicalType()) ==
                  value)
          << text.toUtf8();
    }
  }
}

TEST(DataCnvStandardText, ReadsTheOtherSpellingsOfEachType) {
  DataCnv cnv;
  EXPECT_EQ(cnv.StandardStrToData(u"0aff", -1, eBinary),
            cnv.StandardStrToData(u"0AFF", -1, eBinary));
  EXPECT_EQ(cnv.StandardStrToData(u"1", -1, eBoolean), PWFData(true));
  EXPECT_EQ(cnv.StandardStrToData(u"0", -1, eBoolean), PWFData(false));
  EXPECT_EQ(cnv.StandardStrToData(u"150", -1, eFloat), PWFData(150.0));
  EXPECT_EQ(cnv.StandardStrToData(u"+INF", -1, eFloat),
            PWFData(std::numeric_limits<double>::infinity()));
  EXPECT_EQ(cnv.StandardStrToData(u"00012.50", -1, eDecimal), PWFData(u"12.5", eDecimal));
}

TEST(DataCnvStandardText, ReadFailuresBecomeInvalidLogicalString) {
  // The inserts are the inner failure's trace text and inserts.
  const std::string invalid = "CPI Converter Input Data Invalid";
  const std::tuple<const char16_t*, ELogicalType, std::vector<std::string>> failures[] = {
      {u"12a", eInteger, {invalid, "string", "12a"}},
      {u"yes", eBoolean, {invalid, "boolean", "yes"}},
      {u"1,5", eDecimal, {invalid, "decimal", "1,5"}},
      {u"2004-13-01", eDateTime, {invalid, "date-time", "2004-13-01"}},
      {u"x", eNothing, {"CPI Internal Error", "Should not call this method without a valid type"}},
  };
  DataCnv cnv;
  for (const auto& [text, type, inserts] : failures) {
    SCOPED_TRACE(ZanStringBase(text).toUtf8());
    CapturingSink sink(3);
    try {
      cnv.StandardStrToData(text, -1, type);
      ADD_FAILURE() << "no exception";
    } catch (const ZanConversionException& failure) {
      EXPECT_EQ(static_cast<std::uint32_t>(failure.messageNumber()), 0xC0001593u);
      EXPECT_EQ(failure.traceText(),
                "Exception caught trying to convert a logical string to a PWFData object");
      EXPECT_EQ(failure.function(), "DataCnv::StandardStrToData");
      EXPECT_EQ(failure.inserts(), inserts);
      // The inner raise and the outer one are both traced.
      const auto traces = sink.ofKind(ZanLog::Kind::trace);
      ASSERT_EQ(traces.size(), 2u);
      EXPECT_EQ(traces.back().inserts[2], "CP_INVALID_LOGICAL_STRING");
    }
  }
}

TEST(DataCnvStandardText, WriteRefusesNullsAndValuesWithoutAType) {
  DataCnv cnv;
  const auto refuses = [&](const PWFData& value, const Code& code, const char* insert) {
    expectConversionFailure([&] { cnv.StandardStrFromData(value); }, code,
                            "DataCnv::StandardStrFromData", {insert});
  };
  refuses(PWFData(eFloat), kInternal, "Should not call this method with null data");
  refuses(PWFData(), kInternal, "Should not call this method without a valid type");
  // A month and day with no year: no text form.
  refuses(PWFData(PWFDateTime{kNotSet, kNotSet, 1, 1, kNotSet, 0, 0, 0, 0, 0, 0}), kInvalid,
          "date-time");
}

}  // namespace
