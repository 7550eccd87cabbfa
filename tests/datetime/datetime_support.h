#ifndef BSUTILS_TESTS_DATETIME_SUPPORT_H
#define BSUTILS_TESTS_DATETIME_SUPPORT_H

// Shared by the formatter's suite and the converter object's: failure codes, records, and the
// tables of settings and instants that both must answer alike (the two objects' members of the same
// meaning have the same signatures, so the checks take them as member pointers).

#include <bsutils/dataconv.h>
#include <bsutils/pwfdatetimeformatter.h>
#include <gtest/gtest.h>
#include <zan/zanexception.h>

#include <cstdint>
#include <functional>
#include <limits>
#include <string>
#include <vector>

#include "support/capturing_sink.h"
#include "support/expect_failure.h"
#include "support/zan_printers.h"

namespace datetime_test {

using Bytes = std::vector<unsigned char>;
using Inserts = std::vector<std::string>;
inline constexpr std::int32_t N = PWFDateTime::kNotSet;

// A record's eleven fields, "-" for one not set. (Not a PrintTo: other suites print records their
// own way, and two printers of one type in one program would break the one-definition rule.)
inline std::string show(const PWFDateTime& v) {
  std::string text;
  for (const std::int32_t field : {v.era, v.year, v.month, v.day, v.hour, v.minute, v.second,
                                   v.subsecond, v.scale, v.timezone, v.localTimeZone}) {
    text += (field == N ? std::string("-") : std::to_string(field)) + ' ';
  }
  return text;
}

// A code and the class it is raised as.
struct Failure {
  bool parser;  // ZanParserException, else ZanConversionException
  Code code;
};
inline const Failure kArgument{false, kInternal};
inline const Failure kTimezone{
    false, {"CP_DATETIME_INVALID_TIMEZONE_ERROR", 0xC0001599, "Invalid timezone"}};
inline const Failure kWindow{
    false,
    {"CP_DATETIME_INVALID_CENTURY_WINDOW", 0xC000158B, "CPI Datetime invalid Century Window"}};
inline const Failure kIso{
    false,
    {"CP_DATETIME_INVALID_FORMAT_ERROR", 0xC00015A8, "CPI String invalid format for pattern 'I'."}};
inline const Failure kEpoch{
    false, {"CP_DATETIME_INVALID_EPOCH", 0xC000158C, "CPI Datetime invalid Epoch"}};
inline const Failure kFromBinary{
    false, {"CP_DATETIME_FROM_BINARY_ERROR", 0xC0001597, "CPI Datetime From Binary Error"}};
inline const Failure kToBinary{
    false, {"CP_DATETIME_TO_BINARY_ERROR", 0xC0001598, "CPI Datetime To Binary Error"}};
inline const Failure kFormat{
    true, {"CP_DATETIME_FORMAT_ERROR", 0xC00015A3, "CPI Unable to format datetime internally"}};
inline const Failure kParse{
    true, {"CP_DATETIME_PARSE_ERROR", 0xC00015A4, "CPI Unable to parse datetime internally"}};
inline const Failure kLeniency{
    true, {"CP_CALENDAR_LENIENCY_ERROR", 0xC00015A9, "CPI Invalid Date entered"}};

// Raised through the formatter (source module "pwffrmtr") and traced with its code. A parser
// failure comes from ICU and its inserts end with ICU's error name, and the epoch and binary
// failures' inserts are their own: for those only the leading inserts given are compared. Which
// member raised is not part of the contract, so the function is not checked.
inline void expectDateTimeFailure(const std::function<void()>& operation, const Failure& f,
                                  const Inserts& inserts) {
  CapturingSink sink(3);
  try {
    operation();
    ADD_FAILURE() << "no exception; expected " << f.code.symbol;
  } catch (const ZanException& failure) {
    EXPECT_STREQ(failure.className(), f.parser ? "ZanParserException" : "ZanConversionException");
    EXPECT_EQ(static_cast<std::uint32_t>(failure.messageNumber()), f.code.messageNumber);
    EXPECT_EQ(failure.traceText(), f.code.traceText);
    EXPECT_EQ(failure.sourceModule(), "pwffrmtr");
    Inserts actual = failure.inserts();
    if ((f.parser || inserts.empty()) && actual.size() > inserts.size()) {
      actual.resize(inserts.size());
    }
    EXPECT_EQ(actual, inserts);
    const auto traces = sink.ofKind(ZanLog::Kind::trace);
    ASSERT_FALSE(traces.empty());
    EXPECT_EQ(traces.back().inserts.at(2), f.code.symbol) << failure.what();
  }
}

inline PWFDateTime date(std::int32_t year, std::int32_t month, std::int32_t day) {
  return {1, year, month, day, N, N, N, N, N, N, 0};
}
inline PWFDateTime timeOfDay(std::int32_t hour, std::int32_t minute, std::int32_t second,
                             std::int32_t subsecond = 0, std::int32_t scale = 0) {
  return {N, N, N, N, hour, minute, second, subsecond, scale, N, 0};
}
inline PWFDateTime at(PWFDateTime value, const PWFDateTime& clock, std::int32_t zone = N) {
  value.hour = clock.hour, value.minute = clock.minute, value.second = clock.second;
  value.subsecond = clock.subsecond, value.scale = clock.scale, value.timezone = zone;
  return value;
}

// A text without a fraction must give a zero fraction; how many digits a zero is held with is the
// formatter's choice. So fractions compare in nanoseconds, and a scale above 0 as it is.
inline PWFDateTime normalized(PWFDateTime value) {
  if (value.scale >= 0 && value.scale <= 9) {
    for (; value.scale < 9; ++value.scale) value.subsecond *= 10;
  }
  return value;
}
inline void expectRecord(const PWFDateTime& actual, const PWFDateTime& expected) {
  EXPECT_TRUE(normalized(actual) == normalized(expected))
      << "actual: " << show(actual) << "\nexpected: " << show(expected);
  EXPECT_TRUE(expected.scale <= 0 || actual.scale == expected.scale) << show(actual);
}

template <class Object>
struct Members {
  PWFDateTime (Object::*parse)(const char16_t*, std::int32_t, const char16_t*);
  ZanStringBase (Object::*format)(const PWFDateTime&, const char16_t*);
  PWFDateTime (Object::*fromSeconds)(std::int32_t, const char16_t*);
  PWFDateTime (Object::*fromMilliseconds)(std::int64_t, const char16_t*);
  std::int32_t (Object::*toSeconds)(const PWFDateTime&, const char16_t*);
  std::int64_t (Object::*toMilliseconds)(const PWFDateTime&, const char16_t*);
};
inline constexpr Members<PWFDateTimeFormatter> kFormatter{
    &PWFDateTimeFormatter::parse,         &PWFDateTimeFormatter::format,
    &PWFDateTimeFormatter::parseSeconds,  &PWFDateTimeFormatter::parseMilliSeconds,
    &PWFDateTimeFormatter::formatSeconds, &PWFDateTimeFormatter::formatMilliSeconds};
inline constexpr Members<DataCnv> kConverter{
    &DataCnv::StrToDateTime,       &DataCnv::StrFromDateTime,
    &DataCnv::SecondsToDateTime,   &DataCnv::MilliSecondsToDateTime,
    &DataCnv::SecondsFromDateTime, &DataCnv::MilliSecondsFromDateTime};

// The five settings in the formatter's order, and what they show, " | " between: "30.02.23" by
// "dd.MM.yy" (refused, or the date it rolls over to); the offset at the 1970 epoch in ms; "00",
// "52", "53" and "99" by "yy"; 2023-03-01 by "MMMM"; 2022-01-01, a Saturday, by "w".
struct Settings {
  const char* name;
  bool strict;
  const char16_t* zone;
  std::int32_t window;
  const char16_t* locale;
  std::int32_t minimalDays;
  const char* effects;
};
inline const Settings kSettings[] = {
    {"defaults", true, nullptr, 53, nullptr, 0, "refused | 0 | 2000 2052 1953 1999 | March | 1"},
    {"lenient", false, nullptr, 53, nullptr, 0, "2023-3-2 | 0 | 2000 2052 1953 1999 | March | 1"},
    {"Kolkata", true, u"Asia/Kolkata", 53, nullptr, 0,
     "refused | 19800000 | 2000 2052 1953 1999 | March | 1"},
    {"fixed offset", true, u"GMT-03:00", 53, nullptr, 0,
     "refused | -10800000 | 2000 2052 1953 1999 | March | 1"},
    {"window 0", true, nullptr, 0, nullptr, 0, "refused | 0 | 1900 1952 1953 1999 | March | 1"},
    {"window 99", true, nullptr, 99, nullptr, 0, "refused | 0 | 2000 2052 2053 1999 | March | 1"},
    {"German", true, nullptr, 53, u"de_DE", 1,
     "refused | 0 | 2000 2052 1953 1999 | M\xC3\xA4rz | 1"},
    // A first week of one day counts only when one day is enough.
    {"minimal days 7", true, nullptr, 53, nullptr, 7,
     "refused | 0 | 2000 2052 1953 1999 | March | 52"},
};

template <class Object>
std::string effects(Object& object, const Members<Object>& m) {
  std::string shown;
  try {
    const PWFDateTime day = (object.*m.parse)(u"30.02.23", -1, u"dd.MM.yy");
    shown =
        std::to_string(day.year) + "-" + std::to_string(day.month) + "-" + std::to_string(day.day);
  } catch (const ZanParserException& refused) {
    shown = static_cast<std::uint32_t>(refused.messageNumber()) == 0xC00015A9 ? "refused"
                                                                              : refused.what();
  }
  shown += " | " + std::to_string((object.*m.fromSeconds)(0, nullptr).timezone) + " |";
  for (const char16_t* yy : {u"00", u"52", u"53", u"99"}) {
    shown += " " + std::to_string((object.*m.parse)(yy, -1, u"yy").year);
  }
  return shown + " | " + (object.*m.format)(date(2023, 3, 1), u"MMMM").toUtf8() + " | " +
         (object.*m.format)(date(2022, 1, 1), u"w").toUtf8();
}

// Instants, and their local fields and offsets in a zone, from Python's zoneinfo.
struct Instant {
  const char* name;
  const char16_t* zone;
  const char16_t* epoch;
  std::int64_t milliseconds;
  std::int32_t year, month, day, hour, minute, second, microsecond, offset;
  bool wallTimeIsUnique;  // false where clocks go back and the wall time happens twice
};
inline const Instant kInstants[] = {
#include "datetime/oracle/instants.inc"
};

// Both ways, in an object whose zone is the row's.
template <class Object>
void expectInstant(Object& object, const Members<Object>& m, const Instant& row) {
  // Both halves, microseconds, and the zone's offset at that instant, twice.
  const PWFDateTime value{1,          row.year,        row.month, row.day,    row.hour,  row.minute,
                          row.second, row.microsecond, 6,         row.offset, row.offset};
  expectRecord((object.*m.fromMilliseconds)(row.milliseconds, row.epoch), value);
  EXPECT_EQ((object.*m.toMilliseconds)(value, row.epoch), row.milliseconds);
  const std::int64_t seconds = row.milliseconds / 1000;  // toward zero: -1.5 s is -1
  if (seconds >= std::numeric_limits<std::int32_t>::min() &&
      seconds <= std::numeric_limits<std::int32_t>::max()) {
    EXPECT_EQ((object.*m.toSeconds)(value, row.epoch), seconds);
    if (row.milliseconds % 1000 == 0) {
      expectRecord((object.*m.fromSeconds)(static_cast<std::int32_t>(seconds), row.epoch), value);
    }
  }
  // Without a zone the value is taken in the object's.
  if (row.wallTimeIsUnique) {
    PWFDateTime local = value;
    local.timezone = N;
    EXPECT_EQ((object.*m.toMilliseconds)(local, row.epoch), row.milliseconds);
  }
}

}  // namespace datetime_test

#endif  // BSUTILS_TESTS_DATETIME_SUPPORT_H
