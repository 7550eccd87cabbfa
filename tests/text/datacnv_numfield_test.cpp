// Floats and decimals in text fields: every form and sign convention both ways, the strict checks,
// and round trips.

#include <bsutils/dataconv.h>
#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <cstdint>
#include <random>
#include <string>
#include <tuple>
#include <vector>

#include "support/expect_failure.h"
#include "support/field_conventions.h"

namespace {

using Strings = std::vector<std::string>;

NumericTextFormat format(ENumericForm form, std::int32_t places = 0, char16_t point = u'.',
                         bool strict = false) {
  return NumericTextFormat{point, form, places, strict};
}
NumericTextFormat strict(ENumericForm form, std::int32_t places = 0) {
  return format(form, places, u'.', true);
}

std::int32_t length(const char16_t* text) {
  return static_cast<std::int32_t>(std::char_traits<char16_t>::length(text));
}

// A right-justified field, with the sign, trim and pad of most fields unless given.
struct Field {
  const char16_t* text;
  DataCnv::ETrimType trim = kTrimSpace;
  char16_t pad = u' ';
  DataCnv::ESign sign = kLeading;
  const char16_t* minus = u"-";
};

double readDouble(DataCnv& cnv, const Field& f, const NumericTextFormat& fmt) {
  return cnv.StrToDbl(f.text, length(f.text), f.sign, f.minus, u"+", f.trim, kRight, f.pad, true,
                      fmt);
}

std::string readDecimal(DataCnv& cnv, const Field& f, const NumericTextFormat& fmt) {
  const PWFData value =
      cnv.StrToDec(f.text, length(f.text), f.sign, f.minus, u"+", f.trim, kRight, f.pad, true, fmt);
  EXPECT_EQ(value.getDataLogicalType(), eDecimal);
  return value.getDecimalText().toUtf8();
}

TEST(DataCnvNumField, ReadsFieldsOfEveryFormAndConvention) {
  const NumericTextFormat plain = format(ePlainNumeric);
  // Values by hand; decimals keep the fraction digits as written and lose leading zeros.
  const std::tuple<Field, NumericTextFormat, double, std::string> cases[] = {
      {{u"  -1,25 "}, format(ePlainNumeric, 0, u','), -1.25, "-1.25"},
      {{u"1250"}, format(eVirtualDecimalPoint, 2), 12.5, "12.50"},
      {{u"12.5"}, format(eVirtualDecimalPoint, 2), 12.5, "12.5"},
      {{u"-125e1"}, format(eVirtualDecimalPoint, 2), -12.5, "-12.5"},
      {{u"0012.340", kTrimPad, u'0'}, format(eExplicitDecimalPoint, 3), 12.34, "12.340"},
      {{u"1.5e3"}, plain, 1500, "1500"},
      {{u"-1.50E-2"}, format(eExponentialNumeric), -0.015, "-0.0150"},
      {{u"12.5DB", kTrimSpace, u' ', kTrailing, u"DB"}, plain, -12.5, "-12.5"},
      {{u".5"}, plain, 0.5, "0.5"},
      {{u"5."}, plain, 5, "5"},
      {{u"\u0661\u0662.\u0665"}, plain, 12.5, "12.5"},
      {{u"-"}, plain, 0, "0"},
      {{u"-0.00"}, plain, -0.0, "0.00"},
      {{u"0e999999999999"}, plain, 0, "0"},
      {{u"12345678901234567890.123456789"},
       plain,
       12345678901234567890.123456789,
       "12345678901234567890.123456789"},
      {{u"1e-400"}, plain, 0, "0." + std::string(399, '0') + "1"},  // below every double
  };
  DataCnv cnv;
  for (const auto& [field, fmt, value, decimal] : cases) {
    SCOPED_TRACE(ZanStringBase(field.text).toUtf8());
    EXPECT_EQ(std::bit_cast<std::uint64_t>(readDouble(cnv, field, fmt)),
              std::bit_cast<std::uint64_t>(value));
    EXPECT_EQ(readDecimal(cnv, field, fmt), decimal);
  }
}

TEST(DataCnvNumField, StrictCheckingHoldsTheTextToItsForm) {
  const Code accepted{"", 0, ""};
  const Code zeroLength{"CP_NUMERIC_STRICT_ZERO_LENGTH", 0xC00015AE,
                        "Strict Numeric Checking: Numeric cannot be zero in length."};
  const Code otherPoint{
      "CP_NUMERIC_STRICT_DECIMAL_POINT", 0xC00015AF,
      "Strict Numeric Checking: Numeric can only have the specified decimal point."};
  const Code integerDigit{"CP_NUMERIC_STRICT_INTEGER_DIGIT", 0xC00015B0,
                          "Strict Numeric Checking: Numeric must have an integer part."};
  const Code noPoint{"CP_NUMERIC_STRICT_NO_DECIMAL_POINT", 0xC00015B1,
                     "Strict Numeric Checking: Explicit Decimal Point numeric must have a decimal "
                     "point."};
  const Code endsWithPoint{"CP_NUMERIC_STRICT_ENDS_DECIMAL_POINT", 0xC00015B2,
                           "Strict Numeric Checking: Only Explicit Decimal Point numerics may end "
                           "with a decimal point."};
  const Code nonExponential{"CP_NUMERIC_STRICT_NON_EXPONENTIAL", 0xC00015B3,
                            "Strict Numeric Checking: A non-exponential numeric cannot be given "
                            "in exponential format."};
  const Code exponential{"CP_NUMERIC_STRICT_EXPONENTIAL", 0xC00015B4,
                         "Strict Numeric Checking: An exponential numeric must be given in "
                         "exponential format."};
  const Code places{"CP_NUMERIC_STRICT_INCORRECT_DEC_PLACES", 0xC00015B5,
                    "Strict Numeric Checking: Incorrect number of decimal places given."};
  const Code virtualPoint{
      "CP_NUMERIC_STRICT_VDP_HAS_DECIMAL", 0xC00015B6,
      "Strict Numeric Checking: Numeric with VDP should not have a decimal point."};
  const NumericTextFormat comma = format(ePlainNumeric, 0, u',', true);
  const std::tuple<const char16_t*, NumericTextFormat, Code> cases[] = {
      {u"-", strict(ePlainNumeric), zeroLength},
      {u"1,5", strict(ePlainNumeric), otherPoint},
      {u"1.5", comma, otherPoint},
      {u"1,5", comma, accepted},
      {u".5", strict(ePlainNumeric), integerDigit},
      {u"12.5", strict(eVirtualDecimalPoint, 1), virtualPoint},
      {u"125", strict(eVirtualDecimalPoint, 1), accepted},
      {u"125", strict(eExplicitDecimalPoint, 0), noPoint},
      {u"125.", strict(eExplicitDecimalPoint, 0), accepted},
      {u"125.", strict(ePlainNumeric), endsWithPoint},
      {u"1e5", strict(ePlainNumeric), nonExponential},
      {u"1.5", strict(eExponentialNumeric), exponential},
      {u"1.5E-05", strict(eExponentialNumeric), accepted},
      {u"1.5", strict(eExplicitDecimalPoint, 2), places},
      {u"1.50", strict(eExplicitDecimalPoint, 2), accepted},
      // Text that is no number at all is refused as such, strict or not.
      {u"1x5", strict(ePlainNumeric), kInvalid},
      {u"1.2.3", strict(ePlainNumeric), kInvalid},
  };
  DataCnv cnv;
  for (const auto& [text, fmt, code] : cases) {
    const std::string field = ZanStringBase(text).toUtf8();
    SCOPED_TRACE(field);
    if (code.messageNumber == 0) {
      EXPECT_NO_THROW(readDouble(cnv, {text}, fmt));
      EXPECT_NO_THROW(readDecimal(cnv, {text}, fmt));
      continue;
    }
    // Strict failures carry the field; generic ones the kind too.
    const bool generic = code.messageNumber == kInvalid.messageNumber;
    expectConversionFailure([&] { readDouble(cnv, {text}, fmt); }, code, "DataCnv::StrToDbl",
                            generic ? Strings{"double", field} : Strings{field});
    expectConversionFailure([&] { readDecimal(cnv, {text}, fmt); }, code, "DataCnv::StrToDec",
                            generic ? Strings{"decimal", field} : Strings{field});
  }
}

TEST(DataCnvNumField, ReadersRefuseBadArgumentsAndValues) {
  DataCnv cnv;
  const NumericTextFormat plain = format(ePlainNumeric);
  const auto dbl = [&](const char16_t* text, std::int32_t len, DataCnv::ESign sign,
                       const NumericTextFormat& fmt) {
    return [&cnv, text, len, sign, fmt] {
      cnv.StrToDbl(text, len, sign, u"-", u"+", kNoTrim, kRight, u' ', true, fmt);
    };
  };
  const char* fn = "DataCnv::StrToDbl";
  expectConversionFailure(dbl(nullptr, 1, kLeading, plain), kInternal, fn,
                          {"Null input pointer passed into DataCnv::StrToDbl"});
  expectConversionFailure(dbl(u"1", 1, DataCnv::eTrailingEmbeddedSign, plain), kInternal, fn,
                          {"Sign type invalid for context: ", "2"});
  expectConversionFailure(dbl(u"1", 1, kLeading, format(static_cast<ENumericForm>(4))), kInternal,
                          fn, {"Invalid numeric form: ", "4"});
  expectConversionFailure(dbl(u"1", 1, kLeading, format(ePlainNumeric, 999)), kInternal, fn,
                          {"Invalid decimal places: ", "999"});
  expectConversionFailure(dbl(u"1", 1, kLeading, format(ePlainNumeric, 0, u'e')), kInternal, fn,
                          {"Invalid decimal point: ", "e"});
  expectConversionFailure(dbl(u"1", -1, kLeading, plain),
                          {kInvalid.symbol, kInvalid.messageNumber,
                           "Tried to convert a zero length string to a double"},
                          fn, {"double"});
  expectConversionFailure(dbl(u"1e400", 5, kLeading, plain), kBounds, fn, {"double", "1e400"});
  expectConversionFailure(dbl(u"1,5", 3, kLeading, plain), kInvalid, fn, {"double", "1,5"});
  // Decimals are exact, so only a magnitude no wire form comes near is out of bounds.
  expectConversionFailure(
      [&] { cnv.StrToDec(u"1e1001", 6, kLeading, u"-", u"+", kNoTrim, kRight, u' ', true, plain); },
      kBounds, "DataCnv::StrToDec", {"decimal", "1e1001"});
  EXPECT_EQ(readDecimal(cnv, {u"1e1000"}, plain).size(), 1001u);
}

TEST(DataCnvNumField, WritesEveryFormWithSignsAndPadding) {
  struct Case {
    double value;
    const char* decimal;  // the same value as decimal text
    NumericTextFormat fmt;
    const char* expected;
    DataCnv::ESign sign = kLeading;
    std::int32_t capacity = 12;
    bool pad = false;
    char16_t padChar = u' ';
    DataCnv::EJustification justification = kRight;
    const char16_t* minus = u"-";
  };
  const NumericTextFormat plain = format(ePlainNumeric);
  const NumericTextFormat exponential = format(eExponentialNumeric);
  // Expected texts by hand; fixed places round half to even on the shortest digits of a double.
  const Case cases[] = {
      {12.5, "0012.50", plain, "12.5"},
      {-2.5, "-2.5", format(eExplicitDecimalPoint, 2, u','), "-0002,50", kLeading, 8, true, u'0'},
      {-2.5, "-2.5", format(eExplicitDecimalPoint, 2), "   -2.50", kLeading, 8, true},
      {-12.5, "-12.5", plain, "12.5CR  ", kTrailing, 8, true, u' ', kLeft, u"CR"},
      {2.675, "2.675", format(eExplicitDecimalPoint, 2), "2.68"},
      {2.665, "2.665", format(eExplicitDecimalPoint, 2), "2.66"},
      {13.5, "13.5", format(eExplicitDecimalPoint, 0), "14."},
      {-0.001, "-0.001", format(eExplicitDecimalPoint, 2), "0.00", kNoSign},  // no sign to refuse
      {12.5, "12.5", format(eVirtualDecimalPoint, 2), "000001250", kNoSign, 9, true, u'0'},
      {0.05, "0.05", format(eVirtualDecimalPoint, 2), "5"},
      {0.0, "-0.0", format(eVirtualDecimalPoint, 2), "0"},
      {150, "150", exponential, "1.5e+02"},
      {-1e-7, "-0.0000001", exponential, "-1e-07"},
      {9.995, "9.995", format(eExponentialNumeric, 2), "1.00e+01"},
      {0.0, "0", format(eExponentialNumeric, 2), "0.00e+00"},
      {1.5e300, "1.5e300", exponential, "1.5e+300"},
  };
  DataCnv cnv;
  for (const Case& c : cases) {
    SCOPED_TRACE(c.decimal);
    std::vector<char16_t> out(static_cast<std::size_t>(c.capacity), u'#');
    std::int32_t outLength = c.capacity;
    cnv.StrFromDbl(c.value, out.data(), outLength, c.sign, c.minus, u"+", c.pad, c.justification,
                   c.padChar, true, c.fmt);
    EXPECT_EQ(ZanStringBase(out.data(), outLength).toUtf8(), c.expected);
    outLength = c.capacity;
    cnv.StrFromDec(ZanStringBase::fromUtf8(c.decimal), out.data(), outLength, c.sign, c.minus, u"+",
                   c.pad, c.justification, c.padChar, true, c.fmt);
    EXPECT_EQ(ZanStringBase(out.data(), outLength).toUtf8(), c.expected);
  }
}

TEST(DataCnvNumField, WritersRefuseWhatDoesNotFit) {
  DataCnv cnv;
  char16_t out[4] = {u'#', u'#', u'#', u'#'};
  std::int32_t outLength = 4;
  const auto dbl = [&](double value, DataCnv::ESign sign) {
    return [&, value, sign] {
      cnv.StrFromDbl(value, out, outLength, sign, u"-", u"+", false, kRight, u' ', true,
                     format(ePlainNumeric));
    };
  };
  const auto dec = [&](const char* decimal) {
    return [&, decimal] {
      cnv.StrFromDec(ZanStringBase::fromUtf8(decimal), out, outLength, kLeading, u"-", u"+", false,
                     kRight, u' ', true, format(ePlainNumeric));
    };
  };
  expectConversionFailure(dbl(123.45, kLeading), kBounds, "DataCnv::StrFromDbl",
                          {"double", "string (", "6", " characters)"});
  expectConversionFailure(dbl(-1, kNoSign), kBounds, "DataCnv::StrFromDbl",
                          {"double", "string (no sign)"});
  expectConversionFailure(dbl(NAN, kLeading), kInvalid, "DataCnv::doubleToUString",
                          {"double", "nan"});
  expectConversionFailure(dbl(1, DataCnv::eLeadingEmbeddedSign), kInternal, "DataCnv::StrFromDbl",
                          {"Sign type invalid for context: ", "1"});
  expectConversionFailure(dec("1.2.3"), kInvalid, "DataCnv::StrFromDec", {"decimal", "1.2.3"});
  expectConversionFailure(dec("12345"), kBounds, "DataCnv::StrFromDec",
                          {"decimal", "string (", "5", " characters)"});
  // A failed write leaves the caller's buffer and length alone.
  EXPECT_EQ(ZanStringBase(out, 4).toUtf8(), "####");
  EXPECT_EQ(outLength, 4);
  expectConversionFailure(
      [&] {
        cnv.StrFromDbl(1, nullptr, outLength, kLeading, u"-", u"+", false, kRight, u' ', true);
      },
      kInternal, "DataCnv::StrFromDbl", {"Null output buffer pointer"});
}

TEST(DataCnvNumField, WrittenFieldsReadBackToTheirValue) {
  // Random doubles through every exact form, and random decimals through the fixed-places forms at
  // their own places.
  std::mt19937_64 random(20261121);
  DataCnv cnv;
  char16_t out[400];
  for (int i = 0; i < 2000; ++i) {
    double value = std::bit_cast<double>(random());
    if (!std::isfinite(value)) continue;
    for (ENumericForm form : {ePlainNumeric, eExponentialNumeric}) {
      std::int32_t outLength = 400;
      cnv.StrFromDbl(value, out, outLength, kTrailing, u"-", u"+", true, kRight, u'*', true,
                     format(form, 0, u','));
      ASSERT_EQ(cnv.StrToDbl(out, outLength, kTrailing, u"-", u"+", kTrimPad, kRight, u'*', true,
                             format(form, 0, u',', true)),
                value == 0 ? 0.0 : value);
    }
  }
  for (int i = 0; i < 500; ++i) {
    const std::int32_t places = static_cast<std::int32_t>(random() % 6);
    std::string digits = std::to_string(random() % 100000000000ULL);
    digits.insert(digits.size() - std::min<std::size_t>(digits.size(), places), 1, '.');
    const ZanStringBase decimal = ZanStringBase::fromUtf8((random() % 2 ? "-" : "") + digits);
    for (ENumericForm form : {eExplicitDecimalPoint, eVirtualDecimalPoint}) {
      std::int32_t outLength = 40;
      cnv.StrFromDec(decimal, out, outLength, kLeading, u"-", u"+", true, kRight, u' ', true,
                     format(form, places));
      EXPECT_EQ(cnv.StrToDec(out, outLength, kLeading, u"-", u"+", kTrimSpace, kRight, u' ', true,
                             format(form, places, u'.', form == eExplicitDecimalPoint)),
                PWFData(decimal.terminatedData(), eDecimal))
          << decimal.toUtf8();
    }
  }
}

}  // namespace
