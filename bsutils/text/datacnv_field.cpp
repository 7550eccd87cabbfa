// Text fields: trimming white space or padding, padding a field out to its length, and reading and
// writing signs.

#include <bsutils/cputils.h>
#include <bsutils/dataconv.h>
#include <unicode/uchar.h>
#include <unicode/ustring.h>

#include <algorithm>
#include <cstring>
#include <vector>

#include "core/cpdebugtrace.h"
#include "core/cpraise.h"
#include "datacnvprivate.h"

using namespace bsutils::internal;

namespace {

bool startsWith(const ZanStringBase& text, const char16_t* prefix, std::int32_t prefixLength) {
  return text.length() >= prefixLength &&
         std::char_traits<char16_t>::compare(text.data(), prefix, prefixLength) == 0;
}

bool endsWith(const ZanStringBase& text, const char16_t* suffix, std::int32_t suffixLength) {
  return text.length() >= suffixLength &&
         std::char_traits<char16_t>::compare(text.data() + text.length() - suffixLength, suffix,
                                             suffixLength) == 0;
}

}  // namespace

void DataCnv::raiseInvalidPadding(const char* function, char16_t padChar) {
  // The character as it reads: one byte, or two with the high byte first.
  const unsigned char bytes[] = {static_cast<unsigned char>(padChar >> 8),
                                 static_cast<unsigned char>(padChar)};
  const bool oneByte = padChar <= 0xFF;
  CP_RAISE(CP_CONV_INVALID_PADDING, kDataCnvModule, function, this, nullptr,
           CPUtils::binaryDump(oneByte ? bytes + 1 : bytes, oneByte ? 1 : 2), ccsid_);
}

char16_t DataCnv::codePageCharToUnicode(const char* function, char16_t padChar,
                                        std::int32_t width) {
  unsigned char bytes[sizeof padChar];
  if (width == 1 && padChar <= 0xFF) {
    bytes[0] = static_cast<unsigned char>(padChar);
  } else if (width == 2) {
    std::memcpy(bytes, &padChar, sizeof padChar);
  } else {
    raiseInvalidPadding(function, padChar);
  }
  ZanStringBase unicode;
  const std::int32_t status = toUnicodeString(unicode, bytes, width);
  if (U_FAILURE(static_cast<UErrorCode>(status)) || unicode.isEmpty()) {
    raiseInvalidPadding(function, padChar);
  }
  return unicode[0];
}

bool DataCnv::testPaddingChar(char16_t ch, const char16_t* padChar) {
  return padChar == nullptr ? u_isWhitespace(ch) : ch == *padChar;
}

int DataCnv::getNumLeadingPaddingChar(const ZanStringBase& text, const char16_t* padChar) {
  int count = 0;
  while (count < text.length() && testPaddingChar(text[count], padChar)) ++count;
  return count;
}

int DataCnv::getNumTrailingPaddingChar(const ZanStringBase& text, const char16_t* padChar) {
  int count = 0;
  while (count < text.length() && testPaddingChar(text[text.length() - 1 - count], padChar)) {
    ++count;
  }
  return count;
}

void DataCnv::TrimFromTheLeft(ZanStringBase& text, std::int32_t count) {
  if (count >= text.length()) {
    text.clear();
  } else if (count >= 1) {
    text.erase(0, count);
  }
}

void DataCnv::TrimFromTheRight(ZanStringBase& text, std::int32_t count) {
  if (count >= text.length()) {
    text.clear();
  } else if (count >= 1) {
    text.truncate(text.length() - count);
  }
}

void DataCnv::TrimData(ZanStringBase& text, ETrimType trimType, EJustification justification,
                       char16_t padChar, bool padIsUnicode) {
  // A code-page pad character is checked whatever the trim type, as the runtime always has.
  if (!padIsUnicode) {
    padChar =
        codePageCharToUnicode("DataCnv::TrimData", padChar, getConverter()->getMinBytesPerChar());
  }
  switch (trimType) {
    case eTrimLeadingWhiteSpace:
      TrimFromTheLeft(text, getNumLeadingPaddingChar(text, nullptr));
      break;
    case eTrimTrailingWhiteSpace:
      TrimFromTheRight(text, getNumTrailingPaddingChar(text, nullptr));
      break;
    case eTrimWhiteSpace:
      TrimFromTheLeft(text, getNumLeadingPaddingChar(text, nullptr));
      TrimFromTheRight(text, getNumTrailingPaddingChar(text, nullptr));
      break;
    case eTrimPadding:
      if (justification == eLeftJustified) {
        TrimFromTheRight(text, getNumTrailingPaddingChar(text, &padChar));
      } else if (justification == eRightJustified) {
        TrimFromTheLeft(text, getNumLeadingPaddingChar(text, &padChar));
      }
      break;
    default:
      break;
  }
}

