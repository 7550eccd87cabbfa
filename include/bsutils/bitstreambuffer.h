#ifndef BSUTILS_BITSTREAMBUFFER_H
#define BSUTILS_BITSTREAMBUFFER_H

// The two byte-buffer interfaces that parsers, writers and the text cursors are handed. Lengths and
// offsets are signed 32-bit byte counts.

#include <bsutils/export.h>

#include <cstdint>

// Read access to a contiguous run of bytes.
class BSUTILS_EXPORT BitstreamBuffer {
 public:
  // The address of byte `offset`; `*available` is set to the bytes from there to the end.
  virtual const void* getData(std::int32_t* available, std::int32_t offset) const = 0;
  virtual const void* getData(std::int32_t offset) const = 0;
  virtual std::int32_t getLength() const = 0;
  // Declared after the operations so that they keep the first slots.
  virtual ~BitstreamBuffer() = default;
};

// A growable byte sequence that can be appended to, overwritten, cut and written into in place.
class BSUTILS_EXPORT WritableBitstreamBuffer : public BitstreamBuffer {
 public:
  // Empties the buffer, keeping its storage.
  virtual void reset() = 0;
  virtual void append(const void* data, std::int32_t length) = 0;
  // Drops `count` bytes from the end (not: cuts to `count` bytes).
  virtual void truncate(std::int32_t count) = 0;
  virtual void write(const void* data, std::int32_t length, std::int32_t offset) = 0;
  // Reserves room for `length` more bytes and returns where they go; the buffer stays locked until
  // release() says how many were written.
  virtual unsigned char* appendLock(std::int32_t length) = 0;
  virtual bool release(std::int32_t length) = 0;
};

#endif  // BSUTILS_BITSTREAMBUFFER_H
