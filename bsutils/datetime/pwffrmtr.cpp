// The date-time formatter: its settings, the calendar record, and date-times as text of a pattern.

#include <bsutils/cputils.h>
#include <bsutils/pwfdatetimeformatter.h>
#include <bsutils/pwficucalendar.h>
#include <bsutils/pwficudatetime.h>
#include <unicode/uchar.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <optional>
#include <string>

#include "core/cpdebugtrace.h"
#include "core/cpraise.h"
#include "datetime/formatterprivate.h"
#include "text/isodatetime.h"

using namespace bsutils::internal;

namespace {

constexpr std::int32_t kNotSet = PWFDateTime::kNotSet;
constexpr std::int32_t kMaxFractionDigits = 9;
// Stands for the fraction in a pattern handed to ICU, which writes only milliseconds; the digits
// go in afterwards. A private-use character is a literal to ICU, quoted or not.
constexpr char16_t kFractionPlaceholder = 0xE000;

std::string ascii(const char16_t* text, const char* otherwise) {
  if (text == nullptr || *text == 0) return otherwise;
  return ZanStringBase(text).toUtf8();
}

ZanStringBase zoneOrUtc(const char16_t* timeZoneId) {
  return timeZoneId == nullptr || *timeZoneId == 0 ? ZanStringBase(u"UTC")
                                                   : ZanStringBase(timeZoneId);
}

// What a pattern holds, as far as the record is concerned: which halves its fields belong to,
// whether it reads a zone, and where its run of fraction letters stands.
struct PatternFields {
  bool date = false;
  bool time = false;
  bool zone = false;
  std::int32_t fractionStart = -1;  // the first "S" of the first run, outside quotes
  std::int32_t fractionLength = 0;
  bool fractionAbuts = false;  // a numeric field right before it, so ICU reads it at its width
};

bool isAsciiLetter(char16_t unit) {
  return (unit >= u'a' && unit <= u'z') || (unit >= u'A' && unit <= u'Z');
}

PatternFields patternFields(const ZanStringBase& pattern) {
  static constexpr std::u16string_view kDateLetters = u"GyYuUrQqMLlwWdDFgEec";
  static constexpr std::u16string_view kTimeLetters = u"abBhHkKmsSAjJC";
  static constexpr std::u16string_view kZoneLetters = u"zZOvVXx";
  static constexpr std::u16string_view kNumericLetters = u"yYudDFgHhKkmsSA";
  PatternFields fields;
  bool quoted = false;
  for (std::int32_t i = 0; i < pattern.length(); ++i) {
    const char16_t unit = pattern[i];
    if (unit == u'\'') {
      quoted = !quoted;
      continue;
    }
    if (quoted || !isAsciiLetter(unit)) continue;
    fields.date = fields.date || kDateLetters.find(unit) != std::u16string_view::npos;
    fields.time = fields.time || kTimeLetters.find(unit) != std::u16string_view::npos;
    fields.zone = fields.zone || kZoneLetters.find(unit) != std::u16string_view::npos;
    if (unit == u'S' && fields.fractionStart < 0) {
      fields.fractionStart = i;
      while (i + 1 < pattern.length() && pattern[i + 1] == u'S') ++i;
      fields.fractionLength = i + 1 - fields.fractionStart;
      fields.fractionAbuts =
          fields.fractionStart > 0 &&
          kNumericLetters.find(pattern[fields.fractionStart - 1]) != std::u16string_view::npos;
    }
  }
  return fields;
}

// Whether ICU may be given a text to read a fraction from. Past nine digits a fraction is finer
// than the record holds; and ICU scales the fraction it reads by a power of ten in 32 bits, which
// overflows to a division by zero once it reads 35 digits, so a text with a run of digits that
// long never reaches it. No date-time text needs one: every numeric field together is under 30.
bool fractionIsReadable(const PatternFields& fields, const ZanStringBase& text) {
  constexpr std::int32_t kLongestDigitRun = 32;
  if (fields.fractionLength > kMaxFractionDigits) return false;
  std::int32_t run = 0;
  for (std::int32_t i = 0; i < text.length(); ++i) {
    run = u_isdigit(text[i]) ? run + 1 : 0;
    if (run > kLongestDigitRun) return false;
  }
  return true;
}

// An ICU custom zone for an offset in milliseconds: "GMT+05:30", "GMT-03:00:15".
ZanStringBase customZone(std::int32_t offset) {
  const std::int64_t magnitude = std::llabs(std::int64_t{offset}) / 1000;
  char id[32];
  std::snprintf(id, sizeof id, "GMT%c%02lld:%02lld:%02lld", offset < 0 ? '-' : '+',
                static_cast<long long>(magnitude / 3600),
                static_cast<long long>(magnitude / 60 % 60),
                static_cast<long long>(magnitude % 60));
  return ZanStringBase::fromUtf8(id);
}

}  // namespace

