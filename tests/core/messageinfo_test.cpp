// MessageInfo: named texts, their removal rules, the integer view and merging.

#include <bsutils/messageinfo.h>
#include <gtest/gtest.h>
#include <zan/zanexception.h>
#include <zan/zanstringbase.h>

#include <cstdint>
#include <string>
#include <utility>

namespace {

// The stored text as UTF-8, or "(absent)", so that failures print readably.
std::string textOf(const char16_t* text) {
  return text == nullptr ? "(absent)" : ZanStringBase(text).toUtf8();
}

TEST(MessageInfo, AbsentOrRemovedPropertyHasNoTextAndNoInteger) {
  MessageInfo info;
  EXPECT_EQ(info.getPropertyAsInteger(MessageInfo::CCSID), INT64_MIN);
  for (const char16_t* name : {u"a", u"b", u"c"}) info.setProperty(name, u"0");
  info.setProperty(ZanStringBase(u"a"), ZanStringBase(u"1"));  // replaces
  EXPECT_EQ(textOf(info.getProperty(u"a")), "1");
  info.setProperty(u"a", nullptr);
  info.setProperty(ZanStringBase(u"b"), nullptr);
  info.setPropertyFromInteger(u"c", INT64_MIN);
  for (const char16_t* name : {u"a", u"b", u"c"}) {
    EXPECT_EQ(info.getProperty(ZanStringBase(name)), nullptr);
    EXPECT_EQ(info.getPropertyAsInteger(ZanStringBase(name)), INT64_MIN);
  }
  info.setProperty(nullptr, u"unnamed");  // a null name is the empty name
  EXPECT_EQ(textOf(info.getProperty(u"")), "unnamed");
}

TEST(MessageInfo, IntegersRoundTripThroughTheirDecimalText) {
  const std::pair<std::int64_t, const char*> cases[] = {
      {0, "0"}, {-5, "-5"}, {INT64_MAX, "9223372036854775807"}};
  for (const auto& [value, text] : cases) {
    MessageInfo info;
    info.setPropertyFromInteger(MessageInfo::ENCODING, value);
    EXPECT_EQ(textOf(info.getProperty(u"encoding")), text);
    EXPECT_EQ(info.getPropertyAsInteger(ZanStringBase(u"encoding")), value);
  }
}

TEST(MessageInfo, IntegerReadTrimsWhiteSpaceTakesALeadingSignAndRejectsOtherText) {
  const std::pair<const char16_t*, std::int64_t> cases[] = {
      {u"  -42 ", -42}, {u"+7", 7}, {u"", 0}, {u"   ", 0}};
  MessageInfo info;
  for (const auto& [text, expected] : cases) {
    info.setProperty(u"ccsid", text);
    EXPECT_EQ(info.getPropertyAsInteger(u"ccsid"), expected) << textOf(text);
  }
  info.setProperty(u"ccsid", u"12a");
  try {
    info.getPropertyAsInteger(u"ccsid");
    ADD_FAILURE() << "no exception";
  } catch (const ZanConversionException& failure) {
    EXPECT_EQ(static_cast<std::uint32_t>(failure.messageNumber()), 0xC0001581u);
  }
}

TEST(MessageInfo, SetPropertiesMergesKeepingOwnNames) {
  MessageInfo info, other;
  info.setProperty(u"a", u"1");
  info.setProperty(u"b", u"2");
  other.setProperty(u"b", u"3");
  other.setProperty(u"c", u"4");
  info.setProperties(other);
  EXPECT_EQ(textOf(info.getProperty(u"a")), "1");
  EXPECT_EQ(textOf(info.getProperty(u"b")), "3");
  EXPECT_EQ(textOf(info.getProperty(u"c")), "4");
}

}  // namespace
