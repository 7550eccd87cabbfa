// Integers as text: 4- and 8-byte values read from and written to fixed-length UTF-16 fields, and
// the plain decimal helpers that other conversions share.

#include <bsutils/dataconv.h>
#include <unicode/uchar.h>
#include <zan/zanutility.h>

#include <algorithm>
#include <type_traits>

#include "core/canonicaltext.h"
#include "core/cpdebugtrace.h"
#include "core/cpraise.h"
#include "datacnvprivate.h"

using namespace bsutils::internal;

namespace {

// What differs between the 4- and 8-byte readers: their texts and their limits.
struct IntegerFieldRules {
  FieldReaderRules field;
  std::int32_t maxDigits;
  const char16_t* negativeLimit;  // maxDigits digits
  const char16_t* positiveLimit;
};

constexpr IntegerFieldRules kInt32Rules{
    {"DataCnv::StrToInt32", "Null input pointer passed into DataCnv::StrToInt32",
     "Null sign string pointer passed into DataCnv::StrToInt32",
     "Tried to convert a zero length string to a integer", "integer", true},
    10,
    u"2147483648",
    u"2147483647"};

constexpr IntegerFieldRules kInt64Rules{
    {"DataCnv::StrToInt64", "Null input pointer passed into DataCnv::StrToInt64",
     "Null sign string pointer", "Tried to convert a zero length string to an integer", "integer",
     false},
    19,
    u"9223372036854775808",
    u"9223372036854775807"};

template <class Integer>
constexpr const IntegerFieldRules& integerFieldRules() {
  return sizeof(Integer) == 4 ? kInt32Rules : kInt64Rules;
}

}  // namespace

template <class Integer>
Integer DataCnv::integerFromField(const char16_t* text, std::int32_t length, ESign sign,
                                  const char16_t* minus, const char16_t* plus, ETrimType trimType,
                                  EJustification justification, char16_t padChar,
                                  bool padIsUnicode) {
  const IntegerFieldRules& rules = integerFieldRules<Integer>();
  const char* const function = rules.field.function;
  ZanStringBase digits;
  const bool negative = signedFieldNumber(rules.field, text, length, sign, minus, plus, trimType,
                                          justification, padChar, padIsUnicode, digits);
  if (digits.isEmpty()) return 0;

  // Digits of any script are accepted; each is taken by its value, so the range check and the
  // arithmetic below see "0".."9" only.
  ZanStringBase plain;
  plain.reserve(digits.length());
  for (std::int32_t i = 0; i < digits.length(); ++i) {
    if (!u_isdigit(digits[i])) {
      CP_RAISE(CP_CONV_INPUT_DATA_INVALID, kDataCnvModule, function, this, nullptr, "string",
               ZanStringBase(text, length));
    }
    plain.append(static_cast<char16_t>(u'0' + u_charDigitValue(digits[i])));
  }

  // The range is judged by the digit count, leading zeros included, then against the limit.
  const bool outOfRange =
      plain.length() > rules.maxDigits ||
      (plain.length() == rules.maxDigits &&
       plain > ZanStringBase(negative ? rules.negativeLimit : rules.positiveLimit));
  if (outOfRange) {
    if constexpr (sizeof(Integer) == 4) {
      CP_RAISE(CP_CONV_INPUT_DATA_OUT_OF_BOUNDS, kDataCnvModule, function, this, nullptr, "string");
    } else {
      CP_RAISE(CP_CONV_INPUT_DATA_OUT_OF_BOUNDS, kDataCnvModule, function, this, nullptr, "string",
               "8-byte integer");
    }
  }

  // At most the limit's magnitude, which fits the unsigned type; negating there wraps the limit of
  // a negative value onto the smallest value of the type.
  using Unsigned = std::make_unsigned_t<Integer>;
  Unsigned magnitude = 0;
  for (std::int32_t i = 0; i < plain.length(); ++i) {
    magnitude = static_cast<Unsigned>(magnitude * 10 + (plain[i] - u'0'));
  }
  return static_cast<Integer>(negative ? static_cast<Unsigned>(0 - magnitude) : magnitude);
}

std::int32_t DataCnv::StrToInt32(const char16_t* text, std::int32_t length, ESign sign,
                                 const char16_t* minus, const char16_t* plus, ETrimType trimType,
                                 EJustification justification, char16_t padChar,
                                 bool padIsUnicode) {
  CpDebugTrace trace("DataCnv::StrToInt32", static_cast<const void*>(text), length, sign, trimType,
                     justification, padChar, padIsUnicode);
  return trace.result(integerFromField<std::int32_t>(text, length, sign, minus, plus, trimType,
                                                     justification, padChar, padIsUnicode));
}

std::int64_t DataCnv::StrToInt64(const char16_t* text, std::int32_t length, ESign sign,
                                 const char16_t* minus, const char16_t* plus, ETrimType trimType,
                                 EJustification justification, char16_t padChar,
                                 bool padIsUnicode) {
  CpDebugTrace trace("DataCnv::StrToInt64", static_cast<const void*>(text), length, sign, trimType,
                     justification, padChar, padIsUnicode);
  return trace.result(integerFromField<std::int64_t>(text, length, sign, minus, plus, trimType,
                                                     justification, padChar, padIsUnicode));
}

