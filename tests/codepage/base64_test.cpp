// Base64 text to and from bytes.

#include <bsutils/cpbase64converter.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <thread>
#include <tuple>
#include <utility>
#include <vector>

#include "support/expect_failure.h"

namespace {

using Bytes = std::vector<unsigned char>;

Bytes bytesOf(std::string_view text) { return Bytes(text.begin(), text.end()); }

std::string encode(const Bytes& bytes) {
  ZanStringBase text;
  CPBase64Converter::binToBase64(bytes.data(), static_cast<std::int32_t>(bytes.size()), text);
  return text.toUtf8();
}

Bytes decode(const std::u16string& text) {
  const PWFData value =
      CPBase64Converter::binFromBase64(text.data(), static_cast<std::int32_t>(text.size()));
  EXPECT_EQ(value.getDataLogicalType(), eBinary);
  EXPECT_FALSE(value.isNull());
  std::int32_t length = 0;
  const unsigned char* bytes = value.getBinaryValue(length);
  return Bytes(bytes, bytes + length);
}

void expectBase64Failure(const std::function<void()>& operation, const char* function,
                         const std::string& traceText, const std::vector<std::string>& inserts) {
  expectFailure<ZanConversionException>(operation, kInternal.symbol, kInternal.messageNumber,
                                        traceText, "base64", function, inserts);
}

constexpr const char* kDecode = "CPBase64Converter::binFromBase64";
constexpr const char* kEncode = "CPBase64Converter::binToBase64";

TEST(CPBase64Converter, RfcTestVectorsBothWays) {
  // The test vectors of RFC 4648, section 10: every padding length, alone and after a group.
  for (const auto& [bytes, text] :
       {std::pair("", u""), std::pair("f", u"Zg=="), std::pair("fo", u"Zm8="),
        std::pair("foo", u"Zm9v"), std::pair("foob", u"Zm9vYg=="),
        std::pair("fooba", u"Zm9vYmE=")}) {
    SCOPED_TRACE(bytes);
    EXPECT_EQ(encode(bytesOf(bytes)), ZanStringBase(text).toUtf8());
    EXPECT_EQ(decode(text), bytesOf(bytes));
  }
}

TEST(CPBase64Converter, EncodingAppendsOneUnbrokenLine) {
  ZanStringBase text(u"prefix:");
  const unsigned char man[] = {'M', 'a', 'n'};
  CPBase64Converter::binToBase64(man, 3, text);
  CPBase64Converter::binToBase64(nullptr, 0, text);
  EXPECT_EQ(text.toUtf8(), "prefix:TWFu");
  // Text shared with a copy, or read in place from a literal, is copied before it is written.
  const ZanStringBase shared(u"a text long enough to be held on the heap and shared: ");
  ZanStringBase copy = shared;
  ASSERT_TRUE(copy.sharesStorageWith(shared));
  ZanStringBase literal = ZanStringBase::fromLiteral(u"literal:");
  CPBase64Converter::binToBase64(man, 3, copy);
  CPBase64Converter::binToBase64(man, 3, literal);
  EXPECT_EQ(copy.toUtf8(), shared.toUtf8() + "TWFu");
  EXPECT_EQ(literal.toUtf8(), "literal:TWFu");
  // Past the 76 characters of a MIME line, still no line break.
  EXPECT_EQ(encode(Bytes(100, 0xFF)), std::string(132, '/') + "/w==");
}

TEST(CPBase64Converter, EveryByteValueRoundTrips) {
  // Each byte value at each position of a group: 256 bytes, then the same shifted by one and two.
  for (std::size_t shift = 0; shift < 3; ++shift) {
    Bytes bytes(shift, 0x00);
    for (int value = 0; value < 256; ++value) bytes.push_back(static_cast<unsigned char>(value));
    SCOPED_TRACE(shift);
    const std::string text = encode(bytes);
    EXPECT_EQ(text.size(), (bytes.size() + 2) / 3 * 4);
    EXPECT_EQ(decode(std::u16string(text.begin(), text.end())), bytes);
  }
}

TEST(CPBase64Converter, DecodingSkipsStrayUnitsAndReadsPaddingByPlace) {
  // Expected bytes by hand from the 6-bit values ("TWFu" is Man, "TWE=" Ma, "TQ==" M). The stray
  // units include characters whose low byte is an alphabet character ("A" + 0x100, "=" + 0xFF00),
  // which a table of 256 entries would take for Base64.
  // Decoding goes on after padding; padding in the third place keeps one byte, and in the first
  // two places is a zero (T=19, "="=0, E=4: 010011 000000 000100 -> 0x4C 0x01).
  const std::pair<std::u16string, Bytes> cases[] = {
      {u"TWFu\r\nTWE=", bytesOf("ManMa")},
      {u" T W\tF u ", bytesOf("Man")},
      {u"T\u0141W\u00E9F\uFF1Du\uFFFF", bytesOf("Man")},
      {u"-_.!\u0100" + std::u16string(1, char16_t{0xD800}), {}},
      {u"TQ==TQ==", bytesOf("MM")},
      {u"TQ=A", bytesOf("M")},
      {u"T=E=", {0x4C, 0x01}},
  };
  for (const auto& [text, bytes] : cases) {
    EXPECT_EQ(decode(text), bytes) << ZanStringBase(text.c_str()).toUtf8();
  }
}

TEST(CPBase64Converter, IncompleteGroupIsRefused) {
  for (const std::u16string text : {u"TWE", u"TWFuT", u"T\r\nWE \u0100"}) {
    SCOPED_TRACE(ZanStringBase(text.c_str()).toUtf8());
    expectBase64Failure([&] { decode(text); }, kDecode, "Input data incomplete", {});
  }
}

TEST(CPBase64Converter, NullAndNegativeArgumentsAreRefused) {
  ZanStringBase text(u"kept");
  const unsigned char byte = 0;
  const std::string badLength = "Invalid input length: ";
  // INT32_MAX: its text would pass the longest string there can be; refused before a byte is read.
  const std::tuple<std::function<void()>, const char*, std::vector<std::string>> cases[] = {
      {[&] { CPBase64Converter::binToBase64(nullptr, 1, text); }, kEncode, {"Null input pointer"}},
      {[&] { CPBase64Converter::binToBase64(&byte, -1, text); }, kEncode, {badLength, "-1"}},
      {[&] { CPBase64Converter::binToBase64(&byte, INT32_MAX, text); },
       kEncode,
       {badLength, "2147483647"}},
      {[] { CPBase64Converter::binFromBase64(nullptr, 4); }, kDecode, {"Null input pointer"}},
      {[] { CPBase64Converter::binFromBase64(u"TWFu", -4); }, kDecode, {badLength, "-4"}},
  };
  for (const auto& [operation, function, inserts] : cases) {
    expectBase64Failure(operation, function, kInternal.traceText, inserts);
  }
  EXPECT_EQ(text.toUtf8(), "kept");
  EXPECT_TRUE(decode(std::u16string()).empty());
  EXPECT_EQ(CPBase64Converter::binFromBase64(nullptr, 0).getDataLength(), 0);
}

TEST(CPBase64Converter, TablesBuiltByRacingThreadsDecodeAlike) {
  // The first use of the decode table may come from several threads at once; each must see it
  // whole. ctest runs every test in a process of its own, so there these threads meet the first
  // use.
  std::vector<Bytes> results(4);
  std::vector<std::thread> threads;
  for (Bytes& result : results) {
    threads.emplace_back([&result] { result = decode(u"Zm9vYmFy"); });
  }
  for (std::thread& thread : threads) thread.join();
  for (const Bytes& result : results) EXPECT_EQ(result, bytesOf("foobar"));
}

}  // namespace
