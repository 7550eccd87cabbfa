#ifndef BSUTILS_PWFDATETIMEFORMATTER_H
#define BSUTILS_PWFDATETIMEFORMATTER_H

// PWFDateTimeFormatter: date-times as text of a pattern, as seconds or milliseconds since an
// epoch, and as records of small binary integers, all through one ICU calendar and date format.
// A DataCnv creates one on its first date-time conversion and keeps it; it is used by one thread
// at a time. Failures have source module "pwffrmtr".
//
// The record. A PWFDateTime has a date half (era, year, month 1-12, day) and a time half (hour,
// minute, second, subsecond with its scale, the number of fraction digits); each half is set or
// not set (PWFDateTime::kNotSet) as a whole. `timezone` is the offset east of UTC in milliseconds,
// not set when the value carries no zone; `localTimeZone` is the formatter's zone offset at the
// value's instant. A value without a zone is taken in the formatter's zone.
//
// Text patterns are ICU's ("yyyy-MM-dd'T'HH:mm:ss.SSSSSS", "dd.MM.yy", "EEE, d MMM yyyy HH:mm Z").
// Parsing sets the halves that the pattern has fields of; what a set half's pattern leaves out
// takes the calendar's defaults (month 1, day 1, zero time). Up to 9 "S" letters read and write the
// fraction's digits exactly, though the calendar holds milliseconds. The pattern "I" alone is
// ISO 8601 extended form: "2023", "2023-04", "2023-04-09", "2023-04-09T13:05", "13:05:09.5",
// "2023-04-09T13:05:09.123456789+05:30", written from the halves that are set.

#include <bsutils/export.h>
#include <bsutils/pwfdata.h>
#include <unicode/utypes.h>
#include <zan/zanstringbase.h>

#include <cstdint>
#include <memory>
#include <string>

class PWFICUCalendar;
class PWFICUDateTime;
class ZanLogSource;

// The field kind of one letter of a binary pattern: its position in "yMdHmsSX".
enum PWFBinaryFields : std::int32_t {
  eBinaryInvalid = -1,
  eBinaryYear = 0,
  eBinaryMonth = 1,  // stored 1 to 12
  eBinaryDay = 2,
  eBinaryHour = 3,  // 0 to 23
  eBinaryMinute = 4,
  eBinarySecond = 5,
  eBinaryMillisecond = 6,
  eBinaryFiller = 7,  // "X": bytes that hold no field
};

class BSUTILS_EXPORT PWFDateTimeFormatter {
 public:
  // The five settings, in the order DataCnv passes them:
  //   strictChecking          true: text must match its pattern to the end and fields must be in
  //                           range ("20230230" raises); false: ICU's lenient calendar rolls them
  //                           over (Feb 30 is Mar 2) and trailing text is ignored;
  //   timeZoneId              an ICU zone id ("UTC", "Europe/Paris", "GMT+05:30"); null or empty:
  //                           "UTC"; an unknown id raises CP_DATETIME_INVALID_TIMEZONE_ERROR
  //                           (ZanConversionException 0xC0001599, "Invalid timezone", the id);
  //   centuryWindowStart      0 to 99: a two-digit year at or above it is 19yy, below it 20yy (53:
  //                           "52" is 2052, "53" is 1953); outside it raises
  //                           CP_DATETIME_INVALID_CENTURY_WINDOW (0xC000158B, the value);
  //   localeId                the locale of month and day names and am/pm; null or empty:
  //                           "en_US_POSIX";
  //   minimalDaysInFirstWeek  1 to 7, or 0 for the locale's own; anything else raises
  //                           CP_INTERNAL_ERROR ("Invalid minimal days in first week: ", value).
  // `logSource` (not owned, may be null) is the source that trace and failures name.
  PWFDateTimeFormatter(bool strictChecking = true, const char16_t* timeZoneId = nullptr,
                       std::int32_t centuryWindowStart = 53, const char16_t* localeId = nullptr,
                       std::int32_t minimalDaysInFirstWeek = 0,
                       const ZanLogSource* logSource = nullptr);
  PWFDateTimeFormatter(const PWFDateTimeFormatter&) = delete;
  PWFDateTimeFormatter& operator=(const PWFDateTimeFormatter&) = delete;
  ~PWFDateTimeFormatter();

  // --- text ---

  // Reads `length` units of `text` (-1: up to its NUL) by `pattern`.
  //   "09.04.23 13:05", "dd.MM.yy HH:mm" -> 2023-04-09T13:05:00, no zone
  // Raises CP_INTERNAL_ERROR for a null pattern ("Null pattern pointer."), a null text with a
  // non-zero length ("Null input pointer") or a length below -1 ("Invalid input length: ");
  // CP_DATETIME_PARSE_ERROR (ZanParserException, inserts: the text, the pattern, the ICU error)
  // for text that does not match, or, when strict, has more after it; when strict,
  // CP_CALENDAR_LENIENCY_ERROR ("CPI Invalid Date entered", the text) for fields out of range.
  // Pattern "I": CP_DATETIME_INVALID_FORMAT_ERROR ("CPI String invalid format for pattern
  // 'I'.", the text) for anything but the ISO forms above, and, when strict, the same
  // CP_CALENDAR_LENIENCY_ERROR as other patterns for a date that does not exist ("2023-02-30").
  PWFDateTime parse(const char16_t* text, std::int32_t length, const char16_t* pattern);
  // Writes `value` by `pattern`, in the value's zone when it has one. Raises CP_INTERNAL_ERROR for
  // a null pattern; CP_DATETIME_FORMAT_ERROR (ZanParserException) when the pattern needs a half of
  // the value that is not set; when strict, CP_CALENDAR_LENIENCY_ERROR for fields out of range
  // (insert: the fields).
  ZanStringBase format(const PWFDateTime& value, const char16_t* pattern);

