// The date-time formatter's numeric forms: seconds and milliseconds since an epoch, and records of
// small binary integers described by a pattern of the letters "yMdHmsSX".

#include <bsutils/cputils.h>
#include <bsutils/pwfdatetimeformatter.h>
#include <bsutils/pwficucalendar.h>
#include <bsutils/pwficudatetime.h>
#include <unicode/ustring.h>

#include <cstdint>
#include <cstring>
#include <string_view>

#include "core/cpdebugtrace.h"
#include "core/cpraise.h"
#include "datetime/formatterprivate.h"

using namespace bsutils::internal;

namespace {

constexpr std::int32_t kMinimumEpochLength = 22;
constexpr const char16_t* kEpochPattern = u"yyyy-MM-dd'T'HH:mmZZZ";
// The calendar field of each binary field kind, in the order of "yMdHmsSX" (the filler has none).
constexpr UCalendarDateFields kBinaryCalendarFields[] = {
    UCAL_YEAR, UCAL_MONTH, UCAL_DATE, UCAL_HOUR_OF_DAY, UCAL_MINUTE, UCAL_SECOND, UCAL_MILLISECOND};

bool isWidthSupported(std::int32_t width) { return width == 1 || width == 2 || width == 4; }

}  // namespace

PWFDateTime PWFDateTimeFormatter::parseSeconds(std::int32_t seconds, const char16_t* epoch) {
  CpDebugTrace trace("PWFDateTimeFormatter::parseSeconds", seconds);
  return parseMilliSeconds(std::int64_t{seconds} * 1000, epoch);
}

PWFDateTime PWFDateTimeFormatter::parseMilliSeconds(std::int64_t milliseconds,
                                                    const char16_t* epoch) {
  CpDebugTrace trace("PWFDateTimeFormatter::parseMilliSeconds", milliseconds);
  const double start = UDateFromEpoch(epoch);
  calendar_->clear();
  restoreTimeZone();
  calendar_->setMillis(start + static_cast<double>(milliseconds));
  return calendarValue();
}

std::int32_t PWFDateTimeFormatter::formatSeconds(const PWFDateTime& value, const char16_t* epoch) {
  constexpr const char* kFunction = "PWFDateTimeFormatter::formatSeconds";
  CpDebugTrace trace(kFunction);
  const std::int64_t seconds = formatMilliSeconds(value, epoch) / 1000;
  if (seconds < INT32_MIN || seconds > INT32_MAX) {
    CP_RAISE(CP_CONV_INPUT_DATA_OUT_OF_BOUNDS, kFormatterModule, kFunction, logSource_, nullptr,
             "date-time", "4-byte seconds", seconds);
  }
  return trace.result(static_cast<std::int32_t>(seconds));
}

std::int64_t PWFDateTimeFormatter::formatMilliSeconds(const PWFDateTime& value,
                                                      const char16_t* epoch) {
  CpDebugTrace trace("PWFDateTimeFormatter::formatMilliSeconds");
  const double start = UDateFromEpoch(epoch);
  loadCalendar(value);
  // The calendar holds whole milliseconds; what the value has below them still counts toward
  // zero, so 0.5 ms before the epoch is 0, not -1.
  const std::int64_t nanoseconds = fractionAt(value.subsecond, value.scale, 9);
  const double belowMilliseconds =
      value.hour == PWFDateTime::kNotSet ? 0.0 : static_cast<double>(nanoseconds % 1000000) / 1e6;
  const double milliseconds = calendar_->getMillis() - start + belowMilliseconds;
  restoreTimeZone();
  return trace.result(static_cast<std::int64_t>(milliseconds));
}

