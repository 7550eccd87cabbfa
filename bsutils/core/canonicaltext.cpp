#include "core/canonicaltext.h"

#include <iterator>

namespace bsutils::internal {

namespace {

constexpr char16_t kPoint = u'.';
constexpr char16_t kZero = u'0';

}  // namespace

ZanStringBase integerText(std::int64_t value) {
  // Signed division leaves negative remainders for a negative value, so the smallest value is
  // rendered without ever being negated.
  char16_t units[20];  // 19 digits and a sign
  std::int32_t start = static_cast<std::int32_t>(std::size(units));
  std::int64_t rest = value;
  do {
    const auto remainder = static_cast<std::int32_t>(rest % 10);
    units[--start] = static_cast<char16_t>(u'0' + (remainder < 0 ? -remainder : remainder));
    rest /= 10;
  } while (rest != 0);
  if (value < 0) units[--start] = u'-';
  return ZanStringBase(units + start, static_cast<std::int32_t>(std::size(units)) - start);
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
