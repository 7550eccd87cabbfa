// The converter object: its settings, the members it creates on first use, encoding numbers, byte
// reversal, hexadecimal digits and the bridges to its code page.

#include <bsutils/dataconv.h>
#include <bsutils/pwfdatetimeformatter.h>
#include <unicode/decimfmt.h>
#include <unicode/numfmt.h>

#include "core/cpdebugtrace.h"
#include "core/cpraise.h"
#include "datacnvprivate.h"

using namespace bsutils::internal;

const ZanStringBase DataCnv::US_MINUS = ZanStringBase::fromLiteral(u"-");
const ZanStringBase DataCnv::US_PLUS = ZanStringBase::fromLiteral(u"+");
const ZanStringBase DataCnv::UHEX_NUMBERS = ZanStringBase::fromLiteral(u"0123456789abcdefABCDEF");
const ZanStringBase DataCnv::US_DECIMAL = ZanStringBase::fromLiteral(u".");
const ZanStringBase DataCnv::DATE_PATTERN = ZanStringBase::fromLiteral(u"yyyy-MM-dd");
const ZanStringBase DataCnv::TIME_PATTERN = ZanStringBase::fromLiteral(u"HH:mm:ss");
const ZanStringBase DataCnv::TIMESTAMP_PATTERN = ZanStringBase::fromLiteral(u"yyyy-MM-dd HH:mm:ss");
const ZanStringBase DataCnv::MILLISEC_PATTERN = ZanStringBase::fromLiteral(u".SSS");

namespace {

constexpr std::int32_t kLocalCcsid = 1208;

// An empty text means "not given", which the formatter takes as null.
char16_t* nullIfEmpty(char16_t* text) { return text != nullptr && *text == 0 ? nullptr : text; }

}  // namespace

DataCnv::DataCnv(std::int32_t ccsid, EEndian endian, EFloatFmt floatFormat,
                 std::int32_t formatterArg3, char16_t* formatterArg2, char16_t* formatterArg4,
                 std::int32_t formatterArg5, bool formatterArg1, char positivePackedSign,
                 const ZanNamedLogSource* /*logSource: the object traces under its own*/)
    : ccsid_(ccsid),
      formatterArg3_(formatterArg3),
      endian_(endian),
      floatFormat_(floatFormat),
      formatterArg2_(formatterArg2),
      formatterArg1_(formatterArg1),
      formatterArg4_(formatterArg4),
      positivePackedSign_(positivePackedSign),
      formatterArg5_(formatterArg5) {}

DataCnv::~DataCnv() = default;

CPUnicodeConverter* DataCnv::getConverter() {
  if (!converter_) converter_ = std::make_unique<CPUnicodeConverter>(ccsid_, endian_);
  return converter_.get();
}

CPUnicodeConverter* DataCnv::getLocalConverter() {
  if (!localConverter_) {
    localConverter_ = std::make_unique<CPUnicodeConverter>(kLocalCcsid, LittleEndian);
  }
  return localConverter_.get();
}

icu::DecimalFormat* DataCnv::getDecimalFormatter() {
  if (!decimalFormatter_) {
    UErrorCode status = U_ZERO_ERROR;
    std::unique_ptr<icu::NumberFormat> format(icu::NumberFormat::createInstance(status));
    auto* decimal = dynamic_cast<icu::DecimalFormat*>(format.get());
    if (U_FAILURE(status) || decimal == nullptr) {
      CP_RAISE(CP_INTERNAL_ERROR, kDataCnvModule, "DataCnv::getDecimalFormatter", this, nullptr,
               "Unable to create the decimal formatter: ", static_cast<std::int32_t>(status));
    }
    format.release();
    decimalFormatter_.reset(decimal);
    // The callers set every attribute they rely on; the empty pattern clears the locale's
    // grouping and fraction defaults. Its status says nothing they need.
    UErrorCode patternStatus = U_ZERO_ERROR;
    decimalFormatter_->applyPattern(icu::UnicodeString(), patternStatus);
  }
  return decimalFormatter_.get();
}

void DataCnv::setDateTimeProperties(std::int32_t formatterArg3, char16_t* formatterArg2,
                                    char16_t* formatterArg4, std::int32_t formatterArg5,
                                    bool formatterArg1) {
  formatterArg3_ = formatterArg3;
  formatterArg2_ = nullIfEmpty(formatterArg2);
  formatterArg4_ = nullIfEmpty(formatterArg4);
  formatterArg5_ = formatterArg5;
  formatterArg1_ = formatterArg1;
}

EEndian DataCnv::getEndianFromEncoding(std::int32_t encoding) {
  return (encoding & 0x00F) == 0x001 ? BigEndian : LittleEndian;
}

