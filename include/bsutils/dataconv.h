#ifndef BSUTILS_DATACONV_H
#define BSUTILS_DATACONV_H

// DataCnv: the converter object through which parsers and writers turn wire representations into
// typed values and back. One object is built per message (or field context) with the message's
// CCSID, byte order, float format and date-time settings; every conversion reads those settings.
// The object creates its code-page converters and its decimal formatter on first use, takes no
// locks, and is used by one thread at a time.
//
// Contents. The members are grouped by family; each block names the sources that define it, and
// the private members follow in the same order. The reference pages are in docs/reference/.
//   1. The object: settings, encodings, the code page   bsutils/           core.md
//   2. Text fields: trimming, padding and signs         bsutils/text/      text.md
//   3. Integer text fields                              bsutils/text/      text.md
//   4. Float and decimal text fields                    bsutils/text/      text.md
//   5. Numbers as plain text                            bsutils/text/      text.md
//   6. Binary as hexadecimal text                       bsutils/text/      text.md
//   7. The standard text form of values                 bsutils/text/      text.md
//   8. Intervals as text                                bsutils/text/      text.md
//   9. Binary integers                                  bsutils/binary/    binary.md
//  10. Packed decimal                                  bsutils/binary/    binary.md
//  11. Zoned (external) decimal                        bsutils/binary/    binary.md
//  12. Floating point                                  bsutils/binary/    binary.md
//  13. Date and time                                   bsutils/datetime/  datetime.md
//
// Failures are raised with source module "datacnv" under the object's own log source:
//   - argument faults (null pointers, bad lengths, sign styles out of range):
//     ZanConversionException 0xC000157E (CP_INTERNAL_ERROR), trace text "CPI Internal Error",
//     the message as inserts;
//   - characters that are not digits: 0xC0001581 (CP_CONV_INPUT_DATA_INVALID);
//   - values outside the target range: 0xC0001582 (CP_CONV_INPUT_DATA_OUT_OF_BOUNDS);
//   - pad characters that the code page cannot carry: ZanParserException 0xC0001590
//     (CP_CONV_INVALID_PADDING) or 0xC0001591 (CP_CONV_INVALID_PADDING_SIZE);
//   - a code page that cannot be opened: the ZanRecoverableException of CPUnicodeConverter, at the
//     first operation that needs the converter (the next such operation tries again).
// A failed operation leaves the caller's output buffer and length unchanged unless it says so.

#include <bsutils/cpunicodeconverter.h>
#include <bsutils/encoding.h>
#include <bsutils/export.h>
#include <bsutils/numerictextformat.h>
#include <bsutils/pwfdata.h>
#include <unicode/utypes.h>
#include <zan/zanlogsource.h>
#include <zan/zanstringbase.h>

#include <cstdint>
#include <memory>
#include <optional>
#include <string_view>

class PWFDateTimeFormatter;

U_NAMESPACE_BEGIN
class DecimalFormat;
U_NAMESPACE_END

// The library's private helpers that DataCnv's private members take.
namespace bsutils::internal {
struct FieldReaderRules;
struct ScannedNumber;
}  // namespace bsutils::internal

class BSUTILS_EXPORT DataCnv : public ZanOwnedLogSource {
 public:
  // How a text field shows the sign of its value. The numbers are part of the interface.
  enum ESign : std::int32_t {
    eNoSign = 0,                // no sign; a negative value cannot be written
    eLeadingEmbeddedSign = 1,   // first character "0".."9", or "p".."y" (digit + 64) if negative
    eTrailingEmbeddedSign = 2,  // the same on the last character
    eLeadingSeparateSign = 3,   // the custom minus (or plus) string before the digits
    eTrailingSeparateSign = 4,  // the custom minus (or plus) string after the digits
  };

  // Where the data stands in its field; padding and pad trimming act on the other end.
  enum EJustification : std::int32_t {
    eLeftJustified = 0,
    eRightJustified = 1,
  };

  // What trimming a text field removes before its value is read. Other numbers trim nothing.
  enum ETrimType : std::int32_t {
    eNoTrim = 0,
    eTrimLeadingWhiteSpace = 1,
    eTrimTrailingWhiteSpace = 2,
    eTrimWhiteSpace = 3,
    eTrimPadding = 4,  // the pad character, from the end the justification pads
  };

  static const ZanStringBase US_MINUS;           // "-"
  static const ZanStringBase US_PLUS;            // "+"
  static const ZanStringBase UHEX_NUMBERS;       // "0123456789abcdefABCDEF"
  static const ZanStringBase US_DECIMAL;         // "."
  static const ZanStringBase DATE_PATTERN;       // "yyyy-MM-dd"
  static const ZanStringBase TIME_PATTERN;       // "HH:mm:ss"
  static const ZanStringBase TIMESTAMP_PATTERN;  // "yyyy-MM-dd HH:mm:ss"
  static const ZanStringBase MILLISEC_PATTERN;   // ".SSS"

  // Stores the settings; opens nothing and cannot fail. The five formatter arguments are kept for
  // the date-time formatter, in the order of its constructor (argument 1 first). The positive
  // packed sign is the nibble written for a non-negative signed packed decimal (12, hexadecimal C).
  // `logSource` is accepted and not kept: the object always traces under its own log source.
  explicit DataCnv(std::int32_t ccsid = 1200, EEndian endian = LittleEndian,
                   EFloatFmt floatFormat = IEEEFloat, std::int32_t formatterArg3 = 53,
                   char16_t* formatterArg2 = nullptr, char16_t* formatterArg4 = nullptr,
                   std::int32_t formatterArg5 = 0, bool formatterArg1 = true,
                   char positivePackedSign = 12, const ZanNamedLogSource* logSource = nullptr);
  DataCnv(const DataCnv&) = delete;
  DataCnv& operator=(const DataCnv&) = delete;
  virtual ~DataCnv();

  // ==== 1. The object and its settings ===========================================================
  // datacnv.cpp; reference: docs/reference/core.md

  // The converter for the object's CCSID and byte order, opened on first call and kept. Raises the
  // open failures of CPUnicodeConverter; after one, the next call tries again.
  CPUnicodeConverter* getConverter();

  // Replaces the five date-time formatter settings; a text whose length is 0 is stored as null.
  // A formatter already created keeps the settings it was created with.
  void setDateTimeProperties(std::int32_t formatterArg3, char16_t* formatterArg2,
                             char16_t* formatterArg4, std::int32_t formatterArg5,
                             bool formatterArg1);

  // ---- encoding numbers: integer order in 0x00F, packed-decimal order in 0x0F0, floats in
  // 0xF00 (datacnv.cpp) ----

  // BigEndian when the integer digit is 1 (273 -> BigEndian), else LittleEndian (546, 0).
  static EEndian getEndianFromEncoding(std::int32_t encoding);
  // HFPFloat when the float digit is 3 (785), else IEEEFloat.
  static EFloatFmt getFloatFormatFromEncoding(std::int32_t encoding);
  // BigEndian when the packed-decimal digit is 1 (0x110), else LittleEndian.
  static EEndian getPackedDecimalFromEncoding(std::int32_t encoding);
  // 514 (LittleEndian, IEEE), 257 (other, IEEE), 770 (LittleEndian, HFP), 769 (other, HFP). With
  // HFP the packed-decimal digit is 0, so it reads back as little-endian: kept as the runtime has
  // it.
  static std::int32_t getEncoding(EEndian endian, EFloatFmt floatFormat);

  // Writes `length` bytes of `input` into `output` in reverse order (01 02 03 -> 03 02 01). The
  // buffers must not overlap. Raises CP_INTERNAL_ERROR, before writing anything, for a null input
  // ("Null input pointer"), a null output ("Null output buffer pointer") or a length below 1
  // ("Invalid input length: ", length).
  static void SwapEnds(unsigned char* output, const unsigned char* input, std::int32_t length);

  // ---- the code page (datacnv.cpp) ----

  // True when the code page writes the digit "0" as 0xF0, the EBCDIC zero (37, 500, 1047, 273);
  // false for ASCII-based and Unicode code pages. Opens the converter.
  bool IsCcsidEBCDIC();

  // Converts `size` bytes in the object's code page into `output`, which is replaced. Returns the
  // ICU status: 0 on success, an ICU error code otherwise (what was converted before it stays in
  // `output`). A size of 0 gives an empty text and success. A size from 1 up to below the code
  // page's minimum bytes per character raises CP_INTERNAL_ERROR ("size < MinBytesPerChar for
  // codepage: ", ccsid).
  std::int32_t toUnicodeString(ZanStringBase& output, const unsigned char* input,
                               std::int32_t size);
  // Converts `input` into `output` in the object's code page. `size` in: the capacity in bytes;
  // out: the bytes written. Returns the ICU status (U_BUFFER_OVERFLOW_ERROR with the buffer full
  // when it is too small; U_ILLEGAL_ARGUMENT_ERROR for a capacity below 1); raises nothing itself.
  UErrorCode fromUnicodeString(const ZanStringBase& input, unsigned char* output,
                               std::int32_t& size);

  // ==== 2. Text fields: trimming, padding and signs ==============================================
  // text/datacnv_field.cpp, text/datacnv_signedfield.cpp; reference: docs/reference/text.md

