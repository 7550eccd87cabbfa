// Date-times through the converter: the forwards to its date-time formatter, and packed decimals
// whose digits are a date-time text.

#include <bsutils/dataconv.h>
#include <bsutils/pwfdatetimeformatter.h>

#include "core/cpdebugtrace.h"
#include "core/cpraise.h"
#include "datacnvprivate.h"

using namespace bsutils::internal;

PWFDateTimeFormatter* DataCnv::getDateTimeFormatter() {
  // Created once from the settings of the moment and kept: later settings do not reach it.
  if (!dateTimeFormatter_) {
    dateTimeFormatter_ = std::make_unique<PWFDateTimeFormatter>(
        formatterArg1_, formatterArg2_, formatterArg3_, formatterArg4_, formatterArg5_, this);
  }
  return dateTimeFormatter_.get();
}

PWFDateTime DataCnv::StrToDateTime(const char16_t* text, std::int32_t length,
                                   const char16_t* pattern) {
  CpDebugTrace trace("DataCnv::StrToDateTime", static_cast<const void*>(text), length, pattern);
  return getDateTimeFormatter()->parse(text, length, pattern);
}

ZanStringBase DataCnv::StrFromDateTime(const PWFDateTime& value, const char16_t* pattern) {
  CpDebugTrace trace("DataCnv::StrFromDateTime", pattern);
  return trace.result(getDateTimeFormatter()->format(value, pattern));
}

PWFDateTime DataCnv::SecondsToDateTime(std::int32_t seconds, const char16_t* epoch) {
  CpDebugTrace trace("DataCnv::SecondsToDateTime", seconds);
  return getDateTimeFormatter()->parseSeconds(seconds, epoch);
}

PWFDateTime DataCnv::MilliSecondsToDateTime(std::int64_t milliseconds, const char16_t* epoch) {
  CpDebugTrace trace("DataCnv::MilliSecondsToDateTime", milliseconds);
  return getDateTimeFormatter()->parseMilliSeconds(milliseconds, epoch);
}

PWFDateTime DataCnv::BinaryToDateTime(const void* data, std::int32_t length,
                                      const char16_t* pattern) {
  CpDebugTrace trace("DataCnv::BinaryToDateTime", data, length, pattern);
  return getDateTimeFormatter()->parseBinary(data, length, pattern);
}

std::int32_t DataCnv::SecondsFromDateTime(const PWFDateTime& value, const char16_t* epoch) {
  CpDebugTrace trace("DataCnv::SecondsFromDateTime");
  return trace.result(getDateTimeFormatter()->formatSeconds(value, epoch));
}

std::int64_t DataCnv::MilliSecondsFromDateTime(const PWFDateTime& value, const char16_t* epoch) {
  CpDebugTrace trace("DataCnv::MilliSecondsFromDateTime");
  return trace.result(getDateTimeFormatter()->formatMilliSeconds(value, epoch));
}

void DataCnv::BinaryFromDateTime(const PWFDateTime& value, void* data, std::int32_t length,
                                 const char16_t* pattern) {
  CpDebugTrace trace("DataCnv::BinaryFromDateTime", data, length, pattern);
  getDateTimeFormatter()->formatBinary(value, data, length, pattern);
}

PWFDateTime DataCnv::PckdDecToDateTime(const unsigned char* data, std::int32_t length,
                                       EEndian endian, std::int32_t precision, ESign sign,
                                       const char16_t* pattern) {
  constexpr const char* kFunction = "DataCnv::PckdDecToDateTime";
  CpDebugTrace trace(kFunction, static_cast<const void*>(data), length, endian, precision, sign,
                     pattern);
  if (pattern == nullptr) {
    CP_RAISE(CP_INTERNAL_ERROR, kDataCnvModule, kFunction, this, nullptr, "Null pattern pointer.");
  }
  ZanStringBase digits = PckdDecToDec(data, length, endian, precision, sign).getDecimalText();
  // The field holds as many digits as its bytes do, not as the pattern has letters.
  const std::int32_t patternLength = ZanStringBase(pattern).length();
  if (digits.length() < patternLength) {
    digits.padLeading(patternLength, u'0');
  } else {
    std::int32_t zeros = 0;
    while (digits.length() - zeros > patternLength && digits[zeros] == u'0') ++zeros;
    digits.erase(0, zeros);
  }
  return StrToDateTime(digits.data(), digits.length(), pattern);
}

void DataCnv::PckdDecFromDateTime(const PWFDateTime& value, unsigned char* target,
                                  std::int32_t& length, const char16_t* pattern, EEndian endian,
                                  std::int32_t precision, ESign sign) {
  CpDebugTrace trace("DataCnv::PckdDecFromDateTime", static_cast<const void*>(target), length,
                     pattern, endian, precision, sign);
  const ZanStringBase text = StrFromDateTime(value, pattern);
  PckdDecFromDec(text.terminatedData(), target, length, endian, precision, sign);
}
