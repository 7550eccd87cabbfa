// Zoned (external) decimal: one digit a character in the object's code page, the sign overpunched
// on the first or last digit or standing apart as "+" or "-" at an edge of the field.
//
// Every field can be read and written through the code page as UTF-16 text. The fields of nearly
// every record are plain digits in a code page whose digits are single bytes, and those are read
// and written byte by byte instead, with the same result: EBCDIC digits are F0..F9 and "+" and "-"
// are 4E and 60; ASCII-based ones 30..39, 2B and 2D. Whatever the byte path does not recognise,
// failures included, it leaves to the text path.

#include <bsutils/cputils.h>
#include <bsutils/dataconv.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <string_view>
#include <utility>
#include <vector>

#include "core/canonicaltext.h"
#include "core/cpdebugtrace.h"
#include "core/cpraise.h"
#include "datacnvprivate.h"

using namespace bsutils::internal;

namespace {

using ESign = DataCnv::ESign;

constexpr const char* kExtDecToStr = "DataCnv::ExtDecToStr";
constexpr const char* kUStringToExtDec = "DataCnv::UStringToExtDec";
constexpr const char* kZonedKind = "external decimal";
constexpr const char* kExternalSizeMessage = "Invalid external decimal size: ";

// Fields up to this size are taken apart or built byte by byte on the stack.
constexpr std::int32_t kInlineBytes = 64;

// A sign table holds the forms of the ten digits first.
constexpr std::int32_t kSignTableDigits = 10;

// What a zoned field holds besides digits, in a code page whose digits are single bytes.
struct ZonedBytes {
  unsigned char zone;  // digit d is zone | d
  unsigned char plus;
  unsigned char minus;
  unsigned char space;
};
constexpr ZonedBytes kEbcdicBytes{0xF0, 0x4E, 0x60, 0x40};
constexpr ZonedBytes kAsciiBytes{0x30, 0x2B, 0x2D, 0x20};

bool isEmbedded(ESign sign) {
  return sign == DataCnv::eLeadingEmbeddedSign || sign == DataCnv::eTrailingEmbeddedSign;
}
bool isSeparate(ESign sign) {
  return sign == DataCnv::eLeadingSeparateSign || sign == DataCnv::eTrailingSeparateSign;
}
bool isLeading(ESign sign) {
  return sign == DataCnv::eLeadingEmbeddedSign || sign == DataCnv::eLeadingSeparateSign;
}
bool isDigitUnit(char16_t unit) { return unit >= u'0' && unit <= u'9'; }
bool hasTable(const char16_t* table) { return table != nullptr && *table != 0; }
bool isDigitByte(unsigned char byte, const ZonedBytes& bytes) {
  return (byte & 0xF0) == bytes.zone && (byte & 0x0F) <= 9;
}

// The first position of `unit` in a sign table, or -1; a missing table holds nothing.
std::int32_t signTablePosition(const char16_t* table, char16_t unit) {
  if (table == nullptr) return -1;
  const std::u16string_view entries(table);
  const std::size_t at = entries.find(unit);
  return at == std::u16string_view::npos ? -1 : static_cast<std::int32_t>(at);
}

// A digit that carries a sign; `digit` is -1 when the character carries none.
struct SignedDigit {
  std::int32_t digit;
  bool negative;
};
constexpr SignedDigit kNoSignedDigit{-1, false};

// EBCDIC signs a digit in its zone: D is negative, F (the plain digit) positive, and the other
// sign codes A, B, C and E positive too. A zone below A carries no sign.
SignedDigit ebcdicSignedDigit(unsigned char byte) {
  const std::int32_t zone = byte >> 4;
  const std::int32_t digit = byte & 0x0F;
  if (zone < 0xA || digit > 9) return kNoSignedDigit;
  return {digit, zone == 0xD};
}

// ASCII signs a digit in its zone too, 3 (the plain digit) positive and 7 ("p".."y") negative;
// with the custom EBCDIC signs it uses the letters EBCDIC's signed digits print as: "{", "A".."I"
// positive, "}", "J".."R" negative.
SignedDigit asciiSignedDigit(char16_t unit, bool customSignEBCDIC) {
  if (customSignEBCDIC) {
    if (unit == u'{') return {0, false};
    if (unit == u'}') return {0, true};
    if (unit >= u'A' && unit <= u'I') return {unit - u'A' + 1, false};
    if (unit >= u'J' && unit <= u'R') return {unit - u'J' + 1, true};
    return kNoSignedDigit;
  }
  if (isDigitUnit(unit)) return {unit - u'0', false};
  if (unit >= u'p' && unit <= u'y') return {unit - u'p', true};
  return kNoSignedDigit;
}

// The signed form of the digit "0".."9" in the conventions above.
char16_t asciiSignedUnit(char16_t digitUnit, bool negative, bool customSignEBCDIC) {
  const std::int32_t digit = digitUnit - u'0';
  if (customSignEBCDIC) {
    if (digit == 0) return negative ? u'}' : u'{';
    return static_cast<char16_t>((negative ? u'J' : u'A') + digit - 1);
  }
  return negative ? static_cast<char16_t>(u'p' + digit) : digitUnit;
}
unsigned char ebcdicSignedByte(unsigned char digitByte, bool negative) {
  // Clearing 0x20 turns zone F into zone D.
  return negative ? static_cast<unsigned char>(digitByte & ~0x20) : digitByte;
}

// True when padding by `pad` cannot change how the byte path reads a field of plain digits: a
// digit is never trimmed, and a space is none of the characters a sign is made of. Any other pad
// character might stand where the text path would trim a signed digit.
bool isPlainPad(char16_t pad, bool padIsUnicode, const ZonedBytes& bytes) {
  if (padIsUnicode) return pad == u' ' || isDigitUnit(pad);
  return pad == bytes.space || (pad <= 0xFF && isDigitByte(static_cast<unsigned char>(pad), bytes));
}

// Reads a field of plain digits and its sign into "0".."9" units (`digits` has room for `size`),
// or returns false for anything else: padding, sign tables, a byte that is no digit or no signed
// digit.
bool digitsFromBytes(const unsigned char* field, std::int32_t size, ESign sign, bool ebcdic,
                     bool customSignEBCDIC, char16_t* digits, std::int32_t& count, bool& negative) {
  const ZonedBytes& bytes = ebcdic ? kEbcdicBytes : kAsciiBytes;
  std::int32_t first = 0;
  std::int32_t end = size;
  std::int32_t signAt = -1;
  negative = false;
  if (isSeparate(sign)) {
    const std::int32_t at = isLeading(sign) ? 0 : size - 1;
    if (field[at] == bytes.minus || field[at] == bytes.plus) {
      negative = field[at] == bytes.minus;
      if (isLeading(sign)) {
        ++first;
      } else {
        --end;
      }
    }
  } else if (isEmbedded(sign)) {
    signAt = isLeading(sign) ? 0 : size - 1;
  }
  count = 0;
  for (std::int32_t i = first; i < end; ++i) {
    const unsigned char byte = field[i];
    if (i == signAt) {
      const SignedDigit signedDigit =
          ebcdic ? ebcdicSignedDigit(byte) : asciiSignedDigit(byte, customSignEBCDIC);
      if (signedDigit.digit < 0) return false;
      negative = signedDigit.negative;
      digits[count++] = static_cast<char16_t>(u'0' + signedDigit.digit);
    } else if (isDigitByte(byte, bytes)) {
      digits[count++] = static_cast<char16_t>(u'0' + (byte & 0x0F));
    } else {
      return false;
    }
  }
  return true;
}

// Writes unsigned digits and their sign byte by byte into the `size` bytes of `field`: a separate
// sign at its edge, zeros before the digits. False when the field needs padding other than zeros.
bool fieldFromBytes(std::u16string_view digits, bool negative, std::int32_t size, ESign sign,
                    bool zeroPad, bool ebcdic, bool customSignEBCDIC, unsigned char* field) {
  const ZonedBytes& bytes = ebcdic ? kEbcdicBytes : kAsciiBytes;
  const auto count = static_cast<std::int32_t>(digits.size());
  const std::int32_t fill = size - count - (isSeparate(sign) ? 1 : 0);
  if (fill > 0 && !zeroPad) return false;
  const unsigned char separateSign = negative ? bytes.minus : bytes.plus;
  unsigned char* at = field;
  if (sign == DataCnv::eLeadingSeparateSign) *at++ = separateSign;
  at = std::fill_n(at, fill, bytes.zone);
  for (std::int32_t i = 0; i < count; ++i) {
    *at++ = static_cast<unsigned char>(bytes.zone | (digits[i] - u'0'));
  }
  if (sign == DataCnv::eTrailingSeparateSign) *at = separateSign;
  if (isEmbedded(sign)) {
    unsigned char& carrier = field[isLeading(sign) ? 0 : size - 1];
    carrier =
        ebcdic ? ebcdicSignedByte(carrier, negative)
               : static_cast<unsigned char>(asciiSignedUnit(carrier, negative, customSignEBCDIC));
  }
  return true;
}

// "-" and the digits without their leading zeros; "0" for zero, which has no sign.
ZanStringBase signedIntegerText(const char16_t* digits, std::int32_t count, bool negative) {
  std::int32_t first = 0;
  while (first < count && digits[first] == u'0') ++first;
  if (first == count) return ZanStringBase(u"0", 1);
  ZanStringBase text;
  text.reserve(count - first + 1);
  if (negative) text.append(u'-');
  text.append(digits + first, count - first);
  return text;
}

void checkZonedSource(const DataCnv* cnv, const char* function, const char* sizeMessage,
                      const unsigned char* source, std::int32_t size) {
  requireInputPointer(cnv, function, source);
  if (size < 1) {
    CP_RAISE(CP_INTERNAL_ERROR, kDataCnvModule, function, cnv, nullptr, sizeMessage, size);
  }
}

void checkZonedOutput(const DataCnv* cnv, const char* function, const unsigned char* output,
                      std::int32_t size) {
  requireOutputBuffer(cnv, function, output);
  if (size < 1) {
    CP_RAISE(CP_INTERNAL_ERROR, kDataCnvModule, function, cnv, nullptr,
             "Invalid output buffer size: ", size);
  }
}

}  // namespace