  // Trims `length` UTF-16 units of `buffer` in place as the trim type says (see ETrimType), clears
  // all `length` units to zero, puts the trimmed text at the start and returns its length. A pad
  // character given in the code page (`padIsUnicode` false) must be one character of it (below
  // 256 in a single-byte code page), else CP_CONV_INVALID_PADDING. Raises CP_INTERNAL_ERROR for a
  // null buffer ("Null input pointer") or a negative length ("Invalid input length: ", length).
  //   "  12  " (6 units), eTrimWhiteSpace -> returns 2; the buffer holds "12" and four zeros.
  std::int32_t TrimString(char16_t* buffer, std::int32_t length, char16_t padChar,
                          EJustification justification, ETrimType trimType, bool padIsUnicode);

  // Cuts `text` to, or extends it with zero units to, `dataLength` units, then pads it to
  // `fieldLength` units: at the start when `justification` is not 0, at the end when it is. A pad
  // character given in the code page is one byte of it. Raises CP_INTERNAL_ERROR when
  // `fieldLength` is negative or below `dataLength` ("Invalid input length: ", fieldLength,
  // " Expected string length after padding: ", dataLength: the labels are the runtime's).
  //   "12", field 5, data 2, pad "0", right justified -> "00012".
  void PadString(ZanStringBase& text, std::int32_t fieldLength, std::int32_t dataLength,
                 char16_t padChar, EJustification justification, bool padIsUnicode);

  // Pads a field already encoded in the object's code page. `buffer` points just past the
  // `dataBytes` data bytes, and `padBytes` bytes from there on are the caller's. Right justified
  // (1): the data moves to the end and the padding goes before it; otherwise the padding follows
  // the data. A pad character given in the code page (`padIsUnicode` false) is written as its low
  // byte in a single-byte code page and as its two bytes in memory order in a two-byte one; a
  // UTF-16 pad character is converted to the code page.
  // Raises CP_INTERNAL_ERROR for a null buffer or a negative count ("Invalid argument for
  // DataCnv::PadData") and for a UTF-16 pad character the code page cannot encode ("Error
  // converting from unicode"); CP_CONV_INVALID_PADDING for a code-page pad character wider than
  // the code page or a padding that is not a whole number of characters (inserts: the pad
  // character's bytes in hexadecimal and the CCSID); CP_CONV_INVALID_PADDING_SIZE when the
  // encoded pad character does not divide the padding (inserts: its bytes and the padding length).
  // When right justified, the pad block is copied as a NUL-terminated string, so a pad character
  // whose encoding contains a zero byte leaves zero bytes after that point: kept as the runtime
  // has it.
  void PadData(unsigned char* buffer, std::int32_t padBytes, std::int32_t dataBytes,
               EJustification justification, char16_t padChar, bool padIsUnicode);

  // ==== 3. Integer text fields ===================================================================
  // text/datacnv_inttext.cpp; reference: docs/reference/text.md

  // Reads a 32-bit integer from `length` UTF-16 units: the pad character (one code-page byte when
  // `padIsUnicode` is false) and trim type are applied, an empty result gives 0, the sign is read
  // in the given style (minus and plus are NUL-terminated; either may be longer than one
  // character), and every remaining character must be a decimal digit. Digits of any script read
  // as their value.
  //   "  -42  ", eLeadingSeparateSign, "-", "+", eTrimWhiteSpace -> -42
  // Raises CP_INTERNAL_ERROR for a null text ("Null input pointer passed into
  // DataCnv::StrToInt32"), null sign strings ("Null sign string pointer passed into
  // DataCnv::StrToInt32") or a sign style outside 0 to 4 ("Invalid sign type: ", style);
  // CP_CONV_INPUT_DATA_INVALID for a negative length (trace text "Tried to convert a zero length
  // string to a integer", insert "integer") or a character that is not a digit (inserts "string"
  // and the text); CP_CONV_INPUT_DATA_OUT_OF_BOUNDS (insert "string") for more than 10 digits,
  // leading zeros included, or a value beyond the 32-bit range. "2147483648" with a minus is the
  // smallest 32-bit value.
  std::int32_t StrToInt32(const char16_t* text, std::int32_t length, ESign sign,
                          const char16_t* minus, const char16_t* plus, ETrimType trimType,
                          EJustification justification, char16_t padChar, bool padIsUnicode);
  // As StrToInt32 for 64 bits (19 digits), with these differences: the embedded styles 1 and 2 are
  // refused before anything else ("Sign type invalid for context: ", style); the texts are "Null
  // input pointer passed into DataCnv::StrToInt64", "Null sign string pointer" and "Tried to
  // convert a zero length string to an integer"; out of range has the inserts "string" and
  // "8-byte integer".
  std::int64_t StrToInt64(const char16_t* text, std::int32_t length, ESign sign,
                          const char16_t* minus, const char16_t* plus, ETrimType trimType,
                          EJustification justification, char16_t padChar, bool padIsUnicode);

  // Writes `value` as decimal text into `out`. `outLength` in: the capacity in units; out: the
  // units written (no NUL is added). A negative value carries the custom minus string before
  // (style 3) or after (style 4) the digits; a positive value carries no sign. With `pad`, the text
  // is padded to the whole capacity (see PadString for the sides); a digit pad character goes
  // between the sign and the digits, any other outside the sign.
  //   -42, capacity 6, style 3, "-", pad "0", right justified -> "-00042"; pad " " -> "   -42";
  //   -42, style 4, minus "DB", no pad -> "42DB", outLength 4.
  // Raises CP_INTERNAL_ERROR for a null `out` ("Null output buffer pointer"), a capacity below 1
  // ("Invalid output buffer length: ", capacity), null sign strings ("Null sign string pointer"),
  // the embedded styles 1 and 2 ("Sign type invalid for context: ", style) or a style outside 0 to
  // 4 ("Invalid sign type: ", style); CP_CONV_INPUT_DATA_OUT_OF_BOUNDS for a negative value with no
  // sign (inserts "4-byte integer", "string (no sign)") and for a text longer than the capacity
  // (inserts "integer", "string (", length, " characters)").
  void StrFromInt32(std::int32_t value, char16_t* out, std::int32_t& outLength, ESign sign,
                    const char16_t* minus, const char16_t* plus, bool pad,
                    EJustification justification, char16_t padChar, bool padIsUnicode);
  // As StrFromInt32 for 64 bits (the no-sign insert is "8-byte integer").
  void StrFromInt64(std::int64_t value, char16_t* out, std::int32_t& outLength, ESign sign,
                    const char16_t* minus, const char16_t* plus, bool pad,
                    EJustification justification, char16_t padChar, bool padIsUnicode);
  // As above, the text replacing `out`; `outLength` is the capacity in and the length out.
  void StrFromInt64(std::int64_t value, ZanStringBase& out, std::int32_t& outLength, ESign sign,
                    const char16_t* minus, const char16_t* plus, bool pad,
                    EJustification justification, char16_t padChar, bool padIsUnicode);
  // The shortest decimal text of `value`, "-" before a negative one, as an eString value.
  PWFData StrFromInt64(std::int64_t value);

  // ==== 4. Float and decimal text fields =========================================================
  // text/datacnv_numfield.cpp; reference: docs/reference/text.md

  // Read and write numbers in text fields with the conventions of the integer fields (trim type,
  // justification, pad character, sign style 0, 3 or 4 with custom minus and plus strings, a digit
  // pad character between sign and digits) and the number text that `format` describes (see
  // NumericTextFormat). Digits of any script are read by their value; the point is the format's.
  // The argument faults are those of the integer fields with the function's own name ("Null input
  // pointer passed into DataCnv::StrToDbl", "Null sign string pointer", "Sign type invalid for
  // context: " for the embedded styles, which only zoned decimals have), and a format out of range
  // raises CP_INTERNAL_ERROR ("Invalid numeric form: ", "Invalid decimal places: ", "Invalid
  // decimal point: ").

