// Packed decimal: two digits a byte and a sign nibble last, read into decimal text and written from
// it, with the integer and double forms going through that text; valid fields of usual size are
// read straight from their bytes, and integers packed straight from their value. And the TLOG
// packed forms, digit strings without a fixed sign position and packed hexadecimal characters.

#include <bsutils/cpalloc.h>
#include <bsutils/cputils.h>
#include <bsutils/dataconv.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <limits>
#include <optional>

#include "core/canonicaltext.h"
#include "core/cpdebugtrace.h"
#include "core/cpraise.h"
#include "datacnvprivate.h"

using namespace bsutils::internal;

namespace {

constexpr unsigned char kUnsignedNibble = 0xF;
constexpr unsigned char kNegativeNibble = 0xD;
// Validation counts B as a negative code; the readers take only D as negative.
constexpr unsigned char kAlternateNegativeNibble = 0xB;
constexpr unsigned char kLastDigit = 9;

// Packed fields know two sign conventions: style 1 is signed, any other unsigned when read.
constexpr DataCnv::ESign kSignedField = DataCnv::eLeadingEmbeddedSign;

// Fields up to this many bytes are unpacked on the stack; longer ones are rare.
constexpr std::int32_t kLocalFieldBytes = 32;
// The longest field whose nibbles, and whose text with a sign, can be counted in 32 bits.
constexpr std::int32_t kMaxFieldBytes = (std::numeric_limits<std::int32_t>::max() - 2) / 2;

constexpr char16_t kHexDigits[] = u"0123456789ABCDEF";

constexpr const char* kPackedKind = "packed decimal";
constexpr const char* kTlogDecimalKind = "TLOG packed decimal";
constexpr const char* kTlogStringKind = "TLOG packed string";

void checkSize(const DataCnv* cnv, const char* function, std::int32_t size) {
  if (size < 1 || size > kMaxFieldBytes) {
    CP_RAISE(CP_INTERNAL_ERROR, kDataCnvModule, function, cnv, nullptr,
             "Invalid input length: ", size);
  }
}

void checkField(const DataCnv* cnv, const char* function, const unsigned char* source,
                std::int32_t size) {
  requireInputPointer(cnv, function, source);
  checkSize(cnv, function, size);
}

// The characters of nibbles, through the hexadecimal digits: "0".."9" for digits.
ZanStringBase nibbleText(const unsigned char* nibbles, std::int32_t count) {
  // A block at a time: one append for a field of usual size.
  constexpr std::int32_t kBlock = 2 * kLocalFieldBytes;
  char16_t block[kBlock];
  ZanStringBase text;
  for (std::int32_t first = 0; first < count; first += kBlock) {
    const std::int32_t units = std::min(kBlock, count - first);
    for (std::int32_t i = 0; i < units; ++i) block[i] = kHexDigits[nibbles[first + i]];
    text.append(block, units);
  }
  return text;
}

// The TLOG decimal writer's nibble of a character it has checked: a digit or "-".
unsigned char tlogDecimalNibble(char16_t unit) {
  return unit == u'-' ? kNegativeNibble : static_cast<unsigned char>(unit - u'0');
}

// The digits of a valid packed field of at most 16 bytes (31 digits, the most a COBOL field has),
// read straight from its bytes and handed to `digit` most significant first; true when the sign is
// D, the only one that reads as negative. Empty for anything the general path must judge (a bad
// nibble, a sign the style refuses, a longer field, fast paths closed): the caller's result is then
// the general path's, failure included.
template <class Digit>
std::optional<bool> scanPackedField(const unsigned char* source, std::int32_t size, EEndian endian,
                                    DataCnv::ESign sign, Digit&& digit) {
  constexpr std::int32_t kLongestQuickField = 16;
  if (source == nullptr || size < 1 || size > kLongestQuickField || !fastPathsOpen()) {
    return std::nullopt;
  }
  // Byte k counts from the most significant: the sign byte is the last of a big-endian field and
  // the first of a little-endian one.
  const auto byteAt = [&](std::int32_t k) {
    return source[endian == LittleEndian ? size - 1 - k : k];
  };
  const unsigned char signNibble = byteAt(size - 1) & 0x0F;
  if (signNibble <= kLastDigit) return std::nullopt;
  const bool negative = signNibble == kNegativeNibble;
  if ((negative || signNibble == kAlternateNegativeNibble) && sign != kSignedField) {
    return std::nullopt;
  }
  for (std::int32_t k = 0; k < size; ++k) {
    const unsigned char byte = byteAt(k);
    const unsigned left = byte >> 4;
    const unsigned right = byte & 0x0F;
    if (left > kLastDigit) return std::nullopt;
    digit(left);
    if (k + 1 < size) {
      if (right > kLastDigit) return std::nullopt;
      digit(right);
    }
  }
  return negative;
}

// The integer value of a valid packed field of at most 10 bytes (19 digits) with a scale from 0 to
// 18: the digits truncated by the scale. False where scanPackedField gives nothing, and for a
// magnitude beyond 63 bits. (A flag and an output rather than an optional: the optional's return
// through memory stalls the caller longer than the read takes.)
bool readPackedInteger(const unsigned char* source, std::int32_t size, EEndian endian,
                       std::int32_t scale, DataCnv::ESign sign, std::int64_t& value) {
  constexpr std::int32_t kLongestField = 10;
  constexpr std::int32_t kLongestScale = 18;
  if (size > kLongestField || scale < 0 || scale > kLongestScale) return false;
  std::uint64_t magnitude = 0;
  const auto negative = scanPackedField(
      source, size, endian, sign, [&](unsigned digit) { magnitude = magnitude * 10 + digit; });
  if (!negative) return false;
  for (std::int32_t s = 0; s < scale; ++s) magnitude /= 10;
  if (magnitude > static_cast<std::uint64_t>(INT64_MAX)) return false;
  value = *negative ? -static_cast<std::int64_t>(magnitude) : static_cast<std::int64_t>(magnitude);
  return true;
}

}  // namespace

