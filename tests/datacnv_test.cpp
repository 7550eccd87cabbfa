// The converter object: settings, lazily created members, encoding numbers, byte reversal,
// hexadecimal digits and the bridges to its code page.

#include <bsutils/dataconv.h>
#include <gtest/gtest.h>
#include <unicode/decimfmt.h>

#include <cstring>
#include <string>
#include <vector>

#include "support/datacnv_test_access.h"
#include "support/expect_failure.h"

namespace {

using Bytes = std::vector<unsigned char>;

// Expected values: the encoding digits read one by one (integer 0x00F, packed 0x0F0, float 0xF00).
TEST(DataCnvEncoding, DigitsAreReadIndependently) {
  struct Case {
    std::int32_t encoding;
    EEndian integers;
    EEndian packed;
    EFloatFmt floats;
  };
  const Case cases[] = {
      {273, BigEndian, BigEndian, IEEEFloat},        // 0x111
      {546, LittleEndian, LittleEndian, IEEEFloat},  // 0x222
      {785, BigEndian, BigEndian, HFPFloat},         // 0x311
      {0, LittleEndian, LittleEndian, IEEEFloat},    // every other digit is the default
      {0x120, LittleEndian, LittleEndian, IEEEFloat}, {0x110, LittleEndian, BigEndian, IEEEFloat},
      {0x200, LittleEndian, LittleEndian, IEEEFloat},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.encoding);
    EXPECT_EQ(DataCnv::getEndianFromEncoding(c.encoding), c.integers);
    EXPECT_EQ(DataCnv::getPackedDecimalFromEncoding(c.encoding), c.packed);
    EXPECT_EQ(DataCnv::getFloatFormatFromEncoding(c.encoding), c.floats);
  }
}

TEST(DataCnvEncoding, IsBuiltBackWithTheHfpAsymmetry) {
  EXPECT_EQ(DataCnv::getEncoding(LittleEndian, IEEEFloat), 514);
  EXPECT_EQ(DataCnv::getEncoding(BigEndian, IEEEFloat), 257);
  EXPECT_EQ(DataCnv::getEncoding(LittleEndian, HFPFloat), 770);
  EXPECT_EQ(DataCnv::getEncoding(BigEndian, HFPFloat), 769);
  EXPECT_EQ(DataCnv::getEncoding(static_cast<EEndian>(0), static_cast<EFloatFmt>(0)), 257);
  // With HFP the packed digit is 0, so big-endian integers come back with little-endian packed.
  EXPECT_EQ(DataCnv::getPackedDecimalFromEncoding(DataCnv::getEncoding(BigEndian, HFPFloat)),
            LittleEndian);
}

TEST(DataCnvSwapEnds, ReversesTheBytes) {
  const unsigned char input[] = {0x01, 0x02, 0x03, 0x04};
  unsigned char output[4] = {};
  DataCnv::SwapEnds(output, input, 4);
  EXPECT_EQ(Bytes(output, output + 4), (Bytes{0x04, 0x03, 0x02, 0x01}));
  DataCnv::SwapEnds(output, input, 1);
  EXPECT_EQ(output[0], 0x01);
}

TEST(DataCnvSwapEnds, RefusesBadArgumentsBeforeWriting) {
  const unsigned char input[] = {0x01, 0x02};
  unsigned char output[2] = {0xEE, 0xEE};
  struct Case {
    const char* name;
    unsigned char* output;
    const unsigned char* input;
    std::int32_t length;
    std::vector<std::string> inserts;
  };
  const Case cases[] = {
      {"null input", output, nullptr, 2, {"Null input pointer"}},
      {"null output", nullptr, input, 2, {"Null output buffer pointer"}},
      {"zero length", output, input, 0, {"Invalid input length: ", "0"}},
      {"negative length", output, input, -3, {"Invalid input length: ", "-3"}},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    expectFailure<ZanConversionException>([&] { DataCnv::SwapEnds(c.output, c.input, c.length); },
                                          "CP_INTERNAL_ERROR", 0xC000157E, "CPI Internal Error",
                                          "datacnv", "DataCnv::SwapEnds", c.inserts);
    EXPECT_EQ(Bytes(output, output + 2), (Bytes{0xEE, 0xEE}));
  }
}

TEST(DataCnvHex, DigitValuesAndTheTwoConventionsForNonDigits) {
  DataCnv cnv;
  const std::string digits = "0123456789abcdefABCDEF";
  for (int byte = 0; byte < 256; ++byte) {
    SCOPED_TRACE(byte);
    const auto pos = byte == 0 ? std::string::npos : digits.find(static_cast<char>(byte));
    const std::int32_t expected =
        pos == std::string::npos ? -1 : static_cast<std::int32_t>(pos < 16 ? pos : pos - 6);
    EXPECT_EQ(DataCnvTestAccess::ChToHex(cnv, static_cast<char>(byte)),
              expected < 0 ? 0 : expected);
    EXPECT_EQ(DataCnvTestAccess::PWFChToHex(cnv, static_cast<char16_t>(byte)), expected);
  }
  // A unit whose low byte is a digit is still no digit.
  EXPECT_EQ(DataCnvTestAccess::PWFChToHex(cnv, u'\u0130'), -1);
  EXPECT_EQ(DataCnvTestAccess::PWFChToHex(cnv, u'\uFF10'), -1);  // fullwidth zero
}

