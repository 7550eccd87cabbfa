// Floating point: 4- and 8-byte IEEE and hexadecimal (HFP) floats read into doubles and written
// from them, directly and through decimal text, the bit-exact conversions between the two formats
// as the runtime has them, and correctly rounded HFP conversions of values.
//
// The format conversions work on the bit patterns as unsigned words, copied in and out with memcpy:
// an HFP word held in a float is no float at all, and loading it as one could change its bits.

#include <bsutils/dataconv.h>

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <string>

#include "binary/fieldbits.h"
#include "core/canonicaltext.h"
#include "core/cpdebugtrace.h"
#include "core/cpraise.h"
#include "datacnvprivate.h"

using namespace bsutils::internal;

namespace {

constexpr std::uint32_t kSignBit = 0x80000000;
constexpr std::uint32_t kMagnitudeBits = 0x7FFFFFFF;
constexpr std::uint32_t kLowWordAllOnes = 0xFFFFFFFF;

// HFP: an exponent of 16 biased by 64 in bits 30 to 24, then the fraction.
constexpr std::int32_t kHfpBias = 64;
constexpr std::int32_t kHfpMaxCharacteristic = 127;
constexpr std::uint32_t kHfpFractionBits = 0x00FFFFFF;
constexpr std::uint32_t kHfpLargest = 0x7FFFFFFF;

// IEEE single: an exponent of 2 biased by 127 in bits 30 to 23, a 23-bit mantissa.
constexpr std::int32_t kSingleBias = 127;
constexpr std::int32_t kSingleMaxExponent = 255;
constexpr std::uint32_t kSingleMantissaBits = 0x007FFFFF;
constexpr std::uint32_t kSingleImplicitOne = 0x00800000;
constexpr std::uint32_t kSingleLargest = 0x7F7FFFFF;

// IEEE double, high word: an exponent biased by 1023 in bits 30 to 20, 20 mantissa bits.
constexpr std::int32_t kDoubleBias = 1023;
constexpr std::int32_t kDoubleMaxExponent = 2047;
constexpr std::uint32_t kDoubleHighMantissaBits = 0x000FFFFF;
constexpr std::uint32_t kDoubleHighLargest = 0x7FEFFFFF;

// The 8-byte fractions are handled as one 64-bit number, the high word's fraction bits above the
// low word, so "bit n of the high word" is bit n + 32 here.
constexpr int kLowWordWidth = 32;
constexpr std::uint64_t highBit(int bit) { return std::uint64_t{1} << (bit + kLowWordWidth); }

constexpr std::int32_t kFloatSize = 4;
constexpr std::int32_t kDoubleSize = 8;

// An 8-byte value as its high-order word (sign and exponent) and its low-order word.
struct Words {
  std::uint32_t high;
  std::uint32_t low;
};

// Each word is in machine order; BigEndian puts the high-order word first. The order is the
// caller's, per call: nothing is shared between calls.
Words loadWords(const void* value, EEndian endian) {
  std::uint32_t words[2];
  std::memcpy(words, value, sizeof words);
  return endian == BigEndian ? Words{words[0], words[1]} : Words{words[1], words[0]};
}

void storeWords(const Words& value, void* output, EEndian endian) {
  const std::uint32_t words[2] = {endian == BigEndian ? value.high : value.low,
                                  endian == BigEndian ? value.low : value.high};
  std::memcpy(output, words, sizeof words);
}

std::uint32_t loadWord(const void* value) {
  std::uint32_t word;
  std::memcpy(&word, value, sizeof word);
  return word;
}

void storeWord(std::uint32_t word, void* output) { std::memcpy(output, &word, sizeof word); }

// An 8-byte field's bits, as loadFieldBits gives them, and its two words.
Words wordsOf(std::uint64_t bits) {
  return {static_cast<std::uint32_t>(bits >> kLowWordWidth), static_cast<std::uint32_t>(bits)};
}
std::uint64_t bitsOf(const Words& words) {
  return std::uint64_t{words.high} << kLowWordWidth | words.low;
}

std::uint32_t hfpToIeeeSingle(std::uint32_t hfp) {
  const std::uint32_t sign = hfp & kSignBit;
  if ((hfp & kMagnitudeBits) == 0) return hfp;
  std::uint32_t fraction = hfp & kHfpFractionBits;
  std::int32_t exponent =
      4 * static_cast<std::int32_t>((hfp & kMagnitudeBits) >> 24) - 4 * kHfpBias;
  // The leading one goes to bit 24. A zero fraction is left as it is, so a word with a
  // characteristic and no fraction reads as a power of two rather than as zero.
  if (fraction != 0) {
    const int shift = std::countl_zero(fraction) - 7;
    fraction <<= shift;
    exponent -= shift;
  }
  const std::int32_t biased = exponent + kSingleBias;
  if (biased >= kSingleMaxExponent) return sign | kSingleLargest;  // never infinity
  if (biased <= 0) return sign;                                    // no denormals
  // Bit 24 is the implicit one; bit 0 is dropped (truncation; it is always 0 after the shift).
  return sign | (static_cast<std::uint32_t>(biased) << 23) |
         ((fraction >> 1) & kSingleMantissaBits);
}

// The binary exponent splits into a power of 16, which is returned, and a shift of 0 to 3 bits,
// which is applied to the fraction.
template <typename Fraction>
std::int32_t hexCharacteristic(std::int32_t exponent, Fraction& fraction) {
  if (exponent < 0) {
    fraction >>= -exponent % 4;
    return -(-exponent / 4);
  }
  fraction <<= exponent % 4;
  return exponent / 4;
}

std::uint32_t ieeeToHfpSingle(std::uint32_t ieee) {
  const std::uint32_t sign = ieee & kSignBit;
  if ((ieee & kMagnitudeBits) == 0) return ieee;
  // Infinities, NaNs and denormals go through as if normal numbers: no special cases.
  const std::int32_t exponent =
      static_cast<std::int32_t>((ieee & kMagnitudeBits) >> 23) - kSingleBias;
  std::uint32_t fraction = ((ieee & kSingleMantissaBits) | kSingleImplicitOne) << 1;
  std::int32_t characteristic = hexCharacteristic(exponent, fraction);
  // A leading one above bit 23 moves down a whole hexadecimal digit; what falls off is lost.
  if ((fraction & 0x0F000000) != 0) {
    fraction >>= 4;
    ++characteristic;
  }
  // Every single fits, infinities and NaNs included: the characteristic ends within 33 to 97.
  return sign | (static_cast<std::uint32_t>(characteristic + kHfpBias) << 24) | fraction;
}

Words hfpToIeeeDouble(Words hfp) {
  const std::uint32_t sign = hfp.high & kSignBit;
  if ((hfp.high & kMagnitudeBits) == 0) return hfp;
  std::uint64_t fraction = (std::uint64_t{hfp.high & kHfpFractionBits} << kLowWordWidth) | hfp.low;
  std::int32_t exponent =
      4 * (static_cast<std::int32_t>((hfp.high & kMagnitudeBits) >> 24) - kHfpBias) - 4;
  // The target's leading one is bit 20 of the high word. From bit 23 or 22 the fraction moves
  // down by truncation; from bit 21 by rounding half up, one bit at a time.
  if ((fraction & (highBit(23) | highBit(22))) != 0) {
    const int shift = std::bit_width(fraction) - (kLowWordWidth + 22);
    fraction >>= shift;
    exponent += shift;
  }
  while ((fraction & highBit(21)) != 0) {
    fraction = (fraction + 1) >> 1;
    ++exponent;
  }
  // A fraction whose high word part is 0 is left unnormalised on purpose: such values have
  // always read this way.
  if (fraction >= highBit(0) && (fraction & highBit(20)) == 0) {
    const int shift = kLowWordWidth + 21 - std::bit_width(fraction);
    fraction <<= shift;
    exponent -= shift;
  }
  // HFP's range lies well inside the double's, so the two guards below only keep the routine
  // whole: no HFP value reaches them.
  const std::int32_t biased = exponent + kDoubleBias;
  if (biased >= kDoubleMaxExponent) return {sign | kDoubleHighLargest, kLowWordAllOnes};
  if (biased < 1) return {sign, 0};
  const auto highFraction = static_cast<std::uint32_t>(fraction >> kLowWordWidth);
  return {
      sign | (static_cast<std::uint32_t>(biased) << 20) | (highFraction & kDoubleHighMantissaBits),
      static_cast<std::uint32_t>(fraction)};
}

Words ieeeToHfpDouble(Words ieee) {
  const std::uint32_t sign = ieee.high & kSignBit;
  if ((ieee.high & kMagnitudeBits) == 0) return ieee;
  const std::int32_t exponent =
      static_cast<std::int32_t>((ieee.high & kMagnitudeBits) >> 20) - kDoubleBias;
  // The 52-bit mantissa four bits up, the implicit one at bit 24 of the high word.
  std::uint64_t fraction =
      (((std::uint64_t{ieee.high & kDoubleHighMantissaBits} << kLowWordWidth) | ieee.low) << 4) |
      highBit(24);
  std::int32_t characteristic = hexCharacteristic(exponent, fraction);
  if ((fraction & (highBit(27) | highBit(26) | highBit(25) | highBit(24))) != 0) {
    fraction >>= 4;
    ++characteristic;
  }
  characteristic += kHfpBias;
  if (characteristic > kHfpMaxCharacteristic) return {sign | kHfpLargest, kLowWordAllOnes};
  if (characteristic < 0) return {sign, 0};
  return {sign | (static_cast<std::uint32_t>(characteristic) << 24) |
              static_cast<std::uint32_t>(fraction >> kLowWordWidth),
          static_cast<std::uint32_t>(fraction)};
}

// The conversions between the formats take their words through pointers; null ones are argument
// faults like everywhere else.
void requireWords(const char* function, const void* input, const void* output) {
  requireInputPointer(nullptr, function, input);
  requireOutputBuffer(nullptr, function, output);
}

void requireFloatSize(const DataCnv* cnv, const char* function, std::int32_t size) {
  if (size != kFloatSize && size != kDoubleSize) {
    CP_RAISE(CP_INTERNAL_ERROR, kDataCnvModule, function, cnv, nullptr,
             "Invalid float size: ", size);
  }
}

// The readers' checks, then the field's bits: the high word of an 8-byte field above the low.
std::uint64_t loadFloatField(const DataCnv* cnv, const char* function, const unsigned char* source,
                             std::int32_t size, EEndian endian) {
  if (source == nullptr) {
    CP_RAISE(CP_INTERNAL_ERROR, kDataCnvModule, function, cnv, nullptr,
             std::string("Null input pointer passed into ") + function);
  }
  if (size <= 0) {
    CP_RAISE(CP_INTERNAL_ERROR, kDataCnvModule, function, cnv, nullptr,
             "Invalid input size: ", size);
  }
  requireFloatSize(cnv, function, size);
  return loadFieldBits(source, size, endian);
}

// The writers' checks of the output and its size, before anything is converted.
void requireFloatOutput(const DataCnv* cnv, const char* function, const unsigned char* output,
                        std::int32_t size) {
  requireOutputBuffer(cnv, function, output);
  if (size <= 0) {
    CP_RAISE(CP_INTERNAL_ERROR, kDataCnvModule, function, cnv, nullptr,
             "Invalid output buffer size: ", size);
  }
  requireFloatSize(cnv, function, size);
}

// --- Correctly rounded HFP (HFPToDouble, DoubleToHFP) ---
// These work on the value, not on bit patterns: an HFP number is an integer fraction F of 24 or 56
// bits times 2 to a multiple of 4, and a double an integer of at most 53 bits times a power of 2,
// so each direction is one integer rounding and one exact scaling by a power of 2.

constexpr int kHfpShortDigits = 6;
constexpr int kHfpLongDigits = 14;
constexpr int kDoubleDigits = 53;  // the significand's bits, the implicit one included

// `value` shifted right by `shift` bits (0 or more), rounded to the nearest integer, ties to even.
// From 64 bits on nothing is left but less than half of one, for any value below 2^63.
constexpr std::uint64_t shiftRightRounded(std::uint64_t value, int shift) {
  if (shift == 0) return value;
  if (shift >= 64) return 0;
  const std::uint64_t kept = value >> shift;
  const std::uint64_t rest = value & ((std::uint64_t{1} << shift) - 1);
  const std::uint64_t half = std::uint64_t{1} << (shift - 1);
  return rest > half || (rest == half && (kept & 1) != 0) ? kept + 1 : kept;
}

// The power of 16 of a value in [2^(exponent - 1), 2^exponent): the E with 16^(E - 1) <= value <
// 16^E, which is exponent / 4 rounded up (arithmetic shift: floor of (exponent + 3) / 4).
constexpr int hexExponentOf(int exponent) { return (exponent + 3) >> 2; }

// The magnitude of `fraction` x 2^(exponent) as a double, `fraction` of up to 56 bits: rounded to
// 53 bits here, so the result does not depend on the processor's rounding mode, then scaled
// exactly (every HFP value lies well inside the double's normal range).
double hfpMagnitude(std::uint64_t fraction, int exponent) {
  const int excess = std::max(0, static_cast<int>(std::bit_width(fraction)) - kDoubleDigits);
  // A carry out of the 53 bits gives 2^53, which a double holds exactly.
  return std::ldexp(static_cast<double>(shiftRightRounded(fraction, excess)), exponent + excess);
}

// The HFP fields of a finite, non-zero magnitude with `digits` hexadecimal fraction digits: the
// characteristic (which may exceed 127: the caller checks) and the fraction, rounded to nearest,
// ties to even; below 16^-65 with characteristic 0 and an unnormalised (possibly zero) fraction.
struct HfpFields {
  int characteristic;
  std::uint64_t fraction;
};

HfpFields hfpFieldsOf(double magnitude, int digits) {
  int exponent = 0;
  // magnitude = significand x 2^(exponent - 53), significand an integer below 2^53 (subnormal
  // doubles included: frexp normalises them).
  const auto significand =
      static_cast<std::uint64_t>(std::ldexp(std::frexp(magnitude, &exponent), kDoubleDigits));
  int hexExponent = std::max(hexExponentOf(exponent), -kHfpBias);
  // fraction = magnitude x 16^(digits - hexExponent) = significand x 2^shift.
  const int shift = exponent - kDoubleDigits + 4 * (digits - hexExponent);
  std::uint64_t fraction =
      shift >= 0 ? significand << shift : shiftRightRounded(significand, -shift);
  // Rounding up to 16^digits is one more power of 16 and a fraction of 0.1.
  if (fraction >> (4 * digits) != 0) {
    fraction >>= 4;
    ++hexExponent;
  }
  return {hexExponent + kHfpBias, fraction};
}

}  // namespace

