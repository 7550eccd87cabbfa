#ifndef BSUTILS_CANONICALTEXT_H
#define BSUTILS_CANONICALTEXT_H

// The plain texts of numbers that the typed value and the message properties need themselves (to
// compare decimals, to store an integer as a property) and that the converter's text fields build
// on. They need no code page and no settings, so they live here rather than behind a converter.

#include <zan/zanstringbase.h>

#include <cstdint>

namespace bsutils::internal {

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
