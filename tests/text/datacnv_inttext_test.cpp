// Integers as text fields and as plain decimal text.

#include <bsutils/dataconv.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <string>
#include <vector>

#include "support/datacnv_test_access.h"
#include "support/expect_failure.h"
#include "support/field_conventions.h"

namespace {

using Access = DataCnvTestAccess;
using Strings = std::vector<std::string>;

std::int32_t length(const char16_t* text) {
  return static_cast<std::int32_t>(std::char_traits<char16_t>::length(text));
}

TEST(DataCnvStrToInt, ReadsFieldsOfEveryConvention) {
  struct Case {
    const char16_t* text;
    DataCnv::ESign sign;
    const char16_t* minus;
    DataCnv::ETrimType trim;
    DataCnv::EJustification justification;
    char16_t pad;
    std::int64_t value;
  };
  // Values by hand from each field's digits and sign; both readers take what fits 32 bits.
  const Case cases[] = {
      {u"  -42  ", kLeading, u"-", DataCnv::eTrimWhiteSpace, kLeft, u' ', -42},
      {u"0042", kNoSign, u"-", kTrimPad, kRight, u'0', 42},
      {u"-00042", kLeading, u"-", kTrimPad, kRight, u'0', -42},  // a digit pad inside the sign
      {u"0000", kNoSign, u"-", kTrimPad, kRight, u'0', 0},
      {u"", kLeading, u"-", kNoTrim, kLeft, u' ', 0},
      {u"42DB", kTrailing, u"DB", kNoTrim, kLeft, u' ', -42},
      {u"+7", kLeading, u"-", kNoTrim, kLeft, u' ', 7},
      {u"12r", DataCnv::eTrailingEmbeddedSign, u"-", kNoTrim, kLeft, u' ', -122},
      {u"2147483647", kLeading, u"-", kNoTrim, kLeft, u' ', INT32_MAX},
      {u"-2147483648", kLeading, u"-", kNoTrim, kLeft, u' ', INT32_MIN},
      {u"\u0664\u0662", kNoSign, u"-", kNoTrim, kLeft, u' ', 42},  // Arabic-Indic
      {u"9223372036854775807", kLeading, u"-", kNoTrim, kLeft, u' ', INT64_MAX},
      {u"-9223372036854775808", kLeading, u"-", kNoTrim, kLeft, u' ', INT64_MIN},
  };
  DataCnv cnv;
  for (const Case& c : cases) {
    SCOPED_TRACE(ZanStringBase(c.text).toUtf8());
    if (c.value >= INT32_MIN && c.value <= INT32_MAX) {
      EXPECT_EQ(cnv.StrToInt32(c.text, length(c.text), c.sign, c.minus, u"+", c.trim,
                               c.justification, c.pad, true),
                c.value);
    }
    if (c.sign != DataCnv::eTrailingEmbeddedSign) {
      EXPECT_EQ(cnv.StrToInt64(c.text, length(c.text), c.sign, c.minus, u"+", c.trim,
                               c.justification, c.pad, true),
                c.value);
    }
  }
  // 0xF0 is "0" in code page 37: a code-page pad character is one byte of the code page.
  EXPECT_EQ(DataCnv(37, BigEndian)
                .StrToInt32(u"00042", 5, kNoSign, u"-", u"+", kTrimPad, kRight, 0xF0, false),
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
    Strings inserts;
    const char* function = nullptr;  // where the failure is raised, when not in the reader itself
  };
  const Code zeroLength32{kInvalid.symbol, kInvalid.messageNumber,
                          "Tried to convert a zero length string to a integer"};
  const Code zeroLength64{kInvalid.symbol, kInvalid.messageNumber,
                          "Tried to convert a zero length string to an integer"};
  const auto badSign = static_cast<DataCnv::ESign>(7);
  const auto embedded = DataCnv::eLeadingEmbeddedSign;
  const Case cases[] = {
      {32, nullptr, 1, kLeading, u"-", kInternal, {"Null input pointer passed into "}},
      {64, nullptr, 1, kLeading, u"-", kInternal, {"Null input pointer passed into "}},
      {32, u"1", -1, kLeading, u"-", zeroLength32, {"integer"}},
      {64, u"1", -1, kLeading, u"-", zeroLength64, {"integer"}},
      {32, u"1", 1, kLeading, nullptr, kInternal, {"Null sign string pointer passed into "}},
      {64, u"1", 1, kLeading, nullptr, kInternal, {"Null sign string pointer"}},
      // Refused before the (null) text is looked at.
      {64, nullptr, -1, embedded, u"-", kInternal, {"Sign type invalid for context: ", "1"}},
      {32, u"1", 1, badSign, u"-", kInternal, {"Invalid sign type: ", "7"}, "DataCnv::CheckSign"},
      {32, u"1 2", 3, kLeading, u"-", kInvalid, {"string", "1 2"}},
      {32, u"2147483648", 10, kLeading, u"-", kBounds, {"string"}},
      {32, u"00000000001", 11, kLeading, u"-", kBounds, {"string"}},  // zeros count
      {64, u"-9223372036854775809", 20, kLeading, u"-", kBounds, {"string", "8-byte integer"}},
  };
  DataCnv cnv;
  for (Case c : cases) {
    const std::string reader = c.bits == 32 ? "DataCnv::StrToInt32" : "DataCnv::StrToInt64";
    // The texts that end "into " go on to name the reader.
    if (c.inserts.front().ends_with("into ")) c.inserts.front() += reader;
    SCOPED_TRACE(reader + " " + c.inserts.front());
    expectConversionFailure(
        [&] {
          if (c.bits == 32) {
            cnv.StrToInt32(c.text, c.length, c.sign, c.minus, u"+", kNoTrim, kLeft, u' ', true);
          } else {
            cnv.StrToInt64(c.text, c.length, c.sign, c.minus, u"+", kNoTrim, kLeft, u' ', true);
          }
        },
        c.code, c.function != nullptr ? c.function : reader, c.inserts);
  }
}

TEST(DataCnvPlainDecimal, RendersAndReadsEverySixtyFourBitValue) {
  DataCnv cnv;
  for (const std::int64_t value :
       {std::int64_t{0}, std::int64_t{-5}, std::int64_t{1000000}, INT64_MAX, INT64_MIN}) {
    SCOPED_TRACE(value);
    ZanStringBase text(u"old");
    Access::Int64ToUString(cnv, value, text);
    EXPECT_EQ(text.toUtf8(), std::to_string(value));
    EXPECT_EQ(Access::UStringToInt64(cnv, text), value);
  }
  for (const char16_t* zero : {u"", u"-", u"-0000"}) {
    EXPECT_EQ(Access::UStringToInt64(cnv, ZanStringBase(zero)), 0);
  }
  EXPECT_EQ(Access::UStringToInt64(cnv, ZanStringBase(u"+00012")), 12);
}

TEST(DataCnvPlainDecimal, RefusesWhatIsNotAPlainInteger) {
  // Only ASCII digits after one optional sign; the bounds fall at the last digit or before it.
  DataCnv cnv;
  const auto refused = [&](const char16_t* text, const Code& code, const Strings& extra) {
    const ZanStringBase value(text);
    SCOPED_TRACE(value.toUtf8());
    Strings inserts{"string", value.toUtf8()};
    inserts.insert(inserts.end(), extra.begin(), extra.end());
    expectConversionFailure([&] { Access::UStringToInt64(cnv, value); }, code,
                            "DataCnv::UStringToInt64", inserts);
  };
  for (const char16_t* text : {u"12a", u"--1", u"\u0661"}) refused(text, kInvalid, {});
  for (const char16_t* text :
       {u"9223372036854775808", u"-9223372036854775809", u"99999999999999999999"}) {
    refused(text, kBounds, {"8-byte integer"});
  }
}

TEST(DataCnvStrFromInt, WritesFieldsOfEveryConvention) {
  struct Case {
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
  const Case cases[] = {
      {-42, 6, kTrailing, u"DB", false, kLeft, u' ', u"42DB"},
      {-42, 6, kLeading, u"-", true, kRight, u'0', u"-00042"},
      {-42, 6, kLeading, u"-", true, kRight, u' ', u"   -42"},
      {-42, 6, kLeading, u"-", true, kLeft, u' ', u"-42   "},
      {-42, 6, kLeading, u"(", false, kLeft, u' ', u"(42"},
      {42, 6, kLeading, u"-", true, kRight, u'0', u"000042"},
      {42, 3, kNoSign, u"-", false, kLeft, u' ', u"42"},
      {0, 1, kLeading, u"-", false, kLeft, u' ', u"0"},
      {-7, 4, kLeading, u"", false, kLeft, u' ', u"-7"},  // an empty custom minus keeps "-"
      {INT32_MIN, 11, kLeading, u"-", false, kLeft, u' ', u"-2147483648"},
  };
  DataCnv cnv;
  for (const Case& c : cases) {
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
  // The plain form is a string value.
  for (const std::int64_t value : {std::int64_t{-5}, INT64_MIN, INT64_MAX}) {
    const PWFData data = cnv.StrFromInt64(value);
    EXPECT_EQ(data.getDataLogicalType(), eString);
    EXPECT_EQ(data.getPWFStringValue().toUtf8(), std::to_string(value));
  }
}

TEST(DataCnvStrFromInt, RefusesWhatCannotBeWrittenAndLeavesTheBufferAlone) {
  struct Case {
    std::int32_t value;
    std::int32_t capacity;  // -1: no buffer either, which is refused first
    DataCnv::ESign sign;
    const char16_t* minus;
    Code code;
    Strings inserts;
  };
  const Strings tooLong{"integer", "string (", "6", " characters)"};
  const auto embedded = DataCnv::eTrailingEmbeddedSign;
  const Case cases[] = {
      {1, -1, kLeading, u"-", kInternal, {"Null output buffer pointer"}},
      {1, 0, kLeading, u"-", kInternal, {"Invalid output buffer length: ", "0"}},
      {1, 5, kLeading, nullptr, kInternal, {"Null sign string pointer"}},
      {1, 5, embedded, u"-", kInternal, {"Sign type invalid for context: ", "2"}},
      {1, 5, static_cast<DataCnv::ESign>(-1), u"-", kInternal, {"Invalid sign type: ", "-1"}},
      {-1, 5, kNoSign, u"-", kBounds, {"4-byte integer", "string (no sign)"}},
      {123456, 5, kLeading, u"-", kBounds, tooLong},
      {-1234, 5, kTrailing, u"DB", kBounds, tooLong},
  };
  DataCnv cnv;
  for (const Case& c : cases) {
    SCOPED_TRACE(c.inserts.front());
    char16_t out[8] = u"unchang";
    std::int32_t outLength = c.capacity;
    expectConversionFailure(
        [&] {
          cnv.StrFromInt32(c.value, c.capacity < 0 ? nullptr : out, outLength, c.sign, c.minus,
                           u"+", false, kLeft, u' ', true);
        },
        c.code, "DataCnv::StrFromInt32", c.inserts);
    EXPECT_EQ(ZanStringBase(out), ZanStringBase(u"unchang"));
    EXPECT_EQ(outLength, c.capacity);
  }
  // The 8-byte writer names its own kind.
  std::int32_t capacity = 5;
  ZanStringBase text;
  expectConversionFailure(
      [&] { cnv.StrFromInt64(-1, text, capacity, kNoSign, u"-", u"+", false, kLeft, u' ', true); },
      kBounds, "DataCnv::StrFromInt64", {"8-byte integer", "string (no sign)"});
}

}  // namespace
