#ifndef BSUTILS_TEXTBUFFERREADER_H
#define BSUTILS_TEXTBUFFERREADER_H

// TextBufferReader is a read cursor over a byte buffer whose bytes are text in one code page. It
// hands out characters one at a time (with a small look-ahead cache), skips characters, and cuts
// strings out of the buffer: between two byte offsets, for a number of UTF-16 units, or up to a
// null terminator. Every string is an eString PWFData of UTF-16 units. The cursor is kept in bytes;
// characters are counted only by converting.
//
// Failures are ZanConversionException with source module "textbffr" and the function's qualified
// name ("TextBufferReader::getStringSection", ...), traced as "Throwing exception" at trace level 3
// and above. CP_INTERNAL_ERROR is 0xC000157E, CP_TXTBUF_INPUT_DATA_TOO_SHORT 0xC000157F and
// CP_TXTBUF_NULL_TERMINATOR_NOT_FOUND 0xC0001580. Reading a character at or past the end, and a
// counted string longer than the text left, are not failures: they return false.
//
// Streaming state: a conversion that stops before the end of the buffer can leave state in the
// converter: the shift state of a stateful code page (SO/SI in mixed EBCDIC), or the rest of a
// character cut in two. The next read that starts exactly where it stopped continues from that
// state; a read that starts anywhere else, and toUnicode, start with the converter reset. So read
// as one UTF-16 unit, a character outside the Basic Multilingual Plane gives its leading surrogate
// with the byte length of the whole character, and the next read from there yields the trailing
// surrogate first: getCharacter returns it with no byte consumed (and so returns false), and a
// counted string starts with it.
//
// One reader belongs to one thread. Readers that share a converter (copies, or readers given the
// same one) must not be used at the same time; each knows only the state its own reads left.

#include <bsutils/bitstreambuffer.h>
#include <bsutils/cpunicodeconverter.h>
#include <bsutils/encoding.h>
#include <bsutils/export.h>
#include <bsutils/pwfdata.h>

#include <array>
#include <cstdint>
#include <memory>

class BSUTILS_EXPORT TextBufferReader {
 public:
  // Passed as an offset: read at the cursor.
  static constexpr std::int32_t kAtCursor = -1;
  // Entries of the look-ahead cache of getCharacterCached.
  static constexpr std::int32_t kCachedCharacters = 10;

  // Reads `buffer` (borrowed: it must outlive the reader and its copies) as text of `codepage`; a
  // code page of 0 or less means 1208 (UTF-8), and a negative `endian` means LittleEndian (the byte
  // order matters only for the UTF-16 code pages). With a null `converter` the reader opens
  // CPUnicodeConverter(codepage, endian) and owns it: its ZanRecoverableException failures pass
  // through, and if it cannot be allocated: CP_INTERNAL_ERROR "no valid converter". A converter
  // given is borrowed and must outlive the reader and its copies. The cursor starts at 0, the
  // cache empty. A null `buffer`: CP_INTERNAL_ERROR, insert "Null input pointer".
  TextBufferReader(const BitstreamBuffer* buffer, std::int32_t codepage, EEndian endian,
                   CPUnicodeConverter* converter = nullptr);
  // Copies take the cursor and the cache as they are and share the converter; an owned converter
  // is deleted with the last reader that shares it.
  TextBufferReader(const TextBufferReader&) = default;
  TextBufferReader& operator=(const TextBufferReader&) = default;
  virtual ~TextBufferReader();

  // The address of the buffer's byte `offset` (not checked: nothing is read). With `consumeAll`
  // the cursor first moves to the end of the buffer.
  const void* getData(std::int32_t offset, bool consumeAll);
  // The address of the buffer's byte `offset` for `*length` bytes; `*length` is lowered to the
  // bytes from `offset` to the end when fewer are there. With `advance` the cursor first moves on
  // by the `*length` asked for. A null `length`: CP_INTERNAL_ERROR, insert "Null input pointer".
  const void* getData(std::int32_t* length, std::int32_t offset, bool advance);
  // The buffer's length in bytes.
  std::int32_t getLength() const { return buffer_->getLength(); }

