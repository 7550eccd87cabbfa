// Text fields: trimming, padding and signs, including the rules the runtime has always kept.

#include <bsutils/dataconv.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "support/datacnv_test_access.h"
#include "support/expect_failure.h"

namespace {

using Access = DataCnvTestAccess;
using Bytes = std::vector<unsigned char>;

// Fields are written with "_" for a zero unit so that expected buffers read plainly.
std::u16string visible(const char16_t* units, std::int32_t length) {
  std::u16string text(units, static_cast<std::size_t>(length));
  for (char16_t& unit : text) unit = unit == 0 ? u'_' : unit;
  return text;
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
      {u"  12  ", DataCnv::eTrimWhiteSpace, DataCnv::eLeftJustified, u"12____", 2},
      {u"  12  ", DataCnv::eTrimLeadingWhiteSpace, DataCnv::eLeftJustified, u"12  __", 4},
      {u"  12  ", DataCnv::eTrimTrailingWhiteSpace, DataCnv::eLeftJustified, u"  12__", 4},
      {u"\t\u3000"
       u"12",
       DataCnv::eTrimWhiteSpace, DataCnv::eLeftJustified, u"12__", 2},
      {u"  12  ", DataCnv::eNoTrim, DataCnv::eLeftJustified, u"  12  ", 6},
      {u"  12  ", static_cast<DataCnv::ETrimType>(9), DataCnv::eLeftJustified, u"  12  ", 6},
      {u"12**", DataCnv::eTrimPadding, DataCnv::eLeftJustified, u"12__", 2},
      {u"12**", DataCnv::eTrimPadding, DataCnv::eRightJustified, u"12**", 4},
      {u"**12", DataCnv::eTrimPadding, DataCnv::eRightJustified, u"12__", 2},
      {u"**12**", static_cast<DataCnv::ETrimType>(4), static_cast<DataCnv::EJustification>(2),
       u"**12**", 6},
      {u"**12", DataCnv::eTrimLeadingWhiteSpace, DataCnv::eRightJustified, u"**12", 4},
      {u"****", DataCnv::eTrimPadding, DataCnv::eLeftJustified, u"____", 0},
      {u"", DataCnv::eTrimWhiteSpace, DataCnv::eLeftJustified, u"", 0},
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
}

TEST(DataCnvTrim, CodePagePadCharacterIsReadThroughTheCodePage) {
  DataCnv ebcdic(37, BigEndian);
  std::u16string field = u"**12";
  // 0x5C is "*" in code page 37.
  EXPECT_EQ(ebcdic.TrimString(field.data(), 4, 0x5C, DataCnv::eRightJustified,
                              DataCnv::eTrimPadding, false),
            2);
  EXPECT_EQ(visible(field.data(), 4), u"12__");

  // A UTF-16 code page takes both bytes in memory order, so "*" is given as itself.
  DataCnv utf16(1200, LittleEndian);
  field = u"12**";
  EXPECT_EQ(utf16.TrimString(field.data(), 4, u'*', DataCnv::eLeftJustified, DataCnv::eTrimPadding,
                             false),
            2);
}

TEST(DataCnvTrim, RefusesBadArgumentsAndPadCharactersTooWide) {
  DataCnv ebcdic(37, BigEndian);
  char16_t field[] = u"12";
  expectFailure<ZanConversionException>(
      [&] {
        ebcdic.TrimString(nullptr, 2, u' ', DataCnv::eLeftJustified, DataCnv::eTrimWhiteSpace,
                          true);
      },
      "CP_INTERNAL_ERROR", 0xC000157E, "CPI Internal Error", "datacnv", "DataCnv::TrimString",
      {"Null input pointer"});
  expectFailure<ZanConversionException>(
      [&] {
        ebcdic.TrimString(field, -1, u' ', DataCnv::eLeftJustified, DataCnv::eTrimWhiteSpace, true);
      },
      "CP_INTERNAL_ERROR", 0xC000157E, "CPI Internal Error", "datacnv", "DataCnv::TrimString",
      {"Invalid input length: ", "-1"});
  // A two-byte pad character in a single-byte code page, even for a trim that ignores it.
  expectFailure<ZanParserException>(
      [&] {
        ebcdic.TrimString(field, 2, 0x0140, DataCnv::eLeftJustified, DataCnv::eTrimWhiteSpace,
                          false);
      },
      "CP_CONV_INVALID_PADDING", 0xC0001590, "CPI Converter Invalid Padding Character", "datacnv",
      "DataCnv::TrimData", {"0x0140", "37"});
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
      {u"12", 5, 2, DataCnv::eRightJustified, u"00012"},
      {u"12", 5, 2, DataCnv::eLeftJustified, u"12000"},
      {u"12", 5, 2, static_cast<DataCnv::EJustification>(7), u"00012"},  // not 0: at the start
      {u"12345", 4, 3, DataCnv::eLeftJustified, u"1230"},                // cut to the data length
      {u"1", 4, 2, DataCnv::eRightJustified, u"001_"},                   // extended with zero units
      {u"12", 2, 2, DataCnv::eRightJustified, u"12"},
  };
  DataCnv cnv;
  for (const Case& c : cases) {
    SCOPED_TRACE(ZanStringBase(c.expected).toUtf8());
    ZanStringBase text(c.text);
    cnv.PadString(text, c.field, c.data, u'0', c.justification, true);
    EXPECT_EQ(visible(text.data(), text.length()), c.expected);
  }
}

