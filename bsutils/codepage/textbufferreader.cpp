#include <bsutils/cputils.h>
#include <bsutils/textbufferreader.h>
#include <zan/zanlog.h>

#include <algorithm>
#include <cstdint>
#include <functional>
#include <iterator>
#include <map>
#include <mutex>
#include <new>
#include <numeric>
#include <optional>
#include <string>

#include "core/cpdebugtrace.h"
#include "core/cpraise.h"

using namespace bsutils::internal;

namespace {

constexpr const char* kModule = "textbffr";
constexpr const char* kGetStringSection = "TextBufferReader::getStringSection";
constexpr std::int32_t kLocalCcsid = 1208;
// Units converted per step where only a count or a terminator is wanted; they live on the stack.
constexpr std::int32_t kChunkUnits = 1024;
// The terminator search starts with a short step, since most strings are short, and doubles it up
// to a whole chunk: a 20-character string is not paid for with 1024 units converted.
constexpr std::int32_t kFirstSearchUnits = 64;

// A full target is how a bounded conversion ends when text is left; it is not a failure here.
bool convertedCleanly(UErrorCode status) {
  return U_SUCCESS(status) || status == U_BUFFER_OVERFLOW_ERROR;
}

// The cursor is set without checks, so moving it must not be undefined when it runs off the range.
std::int32_t wrappingAdd(std::int32_t offset, std::int32_t delta) {
  return static_cast<std::int32_t>(static_cast<std::uint32_t>(offset) +
                                   static_cast<std::uint32_t>(delta));
}

void requirePointer(const void* pointer, const char* function, const char* insert) {
  if (pointer == nullptr) CP_RAISE(CP_INTERNAL_ERROR, kModule, function, nullptr, nullptr, insert);
}

void requireCount(std::int32_t characters, const char* function) {
  if (characters < 0) {
    CP_RAISE(CP_INTERNAL_ERROR, kModule, function, nullptr, nullptr,
             "Invalid input length: ", characters);
  }
}

using ByteUnits = std::array<char16_t, 256>;

// The unit of each byte value when every byte of the code page is one UTF-16 unit whatever comes
// before or after it, and only the byte 0 is the unit 0; nothing for any other code page. The
// probe is a converter of its own, since the reader's may be borrowed and in the middle of a
// conversion. It stops on a byte that has no mapping instead of substituting, and it does not
// flush, so that a byte that could begin a longer sequence is held back and yields no unit.
std::optional<ByteUnits> probeByteUnits(const char* name) {
  UErrorCode status = U_ZERO_ERROR;
  const std::unique_ptr<UConverter, void (*)(UConverter*)> probe(ucnv_open(name, &status),
                                                                 ucnv_close);
  ucnv_setToUCallBack(probe.get(), UCNV_TO_U_CALLBACK_STOP, nullptr, nullptr, nullptr, &status);
  ByteUnits units{};
  for (std::size_t byte = 0; byte < units.size(); ++byte) {
    const char source = static_cast<char>(byte);
    const char* in = &source;
    char16_t produced[2];
    char16_t* out = produced;
    ucnv_toUnicode(probe.get(), &out, std::end(produced), &in, in + 1, nullptr, false, &status);
    if (U_FAILURE(status) || out != produced + 1) return std::nullopt;
    units[byte] = produced[0];
  }
  if (std::count(units.begin(), units.end(), u'\0') != 1 || units[0] != u'\0') return std::nullopt;
  return units;
}

// The byte units of the converter's code page, probed once a process for each converter name; null
// for a code page without them. Only the single-byte converter types are probed: the others may
// keep a state between bytes. Without memory for the probe, the reader converts as it does for any
// other code page.
const ByteUnits* byteUnitsOf(CPUnicodeConverter& converter) {
  const UConverterType type = converter.getType();
  if (type != UCNV_SBCS && type != UCNV_LATIN_1) return nullptr;
  UErrorCode status = U_ZERO_ERROR;
  const char* const name = converter.getName(status);
  if (U_FAILURE(status)) return nullptr;
  static std::mutex mutex;
  static std::map<std::string, std::optional<ByteUnits>, std::less<>> probed;
  const std::lock_guard lock(mutex);
  try {
    auto entry = probed.find(name);
    if (entry == probed.end()) entry = probed.emplace(name, probeByteUnits(name)).first;
    return entry->second ? &*entry->second : nullptr;
  } catch (const std::bad_alloc&) {
    return nullptr;
  }
}

// The byte units to read with in place of the converter: such a code page leaves no state in the
// converter between bytes, so a read without it changes nothing that a later conversion sees.
const ByteUnits* unitsInUse(const ByteUnits* units) { return fastPathsOpen() ? units : nullptr; }

// The units of `count` bytes of a code page that has byte units.
void unitsOfBytes(const ByteUnits& units, const char* bytes, std::int32_t count, char16_t* target) {
  const auto* in = reinterpret_cast<const unsigned char*>(bytes);
  // Unrolled: the loop is short and the lookups are independent of each other.
#pragma GCC unroll 8
  for (std::int32_t i = 0; i < count; ++i) target[i] = units[in[i]];
}

std::shared_ptr<CPUnicodeConverter> openConverter(std::int32_t codepage, EEndian endian) {
  // The converter's own failures (an unknown code page) pass through untouched.
  try {
    return std::make_shared<CPUnicodeConverter>(codepage, endian);
  } catch (const std::bad_alloc&) {
    CP_RAISE(CP_INTERNAL_ERROR, kModule, "TextBufferReader::TextBufferReader", nullptr,
             "no valid converter");
  }
}

}  // namespace

