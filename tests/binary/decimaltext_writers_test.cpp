// The writers that take decimal text read it by one grammar: white space about it, an optional
// sign, ASCII digits with at most one point. A text without a digit is no value: each writer
// refuses it with its kind ("decimal", "double" for the float writer) and the text, except the
// integer writer, whose plain reading gives 0 for an empty text or a lone sign. The packed and
// zoned writers share the reading and the scaling, so they agree on every text of a table.

#include <bsutils/dataconv.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <vector>

#include "support/outcome.h"

namespace {

constexpr std::int32_t kInvalid = static_cast<std::int32_t>(0xC0001581);

using Writer = std::vector<unsigned char> (*)(DataCnv&, const std::u16string&);

std::vector<unsigned char> writePacked(DataCnv& cnv, const std::u16string& text) {
  std::vector<unsigned char> field(4);
  std::int32_t size = 4;
  cnv.PckdDecFromDec(text.c_str(), field.data(), size, BigEndian, 0, DataCnv::eLeadingEmbeddedSign);
  return field;
}

std::vector<unsigned char> writeZoned(DataCnv& cnv, const std::u16string& text) {
  std::vector<unsigned char> field(4);
  std::int32_t size = 4;
  cnv.ExtDecFromDec(text.c_str(), field.data(), size, 0, DataCnv::eTrailingEmbeddedSign,
                    DataCnv::eRightJustified, u'0', true, false, nullptr, nullptr);
  return field;
}

std::vector<unsigned char> writeFloat(DataCnv& cnv, const std::u16string& text) {
  std::vector<unsigned char> field(8);
  std::int32_t size = 8;
  cnv.FltFromDec(text.c_str(), field.data(), size, 0);
  return field;
}

std::vector<unsigned char> writeInteger(DataCnv& cnv, const std::u16string& text) {
  std::vector<unsigned char> field(4);
  std::int32_t size = 4;
  cnv.IntFromDec(text.c_str(), field.data(), size, 0);
  return field;
}

TEST(DecimalTextWriters, TextWithoutDigitsIsNoValue) {
  const std::u16string texts[] = {u"", u" ", u".", u"-", u"+", u"-.", u" . "};
  const Writer refusing[] = {writePacked, writeZoned, writeFloat};
  for (const std::u16string& text : texts) {
    SCOPED_TRACE(ZanStringBase(text.c_str()).toUtf8());
    for (const Writer write : refusing) {
      DataCnv cnv(37, BigEndian, IEEEFloat);
      const Outcome outcome = outcomeOf([&] { return write(cnv, text); });
      ASSERT_TRUE(outcome.failed);
      EXPECT_EQ(outcome.messageNumber, kInvalid);
      // The float writer's character check, which knows no white space, answers before its
      // reading: "decimal" alone.
      const bool byCharacterCheck = write == writeFloat && text.find(u' ') != std::u16string::npos;
      const std::string given = ZanStringBase(text.c_str()).toUtf8();
      const std::vector<std::string> inserts =
          byCharacterCheck
              ? std::vector<std::string>{"decimal"}
              : std::vector<std::string>{write == writeFloat ? "double" : "decimal", given};
      EXPECT_EQ(outcome.inserts, inserts);
    }
  }
  // The integer writer's plain reading: an empty text and a lone sign are 0.
  for (const std::u16string text : {u"", u" ", u".", u"-", u"+"}) {
    DataCnv cnv;
    EXPECT_EQ(outcomeOf([&] { return writeInteger(cnv, text); }).value, "00000000");
  }
}

TEST(DecimalTextWriters, PackedAndZonedReadTheSameDigits) {
  struct Row {
    std::u16string text;
    const char* packed;  // 4 bytes, signed, scale 0
    const char* zoned;   // 4 EBCDIC bytes, the sign in the last zone
  };
  const Row rows[] = {
      {u"12", "0000012C", "F0F0F1F2"},
      {u"  -12.9 ", "0000012D", "F0F0F1D2"},
      {u"+0.5", "0000000C", "F0F0F0F0"},
      {u"-0", "0000000D", "F0F0F0F0"},  // a packed zero keeps its sign; a zoned one has none
      {u"7.", "0000007C", "F0F0F0F7"},
      {u".75", "0000000C", "F0F0F0F0"},
      {u"0001234", "0001234C", "F1F2F3F4"},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(ZanStringBase(row.text.c_str()).toUtf8());
    DataCnv cnv(37, BigEndian);
    EXPECT_EQ(outcomeOf([&] { return writePacked(cnv, row.text); }).value, row.packed);
    EXPECT_EQ(outcomeOf([&] { return writeZoned(cnv, row.text); }).value, row.zoned);
  }
  // Text outside the grammar fails in both, with the text as given.
  for (const std::u16string text : {u"1,000", u"1e3", u"1.2.3", u"--1", u"1 2", u"0x10"}) {
    SCOPED_TRACE(ZanStringBase(text.c_str()).toUtf8());
    DataCnv cnv(37, BigEndian);
    for (const Writer write : {writePacked, writeZoned}) {
      const Outcome outcome = outcomeOf([&] { return write(cnv, text); });
      EXPECT_EQ(outcome.messageNumber, kInvalid);
      EXPECT_EQ(outcome.inserts,
                (std::vector<std::string>{"decimal", ZanStringBase(text.c_str()).toUtf8()}));
    }
  }
}

}  // namespace
