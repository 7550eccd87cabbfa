// Decimal text: the checks of a decimal held as UTF-16 text, and the moves of its point that turn
// a scaled integer into a decimal and a decimal into an integer.

#include <bsutils/dataconv.h>
#include <unicode/uchar.h>

#include <cstdint>
#include <limits>

#include "core/canonicaltext.h"
#include "core/cpraise.h"
#include "datacnvprivate.h"

using namespace bsutils::internal;

namespace {

constexpr char16_t kPoint = u'.';
constexpr char16_t kZero = u'0';

bool isExponentMark(char16_t unit) { return unit == u'e' || unit == u'E'; }
bool isSign(char16_t unit) { return unit == u'+' || unit == u'-'; }

// "0." in front of a text whose digits all stand after the point: "5" with 2 zeros -> "0.005".
void prefixZerosAndPoint(ZanStringBase& text, std::int32_t zeros) {
  text.padLeading(text.length() + zeros, kZero);
  text.insert(0, kPoint);
  text.insert(0, kZero);
}

}  // namespace

bool DataCnv::isDecimalValid(const ZanStringBase& text, bool requirePoint) {
  if (text.isEmpty()) return !requirePoint;
  bool seenPoint = false;
  bool seenExponent = false;
  // The caller strips the sign first; a sign is then valid only right after an exponent mark. A
  // point after the exponent ("1e2.5") and a bare mark ("12e") pass, as they always have.
  for (std::int32_t i = 0; i < text.length(); ++i) {
    const char16_t unit = text[i];
    if (u_isdigit(unit)) continue;
    if (isSign(unit)) {
      if (i == 0 || !isExponentMark(text[i - 1])) return false;
    } else if (unit == kPoint) {
      if (seenPoint) return false;
      seenPoint = true;
    } else if (isExponentMark(unit)) {
      if (seenExponent) return false;
      seenExponent = true;
    } else {
      return false;
    }
  }
  return !requirePoint || seenPoint;
}

void DataCnv::validateDecimal(const ZanStringBase& text) {
  // Grouping commas pass on purpose; exponents do not.
  bool seenPoint = false;
  for (std::int32_t i = 0; i < text.length(); ++i) {
    const char16_t unit = text[i];
    const bool valid = (isSign(unit) && i == 0) || (unit == kPoint && !seenPoint) ||
                       (unit >= u'0' && unit <= u'9') || unit == u',';
    if (!valid) {
      CP_RAISE(CP_CONV_INPUT_DATA_INVALID, kDataCnvModule, "DataCnv::validateDecimal", this,
               nullptr, "decimal");
    }
    seenPoint = seenPoint || unit == kPoint;
  }
}

void DataCnv::removeTrailingDecimal(ZanStringBase& text) { completePoint(text); }

void DataCnv::adjustDecimalForString(ZanStringBase& text, std::int32_t scale) {
  if (text.isEmpty() || scale == 0) return;
  // Moving the point adds at most |scale| + 2 units; a scale that would outgrow any string is an
  // argument fault, not an allocation failure.
  const std::int64_t magnitude = scale < 0 ? -static_cast<std::int64_t>(scale) : scale;
  if (text.length() + magnitude + 2 > std::numeric_limits<std::int32_t>::max()) {
    CP_RAISE(CP_INTERNAL_ERROR, kDataCnvModule, "DataCnv::adjustDecimalForString", this, nullptr,
             "Invalid scale: ", scale);
  }
  const auto places = static_cast<std::int32_t>(magnitude);
  const std::int32_t point = text.indexOf(kPoint);
  if (point < 0) {
    if (scale < 0) {
      text.padTrailing(text.length() + places, kZero);
    } else if (places <= text.length()) {
      text.insert(text.length() - places, kPoint);
    } else {
      prefixZerosAndPoint(text, places - text.length());
    }
  } else {
    text.erase(point, 1);
    if (scale < 0) {
      const std::int32_t newPoint = point + places;
      if (text.length() >= newPoint) {
        text.insert(newPoint, kPoint);
      } else {
        text.padTrailing(newPoint, kZero);
      }
    } else if (point >= places) {
      text.insert(point - places, kPoint);
    } else {
      prefixZerosAndPoint(text, places - point);
    }
  }
  const std::int32_t newPoint = text.indexOf(kPoint);
  if (newPoint == 0) {
    text.insert(0, kZero);
  } else if (newPoint > 0 && newPoint == text.length() - 1) {
    text.truncate(newPoint);
  }
}

void DataCnv::shiftSignedDecimal(ZanStringBase& text, std::int32_t scale) {
  if (scale == 0) return;
  const bool negative =
      CheckSign(text, eLeadingSeparateSign, US_MINUS.terminatedData(), US_PLUS.terminatedData());
  const bool zero = text.length() == 1 && text[0] == u'0';
  if (scale > 0 || !zero) adjustDecimalForString(text, scale);
  if (negative) text.insert(0, US_MINUS);
}

void DataCnv::TrimFromDecimal(ZanStringBase& text) {
  const std::int32_t point = text.indexOf(kPoint);
  if (point >= 0) text.truncate(point);
}

void DataCnv::TrimNonSignificantZeros(ZanStringBase& text) { trimNonSignificantZeros(text); }
