#include <bsutils/cpunicodeconverter.h>

#include <algorithm>

#include "core/cpraise.h"

using namespace bsutils::internal;

namespace {

constexpr const char* kModule = "cpunicodeconverter";
// Both local directions trace under one name, as the runtime's own trace has always shown them.
constexpr const char* kLocalFunction = "CPUnicodeConverter::fromUnicodeToLocal";
constexpr std::int32_t kLocalCcsid = 1208;

void closeConverter(UConverter* converter) { ucnv_close(converter); }

void requireLocalArguments(const void* target, const int* targetLength, const void* source,
                           int sourceLength) {
  if (source == nullptr && sourceLength > 0) {
    CP_RAISE(CP_INTERNAL_ERROR, kModule, kLocalFunction, nullptr, nullptr, "Null input pointer");
  }
  if (sourceLength < 0) {
    CP_RAISE(CP_INTERNAL_ERROR, kModule, kLocalFunction, nullptr, nullptr,
             "Invalid input length: ", sourceLength);
  }
  if (targetLength == nullptr || (target == nullptr && *targetLength > 0)) {
    CP_RAISE(CP_INTERNAL_ERROR, kModule, kLocalFunction, nullptr, nullptr,
             "Null output buffer pointer");
  }
  if (*targetLength < 0) {
    CP_RAISE(CP_INTERNAL_ERROR, kModule, kLocalFunction, nullptr, nullptr,
             "Invalid output buffer length: ", *targetLength);
  }
}

// One call over the whole source through a converter of its own, so that the static conversions
// may run on any thread. A target too small is a failure, never a truncation.
template <class Target, class Source>
void convertLocally(void (CPUnicodeConverter::*convert)(Target*&, const Target*, const Source*&,
                                                        const Source*, std::int32_t*, signed char,
                                                        UErrorCode&),
                    Target* target, int* targetLength, const Source* source, int sourceLength,
                    const char* failureText) {
  requireLocalArguments(target, targetLength, source, sourceLength);
  CPUnicodeConverter local(kLocalCcsid, LittleEndian);
  Target* end = target;
  UErrorCode status = U_ZERO_ERROR;
  (local.*convert)(end, target + *targetLength, source, source + sourceLength, nullptr, true,
                   status);
  if (U_FAILURE(status)) {
    CP_RAISE(CP_INTERNAL_ERROR, kModule, kLocalFunction, nullptr, failureText,
             static_cast<std::int32_t>(status));
  }
  *targetLength = static_cast<int>(end - target);
}

}  // namespace

bool CPBaseUnicodeConverter::IsUnicode(std::int32_t ccsid) {
  return ccsid == 1200 || ccsid == 13488 || ccsid == 17584;
}

CPBaseUnicodeConverter::CPBaseUnicodeConverter(std::int32_t ccsid, EEndian endian) {
  if (!IsUnicode(ccsid)) {
    name_ = "ibm-" + std::to_string(ccsid);
  } else if (endian == LittleEndian) {
    name_ = "utf-16le";
  } else if (endian == BigEndian) {
    name_ = "utf-16be";
  }
}

CPUnicodeConverter::CPUnicodeConverter(std::int32_t ccsid, EEndian endian)
    : CPBaseUnicodeConverter(ccsid, endian) {
  if (name_.empty()) {
    status_ = U_ILLEGAL_ARGUMENT_ERROR;
  } else {
    converter_.reset(ucnv_open(name_.c_str(), &status_), closeConverter);
  }
  if (U_FAILURE(status_)) {
    constexpr const char* kFunction = "cpunicodeconverter::cpunicodeconverter";
    if (status_ == U_INVALID_TABLE_FORMAT || status_ == U_INVALID_TABLE_FILE) {
      CP_RAISE(QZR2132, kModule, kFunction, nullptr, nullptr, ccsid, name_);
    }
    CP_RAISE(QZR2130, kModule, kFunction, nullptr, nullptr, ccsid, name_);
  }
  // Fixed for the converter's life, and asked for by every zoned field and text read.
  minBytesPerChar_ = ucnv_getMinCharSize(converter_.get());
  maxBytesPerChar_ = ucnv_getMaxCharSize(converter_.get());
}

