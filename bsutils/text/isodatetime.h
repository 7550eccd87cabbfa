#ifndef BSUTILS_ISODATETIME_H
#define BSUTILS_ISODATETIME_H

// Date-time records as ISO 8601 extended text: the one reader and writer of ISO text in the
// library, for the standard text form of values and the date-time pattern "I". Only the halves
// that are set are written: a record without a time is a date ("2004-02-29"), one without a date
// is a time ("13:05:09.123"). A set timezone adds "Z" or the offset ("+01:00"); the local time
// field is not written. A year before the common era (era 0) is written as an astronomical year:
// 1 BC is "0000", 2 BC "-0001".

#include <bsutils/pwfdata.h>
#include <zan/zanstringbase.h>

#include <optional>

namespace bsutils::internal {

// Nothing for a record with neither half set.
std::optional<ZanStringBase> isoDateTimeText(const PWFDateTime& value);

// Reads the text back, the reduced forms included: a date of a year ("2023"), a month
// ("2023-04") or a day, a time of minutes ("13:05") or seconds with 1 to 9 fraction digits, or
// both joined by "T"; then "Z" or "+hh:mm"/"-hh:mm". What a set half leaves out takes month 1,
// day 1, second 0; the fields of a missing half, and the timezone when there is no zone, are not
// set; a time without a fraction has subsecond and scale 0. Nothing for any other text or a field
// out of its range.
std::optional<PWFDateTime> isoDateTimeValue(const ZanStringBase& text);

}  // namespace bsutils::internal

#endif  // BSUTILS_ISODATETIME_H
