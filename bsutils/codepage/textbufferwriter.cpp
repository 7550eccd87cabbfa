#include <bsutils/cpalloc.h>
#include <bsutils/textbufferreader.h>
#include <bsutils/textbufferwriter.h>
#include <zan/zanlog.h>
#include <zan/zanstringbase.h>

#include <algorithm>
#include <cstring>
#include <limits>
#include <new>
#include <string>

#include "core/cpdebugtrace.h"
#include "core/cpraise.h"

using namespace bsutils::internal;

namespace {

constexpr const char* kModule = "textbffr";
constexpr const char* kAppendStr = "TextBufferWriter::appendStr";
constexpr const char* kFromUnicode = "TextBufferWriter::fromUnicode";
constexpr std::int32_t kLocalCcsid = 1208;

// Working storage for one conversion: on the stack for the short texts that are the rule, from
// cpMalloc for longer ones.
template <class Unit>
class ScratchArea {
 public:
  explicit ScratchArea(std::int32_t units)
      : data_(units <= kStackUnits ? stack_
                                   : static_cast<Unit*>(cpMalloc(static_cast<std::uint32_t>(units) *
                                                                 sizeof(Unit)))) {}
  ScratchArea(const ScratchArea&) = delete;
  ScratchArea& operator=(const ScratchArea&) = delete;
  ~ScratchArea() {
    if (data_ != stack_) cpFree(data_);
  }
  Unit* data() { return data_; }

 private:
  static constexpr std::int32_t kStackUnits = 1024 / sizeof(Unit);
  Unit stack_[kStackUnits];
  Unit* data_;
};

void requireText(const void* text, std::int32_t length, const char* function) {
  if (text == nullptr && length > 0) {
    CP_RAISE(CP_INTERNAL_ERROR, kModule, function, nullptr, nullptr, "Null input pointer");
  }
  if (length < 0) {
    CP_RAISE(CP_INTERNAL_ERROR, kModule, function, nullptr, nullptr,
             "Invalid input length: ", length);
  }
}

// A size in bytes or units as the buffers count them: a text too long for that is refused.
std::int32_t boundedSize(std::int64_t size, std::int32_t length, const char* function) {
  if (size > std::numeric_limits<std::int32_t>::max()) {
    CP_RAISE(CP_INTERNAL_ERROR, kModule, function, nullptr, nullptr,
             "Invalid input length: ", length);
  }
  return static_cast<std::int32_t>(size);
}

// Copies in blocks of eight units: knowing the length bounded by the cache, the compiler would
// otherwise copy with a string instruction whose start-up costs more than a short piece.
void copyUnits(char16_t* target, const char16_t* source, std::int32_t count) {
  constexpr std::int32_t kBlock = 8;
  for (; count >= kBlock; count -= kBlock, target += kBlock, source += kBlock) {
    std::memcpy(target, source, kBlock * sizeof(char16_t));
  }
  for (std::int32_t i = 0; i < count; ++i) target[i] = source[i];
}

std::int32_t terminatedLength(const char16_t* text) {
  return text == nullptr ? 0 : static_cast<std::int32_t>(std::char_traits<char16_t>::length(text));
}

// A target that filled first leaves the rest of the last character inside the converter, where it
// would open the next conversion. Converting nothing with flush hands it out, and it is dropped.
void discardPendingOutput(CPUnicodeConverter& converter) {
  char sink[32];
  UErrorCode status;
  do {
    status = U_ZERO_ERROR;
    char* end = sink;
    const char16_t* none = nullptr;
    converter.fromUnicode(end, sink + sizeof sink, none, none, nullptr, true, status);
  } while (status == U_BUFFER_OVERFLOW_ERROR);
}

}  // namespace

TextBufferWriter::TextBufferWriter(WritableBitstreamBuffer* buffer, std::int32_t codepage,
                                   EEndian endian)
    : buffer_(buffer),
      codepage_(codepage > 0 ? codepage : kLocalCcsid),
      endian_(endian < 0 ? LittleEndian : endian) {
  constexpr const char* kFunction = "TextBufferWriter::TextBufferWriter";
  CpDebugTrace trace(kFunction, static_cast<const void*>(buffer), codepage,
                     static_cast<std::int32_t>(endian));
  if (buffer == nullptr) {
    CP_RAISE(CP_INTERNAL_ERROR, kModule, kFunction, nullptr, nullptr, "Null output buffer pointer");
  }
  try {
    converter_ = std::make_shared<CPUnicodeConverter>(codepage_, endian_);
  } catch (const std::bad_alloc&) {
    CP_RAISE(CP_INTERNAL_ERROR, kModule, kFunction, nullptr, "no valid converter");
  }
  maxBytesPerChar_ = converter_->getMaxBytesPerChar();
}

