// Binary as hexadecimal text: two digits a byte, upper case when written, either case when read.

#include <bsutils/dataconv.h>

#include <cstdint>
#include <limits>
#include <vector>

#include "core/cpdebugtrace.h"
#include "core/cpraise.h"
#include "datacnvprivate.h"

using namespace bsutils::internal;

PWFData DataCnv::StrFromBin(const unsigned char* bytes, std::int32_t length) {
  constexpr const char* kFunction = "DataCnv::StrFromBin";
  CpDebugTrace trace(kFunction, static_cast<const void*>(bytes), length);
  // A length whose text would not fit in a string is as much an argument fault as a negative one.
  if (length < 0 || length > std::numeric_limits<std::int32_t>::max() / 2) {
    CP_RAISE(CP_INTERNAL_ERROR, kDataCnvModule, kFunction, this, nullptr,
             "Invalid input length: ", length);
  }
  constexpr char16_t kDigits[] = u"0123456789ABCDEF";
  ZanStringBase text;
  if (bytes != nullptr) {
    text.reserve(length * 2);
    for (std::int32_t i = 0; i < length; ++i) {
      text.append(kDigits[bytes[i] >> 4]);
      text.append(kDigits[bytes[i] & 0x0F]);
    }
  }
  return PWFData(text);
}

PWFData DataCnv::StrToBin(const char16_t* text, std::int32_t length) {
  constexpr const char* kFunction = "DataCnv::StrToBin";
  CpDebugTrace trace(kFunction, static_cast<const void*>(text), length);
  if (length < 0) {
    CP_RAISE(CP_INTERNAL_ERROR, kDataCnvModule, kFunction, this, nullptr,
             "Invalid input length: ", length);
  }
  if (text == nullptr && length > 0) {
    CP_RAISE(CP_INTERNAL_ERROR, kDataCnvModule, kFunction, this, nullptr, "Null input pointer");
  }
  const auto raiseInvalid = [&] {
    CP_RAISE(CP_CONV_INPUT_DATA_INVALID, kDataCnvModule, kFunction, this, nullptr, "binary",
             ZanStringBase(text, length));
  };
  if (length % 2 != 0) raiseInvalid();

  std::vector<unsigned char> bytes(static_cast<std::size_t>(length / 2));
  for (std::size_t i = 0; i < bytes.size(); ++i) {
    const std::int32_t high = PWFChToHex(text[2 * i]);
    const std::int32_t low = PWFChToHex(text[2 * i + 1]);
    if (high < 0 || low < 0) raiseInvalid();
    bytes[i] = static_cast<unsigned char>(high << 4 | low);
  }
  // A null pointer would make a null value; an empty text is an empty binary, which is not null.
  constexpr unsigned char kNoBytes = 0;
  return PWFData(bytes.empty() ? &kNoBytes : bytes.data(), static_cast<std::int32_t>(bytes.size()),
                 eBinary, eCopy);
}
