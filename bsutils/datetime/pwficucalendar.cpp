#include <bsutils/pwficucalendar.h>

#include "core/cpraise.h"
#include "datetime/formatterprivate.h"

using namespace bsutils::internal;

PWFICUCalendar::PWFICUCalendar(const ZanStringBase& timeZoneId, const std::string& localeId,
                               const ZanLogSource* logSource)
    : logSource_(logSource) {
  UErrorCode status = U_ZERO_ERROR;
  calendar_ =
      ucal_open(timeZoneId.data(), timeZoneId.length(), localeId.c_str(), UCAL_GREGORIAN, &status);
  if (U_FAILURE(status)) {
    ucal_close(calendar_);
    CP_RAISE(CP_CALENDAR_ACCESS_ERROR, kFormatterModule, "PWFICUCalendar::PWFICUCalendar",
             logSource_, nullptr, u_errorName(status));
  }
  ucal_setAttribute(calendar_, UCAL_LENIENT, 1);
}

PWFICUCalendar::~PWFICUCalendar() { ucal_close(calendar_); }

void PWFICUCalendar::clear() { ucal_clear(calendar_); }

void PWFICUCalendar::set(UCalendarDateFields field, std::int32_t value) {
  ucal_set(calendar_, field, value);
}

void PWFICUCalendar::setMillis(UDate milliseconds) {
  UErrorCode status = U_ZERO_ERROR;
  ucal_setMillis(calendar_, milliseconds, &status);
  if (U_FAILURE(status)) {
    CP_RAISE(CP_CALENDAR_SET_MILLIS_ERROR, kFormatterModule, "PWFICUCalendar::setMillis",
             logSource_, nullptr, milliseconds, u_errorName(status));
  }
}

UDate PWFICUCalendar::getMillis() {
  UErrorCode status = U_ZERO_ERROR;
  const UDate milliseconds = ucal_getMillis(calendar_, &status);
  if (U_FAILURE(status)) {
    CP_RAISE(CP_CALENDAR_GET_ERROR, kFormatterModule, "PWFICUCalendar::getMillis", logSource_,
             "CPI Unable to access internal calendar", u_errorName(status));
  }
  return milliseconds;
}

bool PWFICUCalendar::isKnownTimeZone(const ZanStringBase& timeZoneId) {
  UChar canonical[128];
  UBool isSystemId = false;
  UErrorCode status = U_ZERO_ERROR;
  ucal_getCanonicalTimeZoneID(timeZoneId.data(), timeZoneId.length(), canonical,
                              static_cast<std::int32_t>(std::size(canonical)), &isSystemId,
                              &status);
  return U_SUCCESS(status);
}

void PWFICUCalendar::setTimeZone(const ZanStringBase& timeZoneId) {
  // ICU takes an unknown id for GMT without a word, so the id is checked first.
  UErrorCode status = U_ILLEGAL_ARGUMENT_ERROR;
  if (isKnownTimeZone(timeZoneId)) {
    status = U_ZERO_ERROR;
    ucal_setTimeZone(calendar_, timeZoneId.data(), timeZoneId.length(), &status);
  }
  if (U_FAILURE(status)) {
    CP_RAISE(CP_CALENDAR_SET_TIMEZONE_ERROR, kFormatterModule, "PWFICUCalendar::setTimeZone",
             logSource_, nullptr, timeZoneId, u_errorName(status));
  }
}

std::int32_t PWFICUCalendar::get(UCalendarDateFields field) {
  UErrorCode status = U_ZERO_ERROR;
  const std::int32_t value = ucal_get(calendar_, field, &status);
  if (U_FAILURE(status)) {
    CP_RAISE(CP_CALENDAR_GET_ERROR, kFormatterModule, "PWFICUCalendar::get", logSource_, nullptr,
             static_cast<std::int32_t>(field), u_errorName(status));
  }
  return value;
}

void PWFICUCalendar::requireFieldsInRange(const std::string& source) {
  // A strict calendar refuses to compute a time from fields out of range; computing it on a copy
  // leaves this calendar's fields as they were set.
  UErrorCode status = U_ZERO_ERROR;
  UCalendar* strict = ucal_clone(calendar_, &status);
  if (U_FAILURE(status)) {
    CP_RAISE(CP_CALENDAR_ACCESS_ERROR, kFormatterModule, "PWFICUCalendar::requireFieldsInRange",
             logSource_, nullptr, u_errorName(status));
  }
  ucal_setAttribute(strict, UCAL_LENIENT, 0);
  ucal_getMillis(strict, &status);
  ucal_close(strict);
  if (U_FAILURE(status)) {
    CP_RAISE(CP_CALENDAR_LENIENCY_ERROR, kFormatterModule, "PWFICUCalendar::requireFieldsInRange",
             logSource_, nullptr, source);
  }
}

void PWFICUCalendar::setMinimalDaysInFirstWeek(std::int32_t days) {
  ucal_setAttribute(calendar_, UCAL_MINIMAL_DAYS_IN_FIRST_WEEK, days);
}