  // The code page and byte order after the constructor's defaults.
  std::int32_t getCodepage() const { return codepage_; }
  EEndian getEndian() const { return endian_; }
  // The most bytes one character of the code page takes, taken from the converter once.
  std::int32_t getMaxBytesPerChar() const { return maxBytesPerChar_; }
  const CPUnicodeConverter* getConverter() const { return converter_.get(); }

  // The cursor in bytes from the start of the buffer. Set and moved without checks; the reading
  // operations judge it when they use it.
  std::int32_t getCurrentOffset() const { return currentOffset_; }
  void setCurrentOffset(std::int32_t offset) { currentOffset_ = offset; }
  void moveCurrentOffset(std::int32_t delta);

  // Reads one UTF-16 unit at byte `offset` (kAtCursor: at the cursor) into `*character`. The bytes
  // that produced it go to `*byteLength` (when not null) and, with `advance`, move the cursor on.
  // False when the position is outside the buffer (nothing is stored), when no byte was consumed,
  // or when the conversion failed; a unit produced is stored even then. A character outside the
  // Basic Multilingual Plane gives its leading surrogate with the whole character's byte length
  // (see "Streaming state" above). Bytes that end mid-character give the code page's substitute
  // character. A null `character`: CP_INTERNAL_ERROR, insert "Null output buffer pointer".
  bool getCharacter(char16_t* character, bool advance, int* byteLength = nullptr,
                    std::int32_t offset = kAtCursor);
  // getCharacter into the low 16 bits of `*character`; the high 16 bits keep what they held.
  bool getCharacter32(std::int32_t* character, bool advance, int* byteLength = nullptr,
                      std::int32_t offset = kAtCursor);
  // getCharacter through a cache of kCachedCharacters entries, never advancing. The entry used is
  // the first that is empty, holds this position, or breaks the ascending run of positions held by
  // the entries before it; failing those, entry 0. So a forward scan fills the entries in order and
  // then starts again at entry 0. A hit converts nothing. A failed read empties the entry used and
  // stores nothing to the caller. The cache is never cleared, not even when the cursor moves back
  // or the buffer's bytes change: it answers from what it holds.
  bool getCharacterCached(char16_t* character, int* byteLength = nullptr,
                          std::int32_t offset = kAtCursor);

  // Moves the cursor to the byte after the first `characters` UTF-16 units of the buffer
  // (setOffsetChars), or on by `characters` units from the cursor (moveOffsetChars). Fewer units
  // left is not a failure: the cursor stops at the end and the result is true. False when no byte
  // was consumed (the cursor is then at the start, or stays) or the conversion failed. A cursor
  // outside the buffer moves nowhere and gives false. A negative count: CP_INTERNAL_ERROR, inserts
  // "Invalid input length: " and the count.
  bool setOffsetChars(std::int32_t characters);
  bool moveOffsetChars(std::int32_t characters);

  // Cuts a string starting at byte `offset` (kAtCursor: at the cursor) into `result`, which is
  // assigned only when the result is true. With `advance` the cursor moves past what was read.
  //   - `length` 0 or more: exactly `length` UTF-16 units. False, with the cursor left, when the
  //     buffer ends first.
  //   - `length` negative: the units up to a 0 unit (not part of the string); the cursor moves past
  //     the terminator. "ab\0cd" at 0 -> "ab", cursor 3.
  // Failures:
  //   - position outside the buffer: CP_INTERNAL_ERROR, trace text "Invalid offset: ", inserts
  //     the position, " for buffer length: " and the length; a hexadecimal dump of the buffer is
  //     traced before it ("Buffer contents");
  //   - a null-terminated string asked for at the end of the buffer: CP_TXTBUF_INPUT_DATA_TOO_SHORT
  //     with the insert ">= 1";
  //   - no 0 unit before the end: CP_TXTBUF_NULL_TERMINATOR_NOT_FOUND;
  //   - a failed conversion: CP_INTERNAL_ERROR, trace text "Conversion to unicode error. Error
  //     code: ", insert the ICU status;
  //   - a count whose units cannot be allocated: CP_MEMORY_ALLOC_FAILURE (ZanFatalException
  //     0xC0000806).
  bool getStringSection(PWFData& result, std::int32_t length, bool advance,
                        std::int32_t offset = kAtCursor);