  // Reads a double. An empty field (after trimming and the sign) reads as 0. Raises
  // CP_CONV_INPUT_DATA_INVALID for a negative length (trace text "Tried to convert a zero length
  // string to a double", insert "double") and for text that is not a number (inserts "double" and
  // the field); CP_CONV_INPUT_DATA_OUT_OF_BOUNDS (same inserts) beyond the double range; a value
  // below it reads as a zero of its sign. With strict checking, in this order:
  //   CP_NUMERIC_STRICT_ZERO_LENGTH        nothing but padding and sign;
  //   CP_NUMERIC_STRICT_DECIMAL_POINT      "." or "," that is not the format's point;
  //   CP_NUMERIC_STRICT_INTEGER_DIGIT      no digit before the point (".5");
  //   CP_NUMERIC_STRICT_VDP_HAS_DECIMAL    a point in the virtual-point form;
  //   CP_NUMERIC_STRICT_NO_DECIMAL_POINT   no point in the explicit-point form;
  //   CP_NUMERIC_STRICT_ENDS_DECIMAL_POINT no digit after the point ("5.", "5.e3") in other forms;
  //   CP_NUMERIC_STRICT_NON_EXPONENTIAL    an exponent outside the exponential form;
  //   CP_NUMERIC_STRICT_EXPONENTIAL        no exponent in the exponential form;
  //   CP_NUMERIC_STRICT_INCORRECT_DEC_PLACES other than `decimalPlaces` digits after the point in
  //                                        the explicit-point form;
  // each with its own trace text and the field as insert.
  //   "  -1,25 ", style 3, eTrimWhiteSpace, point "," -> -1.25
  //   "1250", eVirtualDecimalPoint, 2 places -> 12.5
  double StrToDbl(const char16_t* text, std::int32_t length, ESign sign, const char16_t* minus,
                  const char16_t* plus, ETrimType trimType, EJustification justification,
                  char16_t padChar, bool padIsUnicode,
                  const NumericTextFormat& format = NumericTextFormat());
  // Reads a decimal, exactly, as StrToDbl reads a double (the kind in its failures is "decimal"),
  // into an eDecimal value: "-", the digits with their point moved by the exponent and the virtual
  // places, leading zeros dropped, trailing fraction zeros kept ("-0012.50" -> "-12.50", "1.5e3"
  // -> "1500", ".5" -> "0.5"); a zero has no sign. A value whose first significant digit lies
  // beyond ten to the plus or minus 1000 raises CP_CONV_INPUT_DATA_OUT_OF_BOUNDS.
  PWFData StrToDec(const char16_t* text, std::int32_t length, ESign sign, const char16_t* minus,
                   const char16_t* plus, ETrimType trimType, EJustification justification,
                   char16_t padChar, bool padIsUnicode,
                   const NumericTextFormat& format = NumericTextFormat());
  // Writes `value` as the format says into `out`, as StrFromInt32 writes an integer (`outLength`
  // in: the capacity, out: the units written; a negative value needs a sign style; a text longer
  // than the capacity raises CP_CONV_INPUT_DATA_OUT_OF_BOUNDS with the inserts "double" and
  // "string (", length, " characters)"). The digits are the shortest that read back to `value`,
  // rounded half to even where the form fixes the places. A value that rounds to zero has no
  // sign. NaN and infinities raise CP_CONV_INPUT_DATA_INVALID (inserts "double" and the value).
  //   -2.5, capacity 8, style 3, "-", pad "0", right, explicit 2 places, point "," -> "-0002,50"
  void StrFromDbl(double value, char16_t* out, std::int32_t& outLength, ESign sign,
                  const char16_t* minus, const char16_t* plus, bool pad,
                  EJustification justification, char16_t padChar, bool padIsUnicode,
                  const NumericTextFormat& format = NumericTextFormat());
  // As StrFromDbl for decimal text (a sign, digits with at most one ".", an optional exponent:
  // anything else raises CP_CONV_INPUT_DATA_INVALID with the inserts "decimal" and the text),
  // never through a double; the plain form writes the normal form below.
  void StrFromDec(const ZanStringBase& decimal, char16_t* out, std::int32_t& outLength, ESign sign,
                  const char16_t* minus, const char16_t* plus, bool pad,
                  EJustification justification, char16_t padChar, bool padIsUnicode,
                  const NumericTextFormat& format = NumericTextFormat());

  // ==== 5. Numbers as plain text =================================================================
  // text/datacnv_numtext.cpp, text/datacnv_dectext.cpp; reference: docs/reference/text.md

  // The shortest decimal digits that read back to `value`, into `out`. Not exponential: positional
  // text that validateDecimal accepts ("0.1", "-2.5", "100", "0.0000001", 1e21 ->
  // "1000000000000000000000"); exponential: the same digits as one digit, an optional fraction and
  // an exponent of a sign and at least two digits ("1e-07", "-2.5e+00", "1.2345e+300"). Both zeros
  // are written "0" ("0e+00"). NaN and infinities have no decimal text: CP_CONV_INPUT_DATA_INVALID
  // with the inserts "double" and the value ("nan", "inf", "-inf"), `out` unchanged.
  void doubleToUString(double value, ZanStringBase& out, bool exponential);
  // Reads an optional sign ("+" or "-"), ASCII digits with at most one point and at least one digit
  // (".5" and "5." are numbers) and an optional exponent ("e" or "E", an optional sign, digits),
  // correctly rounded: "-1.5e3" -> -1500. Anything else, spaces, NaN, infinities and digits of
  // other scripts included, raises CP_CONV_INPUT_DATA_INVALID; a magnitude beyond the largest
  // double raises CP_CONV_INPUT_DATA_OUT_OF_BOUNDS; both with the inserts "double" and the text. A
  // magnitude below the smallest subnormal reads as a zero of its sign ("1e-400" -> 0).
  double PWFStringTodouble(const ZanStringBase& text);

  // The normal form of a decimal text, the one that equality compares, into `out` (which may be
  // `decimal` itself): the sign ("+" or "-") taken off, leading zeros and a fraction's trailing
  // zeros dropped, "0" before a leading point, no trailing point, "0" for an empty result, and "-"
  // put back only on a non-zero value ("-007.50" -> "-7.5", "-0.0" -> "0", ".5" -> "0.5", "+12" ->
  // "12"). The text is not checked: other characters pass through as they are.
  void StrFromDec(const ZanStringBase& decimal, ZanStringBase& out);

  // ==== 6. Binary as hexadecimal text ============================================================
  // text/datacnv_bintext.cpp; reference: docs/reference/text.md

  // Two upper-case hexadecimal digits a byte (0A FF -> "0AFF"), as an eString value; null `bytes`
  // or a length of 0 give the empty string. A negative length, or one whose text would pass the
  // largest string, raises CP_INTERNAL_ERROR ("Invalid input length: ", length).
  PWFData StrFromBin(const unsigned char* bytes, std::int32_t length);
  // `length` hexadecimal digits of either case, two a byte, as an eBinary value that owns a copy
  // of the bytes ("0aFF" -> 0A FF); no text gives an empty binary, which is not null. An odd count
  // or a unit that is not an ASCII hexadecimal digit raises CP_CONV_INPUT_DATA_INVALID (inserts
  // "binary" and the text); a negative length CP_INTERNAL_ERROR ("Invalid input length: ",
  // length), a null text of positive length CP_INTERNAL_ERROR ("Null input pointer").
  PWFData StrToBin(const char16_t* text, std::int32_t length);

  // ==== 7. The standard text form of values ======================================================
  // text/datacnv_standard.cpp; reference: docs/reference/text.md

  // One text per logical type, as an eString value: a string as it is; an integer in decimal; a
  // float in the canonical form of XML Schema ("1.5E2", "1.0E-1", "0.0E0", "INF", "-INF", "NaN");
  // a decimal in its normal form; a binary in upper-case hexadecimal; a boolean "true" or "false";
  // an interval as interval text; a date-time in ISO 8601 extended form from the fields that are
  // set ("2004-02-29T13:05:09.123+01:00", "2004-02-29", "13:05:09Z"). A null value raises
  // CP_INTERNAL_ERROR ("Should not call this method with null data"), a value of no convertible
  // type "Should not call this method without a valid type".
  PWFData StandardStrFromData(const PWFData& value);
  // Reads `length` units (-1: up to the NUL) of the standard text of `type` back into a value;
  // hexadecimal in either case, a boolean also as "1" or "0", a float also as "+INF" or any
  // decimal or exponential text. Any failure inside becomes CP_INVALID_LOGICAL_STRING, whose
  // inserts are the inner failure's trace text and inserts.
  PWFData StandardStrToData(const char16_t* text, std::int32_t length, ELogicalType type);

  // ==== 8. Intervals as text: "P1Y2M", "-P3DT4H5M6.5S", "PT0S" ===================================
  // text/datacnv_interval.cpp; reference: docs/reference/text.md

  // Parses interval text: an optional "-", "P", then fields of digits each closed by its
  // designator, "Y", "M", "D", "T", "H", "M", "S" with "." before a fraction of a second, in that
  // order ("H" is accepted without "T"; "T" may repeat). A `length` of -1 reads up to the NUL, and
  // a NUL ends the text early. Years and months exclude days and times. Raises
  // CP_CONV_INPUT_DATA_INVALID (inserts "interval" and the text) for text that is not an interval
  // or has designators out of order, CP_DURATION_RANGE_ERROR for a field of 2^31 or more (a
  // fraction of ten digits or more counts as such), CP_DURATION_TOO_MANY_DAYS for 100,000,000
  // days or more or a total beyond 64 bits of microseconds, CP_DURATION_COMBINATION_ERROR for
  // years or months with days or times, and CP_INTERNAL_ERROR for a null `text` or a `length`
  // below -1. A fraction finer than microseconds is cut to microseconds with a warning
  // (0xC00015AC) in the log: "PT0.1234567S" -> 123,456 microseconds.
  PWFInterval StrToInterval(const char16_t* text, std::int32_t length);
  // Writes the shortest interval text ("PT0S" for zero, "P1DT1H1M1.5S" for 90,061,500,000
  // microseconds), padded to `outLength` when `pad` (a longer text is not cut); `outLength` out:
  // the units written. A negative field raises CP_CONV_INPUT_DATA_OUT_OF_BOUNDS, a code-page pad
  // character that is not one character of the code page CP_CONV_INVALID_PADDING.
  void StrFromInterval(const PWFInterval& interval, ZanStringBase& out, std::int32_t& outLength,
                       bool pad, EJustification justification, char16_t padChar, bool padIsUnicode);
  // As above into a caller's buffer; `outLength` in: capacity, out: units written. A text longer
  // than the capacity raises CP_CONV_INPUT_DATA_OUT_OF_BOUNDS (inserts "interval", "string (", the
  // length, " characters)"), a null `out` CP_INTERNAL_ERROR; both leave buffer and length alone.
  void StrFromInterval(const PWFInterval& interval, char16_t* out, std::int32_t& outLength,
                       bool pad, EJustification justification, char16_t padChar, bool padIsUnicode);
  // The unpadded text as an eString value.
  PWFData StrFromInterval(const PWFInterval& interval);
  // Appends the digits of one field; a fraction (microseconds below 1,000,000) is written as six
  // digits without their trailing zeros (500000 -> "5", 120 -> "00012", 0 -> "0"). A negative
  // value, or a fraction of 1,000,000 or more, raises CP_CONV_INPUT_DATA_OUT_OF_BOUNDS (inserts
  // "interval" and the value).
  void AppendIntervalField(std::int32_t value, ZanStringBase& out, bool isFraction);