void DataCnv::checkSignTables(const char* function, const char16_t* positiveSigns,
                              const char16_t* negativeSigns) {
  // The tables are a pair, or none: a digit's form in one is found by its position in the other,
  // among the first ten, and a shorter or missing table would be read past its end.
  if (!hasTable(positiveSigns) && !hasTable(negativeSigns)) return;
  for (const char16_t* table : {positiveSigns, negativeSigns}) {
    if (!hasTable(table) || std::u16string_view(table).size() < kSignTableDigits) {
      CP_RAISE(CP_INTERNAL_ERROR, kDataCnvModule, function, this, nullptr,
               "Invalid sign table: ", table);
    }
  }
}

void DataCnv::checkZonedForm(const char* function, ESign sign, EJustification justification,
                             const char16_t* positiveSigns, const char16_t* negativeSigns) {
  if (sign < eNoSign || sign > eTrailingSeparateSign) {
    CP_RAISE(CP_INTERNAL_ERROR, kDataCnvModule, function, this, nullptr,
             "Invalid sign type: ", static_cast<std::int32_t>(sign));
  }
  // Padding and trimming must agree on the side, or a written field would not read back.
  if (justification != eLeftJustified && justification != eRightJustified) {
    CP_RAISE(CP_INTERNAL_ERROR, kDataCnvModule, function, this, nullptr,
             "Invalid justification: ", static_cast<std::int32_t>(justification));
  }
  if (isEmbedded(sign)) checkSignTables(function, positiveSigns, negativeSigns);
}

