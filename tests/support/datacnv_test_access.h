#ifndef BSUTILS_TESTS_DATACNV_TEST_ACCESS_H
#define BSUTILS_TESTS_DATACNV_TEST_ACCESS_H

// The tests' one way in to DataCnv's private helpers, which other conversions build on and which
// the tests check directly. DataCnv names this class a friend; nothing outside the tests defines
// it, so the public interface stays as it is.

#include <bsutils/dataconv.h>

class DataCnvTestAccess {
 public:
  using ESign = DataCnv::ESign;
  using EJustification = DataCnv::EJustification;
  using ETrimType = DataCnv::ETrimType;

  static CPUnicodeConverter* getLocalConverter(DataCnv& cnv) { return cnv.getLocalConverter(); }
  static icu::DecimalFormat* getDecimalFormatter(DataCnv& cnv) { return cnv.getDecimalFormatter(); }
  static std::int32_t ChToHex(DataCnv& cnv, char c) { return cnv.ChToHex(c); }
  static std::int32_t PWFChToHex(DataCnv& cnv, char16_t c) { return cnv.PWFChToHex(c); }
  static const char16_t* formatterArg2(const DataCnv& cnv) { return cnv.formatterArg2_; }
  static const char16_t* formatterArg4(const DataCnv& cnv) { return cnv.formatterArg4_; }

  static void TrimData(DataCnv& cnv, ZanStringBase& text, ETrimType trimType,
                       EJustification justification, char16_t padChar, bool padIsUnicode) {
    cnv.TrimData(text, trimType, justification, padChar, padIsUnicode);
  }
  static void PadData(DataCnv& cnv, ZanStringBase& text, std::int32_t count,
                      EJustification justification, char16_t padChar, bool padIsUnicode) {
    cnv.PadData(text, count, justification, padChar, padIsUnicode);
  }
  static bool CheckSign(DataCnv& cnv, ZanStringBase& digits, ESign sign, const char16_t* minus,
                        const char16_t* plus) {
    return cnv.CheckSign(digits, sign, minus, plus);
  }
  static bool HasALeadingMinus(const ZanStringBase& text, const char16_t* minus) {
    return DataCnv::HasALeadingMinus(text, DataCnv::eLeadingSeparateSign, minus, nullptr);
  }
  static bool HasATrailingMinus(const ZanStringBase& text, const char16_t* minus) {
    return DataCnv::HasATrailingMinus(text, DataCnv::eTrailingSeparateSign, minus, nullptr);
  }
  static void SubstituteMinusSign(DataCnv& cnv, ZanStringBase& text, ESign sign,
                                  const char16_t* minus, bool noStandardMinus) {
    cnv.SubstituteMinusSign(text, sign, minus, noStandardMinus);
  }

  static void Int64ToUString(DataCnv& cnv, std::int64_t value, ZanStringBase& out) {
    cnv.Int64ToUString(value, out);
  }
  static std::int64_t UStringToInt64(DataCnv& cnv, const ZanStringBase& text) {
    return cnv.UStringToInt64(text);
  }

  static bool isDecimalValid(DataCnv& cnv, const ZanStringBase& text, bool requirePoint) {
    return cnv.isDecimalValid(text, requirePoint);
  }
  static void validateDecimal(DataCnv& cnv, const ZanStringBase& text) {
    cnv.validateDecimal(text);
  }
  static void removeTrailingDecimal(DataCnv& cnv, ZanStringBase& text) {
    cnv.removeTrailingDecimal(text);
  }
  static void adjustDecimalForString(DataCnv& cnv, ZanStringBase& text, std::int32_t scale) {
    cnv.adjustDecimalForString(text, scale);
  }
  static void TrimFromDecimal(DataCnv& cnv, ZanStringBase& text) { cnv.TrimFromDecimal(text); }
  static void TrimNonSignificantZeros(DataCnv& cnv, ZanStringBase& text) {
    cnv.TrimNonSignificantZeros(text);
  }

  // Zoned decimal.
  // The general reader and writer, which the byte-by-byte paths must agree with.
  static bool zonedDigitsFromText(DataCnv& cnv, const unsigned char* source, std::int32_t size,
                                  ESign sign, bool customSignEBCDIC, ZanStringBase& digits) {
    return cnv.zonedDigitsFromText(source, size, sign, DataCnv::eRightJustified, u'0', true,
                                   customSignEBCDIC, nullptr, nullptr, digits);
  }
  static void zonedFieldFromText(DataCnv& cnv, const ZanStringBase& digits, bool negative,
                                 std::int32_t size, ESign sign, bool customSignEBCDIC,
                                 unsigned char* field) {
    cnv.zonedFieldFromText({digits.data(), static_cast<std::size_t>(digits.length())}, negative,
                           size, sign, DataCnv::eRightJustified, u'0', true, customSignEBCDIC,
                           nullptr, nullptr, field);
  }
};

#endif  // BSUTILS_TESTS_DATACNV_TEST_ACCESS_H
