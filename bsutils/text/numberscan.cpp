// The grammar of number text, shared by every conversion that reads one.

#include "text/numberscan.h"

#include <unicode/uchar.h>

#include <charconv>
#include <string>
#include <system_error>

namespace bsutils::internal {

namespace {

// Exponents are read up to this magnitude and held there beyond it: every non-zero mantissa is then
// far outside the double and decimal ranges either way, and the sums below cannot overflow.
constexpr std::int64_t kExponentCap = 1'000'000'000;

// The value of a digit, or -1 for a unit that is not one under the grammar.
std::int32_t digitValue(char16_t unit, bool anyScript) {
  if (unit >= u'0' && unit <= u'9') return unit - u'0';
  if (anyScript && u_isdigit(unit)) return u_charDigitValue(unit);
  return -1;
}

}  // namespace

ScannedNumber scanNumber(const ZanStringBase& text, const NumberGrammar& grammar) {
  ScannedNumber number;
  const std::int32_t length = text.length();
  std::int32_t i = 0;
  const auto digitAt = [&](std::int32_t at) {
    return at < length ? digitValue(text[at], grammar.anyScriptDigits) : -1;
  };

  if (grammar.signAllowed && i < length && (text[i] == u'+' || text[i] == u'-')) {
    number.negative = text[i++] == u'-';
  }
  number.digits.reserve(static_cast<std::size_t>(length - i));
  for (std::int32_t digit = digitAt(i); digit >= 0; digit = digitAt(++i)) {
    number.digits.push_back(static_cast<char>('0' + digit));
  }
  number.integerDigits = static_cast<std::int32_t>(number.digits.size());
  if (i < length && text[i] == grammar.point) {
    number.hasPoint = true;
    for (std::int32_t digit = digitAt(++i); digit >= 0; digit = digitAt(++i)) {
      number.digits.push_back(static_cast<char>('0' + digit));
    }
  }
  if (number.digits.empty()) {
    number.malformed = true;
    number.strayUnit = i < length ? text[i] : 0;
    return number;
  }

  if (i < length && (text[i] == u'e' || text[i] == u'E')) {
    number.hasExponent = true;
    bool negativeExponent = false;
    if (++i < length && (text[i] == u'+' || text[i] == u'-')) negativeExponent = text[i++] == u'-';
    if (digitAt(i) < 0) {
      number.malformed = true;
      number.strayUnit = i < length ? text[i] : 0;
      return number;
    }
    for (std::int32_t digit = digitAt(i); digit >= 0; digit = digitAt(++i)) {
      if (number.exponent < kExponentCap) number.exponent = number.exponent * 10 + digit;
    }
    if (negativeExponent) number.exponent = -number.exponent;
  }
  if (i != length) {
    number.malformed = true;
    number.strayUnit = text[i];
  }
  return number;
}

std::optional<std::int64_t> leadingExponent(const ScannedNumber& number, std::int64_t shift) {
  const std::size_t first = number.digits.find_first_not_of('0');
  if (first == std::string::npos) return std::nullopt;
  return number.integerDigits - 1 - static_cast<std::int64_t>(first) + number.exponent + shift;
}

std::optional<double> roundedMagnitude(const ScannedNumber& number, std::int64_t shift) {
  // The mantissa as a whole number and the exponent moved past its fraction: "1.25e3" is read as
  // "125e1". std::from_chars rounds correctly and knows no sign.
  std::string text = number.digits;
  text += 'e';
  text += std::to_string(number.exponent + shift - number.fractionDigits());
  double value = 0.0;
  const std::errc error = std::from_chars(text.data(), text.data() + text.size(), value).ec;
  if (error == std::errc::result_out_of_range) {
    // Out of range both ways: a value of 1 or more overflowed; anything smaller rounds to zero,
    // which is its correctly rounded value ("1e-400" -> 0).
    if (leadingExponent(number, shift).value_or(-1) >= 0) return std::nullopt;
    value = 0.0;
  }
  return value;
}

}  // namespace bsutils::internal
