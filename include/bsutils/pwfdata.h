#ifndef BSUTILS_PWFDATA_H
#define BSUTILS_PWFDATA_H

// PWFData: the one value type of the library. It holds one value of one logical type, a typed
// null, or nothing at all. Strings and decimals share their text between copies; scalars live
// inline; only a copied binary allocates.
//
// Failures (all with source module "pwfdata"):
//   - an operation on the wrong type, a bad length, a null numeric read: ZanConversionException
//     0xC0001592 (CP_INTERNAL_PWFDATA_INVALID_OPERATION), trace text "CPI Internal error from
//     invalid operation on PWFData", one insert saying what was wrong;
//   - a 64-bit integer read as 32 bits out of range: ZanConversionException 0xC0001583
//     (CP_CONV_INPUT_DATA_TOO_LONG), trace text "Overflow converting a PWFInt64 to PWFInt32",
//     inserts "integer", "4-byte integer" and the value;
//   - a value given with no logical type: ZanParserException 0xC000157E (CP_INTERNAL_ERROR), trace
//     text "Invlaid logical type when passing in a value".

#include <bsutils/export.h>
#include <zan/zanstringbase.h>

#include <cstddef>
#include <cstdint>

// The numbers are part of the interface, gaps included.
enum ELogicalType : std::int32_t {
  eNothing = 0,
  eString = 2,
  eInteger = 4,
  eFloat = 6,
  eBinary = 10,
  eBoolean = 12,
  eInterval = 14,
  eDateTime = 15,
  eDecimal = 16,
};

// How a value built over a caller's bytes treats them.
enum EOwnership : std::int32_t {
  eCopy = 0,    // copies the bytes into storage of its own
  eAdopt = 1,   // takes a malloc'ed buffer: a binary keeps it and frees it with free(); any other
                // type copies what it needs and frees the buffer at once
  eBorrow = 2,  // binary only: points at the caller's bytes, which must outlive the value
};

// A date-time record. A field holding kNotSet (the smallest 32-bit value) is not set.
struct PWFDateTime {
  static constexpr std::int32_t kNotSet = INT32_MIN;

  std::int32_t era = 0;  // 1: the common era; 0: before it (the year then counts backwards)
  std::int32_t year = 0;
  std::int32_t month = 0;  // 1 to 12
  std::int32_t day = 0;
  std::int32_t hour = 0;           // 0 to 23
  std::int32_t minute = 0;         // 0 to 59
  std::int32_t second = 0;         // 0 to 59
  std::int32_t subsecond = 0;      // the fraction of the second in units of 10^-scale seconds
  std::int32_t scale = 0;          // digits in subsecond
  std::int32_t timezone = 0;       // offset from UTC in milliseconds
  std::int32_t localTimeZone = 0;  // non-zero: the value is in the local time zone

  bool operator==(const PWFDateTime&) const = default;
};

// An interval: whole years and months, and the days-to-fractions part in microseconds (one day is
// 86,400,000,000). `negative` applies to the whole interval.
struct PWFInterval {
  std::int32_t years = 0;
  std::int32_t months = 0;
  std::int64_t microseconds = 0;
  std::int32_t negative = 0;
};

static_assert(sizeof(PWFDateTime) == 44, "PWFDateTime is eleven 32-bit fields");
static_assert(sizeof(PWFInterval) == 24, "PWFInterval is 24 bytes with its padding");

class BSUTILS_EXPORT PWFData {
 public:
  // eNothing: nothing, not null. A type of 1 or more: a null of that type (an integer null has data
  // length 8). A negative type: not null and no content.
  explicit PWFData(ELogicalType type = eNothing);

  // The general constructor over a caller's bytes. `length` is in bytes; -1 means "NUL-terminated"
  // for eString and eDecimal, and "store nothing" for eBinary. A null `data` gives a null of
  // `type`.
  //   - eString, eDecimal: length / 2 UTF-16 units are copied (-1: up to the first NUL unit).
  //   - eInteger: length 4 or 8 ("Invalid length for an integer" otherwise).
  //   - eFloat, eBoolean, eInterval, eDateTime: the double, the 32-bit flag or the whole record is
  //     copied; the length is not used.
  //   - eBinary: eCopy copies `length` bytes; eAdopt and eBorrow keep `data`.
  //   - other types from 1 up: nothing is stored.
  // Non-null `data` with a type below 1 raises the invalid-type failure. A negative length other
  // than -1 is refused ("Invalid length for a string" / "... for a binary"); an eBinary ownership
  // outside 0 to 2 is refused ("Invalid ownership for a binary"). With eAdopt the buffer is freed
  // at once by every type that does not keep it; when construction fails it is left to the caller.
  PWFData(void* data, std::int32_t length, ELogicalType type, EOwnership ownership);
  // As above; eAdopt is refused ("Can't adopt given a const's pointer"): a const buffer cannot be
  // freed.
  PWFData(const void* data, std::int32_t length, ELogicalType type, EOwnership ownership);
  // A null pointer literal: a null of `type` (nothing and null for eNothing).
  PWFData(std::nullptr_t, std::int32_t length, ELogicalType type, EOwnership ownership);
  // eString of `length` UTF-16 units copied from `text`.
  PWFData(const char16_t* text, std::int32_t length);
  // NUL-terminated UTF-16 text of type eString or eDecimal, copied.
  PWFData(const char16_t* text, ELogicalType type);
  // eString sharing `text`'s storage.
  explicit PWFData(const ZanStringBase& text);
  // eInteger held as 32 bits; when `isNull`, a null whose value stays zero (data length 4).
  explicit PWFData(std::int32_t value, bool isNull = false);
  // eInteger held as 64 bits; null when `isNull`.
  explicit PWFData(std::int64_t value, bool isNull = false);
  // eInteger (32 bits) or eBoolean holding `value` unchanged; any other type is refused ("Logical
  // type for this contructor must be either Boolean or Integer").
  PWFData(std::int32_t value, ELogicalType type);
  explicit PWFData(bool value);  // eBoolean holding 1 or 0
  explicit PWFData(double value);
  explicit PWFData(const PWFInterval& value);
  explicit PWFData(const PWFDateTime& value);

