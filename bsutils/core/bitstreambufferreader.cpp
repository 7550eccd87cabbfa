#include <bsutils/bitstreambufferreader.h>

#include "core/cpraise.h"

using namespace bsutils::internal;

BitstreamBufferReader::BitstreamBufferReader(const BitstreamBuffer* buffer) {
  if (buffer == nullptr) {
    CP_RAISE(CP_INTERNAL_ERROR, "bytebuffer", "BitstreamBufferReader::BitstreamBufferReader",
             nullptr, nullptr, "Null input pointer");
  }
  length_ = buffer->getLength();
  data_ = static_cast<const unsigned char*>(buffer->getData(0));
}

BitstreamBufferReader::BitstreamBufferReader(const void* data, std::int32_t length)
    : length_(length), data_(static_cast<const unsigned char*>(data)) {}

const void* BitstreamBufferReader::getData(std::int32_t* available, std::int32_t offset) const {
  const void* address = getData(offset);
  if (address != nullptr && available != nullptr) *available = length_ - offset;
  return address;
}

const void* BitstreamBufferReader::getData(std::int32_t offset) const {
  if (data_ == nullptr || offset < 0 || offset >= length_) return nullptr;
  return data_ + offset;
}

void BitstreamBufferReader::setCurOffset(std::int32_t offset) {
  offset_ = offset >= length_ ? length_ : offset;
}

const unsigned char* BitstreamBufferReader::readData(std::int32_t length) {
  if (data_ == nullptr || offset_ < 0 || length < 0 || length > length_ - offset_) return nullptr;
  const unsigned char* address = data_ + offset_;
  offset_ += length;
  return address;
}