// A field's nibbles, left nibble of each byte first, in big-endian order whatever the field's own,
// so the sign nibble is the last. Fields of usual size stay on the stack.
class DataCnv::UnpackedField {
 public:
  UnpackedField(DataCnv& cnv, const unsigned char* source, std::int32_t size, EEndian endian) {
    if (size <= kLocalFieldBytes) {
      unpack(source, size, endian, local_);
    } else {
      allocated_ = cnv.getUnpackedBuffer(source, size, endian);
    }
  }
  UnpackedField(const UnpackedField&) = delete;
  UnpackedField& operator=(const UnpackedField&) = delete;
  ~UnpackedField() { cpFree(allocated_); }

  const unsigned char* nibbles() const { return allocated_ != nullptr ? allocated_ : local_; }

  // A little-endian field is read from its last byte: its sign byte comes first.
  static void unpack(const unsigned char* source, std::int32_t size, EEndian endian,
                     unsigned char* nibbles) {
    for (std::int32_t i = 0; i < size; ++i) {
      const unsigned char byte = source[endian == LittleEndian ? size - 1 - i : i];
      nibbles[2 * i] = LeftNibble(byte);
      nibbles[2 * i + 1] = RightNibble(byte);
    }
  }

 private:
  unsigned char local_[2 * kLocalFieldBytes];
  unsigned char* allocated_ = nullptr;  // from getUnpackedBuffer, for longer fields
};

unsigned char DataCnv::LeftNibble(unsigned char byte) { return byte >> 4; }

unsigned char DataCnv::RightNibble(unsigned char byte) { return byte & 0x0F; }

unsigned char* DataCnv::getUnpackedBuffer(const unsigned char* source, std::int32_t size,
                                          EEndian endian) {
  if (source == nullptr) return nullptr;
  constexpr const char* kFunction = "DataCnv::getUnpackedBuffer";
  checkField(this, kFunction, source, size);
  // A refusal is this conversion's failure, not the process's: no cpMalloc here.
  auto* nibbles = static_cast<unsigned char*>(std::malloc(2 * static_cast<std::size_t>(size)));
  if (nibbles == nullptr) {
    CP_RAISE(CP_MEMORY_ALLOC_FAILURE_AS_CONVERSION, kDataCnvModule, kFunction, this, nullptr,
             "malloc returned NULL");
  }
  UnpackedField::unpack(source, size, endian, nibbles);
  return nibbles;
}

