// A reader over a code page in which every byte is one UTF-16 unit whatever surrounds it, and only
// the byte 0 is the unit 0 (EBCDIC 37 and its kin, Latin-1, the PC code pages), reads through a
// table of those units and finds terminators among the bytes, leaving the rest to the general
// path, which also runs whenever debug trace is on. These tests hold the two paths to the same
// answers (results, cursors and failures) over seeded random buffers and reads, and hold both to
// what ICU itself makes of the same bytes, in those code pages and in single-byte ones with
// unmapped bytes, which the table does not take.

#include <bsutils/bytebuffer.h>
#include <bsutils/textbufferreader.h>
#include <gtest/gtest.h>
#include <unicode/ucnv.h>
#include <zan/zanexception.h>

#include <cstdint>
#include <cstdio>
#include <iterator>
#include <memory>
#include <random>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "support/outcome.h"

namespace {

// Every byte one unit, only the byte 0 the unit 0.
const std::int32_t kByteUnitCcsids[] = {37, 500, 1047, 1140, 819, 850, 1252};
// Single-byte, but with bytes that have no mapping (ICU substitutes them).
const std::int32_t kGappedCcsids[] = {875, 424};

// Bytes on the heap, exactly as many as the text, so that the sanitizer sees any read past them.
struct Text {
  explicit Text(std::vector<char> content)
      : bytes(std::move(content)), buffer(bytes.data(), static_cast<std::int32_t>(bytes.size())) {}
  std::vector<char> bytes;
  ReadOnlyByteBuffer buffer;
};

// Up to `most` random bytes. In half the buffers about one byte in eight is 0, so that most
// strings end within reach; in the others 0 is rare, so that strings run long or never end.
std::vector<char> randomBytes(std::mt19937& random, std::size_t most) {
  std::vector<char> bytes(std::uniform_int_distribution<std::size_t>(0, most)(random));
  const unsigned zeroEvery = random() % 2 == 0 ? 8 : 2000;
  for (char& byte : bytes) {
    const auto value = static_cast<int>(random() % 256);
    byte = static_cast<char>(random() % zeroEvery == 0 ? 0 : value);
  }
  return bytes;
}

std::string hex(const char16_t* units, std::int32_t length) {
  std::string text;
  for (std::int32_t i = 0; i < length; ++i) {
    char unit[8];
    std::snprintf(unit, sizeof unit, " %04X", static_cast<unsigned>(units[i]));
    text += unit;
  }
  return text;
}

// The units of a string result in hexadecimal, so that a disagreement shows every unit.
std::string textOf(const PWFData& value) {
  if (value.getDataLogicalType() != eString) return " none";
  const ZanStringBase& text = value.getPWFStringValue();
  return hex(text.data(), text.length());
}

// One call of the reader, picked and aimed at random (a position from before the buffer to past
// its end, or the cursor), and what it gave: its result and the cursor after it, or its failure.
// The picks never depend on what a call gave, so the same seed makes the same calls.
std::string randomCall(TextBufferReader& reader, const std::vector<char>& bytes,
                       std::mt19937& random) {
  const auto size = static_cast<std::int32_t>(bytes.size());
  const auto pick = [&random](std::int32_t low, std::int32_t high) {
    return std::uniform_int_distribution<std::int32_t>(low, high)(random);
  };
  const std::int32_t offset = pick(0, 1) == 0 ? TextBufferReader::kAtCursor : pick(-2, size + 2);
  const bool advance = pick(0, 3) != 0;
  std::string call;
  std::string gave;
  try {
    switch (pick(0, 8)) {
      case 0:
      case 1: {
        const std::int32_t length = pick(0, 9) == 0 ? pick(0, size + 2) : pick(0, 24);
        call = "counted " + std::to_string(length);
        PWFData value;
        const bool found = reader.getStringSection(value, length, advance, offset);
        gave = std::to_string(found) + textOf(value);
        break;
      }
      case 2:
      case 3: {
        call = "terminated";
        PWFData value;
        const bool found = reader.getStringSection(value, -1, advance, offset);
        gave = std::to_string(found) + textOf(value);
        break;
      }
      case 4: {
        call = "character";
        char16_t unit = u'?';
        int byteLength = -1;
        const bool found = reader.getCharacter(&unit, advance, &byteLength, offset);
        gave = std::to_string(found) + hex(&unit, 1) + " " + std::to_string(byteLength);
        break;
      }
      case 5: {
        call = "cached character";
        char16_t unit = u'?';
        int byteLength = -1;
        const bool found = reader.getCharacterCached(&unit, &byteLength, offset);
        gave = std::to_string(found) + hex(&unit, 1) + " " + std::to_string(byteLength);
        break;
      }
      case 6: {
        const std::int32_t characters = pick(0, 9) == 0 ? -1 : pick(0, size + 2);
        call = "skip " + std::to_string(characters);
        gave = std::to_string(advance ? reader.moveOffsetChars(characters)
                                      : reader.setOffsetChars(characters));
        break;
      }
      case 7: {
        // Mostly in order; at times reversed, or outside the buffer.
        const std::int32_t start = pick(-1, size + 1);
        const std::int32_t end = pick(0, 4) == 0 ? pick(-1, size + 1) : pick(start, size + 1);
        call = "between " + std::to_string(start) + " " + std::to_string(end);
        gave = textOf(reader.getString(start, end, advance));
        break;
      }
      case 8: {
        // Raw bytes of the buffer's own through the reader's converter, into a target that may be
        // too small.
        const std::int32_t start = pick(0, size);
        const std::int32_t length = pick(0, size - start);
        int room = pick(0, 1) == 0 ? length : pick(0, length);
        call = "toUnicode " + std::to_string(start) + " " + std::to_string(length) + " " +
               std::to_string(room);
        std::vector<char16_t> target(static_cast<std::size_t>(room));
        reader.toUnicode(target.data(), &room, bytes.data() + start, length);
        gave = hex(target.data(), room);
        break;
      }
    }
  } catch (const ZanException& failure) {
    gave = std::string("throws ") + failure.what();
  }
  return call + " " + std::to_string(advance) + " at " + std::to_string(offset) + ": " + gave +
         " / cursor " + std::to_string(reader.getCurrentOffset());
}

std::vector<std::string> randomCalls(const Text& text, std::int32_t ccsid, unsigned seed) {
  TextBufferReader reader(&text.buffer, ccsid, BigEndian);
  std::mt19937 random(seed);
  std::vector<std::string> calls;
  for (int i = 0; i < 40; ++i) calls.push_back(randomCall(reader, text.bytes, random));
  return calls;
}

TEST(TextBufferReaderFastPath, ReadsAsTheGeneralPathReads) {
  for (const std::int32_t ccsid : kByteUnitCcsids) {
    for (unsigned seed = 0; seed < 200; ++seed) {
      SCOPED_TRACE(testing::Message() << "CCSID " << ccsid << ", seed " << seed);
      std::mt19937 random(seed);
      // One buffer in ten is longer than the general path's conversion steps.
      const Text text(randomBytes(random, seed % 10 == 0 ? 3000 : 120));
      const std::vector<std::string> fast = randomCalls(text, ccsid, seed);
      GeneralPathOnly general;
      ASSERT_EQ(fast, randomCalls(text, ccsid, seed));
    }
  }
}

// What ICU makes of the bytes from `position` with a converter of its own: as many units as `room`
// holds, and where each unit's bytes begin.
struct IcuUnits {
  std::u16string units;
  std::vector<std::int32_t> offsets;
  std::int32_t bytes = 0;  // taken
};

IcuUnits icuUnits(std::int32_t ccsid, const std::vector<char>& bytes, std::int32_t position,
                  std::int32_t room) {
  UErrorCode status = U_ZERO_ERROR;
  const std::unique_ptr<UConverter, void (*)(UConverter*)> converter(
      ucnv_open(("ibm-" + std::to_string(ccsid)).c_str(), &status), ucnv_close);
  IcuUnits read;
  read.units.resize(static_cast<std::size_t>(room));
  read.offsets.resize(static_cast<std::size_t>(room));
  char16_t* out = read.units.data();
  const char* const begin = bytes.data() + position;
  const char* in = begin;
  ucnv_toUnicode(converter.get(), &out, out + room, &in, bytes.data() + bytes.size(),
                 read.offsets.data(), true, &status);
  EXPECT_TRUE(U_SUCCESS(status) || status == U_BUFFER_OVERFLOW_ERROR) << u_errorName(status);
  read.units.resize(static_cast<std::size_t>(out - read.units.data()));
  read.bytes = static_cast<std::int32_t>(in - begin);
  return read;
}

std::u16string unitsOf(const PWFData& value) {
  const ZanStringBase& text = value.getPWFStringValue();
  return std::u16string(text.data(), static_cast<std::size_t>(text.length()));
}

// Every counted string of up to 24 units, every null-terminated string and every character, at
// every position of the bytes, as ICU reads them.
void expectIcuReads(std::int32_t ccsid, const Text& text) {
  TextBufferReader reader(&text.buffer, ccsid, BigEndian);
  const auto size = static_cast<std::int32_t>(text.bytes.size());
  for (std::int32_t position = 0; position < size; ++position) {
    SCOPED_TRACE(position);
    for (std::int32_t length = 0; length <= 24; ++length) {
      const IcuUnits expected = icuUnits(ccsid, text.bytes, position, length);
      PWFData value;
      reader.setCurrentOffset(position);
      const bool found = expected.units.size() == static_cast<std::size_t>(length);
      ASSERT_EQ(reader.getStringSection(value, length, true), found) << length;
      if (found) {
        EXPECT_EQ(unitsOf(value), expected.units) << length;
      }
      EXPECT_EQ(reader.getCurrentOffset(), found ? position + expected.bytes : position) << length;
    }
    // Null-terminated: the units before the first 0 unit; the cursor after the terminator's bytes.
    const IcuUnits all = icuUnits(ccsid, text.bytes, position, size - position);
    const std::size_t terminator = all.units.find(u'\0');
    PWFData value;
    reader.setCurrentOffset(position);
    if (terminator == std::u16string::npos) {
      EXPECT_THROW(reader.getStringSection(value, -1, true), ZanConversionException);
    } else {
      ASSERT_TRUE(reader.getStringSection(value, -1, true));
      EXPECT_EQ(unitsOf(value), all.units.substr(0, terminator));
      EXPECT_EQ(
          reader.getCurrentOffset(),
          position + (terminator + 1 < all.units.size() ? all.offsets[terminator + 1] : all.bytes));
    }
    const IcuUnits first = icuUnits(ccsid, text.bytes, position, 1);
    char16_t unit = 0;
    int byteLength = 0;
    EXPECT_TRUE(reader.getCharacter(&unit, false, &byteLength, position));
    EXPECT_EQ(std::u16string(1, unit), first.units);
    EXPECT_EQ(byteLength, first.bytes);
  }
}

TEST(TextBufferReaderFastPath, ReadsWhatIcuMakesOfTheSameBytes) {
  std::vector<std::int32_t> ccsids(std::begin(kByteUnitCcsids), std::end(kByteUnitCcsids));
  ccsids.insert(ccsids.end(), std::begin(kGappedCcsids), std::end(kGappedCcsids));
  for (const std::int32_t ccsid : ccsids) {
    for (unsigned seed = 0; seed < 20; ++seed) {
      SCOPED_TRACE(testing::Message() << "CCSID " << ccsid << ", seed " << seed);
      std::mt19937 random(seed);
      expectIcuReads(ccsid, Text(randomBytes(random, 120)));
      if (HasFatalFailure()) return;
    }
    // Every byte value, each followed by every other.
    std::vector<char> everyByte;
    for (int first = 0; first < 256; first += 15) {
      for (int second = 0; second < 256; ++second) {
        everyByte.push_back(static_cast<char>(first));
        everyByte.push_back(static_cast<char>(second));
      }
    }
    SCOPED_TRACE(testing::Message() << "CCSID " << ccsid << ", every byte");
    const Text text(everyByte);
    TextBufferReader reader(&text.buffer, ccsid, BigEndian);
    PWFData value;
    ASSERT_TRUE(reader.getStringSection(value, static_cast<std::int32_t>(everyByte.size()), true));
    const auto size = static_cast<std::int32_t>(everyByte.size());
    EXPECT_EQ(unitsOf(value), icuUnits(ccsid, everyByte, 0, size).units);
  }
}

TEST(TextBufferReaderFastPath, LongStringsReadWhole) {
  // Far past the general path's conversion steps; 0xC1 is "A" and 0x81 is "a" in EBCDIC 37.
  std::vector<char> bytes(5000, '\xC1');
  bytes.push_back('\0');
  bytes.insert(bytes.end(), 3000, '\x81');
  const Text text(bytes);
  TextBufferReader reader(&text.buffer, 37, BigEndian);
  PWFData value;
  ASSERT_TRUE(reader.getStringSection(value, -1, true));
  EXPECT_EQ(unitsOf(value), std::u16string(5000, u'A'));
  EXPECT_EQ(reader.getCurrentOffset(), 5001);
  EXPECT_FALSE(reader.getStringSection(value, 3001, true));
  EXPECT_EQ(reader.getCurrentOffset(), 5001);
  ASSERT_TRUE(reader.getStringSection(value, 3000, true));
  EXPECT_EQ(unitsOf(value), std::u16string(3000, u'a'));
  EXPECT_EQ(reader.getCurrentOffset(), 8001);
  reader.setCurrentOffset(5001);
  EXPECT_THROW(reader.getStringSection(value, -1, true), ZanConversionException);
  EXPECT_TRUE(reader.setOffsetChars(7000));
  EXPECT_EQ(reader.getCurrentOffset(), 7000);
}

TEST(TextBufferReaderFastPath, ReadersOnManyThreadsReadAlike) {
  // Readers of the same code pages made at once, each reading its own copy of the same bytes. No
  // other test reads these two, so that their byte units are first looked for here, on every
  // thread at once.
  std::vector<std::thread> threads;
  std::vector<std::u16string> read(8);
  for (std::size_t i = 0; i < read.size(); ++i) {
    threads.emplace_back([&read, i] {
      const Text text(std::vector<char>{'\xC8', '\x89', '\0'});  // "Hi" in both
      TextBufferReader reader(&text.buffer, i % 2 == 0 ? 273 : 297, BigEndian);
      PWFData value;
      if (reader.getStringSection(value, -1, true)) read[i] = unitsOf(value);
    });
  }
  for (std::thread& thread : threads) thread.join();
  for (const std::u16string& units : read) EXPECT_EQ(units, u"Hi");
}

}  // namespace