// --- the text-level steps ---

void DataCnv::ExtDecAddSign(ZanStringBase& text, ESign sign, const char16_t* positiveSigns,
                            const char16_t* negativeSigns, bool& negative) {
  CpDebugTrace trace("DataCnv::ExtDecAddSign", text, sign, negative);
  switch (sign) {
    case eLeadingSeparateSign:
      text.insert(0, negative ? US_MINUS : US_PLUS);
      break;
    case eTrailingSeparateSign:
      text.append(negative ? US_MINUS : US_PLUS);
      break;
    case eLeadingEmbeddedSign:
    case eTrailingEmbeddedSign: {
      checkSignTables("DataCnv::ExtDecAddSign", positiveSigns, negativeSigns);
      if (text.isEmpty()) break;
      const std::int32_t at = isLeading(sign) ? 0 : text.length() - 1;
      const std::int32_t position = signTablePosition(positiveSigns, text[at]);
      if (position < 0) break;
      const char16_t form = (negative ? negativeSigns : positiveSigns)[position % kSignTableDigits];
      text.replace(at, 1, ZanStringBase(&form, 1));
      break;
    }
    default:
      break;
  }
}

void DataCnv::ExtDecRemoveSign(ZanStringBase& text, ESign sign, const char16_t* positiveSigns,
                               const char16_t* negativeSigns, bool& negative) {
  CpDebugTrace trace("DataCnv::ExtDecRemoveSign", text, sign);
  switch (sign) {
    case eNoSign:
      negative = false;
      break;
    case eLeadingSeparateSign:
    case eTrailingSeparateSign:
      negative = CheckSign(text, sign, US_MINUS.terminatedData(), US_PLUS.terminatedData());
      break;
    case eLeadingEmbeddedSign:
    case eTrailingEmbeddedSign: {
      checkSignTables("DataCnv::ExtDecRemoveSign", positiveSigns, negativeSigns);
      negative = false;
      if (text.isEmpty()) break;
      const std::int32_t at = isLeading(sign) ? 0 : text.length() - 1;
      std::int32_t position = signTablePosition(negativeSigns, text[at]);
      if (position >= 0) {
        negative = true;
      } else {
        position = signTablePosition(positiveSigns, text[at]);
      }
      if (position < 0) break;
      const auto digit = static_cast<char16_t>(u'0' + position % kSignTableDigits);
      text.replace(at, 1, ZanStringBase(&digit, 1));
      break;
    }
    default:
      CP_RAISE(CP_INTERNAL_ERROR, kDataCnvModule, "DataCnv::ExtDecRemoveSign", this, nullptr,
               "Invalid sign type: ", static_cast<std::int32_t>(sign));
  }
}

