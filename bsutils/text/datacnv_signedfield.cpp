// The frame that every number text field shares, whatever number it holds: the readers' argument
// checks, trimming and sign; the writers' checks, sign and padding.

#include <bsutils/dataconv.h>
#include <zan/zanutility.h>

#include <algorithm>

#include "core/cpraise.h"
#include "datacnvprivate.h"

using namespace bsutils::internal;

bool DataCnv::signedFieldNumber(const FieldReaderRules& rules, const char16_t* text,
                                std::int32_t length, ESign sign, const char16_t* minus,
                                const char16_t* plus, ETrimType trimType,
                                EJustification justification, char16_t padChar, bool padIsUnicode,
                                ZanStringBase& number) {
  if (!rules.embeddedSignsAllowed &&
      (sign == eLeadingEmbeddedSign || sign == eTrailingEmbeddedSign)) {
    CP_RAISE(CP_INTERNAL_ERROR, kDataCnvModule, rules.function, this, nullptr,
             "Sign type invalid for context: ", static_cast<std::int32_t>(sign));
  }
  if (text == nullptr) {
    CP_RAISE(CP_INTERNAL_ERROR, kDataCnvModule, rules.function, this, nullptr,
             rules.nullTextMessage);
  }
  // Only a negative length is refused; the runtime's message speaks of a zero length.
  if (length < 0) {
    CP_RAISE(CP_CONV_INPUT_DATA_INVALID, kDataCnvModule, rules.function, this,
             rules.negativeLengthText, rules.valueKind);
  }
  if (minus == nullptr || plus == nullptr) {
    CP_RAISE(CP_INTERNAL_ERROR, kDataCnvModule, rules.function, this, nullptr,
             rules.nullSignMessage);
  }

  number = ZanStringBase(text, length);
  if (!padIsUnicode) padChar = codePageCharToUnicode(rules.function, padChar, 1);
  TrimData(number, trimType, justification, padChar, true);
  return !number.isEmpty() && CheckSign(number, sign, minus, plus);
}

void DataCnv::checkFieldWriterArguments(const char* function, std::int32_t capacity, ESign sign,
                                        const char16_t* minus, const char16_t* plus) {
  if (capacity < 1) {
    CP_RAISE(CP_INTERNAL_ERROR, kDataCnvModule, function, this, nullptr,
             "Invalid output buffer length: ", capacity);
  }
  if (minus == nullptr || plus == nullptr) {
    CP_RAISE(CP_INTERNAL_ERROR, kDataCnvModule, function, this, nullptr,
             "Null sign string pointer");
  }
  // Embedded signs are written only by the zoned-decimal conversions.
  if (sign == eLeadingEmbeddedSign || sign == eTrailingEmbeddedSign) {
    CP_RAISE(CP_INTERNAL_ERROR, kDataCnvModule, function, this, nullptr,
             "Sign type invalid for context: ", static_cast<std::int32_t>(sign));
  }
  if (sign < eNoSign || sign > eTrailingSeparateSign) {
    CP_RAISE(CP_INTERNAL_ERROR, kDataCnvModule, function, this, nullptr,
             "Invalid sign type: ", static_cast<std::int32_t>(sign));
  }
}

ZanStringBase DataCnv::signedField(const char* function, const char* noSignKind,
                                   const char* fieldKind, ZanStringBase text, bool negative,
                                   std::int32_t capacity, ESign sign, const char16_t* minus,
                                   bool pad, EJustification justification, char16_t padChar,
                                   bool padIsUnicode) {
  if (negative && sign == eNoSign) {
    CP_RAISE(CP_CONV_INPUT_DATA_OUT_OF_BOUNDS, kDataCnvModule, function, this, nullptr, noSignKind,
             "string (no sign)");
  }
  // A digit pad character goes between the sign and the digits, so that "-00042" reads back;
  // any other goes outside the sign.
  if (pad) {
    if (!padIsUnicode) padChar = codePageCharToUnicode(function, padChar, 1);
    if (ZanUtility::checkCharacter(padChar, 1)) {
      PadData(text, capacity - text.length() - (negative ? US_MINUS.length() : 0), justification,
              padChar, true);
      pad = false;
    }
  }
  if (negative) {
    text.insert(0, US_MINUS);
    SubstituteMinusSign(text, sign, minus, false);
  }
  if (pad) PadData(text, capacity - text.length(), justification, padChar, true);

  if (text.length() > capacity) {
    CP_RAISE(CP_CONV_INPUT_DATA_OUT_OF_BOUNDS, kDataCnvModule, function, this, nullptr, fieldKind,
             "string (", text.length(), " characters)");
  }
  return text;
}

void DataCnv::storeField(const ZanStringBase& text, char16_t* out, std::int32_t& outLength) {
  std::copy_n(text.data(), text.length(), out);
  outLength = text.length();
}
