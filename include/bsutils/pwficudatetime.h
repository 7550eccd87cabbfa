#ifndef BSUTILS_PWFICUDATETIME_H
#define BSUTILS_PWFICUDATETIME_H

// PWFICUDateTime: the date-time formatter's date format, a thin owner of one ICU date format
// (UDateFormat) with a pattern in ICU's syntax ("yyyy-MM-dd HH:mm:ss.SSS", "dd.MM.yy",
// "EEE, d MMM yyyy"). It parses text into a PWFICUCalendar and formats one; ICU does all of the
// date parsing and formatting. Every ICU failure is raised as a ZanParserException of source module
// "pwffrmtr" with its own code and the ICU error name as the last insert:
//   CP_DATETIME_ACCESS_ERROR         0xC00015A1  the format cannot be opened
//   CP_DATETIME_FORMAT_ERROR         0xC00015A3  format
//   CP_DATETIME_PARSE_ERROR          0xC00015A4  parse (inserts: the text, the pattern, then the
//                                                error name)
//   CP_DATETIME_SET_YEARSTART_ERROR  0xC00015A5  setTwoDigitYearStart
// One object is used by one thread at a time.

#include <bsutils/export.h>
#include <unicode/udat.h>
#include <zan/zanstringbase.h>

#include <cstdint>
#include <string>

class PWFICUCalendar;
class ZanLogSource;

class BSUTILS_EXPORT PWFICUDateTime {
 public:
  // A format for the locale `localeId` ("en_US_POSIX", "de_DE": the language of month and day
  // names and of am/pm) in the zone `timeZoneId`, with an empty pattern.
  PWFICUDateTime(const std::string& localeId, const ZanStringBase& timeZoneId,
                 const ZanLogSource* logSource);
  PWFICUDateTime(const PWFICUDateTime&) = delete;
  PWFICUDateTime& operator=(const PWFICUDateTime&) = delete;
  ~PWFICUDateTime();

  void applyPattern(const ZanStringBase& pattern);
  const ZanStringBase& pattern() const { return pattern_; }
  // A lenient format accepts loose text (white space, digits for names, partial literals); a strict
  // one only text that follows the pattern. Either way the fields it reads are not range-checked
  // here: that is the calendar's part.
  void setLenient(bool lenient);
  bool isLenient() const { return lenient_; }

  // Parses `text` from its start into `calendar`, whose fields are set from what the pattern
  // reads; a zone in the text becomes the calendar's zone. Returns the index of the first unit
  // that was not read. Text that does not match raises CP_DATETIME_PARSE_ERROR.
  std::int32_t parse(PWFICUCalendar& calendar, const ZanStringBase& text);
  // As parse, returning -1 with ICU's `status` instead of raising.
  std::int32_t tryParse(PWFICUCalendar& calendar, const ZanStringBase& text, UErrorCode& status);
  // Parses the start of `text` into an instant, milliseconds since 1970-01-01T00:00Z, leaving the
  // caller's calendars alone. Returns how many units the pattern read, or -1 when the text does not
  // match; raises nothing.
  std::int32_t parseLeading(const ZanStringBase& text, UDate& instant);
  // The calendar's time as text of the pattern.
  ZanStringBase format(PWFICUCalendar& calendar);
  // Two-digit years are read into the hundred years that start at `start`.
  void setTwoDigitYearStart(UDate start);

 private:
  UDateFormat* format_;
  ZanStringBase pattern_;
  bool lenient_ = true;
  const ZanLogSource* logSource_;  // not owned
};

#endif  // BSUTILS_PWFICUDATETIME_H