void CPUnicodeConverter::fromUnicodeToLocal(char* target, int* targetLength, const char16_t* source,
                                            int sourceLength) {
  convertLocally(&CPUnicodeConverter::fromUnicode, target, targetLength, source, sourceLength,
                 "Error converting to text to local codepage");
}

void CPUnicodeConverter::fromLocalToUnicode(char16_t* target, int* targetLength, const char* source,
                                            int sourceLength) {
  convertLocally(&CPUnicodeConverter::toUnicode, target, targetLength, source, sourceLength,
                 "Error converting from local codepage to unicode");
}

std::int32_t CPUnicodeConverter::MaxBytesPerChar() {
  return CPUnicodeConverter(kLocalCcsid, LittleEndian).getMaxBytesPerChar();
}

void CPUnicodeConverter::toUnicode(char16_t*& target, const char16_t* targetLimit,
                                   const char*& source, const char* sourceLimit,
                                   std::int32_t* offsets, signed char flush, UErrorCode& status) {
  ucnv_toUnicode(converter_.get(), &target, targetLimit, &source, sourceLimit, offsets, flush,
                 &status);
}

void CPUnicodeConverter::fromUnicode(char*& target, const char* targetLimit,
                                     const char16_t*& source, const char16_t* sourceLimit,
                                     std::int32_t* offsets, signed char flush, UErrorCode& status) {
  ucnv_fromUnicode(converter_.get(), &target, targetLimit, &source, sourceLimit, offsets, flush,
                   &status);
}

void CPUnicodeConverter::toUnicodeString(ZanStringBase& target, const char* source,
                                         std::int32_t length, UErrorCode& status) const {
  if (!converter_ || length <= 0 || source == nullptr) {
    status = U_ILLEGAL_ARGUMENT_ERROR;
    return;
  }
  // One pass suffices when no character yields more units than it has bytes over the minimum;
  // the loop serves the code pages where some do. The units go straight into the string's storage.
  const std::int32_t chunk = std::max<std::int32_t>(1, length / getMinBytesPerChar());
  icu::UnicodeString& text = target.unicodeString();
  text.remove();
  const char* position = source;
  const char* const limit = source + length;
  do {
    status = U_ZERO_ERROR;
    const std::int32_t written = text.length();
    char16_t* const buffer = text.getBuffer(written + chunk);
    if (buffer == nullptr) {
      status = U_MEMORY_ALLOCATION_ERROR;
      return;
    }
    char16_t* end = buffer + written;
    ucnv_toUnicode(converter_.get(), &end, buffer + written + chunk, &position, limit, nullptr,
                   true, &status);
    text.releaseBuffer(static_cast<std::int32_t>(end - buffer));
  } while (status == U_BUFFER_OVERFLOW_ERROR);
}

void CPUnicodeConverter::fromUnicodeString(char* target, std::int32_t& length,
                                           const ZanStringBase& source, UErrorCode& status) const {
  if (!converter_ || length < 1 || target == nullptr) {
    status = U_ILLEGAL_ARGUMENT_ERROR;
    return;
  }
  char* end = target;
  const char16_t* units = source.data();
  ucnv_fromUnicode(converter_.get(), &end, target + length, &units, units + source.length(),
                   nullptr, true, &status);
  length = static_cast<std::int32_t>(end - target);
  // A whole-text conversion that stops early (a full target) leaves the rest of its last character
  // pending in ICU, which would write it first into the next text.
  if (U_FAILURE(status)) ucnv_resetFromUnicode(converter_.get());
}

const char* CPUnicodeConverter::getName(UErrorCode& status) const {
  return ucnv_getName(converter_.get(), &status);
}

UConverterType CPUnicodeConverter::getType() { return ucnv_getType(converter_.get()); }