void DataCnv::ExtDecTrimData(ZanStringBase& text, EJustification justification,
                             char16_t padCharacter, bool padIsUnicode) {
  CpDebugTrace trace("DataCnv::ExtDecTrimData", text, justification, padCharacter, padIsUnicode);
  const char16_t pad = padIsUnicode ? padCharacter
                                    : codePageCharToUnicode("DataCnv::ExtDecTrimData", padCharacter,
                                                            getConverter()->getMinBytesPerChar());
  // Digits are never padding: a zero pad fills with zeros that read as zeros, and trimming zeros
  // off the end would change the value.
  if (!isDigitUnit(pad)) TrimData(text, eTrimPadding, justification, pad, true);
}

void DataCnv::ExtDecPadData(ZanStringBase& text, std::int32_t fieldSize, std::int32_t dataSize,
                            EJustification justification, char16_t padCharacter,
                            bool padIsUnicode) {
  constexpr const char* kFunction = "DataCnv::ExtDecPadData";
  CpDebugTrace trace(kFunction, text, fieldSize, dataSize, justification, padCharacter,
                     padIsUnicode);
  const std::int32_t fill = fieldSize - dataSize;
  if (fill <= 0) return;
  const char16_t pad = padIsUnicode ? padCharacter
                                    : codePageCharToUnicode(kFunction, padCharacter,
                                                            getConverter()->getMinBytesPerChar());
  // Zeros before the digits keep the value; any other digit would change it.
  if (isDigitUnit(pad) && pad != u'0') raiseInvalidPadding(kFunction, padCharacter);
  const std::int32_t padBytes = GetPadCharLen(pad);
  if (fill % padBytes != 0) {
    CP_RAISE(CP_CONV_INVALID_PADDING_SIZE, kDataCnvModule, kFunction, this, nullptr, pad, fill);
  }
  const std::int32_t count = fill / padBytes;
  if (pad == u'0') {
    text.padLeading(text.length() + count, u'0');
  } else {
    PadData(text, count, justification, pad, true);
  }
}

std::int32_t DataCnv::GetPadCharLen(char16_t padCharacter) {
  CpDebugTrace trace("DataCnv::GetPadCharLen", padCharacter);
  unsigned char unit[kCharBytesCapacity];
  return trace.result(encodePadChar(padCharacter, unit));
}

// --- reading ---

bool DataCnv::zonedDigitsFromText(const unsigned char* source, std::int32_t size, ESign sign,
                                  EJustification justification, char16_t padCharacter,
                                  bool padIsUnicode, bool customSignEBCDIC,
                                  const char16_t* positiveSigns, const char16_t* negativeSigns,
                                  ZanStringBase& digits) {
  const std::int32_t status = toUnicodeString(digits, source, size);
  if (U_FAILURE(static_cast<UErrorCode>(status))) {
    CP_RAISE(CP_INTERNAL_ERROR, kDataCnvModule, kExtDecToStr, this, nullptr,
             "Conversion to unicode string failed. Error code: ", status);
  }
  // The separate sign stands at the edge, outside the padding; the embedded one rides on the
  // outermost digit, inside it.
  bool negative = false;
  if (isSeparate(sign)) ExtDecRemoveSign(digits, sign, positiveSigns, negativeSigns, negative);
  ExtDecTrimData(digits, justification, padCharacter, padIsUnicode);
  if (isEmbedded(sign) && !digits.isEmpty()) {
    const std::int32_t at = isLeading(sign) ? 0 : digits.length() - 1;
    if (signTablePosition(negativeSigns, digits[at]) >= 0 ||
        signTablePosition(positiveSigns, digits[at]) >= 0) {
      ExtDecRemoveSign(digits, sign, positiveSigns, negativeSigns, negative);
    } else {
      negative = takeOverpunchedSign(digits, at, customSignEBCDIC);
    }
  }
  for (std::int32_t i = 0; i < digits.length(); ++i) {
    if (!isDigitUnit(digits[i])) {
      CP_RAISE(CP_CONV_INPUT_DATA_INVALID, kDataCnvModule, kExtDecToStr, this, nullptr, kZonedKind,
               CPUtils::binaryDump(source, size));
    }
  }
  return negative;
}

