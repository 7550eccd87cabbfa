// The text buffer reader over real ICU code pages: EBCDIC 37 and 930, UTF-8, UTF-16 both ways.

#include <bsutils/bytebuffer.h>
#include <bsutils/textbufferreader.h>
#include <gtest/gtest.h>
#include <zan/zanexception.h>

#include <functional>
#include <limits>
#include <numeric>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include "support/expect_failure.h"

namespace {

// Bytes on the heap, exactly as many as the text, so that the sanitizer sees any read past them.
struct Text {
  explicit Text(const std::string& content)
      : bytes(content.begin(), content.end()),
        buffer(bytes.data(), static_cast<std::int32_t>(bytes.size())) {}
  std::vector<char> bytes;
  ReadOnlyByteBuffer buffer;
};

std::u16string units(const PWFData& value) {
  EXPECT_EQ(value.getDataLogicalType(), eString);
  std::int32_t length = 0;
  const char16_t* text = value.getStringValue(length);
  return std::u16string(text, static_cast<std::size_t>(length));
}

// Cuts strings of `length` units (negative: null-terminated) in turn: each text, cursor after it.
void expectReads(TextBufferReader& reader, std::int32_t length,
                 const std::vector<std::pair<std::u16string, std::int32_t>>& reads) {
  for (const auto& [expected, cursor] : reads) {
    PWFData value;
    ASSERT_TRUE(reader.getStringSection(value, length, true));
    EXPECT_EQ(units(value), expected);
    EXPECT_EQ(reader.getCurrentOffset(), cursor);
  }
}

TEST(TextBufferReader, OpensOrBorrowsItsConverterAndSharesItWithCopies) {
  Text text("\xC1");
  CPUnicodeConverter borrowed(37, BigEndian);
  EXPECT_EQ(TextBufferReader(&text.buffer, 37, BigEndian, &borrowed).getConverter(), &borrowed);
  EXPECT_THROW(TextBufferReader(&text.buffer, 99999, LittleEndian), ZanRecoverableException);
  // A copy keeps the owned converter alive; the sanitizer build catches a second delete.
  TextBufferReader copy = [&] {
    const TextBufferReader original(&text.buffer, 37, BigEndian);
    return TextBufferReader(original);
  }();
  char16_t unit = 0;
  EXPECT_TRUE(copy.getCharacter(&unit, true));
  EXPECT_EQ(unit, u'A');
}

TEST(TextBufferReader, ReadsCharactersOneAtATimeInEachCodePage) {
  // "[]A" is BA BB C1 in EBCDIC 37. Bytes that end mid-character give U+FFFD. Code page 0 means
  // UTF-8 and a negative byte order little-endian.
  const std::tuple<std::int32_t, EEndian, std::string, std::u16string, std::vector<int>> cases[] = {
      {37, BigEndian, "\xBA\xBB\xC1", u"[]A", {1, 1, 1}},
      {0, BigEndian, "a\xC3\xA9\xE2\x82\xAC\xE2\x82", u"a\u00E9\u20AC\uFFFD", {1, 2, 3, 2}},
      {1200, static_cast<EEndian>(-1), std::string("A\0\xAC\x20", 4), u"A\u20AC", {2, 2}},
      {1200, BigEndian, std::string("\0A\x20\xAC\0", 5), u"A\u20AC\uFFFD", {2, 2, 1}},
  };
  for (const auto& [ccsid, endian, bytes, expected, byteLengths] : cases) {
    SCOPED_TRACE(testing::PrintToString(bytes));
    Text text(bytes);
    TextBufferReader reader(&text.buffer, ccsid, endian);
    for (std::size_t i = 0; i < expected.size(); ++i) {
      char16_t unit = 0;
      int byteLength = 0;
      ASSERT_TRUE(reader.getCharacter(&unit, true, &byteLength));
      EXPECT_EQ(unit, expected[i]);
      EXPECT_EQ(byteLength, byteLengths[i]);
    }
    char16_t untouched = u'?';
    EXPECT_FALSE(reader.getCharacter(&untouched, true));  // at the end
    EXPECT_FALSE(reader.getCharacter(&untouched, true, nullptr, -2));
    EXPECT_EQ(untouched, u'?');
    EXPECT_EQ(reader.getCurrentOffset(), static_cast<std::int32_t>(bytes.size()));
  }
}

TEST(TextBufferReader, ReadsContinueWhereTheLastOneStopped) {
  Text text("\xF0\x9F\x98\x80\x62");  // U+1F600, "b"
  TextBufferReader reader(&text.buffer, 1208, LittleEndian);
  char16_t unit = 0;
  int byteLength = 0;
  EXPECT_TRUE(reader.getCharacter(&unit, true, &byteLength));
  EXPECT_EQ(std::pair(unit, byteLength), std::pair(u'\xD83D', 4));
  EXPECT_FALSE(reader.getCharacter(&unit, true, &byteLength));  // no byte consumed
  EXPECT_EQ(std::pair(unit, byteLength), std::pair(u'\xDE00', 0));
  std::int32_t wide = 0x7FFF0000;
  EXPECT_TRUE(reader.getCharacter32(&wide, false));
  EXPECT_EQ(wide, 0x7FFF0062);  // "b" in the low half; the high half as it was
  reader.setCurrentOffset(0);
  expectReads(reader, 1, {{u"\xD83D", 4}, {u"\xDE00", 4}, {u"b", 5}});
  // A read anywhere else starts afresh: the same character is read whole again.
  PWFData value;
  EXPECT_TRUE(reader.getStringSection(value, 1, false, 0));
  EXPECT_TRUE(reader.getStringSection(value, 2, false, 0));
  EXPECT_EQ(units(value), u"\U0001F600");
  // Mixed EBCDIC: "A", SO, hiragana a and i, SI. Each read goes on in the shift state left to it.
  Text mixed("\xC1\x0E\x44\x81\x44\x82\x0F");
  TextBufferReader japanese(&mixed.buffer, 930, BigEndian);
  expectReads(japanese, 1, {{u"A", 1}, {u"\u3042", 4}, {u"\u3044", 6}});
  EXPECT_FALSE(japanese.getStringSection(value, 1, true));
}

TEST(TextBufferReader, CacheFillsInAscendingOrderAndStartsAgainAtEntryZero) {
  // A hit converts nothing, so after the bytes are rewritten it still answers the old character.
  Text text("abcdefghijkl");
  TextBufferReader reader(&text.buffer, 1208, LittleEndian);
  const auto cached = [&](std::int32_t offset) {
    char16_t unit = u'?';
    int byteLength = 0;
    EXPECT_TRUE(reader.getCharacterCached(&unit, &byteLength, offset));
    EXPECT_EQ(byteLength, 1);
    return static_cast<char>(unit);
  };
  for (std::int32_t offset = 0; offset < 10; ++offset) cached(offset);
  std::iota(text.bytes.begin(), text.bytes.end(), 'A');
  EXPECT_EQ(std::string({cached(9), cached(10)}), "jK");  // the eleventh takes entry 0
  std::iota(text.bytes.begin(), text.bytes.end(), '0');
  // 11 takes entry 1, which breaks the ascending run; 10 and 2 still hit, 1 was dropped.
  EXPECT_EQ(std::string({cached(11), cached(10), cached(2), cached(1)}), ";Kc1");
  EXPECT_EQ(reader.getCurrentOffset(), 0);
  char16_t unit = u'?';
  EXPECT_FALSE(reader.getCharacterCached(&unit, nullptr, 12));
  EXPECT_FALSE(reader.getCharacterCached(&unit, nullptr, -3));
  EXPECT_EQ(unit, u'?');
}

TEST(TextBufferReader, MovesTheCursorByCharacters) {
  // 1021 "a", e-acute, euro sign, U+1F600, "b": units 0-1020, 1021, 1022, 1023-1024 and 1025. The
  // count's first step of 1024 units ends between the two surrogates.
  Text text(std::string(1021, 'a') + "\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80\x62");
  TextBufferReader reader(&text.buffer, 1208, LittleEndian);
  const std::pair<std::int32_t, std::int32_t> cases[] = {
      {0, 0}, {1023, 1026}, {1024, 1030}, {1025, 1030}, {5000, 1031}};
  for (const auto& [characters, offset] : cases) {
    SCOPED_TRACE(characters);
    EXPECT_EQ(reader.setOffsetChars(characters), characters > 0);
    EXPECT_EQ(reader.getCurrentOffset(), offset);
  }
  EXPECT_FALSE(reader.moveOffsetChars(1));  // at the end: stays
  EXPECT_EQ(reader.getCurrentOffset(), 1031);
  reader.setCurrentOffset(1020);
  EXPECT_TRUE(reader.moveOffsetChars(2));
  EXPECT_EQ(reader.getCurrentOffset(), 1023);
}

TEST(TextBufferReader, CutsCountedStringsAndHandsOutBytes) {
  Text text("\xC1\xC2\xC3\xC4");  // "ABCD" in EBCDIC 37
  TextBufferReader reader(&text.buffer, 37, BigEndian);
  expectReads(reader, 2, {{u"AB", 2}});
  PWFData value;
  EXPECT_TRUE(reader.getStringSection(value, 2, false, 1));
  EXPECT_EQ(units(value), u"BC");
  EXPECT_FALSE(reader.getStringSection(value, 5, true, 0));  // 4 there: no result, cursor stays
  EXPECT_EQ(units(value), u"BC");
  EXPECT_EQ(reader.getCurrentOffset(), 2);
  EXPECT_TRUE(reader.getStringSection(value, 0, true, 4));
  EXPECT_EQ(units(value), u"");
  EXPECT_EQ(reader.getData(1, true), text.bytes.data() + 1);
  EXPECT_EQ(reader.getCurrentOffset(), 4);
  reader.setCurrentOffset(0);
  std::int32_t length = 10;
  EXPECT_EQ(reader.getData(&length, 2, true), text.bytes.data() + 2);
  EXPECT_EQ(length, 2);                      // lowered to what is there
  EXPECT_EQ(reader.getCurrentOffset(), 10);  // moved by what was asked for
}

TEST(TextBufferReader, CutsNullTerminatedStringsAndStringsBetweenOffsets) {
  Text text(std::string("A\0\0\0\0\0B\0\0\0", 10));  // UTF-16LE: the terminator is a 0 unit
  TextBufferReader reader(&text.buffer, 1200, LittleEndian);
  expectReads(reader, -1, {{u"A", 4}, {u"", 6}, {u"B", 10}});
  PWFData value;
  EXPECT_TRUE(reader.getStringSection(value, -1, false, 0));
  EXPECT_EQ(units(value), u"A");
  EXPECT_EQ(units(reader.getString(6, 8, false)), u"B");
  EXPECT_EQ(reader.getCurrentOffset(), 10);
  EXPECT_EQ(units(reader.getString(3, 3, true)), u"");
  EXPECT_EQ(units(reader.getString(0, 3, true)), u"A\uFFFD");  // ends mid-character
  EXPECT_EQ(reader.getCurrentOffset(), 3);
}

TEST(TextBufferReader, NullTerminatedSearchStraddlesItsConversionSteps) {
  // Every length up to past two 1024-unit steps puts the terminator, and the supplementary
  // characters on either side of it, across every step boundary.
  const std::string tail("\xF0\x9F\x98\x80\0\xF0\x9F\x98\x80\x62\0", 11);
  for (std::int32_t length = 0; length <= 2100 && !HasFailure(); ++length) {
    SCOPED_TRACE(length);
    Text text(std::string(static_cast<std::size_t>(length), 'a') + tail);
    TextBufferReader reader(&text.buffer, 1208, LittleEndian);
    const std::u16string first(static_cast<std::size_t>(length), u'a');
    expectReads(reader, -1, {{first + u"\U0001F600", length + 5}, {u"\U0001F600b", length + 11}});
  }
}

TEST(TextBufferReader, CutsNullTerminatedEbcdicStrings) {
  // "AB", "" and "Hi", each ended by the byte 0, then "C" with no terminator, in EBCDIC 37.
  Text text(std::string("\xC1\xC2\0\0\xC8\x89\0\xC3", 8));
  TextBufferReader reader(&text.buffer, 37, BigEndian);
  expectReads(reader, -1, {{u"AB", 3}, {u"", 4}, {u"Hi", 7}});
  PWFData value;
  expectFailure<ZanConversionException>([&] { reader.getStringSection(value, -1, true); },
                                        "CP_TXTBUF_NULL_TERMINATOR_NOT_FOUND", 0xC0001580,
                                        "CPI Text Buffer Null Terminator Not Found", "textbffr",
                                        "TextBufferReader::getStringSection", {});
  EXPECT_EQ(reader.getCurrentOffset(), 7);
  expectReads(reader, 1, {{u"C", 8}});
  expectFailure<ZanConversionException>([&] { reader.getStringSection(value, -1, true); },
                                        "CP_TXTBUF_INPUT_DATA_TOO_SHORT", 0xC000157F,
                                        "CPI Text Buffer Input Data Too Short", "textbffr",
                                        "TextBufferReader::getStringSection", {">= 1"});
  EXPECT_TRUE(value.isNothing());  // assigned only by a read that succeeds
}

TEST(TextBufferReader, ACountTooLargeToHoldIsAnAllocationFailure) {
  // EBCDIC 37, whose bytes are one unit each, and UTF-8 alike: the count is judged before a byte.
  Text text("\xC1\xC2");
  for (const std::int32_t ccsid : {37, 1208}) {
    SCOPED_TRACE(ccsid);
    TextBufferReader reader(&text.buffer, ccsid, BigEndian);
    PWFData value;
    expectFailure<ZanFatalException>(
        [&] { reader.getStringSection(value, std::numeric_limits<std::int32_t>::max(), true); },
        "CP_MEMORY_ALLOC_FAILURE", 0xC0000806, "malloc returned NULL", "textbffr",
        "TextBufferReader::getStringSection", {});
    EXPECT_EQ(reader.getCurrentOffset(), 0);
  }
}

TEST(TextBufferReader, BadInputGetsTheDocumentedFailure) {
  const Code tooShort{"CP_TXTBUF_INPUT_DATA_TOO_SHORT", 0xC000157F,
                      "CPI Text Buffer Input Data Too Short"};
  const Code noTerminator{"CP_TXTBUF_NULL_TERMINATOR_NOT_FOUND", 0xC0001580,
                          "CPI Text Buffer Null Terminator Not Found"};
  const auto internal = [](const char* text) { return Code{kInternal.symbol, 0xC000157E, text}; };
  const Code badOffset = internal("Invalid offset: ");
  const Code targetFull = internal("error convering to unicode");
  const std::string nullIn = "Null input pointer", nullOut = "Null output buffer pointer";
  const std::string badLength = "Invalid input length: ";
  const auto fails = [](const char* function, const Code& code,
                        const std::vector<std::string>& inserts,
                        const std::function<void()>& operation) {
    SCOPED_TRACE(function);
    expectFailure<ZanConversionException>(operation, code.symbol, code.messageNumber,
                                          code.traceText, "textbffr",
                                          std::string("TextBufferReader::") + function, inserts);
  };
  Text text("\xC1\xC2");
  TextBufferReader r(&text.buffer, 37, BigEndian);
  PWFData value;
  char16_t target[2] = {};
  int room = 1, badRoom = -1;
  fails("TextBufferReader", kInternal, {nullIn}, [] { TextBufferReader(nullptr, 37, BigEndian); });
  fails("getCharacter", kInternal, {nullOut}, [&] { r.getCharacter(nullptr, true); });
  fails("moveOffsetChars", kInternal, {badLength, "-1"}, [&] { r.moveOffsetChars(-1); });
  fails("getStringSection", tooShort, {">= 1"}, [&] { r.getStringSection(value, -1, true, 2); });
  fails("getStringSection", noTerminator, {}, [&] { r.getStringSection(value, -1, true, 0); });
  fails("getString", internal("Start offset greater than end offset."),
        {" Start offset = ", "2", " End offset = ", "1"}, [&] { r.getString(2, 1, true); });
  fails("getString", tooShort, {}, [&] { r.getString(0, 3, true); });
  fails("getString", badOffset, {"-1", " for buffer length: ", "2"},
        [&] { r.getString(-1, 2, true); });
  fails("toUnicode", targetFull, {"15"}, [&] { r.toUnicode(target, &room, "\xC1\xC2", 2); });
  fails("toUnicode", kInternal, {nullIn}, [&] { r.toUnicode(target, &room, nullptr, 1); });
  fails("toUnicode", kInternal, {badLength, "-1"}, [&] { r.toUnicode(target, &room, "\xC1", -1); });
  fails("toUnicode", kInternal, {nullOut}, [&] { r.toUnicode(target, nullptr, "\xC1", 1); });
  fails("toUnicode", kInternal, {"Invalid output buffer length: ", "-1"},
        [&] { r.toUnicode(target, &badRoom, "\xC1", 1); });
  fails("getData", kInternal, {nullIn}, [&] { r.getData(nullptr, 0, false); });
  // A position past the end is traced with a dump of the buffer before the throw record.
  CapturingSink sink(3);
  EXPECT_THROW(r.getStringSection(value, 1, true, 3), ZanConversionException);
  const auto traces = sink.ofKind(ZanLog::Kind::trace);
  ASSERT_EQ(traces.size(), 2u);
  EXPECT_EQ(traces[0].inserts, std::vector<std::string>{"0xc1c2"});
  EXPECT_EQ(std::vector<std::string>(traces[1].inserts.begin() + 2, traces[1].inserts.end()),
            (std::vector<std::string>{kInternal.symbol, "Invalid offset: ", "3",
                                      " for buffer length: ", "2"}));
}

}  // namespace