void DataCnv::ConvertFloatHFPtoIEEE(float* input, float* output) {
  constexpr const char* kFunction = "DataCnv::ConvertFloatHFPtoIEEE";
  CpDebugTrace trace(kFunction, static_cast<const void*>(input), static_cast<const void*>(output));
  requireWords(kFunction, input, output);
  storeWord(hfpToIeeeSingle(loadWord(input)), output);
}

void DataCnv::ConvertFloatIEEEtoHFP(float* input, float* output) {
  constexpr const char* kFunction = "DataCnv::ConvertFloatIEEEtoHFP";
  CpDebugTrace trace(kFunction, static_cast<const void*>(input), static_cast<const void*>(output));
  requireWords(kFunction, input, output);
  storeWord(ieeeToHfpSingle(loadWord(input)), output);
}

void DataCnv::ConvertDoubleHFPtoIEEE(double* input, double* output, EEndian endian) {
  constexpr const char* kFunction = "DataCnv::ConvertDoubleHFPtoIEEE";
  CpDebugTrace trace(kFunction, static_cast<const void*>(input), static_cast<const void*>(output),
                     endian);
  requireWords(kFunction, input, output);
  storeWords(hfpToIeeeDouble(loadWords(input, endian)), output, endian);
}

void DataCnv::ConvertDoubleIEEEtoHFP(double* input, double* output, EEndian endian) {
  constexpr const char* kFunction = "DataCnv::ConvertDoubleIEEEtoHFP";
  CpDebugTrace trace(kFunction, static_cast<const void*>(input), static_cast<const void*>(output),
                     endian);
  requireWords(kFunction, input, output);
  storeWords(ieeeToHfpDouble(loadWords(input, endian)), output, endian);
}

