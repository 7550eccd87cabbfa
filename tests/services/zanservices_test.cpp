// The services stand-in, for what the library's own suites do not already exercise through it:
// string storage and editing, insert rendering, record gating, what(), log sources.

#include <gtest/gtest.h>
#include <zan/zanexception.h>
#include <zan/zanlog.h>
#include <zan/zanlogsource.h>
#include <zan/zanstringbase.h>
#include <zan/zanutility.h>

#include <string>
#include <utility>
#include <vector>

#include "support/capturing_sink.h"

namespace {

using Strings = std::vector<std::string>;

TEST(ZanStringBase, Utf8RoundTripAndSharedStorage) {
  // Latin-1, a BMP ideograph and a character outside the BMP (a surrogate pair).
  const std::string utf8 = "A\xC3\xA9\xE4\xB8\xAD\xF0\x9F\x98\x80";
  const ZanStringBase text = ZanStringBase::fromUtf8(utf8);
  EXPECT_EQ(text.length(), 5);
  EXPECT_EQ(text[3], 0xD83D);
  EXPECT_EQ(text.toUtf8(), utf8);
  const ZanStringBase original = ZanStringBase::fromUtf8(std::string(200, 'x'));
  ZanStringBase copy = original;
  EXPECT_TRUE(copy.sharesStorageWith(original));
  copy.append(u'y');
  EXPECT_FALSE(copy.sharesStorageWith(original));
  EXPECT_EQ(original.length(), 200);
}

TEST(ZanStringBase, BuildsEditsAndOrdersUnits) {
  EXPECT_EQ(ZanStringBase(u"abcdef", 2), ZanStringBase(u"ab"));
  EXPECT_EQ(ZanStringBase(u"abc\0def", -1).length(), 3);
  EXPECT_TRUE(ZanStringBase(nullptr).isEmpty());
  EXPECT_EQ(ZanStringBase(u"abcdef", 3).terminatedData()[3], u'\0');
  ZanStringBase text(u"12345");
  text.insert(0, u'-').append(u".5").erase(1, 1).replace(0, 1, ZanStringBase(u"+"));
  EXPECT_EQ(text.toUtf8(), "+2345.5");
  EXPECT_EQ(text.indexOf(u'.'), 5);
  EXPECT_EQ(text.substring(1, 3).toUtf8(), "234");
  text.reserve(1000);
  EXPECT_EQ(text.truncate(2).toUtf8(), "+2");
  EXPECT_LT(ZanStringBase(u"Z"), ZanStringBase(u"a"));  // code-unit order, not collation
  EXPECT_LT(ZanStringBase(u"ab"), ZanStringBase(u"abc"));
}

TEST(ZanLog, RecordsAreGatedByKindAndFilter) {
  // Of trace, entry, debug entry, debug trace, warning and error: trace and entry need filter 3,
  // debug records 4; warnings and errors are always written.
  for (const auto& [filter, expectedRecords] :
       {std::pair(2, 2u), std::pair(3, 4u), std::pair(4, 6u)}) {
    SCOPED_TRACE(filter);
    CapturingSink sink(filter);
    ZanLog::TraceItem("f", "trace").writeToFile();
    ZanLog::writeEntry("f");
    ZanLog::writeDebugEntry("f");
    { ZanLog::FastDebugTraceItem("f", "label") << 1 << ZanLog::FastItem::MagicInsert; }
    ZanLog::WarningItem(ZanLogSource(), "file", 1, "f", 5, "warning").write();
    ZanLog::ErrorItem("file", 1, "f", ZanLog::iDefaultLogSource, 5, "error").write();
    EXPECT_EQ(sink.records().size(), expectedRecords);
  }
}

TEST(ZanLog, ItemsRenderEveryInsertType) {
  CapturingSink sink(3);
  ZanLog::TraceItem inner("inner", "args");
  inner << 1 << "two";
  ZanLog::TraceItem item("Fn", "text");
  item << "narrow" << std::int32_t{-7} << std::uint32_t{7} << std::int64_t{-9000000000}
       << std::uint64_t{18000000000000000000u} << true << 0.1 << char16_t{u'\u00e9'}
       << u"\u00e9t\u00e9" << ZanStringBase(u"zsb") << std::string("std")
       << static_cast<const char*>(nullptr) << inner;
  item.writeToFile();
  ASSERT_EQ(sink.records().size(), 1u);
  EXPECT_EQ(sink.records().front().inserts,
            (Strings{"narrow", "-7", "7", "-9000000000", "18000000000000000000", "true", "0.1",
                     "\xC3\xA9", "\xC3\xA9t\xC3\xA9", "zsb", "std", "(null)", "args, 1, two"}));
}

TEST(ZanException, WhatGivesEverythingOnOneLine) {
  ZanConversionException failure("pwfdata", 42, "PWFData::init", ZanStringBase(u"source"),
                                 static_cast<std::int32_t>(0xC0001592), "CPI text");
  failure << "insert" << 7;
  EXPECT_STREQ(failure.what(),
               "ZanConversionException 0xC0001592 \"CPI text\" inserts [\"insert\", \"7\"] in "
               "PWFData::init (pwfdata:42), log source source");
  EXPECT_THROW(static_cast<const ZanException&>(failure).throwThis(), ZanConversionException);
}

TEST(ZanLogSource, OwnedSourceAnswersThroughItsOwner) {
  const ZanNamedLogSource named(u"flow", u"node", u"label");
  ZanOwnedLogSource owned;
  EXPECT_FALSE(owned.isNamed());
  EXPECT_EQ(owned.logName(), ZanLog::iDefaultLogSource);
  owned.setOwner(&named);
  EXPECT_TRUE(owned.isNamed());
  EXPECT_EQ(owned.logType().toUtf8(), "flow");
  EXPECT_EQ(owned.logLabel().toUtf8(), "label");
  CapturingSink sink(4);
  EXPECT_TRUE(owned.isDebugTraceActive());
  EXPECT_FALSE(owned.isUserTraceActive());
  ZanLog::TraceItem item(owned, "f", "t");
  owned.addLogInserts(item);
  item.writeToFile();
  EXPECT_EQ(sink.records().front().logSource, "node");
  EXPECT_EQ(sink.records().front().inserts, (Strings{"node", "label"}));
}

TEST(ZanUtility, CheckTypeOneIsAnyDecimalDigit) {
  int asciiDigits = 0;
  for (char16_t unit = 0; unit < 0x80; ++unit) {
    asciiDigits += ZanUtility::checkCharacter(unit, ZanUtility::eDecimalDigit) ? 1 : 0;
  }
  EXPECT_EQ(asciiDigits, 10);
  EXPECT_TRUE(ZanUtility::checkCharacter(u'\uFF15', 1));   // full-width five
  EXPECT_FALSE(ZanUtility::checkCharacter(u'\u00B2', 1));  // superscript two is not Nd
  EXPECT_FALSE(ZanUtility::checkCharacter(u'5', 2));       // unknown check type
}

}  // namespace
