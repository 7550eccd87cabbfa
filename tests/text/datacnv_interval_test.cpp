// Intervals as text: reading, writing, padding, and the round trip between them.

#include <bsutils/dataconv.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <random>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include "support/capturing_sink.h"
#include "support/expect_failure.h"

namespace {

constexpr std::int64_t kSecond = 1'000'000;
constexpr std::int64_t kMinute = 60 * kSecond;
constexpr std::int64_t kHour = 60 * kMinute;
constexpr std::int64_t kDay = 24 * kHour;
constexpr const char* kRead = "DataCnv::StrToInterval";
constexpr const char* kWrite = "DataCnv::StrFromInterval";
constexpr const char* kAppend = "DataCnv::AppendIntervalField";

PWFInterval interval(std::int32_t years, std::int32_t months, std::int64_t micros,
                     std::int32_t negative = 0) {
  return PWFInterval{years, months, micros, negative};
}

std::string show(const PWFInterval& i) {
  return std::to_string(i.years) + "Y " + std::to_string(i.months) + "M " +
         std::to_string(i.microseconds) + "us" + (i.negative != 0 ? " negative" : "");
}

std::string utf8(const char16_t* text) { return ZanStringBase(text).toUtf8(); }

const Code kCombination{"CP_DURATION_COMBINATION_ERROR", 0xC00015AA,
                        "CPI Years/months along with days/hours/minutes/seconds"};
const Code kRange{"CP_DURATION_RANGE_ERROR", 0xC00015AB, "CPI Field value > 32BIT_MAX"};
const Code kTooManyDays{"CP_DURATION_TOO_MANY_DAYS", 0xC00015AD,
                        "CPI Cannot store more than ~100 million days in PWFInterval"};

TEST(DataCnvStrToInterval, ReadsEachDesignatorIntoItsField) {
  // Microseconds by hand: each field times its unit, fractions cut to six digits.
  struct Case {
    const char16_t* text;
    PWFInterval expected;
    bool warns;                // a fraction finer than microseconds
    std::int32_t length = -1;  // -1: up to the NUL
  };
  const Case cases[] = {
      {u"P1Y2M", interval(1, 2, 0), false},
      {u"P3DT4H5M6.5S", interval(0, 0, 3 * kDay + 4 * kHour + 5 * kMinute + 6'500'000), false},
      {u"-PT1M", interval(0, 0, kMinute, 1), false},
      {u"P1H", interval(0, 0, kHour), false},
      {u"PT1HT2H", interval(0, 0, 3 * kHour), false},
      {u"P", interval(0, 0, 0), false},
      {u"PT0.000001S", interval(0, 0, 1), false},
      {u"PT0.1234567S", interval(0, 0, 123'456), true},
      {u"PT0.999999999S", interval(0, 0, 999'999), true},  // cut, not rounded
      {u"P99999999D", interval(0, 0, 99'999'999 * kDay), false},
      {u"PT2147483647H", interval(0, 0, 2'147'483'647 * kHour), false},
      {u"P\u0661\u0662D", interval(0, 0, 12 * kDay), false},  // Arabic-Indic digits
      {u"P1DT2H", interval(0, 0, kDay), false, 3},
      {u"P1D\0X", interval(0, 0, kDay), false, 5},  // a NUL ends the text early
  };
  DataCnv cnv;
  for (const Case& c : cases) {
    SCOPED_TRACE(utf8(c.text));
    CapturingSink sink(0);
    EXPECT_EQ(show(cnv.StrToInterval(c.text, c.length)), show(c.expected));
    const auto warnings = sink.ofKind(ZanLog::Kind::warning);
    ASSERT_EQ(warnings.size(), c.warns ? 1u : 0u);
    if (c.warns) {
      EXPECT_EQ(static_cast<std::uint32_t>(warnings[0].messageNumber), 0xC00015ACu);
      EXPECT_EQ(warnings[0].text, "CPI Seconds precision finer than microseconds");
      EXPECT_EQ(warnings[0].function, kRead);
      EXPECT_EQ(warnings[0].logSource, cnv.logName().toUtf8());
    }
  }
}

TEST(DataCnvStrToInterval, DebugTraceShowsTheSource) {
  CapturingSink sink(4);
  DataCnv().StrToInterval(u"PT1S", -1);
  const auto traces = sink.ofKind(ZanLog::Kind::debugTrace);
  ASSERT_EQ(traces.size(), 1u);
  EXPECT_EQ(traces[0].function, kRead);
  EXPECT_EQ(traces[0].text, "source");
  EXPECT_EQ(traces[0].inserts, std::vector<std::string>{"PT1S"});
}

TEST(DataCnvStrToInterval, RefusesTextThatIsNotAStorableInterval) {
  const std::pair<const char16_t*, Code> limits[] = {
      {u"P1Y2M3DT4H5M6.5S", kCombination},
      {u"P2147483648D", kRange},
      {u"PT0.1234567890S", kRange},  // the fraction's leading 1 counts
      {u"P100000000D", kTooManyDays},
      {u"PT2147483647HT2147483647H", kTooManyDays},  // beyond 64 bits of microseconds
  };
  DataCnv cnv;
  for (const auto& [text, code] : limits) {
    SCOPED_TRACE(utf8(text));
    expectConversionFailure([&] { cnv.StrToInterval(text, -1); }, code, kRead, {});
  }
  // Designators out of place or missing, and no leading "P".
  for (const char16_t* text :
       {u"P1D2D", u"PT1S1H", u"P1M1Y", u"PT1.5M", u"P1T", u"P12", u"X1D", u"-"}) {
    SCOPED_TRACE(utf8(text));
    expectConversionFailure([&] { cnv.StrToInterval(text, -1); }, kInvalid, kRead,
                            {"interval", utf8(text)});
  }
  expectConversionFailure([&] { cnv.StrToInterval(nullptr, 1); }, kInternal, kRead,
                          {"Null input pointer"});
  expectConversionFailure([&] { cnv.StrToInterval(u"P1D", -2); }, kInternal, kRead,
                          {"Invalid input length: ", "-2"});
}

TEST(DataCnvStrFromInterval, WritesTheShortestTextInEveryForm) {
  // Texts by hand: the quotient of each unit in turn.
  const std::pair<PWFInterval, const char16_t*> cases[] = {
      {interval(0, 0, 0), u"PT0S"},
      {interval(0, 0, 0, 1), u"-PT0S"},
      {interval(0, 0, 90'061'500'000), u"P1DT1H1M1.5S"},
      {interval(0, 0, kMinute + 1), u"PT1M0.000001S"},
      {interval(0, 0, kDay), u"P1D"},
      {interval(0, 0, 2 * kHour), u"PT2H"},
      {interval(1, 2, 0), u"P1Y2M"},
      {interval(0, 0, std::numeric_limits<std::int64_t>::max()), u"P106751991DT4H54.775807S"},
  };
  DataCnv cnv;
  for (const auto& [value, expected] : cases) {
    SCOPED_TRACE(utf8(expected));
    // The value form goes through the text form; a buffer of just the length takes it.
    EXPECT_EQ(cnv.StrFromInterval(value).getPWFStringValue().toUtf8(), utf8(expected));
    char16_t buffer[32] = {};
    std::int32_t capacity = static_cast<std::int32_t>(std::char_traits<char16_t>::length(expected));
    cnv.StrFromInterval(value, buffer, capacity, false, DataCnv::eLeftJustified, u' ', true);
    EXPECT_EQ(utf8(buffer), utf8(expected));
    EXPECT_EQ(capacity, std::char_traits<char16_t>::length(expected));
  }
}

TEST(DataCnvStrFromInterval, PadsOutToTheFieldLength) {
  // "PT1H" padded on the side away from the justification; 0x40 is " " in code page 37.
  const std::tuple<std::int32_t, DataCnv::EJustification, char16_t, std::int32_t, const char16_t*>
      cases[] = {
          {1200, DataCnv::eLeftJustified, u'*', 7, u"PT1H***"},
          {1200, DataCnv::eRightJustified, u'*', 7, u"***PT1H"},
          {37, DataCnv::eRightJustified, 0x40, 6, u"  PT1H"},
          {1200, DataCnv::eLeftJustified, u'*', 2, u"PT1H"},  // longer text is not cut
      };
  for (const auto& [ccsid, justification, pad, fieldLength, expected] : cases) {
    SCOPED_TRACE(utf8(expected));
    ZanStringBase text;
    std::int32_t length = fieldLength;
    DataCnv(ccsid, BigEndian)
        .StrFromInterval(interval(0, 0, kHour), text, length, true, justification, pad,
                         ccsid != 37);
    EXPECT_EQ(text.toUtf8(), utf8(expected));
    EXPECT_EQ(length, text.length());
  }
}

TEST(DataCnvStrFromInterval, RefusalsLeaveTheCallersBufferAlone) {
  struct Case {
    PWFInterval value;
    std::int32_t capacity;  // 0: no buffer at all
    Code code;
    const char* function;
    std::vector<std::string> inserts;
  };
  const std::vector<std::string> negative{"interval", "-1"};
  const Case cases[] = {
      {interval(0, 0, kHour), 3, kBounds, kWrite, {"interval", "string (", "4", " characters)"}},
      {interval(-1, 0, 0), 32, kBounds, kAppend, negative},
      {interval(0, 0, -1), 32, kBounds, kAppend, negative},
      {interval(0, 0, 0), 0, kInternal, kWrite, {"Null output buffer pointer"}},
  };
  DataCnv cnv;
  for (const Case& c : cases) {
    SCOPED_TRACE(show(c.value));
    std::u16string buffer(32, u'#');
    std::int32_t capacity = c.capacity;
    expectConversionFailure(
        [&] {
          cnv.StrFromInterval(c.value, c.capacity == 0 ? nullptr : buffer.data(), capacity, false,
                              DataCnv::eLeftJustified, u' ', true);
        },
        c.code, c.function, c.inserts);
    EXPECT_EQ(capacity, c.capacity);
    EXPECT_EQ(buffer, std::u16string(32, u'#'));
  }
}

TEST(DataCnvAppendIntervalField, AppendsDigitsAndFractions) {
  const std::tuple<std::int32_t, bool, const char*> cases[] = {
      {2147483647, false, "2147483647"},
      {500000, true, "5"},
      {120, true, "00012"},
      {1, true, "000001"},
      {0, true, "0"},
  };
  DataCnv cnv;
  for (const auto& [value, isFraction, text] : cases) {
    SCOPED_TRACE(text);
    ZanStringBase out(u"P");
    cnv.AppendIntervalField(value, out, isFraction);
    EXPECT_EQ(out.toUtf8(), std::string("P") + text);
  }
  // A negative field is refused through the writer, above; a fraction has an upper bound too.
  ZanStringBase out;
  expectConversionFailure([&] { cnv.AppendIntervalField(1'000'000, out, true); }, kBounds, kAppend,
                          {"interval", "1000000"});
  EXPECT_TRUE(out.isEmpty());
}

TEST(DataCnvInterval, WrittenTextReadsBackToTheSameInterval) {
  DataCnv cnv;
  const auto expectRoundTrip = [&](const PWFInterval& value) {
    const ZanStringBase text = cnv.StrFromInterval(value).getPWFStringValue();
    SCOPED_TRACE(text.toUtf8());
    EXPECT_EQ(show(cnv.StrToInterval(text.data(), text.length())), show(value));
  };
  // The extremes of what the reader can store.
  expectRoundTrip(interval(2'147'483'647, 2'147'483'647, 0, 1));
  expectRoundTrip(interval(0, 0, 100'000'000 * kDay - 1));

  // Each part is zero half the time, so every combination of present designators occurs.
  std::mt19937_64 random(20240611);
  const auto part = [&](std::int64_t limit) {
    return random() % 2 == 0 ? 0 : static_cast<std::int64_t>(random() % limit);
  };
  for (int i = 0; i < 4000; ++i) {
    const auto negative = static_cast<std::int32_t>(random() % 2);
    const auto months = static_cast<std::int32_t>(part(1LL << 31));
    expectRoundTrip(random() % 2 == 0
                        ? interval(static_cast<std::int32_t>(part(1LL << 31)), months, 0, negative)
                        : interval(0, 0,
                                   part(100'000'000) * kDay + part(24) * kHour +
                                       part(60) * kMinute + part(60) * kSecond + part(kSecond),
                                   negative));
  }
}

}  // namespace