double DataCnv::FltToDbl(const unsigned char* source, std::int32_t size) {
  constexpr const char* kFunction = "DataCnv::FltToDbl";
  CpDebugTrace trace(kFunction, static_cast<const void*>(source), size);
  const std::uint64_t bits = loadFloatField(this, kFunction, source, size, endian_);
  if (size == kFloatSize) {
    auto word = static_cast<std::uint32_t>(bits);
    if (floatFormat_ == HFPFloat) word = hfpToIeeeSingle(word);
    return trace.result(static_cast<double>(std::bit_cast<float>(word)));
  }
  return trace.result(std::bit_cast<double>(
      floatFormat_ == HFPFloat ? bitsOf(hfpToIeeeDouble(wordsOf(bits))) : bits));
}

void DataCnv::FltFromDbl(double value, unsigned char* output, std::int32_t& size) {
  constexpr const char* kFunction = "DataCnv::FltFromDbl";
  CpDebugTrace trace(kFunction, value, static_cast<const void*>(output), size);
  requireFloatOutput(this, kFunction, output, size);
  std::uint64_t bits = 0;
  if (size == kFloatSize) {
    // Narrowed by the processor's rounding to nearest; beyond the single range that is infinity.
    auto word = std::bit_cast<std::uint32_t>(static_cast<float>(value));
    if (floatFormat_ == HFPFloat) word = ieeeToHfpSingle(word);
    bits = word;
  } else {
    bits = std::bit_cast<std::uint64_t>(value);
    if (floatFormat_ == HFPFloat) bits = bitsOf(ieeeToHfpDouble(wordsOf(bits)));
  }
  storeFieldBits(bits, output, size, endian_);
}

