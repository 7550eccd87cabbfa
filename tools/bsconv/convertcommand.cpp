// bsconv convert: text from one code page to another, standard input to standard output, a piece
// at a time so that input of any size converts in bounded memory. bsconv codepages: the CCSIDs the
// ICU data of this build can open.

#include <bsutils/bytebuffer.h>
#include <bsutils/cpunicodeconverter.h>
#include <bsutils/textbufferreader.h>
#include <bsutils/textbufferwriter.h>
#include <unicode/ucnv.h>
#include <zan/zanexception.h>
#include <zan/zanlog.h>

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <cstdio>
#include <cstring>
#include <iostream>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "common.h"

namespace {

// Input is read this many bytes at a time; with the UTF-16 text and the converted bytes of one
// piece, the whole conversion stays within a few hundred KiB whatever the input's size.
constexpr std::int32_t kPieceBytes = 64 * 1024;

// Mixed EBCDIC switches between single-byte and double-byte characters with these two bytes.
constexpr unsigned char kShiftOut = 0x0E;
constexpr unsigned char kShiftIn = 0x0F;

// What ICU puts in the text for bytes it cannot read: U+FFFD, or U+001A (the control character
// SUB) for a single unreadable byte in code pages that have multi-byte characters and a
// single-byte substitution character besides. Both are real characters as well.
constexpr char16_t kReplacementCharacter = 0xFFFD;
constexpr char16_t kSubstituteControl = 0x001A;

// An unconvertible character is the failure the library raises for input it cannot take.
constexpr auto kInputDataInvalid = static_cast<std::int32_t>(0xC0001581u);
constexpr const char* kInputDataInvalidText = "CPI Converter Input Data Invalid";

constexpr const char* kUtf16Ccsids = "the UTF-16 CCSIDs 1200, 13488 and 17584";

struct ConvertOptions {
  std::int32_t from = 0;
  std::int32_t to = 0;
  std::string fromByteOrder = "big";
  std::string toByteOrder = "big";
  bool substitute = false;
};

EEndian endianOf(const std::string& byteOrder) {
  return byteOrder == "little" ? LittleEndian : BigEndian;
}

// How a code page lays its characters out in bytes, which decides where a piece of input may be
// cut without cutting a character in two.
enum class Framing {
  singleByte,
  doubleByte,
  utf32,
  utf8,
  utf16BigEndian,
  utf16LittleEndian,
  shiftedEbcdic,   // single-byte and double-byte runs between shift-out and shift-in
  asciiMultiByte,  // Shift-JIS, EUC, GBK, Big5, GB18030: no byte below 0x30 is part of another
};

// Code pages whose characters depend on state that the characters before them left (SCSU,
// BOCU-1, ISO-2022, a byte-order mark, ...) cannot be cut into pieces and are refused.
Framing framingOf(CPUnicodeConverter& converter, std::int32_t ccsid) {
  switch (converter.getType()) {
    case UCNV_SBCS:
    case UCNV_LATIN_1:
    case UCNV_US_ASCII:
      return Framing::singleByte;
    case UCNV_DBCS:
      return Framing::doubleByte;
    case UCNV_UTF32_BigEndian:
    case UCNV_UTF32_LittleEndian:
      return Framing::utf32;
    case UCNV_UTF8:
      return Framing::utf8;
    case UCNV_UTF16_BigEndian:
      return Framing::utf16BigEndian;
    case UCNV_UTF16_LittleEndian:
      return Framing::utf16LittleEndian;
    case UCNV_EBCDIC_STATEFUL:
      return Framing::shiftedEbcdic;
    case UCNV_MBCS:
      return Framing::asciiMultiByte;
    default: {
      UErrorCode status = U_ZERO_ERROR;
      throw UsageError("CCSID " + std::to_string(ccsid) + " (" + converter.getName(status) +
                       ") keeps state from one character to the next and cannot be converted "
                       "piece by piece");
    }
  }
}

Framing framingOf(std::int32_t ccsid, EEndian endian) {
  CPUnicodeConverter converter(ccsid, endian);
  return framingOf(converter, ccsid);
}

// Where the whole characters at the start of a piece end. The bytes after wait for the next
// piece; in mixed EBCDIC, that piece starts in double-byte mode when `doubleByteAfter` is set.
struct Cut {
  std::int32_t end;
  bool doubleByteAfter;
};

Cut cutUtf8(const unsigned char* bytes, std::int32_t length) {
  // The last lead byte is at most three continuation bytes from the end.
  for (std::int32_t i = length - 1; i >= 0 && i >= length - 4; --i) {
    if ((bytes[i] & 0xC0) == 0x80) continue;
    const std::int32_t size = bytes[i] >= 0xF0   ? 4
                              : bytes[i] >= 0xE0 ? 3
                              : bytes[i] >= 0xC0 ? 2
                                                 : 1;
    return {i + size > length ? i : length, false};
  }
  return {length, false};
}

Cut cutUtf16(const unsigned char* bytes, std::int32_t length, bool bigEndian) {
  std::int32_t end = length & ~1;
  if (end >= 2) {
    const unsigned char high = bigEndian ? bytes[end - 2] : bytes[end - 1];
    // A leading surrogate waits for its trailing one.
    if (high >= 0xD8 && high <= 0xDB) end -= 2;
  }
  return {end, false};
}

Cut cutShiftedEbcdic(const unsigned char* bytes, std::int32_t length) {
  // The last shift byte tells the mode at the end; each piece starts in single-byte mode.
  for (std::int32_t i = length - 1; i >= 0; --i) {
    if (bytes[i] == kShiftIn) break;
    if (bytes[i] == kShiftOut) return {i + 1 + ((length - i - 1) & ~1), true};
  }
  return {length, false};
}

Cut cutAsciiMultiByte(const unsigned char* bytes, std::int32_t length) {
  // Controls, space and most punctuation are characters of their own in these code pages. A
  // piece without any is taken whole.
  for (std::int32_t i = length - 1; i >= 0; --i) {
    if (bytes[i] < 0x30) return {i + 1, false};
  }
  return {length, false};
}

Cut wholeCharacters(Framing framing, const unsigned char* bytes, std::int32_t length) {
  switch (framing) {
    case Framing::singleByte:
      return {length, false};
    case Framing::doubleByte:
      return {length & ~1, false};
    case Framing::utf32:
      return {length & ~3, false};
    case Framing::utf8:
      return cutUtf8(bytes, length);
    case Framing::utf16BigEndian:
      return cutUtf16(bytes, length, true);
    case Framing::utf16LittleEndian:
      return cutUtf16(bytes, length, false);
    case Framing::shiftedEbcdic:
      return cutShiftedEbcdic(bytes, length);
    case Framing::asciiMultiByte:
      return cutAsciiMultiByte(bytes, length);
  }
  return {length, false};
}

bool isUnicode(Framing framing) {
  return framing == Framing::utf8 || framing == Framing::utf16BigEndian ||
         framing == Framing::utf16LittleEndian || framing == Framing::utf32;
}

[[noreturn]] void failAt(std::int64_t offset, const std::string& what, const std::string& why) {
  ZanConversionException failure("bsconv", __LINE__, "convert", ZanLog::iDefaultLogSource,
                                 kInputDataInvalid, kInputDataInvalidText);
  failure << "byte offset " + std::to_string(offset) << what << why;
  throw failure;
}

// Neither a usage error nor a conversion failure, but the conversion cannot go on.
[[noreturn]] void failStream(const char* what) {
  throw CommandFailure(std::string(what) + ": " + std::strerror(errno));
}

std::string codePointText(const char16_t* units, std::int32_t count, std::int32_t at) {
  char32_t codePoint = units[at];
  if (codePoint >= 0xD800 && codePoint <= 0xDBFF && at + 1 < count && units[at + 1] >= 0xDC00 &&
      units[at + 1] <= 0xDFFF) {
    codePoint = 0x10000 + ((codePoint - 0xD800) << 10) + (units[at + 1] - 0xDC00);
  }
  char text[16];
  std::snprintf(text, sizeof text, "U+%04X", static_cast<unsigned>(codePoint));
  return text;
}

// Converts standard input piece by piece: the reader turns the whole characters of each piece
// into UTF-16, the writer turns them into the target's bytes, and the bytes go out before the
// next piece is read.
class PieceConversion {
 public:
  explicit PieceConversion(const ConvertOptions& options)
      : options_(options),
        source_(options.from, endianOf(options.fromByteOrder)),
        sourceFraming_(framingOf(source_, options.from)),
        targetFraming_(framingOf(options.to, endianOf(options.toByteOrder))),
        reader_(&piece_, options.from, endianOf(options.fromByteOrder), &source_),
        writer_(&output_, options.to, endianOf(options.toByteOrder)),
        readBack_(&output_, options.to, endianOf(options.toByteOrder)),
        realReplacement_(encodedAlone(kReplacementCharacter)),
        realSubstitute_(encodedAlone(kSubstituteControl)) {}

