#include "fieldforms.h"

#include <bsutils/bytebuffer.h>
#include <bsutils/cpbase64converter.h>
#include <bsutils/numerictextformat.h>
#include <bsutils/textbufferreader.h>
#include <bsutils/textbufferwriter.h>

#include <algorithm>
#include <array>

namespace {

constexpr std::array<int, 4> kIntegerSizes{1, 2, 4, 8};
constexpr std::array<int, 2> kFloatSizes{4, 8};

// The binary and packed families know two conventions: signed (an embedded sign) or not.
DataCnv::ESign binarySign(const FieldSettings& settings) {
  return settings.isUnsigned ? DataCnv::eNoSign : DataCnv::eLeadingEmbeddedSign;
}

ZanStringBase utf16(const std::string& text) { return ZanStringBase::fromUtf8(text); }

FieldBytes utf8Bytes(const ZanStringBase& text) {
  const std::string utf8 = text.toUtf8();
  return FieldBytes(utf8.begin(), utf8.end());
}

ZanStringBase fieldText(const unsigned char* field, std::int32_t size) {
  return ZanStringBase::fromUtf8(
      std::string_view(reinterpret_cast<const char*>(field), static_cast<std::size_t>(size)));
}

// Zoned decimals are right justified over "0" padding, which the library treats as digits.
constexpr char16_t kZonedPad = u'0';

// --- int ---

PWFData decodeInt(const FieldSettings& settings, DataCnv& cnv, const unsigned char* field,
                  std::int32_t size) {
  // An unsigned 8-byte value may pass the signed range, so it comes from the unsigned reader.
  const std::string digits =
      settings.isUnsigned ? std::to_string(cnv.UIntToUInt64(field, size))
                          : std::to_string(cnv.IntToInt64(field, size, binarySign(settings)));
  // The implied places: the digits read as a number with a virtual point.
  const ZanStringBase text = utf16(digits);
  NumericTextFormat impliedPoint;
  impliedPoint.form = eVirtualDecimalPoint;
  impliedPoint.decimalPlaces = settings.scale;
  return cnv.StrToDec(text.data(), text.length(), DataCnv::eLeadingSeparateSign, u"-", u"+",
                      DataCnv::eNoTrim, DataCnv::eRightJustified, u' ', true, impliedPoint);
}

FieldBytes encodeInt(const FieldSettings& settings, DataCnv& cnv, const std::string& value) {
  // The library's exact decimal-to-integer step (the point moved, the fraction cut) writes a
  // signed integer; through 8 bytes it yields the value, whose range for the field's own size and
  // signedness IntFromInt64 then checks.
  unsigned char wide[8];
  std::int32_t wideSize = sizeof wide;
  cnv.IntFromDec(utf16(value).terminatedData(), wide, wideSize, settings.scale);
  const std::int64_t integer = cnv.IntToInt64(wide, wideSize, DataCnv::eLeadingEmbeddedSign);
  FieldBytes field(static_cast<std::size_t>(settings.size));
  std::int32_t size = settings.size;
  cnv.IntFromInt64(integer, field.data(), size, binarySign(settings));
  return field;
}

// --- packed ---

PWFData decodePacked(const FieldSettings& settings, DataCnv& cnv, const unsigned char* field,
                     std::int32_t size) {
  return cnv.PckdDecToDec(field, size, settings.endian, settings.scale, binarySign(settings));
}

FieldBytes encodePacked(const FieldSettings& settings, DataCnv& cnv, const std::string& value) {
  FieldBytes field(static_cast<std::size_t>(settings.size));
  std::int32_t size = settings.size;
  cnv.PckdDecFromDec(utf16(value).terminatedData(), field.data(), size, settings.endian,
                     settings.scale, binarySign(settings));
  return field;
}

// --- tlog-packed ---

PWFData decodeTlogPacked(const FieldSettings& settings, DataCnv& cnv, const unsigned char* field,
                         std::int32_t size) {
  return cnv.TLOGPckdDecToDec(field, size, settings.endian);
}

FieldBytes encodeTlogPacked(const FieldSettings& settings, DataCnv& cnv, const std::string& value) {
  FieldBytes field(static_cast<std::size_t>(settings.size));
  std::int32_t written = 0;
  // Leading zeros are kept, so that the field fills --size bytes.
  cnv.TLOGPWFDataToPckdDecimal(PWFData(utf16(value)), field.data(), settings.size, settings.endian,
                               false, written);
  field.resize(static_cast<std::size_t>(written));
  return field;
}

// --- zoned ---

PWFData decodeZoned(const FieldSettings& settings, DataCnv& cnv, const unsigned char* field,
                    std::int32_t size) {
  return cnv.ExtDecToDec(field, size, settings.scale, settings.zonedSign, DataCnv::eRightJustified,
                         kZonedPad, true, settings.ebcdicOverpunch, nullptr, nullptr);
}

FieldBytes encodeZoned(const FieldSettings& settings, DataCnv& cnv, const std::string& value) {
  FieldBytes field(static_cast<std::size_t>(settings.size));
  std::int32_t size = settings.size;
  cnv.ExtDecFromDec(utf16(value).terminatedData(), field.data(), size, settings.scale,
                    settings.zonedSign, DataCnv::eRightJustified, kZonedPad, true,
                    settings.ebcdicOverpunch, nullptr, nullptr);
  return field;
}

// --- float ---

PWFData decodeFloat(const FieldSettings& /*settings*/, DataCnv& cnv, const unsigned char* field,
                    std::int32_t size) {
  return PWFData(cnv.FltToDbl(field, size));
}

FieldBytes encodeFloat(const FieldSettings& settings, DataCnv& cnv, const std::string& value) {
  // The float's standard text reader takes what decode prints ("1.5E2", "INF") as well as plain
  // decimals.
  const double number =
      cnv.StandardStrToData(utf16(value).terminatedData(), -1, eFloat).getDoubleValue();
  FieldBytes field(static_cast<std::size_t>(settings.size));
  std::int32_t size = settings.size;
  cnv.FltFromDbl(number, field.data(), size);
  return field;
}

// --- text ---

PWFData decodeText(const FieldSettings& settings, DataCnv& cnv, const unsigned char* field,
                   std::int32_t size) {
  const ReadOnlyByteBuffer bytes(field, size);
  // The converter object's code-page converter serves every field of the command.
  TextBufferReader reader(&bytes, settings.ccsid, settings.endian, cnv.getConverter());
  return reader.getString(0, size, false);
}

FieldBytes encodeText(const FieldSettings& settings, DataCnv& cnv, const std::string& value) {
  const ZanStringBase text = utf16(value);
  ReadWriteByteBuffer unused;
  const TextBufferWriter writer(&unused, settings.ccsid, settings.endian);
  // With --size the text must fit the field (a longer one fails the conversion) and blanks of the
  // code page fill the rest; without it the field is as long as the text needs.
  const std::int32_t capacity =
      settings.size > 0 ? settings.size : text.length() * writer.getMaxBytesPerChar();
  FieldBytes field(static_cast<std::size_t>(std::max(capacity, 1)));
  std::int32_t written = capacity;
  writer.fromUnicode(reinterpret_cast<char*>(field.data()), &written, text.data(), text.length());
  if (settings.size > written) {
    cnv.PadData(field.data() + written, settings.size - written, written, DataCnv::eLeftJustified,
                u' ', true);
    written = settings.size;
  }
  field.resize(static_cast<std::size_t>(written));
  return field;
}

// --- interval ---

PWFData decodeInterval(const FieldSettings& /*settings*/, DataCnv& cnv, const unsigned char* field,
                       std::int32_t size) {
  const ZanStringBase text = fieldText(field, size);
  return PWFData(cnv.StrToInterval(text.data(), text.length()));
}

FieldBytes encodeInterval(const FieldSettings& /*settings*/, DataCnv& cnv,
                          const std::string& value) {
  const ZanStringBase text = utf16(value);
  const PWFData interval = cnv.StrFromInterval(cnv.StrToInterval(text.data(), text.length()));
  return utf8Bytes(interval.getPWFStringValue());
}

// --- base64 ---

PWFData decodeBase64(const FieldSettings& /*settings*/, DataCnv& /*cnv*/,
                     const unsigned char* field, std::int32_t size) {
  const ZanStringBase text = fieldText(field, size);
  return CPBase64Converter::binFromBase64(text.data(), text.length());
}

FieldBytes encodeBase64(const FieldSettings& /*settings*/, DataCnv& /*cnv*/,
                        const std::string& value) {
  // The value of a binary is its hexadecimal text.
  const std::vector<unsigned char> bytes = bytesFromHex(value);
  ZanStringBase text;
  CPBase64Converter::binToBase64(bytes.data(), static_cast<std::int32_t>(bytes.size()), text);
  return utf8Bytes(text);
}

constexpr unsigned kBinaryNumberOptions = kSizeOption | kByteOrderOption | kScaleOption;

const FieldForm kForms[] = {
    {.name = "int",
     .description = "Binary integer of 1, 2, 4 or 8 bytes, two's complement unless --unsigned",
     .options = kBinaryNumberOptions | kUnsignedOption,
     .sizes = kIntegerSizes,
     .fixedSize = true,
     .decode = decodeInt,
     .encode = encodeInt,
     .decodeExample = "bsconv decode int --scale 2 000004D2  ->  12.34",
     .encodeExample = "bsconv encode int --size 2 -- -2  ->  FFFE",
     .notes = "The fraction beyond --scale is cut, not rounded. Unsigned 8-byte values above\n"
              "9223372036854775807 decode but do not encode."},
    {.name = "packed",
     .description = "Packed decimal: two digits a byte, the sign in the last nibble",
     .options = kBinaryNumberOptions | kUnsignedOption,
     .fixedSize = true,
     .decode = decodePacked,
     .encode = encodePacked,
     .decodeExample = "bsconv decode packed --scale 2 001234567C  ->  12345.67",
     .encodeExample = "bsconv encode packed --size 3 --scale 2 -- -123.45  ->  12345D",
     .notes = "Sign nibbles: C (or A, E, F) positive, D negative, F when --unsigned.\n"
              "The fraction beyond --scale is cut, not rounded."},
    {.name = "tlog-packed",
     .description = "TLOG packed decimal: digits, D anywhere for a minus, an F filler first",
     .options = kSizeOption | kByteOrderOption,
     .fixedSize = true,
     .decode = decodeTlogPacked,
     .encode = encodeTlogPacked,
     .decodeExample = "bsconv decode tlog-packed F123  ->  123",
     .encodeExample = "bsconv encode tlog-packed --size 3 -- -123  ->  00D123"},
    {.name = "zoned",
     .description = "Zoned (external) decimal: one digit a character of the CCSID",
     .options = kSizeOption | kScaleOption | kCcsidOption | kSignOption | kOverpunchOption,
     .fixedSize = true,
     .decode = decodeZoned,
     .encode = encodeZoned,
     .decodeExample = "bsconv decode zoned --ccsid 819 --sign leading-separate 2D3432  ->  -42",
     .encodeExample = "bsconv encode zoned --size 5 --scale 2 -- -123.45  ->  F1F2F3F4D5",
     .notes =
         "The digits are right justified over zeros. An overpunched sign is zone D (negative)\n"
         "or C/F (positive) in EBCDIC, p-y for a negative digit in an ASCII-based CCSID."},
    {.name = "float",
     .description = "Floating point of 4 or 8 bytes, IEEE 754 or HFP (hexadecimal floating point)",
     .options = kSizeOption | kByteOrderOption | kFloatFormatOption,
     .sizes = kFloatSizes,
     .fixedSize = true,
     .decode = decodeFloat,
     .encode = encodeFloat,
     .decodeExample = "bsconv decode float --format hfp 41100000  ->  1.0E0",
     .encodeExample = "bsconv encode float --size 8 1.5E2  ->  4062C00000000000",
     .notes = "encode reads what decode prints (1.5E2, INF, NaN) and plain decimals.\n"
              "A 4-byte HFP field is truncated, not rounded."},
    {.name = "text",
     .description = "Text in a CCSID (--byte-order for the UTF-16 CCSIDs), printed as UTF-8",
     .options = kSizeOption | kCcsidOption | kByteOrderOption,
     .decode = decodeText,
     .encode = encodeText,
     .decodeExample = "bsconv decode text C885939396  ->  Hello",
     .encodeExample = "bsconv encode text --size 8 Hello  ->  C885939396404040",
     .notes = "As the library converts: a character the CCSID lacks becomes its substitution\n"
              "character (3F in EBCDIC), bytes that are no character become U+FFFD.\n"
              "Without --size the field is as long as the text needs."},
    {.name = "interval",
     .description = "Interval text (P1Y2M, -P3DT4H5M6.5S), read and written in its shortest form",
     .fieldIsText = true,
     .decode = decodeInterval,
     .encode = encodeInterval,
     .decodeExample = "bsconv decode interval PT36H  ->  P1DT12H",
     .encodeExample = "bsconv encode interval P0DT90M  ->  PT1H30M",
     .notes = "An interval has no binary form: its field is its text, given as an argument\n"
              "(or raw with --length). Both directions print the value's shortest text."},
    {.name = "base64",
     .description = "Base64 text of bytes, which are given and printed in hexadecimal",
     .fieldIsText = true,
     .decode = decodeBase64,
     .encode = encodeBase64,
     .decodeExample = "bsconv decode base64 TWFu  ->  4D616E",
     .encodeExample = "bsconv encode base64 4D61  ->  TWE=",
     .notes = "decode takes Base64 text (characters outside the alphabet are skipped) and prints\n"
              "the bytes in hexadecimal; encode takes hexadecimal and prints Base64."},
};

}  // namespace

std::span<const FieldForm> fieldForms() { return kForms; }