double DataCnv::HFPToDouble(const unsigned char* source, std::int32_t size) {
  constexpr const char* kFunction = "DataCnv::HFPToDouble";
  CpDebugTrace trace(kFunction, static_cast<const void*>(source), size);
  const std::uint64_t bits = loadFloatField(this, kFunction, source, size, endian_);
  const bool isShort = size == kFloatSize;
  const std::uint32_t high = isShort ? static_cast<std::uint32_t>(bits) : wordsOf(bits).high;
  const int digits = isShort ? kHfpShortDigits : kHfpLongDigits;
  const std::uint64_t fraction = isShort ? bits & kHfpFractionBits : bits & (highBit(24) - 1);
  const int characteristic = static_cast<int>((high & kMagnitudeBits) >> 24);
  // fraction x 16^(characteristic - 64 - digits); a zero fraction is a zero, whatever the
  // characteristic.
  const double magnitude = hfpMagnitude(fraction, 4 * (characteristic - kHfpBias - digits));
  return trace.result((high & kSignBit) != 0 ? -magnitude : magnitude);
}

void DataCnv::DoubleToHFP(double value, unsigned char* output, std::int32_t& size) {
  constexpr const char* kFunction = "DataCnv::DoubleToHFP";
  CpDebugTrace trace(kFunction, value, static_cast<const void*>(output), size);
  requireFloatOutput(this, kFunction, output, size);
  if (!std::isfinite(value)) {
    CP_RAISE(CP_CONV_INPUT_DATA_INVALID, kDataCnvModule, kFunction, this, nullptr, "double", value);
  }
  const bool isShort = size == kFloatSize;
  const int digits = isShort ? kHfpShortDigits : kHfpLongDigits;
  HfpFields fields{0, 0};
  if (value != 0.0) fields = hfpFieldsOf(std::fabs(value), digits);
  if (fields.characteristic > kHfpMaxCharacteristic) {
    CP_RAISE(CP_CONV_INPUT_DATA_OUT_OF_BOUNDS, kDataCnvModule, kFunction, this, nullptr, "double",
             value);
  }
  const std::uint32_t high = (std::signbit(value) ? kSignBit : 0) |
                             static_cast<std::uint32_t>(fields.characteristic) << 24;
  // The sign and characteristic lead the word of a short value and the high word of a long one.
  const std::uint64_t bits = isShort ? high | fields.fraction : bitsOf({high, 0}) | fields.fraction;
  storeFieldBits(bits, output, size, endian_);
}