bool DataCnv::takeOverpunchedSign(ZanStringBase& text, std::int32_t at, bool customSignEBCDIC) {
  // The overpunch is a property of the bytes: the character goes back into the code page to be
  // judged, and EBCDIC's signed digits are single bytes.
  const char16_t unit = text[at];
  unsigned char bytes[kCharBytesCapacity];
  std::int32_t length = sizeof bytes;
  if (U_FAILURE(fromUnicodeString(ZanStringBase(&unit, 1), bytes, length))) length = 0;
  const bool ebcdic = IsCcsidEBCDIC();
  SignedDigit signedDigit = kNoSignedDigit;
  if (!ebcdic) {
    signedDigit = asciiSignedDigit(unit, customSignEBCDIC);
  } else if (length == 1) {
    signedDigit = ebcdicSignedDigit(bytes[0]);
  }
  if (signedDigit.digit < 0) {
    if (!ebcdic && customSignEBCDIC) {
      CP_RAISE(CP_CONV_INPUT_DATA_INVALID, kDataCnvModule, kExtDecToStr, this, nullptr,
               "External decimal - Custom Sign EBCDIC", CPUtils::binaryDump(bytes, length));
    }
    return false;  // the digit check refuses the character
  }
  const auto digit = static_cast<char16_t>(u'0' + signedDigit.digit);
  text.replace(at, 1, ZanStringBase(&digit, 1));
  return signedDigit.negative;
}

template <class Use>
auto DataCnv::readZonedDigits(const unsigned char* source, std::int32_t size, ESign sign,
                              EJustification justification, std::int32_t padCharacter,
                              bool padIsUnicode, bool customSignEBCDIC,
                              const char16_t* positiveSigns, const char16_t* negativeSigns,
                              Use&& use) {
  checkZonedSource(this, kExtDecToStr, kExternalSizeMessage, source, size);
  checkZonedForm(kExtDecToStr, sign, justification, positiveSigns, negativeSigns);
  if (padCharacter < 0 || padCharacter > 0xFFFF) {
    CP_RAISE(CP_INTERNAL_ERROR, kDataCnvModule, kExtDecToStr, this, nullptr,
             "Invalid pad character: ", padCharacter);
  }
  const auto pad = static_cast<char16_t>(padCharacter);
  const bool singleByteDigits = getConverter()->getMinBytesPerChar() == 1;
  // Checked here so that the byte path, which never needs the pad character, fails as the text
  // path does.
  if (singleByteDigits && !padIsUnicode && pad > 0xFF) raiseInvalidPadding(kExtDecToStr, pad);

  const bool ebcdic = IsCcsidEBCDIC();
  const bool bytePath = singleByteDigits && size <= kInlineBytes &&
                        !(isEmbedded(sign) && hasTable(positiveSigns)) &&
                        isPlainPad(pad, padIsUnicode, ebcdic ? kEbcdicBytes : kAsciiBytes);
  if (bytePath) {
    std::array<char16_t, kInlineBytes> digits;
    std::int32_t count = 0;
    bool negative = false;
    if (digitsFromBytes(source, size, sign, ebcdic, customSignEBCDIC, digits.data(), count,
                        negative)) {
      return use(digits.data(), count, negative);
    }
  }
  ZanStringBase digits;
  const bool negative = zonedDigitsFromText(source, size, sign, justification, pad, padIsUnicode,
                                            customSignEBCDIC, positiveSigns, negativeSigns, digits);
  return use(digits.data(), digits.length(), negative);
}

ZanStringBase DataCnv::ExtDecToStr(const unsigned char* source, std::int32_t size, ESign sign,
                                   EJustification justification, std::int32_t padCharacter,
                                   bool padIsUnicode, bool customSignEBCDIC,
                                   const char16_t* positiveSigns, const char16_t* negativeSigns) {
  return readZonedDigits(source, size, sign, justification, padCharacter, padIsUnicode,
                         customSignEBCDIC, positiveSigns, negativeSigns, signedIntegerText);
}