TextBufferReader::TextBufferReader(const BitstreamBuffer* buffer, std::int32_t codepage,
                                   EEndian endian, CPUnicodeConverter* converter)
    : buffer_(buffer),
      codepage_(codepage > 0 ? codepage : kLocalCcsid),
      endian_(endian < 0 ? LittleEndian : endian) {
  constexpr const char* kFunction = "TextBufferReader::TextBufferReader";
  CpDebugTrace trace(kFunction, static_cast<const void*>(buffer), codepage, endian,
                     static_cast<const void*>(converter));
  requirePointer(buffer, kFunction, "Null input pointer");
  // A caller's converter is held without a control block: nothing deletes it.
  converter_ = converter != nullptr ? std::shared_ptr<CPUnicodeConverter>(
                                          std::shared_ptr<CPUnicodeConverter>(), converter)
                                    : openConverter(codepage_, endian_);
  maxBytesPerChar_ = converter_->getMaxBytesPerChar();
  byteUnits_ = byteUnitsOf(*converter_);
}

TextBufferReader::~TextBufferReader() = default;

const void* TextBufferReader::getData(std::int32_t offset, bool consumeAll) {
  CpDebugTrace trace("TextBufferReader::getData", offset, consumeAll);
  if (consumeAll) currentOffset_ = getLength();
  return buffer_->getData(offset);
}

const void* TextBufferReader::getData(std::int32_t* length, std::int32_t offset, bool advance) {
  constexpr const char* kFunction = "TextBufferReader::getData";
  CpDebugTrace trace(kFunction, static_cast<const void*>(length), offset, advance);
  requirePointer(length, kFunction, "Null input pointer");
  const std::int32_t requested = *length;
  if (advance) currentOffset_ = wrappingAdd(currentOffset_, requested);
  std::int32_t available = 0;  // left alone by buffers that give no address
  const void* data = buffer_->getData(&available, offset);
  *length = std::min(requested, available);
  return data;
}

void TextBufferReader::moveCurrentOffset(std::int32_t delta) {
  currentOffset_ = wrappingAdd(currentOffset_, delta);
}