PWFData DataCnv::FltToDec(const unsigned char* source, std::int32_t size, std::int32_t scale) {
  CpDebugTrace trace("DataCnv::FltToDec", static_cast<const void*>(source), size, scale);
  ZanStringBase text;
  doubleToUString(FltToDbl(source, size), text, false);
  // The positional text of a double of usual size ("-1234.5678") has its point moved on the stack.
  constexpr std::int32_t kLongestQuickText = 40;
  if (scale >= 0 && scale <= kMaxStackScale && text.length() <= kLongestQuickText &&
      fastPathsOpen()) {
    char16_t digits[kLongestQuickText];
    std::int32_t count = 0;
    std::int32_t integerDigits = -1;
    for (std::int32_t i = text[0] == u'-' ? 1 : 0; i < text.length(); ++i) {
      if (text[i] == u'.') {
        integerDigits = count;
      } else {
        digits[count++] = text[i];
      }
    }
    char16_t placed[kLongestQuickText + kMaxStackScale + 4];
    placePoint(digits, count, integerDigits < 0 ? count : integerDigits, scale, text[0] == u'-',
               placed);
    return PWFData(placed, eDecimal);
  }
  shiftSignedDecimal(text, scale);
  trace.result(text);
  return PWFData(text.terminatedData(), eDecimal);
}