void DataCnv::ValidatePackedDecimal(const unsigned char* nibbles, std::int32_t count, ESign sign,
                                    const unsigned char* source) {
  constexpr const char* kFunction = "DataCnv::ValidatePackedDecimal";
  const unsigned char signNibble = nibbles[count - 1];
  if (signNibble <= kLastDigit) {
    CP_RAISE(CP_CONV_INPUT_DATA_INVALID, kDataCnvModule, kFunction, this, nullptr,
             "packed decimal, no sign found ", CPUtils::binaryDump(source, count / 2));
  }
  if ((signNibble == kNegativeNibble || signNibble == kAlternateNegativeNibble) &&
      sign != kSignedField) {
    CP_RAISE(CP_CONV_INPUT_DATA_INVALID, kDataCnvModule, kFunction, this, nullptr,
             "packed decimal, negative sign found on unsigned data ",
             CPUtils::binaryDump(source, count / 2));
  }
  for (std::int32_t i = count - 2; i >= 0; --i) {
    if (nibbles[i] > kLastDigit) {
      CP_RAISE(CP_CONV_INPUT_DATA_INVALID, kDataCnvModule, kFunction, this, nullptr,
               "packed decimal, non-numeric data found", CPUtils::binaryDump(source, count / 2));
    }
  }
}

void DataCnv::GetPackedDecimalSign(std::int16_t sign, int negative, char* nibble) {
  if (sign == eNoSign) {
    *nibble = kUnsignedNibble;
  } else if (negative != 0) {
    *nibble = kNegativeNibble;
  } else {
    // The object's positive sign must read back as positive, and must not spill into the digit
    // nibble beside it.
    const auto positive = static_cast<unsigned char>(positivePackedSign_);
    if (positive != 0xA && positive != 0xC && positive != 0xE && positive != 0xF) {
      CP_RAISE(CP_INTERNAL_ERROR, kDataCnvModule, "DataCnv::GetPackedDecimalSign", this, nullptr,
               "Invalid positive packed sign: ", static_cast<std::int32_t>(positive));
    }
    *nibble = positivePackedSign_;
  }
}

ZanStringBase DataCnv::packedDecimalText(const char* function, const unsigned char* source,
                                         std::int32_t size, EEndian endian, std::int32_t scale,
                                         ESign sign) {
  checkField(this, function, source, size);
  const UnpackedField field(*this, source, size, endian);
  const unsigned char* nibbles = field.nibbles();
  const std::int32_t count = 2 * size;
  ValidatePackedDecimal(nibbles, count, sign, source);
  // Leading zeros stay. The point moves over the digits alone, so the sign goes on afterwards:
  // -5 with scale 2 is "-0.05". Only D reads as negative; B passes validation as a negative code
  // and reads as positive, as the runtime has always read it.
  ZanStringBase text = nibbleText(nibbles, count - 1);
  adjustDecimalForString(text, scale);
  if (nibbles[count - 1] == kNegativeNibble) text.insert(0, US_MINUS);
  return text;
}

void DataCnv::packDecimalText(const char* function, const ZanStringBase& decimal,
                              unsigned char* output, std::int32_t size, EEndian endian,
                              std::int32_t scale, ESign sign) {
  bool negative = false;
  const std::optional<ZanStringBase> digitsOfValue =
      scaledFieldDigits(function, decimal, scale, 2 * static_cast<std::int64_t>(size), negative);
  if (!digitsOfValue) {
    CP_RAISE(CP_CONV_INPUT_DATA_TOO_LONG, kDataCnvModule, function, this, nullptr, kPackedKind,
             "decimal", size);
  }
  const ZanStringBase& text = *digitsOfValue;
  const bool zero = text.length() == 1 && text[0] == u'0';

  // A negative value has no place in an unsigned field; a zero has no sign to lose, but keeps the
  // one it was written with.
  if (negative && sign == eNoSign && !zero) {
    CP_RAISE(CP_CONV_INPUT_DATA_OUT_OF_BOUNDS, kDataCnvModule, function, this, nullptr, "decimal",
             "packed decimal (no sign)");
  }
  const std::int32_t digits = text.length();
  if (digits / 2 + 1 > size) {
    CP_RAISE(CP_CONV_INPUT_DATA_TOO_LONG, kDataCnvModule, function, this, nullptr, kPackedKind,
             "decimal", size);
  }
  // Only "unsigned or not" matters here; narrowing the style itself could turn one into the other.
  char signNibble = 0;
  GetPackedDecimalSign(sign == eNoSign ? 0 : 1, negative ? 1 : 0, &signNibble);

  // Byte k counts from the sign byte: the last byte of a big-endian field, the first of a
  // little-endian one. Zero bytes fill the field out beyond the digits.
  const auto byteAt = [&](std::int32_t k) -> unsigned char& {
    return output[endian == LittleEndian ? k : size - 1 - k];
  };
  const auto digitAt = [&](std::int32_t i) { return static_cast<unsigned char>(text[i] - u'0'); };
  byteAt(0) = static_cast<unsigned char>(digitAt(digits - 1) << 4 | signNibble);
  std::int32_t k = 1;
  for (std::int32_t last = digits - 2; last >= 0; last -= 2, ++k) {
    const unsigned char left = last > 0 ? digitAt(last - 1) : 0;
    byteAt(k) = static_cast<unsigned char>(left << 4 | digitAt(last));
  }
  for (; k < size; ++k) byteAt(k) = 0;
}

