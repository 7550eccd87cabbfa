#ifndef BSUTILS_BINARY_FIELDBITS_H
#define BSUTILS_BINARY_FIELDBITS_H

// The bits of a binary field of 1, 2, 4 or 8 bytes as one unsigned number, read and written in the
// field's byte order whatever the processor's. Integers and floats both start here: each width is
// one load or store and at most one byte swap.

#include <bsutils/dataconv.h>

#include <bit>
#include <cstdint>
#include <cstring>

namespace bsutils::internal {

template <class Word>
Word swappedWord(Word word) {
  if constexpr (sizeof(Word) == 2) return __builtin_bswap16(word);
  if constexpr (sizeof(Word) == 4) return __builtin_bswap32(word);
  if constexpr (sizeof(Word) == 8) return __builtin_bswap64(word);
}

// Whether a field of `endian` order has its bytes the other way round from the processor's.
inline bool isForeignOrder(EEndian endian) {
  return (endian == LittleEndian) != (std::endian::native == std::endian::little);
}

template <class Word>
std::uint64_t loadWordOfField(const unsigned char* source, EEndian endian) {
  Word word;
  std::memcpy(&word, source, sizeof word);
  return isForeignOrder(endian) ? swappedWord(word) : word;
}

template <class Word>
void storeWordOfField(std::uint64_t bits, unsigned char* output, EEndian endian) {
  auto word = static_cast<Word>(bits);
  if (isForeignOrder(endian)) word = swappedWord(word);
  std::memcpy(output, &word, sizeof word);
}

// `size` must be 1, 2, 4 or 8: the callers check it first.
inline std::uint64_t loadFieldBits(const unsigned char* source, std::int32_t size, EEndian endian) {
  switch (size) {
    case 1:
      return source[0];
    case 2:
      return loadWordOfField<std::uint16_t>(source, endian);
    case 4:
      return loadWordOfField<std::uint32_t>(source, endian);
    default:
      return loadWordOfField<std::uint64_t>(source, endian);
  }
}

// The low-order `size` bytes of `bits`; `size` as for loadFieldBits.
inline void storeFieldBits(std::uint64_t bits, unsigned char* output, std::int32_t size,
                           EEndian endian) {
  switch (size) {
    case 1:
      output[0] = static_cast<unsigned char>(bits);
      return;
    case 2:
      return storeWordOfField<std::uint16_t>(bits, output, endian);
    case 4:
      return storeWordOfField<std::uint32_t>(bits, output, endian);
    default:
      return storeWordOfField<std::uint64_t>(bits, output, endian);
  }
}

}  // namespace bsutils::internal

#endif  // BSUTILS_BINARY_FIELDBITS_H
