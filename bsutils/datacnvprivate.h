#ifndef BSUTILS_DATACNVPRIVATE_H
#define BSUTILS_DATACNVPRIVATE_H

// What DataCnv's sources share. Its members are spread over one source per family; trace and
// exceptions name them all by the one module.

#include <bsutils/dataconv.h>

#include <cstdint>

namespace bsutils::internal {

inline constexpr const char* kDataCnvModule = "datacnv";

// Room for the bytes of any one character in any code page, shift bytes included.
inline constexpr std::int32_t kCharBytesCapacity = 32;

// The decimal results of binary fields are built on the stack for scales up to this; larger ones,
// which are rare, go through the general text path.
inline constexpr std::int32_t kMaxStackScale = 40;

// Integers of up to 15 digits and the powers of ten up to 22 are exact doubles, and one division
// or multiplication of exact doubles is correctly rounded: it is the double that the decimal text
// of a field reads as, found without the text.
inline constexpr std::int32_t kExactDigits = 15;
inline constexpr std::int32_t kExactPowerOfTen = 22;
inline constexpr double kPowersOfTen[kExactPowerOfTen + 1] = {
    1e0,  1e1,  1e2,  1e3,  1e4,  1e5,  1e6,  1e7,  1e8,  1e9,  1e10, 1e11,
    1e12, 1e13, 1e14, 1e15, 1e16, 1e17, 1e18, 1e19, 1e20, 1e21, 1e22};

// The pointer checks most conversions start with: CP_INTERNAL_ERROR "Null input pointer" or "Null
// output buffer pointer" under `function`; `cnv` is the log source (null for the static ones).
void requireInputPointer(const DataCnv* cnv, const char* function, const void* input);
void requireOutputBuffer(const DataCnv* cnv, const char* function, const void* output);

// What differs between the text field readers besides their values.
struct FieldReaderRules {
  const char* function;
  const char* nullTextMessage;
  const char* nullSignMessage;
  const char* negativeLengthText;
  const char* valueKind;  // the insert of the negative-length failure
  bool embeddedSignsAllowed;
};

}  // namespace bsutils::internal

#endif  // BSUTILS_DATACNVPRIVATE_H