  void run() {
    std::int64_t pieceStart = 0;  // input offset of the piece's first byte
    for (bool atEnd = false; !atEnd;) {
      unsigned char* room = piece_.appendLock(kPieceBytes);
      const std::size_t got = std::fread(room, 1, kPieceBytes, stdin);
      piece_.release(static_cast<std::int32_t>(got));
      if (std::ferror(stdin)) failStream("cannot read standard input");
      atEnd = got < static_cast<std::size_t>(kPieceBytes);
      const std::int32_t length = piece_.getLength();
      // At the end, a character cut short is converted as it is: a failure or a substitute.
      const Cut cut = atEnd ? Cut{length, false} : wholeCharacters(sourceFraming_, bytes(), length);
      convertPiece(cut.end, pieceStart);
      writeOutput();
      carryRest(cut, length);
      pieceStart += cut.end - (cut.doubleByteAfter ? 1 : 0);
    }
    if (shiftInHeld_) writeBytes(&kShiftIn, 1);
    if (std::fflush(stdout) != 0) failStream("cannot write standard output");
  }

 private:
  const unsigned char* bytes() const {
    return static_cast<const unsigned char*>(piece_.getData(0));
  }

  // The source's own bytes for `unit`, without the shifts around a double-byte character.
  std::string encodedAlone(char16_t unit) {
    char encoded[16];
    char* end = encoded;
    const char16_t* text = &unit;
    UErrorCode status = U_ZERO_ERROR;
    source_.fromUnicode(end, encoded + sizeof encoded, text, text + 1, nullptr, true, status);
    std::string result(encoded, end);
    if (sourceFraming_ == Framing::shiftedEbcdic) std::erase_if(result, isShift);
    return result;
  }

