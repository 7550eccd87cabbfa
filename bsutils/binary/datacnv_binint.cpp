// Binary integers: two's-complement fields of 1, 2, 4 and 8 bytes in the object's byte order, read
// into and written from integers, doubles with implied decimal places, and decimal text.

#include <bsutils/dataconv.h>

#include <cstdint>
#include <limits>

#include "binary/fieldbits.h"
#include "core/canonicaltext.h"
#include "core/cpdebugtrace.h"
#include "core/cpraise.h"
#include "datacnvprivate.h"

using namespace bsutils::internal;

namespace {

// One row of a writer's range table: the field size and signedness it applies to, the values that
// fit, and what an overflow says (no message: every value of the source type fits).
struct IntegerTarget {
  std::int32_t size;
  bool isSigned;
  std::int64_t min;
  std::int64_t max;
  const char* overflow;
  const char* description;

  bool fits(std::int64_t value) const { return value >= min && value <= max; }
};

constexpr std::int64_t kInt32Min = std::numeric_limits<std::int32_t>::min();
constexpr std::int64_t kInt32Max = std::numeric_limits<std::int32_t>::max();
constexpr std::int64_t kInt64Min = std::numeric_limits<std::int64_t>::min();
constexpr std::int64_t kInt64Max = std::numeric_limits<std::int64_t>::max();
constexpr std::int64_t kUInt32Max = std::numeric_limits<std::uint32_t>::max();

constexpr IntegerTarget kFromInt32[] = {
    {4, true, kInt32Min, kInt32Max, nullptr, "4-byte integer"},
    {4, false, 0, kInt32Max, "Overflow converting a PWFInt32 to PWFUInt32", "4-byte integer"},
    {2, true, -32768, 32767, "Overflow converting a PWFInt32 to PWFInt16", "2-byte integer"},
    {2, false, 0, 65535, "Overflow converting a PWFInt32 to PWFUInt16", "2-byte integer"},
    {1, true, -128, 127, "Overflow converting a PWFInt32 to PWFInt8", "1-byte integer"},
    {1, false, 0, 255, "Overflow converting a PWFInt32 to PWFUInt8", "1-byte integer"},
};

// The unsigned writer has one row a size.
constexpr IntegerTarget kFromUInt32[] = {
    {4, false, 0, kUInt32Max, nullptr, "4-byte integer"},
    {2, false, 0, 65535, "Overflow converting a PWFUInt32 to PWFUInt16", "2-byte unsigned integer"},
    {1, false, 0, 255, "Overflow converting a PWFUInt32 to PWFUInt8", "1-byte unsigned integer"},
};

constexpr IntegerTarget kFromInt64[] = {
    {8, true, kInt64Min, kInt64Max, nullptr, "8-byte integer"},
    {8, false, 0, kInt64Max, "Overflow converting a PWFInt64 to PWFUInt64", "8-byte integer"},
    {4, true, kInt32Min, kInt32Max, "Overflow converting a PWFInt64 to PWFInt32", "4-byte integer"},
    {4, false, 0, kUInt32Max, "Overflow converting a PWFInt64 to PWFUInt32", "4-byte integer"},
    {2, true, -32768, 32767, "Overflow converting a PWFInt64 to PWFInt16", "2-byte integer"},
    {2, false, 0, 65535, "Overflow converting a PWFInt64 to PWFUInt16", "2-byte integer"},
    {1, true, -128, 127, "Overflow converting a PWFInt64 to PWFInt8", "1-byte integer"},
    {1, false, 0, 255, "Overflow converting a PWFInt64 to PWFUInt8", "1-byte integer"},
};

// The 64-bit unsigned writer's rows: its values pass the signed range, so the bounds are its own.
struct UnsignedTarget {
  std::int32_t size;
  std::uint64_t max;
  const char* overflow;
  const char* description;
  static constexpr bool isSigned = false;

