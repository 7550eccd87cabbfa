// Text fields: trimming, padding and signs, including the rules the runtime has always kept.

#include <bsutils/dataconv.h>
#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <tuple>
#include <vector>

#include "support/datacnv_test_access.h"
#include "support/expect_failure.h"
#include "support/field_conventions.h"

namespace {

using Access = DataCnvTestAccess;
using Bytes = std::vector<unsigned char>;

// Fields are written with "_" for a zero unit so that expected buffers read plainly.
std::u16string visible(const char16_t* units, std::int32_t length) {
  std::u16string text(units, static_cast<std::size_t>(length));
  for (char16_t& unit : text) unit = unit == 0 ? u'_' : unit;
  return text;
}

// A pad character that the converter's code page cannot carry; the inserts name it and the code
// page.
void expectInvalidPadding(const std::function<void()>& operation, const std::string& function,
                          const std::vector<std::string>& inserts) {
  expectFailure<ZanParserException>(operation, "CP_CONV_INVALID_PADDING", 0xC0001590,
                                    "CPI Converter Invalid Padding Character", "datacnv", function,
                                    inserts);
}

TEST(DataCnvTrim, TrimsByTypeAndJustification) {
  struct Case {
    const char16_t* field;
    DataCnv::ETrimType trim;
    DataCnv::EJustification justification;
    const char16_t* buffer;  // the whole buffer afterwards
    std::int32_t length;
  };
  const Case cases[] = {
      {u"  12  ", DataCnv::eTrimWhiteSpace, kLeft, u"12____", 2},
      {u"  12  ", DataCnv::eTrimLeadingWhiteSpace, kLeft, u"12  __", 4},
      {u"  12  ", DataCnv::eTrimTrailingWhiteSpace, kLeft, u"  12__", 4},
      {u"\t\u300012", DataCnv::eTrimWhiteSpace, kLeft, u"12__", 2},
      {u"  12  ", DataCnv::eNoTrim, kLeft, u"  12  ", 6},
      {u"12**", DataCnv::eTrimPadding, kLeft, u"12__", 2},
      {u"12**", DataCnv::eTrimPadding, kRight, u"12**", 4},
      {u"**12", DataCnv::eTrimPadding, kRight, u"12__", 2},
      {u"**12**", DataCnv::eTrimPadding, static_cast<DataCnv::EJustification>(2), u"**12**", 6},
      {u"****", DataCnv::eTrimPadding, kLeft, u"____", 0},
  };
  DataCnv cnv;
  for (const Case& c : cases) {
    std::u16string buffer(c.field);
    SCOPED_TRACE(ZanStringBase(c.field).toUtf8());
    const std::int32_t length =
        cnv.TrimString(buffer.data(), static_cast<std::int32_t>(buffer.size()), u'*',
                       c.justification, c.trim, true);
    EXPECT_EQ(length, c.length);
    EXPECT_EQ(visible(buffer.data(), static_cast<std::int32_t>(buffer.size())), c.buffer);
  }

  // A code-page pad character is read through the code page: 0x5C is "*" in code page 37; a UTF-16
  // code page takes both bytes in memory order, so "*" is given as itself.
  std::u16string field = u"**12";
  EXPECT_EQ(DataCnv(37, BigEndian)
                .TrimString(field.data(), 4, 0x5C, kRight, DataCnv::eTrimPadding, false),
            2);
  EXPECT_EQ(visible(field.data(), 4), u"12__");
  field = u"12**";
  EXPECT_EQ(DataCnv(1200, LittleEndian)
                .TrimString(field.data(), 4, u'*', kLeft, DataCnv::eTrimPadding, false),
            2);
}

TEST(DataCnvTrim, RefusesBadArgumentsAndPadCharactersTooWide) {
  DataCnv ebcdic(37, BigEndian);
  char16_t field[] = u"12";
  const auto trim = [&](char16_t* buffer, std::int32_t length, char16_t pad, bool padIsUnicode) {
    return [=, &ebcdic] {
      ebcdic.TrimString(buffer, length, pad, kLeft, DataCnv::eTrimWhiteSpace, padIsUnicode);
    };
  };
  expectConversionFailure(trim(nullptr, 2, u' ', true), kInternal, "DataCnv::TrimString",
                          {"Null input pointer"});
  expectConversionFailure(trim(field, -1, u' ', true), kInternal, "DataCnv::TrimString",
                          {"Invalid input length: ", "-1"});
  // A two-byte pad character in a single-byte code page, even for a trim that ignores it.
  expectInvalidPadding(trim(field, 2, 0x0140, false), "DataCnv::TrimData", {"0x0140", "37"});
}

TEST(DataCnvPad, PadStringPadsOnTheJustifiedSide) {
  struct Case {
    const char16_t* text;
    std::int32_t field;
    std::int32_t data;
    DataCnv::EJustification justification;
    const char16_t* expected;
  };
  const Case cases[] = {
      {u"12", 5, 2, kRight, u"00012"},
      {u"12", 5, 2, kLeft, u"12000"},
      {u"12", 5, 2, static_cast<DataCnv::EJustification>(7), u"00012"},  // not 0: at the start
      {u"12345", 4, 3, kLeft, u"1230"},                                  // cut to the data length
      {u"1", 4, 2, kRight, u"001_"},                                     // extended with zero units
  };
  DataCnv cnv;
  for (const Case& c : cases) {
    SCOPED_TRACE(ZanStringBase(c.expected).toUtf8());
    ZanStringBase text(c.text);
    cnv.PadString(text, c.field, c.data, u'0', c.justification, true);
    EXPECT_EQ(visible(text.data(), text.length()), c.expected);
  }

  ZanStringBase text(u"12");
  expectConversionFailure(
      [&] { cnv.PadString(text, 1, 2, u'0', kRight, true); }, kInternal, "DataCnv::PadString",
      {"Invalid input length: ", "1", " Expected string length after padding: ", "2"});
  // A negative data length keeps the text, which then cannot come out at the field length.
  expectConversionFailure([&] { cnv.PadString(text, 5, -1, u'0', kRight, true); }, kInternal,
                          "DataCnv::PadString", {"Data padding failed"});
}

TEST(DataCnvPad, PadDataWritesEncodedPadding) {
  struct Case {
    std::int32_t ccsid;
    char16_t padChar;
    bool padIsUnicode;
    DataCnv::EJustification justification;
    Bytes data;
    std::int32_t padBytes;
    Bytes expected;
  };
  const Case cases[] = {
      {37, 0x40, false, kRight, {0xF1, 0xF2}, 3, {0x40, 0x40, 0x40, 0xF1, 0xF2}},  // EBCDIC " "
      {37, u'*', true, kRight, {0xF1}, 2, {0x5C, 0x5C, 0xF1}},
      {1200, u'*', true, kLeft, {0x00, 0x31}, 4, {0x00, 0x31, 0x00, 0x2A, 0x00, 0x2A}},
      // The pad block is copied as a string: its leading zero byte ends the copy at once.
      {1200, u'*', true, kRight, {0x00, 0x31}, 4, {0x00, 0x00, 0x00, 0x00, 0x00, 0x31}},
      {1208, u'\u00B7', true, kLeft, {0x31}, 4, {0x31, 0xC2, 0xB7, 0xC2, 0xB7}},
      {37, 0x40, false, kRight, {0xF1}, 0, {0xF1}},  // nothing to pad
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(testing::Message() << c.ccsid << " " << c.padBytes);
    DataCnv cnv(c.ccsid, BigEndian);
    Bytes field = c.data;
    field.resize(c.data.size() + static_cast<std::size_t>(c.padBytes), 0xEE);
    cnv.PadData(field.data() + c.data.size(), c.padBytes, static_cast<std::int32_t>(c.data.size()),
                c.justification, c.padChar, c.padIsUnicode);
    EXPECT_EQ(field, c.expected);
  }
}

TEST(DataCnvPad, PadDataRefusesWhatTheCodePageCannotCarry) {
  unsigned char field[8] = {};
  DataCnv ebcdic(37, BigEndian);
  DataCnv utf16(1200, BigEndian);
  const char* pad = "DataCnv::PadData";
  const std::vector<std::string> invalidArgument{"Invalid argument for DataCnv::PadData"};
  expectConversionFailure([&] { ebcdic.PadData(nullptr, 1, 0, kLeft, 0x40, false); }, kInternal,
                          pad, invalidArgument);
  expectConversionFailure([&] { ebcdic.PadData(field, -1, 0, kLeft, 0x40, false); }, kInternal, pad,
                          invalidArgument);
  expectConversionFailure([&] { ebcdic.PadData(field, 1, -1, kLeft, 0x40, false); }, kInternal, pad,
                          invalidArgument);
  // The euro sign is not in code page 37; the converter would substitute it.
  expectConversionFailure([&] { ebcdic.PadData(field, 2, 0, kLeft, u'\u20AC', true); }, kInternal,
                          pad, {"Error converting from unicode"});

  expectInvalidPadding([&] { utf16.PadData(field, 3, 0, kLeft, 0x0020, false); }, pad,
                       {"0x20", "1200"});
  expectInvalidPadding([&] { ebcdic.PadData(field, 2, 0, kLeft, 0x0140, false); }, pad,
                       {"0x0140", "37"});
  expectFailure<ZanParserException>(
      [&] { utf16.PadData(field, 3, 0, kLeft, u' ', true); }, "CP_CONV_INVALID_PADDING_SIZE",
      0xC0001591, "CPI Converter An attempt to add padding to fixed length field has failed",
      "datacnv", pad, {"0x0020", "3"});
}

TEST(DataCnvSign, CheckSignReadsAndRemovesEachStyle) {
  struct Case {
    const char16_t* text;
    DataCnv::ESign sign;
    const char16_t* minus;
    const char16_t* plus;
    bool negative;
    const char16_t* digits;
  };
  const Case cases[] = {
      {u"p23", DataCnv::eLeadingEmbeddedSign, u"-", u"+", true, u"023"},
      {u"123", DataCnv::eLeadingEmbeddedSign, u"-", u"+", false, u"123"},
      {u"12r", DataCnv::eTrailingEmbeddedSign, u"-", u"+", true, u"122"},
      {u"A23", DataCnv::eLeadingEmbeddedSign, u"-", u"+", true, u"\u000123"},  // for the caller
      {u"-12", DataCnv::eNoSign, u"-", u"+", false, u"-12"},
      {u"CR100", kLeading, u"CR", u"", true, u"100"},
      {u"100", kLeading, u"CR", u"", false, u"100"},
      {u"+100", kLeading, u"-", u"+", false, u"100"},
      {u"100", kLeading, u"", u"+", true, u"100"},  // an empty minus: negative
      {u"12-+", kTrailing, u"-", u"+", false, u"12-"},
      {u"12+-", kTrailing, u"-", u"+", true, u"12"},
      {u"12DB", kTrailing, u"DB", u"CR", true, u"12"},
      {u"12", kTrailing, u"", u"", true, u"12"},
  };
  DataCnv cnv;
  for (const Case& c : cases) {
    SCOPED_TRACE(ZanStringBase(c.text).toUtf8());
    ZanStringBase digits(c.text);
    EXPECT_EQ(Access::CheckSign(cnv, digits, c.sign, c.minus, c.plus), c.negative);
    EXPECT_EQ(digits, ZanStringBase(c.digits));
  }
  // An unknown sign type is refused through the integer reader's tests.
}

TEST(DataCnvSign, MinusTestsCompareOneCharacter) {
  EXPECT_TRUE(Access::HasALeadingMinus(ZanStringBase(u"-5"), u"-"));
  EXPECT_TRUE(Access::HasALeadingMinus(ZanStringBase(u"C5"), u"CR"));
  EXPECT_FALSE(Access::HasALeadingMinus(ZanStringBase(u"5-"), u"-"));
  EXPECT_FALSE(Access::HasALeadingMinus(ZanStringBase(), u"-"));
  EXPECT_FALSE(Access::HasALeadingMinus(ZanStringBase(u"-5"), nullptr));
  EXPECT_TRUE(Access::HasATrailingMinus(ZanStringBase(u"5-"), u"-"));
  EXPECT_FALSE(Access::HasATrailingMinus(ZanStringBase(u"-5"), u"-"));
}

TEST(DataCnvSign, SubstituteMinusSignWritesTheCustomMinus) {
  const std::tuple<DataCnv::ESign, const char16_t*, bool, const char16_t*, const char16_t*>
      cases[] = {
          {kTrailing, u"DB", false, u"-12", u"12DB"},
          {kLeading, u"(", false, u"-12", u"(12"},
          {kLeading, u"CR", true, u"12", u"CR12"},
          {DataCnv::eLeadingEmbeddedSign, u"DB", false, u"-12", u"-12"},
          {kTrailing, u"", false, u"-12", u"-12"},
      };
  DataCnv cnv;
  for (const auto& [sign, minus, noStandardMinus, before, after] : cases) {
    SCOPED_TRACE(ZanStringBase(after).toUtf8());
    ZanStringBase text(before);
    Access::SubstituteMinusSign(cnv, text, sign, minus, noStandardMinus);
    EXPECT_EQ(text, ZanStringBase(after));
  }
}

}  // namespace
