#ifndef BSUTILS_TEXTBUFFERWRITER_H
#define BSUTILS_TEXTBUFFERWRITER_H

// TextBufferWriter appends and overwrites text in a writable byte buffer, converting UTF-16 into
// the buffer's code page on the way. Writers of text formats emit many short pieces (a delimiter,
// a tag, a short value), so appendStrCache gathers up to 1024 UTF-16 units and converts them in
// one go. Every operation that looks at or changes the buffer's bytes through the writer flushes
// that cache first (append, write, appendLock, getLength, writeStr), so callers see the bytes up to
// date. reset, truncate and release leave the cache alone, and so do appendStr and appendBuf,
// which append at once: text still cached lands after their bytes.
//
//   ReadWriteByteBuffer buffer;
//   TextBufferWriter writer(&buffer, 37, BigEndian);
//   writer.appendStrCache(u"Hello");   // cached; buffer still empty
//   writer.flush();                    // buffer: C8 85 93 93 96
//
// Failures are ZanConversionException 0xC000157E (CP_INTERNAL_ERROR), source module "textbffr",
// unless an operation says otherwise. Copies share one converter (the last copy closes it) and
// each has its own cache; a writer is used by one thread at a time.

#include <bsutils/bitstreambuffer.h>
#include <bsutils/cpunicodeconverter.h>
#include <bsutils/encoding.h>
#include <bsutils/export.h>

#include <array>
#include <cstdint>
#include <memory>

class TextBufferReader;

class BSUTILS_EXPORT TextBufferWriter {
 public:
  // Most UTF-16 units the cache holds.
  static constexpr std::int32_t kCacheLimit = 1024;

  // Writes into `buffer`, which the caller keeps alive. A `codepage` of 0 or less means 1208
  // (UTF-8); a negative `endian` means LittleEndian. The converter failures of CPUnicodeConverter
  // pass through (ZanRecoverableException for an unknown CCSID or a UTF-16 CCSID with an endian
  // other than 1 or 2). A null `buffer` raises "Null output buffer pointer" (as insert); a
  // converter that cannot be allocated raises trace text "no valid converter".
  TextBufferWriter(WritableBitstreamBuffer* buffer, std::int32_t codepage, EEndian endian);
  // Drops whatever is still cached: flush first to keep it.
  virtual ~TextBufferWriter() = default;

  std::int32_t getCodepage() const { return codepage_; }
  EEndian getEndian() const { return endian_; }
  std::int32_t getMaxBytesPerChar() const { return maxBytesPerChar_; }
  const CPUnicodeConverter* getConverter() const { return converter_.get(); }

  // Appends `length` units through the cache. A piece that would take the cache past 1024 units
  // first flushes it; a piece longer than 1024 units is then converted at once (appendStr) and
  // leaves the cache empty. So the cache holds at most 1024 units: a piece that fills it exactly
  // stays cached, and the next unit flushes it. A null `text` of at most 1024 units appends
  // nothing (after that flush). A negative `length` raises "Invalid input length: ", length
  // (inserts). Conversion failures are appendStr's.
  void appendStrCache(const char16_t* text, std::int32_t length);
  // The same for NUL-terminated text; null is the empty text.
  void appendStrCache(const char16_t* text);
  // Converts and appends the cached units, and empties the cache. On a failure the cache is kept.
  void flush();

  // Converts `length` units straight into the end of the buffer, bypassing the cache without
  // flushing it. Null `text` with a positive length raises "Null input pointer", a negative
  // `length` "Invalid input length: ", length (inserts); a conversion failure raises trace text
  // "error convering from unicode" with the ICU status as insert, and leaves the buffer as it was.
  void appendStr(const char16_t* text, std::int32_t length);
  // The same for NUL-terminated text; null is the empty text.
  void appendStr(const char16_t* text);
  // Converts `length` units, flushes the cache, then overwrites the buffer from byte `offset` with
  // the buffer's write (bytes past the end are appended). Argument and conversion failures as
  // appendStr's, raised before the cache is flushed; what the buffer does with a bad offset is
  // the buffer's (ReadWriteByteBuffer raises "Invalid offset: " from module "bytebuffer").
  void writeStr(const char16_t* text, std::int32_t length, std::int32_t offset);

  // Appends the bytes from `startOffset` up to `endOffset` of the reader's buffer, bypassing the
  // cache without flushing it, as appendStr does:
  //  - writer and reader in different code pages, reader's UTF-16: the bytes, taken as host-order
  //    UTF-16 whatever the reader's endian, are converted, but only the first (length / 4) units,
  //    the first half of the text: kept as the runtime has always written it. 8 bytes "ABCD" in
  //    UTF-16LE give "AB";
  //  - different code pages otherwise: decoded with the reader's toUnicode, then converted;
  //  - same UTF-16 code page, different endians: each output pair is the second byte of the input
  //    pair twice (41 00 42 00 -> 00 00 00 00), again as always written, not a byte swap; an odd
  //    last byte is copied as it is;
  //  - same code page otherwise: the bytes as they are.
  // Equal offsets append nothing. A null reader, or one whose buffer has no bytes, raises "Null
  // input pointer" (insert); a start below 0, an end before the start or past the reader's buffer
  // raise trace text "Cannot write past the end of buffer". Conversion failures are the reader's
  // toUnicode's and appendStr's. The reader's buffer may be this writer's own.
  void appendBuf(TextBufferReader* reader, std::int32_t startOffset, std::int32_t endOffset);

  // Converts `sourceLength` units into `target` with the writer's converter. `*targetLength` in:
  // the capacity in bytes; out: the bytes written. A target too small is a failure, never a
  // truncation: trace text "error convering from unicode", insert the ICU status (15); on failure
  // `*targetLength` is unchanged and the target's bytes are undefined. Null or negative arguments
  // raise "Null input pointer", "Null output buffer pointer", "Invalid input length: " or "Invalid
  // output buffer length: " (inserts).
  void fromUnicode(char* target, int* targetLength, const char16_t* source, int sourceLength) const;

  // The buffer's own operations. These flush the cache first...
  void append(const void* data, std::int32_t length);
  void write(const void* data, std::int32_t length, std::int32_t offset);
  unsigned char* appendLock(std::int32_t size);
  std::int32_t getLength();
  // ...and these do not: a reset buffer still receives the cached text at the next flush, and
  // truncate drops `count` bytes already in the buffer, never cached ones.
  bool release(std::int32_t size);
  void truncate(std::int32_t count);
  void reset();

 private:
  void appendRecoded(const TextBufferReader& reader, const char* data, std::int32_t length);
  void appendBytesOf(TextBufferReader& reader, std::int32_t startOffset, std::int32_t length,
                     bool secondByteTwice);

  WritableBitstreamBuffer* buffer_;
  std::int32_t codepage_;
  EEndian endian_;
  // Shared by copies; never null once constructed.
  std::shared_ptr<CPUnicodeConverter> converter_;
  std::int32_t maxBytesPerChar_;
  // Held in the object rather than on the heap: the cache is filled for every short piece.
  std::array<char16_t, kCacheLimit> cache_{};
  std::int32_t cacheLength_ = 0;
};

#endif  // BSUTILS_TEXTBUFFERWRITER_H
