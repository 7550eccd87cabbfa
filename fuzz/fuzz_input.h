#ifndef BSUTILS_FUZZ_FUZZ_INPUT_H
#define BSUTILS_FUZZ_FUZZ_INPUT_H

// How a fuzz input becomes the arguments of one library call: byte 0 picks the operation, bytes
// 1..8 are its arguments (see Args), and the rest is the field. Every pointer handed to the library
// comes with its true length: buffers are allocated to the exact size, so that a read or write one
// past the end reaches the sanitizer's redzone.

#include <bsutils/dataconv.h>
#include <bsutils/numerictextformat.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <memory>
#include <vector>

namespace bsfuzz {

inline constexpr std::int32_t kCcsids[] = {37, 500, 1208, 1200, 1201, 819, 930, 1047};
// Pad characters: spaces of both families, digits, a wide character and zero.
inline constexpr char16_t kPads[] = {u' ', u'0', 0x40, u'*', 0, 0xF0, 0x3000, u'x'};
// Sign styles, the last one out of range on purpose.
inline constexpr DataCnv::ESign kSigns[] = {DataCnv::eNoSign,
                                            DataCnv::eLeadingEmbeddedSign,
                                            DataCnv::eTrailingEmbeddedSign,
                                            DataCnv::eLeadingSeparateSign,
                                            DataCnv::eTrailingSeparateSign,
                                            DataCnv::eLeadingSeparateSign,
                                            DataCnv::eTrailingEmbeddedSign,
                                            static_cast<DataCnv::ESign>(7)};
inline constexpr const char16_t* kSignStrings[] = {u"-", u"+", u"DB", u""};
// Positive packed sign nibbles; B is not a valid one.
inline constexpr char kPackedSigns[] = {12, 12, 10, 14, 15, 11, 12, 12};
// Characters decimal text is made of, so that most texts get past the first check.
inline constexpr char16_t kDecimalAlphabet[] = u"0123456789012345678901234567.-+ e,9";

// The fixed argument bytes and the field that follows them.
struct Args {
  std::uint8_t h[8];
  const std::uint8_t* data;
  std::size_t size;

  std::int32_t ccsid() const { return kCcsids[h[0] & 7]; }
  EEndian endian() const { return (h[0] & 8) ? BigEndian : LittleEndian; }
  EFloatFmt floatFormat() const { return (h[0] & 16) ? HFPFloat : IEEEFloat; }
  char packedSign() const { return kPackedSigns[h[0] >> 5]; }
  DataCnv::ESign sign() const { return kSigns[h[1] & 7]; }
  DataCnv::EJustification justification() const {
    return (h[1] & 8) ? DataCnv::eRightJustified : DataCnv::eLeftJustified;
  }
  DataCnv::ETrimType trim() const { return static_cast<DataCnv::ETrimType>((h[1] >> 4) % 5); }
  // Bounded so that runs measure robustness, not how big a string memory can hold.
  std::int32_t scale() const { return static_cast<std::int8_t>(h[2]) % 41; }
  std::int32_t size8() const { return h[3] & 63; }
  // Sizes that matter to the binary forms most of the time, anything up to 63 otherwise.
  std::int32_t intSize() const {
    static constexpr std::int32_t kSizes[] = {1, 2, 4, 8, 0, 3, 4, 8};
    return (h[3] & 64) ? (h[3] & 15) : kSizes[h[3] & 7];
  }
  char16_t pad() const { return kPads[h[4] & 7]; }
  bool padIsUnicode() const { return h[4] & 8; }
  bool customSignEBCDIC() const { return h[4] & 16; }
  const char16_t* positiveTable() const {
    static constexpr const char16_t* kTables[] = {nullptr, u"{ABCDEFGHI", u"0123456789", u"ab"};
    return kTables[(h[4] >> 5) & 3];
  }
  const char16_t* negativeTable() const {
    static constexpr const char16_t* kTables[] = {nullptr, u"}JKLMNOPQR", u"pqrstuvwxy", u"cd"};
    return kTables[(h[4] >> 5) & 3];
  }
  bool doPad() const { return h[4] & 128; }
  const char16_t* minus() const { return kSignStrings[h[5] & 3]; }
  const char16_t* plus() const { return kSignStrings[(h[5] >> 2) & 3]; }
  NumericTextFormat format() const {
    NumericTextFormat f;
    f.decimalPoint = (h[5] & 16) ? u',' : u'.';
    f.form = static_cast<ENumericForm>((h[5] >> 5) & 3);
    f.decimalPlaces = h[6] == 255 ? 998 : h[6] % 25;
    f.strictChecking = h[5] & 128;
    return f;
  }
  std::uint8_t variant() const { return h[7]; }

  // The field's first eight bytes, zero-filled, as a value.
  std::uint64_t bits() const {
    std::uint64_t v = 0;
    std::memcpy(&v, data, size < 8 ? size : 8);
    return v;
  }
  std::int64_t int64() const { return static_cast<std::int64_t>(bits()); }
  double dbl() const {
    double d;
    std::uint64_t v = bits();
    std::memcpy(&d, &v, sizeof d);
    return d;
  }
};

// Heap copies of exactly the field's length.
inline std::unique_ptr<unsigned char[]> bytesOf(const Args& a) {
  std::unique_ptr<unsigned char[]> b(new unsigned char[a.size]);
  if (a.size) std::memcpy(b.get(), a.data, a.size);
  return b;
}
struct Units {
  std::unique_ptr<char16_t[]> p;
  std::int32_t n;
};
inline Units unitsOf(const Args& a) {
  std::int32_t n = static_cast<std::int32_t>(a.size / 2);
  Units u{std::unique_ptr<char16_t[]>(new char16_t[n]), n};
  if (n) std::memcpy(u.p.get(), a.data, n * 2);
  return u;
}
// NUL-terminated text: the bytes through the decimal alphabet (variant bit 0 clear) or as they
// are, with any NUL moved out of the way.
inline std::vector<char16_t> textOf(const Args& a) {
  std::vector<char16_t> t;
  for (std::size_t i = 0; i < a.size; ++i) {
    std::uint8_t c = a.data[i];
    if (a.variant() & 1)
      t.push_back(c ? c : u'0');
    else
      t.push_back(kDecimalAlphabet[c % (sizeof kDecimalAlphabet / 2 - 1)]);
  }
  t.push_back(0);
  return t;
}

// A writer reports units written within the capacity it was given: more is a library fault.
inline void checkWritten(const char* what, std::int32_t written, std::int32_t capacity) {
  if (written < 0 || written > capacity) {
    std::fprintf(stderr, "%s reported %d units written into a capacity of %d\n", what, written,
                 capacity);
    std::abort();
  }
}

using Op = std::function<void(DataCnv&, const Args&)>;

// The operations of each family, in a fixed order: an operation's index is part of every saved
// input that reaches it.
const std::vector<Op>& binaryOperations();
const std::vector<Op>& textOperations();
const std::vector<Op>& datetimeOperations();

}  // namespace bsfuzz

#endif  // BSUTILS_FUZZ_FUZZ_INPUT_H
