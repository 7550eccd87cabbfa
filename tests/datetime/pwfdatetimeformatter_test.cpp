// The date-time formatter: its settings, text by ICU patterns and by "I" (a value's standard text),
// numbers since an epoch (against Python's zoneinfo), and records of binary fields. Other expected
// values are by hand or, where a row says so, ICU's own behaviour.

#include <bsutils/dataconv.h>
#include <bsutils/pwfdatetimeformatter.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <string_view>

#include "datetime/datetime_support.h"

namespace {

using namespace datetime_test;

TEST(DateTimeFormatterSettings, EachSettingShowsItsEffect) {
  for (const Settings& s : kSettings) {
    SCOPED_TRACE(s.name);
    PWFDateTimeFormatter formatter(s.strict, s.zone, s.window, s.locale, s.minimalDays);
    EXPECT_EQ(effects(formatter, kFormatter), s.effects);
  }
}

TEST(DateTimeFormatterText, PatternsReadTheirHalvesAndWriteThemBack) {
  // UTC, so that the formatter's offset at any instant is 0.
  PWFDateTimeFormatter utc, german(true, nullptr, 53, u"de_DE"), lenient(false);
  const PWFDateTime apr9 = date(2023, 4, 9);
  struct Row {
    const char* name;
    PWFDateTimeFormatter& formatter;
    const char16_t* pattern;
    const char16_t* text;
    PWFDateTime value;
    const char16_t* written = nullptr;  // by the same pattern; null: the text itself
  };
  const Row rows[] = {
      {"date", utc, u"yyyyMMdd", u"20230409", apr9},
      {"date and time", utc, u"dd.MM.yy HH:mm", u"09.04.23 13:05", at(apr9, timeOfDay(13, 5, 0))},
      {"names", utc, u"EEE, d MMM yyyy", u"Sun, 9 Apr 2023", apr9},
      {"leap day", utc, u"yyyy-MM-dd", u"2000-02-29", date(2000, 2, 29)},
      {"microseconds", utc, u"yyyy-MM-dd'T'HH:mm:ss.SSSSSS", u"2023-04-09T13:05:09.123456",
       at(apr9, timeOfDay(13, 5, 9, 123456, 6))},
      {"nanoseconds", utc, u"HH:mm:ss.SSSSSSSSS", u"13:05:09.123456789",
       timeOfDay(13, 5, 9, 123456789, 9)},
      {"a fraction's zeros", utc, u"HH:mm:ss.SSS", u"00:00:00.007", timeOfDay(0, 0, 0, 7, 3)},
      {"am/pm", utc, u"hh:mm a", u"01:05 PM", timeOfDay(13, 5, 0)},
      {"zone east", utc, u"yyyy-MM-dd HH:mm:ss Z", u"2023-04-09 13:05:09 +0530",
       at(apr9, timeOfDay(13, 5, 9), 19800000)},
      {"German", german, u"d. MMMM yyyy", u"9. April 2023", apr9},
      {"lenient Feb 30", lenient, u"yyyyMMdd", u"20230230", date(2023, 3, 2), u"20230302"},
      {"lenient minute 60", lenient, u"yyyy-MM-dd HH:mm", u"2023-04-09 23:60",
       at(date(2023, 4, 10), timeOfDay(0, 0, 0)), u"2023-04-10 00:00"},
      {"lenient trailing text", lenient, u"yyyyMMdd", u"20230409x", apr9, u"20230409"},
      // "I": ISO 8601 extended form, written from the halves that are set.
      {"I year", utc, u"I", u"2023", date(2023, 1, 1), u"2023-01-01"},
      {"I month", utc, u"I", u"2023-04", date(2023, 4, 1), u"2023-04-01"},
      {"I date", utc, u"I", u"2023-04-09", apr9},
      {"I minutes", utc, u"I", u"2023-04-09T13:05", at(apr9, timeOfDay(13, 5, 0)),
       u"2023-04-09T13:05:00"},
      {"I 1 digit", utc, u"I", u"2023-04-09T13:05:09.5", at(apr9, timeOfDay(13, 5, 9, 5, 1))},
      {"I 6 digits", utc, u"I", u"2023-04-09T13:05:09.000001", at(apr9, timeOfDay(13, 5, 9, 1, 6))},
      {"I 9 digits", utc, u"I", u"2023-04-09T13:05:09.123456789",
       at(apr9, timeOfDay(13, 5, 9, 123456789, 9))},
      {"I UTC", utc, u"I", u"2023-04-09T13:05:09Z", at(apr9, timeOfDay(13, 5, 9), 0)},
      {"I east", utc, u"I", u"2023-04-09T13:05:09.123+05:30",
       at(apr9, timeOfDay(13, 5, 9, 123, 3), 19800000)},
      {"I west", utc, u"I", u"2023-04-09T13:05:09-03:00", at(apr9, timeOfDay(13, 5, 9), -10800000)},
      {"I time alone", utc, u"I", u"13:05:09.5", timeOfDay(13, 5, 9, 5, 1)},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.name);
    const PWFDateTime value = row.formatter.parse(row.text, -1, row.pattern);
    expectRecord(value, row.value);
    const ZanStringBase written(row.written != nullptr ? row.written : row.text);
    EXPECT_EQ(row.formatter.format(value, row.pattern), written);
    if (std::u16string_view(row.pattern) == u"I") {
      // "I" writes the standard text of the value, which reads back to it.
      EXPECT_EQ(PWFData(value).getDebugString().getPWFStringValue(), written);
      EXPECT_TRUE(DataCnv().StandardStrToData(written.data(), written.length(), eDateTime) ==
                  PWFData(value));
    }
  }
  // Only `length` units are read, so what follows them is not trailing text.
  expectRecord(utc.parse(u"20230409xyz", 8, u"yyyyMMdd"), apr9);
  // A fraction is written to the pattern's digits; a lenient month 13 is next January.
  EXPECT_EQ(utc.format(timeOfDay(13, 5, 9, 5, 3), u"ss.SSSSSS"), ZanStringBase(u"09.005000"));
  EXPECT_EQ(lenient.format(date(2023, 13, 1), u"yyyyMMdd"), ZanStringBase(u"20240101"));
}