std::int32_t DataCnv::TrimString(char16_t* buffer, std::int32_t length, char16_t padChar,
                                 EJustification justification, ETrimType trimType,
                                 bool padIsUnicode) {
  constexpr const char* kFunction = "DataCnv::TrimString";
  CpDebugTrace trace(kFunction, length, padChar, justification, trimType, padIsUnicode);
  requireInputPointer(this, kFunction, buffer);
  if (length < 0) {
    CP_RAISE(CP_INTERNAL_ERROR, kDataCnvModule, kFunction, this, nullptr,
             "Invalid input length: ", length);
  }
  ZanStringBase text(buffer, length);
  TrimData(text, trimType, justification, padChar, padIsUnicode);
  std::fill_n(buffer, length, u'\0');
  std::copy_n(text.data(), text.length(), buffer);
  return trace.result(text.length());
}

void DataCnv::PadData(ZanStringBase& text, std::int32_t count, EJustification justification,
                      char16_t padChar, bool padIsUnicode) {
  if (count <= 0) return;
  if (!padIsUnicode) padChar = codePageCharToUnicode("DataCnv::PadData", padChar, 1);
  // Only left justification pads at the end; every other value pads at the start.
  if (justification != eLeftJustified) {
    text.padLeading(text.length() + count, padChar);
  } else {
    text.padTrailing(text.length() + count, padChar);
  }
}

void DataCnv::PadString(ZanStringBase& text, std::int32_t fieldLength, std::int32_t dataLength,
                        char16_t padChar, EJustification justification, bool padIsUnicode) {
  constexpr const char* kFunction = "DataCnv::PadString";
  CpDebugTrace trace(kFunction, text, fieldLength, dataLength, padChar, justification,
                     padIsUnicode);
  if (fieldLength < 0 || fieldLength < dataLength) {
    CP_RAISE(CP_INTERNAL_ERROR, kDataCnvModule, kFunction, this, nullptr,
             "Invalid input length: ", fieldLength,
             " Expected string length after padding: ", dataLength);
  }
  if (dataLength >= 0 && text.length() != dataLength) {
    if (text.length() > dataLength) {
      text.truncate(dataLength);
    } else {
      text.padTrailing(dataLength, u'\0');
    }
  }
  PadData(text, fieldLength - dataLength, justification, padChar, padIsUnicode);
  if (text.length() != fieldLength) {
    CP_RAISE(CP_INTERNAL_ERROR, kDataCnvModule, kFunction, this, nullptr, "Data padding failed");
  }
}

void DataCnv::PadData(unsigned char* buffer, std::int32_t padBytes, std::int32_t dataBytes,
                      EJustification justification, char16_t padChar, bool padIsUnicode) {
  constexpr const char* kFunction = "DataCnv::PadData";
  CpDebugTrace trace(kFunction, static_cast<const void*>(buffer), padBytes, dataBytes,
                     justification, padChar, padIsUnicode);
  if (buffer == nullptr || padBytes < 0 || dataBytes < 0) {
    CP_RAISE(CP_INTERNAL_ERROR, kDataCnvModule, kFunction, this, nullptr,
             "Invalid argument for DataCnv::PadData");
  }
  if (padBytes == 0) return;

  unsigned char unit[kCharBytesCapacity];
  std::int32_t unitLength = 0;
  if (!padIsUnicode) {
    // Already a code-page character: the low byte in a single-byte code page, else both bytes in
    // memory order; the padding must be a whole number of characters.
    const std::int32_t width = getConverter()->getMinBytesPerChar();
    if ((width == 1 && padChar > 0xFF) || padBytes % width != 0) {
      raiseInvalidPadding(kFunction, padChar);
    }
    if (width == 1) {
      unit[0] = static_cast<unsigned char>(padChar);
      unitLength = 1;
    } else {
      std::memcpy(unit, &padChar, sizeof padChar);
      unitLength = sizeof padChar;
    }
  } else {
    unitLength = encodePadChar(padChar, unit);
    if (padBytes % unitLength != 0) {
      CP_RAISE(CP_CONV_INVALID_PADDING_SIZE, kDataCnvModule, kFunction, this, nullptr,
               CPUtils::binaryDump(unit, unitLength), padBytes);
    }
  }

  std::vector<unsigned char> block(static_cast<std::size_t>(padBytes));
  for (std::size_t i = 0; i < block.size(); ++i) block[i] = unit[i % unitLength];
  if (justification == eRightJustified) {
    unsigned char* const dataStart = buffer - dataBytes;
    std::memmove(dataStart + padBytes, dataStart, static_cast<std::size_t>(dataBytes));
    // A string copy, as the runtime has always written the block: a zero byte in it ends the copy
    // and the rest of the block is written as zeros.
    std::strncpy(reinterpret_cast<char*>(dataStart), reinterpret_cast<const char*>(block.data()),
                 block.size());
  } else {
    std::memcpy(buffer, block.data(), block.size());
  }
}

