// Doubles and decimals as plain text, binary as hexadecimal text.

#include <bsutils/dataconv.h>
#include <gtest/gtest.h>
#include <zan/zaninsert.h>

#include <bit>
#include <cfloat>
#include <cmath>
#include <cstdint>
#include <functional>
#include <random>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include "support/datacnv_test_access.h"
#include "support/expect_failure.h"

namespace {

std::string text(DataCnv& cnv, double value, bool exponential) {
  ZanStringBase out(u"old");
  cnv.doubleToUString(value, out, exponential);
  return out.toUtf8();
}

TEST(DataCnvNumText, WritesShortestPlainAndScientificText) {
  // Expected texts by hand: the shortest digits that identify each double.
  const std::tuple<double, const char*, const char*> cases[] = {
      {-2.5, "-2.5", "-2.5e+00"},
      {100, "100", "1e+02"},
      {-0.0, "0", "0e+00"},
      {1e-7, "0.0000001", "1e-07"},
      {1e21, "1000000000000000000000", "1e+21"},
      {1.0 / 3, "0.3333333333333333", "3.333333333333333e-01"},
  };
  DataCnv cnv;
  for (const auto& [value, plain, scientific] : cases) {
    SCOPED_TRACE(scientific);
    EXPECT_EQ(text(cnv, value, false), plain);
    EXPECT_NO_THROW(DataCnvTestAccess::validateDecimal(cnv, ZanStringBase::fromUtf8(plain)));
    EXPECT_EQ(text(cnv, value, true), scientific);
  }
  // The longest texts: 309 integer digits, and 323 zeros before the smallest subnormal's digit.
  EXPECT_EQ(text(cnv, DBL_MAX, false).size(), 309u);
  EXPECT_EQ(text(cnv, DBL_MAX, true), "1.7976931348623157e+308");
  EXPECT_EQ(text(cnv, DBL_TRUE_MIN, false), "0." + std::string(323, '0') + "5");
  EXPECT_EQ(text(cnv, DBL_TRUE_MIN, true), "5e-324");
  // A large double that is not a whole power of ten keeps its short digits, not its binary noise.
  EXPECT_EQ(text(cnv, 1.5e300, false), "15" + std::string(299, '0'));
}

TEST(DataCnvNumText, NonFiniteDoublesHaveNoText) {
  DataCnv cnv;
  for (double value : {NAN, INFINITY, -INFINITY}) {
    for (bool exponential : {false, true}) {
      SCOPED_TRACE(exponential);
      ZanStringBase out(u"old");
      expectConversionFailure([&] { cnv.doubleToUString(value, out, exponential); }, kInvalid,
                              "DataCnv::doubleToUString", {"double", zanInsertText(value)});
      EXPECT_EQ(out, ZanStringBase(u"old"));
    }
  }
}

TEST(DataCnvNumText, ReadsCorrectlyRoundedDoubles) {
  // Values by hand; the subnormal boundaries from the binary64 definition: half the smallest
  // subnormal (2.4703282292062327e-324 and below) rounds to zero, just above it to the subnormal.
  // Compared bit for bit, so the sign of a zero counts.
  const std::pair<const char*, double> cases[] = {
      {"+2", 2},
      {"-.5", -0.5},
      {"5.", 5},
      {"1E+2", 100},
      {"1e-2", 0.01},
      {"000123", 123},
      {"-0", -0.0},
      {"1.7976931348623157e308", DBL_MAX},
      {"0.0001e312", 1e308},
      {"2.4703282292062328e-324", DBL_TRUE_MIN},
      {"2.4703282292062327e-324", 0.0},
      {"-1e-400", -0.0},
      {"100000e-330", 0.0},
      {"0.00001e-320", 0.0},
      {"0e99999999999999999999", 0.0},
  };
  DataCnv cnv;
  for (const auto& [text, expected] : cases) {
    SCOPED_TRACE(text);
    const double value = cnv.PWFStringTodouble(ZanStringBase::fromUtf8(text));
    EXPECT_EQ(std::bit_cast<std::uint64_t>(value), std::bit_cast<std::uint64_t>(expected)) << value;
  }
}

TEST(DataCnvNumText, RefusesTextThatIsNotANumberOrBeyondTheRange) {
  const std::pair<const char*, Code> cases[] = {
      {"", kInvalid},        {"+", kInvalid},          {".", kInvalid},
      {"e5", kInvalid},      {"1e", kInvalid},         {"1e+", kInvalid},
      {"1.2.3", kInvalid},   {"1e5.5", kInvalid},      {"+-1", kInvalid},
      {" 1", kInvalid},      {"1 ", kInvalid},         {"inf", kInvalid},
      {"0x10", kInvalid},    {"\xD9\xA1", kInvalid},  // ARABIC-INDIC DIGIT ONE
      {"-1.8e308", kBounds}, {"0.00001e400", kBounds}, {"1e99999999999999999999", kBounds},
  };
  DataCnv cnv;
  for (const auto& [text, code] : cases) {
    SCOPED_TRACE(text);
    expectConversionFailure([&] { cnv.PWFStringTodouble(ZanStringBase::fromUtf8(text)); }, code,
                            "DataCnv::PWFStringTodouble", {"double", text});
  }
}

TEST(DataCnvNumText, EveryFiniteDoubleReadsBackBitForBit) {
  std::vector<double> values = {DBL_TRUE_MIN, DBL_MIN, DBL_MAX, -DBL_MAX, -0.0, 0.1, 1.0 / 3};
  std::mt19937_64 random(20240611);  // fixed, so that a failure can be replayed
  while (values.size() < 20000) {
    const double value = std::bit_cast<double>(random());
    if (std::isfinite(value)) values.push_back(value);
  }
  DataCnv cnv;
  for (double value : values) {
    const double expected = value == 0.0 ? 0.0 : value;  // a decimal zero has no sign
    for (bool exponential : {false, true}) {
      ZanStringBase out;
      cnv.doubleToUString(value, out, exponential);
      const double back = cnv.PWFStringTodouble(out);
      ASSERT_EQ(std::bit_cast<std::uint64_t>(back), std::bit_cast<std::uint64_t>(expected))
          << out.toUtf8();
    }
  }
}

TEST(DataCnvNumText, DecimalsHaveOneNormalForm) {
  // Expected texts by hand: the value's digits without non-significant zeros.
  const std::pair<const char16_t*, const char16_t*> cases[] = {
      {u"-007.50", u"-7.5"}, {u"-0", u"0"},      {u"-0.000", u"0"},    {u"-.50", u"-0.5"},
      {u"+12", u"12"},       {u"100", u"100"},   {u"5.", u"5"},        {u"", u"0"},
      {u"-", u"0"},          {u"-10.0", u"-10"}, {u"1,000", u"1,000"},
  };
  DataCnv cnv;
  for (const auto& [decimal, normal] : cases) {
    SCOPED_TRACE(ZanStringBase(decimal).toUtf8());
    ZanStringBase out(u"old");
    cnv.StrFromDec(decimal, out);
    EXPECT_EQ(out, ZanStringBase(normal));
    ZanStringBase inPlace(decimal);
    cnv.StrFromDec(inPlace, inPlace);
    EXPECT_EQ(inPlace, ZanStringBase(normal));
  }
}

std::vector<unsigned char> bytesOf(const PWFData& binary) {
  EXPECT_EQ(binary.getDataLogicalType(), eBinary);
  EXPECT_FALSE(binary.isNull());
  std::int32_t length = 0;
  const unsigned char* bytes = binary.getBinaryValue(length);
  return std::vector<unsigned char>(bytes, bytes + length);
}

TEST(DataCnvBinText, EveryByteRoundTripsThroughUpperCaseHex) {
  std::vector<unsigned char> all(256);
  for (int i = 0; i < 256; ++i) all[i] = static_cast<unsigned char>(i);
  DataCnv cnv;
  const PWFData hex = cnv.StrFromBin(all.data(), 256);
  const ZanStringBase& text = hex.getPWFStringValue();
  EXPECT_EQ(text.substring(0, 8), ZanStringBase(u"00010203"));
  EXPECT_EQ(text.substring(2 * 0xA9, 2), ZanStringBase(u"A9"));
  EXPECT_EQ(text.substring(2 * 0xFF, 2), ZanStringBase(u"FF"));
  EXPECT_EQ(bytesOf(cnv.StrToBin(text.data(), text.length())), all);
}

TEST(DataCnvBinText, ReadsEitherCaseAndEmptyText) {
  DataCnv cnv;
  EXPECT_EQ(bytesOf(cnv.StrToBin(u"0aFf", 4)), (std::vector<unsigned char>{0x0A, 0xFF}));
  EXPECT_EQ(bytesOf(cnv.StrToBin(u"", 0)), std::vector<unsigned char>{});
  EXPECT_EQ(bytesOf(cnv.StrToBin(nullptr, 0)), std::vector<unsigned char>{});
  const unsigned char byte = 1;
  for (const PWFData& empty : {cnv.StrFromBin(nullptr, 4), cnv.StrFromBin(&byte, 0)}) {
    EXPECT_FALSE(empty.isNull());
    EXPECT_EQ(empty.getStringLength(), 0);
  }
}

TEST(DataCnvBinText, RefusesBadTextAndArguments) {
  struct Case {
    const char16_t* text;
    std::int32_t length;
    Code code;
    std::vector<std::string> inserts;
  };
  const Case cases[] = {
      {u"ABC", 3, kInvalid, {"binary", "ABC"}},
      {u"0G", 2, kInvalid, {"binary", "0G"}},
      {u"\uFF10\uFF10", 2, kInvalid, {"binary", "\xEF\xBC\x90\xEF\xBC\x90"}},  // fullwidth zeros
      {nullptr, 2, kInternal, {"Null input pointer"}},
      {u"00", -1, kInternal, {"Invalid input length: ", "-1"}},
  };
  DataCnv cnv;
  for (const Case& c : cases) {
    SCOPED_TRACE(c.inserts.back());
    expectConversionFailure([&] { cnv.StrToBin(c.text, c.length); }, c.code, "DataCnv::StrToBin",
                            c.inserts);
  }
  const unsigned char byte = 0;
  expectConversionFailure([&] { cnv.StrFromBin(&byte, -1); }, kInternal, "DataCnv::StrFromBin",
                          {"Invalid input length: ", "-1"});
}

}  // namespace
