#include "core/canonicaltext.h"

#include <algorithm>
#include <charconv>
#include <cmath>

namespace bsutils::internal {

namespace {

constexpr char16_t kPoint = u'.';
constexpr char16_t kZero = u'0';

}  // namespace

std::int32_t decimalDigits(std::uint64_t magnitude, char16_t* digits) {
  // std::to_chars writes two digits a step from a table, where a division a digit would chain.
  char text[kMaxIntegerDigits];
  char* const end = std::to_chars(text, text + kMaxIntegerDigits, magnitude).ptr;
  return static_cast<std::int32_t>(std::copy(text, end, digits) - digits);
}

bool hasPositionalText(double value) {
  constexpr double kExactIntegers = 9007199254740992.0;
  return std::fabs(value) < kExactIntegers;  // false for NaN and the infinities
}

std::int32_t positionalDoubleText(double value, char* text) {
  // A decimal has no negative zero.
  if (value == 0.0) value = 0.0;
  // Without a precision, std::to_chars writes the shortest digits that read back exactly.
  return static_cast<std::int32_t>(
      std::to_chars(text, text + kPositionalDoubleCapacity, value, std::chars_format::fixed).ptr -
      text);
}

ZanStringBase integerText(std::int64_t value) {
  char16_t digits[kMaxIntegerDigits];
  const std::int32_t count = decimalDigits(magnitudeOf(value), digits);
  char16_t text[kMaxIntegerDigits + 2];
  return ZanStringBase(text, placePoint(digits, count, count, 0, value < 0, text));
}

std::int32_t placePoint(const char16_t* digits, std::int32_t count, std::int32_t integerDigits,
                        std::int32_t scale, bool negative, char16_t* text) {
  char16_t* end = text;
  if (negative) *end++ = u'-';
  const std::int32_t point = integerDigits - scale;  // digits before the point that is written
  if (point >= count) {
    end = std::copy_n(digits, count, end);
  } else if (point > 0) {
    end = std::copy_n(digits, point, end);
    *end++ = kPoint;
    end = std::copy_n(digits + point, count - point, end);
  } else {
    *end++ = kZero;
    *end++ = kPoint;
    end = std::fill_n(end, -point, kZero);
    end = std::copy_n(digits, count, end);
  }
  *end = u'\0';
  return static_cast<std::int32_t>(end - text);
}

void trimNonSignificantZeros(ZanStringBase& text) {
  std::int32_t leading = 0;
  while (leading < text.length() && text[leading] == kZero) ++leading;
  text.erase(0, leading);
  // Trailing zeros are significant in an integer; only a fraction loses them.
  if (text.indexOf(kPoint) >= 0) {
    std::int32_t end = text.length();
    while (end > 0 && text[end - 1] == kZero) --end;
    text.truncate(end);
  }
  // No zero goes back before a leading point: "0.50" becomes ".5".
  if (!text.isEmpty() && text[text.length() - 1] == kPoint) text.truncate(text.length() - 1);
}

void completePoint(ZanStringBase& text) {
  const std::int32_t point = text.indexOf(kPoint);
  if (point < 0) return;
  if (point == 0) text.insert(0, kZero);
  if (text[text.length() - 1] == kPoint) text.truncate(text.length() - 1);
}

ZanStringBase normalDecimalText(const ZanStringBase& decimal) {
  const bool hasSign = !decimal.isEmpty() && (decimal[0] == u'+' || decimal[0] == u'-');
  const bool negative = hasSign && decimal[0] == u'-';
  ZanStringBase digits = hasSign ? decimal.substring(1, decimal.length() - 1) : decimal;
  trimNonSignificantZeros(digits);
  completePoint(digits);
  // Every zero trims down to nothing, so an empty text is the only zero left, and it has no sign.
  if (digits.isEmpty()) {
    digits.append(kZero);
  } else if (negative) {
    digits.insert(0, u'-');
  }
  return digits;
}

}  // namespace bsutils::internal
