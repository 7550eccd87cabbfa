#include <bsutils/cpalloc.h>
#include <bsutils/cpbase64converter.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <iterator>
#include <limits>
#include <memory>

#include "core/cpdebugtrace.h"
#include "core/cpraise.h"

using namespace bsutils::internal;

namespace {

constexpr const char* kModule = "base64";
constexpr const char* kDecodeFunction = "CPBase64Converter::binFromBase64";

// The encode table: the character for each 6-bit value.
constexpr char16_t kAlphabet[] =
    u"ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
static_assert(std::size(kAlphabet) == 64 + 1, "64 characters and the terminator");

constexpr char16_t kPad = u'=';
// The decode table's mark for a unit that is not Base64; no 6-bit value has this bit.
constexpr unsigned char kNotBase64 = 0x80;

// ICU keeps a header and a terminator beside a string's units; a text this long still fits.
constexpr std::int64_t kMaxTextLength = std::numeric_limits<std::int32_t>::max() - 16;

// One entry for every UTF-16 unit, so that decoding needs no range test. "=" reads as the value 0:
// only its position in a group decides what it means.
struct DecodeTable {
  std::array<unsigned char, 65536> values;

  DecodeTable() {
    values.fill(kNotBase64);
    for (unsigned char value = 0; value < 64; ++value) values[kAlphabet[value]] = value;
    values[kPad] = 0;
  }
};

// 64 KiB that most processes never need, so it is built on first use; a function-local static is
// built exactly once even when threads race to it.
const DecodeTable& decodeTable() {
  static const DecodeTable table;
  return table;
}

struct FreeBytes {
  void operator()(unsigned char* bytes) const { cpFree(bytes); }
};

void requireInput(const void* input, std::int32_t length, const char* function) {
  if (input == nullptr && length > 0) {
    CP_RAISE(CP_INTERNAL_ERROR, kModule, function, nullptr, nullptr, "Null input pointer");
  }
  if (length < 0) {
    CP_RAISE(CP_INTERNAL_ERROR, kModule, function, nullptr, nullptr,
             "Invalid input length: ", length);
  }
}

// Writes one group of up to three bytes (missing ones count as 0) as four characters.
void encodeGroup(std::uint32_t b0, std::uint32_t b1, std::uint32_t b2, char16_t* out) {
  const std::uint32_t bits = b0 << 16 | b1 << 8 | b2;
  out[0] = kAlphabet[bits >> 18];
  out[1] = kAlphabet[(bits >> 12) & 63];
  out[2] = kAlphabet[(bits >> 6) & 63];
  out[3] = kAlphabet[bits & 63];
}

// The decoder's output: a buffer of 3/4 of the input length, which every group of four input units
// keeps within; the guard is there so that no input, however odd, can write past it.
class DecodedBytes {
 public:
  explicit DecodedBytes(std::int32_t textLength)
      : textLength_(textLength),
        targetSize_(static_cast<std::int32_t>(std::int64_t{3} * textLength / 4)),
        // At least one byte, so that an empty text gives an empty value rather than a null one.
        bytes_(static_cast<unsigned char*>(
            cpMalloc(static_cast<std::uint32_t>(std::max(targetSize_, 1))))) {}

  // Stores the first `count` of the three bytes that the 6-bit values a, b, c, d make.
  void store(std::uint32_t a, std::uint32_t b, std::uint32_t c, std::uint32_t d,
             std::int32_t count) {
    if (written_ + count > targetSize_) {
      CP_RAISE(CP_INTERNAL_ERROR, kModule, kDecodeFunction, nullptr,
               "A large enough target buffer was not allocated", "targetSize", targetSize_,
               "noOfChars", textLength_);
    }
    const std::uint32_t bits = a << 18 | b << 12 | c << 6 | d;
    unsigned char* out = bytes_.get() + written_;
    out[0] = static_cast<unsigned char>(bits >> 16);
    if (count > 1) out[1] = static_cast<unsigned char>(bits >> 8);
    if (count > 2) out[2] = static_cast<unsigned char>(bits);
    written_ += count;
  }

  PWFData release() {
    PWFData value(bytes_.get(), written_, eBinary, eAdopt);
    bytes_.release();
    return value;
  }

