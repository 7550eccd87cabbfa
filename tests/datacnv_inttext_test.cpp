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
  DataCnv cnv;
  const auto read32 = [&](const char16_t* text, std::int32_t length, DataCnv::ESign sign,
                          const char16_t* minus) {
    return [&cnv, text, length, sign, minus] {
      cnv.StrToInt32(text, length, sign, minus, u"+", DataCnv::eNoTrim, kLeft, u' ', true);
    };
  };
  const auto read64 = [&](const char16_t* text, std::int32_t length, DataCnv::ESign sign,
                          const char16_t* minus) {
    return [&cnv, text, length, sign, minus] {
      cnv.StrToInt64(text, length, sign, minus, u"+", DataCnv::eNoTrim, kLeft, u' ', true);
    };
  };
  struct Case {
    const char* name;
    std::function<void()> call;
    const char* symbol;
    std::uint32_t messageNumber;
    const char* traceText;
    const char* function;
    std::vector<std::string> inserts;
  };
  const char* internal = "CPI Internal Error";
  const char* invalid = "CPI Converter Input Data Invalid";
  const char* bounds = "CPI Converter Input Data Out Of Bounds";
  const Case cases[] = {
      {"null text 32",
       read32(nullptr, 1, kLeading, u"-"),
       "CP_INTERNAL_ERROR",
       0xC000157E,
       internal,
       "DataCnv::StrToInt32",
       {"Null input pointer passed into DataCnv::StrToInt32"}},
      {"null text 64",
       read64(nullptr, 1, kLeading, u"-"),
       "CP_INTERNAL_ERROR",
       0xC000157E,
       internal,
       "DataCnv::StrToInt64",
       {"Null input pointer passed into DataCnv::StrToInt64"}},
      {"negative length 32",
       read32(u"1", -1, kLeading, u"-"),
       "CP_CONV_INPUT_DATA_INVALID",
       0xC0001581,
       "Tried to convert a zero length string to a integer",
       "DataCnv::StrToInt32",
       {"integer"}},
      {"negative length 64",
       read64(u"1", -1, kLeading, u"-"),
       "CP_CONV_INPUT_DATA_INVALID",
       0xC0001581,
       "Tried to convert a zero length string to an integer",
       "DataCnv::StrToInt64",
       {"integer"}},
      {"null minus 32",
       read32(u"1", 1, kLeading, nullptr),
       "CP_INTERNAL_ERROR",
       0xC000157E,
       internal,
       "DataCnv::StrToInt32",
       {"Null sign string pointer passed into DataCnv::StrToInt32"}},
      {"null minus 64",
       read64(u"1", 1, kLeading, nullptr),
       "CP_INTERNAL_ERROR",
       0xC000157E,
       internal,
       "DataCnv::StrToInt64",
       {"Null sign string pointer"}},
      {"embedded sign 64, before the text",
       read64(nullptr, -1, DataCnv::eLeadingEmbeddedSign, u"-"),
       "CP_INTERNAL_ERROR",
       0xC000157E,
       internal,
       "DataCnv::StrToInt64",
       {"Sign type invalid for context: ", "1"}},
      {"sign style 7",
       read32(u"1", 1, static_cast<DataCnv::ESign>(7), u"-"),
       "CP_INTERNAL_ERROR",
       0xC000157E,
       internal,
       "DataCnv::CheckSign",
       {"Invalid sign type: ", "7"}},
      {"inner space",
       read32(u"1 2", 3, kLeading, u"-"),
       "CP_CONV_INPUT_DATA_INVALID",
       0xC0001581,
       invalid,
       "DataCnv::StrToInt32",
       {"string", "1 2"}},
      {"digit after embedded sign",
       read32(u"A1", 2, DataCnv::eLeadingEmbeddedSign, u"-"),
       "CP_CONV_INPUT_DATA_INVALID",
       0xC0001581,
       invalid,
       "DataCnv::StrToInt32",
       {"string", "A1"}},
      {"one past the top 32",
       read32(u"2147483648", 10, kLeading, u"-"),
       "CP_CONV_INPUT_DATA_OUT_OF_BOUNDS",
       0xC0001582,
       bounds,
       "DataCnv::StrToInt32",
       {"string"}},
      {"leading zeros count 32",
       read32(u"00000000001", 11, kLeading, u"-"),
       "CP_CONV_INPUT_DATA_OUT_OF_BOUNDS",
       0xC0001582,
       bounds,
       "DataCnv::StrToInt32",
       {"string"}},
      {"one past the bottom 64",
       read64(u"-9223372036854775809", 20, kLeading, u"-"),
       "CP_CONV_INPUT_DATA_OUT_OF_BOUNDS",
       0xC0001582,
       bounds,
       "DataCnv::StrToInt64",
       {"string", "8-byte integer"}},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    expectFailure<ZanConversionException>(c.call, c.symbol, c.messageNumber, c.traceText, "datacnv",
                                          c.function, c.inserts);
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

TEST(DataCnvStrFromInt, RefusesWhatCannotBeWritten) {
  DataCnv cnv;
  char16_t out[8] = u"unchang";
  std::int32_t outLength = 5;
  const auto write32 = [&](std::int32_t value, char16_t* target, std::int32_t capacity,
                           DataCnv::ESign sign, const char16_t* minus) {
    return [&cnv, &outLength, value, target, capacity, sign, minus] {
      outLength = capacity;
      cnv.StrFromInt32(value, target, outLength, sign, minus, u"+", false, kLeft, u' ', true);
    };
  };
  struct Case {
    const char* name;
    std::function<void()> call;
    const char* symbol;
    std::vector<std::string> inserts;
  };
  const Case cases[] = {
      {"null output",
       write32(1, nullptr, 5, kLeading, u"-"),
       "CP_INTERNAL_ERROR",
       {"Null output buffer pointer"}},
      {"zero capacity",
       write32(1, out, 0, kLeading, u"-"),
       "CP_INTERNAL_ERROR",
       {"Invalid output buffer length: ", "0"}},
      {"null minus",
       write32(1, out, 5, kLeading, nullptr),
       "CP_INTERNAL_ERROR",
       {"Null sign string pointer"}},
      {"embedded sign",
       write32(1, out, 5, DataCnv::eTrailingEmbeddedSign, u"-"),
       "CP_INTERNAL_ERROR",
       {"Sign type invalid for context: ", "2"}},
      {"sign style out of range",
       write32(1, out, 5, static_cast<DataCnv::ESign>(-1), u"-"),
       "CP_INTERNAL_ERROR",
       {"Invalid sign type: ", "-1"}},
      {"negative without sign",
       write32(-1, out, 5, DataCnv::eNoSign, u"-"),
       "CP_CONV_INPUT_DATA_OUT_OF_BOUNDS",
       {"4-byte integer", "string (no sign)"}},
      {"too long",
       write32(123456, out, 5, kLeading, u"-"),
       "CP_CONV_INPUT_DATA_OUT_OF_BOUNDS",
       {"integer", "string (", "6", " characters)"}},
      {"custom minus too long",
       write32(-1234, out, 5, kTrailing, u"DB"),
       "CP_CONV_INPUT_DATA_OUT_OF_BOUNDS",
       {"integer", "string (", "6", " characters)"}},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    const bool internal = std::string(c.symbol) == "CP_INTERNAL_ERROR";
    expectFailure<ZanConversionException>(
        c.call, c.symbol, internal ? 0xC000157E : 0xC0001582,
        internal ? "CPI Internal Error" : "CPI Converter Input Data Out Of Bounds", "datacnv",
        "DataCnv::StrFromInt32", c.inserts);
    EXPECT_EQ(ZanStringBase(out), ZanStringBase(u"unchang"));
  }
  // The 8-byte writer names its own kind.
  expectFailure<ZanConversionException>(
      [&] {
        std::int32_t capacity = 5;
        cnv.StrFromInt64(-1, out, capacity, DataCnv::eNoSign, u"-", u"+", false, kLeft, u' ', true);
      },
      "CP_CONV_INPUT_DATA_OUT_OF_BOUNDS", 0xC0001582, "CPI Converter Input Data Out Of Bounds",
      "datacnv", "DataCnv::StrFromInt64", {"8-byte integer", "string (no sign)"});
}

}  // namespace