double PWFDateTimeFormatter::UDateFromEpoch(const char16_t* epoch) {
  constexpr const char* kFunction = "PWFDateTimeFormatter::UDateFromEpoch";
  if (epoch == nullptr || *epoch == 0) return 0.0;
  const ZanStringBase text(epoch);
  if (text.length() < kMinimumEpochLength) {
    CP_RAISE(CP_DATETIME_INVALID_EPOCH, kFormatterModule, kFunction, logSource_, nullptr, text);
  }
  // The epoch is a setting, not data: its zone is read as leniently as ICU reads zones ("+00:00",
  // "GMT+01:00"), however strict the formatter is with data.
  const bool lenient = dateFormat_->isLenient();
  dateFormat_->setLenient(true);
  dateFormat_->applyPattern(kEpochPattern);
  UDate instant = 0;
  const std::int32_t read = dateFormat_->parseLeading(text, instant);
  dateFormat_->setLenient(lenient);
  if (read != text.length()) {
    CP_RAISE(CP_DATETIME_INVALID_EPOCH, kFormatterModule, kFunction, logSource_, nullptr, text);
  }
  return instant;
}

void PWFDateTimeFormatter::requireRecordArguments(const char* function, const void* data,
                                                  std::int32_t length,
                                                  const char16_t* pattern) const {
  if (pattern == nullptr) {
    CP_RAISE(CP_INTERNAL_ERROR, kFormatterModule, function, logSource_, nullptr,
             "Null pattern pointer.");
  }
  if (length < 0 || (data == nullptr && length != 0)) {
    CP_RAISE(CP_INTERNAL_ERROR, kFormatterModule, function, logSource_, nullptr,
             "Invalid input length: ", length);
  }
}

template <class Visit>
void PWFDateTimeFormatter::walkBinaryPattern(const char16_t* pattern, Visit&& visit) {
  const std::u16string_view units(pattern);
  std::size_t i = 0;
  while (i < units.size()) {
    const char16_t letter = units[i];
    std::int32_t width = 0;
    while (i < units.size() && units[i] == letter) {
      ++width;
      ++i;
    }
    // "+n" or "-n" after a run adjusts its field; the run's letter right after the digits is
    // passed over without widening the field. The sum wraps as 32 bits, as the field does.
    std::uint32_t adjustment = 0;
    if (i < units.size() && (units[i] == u'+' || units[i] == u'-')) {
      const bool negative = units[i++] == u'-';
      while (i < units.size() && units[i] >= u'0' && units[i] <= u'9') {
        adjustment = adjustment * 10 + static_cast<std::uint32_t>(units[i++] - u'0');
      }
      if (negative) adjustment = 0 - adjustment;
      if (i < units.size() && units[i] == letter) ++i;
    }
    visit(width, letter, static_cast<std::int32_t>(adjustment));
  }
}

PWFDateTime PWFDateTimeFormatter::parseBinary(const void* data, std::int32_t length,
                                              const char16_t* pattern) {
  constexpr const char* kFunction = "PWFDateTimeFormatter::parseBinary";
  CpDebugTrace trace(kFunction, data, length, pattern);
  requireRecordArguments(kFunction, data, length, pattern);
  calendar_->clear();
  restoreTimeZone();
  std::int32_t offset = 0;
  // Fields past the end of the data are left unset on purpose, so their status is not looked at.
  UErrorCode status = U_ZERO_ERROR;
  walkBinaryPattern(pattern, [&](std::int32_t width, char16_t letter, std::int32_t adjustment) {
    subParse(data, length, offset, width, letter, adjustment, status);
  });
  if (strictChecking_) {
    calendar_->requireFieldsInRange(
        CPUtils::binaryDump(static_cast<const unsigned char*>(data), length));
  }
  return calendarValue();
}

void PWFDateTimeFormatter::formatBinary(const PWFDateTime& value, void* data, std::int32_t length,
                                        const char16_t* pattern) {
  constexpr const char* kFunction = "PWFDateTimeFormatter::formatBinary";
  CpDebugTrace trace(kFunction, data, length, pattern);
  requireRecordArguments(kFunction, data, length, pattern);
  loadCalendar(value);
  std::int32_t offset = 0;
  walkBinaryPattern(pattern, [&](std::int32_t width, char16_t letter, std::int32_t adjustment) {
    UErrorCode status = U_ZERO_ERROR;
    subFormat(data, length, offset, width, letter, adjustment, status);
    if (U_FAILURE(status)) {
      restoreTimeZone();
      CP_RAISE(CP_DATETIME_TO_BINARY_ERROR, kFormatterModule, kFunction, logSource_, nullptr,
               ZanStringBase(pattern), length);
    }
  });
  restoreTimeZone();
}

