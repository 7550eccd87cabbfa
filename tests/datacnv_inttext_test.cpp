// Integers as text fields and as plain decimal text.

#include <bsutils/dataconv.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <string>
#include <vector>

#include "support/datacnv_test_access.h"
#include "support/expect_failure.h"

namespace {

using Access = DataCnvTestAccess;
constexpr auto kLeading = DataCnv::eLeadingSeparateSign;
constexpr auto kTrailing = DataCnv::eTrailingSeparateSign;
constexpr auto kLeft = DataCnv::eLeftJustified;
constexpr auto kRight = DataCnv::eRightJustified;

struct ReadCase {
  const char16_t* text;
  DataCnv::ESign sign;
  const char16_t* minus;
  DataCnv::ETrimType trim;
  DataCnv::EJustification justification;
  char16_t pad;
  std::int64_t value;
};

std::int32_t length(const char16_t* text) {
  return static_cast<std::int32_t>(std::char_traits<char16_t>::length(text));
}

TEST(DataCnvStrToInt, ReadsFieldsOfEveryConvention) {
  // Values by hand from each field's digits and sign.
  const ReadCase cases[] = {
      {u"  -42  ", kLeading, u"-", DataCnv::eTrimWhiteSpace, kLeft, u' ', -42},
      {u"0042", DataCnv::eNoSign, u"-", DataCnv::eTrimPadding, kRight, u'0', 42},
      {u"0000", DataCnv::eNoSign, u"-", DataCnv::eTrimPadding, kRight, u'0', 0},
      {u"", kLeading, u"-", DataCnv::eNoTrim, kLeft, u' ', 0},
      {u"42DB", kTrailing, u"DB", DataCnv::eNoTrim, kLeft, u' ', -42},
      {u"+7", kLeading, u"-", DataCnv::eNoTrim, kLeft, u' ', 7},
      {u"12r", DataCnv::eTrailingEmbeddedSign, u"-", DataCnv::eNoTrim, kLeft, u' ', -122},
      {u"2147483647", kLeading, u"-", DataCnv::eNoTrim, kLeft, u' ', 2147483647},
      {u"-2147483648", kLeading, u"-", DataCnv::eNoTrim, kLeft, u' ', INT32_MIN},
      {u"\u0664\u0662", DataCnv::eNoSign, u"-", DataCnv::eNoTrim, kLeft, u' ', 42},  // Arabic-Indic
  };
  DataCnv cnv;
  for (const ReadCase& c : cases) {
    SCOPED_TRACE(ZanStringBase(c.text).toUtf8());
    EXPECT_EQ(cnv.StrToInt32(c.text, length(c.text), c.sign, c.minus, u"+", c.trim, c.justification,
                             c.pad, true),
              c.value);
    if (c.sign != DataCnv::eTrailingEmbeddedSign) {
      EXPECT_EQ(cnv.StrToInt64(c.text, length(c.text), c.sign, c.minus, u"+", c.trim,
                               c.justification, c.pad, true),
                c.value);
    }
  }
  EXPECT_EQ(cnv.StrToInt64(u"-9223372036854775808", 20, kLeading, u"-", u"+", DataCnv::eNoTrim,
                           kLeft, u' ', true),
            INT64_MIN);
  EXPECT_EQ(cnv.StrToInt64(u"9223372036854775807", 19, kLeading, u"-", u"+", DataCnv::eNoTrim,
                           kLeft, u' ', true),
            INT64_MAX);
}

TEST(DataCnvStrToInt, CodePagePadCharacterIsOneByteOfTheCodePage) {
  DataCnv ebcdic(37, BigEndian);
  // 0xF0 is "0" in code page 37.
  EXPECT_EQ(ebcdic.StrToInt32(u"00042", 5, DataCnv::eNoSign, u"-", u"+", DataCnv::eTrimPadding,
                              kRight, 0xF0, false),
            42);
}

TEST(DataCnvStrToInt, RefusesBadFieldsWithTheRunTimesTexts) {
  struct Case {
    int bits;
    const char16_t* text;
    std::int32_t length;
    DataCnv::ESign sign;
    const char16_t* minus;
    Code code;
    const char* function;  // where the failure is raised, when not in the reader itself
    std::vector<std::string> inserts;
  };
  const Code zeroLength32{kInvalid.symbol, kInvalid.messageNumber,
                          "Tried to convert a zero length string to a integer"};
  const Code zeroLength64{kInvalid.symbol, kInvalid.messageNumber,
                          "Tried to convert a zero length string to an integer"};
  const Case cases[] = {
      {32,
       nullptr,
       1,
       kLeading,
       u"-",
       kInternal,
       nullptr,
       {"Null input pointer passed into DataCnv::StrToInt32"}},
      {64,
       nullptr,
       1,
       kLeading,
       u"-",
       kInternal,
       nullptr,
       {"Null input pointer passed into DataCnv::StrToInt64"}},
      {32, u"1", -1, kLeading, u"-", zeroLength32, nullptr, {"integer"}},
      {64, u"1", -1, kLeading, u"-", zeroLength64, nullptr, {"integer"}},
      {32,
       u"1",
       1,
       kLeading,
       nullptr,
       kInternal,
       nullptr,
       {"Null sign string pointer passed into DataCnv::StrToInt32"}},
      {64, u"1", 1, kLeading, nullptr, kInternal, nullptr, {"Null sign string pointer"}},
      // Refused before the (null) text is looked at.
      {64,
       nullptr,
       -1,
       DataCnv::eLeadingEmbeddedSign,
       u"-",
       kInternal,
       nullptr,
       {"Sign type invalid for context: ", "1"}},
      {32,
       u"1",
       1,
       static_cast<DataCnv::ESign>(7),
       u"-",
       kInternal,
       "DataCnv::CheckSign",
       {"Invalid sign type: ", "7"}},
      {32, u"1 2", 3, kLeading, u"-", kInvalid, nullptr, {"string", "1 2"}},
      {32, u"A1", 2, DataCnv::eLeadingEmbeddedSign, u"-", kInvalid, nullptr, {"string", "A1"}},
      {32, u"2147483648", 10, kLeading, u"-", kBounds, nullptr, {"string"}},
      {32, u"00000000001", 11, kLeading, u"-", kBounds, nullptr, {"string"}},  // zeros count
      {64,
       u"-9223372036854775809",
       20,
       kLeading,
       u"-",
       kBounds,
       nullptr,
       {"string", "8-byte integer"}},
  };
  DataCnv cnv;
  for (const Case& c : cases) {
    const std::string reader = c.bits == 32 ? "DataCnv::StrToInt32" : "DataCnv::StrToInt64";
    SCOPED_TRACE(reader + " " + c.inserts.front());
    expectFailure<ZanConversionException>(
        [&] {
          if (c.bits == 32) {
            cnv.StrToInt32(c.text, c.length, c.sign, c.minus, u"+", DataCnv::eNoTrim, kLeft, u' ',
                           true);
          } else {
            cnv.StrToInt64(c.text, c.length, c.sign, c.minus, u"+", DataCnv::eNoTrim, kLeft, u' ',
                           true);
          }
        },
        c.code.symbol, c.code.messageNumber, c.code.traceText, "datacnv",
        c.function != nullptr ? c.function : reader, c.inserts);
  }
}

TEST(DataCnvPlainDecimal, RendersAndReadsEverySixtyFourBitValue) {
  struct Case {
    std::int64_t value;
    const char16_t* text;
  };
  const Case cases[] = {{0, u"0"},
                        {7, u"7"},
                        {-5, u"-5"},
                        {1000000, u"1000000"},
                        {INT64_MAX, u"9223372036854775807"},
                        {INT64_MIN, u"-9223372036854775808"}};
  DataCnv cnv;
  for (const Case& c : cases) {
    SCOPED_TRACE(c.value);
    ZanStringBase text(u"old");
    Access::Int64ToUString(cnv, c.value, text);
    EXPECT_EQ(text, ZanStringBase(c.text));
    EXPECT_EQ(Access::UStringToInt64(cnv, text), c.value);
  }
  for (const char16_t* zero : {u"", u"-", u"+", u"+0", u"-0000"}) {
    EXPECT_EQ(Access::UStringToInt64(cnv, ZanStringBase(zero)), 0);
  }
  EXPECT_EQ(Access::UStringToInt64(cnv, ZanStringBase(u"+00012")), 12);
}

TEST(DataCnvPlainDecimal, RefusesWhatIsNotAPlainInteger) {
  DataCnv cnv;
  for (const char16_t* text : {u"12a", u"1 2", u"--1", u"\u0661"}) {
    const ZanStringBase value(text);
    SCOPED_TRACE(value.toUtf8());
    expectFailure<ZanConversionException>([&] { Access::UStringToInt64(cnv, value); },
                                          "CP_CONV_INPUT_DATA_INVALID", 0xC0001581,
                                          "CPI Converter Input Data Invalid", "datacnv",
                                          "DataCnv::UStringToInt64", {"string", value.toUtf8()});
  }
  for (const char16_t* text :
       {u"9223372036854775808", u"-9223372036854775809", u"99999999999999999999"}) {
    const ZanStringBase value(text);
    SCOPED_TRACE(value.toUtf8());
    expectFailure<ZanConversionException>(
        [&] { Access::UStringToInt64(cnv, value); }, "CP_CONV_INPUT_DATA_OUT_OF_BOUNDS", 0xC0001582,
        "CPI Converter Input Data Out Of Bounds", "datacnv", "DataCnv::UStringToInt64",
        {"string", value.toUtf8(), "8-byte integer"});
  }
}

struct WriteCase {
  std::int64_t value;
  std::int32_t capacity;
  DataCnv::ESign sign;
  const char16_t* minus;
  bool pad;
  DataCnv::EJustification justification;
  char16_t padChar;
  const char16_t* text;
};

// Expected texts by hand: a digit pad goes between sign and digits, any other outside the sign.
const WriteCase kWriteCases[] = {
    {-42, 6, kTrailing, u"DB", false, kLeft, u' ', u"42DB"},
    {-42, 6, kLeading, u"-", true, kRight, u'0', u"-00042"},
    {-42, 6, kLeading, u"-", true, kRight, u' ', u"   -42"},
    {-42, 6, kLeading, u"-", true, kLeft, u' ', u"-42   "},
    {-42, 6, kLeading, u"(", false, kLeft, u' ', u"(42"},
    {42, 6, kLeading, u"-", true, kRight, u'0', u"000042"},
    {42, 3, DataCnv::eNoSign, u"-", false, kLeft, u' ', u"42"},
    {0, 1, kLeading, u"-", false, kLeft, u' ', u"0"},
    {-7, 4, kLeading, u"", false, kLeft, u' ', u"-7"},  // an empty custom minus keeps "-"
    {INT32_MIN, 11, kLeading, u"-", false, kLeft, u' ', u"-2147483648"},
};

TEST(DataCnvStrFromInt, WritesFieldsOfEveryConvention) {
  DataCnv cnv;
  for (const WriteCase& c : kWriteCases) {
    SCOPED_TRACE(ZanStringBase(c.text).toUtf8());
    const std::u16string untouched(12, u'#');
    std::u16string out = untouched;
    std::int32_t outLength = c.capacity;
    cnv.StrFromInt32(static_cast<std::int32_t>(c.value), out.data(), outLength, c.sign, c.minus,
                     u"+", c.pad, c.justification, c.padChar, true);
    EXPECT_EQ(out.substr(0, static_cast<std::size_t>(outLength)), c.text);
    EXPECT_EQ(out.substr(static_cast<std::size_t>(outLength)), untouched.substr(0, 12 - outLength))
        << "nothing written past the text";

    ZanStringBase text;
    std::int32_t textLength = c.capacity;
    cnv.StrFromInt64(c.value, text, textLength, c.sign, c.minus, u"+", c.pad, c.justification,
                     c.padChar, true);
    EXPECT_EQ(text, ZanStringBase(c.text));
    EXPECT_EQ(textLength, text.length());
  }
}

TEST(DataCnvStrFromInt, WrittenFieldsReadBack) {
  DataCnv cnv;
  for (const WriteCase& c : kWriteCases) {
    if (c.minus[0] == 0 || (c.padChar == u'0' && c.justification == kLeft)) continue;
    SCOPED_TRACE(ZanStringBase(c.text).toUtf8());
    char16_t out[12];
    std::int32_t outLength = c.capacity;
    cnv.StrFromInt64(c.value, out, outLength, c.sign, c.minus, u"+", c.pad, c.justification,
                     c.padChar, true);
    const auto trim = c.padChar == u'0' ? DataCnv::eTrimPadding : DataCnv::eTrimWhiteSpace;
    EXPECT_EQ(cnv.StrToInt64(out, outLength, c.sign, c.minus, u"+", trim, c.justification,
                             c.padChar, true),
              c.value);
  }
}

TEST(DataCnvStrFromInt, PlainFormIsAStringValue) {
  DataCnv cnv;
  for (const std::int64_t value : {std::int64_t{0}, std::int64_t{-5}, INT64_MIN, INT64_MAX}) {
    const PWFData data = cnv.StrFromInt64(value);
    EXPECT_EQ(data.getDataLogicalType(), eString);
    EXPECT_EQ(data.getPWFStringValue().toUtf8(), std::to_string(value));
  }
}

TEST(DataCnvStrFromInt, RefusesWhatCannotBeWrittenAndLeavesTheBufferAlone) {
  struct Case {
    std::int32_t value;
    bool nullOutput;
    std::int32_t capacity;
    DataCnv::ESign sign;
    const char16_t* minus;
    Code code;
    std::vector<std::string> inserts;
  };
  const Case cases[] = {
      {1, true, 5, kLeading, u"-", kInternal, {"Null output buffer pointer"}},
      {1, false, 0, kLeading, u"-", kInternal, {"Invalid output buffer length: ", "0"}},
      {1, false, 5, kLeading, nullptr, kInternal, {"Null sign string pointer"}},
      {1,
       false,
       5,
       DataCnv::eTrailingEmbeddedSign,
       u"-",
       kInternal,
       {"Sign type invalid for context: ", "2"}},
      {1,
       false,
       5,
       static_cast<DataCnv::ESign>(-1),
       u"-",
       kInternal,
       {"Invalid sign type: ", "-1"}},
      {-1, false, 5, DataCnv::eNoSign, u"-", kBounds, {"4-byte integer", "string (no sign)"}},
      {123456, false, 5, kLeading, u"-", kBounds, {"integer", "string (", "6", " characters)"}},
      {-1234, false, 5, kTrailing, u"DB", kBounds, {"integer", "string (", "6", " characters)"}},
  };
  DataCnv cnv;
  for (const Case& c : cases) {
    SCOPED_TRACE(c.inserts.front());
    char16_t out[8] = u"unchang";
    std::int32_t outLength = c.capacity;
    expectFailure<ZanConversionException>(
        [&] {
          cnv.StrFromInt32(c.value, c.nullOutput ? nullptr : out, outLength, c.sign, c.minus, u"+",
                           false, kLeft, u' ', true);
        },
        c.code.symbol, c.code.messageNumber, c.code.traceText, "datacnv", "DataCnv::StrFromInt32",
        c.inserts);
    EXPECT_EQ(ZanStringBase(out), ZanStringBase(u"unchang"));
    EXPECT_EQ(outLength, c.capacity);
  }
  // The 8-byte writer names its own kind.
  std::int32_t capacity = 5;
  expectFailure<ZanConversionException>(
      [&] {
        ZanStringBase text;
        cnv.StrFromInt64(-1, text, capacity, DataCnv::eNoSign, u"-", u"+", false, kLeft, u' ',
                         true);
      },
      kBounds.symbol, kBounds.messageNumber, kBounds.traceText, "datacnv", "DataCnv::StrFromInt64",
      {"8-byte integer", "string (no sign)"});
}

}  // namespace
