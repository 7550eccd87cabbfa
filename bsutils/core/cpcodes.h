#ifndef BSUTILS_CPCODES_H
#define BSUTILS_CPCODES_H

// The library's failure vocabulary: every symbolic code with its message number (0xC0000000 plus
// the catalogue number), the class of exception it raises and its default trace text. Where the
// same symbolic code is raised as two exception classes, the table has one row per class; the
// rows share the symbol that trace shows.

#include <cstddef>
#include <cstdint>
#include <iterator>
#include <string_view>

namespace bsutils::internal {

enum class CpExceptionClass : std::uint8_t {
  conversion,   // ZanConversionException
  parser,       // ZanParserException
  fatal,        // ZanFatalException
  recoverable,  // ZanRecoverableException
  notThrown,    // logged as an error or a warning, never raised
};

// Enumerators carry the symbolic code they stand for, so a raise site reads like its trace.
enum class CpCode : std::uint8_t {
  CP_ASSERTION,
  CP_INTERNAL_ERROR,
  CP_INTERNAL_ERROR_AS_PARSER,
  CP_TXTBUF_INPUT_DATA_TOO_SHORT,
  CP_TXTBUF_NULL_TERMINATOR_NOT_FOUND,
  CP_CONV_INPUT_DATA_INVALID,
  CP_CONV_INPUT_DATA_OUT_OF_BOUNDS,
  CP_CONV_INPUT_DATA_TOO_LONG,
  CP_DATETIME_INVALID_CENTURY_WINDOW,
  CP_DATETIME_INVALID_EPOCH,
  CP_CONV_INVALID_PADDING,
  CP_CONV_INVALID_PADDING_SIZE,
  CP_INTERNAL_PWFDATA_INVALID_OPERATION,
  CP_INVALID_LOGICAL_STRING,
  CP_DATETIME_FROM_BINARY_ERROR,
  CP_DATETIME_TO_BINARY_ERROR,
  CP_DATETIME_INVALID_TIMEZONE_ERROR,
  CP_CALENDAR_ACCESS_ERROR,
  CP_CALENDAR_SET_MILLIS_ERROR,
  CP_CALENDAR_SET_TIMEZONE_ERROR,
  CP_CALENDAR_GET_ERROR,
  CP_DATETIME_ACCESS_ERROR,
  CP_DATETIME_FORMAT_ERROR,
  CP_DATETIME_PARSE_ERROR,
  CP_DATETIME_SET_YEARSTART_ERROR,
  CP_DATETIME_INVALID_FORMAT_ERROR,
  CP_CALENDAR_LENIENCY_ERROR,
  CP_DURATION_COMBINATION_ERROR,
  CP_DURATION_RANGE_ERROR,
  CP_DURATION_SECONDS_PRECISION_WARNING,
  CP_DURATION_TOO_MANY_DAYS,
  CP_NUMERIC_STRICT_ZERO_LENGTH,
  CP_NUMERIC_STRICT_DECIMAL_POINT,
  CP_NUMERIC_STRICT_INTEGER_DIGIT,
  CP_NUMERIC_STRICT_NO_DECIMAL_POINT,
  CP_NUMERIC_STRICT_ENDS_DECIMAL_POINT,
  CP_NUMERIC_STRICT_NON_EXPONENTIAL,
  CP_NUMERIC_STRICT_EXPONENTIAL,
  CP_NUMERIC_STRICT_INCORRECT_DEC_PLACES,
  CP_NUMERIC_STRICT_VDP_HAS_DECIMAL,
  CP_MEMORY_ALLOC_FAILURE,
  CP_MEMORY_ALLOC_FAILURE_AS_CONVERSION,
  QZR2130,
  QZR2132,
};

struct CpCodeInfo {
  CpCode code;
  std::string_view symbol;  // what trace shows; empty for the codes that have none
  std::int32_t messageNumber;
  CpExceptionClass exceptionClass;
  const char* traceText;  // the default; a raise site may give a more specific one
};

constexpr std::int32_t cpMessageNumber(std::uint32_t catalogueCode) {
  return static_cast<std::int32_t>(catalogueCode);
}

inline constexpr CpCodeInfo kCpCodes[] = {
    {CpCode::CP_ASSERTION, "", cpMessageNumber(0xC000157D), CpExceptionClass::notThrown,
     "CPAssertion failed"},
    {CpCode::CP_INTERNAL_ERROR, "CP_INTERNAL_ERROR", cpMessageNumber(0xC000157E),
     CpExceptionClass::conversion, "CPI Internal Error"},
    {CpCode::CP_INTERNAL_ERROR_AS_PARSER, "CP_INTERNAL_ERROR", cpMessageNumber(0xC000157E),
     CpExceptionClass::parser, "CPI Internal Error"},
    {CpCode::CP_TXTBUF_INPUT_DATA_TOO_SHORT, "CP_TXTBUF_INPUT_DATA_TOO_SHORT",
     cpMessageNumber(0xC000157F), CpExceptionClass::conversion,
     "CPI Text Buffer Input Data Too Short"},
    {CpCode::CP_TXTBUF_NULL_TERMINATOR_NOT_FOUND, "CP_TXTBUF_NULL_TERMINATOR_NOT_FOUND",
     cpMessageNumber(0xC0001580), CpExceptionClass::conversion,
     "CPI Text Buffer Null Terminator Not Found"},
    {CpCode::CP_CONV_INPUT_DATA_INVALID, "CP_CONV_INPUT_DATA_INVALID", cpMessageNumber(0xC0001581),
     CpExceptionClass::conversion, "CPI Converter Input Data Invalid"},
    {CpCode::CP_CONV_INPUT_DATA_OUT_OF_BOUNDS, "CP_CONV_INPUT_DATA_OUT_OF_BOUNDS",
     cpMessageNumber(0xC0001582), CpExceptionClass::conversion,
     "CPI Converter Input Data Out Of Bounds"},
    {CpCode::CP_CONV_INPUT_DATA_TOO_LONG, "CP_CONV_INPUT_DATA_TOO_LONG",
     cpMessageNumber(0xC0001583), CpExceptionClass::conversion, "CPI InputData Too Long"},
    {CpCode::CP_DATETIME_INVALID_CENTURY_WINDOW, "CP_DATETIME_INVALID_CENTURY_WINDOW",
     cpMessageNumber(0xC000158B), CpExceptionClass::conversion,
     "CPI Datetime invalid Century Window"},
    {CpCode::CP_DATETIME_INVALID_EPOCH, "CP_DATETIME_INVALID_EPOCH", cpMessageNumber(0xC000158C),
     CpExceptionClass::conversion, "CPI Datetime invalid Epoch"},
    {CpCode::CP_CONV_INVALID_PADDING, "CP_CONV_INVALID_PADDING", cpMessageNumber(0xC0001590),
     CpExceptionClass::parser, "CPI Converter Invalid Padding Character"},
    {CpCode::CP_CONV_INVALID_PADDING_SIZE, "CP_CONV_INVALID_PADDING_SIZE",
     cpMessageNumber(0xC0001591), CpExceptionClass::parser,
     "CPI Converter An attempt to add padding to fixed length field has failed"},
    {CpCode::CP_INTERNAL_PWFDATA_INVALID_OPERATION, "CP_INTERNAL_PWFDATA_INVALID_OPERATION",
     cpMessageNumber(0xC0001592), CpExceptionClass::conversion,
     "CPI Internal error from invalid operation on PWFData"},
    {CpCode::CP_INVALID_LOGICAL_STRING, "CP_INVALID_LOGICAL_STRING", cpMessageNumber(0xC0001593),
     CpExceptionClass::conversion,
     "Exception caught trying to convert a logical string to a PWFData object"},
    {CpCode::CP_DATETIME_FROM_BINARY_ERROR, "CP_DATETIME_FROM_BINARY_ERROR",
     cpMessageNumber(0xC0001597), CpExceptionClass::conversion, "CPI Datetime From Binary Error"},
    {CpCode::CP_DATETIME_TO_BINARY_ERROR, "CP_DATETIME_TO_BINARY_ERROR",
     cpMessageNumber(0xC0001598), CpExceptionClass::conversion, "CPI Datetime To Binary Error"},
    {CpCode::CP_DATETIME_INVALID_TIMEZONE_ERROR, "CP_DATETIME_INVALID_TIMEZONE_ERROR",
     cpMessageNumber(0xC0001599), CpExceptionClass::conversion, "Invalid timezone"},
    {CpCode::CP_CALENDAR_ACCESS_ERROR, "CP_CALENDAR_ACCESS_ERROR", cpMessageNumber(0xC000159A),
     CpExceptionClass::parser, "CPI Unable to access internal calendar"},
    {CpCode::CP_CALENDAR_SET_MILLIS_ERROR, "CP_CALENDAR_SET_MILLIS_ERROR",
     cpMessageNumber(0xC000159E), CpExceptionClass::parser,
     "CPI Unable to set calendar milliseconds"},
    {CpCode::CP_CALENDAR_SET_TIMEZONE_ERROR, "CP_CALENDAR_SET_TIMEZONE_ERROR",
     cpMessageNumber(0xC000159F), CpExceptionClass::parser, "CPI Unable to set calendar timezone"},
    {CpCode::CP_CALENDAR_GET_ERROR, "CP_CALENDAR_GET_ERROR", cpMessageNumber(0xC00015A0),
     CpExceptionClass::parser, "CPI Unable to get calendar field"},
    {CpCode::CP_DATETIME_ACCESS_ERROR, "CP_DATETIME_ACCESS_ERROR", cpMessageNumber(0xC00015A1),
     CpExceptionClass::parser, "CPI Unable to access internal datetime"},
    {CpCode::CP_DATETIME_FORMAT_ERROR, "CP_DATETIME_FORMAT_ERROR", cpMessageNumber(0xC00015A3),
     CpExceptionClass::parser, "CPI Unable to format datetime internally"},
    {CpCode::CP_DATETIME_PARSE_ERROR, "CP_DATETIME_PARSE_ERROR", cpMessageNumber(0xC00015A4),
     CpExceptionClass::parser, "CPI Unable to parse datetime internally"},
    {CpCode::CP_DATETIME_SET_YEARSTART_ERROR, "CP_DATETIME_SET_YEARSTART_ERROR",
     cpMessageNumber(0xC00015A5), CpExceptionClass::parser, "CPI Unable to set year start date"},
    {CpCode::CP_DATETIME_INVALID_FORMAT_ERROR, "CP_DATETIME_INVALID_FORMAT_ERROR",
     cpMessageNumber(0xC00015A8), CpExceptionClass::conversion,
     "CPI String invalid format for pattern 'I'."},
    {CpCode::CP_CALENDAR_LENIENCY_ERROR, "CP_CALENDAR_LENIENCY_ERROR", cpMessageNumber(0xC00015A9),
     CpExceptionClass::parser, "CPI Invalid Date entered"},
    {CpCode::CP_DURATION_COMBINATION_ERROR, "CP_DURATION_COMBINATION_ERROR",
     cpMessageNumber(0xC00015AA), CpExceptionClass::conversion,
     "CPI Years/months along with days/hours/minutes/seconds"},
    {CpCode::CP_DURATION_RANGE_ERROR, "CP_DURATION_RANGE_ERROR", cpMessageNumber(0xC00015AB),
     CpExceptionClass::conversion, "CPI Field value > 32BIT_MAX"},
    {CpCode::CP_DURATION_SECONDS_PRECISION_WARNING, "", cpMessageNumber(0xC00015AC),
     CpExceptionClass::notThrown, "CPI Seconds precision finer than microseconds"},
    {CpCode::CP_DURATION_TOO_MANY_DAYS, "CP_DURATION_TOO_MANY_DAYS", cpMessageNumber(0xC00015AD),
     CpExceptionClass::conversion, "CPI Cannot store more than ~100 million days in PWFInterval"},
    {CpCode::CP_NUMERIC_STRICT_ZERO_LENGTH, "CP_NUMERIC_STRICT_ZERO_LENGTH",
     cpMessageNumber(0xC00015AE), CpExceptionClass::conversion,
     "Strict Numeric Checking: Numeric cannot be zero in length."},
    {CpCode::CP_NUMERIC_STRICT_DECIMAL_POINT, "CP_NUMERIC_STRICT_DECIMAL_POINT",
     cpMessageNumber(0xC00015AF), CpExceptionClass::conversion,
     "Strict Numeric Checking: Numeric can only have the specified decimal point."},
    {CpCode::CP_NUMERIC_STRICT_INTEGER_DIGIT, "CP_NUMERIC_STRICT_INTEGER_DIGIT",
     cpMessageNumber(0xC00015B0), CpExceptionClass::conversion,
     "Strict Numeric Checking: Numeric must have an integer part."},
    {CpCode::CP_NUMERIC_STRICT_NO_DECIMAL_POINT, "CP_NUMERIC_STRICT_NO_DECIMAL_POINT",
     cpMessageNumber(0xC00015B1), CpExceptionClass::conversion,
     "Strict Numeric Checking: Explicit Decimal Point numeric must have a decimal point."},
    {CpCode::CP_NUMERIC_STRICT_ENDS_DECIMAL_POINT, "CP_NUMERIC_STRICT_ENDS_DECIMAL_POINT",
     cpMessageNumber(0xC00015B2), CpExceptionClass::conversion,
     "Strict Numeric Checking: Only Explicit Decimal Point numerics may end with a decimal point."},
    {CpCode::CP_NUMERIC_STRICT_NON_EXPONENTIAL, "CP_NUMERIC_STRICT_NON_EXPONENTIAL",
     cpMessageNumber(0xC00015B3), CpExceptionClass::conversion,
     "Strict Numeric Checking: A non-exponential numeric cannot be given in exponential format."},
    {CpCode::CP_NUMERIC_STRICT_EXPONENTIAL, "CP_NUMERIC_STRICT_EXPONENTIAL",
     cpMessageNumber(0xC00015B4), CpExceptionClass::conversion,
     "Strict Numeric Checking: An exponential numeric must be given in exponential format."},
    {CpCode::CP_NUMERIC_STRICT_INCORRECT_DEC_PLACES, "CP_NUMERIC_STRICT_INCORRECT_DEC_PLACES",
     cpMessageNumber(0xC00015B5), CpExceptionClass::conversion,
     "Strict Numeric Checking: Incorrect number of decimal places given."},
    {CpCode::CP_NUMERIC_STRICT_VDP_HAS_DECIMAL, "CP_NUMERIC_STRICT_VDP_HAS_DECIMAL",
     cpMessageNumber(0xC00015B6), CpExceptionClass::conversion,
     "Strict Numeric Checking: Numeric with VDP should not have a decimal point."},
    {CpCode::CP_MEMORY_ALLOC_FAILURE, "CP_MEMORY_ALLOC_FAILURE", cpMessageNumber(0xC0000806),
     CpExceptionClass::fatal, "malloc returned NULL"},
    {CpCode::CP_MEMORY_ALLOC_FAILURE_AS_CONVERSION, "CP_MEMORY_ALLOC_FAILURE",
     cpMessageNumber(0xC0000806), CpExceptionClass::conversion, "CPI Memory allocation failure"},
    {CpCode::QZR2130, "QZR2130", cpMessageNumber(0xC0000852), CpExceptionClass::recoverable,
     "Error creating convertor"},
    {CpCode::QZR2132, "QZR2132", cpMessageNumber(0xC0000854), CpExceptionClass::recoverable,
     "Invalid codepage (or missing table)"},
};

// The row of a code. The table is in enumeration order, which the check below keeps true.
constexpr const CpCodeInfo& cpCodeInfo(CpCode code) {
  return kCpCodes[static_cast<std::size_t>(code)];
}

consteval bool cpCodesAreInEnumerationOrder() {
  for (std::size_t i = 0; i < std::size(kCpCodes); ++i) {
    if (static_cast<std::size_t>(kCpCodes[i].code) != i) return false;
  }
  return static_cast<std::size_t>(CpCode::QZR2132) + 1 == std::size(kCpCodes);
}
static_assert(cpCodesAreInEnumerationOrder(), "kCpCodes must list every CpCode in order");

}  // namespace bsutils::internal

#endif  // BSUTILS_CPCODES_H