PWFDateTimeFormatter::PWFDateTimeFormatter(bool strictChecking, const char16_t* timeZoneId,
                                           std::int32_t centuryWindowStart,
                                           const char16_t* localeId,
                                           std::int32_t minimalDaysInFirstWeek,
                                           const ZanLogSource* logSource)
    : strictChecking_(strictChecking),
      timeZoneId_(zoneOrUtc(timeZoneId)),
      centuryWindowStart_(centuryWindowStart),
      logSource_(logSource) {
  constexpr const char* kFunction = "PWFDateTimeFormatter::PWFDateTimeFormatter";
  CpDebugTrace trace(kFunction, strictChecking, timeZoneId_, centuryWindowStart,
                     minimalDaysInFirstWeek);
  if (centuryWindowStart < 0 || centuryWindowStart > 99) {
    CP_RAISE(CP_DATETIME_INVALID_CENTURY_WINDOW, kFormatterModule, kFunction, logSource_, nullptr,
             centuryWindowStart);
  }
  if (minimalDaysInFirstWeek < 0 || minimalDaysInFirstWeek > 7) {
    CP_RAISE(CP_INTERNAL_ERROR, kFormatterModule, kFunction, logSource_, nullptr,
             "Invalid minimal days in first week: ", minimalDaysInFirstWeek);
  }
  if (!PWFICUCalendar::isKnownTimeZone(timeZoneId_)) {
    CP_RAISE(CP_DATETIME_INVALID_TIMEZONE_ERROR, kFormatterModule, kFunction, logSource_, nullptr,
             timeZoneId_);
  }

  const std::string locale = ascii(localeId, "en_US_POSIX");
  calendar_ = std::make_unique<PWFICUCalendar>(timeZoneId_, locale, logSource_);
  if (minimalDaysInFirstWeek != 0) calendar_->setMinimalDaysInFirstWeek(minimalDaysInFirstWeek);
  dateFormat_ = std::make_unique<PWFICUDateTime>(locale, timeZoneId_, logSource_);
  dateFormat_->setLenient(!strictChecking_);
  // Two-digit years fall in the hundred years from January 1st of 19yy, yy the window's start.
  calendar_->clear();
  calendar_->set(UCAL_YEAR, 1900 + centuryWindowStart);
  dateFormat_->setTwoDigitYearStart(calendar_->getMillis());
}

PWFDateTimeFormatter::~PWFDateTimeFormatter() = default;

PWFDateTime PWFDateTimeFormatter::parse(const char16_t* text, std::int32_t length,
                                        const char16_t* pattern) {
  constexpr const char* kFunction = "PWFDateTimeFormatter::parse";
  CpDebugTrace trace(kFunction, static_cast<const void*>(text), length, pattern);
  if (pattern == nullptr) {
    CP_RAISE(CP_INTERNAL_ERROR, kFormatterModule, kFunction, logSource_, nullptr,
             "Null pattern pointer.");
  }
  if (text == nullptr && length != 0) {
    CP_RAISE(CP_INTERNAL_ERROR, kFormatterModule, kFunction, logSource_, nullptr,
             "Null input pointer");
  }
  if (length < -1) {
    CP_RAISE(CP_INTERNAL_ERROR, kFormatterModule, kFunction, logSource_, nullptr,
             "Invalid input length: ", length);
  }
  const ZanStringBase source = text == nullptr ? ZanStringBase() : ZanStringBase(text, length);
  const ZanStringBase patternText(pattern);
  if (patternText == ZanStringBase(u"I")) {
    const std::optional<PWFDateTime> value = isoDateTimeValue(source);
    if (!value) {
      CP_RAISE(CP_DATETIME_INVALID_FORMAT_ERROR, kFormatterModule, kFunction, logSource_, nullptr,
               source);
    }
    // The ISO reader knows each field's range alone; whether the day exists is the calendar's.
    if (strictChecking_ && value->year != kNotSet) {
      loadCalendar(*value, source.toUtf8());
      restoreTimeZone();
    }
    return *value;
  }
  return parseText(source, patternText);
}

