// Numbers as plain text: doubles written with the shortest digits that read back to them, text read
// back into correctly rounded doubles, and the normal form of decimal text.

#include <bsutils/dataconv.h>

#include <charconv>
#include <cmath>
#include <cstdint>
#include <optional>
#include <string>
#include <system_error>

#include "cpdebugtrace.h"
#include "cpraise.h"
#include "datacnvprivate.h"

namespace {

// The longest positional text of a double: a sign, "0.", the 323 zeros before the only digit of
// the smallest subnormal, with room for 17 significant digits besides.
constexpr std::size_t kDoubleTextCapacity = 1 + 2 + 323 + 17;

// Exponents are read up to this magnitude and held there beyond it: every non-zero digit string is
// then far outside the double range either way, and the sums below cannot overflow.
constexpr std::int64_t kExponentCap = 1'000'000'000;

bool isAsciiDigit(char16_t unit) { return unit >= u'0' && unit <= u'9'; }

// The parts of a number text that the conversion needs.
struct DoubleText {
  bool negative = false;
  std::string magnitude;  // the unsigned text, ASCII, as std::from_chars reads it
  // The decimal exponent of the first non-zero digit ("0.05" -> -2, "120" -> 2); meaningful only
  // when there is one. It tells an overflow from an underflow.
  std::int64_t leadingExponent = 0;
};

// Sign, digits with at most one point and at least one digit, then an optional exponent with at
// least one digit; ASCII only, nothing around it. Empty when the text is anything else.
std::optional<DoubleText> scanDoubleText(const ZanStringBase& text) {
  DoubleText scanned;
  const std::int32_t length = text.length();
  std::int32_t i = 0;
  if (i < length && (text[i] == u'+' || text[i] == u'-')) {
    scanned.negative = text[i] == u'-';
    ++i;
  }
  scanned.magnitude.reserve(static_cast<std::size_t>(length - i));
  const auto take = [&] { scanned.magnitude.push_back(static_cast<char>(text[i++])); };

  std::int64_t integerDigits = 0;  // from the first non-zero digit on
  // Zeros before the first non-zero digit, when the integer part has none.
  std::int64_t fractionZeros = 0;
  bool anyDigit = false;
  bool nonZeroSeen = false;
  for (; i < length && isAsciiDigit(text[i]); take()) {
    anyDigit = true;
    nonZeroSeen = nonZeroSeen || text[i] != u'0';
    if (nonZeroSeen) ++integerDigits;
  }
  if (i < length && text[i] == u'.') {
    for (take(); i < length && isAsciiDigit(text[i]); take()) {
      anyDigit = true;
      if (!nonZeroSeen && text[i] == u'0') ++fractionZeros;
      nonZeroSeen = nonZeroSeen || text[i] != u'0';
    }
  }
  if (!anyDigit) return std::nullopt;

  std::int64_t exponent = 0;
  if (i < length && (text[i] == u'e' || text[i] == u'E')) {
    take();
    bool negativeExponent = false;
    if (i < length && (text[i] == u'+' || text[i] == u'-')) {
      negativeExponent = text[i] == u'-';
      take();
    }
    if (i == length || !isAsciiDigit(text[i])) return std::nullopt;
    for (; i < length && isAsciiDigit(text[i]); take()) {
      if (exponent < kExponentCap) exponent = exponent * 10 + (text[i] - u'0');
    }
    if (negativeExponent) exponent = -exponent;
  }
  if (i != length) return std::nullopt;

  scanned.leadingExponent =
      (integerDigits > 0 ? integerDigits - 1 : -(fractionZeros + 1)) + exponent;
  return scanned;
}

}  // namespace

void DataCnv::doubleToUString(double value, ZanStringBase& out, bool exponential) {
  constexpr const char* kFunction = "DataCnv::doubleToUString";
  CpDebugTrace trace(kFunction, value, exponential);
  if (!std::isfinite(value)) {
    CP_RAISE(CP_CONV_INPUT_DATA_INVALID, kDataCnvModule, kFunction, this, nullptr, "double", value);
  }
  // Both zeros are written as zero: a decimal has no negative zero.
  if (value == 0.0) value = 0.0;
  // Without a precision, std::to_chars writes the shortest digits that read back exactly, in the
  // form asked for: positional ("0.0000001") or scientific with a signed exponent of at least two
  // digits ("1e-07"). The capacity holds every finite double, so the call cannot fail.
  char units[kDoubleTextCapacity];
  const std::to_chars_result written =
      std::to_chars(units, units + sizeof units, value,
                    exponential ? std::chars_format::scientific : std::chars_format::fixed);
  out = ZanStringBase::fromUtf8(
      std::string_view(units, static_cast<std::size_t>(written.ptr - units)));
  trace.result(out);
}

double DataCnv::PWFStringTodouble(const ZanStringBase& text) {
  constexpr const char* kFunction = "DataCnv::PWFStringTodouble";
  CpDebugTrace trace(kFunction, text);
  const std::optional<DoubleText> scanned = scanDoubleText(text);
  if (!scanned) {
    CP_RAISE(CP_CONV_INPUT_DATA_INVALID, kDataCnvModule, kFunction, this, nullptr, "double", text);
  }
  // std::from_chars rounds correctly, and takes no "+": the sign was taken off by the scan.
  const std::string& magnitude = scanned->magnitude;
  double value = 0.0;
  const std::errc error =
      std::from_chars(magnitude.data(), magnitude.data() + magnitude.size(), value).ec;
  if (error == std::errc::result_out_of_range) {
    // Out of range both ways: a value of 1 or more overflowed; anything smaller rounds to zero,
    // which is its correctly rounded value ("1e-400" -> 0, "-1e-400" -> -0).
    if (scanned->leadingExponent >= 0) {
      CP_RAISE(CP_CONV_INPUT_DATA_OUT_OF_BOUNDS, kDataCnvModule, kFunction, this, nullptr, "double",
               text);
    }
    value = 0.0;
  }
  return trace.result(scanned->negative ? -value : value);
}

void DataCnv::StrFromDec(const ZanStringBase& decimal, ZanStringBase& out) {
  CpDebugTrace trace("DataCnv::StrFromDec", decimal);
  const bool hasSign = !decimal.isEmpty() && (decimal[0] == u'+' || decimal[0] == u'-');
  const bool negative = hasSign && decimal[0] == u'-';
  ZanStringBase digits = hasSign ? decimal.substring(1, decimal.length() - 1) : decimal;
  TrimNonSignificantZeros(digits);
  removeTrailingDecimal(digits);
  // Every zero trims down to nothing, so an empty text is the only zero left, and it has no sign.
  if (digits.isEmpty()) {
    digits.append(u'0');
  } else if (negative) {
    digits.insert(0, US_MINUS);
  }
  out = digits;
  trace.result(out);
}