void PWFDateTimeFormatter::subParse(const void* data, std::int32_t length, std::int32_t& offset,
                                    std::int32_t width, char16_t letter, std::int32_t adjustment,
                                    UErrorCode& status) {
  constexpr const char* kFunction = "PWFDateTimeFormatter::subParse";
  const PWFBinaryFields field = EstablishBinaryField(letter);
  if (field == eBinaryFiller) {
    offset += width;
    return;
  }
  // Only the start of a field is held against the length: a field that starts inside the data
  // is read, as far as the data goes.
  if (offset > length) {
    status = U_INVALID_FORMAT_ERROR;
    return;
  }
  if (!isWidthSupported(width)) {
    CP_RAISE(CP_DATETIME_FROM_BINARY_ERROR, kFormatterModule, kFunction, logSource_, nullptr,
             letter, width);
  }
  if (field == eBinaryInvalid) {
    CP_RAISE(CP_DATETIME_FROM_BINARY_ERROR, kFormatterModule, kFunction, logSource_, nullptr,
             letter, width);
  }
  // Little-endian and signed at its width; bytes past the end of the data read as zeros.
  unsigned char bytes[4] = {};
  const std::int32_t available = std::min(width, length - offset);
  if (available > 0)
    std::memcpy(bytes, static_cast<const unsigned char*>(data) + offset,
                static_cast<std::size_t>(available));
  std::uint32_t raw = 0;
  for (std::int32_t i = width - 1; i >= 0; --i) raw = raw << 8 | bytes[i];
  const std::int32_t value = width == 1   ? static_cast<std::int8_t>(raw)
                             : width == 2 ? static_cast<std::int16_t>(raw)
                                          : static_cast<std::int32_t>(raw);
  // The sum, and the month's step down to ICU's count from 0, wrap as 32 bits as the field does.
  const std::uint32_t adjusted =
      static_cast<std::uint32_t>(value) + static_cast<std::uint32_t>(adjustment);
  calendar_->set(kBinaryCalendarFields[field],
                 static_cast<std::int32_t>(field == eBinaryMonth ? adjusted - 1 : adjusted));
  offset += width;
}

void PWFDateTimeFormatter::subFormat(void* data, std::int32_t length, std::int32_t& offset,
                                     std::int32_t width, char16_t letter, std::int32_t adjustment,
                                     UErrorCode& status) const {
  const PWFBinaryFields field = EstablishBinaryField(letter);
  if (std::int64_t{offset} + width > length) {
    status = U_INVALID_FORMAT_ERROR;
    return;
  }
  // The writing direction names its unknown letters with the reading direction's code.
  if (field == eBinaryInvalid) {
    CP_RAISE(CP_DATETIME_FROM_BINARY_ERROR, kFormatterModule, "PWFDateTimeFormatter::subFormat",
             logSource_, nullptr, letter, width);
  }
  std::int32_t stored = 0;
  if (field != eBinaryFiller) {
    stored = calendar_->get(kBinaryCalendarFields[field]) + (field == eBinaryMonth ? 1 : 0);
  }
  const std::uint32_t raw =
      static_cast<std::uint32_t>(stored) - static_cast<std::uint32_t>(adjustment);
  if (isWidthSupported(width)) {
    auto* bytes = static_cast<unsigned char*>(data) + offset;
    for (std::int32_t i = 0; i < width; ++i) bytes[i] = static_cast<unsigned char>(raw >> (8 * i));
  } else if (field != eBinaryFiller) {
    CP_RAISE(CP_DATETIME_TO_BINARY_ERROR, kFormatterModule, "PWFDateTimeFormatter::subFormat",
             logSource_, nullptr, letter, width);
  }
  offset += width;
}

PWFBinaryFields PWFDateTimeFormatter::EstablishBinaryField(char16_t letter) const {
  // "z" and "Z" follow in the same list but are no binary fields.
  static constexpr std::u16string_view kLetters = u"yMdHmsSXzZ";
  const std::size_t at = kLetters.find(letter);
  return at == std::u16string_view::npos || at > eBinaryFiller ? eBinaryInvalid
                                                               : static_cast<PWFBinaryFields>(at);
}
