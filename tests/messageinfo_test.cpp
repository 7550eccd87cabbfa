// MessageInfo: named text properties, their removal rules, the integer view and merging.

#include <bsutils/messageinfo.h>
#include <gtest/gtest.h>
#include <zan/zanexception.h>
#include <zan/zanstringbase.h>

#include <cstdint>
#include <functional>
#include <string>

namespace {

// The stored text as UTF-8, or "(absent)", so that failures print readably.
std::string textOf(const char16_t* text) {
  return text == nullptr ? "(absent)" : ZanStringBase(text).toUtf8();
}

TEST(MessageInfo, WellKnownNamesAreTheRuntimeTexts) {
  struct Case {
    const char16_t* name;
    const char* expected;
  };
  const Case cases[] = {
      {MessageInfo::MESSAGE_SET, "messageset"},
      {MessageInfo::MESSAGE_TYPE, "messagetype"},
      {MessageInfo::MESSAGE_FORMAT, "messageformat"},
      {MessageInfo::CCSID, "ccsid"},
      {MessageInfo::ENCODING, "encoding"},
      {MessageInfo::ENCODING_FLAGS, "encoding flags"},
  };
  for (const Case& c : cases) EXPECT_EQ(textOf(c.name), c.expected);
}

TEST(MessageInfo, AbsentPropertyHasNoTextAndNoInteger) {
  const MessageInfo info;
  EXPECT_EQ(info.getProperty(MessageInfo::MESSAGE_SET), nullptr);
  EXPECT_EQ(info.getProperty(ZanStringBase(u"ccsid")), nullptr);
  EXPECT_EQ(info.getPropertyAsInteger(MessageInfo::CCSID), INT64_MIN);
  EXPECT_EQ(info.getPropertyAsInteger(ZanStringBase(u"ccsid")), INT64_MIN);
}

TEST(MessageInfo, EverySetFormCreatesAndReplaces) {
  using Set = std::function<void(MessageInfo&, const char16_t*)>;
  const ZanStringBase name(u"messagetype");
  const Set forms[] = {
      [](MessageInfo& m, const char16_t* v) { m.setProperty(u"messagetype", v); },
      [](MessageInfo& m, const char16_t* v) { m.setProperty(u"messagetype", ZanStringBase(v)); },
      [&](MessageInfo& m, const char16_t* v) { m.setProperty(name, v); },
      [&](MessageInfo& m, const char16_t* v) { m.setProperty(name, ZanStringBase(v)); },
  };
  for (const Set& set : forms) {
    MessageInfo info;
    set(info, u"first");
    set(info, u"second");
    EXPECT_EQ(textOf(info.getProperty(MessageInfo::MESSAGE_TYPE)), "second");
  }
}

TEST(MessageInfo, NullValueRemovesAndNullNameIsTheEmptyName) {
  MessageInfo info;
  info.setProperty(u"a", u"1");
  info.setProperty(ZanStringBase(u"b"), u"2");
  info.setProperty(u"a", nullptr);
  info.setProperty(ZanStringBase(u"b"), nullptr);
  EXPECT_EQ(info.getProperty(u"a"), nullptr);
  EXPECT_EQ(info.getProperty(u"b"), nullptr);

  info.setProperty(nullptr, u"unnamed");
  EXPECT_EQ(textOf(info.getProperty(u"")), "unnamed");
  EXPECT_EQ(textOf(info.getProperty(nullptr)), "unnamed");
}

TEST(MessageInfo, IntegersRoundTripThroughTheirShortestText) {
  // Texts are the plain decimal forms, worked by hand.
  struct Case {
    std::int64_t value;
    const char* text;
  };
  const Case cases[] = {
      {0, "0"},
      {-5, "-5"},
      {1208, "1208"},
      {INT64_MAX, "9223372036854775807"},
      {INT64_MIN + 1, "-9223372036854775807"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.text);
    MessageInfo info;
    info.setPropertyFromInteger(MessageInfo::ENCODING, c.value);
    EXPECT_EQ(textOf(info.getProperty(u"encoding")), c.text);
    EXPECT_EQ(info.getPropertyAsInteger(ZanStringBase(u"encoding")), c.value);
  }
}

TEST(MessageInfo, SmallestIntegerRemovesTheProperty) {
  MessageInfo info;
  info.setProperty(u"ccsid", u"500");
  info.setPropertyFromInteger(ZanStringBase(u"ccsid"), INT64_MIN);
  EXPECT_EQ(info.getProperty(u"ccsid"), nullptr);
}

TEST(MessageInfo, IntegerReadTrimsWhiteSpaceAndReadsALeadingSign) {
  struct Case {
    const char16_t* text;
    std::int64_t expected;
  };
  const Case cases[] = {{u"  -42 ", -42}, {u"+7", 7}, {u"", 0}, {u"   ", 0}};
  for (const Case& c : cases) {
    SCOPED_TRACE(textOf(c.text));
    MessageInfo info;
    info.setProperty(u"ccsid", c.text);
    EXPECT_EQ(info.getPropertyAsInteger(u"ccsid"), c.expected);
  }
}

TEST(MessageInfo, TextThatIsNotAnIntegerRaisesTheConverterFailure) {
  struct Case {
    const char16_t* text;
    std::uint32_t messageNumber;
  };
  const Case cases[] = {
      {u"12a", 0xC0001581},                  // CP_CONV_INPUT_DATA_INVALID
      {u"42-", 0xC0001581},                  // a trailing sign is not read
      {u"9223372036854775808", 0xC0001582},  // CP_CONV_INPUT_DATA_OUT_OF_BOUNDS
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(textOf(c.text));
    MessageInfo info;
    info.setProperty(u"ccsid", c.text);
    try {
      info.getPropertyAsInteger(u"ccsid");
      ADD_FAILURE() << "no exception";
    } catch (const ZanConversionException& failure) {
      EXPECT_EQ(static_cast<std::uint32_t>(failure.messageNumber()), c.messageNumber);
      EXPECT_EQ(failure.function(), "DataCnv::StrToInt64");
    }
  }
}

TEST(MessageInfo, SetPropertiesMergesAndClearEmpties) {
  MessageInfo info;
  info.setProperty(u"a", u"1");
  info.setProperty(u"b", u"2");
  MessageInfo other;
  other.setProperty(u"b", u"3");
  other.setProperty(u"c", u"4");

  info.setProperties(MessageInfo());
  EXPECT_EQ(textOf(info.getProperty(u"b")), "2");
  info.setProperties(other);
  EXPECT_EQ(textOf(info.getProperty(u"a")), "1");
  EXPECT_EQ(textOf(info.getProperty(u"b")), "3");
  EXPECT_EQ(textOf(info.getProperty(u"c")), "4");

  MessageInfo copy(info);
  info.clear();
  EXPECT_EQ(info.getProperty(u"a"), nullptr);
  EXPECT_EQ(info.getProperty(u"c"), nullptr);
  EXPECT_EQ(textOf(copy.getProperty(u"a")), "1");
  EXPECT_EQ(textOf(other.getProperty(u"a")), "(absent)");
}

}  // namespace
