// The one reading of decimal text that the packed and zoned writers share: the number scanner's
// grammar without an exponent, and the point moved by the field's scale.

#include <bsutils/dataconv.h>

#include <algorithm>
#include <cstdint>
#include <new>
#include <optional>
#include <string>

#include "core/cpraise.h"
#include "datacnvprivate.h"
#include "text/numberscan.h"

using namespace bsutils::internal;

std::optional<ZanStringBase> DataCnv::scaledFieldDigits(const char* function,
                                                        const ZanStringBase& decimal,
                                                        std::int32_t scale, std::int64_t reach,
                                                        bool& negative) {
  ZanStringBase text = decimal;
  TrimData(text, eTrimWhiteSpace, eLeftJustified, u'0', true);
  const ScannedNumber number = scanNumber(text, NumberGrammar{});
  // A grouping comma or an exponent has no place in a field of digits, and a text without a digit
  // is no value at all.
  if (number.malformed || number.hasExponent) {
    CP_RAISE(CP_CONV_INPUT_DATA_INVALID, kDataCnvModule, function, this, nullptr, "decimal",
             decimal);
  }
  negative = number.negative;
  const std::size_t first = number.digits.find_first_not_of('0');
  if (first == std::string::npos) return ZanStringBase(u"0", 1);
  // The first digit stands at most `units` places behind the point, so a scale that carries it
  // `reach` places beyond is too long before any text is built.
  const std::int64_t units = text.length() - (text[0] == u'-' || text[0] == u'+' ? 1 : 0);
  if (scale >= units + reach) return std::nullopt;
  // The integer digits of the value times ten to the scale, zeros beyond the text's own, written
  // into the string's storage at once.
  const std::int64_t end = number.integerDigits + static_cast<std::int64_t>(scale);
  if (end <= static_cast<std::int64_t>(first)) return ZanStringBase(u"0", 1);
  const auto length = static_cast<std::int32_t>(end - static_cast<std::int64_t>(first));
  ZanStringBase digits;
  char16_t* const storage = digits.unicodeString().getBuffer(length);
  if (storage == nullptr) throw std::bad_alloc();
  const auto own = std::min<std::int64_t>(end, static_cast<std::int64_t>(number.digits.size()));
  const auto copied = std::copy(number.digits.begin() + static_cast<std::ptrdiff_t>(first),
                                number.digits.begin() + static_cast<std::ptrdiff_t>(own), storage);
  std::fill(copied, storage + length, u'0');
  digits.unicodeString().releaseBuffer(length);
  return digits;
}