TEST(DateTimeFormatterEpoch, InstantsBothWaysAgainstZoneinfo) {
  for (const Instant& row : kInstants) {
    SCOPED_TRACE(row.name);
    PWFDateTimeFormatter formatter(true, row.zone);
    expectInstant(formatter, kFormatter, row);
  }
}

TEST(DateTimeFormatterBinary, RecordsBothWays) {
  // Fields are little-endian and signed; a field the data ends inside is read with zeros for its
  // missing bytes, and one past the end keeps its default.
  const PWFDateTime full = at(date(2023, 4, 9), timeOfDay(13, 5, 9, 123, 3));
  struct Row {
    const char* name;
    const char16_t* pattern;
    Bytes bytes;
    PWFDateTime value;
    bool read, write;
  };
  const Row rows[] = {
      {"2-byte fields", u"yyMMdd", {0xE7, 0x07, 0x04, 0x00, 0x09, 0x00}, full, true, true},
      {"1-byte fields", u"yMd", {0x17, 0x04, 0x09}, date(23, 4, 9), true, true},
      {"years since 1900", u"y+1900Md", {123, 4, 9}, full, true, true},
      {"a signed byte", u"y+1900Md", {0x9C, 0x0C, 0x1F}, date(1800, 12, 31), true, true},
      {"months from 0", u"yyM+1d", {0xE7, 0x07, 0x03, 0x09}, full, true, true},
      {"filler", u"XXyyMMdd", {0, 0, 0xE7, 0x07, 0x04, 0, 0x09, 0}, full, true, true},
      // A filler of a width no field has advances without writing: the bytes stay as they were.
      {"filler of 3", u"XXX", {0xEE, 0xEE, 0xEE}, full, false, true},
      {"ends in the month", u"yyyyMMdd", {0xE7, 0x07, 0, 0, 0x04}, date(2023, 4, 1), true, false},
      // "SS" is the milliseconds.
      {"a full record",
       u"yyMMddHHmmssSS",
       {0xE7, 7, 4, 0, 9, 0, 0x0D, 0, 5, 0, 9, 0, 0x7B, 0},
       full,
       true,
       true},
  };
  PWFDateTimeFormatter formatter;
  for (const Row& row : rows) {
    SCOPED_TRACE(row.name);
    const auto length = static_cast<std::int32_t>(row.bytes.size());
    if (row.read) {
      // The date, and the time when the pattern has one; the record holds no zone, and the
      // fraction's digits are not its own (a millisecond field).
      PWFDateTime value = normalized(formatter.parseBinary(row.bytes.data(), length, row.pattern));
      value.timezone = value.localTimeZone = 0;
      PWFDateTime expected = normalized(row.value);
      expected.timezone = 0;
      if (std::u16string_view(row.pattern).find(u'H') == std::u16string_view::npos) {
        expected = at(expected, value, 0);
      }
      expectRecord(value, expected);
    }
    if (row.write) {
      Bytes written(row.bytes.size(), 0xEE);
      formatter.formatBinary(row.value, written.data(), length, row.pattern);
      EXPECT_EQ(written, row.bytes);
    }
  }
}

