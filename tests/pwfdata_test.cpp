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

struct ShapeCase {
  const char* name;
  std::function<PWFData()> make;
  ELogicalType type;
  bool isNull;
  std::int32_t dataLength;
};

TEST(PWFData, ConstructorsGiveTypeNullFlagAndLength) {
  static const std::int64_t kWide = 5;
  static const PWFInterval kInterval{1, 2, 3, 0};
  // Expected shapes follow the construction table and the data-length rule by type.
  const ShapeCase cases[] = {
      {"default is nothing", [] { return PWFData(); }, eNothing, false, 0},
      {"typed null string", [] { return PWFData(eString); }, eString, true, 0},
      {"typed null integer", [] { return PWFData(eInteger); }, eInteger, true, 0},
      {"negative type has no content", [] { return PWFData(static_cast<ELogicalType>(-3)); },
       static_cast<ELogicalType>(-3), false, 0},
      {"null pointer with no type", [] { return PWFData(nullptr, 0, eNothing, eCopy); }, eNothing,
       true, 0},
      {"null pointer gives a typed null", [] { return PWFData(nullptr, 8, eFloat, eCopy); }, eFloat,
       true, 0},
      {"string of 3 units", [] { return PWFData(u"abc", 3); }, eString, false, 6},
      {"terminated decimal", [] { return PWFData(u"-12.50", eDecimal); }, eDecimal, false, 12},
      {"odd byte length drops the half unit",
       [] { return PWFData(static_cast<const void*>(u"abc"), 5, eString, eCopy); }, eString, false,
       4},
      {"32-bit integer", [] { return PWFData(std::int32_t{7}); }, eInteger, false, 4},
      {"64-bit integer over bytes", [] { return PWFData(&kWide, 8, eInteger, eCopy); }, eInteger,
       false, 8},
      {"boolean from int keeps the value", [] { return PWFData(2, eBoolean); }, eBoolean, false, 4},
      {"float", [] { return PWFData(1.5); }, eFloat, false, 8},
      {"interval", [] { return PWFData(kInterval); }, eInterval, false, 24},
      {"date-time", [] { return PWFData(PWFDateTime{}); }, eDateTime, false, 44},
      {"binary copy", [] { return PWFData("xyz", 3, eBinary, eCopy); }, eBinary, false, 3},
      {"binary of length -1 stores nothing", [] { return PWFData("xyz", -1, eBinary, eCopy); },
       eBinary, false, 0},
      {"type without storage",
       [] { return PWFData("xyz", 3, static_cast<ELogicalType>(8), eCopy); },
       static_cast<ELogicalType>(8), false, 0},
  };
  for (const ShapeCase& c : cases) {
    SCOPED_TRACE(c.name);
    const PWFData value = c.make();
    EXPECT_EQ(value.getDataLogicalType(), c.type);
    EXPECT_EQ(value.isNull(), c.isNull);
    EXPECT_EQ(value.isNothing(), c.type == eNothing);
    EXPECT_EQ(value.getDataLength(), c.dataLength);
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

struct GetterFailureCase {
  const char* function;
  const char* insert;
  std::function<void()> call;
};

TEST(PWFData, GettersRefuseOtherTypesAndNullNumerics) {
  const PWFData number(std::int32_t{5});
  const PWFData text(u"x", 1);
  // Inserts as the getter table words them.
  const GetterFailureCase cases[] = {
      {"PWFData::getPWFStringValue", "Logical type not equal to string",
       [&] { number.getPWFStringValue(); }},
      {"PWFData::getStringValue", "Logical type not equal to string",
       [&] { number.getStringValue(); }},
      {"PWFData::getStringLength", "Logical type not equal to string",
       [&] { PWFData(u"1", eDecimal).getStringLength(); }},
      {"PWFData::getInt32Value", "Logical type not equal to integer",
       [&] { PWFData(1.0).getInt32Value(); }},
      {"PWFData::getInt64Value", "Logical type not equal to integer",
       [&] { text.getInt64Value(); }},
      {"PWFData::getDoubleValue", "Logical type not equal to float",
       [&] { number.getDoubleValue(); }},
      {"PWFData::getBinaryValue", "Logical type not equal to binary",
       [&] { text.getBinaryValue(); }},
      {"PWFData::getBooleanValue", "Logical type not equal to boolean",
       [&] { number.getBooleanValue(); }},
      {"PWFData::getIntervalValue", "Logical type not equal to interval",
       [&] { number.getIntervalValue(); }},
      {"PWFData::getDateTimeValue", "Logical type not equal to datetime",
       [&] { number.getDateTimeValue(); }},
      {"PWFData::getDecimalValue", "Logical type not equal to decimal",
       [&] { text.getDecimalValue(); }},
      {"PWFData::getDecimalLength", "Logical type not equal to decimal",
       [&] { text.getDecimalLength(); }},
      {"PWFData::getDecimalText", "Logical type not equal to decimal",
       [&] { text.getDecimalText(); }},
      {"PWFData::getInt32Value", "Can't get value for null integer value",
       [] { PWFData(eInteger).getInt32Value(); }},
      {"PWFData::getInt64Value", "Can't get value for null integer value",
       [] { PWFData(std::int32_t{1}, true).getInt64Value(); }},
      {"PWFData::getDoubleValue", "Can't get value for null double value",
       [] { PWFData(eFloat).getDoubleValue(); }},
      {"PWFData::getBooleanValue", "Can't get value for null boolean value",
       [] { PWFData(eBoolean).getBoolValue(); }},
  };
  for (const GetterFailureCase& c : cases) {
    SCOPED_TRACE(std::string(c.function) + ": " + c.insert);
    expectInvalidOperation(c.call, c.function, c.insert);
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

  struct Case {
    const char* name;
    const char* function;
    const char* insert;
    std::function<void()> make;
  };
  const Case cases[] = {
      {"integer of 2 bytes", "PWFData::init", "Invalid length for an integer",
       [&] { PWFData(&four, 2, eInteger, eCopy); }},
      {"integer of -1 bytes", "PWFData::init", "Invalid length for an integer",
       [&] { PWFData(u"12", eInteger); }},
      {"adopting a const pointer", "PWFData::PWFData", "Can't adopt given a const's pointer",
       [&] { PWFData(static_cast<const void*>(&four), 4, eInteger, eAdopt); }},
      {"int constructor with a float type", "PWFData::PWFData",
       "Logical type for this contructor must be either Boolean or Integer",
       [] { PWFData(1, eFloat); }},
      {"negative string length", "PWFData::init", "Invalid length for a string",
       [] { PWFData(u"abc", -3); }},
      {"negative binary length", "PWFData::init", "Invalid length for a binary",
       [] { PWFData("abc", -2, eBinary, eCopy); }},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    expectInvalidOperation(c.make, c.function, c.insert);
  }
}

TEST(PWFData, CopiesShareTextAndDeepCopyOwnedBinaries) {
  const ZanStringBase longText = ZanStringBase::fromUtf8(std::string(100, 'q'));
  const PWFData text(longText);
  const PWFData textCopy(text);
  EXPECT_TRUE(textCopy.getPWFStringValue().sharesStorageWith(longText));

  const PWFData adopted(mallocCopy("abcd", 4), 4, eBinary, eAdopt);
  const PWFData adoptedCopy(adopted);
  EXPECT_NE(adoptedCopy.getBinaryValue(), adopted.getBinaryValue());
  EXPECT_EQ(std::memcmp(adoptedCopy.getBinaryValue(), "abcd", 4), 0);
  EXPECT_EQ(adoptedCopy, adopted);

  unsigned char borrowedBytes[] = {1, 2, 3};
  const PWFData borrowed(borrowedBytes, 3, eBinary, eBorrow);
  const PWFData borrowedCopy(borrowed);
  EXPECT_EQ(borrowed.getBinaryValue(), borrowedBytes);
  EXPECT_EQ(borrowedCopy.getBinaryValue(), borrowedBytes);
}

TEST(PWFData, MovesTakeTheBufferAndLeaveNothing) {
  // One release of the adopted buffer, by the value that ends up with it: the sanitizer build
  // catches a leak or a second release.
  PWFData adopted(mallocCopy("abcd", 4), 4, eBinary, eAdopt);
  const unsigned char* bytes = adopted.getBinaryValue();
  PWFData moved(std::move(adopted));
  EXPECT_EQ(moved.getBinaryValue(), bytes);
  EXPECT_TRUE(adopted.isNothing());  // NOLINT(bugprone-use-after-move): the documented state
  PWFData target(u"old", 3);
  target = std::move(moved);
  EXPECT_EQ(target.getBinaryValue(), bytes);
  EXPECT_TRUE(moved.isNothing());  // NOLINT(bugprone-use-after-move)
}

TEST(PWFData, AdoptedBufferIsReleasedByTheValueThatKeepsIt) {
  // Released by destruction for a binary, at once for any other type: a leak fails the sanitizer
  // build, a double release fails it too.
  { const PWFData binary(mallocCopy("abcd", 4), 4, eBinary, eAdopt); }
  const PWFData text(mallocCopy("a\0b\0", 4), 4, eString, eAdopt);
  EXPECT_EQ(text.getPWFStringValue().toUtf8(), "ab");
  const PWFData nothingKept(mallocCopy("abcd", 4), -1, eBinary, eAdopt);
  EXPECT_EQ(nothingKept.getBinaryValue(), nullptr);
}

TEST(PWFData, AssignmentSharesTextCopiesBinaryAndSurvivesSelfAssignment) {
  PWFData target("old!", 4, eBinary, eCopy);
  const PWFData source("new", 3, eBinary, eCopy);
  target = source;
  EXPECT_EQ(target, source);
  EXPECT_NE(target.getBinaryValue(), source.getBinaryValue());

  PWFData& alias = target;
  target = alias;
  EXPECT_EQ(std::memcmp(target.getBinaryValue(), "new", 3), 0);

  const PWFData text(u"shared text", eString);
  target = text;
  EXPECT_EQ(target.getDataLogicalType(), eString);
  EXPECT_EQ(target, text);
  target = PWFData(eFloat);
  EXPECT_TRUE(target.isNull());
}

struct EqualityCase {
  const char* name;
  PWFData left;
  PWFData right;
  bool equal;
};

PWFData interval(std::int32_t years, std::int32_t months, std::int64_t micros,
                 std::int32_t negative = 0) {
  return PWFData(PWFInterval{years, months, micros, negative});
}

TEST(PWFData, EqualityByType) {
  PWFDateTime later{};
  later.second = 1;
  // Expected answers follow the equality rules by type, the interval rule case by case.
  const EqualityCase cases[] = {
      {"nothing equals nothing", PWFData(), PWFData(), true},
      {"types differ", PWFData(std::int32_t{1}), PWFData(1.0), false},
      {"null flags differ", PWFData(eString), PWFData(u"", 0), false},
      {"two null strings", PWFData(eString), PWFData(eString), true},
      {"strings unit by unit", PWFData(u"abc", 3), PWFData(u"abc", eString), true},
      {"strings of different case", PWFData(u"abc", 3), PWFData(u"abC", 3), false},
      {"4-byte and 8-byte integers", PWFData(std::int32_t{5}), PWFData(std::int64_t{5}), true},
      {"different integers", PWFData(std::int32_t{5}), PWFData(std::int32_t{6}), false},
      {"floats exactly", PWFData(0.1), PWFData(0.1), true},
      {"floats differ in the last bit", PWFData(0.1), PWFData(std::nextafter(0.1, 1.0)), false},
      {"booleans 1 and 2 differ", PWFData(1, eBoolean), PWFData(2, eBoolean), false},
      {"binaries by bytes", PWFData("ab", 2, eBinary, eCopy), PWFData("ab", 2, eBinary, eCopy),
       true},
      {"binaries of different length", PWFData("ab", 2, eBinary, eCopy),
       PWFData("abc", 3, eBinary, eCopy), false},
      {"empty binaries", PWFData("", 0, eBinary, eCopy), PWFData("x", -1, eBinary, eCopy), true},
      {"date-times field by field", PWFData(PWFDateTime{}), PWFData(later), false},
      {"decimals by normal form", PWFData(u"1.50", eDecimal), PWFData(u"01.5", eDecimal), true},
      {"decimal zeros of any sign", PWFData(u"-0.0", eDecimal), PWFData(u"0", eDecimal), true},
      {"decimals of different value", PWFData(u"1.5", eDecimal), PWFData(u"15", eDecimal), false},
      {"decimal signs differ", PWFData(u"-1.5", eDecimal), PWFData(u"1.5", eDecimal), false},
      {"two null decimals", PWFData(eDecimal), PWFData(eDecimal), true},
      {"types without storage", PWFData("a", 1, static_cast<ELogicalType>(8), eCopy),
       PWFData("b", 1, static_cast<ELogicalType>(8), eCopy), true},
      {"intervals both empty, signs ignored", interval(0, 0, 0, 1), interval(0, 0, 0, 0), true},
      {"interval signs differ", interval(0, 1, 0, 1), interval(0, 1, 0, 0), false},
      {"interval sign flags are flags", interval(0, 1, 0, 1), interval(0, 1, 0, 2), true},
      {"both microseconds set: months ignored", interval(0, 1, 5), interval(0, 2, 5), true},
      {"both microseconds set and different", interval(0, 1, 5), interval(0, 1, 6), false},
      {"12 months equal 1 year", interval(0, 12, 0), interval(1, 0, 0), true},
      {"microseconds on one side only: months decide", interval(1, 0, 5), interval(0, 12, 0), true},
      {"one side has no years or months", interval(0, 0, 5), interval(0, 0, 0), false},
      {"total months differ", interval(1, 1, 0), interval(0, 12, 0), false},
  };
  for (const EqualityCase& c : cases) {
    SCOPED_TRACE(c.name);
    EXPECT_EQ(c.left == c.right, c.equal);
    EXPECT_EQ(c.left != c.right, !c.equal);
    EXPECT_EQ(c.right == c.left, c.equal);
  }
}

TEST(PWFData, TwoNullNumericsRaiseWhenCompared) {
  expectInvalidOperation([] { (void)(PWFData(eInteger) == PWFData(eInteger)); },
                         "PWFData::getInt64Value", "Can't get value for null integer value");
  expectInvalidOperation([] { (void)(PWFData(eFloat) == PWFData(eFloat)); },
                         "PWFData::getDoubleValue", "Can't get value for null double value");
  expectInvalidOperation([] { (void)(PWFData(eBoolean) == PWFData(eBoolean)); },
                         "PWFData::getBooleanValue", "Can't get value for null boolean value");
}

}  // namespace

TEST(PWFDataDebugString, NamesNothingNullAndFailuresElseGivesTheStandardText) {
  struct Case {
    const char* name;
    PWFData value;
    const char* expected;
  };
  const Case cases[] = {
      {"nothing", PWFData(), "NOTHING"},
      {"null float", PWFData(eFloat), "NULL"},
      {"null string", PWFData(eString), "NULL"},
      {"decimal in normal form", PWFData(u"-007.50", eDecimal), "-7.5"},
      {"float", PWFData(150.0), "1.5E2"},
      {"boolean", PWFData(true), "true"},
      {"binary", PWFData("\x0a\xff", 2, eBinary, eCopy), "0AFF"},
      {"a type with no value", PWFData("xyz", 3, static_cast<ELogicalType>(8), eCopy), "INVALID"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    const PWFData text = c.value.getDebugString();
    EXPECT_EQ(text.getDataLogicalType(), eString);
    EXPECT_EQ(ZanStringBase(text.getStringValue(), text.getStringLength()).toUtf8(), c.expected);
  }
}