  bool hasMultiByteCharacters() const {
    return sourceFraming_ == Framing::doubleByte || sourceFraming_ == Framing::shiftedEbcdic ||
           sourceFraming_ == Framing::asciiMultiByte;
  }

  static bool isShift(char byte) {
    return static_cast<unsigned char>(byte) == kShiftOut ||
           static_cast<unsigned char>(byte) == kShiftIn;
  }

  void convertPiece(std::int32_t end, std::int64_t pieceStart) {
    const PWFData text = reader_.getString(0, end, false);
    std::int32_t count = 0;
    const char16_t* units = text.getStringValue(count);
    if (!options_.substitute) requireReadable(units, count, end, pieceStart);
    writer_.appendStr(units, count);
    // The reader's UTF-16 is well formed, and a Unicode target holds all of it.
    if (!options_.substitute && !isUnicode(targetFraming_)) {
      requireWritten(units, count, end, pieceStart);
    }
  }

  // ICU substitutes what it cannot read. A U+FFFD or U+001A is a failure unless the source's own
  // bytes for that character are there.
  void requireReadable(const char16_t* units, std::int32_t count, std::int32_t end,
                       std::int64_t pieceStart) {
    const auto isSubstitution = [this](char16_t unit) {
      return unit == kReplacementCharacter ||
             (unit == kSubstituteControl && hasMultiByteCharacters());
    };
    if (std::none_of(units, units + count, isSubstitution)) return;
    const std::vector<std::int32_t> offsets = sourceOffsets(end, count);
    for (std::int32_t i = 0; i < count; ++i) {
      if (!isSubstitution(units[i])) continue;
      const std::string& real =
          units[i] == kReplacementCharacter ? realReplacement_ : realSubstitute_;
      const std::int32_t at = offsets[i];
      if (end - at >= static_cast<std::int32_t>(real.size()) &&
          std::memcmp(bytes() + at, real.data(), real.size()) == 0) {
        continue;
      }
      std::int32_t next = i + 1;
      while (next < count && offsets[next] == at) ++next;
      const std::int32_t length = unreadableLength(at, next < count ? offsets[next] : end);
      failAt(pieceStart + at, "0x" + hexFromBytes(bytes() + at, static_cast<std::size_t>(length)),
             "not a character of CCSID " + std::to_string(options_.from));
    }
  }

  // The bytes ICU could not read run from `at` up to where the next character starts, at most a
  // character's worth; a shift byte after them belongs to no character.
  std::int32_t unreadableLength(std::int32_t at, std::int32_t next) const {
    const std::int32_t limit = std::min(next - at, reader_.getMaxBytesPerChar());
    std::int32_t length = 1;
    while (length < limit && !(sourceFraming_ == Framing::shiftedEbcdic &&
                               isShift(static_cast<char>(bytes()[at + length])))) {
      ++length;
    }
    return length;
  }

