#ifndef BSUTILS_ISODATETIME_H
#define BSUTILS_ISODATETIME_H

// Date-time records as ISO 8601 extended text, for the standard text form of values. Only the
// halves that are set are written: a record without a time is a date ("2004-02-29"), one without
// a date is a time ("13:05:09.123"). A set timezone adds "Z" or the offset ("+01:00"); the local
// time flag is not written. A year before the common era (era 0) is written as an astronomical
// year: 1 BC is "0000", 2 BC "-0001".

#include <bsutils/pwfdata.h>
#include <zan/zanstringbase.h>

class ZanLogSource;

namespace bsutils::internal {

// Raises CP_CONV_INPUT_DATA_INVALID (insert "date-time") for a record with neither half set.
ZanStringBase isoDateTimeText(const PWFDateTime& value, const ZanLogSource* logSource);

// Reads the text back: the fields of a missing half, and the timezone when there is no zone, are
// not set; a time without a fraction has subsecond and scale 0. Raises CP_CONV_INPUT_DATA_INVALID
// (inserts "date-time" and the text) for anything else or a field out of its range.
PWFDateTime isoDateTimeValue(const ZanStringBase& text, const ZanLogSource* logSource);

}  // namespace bsutils::internal

#endif  // BSUTILS_ISODATETIME_H