bool TextBufferReader::getCharacter(char16_t* character, bool advance, int* byteLength,
                                    std::int32_t offset) {
  constexpr const char* kFunction = "TextBufferReader::getCharacter";
  CpDebugTrace trace(kFunction, advance, offset);
  requirePointer(character, kFunction, "Null output buffer pointer");
  const std::int32_t position = positionOf(offset);
  if (position < 0 || position >= getLength()) return trace.result(false);
  // Straight into the caller's unit, so that a unit produced by a failing conversion is kept.
  const Converted done = convertFrom(position, character, character + 1, nullptr);
  if (byteLength != nullptr) *byteLength = done.bytes;
  if (advance) currentOffset_ = wrappingAdd(currentOffset_, done.bytes);
  return trace.result(done.bytes > 0 && convertedCleanly(done.status) && done.units > 0);
}

bool TextBufferReader::getCharacter32(std::int32_t* character, bool advance, int* byteLength,
                                      std::int32_t offset) {
  requirePointer(character, "TextBufferReader::getCharacter32", "Null output buffer pointer");
  // Callers have always found the high half as they left it; only the unit is written.
  auto unit = static_cast<char16_t>(*character & 0xFFFF);
  const bool found = getCharacter(&unit, advance, byteLength, offset);
  *character =
      static_cast<std::int32_t>((static_cast<std::uint32_t>(*character) & 0xFFFF0000u) | unit);
  return found;
}

bool TextBufferReader::getCharacterCached(char16_t* character, int* byteLength,
                                          std::int32_t offset) {
  constexpr const char* kFunction = "TextBufferReader::getCharacterCached";
  CpDebugTrace trace(kFunction, offset);
  requirePointer(character, kFunction, "Null output buffer pointer");
  const std::int32_t position = positionOf(offset);
  // An empty entry holds -1: a negative position must not find it as a hit.
  if (position < 0) return trace.result(false);
  CachedCharacter& entry = cacheEntryFor(position);
  if (entry.offset != position) {
    if (!getCharacter(&entry.character, false, &entry.byteLength, position)) {
      entry.offset = -1;
      return trace.result(false);
    }
    entry.offset = position;
  }
  *character = entry.character;
  if (byteLength != nullptr) *byteLength = entry.byteLength;
  return trace.result(true);
}

bool TextBufferReader::setOffsetChars(std::int32_t characters) {
  constexpr const char* kFunction = "TextBufferReader::setOffsetChars";
  CpDebugTrace trace(kFunction, characters);
  requireCount(characters, kFunction);
  std::int32_t consumed = 0;
  const bool moved = skipUnits(0, characters, consumed);
  currentOffset_ = consumed;
  return trace.result(moved);
}

bool TextBufferReader::moveOffsetChars(std::int32_t characters) {
  constexpr const char* kFunction = "TextBufferReader::moveOffsetChars";
  CpDebugTrace trace(kFunction, characters);
  requireCount(characters, kFunction);
  std::int32_t consumed = 0;
  const bool moved = skipUnits(currentOffset_, characters, consumed);
  currentOffset_ = wrappingAdd(currentOffset_, consumed);
  return trace.result(moved);
}

bool TextBufferReader::getStringSection(PWFData& result, std::int32_t length, bool advance,
                                        std::int32_t offset) {
  CpDebugTrace trace(kGetStringSection, length, advance, offset);
  const std::int32_t position = positionOf(offset);
  const std::int32_t bufferLength = getLength();
  if (position < 0 || position > bufferLength) {
    if (ZanLog::isTraceActive()) {
      ZanLog::TraceItem dump(kGetStringSection, "Buffer contents");
      dump << CPUtils::binaryDump(static_cast<const unsigned char*>(buffer_->getData(0)),
                                  bufferLength);
      dump.writeToFile();
    }
    CP_RAISE(CP_INTERNAL_ERROR, kModule, kGetStringSection, nullptr, "Invalid offset: ", position,
             " for buffer length: ", bufferLength);
  }
  if (length >= 0) return trace.result(countedString(result, position, length, advance));
  if (position == bufferLength) {
    CP_RAISE(CP_TXTBUF_INPUT_DATA_TOO_SHORT, kModule, kGetStringSection, nullptr, nullptr, ">= 1");
  }
  terminatedString(result, position, advance);
  return trace.result(true);
}

