#ifndef BSUTILS_BYTEBUFFER_H
#define BSUTILS_BYTEBUFFER_H

// The two concrete byte buffers: a read-only view of the caller's bytes and an owned, growable
// byte vector. Both trust the offsets they are given to getData (the address is computed, nothing
// is read); the operations that copy bytes check what they copy.

#include <bsutils/bitstreambuffer.h>
#include <bsutils/export.h>

#include <cstdint>

// A view of bytes that the caller owns and keeps alive.
class BSUTILS_EXPORT ReadOnlyByteBuffer : public BitstreamBuffer {
 public:
  ReadOnlyByteBuffer() = default;
  ReadOnlyByteBuffer(const void* data, std::int32_t length);

  // Sets the view once: false, and no change, when it was already created.
  bool create(const void* data, std::int32_t length);

  // `*available` (when given) is length - offset; the address is null without data.
  const void* getData(std::int32_t* available, std::int32_t offset) const override;
  const void* getData(std::int32_t offset) const override;
  std::int32_t getLength() const override { return length_; }

 private:
  bool created_ = false;
  std::int32_t length_ = 0;
  const unsigned char* data_ = nullptr;
};

// An owned, growable byte vector. Capacity grows by doubling from 1 (never below what is asked),
// so appends are amortised; appendLock/release let a writer produce bytes in place. A pointer from
// getData or appendLock is valid until the next operation that can grow the storage.
//
// Failures (CP_INTERNAL_ERROR, ZanConversionException 0xC000157E, module "bytebuffer"): a null
// `data` with a positive length ("Null input pointer"), a negative write offset ("Invalid offset:
// " and the offset), growth past the largest 32-bit length ("Invalid input length: " and the
// length). A failed allocation is the ZanFatalException of cpMalloc.
class BSUTILS_EXPORT ReadWriteByteBuffer : public WritableBitstreamBuffer {
 public:
  ReadWriteByteBuffer() = default;
  // Starts with a copy of `length` bytes of `data` (none when `data` is null or `length` < 1).
  ReadWriteByteBuffer(const void* data, std::int32_t length);
  ReadWriteByteBuffer(const ReadWriteByteBuffer&) = delete;
  ReadWriteByteBuffer& operator=(const ReadWriteByteBuffer&) = delete;
  ~ReadWriteByteBuffer() override;

  // Empty: `*available` 0 and a null address. Otherwise size - offset and the address of byte
  // `offset`.
  const void* getData(std::int32_t* available, std::int32_t offset) const override;
  const void* getData(std::int32_t offset) const override;
  std::int32_t getLength() const override { return size_; }

  // Each of these first ends an open lock with release(0), dropping what was written through it.
  void reset() override;
  // Adds `length` bytes at the end; 0 or less adds nothing.
  void append(const void* data, std::int32_t length) override;
  // Drops `count` bytes from the end, at most all of them.
  void truncate(std::int32_t count) override;
  // Overwrites from `offset`; what runs past the end is appended. An offset at or past the end
  // appends everything at the current end: no gap is ever made.
  void write(const void* data, std::int32_t length, std::int32_t offset) override;

  // Reserves room for `length` more bytes, locks, and returns the address just past the content.
  unsigned char* appendLock(std::int32_t length) override;
  // Not locked: false. Otherwise commits `length` bytes written just past the content (none when
  // `length` < 1), unlocks and returns true. Bytes committed beyond the storage that appendLock
  // gave were never inside the buffer; they are committed as zeros.
  bool release(std::int32_t length) override;

  bool isLocked() const { return locked_; }
  std::int32_t capacity() const { return capacity_; }

 private:
  void growFor(std::int32_t length, const char* function);
  // Whether `bytes` points into this buffer's storage (a caller passing back getData's bytes).
  bool storageHolds(const unsigned char* bytes) const;

  bool locked_ = false;
  unsigned char* bytes_ = nullptr;
  std::int32_t size_ = 0;
  std::int32_t capacity_ = 0;
};

#endif  // BSUTILS_BYTEBUFFER_H