void TextBufferWriter::appendStrCache(const char16_t* text, std::int32_t length) {
  constexpr const char* kFunction = "TextBufferWriter::appendStrCache";
  CpDebugTrace trace(kFunction, static_cast<const void*>(text), length);
  if (length < 0) {
    CP_RAISE(CP_INTERNAL_ERROR, kModule, kFunction, nullptr, nullptr,
             "Invalid input length: ", length);
  }
  if (length > kCacheLimit - cacheLength_) flush();
  if (length > kCacheLimit) {
    appendStr(text, length);
  } else if (text != nullptr) {
    copyUnits(cache_.data() + cacheLength_, text, length);
    cacheLength_ += length;
  }
}

void TextBufferWriter::appendStrCache(const char16_t* text) {
  appendStrCache(text, terminatedLength(text));
}

void TextBufferWriter::flush() {
  CpDebugTrace trace("TextBufferWriter::flush");
  if (cacheLength_ == 0) return;
  appendStr(cache_.data(), cacheLength_);
  cacheLength_ = 0;
}

void TextBufferWriter::appendStr(const char16_t* text, std::int32_t length) {
  CpDebugTrace trace(kAppendStr);
  requireText(text, length, kAppendStr);
  if (ZanLog::isDebugTraceActive()) {
    ZanLog::FastDebugTraceItem(kAppendStr, "Buffer and size")
        << ZanStringBase(text, length) << length << ZanLog::FastItem::MagicInsert;
  }
  if (length == 0) return;
  // Worst case: every unit at the code page's widest, plus room for the shift back to the initial
  // state that a stateful code page writes at the end.
  const std::int32_t capacity =
      boundedSize(std::int64_t{maxBytesPerChar_} * length + 2, length, kAppendStr);
  auto* region = reinterpret_cast<char*>(buffer_->appendLock(capacity));
  int written = capacity;
  try {
    fromUnicode(region, &written, text, length);
  } catch (...) {
    buffer_->release(0);
    throw;
  }
  buffer_->release(written);
}

void TextBufferWriter::appendStr(const char16_t* text) { appendStr(text, terminatedLength(text)); }

void TextBufferWriter::writeStr(const char16_t* text, std::int32_t length, std::int32_t offset) {
  constexpr const char* kFunction = "TextBufferWriter::writeStr";
  CpDebugTrace trace(kFunction, static_cast<const void*>(text), length, offset);
  requireText(text, length, kFunction);
  const std::int32_t capacity =
      boundedSize(std::int64_t{maxBytesPerChar_} * length + 1, length, kFunction);
  ScratchArea<char> bytes(capacity);
  int written = capacity;
  fromUnicode(bytes.data(), &written, text, length);
  flush();
  buffer_->write(bytes.data(), written, offset);
}

void TextBufferWriter::appendBuf(TextBufferReader* reader, std::int32_t startOffset,
                                 std::int32_t endOffset) {
  constexpr const char* kFunction = "TextBufferWriter::appendBuf";
  CpDebugTrace trace(kFunction, static_cast<const void*>(reader), startOffset, endOffset);
  if (reader == nullptr) {
    CP_RAISE(CP_INTERNAL_ERROR, kModule, kFunction, nullptr, nullptr, "Null input pointer");
  }
  // One text for every bad range, the source's as much as the target's.
  if (startOffset < 0 || endOffset < startOffset || endOffset > reader->getLength()) {
    CP_RAISE(CP_INTERNAL_ERROR, kModule, kFunction, nullptr, "Cannot write past the end of buffer");
  }
  const std::int32_t length = endOffset - startOffset;
  if (length == 0) return;
  const auto* data = static_cast<const char*>(reader->getData(startOffset, false));
  if (data == nullptr) {
    CP_RAISE(CP_INTERNAL_ERROR, kModule, kFunction, nullptr, nullptr, "Null input pointer");
  }
  if (reader->getCodepage() != codepage_) {
    appendRecoded(*reader, data, length);
  } else {
    appendBytesOf(*reader, startOffset, length,
                  CPBaseUnicodeConverter::IsUnicode(codepage_) && reader->getEndian() != endian_);
  }
}

