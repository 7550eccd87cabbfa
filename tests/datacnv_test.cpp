// The converter object: settings, lazily created members, encoding numbers, byte reversal,
// hexadecimal digits and the bridges to its code page.

#include <bsutils/dataconv.h>
#include <gtest/gtest.h>
#include <unicode/decimfmt.h>

#include <cstring>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include "support/datacnv_test_access.h"
#include "support/expect_failure.h"

namespace {

using Bytes = std::vector<unsigned char>;

// Expected values: the encoding digits read one by one (integer 0x00F, packed 0x0F0, float 0xF00).
TEST(DataCnvEncoding, DigitsAreReadIndependently) {
  // Every digit but 1 (3 for floats) stands for the default.
  const std::tuple<std::int32_t, EEndian, EEndian, EFloatFmt> cases[] = {
      {0x111, BigEndian, BigEndian, IEEEFloat},    {0x222, LittleEndian, LittleEndian, IEEEFloat},
      {0x311, BigEndian, BigEndian, HFPFloat},     {0, LittleEndian, LittleEndian, IEEEFloat},
      {0x110, LittleEndian, BigEndian, IEEEFloat},
  };
  for (const auto& [encoding, integers, packed, floats] : cases) {
    SCOPED_TRACE(encoding);
    EXPECT_EQ(DataCnv::getEndianFromEncoding(encoding), integers);
    EXPECT_EQ(DataCnv::getPackedDecimalFromEncoding(encoding), packed);
    EXPECT_EQ(DataCnv::getFloatFormatFromEncoding(encoding), floats);
  }
}

TEST(DataCnvEncoding, IsBuiltBackWithTheHfpAsymmetry) {
  EXPECT_EQ(DataCnv::getEncoding(LittleEndian, IEEEFloat), 514);
  EXPECT_EQ(DataCnv::getEncoding(LittleEndian, HFPFloat), 770);
  EXPECT_EQ(DataCnv::getEncoding(BigEndian, HFPFloat), 769);
  EXPECT_EQ(DataCnv::getEncoding(static_cast<EEndian>(0), static_cast<EFloatFmt>(0)), 257);
  // With HFP the packed digit is 0, so big-endian integers come back with little-endian packed.
  EXPECT_EQ(DataCnv::getPackedDecimalFromEncoding(DataCnv::getEncoding(BigEndian, HFPFloat)),
            LittleEndian);
}

TEST(DataCnvSwapEnds, ReversesTheBytesAndRefusesBadArguments) {
  const unsigned char input[] = {0x01, 0x02, 0x03, 0x04};
  unsigned char output[4] = {};
  DataCnv::SwapEnds(output, input, 4);
  EXPECT_EQ(Bytes(output, output + 4), (Bytes{0x04, 0x03, 0x02, 0x01}));
  DataCnv::SwapEnds(output, input, 1);
  EXPECT_EQ(output[0], 0x01);
  // Refused before a byte is written.
  output[0] = output[1] = 0xEE;
  const std::tuple<unsigned char*, const unsigned char*, std::int32_t, std::vector<std::string>>
      cases[] = {
          {output, nullptr, 2, {"Null input pointer"}},
          {nullptr, input, 2, {"Null output buffer pointer"}},
          {output, input, 0, {"Invalid input length: ", "0"}},
      };
  for (const auto& [out, in, length, inserts] : cases) {
    expectConversionFailure([&] { DataCnv::SwapEnds(out, in, length); }, kInternal,
                            "DataCnv::SwapEnds", inserts);
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
  for (const auto& [ccsid, ebcdic] :
       {std::pair(37, true), std::pair(930, true), std::pair(819, false), std::pair(1200, false)}) {
    DataCnv cnv(ccsid, BigEndian);
    EXPECT_EQ(cnv.IsCcsidEBCDIC(), ebcdic) << ccsid;
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
  expectConversionFailure([&] { cnv.toUnicodeString(text, bytes, 1); }, kInternal,
                          "DataCnv::toUnicodeString",
                          {"size < MinBytesPerChar for codepage: ", "1200"});
  DataCnv ebcdic(37, BigEndian);
  EXPECT_EQ(ebcdic.toUnicodeString(text, bytes, 0), U_ZERO_ERROR);
  EXPECT_TRUE(text.isEmpty());
}

TEST(DataCnvCodePage, AnUnknownCodePageFailsAtEveryUse) {
  DataCnv cnv(99999, BigEndian);
  EXPECT_THROW(cnv.getConverter(), ZanRecoverableException);
  EXPECT_THROW(cnv.getConverter(), ZanRecoverableException);
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
