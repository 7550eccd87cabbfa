// TextBufferWriter: real code pages, the cache and its flush points, copies, appendBuf, failures.

#include <bsutils/bytebuffer.h>
#include <bsutils/textbufferreader.h>
#include <bsutils/textbufferwriter.h>
#include <gtest/gtest.h>
#include <zan/zanexception.h>

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <tuple>
#include <vector>

#include "support/capturing_sink.h"
#include "support/expect_failure.h"

namespace {

using namespace std::string_view_literals;
constexpr EEndian B = BigEndian;
constexpr EEndian L = LittleEndian;

std::string bytes(const BitstreamBuffer& buffer) {
  const auto* data = static_cast<const char*>(buffer.getData(0));
  return data == nullptr ? std::string()
                         : std::string(data, static_cast<std::size_t>(buffer.getLength()));
}

// Bytes from the CCSID 37 table and the UTF definitions, through appendStr, the cache and writeStr.
// Code page 0 stands for UTF-8 and a negative endian for little-endian.
TEST(TextBufferWriter, ConvertsIntoTheCodePageWhicheverWayTheTextGoesIn) {
  const std::tuple<std::int32_t, int, std::u16string_view, std::string_view> cases[] = {
      {37, B, u"Hello, 1!\u20ac", "\xC8\x85\x93\x93\x96\x6B\x40\xF1\x5A\x3F"sv},
      {0, -1, u"a\u00e9\u20ac\U0001F600", "a\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80"sv},
      {1200, -7, u"A\u20ac\U0001F600", "A\0\xAC\x20\x3D\xD8\0\xDE"sv},
      {17584, B, u"A\u20ac\U0001F600", "\0A\x20\xAC\xD8\x3D\xDE\0"sv},
  };
  for (const auto& [codepage, endian, text, expected] : cases) {
    for (int way = 0; way < 3; ++way) {
      SCOPED_TRACE(std::to_string(codepage) + ", way " + std::to_string(way));
      ReadWriteByteBuffer buffer;
      TextBufferWriter writer(&buffer, codepage, static_cast<EEndian>(endian));
      if (way == 0) writer.appendStr(text.data());
      if (way == 1) writer.appendStrCache(text.data());
      if (way == 2) writer.writeStr(text.data(), static_cast<std::int32_t>(text.size()), 0);
      writer.flush();
      EXPECT_EQ(bytes(buffer), expected);
    }
  }
  ReadWriteByteBuffer buffer;
  const TextBufferWriter defaults(&buffer, 0, static_cast<EEndian>(-1));
  EXPECT_EQ(defaults.getCodepage(), 1208);
  EXPECT_EQ(defaults.getEndian(), L);
  EXPECT_THROW(TextBufferWriter(&buffer, 99999, B), ZanRecoverableException);
  EXPECT_THROW(TextBufferWriter(&buffer, 1200, static_cast<EEndian>(0)), ZanRecoverableException);
}

// EBCDIC, one byte per unit: 'a' x cached, then 'b' x piece; the buffer holds `written` bytes.
TEST(TextBufferWriter, CacheHoldsAtMost1024UnitsAndFlushesBeforeOverflowing) {
  const std::tuple<std::int32_t, std::int32_t, std::int32_t> cases[] = {
      {1000, 24, 0}, {1024, 1, 1024}, {1024, 0, 0}, {3, 1025, 1028}, {1, 1024, 1}};
  for (const auto& [cached, piece, written] : cases) {
    SCOPED_TRACE(std::to_string(cached) + " + " + std::to_string(piece));
    ReadWriteByteBuffer buffer;
    TextBufferWriter writer(&buffer, 37, B);
    const auto a = static_cast<std::size_t>(cached), b = static_cast<std::size_t>(piece);
    writer.appendStrCache(std::u16string(a, u'a').data(), cached);
    writer.appendStrCache(std::u16string(b, u'b').data(), piece);
    EXPECT_EQ(buffer.getLength(), written);
    writer.flush();
    EXPECT_EQ(bytes(buffer), std::string(a, '\x81') + std::string(b, '\x82'));
  }
}

// From "XY" in the buffer and "abc" cached (UTF-8): the bytes right after, then after a flush.
TEST(TextBufferWriter, BufferOperationsFlushTheCacheExactlyWhereTheyLookAtTheBytes) {
  const ReadOnlyByteBuffer bangBytes("!!", 2);
  TextBufferReader bang(&bangBytes, 1208, L);
  const std::tuple<std::function<void(TextBufferWriter&)>, const char*, const char*> cases[] = {
      {[](auto& w) { w.append("!!", 2); }, "XYabc!!", "XYabc!!"},
      {[](auto& w) { w.write("Z", 1, 0); }, "ZYabc", "ZYabc"},
      {[](auto& w) { EXPECT_TRUE((*w.appendLock(1) = '1') && w.release(1)); }, "XYabc1", "XYabc1"},
      {[](auto& w) { EXPECT_EQ(w.getLength(), 5); }, "XYabc", "XYabc"},
      {[](auto& w) { w.writeStr(u"Z", 1, 3); }, "XYaZc", "XYaZc"},
      {[](auto& w) { w.appendStr(u"!!"); }, "XY!!", "XY!!abc"},
      {[&](auto& w) { w.appendBuf(&bang, 0, 2); }, "XY!!", "XY!!abc"},
      {[](auto& w) { w.reset(); }, "", "abc"},
      {[](auto& w) { w.truncate(1); }, "X", "Xabc"},
      {[](auto& w) { EXPECT_FALSE(w.release(2)); }, "XY", "XYabc"},
  };
  for (const auto& [operation, rightAfter, afterFlush] : cases) {
    SCOPED_TRACE(afterFlush);
    ReadWriteByteBuffer buffer("XY", 2);
    TextBufferWriter writer(&buffer, 1208, L);
    writer.appendStrCache(u"abc");
    operation(writer);
    EXPECT_EQ(bytes(buffer), rightAfter);
    writer.flush();
    EXPECT_EQ(bytes(buffer), afterFlush);
  }
}

TEST(TextBufferWriter, CopiesShareTheConverterAndDestructionDropsTheCache) {
  ReadWriteByteBuffer buffer;
  { TextBufferWriter(&buffer, 37, B).appendStrCache(u"lost"); }
  EXPECT_EQ(buffer.getLength(), 0);
  auto original = std::make_unique<TextBufferWriter>(&buffer, 1208, L);
  original->appendStrCache(u"a");
  TextBufferWriter copy(*original);
  EXPECT_EQ(copy.getConverter(), original->getConverter());
  original->flush();
  original.reset();
  copy.appendStrCache(u"\u00e9");  // the copy took its own cache along
  copy.flush();
  EXPECT_EQ(bytes(buffer), "aa\xC3\xA9");
}

// A buffer that locks but gives no room.
class NoRoomBuffer : public ReadWriteByteBuffer {
 public:
  unsigned char* appendLock(std::int32_t length) override {
    ReadWriteByteBuffer::appendLock(length);
    return nullptr;
  }
};

// Every failure leaves the buffer's "XY" and the cached "a" as they were, and no buffer locked.
TEST(TextBufferWriter, RefusesBadArgumentsLeavingBufferAndCacheAlone) {
  ReadWriteByteBuffer buffer("XY", 2);
  TextBufferWriter w(&buffer, 1208, L);
  w.appendStrCache(u"a");
  NoRoomBuffer noRoom;
  TextBufferWriter n(&noRoom, 37, B);  // one byte a unit: INT32_MAX overflows by the slack
  const ReadOnlyByteBuffer abcd("abcd", 4);
  TextBufferReader r(&abcd, 1208, L);
  int four = 4, one = 1, minus = -1;
  char t[4];
  const std::string cpi = "CPI Internal Error", past = "Cannot write past the end of buffer";
  const std::string conv = "error convering from unicode", null = "Null output buffer pointer";
  const std::string badLength = "Invalid input length: ", badOut = "Invalid output buffer length: ";
  const std::tuple<std::string, std::string, std::function<void()>, std::vector<std::string>>
      cases[] = {
          {"TextBufferWriter", cpi, [] { TextBufferWriter(nullptr, 37, B); }, {null}},
          {"appendStrCache", cpi, [&] { w.appendStrCache(u"a", -1); }, {badLength, "-1"}},
          {"appendStr", cpi, [&] { w.appendStr(nullptr, 2); }, {"Null input pointer"}},
          {"appendStr", cpi, [&] { w.appendStr(u"a", -3); }, {badLength, "-3"}},
          {"appendStr", cpi, [&] { n.appendStr(u"a", INT32_MAX); }, {badLength, "2147483647"}},
          {"writeStr", cpi, [&] { n.writeStr(u"a", INT32_MAX, 0); }, {badLength, "2147483647"}},
          {"writeStr", cpi, [&] { w.writeStr(nullptr, 1, 0); }, {"Null input pointer"}},
          {"fromUnicode", cpi, [&] { w.fromUnicode(t, nullptr, u"a", 1); }, {null}},
          {"fromUnicode", cpi, [&] { w.fromUnicode(nullptr, &four, u"a", 1); }, {null}},
          {"fromUnicode", cpi, [&] { w.fromUnicode(t, &minus, u"a", 1); }, {badOut, "-1"}},
          {"fromUnicode", cpi, [&] { n.appendStr(u"abc"); }, {null}},
          // Too small: the tail of the character left in the converter must be dropped.
          {"fromUnicode", conv, [&] { w.fromUnicode(t, &one, u"\u00e9", 1); }, {"15"}},
          {"appendBuf", cpi, [&] { w.appendBuf(nullptr, 0, 0); }, {"Null input pointer"}},
          {"appendBuf", past, [&] { w.appendBuf(&r, 3, 2); }, {}},
          {"appendBuf", past, [&] { w.appendBuf(&r, 0, 5); }, {}},
          {"appendBuf", past, [&] { w.appendBuf(&r, -1, 2); }, {}},
      };
  for (const auto& [function, text, operation, inserts] : cases) {
    SCOPED_TRACE(function);
    expectFailure<ZanConversionException>(operation, kInternal.symbol, kInternal.messageNumber,
                                          text, "textbffr", "TextBufferWriter::" + function,
                                          inserts);
  }
  EXPECT_EQ(one, 1);
  EXPECT_FALSE(noRoom.isLocked());
  EXPECT_EQ(bytes(buffer), "XY");
  w.flush();
  EXPECT_EQ(bytes(buffer), "XYa");
}

// Kept as always written: UTF-16 from another code page loses its second half, read in host order;
// UTF-16 between byte orders repeats each pair's second byte (an odd last byte copied as is).
TEST(TextBufferWriterAppendBuf, CopiesARangeRecodingWhenTheCodePagesDifferEvenFromItsOwnBuffer) {
  const std::tuple<std::int32_t, EEndian, std::string_view, std::int32_t, std::int32_t,
                   std::int32_t, EEndian, std::string_view>
      cases[] = {
          {37, B, "\xC8\x85\x93\x93\x96"sv, 1, 3, 1208, L, "el"sv},
          {37, B, "\xC8\x85"sv, 1, 1, 1208, L, ""sv},
          {1208, L, "\xC3\xA9\xF0\x9F\x98\x80"sv, 0, 6, 1200, B, "\0\xE9\xD8\x3D\xDE\0"sv},
          {1200, L, "A\0B\0C\0D\0"sv, 0, 8, 37, B, "\xC1\xC2"sv},
          {13488, B, "\0A\0B\0C\0D"sv, 0, 8, 1208, L, "\xE4\x84\x80\xE4\x88\x80"sv},
          {1200, L, "A\0B"sv, 0, 3, 37, B, ""sv},
          {37, B, "\xC8\x85\x93"sv, 0, 3, 37, L, "\xC8\x85\x93"sv},
          {17584, B, "\0A\0B\x05"sv, 0, 5, 17584, L, "AABB\x05"sv},
      };
  for (const auto& [readerCp, readerEndian, input, start, end, writerCp, writerEndian, written] :
       cases) {
    SCOPED_TRACE(written);
    const ReadOnlyByteBuffer source(input.data(), static_cast<std::int32_t>(input.size()));
    TextBufferReader reader(&source, readerCp, readerEndian);
    ReadWriteByteBuffer buffer;
    TextBufferWriter writer(&buffer, writerCp, writerEndian);
    writer.appendBuf(&reader, start, end);
    EXPECT_EQ(bytes(buffer), written);
    EXPECT_EQ(reader.getCurrentOffset(), 0);
  }
  // Several chunks, the buffer moving while its own bytes are copied; pairs of equal bytes.
  std::string text(3000, ' ');
  for (std::size_t i = 0; i < text.size(); ++i) text[i] = static_cast<char>('a' + i / 2 % 26);
  for (const EEndian readerEndian : {B, L}) {
    ReadWriteByteBuffer buffer(text.data(), 3000);
    TextBufferReader reader(&buffer, 1200, readerEndian);
    TextBufferWriter writer(&buffer, 1200, B);
    writer.appendBuf(&reader, 0, 3000);
    EXPECT_EQ(bytes(buffer), text + text) << readerEndian;
  }
}

TEST(TextBufferWriter, AppendStrTracesTheLengthGivenNotTheTextUpToANul) {
  ReadWriteByteBuffer buffer;
  TextBufferWriter writer(&buffer, 37, B);
  CapturingSink sink(4);
  writer.appendStr(u"Hi!", 2);
  const auto records = sink.ofKind(ZanLog::Kind::debugTrace);
  ASSERT_EQ(records.size(), 1u);
  EXPECT_EQ(records[0].inserts, (std::vector<std::string>{"Hi", "2"}));
}

}  // namespace
