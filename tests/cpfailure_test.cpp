// The failure idiom: every symbolic code raised through the one raise helper, and the debug
// entry/exit guard. Reaches the library's private raise helper and guard directly; nothing public
// raises most of these codes yet.

#include <gtest/gtest.h>
#include <zan/zanexception.h>
#include <zan/zanlogsource.h>

#include <cstdint>
#include <string>
#include <vector>

#include "cpdebugtrace.h"
#include "cpraise.h"
#include "support/capturing_sink.h"

namespace {

using Strings = std::vector<std::string>;

enum class Class { conversion, parser, fatal, recoverable };

struct CatalogueRow {
  CpCode code;
  const char* symbol;
  std::uint32_t messageNumber;
  Class exceptionClass;
  const char* traceText;
};

// Transcribed by hand from the failure catalogue (symbol, number, class, default text), so that a
// typo in the library's table shows up here.
const CatalogueRow kCatalogue[] = {
    {CpCode::CP_INTERNAL_ERROR, "CP_INTERNAL_ERROR", 0xC000157E, Class::conversion,
     "CPI Internal Error"},
    {CpCode::CP_INTERNAL_ERROR_AS_PARSER, "CP_INTERNAL_ERROR", 0xC000157E, Class::parser,
     "CPI Internal Error"},
    {CpCode::CP_TXTBUF_INPUT_DATA_TOO_SHORT, "CP_TXTBUF_INPUT_DATA_TOO_SHORT", 0xC000157F,
     Class::conversion, "CPI Text Buffer Input Data Too Short"},
    {CpCode::CP_TXTBUF_NULL_TERMINATOR_NOT_FOUND, "CP_TXTBUF_NULL_TERMINATOR_NOT_FOUND", 0xC0001580,
     Class::conversion, "CPI Text Buffer Null Terminator Not Found"},
    {CpCode::CP_CONV_INPUT_DATA_INVALID, "CP_CONV_INPUT_DATA_INVALID", 0xC0001581,
     Class::conversion, "CPI Converter Input Data Invalid"},
    {CpCode::CP_CONV_INPUT_DATA_OUT_OF_BOUNDS, "CP_CONV_INPUT_DATA_OUT_OF_BOUNDS", 0xC0001582,
     Class::conversion, "CPI Converter Input Data Out Of Bounds"},
    {CpCode::CP_CONV_INPUT_DATA_TOO_LONG, "CP_CONV_INPUT_DATA_TOO_LONG", 0xC0001583,
     Class::conversion, "CPI InputData Too Long"},
    {CpCode::CP_DATETIME_INVALID_CENTURY_WINDOW, "CP_DATETIME_INVALID_CENTURY_WINDOW", 0xC000158B,
     Class::conversion, "CPI Datetime invalid Century Window"},
    {CpCode::CP_DATETIME_INVALID_EPOCH, "CP_DATETIME_INVALID_EPOCH", 0xC000158C, Class::conversion,
     "CPI Datetime invalid Epoch"},
    {CpCode::CP_CONV_INVALID_PADDING, "CP_CONV_INVALID_PADDING", 0xC0001590, Class::parser,
     "CPI Converter Invalid Padding Character"},
    {CpCode::CP_CONV_INVALID_PADDING_SIZE, "CP_CONV_INVALID_PADDING_SIZE", 0xC0001591,
     Class::parser, "CPI Converter An attempt to add padding to fixed length field has failed"},
    {CpCode::CP_INTERNAL_PWFDATA_INVALID_OPERATION, "CP_INTERNAL_PWFDATA_INVALID_OPERATION",
     0xC0001592, Class::conversion, "CPI Internal error from invalid operation on PWFData"},
    {CpCode::CP_INVALID_LOGICAL_STRING, "CP_INVALID_LOGICAL_STRING", 0xC0001593, Class::conversion,
     "Exception caught trying to convert a logical string to a PWFData object"},
    {CpCode::CP_DATETIME_FROM_BINARY_ERROR, "CP_DATETIME_FROM_BINARY_ERROR", 0xC0001597,
     Class::conversion, "CPI Datetime From Binary Error"},
    {CpCode::CP_DATETIME_TO_BINARY_ERROR, "CP_DATETIME_TO_BINARY_ERROR", 0xC0001598,
     Class::conversion, "CPI Datetime To Binary Error"},
    {CpCode::CP_DATETIME_INVALID_TIMEZONE_ERROR, "CP_DATETIME_INVALID_TIMEZONE_ERROR", 0xC0001599,
     Class::conversion, "Invalid timezone"},
    {CpCode::CP_CALENDAR_ACCESS_ERROR, "CP_CALENDAR_ACCESS_ERROR", 0xC000159A, Class::parser,
     "CPI Unable to access internal calendar"},
    {CpCode::CP_CALENDAR_SET_MILLIS_ERROR, "CP_CALENDAR_SET_MILLIS_ERROR", 0xC000159E,
     Class::parser, "CPI Unable to set calendar milliseconds"},
    {CpCode::CP_CALENDAR_SET_TIMEZONE_ERROR, "CP_CALENDAR_SET_TIMEZONE_ERROR", 0xC000159F,
     Class::parser, "CPI Unable to set calendar timezone"},
    {CpCode::CP_CALENDAR_GET_ERROR, "CP_CALENDAR_GET_ERROR", 0xC00015A0, Class::parser,
     "CPI Unable to get calendar field"},
    {CpCode::CP_DATETIME_ACCESS_ERROR, "CP_DATETIME_ACCESS_ERROR", 0xC00015A1, Class::parser,
     "CPI Unable to access internal datetime"},
    {CpCode::CP_DATETIME_FORMAT_ERROR, "CP_DATETIME_FORMAT_ERROR", 0xC00015A3, Class::parser,
     "CPI Unable to format datetime internally"},
    {CpCode::CP_DATETIME_PARSE_ERROR, "CP_DATETIME_PARSE_ERROR", 0xC00015A4, Class::parser,
     "CPI Unable to parse datetime internally"},
    {CpCode::CP_DATETIME_SET_YEARSTART_ERROR, "CP_DATETIME_SET_YEARSTART_ERROR", 0xC00015A5,
     Class::parser, "CPI Unable to set year start date"},
    {CpCode::CP_DATETIME_INVALID_FORMAT_ERROR, "CP_DATETIME_INVALID_FORMAT_ERROR", 0xC00015A8,
     Class::conversion, "CPI String invalid format for pattern 'I'."},
    {CpCode::CP_CALENDAR_LENIENCY_ERROR, "CP_CALENDAR_LENIENCY_ERROR", 0xC00015A9, Class::parser,
     "CPI Invalid Date entered"},
    {CpCode::CP_DURATION_COMBINATION_ERROR, "CP_DURATION_COMBINATION_ERROR", 0xC00015AA,
     Class::conversion, "CPI Years/months along with days/hours/minutes/seconds"},
    {CpCode::CP_DURATION_RANGE_ERROR, "CP_DURATION_RANGE_ERROR", 0xC00015AB, Class::conversion,
     "CPI Field value > 32BIT_MAX"},
    {CpCode::CP_DURATION_TOO_MANY_DAYS, "CP_DURATION_TOO_MANY_DAYS", 0xC00015AD, Class::conversion,
     "CPI Cannot store more than ~100 million days in PWFInterval"},
    {CpCode::CP_NUMERIC_STRICT_ZERO_LENGTH, "CP_NUMERIC_STRICT_ZERO_LENGTH", 0xC00015AE,
     Class::conversion, "Strict Numeric Checking: Numeric cannot be zero in length."},
    {CpCode::CP_NUMERIC_STRICT_DECIMAL_POINT, "CP_NUMERIC_STRICT_DECIMAL_POINT", 0xC00015AF,
     Class::conversion,
     "Strict Numeric Checking: Numeric can only have the specified decimal point."},
    {CpCode::CP_NUMERIC_STRICT_INTEGER_DIGIT, "CP_NUMERIC_STRICT_INTEGER_DIGIT", 0xC00015B0,
     Class::conversion, "Strict Numeric Checking: Numeric must have an integer part."},
    {CpCode::CP_NUMERIC_STRICT_NO_DECIMAL_POINT, "CP_NUMERIC_STRICT_NO_DECIMAL_POINT", 0xC00015B1,
     Class::conversion,
     "Strict Numeric Checking: Explicit Decimal Point numeric must have a decimal point."},
    {CpCode::CP_NUMERIC_STRICT_ENDS_DECIMAL_POINT, "CP_NUMERIC_STRICT_ENDS_DECIMAL_POINT",
     0xC00015B2, Class::conversion,
     "Strict Numeric Checking: Only Explicit Decimal Point numerics may end with a decimal "
     "point."},
    {CpCode::CP_NUMERIC_STRICT_NON_EXPONENTIAL, "CP_NUMERIC_STRICT_NON_EXPONENTIAL", 0xC00015B3,
     Class::conversion,
     "Strict Numeric Checking: A non-exponential numeric cannot be given in exponential "
     "format."},
    {CpCode::CP_NUMERIC_STRICT_EXPONENTIAL, "CP_NUMERIC_STRICT_EXPONENTIAL", 0xC00015B4,
     Class::conversion,
     "Strict Numeric Checking: An exponential numeric must be given in exponential format."},
    {CpCode::CP_NUMERIC_STRICT_INCORRECT_DEC_PLACES, "CP_NUMERIC_STRICT_INCORRECT_DEC_PLACES",
     0xC00015B5, Class::conversion,
     "Strict Numeric Checking: Incorrect number of decimal places given."},
    {CpCode::CP_NUMERIC_STRICT_VDP_HAS_DECIMAL, "CP_NUMERIC_STRICT_VDP_HAS_DECIMAL", 0xC00015B6,
     Class::conversion,
     "Strict Numeric Checking: Numeric with VDP should not have a decimal point."},
    {CpCode::CP_MEMORY_ALLOC_FAILURE, "CP_MEMORY_ALLOC_FAILURE", 0xC0000806, Class::fatal,
     "malloc returned NULL"},
    {CpCode::CP_MEMORY_ALLOC_FAILURE_AS_CONVERSION, "CP_MEMORY_ALLOC_FAILURE", 0xC0000806,
     Class::conversion, "CPI Memory allocation failure"},
    {CpCode::QZR2130, "QZR2130", 0xC0000852, Class::recoverable, "Error creating convertor"},
    {CpCode::QZR2132, "QZR2132", 0xC0000854, Class::recoverable,
     "Invalid codepage (or missing table)"},
};

Class classOf(const ZanException& failure) {
  if (dynamic_cast<const ZanParserException*>(&failure)) return Class::parser;
  if (dynamic_cast<const ZanFatalException*>(&failure)) return Class::fatal;
  if (dynamic_cast<const ZanRecoverableException*>(&failure)) return Class::recoverable;
  return Class::conversion;
}

TEST(CpRaise, EveryCodeRaisesItsClassNumberAndTextAfterTracing) {
  for (const CatalogueRow& row : kCatalogue) {
    SCOPED_TRACE(row.symbol);
    CapturingSink sink(3);
    try {
      cpRaise(CpRaiseSite{"module", 17, "Owner::operation", nullptr}, row.code, nullptr, "first",
              std::int32_t{2});
      ADD_FAILURE() << "cpRaise returned";
    } catch (const ZanException& failure) {
      EXPECT_EQ(classOf(failure), row.exceptionClass);
      EXPECT_EQ(failure.messageNumber(), static_cast<std::int32_t>(row.messageNumber));
      EXPECT_EQ(failure.traceText(), row.traceText);
      EXPECT_EQ(failure.sourceModule(), "module");
      EXPECT_EQ(failure.line(), 17);
      EXPECT_EQ(failure.function(), "Owner::operation");
      EXPECT_EQ(failure.logSource(), ZanLog::iDefaultLogSource.toUtf8());
      EXPECT_EQ(failure.inserts(), (Strings{"first", "2"}));
    }
    ASSERT_EQ(sink.records().size(), 1u);
    const ZanLog::Record& record = sink.records().front();
    EXPECT_EQ(record.kind, ZanLog::Kind::trace);
    EXPECT_EQ(record.function, "Owner::operation");
    EXPECT_EQ(record.text, "Throwing exception");
    EXPECT_EQ(record.inserts, (Strings{"module", "17", row.symbol, row.traceText, "first", "2"}));
  }
}

TEST(CpRaise, SpecificTextAndLogSourceOverrideTheDefaults) {
  const ZanNamedLogSource source(u"type", u"converter", u"");
  CapturingSink sink(3);
  int line = 0;
  try {
    line = __LINE__ + 1;
    CP_RAISE(CP_INTERNAL_ERROR, "datacnv", "DataCnv::SwapEnds", &source, "Null input pointer");
    ADD_FAILURE() << "CP_RAISE returned";
  } catch (const ZanConversionException& failure) {
    EXPECT_EQ(failure.line(), line);
    EXPECT_EQ(failure.traceText(), "Null input pointer");
    EXPECT_EQ(failure.logSource(), "converter");
    EXPECT_TRUE(failure.inserts().empty());
  }
  ASSERT_EQ(sink.records().size(), 1u);
  EXPECT_EQ(sink.records().front().logSource, "converter");
  EXPECT_EQ(sink.records().front().inserts,
            (Strings{"datacnv", std::to_string(line), "CP_INTERNAL_ERROR", "Null input pointer"}));
}

TEST(CpRaise, NoTraceBelowFilterThree) {
  CapturingSink sink(2);
  EXPECT_THROW(cpRaise(CpRaiseSite{"m", 1, "f", nullptr}, CpCode::CP_INTERNAL_ERROR, nullptr),
               ZanConversionException);
  EXPECT_TRUE(sink.records().empty());
}

int traced(int value) {
  CpDebugTrace trace("Owner::traced", value, "label");
  return trace.result(value * 2);
}

void tracedWithoutResult() { CpDebugTrace trace("Owner::plain"); }

TEST(CpDebugTrace, WritesEntryAndExitOnlyAtDebugLevel) {
  {
    CapturingSink sink(3);
    EXPECT_EQ(traced(4), 8);
    tracedWithoutResult();
    EXPECT_TRUE(sink.records().empty());
  }
  CapturingSink sink(4);
  EXPECT_EQ(traced(4), 8);
  tracedWithoutResult();
  ASSERT_EQ(sink.records().size(), 4u);
  const auto& records = sink.records();
  EXPECT_EQ(records[0].kind, ZanLog::Kind::debugEntry);
  EXPECT_EQ(records[0].function, "Owner::traced");
  EXPECT_EQ(records[0].inserts, (Strings{"4", "label"}));
  EXPECT_EQ(records[1].kind, ZanLog::Kind::debugExit);
  EXPECT_EQ(records[1].inserts, Strings{"8"});
  EXPECT_EQ(records[2].kind, ZanLog::Kind::debugEntry);
  EXPECT_EQ(records[2].function, "Owner::plain");
  EXPECT_EQ(records[3].kind, ZanLog::Kind::debugExit);
  EXPECT_TRUE(records[3].inserts.empty());
}

}  // namespace