std::int64_t DataCnv::ExtDecToInt64(const unsigned char* source, std::int32_t size, ESign sign,
                                    EJustification justification, std::int32_t padCharacter,
                                    bool padIsUnicode, bool customSignEBCDIC,
                                    const char16_t* positiveSigns, const char16_t* negativeSigns) {
  constexpr const char* kFunction = "DataCnv::ExtDecToInt64";
  CpDebugTrace trace(kFunction, static_cast<const void*>(source), size, sign, justification,
                     padCharacter, padIsUnicode, customSignEBCDIC);
  checkZonedSource(this, kFunction, "Invalid extended decimal size: ", source, size);
  // Up to 18 digits the value is built from them directly; longer fields go through the text,
  // whose reader judges the range.
  constexpr std::int32_t kSafeDigits = 18;
  return trace.result(readZonedDigits(
      source, size, sign, justification, padCharacter, padIsUnicode, customSignEBCDIC,
      positiveSigns, negativeSigns,
      [this](const char16_t* digits, std::int32_t count, bool negative) {
        if (count > kSafeDigits) {
          return UStringToInt64(signedIntegerText(digits, count, negative));
        }
        std::int64_t magnitude = 0;
        for (std::int32_t i = 0; i < count; ++i) magnitude = magnitude * 10 + (digits[i] - u'0');
        return negative ? -magnitude : magnitude;
      }));
}

double DataCnv::ExtDecToDbl(const unsigned char* source, std::int32_t size, std::int32_t scale,
                            ESign sign, EJustification justification, std::int32_t padCharacter,
                            bool padIsUnicode, bool customSignEBCDIC, const char16_t* positiveSigns,
                            const char16_t* negativeSigns) {
  constexpr const char* kFunction = "DataCnv::ExtDecToDbl";
  CpDebugTrace trace(kFunction, static_cast<const void*>(source), size, scale, sign, justification,
                     padCharacter, padIsUnicode, customSignEBCDIC);
  checkZonedSource(this, kFunction, kExternalSizeMessage, source, size);
  return trace.result(readZonedDigits(
      source, size, sign, justification, padCharacter, padIsUnicode, customSignEBCDIC,
      positiveSigns, negativeSigns,
      [this, scale](const char16_t* digits, std::int32_t count, bool negative) {
        std::int32_t first = 0;
        while (first < count && digits[first] == u'0') ++first;
        // Exact doubles, one correctly rounded step: the double the decimal text reads as.
        if (count - first <= kExactDigits && scale >= -kExactPowerOfTen &&
            scale <= kExactPowerOfTen) {
          std::int64_t magnitude = 0;
          for (std::int32_t i = first; i < count; ++i)
            magnitude = magnitude * 10 + (digits[i] - u'0');
          const auto value = static_cast<double>(negative ? -magnitude : magnitude);
          return scale >= 0 ? value / kPowersOfTen[scale] : value * kPowersOfTen[-scale];
        }
        ZanStringBase decimal = signedIntegerText(digits, count, negative);
        shiftSignedDecimal(decimal, scale);
        return PWFStringTodouble(decimal);
      }));
}

PWFData DataCnv::ExtDecToDec(const unsigned char* source, std::int32_t size, std::int32_t scale,
                             ESign sign, EJustification justification, std::int32_t padCharacter,
                             bool padIsUnicode, bool customSignEBCDIC,
                             const char16_t* positiveSigns, const char16_t* negativeSigns) {
  constexpr const char* kFunction = "DataCnv::ExtDecToDec";
  CpDebugTrace trace(kFunction, static_cast<const void*>(source), size, scale, sign, justification,
                     padCharacter, padIsUnicode, customSignEBCDIC);
  checkZonedSource(this, kFunction, kExternalSizeMessage, source, size);
  return readZonedDigits(
      source, size, sign, justification, padCharacter, padIsUnicode, customSignEBCDIC,
      positiveSigns, negativeSigns,
      [this, scale](const char16_t* digits, std::int32_t count, bool negative) {
        // Without leading zeros; zero is "0" and has no sign.
        std::int32_t first = 0;
        while (first < count && digits[first] == u'0') ++first;
        if (first == count) {
          digits = u"0";
          first = 0;
          count = 1;
          negative = false;
        }
        if (count - first <= kInlineBytes && scale >= 0 && scale <= kMaxStackScale &&
            fastPathsOpen()) {
          char16_t text[kInlineBytes + kMaxStackScale + 4];
          placePoint(digits + first, count - first, count - first, scale, negative, text);
          return PWFData(text, eDecimal);
        }
        ZanStringBase text = signedIntegerText(digits + first, count - first, negative);
        shiftSignedDecimal(text, scale);
        return PWFData(text.terminatedData(), eDecimal);
      });
}

// --- writing ---

ZanStringBase DataCnv::zonedDigitsOf(const ZanStringBase& decimal, std::int32_t scale,
                                     std::int32_t size, bool& negative) {
  std::optional<ZanStringBase> digits =
      scaledFieldDigits(kUStringToExtDec, decimal, scale, size, negative);
  if (!digits) {
    CP_RAISE(CP_CONV_INPUT_DATA_TOO_LONG, kDataCnvModule, kUStringToExtDec, this, nullptr,
             kZonedKind, "string");
  }
  // Zero is written as one digit and has no sign.
  if (digits->length() == 1 && (*digits)[0] == u'0') negative = false;
  return *std::move(digits);
}