  bool fits(std::uint64_t value) const { return value <= max; }
};

constexpr UnsignedTarget kFromUInt64[] = {
    {8, std::numeric_limits<std::uint64_t>::max(), nullptr, "8-byte integer"},
    {4, std::numeric_limits<std::uint32_t>::max(), "Overflow converting a PWFUInt64 to PWFUInt32",
     "4-byte unsigned integer"},
    {2, 65535, "Overflow converting a PWFUInt64 to PWFUInt16", "2-byte unsigned integer"},
    {1, 255, "Overflow converting a PWFUInt64 to PWFUInt8", "1-byte unsigned integer"},
};

// The bounds of IntFromDbl, inclusive. The 8-byte ones are the doubles nearest to 2 to the 64
// and 2 to the 63, which are those powers themselves.
struct DoubleTarget {
  std::int32_t size;
  double unsignedMax;
  const char* unsignedDescription;
  double signedMin;
  double signedMax;
  const char* signedDescription;
};

constexpr DoubleTarget kFromDouble[] = {
    {1, 255.0, "unsigned 1-byte integer", -128.0, 127.0, "signed 1-byte integer"},
    {2, 65535.0, "unsigned 2-byte integer", -32768.0, 32767.0, "signed 2-byte integer"},
    {4, 4294967295.0, "unsigned 4-byte integer", -2147483648.0, 2147483647.0,
     "signed 4-byte integer"},
    {8, 1.8446744073709552e19, "unsigned 8-byte integer", -9.223372036854776e18,
     9.223372036854776e18, "signed 8-byte integer"},
};

bool isIntegerSize(std::int32_t size, bool eightAllowed) {
  return size == 1 || size == 2 || size == 4 || (eightAllowed && size == 8);
}

std::int64_t signExtended(std::uint64_t value, std::int32_t size) {
  const int unusedBits = 64 - 8 * size;
  return static_cast<std::int64_t>(value << unusedBits) >> unusedBits;
}

// The writers' common body: the row of `targets` for the size and signedness decides the range.
template <class Target, std::size_t Rows>
void writeCheckedInteger(const DataCnv* source, EEndian endian, const char* function,
                         const Target (&targets)[Rows], decltype(Target::max) value,
                         unsigned char* output, std::int32_t size, bool isSigned) {
  requireOutputBuffer(source, function, output);
  for (const Target& target : targets) {
    if (target.size != size || target.isSigned != isSigned) continue;
    if (!target.fits(value)) {
      CP_RAISE(CP_CONV_INPUT_DATA_TOO_LONG, kDataCnvModule, function, source, target.overflow,
               "integer", target.description, size);
    }
    storeFieldBits(static_cast<std::uint64_t>(value), output, size, endian);
    return;
  }
  CP_RAISE(CP_INTERNAL_ERROR, kDataCnvModule, function, source, nullptr,
           "Invalid integer size: ", size);
}

// The scales are applied by repeated multiplication, which a negative count cannot express.
void requireScale(const DataCnv* source, const char* function, std::int32_t scale) {
  if (scale < 0) {
    CP_RAISE(CP_INTERNAL_ERROR, kDataCnvModule, function, source, nullptr,
             "Invalid scale: ", scale);
  }
}

// The readers' argument checks; each names a null source in its own words.
inline void checkIntegerSource(const DataCnv* cnv, const char* function, const char* nullMessage,
                               const unsigned char* source, std::int32_t length,
                               bool eightAllowed) {
  if (source == nullptr) {
    CP_RAISE(CP_INTERNAL_ERROR, kDataCnvModule, function, cnv, nullptr, nullMessage);
  }
  if (!isIntegerSize(length, eightAllowed)) {
    CP_RAISE(CP_INTERNAL_ERROR, kDataCnvModule, function, cnv, nullptr,
             "Invalid integer size: ", length);
  }
}

}  // namespace

std::int32_t DataCnv::IntToInt32(const unsigned char* source, std::int32_t length, ESign sign) {
  constexpr const char* kFunction = "DataCnv::IntToInt32";
  CpDebugTrace trace(kFunction, static_cast<const void*>(source), length, sign);
  checkIntegerSource(this, kFunction,
                     "DataCnv::IntToInt32 called with a Null input pointer for the source.", source,
                     length, false);
  const std::uint64_t value = loadFieldBits(source, length, endian_);
  const bool isSigned = sign == eLeadingEmbeddedSign;
  if (length == 4 && !isSigned && value > static_cast<std::uint64_t>(kInt32Max)) {
    CP_RAISE(CP_CONV_INPUT_DATA_TOO_LONG, kDataCnvModule, kFunction, this,
             "Overflow converting a PWFUInt32 to PWFInt32", "integer", "4-byte integer", length);
  }
  return trace.result(
      static_cast<std::int32_t>(isSigned ? signExtended(value, length) : std::int64_t(value)));
}