void DataCnv::Int64ToUString(std::int64_t value, ZanStringBase& out) { out = integerText(value); }

std::int64_t DataCnv::UStringToInt64(const ZanStringBase& text) {
  constexpr const char* kFunction = "DataCnv::UStringToInt64";
  constexpr std::uint64_t kLastSafe = 922337203685477580;  // INT64_MAX / 10
  const bool negative = !text.isEmpty() && text[0] == u'-';
  const std::int32_t first = !text.isEmpty() && (negative || text[0] == u'+') ? 1 : 0;
  // The last digit may reach 7, or 8 for a negative value: the magnitude of the smallest value.
  const std::int32_t lastDigitLimit = negative ? 8 : 7;
  std::uint64_t magnitude = 0;
  for (std::int32_t i = first; i < text.length(); ++i) {
    const char16_t unit = text[i];
    if (unit < u'0' || unit > u'9') {
      CP_RAISE(CP_CONV_INPUT_DATA_INVALID, kDataCnvModule, kFunction, this, nullptr, "string",
               text);
    }
    const std::int32_t digit = unit - u'0';
    if (magnitude > kLastSafe || (magnitude == kLastSafe && digit > lastDigitLimit)) {
      CP_RAISE(CP_CONV_INPUT_DATA_OUT_OF_BOUNDS, kDataCnvModule, kFunction, this, nullptr, "string",
               text, "8-byte integer");
    }
    magnitude = magnitude * 10 + static_cast<std::uint64_t>(digit);
  }
  return static_cast<std::int64_t>(negative ? 0 - magnitude : magnitude);
}

ZanStringBase DataCnv::integerField(const char* function, const char* integerKind,
                                    std::int64_t value, std::int32_t capacity, ESign sign,
                                    const char16_t* minus, const char16_t* plus, bool pad,
                                    EJustification justification, char16_t padChar,
                                    bool padIsUnicode) {
  checkFieldWriterArguments(function, capacity, sign, minus, plus);
  ZanStringBase magnitude;
  Int64ToUString(value, magnitude);
  if (value < 0) magnitude.erase(0, 1);
  return signedField(function, integerKind, "integer", magnitude, value < 0, capacity, sign, minus,
                     pad, justification, padChar, padIsUnicode);
}

void DataCnv::integerFieldToBuffer(const char* function, const char* integerKind,
                                   std::int64_t value, char16_t* out, std::int32_t& outLength,
                                   ESign sign, const char16_t* minus, const char16_t* plus,
                                   bool pad, EJustification justification, char16_t padChar,
                                   bool padIsUnicode) {
  requireOutputBuffer(this, function, out);
  storeField(integerField(function, integerKind, value, outLength, sign, minus, plus, pad,
                          justification, padChar, padIsUnicode),
             out, outLength);
}

void DataCnv::StrFromInt32(std::int32_t value, char16_t* out, std::int32_t& outLength, ESign sign,
                           const char16_t* minus, const char16_t* plus, bool pad,
                           EJustification justification, char16_t padChar, bool padIsUnicode) {
  constexpr const char* kFunction = "DataCnv::StrFromInt32";
  CpDebugTrace trace(kFunction, value, outLength, sign, pad, justification, padChar, padIsUnicode);
  integerFieldToBuffer(kFunction, "4-byte integer", value, out, outLength, sign, minus, plus, pad,
                       justification, padChar, padIsUnicode);
}

void DataCnv::StrFromInt64(std::int64_t value, char16_t* out, std::int32_t& outLength, ESign sign,
                           const char16_t* minus, const char16_t* plus, bool pad,
                           EJustification justification, char16_t padChar, bool padIsUnicode) {
  constexpr const char* kFunction = "DataCnv::StrFromInt64";
  CpDebugTrace trace(kFunction, value, outLength, sign, pad, justification, padChar, padIsUnicode);
  integerFieldToBuffer(kFunction, "8-byte integer", value, out, outLength, sign, minus, plus, pad,
                       justification, padChar, padIsUnicode);
}

void DataCnv::StrFromInt64(std::int64_t value, ZanStringBase& out, std::int32_t& outLength,
                           ESign sign, const char16_t* minus, const char16_t* plus, bool pad,
                           EJustification justification, char16_t padChar, bool padIsUnicode) {
  constexpr const char* kFunction = "DataCnv::StrFromInt64";
  CpDebugTrace trace(kFunction, value, outLength, sign, pad, justification, padChar, padIsUnicode);
  out = integerField(kFunction, "8-byte integer", value, outLength, sign, minus, plus, pad,
                     justification, padChar, padIsUnicode);
  outLength = out.length();
}

PWFData DataCnv::StrFromInt64(std::int64_t value) {
  CpDebugTrace trace("DataCnv::StrFromInt64", value);
  // The plain form: the shortest text, "-" for a negative value, no padding. Twenty units always
  // suffice; the runtime's 100-unit working buffer is kept as the capacity.
  constexpr std::int32_t kCapacity = 100;
  return PWFData(integerField("DataCnv::StrFromInt64", "8-byte integer", value, kCapacity,
                              eLeadingSeparateSign, US_MINUS.terminatedData(),
                              US_PLUS.terminatedData(), false, eLeftJustified, u'0', true));
}