  // ==== 9. Binary integers =======================================================================
  // binary/datacnv_binint.cpp; reference: docs/reference/binary.md
  // Two's-complement integers of 1, 2, 4 and 8 bytes in the object's byte order (LittleEndian is
  // taken as it stands, any other order is reversed). The readers treat exactly
  // eLeadingEmbeddedSign (1) as signed and every other style as unsigned; IntFromDbl treats every
  // non-zero style as signed. A scale is a count of implied decimal places; a negative one raises
  // CP_INTERNAL_ERROR
  // ("Invalid scale: ", scale). Writers take the size in `length` and leave it unchanged, and
  // write nothing before every check has passed. Narrowing failures are CP_CONV_INPUT_DATA_TOO_LONG
  // with the overflow message, "integer", the target description and the size in bytes.

  // Reads 1, 2 or 4 bytes (8 for the 64-bit forms). A 4-byte unsigned value above the 32-bit
  // range raises "Overflow converting a PWFUInt32 to PWFInt32" (the 8-byte form "... PWFUInt64 to
  // PWFInt64"). Null source: "DataCnv::IntToInt32 called with a Null input pointer for the
  // source.", "Null input pointer passed into DataCnv::IntToInt64", "Null input pointer"; other
  // sizes: "Invalid integer size: ".
  //   FF FF -> -1 signed, 65535 unsigned.
  std::int32_t IntToInt32(const unsigned char* source, std::int32_t length, ESign sign);
  std::int64_t IntToInt64(const unsigned char* source, std::int32_t length, ESign sign);
  std::uint64_t UIntToUInt64(const unsigned char* source, std::int32_t length);
  // The value divided by ten once a place, by repeated multiplication by 0.1 (results carry that
  // rounding): 12345 with scale 2 -> 123.45. A length below 1: "Invalid input size: ".
  double IntToDbl(const unsigned char* source, std::int32_t length, std::int32_t scale, ESign sign);
  // The bytes read as signed, whatever the field's convention, as decimal text with the point
  // moved over the digits: FF FB with scale 2 -> "-0.05".
  PWFData IntToDec(const unsigned char* source, std::int32_t length, std::int32_t scale);
  // Write the low-order bytes after the range check of the size and signedness: for example
  // 65535 into 2 unsigned bytes is FF FF, 65536 raises "Overflow converting a PWFInt32 to
  // PWFUInt16" with the inserts "integer", "2-byte integer", "2". A null output: "Null output
  // buffer pointer"; other sizes: "Invalid integer size: ".
  void IntFromInt32(std::int32_t value, unsigned char* output, std::int32_t& length, ESign sign);
  void UIntFromUInt32(std::uint32_t value, unsigned char* output, std::int32_t& length);
  void IntFromInt64(std::int64_t value, unsigned char* output, std::int32_t& length, ESign sign);
  // The unsigned twin of IntFromInt64: the whole 64-bit range into 8 bytes, and into 4, 2 or 1
  // byte what fits (18446744073709551615 into 8 bytes is FF x 8). Too large for the size: the
  // overflow "Overflow converting a PWFUInt64 to PWFUInt32" (PWFUInt16, PWFUInt8) with the inserts
  // "integer", "4-byte unsigned integer" (2-, 1-byte), the size. A null output: "Null output
  // buffer pointer"; other sizes: "Invalid integer size: ".
  void UIntFromUInt64(std::uint64_t value, unsigned char* output, std::int32_t& length);
  // The value times ten once a place (repeated multiplication by 10), checked against the size's
  // bounds inclusive at both ends, then truncated toward zero: 12.345 with scale 2 -> 1234,
  // -2.9 -> -2. Outside the bounds, or NaN: CP_CONV_INPUT_DATA_OUT_OF_BOUNDS with the inserts
  // "double float" and the target ("signed 4-byte integer", "unsigned 1-byte integer", ...). The
  // 8-byte upper bounds are 2 to the 63 (signed) and 2 to the 64 (unsigned) themselves, which no
  // integer of the type holds: they are accepted and written as the type's largest value.
  void IntFromDbl(double value, unsigned char* output, std::int32_t& length, ESign sign,
                  std::int32_t scale);
  // Decimal text with its point moved `scale` places right, the fraction cut (never rounded:
  // "123.99" -> 123), written as a signed integer through IntFromInt64 and its overflow checks.
  // Null text: "Null input pointer"; a size below 1: "Invalid output buffer size: "; text that is
  // not a number: CP_CONV_INPUT_DATA_INVALID from UStringToInt64.
  void IntFromDec(const char16_t* decimal, unsigned char* output, std::int32_t& length,
                  std::int32_t scale);

  // ==== 10. Packed decimal =======================================================================
  // binary/datacnv_packed.cpp; reference: docs/reference/binary.md
  // Two digits a byte, the last nibble the sign; n bytes hold 2n - 1 digits. `endian` is the
  // field's own byte order (LittleEndian: the same bytes reversed, the sign byte first), not the
  // object's. `scale` is the number of implied decimal places (negative: trailing zeros implied).
  // `sign` eLeadingEmbeddedSign (1) means a signed field to the readers, any other style unsigned;
  // the writers write F for eNoSign and take every other style as signed. Sign nibbles read: A, C,
  // E, F positive; D negative; B passes as a negative code but reads as positive (kept as the
  // runtime has it); 0 to 9 are no sign. Sign nibbles written: F unsigned, D negative, else the
  // object's positive packed sign (C by default; it must be A, C, E or F, else CP_INTERNAL_ERROR
  // "Invalid positive packed sign: ", value).
  //
  // Readers fail, reading nothing past `size` bytes, with CP_INTERNAL_ERROR for a null source
  // ("Null input pointer") or a size below 1 ("Invalid input length: ", size), and
  // CP_CONV_INPUT_DATA_INVALID for a bad field: "packed decimal, no sign found ", "packed decimal,
  // negative sign found on unsigned data ", "packed decimal, non-numeric data found", each with the
  // field as given in hexadecimal ("0x12345d"). Fields above 32 bytes are unpacked into allocated
  // memory, whose refusal is CP_MEMORY_ALLOC_FAILURE (ZanConversionException, trace text "CPI
  // Memory allocation failure", insert "malloc returned NULL").

  // The digits with their leading zeros, the point moved `scale` places, "-" in front for D:
  //   12 34 5C, scale 2 -> "123.45"; 5D, scale 2 -> "-0.05"; 00 12 3F, unsigned -> "00123".
  PWFData PckdDecToDec(const unsigned char* source, std::int32_t size, EEndian endian,
                       std::int32_t scale, ESign sign);
  // The decimal read as a double: 12 34 5D, scale 2 -> -123.45.
  double PckdDecToDbl(const unsigned char* source, std::int32_t size, EEndian endian,
                      std::int32_t scale, ESign sign);
  // The decimal through a binary integer of the width (IntFromDec, IntToInt32 / IntToInt64): the
  // fraction is truncated (12 34 5D, scale 2 -> -123) and a value out of range fails as those fail
  // (CP_CONV_INPUT_DATA_TOO_LONG "Overflow converting a PWFInt64 to PWFInt32"; beyond 64 bits
  // CP_CONV_INPUT_DATA_OUT_OF_BOUNDS).
  std::int32_t PckdDecToInt32(const unsigned char* source, std::int32_t size, EEndian endian,
                              std::int32_t scale, ESign sign);
  std::int64_t PckdDecToPWFInt64(const unsigned char* source, std::int32_t size, EEndian endian,
                                 std::int32_t scale, ESign sign);
  // Writes exactly `size` bytes (left unchanged): the value times ten to `scale`, the fraction
  // truncated, never rounded, zero bytes before the digits (after them for LittleEndian).
  //   "123.45", size 3, scale 2 -> 12 34 5C; "-5", size 3 -> 00 00 5D; "0", unsigned -> 00 00 0F.
  // The text is an optional sign, digits and at most one "."; white space around it is ignored.
  // A negative value keeps D even when it truncates to zero ("-0.5" -> 0D), as does "-0".
  // Raises CP_INTERNAL_ERROR for a null text ("Null input pointer") or output ("Null output buffer
  // pointer"); CP_CONV_INPUT_DATA_INVALID (inserts "decimal" and the text) for other text, commas
  // and exponents included, or text without a digit; CP_CONV_INPUT_DATA_OUT_OF_BOUNDS for a
  // non-zero negative value into an unsigned field (inserts "decimal", "packed decimal (no
  // sign)"); CP_CONV_INPUT_DATA_TOO_LONG for digits that do not fit, a size below 1 included
  // (inserts "packed decimal", "decimal", size). Nothing is written before every check passes.
  void PckdDecFromDec(const char16_t* decimal, unsigned char* output, std::int32_t& size,
                      EEndian endian, std::int32_t scale, ESign sign);
  // The double's shortest decimal text (doubleToUString; NaN and infinities raise its
  // CP_CONV_INPUT_DATA_INVALID), written as PckdDecFromDec writes it: -123.456, scale 2 ->
  // 12 34 5D.
  void PckdDecFromDbl(double value, unsigned char* output, std::int32_t& size, EEndian endian,
                      std::int32_t scale, ESign sign);
  // The integer's decimal text, written as PckdDecFromDec writes it: 123, scale 2 -> 12 30 0C.
  void PckdDecFromInt32(std::int32_t value, unsigned char* output, std::int32_t& size,
                        EEndian endian, std::int32_t scale, ESign sign);
  void PckdDecFromPWFInt64(std::int64_t value, unsigned char* output, std::int32_t& size,
                           EEndian endian, std::int32_t scale, ESign sign);