PWFDateTime PWFDateTimeFormatter::parseText(const ZanStringBase& text,
                                            const ZanStringBase& pattern) {
  const PatternFields fields = patternFields(pattern);
  if (fields.fractionStart >= 0 && !fractionIsReadable(fields, text)) {
    CP_RAISE(CP_DATETIME_PARSE_ERROR, kFormatterModule, "PWFDateTimeFormatter::parse", logSource_,
             nullptr, text, pattern, u_errorName(U_ILLEGAL_ARGUMENT_ERROR));
  }
  calendar_->clear();
  restoreTimeZone();
  dateFormat_->applyPattern(pattern);
  // A zone in the text becomes the calendar's.
  if (fields.zone) calendarInOwnZone_ = false;
  UErrorCode status = U_ZERO_ERROR;
  std::int32_t end = dateFormat_->tryParse(*calendar_, text, status);
  if (end < 0 && strictChecking_) requireMatchOutOfRange(text);
  if (end < 0) end = dateFormat_->parse(*calendar_, text);
  if (strictChecking_ && end != text.length()) {
    restoreTimeZone();
    CP_RAISE(CP_DATETIME_PARSE_ERROR, kFormatterModule, "PWFDateTimeFormatter::parse", logSource_,
             nullptr, text, pattern, u_errorName(U_PARSE_ERROR));
  }
  if (strictChecking_) calendar_->requireFieldsInRange(text.toUtf8());

  PWFDateTime value{kNotSet, kNotSet, kNotSet, kNotSet, kNotSet, kNotSet,
                    kNotSet, kNotSet, kNotSet, kNotSet, kNotSet};
  // The fields as the text wrote them: a zone in the text is the calendar's zone until restored.
  readFields(value, fields.date, fields.time);
  if (fields.zone)
    value.timezone = calendar_->get(UCAL_ZONE_OFFSET) + calendar_->get(UCAL_DST_OFFSET);
  if (fields.time && fields.fractionStart >= 0) {
    // ICU keeps milliseconds; the digits themselves are read where the pattern up to the fraction
    // stops reading.
    UDate ignored = 0;
    dateFormat_->applyPattern(pattern.substring(0, fields.fractionStart + fields.fractionLength));
    const std::int32_t fractionEnd = dateFormat_->parseLeading(text, ignored);
    std::int32_t start = fractionEnd;
    while (start > 0 && text[start - 1] >= u'0' && text[start - 1] <= u'9' &&
           (!fields.fractionAbuts || fractionEnd - start < fields.fractionLength)) {
      --start;
    }
    value.scale = 0;
    value.subsecond = 0;
    for (std::int32_t i = start; i < fractionEnd && value.scale < kMaxFractionDigits; ++i) {
      value.subsecond = value.subsecond * 10 + (text[i] - u'0');
      ++value.scale;
    }
  }
  const UDate instant = calendar_->getMillis();
  restoreTimeZone();
  calendar_->setMillis(instant);
  value.localTimeZone = calendar_->get(UCAL_ZONE_OFFSET) + calendar_->get(UCAL_DST_OFFSET);
  return value;
}

void PWFDateTimeFormatter::requireMatchOutOfRange(const ZanStringBase& text) {
  // A strict format refuses a field beyond its widest range (month 13, minute 61) as if the text
  // did not match; read loosely, such a text is a date out of range, which is what the caller
  // hears.
  dateFormat_->setLenient(true);
  calendar_->clear();
  UErrorCode status = U_ZERO_ERROR;
  const std::int32_t end = dateFormat_->tryParse(*calendar_, text, status);
  dateFormat_->setLenient(false);
  if (end == text.length()) calendar_->requireFieldsInRange(text.toUtf8());
  calendar_->clear();
}

ZanStringBase PWFDateTimeFormatter::format(const PWFDateTime& value, const char16_t* pattern) {
  constexpr const char* kFunction = "PWFDateTimeFormatter::format";
  CpDebugTrace trace(kFunction, pattern);
  if (pattern == nullptr) {
    CP_RAISE(CP_INTERNAL_ERROR, kFormatterModule, kFunction, logSource_, nullptr,
             "Null pattern pointer.");
  }
  const ZanStringBase patternText(pattern);
  if (patternText == ZanStringBase(u"I")) {
    const std::optional<ZanStringBase> text = isoDateTimeText(value);
    if (!text) {
      CP_RAISE(CP_DATETIME_FORMAT_ERROR, kFormatterModule, kFunction, logSource_, nullptr,
               CPUtils::pwfDateTimeDump(value));
    }
    if (strictChecking_) {
      loadCalendar(value);
      restoreTimeZone();
    }
    return trace.result(*text);
  }
  return trace.result(formatText(value, patternText));
}