bool DataCnv::packMagnitude(std::uint64_t magnitude, bool negative, unsigned char* output,
                            std::int32_t size, EEndian endian, std::int32_t scale, ESign sign) {
  constexpr std::int32_t kLongestScale = 18;
  if (output == nullptr || size < 1 || scale < -kLongestScale || scale > kLongestScale ||
      !fastPathsOpen()) {
    return false;
  }
  // The digits times ten to the scale, the fraction truncated; beyond 64 bits is the general
  // path's to refuse.
  for (std::int32_t s = 0; s < -scale; ++s) magnitude /= 10;
  for (std::int32_t s = 0; s < scale; ++s) {
    if (magnitude > std::numeric_limits<std::uint64_t>::max() / 10) return false;
    magnitude *= 10;
  }
  if (negative && sign == eNoSign && magnitude != 0) return false;
  std::int32_t digits = 1;
  for (std::uint64_t rest = magnitude / 10; rest != 0; rest /= 10) ++digits;
  if (digits / 2 + 1 > size) return false;
  char signNibble = 0;
  GetPackedDecimalSign(sign == eNoSign ? 0 : 1, negative ? 1 : 0, &signNibble);
  // Byte k counts from the sign byte, as packDecimalText writes them.
  const auto byteAt = [&](std::int32_t k) -> unsigned char& {
    return output[endian == LittleEndian ? k : size - 1 - k];
  };
  byteAt(0) = static_cast<unsigned char>((magnitude % 10) << 4 | signNibble);
  magnitude /= 10;
  for (std::int32_t k = 1; k < size; ++k) {
    const auto right = static_cast<unsigned>(magnitude % 10);
    const auto left = static_cast<unsigned>(magnitude / 10 % 10);
    magnitude /= 100;
    byteAt(k) = static_cast<unsigned char>(left << 4 | right);
  }
  return true;
}

PWFData DataCnv::PckdDecToDec(const unsigned char* source, std::int32_t size, EEndian endian,
                              std::int32_t scale, ESign sign) {
  constexpr const char* kFunction = "DataCnv::PckdDecToDec";
  CpDebugTrace trace(kFunction, static_cast<const void*>(source), size, endian, scale, sign);
  // Every digit but the sign's place, leading zeros included, as the general path gives them.
  if (scale >= 0 && scale <= kMaxStackScale) {
    char16_t digits[2 * kLocalFieldBytes];
    std::int32_t count = 0;
    const auto negative = scanPackedField(source, size, endian, sign, [&](unsigned digit) {
      digits[count++] = static_cast<char16_t>(u'0' + digit);
    });
    if (negative) {
      char16_t text[2 * kLocalFieldBytes + kMaxStackScale + 4];
      placePoint(digits, count, count, scale, *negative, text);
      return PWFData(text, eDecimal);
    }
  }
  const ZanStringBase text = packedDecimalText(kFunction, source, size, endian, scale, sign);
  return PWFData(text.terminatedData(), eDecimal);
}