  // The TLOG forms: packed digits with no fixed sign position, and packed hexadecimal characters.
  // Their readers return an empty eString value for a null source and raise CP_INTERNAL_ERROR
  // ("Invalid input length: ", size) for a size below 1; their writers return null for a null
  // target, writing nothing, and raise the same for a size below 1, and CP_INTERNAL_ERROR for a
  // null value ("Should not call this method with null data") or one that is not a string, decimal
  // or integer ("Should not call this method without a valid type"). A writer that fails writes
  // nothing.

  // Every nibble as a character "0".."9", "A".."F": 4A F0 -> "4AF0".
  PWFData TLOGPckdStrToStr(const unsigned char* source, std::int32_t size, EEndian endian);
  // The digit nibbles in order; D anywhere makes the value negative and F as the first nibble is a
  // filler: F1 23 -> "123", 12 3D -> "-123", FD -> "-0". Any other nibble above 9 raises
  // CP_CONV_INPUT_DATA_INVALID (inserts "TLOG packed decimal" and the field in hexadecimal).
  PWFData TLOGPckdDecToDec(const unsigned char* source, std::int32_t size, EEndian endian);
  // Packs the value's text, digits and "-" (as D, where it falls), right-aligned over "0"
  // characters in 2 x size places: -123, size 3 -> 00 D1 23. With `bTrimLeadingZeros` the pairs
  // of leading zeros are left out and an odd one out shares its byte with an F filler: 123, size
  // 3 -> F1 23; -123 -> D1 23. Sets `outputLength` to the bytes written and returns `target`.
  // Raises CP_CONV_INPUT_DATA_INVALID (inserts "TLOG packed decimal" and the text) for any other
  // character, CP_CONV_INPUT_DATA_TOO_LONG (inserts "TLOG packed decimal", "decimal", size) for
  // a text longer than 2 x size.
  unsigned char* TLOGPWFDataToPckdDecimal(PWFData inputData, unsigned char* target,
                                          std::int32_t size, EEndian endian, bool bTrimLeadingZeros,
                                          std::int32_t& outputLength);
  // Packs the value's hexadecimal characters (either case), two a byte, right-aligned over "0"
  // in exactly `size` bytes: "abc", size 2 -> 0A BC. Returns `target`. Raises
  // CP_CONV_INPUT_DATA_INVALID (inserts "TLOG packed string" and the text) for a character that
  // is not a hexadecimal digit, CP_CONV_INPUT_DATA_TOO_LONG (inserts "TLOG packed string",
  // "string", size) for a text longer than 2 x size.
  unsigned char* TLOGPWFDataToPckdStr(const PWFData& inputData, unsigned char* target,
                                      std::int32_t size, EEndian endian);

  // ==== 11. Zoned (external) decimal =============================================================
  // binary/datacnv_zoned.cpp; reference: docs/reference/binary.md
  // One digit a character in the object's code page, EBCDIC when IsCcsidEBCDIC() and ASCII-based
  // otherwise, the sign in one of five styles:
  //   eNoSign                 digits only; a negative value cannot be written;
  //   eLeadingEmbeddedSign    overpunched on the first digit (eTrailingEmbeddedSign: the last):
  //                           EBCDIC zone D is negative and F positive (zones A, B, C and E read
  //                           as positive too; a zone below A is no sign); ASCII "p".."y" is a
  //                           negative 0..9 and the plain digit a positive one, or, with
  //                           `customSignEBCDIC`, "}", "J".."R" negative and "{", "A".."I"
  //                           positive (EBCDIC code pages ignore the flag: they have one form);
  //   eLeadingSeparateSign    "+" or "-" as the first character (eTrailingSeparateSign: the
  //                           last); a field read without it is positive.
  // `positiveSigns` and `negativeSigns` are optional sign tables for the embedded styles (null or
  // empty: none): NUL-terminated, the forms of the digits 0..9 first, any further character
  // standing for the digit of its position modulo 10. A character that a table holds is read and
  // written by the tables, any other by the overpunch above.
  //
  // Layout, written by the writers and taken apart in reverse by the readers:
  //   [leading separate sign][padding][digits][padding][trailing separate sign]
  // The padding is `padCharacter` (a UTF-16 character when `padIsUnicode`, else a character of the
  // code page: one byte in a single-byte one) on the side the justification pads: before the
  // digits when right justified, after them when left justified ("-  5", "5  -"). A zero pad
  // character is a digit: it fills before the digits whatever the justification ("-005", "0012"),
  // an embedded sign goes on the first digit of the filled field, and readers keep it as digits.
  // Other digits cannot pad. Reading takes a separate sign off the edge, trims the padding, then
  // takes an embedded sign off the first or last character left; every character left must be
  // "0".."9", and a field with none left reads as 0. A scale is a count of implied decimal places
  // (negative: the point moves right); it moves the point over the digits before the sign goes on.
  //
  // Argument faults raise CP_INTERNAL_ERROR: a sign style outside 0..4 ("Invalid sign type: "), a
  // justification other than 0 and 1 ("Invalid justification: "), and, for the embedded styles,
  // one sign table without the other or one of fewer than ten characters ("Invalid sign table: ",
  // the table or "(null)"). A code-page pad character that is not one character of the code page,
  // or a pad digit other than zero, raises CP_CONV_INVALID_PADDING; padding that does not fill the
  // field in whole characters CP_CONV_INVALID_PADDING_SIZE.

  // Readers. A null `source` raises CP_INTERNAL_ERROR ("Null input pointer"), a `size` below 1
  // "Invalid external decimal size: " ("Invalid extended decimal size: " for ExtDecToInt64), a
  // `padCharacter` outside 0..0xFFFF "Invalid pad character: ". A character that is no digit where
  // a digit must be raises CP_CONV_INPUT_DATA_INVALID (inserts "external decimal" and the field's
  // bytes in hexadecimal), and a signed digit that is not one of the custom EBCDIC signs the same
  // with "External decimal - Custom Sign EBCDIC" and its bytes. A field the code page cannot
  // convert raises CP_INTERNAL_ERROR ("Conversion to unicode string failed. Error code: ").
  // These failures are raised under "DataCnv::ExtDecToStr", the readers' common body.
  //   EBCDIC F1 F2 D3, eTrailingEmbeddedSign -> -123; ASCII "12L", custom signs -> -123;
  //   ASCII "12s" -> -123; "-0005" with eLeadingSeparateSign, scale 2 -> "-0.05".

  // The value, which must fit 64 bits (else CP_CONV_INPUT_DATA_OUT_OF_BOUNDS from
  // UStringToInt64: "string", the text, "8-byte integer").
  std::int64_t ExtDecToInt64(const unsigned char* source, std::int32_t size, ESign sign,
                             EJustification justification, std::int32_t padCharacter,
                             bool padIsUnicode, bool customSignEBCDIC,
                             const char16_t* positiveSigns, const char16_t* negativeSigns);
  // The value divided by ten to `scale`, correctly rounded.
  double ExtDecToDbl(const unsigned char* source, std::int32_t size, std::int32_t scale, ESign sign,
                     EJustification justification, std::int32_t padCharacter, bool padIsUnicode,
                     bool customSignEBCDIC, const char16_t* positiveSigns,
                     const char16_t* negativeSigns);
  // The value divided by ten to `scale` as an eDecimal: "-" for a negative value, no leading zeros
  // before the point, as many fraction digits as the scale ("1250", scale 2 -> "12.50"; zero with
  // scale 2 -> "0.00", with scale -2 -> "0").
  PWFData ExtDecToDec(const unsigned char* source, std::int32_t size, std::int32_t scale,
                      ESign sign, EJustification justification, std::int32_t padCharacter,
                      bool padIsUnicode, bool customSignEBCDIC, const char16_t* positiveSigns,
                      const char16_t* negativeSigns);