PWFData TextBufferReader::getString(std::int32_t startOffset, std::int32_t endOffset,
                                    bool advance) {
  constexpr const char* kFunction = "TextBufferReader::getString";
  CpDebugTrace trace(kFunction, startOffset, endOffset, advance);
  if (startOffset > endOffset) {
    CP_RAISE(CP_INTERNAL_ERROR, kModule, kFunction, nullptr,
             "Start offset greater than end offset.", " Start offset = ", startOffset,
             " End offset = ", endOffset);
  }
  const std::int32_t bufferLength = getLength();
  if (endOffset > bufferLength) {
    CP_RAISE(CP_TXTBUF_INPUT_DATA_TOO_SHORT, kModule, kFunction, nullptr, nullptr);
  }
  if (startOffset < 0) {
    CP_RAISE(CP_INTERNAL_ERROR, kModule, kFunction, nullptr, "Invalid offset: ", startOffset,
             " for buffer length: ", bufferLength);
  }
  ZanStringBase text;
  const std::int32_t byteCount = endOffset - startOffset;
  if (byteCount > 0) {
    // One unit more than bytes, room for what any single- or multi-byte code page gives; a code
    // page that gives more fails as toUnicode does.
    int room = byteCount < INT32_MAX ? byteCount + 1 : byteCount;
    char16_t* const units = text.unicodeString().getBuffer(room);
    if (units == nullptr) CP_RAISE(CP_MEMORY_ALLOC_FAILURE, kModule, kFunction, nullptr, nullptr);
    toUnicode(units, &room, bytesFrom(startOffset).begin, byteCount);
    text.unicodeString().releaseBuffer(room);
  }
  if (advance) currentOffset_ = endOffset;
  return PWFData(text);
}

void TextBufferReader::toUnicode(char16_t* target, int* targetLength, const char* source,
                                 int sourceLength) const {
  constexpr const char* kFunction = "TextBufferReader::toUnicode";
  CpDebugTrace trace(kFunction, static_cast<const void*>(source), sourceLength);
  if (source == nullptr && sourceLength > 0) {
    CP_RAISE(CP_INTERNAL_ERROR, kModule, kFunction, nullptr, nullptr, "Null input pointer");
  }
  if (sourceLength < 0) {
    CP_RAISE(CP_INTERNAL_ERROR, kModule, kFunction, nullptr, nullptr,
             "Invalid input length: ", sourceLength);
  }
  if (targetLength == nullptr || (target == nullptr && *targetLength > 0)) {
    CP_RAISE(CP_INTERNAL_ERROR, kModule, kFunction, nullptr, nullptr, "Null output buffer pointer");
  }
  if (*targetLength < 0) {
    CP_RAISE(CP_INTERNAL_ERROR, kModule, kFunction, nullptr, nullptr,
             "Invalid output buffer length: ", *targetLength);
  }
  // These bytes continue no conversion of the buffer's.
  if (stoppedAt_ != kConverterClean) resetConverter();
  const Converted done =
      convert(target, target + *targetLength, source, source + sourceLength, nullptr);
  if (U_FAILURE(done.status)) {
    resetConverter();
    CP_RAISE(CP_INTERNAL_ERROR, kModule, kFunction, nullptr, "error convering to unicode",
             static_cast<std::int32_t>(done.status));
  }
  *targetLength = done.units;
}

