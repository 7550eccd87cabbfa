// Intervals as text: reading, writing, padding, and the round trip between them.

#include <bsutils/dataconv.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <functional>
#include <iterator>
#include <limits>
#include <random>
#include <string>
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
      {u"P1M", interval(0, 1, 0), false},
      {u"P1H", interval(0, 0, kHour), false},
      {u"PT1HT2H", interval(0, 0, 3 * kHour), false},
      {u"P", interval(0, 0, 0), false},
      {u"PT", interval(0, 0, 0), false},
      {u"-PT0S", interval(0, 0, 0, 1), false},
      {u"PT1.05S", interval(0, 0, 1'050'000), false},
      {u"PT0.000001S", interval(0, 0, 1), false},
      {u"PT0.1234567S", interval(0, 0, 123'456), true},
      {u"PT0.999999999S", interval(0, 0, 999'999), true},
      {u"P99999999D", interval(0, 0, 99'999'999 * kDay), false},
      {u"PT2147483647H", interval(0, 0, 2'147'483'647 * kHour), false},
      {u"P2147483647Y2147483647M", interval(2'147'483'647, 2'147'483'647, 0), false},
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
  DataCnv cnv;
  cnv.StrToInterval(u"PT1S", -1);
  const auto traces = sink.ofKind(ZanLog::Kind::debugTrace);
  ASSERT_EQ(traces.size(), 1u);
  EXPECT_EQ(traces[0].function, kRead);
  EXPECT_EQ(traces[0].text, "source");
  EXPECT_EQ(traces[0].inserts, std::vector<std::string>{"PT1S"});
}

TEST(DataCnvStrToInterval, RefusesTextThatIsNotAStorableInterval) {
  struct Case {
    const char16_t* text;
    std::int32_t length;
    Code code;
    std::vector<std::string> inserts;
  };
  const Case cases[] = {
      {u"P1Y2M3DT4H5M6.5S", -1, kCombination, {}},
      {u"P2147483648D", -1, kRange, {}},
      {u"PT0.1234567890S", -1, kRange, {}},  // the fraction's leading 1 counts
      {u"P100000000D", -1, kTooManyDays, {}},
      {u"PT2147483647HT2147483647H", -1, kTooManyDays, {}},  // beyond 64 bits of microseconds
      {u"P1D2D", -1, kInvalid, {"interval", "P1D2D"}},
      {u"PT1S1H", -1, kInvalid, {"interval", "PT1S1H"}},
      {u"P1M1Y", -1, kInvalid, {"interval", "P1M1Y"}},
      {u"PT1.5M", -1, kInvalid, {"interval", "PT1.5M"}},
      {u"P1T", -1, kInvalid, {"interval", "P1T"}},
      {u"P12", -1, kInvalid, {"interval", "P12"}},
      {u"X1D", -1, kInvalid, {"interval", "X1D"}},
      {u"p1d", -1, kInvalid, {"interval", "p1d"}},
      {u"-", -1, kInvalid, {"interval", "-"}},
      {u"", -1, kInvalid, {"interval", ""}},
      {nullptr, 1, kInternal, {"Null input pointer"}},
      {u"P1D", -2, kInternal, {"Invalid input length: ", "-2"}},
  };
  DataCnv cnv;
  for (const Case& c : cases) {
    SCOPED_TRACE(c.text == nullptr ? "(null)" : utf8(c.text));
    expectConversionFailure([&] { cnv.StrToInterval(c.text, c.length); }, c.code, kRead, c.inserts);
  }
}

TEST(DataCnvStrFromInterval, WritesTheShortestTextInEveryForm) {
  // Texts by hand: the quotient of each unit in turn.
  struct Case {
    PWFInterval value;
    const char16_t* text;
  };
  const Case cases[] = {
      {interval(0, 0, 0), u"PT0S"},
      {interval(0, 0, 0, 1), u"-PT0S"},
      {interval(0, 0, 90'061'500'000), u"P1DT1H1M1.5S"},
      {interval(0, 0, 500'000), u"PT0.5S"},
      {interval(0, 0, 120), u"PT0.00012S"},
      {interval(0, 0, kMinute + 1), u"PT1M0.000001S"},
      {interval(0, 0, kDay), u"P1D"},
      {interval(0, 0, 2 * kHour), u"PT2H"},
      {interval(0, 1, 0, 1), u"-P1M"},
      {interval(1, 2, 0), u"P1Y2M"},
      {interval(0, 0, std::numeric_limits<std::int64_t>::max()), u"P106751991DT4H54.775807S"},
  };
  DataCnv cnv;
  for (const Case& c : cases) {
    SCOPED_TRACE(utf8(c.text));
    EXPECT_EQ(cnv.StrFromInterval(c.value).getPWFStringValue().toUtf8(), utf8(c.text));
    ZanStringBase text;
    std::int32_t length = 0;
    cnv.StrFromInterval(c.value, text, length, false, DataCnv::eLeftJustified, u' ', true);
    EXPECT_EQ(text.toUtf8(), utf8(c.text));
    EXPECT_EQ(length, text.length());
    char16_t buffer[32] = {};
    std::int32_t capacity = text.length();
    cnv.StrFromInterval(c.value, buffer, capacity, false, DataCnv::eLeftJustified, u' ', true);
    EXPECT_EQ(utf8(buffer), utf8(c.text));
    EXPECT_EQ(capacity, text.length());
  }
}

TEST(DataCnvStrFromInterval, PadsOutToTheFieldLength) {
  struct Case {
    std::int32_t ccsid;
    DataCnv::EJustification justification;
    char16_t pad;
    bool padIsUnicode;
    std::int32_t fieldLength;
    const char16_t* text;
  };
  // "PT1H" with the pad characters on the side away from the justification.
  const Case cases[] = {
      {1200, DataCnv::eLeftJustified, u'*', true, 7, u"PT1H***"},
      {1200, DataCnv::eRightJustified, u'*', true, 7, u"***PT1H"},
      {37, DataCnv::eRightJustified, 0x40, false, 6, u"  PT1H"},  // 0x40 is " " in code page 37
      {1200, DataCnv::eLeftJustified, u'*', true, 2, u"PT1H"},    // longer text is not cut
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(utf8(c.text));
    DataCnv cnv(c.ccsid, BigEndian);
    ZanStringBase text;
    std::int32_t length = c.fieldLength;
    cnv.StrFromInterval(interval(0, 0, kHour), text, length, true, c.justification, c.pad,
                        c.padIsUnicode);
    EXPECT_EQ(text.toUtf8(), utf8(c.text));
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
    char16_t buffer[32];
    std::fill(std::begin(buffer), std::end(buffer), u'#');
    std::int32_t capacity = c.capacity;
    expectConversionFailure(
        [&] {
          cnv.StrFromInterval(c.value, c.capacity == 0 ? nullptr : buffer, capacity, false,
                              DataCnv::eLeftJustified, u' ', true);
        },
        c.code, c.function, c.inserts);
    EXPECT_EQ(capacity, c.capacity);
    EXPECT_EQ(std::count(std::begin(buffer), std::end(buffer), u'#'), 32);
  }
}

TEST(DataCnvAppendIntervalField, AppendsDigitsAndFractions) {
  struct Case {
    std::int32_t value;
    bool isFraction;
    const char* text;
  };
  const Case cases[] = {
      {0, false, "0"},      {2147483647, false, "2147483647"}, {500000, true, "5"},
      {120, true, "00012"}, {123456, true, "123456"},          {1, true, "000001"},
      {0, true, "0"},
  };
  DataCnv cnv;
  for (const Case& c : cases) {
    SCOPED_TRACE(c.text);
    ZanStringBase out(u"P");
    cnv.AppendIntervalField(c.value, out, c.isFraction);
    EXPECT_EQ(out.toUtf8(), std::string("P") + c.text);
  }
  // A negative field is refused through the writer, below; a fraction has an upper bound too.
  ZanStringBase out;
  expectConversionFailure([&] { cnv.AppendIntervalField(1'000'000, out, true); }, kBounds, kAppend,
                          {"interval", "1000000"});
  EXPECT_TRUE(out.isEmpty());
}

void expectRoundTrip(DataCnv& cnv, const PWFInterval& value) {
  const ZanStringBase text = cnv.StrFromInterval(value).getPWFStringValue();
  SCOPED_TRACE(text.toUtf8());
  EXPECT_EQ(show(cnv.StrToInterval(text.data(), text.length())), show(value));
}

TEST(DataCnvInterval, WrittenTextReadsBackToTheSameInterval) {
  // The extremes of what the reader can store, and the parts each alone.
  const PWFInterval table[] = {
      interval(0, 0, 0),
      interval(0, 0, 0, 1),
      interval(2'147'483'647, 2'147'483'647, 0, 1),
      interval(0, 11, 0),
      interval(0, 0, 100'000'000 * kDay - 1),
      interval(0, 0, 1, 1),
      interval(0, 0, 59 * kSecond + 999'999),
      interval(0, 0, 23 * kHour + 59 * kMinute),
  };
  DataCnv cnv;
  for (const PWFInterval& value : table) expectRoundTrip(cnv, value);

  // Each part is zero half the time, so every combination of present designators occurs.
  std::mt19937_64 random(20240611);
  const auto part = [&](std::int64_t limit) {
    return random() % 2 == 0 ? 0 : static_cast<std::int64_t>(random() % limit);
  };
  for (int i = 0; i < 4000; ++i) {
    const auto negative = static_cast<std::int32_t>(random() % 2);
    if (random() % 2 == 0) {
      expectRoundTrip(cnv, interval(static_cast<std::int32_t>(part(1LL << 31)),
                                    static_cast<std::int32_t>(part(1LL << 31)), 0, negative));
    } else {
      expectRoundTrip(cnv, interval(0, 0,
                                    part(100'000'000) * kDay + part(24) * kHour +
                                        part(60) * kMinute + part(60) * kSecond + part(kSecond),
                                    negative));
    }
  }
}

}  // namespace
