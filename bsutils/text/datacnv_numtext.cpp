// Numbers as plain text: doubles written with the shortest digits that read back to them, text read
// back into correctly rounded doubles, and the normal form of decimal text.

#include <bsutils/dataconv.h>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <optional>
#include <string_view>

#include "core/canonicaltext.h"
#include "core/cpdebugtrace.h"
#include "core/cpraise.h"
#include "datacnvprivate.h"
#include "text/numberscan.h"

using namespace bsutils::internal;

namespace {

// Room for the scientific text of any double ("-1.7976931348623157e+308") and for the positional
// text of any below 2 to the 53.
constexpr std::int32_t kDoubleTextCapacity = kPositionalDoubleCapacity;

}  // namespace

void DataCnv::doubleToUString(double value, ZanStringBase& out, bool exponential) {
  constexpr const char* kFunction = "DataCnv::doubleToUString";
  CpDebugTrace trace(kFunction, value, exponential);
  if (!std::isfinite(value)) {
    CP_RAISE(CP_CONV_INPUT_DATA_INVALID, kDataCnvModule, kFunction, this, nullptr, "double", value);
  }
  // Below 2 to the 53 the shortest digits are written in place. Above, the positional form would
  // write every digit of the binary value ("1.5e300" has 301 of them, mostly noise), so the point
  // of the short scientific form ("1e-07", "1.5e+300") is moved instead.
  const bool positional = !exponential && hasPositionalText(value);
  char units[kDoubleTextCapacity];
  std::int32_t written = 0;
  if (positional) {
    written = positionalDoubleText(value, units);
  } else {
    const double signedUnlessZero = value == 0.0 ? 0.0 : value;  // a decimal has no negative zero
    written = static_cast<std::int32_t>(
        std::to_chars(units, units + sizeof units, signedUnlessZero, std::chars_format::scientific)
            .ptr -
        units);
  }
  // ASCII: each character is its UTF-16 unit.
  char16_t wide[kDoubleTextCapacity];
  std::copy(units, units + written, wide);
  const ZanStringBase text(wide, written);
  out = exponential || positional
            ? text
            : decimalFromNumber(kFunction, "double", scanNumber(text, NumberGrammar{}), 0, text);
  trace.result(out);
}

double DataCnv::PWFStringTodouble(const ZanStringBase& text) {
  constexpr const char* kFunction = "DataCnv::PWFStringTodouble";
  CpDebugTrace trace(kFunction, text);
  const ScannedNumber scanned = scanNumber(text, NumberGrammar{});
  if (scanned.malformed) {
    CP_RAISE(CP_CONV_INPUT_DATA_INVALID, kDataCnvModule, kFunction, this, nullptr, "double", text);
  }
  const std::optional<double> value = roundedMagnitude(scanned, 0);
  if (!value) {
    CP_RAISE(CP_CONV_INPUT_DATA_OUT_OF_BOUNDS, kDataCnvModule, kFunction, this, nullptr, "double",
             text);
  }
  return trace.result(scanned.negative ? -*value : *value);
}

void DataCnv::StrFromDec(const ZanStringBase& decimal, ZanStringBase& out) {
  CpDebugTrace trace("DataCnv::StrFromDec", decimal);
  out = normalDecimalText(decimal);
  trace.result(out);
}