void DataCnv::zonedFieldFromText(std::u16string_view digits, bool negative, std::int32_t size,
                                 ESign sign, EJustification justification, char16_t padCharacter,
                                 bool padIsUnicode, bool customSignEBCDIC,
                                 const char16_t* positiveSigns, const char16_t* negativeSigns,
                                 unsigned char* field) {
  // Digits and signs take the code page's narrowest character; the caller has made sure they fit.
  const std::int32_t width = getConverter()->getMinBytesPerChar();
  const auto digitBytes = static_cast<std::int32_t>(digits.size()) * width;
  const std::int32_t numberBytes = size - (isSeparate(sign) ? width : 0);
  const std::int32_t fill = numberBytes - digitBytes;
  const char16_t pad = fill == 0 || padIsUnicode
                           ? padCharacter
                           : codePageCharToUnicode(kUStringToExtDec, padCharacter, width);
  // Zeros are digits: they fill before the embedded sign goes on the first digit. Other padding
  // goes round the signed digits.
  const bool zeroFill = fill > 0 && pad == u'0';
  ZanStringBase text(digits.data(), static_cast<std::int32_t>(digits.size()));
  if (zeroFill) ExtDecPadData(text, numberBytes, digitBytes, justification, pad, true);
  bool markNegativeByte = false;
  if (isEmbedded(sign)) {
    const std::int32_t at = isLeading(sign) ? 0 : text.length() - 1;
    if (signTablePosition(positiveSigns, text[at]) >= 0) {
      ExtDecAddSign(text, sign, positiveSigns, negativeSigns, negative);
    } else if (IsCcsidEBCDIC()) {
      markNegativeByte = negative;  // on the byte, below
    } else {
      const char16_t form = asciiSignedUnit(text[at], negative, customSignEBCDIC);
      text.replace(at, 1, ZanStringBase(&form, 1));
    }
  }
  if (!zeroFill) ExtDecPadData(text, numberBytes, digitBytes, justification, pad, true);
  if (isSeparate(sign)) ExtDecAddSign(text, sign, positiveSigns, negativeSigns, negative);

  // A pad character or a sign form that does not take the width assumed above cannot make the
  // field exactly.
  std::int32_t written = size;
  if (U_FAILURE(fromUnicodeString(text, field, written)) || written != size) {
    CP_RAISE(CP_CONV_INVALID_PADDING_SIZE, kDataCnvModule, kUStringToExtDec, this, nullptr, text,
             size);
  }
  if (markNegativeByte) {
    // EBCDIC digits are single bytes, and the padding on the one side of them takes `fill` bytes.
    const bool padBefore = !zeroFill && justification == eRightJustified;
    const bool padAfter = !zeroFill && justification == eLeftJustified;
    const std::int32_t at =
        isLeading(sign) ? (padBefore ? fill : 0) : size - 1 - (padAfter ? fill : 0);
    field[at] = ebcdicSignedByte(field[at], true);
  }
}

void DataCnv::writeZonedField(std::u16string_view digits, bool negative, unsigned char* output,
                              std::int32_t size, ESign sign, EJustification justification,
                              char16_t padCharacter, bool padIsUnicode, bool customSignEBCDIC,
                              const char16_t* positiveSigns, const char16_t* negativeSigns) {
  if (negative && sign == eNoSign) {
    CP_RAISE(CP_CONV_INPUT_DATA_OUT_OF_BOUNDS, kDataCnvModule, kUStringToExtDec, this, nullptr,
             "unsigned external decimal", "signed number");
  }
  const std::int32_t width = getConverter()->getMinBytesPerChar();
  const std::int64_t dataBytes =
      (static_cast<std::int64_t>(digits.size()) + (isSeparate(sign) ? 1 : 0)) * width;
  if (dataBytes > size) {
    CP_RAISE(CP_CONV_INPUT_DATA_TOO_LONG, kDataCnvModule, kUStringToExtDec, this, nullptr,
             kZonedKind, "string");
  }

  // Built aside, so that a failure leaves the caller's buffer as it was.
  std::array<unsigned char, kInlineBytes> inlineField;
  std::vector<unsigned char> largeField;
  unsigned char* field = inlineField.data();
  if (size > kInlineBytes) {
    largeField.resize(static_cast<std::size_t>(size));
    field = largeField.data();
  }
  const bool ebcdic = IsCcsidEBCDIC();
  const ZonedBytes& bytes = ebcdic ? kEbcdicBytes : kAsciiBytes;
  const bool zeroPad = padIsUnicode ? padCharacter == u'0' : padCharacter == bytes.zone;
  const bool bytePath =
      width == 1 && !(isEmbedded(sign) && hasTable(positiveSigns)) &&
      fieldFromBytes(digits, negative, size, sign, zeroPad, ebcdic, customSignEBCDIC, field);
  if (!bytePath) {
    zonedFieldFromText(digits, negative, size, sign, justification, padCharacter, padIsUnicode,
                       customSignEBCDIC, positiveSigns, negativeSigns, field);
  }
  std::memcpy(output, field, static_cast<std::size_t>(size));
}

