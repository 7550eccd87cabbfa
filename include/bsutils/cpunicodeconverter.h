#ifndef BSUTILS_CPUNICODECONVERTER_H
#define BSUTILS_CPUNICODECONVERTER_H

// CPUnicodeConverter turns bytes of a numbered code page (a CCSID) into UTF-16 and back through one
// ICU converter. The UTF-16 CCSIDs (1200, 13488, 17584) open "utf-16le" or "utf-16be" as the byte
// order given says, never from a byte-order mark; every other CCSID opens ICU's alias for the
// numbered code page, "ibm-" and the number (1208 is UTF-8). Which CCSIDs exist is whatever the ICU
// data in use provides.
//
// Copies share one ICU converter and with it the streaming state (a partial character held between
// toUnicode calls is seen by every copy); the last copy to go closes it. A converter must not be
// used by two threads at once; the static local conversions open their own and may run anywhere.

#include <bsutils/encoding.h>
#include <bsutils/export.h>
#include <unicode/ucnv.h>
#include <zan/zanstringbase.h>

#include <cstdint>
#include <memory>
#include <string>

// The name a CCSID and byte order open, and the status of opening it.
class BSUTILS_EXPORT CPBaseUnicodeConverter {
 public:
  // True exactly for the UTF-16 CCSIDs 1200, 13488 and 17584; UTF-8 (1208) is not counted.
  static bool IsUnicode(std::int32_t ccsid);

 protected:
  // Derives the converter name. A UTF-16 CCSID with a byte order other than 1 or 2 has none; the
  // name is left empty and the open fails.
  CPBaseUnicodeConverter(std::int32_t ccsid, EEndian endian);

  UErrorCode status_ = U_ZERO_ERROR;
  std::string name_;
};

class BSUTILS_EXPORT CPUnicodeConverter : public CPBaseUnicodeConverter {
 public:
  // Opens the converter for `ccsid`. Raises ZanRecoverableException with source module
  // "cpunicodeconverter", function "cpunicodeconverter::cpunicodeconverter" and the inserts CCSID
  // and converter name: 0xC0000854 "Invalid codepage (or missing table)" when ICU reports a bad
  // table (U_INVALID_TABLE_FORMAT, U_INVALID_TABLE_FILE); 0xC0000852 "Error creating convertor"
  // for any other failure, an unknown CCSID among them.
  CPUnicodeConverter(std::int32_t ccsid, EEndian endian);

  // UTF-16 to UTF-8. `targetLength` in: the capacity in bytes; out: the bytes written. A target too
  // small is a failure, never a truncation: ZanConversionException 0xC000157E (CP_INTERNAL_ERROR),
  // trace text "Error converting to text to local codepage", insert the ICU status. Null or
  // negative arguments raise CP_INTERNAL_ERROR ("Null input pointer", "Null output buffer
  // pointer", "Invalid input length: ", "Invalid output buffer length: ").
  static void fromUnicodeToLocal(char* target, int* targetLength, const char16_t* source,
                                 int sourceLength);
  // UTF-8 to UTF-16, the mirror image; `targetLength` counts UTF-16 units. The failure text is
  // "Error converting from local codepage to unicode"; both directions trace under the function
  // name "CPUnicodeConverter::fromUnicodeToLocal".
  static void fromLocalToUnicode(char16_t* target, int* targetLength, const char* source,
                                 int sourceLength);
  // The most bytes one UTF-16 unit takes in UTF-8, the local code page.
  std::int32_t MaxBytesPerChar();

  // One ucnv_toUnicode / ucnv_fromUnicode call on the held converter, arguments passed through:
  // the pointers advance past what was done and failures are reported only in `status`
  // (U_BUFFER_OVERFLOW_ERROR: the target filled first).
  void toUnicode(char16_t*& target, const char16_t* targetLimit, const char*& source,
                 const char* sourceLimit, std::int32_t* offsets, signed char flush,
                 UErrorCode& status);
  void fromUnicode(char*& target, const char* targetLimit, const char16_t*& source,
                   const char16_t* sourceLimit, std::int32_t* offsets, signed char flush,
                   UErrorCode& status);

  // Converts `length` bytes into `target`, which is replaced. A length of 0 or less sets
  // U_ILLEGAL_ARGUMENT_ERROR and leaves `target` alone; storage that cannot be had sets
  // U_MEMORY_ALLOCATION_ERROR. Any conversion failure is left in `status`, with what was converted
  // before it in `target`.
  void toUnicodeString(ZanStringBase& target, const char* source, std::int32_t length,
                       UErrorCode& status) const;
  // Converts the whole of `source` into `target`. `length` in: the capacity in bytes (below 1:
  // U_ILLEGAL_ARGUMENT_ERROR); out: the bytes written. A capacity too small leaves
  // U_BUFFER_OVERFLOW_ERROR with the target full.
  void fromUnicodeString(char* target, std::int32_t& length, const ZanStringBase& source,
                         UErrorCode& status) const;

  signed char getMaxBytesPerChar() const { return maxBytesPerChar_; }
  signed char getMinBytesPerChar() const { return minBytesPerChar_; }
  const char* getName(UErrorCode& status) const;
  UConverterType getType();

 private:
  std::shared_ptr<UConverter> converter_;
  signed char minBytesPerChar_ = 0;
  signed char maxBytesPerChar_ = 0;
};

#endif  // BSUTILS_CPUNICODECONVERTER_H
