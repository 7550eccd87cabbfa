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

template <std::size_t N>
void expectEdits(const char* name, void (*edit)(DataCnv&, ZanStringBase&),
                 const EditCase (&cases)[N]) {
  DataCnv cnv;
  for (const EditCase& c : cases) {
    SCOPED_TRACE(name + (": " + ZanStringBase(c.text).toUtf8()));
    ZanStringBase text(c.text);
    edit(cnv, text);
    EXPECT_EQ(text.toUtf8(), ZanStringBase(c.expected).toUtf8());
  }
}

TEST(DataCnvDecimalText, IsDecimalValid) {
  struct Case {
    const char16_t* text;
    bool requirePoint;
    bool valid;
  };
  // "1e2.5" and "12e" pass as they always have; any decimal digit counts.
  const Case cases[] = {
      {u"", true, false},     {u"", false, true},       {u"-1", false, false},
      {u"1e-5", false, true}, {u"1.2.3", false, false}, {u"12", true, false},
      {u"1e2.5", true, true}, {u"12e", false, true},    {u"1e5e6", false, false},
      {u"1+5", false, false}, {u"1,5", false, false},   {u"\u0661.5", true, true},
  };
  DataCnv cnv;
  for (const Case& c : cases) {
    SCOPED_TRACE(ZanStringBase(c.text).toUtf8());
    EXPECT_EQ(Access::isDecimalValid(cnv, ZanStringBase(c.text), c.requirePoint), c.valid);
  }
}

TEST(DataCnvDecimalText, ValidateDecimalAcceptsGroupingButNotExponents) {
  DataCnv cnv;
  for (const char16_t* text : {u"-1,234.5", u"", u"+.5"}) {
    EXPECT_NO_THROW(Access::validateDecimal(cnv, ZanStringBase(text)));
  }
  for (const char16_t* text : {u"1-2", u"1.2.3", u"1e5", u"\u0661"}) {
    SCOPED_TRACE(ZanStringBase(text).toUtf8());
    expectConversionFailure([&] { Access::validateDecimal(cnv, ZanStringBase(text)); }, kInvalid,
                            "DataCnv::validateDecimal", {"decimal"});
  }
}

TEST(DataCnvDecimalText, AdjustDecimalForStringMovesThePoint) {
  struct Case {
    const char16_t* text;
    std::int32_t scale;
    const char16_t* expected;
  };
  const Case cases[] = {
      {u"12345", 2, u"123.45"},  {u"12345", -2, u"1234500"},
      {u"5", 3, u"0.005"},       {u"12", 2, u"0.12"},
      {u"123.45", 2, u"1.2345"}, {u"0.5", 2, u"0.005"},
      {u"1.5", -3, u"1500"},     {u"1.25", -2, u"125"},
      {u"1.234", -1, u"12.34"},  {u"", 3, u""},
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
  expectConversionFailure([&] { Access::adjustDecimalForString(cnv, text, INT32_MIN); }, kInternal,
                          "DataCnv::adjustDecimalForString", {"Invalid scale: ", "-2147483648"});
}

TEST(DataCnvDecimalText, PointAndZeroEdits) {
  expectEdits("remove trailing", Access::removeTrailingDecimal,
              {{u".5", u"0.5"}, {u"7.", u"7"}, {u"1.5", u"1.5"}, {u"12", u"12"}, {u".", u"0"}});
  expectEdits("truncate", Access::TrimFromDecimal,
              {{u"12.99", u"12"}, {u"12", u"12"}, {u".5", u""}});
  expectEdits("trim zeros", Access::TrimNonSignificantZeros,
              {{u"0012.3400", u"12.34"},
               {u"100", u"100"},
               {u"0.50", u".5"},
               {u"007.000", u"7"},
               {u"000", u""},
               {u"0.0", u""}});
}

}  // namespace
