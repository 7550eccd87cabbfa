#ifndef BSUTILS_NUMBERSCAN_H
#define BSUTILS_NUMBERSCAN_H

// The one reader of number text: it takes a text apart into sign, digits, point and exponent, and
// judges nothing else. The conversions then check the parts against their own rules (a plain
// decimal has no exponent, a strict field its form) and build their value from them, so that every
// number text of the library is read by the same grammar.

#include <zan/zanstringbase.h>

#include <cstdint>
#include <optional>
#include <string>

namespace bsutils::internal {

// What a text may hold besides ASCII digits and the optional exponent ("e" or "E", an optional
// sign, digits).
struct NumberGrammar {
  char16_t point = u'.';
  bool signAllowed = true;       // "+" or "-" first
  bool anyScriptDigits = false;  // digits of every script, taken by their value
};

struct ScannedNumber {
  bool negative = false;
  std::string digits;  // the value of each mantissa digit, ASCII: integer part, then fraction
  std::int32_t integerDigits = 0;
  bool hasPoint = false;
  bool hasExponent = false;
  std::int64_t exponent = 0;  // held at a billion in magnitude, far beyond every use
  // Why the text is not a number: the first unit outside the grammar (a second point included), or
  // a mantissa or an exponent without digits. Nothing is set for a well-formed text.
  bool malformed = false;
  char16_t strayUnit = 0;  // 0 when the text merely ended too early

  std::int32_t fractionDigits() const {
    return static_cast<std::int32_t>(digits.size()) - integerDigits;
  }
};

ScannedNumber scanNumber(const ZanStringBase& text, const NumberGrammar& grammar);

// The decimal exponent of the first significant digit of the mantissa times ten to `shift`
// ("0.05" -> -2, "120" -> 2), or nothing for a zero.
std::optional<std::int64_t> leadingExponent(const ScannedNumber& number, std::int64_t shift);

// The unsigned mantissa times ten to (exponent + `shift`), correctly rounded; nothing when its
// magnitude is beyond the largest double. A magnitude below the smallest one rounds to zero.
std::optional<double> roundedMagnitude(const ScannedNumber& number, std::int64_t shift);

}  // namespace bsutils::internal

#endif  // BSUTILS_NUMBERSCAN_H
