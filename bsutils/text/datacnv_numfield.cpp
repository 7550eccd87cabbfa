// Floats and decimals in text fields: a field's number read under its format, strict checks
// included, and numbers written in the format's form. Decimals stay text from end to end.

#include <bsutils/dataconv.h>
#include <unicode/dcfmtsym.h>
#include <unicode/decimfmt.h>
#include <unicode/uchar.h>

#include <algorithm>
#include <cstdint>
#include <limits>
#include <optional>
#include <string>

#include "core/cpdebugtrace.h"
#include "core/cpraise.h"
#include "datacnvprivate.h"
#include "text/numberscan.h"

using namespace bsutils::internal;

namespace {

constexpr std::int32_t kMaxDecimalPlaces = 998;

// A decimal whose first significant digit lies further from the point than this many places is
// refused: no wire form comes near it, and its text would be that long.
constexpr std::int64_t kDecimalMagnitudeLimit = 1000;

constexpr const char* kStrFromDbl = "DataCnv::StrFromDbl";
constexpr const char* kStrFromDec = "DataCnv::StrFromDec";

constexpr FieldReaderRules kDoubleReader{"DataCnv::StrToDbl",
                                         "Null input pointer passed into DataCnv::StrToDbl",
                                         "Null sign string pointer",
                                         "Tried to convert a zero length string to a double",
                                         "double",
                                         false};

constexpr FieldReaderRules kDecimalReader{"DataCnv::StrToDec",
                                          "Null input pointer passed into DataCnv::StrToDec",
                                          "Null sign string pointer",
                                          "Tried to convert a zero length string to a decimal",
                                          "decimal",
                                          false};

void checkNumericTextFormat(const DataCnv* source, const char* function,
                            const NumericTextFormat& format) {
  if (format.form < ePlainNumeric || format.form > eExponentialNumeric) {
    CP_RAISE(CP_INTERNAL_ERROR, kDataCnvModule, function, source, nullptr,
             "Invalid numeric form: ", static_cast<std::int32_t>(format.form));
  }
  if (format.decimalPlaces < 0 || format.decimalPlaces > kMaxDecimalPlaces) {
    CP_RAISE(CP_INTERNAL_ERROR, kDataCnvModule, function, source, nullptr,
             "Invalid decimal places: ", format.decimalPlaces);
  }
  // The point must not be mistaken for a part of the number.
  const char16_t point = format.decimalPoint;
  if (u_isdigit(point) || point == u'+' || point == u'-' || point == u'e' || point == u'E') {
    CP_RAISE(CP_INTERNAL_ERROR, kDataCnvModule, function, source, nullptr,
             "Invalid decimal point: ", ZanStringBase(&point, 1));
  }
}

// The first strict rule that a number breaks, in the documented order; a malformed number breaks
// one only when it went wrong at a point character of another convention.
std::optional<CpCode> strictViolation(const ScannedNumber& number,
                                      const NumericTextFormat& format) {
  if (number.malformed) {
    const char16_t stray = number.strayUnit;
    if ((stray == u'.' || stray == u',') && stray != format.decimalPoint) {
      return CpCode::CP_NUMERIC_STRICT_DECIMAL_POINT;
    }
    return std::nullopt;
  }
  const bool explicitPoint = format.form == eExplicitDecimalPoint;
  const bool exponential = format.form == eExponentialNumeric;
  if (number.integerDigits == 0) return CpCode::CP_NUMERIC_STRICT_INTEGER_DIGIT;
  if (format.form == eVirtualDecimalPoint && number.hasPoint) {
    return CpCode::CP_NUMERIC_STRICT_VDP_HAS_DECIMAL;
  }
  if (explicitPoint && !number.hasPoint) return CpCode::CP_NUMERIC_STRICT_NO_DECIMAL_POINT;
  if (!explicitPoint && number.hasPoint && number.fractionDigits() == 0) {
    return CpCode::CP_NUMERIC_STRICT_ENDS_DECIMAL_POINT;
  }
  if (!exponential && number.hasExponent) return CpCode::CP_NUMERIC_STRICT_NON_EXPONENTIAL;
  if (exponential && !number.hasExponent) return CpCode::CP_NUMERIC_STRICT_EXPONENTIAL;
  if (explicitPoint && number.fractionDigits() != format.decimalPlaces) {
    return CpCode::CP_NUMERIC_STRICT_INCORRECT_DEC_PLACES;
  }
  return std::nullopt;
}

// The virtual places divide the digits only when the text has no point of its own.
std::int64_t virtualShift(const ScannedNumber& number, const NumericTextFormat& format) {
  return format.form == eVirtualDecimalPoint && !number.hasPoint ? -format.decimalPlaces : 0;
}

bool hasNonZeroDigit(const ZanStringBase& text) {
  return std::any_of(text.data(), text.data() + text.length(),
                     [](char16_t unit) { return unit >= u'1' && unit <= u'9'; });
}

// Unsigned positional text ("123.45", "0.00012") in exponential form: one digit, then the fraction
// (without trailing zeros when `places` is 0, else exactly `places` digits), "e", the exponent's
// sign and at least two digits: "1.2345e+02", "1.2e-04", "0e+00".
ZanStringBase exponentialText(const ZanStringBase& positional, std::int32_t places) {
  std::string digits;
  std::int64_t integerDigits = -1;
  for (std::int32_t i = 0; i < positional.length(); ++i) {
    if (positional[i] == u'.') {
      integerDigits = static_cast<std::int64_t>(digits.size());
    } else {
      digits.push_back(static_cast<char>(positional[i]));
    }
  }
  if (integerDigits < 0) integerDigits = static_cast<std::int64_t>(digits.size());

  const std::size_t first = digits.find_first_not_of('0');
  std::int64_t exponent = 0;
  std::string significand = "0";
  if (first != std::string::npos) {
    exponent = integerDigits - 1 - static_cast<std::int64_t>(first);
    significand = digits.substr(first);
  }
  if (places == 0) {
    significand.erase(std::max<std::size_t>(significand.find_last_not_of('0') + 1, 1));
  } else {
    significand.resize(static_cast<std::size_t>(places) + 1, '0');
  }

  std::string text(1, significand[0]);
  if (significand.size() > 1) text += '.' + significand.substr(1);
  const std::string exponentDigits = std::to_string(exponent < 0 ? -exponent : exponent);
  text += exponent < 0 ? "e-" : "e+";
  if (exponentDigits.size() < 2) text += '0';
  text += exponentDigits;
  return ZanStringBase::fromUtf8(text);
}

}  // namespace

