#include "common.h"

#include <cstdio>

namespace {

int hexDigitValue(char digit) {
  if (digit >= '0' && digit <= '9') return digit - '0';
  if (digit >= 'a' && digit <= 'f') return digit - 'a' + 10;
  if (digit >= 'A' && digit <= 'F') return digit - 'A' + 10;
  return -1;
}

}  // namespace

std::vector<unsigned char> bytesFromHex(std::string_view hex) {
  const std::string_view original = hex;
  if (hex.size() >= 2 && hex[0] == '0' && (hex[1] == 'x' || hex[1] == 'X')) hex.remove_prefix(2);
  if (hex.size() % 2 != 0) {
    throw UsageError("odd number of hexadecimal digits: " + std::string(original));
  }
  std::vector<unsigned char> bytes;
  bytes.reserve(hex.size() / 2);
  for (std::size_t i = 0; i < hex.size(); i += 2) {
    const int high = hexDigitValue(hex[i]);
    const int low = hexDigitValue(hex[i + 1]);
    if (high < 0 || low < 0) throw UsageError("not hexadecimal: " + std::string(original));
    bytes.push_back(static_cast<unsigned char>(high * 16 + low));
  }
  return bytes;
}

std::string hexFromBytes(const unsigned char* bytes, std::size_t count) {
  static constexpr char kDigits[] = "0123456789ABCDEF";
  std::string hex;
  hex.reserve(2 * count);
  for (std::size_t i = 0; i < count; ++i) {
    hex += kDigits[bytes[i] >> 4];
    hex += kDigits[bytes[i] & 0x0F];
  }
  return hex;
}

std::string standardText(DataCnv& cnv, const PWFData& value) {
  return cnv.StandardStrFromData(value).getPWFStringValue().toUtf8();
}

std::string failureLine(const ZanException& failure) {
  char number[16];
  std::snprintf(number, sizeof number, "0x%08X", static_cast<unsigned>(failure.messageNumber()));
  std::string line = std::string("bsconv: ") + number + " " + failure.traceText();
  for (const std::string& insert : failure.inserts()) line += " [" + insert + "]";
  return line;
}
