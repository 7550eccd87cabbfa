#ifndef BSUTILS_CPBASE64CONVERTER_H
#define BSUTILS_CPBASE64CONVERTER_H

// CPBase64Converter turns bytes into Base64 text (the standard alphabet "A"-"Z", "a"-"z", "0"-"9",
// "+", "/" with "=" padding) held in UTF-16, and such text back into a binary PWFData. It has no
// state: every operation is static, and objects may be built and assigned freely.
//
// The decode table covers every UTF-16 code unit, so decoding is one lookup a unit. It is built on
// the first call that needs it, once, even when several threads make that call together; after
// that every operation may run on any thread at once.
//
// Failures are raised with source module "base64".

#include <bsutils/export.h>
#include <bsutils/pwfdata.h>
#include <zan/zanstringbase.h>

#include <cstdint>

class BSUTILS_EXPORT CPBase64Converter {
 public:
  // Make sure the tables are built; both are idempotent and thread-safe. The encoder and decoder
  // call them themselves, so a caller needs them only to take the one-off cost up front.
  static void initEncodeTable();
  static void initDecodeTable();

  // Appends the Base64 form of `length` bytes at `data` to `text`, keeping what `text` held. The
  // output is one unbroken line with no line breaks, 4 characters for every 3 bytes or part of
  // them: "M" -> "TQ==", "Ma" -> "TWE=", "Man" -> "TWFu". Nothing is appended for `length` 0
  // (`data` may then be null). Raises ZanConversionException 0xC000157E (CP_INTERNAL_ERROR), trace
  // text "CPI Internal Error", for a null `data` with `length` above 0 (insert "Null input
  // pointer"), and for a negative `length` or one whose text would not fit in a string (inserts
  // "Invalid input length: ", `length`), leaving `text` unchanged. ZanFatalException 0xC0000806
  // (CP_MEMORY_ALLOC_FAILURE) when `text` cannot grow.
  static void binToBase64(const unsigned char* data, std::int32_t length, ZanStringBase& text);

  // Decodes `length` UTF-16 units of Base64 text into a binary PWFData that owns its bytes. Units
  // outside the alphabet (white space, line breaks, any other character) are skipped. Every four
  // units kept give three bytes, fewer when the third ("TQ==", one byte) or the fourth ("TWE=",
  // two bytes) is "="; a "=" in the first two places counts as the value 0. Decoding goes on after
  // a padded group. An empty text gives an empty (not null) binary.
  // Raises ZanConversionException 0xC000157E (CP_INTERNAL_ERROR), function
  // "CPBase64Converter::binFromBase64":
  //   - trace text "Input data incomplete" when the text ends one to three units into a group;
  //   - trace text "A large enough target buffer was not allocated", inserts "targetSize", the
  //     target size, "noOfChars", `length`, should the decoded bytes ever pass the 3/4 of `length`
  //     allocated for them (a guard: every group consumes four units, so it cannot fire);
  //   - trace text "CPI Internal Error" for a null `text` with `length` above 0 (insert "Null input
  //     pointer") and for a negative `length` (inserts "Invalid input length: ", `length`).
  // and ZanFatalException 0xC0000806 (CP_MEMORY_ALLOC_FAILURE) when the bytes cannot be allocated.
  static PWFData binFromBase64(const char16_t* text, std::int32_t length);
};

#endif  // BSUTILS_CPBASE64CONVERTER_H