bool DataCnv::numberFromField(const FieldReaderRules& rules, const char16_t* text,
                              std::int32_t length, ESign sign, const char16_t* minus,
                              const char16_t* plus, ETrimType trimType,
                              EJustification justification, char16_t padChar, bool padIsUnicode,
                              const NumericTextFormat& format, ScannedNumber& number) {
  checkNumericTextFormat(this, rules.function, format);
  ZanStringBase unsignedText;
  const bool negative = signedFieldNumber(rules, text, length, sign, minus, plus, trimType,
                                          justification, padChar, padIsUnicode, unsignedText);
  if (unsignedText.isEmpty()) {
    if (format.strictChecking) {
      CP_RAISE(CP_NUMERIC_STRICT_ZERO_LENGTH, kDataCnvModule, rules.function, this, nullptr,
               ZanStringBase(text, length));
    }
    return false;
  }

  number = scanNumber(unsignedText, NumberGrammar{format.decimalPoint, false, true});
  number.negative = negative;
  const std::optional<CpCode> violation =
      format.strictChecking ? strictViolation(number, format) : std::nullopt;
  if (violation) {
    cpRaise(CpRaiseSite{kDataCnvModule, __LINE__, rules.function, this}, *violation, nullptr,
            ZanStringBase(text, length));
  }
  if (number.malformed) {
    CP_RAISE(CP_CONV_INPUT_DATA_INVALID, kDataCnvModule, rules.function, this, nullptr,
             rules.valueKind, ZanStringBase(text, length));
  }
  return true;
}

