// A first tour of bsutils: typed values, byte buffers, code pages, text fields, number fields,
// dumps and failures.

#include <bsutils/bsutils.h>

#include <cstdint>
#include <iostream>
#include <sstream>
#include <string>

namespace {

const char* typeName(ELogicalType type) {
  switch (type) {
    case eNothing:
      return "nothing";
    case eString:
      return "string";
    case eInteger:
      return "integer";
    case eFloat:
      return "float";
    case eBinary:
      return "binary";
    case eBoolean:
      return "boolean";
    case eInterval:
      return "interval";
    case eDateTime:
      return "date-time";
    case eDecimal:
      return "decimal";
  }
  return "unknown";
}

void show(const char* label, const PWFData& value, const std::string& readBack) {
  std::cout << "  " << label << ": type " << typeName(value.getDataLogicalType()) << " ("
            << value.getDataLogicalType() << "), " << value.getDataLength() << " bytes"
            << (value.isNull() ? ", null" : "") << " -> " << readBack << '\n';
}

std::string utf8(const char16_t* units, std::int32_t length) {
  return ZanStringBase(units, length).toUtf8();
}

void typedValues() {
  std::cout << "Typed values, built and read back:\n";
  const PWFData nothing;
  show("nothing", nothing, nothing.isNothing() ? "(nothing)" : "?");

  const PWFData text(
      ZanStringBase::fromUtf8("Gr\xC3\xBC\xC3\x9F"
                              "e"));
  show("string", text, text.getPWFStringValue().toUtf8());

  const PWFData small(std::int32_t{-42});
  const PWFData large(std::int64_t{9007199254740993});
  show("integer (4 bytes)", small, std::to_string(small.getInt32Value()));
  show("integer (8 bytes)", large, std::to_string(large.getInt64Value()));

  const PWFData real(2.5);
  show("float", real, std::to_string(real.getDoubleValue()));

  const unsigned char bytes[] = {0xCA, 0xFE, 0xBA, 0xBE};
  const PWFData binary(bytes, 4, eBinary, eCopy);
  std::int32_t binaryLength = 0;
  const unsigned char* binaryBytes = binary.getBinaryValue(binaryLength);
  show("binary", binary, CPUtils::binaryDump(binaryBytes, binaryLength));

  const PWFData flag(true);
  show("boolean", flag, flag.getBoolValue() ? "true" : "false");

  const PWFData interval(PWFInterval{1, 6, 3LL * 86400000000LL, 0});
  const PWFInterval i = interval.getIntervalValue();
  show("interval", interval,
       std::to_string(i.years) + " years " + std::to_string(i.months) + " months " +
           std::to_string(i.microseconds / 86400000000LL) + " days");

  const PWFDateTime leapDay{1, 2004, 2, 29, 13, 5, 9, 123, 3, 3600000, 0};
  const PWFData when(leapDay);
  show("date-time", when, CPUtils::pwfDateTimeDump(when.getDateTimeValue()));

  const PWFData decimal(u"-1234.50", eDecimal);
  show("decimal", decimal, decimal.getDecimalText().toUtf8());

  const PWFData nullInteger(eInteger);
  show("null integer", nullInteger, "(no value)");

  std::cout << "  4-byte 5 == 8-byte 5: "
            << (PWFData(std::int32_t{5}) == PWFData(std::int64_t{5}) ? "yes" : "no") << '\n';
  std::cout << "  12 months == 1 year: "
            << (PWFData(PWFInterval{0, 12, 0, 0}) == PWFData(PWFInterval{1, 0, 0, 0}) ? "yes"
                                                                                      : "no")
            << "\n\n";
}

void buffers() {
  std::cout << "A byte buffer filled, then read through a reader:\n";
  ReadWriteByteBuffer buffer;
  const unsigned char header[] = {0x00, 0x00, 0x01, 0x2C};  // 300, big-endian
  buffer.append(header, sizeof header);
  unsigned char* room = buffer.appendLock(5);
  for (int i = 0; i < 5; ++i) room[i] = static_cast<unsigned char>(0xC1 + i);  // EBCDIC "ABCDE"
  buffer.release(5);
  std::cout << "  buffer: " << buffer.getLength() << " bytes, capacity " << buffer.capacity()
            << '\n';

  BitstreamBufferReader reader(&buffer);
  const unsigned char* field = reader.readData(4);
  const std::int32_t count = (field[0] << 24) | (field[1] << 16) | (field[2] << 8) | field[3];
  std::cout << "  first field, 4 bytes big-endian: " << count << '\n';
  const unsigned char* rest = reader.readData(5);
  std::cout << "  second field, 5 bytes: " << CPUtils::binaryDump(rest, 5) << '\n';
  std::cout << "  a read past the end gives " << (reader.readData(1) == nullptr ? "null" : "bytes")
            << ", offset stays at " << reader.getCurOffset() << '\n';
  std::cout << "  whole buffer: "
            << CPUtils::binaryDump(static_cast<const unsigned char*>(buffer.getData(0)),
                                   buffer.getLength())
            << "\n\n";
}

void codePages() {
  std::cout << "One text in a few real code pages, and back:\n";
  const ZanStringBase text = ZanStringBase::fromUtf8(
      "Gr\xC3\xBC\xC3\x9F"
      "e [42]");
  struct Page {
    const char* name;
    std::int32_t ccsid;
    EEndian endian;
  };
  const Page pages[] = {
      {"EBCDIC US (37)", 37, BigEndian},       {"EBCDIC Germany (273)", 273, BigEndian},
      {"Latin-1 (819)", 819, BigEndian},       {"UTF-8 (1208)", 1208, LittleEndian},
      {"UTF-16LE (1200)", 1200, LittleEndian}, {"UTF-16BE (1200)", 1200, BigEndian}};
  for (const Page& page : pages) {
    DataCnv cnv(page.ccsid, page.endian);
    unsigned char bytes[64];
    std::int32_t size = sizeof bytes;
    cnv.fromUnicodeString(text, bytes, size);
    ZanStringBase back;
    cnv.toUnicodeString(back, bytes, size);
    std::cout << "  " << page.name << (cnv.IsCcsidEBCDIC() ? ", EBCDIC" : "") << ": "
              << CPUtils::binaryDump(bytes, size) << " -> \"" << back.toUtf8() << "\"\n";
  }
  std::cout << '\n';
}

void textFields() {
  std::cout << "An integer field with a custom trailing sign, read and written:\n";
  DataCnv cnv;
  const char16_t field[] = u"   1250CR";
  const std::int32_t value =
      cnv.StrToInt32(field, 9, DataCnv::eTrailingSeparateSign, u"CR", u"", DataCnv::eTrimWhiteSpace,
                     DataCnv::eRightJustified, u' ', true);
  std::cout << "  \"" << utf8(field, 9) << "\" reads as " << value << '\n';

  char16_t out[9];
  std::int32_t outLength = 9;
  cnv.StrFromInt32(value - 1, out, outLength, DataCnv::eTrailingSeparateSign, u"CR", u"", true,
                   DataCnv::eRightJustified, u' ', true);
  std::cout << "  " << value - 1 << " writes as \"" << utf8(out, outLength) << "\"\n";

  // A digit pad character goes between the sign and the digits.
  outLength = 9;
  cnv.StrFromInt32(-42, out, outLength, DataCnv::eLeadingSeparateSign, u"-", u"+", true,
                   DataCnv::eRightJustified, u'0', true);
  std::cout << "  -42 in a zero-padded field: \"" << utf8(out, outLength) << "\"\n\n";
}

void numberFields() {
  std::cout << "Decimal and float fields in their numeric forms:\n";
  DataCnv cnv;
  // A European amount with a decimal comma, read exactly and written back with two places.
  const NumericTextFormat comma{u',', eExplicitDecimalPoint, 2, true};
  const char16_t amount[] = u"  -1234,50";
  const PWFData decimal =
      cnv.StrToDec(amount, 10, DataCnv::eLeadingSeparateSign, u"-", u"+", DataCnv::eTrimWhiteSpace,
                   DataCnv::eRightJustified, u' ', true, comma);
  std::cout << "  \"" << utf8(amount, 10) << "\" reads as the decimal "
            << decimal.getDecimalText().toUtf8() << '\n';

  char16_t out[12];
  std::int32_t outLength = 8;
  cnv.StrFromDec(ZanStringBase(u"-2.665"), out, outLength, DataCnv::eLeadingSeparateSign, u"-",
                 u"+", true, DataCnv::eRightJustified, u' ', true, comma);
  std::cout << "  -2.665 with two places, half to even: \"" << utf8(out, outLength) << "\"\n";

  // A virtual decimal point: the field holds cents.
  const NumericTextFormat cents{u'.', eVirtualDecimalPoint, 2, true};
  const double value = cnv.StrToDbl(u"0001999", 7, DataCnv::eNoSign, u"-", u"+", DataCnv::eNoTrim,
                                    DataCnv::eRightJustified, u' ', true, cents);
  std::cout << "  \"0001999\" with two virtual places reads as " << value << '\n';

  outLength = 12;
  cnv.StrFromDbl(-0.00012355, out, outLength, DataCnv::eLeadingSeparateSign, u"-", u"+", false,
                 DataCnv::eRightJustified, u' ', true,
                 NumericTextFormat{u'.', eExponentialNumeric, 2, false});
  std::cout << "  -0.00012355 in exponential form with two places: \"" << utf8(out, outLength)
            << "\"\n";

  // A strict reader names what is wrong with the text.
  try {
    cnv.StrToDec(u"1234.5", 6, DataCnv::eLeadingSeparateSign, u"-", u"+", DataCnv::eNoTrim,
                 DataCnv::eRightJustified, u' ', true, comma);
  } catch (const ZanConversionException& e) {
    std::cout << "  \"1234.5\" as a comma field: " << e.traceText() << "\n\n";
  }
}

void mainframeRecord() {
  std::cout << "A mainframe record decoded field by field (EBCDIC 37, big-endian, HFP floats):\n";
  // A name, a binary customer number, a packed amount with two places, a zoned balance with its
  // sign in the zone of the last digit, and a rate as a 4-byte hexadecimal float.
  const unsigned char record[] = {0xC1, 0xC3, 0xD4, 0xC5, 0x40, 0xC3, 0xD6, 0x40,  // "ACME CO "
                                  0x00, 0x00, 0x04, 0xD2,                          // 1234
                                  0x00, 0x01, 0x23, 0x45, 0x6C,                    // 1234.56
                                  0xF0, 0xF0, 0xF1, 0xF2, 0xF3, 0xF4, 0xD5,        // -12345
                                  0xC1, 0x28, 0x00, 0x00};                         // -2.5
  DataCnv cnv(37, BigEndian, HFPFloat);
  const auto field = [&](const char* label, std::int32_t offset, std::int32_t size,
                         const std::string& value) {
    std::cout << "  " << label << CPUtils::binaryDump(record + offset, size) << " -> " << value
              << '\n';
  };
  ZanStringBase name;
  cnv.toUnicodeString(name, record, 8);
  field("text, 8 bytes:           ", 0, 8, '"' + name.toUtf8() + '"');
  field("binary integer, 4 bytes: ", 8, 4,
        std::to_string(cnv.IntToInt32(record + 8, 4, DataCnv::eLeadingEmbeddedSign)));
  const PWFData amount =
      cnv.PckdDecToDec(record + 12, 5, BigEndian, 2, DataCnv::eLeadingEmbeddedSign);
  field("packed decimal, scale 2: ", 12, 5, amount.getDebugString().getPWFStringValue().toUtf8());
  field("zoned, trailing sign:    ", 17, 7,
        std::to_string(cnv.ExtDecToInt64(record + 17, 7, DataCnv::eTrailingEmbeddedSign,
                                         DataCnv::eRightJustified, u'0', true, false, nullptr,
                                         nullptr)));
  std::ostringstream rate;
  rate << cnv.FltToDbl(record + 24, 4);
  field("HFP float, 4 bytes:      ", 24, 4, rate.str());

  // Written back, the amount gives the same bytes.
  unsigned char packed[5];
  std::int32_t size = 5;
  cnv.PckdDecFromDec(amount.getDecimalText().terminatedData(), packed, size, BigEndian, 2,
                     DataCnv::eLeadingEmbeddedSign);
  std::cout << "  the amount written back: " << CPUtils::binaryDump(packed, 5) << "\n\n";
}

void failure() {
  std::cout << "A failure, caught and printed:\n";
  try {
    const PWFData wide(std::int64_t{5000000000});
    std::cout << wide.getInt32Value() << '\n';
  } catch (const ZanException& e) {
    std::cout << "  class:          " << e.className() << '\n'
              << "  message number: 0x" << std::hex << std::uppercase
              << static_cast<std::uint32_t>(e.messageNumber()) << std::dec << '\n'
              << "  trace text:     " << e.traceText() << '\n'
              << "  inserts:       ";
    for (const std::string& insert : e.inserts()) std::cout << " [" << insert << "]";
    std::cout << "\n  raised in:      " << e.function() << " (" << e.sourceModule() << ")\n"
              << "  what():         " << e.what() << '\n';
  }
}

}  // namespace

int main() {
  typedValues();
  buffers();
  codePages();
  textFields();
  numberFields();
  mainframeRecord();
  failure();
  return 0;
}