  // Writers: fill all `size` bytes of `output` (`size` is left as it is) with the value times ten
  // to `scale`, the fraction truncated, leading zeros dropped; a value whose significant digits
  // fit always fits (0.05 with scale 2 is "5"). Zero has no sign. A null `output` raises
  // CP_INTERNAL_ERROR ("Null output buffer pointer"), a `size` below 1 "Invalid output buffer
  // size: ". More digits (and sign) than the field raises CP_CONV_INPUT_DATA_TOO_LONG ("external
  // decimal", "string"); a negative value with eNoSign CP_CONV_INPUT_DATA_OUT_OF_BOUNDS
  // ("unsigned external decimal", "signed number"). A failed write leaves `output` unchanged.
  //   -123, EBCDIC, eTrailingEmbeddedSign, 3 bytes -> F1 F2 D3; ASCII -> "12s", custom signs
  //   "12L"; -123, eLeadingSeparateSign, pad "0", 5 bytes -> "-0123"; eTrailingSeparateSign,
  //   pad " ", right justified -> " 123-".
  void ExtDecFromInt64(std::int64_t value, unsigned char* output, std::int32_t& size, ESign sign,
                       EJustification justification, char16_t padCharacter, bool padIsUnicode,
                       bool customSignEBCDIC, const char16_t* positiveSigns,
                       const char16_t* negativeSigns);
  // The value by its shortest decimal text, so that 0.29 with scale 2 writes 29. NaN and the
  // infinities raise CP_CONV_INPUT_DATA_INVALID ("double", the value).
  void ExtDecFromDbl(double value, unsigned char* output, std::int32_t& size, std::int32_t scale,
                     ESign sign, EJustification justification, char16_t padCharacter,
                     bool padIsUnicode, bool customSignEBCDIC, const char16_t* positiveSigns,
                     const char16_t* negativeSigns);
  // A null `decimal` raises CP_INTERNAL_ERROR ("Null input pointer").
  void ExtDecFromDec(const char16_t* decimal, unsigned char* output, std::int32_t& size,
                     std::int32_t scale, ESign sign, EJustification justification,
                     char16_t padCharacter, bool padIsUnicode, bool customSignEBCDIC,
                     const char16_t* positiveSigns, const char16_t* negativeSigns);
  // The writers' common body, under whose name their failures other than the pointer and size
  // checks are raised (ExtDecFromInt64 skips its text steps: an integer is digits already). `text`
  // is decimal text: an optional sign, digits and at most one point, white space around it ignored;
  // anything else raises CP_CONV_INPUT_DATA_INVALID ("decimal", the text).
  void UStringToExtDec(ZanStringBase text, unsigned char* output, std::int32_t& size,
                       std::int32_t scale, ESign sign, EJustification justification,
                       char16_t padCharacter, bool padIsUnicode, bool customSignEBCDIC,
                       const char16_t* positiveSigns, const char16_t* negativeSigns);

  // The text-level steps of the layout above, on UTF-16 text.
  // Puts the sign on digit text: "+" or "-" before (style 3) or after (4) it; for styles 1 and 2
  // replaces the first or last character, if the positive table holds it at position i, with
  // form i modulo 10 of the table of the sign. Other characters and styles are left alone.
  void ExtDecAddSign(ZanStringBase& text, ESign sign, const char16_t* positiveSigns,
                     const char16_t* negativeSigns, bool& negative);
  // Takes it off and sets `negative`: a leading (3) or trailing (4) "-" or "+"; for 1 and 2 the
  // first or last character, if a table holds it (the negative one first), becomes its digit.
  // A style outside 0..4 raises CP_INTERNAL_ERROR ("Invalid sign type: ").
  void ExtDecRemoveSign(ZanStringBase& text, ESign sign, const char16_t* positiveSigns,
                        const char16_t* negativeSigns, bool& negative);
  // Trims the pad character from the side the justification pads; a digit is never trimmed.
  void ExtDecTrimData(ZanStringBase& text, EJustification justification, char16_t padCharacter,
                      bool padIsUnicode);
  // Adds as many pad characters as fill `fieldSize` - `dataSize` bytes: zeros before the text,
  // other characters on the justification's side.
  void ExtDecPadData(ZanStringBase& text, std::int32_t fieldSize, std::int32_t dataSize,
                     EJustification justification, char16_t padCharacter, bool padIsUnicode);
  // The bytes a UTF-16 pad character takes in the code page; one it cannot carry raises
  // CP_INTERNAL_ERROR ("Error converting from unicode", under "DataCnv::PadData").
  std::int32_t GetPadCharLen(char16_t padCharacter);

  // ==== 12. Floating point =======================================================================
  // binary/datacnv_float.cpp; reference: docs/reference/binary.md
  // 4- and 8-byte floats in the object's byte order (LittleEndian as it stands, any other order
  // reversed) and float format (HFPFloat, or IEEE for any other value). HFP: the sign, an
  // exponent of 16 biased by 64 in bits 30 to 24, then a 24-bit (4 bytes) or 56-bit (8 bytes)
  // fraction. Infinities and NaNs get no special treatment: the format conversions below give
  // what their steps give, and the decimal forms of a NaN or an infinity fail (see FltToDec).

  // Reads a float of `size` bytes (4, widened, or 8), converting HFP to IEEE first.
  //   BigEndian, HFP: 41 10 00 00 -> 1.0; C2 64 00 00 -> -100.0
  // Raises CP_INTERNAL_ERROR for a null source ("Null input pointer passed into
  // DataCnv::FltToDbl"), a size below 1 ("Invalid input size: ", size) or other than 4 or 8
  // ("Invalid float size: ", size).
  double FltToDbl(const unsigned char* source, std::int32_t size);
  // Writes `value` as a float of `size` bytes (left unchanged). For 4 bytes the double is first
  // rounded to the nearest single (beyond the single range: an infinity), then converted to HFP
  // by truncation where the format is HFP: 0.1 -> 40 19 99 99 (BigEndian). Raises
  // CP_INTERNAL_ERROR for a null output ("Null output buffer pointer"), a size below 1 ("Invalid
  // output buffer size: ", size) or other than 4 or 8 ("Invalid float size: ", size), before
  // writing anything.
  void FltFromDbl(double value, unsigned char* output, std::int32_t& size);
  // FltToDbl's value as an eDecimal with `scale` implied decimal places (negative: zeros added),
  // the sign kept in front: -5.0 with scale 2 -> "-0.05"; 1.5 with scale -3 -> "1500". Fails as
  // FltToDbl does (under its name), and with CP_CONV_INPUT_DATA_INVALID from doubleToUString for
  // bytes that hold a NaN or an infinity.
  PWFData FltToDec(const unsigned char* source, std::int32_t size, std::int32_t scale);
  // Writes the decimal text (a sign, digits, at most one ".") times ten to the `scale` with
  // FltFromDbl: "-0.05" with scale 2 -> -5.0. Raises CP_INTERNAL_ERROR for a null decimal ("Null
  // input pointer"), a null output ("Null output buffer pointer"), a size below 1 ("Invalid output
  // buffer size: ", size) or other than 4 or 8 ("Invalid float size: ", size), and the smallest
  // 32-bit scale ("Invalid scale: ", scale); CP_CONV_INPUT_DATA_INVALID for text that is not a
  // decimal (validateDecimal: an exponent, a misplaced sign; PWFStringTodouble: no digits, a
  // grouping comma); CP_CONV_INPUT_DATA_OUT_OF_BOUNDS beyond the double range. Nothing is written
  // on failure.
  void FltFromDec(const char16_t* decimal, unsigned char* output, std::int32_t& size,
                  std::int32_t scale);
  // Bit-exact conversions between the formats, one 4-byte word or two 32-bit words each way;
  // `input` and `output` may be the same. Bits that do not fit are truncated, except from HFP to
  // IEEE in 8 bytes, which rounds half up on each bit it shifts out.
  //   - HFP to IEEE saturates at the largest finite value (never infinity) and gives a zero of
  //     the sign below the smallest normal one (no denormals).
  //   - IEEE to HFP reads an infinity or NaN as a number with the largest exponent: a finite word
  //     in 4 bytes (7F800000 -> 61100000), the largest HFP value in 8 bytes (7FFFFFFF FFFFFFFF,
  //     as for 16 to the 63 and above).
  //   - A zero apart from its sign is copied; in 8 bytes, so is a value whose high word is zero
  //     apart from its sign, low word and all.
  //   - An HFP word with a zero fraction is not zero: 41000000 reads as 16.0 in 4 bytes, and
  //     41000000 00000000 as 1.0 in 8 bytes, which leaves a fraction with an empty high word
  //     unnormalised.
  // The 8-byte forms take the word order, each word in machine order: BigEndian puts the
  // high-order word first, any other value second. Each call keeps its own word order, so they
  // are safe to call concurrently. Null pointers raise CP_INTERNAL_ERROR ("Null input pointer",
  // "Null output buffer pointer").
  //   HFP 41100000 <-> IEEE 3F800000; HFP 42640000 -> 42C80000; IEEE 3F000000 -> HFP 40800000.
  static void ConvertFloatHFPtoIEEE(float* input, float* output);
  static void ConvertFloatIEEEtoHFP(float* input, float* output);
  static void ConvertDoubleHFPtoIEEE(double* input, double* output, EEndian endian);
  static void ConvertDoubleIEEEtoHFP(double* input, double* output, EEndian endian);
  // Correctly rounded HFP, whatever the object's float format: the bytes in the object's byte
  // order as FltToDbl reads them and FltFromDbl writes them (8 bytes BigEndian: the high-order
  // word first). The value is (-1)^sign x fraction x 16^(characteristic - 64), the fraction
  // 0.hhhhhh (4 bytes) or 0.hhhhhhhhhhhhhh (8 bytes).
  // Reads 4 bytes exactly (every short HFP value is a double) and 8 bytes rounded to the nearest
  // double, ties to even, unnormalised fractions included; a zero fraction is a zero of the sign.
  //   41100000 -> 1.0; 00100000 -> 16^-65; 46FFFFFF -> 16777215.0; 80000000 -> -0.0
  // Raises what FltToDbl raises for a null source (naming HFPToDouble), a size below 1 or other
  // than 4 or 8.
  double HFPToDouble(const unsigned char* source, std::int32_t size);
  // Writes `value` rounded to the nearest HFP value of 6 (4 bytes) or 14 (8 bytes) hexadecimal
  // digits, ties to even, normalised; below 16^-65 the nearest value with characteristic 0 and an
  // unnormalised fraction, down to a zero of the value's sign. 0.1 -> 4019999A in 4 bytes.
  // Raises what FltFromDbl raises for a null output, a size below 1 or other than 4 or 8, then
  // CP_CONV_INPUT_DATA_INVALID for a NaN or an infinity and CP_CONV_INPUT_DATA_OUT_OF_BOUNDS for
  // a value that rounds beyond the largest HFP value, 16^63 x (1 - 16^-6) or (1 - 16^-14) (both
  // with the inserts "double" and the value). Nothing is written on failure; `size` is unchanged.
  void DoubleToHFP(double value, unsigned char* output, std::int32_t& size);