void TextBufferWriter::appendRecoded(const TextBufferReader& reader, const char* data,
                                     std::int32_t length) {
  if (CPBaseUnicodeConverter::IsUnicode(reader.getCodepage())) {
    // As the runtime has always done it: the byte length divided by four, not two, so only the
    // first half of the text, taken in the host's byte order whatever the reader's.
    const std::int32_t units = length / 4;
    ScratchArea<char16_t> text(units);
    // Copied: the reader's bytes need not be aligned for UTF-16 units.
    std::memcpy(text.data(), data, static_cast<std::size_t>(units) * 2);
    appendStr(text.data(), units);
    return;
  }
  const std::int32_t room =
      boundedSize((std::int64_t{std::max(reader.getMaxBytesPerChar(), 2)} * length + 1) / 2, length,
                  "TextBufferWriter::appendBuf");
  ScratchArea<char16_t> text(room);
  int units = room;
  reader.toUnicode(text.data(), &units, data, length);
  appendStr(text.data(), units);
}

// Copies through a local chunk, fetching the source again for each: the reader's buffer may be
// this writer's own, which the append before may have moved.
void TextBufferWriter::appendBytesOf(TextBufferReader& reader, std::int32_t startOffset,
                                     std::int32_t length, bool secondByteTwice) {
  constexpr std::int32_t kChunkBytes = 1024;
  char chunk[kChunkBytes];
  std::int32_t size = 0;
  for (std::int32_t done = 0; done < length; done += size) {
    size = std::min(kChunkBytes, length - done);
    const auto* in = static_cast<const char*>(reader.getData(startOffset + done, false));
    if (secondByteTwice) {
      // As the runtime has always written UTF-16 between byte orders: each output pair is the
      // second byte of the input pair twice, not a byte swap. An odd last byte has no pair and
      // is copied as it is.
      std::int32_t i = 0;
      for (; i + 1 < size; i += 2) chunk[i] = chunk[i + 1] = in[i + 1];
      if (i < size) chunk[i] = in[i];
    } else {
      std::memcpy(chunk, in, static_cast<std::size_t>(size));
    }
    buffer_->append(chunk, size);
  }
}

void TextBufferWriter::fromUnicode(char* target, int* targetLength, const char16_t* source,
                                   int sourceLength) const {
  CpDebugTrace trace(kFromUnicode, static_cast<const void*>(target),
                     static_cast<const void*>(source), sourceLength);
  requireText(source, sourceLength, kFromUnicode);
  if (targetLength == nullptr || (target == nullptr && *targetLength > 0)) {
    CP_RAISE(CP_INTERNAL_ERROR, kModule, kFromUnicode, nullptr, nullptr,
             "Null output buffer pointer");
  }
  if (*targetLength < 0) {
    CP_RAISE(CP_INTERNAL_ERROR, kModule, kFromUnicode, nullptr, nullptr,
             "Invalid output buffer length: ", *targetLength);
  }
  char* end = target;
  UErrorCode status = U_ZERO_ERROR;
  converter_->fromUnicode(end, target + *targetLength, source, source + sourceLength, nullptr, true,
                          status);
  if (U_FAILURE(status)) {
    discardPendingOutput(*converter_);
    CP_RAISE(CP_INTERNAL_ERROR, kModule, kFromUnicode, nullptr, "error convering from unicode",
             static_cast<std::int32_t>(status));
  }
  *targetLength = static_cast<int>(end - target);
}

void TextBufferWriter::append(const void* data, std::int32_t length) {
  CpDebugTrace trace("TextBufferWriter::append", data, length);
  flush();
  buffer_->append(data, length);
}

void TextBufferWriter::write(const void* data, std::int32_t length, std::int32_t offset) {
  CpDebugTrace trace("TextBufferWriter::write", data, length, offset);
  flush();
  buffer_->write(data, length, offset);
}

unsigned char* TextBufferWriter::appendLock(std::int32_t size) {
  CpDebugTrace trace("TextBufferWriter::appendLock", size);
  flush();
  return buffer_->appendLock(size);
}

std::int32_t TextBufferWriter::getLength() {
  CpDebugTrace trace("TextBufferWriter::getLength");
  flush();
  return trace.result(buffer_->getLength());
}

bool TextBufferWriter::release(std::int32_t size) {
  CpDebugTrace trace("TextBufferWriter::release", size);
  return trace.result(buffer_->release(size));
}

void TextBufferWriter::truncate(std::int32_t count) {
  CpDebugTrace trace("TextBufferWriter::truncate", count);
  buffer_->truncate(count);
}

void TextBufferWriter::reset() {
  CpDebugTrace trace("TextBufferWriter::reset");
  buffer_->reset();
}
