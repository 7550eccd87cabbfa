// The text buffer reader over real ICU code pages: EBCDIC 37 and 1047, UTF-8 with multi-byte and
// supplementary characters, UTF-16 in both byte orders. Expected bytes were checked with ICU's
// uconv tool ("[]A" is BA BB C1 in 37 and AD BD C1 in 1047) and against the Unicode charts.

#include <bsutils/bytebuffer.h>
#include <bsutils/textbufferreader.h>
#include <gtest/gtest.h>
#include <zan/zanexception.h>

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "support/expect_failure.h"

namespace {

const Code kTooShort{"CP_TXTBUF_INPUT_DATA_TOO_SHORT", 0xC000157F,
                     "CPI Text Buffer Input Data Too Short"};
const Code kNoTerminator{"CP_TXTBUF_NULL_TERMINATOR_NOT_FOUND", 0xC0001580,
                         "CPI Text Buffer Null Terminator Not Found"};

// Bytes on the heap, exactly as many as the text, so that the sanitizer sees any read past them.
struct Text {
  explicit Text(const std::string& content)
      : bytes(content.begin(), content.end()),
        buffer(bytes.data(), static_cast<std::int32_t>(bytes.size())) {}
  Text(const Text&) = delete;
  Text& operator=(const Text&) = delete;