  // Copies share the text; an owned binary is copied into a new buffer owned by the copy (eCopy); a
  // borrowed binary stays borrowed by both.
  PWFData(const PWFData& other);
  PWFData& operator=(const PWFData& other);
  // A move takes the text and any binary buffer with its ownership; the value moved from is left
  // as nothing.
  PWFData(PWFData&& other) noexcept;
  PWFData& operator=(PWFData&& other) noexcept;
  ~PWFData();

  ELogicalType getDataLogicalType() const { return type_; }
  bool isNull() const { return null_; }
  bool isNothing() const { return type_ == eNothing; }

  // The stored value: the UTF-16 units of a string or decimal; the 32- or 64-bit integer; the
  // double, flag or record; the bytes of a binary. Null for a null value and for other types.
  const void* getDataValue() const;
  // Bytes: units times 2 for text, 4 or 8 for an integer, 8 float, 4 boolean, 24 interval, 44
  // date-time, the binary's length; 0 for a null value and for other types.
  std::int32_t getDataLength() const;

  // The getters accept only their own type. Only the integer, float and boolean getters refuse a
  // null; the others return the null's empty or zero content.
  const ZanStringBase& getPWFStringValue() const;
  // The units, not NUL-terminated; `length` in units.
  const char16_t* getStringValue(std::int32_t& length) const;
  const char16_t* getStringValue() const;
  std::int32_t getStringLength() const;
  std::int32_t getInt32Value() const;
  std::int64_t getInt64Value() const;  // a 32-bit value is sign-extended
  double getDoubleValue() const;
  // The bytes and their count; a null binary gives a null pointer and 0.
  const unsigned char* getBinaryValue(std::int32_t& length) const;
  const unsigned char* getBinaryValue() const;
  std::int32_t getBooleanValue() const;  // the stored flag
  bool getBoolValue() const { return getBooleanValue() != 0; }
  PWFInterval getIntervalValue() const;
  PWFDateTime getDateTimeValue() const;
  const char16_t* getDecimalValue() const;  // the decimal text's units, not NUL-terminated
  std::int32_t getDecimalLength() const;    // in units
  // The decimal text as a string sharing this value's storage. The decimal writers take
  // NUL-terminated text: pass them getDecimalText().terminatedData(), never getDecimalValue().
  ZanStringBase getDecimalText() const;

  // The value for trace and diagnostics, as an eString value: "NOTHING" for nothing, "NULL" for a
  // null of any type, else its standard text form (DataCnv::StandardStrFromData), and "INVALID"
  // when that fails (a type with no value). Never throws.
  PWFData getDebugString() const;

  // Equal types and null flags, then by type: strings unit by unit; decimals by their normal form
  // (DataCnv::StrFromDec: "1.50" equals "01.5", "-0" equals "0"); integers as 64 bits; floats
  // exactly; binaries byte by byte; booleans by their stored flags; date-times field by field;
  // intervals by the interval rule (see pwfdata.cpp). Two null integers, floats or booleans raise
  // the null failure of their getter. Nothing equals nothing.
  bool operator==(const PWFData& other) const;

 private:
  struct IntegerValue {
    std::int32_t length;  // 4 or 8
    union {
      std::int32_t value32;
      std::int64_t value64;
    };
  };
  struct BinaryValue {
    EOwnership ownership;
    std::int32_t length;
    unsigned char* bytes;
  };
  union Value {
    PWFDateTime dateTime;
    IntegerValue integer;
    double real;
    std::int32_t boolean;
    BinaryValue binary;
    PWFInterval interval;
  };

  void init(const void* data, std::int32_t length, ELogicalType type, EOwnership ownership);
  void initBinary(const void* data, std::int32_t length, EOwnership ownership);
  static Value copiedValue(const PWFData& source);
  void releaseBinary();
  void becomeNothing();
  void traceLogicalType(const char* function) const;
  void requireType(ELogicalType type, const char* function, const char* mismatch) const;
  void requireNotNull(const char* function, const char* insert) const;
  bool intervalEquals(const PWFData& other) const;

  ELogicalType type_ = eNothing;
  bool null_ = false;
  ZanStringBase text_;
  Value value_{};  // zeroed: value-initialising a union zeroes its first member and the padding
};

#endif  // BSUTILS_PWFDATA_H