TextBufferReader::Converted TextBufferReader::convert(char16_t* target, const char16_t* targetLimit,
                                                      const char* source, const char* sourceLimit,
                                                      std::int32_t* offsets) const {
  char16_t* targetEnd = target;
  const char* sourceEnd = source;
  UErrorCode status = U_ZERO_ERROR;
  converter_->toUnicode(targetEnd, targetLimit, sourceEnd, sourceLimit, offsets, true, status);
  return {static_cast<std::int32_t>(targetEnd - target),
          static_cast<std::int32_t>(sourceEnd - source), status};
}

TextBufferReader::Converted TextBufferReader::convertFrom(std::int32_t position, char16_t* target,
                                                          const char16_t* targetLimit,
                                                          std::int32_t* offsets) const {
  if (const ByteUnits* units = unitsInUse(byteUnits_)) {
    // The units and the status the converter would give, byte for byte.
    const ByteRun bytes = bytesFrom(position);
    const auto available = static_cast<std::int32_t>(bytes.end - bytes.begin);
    const auto count = std::min(available, static_cast<std::int32_t>(targetLimit - target));
    unitsOfBytes(*units, bytes.begin, count, target);
    if (offsets != nullptr) std::iota(offsets, offsets + count, 0);
    return {count, count, count < available ? U_BUFFER_OVERFLOW_ERROR : U_ZERO_ERROR};
  }
  // State that a conversion left where it stopped belongs to the bytes there, not to these.
  if (stoppedAt_ != kConverterClean && stoppedAt_ != position) resetConverter();
  const ByteRun bytes = bytesFrom(position);
  const Converted done = convert(target, targetLimit, bytes.begin, bytes.end, offsets);
  // A flushing conversion that succeeds has consumed its bytes and reset the converter; one that
  // stopped (a full target, most often) may hold a shift state or units of a character cut in two.
  stoppedAt_ = U_SUCCESS(done.status) ? kConverterClean : position + done.bytes;
  return done;
}

void TextBufferReader::resetConverter() const {
  // A flushing conversion of no bytes hands out the units still held and resets the converter.
  char16_t sink[32];
  Converted done{};
  do {
    done = convert(sink, sink + std::size(sink), nullptr, nullptr, nullptr);
  } while (done.status == U_BUFFER_OVERFLOW_ERROR);
  stoppedAt_ = kConverterClean;
}

std::int32_t TextBufferReader::positionOf(std::int32_t offset) const {
  return offset == kAtCursor ? currentOffset_ : offset;
}

TextBufferReader::ByteRun TextBufferReader::bytesFrom(std::int32_t position) const {
  std::int32_t available = 0;  // left alone by buffers that give no address
  const auto* begin = static_cast<const char*>(buffer_->getData(&available, position));
  // A buffer without bytes behind its length reads as empty rather than through a null address.
  if (begin == nullptr || available < 0) available = 0;
  return {begin, begin + available};
}

TextBufferReader::CachedCharacter& TextBufferReader::cacheEntryFor(std::int32_t position) {
  for (std::size_t i = 0; i < cache_.size(); ++i) {
    const std::int32_t held = cache_[i].offset;
    if (held == -1 || held == position || (i > 0 && held <= cache_[i - 1].offset)) {
      return cache_[i];
    }
  }
  return cache_[0];
}

bool TextBufferReader::skipUnits(std::int32_t from, std::int32_t characters,
                                 std::int32_t& consumed) const {
  consumed = 0;
  if (from < 0 || from > getLength()) return false;
  // Only the count matters, so the units go through a chunk on the stack however many are asked
  // for; a character split between two chunks is finished from the converter's pending units.
  char16_t chunk[kChunkUnits];
  std::int32_t remaining = characters;
  std::int32_t units = 0;
  UErrorCode status = U_ZERO_ERROR;
  do {
    const Converted done =
        convertFrom(from + consumed, chunk, chunk + std::min(remaining, kChunkUnits), nullptr);
    consumed += done.bytes;
    units += done.units;
    remaining -= done.units;
    status = done.status;
  } while (status == U_BUFFER_OVERFLOW_ERROR && remaining > 0);
  return consumed > 0 && convertedCleanly(status) && units > 0;
}

