// Zoned decimal on EBCDIC (37, 500), ASCII-based (819, 1208) and UTF-16 pages. Fields are passed
// in buffers of exactly their size, so that the sanitizer build catches a read past them.

#include <bsutils/dataconv.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <tuple>
#include <vector>

#include "support/datacnv_test_access.h"
#include "support/expect_failure.h"
#include "support/field_conventions.h"

namespace {

using Bytes = std::vector<unsigned char>;
using ESign = DataCnv::ESign;
using EJust = DataCnv::EJustification;

constexpr auto kLE = DataCnv::eLeadingEmbeddedSign;
constexpr auto kTE = DataCnv::eTrailingEmbeddedSign;
const Code kTooLong{"CP_CONV_INPUT_DATA_TOO_LONG", 0xC0001583, "CPI InputData Too Long"};
const Code kBadPad{"CP_CONV_INVALID_PADDING", 0xC0001590,
                   "CPI Converter Invalid Padding Character"};

Bytes ascii(const std::string& text) { return Bytes(text.begin(), text.end()); }
std::int32_t size32(const Bytes& b) { return static_cast<std::int32_t>(b.size()); }

struct Form {
  ESign sign;
  bool custom;
  EJust justification;
  char16_t pad;
  bool padIsUnicode;
  const char16_t* positive;
  const char16_t* negative;
};
// A field's form; the defaults are those of most fields.
Form F(ESign sign = kTE, bool custom = false, EJust j = kRight, char16_t pad = u'0',
       bool padIsUnicode = true, const char16_t* positive = nullptr,
       const char16_t* negative = nullptr) {
  return {sign, custom, j, pad, padIsUnicode, positive, negative};
}
// Tables that hold no character of any field here: the field goes through the code page instead of
// byte by byte, and must come out the same. A form with tables of its own keeps them.
Form inert(Form f) {
  if (f.positive != nullptr) return f;
  f.positive = u"\u2460\u2461\u2462\u2463\u2464\u2465\u2466\u2467\u2468\u2469";
  f.negative = u"\u246A\u246B\u246C\u246D\u246E\u246F\u2470\u2471\u2472\u2473";
  return f;
}
// A form as the trailing arguments every zoned conversion takes.
#define FORM(f) \
  (f).sign, (f).justification, (f).pad, (f).padIsUnicode, (f).custom, (f).positive, (f).negative

std::int64_t readInt(DataCnv& cnv, const Bytes& field, const Form& f) {
  return cnv.ExtDecToInt64(field.data(), size32(field), FORM(f));
}
std::string readDecimal(DataCnv& cnv, const Bytes& field, std::int32_t scale, const Form& f) {
  const PWFData value = cnv.ExtDecToDec(field.data(), size32(field), scale, FORM(f));
  EXPECT_EQ(value.getDataLogicalType(), eDecimal);
  return value.getDecimalText().toUtf8();
}
Bytes writeInt(DataCnv& cnv, std::int64_t value, std::int32_t size, const Form& f) {
  Bytes field(static_cast<std::size_t>(size));
  cnv.ExtDecFromInt64(value, field.data(), size, FORM(f));
  EXPECT_EQ(size, size32(field)) << "the size is left as it is";
  return field;
}
Bytes writeDecimal(DataCnv& cnv, const std::string& decimal, std::int32_t size, std::int32_t scale,
                   const Form& f) {
  Bytes field(static_cast<std::size_t>(size));
  cnv.ExtDecFromDec(ZanStringBase::fromUtf8(decimal).terminatedData(), field.data(), size, scale,
                    FORM(f));
  return field;
}

TEST(DataCnvZoned, ConvertsEverySignConventionBothWays) {
  // By hand: EBCDIC digits F0..F9, zone D negative; ASCII 30..39, 7x negative, or the custom
  // letters. Zeros fill before the digits, whatever the side; trailing zeros are digits, not
  // padding; a separate sign stands before any padding; zero has no sign. Sign tables decide for
  // the characters they hold: ASCII-style ones on EBCDIC make A2 ("s") a negative 2, the overpunch
  // alone a positive one; the custom letters as tables on ASCII, with a second form of each digit
  // after the first ten. Each form is also tried with tables that hold none of its characters,
  // which take it through the code page instead of byte by byte.
  const Form asciiStyle = F(kTE, false, kRight, u'0', true, u"0123456789", u"pqrstuvwxy");
  const Form letters = F(kLE, false, kRight, u'0', true, u"{ABCDEFGHI0123456789", u"}JKLMNOPQR");
  using Case = std::tuple<std::int32_t, std::int64_t, Form, Bytes>;
  std::vector<Case> both = {
      {37, -123, F(kTE), {0xF1, 0xF2, 0xD3}},
      {500, 123, F(kTE), {0xF1, 0xF2, 0xF3}},
      {37, -12, F(kTE, true), {0xF1, 0xD2}},  // the custom flag is ignored on EBCDIC
      {37, -12, F(kLE), {0xD0, 0xF0, 0xF1, 0xF2}},
      {37, -5, F(kLeading), {0x60, 0xF0, 0xF5}},
      {500, 5, F(kTrailing), {0xF5, 0x4E}},
      {37, -12, F(kLE, false, kLeft, u' '), {0xD1, 0xF2, 0x40, 0x40}},
      {37, -12, F(kLE, false, kRight, u' '), {0x40, 0x40, 0xD1, 0xF2}},
      {37, -12, F(kTE, false, kLeft, u'*'), {0xF1, 0xD2, 0x5C, 0x5C}},
      {37, -12, F(kTE, false, kRight, 0x40, false), {0x40, 0x40, 0xF1, 0xD2}},  // pad in the page
      {1208, 12, F(kLE, true), ascii("{12")},
      {819, -5, F(kLeading), ascii("-005")},
      {819, -5, F(kLeading, false, kRight, u' '), ascii("-  5")},
      {819, -5, F(kTrailing, false, kLeft, u' '), ascii("5  -")},
      {819, -51, F(kLE, false, kRight, u' '), ascii("  u1")},
      {819, -15, F(kTE, false, kLeft, u'*'), ascii("1u**")},
      {819, 500, F(kNoSign, false, kLeft), ascii("0500")},
      {819, 0, F(kLeading), ascii("+0")},
      {819, INT64_MAX, F(kNoSign), ascii("9223372036854775807")},
      {819, INT64_MIN, F(kTE), ascii("922337203685477580x")},
      {1200, -5, F(kLeading, false, kRight, u' '), {'-', 0, ' ', 0, '5', 0}},  // little-endian
      {1200, -12, F(kTE), {'0', 0, '1', 0, 'r', 0}},
      {37, 0, F(kNoSign), Bytes(70, 0xF0)},
      {37, -123, asciiStyle, {0xF1, 0xF2, 0xA2}},
      {819, -345, letters, ascii("L45")},
  };
  // Forms the writers do not write.
  const std::vector<Case> readOnly = {
      {37, 0, F(kTE), {0xF0, 0xD0}},
      {819, 123, F(kLeading), ascii("123")},
      {819, 0, F(kTE, false, kRight, u' '), ascii("   ")},
      {37, 122, F(), {0xF1, 0xF2, 0xA2}},
      {37, -123, asciiStyle, {0xF1, 0xF2, 0xD3}},  // D3 is left to the overpunch
      {819, 345, letters, ascii("345")},
  };
  // Every signed digit of the ASCII conventions, plain and custom, after a plain one.
  const char* signedDigits[] = {"0123456789", "pqrstuvwxy", "{ABCDEFGHI", "}JKLMNOPQR"};
  for (int n = 0; n < 40; ++n) {
    const std::int64_t value = (n / 10 % 2 != 0 ? -1 : 1) * (10 + n % 10);
    both.push_back({819, value, F(kTE, n >= 20), ascii({'1', signedDigits[n / 10][n % 10]})});
  }
  for (const bool write : {true, false}) {
    for (const auto& [ccsid, value, form, field] : write ? both : readOnly) {
      SCOPED_TRACE(::testing::Message() << ccsid << " " << value);
      DataCnv cnv(ccsid);
      for (const Form& f : {form, inert(form)}) {
        EXPECT_EQ(readInt(cnv, field, f), value);
        if (write) {
          EXPECT_EQ(writeInt(cnv, value, size32(field), f), field);
        }
      }
    }
  }
}

TEST(DataCnvZoned, AppliesTheScale) {
  // Reading moves the point over the unsigned digits; leading zeros go, fraction zeros stay. The
  // double is the decimal's, also where more than 15 digits or a scale beyond 22 rule out the
  // exact shortcut through one division.
  const std::tuple<const char*, std::int32_t, const char*, double> reads[] = {
      {"-0005", 2, "-0.05", -0.05},
      {"+0000", 2, "0.00", 0},
      {"-0000", -2, "0", 0},
      {"-0012", -2, "-1200", -1200},
      {"+9306335996430919", 1, "930633599643091.9", 930633599643091.9},
      {"-12345678901234567", 30, "-0.000000000000012345678901234567", -1.2345678901234567e-14},
      {"+7", 23, "0.00000000000000000000007", 7e-23},
      {"+7", -23, "700000000000000000000000", 7e23},
  };
  DataCnv cnv(819);
  for (const auto& [field, scale, decimal, value] : reads) {
    SCOPED_TRACE(field);
    EXPECT_EQ(readDecimal(cnv, ascii(field), scale, F(kLeading)), decimal);
    EXPECT_EQ(cnv.ExtDecToDbl(ascii(field).data(), size32(ascii(field)), scale, FORM(F(kLeading))),
              value);
  }
  // Writing takes the value times ten to the scale, cut off; a double goes by its shortest text.
  const std::tuple<const char*, std::int32_t, std::int32_t, const char*> writes[] = {
      {"0.05", 2, 2, "05"},     {"-0.05", 2, 2, "0u"}, {"0.29", 2, 2, "29"},
      {"12.345", 4, 2, "1234"}, {"-0.001", 1, 2, "0"}, {"1550", 2, -2, "15"},
      {"0", 1, INT32_MIN, "0"},
  };
  for (auto [decimal, size, scale, expected] : writes) {
    SCOPED_TRACE(decimal);
    EXPECT_EQ(writeDecimal(cnv, decimal, size, scale, F()), ascii(expected));
    Bytes field(static_cast<std::size_t>(size));
    cnv.ExtDecFromDbl(std::stod(decimal), field.data(), size, scale, FORM(F()));
    EXPECT_EQ(field, ascii(expected));
  }
  EXPECT_EQ(writeDecimal(cnv, "  +007.5", 3, 1, F()), ascii("075")) << "white space ignored";
}

TEST(DataCnvZoned, BytePathsAgreeWithTheCodePage) {
  // Every byte in the sign position of a field of digits, every convention: the public reader
  // gives the value or failure that the general reader does.
  const auto outcome = [](const auto& read) {
    try {
      return std::to_string(read());
    } catch (const ZanException& failure) {
      return std::string(failure.what());
    }
  };
  for (const std::int32_t ccsid : {37, 500, 819, 1208}) {
    DataCnv cnv(ccsid);
    for (int n = 0; n < 5 * 2 * 256; ++n) {
      const auto sign = static_cast<ESign>(n / 512);
      const bool custom = n / 256 % 2 != 0;
      Bytes field = cnv.IsCcsidEBCDIC() ? Bytes{0xF1, 0xF2, 0xF3} : ascii("123");
      field[sign == kLE || sign == kLeading ? 0 : 2] = static_cast<unsigned char>(n % 256);
      const auto general = [&] {
        ZanStringBase digits;
        const bool negative =
            DataCnvTestAccess::zonedDigitsFromText(cnv, field.data(), 3, sign, custom, digits);
        return (negative ? -1 : 1) * std::stoll("0" + digits.toUtf8());
      };
      EXPECT_EQ(outcome([&] { return readInt(cnv, field, F(sign, custom)); }), outcome(general))
          << ccsid << " sign " << sign << " custom " << custom << " byte " << n % 256;
    }
  }
}

TEST(DataCnvZoned, BadInputFailsAsDocumented) {
  DataCnv ebcdic(37);
  DataCnv latin(819);
  const std::string common = "DataCnv::ExtDecToStr";
  const Bytes good = {0xF1, 0xD2};
  expectConversionFailure([&] { ebcdic.ExtDecToInt64(nullptr, 2, FORM(F())); }, kInternal,
                          "DataCnv::ExtDecToInt64", {"Null input pointer"});
  expectConversionFailure([&] { ebcdic.ExtDecToInt64(good.data(), 0, FORM(F())); }, kInternal,
                          "DataCnv::ExtDecToInt64", {"Invalid extended decimal size: ", "0"});
  expectConversionFailure([&] { ebcdic.ExtDecToDec(good.data(), -1, 0, FORM(F())); }, kInternal,
                          "DataCnv::ExtDecToDec", {"Invalid external decimal size: ", "-1"});
  // Bad forms; no digit where one must be; with the custom signs, a signed digit not one of them.
  const char* table = "Invalid sign table: ";
  const char* digit = "external decimal";
  const char* custom = "External decimal - Custom Sign EBCDIC";
  const Form shortTable = F(kTE, false, kRight, u'0', true, u"0123", inert(F()).negative);
  const std::tuple<DataCnv&, Bytes, Form, Code, const char*, const char*> faults[] = {
      {ebcdic, good, F(ESign(5)), kInternal, "Invalid sign type: ", "5"},
      {ebcdic, good, F(kTE, false, EJust(2)), kInternal, "Invalid justification: ", "2"},
      {ebcdic, good, shortTable, kInternal, table, "0123"},
      {ebcdic, good, F(kTE, false, kRight, u'0', true, u"0123456789"), kInternal, table, "(null)"},
      {ebcdic, {0xF1, 0xC1, 0xF3}, F(kNoSign), kInvalid, digit, "0xf1c1f3"},
      {ebcdic, {0xF1, 0x42}, F(kTE), kInvalid, digit, "0xf142"},
      {ebcdic, {0xD1, 0xF2}, F(kTE), kInvalid, digit, "0xd1f2"},
      {ebcdic, {0xF1, 0xDA}, F(kTE), kInvalid, digit, "0xf1da"},
      {latin, ascii("1s"), F(kNoSign), kInvalid, digit, "0x3173"},
      {latin, ascii("+-1"), F(kLeading), kInvalid, digit, "0x2b2d31"},
      {latin, ascii("12X"), F(kTE, true), kInvalid, custom, "0x58"},
      {latin, ascii("123"), F(kTE, true), kInvalid, custom, "0x33"},
      {latin, ascii("12s"), F(kTE, true), kInvalid, custom, "0x73"},
  };
  for (const auto& [cnv, field, form, code, what, insert] : faults) {
    expectConversionFailure([&] { readInt(cnv, field, form); }, code, common, {what, insert});
  }
  expectConversionFailure([&] { readInt(latin, ascii("9223372036854775808"), F(kNoSign)); },
                          kBounds, "DataCnv::UStringToInt64",
                          {"string", "9223372036854775808", "8-byte integer"});
  expectFailure<ZanParserException>(
      [&] { readInt(latin, ascii("1"), F(kTE, false, kRight, 0x140, false)); }, kBadPad.symbol,
      kBadPad.messageNumber, kBadPad.traceText, "datacnv", common, {"0x0140", "819"});
  DataCnv utf16(1200);
  expectConversionFailure([&] { readInt(utf16, {0x31}, F(kNoSign)); }, kInternal,
                          "DataCnv::toUnicodeString",
                          {"size < MinBytesPerChar for codepage: ", "1200"});
  // Writing; no failure writes into the caller's buffer.
  const std::string writer = "DataCnv::UStringToExtDec";
  Bytes field(3, 0xEE);
  std::int32_t size = 3;
  std::int32_t zero = 0;
  expectConversionFailure([&] { latin.ExtDecFromInt64(1, nullptr, size, FORM(F(kNoSign))); },
                          kInternal, "DataCnv::ExtDecFromInt64", {"Null output buffer pointer"});
  expectConversionFailure([&] { latin.ExtDecFromDbl(1, field.data(), zero, 0, FORM(F(kNoSign))); },
                          kInternal, "DataCnv::ExtDecFromDbl",
                          {"Invalid output buffer size: ", "0"});
  expectConversionFailure(
      [&] { latin.ExtDecFromDec(nullptr, field.data(), size, 0, FORM(F(kNoSign))); }, kInternal,
      "DataCnv::ExtDecFromDec", {"Null input pointer"});
  const auto write = [&](std::int64_t value, const Form& f) {
    return [&, value, f] { latin.ExtDecFromInt64(value, field.data(), size, FORM(f)); };
  };
  const std::vector<std::string> tooLong = {"external decimal", "string"};
  expectConversionFailure(write(1234, F(kNoSign)), kTooLong, writer, tooLong);
  expectConversionFailure(write(-123, F(kLeading)), kTooLong, writer, tooLong);
  expectConversionFailure(write(-1, F(kNoSign)), kBounds, writer,
                          {"unsigned external decimal", "signed number"});
  expectConversionFailure(write(1, F(ESign(-1))), kInternal, writer, {"Invalid sign type: ", "-1"});
  expectConversionFailure([&] { writeDecimal(latin, "1,5", 3, 0, F()); }, kInvalid, writer,
                          {"decimal", "1,5"});
  expectConversionFailure([&] { writeDecimal(latin, "5", 3, INT32_MAX, F()); }, kTooLong, writer,
                          tooLong);
  expectFailure<ZanParserException>(write(1, F(kTE, false, kRight, u'7')), kBadPad.symbol,
                                    kBadPad.messageNumber, kBadPad.traceText, "datacnv",
                                    "DataCnv::ExtDecPadData", {"0x37", "819"});
  EXPECT_EQ(field, Bytes(3, 0xEE));
  // Two-byte characters cannot fill an odd number of bytes.
  expectFailure<ZanParserException>(
      [&] { writeInt(utf16, 1, 5, F(kNoSign, false, kRight, u' ')); },
      "CP_CONV_INVALID_PADDING_SIZE", 0xC0001591,
      "CPI Converter An attempt to add padding to fixed length field has failed", "datacnv",
      "DataCnv::ExtDecPadData", {" ", "3"});
}

}  // namespace
