// Byte buffers: the read-only view, the growable buffer with its lock, and the reading cursor.

#include <bsutils/bitstreambufferreader.h>
#include <bsutils/bytebuffer.h>
#include <gtest/gtest.h>
#include <zan/zanexception.h>

#include <cstdint>
#include <cstring>
#include <functional>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include "support/expect_failure.h"

namespace {

std::string contents(const BitstreamBuffer& buffer) {
  const auto* bytes = static_cast<const char*>(buffer.getData(0));
  return bytes == nullptr ? std::string()
                          : std::string(bytes, static_cast<std::size_t>(buffer.getLength()));
}

void expectRefused(const std::function<void()>& operation, const std::string& function,
                   const std::vector<std::string>& inserts) {
  expectFailure<ZanConversionException>(operation, kInternal.symbol, kInternal.messageNumber,
                                        kInternal.traceText, "bytebuffer", function, inserts);
}

TEST(ReadOnlyByteBuffer, ViewsTheCallersBytesOnce) {
  const char bytes[] = "abcdef";
  ReadOnlyByteBuffer empty;
  EXPECT_EQ(empty.getData(0), nullptr);
  EXPECT_EQ(empty.getLength(), 0);
  ReadOnlyByteBuffer view(bytes, 6);
  EXPECT_FALSE(view.create("zz", 2));
  std::int32_t available = 0;
  EXPECT_EQ(view.getData(&available, 2), bytes + 2);
  EXPECT_EQ(available, 4);
  EXPECT_EQ(contents(view), "abcdef");
  EXPECT_TRUE(empty.create(bytes, 3));
  EXPECT_FALSE(empty.create(bytes, 6));
  EXPECT_EQ(empty.getLength(), 3);
}

TEST(ReadWriteByteBuffer, AppendGrowsByDoublingFromOne) {
  ReadWriteByteBuffer buffer;
  EXPECT_EQ(buffer.getData(0), nullptr);
  buffer.append("abc", 3);
  EXPECT_EQ(buffer.capacity(), 4);
  buffer.append("de", 2);
  EXPECT_EQ(buffer.capacity(), 8);
  buffer.append("x", 0);
  buffer.append("x", -4);
  EXPECT_EQ(contents(buffer), "abcde");
  std::int32_t available = 0;
  EXPECT_EQ(static_cast<const char*>(buffer.getData(&available, 1))[0], 'b');
  EXPECT_EQ(available, 4);
}

TEST(ReadWriteByteBuffer, StartsWithACopyAndResetKeepsTheCapacity) {
  EXPECT_EQ(ReadWriteByteBuffer(nullptr, 5).getLength(), 0);
  EXPECT_EQ(ReadWriteByteBuffer("hello", 0).getLength(), 0);
  ReadWriteByteBuffer buffer("0123456789", 10);
  EXPECT_EQ(contents(buffer), "0123456789");
  buffer.reset();
  EXPECT_EQ(buffer.capacity(), 16);
  std::int32_t available = -1;
  EXPECT_EQ(buffer.getData(&available, 0), nullptr);
  EXPECT_EQ(available, 0);
}

TEST(ReadWriteByteBuffer, TruncateAndWriteKeepTheBytesContiguous) {
  // Truncation by more than there is empties the buffer; a count below one does nothing.
  for (const auto& [count, left] :
       {std::pair(3, "0123456"), std::pair(100, ""), std::pair(-2, "0123456789")}) {
    ReadWriteByteBuffer buffer("0123456789", 10);
    buffer.truncate(count);
    EXPECT_EQ(contents(buffer), left) << count;
  }
  // A write past the end appends at the end, leaving no gap.
  const std::tuple<const char*, std::int32_t, const char*> writes[] = {
      {"XY", 2, "01XY456789"}, {"XYZ", 8, "01234567XYZ"}, {"XY", 20, "0123456789XY"}};
  for (const auto& [data, offset, result] : writes) {
    ReadWriteByteBuffer buffer("0123456789", 10);
    buffer.write(data, static_cast<std::int32_t>(std::strlen(data)), offset);
    EXPECT_EQ(contents(buffer), result) << offset;
  }
}

TEST(ReadWriteByteBuffer, TakesItsOwnBytesEvenWhenItGrows) {
  // Capacity 10 is full: appending the buffer to itself reallocates under the source.
  ReadWriteByteBuffer buffer("0123456789", 10);
  buffer.append(buffer.getData(0), 10);
  EXPECT_EQ(contents(buffer), "01234567890123456789");
  // Overlapping its own bytes, then running past the end.
  buffer.write(buffer.getData(0), 20, 4);
  EXPECT_EQ(contents(buffer), "012301234567890123456789");
}

TEST(ReadWriteByteBuffer, LockReservesAndReleaseCommits) {
  ReadWriteByteBuffer buffer;
  unsigned char* room = buffer.appendLock(10);
  EXPECT_EQ(buffer.capacity(), 16);  // 1 doubled until 10 fit
  EXPECT_TRUE(buffer.isLocked());
  std::memcpy(room, "wxyz", 4);
  EXPECT_TRUE(buffer.release(4));
  EXPECT_FALSE(buffer.isLocked());
  EXPECT_FALSE(buffer.release(3));
  EXPECT_EQ(contents(buffer), "wxyz");
  buffer.appendLock(8);
  EXPECT_TRUE(buffer.release(0));  // nothing committed, just unlocked
  EXPECT_FALSE(buffer.isLocked());
  // More than reserved: what lies in the storage is kept, what lies beyond it becomes zeros.
  std::memcpy(buffer.appendLock(3), "abcdefghijkl", 12);
  EXPECT_TRUE(buffer.release(14));
  EXPECT_EQ(contents(buffer), std::string("wxyzabcdefghijkl\0\0", 18));
}

TEST(ReadWriteByteBuffer, EveryChangeAbandonsAnOpenLock) {
  const std::pair<void (*)(ReadWriteByteBuffer&), const char*> cases[] = {
      {[](ReadWriteByteBuffer& b) { b.append("!", 1); }, "ab!"},
      {[](ReadWriteByteBuffer& b) { b.truncate(1); }, "a"},
      {[](ReadWriteByteBuffer& b) { b.write("Z", 1, 0); }, "Zb"},
      {[](ReadWriteByteBuffer& b) { b.reset(); }, ""},
  };
  for (const auto& [change, result] : cases) {
    ReadWriteByteBuffer buffer("ab", 2);
    std::memcpy(buffer.appendLock(4), "lost", 4);
    change(buffer);
    EXPECT_FALSE(buffer.isLocked()) << result;
    EXPECT_EQ(contents(buffer), result);
  }
}

TEST(ReadWriteByteBuffer, RefusesBadArguments) {
  ReadWriteByteBuffer buffer("ab", 2);
  expectRefused([&] { buffer.append(nullptr, 3); }, "ReadWriteByteBuffer::append",
                {"Null input pointer"});
  expectRefused([&] { buffer.write("x", 1, -1); }, "ReadWriteByteBuffer::write",
                {"Invalid offset: ", "-1"});
  expectRefused([&] { buffer.appendLock(INT32_MAX); }, "ReadWriteByteBuffer::appendLock",
                {"Invalid input length: ", "2147483647"});
  EXPECT_EQ(contents(buffer), "ab");
  expectRefused([] { BitstreamBufferReader(static_cast<const BitstreamBuffer*>(nullptr)); },
                "BitstreamBufferReader::BitstreamBufferReader", {"Null input pointer"});
}

TEST(BitstreamBufferReader, ReadsForwardAndNeverPastTheEnd) {
  ReadWriteByteBuffer source("0123456789", 10);
  BitstreamBufferReader reader(&source);
  source.append("more", 4);  // not seen: the reader took the length once
  EXPECT_EQ(reader.getLength(), 10);
  const unsigned char* first = reader.readData(4);
  ASSERT_NE(first, nullptr);
  EXPECT_EQ(std::memcmp(first, "0123", 4), 0);
  EXPECT_EQ(reader.readData(7), nullptr);
  EXPECT_EQ(reader.getCurOffset(), 4);
  EXPECT_NE(reader.readData(6), nullptr);
  EXPECT_EQ(reader.getCurOffset(), 10);
  EXPECT_NE(reader.readData(0), nullptr);
  EXPECT_EQ(reader.readData(1), nullptr);
}

TEST(BitstreamBufferReader, OffsetsAndAddressesStayInside) {
  const char bytes[] = "0123456789";
  BitstreamBufferReader reader(bytes, 10);
  reader.setCurOffset(1000);
  EXPECT_EQ(reader.getCurOffset(), 10);
  reader.setCurOffset(-3);
  EXPECT_EQ(reader.readData(2), nullptr);
  EXPECT_EQ(reader.getCurOffset(), -3);
  reader.setCurOffset(2);
  EXPECT_EQ(reader.readData(-1), nullptr);
  std::int32_t available = -1;
  EXPECT_EQ(reader.getData(&available, 7), bytes + 7);
  EXPECT_EQ(available, 3);
  EXPECT_EQ(reader.getData(10), nullptr);
  EXPECT_EQ(reader.getData(-1), nullptr);
  BitstreamBufferReader assigned(nullptr, 0);
  EXPECT_EQ(assigned.readData(0), nullptr);
  assigned = reader;
  EXPECT_EQ(assigned.getCurOffset(), 2);
  EXPECT_EQ(assigned.getLength(), 10);
}

}  // namespace