ZanStringBase DataCnv::decimalFromNumber(const char* function, const char* kind,
                                         const ScannedNumber& number, std::int64_t shift,
                                         const ZanStringBase& source) {
  const std::int64_t pointShift = number.exponent + shift;
  const std::optional<std::int64_t> leading = leadingExponent(number, shift);
  if (!leading) {
    // A zero keeps the places it was written with unless an exponent moves them far away.
    if (pointShift < -kDecimalMagnitudeLimit || pointShift > kDecimalMagnitudeLimit) {
      return ZanStringBase::fromLiteral(u"0");
    }
  } else if (*leading < -kDecimalMagnitudeLimit || *leading > kDecimalMagnitudeLimit ||
             pointShift < -std::numeric_limits<std::int32_t>::max() ||
             pointShift > std::numeric_limits<std::int32_t>::max()) {
    CP_RAISE(CP_CONV_INPUT_DATA_OUT_OF_BOUNDS, kDataCnvModule, function, this, nullptr, kind,
             source);
  }

  ZanStringBase text = ZanStringBase::fromUtf8(number.digits);
  if (number.fractionDigits() > 0) text.insert(number.integerDigits, US_DECIMAL);
  adjustDecimalForString(text, static_cast<std::int32_t>(-pointShift));
  // Leading zeros go, but for the one before the point; trailing fraction zeros are the places the
  // text was written with and stay.
  std::int32_t zeros = 0;
  while (zeros + 1 < text.length() && text[zeros] == u'0' && text[zeros + 1] != u'.') ++zeros;
  text.erase(0, zeros);
  removeTrailingDecimal(text);
  if (number.negative && leading) text.insert(0, US_MINUS);
  return text;
}

ZanStringBase DataCnv::roundHalfEven(const ZanStringBase& magnitude, std::int32_t digits,
                                     bool significant) {
  icu::DecimalFormat* formatter = getDecimalFormatter();
  UErrorCode status = U_ZERO_ERROR;
  if (formatterDigits_ < 0) {
    // The locale's digits and separators would not read back: the text is always ASCII with ".".
    formatter->setDecimalFormatSymbols(icu::DecimalFormatSymbols(icu::Locale::getRoot(), status));
    formatter->setGroupingUsed(false);
    formatter->setRoundingMode(icu::DecimalFormat::kRoundHalfEven);
  }
  // Each setter rebuilds the formatter's internals, so a run of equal fields sets them once.
  if (formatterDigits_ != digits || formatterSignificant_ != significant) {
    formatter->setSignificantDigitsUsed(significant);
    if (significant) {
      formatter->setMinimumSignificantDigits(digits);
      formatter->setMaximumSignificantDigits(digits);
    } else {
      formatter->setMinimumFractionDigits(digits);
      formatter->setMaximumFractionDigits(digits);
    }
    formatterDigits_ = digits;
    formatterSignificant_ = significant;
  }
  icu::UnicodeString rounded;
  const std::string number = magnitude.toUtf8();
  formatter->format(icu::StringPiece(number.data(), static_cast<std::int32_t>(number.size())),
                    rounded, nullptr, status);
  if (U_FAILURE(status)) {
    CP_RAISE(CP_INTERNAL_ERROR, kDataCnvModule, "DataCnv::roundHalfEven", this, nullptr,
             "Unable to round the decimal: ", static_cast<std::int32_t>(status));
  }
  return ZanStringBase(std::move(rounded));
}

ZanStringBase DataCnv::numberField(const char* function, const char* kind,
                                   const ZanStringBase& normalDecimal, std::int32_t capacity,
                                   ESign sign, const char16_t* minus, bool pad,
                                   EJustification justification, char16_t padChar,
                                   bool padIsUnicode, const NumericTextFormat& format) {
  const bool negativeValue = !normalDecimal.isEmpty() && normalDecimal[0] == u'-';
  const ZanStringBase magnitude =
      negativeValue ? normalDecimal.substring(1, normalDecimal.length() - 1) : normalDecimal;
  const std::int32_t places = format.decimalPlaces;
  ZanStringBase text;
  switch (format.form) {
    case ePlainNumeric:
      text = magnitude;
      break;
    case eExplicitDecimalPoint:
      text = roundHalfEven(magnitude, places, false);
      if (places == 0) text.append(u'.');
      break;
    case eVirtualDecimalPoint: {
      text = roundHalfEven(magnitude, places, false);
      const std::int32_t point = text.indexOf(u'.');
      if (point >= 0) text.erase(point, 1);
      std::int32_t zeros = 0;
      while (zeros + 1 < text.length() && text[zeros] == u'0') ++zeros;
      text.erase(0, zeros);
      break;
    }
    case eExponentialNumeric:
      text = exponentialText(places == 0 ? magnitude : roundHalfEven(magnitude, places + 1, true),
                             places);
      break;
  }
  if (format.decimalPoint != u'.') {
    const std::int32_t point = text.indexOf(u'.');
    if (point >= 0) text.replace(point, 1, ZanStringBase(&format.decimalPoint, 1));
  }
  // What rounds to zero is written without a sign.
  return signedField(function, kind, kind, text, negativeValue && hasNonZeroDigit(text), capacity,
                     sign, minus, pad, justification, padChar, padIsUnicode);
}