std::int32_t DataCnv::encodePadChar(char16_t padChar, unsigned char* unit) {
  // The converter substitutes what the code page lacks; a pad character that does not read back as
  // itself is one the code page cannot carry.
  std::int32_t length = kCharBytesCapacity;
  const ZanStringBase padText(&padChar, 1);
  ZanStringBase readBack;
  if (U_FAILURE(fromUnicodeString(padText, unit, length)) || length == 0 ||
      U_FAILURE(static_cast<UErrorCode>(toUnicodeString(readBack, unit, length))) ||
      readBack != padText) {
    CP_RAISE(CP_INTERNAL_ERROR, kDataCnvModule, "DataCnv::PadData", this, nullptr,
             "Error converting from unicode");
  }
  return length;
}

bool DataCnv::CheckSign(ZanStringBase& digits, ESign sign, const char16_t* minus,
                        const char16_t* plus) {
  // An embedded sign adds 64 to the digit: "p".."y" stand for a negative 0..9. What the
  // subtraction leaves is for the caller's digit check to judge.
  constexpr char16_t kEmbeddedSignOffset = 64;
  const auto isPlainDigit = [](char16_t unit) { return unit >= u'0' && unit <= u'9'; };
  switch (sign) {
    case eNoSign:
      return false;
    case eLeadingEmbeddedSign:
    case eTrailingEmbeddedSign: {
      if (digits.isEmpty()) return false;
      const std::int32_t at = sign == eLeadingEmbeddedSign ? 0 : digits.length() - 1;
      if (isPlainDigit(digits[at])) return false;
      const char16_t digit = static_cast<char16_t>(digits[at] - kEmbeddedSignOffset);
      digits.replace(at, 1, ZanStringBase(&digit, 1));
      return true;
    }
    case eLeadingSeparateSign: {
      // An empty minus matches every text, so every value reads as negative: the runtime's rule.
      const std::int32_t minusLength = u_strlen(minus);
      if (startsWith(digits, minus, minusLength)) {
        digits.erase(0, minusLength);
        return true;
      }
      const std::int32_t plusLength = u_strlen(plus);
      if (startsWith(digits, plus, plusLength)) digits.erase(0, plusLength);
      return false;
    }
    case eTrailingSeparateSign: {
      bool negative = false;
      const std::int32_t minusLength = u_strlen(minus);
      if (endsWith(digits, minus, minusLength)) {
        digits.truncate(digits.length() - minusLength);
        negative = true;
      }
      // A trailing plus is removed even after a minus was: "12+-" reads as 12 negative.
      const std::int32_t plusLength = u_strlen(plus);
      if (endsWith(digits, plus, plusLength)) digits.truncate(digits.length() - plusLength);
      return negative;
    }
    default:
      CP_RAISE(CP_INTERNAL_ERROR, kDataCnvModule, "DataCnv::CheckSign", this, nullptr,
               "Invalid sign type: ", static_cast<std::int32_t>(sign));
  }
}

bool DataCnv::HasALeadingMinus(const ZanStringBase& text, ESign /*sign*/, const char16_t* minus,
                               const char16_t* /*plus*/) {
  return !text.isEmpty() && minus != nullptr && text[0] == minus[0];
}

bool DataCnv::HasATrailingMinus(const ZanStringBase& text, ESign /*sign*/, const char16_t* minus,
                                const char16_t* /*plus*/) {
  return !text.isEmpty() && minus != nullptr && text[text.length() - 1] == minus[0];
}

void DataCnv::SubstituteMinusSign(ZanStringBase& text, ESign sign, const char16_t* minus,
                                  bool noStandardMinus) {
  if ((sign != eLeadingSeparateSign && sign != eTrailingSeparateSign) || minus == nullptr ||
      *minus == 0) {
    return;
  }
  if (!noStandardMinus) text.erase(0, US_MINUS.length());
  if (sign == eLeadingSeparateSign) {
    text.insert(0, ZanStringBase(minus));
  } else {
    text.append(ZanStringBase(minus));
  }
}