TEST(DateTimeFormatterFailures, EachWithItsCodeAndInserts) {
  PWFDateTimeFormatter utc;
  Bytes data(8, 0);
  const PWFDateTime apr9 = date(2023, 4, 9);
  struct Row {
    const char* name;
    Failure failure;
    Inserts inserts;
    std::function<void()> operation;
  };
  const auto parse = [&utc](const char16_t* text, const char16_t* pattern) {
    return [&utc, text, pattern] { utc.parse(text, -1, pattern); };
  };
  const Row rows[] = {
      {"zone", kTimezone, {"Mars/Olympus"}, [] { PWFDateTimeFormatter(true, u"Mars/Olympus"); }},
      {"window 100", kWindow, {"100"}, [] { PWFDateTimeFormatter(true, nullptr, 100); }},
      {"window -1", kWindow, {"-1"}, [] { PWFDateTimeFormatter(true, nullptr, -1); }},
      {"min days 8",
       kArgument,
       {"Invalid minimal days in first week: ", "8"},
       [] { PWFDateTimeFormatter(true, nullptr, 53, nullptr, 8); }},
      {"Feb 30", kLeniency, {"20230230"}, parse(u"20230230", u"yyyyMMdd")},
      // ICU reads no hour above 24 in any mode, so an hour 25 is text that does not match.
      {"hour 25", kParse, {"2023040925", "yyyyMMddHH"}, parse(u"2023040925", u"yyyyMMddHH")},
      {"minute 61",
       kLeniency,
       {"2023-04-09 12:61"},
       parse(u"2023-04-09 12:61", u"yyyy-MM-dd HH:mm")},
      {"no leap day", kLeniency, {"2100-02-29"}, parse(u"2100-02-29", u"yyyy-MM-dd")},
      {"trailing", kParse, {"20230409x", "yyyyMMdd"}, parse(u"20230409x", u"yyyyMMdd")},
      {"no match", kParse, {"April", "yyyyMMdd"}, parse(u"April", u"yyyyMMdd")},
      {"null pattern", kArgument, {"Null pattern pointer."}, parse(u"1", nullptr)},
      {"I, unpadded", kIso, {"2023-4-9"}, parse(u"2023-4-9", u"I")},
      {"I, no time", kIso, {"2023-04-09T"}, parse(u"2023-04-09T", u"I")},
      {"I, trailing", kIso, {"24:00:00x"}, parse(u"24:00:00x", u"I")},
      {"I, no such day", kLeniency, {"2023-02-30"}, parse(u"2023-02-30", u"I")},
      // 2^31 s after 1970 is 2038-01-19T03:14:08Z, one second past the last 32-bit count.
      {"seconds past 32 bits",
       {false, kBounds},
       {"date-time", "4-byte seconds", "2147483648"},
       [&] { utc.formatSeconds(at(date(2038, 1, 19), timeOfDay(3, 14, 8, 0, 0)), nullptr); }},
      {"time of a date", kFormat, {}, [&] { utc.format(apr9, u"HH:mm"); }},
      {"month 13", kLeniency, {}, [&] { utc.format(date(2023, 13, 1), u"yyyyMMdd"); }},
      {"null, format", kArgument, {"Null pattern pointer."}, [&] { utc.format(apr9, nullptr); }},
      {"epoch of 21 units", kEpoch, {}, [&] { utc.parseSeconds(0, u"1900-01-01T00:00+0000"); }},
      {"read width 3", kFromBinary, {}, [&] { utc.parseBinary(data.data(), 5, u"yyyMd"); }},
      {"read letter q", kFromBinary, {}, [&] { utc.parseBinary(data.data(), 2, u"qq"); }},
      {"write letter q", kFromBinary, {}, [&] { utc.formatBinary(apr9, data.data(), 2, u"qq"); }},
      {"write width 3", kToBinary, {}, [&] { utc.formatBinary(apr9, data.data(), 5, u"yyyMM"); }},
      {"write too long", kToBinary, {}, [&] { utc.formatBinary(apr9, data.data(), 5, u"yyMMdd"); }},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.name);
    expectDateTimeFailure(row.operation, row.failure, row.inserts);
  }
}

}  // namespace

TEST(DateTimeFormatterNumbers, FractionsBelowAMillisecondCountTowardZero) {
  // 0.5 ms before the epoch is -0.5 ms, which cuts to 0; 1.5 ms after it to 1.
  PWFDateTimeFormatter utc;
  EXPECT_EQ(
      utc.formatMilliSeconds(at(date(1969, 12, 31), timeOfDay(23, 59, 59, 9995, 4), 0), nullptr),
      0);
  EXPECT_EQ(utc.formatMilliSeconds(at(date(1970, 1, 1), timeOfDay(0, 0, 0, 15, 4), 0), nullptr), 1);
}

TEST(DateTimeFormatterBinary, AMonthAtTheEdgeOf32BitsWrapsRatherThanOverflowing) {
  // The smallest 32-bit month, stepped down to ICU's count from 0, wraps to the largest: a lenient
  // calendar then rolls it far forward, past anything it can hold, and says so.
  PWFDateTimeFormatter lenient(false);
  const unsigned char record[] = {0x00, 0x00, 0x00, 0x80};
  try {
    lenient.parseBinary(record, 4, u"MMMM");
  } catch (const ZanException&) {
    // Refusing the rolled instant is as good an answer as any value; overflowing is not.
  }
}
