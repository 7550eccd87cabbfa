#include "fieldforms.h"

#include <bsutils/bytebuffer.h>
#include <bsutils/cpbase64converter.h>
#include <bsutils/numerictextformat.h>
#include <bsutils/textbufferreader.h>
#include <bsutils/textbufferwriter.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <limits>
#include <optional>

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

// An unsigned 8-byte value above the signed range, when `value` is one: the integer that the
// library's packed decimal writer makes of the text (the point moved, the fraction cut, as for
// IntFromDec), read back as digits. Anything else is left to the signed path and its failures.
std::optional<std::uint64_t> unsignedAboveInt64(DataCnv& cnv, const std::string& value,
                                                std::int32_t scale) {
  // 21 digits hold every 64-bit value; text the signed path reads without a digit ("") stays there.
  constexpr std::int32_t kPackedSize = 11;
  if (value.find_first_of("0123456789") == std::string::npos) return std::nullopt;
  // Beyond 20 integer digits (after the scale) the value passes 2^64: the signed path refuses it
  // in its own words rather than the packed writer in its.
  const std::size_t first = std::min(value.find_first_not_of(" +-0"), value.size());
  const std::size_t integerDigits =
      std::min(value.find_first_not_of("0123456789", first), value.size()) - first;
  if (integerDigits + static_cast<std::size_t>(std::max(scale, 0)) > 20) return std::nullopt;
  unsigned char packed[kPackedSize];
  std::int32_t packedSize = kPackedSize;
  cnv.PckdDecFromDec(utf16(value).terminatedData(), packed, packedSize, BigEndian, scale,
                     DataCnv::eLeadingEmbeddedSign);
  const std::string digits =
      cnv.PckdDecToDec(packed, kPackedSize, BigEndian, 0, DataCnv::eLeadingEmbeddedSign)
          .getDecimalText()
          .toUtf8();
  std::uint64_t integer = 0;
  const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), integer);
  if (error != std::errc() || end != digits.data() + digits.size() ||
      integer <= static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max())) {
    return std::nullopt;
  }
  return integer;
}