TEST(DataCnvCodePage, EbcdicIsToldByItsZeroDigit) {
  struct Case {
    std::int32_t ccsid;
    bool ebcdic;
  };
  const Case cases[] = {{37, true},   {500, true},   {1047, true},  {273, true},   {930, true},
                        {819, false}, {1208, false}, {1200, false}, {13488, false}};
  for (const Case& c : cases) {
    SCOPED_TRACE(c.ccsid);
    DataCnv cnv(c.ccsid, BigEndian);
    EXPECT_EQ(cnv.IsCcsidEBCDIC(), c.ebcdic);
  }
  DataCnv defaults;
  EXPECT_FALSE(defaults.IsCcsidEBCDIC());
}

TEST(DataCnvCodePage, DefaultObjectIsUtf16LittleEndian) {
  DataCnv cnv;
  const unsigned char bytes[] = {0x41, 0x00, 0xAC, 0x20};
  ZanStringBase text(u"replaced");
  EXPECT_EQ(cnv.toUnicodeString(text, bytes, 4), U_ZERO_ERROR);
  EXPECT_EQ(text, ZanStringBase(u"A\u20AC"));

  unsigned char out[4];
  std::int32_t size = 4;
  EXPECT_EQ(cnv.fromUnicodeString(ZanStringBase(u"\u20ACA"), out, size), U_ZERO_ERROR);
  EXPECT_EQ(size, 4);
  EXPECT_EQ(Bytes(out, out + 4), (Bytes{0xAC, 0x20, 0x41, 0x00}));

  // The target is filled to the last byte, half a character included.
  size = 3;
  EXPECT_EQ(cnv.fromUnicodeString(ZanStringBase(u"\u20ACA"), out, size), U_BUFFER_OVERFLOW_ERROR);
  EXPECT_EQ(size, 3);
  EXPECT_EQ(Bytes(out, out + 3), (Bytes{0xAC, 0x20, 0x41}));
}

TEST(DataCnvCodePage, SizeBelowOneCharacterIsRefusedButZeroIsEmpty) {
  DataCnv cnv(1200, BigEndian);
  const unsigned char bytes[] = {0x00};
  ZanStringBase text(u"x");
  expectFailure<ZanConversionException>([&] { cnv.toUnicodeString(text, bytes, 1); },
                                        "CP_INTERNAL_ERROR", 0xC000157E, "CPI Internal Error",
                                        "datacnv", "DataCnv::toUnicodeString",
                                        {"size < MinBytesPerChar for codepage: ", "1200"});

  DataCnv ebcdic(37, BigEndian);
  EXPECT_EQ(ebcdic.toUnicodeString(text, bytes, 0), U_ZERO_ERROR);
  EXPECT_TRUE(text.isEmpty());
}

TEST(DataCnvCodePage, AnUnknownCodePageFailsAtEveryUse) {
  DataCnv cnv(99999, BigEndian);
  for (int attempt = 0; attempt < 2; ++attempt) {
    EXPECT_THROW(cnv.getConverter(), ZanRecoverableException);
  }
  EXPECT_THROW(cnv.IsCcsidEBCDIC(), ZanRecoverableException);
}

TEST(DataCnvObject, MembersAreCreatedOnceOnFirstUse) {
  DataCnv cnv(37, BigEndian);
  CPUnicodeConverter* converter = cnv.getConverter();
  EXPECT_EQ(cnv.getConverter(), converter);

  CPUnicodeConverter* local = DataCnvTestAccess::getLocalConverter(cnv);
  EXPECT_EQ(DataCnvTestAccess::getLocalConverter(cnv), local);
  EXPECT_EQ(local->getType(), UCNV_UTF8);

  icu::DecimalFormat* format = DataCnvTestAccess::getDecimalFormatter(cnv);
  ASSERT_NE(format, nullptr);
  EXPECT_EQ(DataCnvTestAccess::getDecimalFormatter(cnv), format);
  // The empty pattern leaves no grouping.
  icu::UnicodeString formatted;
  format->format(1234567.0, formatted);
  EXPECT_EQ(ZanStringBase(formatted), ZanStringBase(u"1234567"));
}

TEST(DataCnvObject, EmptyDateTimeTextsAreStoredAsNull) {
  char16_t empty[] = u"";
  char16_t zone[] = u"GMT";
  DataCnv cnv(1200, LittleEndian, IEEEFloat, 53, zone, empty);
  EXPECT_EQ(DataCnvTestAccess::formatterArg2(cnv), zone);
  EXPECT_EQ(DataCnvTestAccess::formatterArg4(cnv), empty) << "the constructor keeps what it gets";

  cnv.setDateTimeProperties(53, empty, zone, 0, true);
  EXPECT_EQ(DataCnvTestAccess::formatterArg2(cnv), nullptr);
  EXPECT_EQ(DataCnvTestAccess::formatterArg4(cnv), zone);
}

}  // namespace