  // ==== 13. Date and time
  // ===========================================================================
  // datetime/datacnv_datetime.cpp; reference: docs/reference/datetime.md

  // Each of these is the operation of the same meaning of the object's date-time formatter (see
  // PWFDateTimeFormatter for the patterns, the record and every failure), which the object creates
  // from its five formatter settings on first use and keeps.
  //   StrToDateTime(u"20230409", 8, u"yyyyMMdd") -> 2023-04-09, no time, no zone
  PWFDateTime StrToDateTime(const char16_t* text, std::int32_t length, const char16_t* pattern);
  ZanStringBase StrFromDateTime(const PWFDateTime& value, const char16_t* pattern);
  PWFDateTime SecondsToDateTime(std::int32_t seconds, const char16_t* epoch);
  PWFDateTime MilliSecondsToDateTime(std::int64_t milliseconds, const char16_t* epoch);
  PWFDateTime BinaryToDateTime(const void* data, std::int32_t length, const char16_t* pattern);
  std::int32_t SecondsFromDateTime(const PWFDateTime& value, const char16_t* epoch);
  std::int64_t MilliSecondsFromDateTime(const PWFDateTime& value, const char16_t* epoch);
  void BinaryFromDateTime(const PWFDateTime& value, void* data, std::int32_t length,
                          const char16_t* pattern);

  // A packed decimal whose digits are a date-time text of `pattern` (yyyyMMdd packed into 5 bytes:
  // 02 02 30 40 9F). Reading unpacks the field with PckdDecToDec, puts "0" digits before it up to
  // the pattern's length or drops leading "0" digits beyond it, and reads the digits with
  // StrToDateTime; writing formats the value with StrFromDateTime and packs the text with
  // PckdDecFromDec. The failures are those of the two steps.
  PWFDateTime PckdDecToDateTime(const unsigned char* data, std::int32_t length, EEndian endian,
                                std::int32_t precision, ESign sign, const char16_t* pattern);
  void PckdDecFromDateTime(const PWFDateTime& value, unsigned char* target, std::int32_t& length,
                           const char16_t* pattern, EEndian endian, std::int32_t precision,
                           ESign sign);

 private:
  friend class DataCnvTestAccess;

  // The private members, by family in the order of the blocks above.

  // ---- 1. the object (datacnv.cpp) ----
  CPUnicodeConverter* getLocalConverter();
  icu::DecimalFormat* getDecimalFormatter();

  // Hexadecimal digit values; a non-digit is 0 for ChToHex (bytes 0x80 and up included) and -1 for
  // PWFChToHex. Callers rely on their own convention.
  std::int32_t ChToHex(char c);
  std::int32_t PWFChToHex(char16_t c);

  // ---- 2. text fields (text/datacnv_field.cpp, text/datacnv_signedfield.cpp) ----
  // A pad character given in the code page, as UTF-16: its low byte when `width` is 1 (it must be
  // below 256), its two bytes in memory order when 2; any other width, or bytes that do not
  // convert, raise CP_CONV_INVALID_PADDING under `function`.
  char16_t codePageCharToUnicode(const char* function, char16_t padChar, std::int32_t width);
  // The bytes of a UTF-16 pad character in the code page, into `unit` (room for one character of
  // any code page); returns their count. A character the code page cannot carry
  // raises CP_INTERNAL_ERROR ("Error converting from unicode").
  std::int32_t encodePadChar(char16_t padChar, unsigned char* unit);
  [[noreturn]] void raiseInvalidPadding(const char* function, char16_t padChar);

  void PadData(ZanStringBase& text, std::int32_t count, EJustification justification,
               char16_t padChar, bool padIsUnicode);
  void TrimData(ZanStringBase& text, ETrimType trimType, EJustification justification,
                char16_t padChar, bool padIsUnicode);
  void TrimFromTheLeft(ZanStringBase& text, std::int32_t count);
  void TrimFromTheRight(ZanStringBase& text, std::int32_t count);
  int getNumLeadingPaddingChar(const ZanStringBase& text, const char16_t* padChar);
  int getNumTrailingPaddingChar(const ZanStringBase& text, const char16_t* padChar);
  bool testPaddingChar(char16_t ch, const char16_t* padChar);

  bool CheckSign(ZanStringBase& digits, ESign sign, const char16_t* minus, const char16_t* plus);
  static bool HasALeadingMinus(const ZanStringBase& text, ESign sign, const char16_t* minus,
                               const char16_t* plus);
  static bool HasATrailingMinus(const ZanStringBase& text, ESign sign, const char16_t* minus,
                                const char16_t* plus);
  void SubstituteMinusSign(ZanStringBase& text, ESign sign, const char16_t* minus,
                           bool noStandardMinus);

  // Checks a reader's arguments (`rules` has its texts), trims the field and takes its sign off
  // into `number`; returns whether the sign was a minus. `number` is empty when the field held
  // nothing else.
  bool signedFieldNumber(const bsutils::internal::FieldReaderRules& rules, const char16_t* text,
                         std::int32_t length, ESign sign, const char16_t* minus,
                         const char16_t* plus, ETrimType trimType, EJustification justification,
                         char16_t padChar, bool padIsUnicode, ZanStringBase& number);
  // A writer's checks: the capacity, the sign strings and the sign style (0, 3 or 4).
  void checkFieldWriterArguments(const char* function, std::int32_t capacity, ESign sign,
                                 const char16_t* minus, const char16_t* plus);
  // Puts the sign and the padding around unsigned number text. A negative value without a sign
  // style raises CP_CONV_INPUT_DATA_OUT_OF_BOUNDS (inserts `noSignKind`, "string (no sign)"), a
  // text longer than `capacity` the same (inserts `fieldKind`, "string (", length, " characters)").
  ZanStringBase signedField(const char* function, const char* noSignKind, const char* fieldKind,
                            ZanStringBase text, bool negative, std::int32_t capacity, ESign sign,
                            const char16_t* minus, bool pad, EJustification justification,
                            char16_t padChar, bool padIsUnicode);
  static void storeField(const ZanStringBase& text, char16_t* out, std::int32_t& outLength);

  // ---- 3. integer text (text/datacnv_inttext.cpp) ----
  void Int64ToUString(std::int64_t value, ZanStringBase& out);
  std::int64_t UStringToInt64(const ZanStringBase& text);
  // The text of an integer field and the checks of the writers; `function` and `integerKind`
  // ("4-byte integer", "8-byte integer") name the writer in its failures.
  ZanStringBase integerField(const char* function, const char* integerKind, std::int64_t value,
                             std::int32_t capacity, ESign sign, const char16_t* minus,
                             const char16_t* plus, bool pad, EJustification justification,
                             char16_t padChar, bool padIsUnicode);
  void integerFieldToBuffer(const char* function, const char* integerKind, std::int64_t value,
                            char16_t* out, std::int32_t& outLength, ESign sign,
                            const char16_t* minus, const char16_t* plus, bool pad,
                            EJustification justification, char16_t padChar, bool padIsUnicode);
  // The readers' common body, for std::int32_t and std::int64_t.
  template <class Integer>
  Integer integerFromField(const char16_t* text, std::int32_t length, ESign sign,
                           const char16_t* minus, const char16_t* plus, ETrimType trimType,
                           EJustification justification, char16_t padChar, bool padIsUnicode);

  // ---- 4. float and decimal text fields (text/datacnv_numfield.cpp) ----
  // Float and decimal fields: the number of a field under `format`, strict checks included, into
  // `number`; false for a field with nothing in it, which only a lenient reader accepts.
  bool numberFromField(const bsutils::internal::FieldReaderRules& rules, const char16_t* text,
                       std::int32_t length, ESign sign, const char16_t* minus, const char16_t* plus,
                       ETrimType trimType, EJustification justification, char16_t padChar,
                       bool padIsUnicode, const NumericTextFormat& format,
                       bsutils::internal::ScannedNumber& number);
  // The decimal text of `number` times ten to `shift` (see StrToDec); `source` and `kind` are the
  // inserts of the out-of-bounds failure.
  ZanStringBase decimalFromNumber(const char* function, const char* kind,
                                  const bsutils::internal::ScannedNumber& number,
                                  std::int64_t shift, const ZanStringBase& source);
  // The field text of a decimal in normal form (see StrFromDec), by the format.
  ZanStringBase numberField(const char* function, const char* kind,
                            const ZanStringBase& normalDecimal, std::int32_t capacity, ESign sign,
                            const char16_t* minus, bool pad, EJustification justification,
                            char16_t padChar, bool padIsUnicode, const NumericTextFormat& format);
  // Unsigned decimal text rounded half to even, through the decimal formatter, to `digits`
  // fraction digits or, when `significant`, significant digits ("0.000124" for 0.00012355 and 3).
  ZanStringBase roundHalfEven(const ZanStringBase& magnitude, std::int32_t digits,
                              bool significant);

