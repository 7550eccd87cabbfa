#ifndef BSCONV_FIELDFORMS_H
#define BSCONV_FIELDFORMS_H

// The field forms of `bsconv decode` and `bsconv encode`: which options each takes, and how it
// turns a field's bytes into a value and a value's text into a field, always through the library.

#include <cstdint>
#include <set>
#include <span>
#include <string>
#include <vector>

#include "common.h"

// The options a form takes, one bit each.
enum FieldOption : unsigned {
  kSizeOption = 1U << 0,         // --size N
  kUnsignedOption = 1U << 1,     // --unsigned
  kByteOrderOption = 1U << 2,    // --byte-order big|little
  kScaleOption = 1U << 3,        // --scale N
  kCcsidOption = 1U << 4,        // --ccsid N
  kSignOption = 1U << 5,         // --sign none|leading|trailing|leading-separate|trailing-separate
  kOverpunchOption = 1U << 6,    // --ebcdic-overpunch
  kFloatFormatOption = 1U << 7,  // --format ieee|hfp
  // --pattern P, --seconds, --milliseconds, --binary-pattern P, --packed-pattern P, --epoch TEXT,
  // --timezone ID, --century-window N, --lenient, --locale ID
  kDateTimeOptions = 1U << 8,
  kRuntimeHfpOption = 1U << 9,  // --runtime-hfp
};

// How a date-time field holds its value: the one option of the datetime form that says so.
enum class DateTimeLayout {
  none,          // none given (refused before anything is converted)
  text,          // --pattern P: text of the pattern in the CCSID
  seconds,       // --seconds: a binary integer, seconds since the epoch
  milliseconds,  // --milliseconds: the same in milliseconds
  binary,        // --binary-pattern P: a record of small binary integers
  packed,        // --packed-pattern P: a packed decimal whose digits are text of the pattern
};

// One command's settings; a form reads only those of its options. The defaults are the tool's:
// big-endian, signed, scale 0, CCSID 37, IEEE, zoned sign overpunched on the last digit.
struct FieldSettings {
  std::int32_t size = 0;  // 0: --size not given
  bool isUnsigned = false;
  EEndian endian = BigEndian;
  std::int32_t scale = 0;
  std::int32_t ccsid = 37;
  DataCnv::ESign zonedSign = DataCnv::eTrailingEmbeddedSign;
  bool ebcdicOverpunch = false;
  EFloatFmt floatFormat = IEEEFloat;
  // HFP through the runtime's conversions (FltToDbl, FltFromDbl: truncating) rather than the
  // correctly rounded HFPToDouble and DoubleToHFP.
  bool runtimeHfp = false;
  // The datetime form's: the layout and its pattern, the epoch of --seconds and --milliseconds
  // (empty: 1970-01-01T00:00Z), and the converter's date-time formatter settings. The converter
  // keeps pointers to the zone and locale texts, so the settings outlive it.
  DateTimeLayout dateTimeLayout = DateTimeLayout::none;
  std::u16string dateTimePattern;
  std::u16string epoch;
  std::u16string timeZone = u"UTC";
  std::u16string locale;  // empty: en_US_POSIX
  std::int32_t centuryWindowStart = 53;
  bool lenient = false;
  // The options given on the command line by their long names ("--epoch"), for a form's check.
  std::set<std::string> given;
};

using FieldBytes = std::vector<unsigned char>;

struct FieldForm {
  const char* name = nullptr;
  const char* description = nullptr;
  unsigned options = 0;          // FieldOption bits
  std::span<const int> sizes{};  // what --size accepts; empty: any positive size
  bool fixedSize = false;        // encode needs --size
  // The field is text (an interval, Base64): decode takes it as text, not hexadecimal, and encode
  // prints it as text.
  bool fieldIsText = false;
  // What encode's --size does beyond setting the field size, for its --help; null: nothing.
  const char* encodeSizeNote = nullptr;
  // What the form requires of its options together, beyond what each option checks alone:
  // throws UsageError before anything is converted. Null: nothing.
  void (*check)(const FieldSettings& settings, bool encoding) = nullptr;
  // The value of `size` bytes at `field`, to be printed in its standard text form.
  PWFData (*decode)(const FieldSettings& settings, DataCnv& cnv, const unsigned char* field,
                    std::int32_t size) = nullptr;
  // The field that holds the value given as text.
  FieldBytes (*encode)(const FieldSettings& settings, DataCnv& cnv,
                       const std::string& value) = nullptr;
  // Command lines and their output for --help, one a line ("bsconv ...  ->  output"); the first
  // is also the form's example in the direction's --help.
  const char* decodeExamples = nullptr;
  const char* encodeExamples = nullptr;
  const char* notes = nullptr;  // what else --help says, if anything
};

std::span<const FieldForm> fieldForms();

#endif  // BSCONV_FIELDFORMS_H
