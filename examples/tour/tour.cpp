// The five-minute tour: one converter per message, a field read into a typed value, and a bad
// field rejected with the message, the reason and the values.
#include <bsutils/bsutils.h>  // every public header

#include <iostream>

int main() {
  DataCnv cnv(37, BigEndian, HFPFloat);  // one per message: EBCDIC US, big-endian, HFP floats
  const unsigned char field[] = {0x00, 0x01, 0x23, 0x45, 0x6C};  // packed decimal, scale 2
  const PWFData amount = cnv.PckdDecToDec(field, 5, BigEndian, 2, DataCnv::eLeadingEmbeddedSign);
  std::cout << cnv.StandardStrFromData(amount).getPWFStringValue().toUtf8() << '\n';
  try {
    cnv.PckdDecToDec(field, 4, BigEndian, 2, DataCnv::eLeadingEmbeddedSign);  // no sign nibble
  } catch (const ZanException& failure) {
    std::cout << failure.traceText();
    for (const std::string& insert : failure.inserts()) std::cout << " [" << insert << ']';
    std::cout << '\n';
  }
  std::cout << "bsutils " << BSUTILS_VERSION_STRING << '\n';
}