  // The text of the bytes from `startOffset` up to `endOffset` (excluded); equal offsets give the
  // empty string. With `advance` the cursor moves to `endOffset`. Failures: start after end:
  // CP_INTERNAL_ERROR, trace text "Start offset greater than end offset.", inserts
  // " Start offset = ", start, " End offset = ", end; end past the buffer:
  // CP_TXTBUF_INPUT_DATA_TOO_SHORT; a negative start: CP_INTERNAL_ERROR, trace text
  // "Invalid offset: ", inserts start, " for buffer length: ", length; a failed conversion: as
  // toUnicode.
  PWFData getString(std::int32_t startOffset, std::int32_t endOffset, bool advance);

  // Converts `sourceLength` bytes with the reader's converter in one flushing call. `*targetLength`
  // in: the room in UTF-16 units; out: the units written. A failure, a target too small among
  // them: CP_INTERNAL_ERROR, trace text "error convering to unicode", insert the ICU status.
  // Argument faults raise CP_INTERNAL_ERROR with the inserts "Null input pointer", "Invalid input
  // length: " and the length, "Null output buffer pointer", "Invalid output buffer length: " and
  // the length.
  void toUnicode(char16_t* target, int* targetLength, const char* source, int sourceLength) const;

 private:
  struct CachedCharacter {
    char16_t character = 0;
    std::int32_t offset = -1;  // -1: empty
    int byteLength = 0;
  };

  // What one conversion did.
  struct Converted {
    std::int32_t units;
    std::int32_t bytes;
    UErrorCode status;
  };

  // The bytes from a position to the end of the buffer.
  struct ByteRun {
    const char* begin;
    const char* end;
  };

  static constexpr std::int32_t kConverterClean = -1;

  Converted convert(char16_t* target, const char16_t* targetLimit, const char* source,
                    const char* sourceLimit, std::int32_t* offsets) const;
  Converted convertFrom(std::int32_t position, char16_t* target, const char16_t* targetLimit,
                        std::int32_t* offsets) const;
  void resetConverter() const;
  std::int32_t positionOf(std::int32_t offset) const;
  ByteRun bytesFrom(std::int32_t position) const;
  CachedCharacter& cacheEntryFor(std::int32_t position);
  bool skipUnits(std::int32_t from, std::int32_t characters, std::int32_t& consumed) const;
  bool countedString(PWFData& result, std::int32_t position, std::int32_t length, bool advance);
  void terminatedString(PWFData& result, std::int32_t position, bool advance);

  const BitstreamBuffer* buffer_;
  std::int32_t codepage_;
  EEndian endian_;
  // Owning (the reader opened it) or not (the caller's, held without a control block).
  std::shared_ptr<CPUnicodeConverter> converter_;
  std::int32_t currentOffset_ = 0;
  std::int32_t maxBytesPerChar_ = 0;
  // For a code page in which every byte is one UTF-16 unit whatever surrounds it, and only the byte
  // 0 is the unit 0: the unit of each byte value, shared by all its readers. Null for the others.
  const std::array<char16_t, 256>* byteUnits_ = nullptr;
  std::array<CachedCharacter, kCachedCharacters> cache_{};
  // Where the last conversion from the buffer stopped with state left in the converter, or
  // kConverterClean. Not part of the reader's value: const operations convert too.
  mutable std::int32_t stoppedAt_ = kConverterClean;
};

#endif  // BSUTILS_TEXTBUFFERREADER_H
