// The standard text form of values: one text per logical type that reads back to the same value,
// for trace, debugging and the places where a field of any type travels as text.

#include <bsutils/dataconv.h>
#include <zan/zanexception.h>

#include <charconv>
#include <cmath>
#include <limits>
#include <optional>
#include <string>

#include "core/cpdebugtrace.h"
#include "core/cpraise.h"
#include "datacnvprivate.h"
#include "text/isodatetime.h"
#include "text/numberscan.h"

using namespace bsutils::internal;

namespace {

constexpr const char* kFromFunction = "DataCnv::StandardStrFromData";
constexpr const char* kToFunction = "DataCnv::StandardStrToData";

ZanStringBase ascii(std::string_view text) { return ZanStringBase::fromUtf8(text); }

// The canonical double of XML Schema: one digit before the point (none but for zero), at least
// one after, the shortest digits that read back, and a plain exponent: 150 -> "1.5E2", 0.1 ->
// "1.0E-1", 0 -> "0.0E0".
ZanStringBase canonicalDoubleText(double value) {
  if (std::isnan(value)) return ascii("NaN");
  if (std::isinf(value)) return ascii(value < 0 ? "-INF" : "INF");
  char digits[32];
  const auto written =
      std::to_chars(digits, digits + sizeof digits, value, std::chars_format::scientific);
  const std::string_view scientific(digits, static_cast<std::size_t>(written.ptr - digits));
  const std::size_t mark = scientific.find('e');
  std::string mantissa(scientific.substr(0, mark));
  if (mantissa.find('.') == std::string::npos) mantissa += ".0";
  int exponent = 0;
  const std::string_view exponentText = scientific.substr(mark + 1);
  std::from_chars(exponentText.data() + (exponentText.front() == '+' ? 1 : 0),
                  exponentText.data() + exponentText.size(), exponent);
  return ascii(mantissa + "E" + std::to_string(exponent));
}

}  // namespace

double DataCnv::canonicalDoubleValue(const ZanStringBase& text) {
  const std::string spelled = text.toUtf8();
  if (spelled == "NaN") return std::numeric_limits<double>::quiet_NaN();
  if (spelled == "INF" || spelled == "+INF") return std::numeric_limits<double>::infinity();
  if (spelled == "-INF") return -std::numeric_limits<double>::infinity();
  return PWFStringTodouble(text);
}

ZanStringBase DataCnv::standardDecimalText(const ZanStringBase& text) {
  // A sign, then digits with at most one point: no grouping, no exponent.
  const ScannedNumber scanned = scanNumber(text, NumberGrammar{});
  if (scanned.malformed || scanned.hasExponent) {
    CP_RAISE(CP_CONV_INPUT_DATA_INVALID, kDataCnvModule, kToFunction, this, nullptr, "decimal",
             text);
  }
  ZanStringBase normal;
  StrFromDec(text, normal);
  return normal;
}

bool DataCnv::standardBooleanValue(const ZanStringBase& text) {
  // The two words, and the digits that XML Schema also allows for them.
  const std::string spelled = text.toUtf8();
  if (spelled == "true" || spelled == "1") return true;
  if (spelled == "false" || spelled == "0") return false;
  CP_RAISE(CP_CONV_INPUT_DATA_INVALID, kDataCnvModule, kToFunction, this, nullptr, "boolean", text);
}

PWFData DataCnv::StandardStrFromData(const PWFData& value) {
  CpDebugTrace trace(kFromFunction, static_cast<std::int32_t>(value.getDataLogicalType()));
  if (value.isNull()) {
    CP_RAISE(CP_INTERNAL_ERROR, kDataCnvModule, kFromFunction, this, nullptr,
             "Should not call this method with null data");
  }
  switch (value.getDataLogicalType()) {
    case eString:
      return value;
    case eInteger:
      return StrFromInt64(value.getInt64Value());
    case eFloat:
      return PWFData(canonicalDoubleText(value.getDoubleValue()));
    case eDecimal: {
      ZanStringBase normal;
      StrFromDec(value.getDecimalText(), normal);
      return PWFData(normal);
    }
    case eBinary: {
      std::int32_t length = 0;
      const unsigned char* bytes = value.getBinaryValue(length);
      return StrFromBin(bytes, length);
    }
    case eBoolean:
      return PWFData(ascii(value.getBoolValue() ? "true" : "false"));
    case eInterval:
      return StrFromInterval(value.getIntervalValue());
    case eDateTime: {
      const std::optional<ZanStringBase> text = isoDateTimeText(value.getDateTimeValue());
      if (!text) {
        CP_RAISE(CP_CONV_INPUT_DATA_INVALID, kDataCnvModule, kFromFunction, this, nullptr,
                 "date-time");
      }
      return PWFData(*text);
    }
    default:
      CP_RAISE(CP_INTERNAL_ERROR, kDataCnvModule, kFromFunction, this, nullptr,
               "Should not call this method without a valid type");
  }
}

PWFData DataCnv::StandardStrToData(const char16_t* text, std::int32_t length, ELogicalType type) {
  CpDebugTrace trace(kToFunction, static_cast<const void*>(text), length,
                     static_cast<std::int32_t>(type));
  try {
    if (text == nullptr && length != 0) {
      CP_RAISE(CP_INTERNAL_ERROR, kDataCnvModule, kToFunction, this, nullptr, "Null input pointer");
    }
    if (length < -1) {
      CP_RAISE(CP_INTERNAL_ERROR, kDataCnvModule, kToFunction, this, nullptr,
               "Invalid input length: ", length);
    }
    const ZanStringBase value(text, length);
    switch (type) {
      case eString:
        return PWFData(value);
      case eInteger:
        return PWFData(UStringToInt64(value));
      case eFloat:
        return PWFData(canonicalDoubleValue(value));
      case eDecimal:
        return PWFData(standardDecimalText(value).terminatedData(), eDecimal);
      case eBinary:
        return StrToBin(value.data(), value.length());
      case eBoolean:
        return PWFData(standardBooleanValue(value));
      case eInterval:
        return PWFData(StrToInterval(value.data(), value.length()));
      case eDateTime: {
        const std::optional<PWFDateTime> dateTime = isoDateTimeValue(value);
        if (!dateTime) {
          CP_RAISE(CP_CONV_INPUT_DATA_INVALID, kDataCnvModule, kToFunction, this, nullptr,
                   "date-time", value);
        }
        return PWFData(*dateTime);
      }
      default:
        CP_RAISE(CP_INTERNAL_ERROR, kDataCnvModule, kToFunction, this, nullptr,
                 "Should not call this method without a valid type");
    }
  } catch (const ZanException& inner) {
    // The caller learns that the text was not a value of the type, and from the inserts why.
    std::vector<std::string> reasons{inner.traceText()};
    reasons.insert(reasons.end(), inner.inserts().begin(), inner.inserts().end());
    cpRaiseRendered(CpRaiseSite{kDataCnvModule, __LINE__, kToFunction, this},
                    CpCode::CP_INVALID_LOGICAL_STRING, nullptr, reasons);
  }
}