void DataCnv::FltFromDec(const char16_t* decimal, unsigned char* output, std::int32_t& size,
                         std::int32_t scale) {
  constexpr const char* kFunction = "DataCnv::FltFromDec";
  CpDebugTrace trace(kFunction, static_cast<const void*>(decimal), static_cast<const void*>(output),
                     size, scale);
  requireInputPointer(this, kFunction, decimal);
  requireFloatOutput(this, kFunction, output, size);
  // The point moves the other way; the smallest scale has no opposite.
  if (scale == std::numeric_limits<std::int32_t>::min()) {
    CP_RAISE(CP_INTERNAL_ERROR, kDataCnvModule, kFunction, this, nullptr, "Invalid scale: ", scale);
  }
  // Checked before the point moves: moving it through an exponent would make another number.
  ZanStringBase text(decimal);
  validateDecimal(text);
  shiftSignedDecimal(text, -scale);
  FltFromDbl(PWFStringTodouble(text), output, size);
}

double DataCnv::MultiplyDouble(double value, std::int32_t power) {
  if (power == 0) return value;
  const double factor = std::pow(10.0, power);
  return factor == 0.0 ? value : value * factor;
}

double DataCnv::DivideDouble(double value, std::int32_t power) {
  if (power == 0) return value;
  // Below the double range ten to the power is 0: the value stays rather than becoming infinite.
  const double factor = std::pow(10.0, power);
  return factor == 0.0 ? value : value / factor;
}