ZanStringBase PWFDateTimeFormatter::formatText(const PWFDateTime& value,
                                               const ZanStringBase& pattern) {
  const PatternFields fields = patternFields(pattern);
  if ((fields.date && value.year == kNotSet) || (fields.time && value.hour == kNotSet)) {
    CP_RAISE(CP_DATETIME_FORMAT_ERROR, kFormatterModule, "PWFDateTimeFormatter::format", logSource_,
             nullptr, pattern, CPUtils::pwfDateTimeDump(value));
  }
  loadCalendar(value);
  ZanStringBase icuPattern = pattern;
  if (fields.fractionStart >= 0) {
    icuPattern.replace(fields.fractionStart, fields.fractionLength,
                       ZanStringBase(&kFractionPlaceholder, 1));
  }
  dateFormat_->applyPattern(icuPattern);
  ZanStringBase text = dateFormat_->format(*calendar_);
  restoreTimeZone();
  const std::int32_t at = text.indexOf(kFractionPlaceholder);
  if (at >= 0) {
    const std::int32_t kept = std::min(fields.fractionLength, kMaxFractionDigits);
    char digits[16];
    std::snprintf(digits, sizeof digits, "%0*lld", kept,
                  static_cast<long long>(fractionAt(value.subsecond, value.scale, kept)));
    std::string fraction(digits);
    fraction.resize(static_cast<std::size_t>(fields.fractionLength), '0');
    text.replace(at, 1, ZanStringBase::fromUtf8(fraction));
  }
  return text;
}

void PWFDateTimeFormatter::loadCalendar(const PWFDateTime& value, const std::string& source) {
  calendar_->clear();
  // A value with a zone is taken in that zone, so that its fields are the ones written.
  if (value.timezone != kNotSet) {
    calendar_->setTimeZone(customZone(value.timezone));
    calendarInOwnZone_ = false;
  } else {
    restoreTimeZone();
  }
  if (value.year != kNotSet) {
    calendar_->set(UCAL_ERA, value.era == kNotSet ? 1 : value.era);
    calendar_->set(UCAL_YEAR, value.year);
    calendar_->set(UCAL_MONTH, value.month == kNotSet ? 0 : value.month - 1);
    calendar_->set(UCAL_DATE, value.day == kNotSet ? 1 : value.day);
  }
  if (value.hour != kNotSet) {
    const auto orZero = [](std::int32_t field) { return field == kNotSet ? 0 : field; };
    calendar_->set(UCAL_HOUR_OF_DAY, value.hour);
    calendar_->set(UCAL_MINUTE, orZero(value.minute));
    calendar_->set(UCAL_SECOND, orZero(value.second));
    calendar_->set(UCAL_MILLISECOND,
                   static_cast<std::int32_t>(fractionAt(value.subsecond, value.scale, 3)));
  }
  if (strictChecking_) {
    calendar_->requireFieldsInRange(source.empty() ? CPUtils::pwfDateTimeDump(value) : source);
  }
}

PWFDateTime PWFDateTimeFormatter::calendarValue() {
  PWFDateTime value{};
  readFields(value, true, true);
  value.subsecond = calendar_->get(UCAL_MILLISECOND) * 1000;
  value.scale = 6;
  value.timezone = calendar_->get(UCAL_ZONE_OFFSET) + calendar_->get(UCAL_DST_OFFSET);
  value.localTimeZone = value.timezone;
  return value;
}

void PWFDateTimeFormatter::readFields(PWFDateTime& value, bool date, bool time) {
  if (date) {
    value.era = calendar_->get(UCAL_ERA);
    value.year = calendar_->get(UCAL_YEAR);
    value.month = calendar_->get(UCAL_MONTH) + 1;
    value.day = calendar_->get(UCAL_DATE);
  }
  if (time) {
    value.hour = calendar_->get(UCAL_HOUR_OF_DAY);
    value.minute = calendar_->get(UCAL_MINUTE);
    value.second = calendar_->get(UCAL_SECOND);
    value.subsecond = 0;
    value.scale = 0;
  }
}

void PWFDateTimeFormatter::restoreTimeZone() {
  // A parse adopts the zone of its text, and a value with a zone brings its own.
  if (calendarInOwnZone_) return;
  calendar_->setTimeZone(timeZoneId_);
  calendarInOwnZone_ = true;
}