void DataCnv::UStringToExtDec(ZanStringBase text, unsigned char* output, std::int32_t& size,
                              std::int32_t scale, ESign sign, EJustification justification,
                              char16_t padCharacter, bool padIsUnicode, bool customSignEBCDIC,
                              const char16_t* positiveSigns, const char16_t* negativeSigns) {
  CpDebugTrace trace(kUStringToExtDec, text, size, scale, sign, justification, padCharacter,
                     padIsUnicode, customSignEBCDIC);
  checkZonedOutput(this, kUStringToExtDec, output, size);
  checkZonedForm(kUStringToExtDec, sign, justification, positiveSigns, negativeSigns);
  bool negative = false;
  const ZanStringBase digits = zonedDigitsOf(text, scale, size, negative);
  writeZonedField({digits.data(), static_cast<std::size_t>(digits.length())}, negative, output,
                  size, sign, justification, padCharacter, padIsUnicode, customSignEBCDIC,
                  positiveSigns, negativeSigns);
}

void DataCnv::ExtDecFromInt64(std::int64_t value, unsigned char* output, std::int32_t& size,
                              ESign sign, EJustification justification, char16_t padCharacter,
                              bool padIsUnicode, bool customSignEBCDIC,
                              const char16_t* positiveSigns, const char16_t* negativeSigns) {
  constexpr const char* kFunction = "DataCnv::ExtDecFromInt64";
  CpDebugTrace trace(kFunction, value, size, sign, justification, padCharacter, padIsUnicode,
                     customSignEBCDIC);
  checkZonedOutput(this, kFunction, output, size);
  checkZonedForm(kUStringToExtDec, sign, justification, positiveSigns, negativeSigns);
  // An integer's digits are the common writer's digits already: there is no point to move and no
  // zero to drop.
  char16_t digits[kMaxIntegerDigits];
  const std::int32_t count = decimalDigits(magnitudeOf(value), digits);
  writeZonedField({digits, static_cast<std::size_t>(count)}, value < 0, output, size, sign,
                  justification, padCharacter, padIsUnicode, customSignEBCDIC, positiveSigns,
                  negativeSigns);
}

void DataCnv::ExtDecFromDbl(double value, unsigned char* output, std::int32_t& size,
                            std::int32_t scale, ESign sign, EJustification justification,
                            char16_t padCharacter, bool padIsUnicode, bool customSignEBCDIC,
                            const char16_t* positiveSigns, const char16_t* negativeSigns) {
  constexpr const char* kFunction = "DataCnv::ExtDecFromDbl";
  CpDebugTrace trace(kFunction, value, size, scale, sign, justification, padCharacter, padIsUnicode,
                     customSignEBCDIC);
  checkZonedOutput(this, kFunction, output, size);
  // The shortest text that reads back to the value, so that 0.29 with scale 2 is 29 and not the
  // 28 that 0.29 * 100 truncates to.
  ZanStringBase text;
  doubleToUString(value, text, false);
  UStringToExtDec(text, output, size, scale, sign, justification, padCharacter, padIsUnicode,
                  customSignEBCDIC, positiveSigns, negativeSigns);
}

void DataCnv::ExtDecFromDec(const char16_t* decimal, unsigned char* output, std::int32_t& size,
                            std::int32_t scale, ESign sign, EJustification justification,
                            char16_t padCharacter, bool padIsUnicode, bool customSignEBCDIC,
                            const char16_t* positiveSigns, const char16_t* negativeSigns) {
  constexpr const char* kFunction = "DataCnv::ExtDecFromDec";
  CpDebugTrace trace(kFunction, decimal, size, scale, sign, justification, padCharacter,
                     padIsUnicode, customSignEBCDIC);
  requireInputPointer(this, kFunction, decimal);
  checkZonedOutput(this, kFunction, output, size);
  UStringToExtDec(ZanStringBase(decimal), output, size, scale, sign, justification, padCharacter,
                  padIsUnicode, customSignEBCDIC, positiveSigns, negativeSigns);
}
