// The services stand-in: strings, trace records and their gating, exceptions, log sources.

#include <gtest/gtest.h>
#include <zan/zanexception.h>
#include <zan/zanlog.h>
#include <zan/zanlogsource.h>
#include <zan/zanstringbase.h>
#include <zan/zanutility.h>

#include <limits>
#include <string>
#include <vector>

#include "support/capturing_sink.h"

namespace {

using Strings = std::vector<std::string>;

TEST(ZanStringBase, Utf8RoundTripKeepsEveryPlane) {
  // Latin-1, a BMP ideograph and a character outside the BMP (a surrogate pair).
  const std::string utf8 = "A\xC3\xA9\xE4\xB8\xAD\xF0\x9F\x98\x80";
  const ZanStringBase text = ZanStringBase::fromUtf8(utf8);
  EXPECT_EQ(text.length(), 5);
  EXPECT_EQ(text[3], 0xD83D);
  EXPECT_EQ(text.toUtf8(), utf8);
}

TEST(ZanStringBase, LongTextIsSharedUntilWritten) {
  const ZanStringBase original = ZanStringBase::fromUtf8(std::string(200, 'x'));
  ZanStringBase copy = original;
  EXPECT_TRUE(copy.sharesStorageWith(original));
  copy.append(u'y');
  EXPECT_FALSE(copy.sharesStorageWith(original));
  EXPECT_EQ(original.length(), 200);
  EXPECT_EQ(copy.length(), 201);
}

TEST(ZanStringBase, ConstructionFromUnits) {
  EXPECT_EQ(ZanStringBase(u"abc").length(), 3);
  EXPECT_EQ(ZanStringBase(u"abcdef", 2), ZanStringBase(u"ab"));
  EXPECT_EQ(ZanStringBase(u"abc\0def", -1).length(), 3);
  EXPECT_TRUE(ZanStringBase(nullptr).isEmpty());
  const char16_t terminated = *(ZanStringBase(u"abcdef", 3).terminatedData() + 3);
  EXPECT_EQ(terminated, u'\0');
}

TEST(ZanStringBase, EditingOperations) {
  ZanStringBase text(u"12345");
  text.insert(0, u'-').append(u".5").erase(1, 1).replace(0, 1, ZanStringBase(u"+"));
  EXPECT_EQ(text.toUtf8(), "+2345.5");
  EXPECT_EQ(text.indexOf(u'.'), 5);
  EXPECT_EQ(text.indexOf(u'x'), -1);
  EXPECT_EQ(text.substring(1, 3).toUtf8(), "234");
  text.truncate(2);
  EXPECT_EQ(text.toUtf8(), "+2");
  text.reserve(1000);
  EXPECT_EQ(text.toUtf8(), "+2");
  EXPECT_TRUE(text.clear().isEmpty());
}

TEST(ZanStringBase, OrdersByCodeUnit) {
  EXPECT_LT(ZanStringBase(u"Z"), ZanStringBase(u"a"));
  EXPECT_LT(ZanStringBase(u"ab"), ZanStringBase(u"abc"));
  EXPECT_FALSE(ZanStringBase(u"b") < ZanStringBase(u"a"));
  EXPECT_NE(ZanStringBase(u"a"), ZanStringBase(u"A"));
}

TEST(ZanLog, RecordsAreGatedByKindAndFilter) {
  struct Case {
    int filter;
    size_t expectedRecords;  // trace, entry, debug entry, debug trace, warning, error
  };
  // Trace and entry need 3, debug records 4; warnings and errors are always written.
  const Case cases[] = {{0, 2}, {2, 2}, {3, 4}, {4, 6}};
  for (const Case& c : cases) {
    SCOPED_TRACE(c.filter);
    CapturingSink sink(c.filter);
    ZanLog::TraceItem("f", "trace").writeToFile();
    ZanLog::writeEntry("f");
    ZanLog::writeDebugEntry("f");
    { ZanLog::FastDebugTraceItem("f", "label") << 1 << ZanLog::FastItem::MagicInsert; }
    ZanLog::WarningItem(ZanLogSource(), "file", 1, "f", 5, "warning").write();
    ZanLog::ErrorItem("file", 1, "f", ZanLog::iDefaultLogSource, 5, "error").write();
    EXPECT_EQ(sink.records().size(), c.expectedRecords);
  }
}

TEST(ZanLog, ItemsRenderEveryInsertType) {
  CapturingSink sink(3);
  const char16_t units[] = u"\u00e9t\u00e9";
  ZanLog::TraceItem item("Fn", "text");
  item << "narrow" << std::int32_t{-7} << std::uint32_t{7} << std::int64_t{-9000000000}
       << std::uint64_t{18000000000000000000u} << true << 0.1 << char16_t{u'\u00e9'} << units
       << ZanStringBase(u"zsb") << std::string("std") << static_cast<const char*>(nullptr);
  item.writeToFile();
  ASSERT_EQ(sink.records().size(), 1u);
  const ZanLog::Record& record = sink.records().front();
  EXPECT_EQ(record.kind, ZanLog::Kind::trace);
  EXPECT_EQ(record.function, "Fn");
  EXPECT_EQ(record.text, "text");
  EXPECT_EQ(record.logSource, ZanLog::iDefaultLogSource.toUtf8());
  EXPECT_EQ(record.inserts,
            (Strings{"narrow", "-7", "7", "-9000000000", "18000000000000000000", "true", "0.1",
                     "\xC3\xA9", "\xC3\xA9t\xC3\xA9", "zsb", "std", "(null)"}));
}

TEST(ZanLog, NestedItemBecomesOneInsert) {
  CapturingSink sink(3);
  ZanLog::TraceItem inner("inner", "args");
  inner << 1 << "two";
  ZanLog::TraceItem outer("outer", "call");
  outer << inner;
  outer.writeToFile();
  EXPECT_EQ(sink.records().front().inserts, Strings{"args, 1, two"});
}

TEST(ZanLog, FastItemWritesOnlyWhenEnabledAndActive) {
  CapturingSink sink(4);
  { ZanLog::FastDebugEntryItem("f", nullptr, false) << 1 << ZanLog::FastItem::MagicInsert; }
  EXPECT_TRUE(sink.records().empty());
  { ZanLog::FastDebugExitItem("f") << 2 << ZanLog::FastItem::MagicInsert; }
  ASSERT_EQ(sink.records().size(), 1u);
  EXPECT_EQ(sink.records().front().kind, ZanLog::Kind::debugExit);
  EXPECT_EQ(sink.records().front().inserts, Strings{"2"});
}

TEST(ZanLog, SetSinkReturnsThePreviousSink) {
  int first = 0;
  int second = 0;
  const int previousFilter = ZanLog::iEffectiveLogFilter;
  ZanLog::iEffectiveLogFilter = 3;
  const ZanLog::Sink original = ZanLog::setSink([&](const ZanLog::Record&) { ++first; });
  ZanLog::writeEntry("f");
  const ZanLog::Sink counting = ZanLog::setSink([&](const ZanLog::Record&) { ++second; });
  ZanLog::writeEntry("f");
  ZanLog::setSink(counting);
  ZanLog::writeEntry("f");
  ZanLog::setSink(original);
  ZanLog::iEffectiveLogFilter = previousFilter;
  EXPECT_EQ(first, 2);
  EXPECT_EQ(second, 1);
}

TEST(ZanException, CarriesEverythingAndThrowsItsOwnClass) {
  ZanConversionException failure("pwfdata", 42, "PWFData::init", ZanStringBase(u"source"),
                                 static_cast<std::int32_t>(0xC0001592), "CPI text");
  failure << "insert" << 7;
  EXPECT_EQ(failure.sourceModule(), "pwfdata");
  EXPECT_EQ(failure.line(), 42);
  EXPECT_EQ(failure.function(), "PWFData::init");
  EXPECT_EQ(failure.logSource(), "source");
  EXPECT_EQ(failure.messageNumber(), static_cast<std::int32_t>(0xC0001592));
  EXPECT_EQ(failure.traceText(), "CPI text");
  EXPECT_EQ(failure.inserts(), (Strings{"insert", "7"}));
  EXPECT_STREQ(failure.what(),
               "ZanConversionException 0xC0001592 \"CPI text\" inserts [\"insert\", \"7\"] in "
               "PWFData::init (pwfdata:42), log source source");

  const ZanException& base = failure;
  EXPECT_THROW(base.throwThis(), ZanConversionException);
}

TEST(ZanException, EachClassNamesItself) {
  const ZanNamedLogSource source(u"type", u"named", u"label");
  const ZanParserException parser(source, "m", 1, "f", 1, "t");
  const ZanRecoverableException recoverable(source, "m", 1, "f", 1, "t");
  const ZanFatalException fatal(source, "m", 1, "f", 1, "t");
  EXPECT_STREQ(parser.className(), "ZanParserException");
  EXPECT_STREQ(recoverable.className(), "ZanRecoverableException");
  EXPECT_STREQ(fatal.className(), "ZanFatalException");
  EXPECT_EQ(parser.logSource(), "named");
  EXPECT_THROW(static_cast<const ZanException&>(fatal).throwThis(), ZanFatalException);
  EXPECT_THROW(static_cast<const ZanException&>(recoverable).throwThis(), ZanRecoverableException);
}

TEST(ZanLogSource, OwnedSourceAnswersThroughItsOwner) {
  const ZanNamedLogSource named(u"flow", u"node", u"label");
  ZanOwnedLogSource owned;
  EXPECT_FALSE(owned.isNamed());
  EXPECT_EQ(owned.logName(), ZanLog::iDefaultLogSource);
  owned.setOwner(&named);
  EXPECT_EQ(owned.owner(), &named);
  EXPECT_TRUE(owned.isNamed());
  EXPECT_EQ(owned.logType().toUtf8(), "flow");
  EXPECT_EQ(owned.logName().toUtf8(), "node");
  EXPECT_EQ(owned.logLabel().toUtf8(), "label");

  CapturingSink sink(4);
  EXPECT_TRUE(owned.isTraceActive());
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
  EXPECT_TRUE(ZanUtility::checkCharacter(u'\u0663', 1));   // Arabic-Indic three
  EXPECT_TRUE(ZanUtility::checkCharacter(u'\uFF15', 1));   // full-width five
  EXPECT_FALSE(ZanUtility::checkCharacter(u'\u00B2', 1));  // superscript two is not Nd
  EXPECT_FALSE(ZanUtility::checkCharacter(u'5', 2));       // unknown check type
}

}  // namespace