double DataCnv::PckdDecToDbl(const unsigned char* source, std::int32_t size, EEndian endian,
                             std::int32_t scale, ESign sign) {
  constexpr const char* kFunction = "DataCnv::PckdDecToDbl";
  CpDebugTrace trace(kFunction, static_cast<const void*>(source), size, endian, scale, sign);
  // Eight bytes hold 15 digits.
  if (size <= kExactDigits / 2 + 1 && scale >= 0 && scale <= kExactPowerOfTen) {
    std::uint64_t magnitude = 0;
    const auto negative = scanPackedField(
        source, size, endian, sign, [&](unsigned digit) { magnitude = magnitude * 10 + digit; });
    if (negative) {
      const double value = static_cast<double>(magnitude) / kPowersOfTen[scale];
      return *negative ? -value : value;
    }
  }
  return trace.result(
      PWFStringTodouble(packedDecimalText(kFunction, source, size, endian, scale, sign)));
}

// The integer readers go through a binary integer of their width, so that a value out of range
// fails as the integer writers fail it and the fraction is truncated as they truncate it.
std::int32_t DataCnv::PckdDecToInt32(const unsigned char* source, std::int32_t size, EEndian endian,
                                     std::int32_t scale, ESign sign) {
  constexpr const char* kFunction = "DataCnv::PckdDecToInt32";
  CpDebugTrace trace(kFunction, static_cast<const void*>(source), size, endian, scale, sign);
  std::int64_t value = 0;
  if (readPackedInteger(source, size, endian, scale, sign, value) && value >= INT32_MIN &&
      value <= INT32_MAX) {
    return static_cast<std::int32_t>(value);
  }
  const ZanStringBase text = packedDecimalText(kFunction, source, size, endian, scale, sign);
  unsigned char work[4];
  std::int32_t length = sizeof work;
  IntFromDec(text.terminatedData(), work, length, 0);
  return trace.result(IntToInt32(work, length, kSignedField));
}

std::int64_t DataCnv::PckdDecToPWFInt64(const unsigned char* source, std::int32_t size,
                                        EEndian endian, std::int32_t scale, ESign sign) {
  constexpr const char* kFunction = "DataCnv::PckdDecToPWFInt64";
  CpDebugTrace trace(kFunction, static_cast<const void*>(source), size, endian, scale, sign);
  std::int64_t value = 0;
  if (readPackedInteger(source, size, endian, scale, sign, value)) return value;
  const ZanStringBase text = packedDecimalText(kFunction, source, size, endian, scale, sign);
  unsigned char work[8];
  std::int32_t length = sizeof work;
  IntFromDec(text.terminatedData(), work, length, 0);
  return trace.result(IntToInt64(work, length, kSignedField));
}

void DataCnv::PckdDecFromDec(const char16_t* decimal, unsigned char* output, std::int32_t& size,
                             EEndian endian, std::int32_t scale, ESign sign) {
  constexpr const char* kFunction = "DataCnv::PckdDecFromDec";
  CpDebugTrace trace(kFunction, decimal, size, endian, scale, sign);
  requireInputPointer(this, kFunction, decimal);
  requireOutputBuffer(this, kFunction, output);
  packDecimalText(kFunction, ZanStringBase(decimal), output, size, endian, scale, sign);
}

void DataCnv::PckdDecFromDbl(double value, unsigned char* output, std::int32_t& size,
                             EEndian endian, std::int32_t scale, ESign sign) {
  constexpr const char* kFunction = "DataCnv::PckdDecFromDbl";
  CpDebugTrace trace(kFunction, value, size, endian, scale, sign);
  requireOutputBuffer(this, kFunction, output);
  if (hasPositionalText(value) && fastPathsOpen()) {
    // The double's shortest digits, as its decimal text has them, taken as a whole number and a
    // count of fraction digits that the scale then moves.
    char text[kPositionalDoubleCapacity];
    const std::int32_t length = positionalDoubleText(value, text);
    constexpr std::int32_t kMostDigits = 19;  // below 10 to the 19, within 64 bits
    std::uint64_t magnitude = 0;
    std::int32_t digits = 0;
    std::int32_t integerDigits = -1;  // until the point
    for (std::int32_t i = text[0] == '-' ? 1 : 0; i < length && digits <= kMostDigits; ++i) {
      if (text[i] == '.') {
        integerDigits = digits;
      } else {
        magnitude = magnitude * 10 + static_cast<unsigned>(text[i] - '0');
        ++digits;
      }
    }
    const std::int32_t fractionDigits = integerDigits < 0 ? 0 : digits - integerDigits;
    if (digits <= kMostDigits && packMagnitude(magnitude, text[0] == '-', output, size, endian,
                                               scale - fractionDigits, sign)) {
      return;
    }
  }
  ZanStringBase text;
  doubleToUString(value, text, false);
  packDecimalText(kFunction, text, output, size, endian, scale, sign);
}