double DataCnv::StrToDbl(const char16_t* text, std::int32_t length, ESign sign,
                         const char16_t* minus, const char16_t* plus, ETrimType trimType,
                         EJustification justification, char16_t padChar, bool padIsUnicode,
                         const NumericTextFormat& format) {
  CpDebugTrace trace(kDoubleReader.function, static_cast<const void*>(text), length, sign, trimType,
                     justification, padChar, padIsUnicode, static_cast<std::int32_t>(format.form),
                     format.decimalPlaces);
  ScannedNumber number;
  if (!numberFromField(kDoubleReader, text, length, sign, minus, plus, trimType, justification,
                       padChar, padIsUnicode, format, number)) {
    return trace.result(0.0);
  }
  const std::optional<double> magnitude = roundedMagnitude(number, virtualShift(number, format));
  if (!magnitude) {
    CP_RAISE(CP_CONV_INPUT_DATA_OUT_OF_BOUNDS, kDataCnvModule, kDoubleReader.function, this,
             nullptr, "double", ZanStringBase(text, length));
  }
  return trace.result(number.negative ? -*magnitude : *magnitude);
}

PWFData DataCnv::StrToDec(const char16_t* text, std::int32_t length, ESign sign,
                          const char16_t* minus, const char16_t* plus, ETrimType trimType,
                          EJustification justification, char16_t padChar, bool padIsUnicode,
                          const NumericTextFormat& format) {
  CpDebugTrace trace(kDecimalReader.function, static_cast<const void*>(text), length, sign,
                     trimType, justification, padChar, padIsUnicode,
                     static_cast<std::int32_t>(format.form), format.decimalPlaces);
  ScannedNumber number;
  if (!numberFromField(kDecimalReader, text, length, sign, minus, plus, trimType, justification,
                       padChar, padIsUnicode, format, number)) {
    return PWFData(u"0", eDecimal);
  }
  const ZanStringBase decimal =
      decimalFromNumber(kDecimalReader.function, "decimal", number, virtualShift(number, format),
                        ZanStringBase(text, length));
  return PWFData(decimal.terminatedData(), eDecimal);
}

void DataCnv::StrFromDbl(double value, char16_t* out, std::int32_t& outLength, ESign sign,
                         const char16_t* minus, const char16_t* plus, bool pad,
                         EJustification justification, char16_t padChar, bool padIsUnicode,
                         const NumericTextFormat& format) {
  CpDebugTrace trace(kStrFromDbl, value, outLength, sign, pad, justification, padChar, padIsUnicode,
                     static_cast<std::int32_t>(format.form), format.decimalPlaces);
  requireOutputBuffer(this, kStrFromDbl, out);
  checkFieldWriterArguments(kStrFromDbl, outLength, sign, minus, plus);
  checkNumericTextFormat(this, kStrFromDbl, format);
  ZanStringBase normal;
  doubleToUString(value, normal, false);
  storeField(numberField(kStrFromDbl, "double", normal, outLength, sign, minus, pad, justification,
                         padChar, padIsUnicode, format),
             out, outLength);
}

void DataCnv::StrFromDec(const ZanStringBase& decimal, char16_t* out, std::int32_t& outLength,
                         ESign sign, const char16_t* minus, const char16_t* plus, bool pad,
                         EJustification justification, char16_t padChar, bool padIsUnicode,
                         const NumericTextFormat& format) {
  CpDebugTrace trace(kStrFromDec, decimal, outLength, sign, pad, justification, padChar,
                     padIsUnicode, static_cast<std::int32_t>(format.form), format.decimalPlaces);
  requireOutputBuffer(this, kStrFromDec, out);
  checkFieldWriterArguments(kStrFromDec, outLength, sign, minus, plus);
  checkNumericTextFormat(this, kStrFromDec, format);
  const ScannedNumber number = scanNumber(decimal, NumberGrammar{});
  if (number.malformed) {
    CP_RAISE(CP_CONV_INPUT_DATA_INVALID, kDataCnvModule, kStrFromDec, this, nullptr, "decimal",
             decimal);
  }
  ZanStringBase normal;
  StrFromDec(decimalFromNumber(kStrFromDec, "decimal", number, 0, decimal), normal);
  storeField(numberField(kStrFromDec, "decimal", normal, outLength, sign, minus, pad, justification,
                         padChar, padIsUnicode, format),
             out, outLength);
}