  // --- numbers since an epoch ---
  // `epoch` is text of the pattern "yyyy-MM-dd'T'HH:mmZZZ" of at least 22 units
  // ("1900-01-01T00:00+00:00"), or null or empty for 1970-01-01T00:00Z; anything else raises
  // CP_DATETIME_INVALID_EPOCH (0xC000158C, "CPI Datetime invalid Epoch"). A value read from a
  // number has both halves, scale 6, and the formatter's zone at that instant.

  // parseMilliSeconds(seconds x 1000).
  PWFDateTime parseSeconds(std::int32_t seconds, const char16_t* epoch);
  PWFDateTime parseMilliSeconds(std::int64_t milliseconds, const char16_t* epoch);
  // formatMilliSeconds / 1000, truncated toward zero; a count beyond 32 bits raises
  // CP_CONV_INPUT_DATA_OUT_OF_BOUNDS (inserts "date-time", "4-byte seconds", the count) rather
  // than being cut.
  std::int32_t formatSeconds(const PWFDateTime& value, const char16_t* epoch);
  // The value's instant minus the epoch, in whole milliseconds, truncated toward zero.
  std::int64_t formatMilliSeconds(const PWFDateTime& value, const char16_t* epoch);

  // --- binary field records ---
  // A pattern of the letters "yMdHmsSX": a run of one letter is one field, its length the width in
  // bytes (1, 2 or 4; signed, little-endian whatever the converter's byte order); "+n" or "-n"
  // after a run is added to the field when read and subtracted when written ("y+1900" holds years
  // since 1900); "X" is filler. Fields lie back to back from offset 0.
  //   bytes 7B 04 09, "y+1900Md" -> 2023-04-09T00:00:00, in the formatter's zone
  // A value read has both halves, scale 6 and the formatter's zone, like one read from a number.
  // Only a field's start is held against the data: a field that starts at or before its end is
  // read, its bytes past the end as zeros (so one that starts right at the end reads 0); a field
  // that starts beyond it keeps the calendar's default. Raises
  // CP_DATETIME_FROM_BINARY_ERROR (0xC0001597) for a width other than 1, 2 or 4 and for an unknown
  // letter, and, writing, CP_DATETIME_TO_BINARY_ERROR (0xC0001598) for a width other than 1, 2 or
  // 4 (not "X") and for a record longer than `length`.
  PWFDateTime parseBinary(const void* data, std::int32_t length, const char16_t* pattern);
  void formatBinary(const PWFDateTime& value, void* data, std::int32_t length,
                    const char16_t* pattern);

 private:
  void subParse(const void* data, std::int32_t length, std::int32_t& offset, std::int32_t width,
                char16_t letter, std::int32_t adjustment, UErrorCode& status);
  void subFormat(void* data, std::int32_t length, std::int32_t& offset, std::int32_t width,
                 char16_t letter, std::int32_t adjustment, UErrorCode& status) const;
  PWFBinaryFields EstablishBinaryField(char16_t letter) const;
  double UDateFromEpoch(const char16_t* epoch);

  // The calendar, cleared and loaded from `value`: what is not set takes 1970-01-01 00:00; a value
  // with a zone is taken in that zone, one without in the formatter's. When strict, fields out of
  // range raise CP_CALENDAR_LENIENCY_ERROR with `source` as insert (by default the value's fields).
  void loadCalendar(const PWFDateTime& value, const std::string& source = {});
  // The value of the calendar's instant: both halves, scale 6, the zone at that instant.
  PWFDateTime calendarValue();
  // The calendar's zone back to the formatter's, after a parse adopted the text's zone.
  void restoreTimeZone();
  // The fields of the halves asked for, as the calendar computes them.
  void readFields(PWFDateTime& value, bool date, bool time);
  PWFDateTime parseText(const ZanStringBase& text, const ZanStringBase& pattern);
  // For a text that the strict format refused: raises CP_CALENDAR_LENIENCY_ERROR when it is the
  // pattern's text with fields out of range, and returns otherwise.
  void requireMatchOutOfRange(const ZanStringBase& text);
  ZanStringBase formatText(const PWFDateTime& value, const ZanStringBase& pattern);
  // A binary record's argument checks: CP_INTERNAL_ERROR for a null pattern, a negative length or
  // a null record of some length.
  void requireRecordArguments(const char* function, const void* data, std::int32_t length,
                              const char16_t* pattern) const;
  template <class Visit>
  void walkBinaryPattern(const char16_t* pattern, Visit&& visit);

  bool strictChecking_;
  ZanStringBase timeZoneId_;
  std::int32_t centuryWindowStart_;
  const ZanLogSource* logSource_;  // not owned
  std::unique_ptr<PWFICUCalendar> calendar_;
  std::unique_ptr<PWFICUDateTime> dateFormat_;
  bool calendarInOwnZone_ = true;  // false after a zone of a text or a value was put in
};

#endif  // BSUTILS_PWFDATETIMEFORMATTER_H