  std::vector<char> bytes;
  ReadOnlyByteBuffer buffer;
};

std::u16string units(const PWFData& value) {
  EXPECT_EQ(value.getDataLogicalType(), eString);
  std::int32_t length = 0;
  const char16_t* text = value.getStringValue(length);
  return std::u16string(text, static_cast<std::size_t>(length));
}

TEST(TextBufferReader, AppliesItsDefaultsAndSharesItsConverter) {
  Text text("\xC1");
  const TextBufferReader defaults(&text.buffer, 0, static_cast<EEndian>(-1));
  EXPECT_EQ(defaults.getCodepage(), 1208);
  EXPECT_EQ(defaults.getEndian(), LittleEndian);
  EXPECT_EQ(defaults.getMaxBytesPerChar(), 3);  // ICU's UTF-8: one UTF-16 unit takes 3 bytes
  EXPECT_EQ(TextBufferReader(&text.buffer, 1200, BigEndian).getMaxBytesPerChar(), 2);

  CPUnicodeConverter borrowed(37, BigEndian);
  EXPECT_EQ(TextBufferReader(&text.buffer, 37, BigEndian, &borrowed).getConverter(), &borrowed);

  // An owned converter outlives the reader that opened it while a copy holds it; the sanitizer
  // build catches a second delete.
  auto original = std::make_unique<TextBufferReader>(&text.buffer, 37, BigEndian);
  TextBufferReader copy(*original);
  TextBufferReader assigned(&text.buffer, 1208, LittleEndian);
  assigned = *original;
  EXPECT_EQ(copy.getConverter(), original->getConverter());
  original.reset();
  char16_t unit = 0;
  EXPECT_TRUE(copy.getCharacter(&unit, true));
  EXPECT_TRUE(assigned.getCharacter(&unit, true));
  EXPECT_EQ(unit, u'A');
  EXPECT_THROW(TextBufferReader(&text.buffer, 99999, LittleEndian), ZanRecoverableException);
}

TEST(TextBufferReader, ReadsCharactersOneAtATimeInEachCodePage) {
  struct Case {
    const char* name;
    std::int32_t ccsid;
    EEndian endian;
    std::string bytes;
    std::u16string expected;
    std::vector<int> byteLengths;
  };
  const Case cases[] = {
      {"EBCDIC 37", 37, BigEndian, "\xBA\xBB\xC1\x81\xF0\x40", u"[]Aa0 ", {1, 1, 1, 1, 1, 1}},
      {"EBCDIC 1047", 1047, BigEndian, "\xAD\xBD\xC1", u"[]A", {1, 1, 1}},
      {"UTF-8", 1208, LittleEndian, "a\xC3\xA9\xE2\x82\xAC\x62", u"a\u00E9\u20ACb", {1, 2, 3, 1}},
      {"UTF-16LE 1200", 1200, LittleEndian, std::string("A\0\xAC\x20", 4), u"A\u20AC", {2, 2}},
      {"UTF-16BE 1200", 1200, BigEndian, std::string("\0A\x20\xAC", 4), u"A\u20AC", {2, 2}},
      {"UTF-16BE 13488", 13488, BigEndian, std::string("\0A", 2), u"A", {2}},
      {"UTF-16LE 17584", 17584, LittleEndian, std::string("A\0", 2), u"A", {2}},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    Text text(c.bytes);
    TextBufferReader reader(&text.buffer, c.ccsid, c.endian);
    for (std::size_t i = 0; i < c.expected.size(); ++i) {
      char16_t unit = 0;
      int byteLength = 0;
      ASSERT_TRUE(reader.getCharacter(&unit, true, &byteLength));
      EXPECT_EQ(unit, c.expected[i]);
      EXPECT_EQ(byteLength, c.byteLengths[i]);
    }
    char16_t untouched = u'?';
    EXPECT_FALSE(reader.getCharacter(&untouched, true));
    EXPECT_EQ(untouched, u'?');
    EXPECT_EQ(reader.getCurrentOffset(), static_cast<std::int32_t>(c.bytes.size()));
  }
}

TEST(TextBufferReader, CharacterOutsideTheBmpLeavesItsTrailingSurrogatePending) {
  Text text("\xF0\x9F\x98\x80\x62");  // U+1F600, "b"
  TextBufferReader reader(&text.buffer, 1208, LittleEndian);
  char16_t unit = 0;
  int byteLength = 0;
  EXPECT_TRUE(reader.getCharacter(&unit, true, &byteLength));
  EXPECT_EQ(unit, 0xD83D);
  EXPECT_EQ(byteLength, 4);
  EXPECT_FALSE(reader.getCharacter(&unit, true, &byteLength));
  EXPECT_EQ(unit, 0xDE00);
  EXPECT_EQ(byteLength, 0);
  EXPECT_EQ(reader.getCurrentOffset(), 4);

  std::int32_t wide = 0x7FFF0000;
  EXPECT_TRUE(reader.getCharacter32(&wide, false));
  EXPECT_EQ(wide, 0x7FFF0062);  // "b" in the low half; the high half as it was
  EXPECT_EQ(reader.getCurrentOffset(), 4);
}

TEST(TextBufferReader, CharacterOutsideTheBufferIsNotReadAndAPartialOneIsSubstituted) {
  Text empty("");
  TextBufferReader none(&empty.buffer, 37, BigEndian);
  char16_t unit = u'?';
  EXPECT_FALSE(none.getCharacter(&unit, true));

  Text text("A\xE2\x82");  // "A" and two of the three bytes of U+20AC
  TextBufferReader reader(&text.buffer, 1208, LittleEndian);
  for (const std::int32_t offset : {-2, 3, 4})
    EXPECT_FALSE(reader.getCharacter(&unit, true, nullptr, offset));
  reader.setCurrentOffset(-5);
  EXPECT_FALSE(reader.getCharacter(&unit, true));
  EXPECT_EQ(unit, u'?');

  int byteLength = 0;
  EXPECT_TRUE(reader.getCharacter(&unit, false, &byteLength, 1));
  EXPECT_EQ(unit, 0xFFFD);
  EXPECT_EQ(byteLength, 2);

  Text odd(std::string("\0A\0", 3));
  TextBufferReader utf16(&odd.buffer, 1200, BigEndian);
  EXPECT_TRUE(utf16.getCharacter(&unit, false, &byteLength, 2));
  EXPECT_EQ(unit, 0xFFFD);
  EXPECT_EQ(byteLength, 1);
}

TEST(TextBufferReader, CacheFillsInAscendingOrderAndStartsAgainAtEntryZero) {
  // A hit converts nothing, so after the bytes are rewritten it still answers the old character.
  Text text("abcdefghijkl");
  const auto rewrite = [&](char first) {
    for (std::size_t i = 0; i < text.bytes.size(); ++i)
      text.bytes[i] = static_cast<char>(first + i);
  };
  const auto cached = [](TextBufferReader& reader, std::int32_t offset) {
    char16_t unit = u'?';
    int byteLength = 0;
    EXPECT_TRUE(reader.getCharacterCached(&unit, &byteLength, offset));
    EXPECT_EQ(byteLength, 1);
    return static_cast<char>(unit);
  };
  TextBufferReader reader(&text.buffer, 1208, LittleEndian);
  for (std::int32_t offset = 0; offset < 10; ++offset) cached(reader, offset);
  rewrite('A');
  EXPECT_EQ(cached(reader, 9), 'j');
  EXPECT_EQ(cached(reader, 10), 'K');  // the eleventh takes entry 0
  rewrite('0');
  EXPECT_EQ(cached(reader, 11), ';');  // entry 1 now breaks the ascending run, so it is taken
  EXPECT_EQ(cached(reader, 10), 'K');
  EXPECT_EQ(cached(reader, 2), 'c');
  EXPECT_EQ(cached(reader, 1), '1');
  EXPECT_EQ(reader.getCurrentOffset(), 0);

  char16_t unit = u'?';
  EXPECT_FALSE(reader.getCharacterCached(&unit, nullptr, 12));
  EXPECT_FALSE(reader.getCharacterCached(&unit, nullptr, -3));
  EXPECT_EQ(unit, u'?');
}

TEST(TextBufferReader, MovesTheCursorByCharacters) {
  // a, e-acute, euro sign, U+1F600 (two units), b: 1, 2, 3, 4 and 1 bytes.
  Text text("a\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80\x62");
  TextBufferReader reader(&text.buffer, 1208, LittleEndian);
  struct Case {
    std::int32_t characters;
    bool moved;
    std::int32_t offset;
  };
  const Case cases[] = {{0, false, 0}, {1, true, 1},  {2, true, 3},  {3, true, 6},
                        {4, true, 10}, {5, true, 10}, {6, true, 11}, {100, true, 11}};
  for (const Case& c : cases) {
    SCOPED_TRACE(c.characters);
    EXPECT_EQ(reader.setOffsetChars(c.characters), c.moved);
    EXPECT_EQ(reader.getCurrentOffset(), c.offset);
  }
  reader.setCurrentOffset(1);
  EXPECT_TRUE(reader.moveOffsetChars(2));
  EXPECT_EQ(reader.getCurrentOffset(), 6);
  reader.setCurrentOffset(11);
  EXPECT_FALSE(reader.moveOffsetChars(1));
  EXPECT_EQ(reader.getCurrentOffset(), 11);

  // A supplementary character split by the 1024-unit steps of the count.
  Text longText(std::string(1023, 'a') + "\xF0\x9F\x98\x80\x62");
  TextBufferReader longReader(&longText.buffer, 1208, LittleEndian);
  EXPECT_TRUE(longReader.setOffsetChars(1025));
  EXPECT_EQ(longReader.getCurrentOffset(), 1027);
  EXPECT_TRUE(longReader.setOffsetChars(1026));
  EXPECT_EQ(longReader.getCurrentOffset(), 1028);
}

TEST(TextBufferReader, CutsCountedStrings) {
  Text text("\xC1\xC2\xC3\xC4");  // "ABCD" in EBCDIC 37
  TextBufferReader reader(&text.buffer, 37, BigEndian);
  PWFData value;
  EXPECT_TRUE(reader.getStringSection(value, 2, true));
  EXPECT_EQ(units(value), u"AB");
  EXPECT_TRUE(reader.getStringSection(value, 2, false, 1));
  EXPECT_EQ(units(value), u"BC");
  EXPECT_EQ(reader.getCurrentOffset(), 2);
  EXPECT_FALSE(reader.getStringSection(value, 5, true, 0));  // 4 there: no result, cursor stays
  EXPECT_EQ(units(value), u"BC");
  EXPECT_EQ(reader.getCurrentOffset(), 2);
  EXPECT_TRUE(reader.getStringSection(value, 0, true));
  EXPECT_EQ(units(value), u"");
}

TEST(TextBufferReader, ReadsContinueWhereTheLastOneStopped) {
  // Mixed EBCDIC 930: "A", SO, two double-byte characters, SI. Each read continues in the
  // double-byte state that the one before left.
  Text mixed("\xC1\x0E\x44\x81\x44\x82\x0F");
  TextBufferReader japanese(&mixed.buffer, 930, BigEndian);
  PWFData value;
  const std::u16string expected[] = {u"A", u"\u3042", u"\u3044"};  // A, hiragana a and i
  const std::int32_t offsets[] = {1, 4, 6};
  for (int i = 0; i < 3; ++i) {
    EXPECT_TRUE(japanese.getStringSection(value, 1, true));
    EXPECT_EQ(units(value), expected[i]);
    EXPECT_EQ(japanese.getCurrentOffset(), offsets[i]);
  }
  EXPECT_FALSE(japanese.getStringSection(value, 1, true));

  // Cut after its leading surrogate, U+1F600 gives its trailing one to the read that follows on.
  Text wide("\xF0\x9F\x98\x80\x62");  // U+1F600, "b"
  TextBufferReader utf8(&wide.buffer, 1208, LittleEndian);
  const std::u16string pieces[] = {u"\xD83D", u"\xDE00", u"b"};
  const std::int32_t cursors[] = {4, 4, 5};
  for (int i = 0; i < 3; ++i) {
    EXPECT_TRUE(utf8.getStringSection(value, 1, true));
    EXPECT_EQ(units(value), pieces[i]);
    EXPECT_EQ(utf8.getCurrentOffset(), cursors[i]);
  }
  // A read anywhere else starts afresh: the same character is read whole again.
  EXPECT_TRUE(utf8.getStringSection(value, 1, false, 0));
  EXPECT_TRUE(utf8.getStringSection(value, 2, false, 0));
  EXPECT_EQ(units(value), u"\U0001F600");
  EXPECT_TRUE(utf8.setOffsetChars(1));
  EXPECT_TRUE(utf8.getStringSection(value, 1, true, 0));
  EXPECT_EQ(units(value), u"\xD83D");
}

TEST(TextBufferReader, OffsetPastTheEndIsRefusedWithADumpOfTheBuffer) {
  Text text("\xC1\xC2");
  TextBufferReader reader(&text.buffer, 37, BigEndian);
  PWFData value;
  CapturingSink sink(3);
  try {
    reader.getStringSection(value, 1, true, 3);
    ADD_FAILURE() << "no exception";
  } catch (const ZanConversionException& failure) {
    EXPECT_EQ(static_cast<std::uint32_t>(failure.messageNumber()), 0xC000157E);
    EXPECT_EQ(failure.traceText(), "Invalid offset: ");
    EXPECT_EQ(failure.function(), "TextBufferReader::getStringSection");
    EXPECT_EQ(failure.inserts(), (std::vector<std::string>{"3", " for buffer length: ", "2"}));
  }
  const auto traces = sink.ofKind(ZanLog::Kind::trace);
  ASSERT_EQ(traces.size(), 2u);
  EXPECT_EQ(traces[0].inserts, std::vector<std::string>{"0xc1c2"});
  EXPECT_EQ(traces[1].text, "Throwing exception");
  EXPECT_EQ(traces[1].inserts.back(), "2");
}

TEST(TextBufferReader, CutsNullTerminatedStrings) {
  Text text(std::string("ab\0\0cd\0", 7));
  TextBufferReader reader(&text.buffer, 1208, LittleEndian);
  PWFData value;
  const std::u16string expected[] = {u"ab", u"", u"cd"};
  const std::int32_t offsets[] = {3, 4, 7};
  for (int i = 0; i < 3; ++i) {
    EXPECT_TRUE(reader.getStringSection(value, -1, true));
    EXPECT_EQ(units(value), expected[i]);
    EXPECT_EQ(reader.getCurrentOffset(), offsets[i]);
  }

  Text utf16(std::string("A\0\0\0B\0", 6));
  TextBufferReader utf16Reader(&utf16.buffer, 1200, LittleEndian);
  EXPECT_TRUE(utf16Reader.getStringSection(value, -1, false));
  EXPECT_EQ(units(value), u"A");
  EXPECT_EQ(utf16Reader.getCurrentOffset(), 0);
}

TEST(TextBufferReader, NullTerminatedStringsStraddleTheConversionSteps) {
  // The search converts in steps of up to 1024 units. Every prefix length up to past two whole
  // steps of 1024 puts the terminator, and the supplementary character after it, on each side of
  // every step boundary.
  for (std::size_t length = 0; length <= 2100; ++length) {
    SCOPED_TRACE(length);
    Text text(std::string(length, 'a') + std::string("\0\xF0\x9F\x98\x80\x62\0", 7));
    TextBufferReader reader(&text.buffer, 1208, LittleEndian);
    PWFData value;
    ASSERT_TRUE(reader.getStringSection(value, -1, true));
    ASSERT_EQ(value.getStringLength(), static_cast<std::int32_t>(length));
    ASSERT_EQ(reader.getCurrentOffset(), static_cast<std::int32_t>(length + 1));
    ASSERT_TRUE(reader.getStringSection(value, -1, true));
    ASSERT_EQ(units(value), u"\U0001F600b");
  }
}

TEST(TextBufferReader, CutsStringsBetweenByteOffsets) {
  Text text(std::string("\0A\0B\0C", 6));
  TextBufferReader reader(&text.buffer, 1200, BigEndian);
  EXPECT_EQ(units(reader.getString(2, 6, true)), u"BC");
  EXPECT_EQ(reader.getCurrentOffset(), 6);
  EXPECT_EQ(units(reader.getString(3, 3, true)), u"");
  EXPECT_EQ(units(reader.getString(0, 3, false)), u"A\uFFFD");  // ends mid-character
  EXPECT_EQ(reader.getCurrentOffset(), 3);
}

TEST(TextBufferReader, HandsOutTheBuffersBytesAndConvertsByteRuns) {
  Text text("\xC1\xC2\xC3\xC4");
  TextBufferReader reader(&text.buffer, 37, BigEndian);
  char16_t target[2] = {};
  int targetLength = 2;
  reader.toUnicode(target, &targetLength, text.bytes.data() + 1, 2);
  EXPECT_EQ(targetLength, 2);
  EXPECT_EQ(std::u16string(target, 2), u"BC");

  EXPECT_EQ(reader.getData(1, false), text.bytes.data() + 1);
  EXPECT_EQ(reader.getCurrentOffset(), 0);
  EXPECT_EQ(reader.getData(0, true), text.bytes.data());
  EXPECT_EQ(reader.getCurrentOffset(), 4);

  reader.setCurrentOffset(0);
  std::int32_t length = 10;
  EXPECT_EQ(reader.getData(&length, 2, true), text.bytes.data() + 2);
  EXPECT_EQ(length, 2);                      // lowered to what is there
  EXPECT_EQ(reader.getCurrentOffset(), 10);  // moved by what was asked for
  reader.moveCurrentOffset(-7);
  EXPECT_EQ(reader.getCurrentOffset(), 3);
}

TEST(TextBufferReader, BadInputGetsTheDocumentedFailure) {
  Text text("\xC1\xC2");
  TextBufferReader reader(&text.buffer, 37, BigEndian);
  PWFData value;
  char16_t target[2] = {};
  int room = 1;
  int badRoom = -1;
  const Code startAfterEnd{kInternal.symbol, kInternal.messageNumber,
                           "Start offset greater than end offset."};
  const Code badOffset{kInternal.symbol, kInternal.messageNumber, "Invalid offset: "};
  const Code targetTooSmall{kInternal.symbol, kInternal.messageNumber,
                            "error convering to unicode"};
  const auto fails = [](const char* function, const Code& code,
                        const std::vector<std::string>& inserts,
                        const std::function<void()>& operation) {
    SCOPED_TRACE(function);
    expectFailure<ZanConversionException>(operation, code.symbol, code.messageNumber,
                                          code.traceText, "textbffr",
                                          std::string("TextBufferReader::") + function, inserts);
  };
  fails("TextBufferReader", kInternal, {"Null input pointer"},
        [] { TextBufferReader(nullptr, 37, BigEndian); });
  fails("getCharacter", kInternal, {"Null output buffer pointer"},
        [&] { reader.getCharacter(nullptr, true); });
  fails("moveOffsetChars", kInternal, {"Invalid input length: ", "-1"},
        [&] { reader.moveOffsetChars(-1); });
  fails("getStringSection", kTooShort, {">= 1"},
        [&] { reader.getStringSection(value, -1, true, 2); });
  fails("getStringSection", kNoTerminator, {},
        [&] { reader.getStringSection(value, -1, true, 0); });
  fails("getString", startAfterEnd, {" Start offset = ", "2", " End offset = ", "1"},
        [&] { reader.getString(2, 1, true); });
  fails("getString", kTooShort, {}, [&] { reader.getString(0, 3, true); });
  fails("getString", badOffset, {"-1", " for buffer length: ", "2"},
        [&] { reader.getString(-1, 2, true); });
  fails("toUnicode", targetTooSmall, {"15"},  // U_BUFFER_OVERFLOW_ERROR
        [&] { reader.toUnicode(target, &room, "\xC1\xC2", 2); });
  fails("toUnicode", kInternal, {"Null input pointer"},
        [&] { reader.toUnicode(target, &room, nullptr, 1); });
  fails("toUnicode", kInternal, {"Invalid input length: ", "-1"},
        [&] { reader.toUnicode(target, &room, "\xC1", -1); });
  fails("toUnicode", kInternal, {"Null output buffer pointer"},
        [&] { reader.toUnicode(target, nullptr, "\xC1", 1); });
  fails("toUnicode", kInternal, {"Invalid output buffer length: ", "-1"},
        [&] { reader.toUnicode(target, &badRoom, "\xC1", 1); });
  fails("getData", kInternal, {"Null input pointer"}, [&] { reader.getData(nullptr, 0, false); });
}

}  // namespace