  // ICU writes the target's substitution character for what the target cannot hold, and that
  // character reads back as something else: the first unit that does not read back is the
  // failure.
  void requireWritten(const char16_t* units, std::int32_t count, std::int32_t end,
                      std::int64_t pieceStart) {
    const PWFData back = readBack_.getString(0, output_.getLength(), false);
    std::int32_t backCount = 0;
    const char16_t* backUnits = back.getStringValue(backCount);
    if (backCount == count && std::equal(units, units + count, backUnits)) return;
    const auto differs = std::mismatch(units, units + count, backUnits, backUnits + backCount);
    const auto at = std::min(static_cast<std::int32_t>(differs.first - units), count - 1);
    const std::vector<std::int32_t> offsets = sourceOffsets(end, count);
    failAt(pieceStart + offsets[at], codePointText(units, count, at),
           "no mapping to CCSID " + std::to_string(options_.to));
  }

  // Where each unit's character starts in the piece: the reader gives no offsets, so the piece is
  // converted again with the same converter. Only a failure needs this.
  std::vector<std::int32_t> sourceOffsets(std::int32_t end, std::int32_t count) {
    std::vector<char16_t> units(static_cast<std::size_t>(count) + 1);
    std::vector<std::int32_t> offsets(units.size(), 0);
    char16_t* target = units.data();
    const char* source = reinterpret_cast<const char*>(bytes());
    UErrorCode status = U_ZERO_ERROR;
    source_.toUnicode(target, units.data() + units.size(), source, source + end, offsets.data(),
                      true, status);
    return offsets;
  }

  // Mixed EBCDIC output returns to single-byte mode at the end of each piece. A shift-in that
  // ends a piece waits: when the next piece opens with a shift-out, both go, so that a double-byte
  // run that the pieces cut comes out whole, as it went in.
  void writeOutput() {
    const auto* data = static_cast<const unsigned char*>(output_.getData(0));
    auto length = static_cast<std::size_t>(output_.getLength());
    if (targetFraming_ == Framing::shiftedEbcdic && length > 0) {
      if (shiftInHeld_ && data[0] == kShiftOut) {
        ++data;
        --length;
      } else if (shiftInHeld_) {
        writeBytes(&kShiftIn, 1);
      }
      shiftInHeld_ = length > 0 && data[length - 1] == kShiftIn;
      if (shiftInHeld_) --length;
    }
    writeBytes(data, length);
    writer_.reset();
  }

  static void writeBytes(const unsigned char* data, std::size_t length) {
    if (length > 0 && std::fwrite(data, 1, length, stdout) != length) {
      failStream("cannot write standard output");
    }
  }

  // The bytes after the cut move to the front, behind a shift-out when they continue a
  // double-byte run.
  void carryRest(const Cut& cut, std::int32_t length) {
    const std::int32_t rest = length - cut.end;
    const std::int32_t shift = cut.doubleByteAfter ? 1 : 0;
    piece_.write(bytes() + cut.end, rest, shift);
    if (shift != 0) piece_.write(&kShiftOut, 1, 0);
    piece_.truncate(length - rest - shift);
  }

  const ConvertOptions& options_;
  CPUnicodeConverter source_;
  Framing sourceFraming_;
  Framing targetFraming_;
  ReadWriteByteBuffer piece_;
  ReadWriteByteBuffer output_;
  TextBufferReader reader_;
  TextBufferWriter writer_;
  // Reads the written bytes back, to find what the target could not hold.
  TextBufferReader readBack_;
  std::string realReplacement_;
  std::string realSubstitute_;
  bool shiftInHeld_ = false;
};

void convert(const ConvertOptions& options, const CLI::Option* fromByteOrder,
             const CLI::Option* toByteOrder) {
  if (fromByteOrder->count() > 0 && !CPBaseUnicodeConverter::IsUnicode(options.from)) {
    throw UsageError(std::string("--from-byte-order applies only to ") + kUtf16Ccsids);
  }
  if (toByteOrder->count() > 0 && !CPBaseUnicodeConverter::IsUnicode(options.to)) {
    throw UsageError(std::string("--to-byte-order applies only to ") + kUtf16Ccsids);
  }
  PieceConversion(options).run();
}

// The CCSID an ICU alias "ibm-<number>" names.
std::optional<std::int32_t> ccsidOfAlias(std::string_view alias) {
  constexpr std::string_view kPrefix = "ibm-";
  if (!alias.starts_with(kPrefix)) return std::nullopt;
  alias.remove_prefix(kPrefix.size());
  std::int32_t ccsid = 0;
  const auto [end, error] = std::from_chars(alias.data(), alias.data() + alias.size(), ccsid);
  if (error != std::errc() || end != alias.data() + alias.size() || ccsid <= 0) return std::nullopt;
  return ccsid;
}

// The converter opens "ibm-<CCSID>" through ICU's aliases, so those aliases are the candidates;
// the UTF-16 CCSIDs it opens by name. Each candidate is listed as the converter opens it.
void listCodepages() {
  std::set<std::int32_t> ccsids{1200, 13488, 17584};
  for (std::int32_t i = 0; i < ucnv_countAvailable(); ++i) {
    const char* name = ucnv_getAvailableName(i);
    UErrorCode status = U_ZERO_ERROR;
    const std::uint16_t aliases = ucnv_countAliases(name, &status);
    for (std::uint16_t a = 0; a < aliases; ++a) {
      status = U_ZERO_ERROR;
      const char* alias = ucnv_getAlias(name, a, &status);
      if (U_FAILURE(status)) continue;
      if (const auto ccsid = ccsidOfAlias(alias)) ccsids.insert(*ccsid);
    }
  }
  for (const std::int32_t ccsid : ccsids) {
    try {
      CPUnicodeConverter converter(ccsid, BigEndian);
      UErrorCode status = U_ZERO_ERROR;
      std::cout << ccsid << ' ' << converter.getName(status) << '\n';
    } catch (const ZanException&) {
      // An alias whose table this build's data does not carry: not a code page it can open.
    }
  }
}

}  // namespace