FieldBytes encodeInt(const FieldSettings& settings, DataCnv& cnv, const std::string& value) {
  FieldBytes field(static_cast<std::size_t>(settings.size));
  std::int32_t size = settings.size;
  if (settings.isUnsigned && settings.size == 8) {
    if (const std::optional<std::uint64_t> large = unsignedAboveInt64(cnv, value, settings.scale)) {
      cnv.UIntFromUInt64(*large, field.data(), size);
      return field;
    }
  }
  // The library's exact decimal-to-integer step (the point moved, the fraction cut) writes a
  // signed integer; through 8 bytes it yields the value, whose range for the field's own size and
  // signedness IntFromInt64 then checks.
  unsigned char wide[8];
  std::int32_t wideSize = sizeof wide;
  cnv.IntFromDec(utf16(value).terminatedData(), wide, wideSize, settings.scale);
  const std::int64_t integer = cnv.IntToInt64(wide, wideSize, DataCnv::eLeadingEmbeddedSign);
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

// HFP goes through the correctly rounded conversions unless --runtime-hfp asks for the runtime's.
bool exactHfp(const FieldSettings& settings) {
  return settings.floatFormat == HFPFloat && !settings.runtimeHfp;
}

PWFData decodeFloat(const FieldSettings& settings, DataCnv& cnv, const unsigned char* field,
                    std::int32_t size) {
  return PWFData(exactHfp(settings) ? cnv.HFPToDouble(field, size) : cnv.FltToDbl(field, size));
}

FieldBytes encodeFloat(const FieldSettings& settings, DataCnv& cnv, const std::string& value) {
  // The float's standard text reader takes what decode prints ("1.5E2", "INF") as well as plain
  // decimals.
  const double number =
      cnv.StandardStrToData(utf16(value).terminatedData(), -1, eFloat).getDoubleValue();
  FieldBytes field(static_cast<std::size_t>(settings.size));
  std::int32_t size = settings.size;
  if (exactHfp(settings)) {
    cnv.DoubleToHFP(number, field.data(), size);
  } else {
    cnv.FltFromDbl(number, field.data(), size);
  }
  return field;
}

void checkFloat(const FieldSettings& settings, bool /*encoding*/) {
  if (settings.runtimeHfp && settings.floatFormat != HFPFloat) {
    throw UsageError("--runtime-hfp goes with --format hfp");
  }
}

// --- text ---

PWFData decodeText(const FieldSettings& settings, DataCnv& cnv, const unsigned char* field,
                   std::int32_t size) {
  const ReadOnlyByteBuffer bytes(field, size);
  // The converter object's code-page converter serves every field of the command.
  TextBufferReader reader(&bytes, settings.ccsid, settings.endian, cnv.getConverter());
  return reader.getString(0, size, false);
}

// The field of `text` in the CCSID: with --size the text must fit the field (a longer one fails the
// conversion) and blanks of the code page fill the rest; without it the field is as long as the
// text needs.
FieldBytes textField(const FieldSettings& settings, DataCnv& cnv, const ZanStringBase& text) {
  ReadWriteByteBuffer unused;
  const TextBufferWriter writer(&unused, settings.ccsid, settings.endian);
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

FieldBytes encodeText(const FieldSettings& settings, DataCnv& cnv, const std::string& value) {
  return textField(settings, cnv, utf16(value));
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

// --- datetime ---

// The options that choose the layout, in the order of DateTimeLayout after none.
constexpr std::array<const char*, 5> kLayoutOptions{"--pattern", "--seconds", "--milliseconds",
                                                    "--binary-pattern", "--packed-pattern"};

// Options that only some layouts take, and the words that say which.
struct LayoutBoundOption {
  const char* name;
  std::array<bool, 6> takenBy;  // indexed by DateTimeLayout
  const char* goesWith;
};
constexpr LayoutBoundOption kLayoutBoundOptions[] = {
    {"--ccsid", {false, true, false, false, false, false}, "--pattern"},
    {"--epoch", {false, false, true, true, false, false}, "--seconds and --milliseconds"},
    // A binary pattern's fields are little-endian whatever the converter's byte order.
    {"--byte-order",
     {false, true, true, true, false, true},
     "--pattern, --seconds, --milliseconds and --packed-pattern"},
};

bool isCount(DateTimeLayout layout) {
  return layout == DateTimeLayout::seconds || layout == DateTimeLayout::milliseconds;
}

void checkDateTime(const FieldSettings& settings, bool encoding) {
  const std::string command = std::string(encoding ? "encode" : "decode") + " datetime";
  const auto layouts =
      std::count_if(kLayoutOptions.begin(), kLayoutOptions.end(),
                    [&](const char* name) { return settings.given.contains(name); });
  if (layouts != 1) {
    throw UsageError(command +
                     " needs exactly one of --pattern, --seconds, --milliseconds, "
                     "--binary-pattern, --packed-pattern");
  }
  const auto layout = static_cast<std::size_t>(settings.dateTimeLayout);
  const std::string layoutOption = kLayoutOptions[layout - 1];
  for (const LayoutBoundOption& option : kLayoutBoundOptions) {
    if (settings.given.contains(option.name) && !option.takenBy[layout]) {
      throw UsageError(command + " " + layoutOption + " does not take " + option.name +
                       " (it goes with " + option.goesWith + ")");
    }
  }
  if (!isCount(settings.dateTimeLayout)) return;
  if (settings.size != 0 && settings.size != 4 && settings.size != 8) {
    throw UsageError("--size: " + std::to_string(settings.size) + " is not 4 or 8, the sizes of " +
                     layoutOption);
  }
  if (encoding && settings.size == 0) {
    throw UsageError(command + " " + layoutOption + " needs --size 4 or 8");
  }
}

// The seconds of an 8-byte field pass the library's 4-byte range check, as SecondsToDateTime
// counts in 32 bits.
std::int32_t secondsOf(DataCnv& cnv, std::int64_t count) {
  unsigned char narrow[4];
  std::int32_t size = sizeof narrow;
  cnv.IntFromInt64(count, narrow, size, DataCnv::eLeadingEmbeddedSign);
  return static_cast<std::int32_t>(count);
}

PWFData decodeDateTime(const FieldSettings& settings, DataCnv& cnv, const unsigned char* field,
                       std::int32_t size) {
  const char16_t* pattern = settings.dateTimePattern.c_str();
  switch (settings.dateTimeLayout) {
    case DateTimeLayout::text: {
      // The blanks that pad the field, as encode --size writes them, do not belong to the text.
      const ZanStringBase text = decodeText(settings, cnv, field, size).getPWFStringValue();
      std::u16string units(text.data(), static_cast<std::size_t>(text.length()));
      const std::int32_t length = cnv.TrimString(
          units.data(), text.length(), u' ', DataCnv::eLeftJustified, DataCnv::eTrimPadding, true);
      return PWFData(cnv.StrToDateTime(units.data(), length, pattern));
    }
    case DateTimeLayout::seconds:
    case DateTimeLayout::milliseconds: {
      if (size != 4 && size != 8) {
        throw UsageError("field " + hexFromBytes(field, static_cast<std::size_t>(size)) + " has " +
                         std::to_string(size) + " bytes, not 4 or 8");
      }
      const std::int64_t count = cnv.IntToInt64(field, size, DataCnv::eLeadingEmbeddedSign);
      return PWFData(settings.dateTimeLayout == DateTimeLayout::seconds
                         ? cnv.SecondsToDateTime(secondsOf(cnv, count), settings.epoch.c_str())
                         : cnv.MilliSecondsToDateTime(count, settings.epoch.c_str()));
    }
    case DateTimeLayout::binary:
      return PWFData(cnv.BinaryToDateTime(field, size, pattern));
    case DateTimeLayout::packed:
      return PWFData(
          cnv.PckdDecToDateTime(field, size, settings.endian, 0, DataCnv::eNoSign, pattern));
    case DateTimeLayout::none:
      break;
  }
  throw UsageError("no date-time layout");  // checkDateTime refuses a command without one
}

// The size of a binary pattern's record: a run of one letter is a field of as many bytes, and the
// "+n" or "-n" after a run adds none (nor does the run's letter repeated right after the digits,
// which the library passes over).
std::int32_t binaryRecordSize(const std::u16string& pattern) {
  std::int32_t size = 0;
  std::size_t i = 0;
  while (i < pattern.size()) {
    const char16_t letter = pattern[i];
    for (; i < pattern.size() && pattern[i] == letter; ++i) ++size;
    if (i < pattern.size() && (pattern[i] == u'+' || pattern[i] == u'-')) {
      ++i;
      while (i < pattern.size() && pattern[i] >= u'0' && pattern[i] <= u'9') ++i;
      if (i < pattern.size() && pattern[i] == letter) ++i;
    }
  }
  return size;
}

// A packed date-time holds as many digits as its pattern has characters, and a sign nibble.
std::int32_t packedSize(const std::u16string& pattern) {
  return static_cast<std::int32_t>(pattern.size()) / 2 + 1;
}

FieldBytes encodeDateTime(const FieldSettings& settings, DataCnv& cnv, const std::string& value) {
  const PWFDateTime dateTime =
      cnv.StandardStrToData(utf16(value).terminatedData(), -1, eDateTime).getDateTimeValue();
  const char16_t* pattern = settings.dateTimePattern.c_str();
  if (settings.dateTimeLayout == DateTimeLayout::text) {
    return textField(settings, cnv, cnv.StrFromDateTime(dateTime, pattern));
  }
  std::int32_t size = settings.size;
  if (size == 0) {
    size = settings.dateTimeLayout == DateTimeLayout::binary
               ? binaryRecordSize(settings.dateTimePattern)
               : packedSize(settings.dateTimePattern);
  }
  // Bytes that no field of a binary pattern writes (its "X" filler) are zeros.
  FieldBytes field(static_cast<std::size_t>(std::max(size, 1)));
  switch (settings.dateTimeLayout) {
    case DateTimeLayout::seconds:
      cnv.IntFromInt64(cnv.SecondsFromDateTime(dateTime, settings.epoch.c_str()), field.data(),
                       size, DataCnv::eLeadingEmbeddedSign);
      break;
    case DateTimeLayout::milliseconds:
      cnv.IntFromInt64(cnv.MilliSecondsFromDateTime(dateTime, settings.epoch.c_str()), field.data(),
                       size, DataCnv::eLeadingEmbeddedSign);
      break;
    case DateTimeLayout::binary:
      cnv.BinaryFromDateTime(dateTime, field.data(), size, pattern);
      break;
    case DateTimeLayout::packed:
      cnv.PckdDecFromDateTime(dateTime, field.data(), size, pattern, settings.endian, 0,
                              DataCnv::eNoSign);
      break;
    case DateTimeLayout::text:
    case DateTimeLayout::none:
      break;
  }
  field.resize(static_cast<std::size_t>(size));
  return field;
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
     .decodeExamples = "bsconv decode int --scale 2 000004D2  ->  12.34",
     .encodeExamples = "bsconv encode int --size 2 -- -2  ->  FFFE",
     .notes = "The fraction beyond --scale is cut, not rounded. --unsigned takes 8-byte values\n"
              "up to 18446744073709551615."},
    {.name = "packed",
     .description = "Packed decimal: two digits a byte, the sign in the last nibble",
     .options = kBinaryNumberOptions | kUnsignedOption,
     .fixedSize = true,
     .decode = decodePacked,
     .encode = encodePacked,
     .decodeExamples = "bsconv decode packed --scale 2 001234567C  ->  12345.67",
     .encodeExamples = "bsconv encode packed --size 3 --scale 2 -- -123.45  ->  12345D",
     .notes = "Sign nibbles: C (or A, E, F) positive, D negative, F when --unsigned.\n"
              "The fraction beyond --scale is cut, not rounded."},
    {.name = "tlog-packed",
     .description = "TLOG packed decimal: digits, D anywhere for a minus, an F filler first",
     .options = kSizeOption | kByteOrderOption,
     .fixedSize = true,
     .decode = decodeTlogPacked,
     .encode = encodeTlogPacked,
     .decodeExamples = "bsconv decode tlog-packed F123  ->  123",
     .encodeExamples = "bsconv encode tlog-packed --size 3 -- -123  ->  00D123"},
    {.name = "zoned",
     .description = "Zoned (external) decimal: one digit a character of the CCSID",
     .options = kSizeOption | kScaleOption | kCcsidOption | kSignOption | kOverpunchOption,
     .fixedSize = true,
     .decode = decodeZoned,
     .encode = encodeZoned,
     .decodeExamples = "bsconv decode zoned --ccsid 819 --sign leading-separate 2D3432  ->  -42",
     .encodeExamples = "bsconv encode zoned --size 5 --scale 2 -- -123.45  ->  F1F2F3F4D5",
     .notes =
         "The digits are right justified over zeros. An overpunched sign is zone D (negative)\n"
         "or C/F (positive) in EBCDIC, p-y for a negative digit in an ASCII-based CCSID."},
    {.name = "float",
     .description = "Floating point of 4 or 8 bytes, IEEE 754 or HFP (hexadecimal floating point)",
     .options = kSizeOption | kByteOrderOption | kFloatFormatOption | kRuntimeHfpOption,
     .sizes = kFloatSizes,
     .fixedSize = true,
     .check = checkFloat,
     .decode = decodeFloat,
     .encode = encodeFloat,
     .decodeExamples = "bsconv decode float --format hfp 41100000  ->  1.0E0\n"
                       "bsconv decode float --format hfp 4120000000000001  ->  2.0E0\n"
                       "bsconv decode float --format hfp --runtime-hfp 4120000000000001  ->  "
                       "2.0000000000000004E0",
     .encodeExamples = "bsconv encode float --size 8 1.5E2  ->  4062C00000000000\n"
                       "bsconv encode float --size 4 --format hfp 0.1  ->  4019999A\n"
                       "bsconv encode float --size 4 --format hfp --runtime-hfp 0.1  ->  40199999",
     .notes = "encode reads what decode prints (1.5E2, INF, NaN) and plain decimals.\n"
              "HFP is rounded to nearest, ties to even, and refuses INF, NaN and values beyond\n"
              "its range; --runtime-hfp truncates instead, as the runtime does."},
    {.name = "text",
     .description = "Text in a CCSID (--byte-order for the UTF-16 CCSIDs), printed as UTF-8",
     .options = kSizeOption | kCcsidOption | kByteOrderOption,
     .encodeSizeNote = "the text is padded with blanks of the CCSID to it, and a longer text fails",
     .decode = decodeText,
     .encode = encodeText,
     .decodeExamples = "bsconv decode text C885939396  ->  Hello",
     .encodeExamples = "bsconv encode text --size 8 Hello  ->  C885939396404040",
     .notes = "As the library converts: a character the CCSID lacks becomes its substitution\n"
              "character (3F in EBCDIC), bytes that are no character become U+FFFD.\n"
              "Without --size the field is as long as the text needs."},
    {.name = "interval",
     .description = "Interval text (P1Y2M, -P3DT4H5M6.5S), read and written in its shortest form",
     .fieldIsText = true,
     .decode = decodeInterval,
     .encode = encodeInterval,
     .decodeExamples = "bsconv decode interval PT36H  ->  P1DT12H",
     .encodeExamples = "bsconv encode interval P0DT90M  ->  PT1H30M",
     .notes = "An interval has no binary form: its field is its text, given as an argument\n"
              "(or raw with --length). Both directions print the value's shortest text."},
    {.name = "base64",
     .description = "Base64 text of bytes, which are given and printed in hexadecimal",
     .fieldIsText = true,
     .decode = decodeBase64,
     .encode = encodeBase64,
     .decodeExamples = "bsconv decode base64 TWFu  ->  4D616E",
     .encodeExamples = "bsconv encode base64 4D61  ->  TWE=",
     .notes = "decode takes Base64 text (characters outside the alphabet are skipped) and prints\n"
              "the bytes in hexadecimal; encode takes hexadecimal and prints Base64."},
    {.name = "datetime",
     .description = "Date-time: pattern text, seconds or milliseconds since an epoch, a binary "
                    "record, packed digits",
     .options = kSizeOption | kByteOrderOption | kCcsidOption | kDateTimeOptions,
     .encodeSizeNote = "4 or 8, and required, with --seconds and --milliseconds; --pattern text is "
                       "padded with blanks of the CCSID to it (a longer one fails); the pattern's "
                       "size by default with --binary-pattern and --packed-pattern",
     .check = checkDateTime,
     .decode = decodeDateTime,
     .encode = encodeDateTime,
     .decodeExamples =
         "bsconv decode datetime --pattern yyyyMMdd F2F0F2F3F0F4F0F9  ->  2023-04-09\n"
         "bsconv decode datetime --pattern 'dd.MM.yy HH:mm' --ccsid 819 "
         "30392E30342E32332031333A3035  ->  2023-04-09T13:05:00\n"
         "bsconv decode datetime --pattern yyMMdd --century-window 20 F2F3F0F4F0F9  ->  "
         "1923-04-09\n"
         "bsconv decode datetime --pattern yyyyMMdd --lenient F2F0F2F3F0F2F3F0  ->  2023-03-02\n"
         "bsconv decode datetime --pattern 'd MMMM y' --locale fr_FR --ccsid 819 "
         "3920617672696C2032303233  ->  2023-04-09\n"
         "bsconv decode datetime --seconds 6432B7FC  ->  2023-04-09T13:05:00.000000Z\n"
         "bsconv decode datetime --seconds --timezone Europe/Paris 6432B7FC  ->  "
         "2023-04-09T15:05:00.000000+02:00\n"
         "bsconv decode datetime --seconds --epoch 2000-01-01T00:00+00:00 00000E10  ->  "
         "2000-01-01T01:00:00.000000Z\n"
         "bsconv decode datetime --milliseconds --size 8 --byte-order little 60B01E6687010000  "
         "->  2023-04-09T13:05:00.000000Z\n"
         "bsconv decode datetime --binary-pattern y+1900Md 7B0409  ->  "
         "2023-04-09T00:00:00.000000Z\n"
         "bsconv decode datetime --packed-pattern yyyyMMdd 020230409F  ->  2023-04-09",
     .encodeExamples =
         "bsconv encode datetime --pattern yyyyMMdd 2023-04-09  ->  F2F0F2F3F0F4F0F9\n"
         "bsconv encode datetime --pattern yyyyMMdd --size 10 2023-04-09  ->  "
         "F2F0F2F3F0F4F0F94040\n"
         "bsconv encode datetime --pattern 'd MMMM y' --locale fr_FR --ccsid 819 2023-04-09  ->  "
         "3920617672696C2032303233\n"
         "bsconv encode datetime --pattern yyyyMMdd --lenient 2023-02-30  ->  F2F0F2F3F0F3F0F2\n"
         "bsconv encode datetime --seconds --size 4 2023-04-09T13:05:00Z  ->  6432B7FC\n"
         "bsconv encode datetime --seconds --size 4 --timezone Europe/Paris 2023-04-09T15:05:00"
         "  ->  6432B7FC\n"
         "bsconv encode datetime --seconds --size 4 --epoch 2000-01-01T00:00+00:00 "
         "2000-01-01T01:00:00Z  ->  00000E10\n"
         "bsconv encode datetime --milliseconds --size 8 --byte-order little "
         "2023-04-09T13:05:00Z  ->  60B01E6687010000\n"
         "bsconv encode datetime --binary-pattern y+1900Md 2023-04-09  ->  7B0409\n"
         "bsconv encode datetime --packed-pattern yyyyMMdd 2023-04-09  ->  020230409F",
     .notes = "Values are ISO 8601 text (2023-04-09, 13:05:00, 2023-04-09T13:05:00.5+02:00);\n"
              "one without a zone is taken in --timezone. Text patterns are ICU's; I alone is\n"
              "ISO 8601. A binary pattern's letters yMdHmsSX are fields of as many\n"
              "little-endian bytes as the letter repeats; +n or -n after one is added when\n"
              "read (y+1900: years since 1900); X is filler. A packed date-time holds the\n"
              "pattern's digits and the sign F."},
};

}  // namespace

std::span<const FieldForm> fieldForms() { return kForms; }
