// Zoned (external) decimal: every sign convention both ways on EBCDIC (37, 500), ASCII-based (819,
// 1208) and UTF-16 code pages, sign tables, padding, scales, round trips, bad input. Fields are
// passed in buffers of exactly their size, so that the sanitizer build catches a read past them.

#include <bsutils/dataconv.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <random>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "support/datacnv_test_access.h"
#include "support/expect_failure.h"

namespace {

using Bytes = std::vector<unsigned char>;
using ESign = DataCnv::ESign;

constexpr auto kNoSign = DataCnv::eNoSign;
constexpr auto kLeadEmbedded = DataCnv::eLeadingEmbeddedSign;
constexpr auto kTrailEmbedded = DataCnv::eTrailingEmbeddedSign;
constexpr auto kLeadSeparate = DataCnv::eLeadingSeparateSign;
constexpr auto kTrailSeparate = DataCnv::eTrailingSeparateSign;
constexpr auto kLeft = DataCnv::eLeftJustified;
constexpr auto kRight = DataCnv::eRightJustified;
constexpr ESign kAllSigns[] = {kNoSign, kLeadEmbedded, kTrailEmbedded, kLeadSeparate,
                               kTrailSeparate};
const Code kTooLong{"CP_CONV_INPUT_DATA_TOO_LONG", 0xC0001583, "CPI InputData Too Long"};

// Tables that hold no character of any field here: the fields go through the code page instead of
// byte by byte, and must come out the same.
constexpr const char16_t* kInertPositive =
    u"\u2460\u2461\u2462\u2463\u2464\u2465\u2466\u2467\u2468\u2469";
constexpr const char16_t* kInertNegative =
    u"\u246A\u246B\u246C\u246D\u246E\u246F\u2470\u2471\u2472\u2473";

Bytes ascii(std::string_view text) { return Bytes(text.begin(), text.end()); }

// A field's format; the defaults are those of most cases.
struct Form {
  ESign sign = kTrailEmbedded;
  bool custom = false;
  DataCnv::EJustification justification = kRight;
  char16_t pad = u'0';
  bool padIsUnicode = true;
  const char16_t* positive = nullptr;
  const char16_t* negative = nullptr;

