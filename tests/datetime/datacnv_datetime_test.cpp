// The converter object's date-time members: the formatter's answers under the object's settings,
// and packed decimals of date-time digits.

#include <bsutils/dataconv.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <string>

#include "datetime/datetime_support.h"
#include "support/field_conventions.h"

namespace {

using namespace datetime_test;

// The object takes writable text, which it copies and does not write.
char16_t* writable(const char16_t* text) { return const_cast<char16_t*>(text); }

void setProperties(DataCnv& cnv, const Settings& s) {
  cnv.setDateTimeProperties(s.window, writable(s.zone), writable(s.locale), s.minimalDays,
                            s.strict);
}

TEST(DataCnvDateTime, SettingsComeFromTheConstructorOrTheSetterBeforeFirstUse) {
  for (const Settings& s : kSettings) {
    SCOPED_TRACE(s.name);
    DataCnv constructed(1200, LittleEndian, IEEEFloat, s.window, writable(s.zone),
                        writable(s.locale), s.minimalDays, s.strict);
    EXPECT_EQ(effects(constructed, kConverter), s.effects);
    DataCnv set;
    setProperties(set, s);
    EXPECT_EQ(effects(set, kConverter), s.effects);
    // Once created, the formatter is kept with the settings it was created with.
    DataCnv used;
    used.StrToDateTime(u"2023", -1, u"yyyy");
    setProperties(used, s);
    EXPECT_EQ(effects(used, kConverter), kSettings[0].effects);
  }
  // A zone that does not exist is refused at the first date-time conversion.
  DataCnv bad(1200, LittleEndian, IEEEFloat, 53, writable(u"Mars/Olympus"));
  expectDateTimeFailure([&] { bad.StrToDateTime(u"2023", -1, u"yyyy"); }, kTimezone,
                        {"Mars/Olympus"});
}

TEST(DataCnvDateTime, NumbersSinceAnEpochAgainstZoneinfo) {
  for (const Instant& row : kInstants) {
    SCOPED_TRACE(row.name);
    DataCnv cnv(1200, BigEndian, IEEEFloat, 53, writable(row.zone));
    expectInstant(cnv, kConverter, row);
  }
}

TEST(DataCnvDateTime, TextAndBinaryRecords) {
  DataCnv cnv(1200, BigEndian);
  expectRecord(cnv.StrToDateTime(u"20230409", 8, u"yyyyMMdd"), date(2023, 4, 9));
  // Little-endian fields whatever the object's byte order.
  const Bytes record = {0xE7, 0x07, 0x04, 0x00, 0x09, 0x00};
  EXPECT_EQ(cnv.BinaryToDateTime(record.data(), 6, u"yyMMdd").year, 2023);
  Bytes written(6, 0xEE);
  cnv.BinaryFromDateTime(date(2023, 4, 9), written.data(), 6, u"yyMMdd");
  EXPECT_EQ(written, record);
}

TEST(DataCnvDateTime, PackedDecimalsOfDateTimeDigits) {
  // By hand: "0" digits put before the field's or taken off it, up to the pattern's length.
  struct Row {
    const char* name;
    const char16_t* pattern;
    Bytes bytes;
    EEndian endian;
    PWFDateTime value;
  };
  const Row rows[] = {
      {"nine digits for eight",
       u"yyyyMMdd",
       {0x02, 0x02, 0x30, 0x40, 0x9F},
       BigEndian,
       date(2023, 4, 9)},
      {"little-endian",
       u"yyyyMMdd",
       {0x9F, 0x40, 0x30, 0x02, 0x02},
       LittleEndian,
       date(2023, 4, 9)},
      {"seven digits for eight", u"yyyyMMdd", {0x99, 0x90, 0x40, 0x9F}, BigEndian, date(999, 4, 9)},
      {"five digits for six", u"HHmmss", {0x93, 0x05, 0x9F}, BigEndian, timeOfDay(9, 30, 59)},
  };
  DataCnv cnv;
  for (const Row& row : rows) {
    SCOPED_TRACE(row.name);
    std::int32_t length = static_cast<std::int32_t>(row.bytes.size());
    expectRecord(
        cnv.PckdDecToDateTime(row.bytes.data(), length, row.endian, 0, kUnsigned, row.pattern),
        row.value);
    Bytes written(row.bytes.size(), 0xEE);
    cnv.PckdDecFromDateTime(row.value, written.data(), length, row.pattern, row.endian, 0,
                            kUnsigned);
    EXPECT_EQ(written, row.bytes);
    EXPECT_EQ(length, static_cast<std::int32_t>(row.bytes.size()));
  }
}

}  // namespace
