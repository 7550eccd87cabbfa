// The text buffer writer: conversion into real code pages, the cache and its flush points, the
// buffer operations around it, copies, and the failures of bad input.

#include <bsutils/bytebuffer.h>
#include <bsutils/textbufferreader.h>
#include <bsutils/textbufferwriter.h>
#include <gtest/gtest.h>
#include <zan/zanexception.h>

#include <cstdint>
#include <cstdio>
#include <cstring>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "support/capturing_sink.h"
#include "support/expect_failure.h"

namespace {

// The buffer's bytes as upper-case hexadecimal pairs, "C8 85".
std::string hex(const BitstreamBuffer& buffer) {
  const auto* bytes = static_cast<const unsigned char*>(buffer.getData(0));
  std::string text;
  for (std::int32_t i = 0; i < buffer.getLength(); ++i) {
    char pair[4];
    std::snprintf(pair, sizeof pair, i == 0 ? "%02X" : " %02X", bytes[i]);
    text += pair;
  }
  return text;
}

std::string contents(const BitstreamBuffer& buffer) {
  const auto* bytes = static_cast<const char*>(buffer.getData(0));
  return bytes == nullptr ? std::string()
                          : std::string(bytes, static_cast<std::size_t>(buffer.getLength()));
}

void expectWriterFailure(const std::function<void()>& operation, const std::string& function,
                         const std::string& traceText, const std::vector<std::string>& inserts) {
  expectFailure<ZanConversionException>(operation, "CP_INTERNAL_ERROR", 0xC000157E, traceText,
                                        "textbffr", function, inserts);
}

TEST(TextBufferWriter, AppliesTheDefaultsAndTakesTheWidestCharacterOnce) {
  struct Case {
    std::int32_t codepage;
    std::int32_t endian;
    std::int32_t expectedCodepage;
    EEndian expectedEndian;
    std::int32_t maxBytesPerChar;  // ICU's data for the converter opened
  };
  const Case cases[] = {{0, -1, 1208, LittleEndian, 3},
                        {-5, BigEndian, 1208, BigEndian, 3},
                        {37, BigEndian, 37, BigEndian, 1},
                        {1200, -7, 1200, LittleEndian, 2}};
  for (const Case& c : cases) {
    SCOPED_TRACE(c.codepage);
    ReadWriteByteBuffer buffer;
    TextBufferWriter writer(&buffer, c.codepage, static_cast<EEndian>(c.endian));
    EXPECT_EQ(writer.getCodepage(), c.expectedCodepage);
    EXPECT_EQ(writer.getEndian(), c.expectedEndian);
    EXPECT_EQ(writer.getMaxBytesPerChar(), c.maxBytesPerChar);
    ASSERT_NE(writer.getConverter(), nullptr);
  }
}

TEST(TextBufferWriter, RefusesWhatCannotBeWrittenTo) {
  ReadWriteByteBuffer buffer;
  EXPECT_THROW(TextBufferWriter(&buffer, 99999, BigEndian), ZanRecoverableException);
  EXPECT_THROW(TextBufferWriter(&buffer, 1200, static_cast<EEndian>(0)), ZanRecoverableException);
  expectWriterFailure([] { TextBufferWriter(nullptr, 37, BigEndian); },
                      "TextBufferWriter::TextBufferWriter", "CPI Internal Error",
                      {"Null output buffer pointer"});
}

// Expected bytes from the published CCSID 37 table and the UTF-8 and UTF-16 definitions.
TEST(TextBufferWriter, ConvertsIntoTheCodePageWhicheverWayTheTextGoesIn) {
  struct Case {
    const char* name;
    std::int32_t codepage;
    EEndian endian;
    const char16_t* text;
    const char* bytes;
  };
  const Case cases[] = {
      {"EBCDIC", 37, BigEndian, u"Hello, 1!", "C8 85 93 93 96 6B 40 F1 5A"},
      {"EBCDIC substitutes what it lacks", 37, BigEndian, u"\u20ac", "3F"},
      {"UTF-8 multi-byte", 1208, LittleEndian, u"a\u00e9\u20ac", "61 C3 A9 E2 82 AC"},
      {"UTF-8 outside the BMP", 1208, LittleEndian, u"\U0001F600", "F0 9F 98 80"},
      {"UTF-16LE", 1200, LittleEndian, u"A\u20ac", "41 00 AC 20"},
      {"UTF-16BE", 13488, BigEndian, u"A\u20ac", "00 41 20 AC"},
      {"UTF-16LE outside the BMP", 1200, LittleEndian, u"\U0001F600", "3D D8 00 DE"},
      {"UTF-16BE outside the BMP", 17584, BigEndian, u"\U0001F600", "D8 3D DE 00"},
  };
  const std::function<void(TextBufferWriter&, const char16_t*)> ways[] = {
      [](TextBufferWriter& writer, const char16_t* text) { writer.appendStr(text); },
      [](TextBufferWriter& writer, const char16_t* text) {
        writer.appendStrCache(text);
        writer.flush();
      },
      [](TextBufferWriter& writer, const char16_t* text) {
        writer.writeStr(text, static_cast<std::int32_t>(std::char_traits<char16_t>::length(text)),
                        0);
      },
  };
  for (const Case& c : cases) {
    for (std::size_t way = 0; way < std::size(ways); ++way) {
      SCOPED_TRACE(std::string(c.name) + ", way " + std::to_string(way));
      ReadWriteByteBuffer buffer;
      TextBufferWriter writer(&buffer, c.codepage, c.endian);
      ways[way](writer, c.text);
      EXPECT_EQ(hex(buffer), c.bytes);
      EXPECT_FALSE(buffer.isLocked());
    }
  }
}

// EBCDIC, one byte per unit: what left the cache is what the buffer holds.
TEST(TextBufferWriter, CacheHoldsAtMost1024UnitsAndFlushesBeforeOverflowing) {
  struct Case {
    const char* name;
    std::int32_t cached;   // units of 'a' cached first
    std::int32_t piece;    // units of 'b' appended next
    std::int32_t written;  // bytes in the buffer just after
  };
  const Case cases[] = {
      {"piece fills an empty cache exactly", 0, 1024, 0},
      {"piece fills a partial cache exactly", 1000, 24, 0},
      {"one unit past a full cache", 1024, 1, 1024},
      {"one unit past a partial cache", 1000, 25, 1000},
      {"long piece into an empty cache", 0, 1025, 1025},
      {"long piece after cached text", 3, 1025, 1028},
      {"full-size piece after cached text", 1, 1024, 1},
      {"empty piece into a full cache", 1024, 0, 0},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    ReadWriteByteBuffer buffer;
    TextBufferWriter writer(&buffer, 37, BigEndian);
    const std::u16string before(static_cast<std::size_t>(c.cached), u'a');
    const std::u16string piece(static_cast<std::size_t>(c.piece), u'b');
    writer.appendStrCache(before.data(), c.cached);
    ASSERT_EQ(buffer.getLength(), 0);
    writer.appendStrCache(piece.data(), c.piece);
    EXPECT_EQ(buffer.getLength(), c.written);
    writer.flush();
    const std::string expected = std::string(static_cast<std::size_t>(c.cached), '\x81') +  // 'a'
                                 std::string(static_cast<std::size_t>(c.piece), '\x82');    // 'b'
    EXPECT_EQ(contents(buffer), expected);
  }
}

// Every case starts from "XY" in the buffer and "abc" in the cache (UTF-8).
TEST(TextBufferWriter, BufferOperationsFlushTheCacheExactlyWhereTheyLookAtTheBytes) {
  struct Case {
    const char* name;
    std::function<void(TextBufferWriter&)> operation;
    const char* rightAfter;
    const char* afterFlush;
  };
  const ReadOnlyByteBuffer bangBytes("!!", 2);
  TextBufferReader bang(&bangBytes, 1208, LittleEndian);
  const Case cases[] = {
      {"append", [](TextBufferWriter& w) { w.append("!!", 2); }, "XYabc!!", "XYabc!!"},
      {"write", [](TextBufferWriter& w) { w.write("Z", 1, 0); }, "ZYabc", "ZYabc"},
      {"appendLock",
       [](TextBufferWriter& w) {
         std::memcpy(w.appendLock(2), "12", 2);
         EXPECT_TRUE(w.release(2));
       },
       "XYabc12", "XYabc12"},
      {"getLength", [](TextBufferWriter& w) { EXPECT_EQ(w.getLength(), 5); }, "XYabc", "XYabc"},
      {"writeStr", [](TextBufferWriter& w) { w.writeStr(u"Z", 1, 3); }, "XYaZc", "XYaZc"},
      {"appendStr bypasses", [](TextBufferWriter& w) { w.appendStr(u"!!"); }, "XY!!", "XY!!abc"},
      {"appendBuf bypasses", [&](TextBufferWriter& w) { w.appendBuf(&bang, 0, 2); }, "XY!!",
       "XY!!abc"},
      {"reset", [](TextBufferWriter& w) { w.reset(); }, "", "abc"},
      {"truncate", [](TextBufferWriter& w) { w.truncate(1); }, "X", "Xabc"},
      {"release unlocked", [](TextBufferWriter& w) { EXPECT_FALSE(w.release(2)); }, "XY", "XYabc"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    ReadWriteByteBuffer buffer("XY", 2);
    TextBufferWriter writer(&buffer, 1208, LittleEndian);
    writer.appendStrCache(u"abc");
    c.operation(writer);
    EXPECT_EQ(contents(buffer), c.rightAfter);
    writer.flush();
    EXPECT_EQ(contents(buffer), c.afterFlush);
  }
}

TEST(TextBufferWriter, DestructionDropsTheCache) {
  ReadWriteByteBuffer buffer;
  { TextBufferWriter(&buffer, 37, BigEndian).appendStrCache(u"lost"); }
  EXPECT_EQ(buffer.getLength(), 0);
}

TEST(TextBufferWriter, CopiesShareTheConverterAndOutliveTheOriginal) {
  ReadWriteByteBuffer buffer;
  auto original = std::make_unique<TextBufferWriter>(&buffer, 1208, LittleEndian);
  original->appendStrCache(u"a");
  TextBufferWriter copy(*original);
  TextBufferWriter assigned(&buffer, 37, BigEndian);
  assigned = copy;
  EXPECT_EQ(copy.getConverter(), original->getConverter());
  EXPECT_EQ(assigned.getConverter(), original->getConverter());
  original.reset();
  // Each copy took its own cache along.
  copy.appendStrCache(u"\u00e9");
  copy.flush();
  assigned.flush();
  EXPECT_EQ(hex(buffer), "61 C3 A9 61");
}

TEST(TextBufferWriter, TargetTooSmallFailsAndLeavesNothingForTheNextConversion) {
  ReadWriteByteBuffer buffer;
  TextBufferWriter writer(&buffer, 1208, LittleEndian);
  char target[1];
  int targetLength = 1;
  expectWriterFailure([&] { writer.fromUnicode(target, &targetLength, u"\u00e9", 1); },
                      "TextBufferWriter::fromUnicode", "error convering from unicode", {"15"});
  EXPECT_EQ(targetLength, 1);
  // The tail of the character that did not fit must not open the next conversion.
  writer.appendStr(u"AB");
  EXPECT_EQ(hex(buffer), "41 42");
}

TEST(TextBufferWriter, RefusesBadArguments) {
  ReadWriteByteBuffer buffer("XY", 2);
  TextBufferWriter writer(&buffer, 37, BigEndian);
  writer.appendStrCache(u"a");
  int size = 4;
  char target[4];
  struct Case {
    const char* function;
    std::function<void()> operation;
    std::vector<std::string> inserts;
  };
  const Case cases[] = {
      {"TextBufferWriter::appendStrCache",
       [&] { writer.appendStrCache(u"a", -1); },
       {"Invalid input length: ", "-1"}},
      {"TextBufferWriter::appendStr",
       [&] { writer.appendStr(nullptr, 2); },
       {"Null input pointer"}},
      {"TextBufferWriter::appendStr",
       [&] { writer.appendStr(u"a", -3); },
       {"Invalid input length: ", "-3"}},
      {"TextBufferWriter::appendStr",
       [&] { writer.appendStr(u"a", INT32_MAX); },
       {"Invalid input length: ", "2147483647"}},
      {"TextBufferWriter::writeStr",
       [&] { writer.writeStr(u"a", INT32_MAX, 0); },
       {"Invalid input length: ", "2147483647"}},
      {"TextBufferWriter::writeStr",
       [&] { writer.writeStr(nullptr, 1, 0); },
       {"Null input pointer"}},
      {"TextBufferWriter::writeStr",
       [&] { writer.writeStr(u"a", -1, 0); },
       {"Invalid input length: ", "-1"}},
      {"TextBufferWriter::fromUnicode",
       [&] { writer.fromUnicode(target, nullptr, u"a", 1); },
       {"Null output buffer pointer"}},
      {"TextBufferWriter::fromUnicode",
       [&] { writer.fromUnicode(nullptr, &size, u"a", 1); },
       {"Null output buffer pointer"}},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.function);
    expectWriterFailure(c.operation, c.function, "CPI Internal Error", c.inserts);
  }
  // Nothing was written and the cached text is still there.
  EXPECT_EQ(contents(buffer), "XY");
  writer.flush();
  EXPECT_EQ(hex(buffer), "58 59 81");
}

std::vector<unsigned char> bytesOf(const char* hexText) {
  std::vector<unsigned char> bytes;
  for (const char* p = hexText; *p != '\0'; p += p[2] == '\0' ? 2 : 3) {
    bytes.push_back(static_cast<unsigned char>(std::stoi(std::string(p, 2), nullptr, 16)));
  }
  return bytes;
}

// The two copies "as always written" are kept on purpose: UTF-16 from a reader of another code page
// loses its second half, and UTF-16 between byte orders repeats the second byte of each pair.
// Other expected bytes from the CCSID 37 table and the UTF-8 and UTF-16 definitions.
TEST(TextBufferWriterAppendBuf, CopiesARangeOfTheReadersBytesRecodingWhenTheCodePagesDiffer) {
  struct Case {
    const char* name;
    std::int32_t readerCodepage;
    EEndian readerEndian;
    const char* readerBytes;
    std::int32_t start;
    std::int32_t end;
    std::int32_t writerCodepage;
    EEndian writerEndian;
    const char* written;
  };
  const Case cases[] = {
      {"EBCDIC to UTF-8", 37, BigEndian, "C8 85 93 93 96", 0, 5, 1208, LittleEndian,
       "48 65 6C 6C 6F"},
      {"inner range", 37, BigEndian, "C8 85 93 93 96", 1, 3, 1208, LittleEndian, "65 6C"},
      {"equal offsets", 37, BigEndian, "C8 85", 1, 1, 1208, LittleEndian, ""},
      {"UTF-8 outside the BMP to UTF-16BE", 1208, LittleEndian, "C3 A9 E2 82 AC F0 9F 98 80", 0, 9,
       1200, BigEndian, "00 E9 20 AC D8 3D DE 00"},
      {"UTF-16LE to EBCDIC: first half", 1200, LittleEndian, "41 00 42 00 43 00 44 00", 0, 8, 37,
       BigEndian, "C1 C2"},
      {"UTF-16BE read in host order", 13488, BigEndian, "00 41 00 42 00 43 00 44", 0, 8, 1208,
       LittleEndian, "E4 84 80 E4 88 80"},
      {"UTF-16 under four bytes", 1200, LittleEndian, "41 00 42", 0, 3, 37, BigEndian, ""},
      {"same code page", 37, BigEndian, "C8 85 93", 0, 3, 37, LittleEndian, "C8 85 93"},
      {"same UTF-16 and byte order", 1200, BigEndian, "00 41 00 42", 0, 4, 1200, BigEndian,
       "00 41 00 42"},
      {"UTF-16 between byte orders", 1200, LittleEndian, "41 00 42 00", 0, 4, 1200, BigEndian,
       "00 00 00 00"},
      {"UTF-16 between byte orders, odd end", 17584, BigEndian, "00 41 00 42 05", 0, 5, 17584,
       LittleEndian, "41 41 42 42 05"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    const std::vector<unsigned char> bytes = bytesOf(c.readerBytes);
    const ReadOnlyByteBuffer source(bytes.data(), static_cast<std::int32_t>(bytes.size()));
    TextBufferReader reader(&source, c.readerCodepage, c.readerEndian);
    ReadWriteByteBuffer buffer;
    TextBufferWriter writer(&buffer, c.writerCodepage, c.writerEndian);
    writer.appendBuf(&reader, c.start, c.end);
    EXPECT_EQ(hex(buffer), c.written);
    EXPECT_EQ(reader.getCurrentOffset(), 0);
  }
}

// Long enough for several chunks and for the buffer to move while its own bytes are copied.
TEST(TextBufferWriterAppendBuf, CopiesFromItsOwnBufferAcrossChunks) {
  const std::string text(3000, 'x');
  for (const EEndian readerEndian : {BigEndian, LittleEndian}) {
    SCOPED_TRACE(readerEndian);
    ReadWriteByteBuffer buffer(text.data(), 3000);
    TextBufferReader reader(&buffer, 1200, readerEndian);
    TextBufferWriter writer(&buffer, 1200, BigEndian);
    writer.appendBuf(&reader, 0, 3000);
    EXPECT_EQ(contents(buffer), text + text);
  }
}

TEST(TextBufferWriterAppendBuf, RefusesRangesOutsideTheReadersBuffer) {
  const ReadOnlyByteBuffer source("abcd", 4);
  TextBufferReader reader(&source, 1208, LittleEndian);
  ReadWriteByteBuffer buffer;
  TextBufferWriter writer(&buffer, 1208, LittleEndian);
  struct Case {
    const char* name;
    std::int32_t start;
    std::int32_t end;
  };
  const Case cases[] = {{"end before start", 3, 2},
                        {"end past the buffer", 0, 5},
                        {"negative start", -1, 2},
                        {"both past the buffer", 5, 5},
                        {"widest range", INT32_MIN, INT32_MAX}};
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    expectWriterFailure([&] { writer.appendBuf(&reader, c.start, c.end); },
                        "TextBufferWriter::appendBuf", "Cannot write past the end of buffer", {});
  }
  expectWriterFailure([&] { writer.appendBuf(nullptr, 0, 0); }, "TextBufferWriter::appendBuf",
                      "CPI Internal Error", {"Null input pointer"});
  EXPECT_EQ(buffer.getLength(), 0);
}

// A buffer that locks but gives no room: the failure must not leave it locked.
class NoRoomBuffer : public ReadWriteByteBuffer {
 public:
  unsigned char* appendLock(std::int32_t length) override {
    ReadWriteByteBuffer::appendLock(length);
    return nullptr;
  }
};

TEST(TextBufferWriter, FailedAppendLeavesTheBufferUnlocked) {
  NoRoomBuffer buffer;
  TextBufferWriter writer(&buffer, 37, BigEndian);
  expectWriterFailure([&] { writer.appendStr(u"abc"); }, "TextBufferWriter::fromUnicode",
                      "CPI Internal Error", {"Null output buffer pointer"});
  EXPECT_FALSE(buffer.isLocked());
  EXPECT_EQ(buffer.getLength(), 0);
}

TEST(TextBufferWriter, AppendStrTracesItsInputAtDebugLevel) {
  ReadWriteByteBuffer buffer;
  TextBufferWriter writer(&buffer, 37, BigEndian);
  CapturingSink sink(4);
  writer.appendStr(u"Hi!", 2);
  const auto records = sink.ofKind(ZanLog::Kind::debugTrace);
  ASSERT_EQ(records.size(), 1u);
  EXPECT_EQ(records[0].function, "TextBufferWriter::appendStr");
  EXPECT_EQ(records[0].text, "Buffer and size");
  EXPECT_EQ(records[0].inserts, (std::vector<std::string>{"Hi", "2"}));
}

}  // namespace
