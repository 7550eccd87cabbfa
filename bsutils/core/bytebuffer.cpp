#include <bsutils/bytebuffer.h>
#include <bsutils/cpalloc.h>

#include <algorithm>
#include <cstring>
#include <functional>
#include <limits>
#include <vector>

#include "core/cpraise.h"

using namespace bsutils::internal;

namespace {

constexpr const char* kModule = "bytebuffer";

void requireData(const void* data, std::int32_t length, const char* function) {
  if (data == nullptr && length > 0) {
    CP_RAISE(CP_INTERNAL_ERROR, kModule, function, nullptr, nullptr, "Null input pointer");
  }
}

}  // namespace

ReadOnlyByteBuffer::ReadOnlyByteBuffer(const void* data, std::int32_t length) {
  create(data, length);
}

bool ReadOnlyByteBuffer::create(const void* data, std::int32_t length) {
  if (created_) return false;
  data_ = static_cast<const unsigned char*>(data);
  length_ = length;
  created_ = true;
  return true;
}

const void* ReadOnlyByteBuffer::getData(std::int32_t* available, std::int32_t offset) const {
  if (available != nullptr) *available = length_ - offset;
  return getData(offset);
}

const void* ReadOnlyByteBuffer::getData(std::int32_t offset) const {
  return data_ == nullptr ? nullptr : data_ + offset;
}

ReadWriteByteBuffer::ReadWriteByteBuffer(const void* data, std::int32_t length) {
  if (data != nullptr && length >= 1) append(data, length);
}

ReadWriteByteBuffer::~ReadWriteByteBuffer() { cpFree(bytes_); }

const void* ReadWriteByteBuffer::getData(std::int32_t* available, std::int32_t offset) const {
  if (available != nullptr) *available = size_ == 0 ? 0 : size_ - offset;
  return getData(offset);
}

const void* ReadWriteByteBuffer::getData(std::int32_t offset) const {
  return size_ == 0 ? nullptr : bytes_ + offset;
}

// Doubles the capacity, starting from 1, until `length` more bytes fit.
void ReadWriteByteBuffer::growFor(std::int32_t length, const char* function) {
  constexpr std::int64_t kLargest = std::numeric_limits<std::int32_t>::max();
  const std::int64_t required = std::int64_t{size_} + length;
  if (required > kLargest) {
    CP_RAISE(CP_INTERNAL_ERROR, kModule, function, nullptr, nullptr,
             "Invalid input length: ", length);
  }
  std::int64_t target = capacity_ == 0 ? 1 : capacity_;
  while (target < required) target *= 2;
  target = std::min(target, kLargest);
  if (capacity_ < target) {
    bytes_ = static_cast<unsigned char*>(cpRealloc(bytes_, static_cast<std::uint32_t>(target)));
    capacity_ = static_cast<std::int32_t>(target);
  }
}

bool ReadWriteByteBuffer::storageHolds(const unsigned char* bytes) const {
  // std::less orders pointers into different objects too, where the operator does not.
  const std::less<const unsigned char*> before;
  return bytes_ != nullptr && !before(bytes, bytes_) && before(bytes, bytes_ + capacity_);
}

void ReadWriteByteBuffer::reset() {
  locked_ = false;
  size_ = 0;
}

void ReadWriteByteBuffer::append(const void* data, std::int32_t length) {
  if (locked_) release(0);
  if (length <= 0) return;
  requireData(data, length, "ReadWriteByteBuffer::append");
  // Bytes taken from this buffer's own storage move with it when it grows.
  const auto* source = static_cast<const unsigned char*>(data);
  const bool own = storageHolds(source);
  const std::ptrdiff_t ownOffset = own ? source - bytes_ : 0;
  growFor(length, "ReadWriteByteBuffer::append");
  if (own) source = bytes_ + ownOffset;
  std::memmove(bytes_ + size_, source, static_cast<std::size_t>(length));
  size_ += length;
}

void ReadWriteByteBuffer::truncate(std::int32_t count) {
  if (locked_) release(0);
  if (count > 0) size_ -= std::min(count, size_);
}

void ReadWriteByteBuffer::write(const void* data, std::int32_t length, std::int32_t offset) {
  if (locked_) release(0);
  if (offset < 0) {
    CP_RAISE(CP_INTERNAL_ERROR, kModule, "ReadWriteByteBuffer::write", nullptr, nullptr,
             "Invalid offset: ", offset);
  }
  if (length <= 0) return;
  requireData(data, length, "ReadWriteByteBuffer::write");
  const auto* bytes = static_cast<const unsigned char*>(data);
  // The buffer's own bytes are copied first: overwriting would change them before they are read.
  if (storageHolds(bytes)) {
    const std::vector<unsigned char> copy(bytes, bytes + length);
    write(copy.data(), length, offset);
    return;
  }
  const std::int32_t overwritten = offset < size_ ? std::min(length, size_ - offset) : 0;
  if (overwritten > 0) std::memcpy(bytes_ + offset, bytes, static_cast<std::size_t>(overwritten));
  // Through the virtual slot, as the interface promises a derived buffer.
  append(bytes + overwritten, length - overwritten);
}

unsigned char* ReadWriteByteBuffer::appendLock(std::int32_t length) {
  growFor(length, "ReadWriteByteBuffer::appendLock");
  locked_ = true;
  return bytes_ + size_;
}

bool ReadWriteByteBuffer::release(std::int32_t length) {
  if (!locked_) return false;
  locked_ = false;
  if (length < 1) return true;
  const std::int32_t previousCapacity = capacity_;
  growFor(length, "ReadWriteByteBuffer::release");
  const std::int32_t end = size_ + length;
  if (end > previousCapacity) {
    std::memset(bytes_ + previousCapacity, 0, static_cast<std::size_t>(end - previousCapacity));
  }
  size_ = end;
  return true;
}