std::int64_t DataCnv::IntToInt64(const unsigned char* source, std::int32_t length, ESign sign) {
  constexpr const char* kFunction = "DataCnv::IntToInt64";
  CpDebugTrace trace(kFunction, static_cast<const void*>(source), length, sign);
  checkIntegerSource(this, kFunction, "Null input pointer passed into DataCnv::IntToInt64", source,
                     length, true);
  const std::uint64_t value = loadFieldBits(source, length, endian_);
  const bool isSigned = sign == eLeadingEmbeddedSign;
  if (length == 8 && !isSigned && value > static_cast<std::uint64_t>(kInt64Max)) {
    CP_RAISE(CP_CONV_INPUT_DATA_TOO_LONG, kDataCnvModule, kFunction, this,
             "Overflow converting a PWFUInt64 to PWFInt64", "integer", "8-byte integer", length);
  }
  return trace.result(isSigned ? signExtended(value, length) : static_cast<std::int64_t>(value));
}

std::uint64_t DataCnv::UIntToUInt64(const unsigned char* source, std::int32_t length) {
  constexpr const char* kFunction = "DataCnv::UIntToUInt64";
  CpDebugTrace trace(kFunction, static_cast<const void*>(source), length);
  checkIntegerSource(this, kFunction, "Null input pointer", source, length, true);
  return trace.result(loadFieldBits(source, length, endian_));
}

double DataCnv::IntToDbl(const unsigned char* source, std::int32_t length, std::int32_t scale,
                         ESign sign) {
  constexpr const char* kFunction = "DataCnv::IntToDbl";
  CpDebugTrace trace(kFunction, static_cast<const void*>(source), length, scale, sign);
  requireInputPointer(this, kFunction, source);
  if (length <= 0) {
    CP_RAISE(CP_INTERNAL_ERROR, kDataCnvModule, kFunction, this, nullptr,
             "Invalid input size: ", length);
  }
  requireScale(this, kFunction, scale);
  double value = sign == eLeadingEmbeddedSign
                     ? static_cast<double>(IntToInt64(source, length, eLeadingEmbeddedSign))
                     : static_cast<double>(UIntToUInt64(source, length));
  // One multiplication a place, as the runtime does: its results carry that rounding.
  for (std::int32_t i = 0; i < scale; ++i) value *= 0.1;
  return trace.result(value);
}

PWFData DataCnv::IntToDec(const unsigned char* source, std::int32_t length, std::int32_t scale) {
  constexpr const char* kFunction = "DataCnv::IntToDec";
  CpDebugTrace trace(kFunction, static_cast<const void*>(source), length, scale);
  requireInputPointer(this, kFunction, source);
  if (length <= 0) {
    CP_RAISE(CP_INTERNAL_ERROR, kDataCnvModule, kFunction, this, nullptr,
             "Invalid input size: ", length);
  }
  requireScale(this, kFunction, scale);
  // Always read as signed, whatever the field's convention.
  const std::int64_t value = IntToInt64(source, length, eLeadingEmbeddedSign);
  if (scale <= kMaxStackScale && fastPathsOpen()) {
    char16_t digits[kMaxIntegerDigits];
    const std::int32_t count = decimalDigits(magnitudeOf(value), digits);
    char16_t text[kMaxIntegerDigits + kMaxStackScale + 4];
    placePoint(digits, count, count, scale, value < 0, text);
    return PWFData(text, eDecimal);
  }
  ZanStringBase text;
  Int64ToUString(value, text);
  shiftSignedDecimal(text, scale);
  return PWFData(text.terminatedData(), eDecimal);
}

void DataCnv::IntFromInt32(std::int32_t value, unsigned char* output, std::int32_t& length,
                           ESign sign) {
  constexpr const char* kFunction = "DataCnv::IntFromInt32";
  CpDebugTrace trace(kFunction, value, static_cast<const void*>(output), length, sign);
  writeCheckedInteger(this, endian_, kFunction, kFromInt32, value, output, length,
                      sign == eLeadingEmbeddedSign);
}

void DataCnv::UIntFromUInt32(std::uint32_t value, unsigned char* output, std::int32_t& length) {
  constexpr const char* kFunction = "DataCnv::UIntFromUInt32";
  CpDebugTrace trace(kFunction, value, static_cast<const void*>(output), length);
  writeCheckedInteger(this, endian_, kFunction, kFromUInt32, value, output, length, false);
}