void addConvertCommands(CLI::App& app) {
  auto options = std::make_shared<ConvertOptions>();
  CLI::App* convertCommand = app.add_subcommand(
      "convert",
      "Convert text from one code page (CCSID) to another, standard input to standard "
      "output");
  const auto addCcsid = [convertCommand](const char* name, std::int32_t& ccsid, const char* help) {
    convertCommand->add_option(name, ccsid, std::string(help) + ", 1 to 65535 (required)")
        ->required()
        ->check(CLI::Range(1, 65535))
        ->option_text("CCSID");
  };
  addCcsid("--from", options->from, "CCSID of the input");
  addCcsid("--to", options->to, "CCSID of the output");
  const auto addByteOrder = [convertCommand](const char* name, std::string& byteOrder,
                                             const char* help) {
    return convertCommand
        ->add_option(name, byteOrder,
                     std::string(help) + " (only for " + kUtf16Ccsids + "; default big)")
        ->check(CLI::IsMember({"big", "little"}))
        ->option_text("big|little");
  };
  const CLI::Option* fromByteOrder =
      addByteOrder("--from-byte-order", options->fromByteOrder, "Byte order of UTF-16 input");
  const CLI::Option* toByteOrder =
      addByteOrder("--to-byte-order", options->toByteOrder, "Byte order of UTF-16 output");
  convertCommand->add_flag("--substitute", options->substitute,
                           "Write the code page's substitution character for a character that "
                           "cannot be converted, instead of failing");
  convertCommand->footer(
      "Input of any size converts in bounded memory: it is read in 64 KiB pieces and each is\n"
      "written as soon as it is converted. A character that cannot be converted (bytes that are\n"
      "not a character of the input's code page, or a character the output's code page does not\n"
      "have) stops the conversion with exit status 1 and one line naming its byte offset in the\n"
      "input, counted from 0; the pieces before it have been written.\n"
      "  bsconv: 0xC0001581 CPI Converter Input Data Invalid [byte offset 1] [U+20AC]"
      " [no mapping to CCSID 37]\n"
      "Code pages that keep state from one character to the next (SCSU, BOCU-1, ISO-2022,\n"
      "UTF-16 and UTF-32 with a byte-order mark, ...) are refused.\n\n"
      "Example:\n"
      "  bsconv convert --from 37 --to 1208 < records.ebcdic > records.txt\n");
  convertCommand->callback(
      [options, fromByteOrder, toByteOrder] { convert(*options, fromByteOrder, toByteOrder); });

  CLI::App* codepagesCommand =
      app.add_subcommand("codepages",
                         "List the CCSIDs this build's ICU data can open, one per line: CCSID and "
                         "converter name");
  codepagesCommand->footer(
      "The UTF-16 CCSIDs 1200, 13488 and 17584 are listed with their big-endian converter;\n"
      "--from-byte-order little and --to-byte-order little open UTF-16LE.\n\n"
      "Example:\n"
      "  bsconv codepages | grep -w 37\n"
      "  37 ibm-37_P100-1995\n");
  codepagesCommand->callback(listCodepages);
}
