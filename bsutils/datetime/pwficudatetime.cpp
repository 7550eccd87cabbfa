#include <bsutils/pwficucalendar.h>
#include <bsutils/pwficudatetime.h>

#include "core/cpraise.h"
#include "datetime/formatterprivate.h"

using namespace bsutils::internal;

PWFICUDateTime::PWFICUDateTime(const std::string& localeId, const ZanStringBase& timeZoneId,
                               const ZanLogSource* logSource)
    : logSource_(logSource) {
  UErrorCode status = U_ZERO_ERROR;
  format_ = udat_open(UDAT_PATTERN, UDAT_PATTERN, localeId.c_str(), timeZoneId.data(),
                      timeZoneId.length(), u"", 0, &status);
  if (U_FAILURE(status)) {
    udat_close(format_);
    CP_RAISE(CP_DATETIME_ACCESS_ERROR, kFormatterModule, "PWFICUDateTime::PWFICUDateTime",
             logSource_, nullptr, localeId, u_errorName(status));
  }
}

PWFICUDateTime::~PWFICUDateTime() { udat_close(format_); }

void PWFICUDateTime::applyPattern(const ZanStringBase& pattern) {
  // A run of fields of one pattern applies it once.
  if (pattern == pattern_) return;
  udat_applyPattern(format_, false, pattern.data(), pattern.length());
  pattern_ = pattern;
}

void PWFICUDateTime::setLenient(bool lenient) {
  // Only the reading of text is strict: the format's own calendar stays lenient, so that fields
  // out of range reach the caller's calendar, which judges them with its own code.
  udat_setLenient(format_, true);
  UErrorCode status = U_ZERO_ERROR;
  for (const UDateFormatBooleanAttribute attribute :
       {UDAT_PARSE_ALLOW_WHITESPACE, UDAT_PARSE_ALLOW_NUMERIC, UDAT_PARSE_PARTIAL_LITERAL_MATCH,
        UDAT_PARSE_MULTIPLE_PATTERNS_FOR_MATCH}) {
    udat_setBooleanAttribute(format_, attribute, lenient, &status);
  }
  lenient_ = lenient;
}

std::int32_t PWFICUDateTime::tryParse(PWFICUCalendar& calendar, const ZanStringBase& text,
                                      UErrorCode& status) {
  std::int32_t position = 0;
  udat_parseCalendar(format_, calendar.handle(), text.data(), text.length(), &position, &status);
  return U_FAILURE(status) ? -1 : position;
}

std::int32_t PWFICUDateTime::parse(PWFICUCalendar& calendar, const ZanStringBase& text) {
  UErrorCode status = U_ZERO_ERROR;
  const std::int32_t position = tryParse(calendar, text, status);
  if (position < 0) {
    CP_RAISE(CP_DATETIME_PARSE_ERROR, kFormatterModule, "PWFICUDateTime::parse", logSource_,
             nullptr, text, pattern_, u_errorName(status));
  }
  return position;
}

std::int32_t PWFICUDateTime::parseLeading(const ZanStringBase& text, UDate& instant) {
  UErrorCode status = U_ZERO_ERROR;
  std::int32_t position = 0;
  instant = udat_parse(format_, text.data(), text.length(), &position, &status);
  return U_FAILURE(status) ? -1 : position;
}

ZanStringBase PWFICUDateTime::format(PWFICUCalendar& calendar) {
  // Most texts fit the first buffer; ICU says how long a longer one is.
  UChar units[128];
  UErrorCode status = U_ZERO_ERROR;
  std::int32_t length =
      udat_formatCalendar(format_, calendar.handle(), units,
                          static_cast<std::int32_t>(std::size(units)), nullptr, &status);
  ZanStringBase text;
  if (status == U_BUFFER_OVERFLOW_ERROR) {
    std::u16string longer(static_cast<std::size_t>(length), u'\0');
    status = U_ZERO_ERROR;
    length =
        udat_formatCalendar(format_, calendar.handle(), longer.data(), length, nullptr, &status);
    text = ZanStringBase(longer.data(), length);
  } else {
    text = ZanStringBase(units, length);
  }
  if (U_FAILURE(status)) {
    CP_RAISE(CP_DATETIME_FORMAT_ERROR, kFormatterModule, "PWFICUDateTime::format", logSource_,
             nullptr, pattern_, u_errorName(status));
  }
  return text;
}

void PWFICUDateTime::setTwoDigitYearStart(UDate start) {
  UErrorCode status = U_ZERO_ERROR;
  udat_set2DigitYearStart(format_, start, &status);
  if (U_FAILURE(status)) {
    CP_RAISE(CP_DATETIME_SET_YEARSTART_ERROR, kFormatterModule,
             "PWFICUDateTime::setTwoDigitYearStart", logSource_, nullptr, start,
             u_errorName(status));
  }
}