void DataCnv::IntFromInt64(std::int64_t value, unsigned char* output, std::int32_t& length,
                           ESign sign) {
  constexpr const char* kFunction = "DataCnv::IntFromInt64";
  CpDebugTrace trace(kFunction, value, static_cast<const void*>(output), length, sign);
  writeCheckedInteger(this, endian_, kFunction, kFromInt64, value, output, length,
                      sign == eLeadingEmbeddedSign);
}

void DataCnv::UIntFromUInt64(std::uint64_t value, unsigned char* output, std::int32_t& length) {
  constexpr const char* kFunction = "DataCnv::UIntFromUInt64";
  CpDebugTrace trace(kFunction, value, static_cast<const void*>(output), length);
  writeCheckedInteger(this, endian_, kFunction, kFromUInt64, value, output, length, false);
}

void DataCnv::IntFromDbl(double value, unsigned char* output, std::int32_t& length, ESign sign,
                         std::int32_t scale) {
  constexpr const char* kFunction = "DataCnv::IntFromDbl";
  CpDebugTrace trace(kFunction, value, static_cast<const void*>(output), length, sign, scale);
  requireOutputBuffer(this, kFunction, output);
  requireScale(this, kFunction, scale);
  for (std::int32_t i = 0; i < scale; ++i) value *= 10.0;

  const DoubleTarget* target = nullptr;
  for (const DoubleTarget& row : kFromDouble) {
    if (row.size == length) target = &row;
  }
  if (target == nullptr) {
    CP_RAISE(CP_INTERNAL_ERROR, kDataCnvModule, kFunction, this, nullptr,
             "Invalid integer size: ", length);
  }
  const bool isSigned = sign != eNoSign;
  const double min = isSigned ? target->signedMin : 0.0;
  const double max = isSigned ? target->signedMax : target->unsignedMax;
  // Written so that a NaN, which compares false with everything, is out of bounds too.
  if (!(value >= min && value <= max)) {
    CP_RAISE(CP_CONV_INPUT_DATA_OUT_OF_BOUNDS, kDataCnvModule, kFunction, this, nullptr,
             "double float", isSigned ? target->signedDescription : target->unsignedDescription);
  }

  // Truncated toward zero. The 8-byte upper bounds are 2 to the 63 and 2 to the 64, one past the
  // largest integers; converting them is undefined, so they are written as those largest values.
  std::uint64_t bits = 0;
  if (!isSigned) {
    bits = value >= 18446744073709551616.0 ? std::numeric_limits<std::uint64_t>::max()
                                           : static_cast<std::uint64_t>(value);
  } else if (value >= 9223372036854775808.0) {
    bits = static_cast<std::uint64_t>(kInt64Max);
  } else {
    bits = static_cast<std::uint64_t>(static_cast<std::int64_t>(value));
  }
  storeFieldBits(bits, output, length, endian_);
}

void DataCnv::IntFromDec(const char16_t* decimal, unsigned char* output, std::int32_t& length,
                         std::int32_t scale) {
  constexpr const char* kFunction = "DataCnv::IntFromDec";
  CpDebugTrace trace(kFunction, static_cast<const void*>(decimal), static_cast<const void*>(output),
                     length, scale);
  requireInputPointer(this, kFunction, decimal);
  requireOutputBuffer(this, kFunction, output);
  if (length <= 0) {
    CP_RAISE(CP_INTERNAL_ERROR, kDataCnvModule, kFunction, this, nullptr,
             "Invalid output buffer size: ", length);
  }
  requireScale(this, kFunction, scale);
  // Moving the point to the right is safe with a sign in front; the fraction is then cut, never
  // rounded: 123.99 gives 123.
  ZanStringBase text(decimal);
  adjustDecimalForString(text, -scale);
  TrimFromDecimal(text);
  const bool negative =
      CheckSign(text, eLeadingSeparateSign, US_MINUS.terminatedData(), US_PLUS.terminatedData());
  TrimData(text, eTrimWhiteSpace, eLeftJustified, u'0', true);
  TrimData(text, eTrimPadding, eRightJustified, u'0', true);
  if (negative) text.insert(0, US_MINUS);
  IntFromInt64(UStringToInt64(text), output, length, eLeadingEmbeddedSign);
}