  Form with(ESign s, bool c = false) const {
    return {s, c, justification, pad, padIsUnicode, positive, negative};
  }
  Form padded(DataCnv::EJustification j, char16_t p) const {
    return {sign, custom, j, p, padIsUnicode, positive, negative};
  }
  Form inert() const {
    return {sign, custom, justification, pad, padIsUnicode, kInertPositive, kInertNegative};
  }
};
Form signed_(ESign sign, bool custom = false) { return Form{}.with(sign, custom); }

std::int64_t readInt(DataCnv& cnv, const Bytes& field, const Form& f) {
  return cnv.ExtDecToInt64(field.data(), static_cast<std::int32_t>(field.size()), f.sign,
                           f.justification, f.pad, f.padIsUnicode, f.custom, f.positive,
                           f.negative);
}
std::string readDecimal(DataCnv& cnv, const Bytes& field, std::int32_t scale, const Form& f) {
  const PWFData value =
      cnv.ExtDecToDec(field.data(), static_cast<std::int32_t>(field.size()), scale, f.sign,
                      f.justification, f.pad, f.padIsUnicode, f.custom, f.positive, f.negative);
  EXPECT_EQ(value.getDataLogicalType(), eDecimal);
  return ZanStringBase(value.getDecimalValue(), value.getDecimalLength()).toUtf8();
}
double readDouble(DataCnv& cnv, const Bytes& field, std::int32_t scale, const Form& f) {
  return cnv.ExtDecToDbl(field.data(), static_cast<std::int32_t>(field.size()), scale, f.sign,
                         f.justification, f.pad, f.padIsUnicode, f.custom, f.positive, f.negative);
}
Bytes writeInt(DataCnv& cnv, std::int64_t value, std::int32_t size, const Form& f) {
  Bytes field(static_cast<std::size_t>(size));
  cnv.ExtDecFromInt64(value, field.data(), size, f.sign, f.justification, f.pad, f.padIsUnicode,
                      f.custom, f.positive, f.negative);
  EXPECT_EQ(size, static_cast<std::int32_t>(field.size())) << "the size is left as it is";
  return field;
}
Bytes writeDecimal(DataCnv& cnv, const std::string& decimal, std::int32_t size, std::int32_t scale,
                   const Form& f) {
  Bytes field(static_cast<std::size_t>(size));
  cnv.ExtDecFromDec(ZanStringBase::fromUtf8(decimal).terminatedData(), field.data(), size, scale,
                    f.sign, f.justification, f.pad, f.padIsUnicode, f.custom, f.positive,
                    f.negative);
  return field;
}

TEST(DataCnvZoned, ConvertsEverySignConventionBothWays) {
  struct Case {
    const char* name;
    std::int32_t ccsid;
    std::int64_t value;
    Form form;
    Bytes field;
  };
  // Hand-made: EBCDIC digits F0..F9, zone D negative; ASCII 30..39, 7x negative, or the custom
  // letters. Zeros fill before the digits; a separate sign stands before any padding.
  const Case cases[] = {
      {"EBCDIC zone D", 37, -123, signed_(kTrailEmbedded), {0xF1, 0xF2, 0xD3}},
      {"EBCDIC zone F", 500, 123, signed_(kTrailEmbedded), {0xF1, 0xF2, 0xF3}},
      {"EBCDIC flag ignored", 37, -12, signed_(kTrailEmbedded, true), {0xF1, 0xD2}},
      {"EBCDIC first zero signed", 37, -12, signed_(kLeadEmbedded), {0xD0, 0xF0, 0xF1, 0xF2}},
      {"EBCDIC separate", 37, -5, signed_(kLeadSeparate), {0x60, 0xF0, 0xF5}},
      {"EBCDIC separate plus", 500, 5, signed_(kTrailSeparate), {0xF5, 0x4E}},
      {"EBCDIC spaces",
       37,
       -12,
       signed_(kTrailEmbedded).padded(kRight, u' '),
       {0x40, 0x40, 0xF1, 0xD2}},
      {"EBCDIC spaces after",
       37,
       -12,
       signed_(kLeadEmbedded).padded(kLeft, u' '),
       {0xD1, 0xF2, 0x40, 0x40}},
      {"ASCII zone 7", 819, -123, signed_(kTrailEmbedded), ascii("12s")},
      {"ASCII zone 7 leading", 1208, -999, signed_(kLeadEmbedded), ascii("y99")},
      {"ASCII custom", 819, -123, signed_(kTrailEmbedded, true), ascii("12L")},
      {"ASCII custom plus", 819, 123, signed_(kTrailEmbedded, true), ascii("12C")},
      {"ASCII custom minus zero", 819, -120, signed_(kTrailEmbedded, true), ascii("12}")},
      {"ASCII custom plus zero", 1208, 12, signed_(kLeadEmbedded, true), ascii("{12")},
      {"ASCII trailing separate", 1208, -123, signed_(kTrailSeparate), ascii("123-")},
      {"sign before zeros", 819, -5, signed_(kLeadSeparate), ascii("-005")},
      {"sign before spaces", 819, -5, signed_(kLeadSeparate).padded(kRight, u' '), ascii("-  5")},
      {"sign after spaces", 819, -5, signed_(kTrailSeparate).padded(kLeft, u' '), ascii("5  -")},
      {"spaces before signed digit", 819, -51, signed_(kLeadEmbedded).padded(kRight, u' '),
       ascii("  u1")},
      {"stars after signed digit", 819, -15, signed_(kTrailEmbedded).padded(kLeft, u'*'),
       ascii("1u**")},
      {"zeros whatever the side", 819, 5, signed_(kNoSign).padded(kLeft, u'0'), ascii("005")},
      {"zero has no sign", 819, 0, signed_(kLeadSeparate), ascii("+0")},
      {"largest", 819, INT64_MAX, signed_(kNoSign), ascii("9223372036854775807")},
      {"smallest", 819, INT64_MIN, signed_(kTrailEmbedded), ascii("922337203685477580x")},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    DataCnv cnv(c.ccsid);
    const auto size = static_cast<std::int32_t>(c.field.size());
    EXPECT_EQ(writeInt(cnv, c.value, size, c.form), c.field);
    EXPECT_EQ(readInt(cnv, c.field, c.form), c.value);
    EXPECT_EQ(writeInt(cnv, c.value, size, c.form.inert()), c.field);
    EXPECT_EQ(readInt(cnv, c.field, c.form.inert()), c.value);
  }
}

TEST(DataCnvZonedRead, TakesFormsTheWritersDoNotWrite) {
  struct Case {
    const char* name;
    std::int32_t ccsid;
    Bytes field;
    Form form;
    std::int64_t value;
  };
  const Case cases[] = {
      {"EBCDIC zone C", 500, {0xF1, 0xF2, 0xC3}, signed_(kTrailEmbedded), 123},
      {"EBCDIC zone A", 37, {0xF1, 0xA2}, signed_(kTrailEmbedded), 12},
      {"EBCDIC negative zero", 37, {0xF0, 0xD0}, signed_(kTrailEmbedded), 0},
      {"separate sign absent", 819, ascii("123"), signed_(kLeadSeparate), 123},
      {"sign alone", 819, ascii("-"), signed_(kLeadSeparate), 0},
      {"trailing zeros are digits", 819, ascii("0500"), signed_(kNoSign).padded(kLeft, u'0'), 500},
      {"nothing but padding", 819, ascii("   "), signed_(kTrailEmbedded).padded(kRight, u' '), 0},
      {"many zeros", 37, Bytes(70, 0xF0), signed_(kNoSign), 0},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    DataCnv cnv(c.ccsid);
    EXPECT_EQ(readInt(cnv, c.field, c.form), c.value);
    EXPECT_EQ(readInt(cnv, c.field, c.form.inert()), c.value);
  }
  // A pad character given in the code page: the EBCDIC space 40.
  DataCnv ebcdic(37);
  Form codePagePad = signed_(kTrailEmbedded).padded(kRight, 0x40);
  codePagePad.padIsUnicode = false;
  EXPECT_EQ(readInt(ebcdic, {0x40, 0x40, 0xF1, 0xD2}, codePagePad), -12);
}

TEST(DataCnvZonedRead, AppliesTheScaleToTheDigitsBeforeTheSign) {
  struct Case {
    const char* field;
    std::int32_t scale;
    const char* decimal;
    double value;
  };
  // By hand: the point moves over the unsigned digits; leading zeros go, fraction zeros stay. The
  // last three are beyond the exact shortcut to the double.
  const Case cases[] = {
      {"-0005", 2, "-0.05", -0.05},
      {"+1250", 2, "12.50", 12.5},
      {"+0000", 2, "0.00", 0},
      {"-0000", -2, "0", 0},
      {"-0012", -2, "-1200", -1200},
      {"+123", 5, "0.00123", 0.00123},
      {"-12345678901234567", 30, "-0.000000000000012345678901234567", -1.2345678901234567e-14},
      {"+7", 23, "0.00000000000000000000007", 7e-23},
      {"+7", -23, "700000000000000000000000", 7e23},
  };
  DataCnv cnv(1208);
  for (const Case& c : cases) {
    SCOPED_TRACE(std::string(c.field) + " scale " + std::to_string(c.scale));
    EXPECT_EQ(readDecimal(cnv, ascii(c.field), c.scale, signed_(kLeadSeparate)), c.decimal);
    EXPECT_EQ(readDouble(cnv, ascii(c.field), c.scale, signed_(kLeadSeparate)), c.value);
  }
}

TEST(DataCnvZonedWrite, ScalesTruncatesAndDropsLeadingZeros) {
  struct Case {
    const char* decimal;
    std::int32_t size;
    std::int32_t scale;
    const char* expected;
  };
  // By hand: the value times ten to the scale, the fraction cut off; the significant digits of a
  // value always fit ("0.05" into two digits with scale 2). Doubles go by their shortest text.
  const Case cases[] = {
      {"0.05", 2, 2, "05"},  {"-0.05", 2, 2, "0u"}, {"0.29", 2, 2, "29"}, {"12.345", 4, 2, "1234"},
      {"-0.001", 1, 2, "0"}, {"1550", 2, -2, "15"}, {"7.5", 3, 1, "075"}, {"0", 1, INT32_MIN, "0"},
  };
  DataCnv cnv(819);
  for (const Case& c : cases) {
    SCOPED_TRACE(c.decimal);
    EXPECT_EQ(writeDecimal(cnv, c.decimal, c.size, c.scale, Form{}), ascii(c.expected));
    Bytes field(static_cast<std::size_t>(c.size));
    std::int32_t size = c.size;
    cnv.ExtDecFromDbl(std::stod(c.decimal), field.data(), size, c.scale, kTrailEmbedded, kRight,
                      u'0', true, false, nullptr, nullptr);
    EXPECT_EQ(field, ascii(c.expected));
  }
  EXPECT_EQ(writeDecimal(cnv, "  +007.5", 3, 1, Form{}), ascii("075")) << "white space ignored";
  EXPECT_EQ(writeDecimal(cnv, "-5", 70, 0, Form{}), ascii(std::string(69, '0') + "u"));
}

TEST(DataCnvZonedSignTables, TheTablesDecideForTheCharactersTheyHold) {
  // ASCII-style tables on EBCDIC: "s" is A2, which the overpunch alone reads as a positive 2.
  DataCnv ebcdic(37);
  Form f;
  f.positive = u"0123456789";
  f.negative = u"pqrstuvwxy";
  EXPECT_EQ(writeInt(ebcdic, -123, 3, f), (Bytes{0xF1, 0xF2, 0xA2}));
  EXPECT_EQ(readInt(ebcdic, {0xF1, 0xF2, 0xA2}, f), -123);
  EXPECT_EQ(readInt(ebcdic, {0xF1, 0xF2, 0xA2}, Form{}), 122);
  EXPECT_EQ(readInt(ebcdic, {0xF1, 0xF2, 0xD3}, f), -123) << "D3 is left to the overpunch";

  // The custom letters as tables on ASCII without the flag, with a second form of each digit
  // beyond the first ten.
  DataCnv latin(819);
  Form letters = signed_(kLeadEmbedded);
  letters.positive = u"{ABCDEFGHI0123456789";
  letters.negative = u"}JKLMNOPQR";
  EXPECT_EQ(writeInt(latin, -345, 3, letters), ascii("L45"));
  EXPECT_EQ(writeInt(latin, 345, 3, letters), ascii("C45"));
  EXPECT_EQ(readInt(latin, ascii("L45"), letters), -345);
  EXPECT_EQ(readInt(latin, ascii("345"), letters), 345);

  ZanStringBase text(u"12");
  bool negative = true;
  latin.ExtDecAddSign(text, kTrailEmbedded, letters.positive, letters.negative, negative);
  EXPECT_EQ(text.toUtf8(), "1K");
  latin.ExtDecRemoveSign(text, kTrailEmbedded, letters.positive, letters.negative, negative);
  EXPECT_EQ(text.toUtf8(), "12");
  EXPECT_TRUE(negative);
}

// `value` with `places` implied decimal places as decimal text: 12345, 2 -> "123.45"; -2 ->
// "1234500".
std::string decimalText(std::int64_t value, std::int32_t places) {
  std::string digits = std::to_string(value < 0 ? -value : value);
  if (places > 0) {
    const auto needed = static_cast<std::size_t>(places) + 1;
    if (digits.size() < needed) digits.insert(0, needed - digits.size(), '0');
    digits.insert(digits.size() - static_cast<std::size_t>(places), ".");
  } else {
    digits.append(static_cast<std::size_t>(-places), '0');
  }
  return (value < 0 ? "-" : "") + digits;
}

TEST(DataCnvZonedRoundTrip, WrittenFieldsReadBack) {
  // Every convention on EBCDIC, ASCII and UTF-16 of both byte orders, pads of zeros, spaces and
  // "*" on either side, with and without tables: a written field reads back to its value, as an
  // integer and as a decimal with a scale; and the double read is the decimal's double.
  struct Page {
    std::int32_t ccsid;
    EEndian endian;
    std::int32_t width;
  };
  const Page pages[] = {{37, BigEndian, 1},   {500, BigEndian, 1},  {819, BigEndian, 1},
                        {1208, BigEndian, 1}, {1200, BigEndian, 2}, {1200, LittleEndian, 2}};
  std::mt19937_64 random(20240611);
  for (const Page& page : pages) {
    DataCnv cnv(page.ccsid, page.endian);
    for (int i = 0; i < 300; ++i) {
      Form f = signed_(kAllSigns[random() % 5], random() % 2 == 0)
                   .padded(random() % 2 == 0 ? kLeft : kRight, u"0 *"[random() % 3]);
      if (random() % 3 == 0) f = f.inert();
      const auto digits = static_cast<std::int32_t>(1 + random() % 18);
      auto value = static_cast<std::int64_t>(random() % 1000000000000000000ull);
      for (std::int32_t d = digits; d < 18; ++d) value /= 10;
      if (f.sign != kNoSign && random() % 2 == 0) value = -value;
      const std::int32_t size = page.width * (digits + static_cast<std::int32_t>(random() % 4) +
                                              (f.sign >= kLeadSeparate ? 1 : 0));
      const auto places = static_cast<std::int32_t>(random() % 7) - 2;
      const std::string decimal = decimalText(value, places);
      SCOPED_TRACE(::testing::Message() << "ccsid " << page.ccsid << " " << decimal << " sign "
                                        << f.sign << " pad '" << char(f.pad) << "' size " << size);
      EXPECT_EQ(readInt(cnv, writeInt(cnv, value, size, f), f), value);
      const Bytes field = writeDecimal(cnv, decimal, size, places, f);
      const std::string read = readDecimal(cnv, field, places, f);
      ZanStringBase normalRead, normalWritten;
      cnv.StrFromDec(ZanStringBase::fromUtf8(read), normalRead);
      cnv.StrFromDec(ZanStringBase::fromUtf8(decimal), normalWritten);
      EXPECT_EQ(normalRead, normalWritten);
      EXPECT_EQ(readDouble(cnv, field, places, f),
                cnv.PWFStringTodouble(ZanStringBase::fromUtf8(read)));
    }
  }
}

TEST(DataCnvZonedRoundTrip, BytePathsAgreeWithTheCodePage) {
  // Every byte in the sign position of a field otherwise of digits, in every convention: what the
  // public reader makes of it, value or failure, is what the general reader does. The writers are
  // compared on random values.
  std::mt19937_64 random(7);
  const auto outcome = [](const auto& read) {
    try {
      return std::to_string(read());
    } catch (const ZanException& failure) {
      return std::string(failure.what());
    }
  };
  for (const std::int32_t ccsid : {37, 500, 819, 1208}) {
    DataCnv cnv(ccsid);
    const unsigned char zone = cnv.IsCcsidEBCDIC() ? 0xF0 : 0x30;
    for (const ESign sign : kAllSigns) {
      for (const bool custom : {false, true}) {
        for (int byte = 0; byte < 256; ++byte) {
          Bytes field = {static_cast<unsigned char>(zone | 1), static_cast<unsigned char>(zone | 2),
                         static_cast<unsigned char>(zone | 3)};
          field[sign == kLeadEmbedded || sign == kLeadSeparate ? 0 : 2] =
              static_cast<unsigned char>(byte);
          SCOPED_TRACE(::testing::Message() << "ccsid " << ccsid << " sign " << sign << " custom "
                                            << custom << " byte " << byte);
          EXPECT_EQ(outcome([&] { return readInt(cnv, field, signed_(sign, custom)); }),
                    outcome([&] {
                      ZanStringBase digits;
                      const bool negative = DataCnvTestAccess::zonedDigitsFromText(
                          cnv, field.data(), 3, sign, custom, digits);
                      return (negative ? -1 : 1) * std::stoll("0" + digits.toUtf8());
                    }));
        }
      }
    }
    for (int i = 0; i < 200; ++i) {
      const ESign sign = kAllSigns[random() % 5];
      const bool custom = random() % 2 == 0;
      const auto magnitude = static_cast<std::int64_t>(random() % 100000);
      const bool negative = sign != kNoSign && magnitude != 0 && random() % 2 == 0;
      const auto size = static_cast<std::int32_t>(5 + random() % 3 + (sign >= kLeadSeparate));
      Bytes general(static_cast<std::size_t>(size));
      DataCnvTestAccess::zonedFieldFromText(cnv, ZanStringBase::fromUtf8(std::to_string(magnitude)),
                                            negative, size, sign, custom, general.data());
      EXPECT_EQ(writeInt(cnv, negative ? -magnitude : magnitude, size, signed_(sign, custom)),
                general);
    }
  }
}

TEST(DataCnvZonedRead, BadInputFailsAsDocumented) {
  DataCnv ebcdic(37);
  DataCnv latin(819);
  const std::string common = "DataCnv::ExtDecToStr";
  const auto raw = [&](const unsigned char* source, std::int32_t size) {
    return [&ebcdic, source, size] {
      ebcdic.ExtDecToInt64(source, size, kTrailEmbedded, kRight, u'0', true, false, nullptr,
                           nullptr);
    };
  };
  const Bytes good = {0xF1, 0xD2};
  expectConversionFailure(raw(nullptr, 2), kInternal, "DataCnv::ExtDecToInt64",
                          {"Null input pointer"});
  expectConversionFailure(raw(good.data(), 0), kInternal, "DataCnv::ExtDecToInt64",
                          {"Invalid extended decimal size: ", "0"});
  expectConversionFailure(
      [&] {
        ebcdic.ExtDecToDec(good.data(), -1, 0, kTrailEmbedded, kRight, u'0', true, false, nullptr,
                           nullptr);
      },
      kInternal, "DataCnv::ExtDecToDec", {"Invalid external decimal size: ", "-1"});

  Form shortTable = Form{}.inert();
  shortTable.positive = u"0123";
  Form oneTable;
  oneTable.positive = u"0123456789";
  const std::pair<Form, std::vector<std::string>> faults[] = {
      {signed_(static_cast<ESign>(5)), {"Invalid sign type: ", "5"}},
      {Form{}.padded(static_cast<DataCnv::EJustification>(2), u'0'),
       {"Invalid justification: ", "2"}},
      {shortTable, {"Invalid sign table: ", "0123"}},
      {oneTable, {"Invalid sign table: ", "(null)"}},
  };
  for (const auto& [form, inserts] : faults) {
    expectConversionFailure([&] { readInt(ebcdic, good, form); }, kInternal, common, inserts);
  }

  struct Case {
    const char* name;
    DataCnv& cnv;
    Bytes field;
    Form form;
  };
  // Not a digit where one must be: bad zones, bad sign bytes, stray signs, points and padding.
  const Case notDigits[] = {
      {"EBCDIC letter", ebcdic, {0xF1, 0xC1, 0xF3}, signed_(kNoSign)},
      {"EBCDIC zone 4 signed", ebcdic, {0xF1, 0x42}, Form{}},
      {"EBCDIC sign first", ebcdic, {0xD1, 0xF2}, Form{}},
      {"EBCDIC nibble A", ebcdic, {0xF1, 0xDA}, Form{}},
      {"ASCII signed, unsigned", latin, ascii("1s"), signed_(kNoSign)},
      {"ASCII space", latin, ascii("1 2"), signed_(kNoSign)},
      {"ASCII two signs", latin, ascii("+-1"), signed_(kLeadSeparate)},
      {"ASCII point", latin, ascii("1.5"), signed_(kNoSign)},
  };
  for (const Case& c : notDigits) {
    SCOPED_TRACE(c.name);
    std::string dump = "0x";
    for (const unsigned char byte : c.field) {
      dump += "0123456789abcdef"[byte >> 4];
      dump += "0123456789abcdef"[byte & 0x0F];
    }
    expectConversionFailure([&] { readInt(c.cnv, c.field, c.form); }, kInvalid, common,
                            {"external decimal", dump});
  }
  // With the custom signs a signed digit must be one of them; the insert is its byte.
  for (const auto& [field, byte] : {std::pair{"12X", "0x58"}, {"123", "0x33"}, {"12s", "0x73"}}) {
    SCOPED_TRACE(field);
    expectConversionFailure([&] { readInt(latin, ascii(field), signed_(kTrailEmbedded, true)); },
                            kInvalid, common, {"External decimal - Custom Sign EBCDIC", byte});
  }
  expectConversionFailure([&] { readInt(latin, ascii("9223372036854775808"), signed_(kNoSign)); },
                          kBounds, "DataCnv::UStringToInt64",
                          {"string", "9223372036854775808", "8-byte integer"});
  Form widePad = Form{}.padded(kRight, 0x140);
  widePad.padIsUnicode = false;
  expectFailure<ZanParserException>(
      [&] { readInt(latin, ascii("1"), widePad); }, "CP_CONV_INVALID_PADDING", 0xC0001590,
      "CPI Converter Invalid Padding Character", "datacnv", common, {"0x0140", "819"});
  DataCnv utf16(1200);
  expectConversionFailure([&] { readInt(utf16, {0x31}, signed_(kNoSign)); }, kInternal,
                          "DataCnv::toUnicodeString",
                          {"size < MinBytesPerChar for codepage: ", "1200"});
}

TEST(DataCnvZonedWrite, BadInputFailsAndLeavesTheBufferAlone) {
  DataCnv cnv(819);
  const std::string common = "DataCnv::UStringToExtDec";
  Bytes field(3, 0xEE);
  std::int32_t size = 3;
  const auto write = [&](std::int64_t value, const Form& f) {
    return [&cnv, &field, &size, value, f] {
      cnv.ExtDecFromInt64(value, field.data(), size, f.sign, f.justification, f.pad, f.padIsUnicode,
                          f.custom, f.positive, f.negative);
    };
  };
  expectConversionFailure(
      [&] {
        cnv.ExtDecFromInt64(1, nullptr, size, kNoSign, kRight, u'0', true, false, nullptr, nullptr);
      },
      kInternal, "DataCnv::ExtDecFromInt64", {"Null output buffer pointer"});
  expectConversionFailure(
      [&] {
        std::int32_t zero = 0;
        cnv.ExtDecFromDbl(1, field.data(), zero, 0, kNoSign, kRight, u'0', true, false, nullptr,
                          nullptr);
      },
      kInternal, "DataCnv::ExtDecFromDbl", {"Invalid output buffer size: ", "0"});
  expectConversionFailure(
      [&] {
        cnv.ExtDecFromDec(nullptr, field.data(), size, 0, kNoSign, kRight, u'0', true, false,
                          nullptr, nullptr);
      },
      kInternal, "DataCnv::ExtDecFromDec", {"Null input pointer"});
  expectConversionFailure(write(1234, signed_(kNoSign)), kTooLong, common,
                          {"external decimal", "string"});
  expectConversionFailure(write(-123, signed_(kLeadSeparate)), kTooLong, common,
                          {"external decimal", "string"});
  expectConversionFailure(write(-1, signed_(kNoSign)), kBounds, common,
                          {"unsigned external decimal", "signed number"});
  expectConversionFailure(write(1, signed_(static_cast<ESign>(-1))), kInternal, common,
                          {"Invalid sign type: ", "-1"});
  expectConversionFailure([&] { writeDecimal(cnv, "1,5", 3, 0, Form{}); }, kInvalid, common,
                          {"decimal", "1,5"});
  expectConversionFailure([&] { writeDecimal(cnv, "5", 3, INT32_MAX, Form{}); }, kTooLong, common,
                          {"external decimal", "string"});
  expectFailure<ZanParserException>(write(1, Form{}.padded(kRight, u'7')),
                                    "CP_CONV_INVALID_PADDING", 0xC0001590,
                                    "CPI Converter Invalid Padding Character", "datacnv",
                                    "DataCnv::ExtDecPadData", {"0x37", "819"});
  EXPECT_EQ(field, Bytes(3, 0xEE)) << "no failure writes into the caller's buffer";

  // Two-byte characters cannot fill an odd number of bytes.
  DataCnv utf16(1200, BigEndian);
  expectFailure<ZanParserException>(
      [&] { writeInt(utf16, 1, 5, signed_(kNoSign).padded(kRight, u' ')); },
      "CP_CONV_INVALID_PADDING_SIZE", 0xC0001591,
      "CPI Converter An attempt to add padding to fixed length field has failed", "datacnv",
      "DataCnv::ExtDecPadData", {" ", "3"});
}

TEST(DataCnvZonedWrite, TextStepsPadAndTrimInTheCodePage) {
  DataCnv utf16(1200, BigEndian);
  const Form f = signed_(kLeadSeparate).padded(kRight, u' ');
  EXPECT_EQ(writeInt(utf16, -5, 6, f), (Bytes{0, '-', 0, ' ', 0, '5'}));
  EXPECT_EQ(readInt(utf16, {0, '-', 0, ' ', 0, '5'}, f), -5);
  EXPECT_EQ(utf16.GetPadCharLen(u'*'), 2);

  DataCnv ebcdic(37);
  EXPECT_EQ(ebcdic.GetPadCharLen(u'*'), 1);
  ZanStringBase text(u"12");
  ebcdic.ExtDecPadData(text, 5, 2, kLeft, 0x5C, false);  // "*" in the code page
  EXPECT_EQ(text.toUtf8(), "12***");
  ebcdic.ExtDecTrimData(text, kLeft, u'*', true);
  EXPECT_EQ(text.toUtf8(), "12");
  ebcdic.ExtDecPadData(text, 4, 2, kLeft, u'0', true);
  EXPECT_EQ(text.toUtf8(), "0012");
  ebcdic.ExtDecTrimData(text, kRight, u'0', true);
  EXPECT_EQ(text.toUtf8(), "0012") << "zeros are digits, never padding";
}

}  // namespace