  // ---- 5. decimal text (text/datacnv_dectext.cpp) ----
  // Decimal text: UTF-16 digits with at most one "." (and, for isDecimalValid, an exponent).
  // True for unsigned plain or exponential text ("1e-5"); with `requirePoint`, only if it has ".".
  bool isDecimalValid(const ZanStringBase& text, bool requirePoint);
  // Accepts a sign first, one ".", digits and grouping commas; raises CP_CONV_INPUT_DATA_INVALID
  // (insert "decimal") for anything else.
  void validateDecimal(const ZanStringBase& text);
  // ".5" -> "0.5", "7." -> "7".
  void removeTrailingDecimal(ZanStringBase& text);
  // Divides unsigned digit text by ten to the power `scale` by moving the point: "12345", 2 ->
  // "123.45"; "5", 3 -> "0.005"; "1.5", -3 -> "1500". A sign would count as a digit.
  void adjustDecimalForString(ZanStringBase& text, std::int32_t scale);
  // adjustDecimalForString for text that may have a leading "-" or "+": the point moves over the
  // digits and a minus goes back in front ("-5", 2 -> "-0.05"; a plus is dropped). A zero stays
  // "0" whatever zeros a negative scale would append.
  void shiftSignedDecimal(ZanStringBase& text, std::int32_t scale);
  // Truncates at the point: "12.99" -> "12".
  void TrimFromDecimal(ZanStringBase& text);
  // Drops leading zeros, and trailing ones after a point: "0012.3400" -> "12.34", "0.50" -> ".5".
  void TrimNonSignificantZeros(ZanStringBase& text);

  // ---- 7. the standard text form (text/datacnv_standard.cpp) ----
  // The standard text form's readers for the types without a conversion of their own.
  double canonicalDoubleValue(const ZanStringBase& text);
  ZanStringBase standardDecimalText(const ZanStringBase& text);
  bool standardBooleanValue(const ZanStringBase& text);

  // ---- 10. packed decimal (binary/datacnv_packed.cpp) ----
  // Checks `count` unpacked nibbles, the sign nibble last: CP_CONV_INPUT_DATA_INVALID with
  // "packed decimal, no sign found " for a last nibble 0 to 9, "packed decimal, negative sign
  // found on unsigned data " for B or D unless `sign` is 1, "packed decimal, non-numeric data
  // found" for any other nibble above 9; the second insert is the field as the caller gave it,
  // `source`'s count / 2 bytes in hexadecimal ("0x12345d").
  void ValidatePackedDecimal(const unsigned char* nibbles, std::int32_t count, ESign sign,
                             const unsigned char* source);
  // F for sign 0, else D for a negative value, else the object's positive sign, which must be A,
  // C, E or F (CP_INTERNAL_ERROR "Invalid positive packed sign: ", value).
  void GetPackedDecimalSign(std::int16_t sign, int negative, char* nibble);
  static unsigned char LeftNibble(unsigned char byte);   // 0x5C -> 5
  static unsigned char RightNibble(unsigned char byte);  // 0x5C -> 0xC
  // A new malloc array of 2 x size nibbles in big-endian order, left nibble first, which the
  // caller frees with cpFree; null for a null source. A size below 1 raises CP_INTERNAL_ERROR
  // ("Invalid input length: ", size); a refused allocation CP_MEMORY_ALLOC_FAILURE as a
  // ZanConversionException (trace text "CPI Memory allocation failure", insert "malloc returned
  // NULL").
  unsigned char* getUnpackedBuffer(const unsigned char* source, std::int32_t size, EEndian endian);
  class UnpackedField;  // a field's nibbles, on the stack for fields of usual size
  // The readers' decimal text of a valid field; `function` names the reader in argument faults.
  ZanStringBase packedDecimalText(const char* function, const unsigned char* source,
                                  std::int32_t size, EEndian endian, std::int32_t scale,
                                  ESign sign);
  // The writers' body: packs decimal `text` into `size` bytes of `output` (checked by the caller).
  void packDecimalText(const char* function, const ZanStringBase& text, unsigned char* output,
                       std::int32_t size, EEndian endian, std::int32_t scale, ESign sign);
  // The packed and zoned writers' reading of decimal text (white space about it, an optional sign,
  // ASCII digits with at most one point; anything else, no digit included, is
  // CP_CONV_INPUT_DATA_INVALID under `function`): the magnitude times ten to `scale`, the fraction
  // truncated, as digits without leading zeros ("0" for zero, whose sign is still reported).
  // Nothing when a non-zero digit would stand `reach` places or more beyond the text's own.
  std::optional<ZanStringBase> scaledFieldDigits(const char* function, const ZanStringBase& text,
                                                 std::int32_t scale, std::int64_t reach,
                                                 bool& negative);
  // The number writers' fast path: packs `magnitude` times ten to `scale`, truncated, with the sign
  // that `negative` gives (a zero keeps it, as a written "-0" does) straight from its digits when
  // it fits, and returns false, writing nothing, for anything packDecimalText must judge or trace.
  bool packMagnitude(std::uint64_t magnitude, bool negative, unsigned char* output,
                     std::int32_t size, EEndian endian, std::int32_t scale, ESign sign);
  // The TLOG writers' checks of the size and the value, and the text of a string, decimal or
  // integer value; `kind` and `valueKind` are the inserts of the too-long failure.
  ZanStringBase tlogFieldText(const char* function, const char* kind, const char* valueKind,
                              const PWFData& value, std::int32_t size);

  // ---- 11. zoned decimal (binary/datacnv_zoned.cpp) ----
  // The readers' common body: checks the field and its form, then hands `use` the field's digits
  // ("0".."9" units, leading zeros kept), their count and the sign, read byte by byte where the
  // field allows and through the code page otherwise; returns what `use` returns.
  template <class Use>
  auto readZonedDigits(const unsigned char* source, std::int32_t size, ESign sign,
                       EJustification justification, std::int32_t padCharacter, bool padIsUnicode,
                       bool customSignEBCDIC, const char16_t* positiveSigns,
                       const char16_t* negativeSigns, Use&& use);
  // The field's value as integer text, "-" before a negative value and no leading zeros ("-123",
  // "0").
  ZanStringBase ExtDecToStr(const unsigned char* source, std::int32_t size, ESign sign,
                            EJustification justification, std::int32_t padCharacter,
                            bool padIsUnicode, bool customSignEBCDIC, const char16_t* positiveSigns,
                            const char16_t* negativeSigns);
  // Reading through the code page: the field's digits ("0".."9", leading zeros kept) into
  // `digits`; returns whether the sign was negative.
  bool zonedDigitsFromText(const unsigned char* source, std::int32_t size, ESign sign,
                           EJustification justification, char16_t padCharacter, bool padIsUnicode,
                           bool customSignEBCDIC, const char16_t* positiveSigns,
                           const char16_t* negativeSigns, ZanStringBase& digits);
  // Replaces the overpunched character at `at` by its digit and returns its sign; leaves a
  // character that carries no sign for the digit check.
  bool takeOverpunchedSign(ZanStringBase& text, std::int32_t at, bool customSignEBCDIC);
  // The writers' digits of decimal `text` for a field of `size` bytes: times ten to `scale`,
  // truncated, without leading zeros ("0" for zero, which is not negative).
  ZanStringBase zonedDigitsOf(const ZanStringBase& text, std::int32_t scale, std::int32_t size,
                              bool& negative);
  // The writers' last step: `size` bytes of `output` from unsigned digits without leading zeros
  // and their sign, the form checked by the caller.
  void writeZonedField(std::u16string_view digits, bool negative, unsigned char* output,
                       std::int32_t size, ESign sign, EJustification justification,
                       char16_t padCharacter, bool padIsUnicode, bool customSignEBCDIC,
                       const char16_t* positiveSigns, const char16_t* negativeSigns);
  // Writing through the code page: the `size` bytes of `field` from the digits and their sign.
  void zonedFieldFromText(std::u16string_view digits, bool negative, std::int32_t size, ESign sign,
                          EJustification justification, char16_t padCharacter, bool padIsUnicode,
                          bool customSignEBCDIC, const char16_t* positiveSigns,
                          const char16_t* negativeSigns, unsigned char* field);
  void checkZonedForm(const char* function, ESign sign, EJustification justification,
                      const char16_t* positiveSigns, const char16_t* negativeSigns);
  void checkSignTables(const char* function, const char16_t* positiveSigns,
                       const char16_t* negativeSigns);

  // ---- 12. floating point (binary/datacnv_float.cpp) ----
  // `value` times or divided by ten to `power`; unchanged when `power` is 0 or ten to it is too
  // small for a double (so DivideDouble never divides by zero).
  double MultiplyDouble(double value, std::int32_t power);
  double DivideDouble(double value, std::int32_t power);

  // ---- 13. date and time (datetime/datacnv_datetime.cpp) ----
  PWFDateTimeFormatter* getDateTimeFormatter();

  // ---- the object's state ----
  std::int32_t ccsid_;
  std::int32_t formatterArg3_;
  EEndian endian_;
  EFloatFmt floatFormat_;
  char16_t* formatterArg2_;  // not owned
  bool formatterArg1_;
  char16_t* formatterArg4_;  // not owned
  char positivePackedSign_;
  std::int32_t formatterArg5_;
  std::unique_ptr<CPUnicodeConverter> converter_;
  std::unique_ptr<CPUnicodeConverter> localConverter_;
  std::unique_ptr<icu::DecimalFormat> decimalFormatter_;
  std::unique_ptr<PWFDateTimeFormatter> dateTimeFormatter_;
  std::optional<bool> ccsidIsEbcdic_;  // IsCcsidEBCDIC's answer, once asked
  // The rounding the decimal formatter is set to, so that a run of fields with the same places
  // sets it once: digits, or -1 before the first use.
  std::int32_t formatterDigits_ = -1;
  bool formatterSignificant_ = false;
};

#endif  // BSUTILS_DATACONV_H
