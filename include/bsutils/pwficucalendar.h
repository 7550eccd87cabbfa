#ifndef BSUTILS_PWFICUCALENDAR_H
#define BSUTILS_PWFICUCALENDAR_H

// PWFICUCalendar: the date-time formatter's calendar, a thin owner of one ICU Gregorian calendar
// (UCalendar). It does no calendar arithmetic of its own: every question goes to ICU, and every
// ICU failure is raised as a ZanParserException of source module "pwffrmtr" with its own code and
// the ICU error name (such as "U_ILLEGAL_ARGUMENT_ERROR") as the last insert:
//   CP_CALENDAR_ACCESS_ERROR        0xC000159A  the calendar cannot be opened or its time read
//   CP_CALENDAR_SET_MILLIS_ERROR    0xC000159E  setMillis
//   CP_CALENDAR_SET_TIMEZONE_ERROR  0xC000159F  setTimeZone (insert: the zone id first)
//   CP_CALENDAR_GET_ERROR           0xC00015A0  get, and getMillis (trace text "CPI Unable to
//                                               access internal calendar")
//   CP_CALENDAR_LENIENCY_ERROR      0xC00015A9  requireFieldsInRange
// One object is used by one thread at a time.

#include <bsutils/export.h>
#include <unicode/ucal.h>
#include <zan/zanstringbase.h>

#include <cstdint>
#include <string>

class ZanLogSource;

class BSUTILS_EXPORT PWFICUCalendar {
 public:
  // A lenient Gregorian calendar in the zone `timeZoneId` (an ICU zone id: "UTC", "Europe/Paris",
  // "GMT+05:30") with the week rules of `localeId`. `logSource` (not owned, may be null) names the
  // failures.
  PWFICUCalendar(const ZanStringBase& timeZoneId, const std::string& localeId,
                 const ZanLogSource* logSource);
  PWFICUCalendar(const PWFICUCalendar&) = delete;
  PWFICUCalendar& operator=(const PWFICUCalendar&) = delete;
  ~PWFICUCalendar();

  // Every field unset: the next time computed from fields takes 1970-01-01 00:00:00.000 in the
  // calendar's zone for what is not set.
  void clear();
  void set(UCalendarDateFields field, std::int32_t value);
  // The calendar's time in milliseconds since 1970-01-01T00:00Z.
  void setMillis(UDate milliseconds);
  UDate getMillis();
  void setTimeZone(const ZanStringBase& timeZoneId);
  // Whether ICU knows the zone id, a custom one ("GMT+05:30") included.
  static bool isKnownTimeZone(const ZanStringBase& timeZoneId);
  // A field computed from what was set (month 0 to 11, as ICU counts).
  std::int32_t get(UCalendarDateFields field);
  // The calendar is lenient: fields roll over (Feb 30 is Mar 2). This asks whether the fields set
  // are all in range, as a strict calendar would, and raises CP_CALENDAR_LENIENCY_ERROR ("CPI
  // Invalid Date entered", `source`) when they are not.
  void requireFieldsInRange(const std::string& source);
  // 1 to 7; ICU's range checks apply.
  void setMinimalDaysInFirstWeek(std::int32_t days);

  // The ICU calendar itself, for the date format that parses into it and formats from it.
  UCalendar* handle() { return calendar_; }

 private:
  UCalendar* calendar_;
  const ZanLogSource* logSource_;  // not owned
};

#endif  // BSUTILS_PWFICUCALENDAR_H