bool TextBufferReader::countedString(PWFData& result, std::int32_t position, std::int32_t length,
                                     bool advance) {
  // Straight into the string's own storage; short strings fit its inline buffer.
  ZanStringBase text;
  char16_t* const units = text.unicodeString().getBuffer(length);
  if (units == nullptr) {
    CP_RAISE(CP_MEMORY_ALLOC_FAILURE, kModule, kGetStringSection, nullptr, nullptr);
  }
  const Converted done = convertFrom(position, units, units + length, nullptr);
  text.unicodeString().releaseBuffer(done.units);
  if (!convertedCleanly(done.status)) {
    CP_RAISE(CP_INTERNAL_ERROR, kModule, kGetStringSection, nullptr,
             "Conversion to unicode error. Error code: ", static_cast<std::int32_t>(done.status));
  }
  if (done.units < length) return false;
  if (advance) currentOffset_ = position + done.bytes;
  result = PWFData(text);
  return true;
}

void TextBufferReader::terminatedString(PWFData& result, std::int32_t position, bool advance) {
  const ByteRun bytes = bytesFrom(position);
  const std::int32_t limit = position + static_cast<std::int32_t>(bytes.end - bytes.begin);
  ZanStringBase text;
  if (const ByteUnits* units = unitsInUse(byteUnits_)) {
    // Only the byte 0 is the unit 0, so the string is the units of the bytes before the first 0
    // byte, which a search of the bytes finds without converting any. Without one, the steps below
    // convert to the end and fail as they always have.
    const char* const terminator = std::char_traits<char>::find(
        bytes.begin, static_cast<std::size_t>(bytes.end - bytes.begin), '\0');
    if (terminator != nullptr) {
      const auto length = static_cast<std::int32_t>(terminator - bytes.begin);
      // Straight into the string's storage; storage that cannot be had fails as appending does.
      char16_t* const target = text.unicodeString().getBuffer(length);
      if (target == nullptr) throw std::bad_alloc();
      unitsOfBytes(*units, bytes.begin, length, target);
      text.unicodeString().releaseBuffer(length);
      if (advance) currentOffset_ = position + length + 1;
      result = PWFData(text);
      return;
    }
  }
  char16_t chunk[kChunkUnits];
  std::int32_t offsets[kChunkUnits];  // of each unit, from the first byte of its step
  std::int32_t stepStart = position;
  for (std::int32_t step = kFirstSearchUnits; stepStart < limit;
       step = std::min(2 * step, kChunkUnits)) {
    const Converted done = convertFrom(stepStart, chunk, chunk + step, offsets);
    char16_t* const produced = chunk + done.units;
    char16_t* const terminator = std::find(chunk, produced, u'\0');
    if (terminator != produced) {
      text.append(chunk, static_cast<std::int32_t>(terminator - chunk));
      // The string ends where the unit after the terminator began, or, when the terminator closed
      // the step, where the conversion stopped.
      const auto next = static_cast<std::int32_t>(terminator - chunk) + 1;
      if (advance) {
        currentOffset_ = next < done.units && offsets[next] >= 0 ? stepStart + offsets[next]
                                                                 : stepStart + done.bytes;
      }
      result = PWFData(text);
      return;
    }
    if (!convertedCleanly(done.status)) {
      CP_RAISE(CP_INTERNAL_ERROR, kModule, kGetStringSection, nullptr,
               "Conversion to unicode error. Error code: ", static_cast<std::int32_t>(done.status));
    }
    text.append(chunk, done.units);
    stepStart += done.bytes;
  }
  CP_RAISE(CP_TXTBUF_NULL_TERMINATOR_NOT_FOUND, kModule, kGetStringSection, nullptr, nullptr);
}