TEST(DataCnvPad, PadStringRefusesInconsistentLengths) {
  DataCnv cnv;
  ZanStringBase text(u"12");
  expectFailure<ZanConversionException>(
      [&] { cnv.PadString(text, 1, 2, u'0', DataCnv::eRightJustified, true); }, "CP_INTERNAL_ERROR",
      0xC000157E, "CPI Internal Error", "datacnv", "DataCnv::PadString",
      {"Invalid input length: ", "1", " Expected string length after padding: ", "2"});
  // A negative data length keeps the text, which then cannot come out at the field length.
  expectFailure<ZanConversionException>(
      [&] { cnv.PadString(text, 5, -1, u'0', DataCnv::eRightJustified, true); },
      "CP_INTERNAL_ERROR", 0xC000157E, "CPI Internal Error", "datacnv", "DataCnv::PadString",
      {"Data padding failed"});
}

TEST(DataCnvPad, PadDataWritesEncodedPadding) {
  struct Case {
    const char* name;
    std::int32_t ccsid;
    EEndian endian;
    char16_t padChar;
    bool padIsUnicode;
    DataCnv::EJustification justification;
    Bytes data;
    std::int32_t padBytes;
    Bytes expected;
  };
  const Case cases[] = {
      {"EBCDIC space, right",
       37,
       BigEndian,
       0x40,
       false,
       DataCnv::eRightJustified,
       {0xF1, 0xF2},
       3,
       {0x40, 0x40, 0x40, 0xF1, 0xF2}},
      {"EBCDIC space, left",
       37,
       BigEndian,
       0x40,
       false,
       DataCnv::eLeftJustified,
       {0xF1, 0xF2},
       3,
       {0xF1, 0xF2, 0x40, 0x40, 0x40}},
      {"UTF-16 '*' encoded, right",
       37,
       BigEndian,
       u'*',
       true,
       DataCnv::eRightJustified,
       {0xF1},
       2,
       {0x5C, 0x5C, 0xF1}},
      {"UTF-16BE '*' encoded, left",
       1200,
       BigEndian,
       u'*',
       true,
       DataCnv::eLeftJustified,
       {0x00, 0x31},
       4,
       {0x00, 0x31, 0x00, 0x2A, 0x00, 0x2A}},
      // The pad block is copied as a string: its leading zero byte ends the copy at once.
      {"UTF-16BE '*' encoded, right",
       1200,
       BigEndian,
       u'*',
       true,
       DataCnv::eRightJustified,
       {0x00, 0x31},
       4,
       {0x00, 0x00, 0x00, 0x00, 0x00, 0x31}},
      {"UTF-8 multi-byte pad",
       1208,
       LittleEndian,
       u'\u00B7',
       true,
       DataCnv::eLeftJustified,
       {0x31},
       4,
       {0x31, 0xC2, 0xB7, 0xC2, 0xB7}},
      {"nothing to pad", 37, BigEndian, 0x40, false, DataCnv::eRightJustified, {0xF1}, 0, {0xF1}},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    DataCnv cnv(c.ccsid, c.endian);
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
  const auto internal = [](const std::function<void()>& call, const std::string& insert) {
    expectFailure<ZanConversionException>(call, "CP_INTERNAL_ERROR", 0xC000157E,
                                          "CPI Internal Error", "datacnv", "DataCnv::PadData",
                                          {insert});
  };
  internal([&] { ebcdic.PadData(nullptr, 1, 0, DataCnv::eLeftJustified, 0x40, false); },
           "Invalid argument for DataCnv::PadData");
  internal([&] { ebcdic.PadData(field, -1, 0, DataCnv::eLeftJustified, 0x40, false); },
           "Invalid argument for DataCnv::PadData");
  internal([&] { ebcdic.PadData(field, 1, -1, DataCnv::eLeftJustified, 0x40, false); },
           "Invalid argument for DataCnv::PadData");
  // The euro sign is not in code page 37; the converter would substitute it.
  internal([&] { ebcdic.PadData(field, 2, 0, DataCnv::eLeftJustified, u'\u20AC', true); },
           "Error converting from unicode");

  expectFailure<ZanParserException>(
      [&] { utf16.PadData(field, 3, 0, DataCnv::eLeftJustified, 0x0020, false); },
      "CP_CONV_INVALID_PADDING", 0xC0001590, "CPI Converter Invalid Padding Character", "datacnv",
      "DataCnv::PadData", {"0x20", "1200"});
  expectFailure<ZanParserException>(
      [&] { ebcdic.PadData(field, 2, 0, DataCnv::eLeftJustified, 0x0140, false); },
      "CP_CONV_INVALID_PADDING", 0xC0001590, "CPI Converter Invalid Padding Character", "datacnv",
      "DataCnv::PadData", {"0x0140", "37"});
  expectFailure<ZanParserException>(
      [&] { utf16.PadData(field, 3, 0, DataCnv::eLeftJustified, u' ', true); },
      "CP_CONV_INVALID_PADDING_SIZE", 0xC0001591,
      "CPI Converter An attempt to add padding to fixed length field has failed", "datacnv",
      "DataCnv::PadData", {"0x0020", "3"});
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
      {u"y23", DataCnv::eLeadingEmbeddedSign, u"-", u"+", true, u"923"},
      {u"123", DataCnv::eLeadingEmbeddedSign, u"-", u"+", false, u"123"},
      {u"12r", DataCnv::eTrailingEmbeddedSign, u"-", u"+", true, u"122"},
      {u"A23", DataCnv::eLeadingEmbeddedSign, u"-", u"+", true,
       u"\u000123"},  // left for the caller
      {u"-12", DataCnv::eNoSign, u"-", u"+", false, u"-12"},
      {u"CR100", DataCnv::eLeadingSeparateSign, u"CR", u"", true, u"100"},
      {u"100", DataCnv::eLeadingSeparateSign, u"CR", u"", false, u"100"},
      {u"+100", DataCnv::eLeadingSeparateSign, u"-", u"+", false, u"100"},
      {u"100", DataCnv::eLeadingSeparateSign, u"", u"+", true, u"100"},  // empty minus: negative
      {u"12-+", DataCnv::eTrailingSeparateSign, u"-", u"+", false, u"12-"},
      {u"12+-", DataCnv::eTrailingSeparateSign, u"-", u"+", true, u"12"},
      {u"12DB", DataCnv::eTrailingSeparateSign, u"DB", u"CR", true, u"12"},
      {u"12", DataCnv::eTrailingSeparateSign, u"", u"", true, u"12"},
  };
  DataCnv cnv;
  for (const Case& c : cases) {
    SCOPED_TRACE(ZanStringBase(c.text).toUtf8());
    ZanStringBase digits(c.text);
    EXPECT_EQ(Access::CheckSign(cnv, digits, c.sign, c.minus, c.plus), c.negative);
    EXPECT_EQ(digits, ZanStringBase(c.digits));
  }
  ZanStringBase digits(u"12");
  expectFailure<ZanConversionException>(
      [&] { Access::CheckSign(cnv, digits, static_cast<DataCnv::ESign>(7), u"-", u"+"); },
      "CP_INTERNAL_ERROR", 0xC000157E, "CPI Internal Error", "datacnv", "DataCnv::CheckSign",
      {"Invalid sign type: ", "7"});
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
  struct Case {
    DataCnv::ESign sign;
    const char16_t* minus;
    bool noStandardMinus;
    const char16_t* text;
    const char16_t* expected;
  };
  const Case cases[] = {
      {DataCnv::eTrailingSeparateSign, u"DB", false, u"-12", u"12DB"},
      {DataCnv::eLeadingSeparateSign, u"(", false, u"-12", u"(12"},
      {DataCnv::eLeadingSeparateSign, u"CR", true, u"12", u"CR12"},
      {DataCnv::eLeadingEmbeddedSign, u"DB", false, u"-12", u"-12"},
      {DataCnv::eTrailingSeparateSign, u"", false, u"-12", u"-12"},
  };
  DataCnv cnv;
  for (const Case& c : cases) {
    SCOPED_TRACE(ZanStringBase(c.expected).toUtf8());
    ZanStringBase text(c.text);
    Access::SubstituteMinusSign(cnv, text, c.sign, c.minus, c.noStandardMinus);
    EXPECT_EQ(text, ZanStringBase(c.expected));
  }
}

}  // namespace
