// Date-times: a yyyyMMdd text field, seconds since 1970, and a "y+1900Md" binary record, each read
// by the library (through ICU's calendar) beside a hand-written floor that reads and validates the
// same field with plain arithmetic. Each floor is checked against the library before timing.

#include <benchmark/benchmark.h>
#include <bsutils/dataconv.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>

namespace {

struct Civil {
  std::int32_t year, month, day, hour, minute, second;
};

bool isLeap(std::int32_t year) { return (year % 4 == 0 && year % 100 != 0) || year % 400 == 0; }

std::int32_t daysIn(std::int32_t year, std::int32_t month) {
  static constexpr std::int32_t kDays[] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
  return month == 2 && isLeap(year) ? 29 : kDays[month - 1];
}

// "20230409": eight digits, month and day in range; false for anything else.
bool floorText(const char16_t* text, Civil& out) {
  std::int32_t digits[8];
  for (int i = 0; i < 8; ++i) {
    if (text[i] < u'0' || text[i] > u'9') return false;
    digits[i] = text[i] - u'0';
  }
  out = {digits[0] * 1000 + digits[1] * 100 + digits[2] * 10 + digits[3],
         digits[4] * 10 + digits[5],
         digits[6] * 10 + digits[7],
         0,
         0,
         0};
  return out.month >= 1 && out.month <= 12 && out.day >= 1 &&
         out.day <= daysIn(out.year, out.month);
}

// Days since 1970-01-01 to a civil date, the era-based algorithm for the proleptic Gregorian
// calendar.
Civil floorSeconds(std::int64_t seconds) {
  std::int64_t days = seconds / 86400;
  std::int64_t rest = seconds % 86400;
  if (rest < 0) {
    rest += 86400;
    --days;
  }
  days += 719468;
  const std::int64_t era = (days >= 0 ? days : days - 146096) / 146097;
  const std::int64_t dayOfEra = days - era * 146097;
  const std::int64_t yearOfEra =
      (dayOfEra - dayOfEra / 1460 + dayOfEra / 36524 - dayOfEra / 146096) / 365;
  const std::int64_t dayOfYear = dayOfEra - (365 * yearOfEra + yearOfEra / 4 - yearOfEra / 100);
  const std::int64_t monthIndex = (5 * dayOfYear + 2) / 153;
  const auto day = static_cast<std::int32_t>(dayOfYear - (153 * monthIndex + 2) / 5 + 1);
  const auto month = static_cast<std::int32_t>(monthIndex < 10 ? monthIndex + 3 : monthIndex - 9);
  const auto year = static_cast<std::int32_t>(yearOfEra + era * 400 + (month <= 2 ? 1 : 0));
  return {year,
          month,
          day,
          static_cast<std::int32_t>(rest / 3600),
          static_cast<std::int32_t>(rest / 60 % 60),
          static_cast<std::int32_t>(rest % 60)};
}

bool floorBinary(const unsigned char* record, Civil& out) {
  out = {static_cast<std::int8_t>(record[0]) + 1900,
         static_cast<std::int8_t>(record[1]),
         static_cast<std::int8_t>(record[2]),
         0,
         0,
         0};
  return out.month >= 1 && out.month <= 12 && out.day >= 1 &&
         out.day <= daysIn(out.year, out.month);
}

bool agrees(const PWFDateTime& value, const Civil& civil) {
  return value.year == civil.year && value.month == civil.month && value.day == civil.day &&
         (value.hour == PWFDateTime::kNotSet ||
          (value.hour == civil.hour && value.minute == civil.minute &&
           value.second == civil.second));
}

void requireAgreement(bool agree, const char* what) {
  if (!agree) {
    std::fprintf(stderr, "%s: the floor and the library disagree\n", what);
    std::abort();
  }
}

constexpr const char16_t* kText = u"20230409";
constexpr std::int32_t kSeconds = 1681045509;  // 2023-04-09T13:05:09Z
constexpr unsigned char kRecord[] = {123, 4, 9};

void BM_DateTimeTextFloor(benchmark::State& state) {
  Civil civil{};
  for (auto _ : state) {
    benchmark::DoNotOptimize(floorText(kText, civil));
    benchmark::DoNotOptimize(civil);
  }
}
BENCHMARK(BM_DateTimeTextFloor);

void BM_DateTimeText(benchmark::State& state) {
  DataCnv cnv;
  Civil civil{};
  requireAgreement(
      floorText(kText, civil) && agrees(cnv.StrToDateTime(kText, 8, u"yyyyMMdd"), civil), "text");
  for (auto _ : state) benchmark::DoNotOptimize(cnv.StrToDateTime(kText, 8, u"yyyyMMdd"));
}
BENCHMARK(BM_DateTimeText);

void BM_DateTimeSecondsFloor(benchmark::State& state) {
  for (auto _ : state) benchmark::DoNotOptimize(floorSeconds(kSeconds));
}
BENCHMARK(BM_DateTimeSecondsFloor);

void BM_DateTimeSeconds(benchmark::State& state) {
  DataCnv cnv;
  requireAgreement(agrees(cnv.SecondsToDateTime(kSeconds, nullptr), floorSeconds(kSeconds)),
                   "seconds");
  for (auto _ : state) benchmark::DoNotOptimize(cnv.SecondsToDateTime(kSeconds, nullptr));
}
BENCHMARK(BM_DateTimeSeconds);

void BM_DateTimeBinaryFloor(benchmark::State& state) {
  Civil civil{};
  for (auto _ : state) {
    benchmark::DoNotOptimize(floorBinary(kRecord, civil));
    benchmark::DoNotOptimize(civil);
  }
}
BENCHMARK(BM_DateTimeBinaryFloor);

void BM_DateTimeBinary(benchmark::State& state) {
  DataCnv cnv;
  Civil civil{};
  requireAgreement(
      floorBinary(kRecord, civil) && agrees(cnv.BinaryToDateTime(kRecord, 3, u"y+1900Md"), civil),
      "binary");
  for (auto _ : state) benchmark::DoNotOptimize(cnv.BinaryToDateTime(kRecord, 3, u"y+1900Md"));
}
BENCHMARK(BM_DateTimeBinary);

}  // namespace