// An integer's decimal text is exactly what writing it to a binary integer of its own width and
// reading that back as a decimal would give, so the writers take it directly.
void DataCnv::PckdDecFromInt32(std::int32_t value, unsigned char* output, std::int32_t& size,
                               EEndian endian, std::int32_t scale, ESign sign) {
  constexpr const char* kFunction = "DataCnv::PckdDecFromInt32";
  CpDebugTrace trace(kFunction, value, size, endian, scale, sign);
  if (packMagnitude(magnitudeOf(value), value < 0, output, size, endian, scale, sign)) return;
  requireOutputBuffer(this, kFunction, output);
  ZanStringBase text;
  Int64ToUString(value, text);
  packDecimalText(kFunction, text, output, size, endian, scale, sign);
}

void DataCnv::PckdDecFromPWFInt64(std::int64_t value, unsigned char* output, std::int32_t& size,
                                  EEndian endian, std::int32_t scale, ESign sign) {
  constexpr const char* kFunction = "DataCnv::PckdDecFromPWFInt64";
  CpDebugTrace trace(kFunction, value, size, endian, scale, sign);
  if (packMagnitude(magnitudeOf(value), value < 0, output, size, endian, scale, sign)) return;
  requireOutputBuffer(this, kFunction, output);
  ZanStringBase text;
  Int64ToUString(value, text);
  packDecimalText(kFunction, text, output, size, endian, scale, sign);
}

PWFData DataCnv::TLOGPckdStrToStr(const unsigned char* source, std::int32_t size, EEndian endian) {
  constexpr const char* kFunction = "DataCnv::TLOGPckdStrToStr";
  CpDebugTrace trace(kFunction, static_cast<const void*>(source), size, endian);
  if (source == nullptr) return PWFData(u"", 0);
  checkField(this, kFunction, source, size);
  const UnpackedField field(*this, source, size, endian);
  return PWFData(nibbleText(field.nibbles(), 2 * size));
}

PWFData DataCnv::TLOGPckdDecToDec(const unsigned char* source, std::int32_t size, EEndian endian) {
  constexpr const char* kFunction = "DataCnv::TLOGPckdDecToDec";
  CpDebugTrace trace(kFunction, static_cast<const void*>(source), size, endian);
  if (source == nullptr) return PWFData(u"", 0);
  checkField(this, kFunction, source, size);
  const UnpackedField field(*this, source, size, endian);
  const unsigned char* nibbles = field.nibbles();
  const std::int32_t count = 2 * size;
  // D anywhere makes the value negative; F first is a filler that evens out the digit count.
  bool negative = false;
  ZanStringBase digits;
  digits.reserve(count);
  for (std::int32_t i = 0; i < count; ++i) {
    const unsigned char nibble = nibbles[i];
    if (nibble == kNegativeNibble) {
      negative = true;
    } else if (nibble <= kLastDigit) {
      digits.append(kHexDigits[nibble]);
    } else if (nibble != kUnsignedNibble || i != 0) {
      CP_RAISE(CP_CONV_INPUT_DATA_INVALID, kDataCnvModule, kFunction, this, nullptr,
               kTlogDecimalKind, CPUtils::binaryDump(source, size));
    }
  }
  // A field of sign and filler alone holds zero.
  if (digits.isEmpty()) digits.append(u'0');
  if (negative) digits.insert(0, US_MINUS);
  return PWFData(digits.terminatedData(), eDecimal);
}

