#ifndef BSUTILS_CANONICALTEXT_H
#define BSUTILS_CANONICALTEXT_H

// The plain texts of numbers that the typed value and the message properties need themselves (to
// compare decimals, to store an integer as a property) and that the converter's text fields build
// on. They need no code page and no settings, so they live here rather than behind a converter.

#include <zan/zanstringbase.h>

#include <cstdint>

namespace bsutils::internal {

// The most digits an unsigned 64-bit magnitude has.
inline constexpr std::int32_t kMaxIntegerDigits = 20;

// |value|, negated as unsigned so that the smallest value has one too.
inline std::uint64_t magnitudeOf(std::int64_t value) {
  return value < 0 ? 0 - static_cast<std::uint64_t>(value) : static_cast<std::uint64_t>(value);
}

// The digits of `magnitude`, without leading zeros ("0" for zero), written to `digits` (room for
// kMaxIntegerDigits); returns their count.
std::int32_t decimalDigits(std::uint64_t magnitude, char16_t* digits);

// The decimal text that the readers of scaled fields give: `count` digits as they stand, leading
// zeros included, the first `integerDigits` of them before a point, with that point moved `scale`
// places (0 or more) to the left, and "-" in front when `negative`: ("12345", 5, 2) -> "123.45",
// ("5", 1, 3) -> "0.005", ("12345", 4, 1) -> "123.45", ("007", 3, 0) -> "007". No point is
// written after the last digit. `text` needs room for count + scale + 4 units; it is
// NUL-terminated and its length (without the NUL) returned.
std::int32_t placePoint(const char16_t* digits, std::int32_t count, std::int32_t integerDigits,
                        std::int32_t scale, bool negative, char16_t* text);

// Room for the positional text of any double below 2 to the 53: a sign, "0.", the 323 zeros before
// the only digit of the smallest subnormal, and 17 significant digits.
inline constexpr std::int32_t kPositionalDoubleCapacity = 1 + 2 + 323 + 17;

// Whether `value` is finite and below 2 to the 53 in magnitude: its integer part is then exact, and
// the shortest digits that read back as it are best written in place.
bool hasPositionalText(double value);

// Those digits in place, as std::to_chars writes them ("-1234.5678", "0.0000001"), a zero of either
// sign as "0", into `text` (room for kPositionalDoubleCapacity); returns the length. Only for a
// value that hasPositionalText.
std::int32_t positionalDoubleText(double value, char* text);

// The shortest decimal text, "-" before a negative value: -42 -> "-42", INT64_MIN ->
// "-9223372036854775808".
ZanStringBase integerText(std::int64_t value);

// Drops leading zeros, and trailing ones after a point, and a point left last: "0012.3400" ->
// "12.34", "0.50" -> ".5", "7.0" -> "7".
void trimNonSignificantZeros(ZanStringBase& text);

// ".5" -> "0.5", "7." -> "7".
void completePoint(ZanStringBase& text);

// The normal form of decimal text: "+" dropped, leading zeros and a fraction's trailing zeros
// dropped, "0" before a leading point, no trailing point, "0" for an empty result, and "-" kept
// only on a non-zero value ("-007.50" -> "-7.5", "-0.0" -> "0"). The text is not checked: other
// characters pass through as they are.
ZanStringBase normalDecimalText(const ZanStringBase& decimal);

}  // namespace bsutils::internal

#endif  // BSUTILS_CANONICALTEXT_H
