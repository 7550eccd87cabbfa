// Decimal text: validity checks and the moves of the decimal point. Expected texts by hand: moving
// the point by `scale` divides by ten to that power.

#include <bsutils/dataconv.h>
#include <gtest/gtest.h>

#include "support/datacnv_test_access.h"
#include "support/expect_failure.h"

namespace {

using Access = DataCnvTestAccess;

struct EditCase {
  const char16_t* text;
  const char16_t* expected;
};

void expectEdits(const EditCase* begin, const EditCase* end,
                 void (*edit)(DataCnv&, ZanStringBase&)) {
  DataCnv cnv;
  for (const EditCase* c = begin; c != end; ++c) {
    SCOPED_TRACE(ZanStringBase(c->text).toUtf8());
    ZanStringBase text(c->text);
    edit(cnv, text);
    EXPECT_EQ(text.toUtf8(), ZanStringBase(c->expected).toUtf8());
  }
}

TEST(DataCnvDecimalText, IsDecimalValid) {
  struct Case {
    const char16_t* text;
    bool requirePoint;
    bool valid;
  };
  const Case cases[] = {
      {u"", true, false},        {u"", false, true},       {u"-1", false, false},
      {u"1e-5", false, true},    {u"1.2.3", false, false}, {u"12", true, false},
      {u"12.5", true, true},     {u"1e2.5", true, true},   {u"12e", false, true},
      {u"1e5e6", false, false},  {u"1+5", false, false},   {u"1,5", false, false},
      {u"\u0661.5", true, true},  // any decimal digit
  };
  DataCnv cnv;
  for (const Case& c : cases) {
    SCOPED_TRACE(ZanStringBase(c.text).toUtf8());
    EXPECT_EQ(Access::isDecimalValid(cnv, ZanStringBase(c.text), c.requirePoint), c.valid);
  }
}

TEST(DataCnvDecimalText, ValidateDecimalAcceptsGroupingButNotExponents) {
  DataCnv cnv;
  for (const char16_t* text : {u"-1,234.5", u"", u"+.5", u"7.", u"0"}) {
    EXPECT_NO_THROW(Access::validateDecimal(cnv, ZanStringBase(text)));
  }
  for (const char16_t* text : {u"1-2", u"1.2.3", u"1e5", u"--1", u"1 2", u"\u0661"}) {
    SCOPED_TRACE(ZanStringBase(text).toUtf8());
    expectFailure<ZanConversionException>(
        [&] { Access::validateDecimal(cnv, ZanStringBase(text)); }, "CP_CONV_INPUT_DATA_INVALID",
        0xC0001581, "CPI Converter Input Data Invalid", "datacnv", "DataCnv::validateDecimal",
        {"decimal"});
  }
}

TEST(DataCnvDecimalText, AdjustDecimalForStringMovesThePoint) {
  struct Case {
    const char16_t* text;
    std::int32_t scale;
    const char16_t* expected;
  };
  const Case cases[] = {
      {u"12345", 2, u"123.45"},
      {u"12345", -2, u"1234500"},
      {u"5", 3, u"0.005"},
      {u"1.5", -3, u"1500"},
      {u"123.45", 2, u"1.2345"},
      {u"12", 2, u"0.12"},
      {u"1.25", -2, u"125"},
      {u"1.234", -1, u"12.34"},
      {u"0.5", 2, u"0.005"},
      {u"12.", 1, u"1.2"},
      {u"", 3, u""},
      {u"42", 0, u"42"},
  };
  DataCnv cnv;
  for (const Case& c : cases) {
    SCOPED_TRACE(ZanStringBase(c.text).toUtf8() + " scale " + std::to_string(c.scale));
    ZanStringBase text(c.text);
    Access::adjustDecimalForString(cnv, text, c.scale);
    EXPECT_EQ(text.toUtf8(), ZanStringBase(c.expected).toUtf8());
  }
  ZanStringBase text(u"1");
  EXPECT_THROW(Access::adjustDecimalForString(cnv, text, INT32_MIN), ZanConversionException);
}

TEST(DataCnvDecimalText, RemoveTrailingDecimal) {
  const EditCase cases[] = {{u".5", u"0.5"}, {u"7.", u"7"}, {u"1.5", u"1.5"},
                            {u"12", u"12"},  {u"", u""},    {u".", u"0"}};
  expectEdits(std::begin(cases), std::end(cases), Access::removeTrailingDecimal);
}

TEST(DataCnvDecimalText, TrimFromDecimalTruncates) {
  const EditCase cases[] = {{u"12.99", u"12"}, {u"-0.5", u"-0"}, {u"12", u"12"}, {u".5", u""}};
  expectEdits(std::begin(cases), std::end(cases), Access::TrimFromDecimal);
}

TEST(DataCnvDecimalText, TrimNonSignificantZeros) {
  const EditCase cases[] = {{u"0012.3400", u"12.34"}, {u"100", u"100"}, {u"0.50", u".5"},
                            {u"007.000", u"7"},       {u"000", u""},    {u"0.0", u""}};
  expectEdits(std::begin(cases), std::end(cases), Access::TrimNonSignificantZeros);
}

}  // namespace
