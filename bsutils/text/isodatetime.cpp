#include "text/isodatetime.h"

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>

namespace bsutils::internal {

namespace {

constexpr std::int32_t kNotSet = PWFDateTime::kNotSet;
constexpr std::int32_t kMillisecondsPerMinute = 60000;

std::string twoDigits(std::int32_t value) {
  char text[16];
  std::snprintf(text, sizeof text, "%02d", value);
  return text;
}

// A cursor over the text that takes fixed-width numbers and expected characters; any mismatch
// makes the whole text invalid, which the cursor remembers.
class IsoCursor {
 public:
  explicit IsoCursor(const ZanStringBase& text) : text_(text) {}

  bool atEnd() const { return position_ == text_.length(); }
  bool peek(char16_t unit, std::int32_t ahead = 0) const {
    return position_ + ahead < text_.length() && text_[position_ + ahead] == unit;
  }
  bool take(char16_t unit) {
    if (!peek(unit)) return false;
    ++position_;
    return true;
  }
  void expect(char16_t unit) {
    if (!take(unit)) failed_ = true;
  }
  // `minDigits` to `maxDigits` decimal digits, checked against [low, high]; `count` gets how many.
  std::int32_t number(std::int32_t minDigits, std::int32_t maxDigits, std::int32_t low,
                      std::int32_t high, std::int32_t* count = nullptr) {
    std::int64_t value = 0;
    std::int32_t digits = 0;
    while (digits < maxDigits && position_ < text_.length() && text_[position_] >= u'0' &&
           text_[position_] <= u'9') {
      value = value * 10 + (text_[position_++] - u'0');
      ++digits;
    }
    if (digits < minDigits || value < low || value > high) failed_ = true;
    if (count != nullptr) *count = digits;
    return static_cast<std::int32_t>(value);
  }
  bool failed() const { return failed_; }

 private:
  const ZanStringBase& text_;
  std::int32_t position_ = 0;
  bool failed_ = false;
};

}  // namespace

std::optional<ZanStringBase> isoDateTimeText(const PWFDateTime& value) {
  const bool hasDate = value.year != kNotSet;
  const bool hasTime = value.hour != kNotSet;
  if (!hasDate && !hasTime) return std::nullopt;
  std::string text;
  if (hasDate) {
    const std::int64_t year = value.era == 0 ? 1 - std::int64_t{value.year} : value.year;
    char digits[24];
    std::snprintf(digits, sizeof digits, "%s%04lld", year < 0 ? "-" : "",
                  static_cast<long long>(std::llabs(year)));
    text += digits;
    text += "-" + twoDigits(value.month) + "-" + twoDigits(value.day);
  }
  if (hasDate && hasTime) text += "T";
  if (hasTime) {
    text += twoDigits(value.hour) + ":" + twoDigits(value.minute) + ":" + twoDigits(value.second);
    if (value.scale > 0 && value.scale <= 9 && value.subsecond != kNotSet) {
      char fraction[16];
      std::snprintf(fraction, sizeof fraction, ".%0*d", value.scale, value.subsecond);
      text += fraction;
    }
  }
  if (value.timezone != kNotSet) {
    if (value.timezone == 0) {
      text += "Z";
    } else {
      const std::int64_t offset = std::llabs(value.timezone);
      const auto minutes = static_cast<std::int32_t>(offset / kMillisecondsPerMinute);
      text += value.timezone < 0 ? "-" : "+";
      text += twoDigits(minutes / 60) + ":" + twoDigits(minutes % 60);
    }
  }
  return ZanStringBase::fromUtf8(text);
}

std::optional<PWFDateTime> isoDateTimeValue(const ZanStringBase& text) {
  PWFDateTime value{kNotSet, kNotSet, kNotSet, kNotSet, kNotSet, kNotSet,
                    kNotSet, kNotSet, kNotSet, kNotSet, 0};
  IsoCursor cursor(text);
  // A time starts "hh:"; anything else starts with a date.
  const bool timeOnly = cursor.peek(u':', 2);
  if (!timeOnly) {
    const bool beforeYearOne = cursor.take(u'-');
    const std::int32_t year = cursor.number(4, 9, 0, 999999999);
    const std::int64_t astronomical = beforeYearOne ? -std::int64_t{year} : year;
    value.era = astronomical > 0 ? 1 : 0;
    value.year = static_cast<std::int32_t>(astronomical > 0 ? astronomical : 1 - astronomical);
    value.month = cursor.take(u'-') ? cursor.number(2, 2, 1, 12) : 1;
    value.day = cursor.take(u'-') ? cursor.number(2, 2, 1, 31) : 1;
  }
  if (timeOnly || cursor.take(u'T')) {
    value.hour = cursor.number(2, 2, 0, 23);
    cursor.expect(u':');
    value.minute = cursor.number(2, 2, 0, 59);
    value.second = cursor.take(u':') ? cursor.number(2, 2, 0, 60) : 0;
    value.subsecond = 0;
    value.scale = 0;
    if (cursor.take(u'.')) value.subsecond = cursor.number(1, 9, 0, 999999999, &value.scale);
  }
  if (cursor.take(u'Z')) {
    value.timezone = 0;
  } else if (cursor.peek(u'+') || cursor.peek(u'-')) {
    const std::int32_t sign = cursor.take(u'-') ? -1 : (cursor.expect(u'+'), 1);
    const std::int32_t hours = cursor.number(2, 2, 0, 14);
    cursor.expect(u':');
    const std::int32_t minutes = cursor.number(2, 2, 0, 59);
    value.timezone = sign * (hours * 60 + minutes) * kMillisecondsPerMinute;
  }
  if (cursor.failed() || !cursor.atEnd()) return std::nullopt;
  return value;
}

}  // namespace bsutils::internal