EFloatFmt DataCnv::getFloatFormatFromEncoding(std::int32_t encoding) {
  return (encoding & 0xF00) == 0x300 ? HFPFloat : IEEEFloat;
}

EEndian DataCnv::getPackedDecimalFromEncoding(std::int32_t encoding) {
  return (encoding & 0x0F0) == 0x010 ? BigEndian : LittleEndian;
}

std::int32_t DataCnv::getEncoding(EEndian endian, EFloatFmt floatFormat) {
  const std::int32_t integerDigit = endian == LittleEndian ? 2 : 1;
  if (floatFormat == HFPFloat) return integerDigit + 0x300;
  return integerDigit * 0x101;
}

void DataCnv::SwapEnds(unsigned char* output, const unsigned char* input, std::int32_t length) {
  constexpr const char* kFunction = "DataCnv::SwapEnds";
  requireInputPointer(nullptr, kFunction, input);
  requireOutputBuffer(nullptr, kFunction, output);
  if (length <= 0) {
    CP_RAISE(CP_INTERNAL_ERROR, kDataCnvModule, kFunction, nullptr, nullptr,
             "Invalid input length: ", length);
  }
  for (std::int32_t i = 0; i < length; ++i) output[length - 1 - i] = input[i];
}

std::int32_t DataCnv::ChToHex(char c) {
  // A signed comparison: bytes 0x80 and up are negative and never digits.
  const auto byte = static_cast<signed char>(c);
  if (byte >= '0' && byte <= '9') return byte - '0';
  if (byte >= 'A' && byte <= 'F') return byte - 'A' + 10;
  if (byte >= 'a' && byte <= 'f') return byte - 'a' + 10;
  return 0;
}

std::int32_t DataCnv::PWFChToHex(char16_t c) {
  if (c >= u'0' && c <= u'9') return c - u'0';
  if (c >= u'A' && c <= u'F') return c - u'A' + 10;
  if (c >= u'a' && c <= u'f') return c - u'a' + 10;
  return -1;
}

bool DataCnv::IsCcsidEBCDIC() {
  CpDebugTrace trace("DataCnv::IsCcsidEBCDIC");
  // Zoned-decimal conversions ask for every field; the code page never changes.
  if (!ccsidIsEbcdic_) {
    const CPUnicodeConverter* converter = getConverter();
    char zero[kCharBytesCapacity] = {};
    std::int32_t size = converter->getMaxBytesPerChar();
    UErrorCode status = U_ZERO_ERROR;
    converter->fromUnicodeString(zero, size, ZanStringBase(u"0"), status);
    ccsidIsEbcdic_ = static_cast<unsigned char>(zero[0]) == 0xF0;
  }
  return trace.result(*ccsidIsEbcdic_);
}

std::int32_t DataCnv::toUnicodeString(ZanStringBase& output, const unsigned char* input,
                                      std::int32_t size) {
  CpDebugTrace trace("DataCnv::toUnicodeString", static_cast<const void*>(input), size);
  const CPUnicodeConverter* converter = getConverter();
  // Zero bytes are an empty text, whatever the code page's character width.
  if (size == 0) {
    output.clear();
    return trace.result(std::int32_t{U_ZERO_ERROR});
  }
  if (size < converter->getMinBytesPerChar()) {
    CP_RAISE(CP_INTERNAL_ERROR, kDataCnvModule, "DataCnv::toUnicodeString", this, nullptr,
             "size < MinBytesPerChar for codepage: ", ccsid_);
  }
  UErrorCode status = U_ZERO_ERROR;
  converter->toUnicodeString(output, reinterpret_cast<const char*>(input), size, status);
  return trace.result(static_cast<std::int32_t>(status));
}

UErrorCode DataCnv::fromUnicodeString(const ZanStringBase& input, unsigned char* output,
                                      std::int32_t& size) {
  CpDebugTrace trace("DataCnv::fromUnicodeString", input, size);
  UErrorCode status = U_ZERO_ERROR;
  getConverter()->fromUnicodeString(reinterpret_cast<char*>(output), size, input, status);
  return trace.result(status);
}

namespace bsutils::internal {

void requireInputPointer(const DataCnv* cnv, const char* function, const void* input) {
  if (input == nullptr) {
    CP_RAISE(CP_INTERNAL_ERROR, kDataCnvModule, function, cnv, nullptr, "Null input pointer");
  }
}

void requireOutputBuffer(const DataCnv* cnv, const char* function, const void* output) {
  if (output == nullptr) {
    CP_RAISE(CP_INTERNAL_ERROR, kDataCnvModule, function, cnv, nullptr,
             "Null output buffer pointer");
  }
}

}  // namespace bsutils::internal
