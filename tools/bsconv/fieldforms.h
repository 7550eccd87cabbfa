#ifndef BSCONV_FIELDFORMS_H
#define BSCONV_FIELDFORMS_H

// The field forms of `bsconv decode` and `bsconv encode`: which options each takes, and how it
// turns a field's bytes into a value and a value's text into a field, always through the library.

#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "common.h"

// The options a form takes, one bit each.
enum FieldOption : unsigned {
  kSizeOption = 1U << 0,        // --size N
  kUnsignedOption = 1U << 1,    // --unsigned
  kByteOrderOption = 1U << 2,   // --byte-order big|little
  kScaleOption = 1U << 3,       // --scale N
  kCcsidOption = 1U << 4,       // --ccsid N
  kSignOption = 1U << 5,        // --sign none|leading|trailing|leading-separate|trailing-separate
  kOverpunchOption = 1U << 6,   // --ebcdic-overpunch
  kFloatFormatOption = 1U << 7  // --format ieee|hfp
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
  // The value of `size` bytes at `field`, to be printed in its standard text form.
  PWFData (*decode)(const FieldSettings& settings, DataCnv& cnv, const unsigned char* field,
                    std::int32_t size) = nullptr;
  // The field that holds the value given as text.
  FieldBytes (*encode)(const FieldSettings& settings, DataCnv& cnv,
                       const std::string& value) = nullptr;
  const char* decodeExample = nullptr;  // a command line and its output, for --help
  const char* encodeExample = nullptr;
  const char* notes = nullptr;  // what else --help says, if anything
};

std::span<const FieldForm> fieldForms();

#endif  // BSCONV_FIELDFORMS_H
