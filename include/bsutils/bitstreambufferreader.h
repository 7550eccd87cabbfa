#ifndef BSUTILS_BITSTREAMBUFFERREADER_H
#define BSUTILS_BITSTREAMBUFFERREADER_H

// A cursor over a buffer or a byte range. It hands out addresses into the bytes instead of copying
// them, and never an address outside them: out-of-range requests give null.

#include <bsutils/bitstreambuffer.h>
#include <bsutils/export.h>

#include <cstdint>

class BSUTILS_EXPORT BitstreamBufferReader : public BitstreamBuffer {
 public:
  // Over the buffer's bytes as they are now: later growth of the buffer is not seen. A null
  // buffer raises CP_INTERNAL_ERROR ("Null input pointer").
  explicit BitstreamBufferReader(const BitstreamBuffer* buffer);
  BitstreamBufferReader(const void* data, std::int32_t length);

  // Null without data, or when `offset` is negative or not below the length.
  const void* getData(std::int32_t* available, std::int32_t offset) const override;
  const void* getData(std::int32_t offset) const override;
  std::int32_t getLength() const override { return length_; }

  std::int32_t getCurOffset() const { return offset_; }
  // An offset at or past the end is clamped to the length; a negative one is kept as it is.
  void setCurOffset(std::int32_t offset);
  // The address of the next `length` bytes, advancing past them; null (and no move) without data,
  // from a negative offset, for a negative length, or when fewer than `length` bytes remain.
  const unsigned char* readData(std::int32_t length);

 private:
  std::int32_t offset_ = 0;
  std::int32_t length_ = 0;
  const unsigned char* data_ = nullptr;
};

#endif  // BSUTILS_BITSTREAMBUFFERREADER_H