 private:
  std::int32_t textLength_;
  std::int32_t targetSize_;
  std::unique_ptr<unsigned char, FreeBytes> bytes_;
  std::int32_t written_ = 0;
};

// The common case: groups of four alphabet characters in a row, no padding. Decodes them until a
// group that is not such, and leaves `unit` at its start for the unit-by-unit path.
void decodeUnbrokenGroups(const char16_t*& unit, const char16_t* end,
                          const std::array<unsigned char, 65536>& values, DecodedBytes& target) {
  while (end - unit >= 4) {
    const std::uint32_t a = values[unit[0]];
    const std::uint32_t b = values[unit[1]];
    const std::uint32_t c = values[unit[2]];
    const std::uint32_t d = values[unit[3]];
    if (((a | b | c | d) & kNotBase64) != 0 || unit[2] == kPad || unit[3] == kPad) return;
    target.store(a, b, c, d, 3);
    unit += 4;
  }
}

}  // namespace

void CPBase64Converter::initEncodeTable() {
  // The encode table is a compile-time constant: there is nothing left to build.
}

void CPBase64Converter::initDecodeTable() { decodeTable(); }

void CPBase64Converter::binToBase64(const unsigned char* data, std::int32_t length,
                                    ZanStringBase& text) {
  constexpr const char* kFunction = "CPBase64Converter::binToBase64";
  CpDebugTrace trace(kFunction, static_cast<const void*>(data), length);
  requireInput(data, length, kFunction);
  const std::int32_t start = text.length();
  const std::int64_t total = start + std::int64_t{4} * ((std::int64_t{length} + 2) / 3);
  if (total > kMaxTextLength) {
    CP_RAISE(CP_INTERNAL_ERROR, kModule, kFunction, nullptr, nullptr,
             "Invalid input length: ", length);
  }
  if (length == 0) return;

  // One allocation for the whole output, written in place. No line breaks: one unbroken line.
  icu::UnicodeString& units = text.unicodeString();
  char16_t* const buffer = units.getBuffer(static_cast<std::int32_t>(total));
  if (buffer == nullptr) CP_RAISE(CP_MEMORY_ALLOC_FAILURE, kModule, kFunction, nullptr, nullptr);
  char16_t* out = buffer + start;
  const unsigned char* in = data;
  for (const unsigned char* const wholeEnd = data + length - length % 3; in != wholeEnd; in += 3) {
    encodeGroup(in[0], in[1], in[2], out);
    out += 4;
  }
  if (length % 3 == 1) {
    encodeGroup(in[0], 0, 0, out);
    out[2] = out[3] = kPad;
  } else if (length % 3 == 2) {
    encodeGroup(in[0], in[1], 0, out);
    out[3] = kPad;
  }
  units.releaseBuffer(static_cast<std::int32_t>(total));
}

PWFData CPBase64Converter::binFromBase64(const char16_t* text, std::int32_t length) {
  CpDebugTrace trace(kDecodeFunction, static_cast<const void*>(text), length);
  requireInput(text, length, kDecodeFunction);
  const std::array<unsigned char, 65536>& values = decodeTable().values;
  DecodedBytes target(length);

  // Units outside the alphabet are skipped wherever they stand, even inside a group of four.
  char16_t group[4];
  std::int32_t collected = 0;
  const char16_t* unit = text;
  const char16_t* const end = text + length;
  while (true) {
    if (collected == 0) decodeUnbrokenGroups(unit, end, values, target);
    if (unit == end) break;
    const char16_t next = *unit++;
    if ((values[next] & kNotBase64) != 0) continue;
    group[collected++] = next;
    if (collected < 4) continue;
    // Padding counts only in the last two places.
    const std::int32_t count = group[2] == kPad ? 1 : group[3] == kPad ? 2 : 3;
    target.store(values[group[0]], values[group[1]], values[group[2]], values[group[3]], count);
    collected = 0;
  }
  if (collected != 0) {
    CP_RAISE(CP_INTERNAL_ERROR, kModule, kDecodeFunction, nullptr, "Input data incomplete");
  }
  return target.release();
}