ZanStringBase DataCnv::tlogFieldText(const char* function, const char* kind, const char* valueKind,
                                     const PWFData& value, std::int32_t size) {
  checkSize(this, function, size);
  if (value.isNull()) {
    CP_RAISE(CP_INTERNAL_ERROR, kDataCnvModule, function, this, nullptr,
             "Should not call this method with null data");
  }
  ZanStringBase text;
  switch (value.getDataLogicalType()) {
    case eString:
      text = value.getPWFStringValue();
      break;
    case eDecimal:
      text = value.getDecimalText();
      break;
    case eInteger:
      Int64ToUString(value.getInt64Value(), text);
      break;
    default:
      CP_RAISE(CP_INTERNAL_ERROR, kDataCnvModule, function, this, nullptr,
               "Should not call this method without a valid type");
  }
  if (text.length() > 2 * size) {
    CP_RAISE(CP_CONV_INPUT_DATA_TOO_LONG, kDataCnvModule, function, this, nullptr, kind, valueKind,
             size);
  }
  return text;
}

unsigned char* DataCnv::TLOGPWFDataToPckdDecimal(PWFData inputData, unsigned char* target,
                                                 std::int32_t size, EEndian endian,
                                                 bool bTrimLeadingZeros,
                                                 std::int32_t& outputLength) {
  constexpr const char* kFunction = "DataCnv::TLOGPWFDataToPckdDecimal";
  CpDebugTrace trace(kFunction, static_cast<const void*>(target), size, endian, bTrimLeadingZeros);
  if (target == nullptr) return nullptr;
  const ZanStringBase text = tlogFieldText(kFunction, kTlogDecimalKind, "decimal", inputData, size);
  for (std::int32_t i = 0; i < text.length(); ++i) {
    if (text[i] != u'-' && (text[i] < u'0' || text[i] > u'9')) {
      CP_RAISE(CP_CONV_INPUT_DATA_INVALID, kDataCnvModule, kFunction, this, nullptr,
               kTlogDecimalKind, text);
    }
  }

  // The text stands right-aligned in a field of "0" characters; a "-" stays where it falls, so a
  // negative value carries its minus inside the digits (-123 in 3 bytes: "00-123").
  const std::int32_t characters = 2 * size;
  const std::int32_t fill = characters - text.length();
  const auto characterAt = [&](std::int32_t i) { return i < fill ? u'0' : text[i - fill]; };
  std::int32_t next = 0;
  std::int32_t written = 0;
  if (bTrimLeadingZeros) {
    // At least one character stays. An odd count of zeros leaves one character over, which shares
    // its byte with an F filler nibble.
    std::int32_t zeros = 0;
    while (zeros < characters - 1 && characterAt(zeros) == u'0') ++zeros;
    next = zeros;
    if (zeros % 2 != 0) {
      target[written++] =
          static_cast<unsigned char>(kUnsignedNibble << 4 | tlogDecimalNibble(characterAt(zeros)));
      ++next;
    }
  }
  for (; next < characters; next += 2) {
    target[written++] = static_cast<unsigned char>(tlogDecimalNibble(characterAt(next)) << 4 |
                                                   tlogDecimalNibble(characterAt(next + 1)));
  }
  if (endian == LittleEndian) std::reverse(target, target + written);
  outputLength = written;
  return target;
}

unsigned char* DataCnv::TLOGPWFDataToPckdStr(const PWFData& inputData, unsigned char* target,
                                             std::int32_t size, EEndian endian) {
  constexpr const char* kFunction = "DataCnv::TLOGPWFDataToPckdStr";
  CpDebugTrace trace(kFunction, static_cast<const void*>(target), size, endian);
  if (target == nullptr) return nullptr;
  const ZanStringBase text = tlogFieldText(kFunction, kTlogStringKind, "string", inputData, size);
  for (std::int32_t i = 0; i < text.length(); ++i) {
    if (PWFChToHex(text[i]) < 0) {
      CP_RAISE(CP_CONV_INPUT_DATA_INVALID, kDataCnvModule, kFunction, this, nullptr,
               kTlogStringKind, text);
    }
  }
  // Right-aligned over "0" characters, as the TLOG decimal writer places its text.
  const std::int32_t fill = 2 * size - text.length();
  const auto nibbleAt = [&](std::int32_t i) {
    return static_cast<unsigned char>(i < fill ? 0 : PWFChToHex(text[i - fill]));
  };
  for (std::int32_t k = 0; k < size; ++k) {
    target[endian == LittleEndian ? size - 1 - k : k] =
        static_cast<unsigned char>(nibbleAt(2 * k) << 4 | nibbleAt(2 * k + 1));
  }
  return target;
}
