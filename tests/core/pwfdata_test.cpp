// PWFData: construction rules, getters and their failures, copies and ownership, equality.

#include <bsutils/pwfdata.h>
#include <gtest/gtest.h>
#include <zan/zanexception.h>

#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <string>
#include <string_view>
#include <tuple>
#include <utility>
#include <vector>

#include "support/capturing_sink.h"
#include "support/expect_failure.h"

namespace {

using Strings = std::vector<std::string>;

void expectInvalidOperation(const std::function<void()>& operation, const std::string& function,
                            const std::string& insert) {
  expectFailure<ZanConversionException>(
      operation, "CP_INTERNAL_PWFDATA_INVALID_OPERATION", 0xC0001592,
      "CPI Internal error from invalid operation on PWFData", "pwfdata", function, {insert});
}

unsigned char* mallocCopy(const char* bytes, std::size_t length) {
  auto* block = static_cast<unsigned char*>(std::malloc(length));
  std::memcpy(block, bytes, length);
  return block;
}

TEST(PWFData, ConstructorsGiveTypeNullFlagAndLength) {
  const std::int64_t wide = 5;
  const auto negative = static_cast<ELogicalType>(-3);
  const auto noStorage = static_cast<ELogicalType>(8);
  struct Case {
    PWFData value;
    ELogicalType type;
    bool isNull;
    std::int32_t dataLength;
  };
  // Expected shapes follow the construction table and the data-length rule by type.
  const Case cases[] = {
      {PWFData(), eNothing, false, 0},
      {PWFData(eString), eString, true, 0},
      {PWFData(negative), negative, false, 0},  // a negative type has no content
      {PWFData(nullptr, 0, eNothing, eCopy), eNothing, true, 0},
      {PWFData(nullptr, 8, eFloat, eCopy), eFloat, true, 0},  // a typed null
      {PWFData(u"abc", 3), eString, false, 6},
      {PWFData(u"-12.50", eDecimal), eDecimal, false, 12},  // up to the terminator
      {PWFData(static_cast<const void*>(u"abc"), 5, eString, eCopy), eString, false, 4},  // odd
      {PWFData(std::int32_t{7}), eInteger, false, 4},
      {PWFData(&wide, 8, eInteger, eCopy), eInteger, false, 8},
      {PWFData(2, eBoolean), eBoolean, false, 4},
      {PWFData(1.5), eFloat, false, 8},
      {PWFData(PWFInterval{1, 2, 3, 0}), eInterval, false, 24},
      {PWFData(PWFDateTime{}), eDateTime, false, 44},
      {PWFData("xyz", 3, eBinary, eCopy), eBinary, false, 3},
      {PWFData("xyz", -1, eBinary, eCopy), eBinary, false, 0},  // length -1 stores nothing
      {PWFData("xyz", 3, noStorage, eCopy), noStorage, false, 0},
  };
  for (std::size_t i = 0; i < std::size(cases); ++i) {
    SCOPED_TRACE(i);
    const Case& c = cases[i];
    EXPECT_EQ(c.value.getDataLogicalType(), c.type);
    EXPECT_EQ(c.value.isNull(), c.isNull);
    EXPECT_EQ(c.value.isNothing(), c.type == eNothing);
    EXPECT_EQ(c.value.getDataLength(), c.dataLength);
  }
}

TEST(PWFData, GettersReadBackWhatWasStored) {
  EXPECT_EQ(PWFData(std::int32_t{-1}).getInt64Value(), -1);
  EXPECT_EQ(PWFData(std::int64_t{-2147483648LL}).getInt32Value(), INT32_MIN);
  EXPECT_EQ(PWFData(-0.25).getDoubleValue(), -0.25);
  EXPECT_EQ(PWFData(true).getBooleanValue(), 1);
  EXPECT_EQ(PWFData(7, eBoolean).getBooleanValue(), 7);
  EXPECT_FALSE(PWFData(false).getBoolValue());

  const PWFData text(u"h\u00e9llo", 5);
  std::int32_t length = 0;
  const char16_t* units = text.getStringValue(length);
  EXPECT_EQ(std::u16string(units, static_cast<std::size_t>(length)), u"h\u00e9llo");
  EXPECT_EQ(text.getStringLength(), 5);
  EXPECT_EQ(text.getPWFStringValue().toUtf8(), "h\xC3\xA9llo");
  EXPECT_EQ(text.getDataValue(), static_cast<const void*>(units));

  const PWFData decimal(u"-007.50", eDecimal);
  EXPECT_EQ(std::u16string(decimal.getDecimalValue(),
                           static_cast<std::size_t>(decimal.getDecimalLength())),
            u"-007.50");
  // A copy of a short text may not carry the terminator along; the text form always can.
  const PWFData copied = decimal;
  EXPECT_EQ(std::u16string(copied.getDecimalText().terminatedData()), u"-007.50");

  const PWFDateTime when{1, 2004, 2, 29, 13, 5, 9, 123, 3, 3600000, 0};
  EXPECT_EQ(PWFData(when).getDateTimeValue(), when);
  const PWFInterval read = PWFData(PWFInterval{1, 2, -3, 1}).getIntervalValue();
  EXPECT_EQ(std::tie(read.years, read.months, read.microseconds, read.negative),
            std::make_tuple(1, 2, std::int64_t{-3}, 1));

  const std::int32_t flag = 9;
  EXPECT_EQ(*static_cast<const std::int32_t*>(PWFData(&flag, 4, eBoolean, eCopy).getDataValue()),
            9);
  EXPECT_EQ(*static_cast<const std::int64_t*>(PWFData(std::int64_t{-5}).getDataValue()), -5);
  EXPECT_EQ(PWFData(eFloat).getDataValue(), nullptr);

  // Nulls of the non-numeric types read as their empty content.
  EXPECT_EQ(PWFData(eString).getStringLength(), 0);
  EXPECT_EQ(PWFData(eDecimal).getDecimalLength(), 0);
  EXPECT_EQ(PWFData(eBinary).getBinaryValue(length), nullptr);
  EXPECT_EQ(length, 0);
  EXPECT_EQ(PWFData(eDateTime).getDateTimeValue(), PWFDateTime{});
}

// A getter that refuses, and the kind its insert names.
struct GetterFailure {
  const char* getter;
  const char* kind;
  std::function<void()> call;
};

TEST(PWFData, GettersRefuseOtherTypes) {
  const PWFData number(std::int32_t{5});
  const PWFData text(u"x", 1);
  const GetterFailure cases[] = {
      {"getPWFStringValue", "string", [&] { number.getPWFStringValue(); }},
      {"getStringValue", "string", [&] { number.getStringValue(); }},
      {"getStringLength", "string", [] { PWFData(u"1", eDecimal).getStringLength(); }},
      {"getInt32Value", "integer", [] { PWFData(1.0).getInt32Value(); }},
      {"getInt64Value", "integer", [&] { text.getInt64Value(); }},
      {"getDoubleValue", "float", [&] { number.getDoubleValue(); }},
      {"getBinaryValue", "binary", [&] { text.getBinaryValue(); }},
      {"getBooleanValue", "boolean", [&] { number.getBooleanValue(); }},
      {"getIntervalValue", "interval", [&] { number.getIntervalValue(); }},
      {"getDateTimeValue", "datetime", [&] { number.getDateTimeValue(); }},
      {"getDecimalValue", "decimal", [&] { text.getDecimalValue(); }},
      {"getDecimalLength", "decimal", [&] { text.getDecimalLength(); }},
      {"getDecimalText", "decimal", [&] { text.getDecimalText(); }},
  };
  for (const GetterFailure& c : cases) {
    SCOPED_TRACE(c.getter);
    expectInvalidOperation(c.call, std::string("PWFData::") + c.getter,
                           std::string("Logical type not equal to ") + c.kind);
  }
}

TEST(PWFData, NullNumericsRefuseTheirValueAlsoWhenCompared) {
  // Equality does not look at the null flag again, so two null numerics reach their getters.
  const GetterFailure cases[] = {
      {"getInt32Value", "integer", [] { PWFData(eInteger).getInt32Value(); }},
      {"getInt64Value", "integer", [] { (void)(PWFData(1, true) == PWFData(eInteger)); }},
      {"getDoubleValue", "double", [] { (void)(PWFData(eFloat) == PWFData(eFloat)); }},
      {"getBooleanValue", "boolean", [] { (void)(PWFData(eBoolean) == PWFData(eBoolean)); }},
  };
  for (const GetterFailure& c : cases) {
    SCOPED_TRACE(c.getter);
    expectInvalidOperation(c.call, std::string("PWFData::") + c.getter,
                           std::string("Can't get value for null ") + c.kind + " value");
  }
}

TEST(PWFData, OperationsTraceEntryAndExitAtDebugLevel) {
  const PWFData value(std::int64_t{42});
  CapturingSink sink(4);
  EXPECT_EQ(value.getInt32Value(), 42);
  EXPECT_THROW(PWFData(1.0).getInt32Value(), ZanConversionException);
  ASSERT_EQ(sink.records().size(), 8u);
  const std::string raisingLine = sink.records()[6].inserts.at(1);
  using K = ZanLog::Kind;
  const std::tuple<K, std::string, Strings> expected[] = {
      {K::debugEntry, "PWFData::getInt32Value", {}},
      {K::debugExit, "PWFData::getInt32Value", {"42"}},  // the result
      {K::debugEntry, "PWFData::PWFData", {"1"}},        // the argument
      {K::debugExit, "PWFData::PWFData", {}},
      {K::debugEntry, "PWFData::getInt32Value", {}},
      {K::debugTrace, "PWFData::getInt32Value", {"6"}},  // the type, before the mismatch throws
      {K::trace,
       "PWFData::getInt32Value",
       {"pwfdata", raisingLine, "CP_INTERNAL_PWFDATA_INVALID_OPERATION",
        "CPI Internal error from invalid operation on PWFData",
        "Logical type not equal to integer"}},
      {K::debugExit, "PWFData::getInt32Value", {}},  // left by the exception
  };
  for (std::size_t i = 0; i < std::size(expected); ++i) {
    SCOPED_TRACE(i);
    const ZanLog::Record& record = sink.records()[i];
    EXPECT_EQ(std::tie(record.kind, record.function, record.inserts), expected[i]);
  }
}

TEST(PWFData, TextGettersTraceTheirUnitsAsText) {
  // Three units of six: the storage holds no NUL after them, so the exit records must not look
  // for one.
  const PWFData string(u"abcdef", 3);
  const PWFData decimal(u"-1.50", eDecimal);
  CapturingSink sink(4);
  std::int32_t length = 0;
  EXPECT_EQ(std::u16string_view(string.getStringValue(length), 3), u"abc");
  EXPECT_EQ(std::u16string_view(decimal.getDecimalValue(), 5), u"-1.50");
  const auto exits = sink.ofKind(ZanLog::Kind::debugExit);
  ASSERT_EQ(exits.size(), 2u);
  EXPECT_EQ(exits[0].inserts, Strings{"abc"});
  EXPECT_EQ(exits[1].inserts, Strings{"-1.50"});
}

TEST(PWFData, Int32ReadOfAWideValueOutOfRangeOverflows) {
  for (const std::int64_t value : {std::int64_t{2147483648LL}, std::int64_t{-2147483649LL}}) {
    SCOPED_TRACE(value);
    expectFailure<ZanConversionException>(
        [value] { PWFData(value).getInt32Value(); }, "CP_CONV_INPUT_DATA_TOO_LONG", 0xC0001583,
        "Overflow converting a PWFInt64 to PWFInt32", "pwfdata", "PWFData::getInt32Value",
        {"integer", "4-byte integer", std::to_string(value)});
  }
}

TEST(PWFData, ConstructionFailures) {
  const std::int32_t four = 4;
  for (const ELogicalType noType : {eNothing, static_cast<ELogicalType>(-1)}) {
    expectFailure<ZanParserException>(
        [&] { PWFData(&four, 4, noType, eCopy); }, "CP_INTERNAL_ERROR", 0xC000157E,
        "Invlaid logical type when passing in a value", "pwfdata", "PWFData::init", {});
  }
  const std::tuple<const char*, const char*, std::function<void()>> cases[] = {
      {"init", "Invalid length for an integer", [&] { PWFData(&four, 2, eInteger, eCopy); }},
      {"PWFData", "Can't adopt given a const's pointer",
       [&] { PWFData(static_cast<const void*>(&four), 4, eInteger, eAdopt); }},
      {"PWFData", "Logical type for this contructor must be either Boolean or Integer",
       [] { PWFData(1, eFloat); }},
      {"init", "Invalid length for a string", [] { PWFData(u"abc", -3); }},
      {"init", "Invalid length for a binary", [] { PWFData("abc", -2, eBinary, eCopy); }},
  };
  for (const auto& [function, insert, make] : cases) {
    SCOPED_TRACE(insert);
    expectInvalidOperation(make, std::string("PWFData::") + function, insert);
  }
}

TEST(PWFData, CopiesShareTextAndDeepCopyOwnedBinaries) {
  const ZanStringBase longText = ZanStringBase::fromUtf8(std::string(100, 'q'));
  const PWFData text(longText);
  EXPECT_TRUE(PWFData(text).getPWFStringValue().sharesStorageWith(longText));
  const PWFData adopted(mallocCopy("abcd", 4), 4, eBinary, eAdopt);
  const PWFData adoptedCopy(adopted);
  EXPECT_NE(adoptedCopy.getBinaryValue(), adopted.getBinaryValue());
  EXPECT_EQ(adoptedCopy, adopted);
  unsigned char borrowedBytes[] = {1, 2, 3};
  const PWFData borrowed(borrowedBytes, 3, eBinary, eBorrow);
  EXPECT_EQ(PWFData(borrowed).getBinaryValue(), borrowedBytes);

  // Assignment copies the same way, and survives assigning a value to itself.
  PWFData target("old!", 4, eBinary, eCopy);
  target = adopted;
  EXPECT_NE(target.getBinaryValue(), adopted.getBinaryValue());
  PWFData& alias = target;
  target = alias;
  EXPECT_EQ(target, adopted);
  target = text;
  EXPECT_TRUE(target.getPWFStringValue().sharesStorageWith(longText));
}

TEST(PWFData, MovesAndAdoptionReleaseTheBufferOnce) {
  // Each adopted buffer is released once, by the value that ends up with it, or at once by a type
  // that keeps no buffer: the sanitizer build catches a leak or a second release.
  PWFData adopted(mallocCopy("abcd", 4), 4, eBinary, eAdopt);
  const unsigned char* bytes = adopted.getBinaryValue();
  PWFData moved(std::move(adopted));
  EXPECT_EQ(moved.getBinaryValue(), bytes);
  EXPECT_TRUE(adopted.isNothing());  // NOLINT(bugprone-use-after-move): the documented state
  PWFData target(u"old", 3);
  target = std::move(moved);
  EXPECT_EQ(target.getBinaryValue(), bytes);
  EXPECT_TRUE(moved.isNothing());  // NOLINT(bugprone-use-after-move)

  const PWFData text(mallocCopy("a\0b\0", 4), 4, eString, eAdopt);
  EXPECT_EQ(text.getPWFStringValue().toUtf8(), "ab");
  const PWFData nothingKept(mallocCopy("abcd", 4), -1, eBinary, eAdopt);
  EXPECT_EQ(nothingKept.getBinaryValue(), nullptr);
}

PWFData interval(std::int32_t years, std::int32_t months, std::int64_t micros,
                 std::int32_t negative = 0) {
  return PWFData(PWFInterval{years, months, micros, negative});
}

PWFData binary(const char* bytes, std::int32_t length) {
  return PWFData(bytes, length, eBinary, eCopy);
}

TEST(PWFData, EqualityByType) {
  PWFDateTime later{};
  later.second = 1;
  const auto noStorage = static_cast<ELogicalType>(8);
  struct Case {
    const char* name;
    PWFData left;
    PWFData right;
    bool equal;
  };
  // Expected answers follow the equality rules by type, the interval rule case by case.
  const Case cases[] = {
      {"nothing equals nothing", PWFData(), PWFData(), true},
      {"types differ", PWFData(std::int32_t{1}), PWFData(1.0), false},
      {"null flags differ", PWFData(eString), PWFData(u"", 0), false},
      {"strings unit by unit", PWFData(u"abc", 3), PWFData(u"abc", eString), true},
      {"strings of different case", PWFData(u"abc", 3), PWFData(u"abC", 3), false},
      {"4-byte and 8-byte integers", PWFData(std::int32_t{5}), PWFData(std::int64_t{5}), true},
      {"different integers", PWFData(std::int32_t{5}), PWFData(std::int32_t{6}), false},
      {"floats exactly", PWFData(0.1), PWFData(0.1), true},
      {"floats differ in the last bit", PWFData(0.1), PWFData(std::nextafter(0.1, 1.0)), false},
      {"booleans 1 and 2 differ", PWFData(1, eBoolean), PWFData(2, eBoolean), false},
      {"binaries by bytes", binary("ab", 2), binary("ab", 2), true},
      {"binaries of different length", binary("ab", 2), binary("abc", 3), false},
      {"empty binaries", binary("", 0), binary("x", -1), true},
      {"date-times field by field", PWFData(PWFDateTime{}), PWFData(later), false},
      {"decimals by normal form", PWFData(u"1.50", eDecimal), PWFData(u"01.5", eDecimal), true},
      {"decimal zeros of any sign", PWFData(u"-0.0", eDecimal), PWFData(u"0", eDecimal), true},
      {"decimals of different value", PWFData(u"1.5", eDecimal), PWFData(u"15", eDecimal), false},
      {"decimal signs differ", PWFData(u"-1.5", eDecimal), PWFData(u"1.5", eDecimal), false},
      {"two null decimals", PWFData(eDecimal), PWFData(eDecimal), true},
      {"types without storage", PWFData("a", 1, noStorage, eCopy),
       PWFData("b", 1, noStorage, eCopy), true},
      {"intervals both empty, signs ignored", interval(0, 0, 0, 1), interval(0, 0, 0, 0), true},
      {"interval signs differ", interval(0, 1, 0, 1), interval(0, 1, 0, 0), false},
      {"interval sign flags are flags", interval(0, 1, 0, 1), interval(0, 1, 0, 2), true},
      {"both microseconds set: months ignored", interval(0, 1, 5), interval(0, 2, 5), true},
      {"both microseconds set and different", interval(0, 1, 5), interval(0, 1, 6), false},
      {"microseconds on one side only: months decide", interval(1, 0, 5), interval(0, 12, 0), true},
      {"one side has no years or months", interval(0, 0, 5), interval(0, 0, 0), false},
      {"total months differ", interval(1, 1, 0), interval(0, 12, 0), false},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    EXPECT_EQ(c.left == c.right, c.equal);
    EXPECT_EQ(c.left != c.right, !c.equal);
    EXPECT_EQ(c.right == c.left, c.equal);
  }
}

}  // namespace

TEST(PWFDataDebugString, NamesNothingNullAndFailuresElseGivesTheStandardText) {
  const std::pair<PWFData, const char*> cases[] = {
      {PWFData(), "NOTHING"},
      {PWFData(eFloat), "NULL"},
      {PWFData(u"-007.50", eDecimal), "-7.5"},                              // the standard text
      {PWFData("xyz", 3, static_cast<ELogicalType>(8), eCopy), "INVALID"},  // which has none
  };
  for (const auto& [value, expected] : cases) {
    SCOPED_TRACE(expected);
    const PWFData text = value.getDebugString();
    EXPECT_EQ(text.getDataLogicalType(), eString);
    EXPECT_EQ(ZanStringBase(text.getStringValue(), text.getStringLength()).toUtf8(), expected);
  }
}
